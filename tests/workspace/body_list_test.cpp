// The commands on the list of bodies: add, copy, split, delete, type, sorts and the lateral shift,
// on the model and through the window's commands.
#include "workspace/body_list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model_fixture.h"
#include "workspace_fixture.h"

namespace trensil {
namespace {

using testing_models::add_body;
using testing_models::line_model;

// An east-running line of 101 stations (distance 0 to 1000) with thick sheets at `distances`,
// named "A", "B", ... so that their order can be read.
model_record named_bodies(const std::vector<float>& distances) {
    model_record model = line_model(101, 10.0f);
    for (std::size_t i = 0; i < distances.size(); ++i)
        add_body(model, thick_sheet, distances[i], -50.0f).name = std::string(1, 'A' + i);
    return model;
}

// The bodies' names in list order, or their letters read from `top` after a sort renamed them.
std::string names(const model_record& model, bool by_top = false) {
    std::string all;
    for (int i = 1; i <= model.num_bodies; ++i)
        all += by_top ? std::string(1, static_cast<char>(-model.body(i).top.value))
                      : model.body(i).name + " ";
    return all;
}

TEST(body_list, new_body_goes_last_with_defaults_across_the_profile) {
    model_record model = named_bodies({100.0f});
    memory_settings_store settings;
    settings.save_setting("Ostrand", "Trensil", "Thick", "40");
    settings.save_setting("Ostrand", "Trensil", "Colour", "255");
    std::int32_t current = 1;
    ASSERT_TRUE(add_body(model, current, add_new, 250.0f, -30.0f, &settings));
    EXPECT_EQ(current, 2);
    const body_record& b = model.body(2);
    EXPECT_EQ(b.type, thick_sheet);
    EXPECT_EQ(b.name, "Body 2");
    EXPECT_FLOAT_EQ(b.width.value, 40.0f);  // the saved default
    EXPECT_EQ(b.colour, 0xff0000);          // a new body is blue whatever the default
    EXPECT_FLOAT_EQ(b.top.value, -30.0f);
    EXPECT_NEAR(b.east, 1250.0, 1e-3);
    // The profile runs east (bearing -90): the new body strikes north, across it.
    EXPECT_NEAR(b.strike.value, 0.0f, 1e-4f);

    // A full list grows by 16, the new places with response rows for the stations.
    prepare_channels(model);
    while (model.num_bodies < 33) add_body(model, current, add_new, 10.0f, 0.0f, nullptr);
    EXPECT_EQ(model.body_capacity, 48);
    EXPECT_EQ(model.body(48).body_response.col_hi(), 101);
    EXPECT_EQ(model.body(1).name, "A");
}

TEST(body_list, copy_and_split_go_behind_the_current_body) {
    struct case_row {
        int kind;
        float width, dip;
        float new_distance, new_width;
    };
    const case_row cases[] = {
        {add_copy, 60.0f, 90.0f, 510.0f, 60.0f},   // 50 beyond 400 + 60
        {add_split, 10.0f, 90.0f, 405.0f, 5.0f},   // a width of 10 gives two of 5
        {add_split, 40.0f, 30.0f, 440.0f, 20.0f},  // half the width over sin 30 on
    };
    for (const case_row& c : cases) {
        SCOPED_TRACE(c.kind);
        model_record model = named_bodies({100.0f, 400.0f, 700.0f});
        model.body(2).width.value = c.width;
        model.body(2).dip.value = c.dip;
        model.body(2).mag_valid = -1;
        std::int32_t current = 2;
        ASSERT_TRUE(add_body(model, current, c.kind, 0.0f, 0.0f, nullptr));
        EXPECT_EQ(names(model), "A B Body 3 C ");
        EXPECT_EQ(current, 3);
        EXPECT_NEAR(model.body(3).distance.value, c.new_distance, 1e-3f);
        EXPECT_NEAR(model.body(3).east, 1000.0 + c.new_distance, 1e-2);
        EXPECT_FLOAT_EQ(model.body(2).width.value, c.new_width);
        EXPECT_FLOAT_EQ(model.body(3).width.value, c.new_width);
        EXPECT_EQ(model.body(2).mag_valid, 0);
    }
    // A body along the profile cannot be copied or split; a flat one cannot be split.
    model_record model = named_bodies({100.0f});
    std::int32_t current = 1;
    model.body(1).strike.value = 90.0f;
    EXPECT_FALSE(add_body(model, current, add_copy, 0.0f, 0.0f, nullptr));
    model.body(1).strike.value = 0.0f;
    model.body(1).dip.value = 0.0f;
    EXPECT_FALSE(add_body(model, current, add_split, 0.0f, 0.0f, nullptr));
    EXPECT_EQ(model.num_bodies, 1);
}

TEST(body_list, delete_leaves_the_right_body_current) {
    struct case_row {
        int count, current;
        const char* left;
        int now_current;
    };
    const case_row cases[] = {
        {3, 2, "A C ", 2},  // the body behind takes its place
        {3, 3, "A B ", 2},  // the last one: the one before it
        {1, 1, "", 0},      // the only one: none left
    };
    for (const case_row& c : cases) {
        SCOPED_TRACE(c.left);
        model_record model = named_bodies(std::vector<float>(static_cast<std::size_t>(c.count)));
        std::int32_t current = c.current;
        delete_current_body(model, current);
        EXPECT_EQ(names(model), c.left);
        EXPECT_EQ(current, c.now_current);
    }
}

TEST(body_list, type_change_turns_the_dip_into_and_out_of_the_cylinder_scale) {
    body_record b;
    b.type = thick_sheet;
    b.dip.value = 60.0f;
    b.magnetisation = 5.0f;
    ASSERT_TRUE(change_body_type(b, cylinder_pipe));
    EXPECT_FLOAT_EQ(b.dip.value, -30.0f);
    EXPECT_FLOAT_EQ(b.magnetisation, -1.0f);  // coefficients follow the new dip
    ASSERT_TRUE(change_body_type(b, thick_sheet));
    EXPECT_FLOAT_EQ(b.dip.value, 60.0f);
    ASSERT_TRUE(change_body_type(b, thin_sheet));  // sheet to sheet: the dip stays
    EXPECT_FLOAT_EQ(b.dip.value, 60.0f);
    EXPECT_FALSE(change_body_type(b, thin_sheet));
}

TEST(body_list, sorts_and_moves) {
    struct case_row {
        int item;
        std::vector<float> distances;
        int current;
        const char* order;  // the letters of the bodies in their new order
        int now_current;
        bool moved;
    };
    const case_row cases[] = {
        {sort_ascending, {300, 100, 200}, 1, "BCA", 3, true},
        {sort_descending, {100, 300, 200}, 2, "BCA", 1, true},
        {sort_ascending, {900, 50, 50}, 2, "BCA", 1, true},  // equal distances keep their order
        {send_to_start, {1, 2, 3}, 3, "CAB", 1, true},
        {send_to_end, {1, 2, 3}, 1, "BCA", 3, true},
        {send_to_start, {1, 2, 3}, 1, "ABC", 1, false},
    };
    for (const case_row& c : cases) {
        SCOPED_TRACE(c.order);
        model_record model = named_bodies(c.distances);
        for (int i = 1; i <= model.num_bodies; ++i) model.body(i).top.value = -('A' + i - 1);
        std::int32_t current = c.current;
        EXPECT_EQ(sort_bodies(model, current, c.item), c.moved);
        EXPECT_EQ(names(model, true), c.order);
        EXPECT_EQ(current, c.now_current);
        // A sort renames the bodies by their places; a move keeps the names.
        const std::string first = c.item <= sort_descending ? "Body 1" : std::string(1, c.order[0]);
        EXPECT_EQ(model.body(1).name, first);
    }
}

// --- The window's commands ---------------------------------------------------------------------

TEST(body_commands, add_at_the_view_centre_recomputes_only_the_new_body) {
    workspace_fixture f;
    model_record model = named_bodies({200.0f, 600.0f});
    // Ground rises by 1 a station, so the middle station is told by the top.
    model.dtm = 4;
    for (int i = 1; i <= 101; ++i) model.profile.location(ground_row, i) = 40.0 + i;
    f.show(std::move(model));
    f.ws.response.mag_responses_computed = 0;
    f.controls[section_graph].forget();
    menu_add_body(f.ws, add_new);
    ASSERT_EQ(f.ws.model.num_bodies, 3);
    EXPECT_EQ(f.current(), 3);
    EXPECT_FLOAT_EQ(f.body(3).distance.value, 500.0f);            // the centre of the view
    EXPECT_FLOAT_EQ(f.body(3).top.value, 40.0f + 50.0f - 10.0f);  // station 101 / 2 -> 50
    EXPECT_EQ(f.ws.response.mag_responses_computed, 1);
    EXPECT_TRUE(f.view.enabled["Command_save_qvx_model"]);
    EXPECT_EQ(f.controls[section_graph].polygons().size(), 3u);
}

TEST(body_commands, delete_key_asks_and_the_rest_keep_their_responses) {
    workspace_fixture f;
    f.show(named_bodies({200.0f, 600.0f}));
    f.ws.section.current_body = 2;
    delete_picked_body(f.ws);  // answered No
    ASSERT_EQ(f.ui.questions.size(), 1u);
    EXPECT_EQ(f.ui.questions[0], "Delete the body \"B\"?");
    EXPECT_EQ(f.ws.model.num_bodies, 2);
    f.ui.yes_answers.push_back(true);
    f.ws.response.mag_responses_computed = 0;
    delete_picked_body(f.ws);
    EXPECT_EQ(names(f.ws.model), "A ");
    EXPECT_EQ(f.ws.response.mag_responses_computed, 0);
    // The computed curve is the remaining body's alone.
    workspace_fixture alone;
    alone.show(named_bodies({200.0f}));
    for (int i = 1; i <= 101; i += 25)
        EXPECT_FLOAT_EQ(f.ws.model.profile.mag_channels(computed_raw, i),
                        alone.ws.model.profile.mag_channels(computed_raw, i));
}

TEST(body_commands, sort_confirms_and_the_section_follows_the_new_numbers) {
    workspace_fixture f;
    f.show(named_bodies({600.0f, 200.0f}));
    f.controls[section_graph].forget();
    menu_sort_bodies(f.ws, sort_ascending);
    EXPECT_EQ(f.ui.messages.back(), "The bodies have been sorted");
    // Polygon 1 is now the body at 200, body 1.
    EXPECT_EQ(f.body(1).display_index, 1);
    EXPECT_FLOAT_EQ(f.controls[section_graph].polygons()[0].x[0], 200.0f);
    menu_sort_bodies(f.ws, send_to_end);  // already last: nothing moves, still confirmed
    EXPECT_EQ(f.ui.messages.back(), "The body has been moved");
}

TEST(body_commands, lateral_shift_needs_a_number_of_at_least_one) {
    workspace_fixture f;
    f.show(named_bodies({200.0f, 600.0f}));
    for (const char* answer : {"0.5", "-0.99", "", "abc"}) {
        f.ui.input_answers.push_back(std::string(answer));
        menu_shift_bodies(f.ws);
    }
    EXPECT_FLOAT_EQ(f.body(1).distance.value, 200.0f);
    EXPECT_FALSE(f.ws.model_changed);
    EXPECT_TRUE(f.ui.messages.empty());
    f.ui.input_answers.push_back(std::string("-150"));
    menu_shift_bodies(f.ws);
    EXPECT_FLOAT_EQ(f.body(2).distance.value, 450.0f);
    EXPECT_NEAR(f.body(2).east, 1450.0, 1e-2);
    EXPECT_EQ(f.body(1).mag_valid, -1);  // recomputed at once
}

}  // namespace
}  // namespace trensil
