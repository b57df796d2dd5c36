// The body sliders: each bar's step, direction and refusal, the wrapping of strike, the responses
// a step makes stale, the merging of nudges, and HScroll_body.
#include <gtest/gtest.h>

#include "editing_fixture.h"
#include "inversion/parameter_vector.h"
#include "workspace/body_sliders.h"
#include "workspace/body_table.h"

namespace trensil {
namespace {

struct slider_fixture : editing_fixture {
    slider_fixture() { display_body_parameters(ws); }
    float& value(int body, int row) { return property_by_row(ws.model.body(body), row)->value; }
};

// One press of bar `control` item `item` to `bar` (+1 or -1) on a body whose property holds
// `start`: the property then holds `expected` (the start itself when the step is refused).
struct press_case {
    const char* control;
    int item, bar, body, row;
    float start, expected;
};

TEST(body_sliders, each_bar_steps_its_way_or_refuses) {
    const press_case cases[] = {
        // Distance: 10 on a line 1190 long, a tenth on the fine bar.
        {"HScroll_dist", 0, 1, 4, row_distance, 900.0f, 910.0f},
        {"HScroll_dist", 1, -1, 4, row_distance, 900.0f, 899.0f},
        // Strike wraps with the sign of the sum.
        {"HScroll_strike", 0, 1, 4, row_strike, 358.0f, 3.0f},
        {"HScroll_strike", 0, -1, 4, row_strike, -358.0f, -3.0f},
        {"HScroll_strike", 1, 1, 4, row_strike, 10.0f, 10.5f},
        // Dip: right arrow down; stops short of 5 and 175.
        {"HScroll_dip", 0, 1, 4, row_dip, 6.0f, 6.0f},
        {"HScroll_dip", 1, 1, 4, row_dip, 6.0f, 5.5f},
        {"HScroll_dip", 1, 1, 4, row_dip, 5.5f, 5.5f},
        {"HScroll_dip", 0, -1, 4, row_dip, 170.0f, 170.0f},
        {"HScroll_dip", 0, -1, 4, row_dip, 60.0f, 65.0f},
        // Top: a 25th of its size, at least 0.1; the down arrow goes deeper.
        {"VScroll_depth", 0, 1, 4, row_top, -20.0f, -20.8f},
        {"VScroll_depth", 0, -1, 4, row_top, 1.0f, 1.1f},
        // Depth extent: up arrow less; never to 0; not at all on a cylinder.
        {"VScroll_depth_extent", 0, -1, 4, row_depth_extent, 250.0f, 225.0f},
        {"VScroll_depth_extent", 0, 1, 4, row_depth_extent, 3.0f, 3.6f},
        {"VScroll_depth_extent", 0, -1, 4, row_depth_extent, 0.0f, 0.0f},
        {"VScroll_depth_extent", 0, 1, 3, row_depth_extent, 250.0f, 250.0f},
        // Width: the ladder moved by one (250 takes 5); at 0 the step is 0.
        {"HScroll_width", 0, 1, 4, row_width, 250.0f, 255.0f},
        {"HScroll_width", 0, 1, 4, row_width, 251.0f, 276.0f},
        {"HScroll_width", 0, 1, 4, row_width, 0.0f, 0.0f},
        // Length: the coarse bar always adds, the fine bar always subtracts.
        {"HScroll_length", 0, -1, 4, row_length, 100.0f, 105.0f},
        {"HScroll_length", 1, 1, 4, row_length, 100.0f, 99.5f},
        {"HScroll_length", 1, -1, 4, row_length, 100.0f, 99.5f},
        // Susceptibility: a 50th, at least 10; never through or from 0.
        {"VScroll_susc", 0, -1, 4, row_susc, 50000.0f, 51000.0f},
        {"VScroll_susc", 0, 1, 4, row_susc, 5.0f, 5.0f},
        {"VScroll_susc", 0, -1, 4, row_susc, 0.0f, 0.0f},
        {"VScroll_dens", 0, -1, 4, row_density, 2.67f, 2.77f},
        {"VScroll_dens", 1, 1, 4, row_density, 2.67f, 2.66f},
        {"HScroll_plunge", 0, 1, 4, row_plunge, 40.0f, 40.0f},
        {"HScroll_plunge", 1, 1, 4, row_plunge, 40.0f, 40.5f},
        {"VScroll_slope", 0, -1, 4, row_slope, 74.0f, 74.0f},
        {"VScroll_slope", 0, 1, 4, row_slope, 74.0f, 72.0f},
        // Offset: from its absolute value; coarse adds, fine subtracts.
        {"HScroll_offset", 0, 1, 4, row_offset, -30.0f, -25.0f},
        {"HScroll_offset", 1, 1, 4, row_offset, -30.0f, -30.5f},
        // Remanence: Q stays above 0; I and D have no limit here.
        {"VScroll_RemJ", 0, 1, 4, row_rem_q, 0.01f, 0.01f},
        {"VScroll_RemJ", 1, 1, 4, row_rem_q, 0.01f, 0.009f},
        {"VScroll_RemJ", 2, -1, 4, row_rem_i, 89.0f, 91.5f},
        {"VScroll_RemJ", 5, 1, 4, row_rem_d, 0.0f, -0.25f},
    };
    for (const press_case& c : cases) {
        SCOPED_TRACE(::testing::Message()
                     << c.control << " " << c.item << " at " << c.bar << " from " << c.start);
        slider_fixture f;
        f.ws.section.current_body = c.body;
        f.value(c.body, c.row) = c.start;
        body_bar_changed(f.ws, c.control, c.item, c.bar);
        EXPECT_FLOAT_EQ(f.value(c.body, c.row), c.expected);
        const std::string bar = std::string(c.control) + "_" + std::to_string(c.item);
        EXPECT_EQ(f.view.scrolls[bar].value, 0);
        EXPECT_TRUE(f.view.enabled[bar]);
        EXPECT_EQ(f.ws.model_changed, c.expected != c.start);
        EXPECT_FALSE(f.ws.updating_display);
    }
}

TEST(body_sliders, a_step_recomputes_its_channel_and_shows_the_value) {
    struct flag_case {
        const char* control;
        int item;
        long magnetic, gravity;
    };
    const flag_case cases[] = {{"HScroll_dip", 0, 1, 1},
                               {"VScroll_susc", 0, 1, 0},
                               {"VScroll_RemJ", 2, 1, 0},
                               {"VScroll_dens", 0, 0, 1}};
    for (const flag_case& c : cases) {
        SCOPED_TRACE(c.control);
        slider_fixture f;
        f.ws.response.mag_responses_computed = 0;
        f.ws.response.grav_responses_computed = 0;
        body_bar_changed(f.ws, c.control, c.item, -1);
        EXPECT_EQ(f.ws.response.mag_responses_computed, c.magnetic);
        EXPECT_EQ(f.ws.response.grav_responses_computed, c.gravity);
    }
    slider_fixture f;
    body_bar_changed(f.ws, "VScroll_RemJ", 2, -1);
    EXPECT_EQ(f.view.grid_cell("Grid_body", row_rem_i, 1), "2.500");
    body_bar_changed(f.ws, "HScroll_dist", 0, 1);
    EXPECT_EQ(f.view.grid_cell("Grid_body", row_distance, 1), "310.0");
    EXPECT_EQ(f.view.grid_cell("Grid_body", row_east, 1), "1310.0");
}

TEST(body_sliders, nothing_moves_without_stations_or_while_the_display_is_updated) {
    slider_fixture f;
    f.ws.updating_display = true;
    body_bar_changed(f.ws, "HScroll_dip", 0, -1);
    f.ws.updating_display = false;
    f.ws.model.profile.num_stations = 0;
    body_bar_changed(f.ws, "HScroll_dip", 0, -1);
    EXPECT_FLOAT_EQ(f.value(1, row_dip), 90.0f);
    EXPECT_EQ(f.view.scrolls["HScroll_dip_0"].value, 0);
    EXPECT_EQ(f.ws.history.undo_count(), 0u);
}

TEST(body_sliders, held_arrow_is_one_step_that_undo_takes_back) {
    slider_fixture f;
    for (int press = 0; press < 4; ++press) body_bar_changed(f.ws, "HScroll_dip", 0, -1);
    body_bar_changed(f.ws, "HScroll_dip", 1, -1);  // the fine bar of the same pair
    EXPECT_FLOAT_EQ(f.value(1, row_dip), 110.5f);
    EXPECT_EQ(f.ws.history.undo_count(), 1u);
    EXPECT_EQ(f.view.texts["menu_undo"], "Undo Dip of Body 1");
    menu_undo(f.ws);
    EXPECT_FLOAT_EQ(f.value(1, row_dip), 90.0f);
    EXPECT_EQ(f.view.grid_cell("Grid_body", row_dip, 1), "90.0");
}

TEST(body_sliders, body_selector_commits_a_pending_edit_then_shows_the_body) {
    slider_fixture f;
    grid_body_click(f.ws, row_dip, 1);
    f.view.texts["Text_edit"] = "45";
    f.ws.response.mag_responses_computed = 0;
    hscroll_body_changed(f.ws, 3);
    EXPECT_FLOAT_EQ(f.value(1, row_dip), 45.0f);  // the edit went to the body it was typed for
    EXPECT_EQ(f.ws.section.current_body, 3);
    EXPECT_EQ(f.view.grid_cell("Grid_body", row_type, 1), "Cylinder/pipe");
    EXPECT_EQ(f.ws.response.mag_responses_computed, 1);  // body 1's edit only
    hscroll_body_changed(f.ws, 9);                       // no such body
    EXPECT_EQ(f.ws.section.current_body, 3);
}

}  // namespace
}  // namespace trensil
