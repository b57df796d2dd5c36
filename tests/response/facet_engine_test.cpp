// The facet engine against closed forms of a rectangular prism, its quiet returns, the moves of a
// station that sits on the line of an edge, and the two-thread split.
#include "response/facet_engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "response/facet_closed_forms.h"

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
    for (int k = 1; k <= 4; ++k)
        c[static_cast<std::size_t>(k + 4)] = {c[static_cast<std::size_t>(k)][0],
                                              c[static_cast<std::size_t>(k)][1], b.z2};
    return c;
}

constexpr int prism_faces[6][4] = {{1, 2, 3, 4}, {2, 6, 7, 3}, {3, 7, 8, 4},
                                   {4, 8, 5, 1}, {1, 5, 6, 2}, {8, 7, 6, 5}};

struct face_arrays {
    array1<double> vx{1, 9}, vy{1, 9}, vz{1, 9}, ex{1, 8}, ey{1, 8}, ez{1, 8};
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

void add_prism(body_record& body, const profile_block& p, const prism_box& b, bool magnetic,
               bool gravity, float mx, float my, float mz) {
    const auto c = prism_corners(b);
    face_arrays f;
    for (int face = 0; face < 6; ++face) {
        for (int k = 0; k < 4; ++k) f.set(k + 1, c[static_cast<std::size_t>(prism_faces[face][k])]);
        facet_response(face + 1, body, p, magnetic, gravity, mx, my, mz, 0.0, 0.0, 0.0, 4, f.vx,
                       f.vy, f.vz, f.ex, f.ey, f.ez);
    }
}

// Stations as (easting, northing, elevation); station 1 is the frame's origin.
const std::array<std::array<double, 3>, 5> prism_stations{{{0.0, 0.0, 0.0},
                                                           {37.0, -12.0, 3.0},
                                                           {-55.5, 80.25, -2.0},
                                                           {140.0, 7.0, 25.0},
                                                           {21.0, 33.0, -9.5}}};
const prism_box frame_box{-40.0, 60.0, -30.0, 45.0, 20.0, 95.0};

prism_box relative_to(const prism_box& b, const std::array<double, 3>& station) {
    const double x = station[1], y = station[0], z = -station[2];
    return {b.x1 - x, b.x2 - x, b.y1 - y, b.y2 - y, b.z1 - z, b.z2 - z};
}

TEST(facet_engine, prism_attraction_matches_closed_form) {
    const profile_block p = make_stations(prism_stations);
    body_record body = body_for(p);
    add_prism(body, p, frame_box, false, true, 0.0f, 0.0f, 0.0f);
    for (int s = 1; s <= p.num_stations; ++s) {
        const double expected =
            testing_shapes::prism_attraction(relative_to(frame_box, prism_stations[s - 1]));
        EXPECT_GT(expected, 0.0);
        EXPECT_NEAR(body.body_response(gravity_row, s), expected, 1e-5 * std::fabs(expected))
            << "station " << s;
    }
}

TEST(facet_engine, magnetised_prism_field_matches_closed_form) {
    const profile_block p = make_stations(prism_stations);
    body_record body = body_for(p);
    // Magnetisation in field units over 4 pi, inclined down to the north-east.
    const float mx = 2.5f, my = -1.25f, mz = 4.0f;
    add_prism(body, p, frame_box, true, false, mx, my, mz);
    const double fx = 0.4, fy = -0.1, fz = std::sqrt(1.0 - 0.16 - 0.01);
    for (int s = 1; s <= p.num_stations; ++s) {
        const auto h = testing_shapes::prism_hessian(relative_to(frame_box, prism_stations[s - 1]));
        double expected[3];
        for (int r = 0; r < 3; ++r)
            expected[r] = h[static_cast<std::size_t>(3 * r)] * mx +
                          h[static_cast<std::size_t>(3 * r + 1)] * my +
                          h[static_cast<std::size_t>(3 * r + 2)] * mz;
        const double scale =
            std::fabs(expected[0]) + std::fabs(expected[1]) + std::fabs(expected[2]);
        EXPECT_NEAR(body.body_response(north_row, s), expected[0], 1e-5 * scale) << s;
        EXPECT_NEAR(body.body_response(east_row, s), expected[1], 1e-5 * scale) << s;
        EXPECT_NEAR(body.body_response(down_row, s), expected[2], 1e-5 * scale) << s;
        const double total = body.body_response(north_row, s) * fx +
                             body.body_response(east_row, s) * fy +
                             body.body_response(down_row, s) * fz;
        EXPECT_NEAR(total, expected[0] * fx + expected[1] * fy + expected[2] * fz, 1e-5 * scale);
    }
}

TEST(facet_engine, quiet_returns_leave_the_rows_alone) {
    const profile_block p = make_stations(prism_stations);
    // Two coincident first vertices and the rest in line: no area.
    {
        body_record body = body_for(p);
        face_arrays f;
        f.set(1, {0.0, 0.0, 10.0});
        f.set(2, {0.0, 0.0, 10.0});
        f.set(3, {5.0, 5.0, 10.0});
        f.set(4, {9.0, 9.0, 10.0});
        facet_response(1, body, p, true, true, 1.0f, 2.0f, 3.0f, 0.0, 0.0, 1.0, 4, f.vx, f.vy, f.vz,
                       f.ex, f.ey, f.ez);
        for (int s = 1; s <= p.num_stations; ++s)
            for (int r = 1; r <= 5; ++r) EXPECT_EQ(body.body_response(r, s), 0.0f);
    }
    // Magnetisation in the plane of a level face: no poles, and the gravity asked for with it
    // is skipped too.
    {
        body_record body = body_for(p);
        face_arrays f;
        f.set(1, {0.0, 0.0, 10.0});
        f.set(2, {10.0, 0.0, 10.0});
        f.set(3, {10.0, 10.0, 10.0});
        facet_response(1, body, p, true, true, 3.0f, -2.0f, 0.0f, 0.0, 0.0, 1.0, 3, f.vx, f.vy,
                       f.vz, f.ex, f.ey, f.ez);
        for (int s = 1; s <= p.num_stations; ++s)
            for (int r = 1; r <= 5; ++r) EXPECT_EQ(body.body_response(r, s), 0.0f);
        // The same face without magnetics still attracts.
        facet_response(1, body, p, false, true, 3.0f, -2.0f, 0.0f, 0.0, 0.0, 1.0, 3, f.vx, f.vy,
                       f.vz, f.ex, f.ey, f.ez);
        EXPECT_NE(body.body_response(gravity_row, 1), 0.0f);
    }
}

TEST(facet_engine, square_face_equals_its_two_triangles) {
    // A face of any vertex count: the shared diagonal's line integrals cancel, so a square is
    // the sum of its two triangles (and a triangle's normal comes from one fan product).
    const profile_block p = make_stations(prism_stations);
    body_record square = body_for(p), halves = body_for(p);
    const vec3 a{-20.0, -10.0, 15.0}, b{30.0, -10.0, 25.0}, c{30.0, 40.0, 25.0},
        d{-20.0, 40.0, 15.0};
    face_arrays f;
    f.set(1, a), f.set(2, b), f.set(3, c), f.set(4, d);
    facet_response(1, square, p, true, true, 1.5f, 0.5f, 3.0f, 0.0, 0.0, 1.0, 4, f.vx, f.vy, f.vz,
                   f.ex, f.ey, f.ez);
    f.set(1, a), f.set(2, b), f.set(3, c);
    facet_response(1, halves, p, true, true, 1.5f, 0.5f, 3.0f, 0.0, 0.0, 1.0, 3, f.vx, f.vy, f.vz,
                   f.ex, f.ey, f.ez);
    f.set(1, a), f.set(2, c), f.set(3, d);
    facet_response(2, halves, p, true, true, 1.5f, 0.5f, 3.0f, 0.0, 0.0, 1.0, 3, f.vx, f.vy, f.vz,
                   f.ex, f.ey, f.ez);
    for (int s = 1; s <= p.num_stations; ++s)
        for (int r = 2; r <= 5; ++r) {
            const float whole = square.body_response(r, s);
            EXPECT_NEAR(halves.body_response(r, s), whole, 1e-5f * (std::fabs(whole) + 1e-3f))
                << "row " << r << " station " << s;
        }
}

TEST(facet_engine, station_in_the_face_plane_has_no_solid_angle) {
    // Station 2 lies in the plane of a level face at depth 0, off every edge line: omega is 0, the
    // face adds no attraction, and the field comes from the edge integrals alone.
    const std::array<std::array<double, 3>, 2> stations{{{0.0, 0.0, 0.0}, {7.0, -50.0, 0.0}}};
    const profile_block p = make_stations(stations);
    body_record body = body_for(p);
    face_arrays f;
    f.set(1, {0.0, 0.0, 0.0});
    f.set(2, {20.0, 0.0, 0.0});
    f.set(3, {20.0, 20.0, 0.0});
    f.set(4, {0.0, 20.0, 0.0});
    facet_response(1, body, p, true, true, 0.0f, 0.0f, 5.0f, 0.0, 0.0, 1.0, 4, f.vx, f.vy, f.vz,
                   f.ex, f.ey, f.ez);
    EXPECT_EQ(body.body_response(gravity_row, 2), 0.0f);
    EXPECT_EQ(body.body_response(down_row, 2),
              0.0f);  // n omega with omega 0; P and Q terms need l, m
    // In-plane field of the face's poles points away from the face (south, station to the south).
    EXPECT_LT(body.body_response(north_row, 2), 0.0f);
    EXPECT_TRUE(std::isfinite(body.body_response(north_row, 2)));
}

TEST(facet_engine, station_on_a_level_edge_line_is_moved_with_crossed_steps) {
    // The edge from (0, 0, 10) to (10, 0, 10) is level and runs north (x). A station on its line
    // is moved y + 10/10 (the edge's x step goes to y), x + 0, z - 1 (z is down: one metre up),
    // and the face is redone from there: the same as a station placed at the moved point.
    face_arrays f;
    f.set(1, {0.0, 0.0, 10.0});
    f.set(2, {10.0, 0.0, 10.0});
    f.set(3, {10.0, 10.0, 25.0});
    f.set(4, {0.0, 10.0, 25.0});
    const std::array<std::array<double, 3>, 2> on_line{{{0.0, 0.0, 0.0}, {0.0, 14.0, -10.0}}};
    const std::array<std::array<double, 3>, 2> moved{{{0.0, 0.0, 0.0}, {1.0, 14.0, -9.0}}};
    const profile_block p_on = make_stations(on_line), p_moved = make_stations(moved);
    body_record b_on = body_for(p_on), b_moved = body_for(p_moved);
    facet_response(1, b_on, p_on, true, true, 1.0f, 2.0f, 3.0f, 0.0, 0.0, 1.0, 4, f.vx, f.vy, f.vz,
                   f.ex, f.ey, f.ez);
    facet_response(1, b_moved, p_moved, true, true, 1.0f, 2.0f, 3.0f, 0.0, 0.0, 1.0, 4, f.vx, f.vy,
                   f.vz, f.ex, f.ey, f.ez);
    for (int r = 2; r <= 5; ++r)
        EXPECT_EQ(b_on.body_response(r, 2), b_moved.body_response(r, 2)) << r;
}

TEST(facet_engine, station_on_a_sloping_edge_line_gives_up_after_ten_tries) {
    // On the line of a vertical edge the station only rises, staying on the line; at the tenth
    // try the edge is integrated as it stands and the result is still finite.
    const std::array<std::array<double, 3>, 2> stations{{{0.0, 0.0, 0.0}, {0.0, 0.0, 30.0}}};
    const profile_block p = make_stations(stations);
    body_record body = body_for(p);
    face_arrays f;
    f.set(1, {0.0, 0.0, 10.0});
    f.set(2, {0.0, 0.0, 50.0});
    f.set(3, {0.0, 30.0, 50.0});
    f.set(4, {0.0, 30.0, 10.0});
    facet_response(1, body, p, true, true, 2.0f, 0.0f, 0.0f, 1.0, 0.0, 0.0, 4, f.vx, f.vy, f.vz,
                   f.ex, f.ey, f.ez);
    for (int r = 2; r <= 5; ++r) EXPECT_TRUE(std::isfinite(body.body_response(r, 2))) << r;
}

TEST(facet_engine, helpers_follow_their_definitions) {
    EXPECT_EQ(arc_cos(1.0), 0.0);
    EXPECT_EQ(arc_cos(1.5), 0.0);
    EXPECT_EQ(arc_cos(-1.0), facet_pi);
    EXPECT_NEAR(arc_cos(0.3), std::acos(0.3), 1e-14);
    double c1, c2, c3, len;
    cross_with_length(1.0, 0.0, 0.0, 0.0, 1.0, 0.0, c1, c2, c3, len);
    EXPECT_EQ(c3, 1.0);
    EXPECT_EQ(len, 1.0);
    int sign = 0;
    // A station in the plane of the corner: no angle.
    EXPECT_EQ(facet_corner_angle({1.0, 0.0, 0.0}, {1.0, 1.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0},
                                 sign),
              0.0);
    EXPECT_EQ(sign, 1);
    // A right-angled corner seen from straight above its vertex: a right angle one way round,
    // its complement to 2 pi the other.
    const double one_way = facet_corner_angle({1.0, 0.0, 5.0}, {0.0, 0.0, 5.0}, {0.0, 1.0, 5.0},
                                              {0.0, 0.0, 1.0}, sign);
    const int one_sign = sign;
    const double other_way = facet_corner_angle({0.0, 1.0, 5.0}, {0.0, 0.0, 5.0}, {1.0, 0.0, 5.0},
                                                {0.0, 0.0, 1.0}, sign);
    EXPECT_NEAR(one_way + other_way, facet_two_pi, 1e-12);
    EXPECT_NEAR(std::min(one_way, other_way), facet_pi / 2.0, 1e-12);
    EXPECT_EQ(one_sign * sign, -1);
}

TEST(facet_engine, two_thread_split_matches_one_pass) {
    // Enough stations to split over two threads; each station must get the very same float.
    const int n = 3001;
    profile_block p;
    p.allocate_stations(n);
    for (int s = 1; s <= n; ++s) {
        p.location(easting_row, s) = -300.0 + 0.2 * s;
        p.location(northing_row, s) = 15.0 + 0.05 * s;
        p.location(sensor_row, s) = 2.0 * std::sin(s * 0.01);
    }
    body_record body = body_for(p);
    add_prism(body, p, frame_box, true, true, 1.0f, -2.0f, 3.0f);

    std::vector<double> xs, ys, zs;
    for (int s = 1; s <= n; ++s) {
        xs.push_back(p.location(northing_row, s) - p.location(northing_row, 1));
        ys.push_back(p.location(easting_row, s) - p.location(easting_row, 1));
        zs.push_back(-(p.location(sensor_row, s) - p.location(sensor_row, 1)));
    }
    const facet_stations st{xs.size(), xs.data(), ys.data(), zs.data()};
    std::vector<float> hx(xs.size()), hy(xs.size()), hz(xs.size()), g(xs.size());
    const auto c = prism_corners(frame_box);
    face_arrays f;
    for (int face = 0; face < 6; ++face) {
        for (int k = 0; k < 4; ++k) f.set(k + 1, c[static_cast<std::size_t>(prism_faces[face][k])]);
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
