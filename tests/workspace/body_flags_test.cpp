// The flag menus, "Fix outside inversion limits", the current body's check boxes and colouring
// bodies by a property.
#include "workspace/body_flags.h"

#include <gtest/gtest.h>

#include "model_fixture.h"
#include "support/colour_ramp.h"
#include "workspace/body_colours.h"
#include "workspace_fixture.h"

namespace trensil {
namespace {

using testing_models::add_body;
using testing_models::line_model;

TEST(body_flags, menus_set_clear_and_flip_every_body) {
    using setter = void (*)(model_record&, int);
    struct case_row {
        const char* menu;
        setter set;
        std::int32_t body_record::*flag;
        int item;
        std::int32_t first, second;  // the two bodies after the command, from 0 and 1
    };
    const case_row cases[] = {
        {"demag", set_demag_flags, &body_record::demag, flag_set, 1, 1},
        {"demag", set_demag_flags, &body_record::demag, flag_clear, 0, 0},
        {"demag", set_demag_flags, &body_record::demag, flag_flip, 1, 0},
        // "Set Use body flags": item 0 uses the bodies, so it clears `disabled`.
        {"use", set_disable_flags, &body_record::disabled, flag_set, 0, 0},
        {"use", set_disable_flags, &body_record::disabled, flag_clear, 1, 1},
        {"use", set_disable_flags, &body_record::disabled, flag_flip, 1, 0},
        {"fix", set_fix_flags, &body_record::fix, flag_set, 1, 1},
        {"fix", set_fix_flags, &body_record::fix, flag_clear, 0, 0},
        {"fix", set_fix_flags, &body_record::fix, flag_flip, 1, 0},
    };
    for (const case_row& c : cases) {
        SCOPED_TRACE(std::string(c.menu) + " item " + std::to_string(c.item));
        model_record model = line_model(11);
        add_body(model, thick_sheet, 10.0f, 0.0f).*c.flag = 0;
        add_body(model, thick_sheet, 20.0f, 0.0f).*c.flag = 1;
        c.set(model, c.item);
        EXPECT_EQ(model.body(1).*c.flag, c.first);
        EXPECT_EQ(model.body(2).*c.flag, c.second);
    }
}

TEST(body_flags, fix_outside_inversion_limits_frees_the_bodies_that_reach_the_window) {
    // Stations every 10 from 0 to 1000; each body is 50 wide.
    struct case_row {
        int first, last;
        float distance;
        std::int32_t fix;
    };
    const case_row cases[] = {
        // Window 300 .. end: free when the far edge reaches 290.
        {31, 101, 240.0f, 1},
        {31, 101, 239.0f, 0},
        // Window 300 .. 600: the far edge past 290 and the reference point before 610.
        {31, 61, 600.0f, 1},
        {31, 61, 611.0f, 0},
        {31, 61, 100.0f, 0},
        // Window start .. 600: fixed only beyond 610.
        {1, 61, 610.0f, 1},
        {1, 61, 610.5f, 0},
        {0, 61, 900.0f, 0},
        // The whole profile: the body keeps its flag (here 0).
        {1, 101, 500.0f, 0},
    };
    for (const case_row& c : cases) {
        SCOPED_TRACE(std::to_string(c.first) + ".." + std::to_string(c.last) + " at " +
                     std::to_string(c.distance));
        model_record model = line_model(101, 10.0f);
        model.profile.inversion_first_station = c.first;
        model.profile.inversion_last_station = c.last;
        body_record& b = add_body(model, thick_sheet, c.distance, 0.0f);
        b.width.value = 50.0f;
        b.fix = 0;
        set_fix_flags(model, fix_outside_limits);
        EXPECT_EQ(b.fix, c.fix);
    }
}

TEST(body_flags, menus_recompute_every_body_and_boxes_act_on_the_current_one) {
    workspace_fixture f;
    model_record model = line_model(101, 10.0f);
    add_body(model, thick_sheet, 300.0f, -20.0f);
    add_body(model, thick_sheet, 700.0f, -20.0f);
    f.show(std::move(model));
    const float both = f.ws.model.profile.mag_channels(computed_raw, 71);
    f.ws.response.mag_responses_computed = 0;
    f.ws.section.current_body = 2;
    menu_set_demag_flags(f.ws, flag_flip);
    EXPECT_EQ(f.ws.response.mag_responses_computed, 2);
    menu_set_demag_flags(f.ws, flag_flip);
    menu_set_disable_flag(f.ws, flag_flip);  // both off
    EXPECT_FLOAT_EQ(f.ws.model.profile.mag_channels(computed_raw, 71), 0.0f);
    menu_set_disable_flag(f.ws, flag_set);  // both on again
    EXPECT_FLOAT_EQ(f.ws.model.profile.mag_channels(computed_raw, 71), both);

    f.ws.response.mag_responses_computed = 0;
    f.view.checks["Check_fix_this_body"] = true;
    check_fix_this_body(f.ws);
    EXPECT_EQ(f.body(2).fix, 0);  // the box shows "fixed"
    EXPECT_EQ(f.body(1).fix, 1);
    f.view.checks["Check_turn_off_body"] = true;
    check_turn_off_body(f.ws);  // body 1 kept, body 2 zero rows
    EXPECT_EQ(f.ws.response.mag_responses_computed, 0);
    EXPECT_NE(f.ws.model.profile.mag_channels(computed_raw, 71), both);
    f.view.checks["Check_include_demagnetisation"] = true;
    check_include_demagnetisation(f.ws);
    EXPECT_EQ(f.body(2).demag, 1);
    // While the window writes its controls the boxes' events do nothing.
    f.view.checks["Check_fix_this_body"] = false;
    f.ws.updating_display = true;
    check_fix_this_body(f.ws);
    EXPECT_EQ(f.body(2).fix, 0);
}

TEST(body_colours, bodies_take_their_place_on_the_colour_ramp) {
    model_record model = line_model(11);
    add_body(model, thick_sheet, 0.0f, 0.0f).susc.value = -500.0f;  // counted as 0
    add_body(model, thick_sheet, 0.0f, 0.0f).susc.value = 0.0f;
    add_body(model, thick_sheet, 0.0f, 0.0f).susc.value = 2000.0f;
    ASSERT_TRUE(colour_bodies_by_property(model, colour_by_susc));
    EXPECT_EQ(model.body(1).colour, colour_ramp_value(0.0));
    EXPECT_EQ(model.body(2).colour, colour_ramp_value(0.0));
    EXPECT_EQ(model.body(3).colour, colour_ramp_value(1.0));

    workspace_fixture f;
    f.show(std::move(model));
    menu_colour_body(f.ws, colour_by_density);  // all 2.67
    ASSERT_EQ(f.ui.messages.size(), 1u);
    EXPECT_EQ(f.ui.messages[0], "The bodies all have the same specified value");
    EXPECT_EQ(f.body(3).colour, colour_ramp_value(1.0));
    EXPECT_FALSE(f.ws.model_changed);
}

}  // namespace
}  // namespace trensil
