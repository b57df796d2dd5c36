#include "workspace/section_view.h"

#include <gtest/gtest.h>

#include <cmath>

#include "model_fixture.h"
#include "support/text_measure.h"
#include "workspace/graph_display.h"
#include "workspace/recording_graph_control.h"

namespace trensil {
namespace {

using testing_models::add_body;
using testing_models::line_model;
using polygon_call = recording_graph_control::call;

// A 1050 long line under a section graph with fixed axes, as the axis setting would leave them.
struct section_fixture {
    model_record model = line_model(106, 10.0f);
    recording_graph_control graph;
    section_options options;

    section_fixture() {
        graph.xaxismin = 0.0f;
        graph.xaxismax = 1050.0f;
        graph.yaxismin = -400.0f;
        graph.yaxismax = 100.0f;
    }
    body_record& sheet(int type, float distance, float top, float width, float extent) {
        body_record& b = add_body(model, type, distance, top);
        b.width.value = width;
        b.depth_extent.value = extent;
        return b;
    }
    std::vector<polygon_call> draw() {
        graph.forget();
        draw_section_objects(model, graph, options,
                             model.profile.profile_distance(model.profile.num_stations));
        return graph.polygons();
    }
};

void expect_corners(const polygon_call& polygon,
                    std::initializer_list<std::pair<float, float>> corners, float tolerance) {
    ASSERT_EQ(polygon.x.size(), corners.size());
    std::size_t i = 0;
    for (const auto& [x, y] : corners) {
        EXPECT_NEAR(polygon.x[i], x, tolerance) << "corner " << i + 1;
        EXPECT_NEAR(polygon.y[i], y, tolerance) << "corner " << i + 1;
        ++i;
    }
}

TEST(section_vertical_scale, seed_is_one_to_one_below_the_stored_top) {
    struct body_at {
        float distance, top;
    };
    struct row {
        const char* what;
        int stations;
        float spacing;
        double sensor, ground;
        int zpos;
        std::vector<body_at> bodies;
        float top, bottom;
    };
    // An 800 x 400 graph; lines of 100 or more are one to one, between 10 and 100 the
    // shallowest-reaching top is added to the bottom, short lines get a fixed 2.5.
    const row rows[] = {
        {"100 long", 11, 10.0f, 50, 40, 0, {{50, -30}}, 42.5f, 42.5f - 50.0f},
        {"50 long", 6, 10.0f, 50, 40, 0, {{20, -30}, {30, -10}}, 40.25f, 40.25f - 25.0f - 30.0f},
        {"5 long", 6, 1.0f, 50, 40, 0, {}, 40.1f, 40.1f - 2.5f},
        {"sensors above the stored top", 11, 10.0f, 500, 40, 3, {}, 42.5f, 42.5f - 50.0f},
        {"below sea level: top from 0", 11, 10.0f, -90, -100, 0, {}, 2.5f, 2.5f - 50.0f},
    };
    recording_graph_control graph;
    for (const row& r : rows) {
        SCOPED_TRACE(r.what);
        model_record model = line_model(r.stations, r.spacing, r.sensor, r.ground);
        model.zpos = r.zpos;
        for (const body_at& b : r.bodies) add_body(model, thick_sheet, b.distance, b.top);
        float bottom = 0, top = 0;
        section_vertical_seed(model, graph, bottom, top);
        EXPECT_FLOAT_EQ(top, r.top);
        EXPECT_FLOAT_EQ(bottom, r.bottom);
    }
}

TEST(section_vertical_scale, axes_rounded_with_eight_ticks) {
    model_record model = line_model(101, 10.0f);  // 1000 long
    graph_view_state view;
    setup_graph_data_ranges(model, view);
    recording_graph_control g;
    display_maginv_model(model, view, {nullptr, nullptr, nullptr, nullptr, &g}, {}, 0, 4);
    // Seed -457.5 .. 42.5 (500 at one to one) rounds to an 80 step.
    EXPECT_NEAR(g.y_tick_step, 80.0f, 1e-3f);
    EXPECT_NEAR(g.yaxismin, -480.0f, 1e-2f);
    EXPECT_NEAR(g.yaxismax, 80.0f, 1e-2f);
    EXPECT_NEAR(view.graph_yspan[4], 560.0f, 1e-2f);
    EXPECT_EQ(view.graph_zoom_level[4], 1);
}

TEST(section_outline, dipping_vertical_and_sloping_sheets) {
    section_fixture f;
    f.sheet(thick_sheet, 500.0f, 0.0f, 20.0f, 100.0f).dip.value = 45.0f;
    f.sheet(thin_sheet, 200.0f, -10.0f, 5.0f, 50.0f);
    f.sheet(thick_sheet, 700.0f, 0.0f, 20.0f, 100.0f).slope.value = 10.0f;
    body_record& dipping = f.sheet(thick_sheet, 300.0f, 0.0f, 20.0f, 100.0f);
    dipping.slope.value = 10.0f;
    dipping.dip.value = 60.0f;

    const auto polygons = f.draw();
    ASSERT_EQ(polygons.size(), 4u);
    expect_corners(polygons[0], {{500, 0}, {520, 0}, {620, -100}, {600, -100}, {500, 0}}, 1e-3f);
    expect_corners(polygons[1], {{200, -10}, {205, -10}, {205, -60}, {200, -60}, {200, -10}},
                   1e-4f);
    const float tans = std::tan(10.0f * 0.017453292f);
    const float rise = 20.0f * tans;
    expect_corners(polygons[2], {{700, 0}, {720, rise}, {720, -100 + rise}, {700, -100}, {700, 0}},
                   1e-3f);
    // The run along the profile shortens so that the sloping top meets the dipping far side.
    const float tand = std::tan(60.0f * 0.017453292f);
    const float run = 20.0f / (1.0f + tans / tand);
    const float shift = 100.0f / tand;
    expect_corners(polygons[3],
                   {{300, 0},
                    {300 + run, run * tans},
                    {300 + shift + run, -100 + run * tans},
                    {300 + shift, -100},
                    {300, 0}},
                   1e-3f);
    EXPECT_EQ(polygons[0].colour, colour_black);
    EXPECT_EQ(polygons[0].fill, colour_blue);  // the default body colour
    EXPECT_EQ(polygons[0].width, 1);
    EXPECT_EQ(f.model.body(2).display_index, 2);
}

TEST(section_outline, open_depth_flat_dip_and_edge_limits) {
    section_fixture f;
    f.sheet(thin_sheet, 500.0f, 0.0f, 5.0f, 0.0f);                 // to the bottom axis
    f.sheet(thin_sheet, 0.0f, 0.0f, 5.0f, 2.0f).dip.value = 0.1f;  // a hundred extents
    f.sheet(edge_body, 500.0f, 0.0f, 5.0f, 100.0f);                // to the profile's end
    auto polygons = f.draw();
    EXPECT_FLOAT_EQ(polygons[0].y[3], -400.0f);
    EXPECT_NEAR(polygons[1].x[3], 200.0f, 1e-3f);
    EXPECT_FLOAT_EQ(polygons[2].x[1], 1050.0f);
    EXPECT_FLOAT_EQ(polygons[2].x[2], 1050.0f);
    f.graph.yaxismin = -250.0f;
    EXPECT_FLOAT_EQ(f.draw()[0].y[3], -250.0f);
}

TEST(section_outline, strike_limited_body_beyond_its_end_is_displaced_and_marked) {
    section_fixture f;
    // Strike 30 across an east-running line: sin 120 degrees along the profile, cos -0.5.
    for (const float offset : {150.0f, -150.0f, 90.0f, 150.0f}) {
        body_record& b = f.sheet(thick_sheet, 500.0f, 0.0f, 20.0f, 100.0f);
        b.strike.value = 30.0f;
        b.length.value = 200.0f;
        b.offset.value = offset;
    }
    f.model.body(4).plunge.value = 30.0f;
    const auto polygons = f.draw();
    ASSERT_EQ(polygons.size(), 4u);
    // offset 150: s = (150 - 100) x -0.5 = -25, green.
    EXPECT_EQ(polygons[0].colour, colour_green);
    EXPECT_EQ(polygons[0].width, 4);
    EXPECT_NEAR(polygons[0].x[0], 500.0f - 25.0f - 2.0f, 1e-3f);
    EXPECT_NEAR(polygons[0].x[1], 500.0f - 25.0f + 20.0f / std::sin(2.0943951f), 1e-2f);
    // offset -150: s = +25, blue; the near corners move left by 2 in both cases.
    EXPECT_EQ(polygons[1].colour, colour_blue);
    EXPECT_NEAR(polygons[1].x[0], 500.0f + 25.0f - 2.0f, 1e-3f);
    EXPECT_NEAR(polygons[1].x[4], polygons[1].x[0], 1e-6f);
    // Within its length: no mark.
    EXPECT_EQ(polygons[2].colour, colour_black);
    EXPECT_EQ(polygons[2].width, 1);
    // Plunge lifts it: sz = -sin(30) x 50 before s is turned onto the profile.
    EXPECT_NEAR(polygons[3].y[0], -25.0f, 1e-3f);
}

TEST(section_outline, cylinder_solid_and_shell) {
    section_fixture f;
    add_body(f.model, cylinder_pipe, 300.0f, -50.0f).width.value = 40.0f;
    body_record& shell = add_body(f.model, cylinder_pipe, 700.0f, -50.0f);
    shell.width.value = 40.0f;
    shell.shell_thickness = 5.0f;

    const auto polygons = f.draw();
    ASSERT_EQ(polygons.size(), 2u);
    ASSERT_EQ(polygons[0].x.size(), 34u);
    EXPECT_NEAR(polygons[0].x[0], 320.0f, 1e-3f);
    EXPECT_NEAR(polygons[0].y[0], -50.0f, 1e-3f);
    EXPECT_NEAR(polygons[0].y[9], -30.0f, 1e-3f);  // a quarter turn: the top of the circle
    EXPECT_EQ(polygons[0].width, 0);               // no sheet drawn before it

    ASSERT_EQ(polygons[1].x.size(), 67u);
    const float step = 2.0f * 3.14159265f / 32.0f;
    EXPECT_NEAR(polygons[1].x[0], 700.0f + 20.0f * std::cos(-step / 10), 1e-3f);
    EXPECT_NEAR(polygons[1].x[1], 700.0f + 15.0f * std::cos(-step / 10), 1e-3f);
    EXPECT_NEAR(polygons[1].y[17], -50.0f + 15.0f * std::sin(-step * 16), 1e-3f);
    EXPECT_NEAR(polygons[1].x[34], 720.0f, 1e-3f);  // outer circle from angle 0

    // A cylinder drawn after a sheet takes that sheet's line width.
    body_record& sheet = add_body(f.model, thick_sheet, 100.0f, 0.0f);
    sheet.length.value = 100.0f;
    sheet.offset.value = 80.0f;
    sheet.strike.value = 30.0f;
    add_body(f.model, cylinder_pipe, 500.0f, -50.0f);
    EXPECT_EQ(f.draw().back().width, 4);
}

TEST(section_marks, bodies_along_the_line_and_spheres_get_marks_only) {
    section_fixture f;
    add_body(f.model, thick_sheet, 100.0f, 0.0f);
    add_body(f.model, thick_sheet, 200.0f, 0.0f).strike.value = 90.0f;  // along the line
    add_body(f.model, sphere_body, 300.0f, -20.0f);
    add_body(f.model, thin_sheet, 400.0f, 0.0f);
    EXPECT_EQ(f.draw().size(), 2u);
    EXPECT_EQ(f.graph.markers().size(), 106u + 4u);
    EXPECT_EQ(f.model.body(1).display_index, 1);
    EXPECT_EQ(f.model.body(2).display_index, 4);  // polygon 2 is body 4
}

TEST(section_marks, sensor_stride_halves_above_128_stations) {
    for (const auto& [stations, marks] : {std::pair{128, 128u}, std::pair{129, 65u}}) {
        section_fixture f;
        f.model = line_model(stations, 1.0f);
        f.draw();
        const auto drawn = f.graph.markers();
        ASSERT_EQ(drawn.size(), marks) << stations;
        EXPECT_EQ(drawn[0].colour, colour_blue);
        EXPECT_EQ(drawn[0].markersize, 10);
        EXPECT_FLOAT_EQ(drawn[0].y[0], 50.0f);
    }
}

TEST(section_marks, grid_lines_start_on_a_multiple_below_the_axis) {
    section_fixture f;
    f.model.profile_grid_spacing = 300.0f;
    f.model.depth_grid_spacing = 250.0f;
    f.graph.xaxismin = 100.0f;
    f.draw();
    const auto lines = f.graph.lines();
    // x: 0 (round(1/3) = 0), 300, 600, 900; y: -500 (round(-1.6) = -2), -250, 0.
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_FLOAT_EQ(lines[0].x[0], 0.0f);
    EXPECT_FLOAT_EQ(lines[3].x[0], 900.0f);
    EXPECT_FLOAT_EQ(lines[4].y[0], -500.0f);
    EXPECT_EQ(lines[4].colour, colour_black);
}

TEST(section_marks, cylinder_label_shows_name_and_burial_depth) {
    section_fixture f;
    f.model.dtm = 4;
    body_record& b = add_body(f.model, cylinder_pipe, 800.0f, -50.0f);
    b.width.value = 40.0f;
    b.name = "Pipe";
    f.options.current_body = 1;
    f.options.show_body_label = true;
    f.draw();
    const auto texts = f.graph.texts();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0].text, "Pipe");
    // 40 - (-50) - 40: the depth of the cylinder's top below the ground.
    EXPECT_EQ(texts[1].text, "Burial depth: 50.00");
    const float u = 12.0f / (400.0f / 500.0f);
    EXPECT_NEAR(texts[1].y[0], -50.0f - 2.0f * u, 1e-3f);
    // Right of the centre: the label goes left by the longer text's width.
    const float w = text_width("Burial depth: 50.00", 1.0f);
    EXPECT_NEAR(texts[0].x[0], 800.0f - 40.0f - (w + 2.0f) * u, 1e-2f);
}

TEST(section_view, no_stations_draw_nothing_and_station_search_holds_to_the_profile) {
    model_record empty;
    reset_model(empty);
    graph_view_state view;
    recording_graph_control g;
    for (int i = 0; i < graph_count; ++i)
        display_maginv_model(empty, view, {&g, &g, &g, &g, &g}, {}, 0, i);
    EXPECT_TRUE(g.calls.empty());

    const model_record model = line_model(11, 10.0f);
    const std::pair<float, int> searches[] = {{-5.0f, 1},  {0.0f, 1},    {25.0f, 3},  {30.0f, 4},
                                              {95.0f, 10}, {100.0f, 11}, {500.0f, 11}};
    for (const auto& [distance, station] : searches)
        EXPECT_EQ(station_at_distance(model.profile, distance), station) << distance;
}

}  // namespace
}  // namespace trensil
