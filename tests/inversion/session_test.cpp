#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "inversion/inversion_session.h"
#include "inversion/parameter_vector.h"
#include "inversion_fakes.h"
#include "support/scratch_dir.h"

namespace trensil {
namespace {

using ic = inversion_control;
using testing::free_only;
using testing::toy_setup;

TEST(max_iterations_text, empty_or_bad_is_25_and_rounds_to_at_least_one) {
    const std::pair<const char*, int> table[] = {
        {"", 25}, {"   ", 25}, {"ten", 25}, {"12abc", 25}, {" 7 ", 7},
        {"0", 1}, {"-3", 1},   {"2.6", 3},  {"2.5", 2},    {"1e1", 10},  // 2.5 halves to even
    };
    for (const auto& [text, runs] : table) EXPECT_EQ(parse_max_iterations(text), runs) << text;
}

TEST(invert_click, runs_the_iterations_the_box_asks_for_and_writes_the_limit_back) {
    struct row {
        const char* text;
        int iterations;
        const char* shown_after;
    };
    for (const row& r : {row{"2.6", 3, "3"}, row{"0", 1, "1"}, row{"-3", 1, "1"}, row{"", 0, "25"},
                         row{"x", 0, "25"}}) {
        SCOPED_TRACE(r.text);
        toy_setup t;
        t.shifted_body();
        t.click_invert(r.text);
        if (r.iterations > 0) {
            EXPECT_EQ(t.state.iterations_done, r.iterations);
        }
        EXPECT_EQ(t.view.text(ic::Text_max_iterations, 0), r.shown_after);
    }
}

TEST(invert_click, a_run_ends_with_success_and_the_panel_back_at_rest) {
    toy_setup t;
    t.shifted_body();
    t.click_invert("3");
    EXPECT_TRUE(t.view.is_visible(ic::Label_status));
    EXPECT_EQ(t.view.text(ic::Label_status, 0), "Inversion succeeded");
    EXPECT_TRUE(t.view.is_enabled(ic::Command_reject_changes));
    EXPECT_TRUE(t.view.is_enabled(ic::Command_restore_best));
    EXPECT_FALSE(t.view.is_visible(ic::Command_stop_inversion));
    EXPECT_FALSE(t.view.is_visible(ic::Text_num_iterations));
    EXPECT_FALSE(t.ui.busy);
    EXPECT_FALSE(t.state.stop_requested);
    EXPECT_EQ(t.view.body_table_shown, 1);
    EXPECT_EQ(t.view.display_model_calls, std::vector<int>{1});
    EXPECT_EQ(t.view.model_changed, 0);
    EXPECT_EQ(t.model.body(1).mag_valid, 0);  // everything is recomputed by the redisplay
}

TEST(invert_click, nothing_free_shows_the_message_and_marks_the_model_changed) {
    toy_setup t;
    t.shifted_body();
    free_only(t.model, {});
    t.click_invert("");
    EXPECT_EQ(t.ui.messages, std::vector<std::string>{"There are no parameters free to invert on"});
    EXPECT_EQ(t.view.model_changed, 1);
    EXPECT_TRUE(t.view.is_enabled(ic::Command_save_qvx_model));
    EXPECT_FALSE(t.view.is_visible(ic::Label_status));
    EXPECT_FLOAT_EQ(t.model.body(1).distance.value, 200.0f);
}

TEST(invert_click, without_stations_nothing_happens) {
    toy_setup t;
    t.flat_line(0, 1);
    t.click_invert("");
    EXPECT_TRUE(t.view.texts.size() == 1);  // only the box the test typed in
    EXPECT_TRUE(t.view.display_model_calls.empty());
}

TEST(run_inversion, range_with_first_not_before_last_becomes_the_whole_profile) {
    toy_setup t;
    t.shifted_body();
    t.model.profile.inversion_first_station = 30;
    t.model.profile.inversion_last_station = 30;
    float misfit = 0.0f;
    int status = 0;
    run_inversion(t.ctx, true, inversion_mode_magnetics, 1, 1, misfit, status);
    EXPECT_EQ(t.model.profile.inversion_first_station, 1);
    EXPECT_EQ(t.model.profile.inversion_last_station, 41);
    EXPECT_EQ(t.state.inversion_count, 41);
    EXPECT_EQ(t.state.current_residual.size(), 41);

    // A proper window counts its own points only.
    t.model.profile.inversion_first_station = 11;
    t.model.profile.inversion_last_station = 31;
    run_inversion(t.ctx, true, inversion_mode_magnetics, 1, 1, misfit, status);
    EXPECT_EQ(t.state.inversion_count, 21);
    EXPECT_EQ(t.state.trial_residual.size(), 21);
}

TEST(run_inversion, without_a_current_body_leaves_status_untouched) {
    toy_setup t;
    t.shifted_body();
    float misfit = 0.0f;
    int status = 7;
    run_inversion(t.ctx, true, inversion_mode_magnetics, 1, 0, misfit, status);
    EXPECT_EQ(status, 7);
    run_inversion(t.ctx, true, inversion_mode_magnetics, 1, 2, misfit, status);
    EXPECT_EQ(status, 7);
    EXPECT_EQ(t.state.misfit_evaluations, 0);
}

TEST(reject_changes, returns_exactly_the_parameters_of_the_last_run) {
    toy_setup t;
    t.shifted_body();
    t.model.body(1).width.vary = 1.0f;
    t.click_invert("2");
    const float after_first = t.model.body(1).distance.value;
    const float width_after_first = t.model.body(1).width.value;
    ASSERT_NE(after_first, 200.0f);
    t.model.body(1).dip.value = 45.0f;  // not free: stays as it is now
    t.click_invert("2");
    ASSERT_NE(t.model.body(1).distance.value, after_first);

    on_reject_changes(t.ctx);
    EXPECT_EQ(t.model.body(1).distance.value, after_first);
    EXPECT_EQ(t.model.body(1).width.value, width_after_first);
    EXPECT_EQ(t.model.body(1).dip.value, 45.0f);
    EXPECT_EQ(t.state.best_misfit, undefined_value);
    EXPECT_TRUE(t.state.have_best_model);  // left as it was
    EXPECT_FALSE(t.view.is_enabled(ic::Command_reject_changes));
    EXPECT_FALSE(t.view.is_enabled(ic::Command_restore_best));
    EXPECT_EQ(t.view.misfit_box(0), "");
    EXPECT_EQ(t.view.misfit_box(1), "");
    EXPECT_EQ(t.view.display_model_calls.back(), 1);
}

TEST(restore_best, saves_the_current_model_first_then_puts_back_the_best) {
    toy_setup t;
    t.shifted_body();
    t.click_invert("3");
    const float best = t.model.body(1).distance.value;
    // The user moves the body off; a one-iteration run cannot beat the first run's misfit.
    t.model.body(1).distance.value = 100.0f;
    clear_body_results(t.model);
    t.click_invert("1");
    const float worse = t.model.body(1).distance.value;
    ASSERT_NE(worse, best);

    on_restore_best(t.ctx);
    ASSERT_EQ(t.written.size(), 1u);
    EXPECT_EQ(t.written[0].first, "latest.qvx");
    EXPECT_EQ(t.written[0].second, worse);  // written before it was overwritten
    EXPECT_EQ(t.model.body(1).distance.value, best);
    // The box reads the misfit after it was reset: -99999 over 41 points.
    EXPECT_EQ(t.view.misfit_box(1), "-2439.0000");
    EXPECT_EQ(t.view.misfit_box(0), "");
    EXPECT_FALSE(t.state.have_best_model);
    EXPECT_EQ(t.state.best_misfit, undefined_value);
    EXPECT_FALSE(t.view.is_enabled(ic::Command_restore_best));

    // A second click has nothing to restore.
    on_restore_best(t.ctx);
    EXPECT_EQ(t.written.size(), 1u);
}

TEST(restore_best, a_run_that_gains_nothing_keeps_the_start_model_as_best) {
    toy_setup t;
    t.shifted_body();
    free_only(t.model, {&body_record::plunge});  // no influence
    t.click_invert("5");
    EXPECT_TRUE(t.state.have_best_model);
    EXPECT_FLOAT_EQ(t.state.best_parameters(1), 0.0f);  // the start, before the drift
    on_restore_best(t.ctx);
    EXPECT_EQ(t.model.body(1).plunge.value, 0.0f);
}

TEST(restore_best, a_new_count_of_free_parameters_ends_the_claim_to_a_best_model) {
    toy_setup t;
    t.shifted_body();
    t.click_invert("3");
    const float first_best = t.state.best_misfit;
    ASSERT_TRUE(t.state.have_best_model);
    t.model.body(1).distance.value = 100.0f;
    t.model.body(1).width.vary = 1.0f;  // two free parameters now
    clear_body_results(t.model);
    t.click_invert("1");
    EXPECT_FALSE(t.state.have_best_model);
    EXPECT_EQ(t.state.best_misfit, first_best);
    EXPECT_TRUE(t.view.is_enabled(ic::Command_restore_best));  // enabled, yet nothing to restore

    const float now = t.model.body(1).distance.value;
    on_restore_best(t.ctx);
    EXPECT_TRUE(t.written.empty());
    EXPECT_EQ(t.model.body(1).distance.value, now);
    EXPECT_FALSE(t.view.is_enabled(ic::Command_restore_best));
    EXPECT_FALSE(t.view.is_enabled(ic::Command_reject_changes));
    EXPECT_EQ(t.state.best_misfit, undefined_value);
}

TEST(restore_best, writes_latest_qvx_in_the_current_directory) {
    const testing::scratch_dir scratch("inversion_restore");
    const auto& dir = scratch.path();
    const auto previous = std::filesystem::current_path();
    std::filesystem::current_path(dir);
    {
        toy_setup t;
        t.ctx.write_model = file_model_writer(t.ui);
        t.shifted_body();
        t.click_invert("2");
        on_restore_best(t.ctx);
        EXPECT_TRUE(t.ui.messages.empty());
    }
    std::filesystem::current_path(previous);
    std::ifstream in(dir / "latest.qvx");
    std::string first_line;
    EXPECT_TRUE(std::getline(in, first_line));
    EXPECT_FALSE(first_line.empty());
}

TEST(data_type_choice, keeps_a_type_the_model_has_data_for) {
    toy_setup t;
    t.flat_line(5, 1);
    t.model.magpos = 0;
    t.view.combo_index = inversion_mode_magnetics;
    keep_possible_data_type(t.ctx);
    EXPECT_EQ(t.view.combo_index, inversion_mode_gravity);
    t.model.magpos = 5;
    t.model.gravpos = 0;
    keep_possible_data_type(t.ctx);
    EXPECT_EQ(t.view.combo_index, inversion_mode_magnetics);
    t.model.magpos = 0;  // neither: the box swaps, nothing more can be done
    keep_possible_data_type(t.ctx);
    EXPECT_EQ(t.view.combo_index, inversion_mode_gravity);
}

TEST(panel_controls, gradient_mode_and_toggle_forget_the_best_misfit) {
    toy_setup t;
    t.shifted_body();
    t.click_invert("2");
    ASSERT_NE(t.state.best_misfit, undefined_value);
    t.view.gradient_check = 1;
    on_inversion_mode_click(t.ctx);
    EXPECT_EQ(t.response.inversion_fits_gradient, 1);
    EXPECT_EQ(t.state.best_misfit, undefined_value);
    EXPECT_FALSE(t.view.is_enabled(ic::Command_reject_changes));
    EXPECT_EQ(t.view.misfit_box(0), "");

    t.state.best_misfit = 3.0f;
    t.view.visible[ic::Frame_move_body] = true;
    on_toggle_invert_panel(t.ctx);
    EXPECT_FALSE(t.view.is_visible(ic::Frame_move_body));
    EXPECT_EQ(t.view.captions[ic::Command_toggle_invert_body], "Move This Body");
    EXPECT_EQ(t.state.best_misfit, undefined_value);
    on_toggle_invert_panel(t.ctx);
    EXPECT_TRUE(t.view.is_visible(ic::Frame_move_body));
    EXPECT_EQ(t.view.captions[ic::Command_toggle_invert_body], "Perform Inversion");
}

}  // namespace
}  // namespace trensil
