#include "workspace/graph_view.h"

#include <gtest/gtest.h>

#include "model_fixture.h"
#include "workspace/graph_display.h"
#include "workspace/recording_graph_control.h"

namespace trensil {
namespace {

using testing_models::line_model;

struct graphs_fixture {
    model_record model = line_model(101, 10.0f);  // 0 .. 1000
    graph_view_state view;
    std::array<recording_graph_control, graph_count> controls;
    graph_array graphs{};

    graphs_fixture() {
        for (int i = 0; i < graph_count; ++i) graphs[i] = &controls[i];
        setup_graph_data_ranges(model, view);
        for (int i = 0; i < graph_count; ++i)
            display_maginv_model(model, view, graphs, section_options{}, 0, i);
    }
};

TEST(graph_ranges, computed_channels_do_not_widen_and_flat_data_widen_by_one) {
    model_record model = line_model(5, 10.0f);
    profile_block& p = model.profile;
    for (int i = 1; i <= 5; ++i) {
        p.grav_channels(observed_level, i) = 1.0f;
        p.grav_channels(computed_level, i) = 50.0f;
        p.mag_channels(observed_vertical_gradient, i) = 0.5f;
        p.mag_channels(computed_vertical_gradient, i) = 9.0f;
        p.mag_channels(computed_level, i) = 90.0f;
    }
    p.mag_channels(computed_vertical_gradient, 1) = 500.0f;  // seeds the magnetic range
    model.channel_valid[2] = -1;
    graph_view_state view;
    setup_graph_data_ranges(model, view);
    EXPECT_FLOAT_EQ(p.mag_min, 90.0f);
    EXPECT_FLOAT_EQ(p.mag_max, 500.0f);
    EXPECT_FLOAT_EQ(view.mag_gradient_min, 0.5f);
    EXPECT_FLOAT_EQ(view.mag_gradient_max, 0.5f);
    EXPECT_FLOAT_EQ(p.grav_max, 1.0f);
    ASSERT_EQ(view.plots[0].rows(), 5);
    EXPECT_DOUBLE_EQ(view.plots[0].x[4], 40.0);
    EXPECT_DOUBLE_EQ(view.plots[4].y[0][0], 40.0);  // the ground line

    // Valid ranges are not rebuilt.
    p.mag_channels(observed_level, 3) = -1000.0f;
    setup_graph_data_ranges(model, view);
    EXPECT_FLOAT_EQ(p.mag_min, 90.0f);

    // Flat data widen by one each side.
    model_record flat = line_model(5, 10.0f);
    for (int i = 1; i <= 5; ++i) flat.profile.mag_channels(observed_level, i) = 7.0f;
    graph_view_state flat_view;
    setup_graph_data_ranges(flat, flat_view);
    recording_graph_control g;
    display_maginv_model(flat, flat_view, {&g, nullptr, nullptr, nullptr, nullptr}, {}, 0, 0);
    EXPECT_FLOAT_EQ(g.yaxismin, 6.0f);
    EXPECT_FLOAT_EQ(g.yaxismax, 8.0f);
    EXPECT_FLOAT_EQ(flat_view.graph_yspan[0], 2.0f);
}

TEST(graph_ranges, inversion_window_lines_inside_the_profile_only) {
    graphs_fixture f;
    f.model.profile.inversion_first_station = 11;
    f.model.profile.inversion_last_station = 91;
    f.controls[0].forget();
    display_maginv_model(f.model, f.view, f.graphs, {}, 1, 0);
    const auto lines = f.controls[0].lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_FLOAT_EQ(lines[0].x[0], 100.0f);
    EXPECT_FLOAT_EQ(lines[1].x[0], 900.0f);
    EXPECT_EQ(lines[0].colour, colour_blue);
}

TEST(graph_zoom, ratio_sets_view_and_pan_range) {
    graphs_fixture f;
    EXPECT_FLOAT_EQ(f.view.view_width, 1000.0f);
    EXPECT_FLOAT_EQ(f.view.view_centre, 500.0f);

    f.view.zoom_ratio = 1.25f;
    f.view.pan_position = 5;
    calculate_zoom_settings(f.model, f.view);
    EXPECT_EQ(f.view.pan_max, 2);  // round(2.5) to even
    EXPECT_EQ(f.view.pan_min, -2);
    EXPECT_FLOAT_EQ(f.view.view_width, 800.0f);
    // The centre is worked out from the position before it is held to the bar's range.
    EXPECT_FLOAT_EQ(f.view.view_centre, (200.0f * 5.0f / 2.0f) / 2.0f + 500.0f);
    EXPECT_EQ(f.view.pan_position, 2);
    EXPECT_EQ(f.view.pan_value, 2);

    update_graph_display(f.model, f.view, f.graphs);
    for (const auto& c : f.controls) {
        EXPECT_FLOAT_EQ(c.xaxismin, f.view.view_centre - 400.0f);
        EXPECT_FLOAT_EQ(c.xaxismax, f.view.view_centre + 400.0f);
    }

    display_pan_values(f.view);
    EXPECT_EQ(f.view.pan_max, 25);
    EXPECT_EQ(f.view.pan_value, 2);
}

TEST(graph_zoom, combo_entries_and_typed_text) {
    float ratio = 3.0f;
    for (const char* refused : {"99", "10001", "150%"})
        EXPECT_FALSE(zoom_ratio_for_text(refused, ratio));
    EXPECT_FLOAT_EQ(ratio, 3.0f);
    ASSERT_TRUE(zoom_ratio_for_text("1000", ratio));
    EXPECT_FLOAT_EQ(ratio, zoom_ratio_for_entry(8, "1000%"));
    EXPECT_FLOAT_EQ(zoom_ratio_for_entry(0, "400%"), 1.0f);
    EXPECT_FLOAT_EQ(zoom_ratio_for_entry(2, "150%"), 1.5f);
}

TEST(graph_zoom, aspect_ratio_fixes_the_section_bottom_from_its_width) {
    graphs_fixture f;
    f.model.maintain_aspect_ratio = 1;
    const float top = f.view.graph_ymax[4];
    update_graph_display(f.model, f.view, f.graphs);
    // 1000 across 800 units: 400 units high show 500.
    EXPECT_FLOAT_EQ(f.view.graph_ymin[4], top - 500.0f);
    EXPECT_FLOAT_EQ(f.controls[4].yaxismax, top);
}

TEST(graph_vertical_view, zoom_levels_stop_at_the_table_ends) {
    graphs_fixture f;
    const float span = f.view.graph_ymax[0] - f.view.graph_ymin[0];
    EXPECT_EQ(f.view.graph_zoom_level[0], 1);
    for (int i = 0; i < 10; ++i) zoom_graph_vertically(f.view, f.controls[0], 0, true);
    EXPECT_EQ(f.view.graph_zoom_level[0], 8);
    EXPECT_FLOAT_EQ(f.view.graph_yspan[0], span / 10.0f);
    f.controls[0].forget();
    zoom_graph_vertically(f.view, f.controls[0], 0, true);  // at the top: axes reapplied
    EXPECT_EQ(f.controls[0].of(recording_graph_control::call_kind::redraw).size(), 1u);
    for (int i = 0; i < 10; ++i) zoom_graph_vertically(f.view, f.controls[0], 0, false);
    EXPECT_EQ(f.view.graph_zoom_level[0], 0);
    EXPECT_FLOAT_EQ(f.view.graph_yspan[0], span);
}

TEST(graph_vertical_view, section_zooms_about_its_top_and_pans_by_a_quarter) {
    graphs_fixture f;
    const float top = f.controls[4].yaxismax;
    zoom_graph_vertically(f.view, f.controls[4], 4, true);  // level 1 -> 2: factor 1.5
    EXPECT_NEAR(f.controls[4].yaxismax, top, 1e-3f);
    EXPECT_NEAR(f.view.graph_yspan[4], (f.view.graph_ymax[4] - f.view.graph_ymin[4]) / 1.5f, 1e-3f);

    const float centre = f.view.graph_ycentre[1];
    pan_graph_vertically(f.view, f.controls[1], 1, true);
    EXPECT_FLOAT_EQ(f.view.graph_ycentre[1], centre + f.view.graph_yspan[1] / 4.0f);
    pan_graph_vertically(f.view, f.controls[1], 1, false);
    EXPECT_FLOAT_EQ(f.view.graph_ycentre[1], centre);
}

}  // namespace
}  // namespace trensil
