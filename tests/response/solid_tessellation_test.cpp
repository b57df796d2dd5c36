// The cylinder/pipe mesh: counts, closure and outward faces of every kind of body, refused
// shapes, the unit circle, placement, and the two caches of build_body_solid.
#include "response/solid_tessellation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <utility>

#include "support/scripted_platform.h"

namespace trensil {
namespace {

struct mesh {
    int num_vertices = 0;
    int num_triangles = 0;
    array2<std::int32_t> triangles;
    array2<double> vertices;
};

mesh tessellate(double length, double r0, double r1, double shell, double end, int sectors,
                int segments, bool axis_on_y = true) {
    mesh m;
    scripted_platform ui;
    EXPECT_EQ(tessellate_cylinder(&ui, axis_on_y, false, m.num_vertices, m.num_triangles,
                                  solid_pose{}, length, r0, r1, shell, end, 1.0, sectors, segments,
                                  m.triangles, m.vertices),
              0);
    EXPECT_TRUE(ui.messages.empty());
    return m;
}

// Every directed edge appears once and its reverse once: the surface is closed and consistently
// wound. Returns the signed volume (positive when the faces look outward).
double closed_volume(const mesh& m) {
    std::map<std::pair<int, int>, int> edges;
    double volume = 0.0;
    for (int t = 1; t <= m.num_triangles; ++t) {
        const int c[3] = {m.triangles(1, t), m.triangles(2, t), m.triangles(3, t)};
        for (int k = 0; k < 3; ++k) {
            EXPECT_GE(c[k], 1);
            EXPECT_LE(c[k], m.num_vertices);
            ++edges[{c[k], c[(k + 1) % 3]}];
        }
        auto v = [&](int k, int r) { return m.vertices(r, c[k]); };
        volume += (v(0, 1) * (v(1, 2) * v(2, 3) - v(1, 3) * v(2, 2)) -
                   v(0, 2) * (v(1, 1) * v(2, 3) - v(1, 3) * v(2, 1)) +
                   v(0, 3) * (v(1, 1) * v(2, 2) - v(1, 2) * v(2, 1))) /
                  6.0;
    }
    for (const auto& [edge, count] : edges) {
        EXPECT_EQ(count, 1) << edge.first << "-" << edge.second;
        const auto back = edges.find({edge.second, edge.first});
        EXPECT_TRUE(back != edges.end() && back->second == 1) << edge.first << "-" << edge.second;
    }
    return volume;
}

// Area of a regular polygon of n sides inscribed in a circle of radius r.
double polygon_area(int n, double r) {
    return 0.5 * n * r * r * std::sin(2.0 * 3.14159265358979 / n);
}

TEST(solid_tessellation, sector_and_segment_counts) {
    // Capped solid: (S + 1) rings of N, two centres, 2 N (S + 1) triangles; 5 sectors give 6,
    // fewer than 4 give 12, and no segments one. Capped hollow: twice the solid; open hollow: no
    // centres.
    struct count_case {
        double shell, end;
        int sectors, segments, vertices, triangles;
    };
    const count_case cases[] = {
        {0.0, 0.0, 5, 1, 2 * 6 + 2, 2 * 6 * 2},       {0.0, 0.0, 0, 1, 2 * 12 + 2, 2 * 12 * 2},
        {0.0, 0.0, 3, 1, 2 * 12 + 2, 2 * 12 * 2},     {0.0, 0.0, 4, 1, 2 * 4 + 2, 2 * 4 * 2},
        {0.0, 0.0, 8, 0, 2 * 8 + 2, 2 * 8 * 2},       {0.0, 0.0, 8, 3, 4 * 8 + 2, 2 * 8 * 4},
        {3.0, 4.0, 8, 2, 2 * (3 * 8 + 2), 4 * 8 * 3}, {3.0, 0.0, 8, 2, 2 * 8 * 3, 4 * 8 * 3},
    };
    for (const count_case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.sectors << " sectors " << c.segments << " segments "
                                        << c.shell << " shell");
        const mesh m = tessellate(100.0, 10.0, 10.0, c.shell, c.end, c.sectors, c.segments);
        EXPECT_EQ(m.num_vertices, c.vertices);
        EXPECT_EQ(m.num_triangles, c.triangles);
        // The arrays hold exactly what was built.
        EXPECT_EQ(m.triangles.cols(), m.num_triangles);
        EXPECT_EQ(m.vertices.cols(), m.num_vertices);
    }
    EXPECT_EQ(tessellate(100.0, 10.0, 10.0, 0.0, 0.0, 8, 0).vertices,
              tessellate(100.0, 10.0, 10.0, 0.0, 0.0, 8, 1).vertices);
}

TEST(solid_tessellation, every_kind_of_body_is_closed_and_faces_out) {
    const double length = 120.0, r = 10.0;
    struct shape {
        const char* name;
        double r0, r1, shell, end;
        int segments;
        double volume;  // of the faceted solid, N = 16
    };
    const double a = polygon_area(16, r);
    const double inner = polygon_area(16, r - 2.0);
    const shape shapes[] = {
        {"solid cylinder", r, r, 0.0, 0.0, 3, a * length},
        {"hollow open", r, r, 2.0, 0.0, 2, (a - inner) * length},
        {"hollow capped", r, r, 2.0, 5.0, 2, a * length - inner * (length - 10.0)},
        {"cone, point at the far end", r, 0.0, 0.0, 0.0, 4, a * length / 3.0},
        {"cone, point at the start", 0.0, r, 0.0, 0.0, 1, a * length / 3.0},
        {"frustum", r, 4.0, 0.0, 0.0, 2,
         length / 3.0 * (a + polygon_area(16, 4.0) + std::sqrt(a * polygon_area(16, 4.0)))},
    };
    for (const shape& s : shapes) {
        SCOPED_TRACE(s.name);
        for (bool axis_on_y : {true, false}) {
            const mesh m =
                tessellate(length, s.r0, s.r1, s.shell, s.end, 16, s.segments, axis_on_y);
            ASSERT_GT(m.num_triangles, 0);
            EXPECT_NEAR(closed_volume(m), s.volume, 1e-9 * s.volume);
        }
    }
}

TEST(solid_tessellation, refused_shapes_build_nothing) {
    for (const auto& [r0, r1, shell, end] :
         {std::array<double, 4>{0.0, 0.0, 0.0, 0.0}, std::array<double, 4>{5.0, 5.0, 5.0, 0.0},
          std::array<double, 4>{5.0, 5.0, 6.0, 0.0}, std::array<double, 4>{5.0, 0.0, 1.0, 0.0},
          std::array<double, 4>{5.0, 5.0, 1.0, 50.0}}) {
        mesh m;
        m.num_vertices = 7;
        m.num_triangles = 9;
        scripted_platform ui;
        EXPECT_EQ(
            tessellate_cylinder(&ui, true, false, m.num_vertices, m.num_triangles, solid_pose{},
                                100.0, r0, r1, shell, end, 1.0, 12, 1, m.triangles, m.vertices),
            0);
        EXPECT_EQ(m.num_vertices, 7);
        EXPECT_EQ(m.num_triangles, 9);
        EXPECT_TRUE(m.vertices.empty());
        EXPECT_TRUE(ui.messages.empty());
    }
}

TEST(solid_tessellation, oversized_mesh_is_refused_with_a_message) {
    mesh m;
    scripted_platform ui;
    EXPECT_EQ(
        tessellate_cylinder(&ui, true, false, m.num_vertices, m.num_triangles, solid_pose{}, 100.0,
                            5.0, 5.0, 0.0, 0.0, 1.0, 2000000000, 1000, m.triangles, m.vertices),
        -1);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].rfind("An error occurred while creating the graphic object: ", 0), 0u);
    EXPECT_EQ(m.num_triangles, 0);
}

