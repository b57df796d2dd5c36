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
using kind = recording_graph_control::call_kind;

// The section graph with fixed axes, as the axis setting would leave them.
struct section_fixture {
    recording_graph_control graph;
    section_options options;

    section_fixture() {
        graph.xaxismin = 0.0f;
        graph.xaxismax = 1050.0f;
        graph.yaxismin = -400.0f;
        graph.yaxismax = 100.0f;
    }
    std::vector<recording_graph_control::call> draw(model_record& model) {
        graph.forget();
        draw_section_objects(model, graph, options,
                             model.profile.profile_distance(model.profile.num_stations));
        return graph.polygons();
    }
};

void expect_corners(const recording_graph_control::call& polygon,
                    std::initializer_list<std::pair<float, float>> corners, float tolerance) {
    ASSERT_EQ(polygon.x.size(), corners.size());
    std::size_t i = 0;
    for (const auto& [x, y] : corners) {
        EXPECT_NEAR(polygon.x[i], x, tolerance) << "corner " << i + 1;
        EXPECT_NEAR(polygon.y[i], y, tolerance) << "corner " << i + 1;
        ++i;
    }
}

TEST(section_vertical_scale, one_to_one_below_the_stored_top) {
    recording_graph_control graph;  // 800 x 400
    float bottom = 0, top = 0;

    model_record long_line = line_model(11, 10.0f);  // 100 long: top + 2.5
    add_body(long_line, thick_sheet, 50.0f, -30.0f);
    section_vertical_seed(long_line, graph, bottom, top);
    EXPECT_FLOAT_EQ(top, 42.5f);
    EXPECT_FLOAT_EQ(bottom, 42.5f - 400.0f * 100.0f / 800.0f);

    // Between 10 and 100 the shallowest-reaching top is added to the bottom.
    model_record mid = line_model(6, 10.0f);
    add_body(mid, thick_sheet, 20.0f, -30.0f);
    add_body(mid, thick_sheet, 30.0f, -10.0f);
    section_vertical_seed(mid, graph, bottom, top);
    EXPECT_FLOAT_EQ(top, 40.25f);
    EXPECT_FLOAT_EQ(bottom, 40.25f - 25.0f - 30.0f);

    model_record short_line = line_model(6, 1.0f);
    section_vertical_seed(short_line, graph, bottom, top);
    EXPECT_FLOAT_EQ(top, 40.1f);
    EXPECT_FLOAT_EQ(bottom, 40.1f - 2.5f);
}

TEST(section_vertical_scale, top_is_the_stored_maximum_or_zero) {
    recording_graph_control graph;
    float bottom = 0, top = 0;
    // Sensors at 500 yet the stored maximum 40 decides.
    model_record sensors = line_model(11, 10.0f, 500.0, 40.0);
    sensors.zpos = 3;
    section_vertical_seed(sensors, graph, bottom, top);
    EXPECT_FLOAT_EQ(top, 42.5f);

    // Below sea level with no sensor column: dtm_max + sensor_offset < 0 gives 0.
    model_record low = line_model(11, 10.0f, -90.0, -100.0);
    section_vertical_seed(low, graph, bottom, top);
    EXPECT_FLOAT_EQ(top, 2.5f);
}

TEST(section_vertical_scale, axes_rounded_with_eight_ticks) {
    model_record model = line_model(101, 10.0f);  // 1000 long
    graph_view_state view;
    setup_graph_data_ranges(model, view);
    recording_graph_control g;
    graph_array graphs{nullptr, nullptr, nullptr, nullptr, &g};
    display_maginv_model(model, view, graphs, section_options{}, 0, 4);
    // Seed -457.5 .. 42.5 (500 at one to one) rounds to an 80 step.
    EXPECT_NEAR(g.y_tick_step, 80.0f, 1e-3f);
    EXPECT_NEAR(g.yaxismin, -480.0f, 1e-2f);
    EXPECT_NEAR(g.yaxismax, 80.0f, 1e-2f);
    EXPECT_NEAR(view.graph_yspan[4], 560.0f, 1e-2f);
    EXPECT_EQ(view.graph_zoom_level[4], 1);
}

