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

    body_record& body(int type, double east, double north, float width = 50.0f) {
        body_record& b = add_body(model, type, 0.0f, 0.0f);
        b.east = east;
        b.north = north;
        b.width.value = width;
        return b;
    }
    void draw() {
        graph.forget();
        display_plan_view(model, graph, options);
    }
};

TEST(plan_view, square_axes_about_the_longer_range) {
    plan_fixture f;
    f.draw();
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

    // The same line turned to run north takes the north range.
    profile_block& p = f.model.profile;
    for (int i = 1; i <= p.num_stations; ++i) {
        p.location(easting_row, i) = 1000.0;
        p.location(northing_row, i) = 5000.0 + 10.0 * (i - 1);
    }
    p.xmin = p.xmax = 1000.0;
    p.ymin = 5000.0;
    p.ymax = 6000.0;
    f.draw();
    EXPECT_LE(f.graph.xaxismin, 500.0f);
    EXPECT_GE(f.graph.xaxismax, 1500.0f);
    EXPECT_NEAR(f.graph.yaxismin, 4950.0f, 1e-1f);
}

TEST(plan_view, footprints_are_clipped_to_the_view) {
    plan_fixture f;
    f.body(thin_sheet, 1500.0, 5000.0, 20.0f);  // unbounded along north
    f.body(thick_sheet, 1200.0, 5000.0).length.value = 200.0f;
    f.body(sphere_body, 1700.0, 5000.0);
    body_record& pipe = f.body(cylinder_pipe, 1500.0, 5000.0, 30.0f);
    pipe.length.value = 400.0f;
    f.body(thick_sheet, 90000.0, 5000.0);  // its line misses the view
    f.draw();

    const auto polygons = f.graph.polygons();
    ASSERT_EQ(polygons.size(), 3u);
    // The unbounded sheet's 200000 line is cut at the view's edges.
    EXPECT_NEAR(polygons[0].y[0], f.graph.yaxismin, 1e-2f);
    EXPECT_NEAR(polygons[0].y[1], f.graph.yaxismax, 1e-2f);
    EXPECT_NEAR(polygons[0].x[2], 1520.0f, 1e-3f);
    // The strike-limited sheet keeps its own length.
    EXPECT_NEAR(polygons[1].y[0], 4900.0f, 1e-2f);
    EXPECT_NEAR(polygons[1].y[1], 5100.0f, 1e-2f);
    EXPECT_EQ(f.model.body(2).display_index, 2);
    // A cylinder's footprint is centred and twice as broad as its radius.
    EXPECT_NEAR(polygons[2].x[0], 1470.0f, 1e-3f);
    EXPECT_NEAR(polygons[2].x[2], 1530.0f, 1e-3f);
    EXPECT_NEAR(polygons[2].y[1] - polygons[2].y[0], 400.0f, 1e-2f);
    // The sphere and the body outside the view have only their marks, in green.
    const auto marks = f.graph.markers();
    ASSERT_EQ(marks.size(), 5u);
    EXPECT_EQ(marks[2].colour, colour_green);
    EXPECT_EQ(marks[4].colour, colour_green);

    f.options.current_body = 5;
    f.options.highlight_on = true;
    f.draw();
    EXPECT_EQ(f.graph.markers().back().colour, colour_red);
    f.options.current_body = 1;
    f.draw();
    EXPECT_EQ(f.graph.polygons()[0].fill, colour_red);
    EXPECT_EQ(f.graph.markers()[0].colour, colour_black);
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