TEST(solid_tessellation, unit_circle_and_rings_keep_the_true_radius) {
    unit_circle circle;
    make_unit_circle(circle, 8);
    EXPECT_EQ(circle.circle_sin(0), -0.5);
    EXPECT_EQ(circle.circle_cos(0), 0.0);
    EXPECT_EQ(circle.circle_sin(4), 0.5);
    EXPECT_EQ(circle.circle_cos(4), 0.0);
    EXPECT_EQ(circle.circle_sin(8), -0.5);
    EXPECT_NEAR(circle.circle_cos(2), 0.5, 1e-7);  // a quarter turn on: the top
    array2<double> v(1, 3, 1, 8);
    int count = 0;
    add_ring(circle, true, 8, 1.0, 42.0, 6.0, 1, count, v);
    EXPECT_EQ(count, 8);
    for (int k = 1; k <= 8; ++k) {
        EXPECT_NEAR(std::hypot(v(1, k), v(3, k)), 6.0, 1e-6);
        EXPECT_EQ(v(2, k), 42.0);
    }
}

TEST(solid_tessellation, place_solid_turns_dip_then_strike) {
    // A point on the axis (second coordinate) dipped 90 degrees points straight down; struck
    // 90 degrees, a level axis points east.
    array2<double> v(1, 3, 1, 1);
    v(2, 1) = 10.0;
    place_solid(1, false, {1.0, 1.0, 1.0}, {0.0, 0.0, 90.0}, {100.0, 200.0, 300.0}, v);
    EXPECT_NEAR(v(1, 1), 100.0, 1e-6);
    EXPECT_NEAR(v(2, 1), 200.0, 1e-6);
    EXPECT_NEAR(v(3, 1), 290.0, 1e-6);
    v.fill(0.0);
    v(2, 1) = 10.0;
    place_solid(1, false, {2.0, 2.0, 2.0}, {0.0, 90.0, 0.0}, {0.0, 0.0, 0.0}, v);
    EXPECT_NEAR(v(1, 1), 20.0, 1e-6);
    EXPECT_NEAR(v(2, 1), 0.0, 1e-5);
}

