// The facet engine against closed forms of a rectangular prism, its quiet returns, the moves of a
// station that sits on the line of an edge (in every kernel), and the two-thread split.
#include "response/facet_engine.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <initializer_list>
#include <utility>
#include <vector>

#include "core/body_catalogue.h"
#include "response/facet_closed_forms.h"
#include "response/magnetic_response.h"
#include "response_test_model.h"

namespace trensil {
namespace {

using testing_shapes::make_stations;
using testing_shapes::prism_box;

// Corners of a prism in the frame (x north, y east, z down), in the order of the prism face
// table: 1..4 the top (1 at the north end, 2 at the south end, 3 and 4 east of 2 and 1), 5..8
// under them.
std::array<vec3, 9> prism_corners(const prism_box& b) {
    std::array<vec3, 9> c{};
    c[1] = {b.x2, b.y1, b.z1};
    c[2] = {b.x1, b.y1, b.z1};
    c[3] = {b.x1, b.y2, b.z1};
    c[4] = {b.x2, b.y2, b.z1};
    for (std::size_t k = 1; k <= 4; ++k) c[k + 4] = {c[k][0], c[k][1], b.z2};
    return c;
}

constexpr std::size_t prism_faces[6][4] = {{1, 2, 3, 4}, {2, 6, 7, 3}, {3, 7, 8, 4},
                                           {4, 8, 5, 1}, {1, 5, 6, 2}, {8, 7, 6, 5}};

struct face_arrays {
    array1<double> vx{1, 9}, vy{1, 9}, vz{1, 9}, ex{1, 8}, ey{1, 8}, ez{1, 8};
    int count = 0;
    face_arrays() = default;
    face_arrays(std::initializer_list<vec3> corners) {
        for (const vec3& v : corners) set(++count, v);
    }
    void set(int i, const vec3& v) {
        vx(i) = v[0];
        vy(i) = v[1];
        vz(i) = v[2];
    }
};

body_record body_for(const profile_block& p) {
    body_record body;
    body.body_response.resize(1, 5, 1, p.num_stations);
    return body;
}

// One face into `body`, magnetisation (mx, my, mz), the field straight down.
void add_face(int index, body_record& body, const profile_block& p, face_arrays& f, bool magnetic,
              bool gravity, float mx, float my, float mz) {
    facet_response(index, body, p, magnetic, gravity, mx, my, mz, 0.0, 0.0, 1.0, f.count, f.vx,
                   f.vy, f.vz, f.ex, f.ey, f.ez);
}

void add_prism(body_record& body, const profile_block& p, const prism_box& b, float mx, float my,
               float mz) {
    const auto c = prism_corners(b);
    face_arrays f;
    f.count = 4;
    for (int face = 0; face < 6; ++face) {
        for (int k = 0; k < 4; ++k) f.set(k + 1, c[prism_faces[face][k]]);
        add_face(face + 1, body, p, f, true, true, mx, my, mz);
    }
}

bool all_rows_zero(const body_record& body, int stations) {
    for (int s = 1; s <= stations; ++s)
        for (int r = 1; r <= 5; ++r)
            if (body.body_response(r, s) != 0.0f) return false;
    return true;
}

// Stations as (easting, northing, elevation); station 1 is the frame's origin.
const std::array<std::array<double, 3>, 5> prism_stations{{{0.0, 0.0, 0.0},
                                                           {37.0, -12.0, 3.0},
                                                           {-55.5, 80.25, -2.0},
                                                           {140.0, 7.0, 25.0},
                                                           {21.0, 33.0, -9.5}}};
const prism_box frame_box{-40.0, 60.0, -30.0, 45.0, 20.0, 95.0};

TEST(facet_engine, prism_attraction_and_field_match_closed_forms) {
    const profile_block p = make_stations(prism_stations);
    body_record body = body_for(p);
    // Magnetisation in field units over 4 pi, inclined down to the north-east.
    const float m[3] = {2.5f, -1.25f, 4.0f};
    add_prism(body, p, frame_box, m[0], m[1], m[2]);
    for (int s = 1; s <= p.num_stations; ++s) {
        SCOPED_TRACE(s);
        const auto& st = prism_stations[static_cast<std::size_t>(s - 1)];
        const prism_box b{frame_box.x1 - st[1], frame_box.x2 - st[1], frame_box.y1 - st[0],
                          frame_box.y2 - st[0], frame_box.z1 + st[2], frame_box.z2 + st[2]};
        const double g = testing_shapes::prism_attraction(b);
        EXPECT_NEAR(body.body_response(gravity_row, s), g, 1e-5 * std::fabs(g));
        const auto h = testing_shapes::prism_hessian(b);
        double expected[3], scale = 0.0;
        for (std::size_t r = 0; r < 3; ++r) {
            expected[r] = h[3 * r] * m[0] + h[3 * r + 1] * m[1] + h[3 * r + 2] * m[2];
            scale += std::fabs(expected[r]);
        }
        EXPECT_NEAR(body.body_response(north_row, s), expected[0], 1e-5 * scale);
        EXPECT_NEAR(body.body_response(east_row, s), expected[1], 1e-5 * scale);
        EXPECT_NEAR(body.body_response(down_row, s), expected[2], 1e-5 * scale);
    }
}

TEST(facet_engine, quiet_returns_leave_the_rows_alone) {
    const profile_block p = make_stations(prism_stations);
    // Two coincident first vertices and the rest in line: no area.
    body_record body = body_for(p);
    face_arrays line{{0.0, 0.0, 10.0}, {0.0, 0.0, 10.0}, {5.0, 5.0, 10.0}, {9.0, 9.0, 10.0}};
    add_face(1, body, p, line, true, true, 1.0f, 2.0f, 3.0f);
    EXPECT_TRUE(all_rows_zero(body, p.num_stations));
    // Magnetisation in the plane of a level face: no poles, and the gravity asked for with it
    // is skipped too; the same face without magnetics still attracts.
    face_arrays level{{0.0, 0.0, 10.0}, {10.0, 0.0, 10.0}, {10.0, 10.0, 10.0}};
    add_face(1, body, p, level, true, true, 3.0f, -2.0f, 0.0f);
    EXPECT_TRUE(all_rows_zero(body, p.num_stations));
    add_face(1, body, p, level, false, true, 3.0f, -2.0f, 0.0f);
    EXPECT_NE(body.body_response(gravity_row, 1), 0.0f);
}

TEST(facet_engine, square_face_equals_its_two_triangles) {
    // The shared diagonal's line integrals cancel, so a square is the sum of its two triangles
    // (and a triangle's normal comes from one fan product).
    const profile_block p = make_stations(prism_stations);
    body_record square = body_for(p), halves = body_for(p);
    const vec3 a{-20.0, -10.0, 15.0}, b{30.0, -10.0, 25.0}, c{30.0, 40.0, 25.0},
        d{-20.0, 40.0, 15.0};
    face_arrays whole{a, b, c, d}, first{a, b, c}, second{a, c, d};
    add_face(1, square, p, whole, true, true, 1.5f, 0.5f, 3.0f);
    add_face(1, halves, p, first, true, true, 1.5f, 0.5f, 3.0f);
    add_face(2, halves, p, second, true, true, 1.5f, 0.5f, 3.0f);
    for (int s = 1; s <= p.num_stations; ++s)
        for (int r = 2; r <= 5; ++r) {
            const float w = square.body_response(r, s);
            EXPECT_NEAR(halves.body_response(r, s), w, 1e-5f * (std::fabs(w) + 1e-3f))
                << "row " << r << " station " << s;
        }
}

TEST(facet_engine, station_on_an_edge_line_is_moved_and_retried) {
    // The edge from (0, 0, 10) to (10, 0, 10) is level and runs north (x). A station on its line
    // is moved y + 10/10 (the edge's x step goes to y), x + 0, z - 1 (z is down: one metre up),
    // and the face is redone from there: the same as a station placed at the moved point.
    face_arrays f{{0.0, 0.0, 10.0}, {10.0, 0.0, 10.0}, {10.0, 10.0, 25.0}, {0.0, 10.0, 25.0}};
    const profile_block p_on = make_stations<2>({{{0.0, 0.0, 0.0}, {0.0, 14.0, -10.0}}});
    const profile_block p_moved = make_stations<2>({{{0.0, 0.0, 0.0}, {1.0, 14.0, -9.0}}});
    body_record b_on = body_for(p_on), b_moved = body_for(p_moved);
    add_face(1, b_on, p_on, f, true, true, 1.0f, 2.0f, 3.0f);
    add_face(1, b_moved, p_moved, f, true, true, 1.0f, 2.0f, 3.0f);
    for (int r = 2; r <= 5; ++r)
        EXPECT_EQ(b_on.body_response(r, 2), b_moved.body_response(r, 2)) << r;

    // On the line of a vertical edge the station only rises, staying on the line; at the tenth
    // try the edge is integrated as it stands and the result is still finite.
    const profile_block p = make_stations<2>({{{0.0, 0.0, 0.0}, {0.0, 0.0, 30.0}}});
    body_record body = body_for(p);
    face_arrays wall{{0.0, 0.0, 10.0}, {0.0, 0.0, 50.0}, {0.0, 30.0, 50.0}, {0.0, 30.0, 10.0}};
    facet_response(1, body, p, true, true, 2.0f, 0.0f, 0.0f, 1.0, 0.0, 0.0, 4, wall.vx, wall.vy,
                   wall.vz, wall.ex, wall.ey, wall.ez);
    for (int r = 2; r <= 5; ++r) EXPECT_TRUE(std::isfinite(body.body_response(r, 2))) << r;
}

// Puts `automatic` back to the widest kernel when a test that chose another one ends.
struct automatic_kernel_reset {
    ~automatic_kernel_reset() { choose_automatic_facet_kernel(facet_block_isa::automatic); }
};

TEST(facet_engine_regression, tenth_move_off_an_edge_line_carries_on_from_the_moved_station) {
    // A line running east, 101 stations 10 m apart at elevation 100; a vertical thick sheet
    // 100 m wide whose strike-limited end lies under the line. Stations 51 and 61 stand above the
    // sheet's two vertical end edges: rising never takes them off those lines, so the tenth try
    // integrates the edge as it stands and the face's later edges are taken from the moved
    // station. Taking them from the unmoved one gave 274.2639 and 274.2640 nT. The same in the
    // one-station path and in every block kernel the processor runs.
    automatic_kernel_reset reset;
    const std::pair<facet_block_isa, const char*> kernels[] = {
        {facet_block_isa::scalar, "scalar"},
        {facet_block_isa::portable, "portable"},
        {facet_block_isa::avx2, "avx2"},
        {facet_block_isa::avx512, "avx512"}};
    for (const auto& [isa, name] : kernels) {
        if (!facet_block_isa_available(isa)) continue;
        SCOPED_TRACE(name);
        choose_automatic_facet_kernel(isa);
        scripted_platform ui;
        response_state state = testing_support::state_for(ui);
        model_record model = testing_support::line_model(101, 0.0, 0.0, 10.0, 0.0, 100.0, 1);
        model.mag_intensity = 50000.0f;
        model.mag_inclination = 60.0f;
        model.mag_declination = 0.0f;
        body_record& b = model.body(1);
        b.type = thick_sheet;
        b.distance.value = 500.0f;
        b.top.value = 50.0f;
        b.strike.value = 0.0f;
        b.dip.value = 90.0f;
        b.width.value = 100.0f;
        b.depth_extent.value = 200.0f;
        b.length.value = 400.0f;
        b.offset.value = 200.0f;
        b.susc.value = 50000.0f;
        calculate_mag_response(model, state, 1);
        ASSERT_TRUE(ui.messages.empty());
        EXPECT_NEAR(b.body_response(total_field_row, 51), 273.1391, 1e-4);
        EXPECT_NEAR(b.body_response(total_field_row, 61), 273.0197, 1e-4);
    }
}

TEST(facet_engine, two_thread_split_matches_one_pass) {
    // Enough stations to split over two threads; each station must get the very same float.
    const int n = 3001;
    profile_block p;
    p.allocate_stations(n);
    std::vector<double> xs, ys, zs;
    for (int s = 1; s <= n; ++s) {
        p.location(easting_row, s) = -300.0 + 0.2 * s;
        p.location(northing_row, s) = 15.0 + 0.05 * s;
        p.location(sensor_row, s) = 2.0 * std::sin(s * 0.01);
        xs.push_back(p.location(northing_row, s) - p.location(northing_row, 1));
        ys.push_back(p.location(easting_row, s) - p.location(easting_row, 1));
        zs.push_back(-(p.location(sensor_row, s) - p.location(sensor_row, 1)));
    }
    body_record body = body_for(p);
    add_prism(body, p, frame_box, 1.0f, -2.0f, 3.0f);

    const facet_stations st{xs.size(), xs.data(), ys.data(), zs.data()};
    std::vector<float> hx(xs.size()), hy(xs.size()), hz(xs.size()), g(xs.size());
    const auto c = prism_corners(frame_box);
    face_arrays f;
    for (int face = 0; face < 6; ++face) {
        for (int k = 0; k < 4; ++k) f.set(k + 1, c[prism_faces[face][k]]);
        facet_face prepared;
        ASSERT_TRUE(prepare_facet(4, &f.vx(1), &f.vy(1), &f.vz(1), &f.ex(1), &f.ey(1), &f.ez(1),
                                  true, 1.0f, -2.0f, 3.0f, prepared));
        facet_kernel(prepared, st, 0, st.count, true, true,
                     facet_sums<float>{hx.data(), hy.data(), hz.data(), g.data()});
    }
    for (int s = 1; s <= n; ++s) {
        const auto k = static_cast<std::size_t>(s - 1);
        ASSERT_EQ(body.body_response(north_row, s), hx[k]) << s;
        ASSERT_EQ(body.body_response(east_row, s), hy[k]) << s;
        ASSERT_EQ(body.body_response(down_row, s), hz[k]) << s;
        ASSERT_EQ(body.body_response(gravity_row, s), g[k]) << s;
    }
}

}  // namespace
}  // namespace trensil