TEST(section_outline, dipping_sheet_and_vertical_sheet) {
    model_record model = line_model(106, 10.0f);
    body_record& dipping = add_body(model, thick_sheet, 500.0f, 0.0f);
    dipping.dip.value = 45.0f;
    dipping.width.value = 20.0f;
    dipping.depth_extent.value = 100.0f;
    body_record& upright = add_body(model, thin_sheet, 200.0f, -10.0f);
    upright.width.value = 5.0f;
    upright.depth_extent.value = 50.0f;

    section_fixture f;
    const auto polygons = f.draw(model);
    ASSERT_EQ(polygons.size(), 2u);
    expect_corners(polygons[0], {{500, 0}, {520, 0}, {620, -100}, {600, -100}, {500, 0}}, 1e-3f);
    expect_corners(polygons[1], {{200, -10}, {205, -10}, {205, -60}, {200, -60}, {200, -10}},
                   1e-4f);
    EXPECT_EQ(polygons[0].colour, colour_black);
    EXPECT_EQ(polygons[0].fill, colour_blue);  // the default body colour
    EXPECT_EQ(polygons[0].width, 1);
    EXPECT_EQ(model.body(1).display_index, 1);
    EXPECT_EQ(model.body(2).display_index, 2);
}

TEST(section_outline, sheet_without_depth_extent_reaches_the_bottom_axis) {
    model_record model = line_model(106, 10.0f);
    add_body(model, thin_sheet, 500.0f, 0.0f).depth_extent.value = 0.0f;
    section_fixture f;
    EXPECT_FLOAT_EQ(f.draw(model)[0].y[3], -400.0f);
    f.graph.yaxismin = -250.0f;
    EXPECT_FLOAT_EQ(f.draw(model)[0].y[3], -250.0f);
}

TEST(section_outline, nearly_flat_dip_shifts_by_a_hundred_extents) {
    model_record model = line_model(106, 10.0f);
    body_record& b = add_body(model, thin_sheet, 0.0f, 0.0f);
    b.dip.value = 0.1f;
    b.depth_extent.value = 2.0f;
    section_fixture f;
    EXPECT_NEAR(f.draw(model)[0].x[3], 200.0f, 1e-3f);
}

TEST(section_outline, sloping_top_rises_across_the_sheet) {
    model_record model = line_model(106, 10.0f);
    body_record& upright = add_body(model, thick_sheet, 500.0f, 0.0f);
    upright.width.value = 20.0f;
    upright.depth_extent.value = 100.0f;
    upright.slope.value = 10.0f;
    body_record& dipping = add_body(model, thick_sheet, 300.0f, 0.0f);
    dipping.width.value = 20.0f;
    dipping.depth_extent.value = 100.0f;
    dipping.slope.value = 10.0f;
    dipping.dip.value = 60.0f;

    section_fixture f;
    const auto polygons = f.draw(model);
    const float rise = 20.0f * std::tan(10.0f * 0.017453292f);
    expect_corners(polygons[0], {{500, 0}, {520, rise}, {520, -100 + rise}, {500, -100}, {500, 0}},
                   1e-3f);
    // The run along the profile shortens so that the top meets the dipping far side.
    const float tand = std::tan(60.0f * 0.017453292f);
    const float run = 20.0f / (1.0f + std::tan(10.0f * 0.017453292f) / tand);
    const float shift = 100.0f / tand;
    expect_corners(polygons[1],
                   {{300, 0},
                    {300 + run, run * std::tan(10.0f * 0.017453292f)},
                    {300 + shift + run, -100 + run * std::tan(10.0f * 0.017453292f)},
                    {300 + shift, -100},
                    {300, 0}},
                   1e-3f);
}

