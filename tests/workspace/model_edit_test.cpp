// The edit path: every edit is a step, undo and redo put back exactly the bodies there were and
// recompute only what changed, nudges of one bar merge, a new edit drops the redo list.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "editing_fixture.h"

namespace trensil {
namespace {

using edit_action = std::function<void(model_record&)>;

// Marks a body stale as an edit of its shape does.
void shape_edited(body_record& b) {
    b.mag_valid = 0;
    b.grav_valid = 0;
    b.magnetisation = -1.0f;
}

// Runs `action` on the model as one edit labelled `label`, then redraws.
void edit(editing_fixture& f, const std::string& label, const edit_action& action) {
    {
        model_edit e(f.ws, label);
        action(f.ws.model);
    }
    display_model(f.ws, 1);
}

// A new body after body `k`: a copy of it 37 m further on, in the spare record past the end.
void insert_copy(model_record& m, int k) {
    if (m.num_bodies + 1 > m.body_capacity) grow_bodies(m, m.body_capacity + 16);
    body_record* first = &m.body(1);
    std::rotate(first + k, first + m.num_bodies, first + m.num_bodies + 1);
    ++m.num_bodies;
    body_record& copy = m.body(k + 1);
    static_cast<body_definition&>(copy) = m.body(k);
    copy.distance.value += 37.0f;
    copy.name = "copy";
    locate_body_on_profile(m.profile, copy.distance.value, copy.east, copy.north);
    copy.body_response.resize(1, 5, 1, m.profile.num_stations);
    shape_edited(copy);
}

// Body `k` taken out; its record stays past the end.
void remove_body(model_record& m, int k) {
    body_record* first = &m.body(1);
    std::rotate(first + k - 1, first + k, first + m.num_bodies);
    --m.num_bodies;
}

void sort_by_distance(model_record& m, bool descending) {
    body_record* first = &m.body(1);
    std::stable_sort(first, first + m.num_bodies, [&](const body_record& a, const body_record& b) {
        return descending ? a.distance.value > b.distance.value
                          : a.distance.value < b.distance.value;
    });
}

// One of the edits a user makes, chosen by `rng`: the shape, the magnetic or gravity properties,
// inversion flags, limits and texts, an added, deleted or re-ordered body, a type change, the off
// switch and demagnetisation. The body's flags go as the edit rules clear them.
void random_edit(editing_fixture& f, std::mt19937& rng) {
    model_record& m = f.ws.model;
    const auto pick = [&](int lo, int hi) { return std::uniform_int_distribution(lo, hi)(rng); };
    const auto real = [&](float lo, float hi) {
        return std::uniform_real_distribution<float>(lo, hi)(rng);
    };
    const int b = pick(1, m.num_bodies);
    body_record& body = m.body(b);
    switch (pick(0, 8)) {
        case 0:
            body.distance.value = real(100.0f, 1100.0f);
            locate_body_on_profile(m.profile, body.distance.value, body.east, body.north);
            body.dip.value = real(30.0f, 150.0f);
            body.width.value = real(10.0f, 80.0f);
            return shape_edited(body);
        case 1:
            body.susc.value = real(1000.0f, 80000.0f);
            body.rem_q.value = real(0.0f, 2.0f);
            body.mag_valid = 0;
            body.magnetisation = -1.0f;
            return;
        case 2:
            body.density.value = real(2.0f, 3.2f);
            body.grav_valid = 0;
            return;
        case 3:
            body.property(pick(0, 14)).vary = static_cast<float>(pick(0, 1));
            body.top.min = real(-100.0f, 0.0f);
            body.name = "renamed " + std::to_string(pick(0, 99));
            return;
        case 4:
            if (m.num_bodies < 12) insert_copy(m, b);
            return;
        case 5:
            if (m.num_bodies < 2) return;
            remove_body(m, b);
            f.ws.section.current_body = std::min(f.ws.section.current_body, m.num_bodies);
            return;
        case 6:
            return sort_by_distance(m, pick(0, 1) == 1);
        case 7:
            body.type = body.type == cylinder_pipe ? thick_sheet : cylinder_pipe;
            body.dip.value += body.type == cylinder_pipe ? -90.0f : 90.0f;
            return shape_edited(body);
        default:
            body.disabled = 1 - body.disabled;
            body.demag = 1 - body.demag;
            return shape_edited(body);
    }
}

void expect_same_bodies(const std::vector<body_definition>& got,
                        const std::vector<body_definition>& want) {
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t i = 0; i < got.size(); ++i)
        EXPECT_TRUE(got[i] == want[i]) << "body " << i + 1 << " differs";
}

TEST(model_edit, any_sequence_undone_gives_the_start_and_redone_the_end) {
    editing_fixture f;
    const auto start = body_definitions(f.ws.model);
    const auto start_channels = f.computed_channels();
    std::mt19937 rng(20240611);
    for (int step = 0; step < 80; ++step)
        edit(f, "edit " + std::to_string(step), [&](model_record&) { random_edit(f, rng); });
    const auto end = body_definitions(f.ws.model);
    const auto end_channels = f.computed_channels();
    ASSERT_GT(f.ws.history.undo_count(), 40u);

    while (f.ws.history.next_undo()) menu_undo(f.ws);
    expect_same_bodies(body_definitions(f.ws.model), start);
    EXPECT_EQ(f.computed_channels(), start_channels);
    EXPECT_EQ(f.ws.section.current_body, 1);

    while (f.ws.history.next_redo()) menu_redo(f.ws);
    expect_same_bodies(body_definitions(f.ws.model), end);
    EXPECT_EQ(f.computed_channels(), end_channels);
}

// Each edit undone recomputes the responses its change touches and no others.
TEST(model_edit, undo_recomputes_only_what_changed) {
    struct edit_case {
        const char* name;
        edit_action action;
        long magnetic, gravity;
    };
    const edit_case cases[] = {
        {"susc",
         [](model_record& m) {
             m.body(2).susc.value *= 2.0f;
             m.body(2).mag_valid = 0;
         },
         1, 0},
        {"density",
         [](model_record& m) {
             m.body(2).density.value = 3.0f;
             m.body(2).grav_valid = 0;
         },
         0, 1},
        {"dip",
         [](model_record& m) {
             m.body(2).dip.value = 60.0f;
             shape_edited(m.body(2));
         },
         1, 1},
        {"name, vary, limits and colour",
         [](model_record& m) {
             m.body(3).name = "pipe";
             m.body(3).width.vary = 0.0f;
             m.body(3).width.max = 50.0f;
             m.body(3).colour = 255;
         },
         0, 0},
        {"descending sort", [](model_record& m) { sort_by_distance(m, true); }, 0, 0},
        {"added body", [](model_record& m) { insert_copy(m, 2); }, 0, 0},
        {"deleted body", [](model_record& m) { remove_body(m, 2); }, 0, 0},
    };
    for (const edit_case& c : cases) {
        SCOPED_TRACE(c.name);
        editing_fixture f;
        const auto start = body_definitions(f.ws.model);
        const auto start_channels = f.computed_channels();
        edit(f, c.name, c.action);
        f.ws.response.mag_responses_computed = 0;
        f.ws.response.grav_responses_computed = 0;
        menu_undo(f.ws);
        EXPECT_EQ(f.ws.response.mag_responses_computed, c.magnetic);
        EXPECT_EQ(f.ws.response.grav_responses_computed, c.gravity);
        expect_same_bodies(body_definitions(f.ws.model), start);
        EXPECT_EQ(f.computed_channels(), start_channels);
    }
}

TEST(model_edit, nudges_of_one_bar_within_a_second_merge) {
    editing_fixture f;
    std::chrono::steady_clock::time_point now{};
    f.ws.history.clock = [&] { return now; };
    float& dip = f.ws.model.body(2).dip.value;
    const float start = dip;
    const auto nudge = [&](float step, const char* key, int after_ms) {
        now += std::chrono::milliseconds(after_ms);
        model_edit e(f.ws, "Dip of Body 2", key);
        dip += step;
    };

    nudge(5.0f, "bar dip 2", 0);
    nudge(5.0f, "bar dip 2", 600);
    nudge(5.0f, "bar dip 2", 900);  // within a second of the last nudge, though not of the first
    EXPECT_EQ(f.ws.history.undo_count(), 1u);
    nudge(5.0f, "bar dip 2", 1500);   // a pause: a new step
    nudge(-0.5f, "bar width 2", 10);  // another bar: a new step
    EXPECT_EQ(f.ws.history.undo_count(), 3u);

    menu_undo(f.ws);
    menu_undo(f.ws);
    EXPECT_FLOAT_EQ(dip, start + 15.0f);
    nudge(5.0f, "bar dip 2", 10);  // after an undo nothing merges into an older step
    EXPECT_EQ(f.ws.history.undo_count(), 2u);
    menu_undo(f.ws);
    menu_undo(f.ws);
    EXPECT_FLOAT_EQ(dip, start);

    // Up and back down within the second: no step at all.
    nudge(5.0f, "bar dip 2", 10);
    nudge(-5.0f, "bar dip 2", 10);
    EXPECT_EQ(f.ws.history.undo_count(), 0u);
}

TEST(model_edit, menu_names_the_steps_and_a_new_edit_drops_redo) {
    editing_fixture f;
    fake_modelling_view& v = f.view;
    EXPECT_FALSE(f.ws.model_changed);
    {
        model_edit e(f.ws, "Nothing");
        EXPECT_FALSE(e.commit());  // nothing changed: no step, model not changed
    }
    EXPECT_FALSE(f.ws.model_changed);
    EXPECT_EQ(f.ws.history.undo_count(), 0u);

    edit(f, "Dip of Body 2", [](model_record& m) { m.body(2).dip.value = 70.0f; });
    edit(f, "Susc of Body 1", [](model_record& m) { m.body(1).susc.value = 9.0f; });
    EXPECT_TRUE(f.ws.model_changed);
    EXPECT_TRUE(v.enabled["Command_save_qvx_model"]);
    EXPECT_EQ(v.texts["menu_undo"], "Undo Susc of Body 1");
    EXPECT_FALSE(v.enabled["menu_redo"]);

    menu_undo(f.ws);
    EXPECT_EQ(v.texts["menu_undo"], "Undo Dip of Body 2");
    EXPECT_EQ(v.texts["menu_redo"], "Redo Susc of Body 1");
    EXPECT_TRUE(v.enabled["menu_redo"]);

    f.ws.model_changed = false;
    {
        // A limit is recorded but leaves the changed flag alone.
        model_edit e(f.ws, "Min Dip of Body 2");
        f.ws.model.body(2).dip.min = 10.0f;
        EXPECT_TRUE(e.commit(false));
    }
    EXPECT_FALSE(f.ws.model_changed);
    EXPECT_EQ(f.ws.history.redo_count(), 0u);
    EXPECT_EQ(v.texts["menu_redo"], "Redo");
    EXPECT_FALSE(v.enabled["menu_redo"]);

    menu_undo(f.ws);
    menu_undo(f.ws);
    EXPECT_EQ(v.texts["menu_undo"], "Undo");
    EXPECT_FALSE(v.enabled["menu_undo"]);
    menu_undo(f.ws);  // nothing left: no harm
    EXPECT_FLOAT_EQ(f.ws.model.body(2).dip.value, 90.0f);

    // No undo while a handler updates the display or an inversion runs.
    menu_redo(f.ws);
    f.ws.inversion_running = true;
    menu_undo(f.ws);
    EXPECT_FLOAT_EQ(f.ws.model.body(2).dip.value, 70.0f);
}

TEST(model_edit, history_keeps_the_newest_steps_up_to_its_cap) {
    model_record m = testing_models::line_model(2);
    testing_models::add_body(m, thick_sheet, 0.0f, -10.0f);
    edit_history history;
    for (std::size_t i = 0; i < edit_history::max_steps + 5; ++i) {
        const auto before = body_definitions(m);
        m.body(1).width.value += 1.0f;
        history.record(*make_edit_step(before, 1, m, 1), "Width of Body 1", "");
    }
    EXPECT_EQ(history.undo_count(), edit_history::max_steps);
    // Undoing every kept step goes back to where the sixth edit began.
    auto bodies = body_definitions(m);
    while (const edit_step* step = history.next_undo()) {
        bodies = step_definitions(*step, bodies, false);
        history.undone();
    }
    EXPECT_FLOAT_EQ(bodies[0].width.value, m.body(1).width.value - edit_history::max_steps);
}

}  // namespace
}  // namespace trensil
