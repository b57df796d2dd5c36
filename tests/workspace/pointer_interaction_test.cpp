// The pointer on the graphs: status readouts, picking, double click, the inversion limit markers
// and the splitters.
#include "workspace/pointer_interaction.h"

#include <gtest/gtest.h>

#include "model_fixture.h"
#include "workspace/body_list.h"
#include "workspace_fixture.h"

namespace trensil {
namespace {

using testing_models::add_body;
using testing_models::line_model;

// A line of 101 stations from 0 to 1000 with two thick sheets and a sphere, on show.
struct shown_line : workspace_fixture {
    shown_line() {
        model_record model = line_model(101, 10.0f);
        add_body(model, thick_sheet, 200.0f, -30.0f);
        add_body(model, sphere_body, 500.0f, -30.0f);  // no outline
        add_body(model, thick_sheet, 700.0f, -30.0f);
        show(std::move(model));
    }
    std::string panel(int i) const { return view.status_text(i); }
};

TEST(pointer_readout, panels_follow_the_pointer_on_each_graph) {
    shown_line f;
    pointer_move_on_model(f.ws, 0, false, 123.456, 56.789);
    EXPECT_EQ(f.panel(1), "Residual Mag Data");
    EXPECT_EQ(f.panel(4), "123.46");
    EXPECT_EQ(f.panel(5), "56.7890");
    EXPECT_EQ(f.panel(2), "1120.0");  // station 13 at distance 120
    EXPECT_EQ(f.panel(3), "5000.0");
    pointer_move_on_model(f.ws, 3, false, 5000.0, 0.0);  // past the last station
    EXPECT_EQ(f.panel(1), "Vertical Grav Gradient");
    EXPECT_EQ(f.panel(2), "2000.0");
    pointer_move_on_model(f.ws, 1, true, 0.0, 0.0);
    EXPECT_EQ(f.panel(1), "Vertical Mag Gradient");
    EXPECT_EQ(f.panel(4), "");
    EXPECT_EQ(f.panel(5), "");
    EXPECT_EQ(f.panel(2), "2000.0");  // kept from the last move inside

    // The section: its shape over its axes' spans. 800 x 400 over 1000 x 250 is 2.
    recording_graph_control& section = f.controls[section_graph];
    section.xaxismin = 0, section.xaxismax = 1000, section.yaxismin = -200, section.yaxismax = 50;
    pointer_move_on_model(f.ws, section_graph, false, 10.0, 0.0);
    EXPECT_EQ(f.panel(1), "Model (Vertical stretch 2.00");
    section.yaxismin = section.yaxismax;
    pointer_move_on_model(f.ws, 2, false, 10.0, 0.0);
    pointer_move_on_model(f.ws, section_graph, false, 10.0, 0.0);
    EXPECT_EQ(f.panel(1), "Residual Grav Data");  // the section kept the text it found

    pointer_move_on_plan(f.ws, false, 1234.5678, 5000.25);
    EXPECT_EQ(f.panel(1), "Plan View");
    EXPECT_EQ(f.panel(2), "1234.6");
    EXPECT_EQ(f.panel(4), "1234.57");
    EXPECT_EQ(f.panel(5), "5000.25");
    pointer_move_on_plan(f.ws, true, 0.0, 0.0);
    for (int i = 2; i <= 5; ++i) EXPECT_EQ(f.panel(i), "");

    workspace_fixture one;  // a line of one station shows that station
    one.show(line_model(1));
    pointer_move_on_model(one.ws, 0, false, -50.0, 0.0);
    EXPECT_EQ(one.view.status_text(2), "1000.0");
}

TEST(pointer_picking, a_click_on_an_outline_selects_its_body) {
    shown_line f;
    ASSERT_EQ(f.controls[section_graph].polygons().size(), 2u);
    object_click_on_model(f.ws, 2, 2);  // response graphs do nothing
    EXPECT_EQ(f.current(), 1);
    object_click_on_model(f.ws, section_graph, 2);  // the second outline is body 3
    EXPECT_EQ(f.current(), 3);
    EXPECT_EQ(f.view.scrolls["HScroll_body"].value, 3);
    EXPECT_EQ(f.view.text("Text_body_name"), f.body(3).name);
    EXPECT_FALSE(f.ws.model_changed);
    object_click_on_model(f.ws, section_graph, 3);  // no third outline
    EXPECT_EQ(f.current(), 3);

    // The plan rebuilds the table from its own outlines.
    command_show_section_or_plan(f.ws);
    object_click_on_plan(f.ws, 1);
    EXPECT_EQ(f.current(), 1);
}

TEST(pointer_picking, double_click_adds_a_body_where_the_readout_points) {
    shown_line f;
    pointer_move_on_model(f.ws, section_graph, false, 432.109, -55.55555);
    double_click_on_model(f.ws, section_graph);
    ASSERT_EQ(f.ws.model.num_bodies, 4);
    EXPECT_EQ(f.current(), 4);
    EXPECT_FLOAT_EQ(f.body(4).distance.value, 432.11f);  // at the readout's rounding
    EXPECT_FLOAT_EQ(f.body(4).top.value, -55.5556f);
    EXPECT_NEAR(f.body(4).east, 1432.11, 1e-2);
    EXPECT_TRUE(f.ws.model_changed);

    double_click_on_model(f.ws, 0);  // not on the section
    EXPECT_EQ(f.ws.model.num_bodies, 4);
    pointer_move_on_model(f.ws, section_graph, true, 0.0, 0.0);
    double_click_on_model(f.ws, section_graph);  // empty readout: at distance 0
    ASSERT_EQ(f.ws.model.num_bodies, 5);
    EXPECT_FLOAT_EQ(f.body(5).distance.value, 0.0f);
    EXPECT_FLOAT_EQ(f.body(5).top.value, 0.0f);
}

// --- Inversion limit markers ------------------------------------------------------------------

// The strip: a 1000-unit track (section plot 1075 - 75) for a 1000-unit line, markers 100 wide.
struct marker_line : workspace_fixture {
    marker_line() {
        show(line_model(101, 10.0f));
        ws.pointer.limits.marker_width = 100.0f;
        ws.pointer.twips_per_pixel = 1.0f;
        controls[section_graph].control_width = 1000;
        update_inversion_limit_display(ws);
    }
    float left(int i) const { return ws.pointer.limits.left[static_cast<std::size_t>(i)]; }
    void drag(int i, float from, float to) {
        limit_marker_down(ws, i, from);
        limit_marker_move(ws, i, to);
        limit_marker_up(ws, i);
    }
};

TEST(limit_markers, markers_stand_over_the_window_ends) {
    marker_line f;
    EXPECT_FLOAT_EQ(f.ws.pointer.limits.strip_width, 1075.0f);
    EXPECT_FLOAT_EQ(f.left(0), -50.0f);
    EXPECT_FLOAT_EQ(f.left(1), 950.0f);
    EXPECT_FLOAT_EQ(f.view.boxes["Image_inversion_limit_1"].left, 950.0f);
    f.ws.model.profile.inversion_first_station = 31;  // distance 300
    f.ws.model.profile.inversion_last_station = 61;   // 600
    update_inversion_limit_display(f.ws);
    EXPECT_NEAR(f.left(0), 250.0f, 1e-3f);
    EXPECT_NEAR(f.left(1), 550.0f, 1e-3f);
    // Zoomed to 0 .. 500 by the pan: the end of the window is out of view, its marker hidden.
    f.ws.graph_view.zoom_ratio = 2.0f;
    f.ws.graph_view.pan_position = -4;
    calculate_zoom_settings(f.ws.model, f.ws.graph_view);
    update_inversion_limit_display(f.ws);
    EXPECT_TRUE(f.view.visible("Image_inversion_limit_0"));
    EXPECT_FALSE(f.view.visible("Image_inversion_limit_1"));
    EXPECT_NEAR(f.left(0), 550.0f, 1e-2f);
}

TEST(limit_markers, drags_move_the_window_within_the_track_and_clear_of_each_other) {
    // Marker 0 at -50, marker 1 at 950, both 100 wide, track end 1075 - 100 - 75 = 900.
    const std::pair<int, float> refused[] = {{0, -1.0f}, {0, 881.0f}, {1, 1.0f}};
    for (const auto& [marker, dx] : refused) {
        marker_line f;
        f.drag(marker, 0.0f, dx);
        EXPECT_FLOAT_EQ(f.left(marker), marker == 0 ? -50.0f : 950.0f) << marker << " " << dx;
        EXPECT_EQ(f.ws.model.profile.inversion_first_station, 1);
        EXPECT_FALSE(f.ws.updating_display);
    }
    marker_line f;
    f.ws.inversion.best_misfit = 12.5f;
    f.view.texts["Text_MAGINV_misfit_0"] = "3.5";
    f.drag(0, 50.0f, 352.0f);  // centre to 302: station 31
    EXPECT_EQ(f.ws.model.profile.inversion_first_station, 31);
    EXPECT_FLOAT_EQ(f.left(0), 252.0f);
    EXPECT_FLOAT_EQ(f.ws.inversion.best_misfit, undefined_value);
    EXPECT_EQ(f.view.text("Text_MAGINV_misfit_0"), "");
    EXPECT_FLOAT_EQ(f.controls[1].lines().back().x[0], 300.0f);  // every graph's window line
    f.drag(1, 0.0f, -100.0f);  // the end marker may come in, to 850
    f.drag(0, 0.0f, 478.0f);   // marker 0 stops 20 short of it
    EXPECT_FLOAT_EQ(f.left(0), 730.0f);
    f.drag(0, 0.0f, 1.0f);
    EXPECT_FLOAT_EQ(f.left(0), 730.0f);
    limit_marker_move(f.ws, 0, -300.0f);  // no button down: no drag
    EXPECT_FLOAT_EQ(f.left(0), 730.0f);
}

// --- Splitters --------------------------------------------------------------------------------

// A graph area 7060 high: 7000 shared below the first frame's top.
graph_layout area(bool mag, bool grav) {
    graph_layout layout;
    layout.area_width = 12000.0f;
    layout.area_height = 7060.0f;
    share_graph_heights(layout, mag, grav);
    return layout;
}

float top_of(const graph_layout& layout, splitter_id id) {
    return layout.splitter_top[static_cast<std::size_t>(id)];
}

TEST(splitters, first_share_gives_the_section_two_parts_in_seven_or_in_four_and_a_half) {
    const graph_layout both = area(true, true);
    EXPECT_FLOAT_EQ(both.mag_frame.height, 2500.0f);
    EXPECT_FLOAT_EQ(both.grav_frame.top, 2515.0f);  // into the first frame's bottom margin
    EXPECT_FLOAT_EQ(both.graph[section_graph].top, 4970.0f);
    EXPECT_FLOAT_EQ(both.graph[0].height, both.graph[1].height);
    EXPECT_FLOAT_EQ(both.graph[1].bottom() + frame_bottom_margin, both.mag_frame.bottom());
    const graph_layout one = area(false, true);
    EXPECT_NEAR(one.grav_frame.height, 7000.0f * 2500.0f / 4500.0f, 1e-2f);
    EXPECT_FLOAT_EQ(one.graph[section_graph].top, one.grav_frame.bottom() - 45.0f);
}

TEST(splitters, moves_inside_their_limits_only) {
    struct case_row {
        splitter_id id;
        float dy;
        bool moves;
    };
    // Magnetic frame 60 .. 2560: its splitter (at 1272.5) may go from 685 to 2160. The frame
    // splitter (2470) keeps 1024 of both frames; the section splitter (4925) 1024 above the
    // section's bottom and twice that below the first frame's top.
    const case_row cases[] = {
        {splitter_id::mag, -587.5f, true},      {splitter_id::mag, -588.0f, false},
        {splitter_id::mag, 887.5f, true},       {splitter_id::mag, 888.0f, false},
        {splitter_id::frames, -1386.0f, true},  {splitter_id::frames, -1387.0f, false},
        {splitter_id::frames, 1521.0f, true},   {splitter_id::frames, 1522.0f, false},
        {splitter_id::section, 1111.0f, true},  {splitter_id::section, 1112.0f, false},
        {splitter_id::section, -2817.0f, true}, {splitter_id::section, -2818.0f, false},
    };
    for (const case_row& c : cases) {
        SCOPED_TRACE(std::to_string(static_cast<int>(c.id)) + " by " + std::to_string(c.dy));
        graph_layout layout = area(true, true);
        const graph_layout before = layout;
        EXPECT_EQ(drag_splitter(layout, c.id, c.dy), c.moves);
        if (!c.moves) {
            EXPECT_FLOAT_EQ(layout.graph[0].height, before.graph[0].height);
            EXPECT_FLOAT_EQ(layout.graph[section_graph].top, before.graph[section_graph].top);
            continue;
        }
        EXPECT_FLOAT_EQ(top_of(layout, c.id), top_of(before, c.id) + c.dy);
        // Nothing moves below the section's bottom, and the graphs stay in their frames.
        EXPECT_FLOAT_EQ(layout.graph[section_graph].bottom(), 7060.0f);
        EXPECT_NEAR(layout.graph[1].bottom() + frame_bottom_margin, layout.mag_frame.bottom(),
                    1e-2f);
        EXPECT_NEAR(layout.graph[3].bottom() + frame_bottom_margin, layout.grav_frame.bottom(),
                    1e-2f);
    }
}

TEST(splitters, section_splitter_keeps_both_frames_at_their_least_height) {
    graph_layout layout = area(true, true);
    ASSERT_TRUE(drag_splitter(layout, splitter_id::frames, -1380.0f));  // magnetics 1120 high
    ASSERT_TRUE(drag_splitter(layout, splitter_id::section, -300.0f));
    EXPECT_FLOAT_EQ(layout.mag_frame.height, 1024.0f);
    EXPECT_FLOAT_EQ(layout.mag_frame.height + layout.grav_frame.height, 5000.0f - 300.0f);
    EXPECT_FLOAT_EQ(layout.graph[section_graph].top, 4670.0f);
    EXPECT_FLOAT_EQ(top_of(layout, splitter_id::frames), layout.grav_frame.top - 45.0f);
    // One frame shown: it alone takes the move.
    graph_layout single = area(true, false);
    const float frame = single.mag_frame.height;
    ASSERT_TRUE(drag_splitter(single, splitter_id::section, 500.0f));
    EXPECT_FLOAT_EQ(single.mag_frame.height, frame + 500.0f);
    EXPECT_FALSE(drag_splitter(single, splitter_id::frames, 10.0f));
}

TEST(splitters, layout_is_placed_replayed_at_a_new_size_and_kept_in_the_model) {
    shown_line f;
    graph_area_resized(f.ws, 12000.0f, 7060.0f);
    share_graph_area(f.ws, true, true);
    const graph_layout& layout = f.ws.pointer.layout;
    EXPECT_FLOAT_EQ(f.view.boxes["Frame_grav_profiles"].top, 2515.0f);
    EXPECT_FLOAT_EQ(f.view.boxes["zngraph_model_2"].top, 0.0f);  // graphs inside their frame
    splitter_down(f.ws, splitter_id::mag, 40.0f);
    splitter_move(f.ws, splitter_id::mag, 240.0f);
    splitter_move(f.ws, splitter_id::mag, 40.0f);  // the pointer stayed on the splitter
    splitter_up(f.ws, splitter_id::mag);
    EXPECT_FLOAT_EQ(top_of(layout, splitter_id::mag), 1472.5f);
    EXPECT_FLOAT_EQ(f.view.boxes["zngraph_model_1"].top, 1412.5f);
    EXPECT_FLOAT_EQ(f.ws.model.splitter[0], 1472.5f / layout.graph[section_graph].height);
    splitter_move(f.ws, splitter_id::mag, 400.0f);  // button up: no drag
    EXPECT_FLOAT_EQ(top_of(layout, splitter_id::mag), 1472.5f);
    // A window half as high keeps the shares.
    graph_area_resized(f.ws, 12000.0f, 3530.0f);
    EXPECT_FLOAT_EQ(top_of(layout, splitter_id::mag), 736.25f);
    EXPECT_FLOAT_EQ(layout.graph[section_graph].bottom(), 3530.0f);
}

}  // namespace
}  // namespace trensil
