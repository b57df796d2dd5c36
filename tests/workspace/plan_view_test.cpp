#include "workspace/plan_view.h"

#include <gtest/gtest.h>

#include "model_fixture.h"
#include "workspace/recording_graph_control.h"

namespace trensil {
namespace {

using testing_models::add_body;
using testing_models::line_model;

// Stations from (1000, 5000) east to (2000, 5000); bodies at their reference points.
struct plan_fixture {
    model_record model = line_model(101, 10.0f);
    recording_graph_control graph;
    section_options options;

    body_record& body(int type, double east, double north) {
        body_record& b = add_body(model, type, 0.0f, 0.0f);
        b.east = east;
        b.north = north;
        return b;
    }
};

TEST(plan_view, square_axes_about_the_longer_range) {
    plan_fixture f;
    display_plan_view(f.model, f.graph, f.options);
    // East 1000 .. 2000 gives a 150 step; North is widened to the same range about 5000.
    EXPECT_NEAR(f.graph.xaxismin, 900.0f, 1e-2f);
    EXPECT_NEAR(f.graph.xaxismax, 2100.0f, 1e-2f);
    EXPECT_NEAR(f.graph.yaxismax - f.graph.yaxismin, 1050.0f, 1e-1f);
    EXPECT_LE(f.graph.yaxismin, 4500.0f);
    EXPECT_GE(f.graph.yaxismax, 5500.0f);
    EXPECT_EQ(f.graph.markersize, 25);
    EXPECT_TRUE(f.graph.equal_scales);
    EXPECT_EQ(f.graph.loaded.rows(), 101);
    EXPECT_DOUBLE_EQ(f.graph.loaded.y[0][100], 5000.0);
}

TEST(plan_view, line_running_north_takes_the_north_range) {
    plan_fixture f;
    profile_block& p = f.model.profile;
    for (int i = 1; i <= p.num_stations; ++i) {
        p.location(easting_row, i) = 1000.0;
        p.location(northing_row, i) = 5000.0 + 10.0 * (i - 1);
    }
    p.xmin = p.xmax = 1000.0;
    p.ymin = 5000.0;
    p.ymax = 6000.0;
    display_plan_view(f.model, f.graph, f.options);
    EXPECT_LE(f.graph.xaxismin, 500.0f);
    EXPECT_GE(f.graph.xaxismax, 1500.0f);
    EXPECT_NEAR(f.graph.yaxismin, 4950.0f, 1e-1f);
}

TEST(plan_view, footprints_are_clipped_to_the_view) {
    plan_fixture f;
    f.body(thin_sheet, 1500.0, 5000.0).width.value = 20.0f;  // unbounded along north
    body_record& limited = f.body(thick_sheet, 1200.0, 5000.0);
    limited.length.value = 200.0f;
    limited.width.value = 50.0f;
    f.body(sphere_body, 1700.0, 5000.0);
    display_plan_view(f.model, f.graph, f.options);

    const auto polygons = f.graph.polygons();
    ASSERT_EQ(polygons.size(), 2u);
    // The unbounded sheet's 200000 line is cut at the view's edges.
    EXPECT_NEAR(polygons[0].y[0], f.graph.yaxismin, 1e-2f);
    EXPECT_NEAR(polygons[0].y[1], f.graph.yaxismax, 1e-2f);
    EXPECT_NEAR(polygons[0].x[2], 1520.0f, 1e-3f);
    // The strike-limited sheet keeps its own length.
    EXPECT_NEAR(polygons[1].y[0], 4900.0f, 1e-2f);
    EXPECT_NEAR(polygons[1].y[1], 5100.0f, 1e-2f);
    EXPECT_EQ(f.model.body(1).display_index, 1);
    EXPECT_EQ(f.model.body(2).display_index, 2);
    // The sphere has only its mark, in green.
    const auto marks = f.graph.markers();
    ASSERT_EQ(marks.size(), 3u);
    EXPECT_EQ(marks[2].colour, colour_green);
}

TEST(plan_view, missing_body_shows_a_green_mark_and_highlight_is_red) {
    plan_fixture f;
    f.body(thick_sheet, 1500.0, 5000.0);
    body_record& far = f.body(thick_sheet, 90000.0, 5000.0);  // its line misses the view
    far.strike.value = 0.0f;
    display_plan_view(f.model, f.graph, f.options);
    EXPECT_EQ(f.graph.polygons().size(), 1u);
    EXPECT_EQ(f.graph.markers().back().colour, colour_green);

    f.options.current_body = 2;
    f.options.highlight_on = true;
    f.graph.forget();
    display_plan_view(f.model, f.graph, f.options);
    EXPECT_EQ(f.graph.markers().back().colour, colour_red);
    f.options.current_body = 1;
    f.graph.forget();
    display_plan_view(f.model, f.graph, f.options);
    EXPECT_EQ(f.graph.polygons()[0].fill, colour_red);
    EXPECT_EQ(f.graph.markers()[0].colour, colour_black);
}

TEST(plan_view, cylinder_footprint_is_centred_and_twice_as_broad) {
    plan_fixture f;
    body_record& pipe = f.body(cylinder_pipe, 1500.0, 5000.0);
    pipe.width.value = 30.0f;
    pipe.length.value = 400.0f;
    display_plan_view(f.model, f.graph, f.options);
    const auto polygon = f.graph.polygons().at(0);
    EXPECT_NEAR(polygon.x[0], 1470.0f, 1e-3f);
    EXPECT_NEAR(polygon.x[2], 1530.0f, 1e-3f);
    EXPECT_NEAR(polygon.y[1] - polygon.y[0], 400.0f, 1e-2f);
}

TEST(plan_view, no_stations_clears_and_stops) {
    model_record model;
    reset_model(model);
    recording_graph_control graph;
    display_plan_view(model, graph, {});
    ASSERT_EQ(graph.calls.size(), 2u);
    EXPECT_EQ(graph.calls[1].kind, recording_graph_control::call_kind::clear_objects);
}

}  // namespace
}  // namespace trensil