TEST(section_outline, edge_runs_to_the_end_of_the_profile) {
    model_record model = line_model(106, 10.0f);
    add_body(model, edge_body, 500.0f, 0.0f).depth_extent.value = 100.0f;
    section_fixture f;
    const auto polygon = f.draw(model)[0];
    EXPECT_FLOAT_EQ(polygon.x[1], 1050.0f);
    EXPECT_FLOAT_EQ(polygon.x[2], 1050.0f);
}

TEST(section_outline, strike_limited_body_beyond_its_end_is_displaced_and_marked) {
    model_record model = line_model(106, 10.0f);
    // Strike 30 across an east-running line: sin 120 degrees along the profile, cos -0.5.
    for (const float offset : {150.0f, -150.0f}) {
        body_record& b = add_body(model, thick_sheet, 500.0f, 0.0f);
        b.strike.value = 30.0f;
        b.width.value = 20.0f;
        b.depth_extent.value = 100.0f;
        b.length.value = 200.0f;
        b.offset.value = offset;
    }
    // Within its length: no mark.
    body_record& inside = add_body(model, thick_sheet, 500.0f, 0.0f);
    inside.strike.value = 30.0f;
    inside.length.value = 200.0f;
    inside.offset.value = 90.0f;

    section_fixture f;
    const auto polygons = f.draw(model);
    ASSERT_EQ(polygons.size(), 3u);
    // offset 150: s = (150 - 100) x -0.5 = -25, green.
    EXPECT_EQ(polygons[0].colour, colour_green);
    EXPECT_EQ(polygons[0].width, 4);
    EXPECT_NEAR(polygons[0].x[0], 500.0f - 25.0f - 2.0f, 1e-3f);
    EXPECT_NEAR(polygons[0].x[1], 500.0f - 25.0f + 20.0f / std::sin(2.0943951f), 1e-2f);
    // offset -150: s = +25, blue; the near corners move left by 2 in both cases.
    EXPECT_EQ(polygons[1].colour, colour_blue);
    EXPECT_NEAR(polygons[1].x[0], 500.0f + 25.0f - 2.0f, 1e-3f);
    EXPECT_NEAR(polygons[1].x[4], polygons[1].x[0], 1e-6f);
    EXPECT_EQ(polygons[2].colour, colour_black);
    EXPECT_EQ(polygons[2].width, 1);
}

TEST(section_outline, plunge_lifts_a_displaced_body) {
    model_record model = line_model(106, 10.0f);
    body_record& b = add_body(model, thick_sheet, 500.0f, 0.0f);
    b.strike.value = 30.0f;
    b.length.value = 200.0f;
    b.offset.value = 150.0f;
    b.plunge.value = 30.0f;
    b.depth_extent.value = 100.0f;
    section_fixture f;
    // sz = -sin(30) x 50 before s is turned onto the profile.
    EXPECT_NEAR(f.draw(model)[0].y[0], -25.0f, 1e-3f);
}

TEST(section_outline, cylinder_solid_and_shell) {
    model_record model = line_model(106, 10.0f);
    body_record& solid = add_body(model, cylinder_pipe, 300.0f, -50.0f);
    solid.width.value = 40.0f;
    body_record& shell = add_body(model, cylinder_pipe, 700.0f, -50.0f);
    shell.width.value = 40.0f;
    shell.shell_thickness = 5.0f;

    section_fixture f;
    const auto polygons = f.draw(model);
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
    body_record& sheet = add_body(model, thick_sheet, 100.0f, 0.0f);
    sheet.length.value = 100.0f;
    sheet.offset.value = 80.0f;
    sheet.strike.value = 30.0f;
    add_body(model, cylinder_pipe, 500.0f, -50.0f);
    EXPECT_EQ(f.draw(model).back().width, 4);
}