model_record pipe_model() {
    model_record model;
    model.num_bodies = 1;
    body_record& b = model.body(1);
    b.type = 16;
    b.east = 500.0;
    b.north = 1000.0;
    b.width.value = 20.0;
    b.length.value = 200.0;
    b.top.value = -50.0;
    b.dip.value = 0.0;
    b.strike.value = 0.0;
    b.num_sectors = 12;
    b.num_segments = 2;
    return model;
}

TEST(solid_tessellation, body_solid_is_placed_along_strike_at_the_top) {
    model_record model = pipe_model();
    response_state state;
    int failed = 1;
    build_body_solid(failed, model, state, 1);
    ASSERT_EQ(failed, 0);
    const solid_cache& s = model.body(1).solid;
    ASSERT_EQ(s.num_placed_vertices, s.num_vertices);
    double min_n = 1e9, max_n = -1e9, max_r = 0.0;
    for (int k = 1; k <= s.num_placed_vertices; ++k) {
        min_n = std::min(min_n, s.placed_vertices(2, k));
        max_n = std::max(max_n, s.placed_vertices(2, k));
        max_r = std::max(
            max_r, std::hypot(s.placed_vertices(1, k) - 500.0, s.placed_vertices(3, k) + 50.0));
    }
    // Level axis running north, centred on the body's reference point; width is the diameter.
    EXPECT_NEAR(min_n, 900.0, 1e-9);
    EXPECT_NEAR(max_n, 1100.0, 1e-9);
    EXPECT_NEAR(max_r, 10.0, 1e-6);
}

TEST(solid_tessellation, caches_rebuild_only_what_changed) {
    model_record model = pipe_model();
    response_state state;
    int failed = 1;
    build_body_solid(failed, model, state, 1);
    solid_cache& s = model.body(1).solid;
    const array2<double> first_mesh = s.vertices;
    const array2<double> first_placed = s.placed_vertices;

    // Marks in both caches show whether a later call rebuilt them.
    s.vertices(1, 1) = 12345.0;
    s.placed_vertices(1, 1) = 54321.0;
    build_body_solid(failed, model, state, 1);  // a second response in a row
    EXPECT_EQ(s.vertices(1, 1), 12345.0);
    EXPECT_EQ(s.placed_vertices(1, 1), 54321.0);

    model.body(1).east += 25.0;  // moved: placed again from the cached shape
    build_body_solid(failed, model, state, 1);
    EXPECT_EQ(s.vertices(1, 1), 12345.0);
    EXPECT_NEAR(s.placed_vertices(1, 1), 12345.0 + 500.0 + 25.0, 1e-9);

    model.body(1).max_triangle_size = 3.0f;  // only the size setting: an identical new mesh
    build_body_solid(failed, model, state, 1);
    EXPECT_EQ(s.vertices, first_mesh);
    EXPECT_NEAR(s.placed_vertices(1, 1), first_placed(1, 1) + 25.0, 1e-9);
    EXPECT_EQ(failed, 0);
}

TEST(solid_tessellation, too_thick_a_shell_keeps_the_old_mesh) {
    model_record model = pipe_model();
    response_state state;
    int failed = 1;
    build_body_solid(failed, model, state, 1);
    const int triangles = model.body(1).solid.num_triangles;
    model.body(1).shell_thickness = 10.0f;  // = width / 2
    build_body_solid(failed, model, state, 1);
    EXPECT_EQ(failed, 0);
    EXPECT_EQ(model.body(1).solid.num_triangles, triangles);

    model_record fresh = pipe_model();
    fresh.body(1).shell_thickness = 12.0f;
    build_body_solid(failed, fresh, state, 1);
    EXPECT_EQ(fresh.body(1).solid.num_triangles, 0);
}

}  // namespace
}  // namespace trensil
