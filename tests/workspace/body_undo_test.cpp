// Undo and redo of the body list commands, the flag menus and the pointer's double click: each
// is one named step, and undoing them all gives back the start field for field, with the same
// computed response.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "editing_fixture.h"
#include "workspace/body_colours.h"
#include "workspace/body_flags.h"
#include "workspace/body_list.h"

namespace trensil {
namespace {

struct command {
    const char* label;  // the step's name on the Edit menu
    std::function<void(editing_fixture&)> run;
};

// Every command of the list, the flag menus and the pointer, in an order that gives each
// something to change.
std::vector<command> every_command() {
    return {
        {"Add Body", [](editing_fixture& f) { menu_add_body(f.ws, add_new); }},
        {"Copy Body 5", [](editing_fixture& f) { menu_add_body(f.ws, add_copy); }},
        {"Split Body 1",
         [](editing_fixture& f) {
             f.ws.section.current_body = 1;
             menu_add_body(f.ws, add_split);
         }},
        {"Type of Body 2",
         [](editing_fixture& f) { combo_model_type_selected(f.ws, cylinder_pipe); }},
        {"Send Body 2 to End", [](editing_fixture& f) { menu_sort_bodies(f.ws, send_to_end); }},
        {"Sort Bodies by Descending Distance",
         [](editing_fixture& f) { menu_sort_bodies(f.ws, sort_descending); }},
        {"Delete Body 3",
         [](editing_fixture& f) {
             f.ws.section.current_body = 3;
             menu_delete_body(f.ws, delete_current);
         }},
        {"Shift All Bodies",
         [](editing_fixture& f) {
             f.ui.input_answers.push_back(std::string("25"));
             menu_shift_bodies(f.ws);
         }},
        {"Colour Bodies by Density",
         [](editing_fixture& f) {
             f.ws.model.profile.inversion_first_station = 40;  // for the fix menu below
             menu_colour_body(f.ws, colour_by_density);
         }},
        {"Set Demag Flags", [](editing_fixture& f) { menu_set_demag_flags(f.ws, flag_flip); }},
        {"Set Use Flags", [](editing_fixture& f) { menu_set_disable_flag(f.ws, flag_clear); }},
        {"Fix Bodies outside Inversion Limits",
         [](editing_fixture& f) { menu_set_fix_flags(f.ws, fix_outside_limits); }},
        {"Use of Body 3",
         [](editing_fixture& f) {
             f.view.checks["Check_turn_off_body"] = false;
             check_turn_off_body(f.ws);
         }},
        {"Fix of Body 3",
         [](editing_fixture& f) {
             f.view.checks["Check_fix_this_body"] = true;
             check_fix_this_body(f.ws);
         }},
        {"Demagnetisation of Body 3",
         [](editing_fixture& f) {
             f.view.checks["Check_include_demagnetisation"] = false;
             check_include_demagnetisation(f.ws);
         }},
        {"Add Body",
         [](editing_fixture& f) {
             pointer_move_on_model(f.ws, section_graph, false, 640.0, -12.5);
             double_click_on_model(f.ws, section_graph);
         }},
        {"Delete All Bodies", [](editing_fixture& f) { menu_delete_body(f.ws, delete_all); }},
    };
}

TEST(body_undo, every_command_is_one_named_step_and_all_undo_to_the_start) {
    editing_fixture f;
    f.ws.model.body(4).density.value = 3.0f;
    f.ws.model.body(4).grav_valid = 0;
    display_model(f.ws, 1);
    const std::vector<body_definition> start = body_definitions(f.ws.model);
    const std::vector<float> start_response = f.computed_channels();

    std::vector<std::vector<body_definition>> after;
    for (const command& c : every_command()) {
        SCOPED_TRACE(c.label);
        const std::size_t steps = f.ws.history.undo_count();
        c.run(f);
        ASSERT_EQ(f.ws.history.undo_count(), steps + 1);
        EXPECT_EQ(f.view.text("menu_undo"), std::string("Undo ") + c.label);
        after.push_back(body_definitions(f.ws.model));
    }
    const std::vector<float> end_response = f.computed_channels();

    while (f.ws.history.undo_count() > 0) menu_undo(f.ws);
    EXPECT_EQ(body_definitions(f.ws.model), start);
    EXPECT_EQ(f.computed_channels(), start_response);
    EXPECT_EQ(f.current(), 1);

    for (std::size_t i = 0; i < after.size(); ++i) {
        menu_redo(f.ws);
        EXPECT_EQ(body_definitions(f.ws.model), after[i]) << every_command()[i].label;
    }
    EXPECT_EQ(f.computed_channels(), end_response);
}

TEST(body_undo, undone_move_sort_and_delete_recompute_nothing) {
    editing_fixture f;
    const std::vector<float> start = f.computed_channels();
    menu_sort_bodies(f.ws, send_to_end);
    EXPECT_EQ(f.responses_computed(), 0);
    f.ws.section.current_body = 2;
    menu_delete_body(f.ws, delete_current);
    EXPECT_EQ(f.responses_computed(), 0);  // the rest re-summed, nothing recomputed
    menu_undo(f.ws);
    menu_undo(f.ws);
    EXPECT_EQ(f.responses_computed(), 0);
    EXPECT_EQ(f.computed_channels(), start);
    // A sort by distance renames the bodies after their places; undone, each body is found again
    // by what it is, not by its name.
    const auto before_sort = body_definitions(f.ws.model);
    menu_sort_bodies(f.ws, sort_descending);
    ASSERT_NE(body_definitions(f.ws.model), before_sort);
    menu_undo(f.ws);
    EXPECT_EQ(body_definitions(f.ws.model), before_sort);
    EXPECT_EQ(f.responses_computed(), 0);
    EXPECT_EQ(f.computed_channels(), start);
}

TEST(body_undo, commands_that_change_nothing_leave_no_step) {
    editing_fixture f;
    f.ws.section.current_body = 1;
    menu_sort_bodies(f.ws, send_to_start);  // already first
    EXPECT_EQ(f.ui.messages.back(), "The body has been moved");
    menu_set_demag_flags(f.ws, flag_clear);  // all are 0
    combo_model_type_selected(f.ws, thick_sheet);
    f.ws.model.body(1).strike.value = 90.0f;  // along the profile: no copy
    menu_add_body(f.ws, add_copy);
    EXPECT_EQ(f.ws.history.undo_count(), 0u);
    EXPECT_TRUE(f.ws.model_changed);  // the commands still mark the model as edited
}

}  // namespace
}  // namespace trensil