TEST(section_outline, along_profile_body_and_sphere_are_marked_not_outlined) {
    model_record model = line_model(106, 10.0f);
    add_body(model, thick_sheet, 100.0f, 0.0f);
    add_body(model, thick_sheet, 200.0f, 0.0f).strike.value = 90.0f;  // along the line
    add_body(model, sphere_body, 300.0f, -20.0f);
    add_body(model, thin_sheet, 400.0f, 0.0f);
    section_fixture f;
    EXPECT_EQ(f.draw(model).size(), 2u);
    EXPECT_EQ(f.graph.markers().size(), 106u + 4u);
    EXPECT_EQ(model.body(1).display_index, 1);
    EXPECT_EQ(model.body(2).display_index, 4);  // polygon 2 is body 4
}

TEST(section_colours, highlight_white_body_and_black_reference_mark) {
    model_record model = line_model(106, 10.0f);
    add_body(model, thick_sheet, 100.0f, 0.0f).colour = colour_white;
    add_body(model, thick_sheet, 300.0f, 0.0f);
    section_fixture f;
    f.options.current_body = 2;
    f.options.highlight_on = true;
    const auto polygons = f.draw(model);
    EXPECT_EQ(polygons[0].fill, no_fill);
    EXPECT_EQ(polygons[1].fill, colour_red);
    EXPECT_EQ(polygons[1].colour, colour_red);
    const auto marks = f.graph.markers();
    EXPECT_EQ(marks.back().colour, colour_black);
    EXPECT_EQ(marks.back().markersize, 15);
}

TEST(section_marks, sensor_stride_halves_above_128_stations) {
    for (const auto& [stations, marks] : {std::pair{128, 128u}, std::pair{129, 65u}}) {
        model_record model = line_model(stations, 1.0f);
        section_fixture f;
        f.draw(model);
        const auto drawn = f.graph.markers();
        ASSERT_EQ(drawn.size(), marks) << stations;
        EXPECT_EQ(drawn[0].colour, colour_blue);
        EXPECT_EQ(drawn[0].markersize, 10);
        EXPECT_FLOAT_EQ(drawn[0].y[0], 50.0f);
    }
}

TEST(section_grid, lines_start_on_a_multiple_below_the_axis) {
    model_record model = line_model(106, 10.0f);
    model.profile_grid_spacing = 300.0f;
    model.depth_grid_spacing = 250.0f;
    section_fixture f;
    f.graph.xaxismin = 100.0f;
    f.draw(model);
    const auto lines = f.graph.lines();
    // x: 0 (round(1/3) = 0), 300, 600, 900; y: -500 (round(-1.6) = -2), -250, 0.
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_FLOAT_EQ(lines[0].x[0], 0.0f);
    EXPECT_FLOAT_EQ(lines[3].x[0], 900.0f);
    EXPECT_FLOAT_EQ(lines[4].y[0], -500.0f);
    EXPECT_EQ(lines[4].colour, colour_black);
}

TEST(section_label, cylinder_label_shows_name_and_burial_depth) {
    model_record model = line_model(106, 10.0f, 50.0, 40.0);
    model.dtm = 4;
    body_record& b = add_body(model, cylinder_pipe, 800.0f, -50.0f);
    b.width.value = 40.0f;
    b.name = "Pipe";
    section_fixture f;
    f.options.current_body = 1;
    f.options.show_body_label = true;
    f.draw(model);
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

TEST(section_view, nothing_is_drawn_without_stations) {
    model_record model;
    reset_model(model);
    graph_view_state view;
    recording_graph_control g;
    graph_array graphs{&g, &g, &g, &g, &g};
    for (int i = 0; i < graph_count; ++i)
        display_maginv_model(model, view, graphs, section_options{}, 0, i);
    EXPECT_TRUE(g.calls.empty());
}

TEST(section_view, station_search_holds_to_the_profile) {
    const model_record model = line_model(11, 10.0f);
    EXPECT_EQ(station_at_distance(model.profile, -5.0f), 1);
    EXPECT_EQ(station_at_distance(model.profile, 0.0f), 1);
    EXPECT_EQ(station_at_distance(model.profile, 25.0f), 3);
    EXPECT_EQ(station_at_distance(model.profile, 30.0f), 4);
}

}  // namespace
}  // namespace trensil
