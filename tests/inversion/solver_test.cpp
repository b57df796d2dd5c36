#include <gtest/gtest.h>

#include <vector>

#include "inversion/inversion_session.h"
#include "inversion/parameter_vector.h"
#include "inversion/solver.h"
#include "inversion_fakes.h"

namespace trensil {
namespace {

using testing::free_only;
using testing::make_flat_model;
using testing::observe_current_model;
using testing::toy_setup;

// Observed data from the model with `truth` applied to body 1, then body 1 put back.
template <class Change>
void observe_with(toy_setup& t, Change truth) {
    const body_record saved = t.model.body(1);
    truth(t.model.body(1));
    observe_current_model(t.model, t.response);
    t.model.body(1) = saved;
    clear_body_results(t.model);
}

float run_whole_model(toy_setup& t, int mode, int max_iterations, int& status) {
    float misfit = 0.0f;
    status = 0;
    run_inversion(t.ctx, true, mode, max_iterations, 1, misfit, status);
    return misfit;
}

TEST(residual_norm, sums_squares_in_double_and_returns_single) {
    array1<float> v(1, 3);
    EXPECT_EQ(residual_norm(0, v), 0.0f);
    v(1) = 3.0f;
    v(2) = 4.0f;
    v(3) = 100.0f;  // beyond count: not summed
    EXPECT_EQ(residual_norm(2, v), 5.0f);
    // 1e20 squared overflows single precision but not the double sum.
    v(1) = 1e20f;
    v(2) = 1e20f;
    EXPECT_FLOAT_EQ(residual_norm(2, v), 1.41421356e20f);
}

TEST(evaluate_misfit, is_weighted_root_sum_of_squares_over_n_not_rms) {
    toy_setup t;
    make_flat_model(t.model, 4, 1);
    t.ctx.recalculate = [](model_record&, response_state&, array2<float>&, array2<float>&,
                           array1<float>& r) {
        r(1) = 3.0f;
        r(2) = 4.0f;
    };
    t.state.inversion_count = 2;
    t.state.misfit_weight = 10.0f;
    array1<float> residual(1, 2);
    EXPECT_FLOAT_EQ(evaluate_misfit(t.ctx, t.model.profile.mag_channels,
                                    t.model.profile.grav_channels, residual),
                    25.0f);  // 10 x 5 / 2; an r.m.s. would give 35.36
}

TEST(misfit_weight, is_one_ten_ten_and_hundred) {
    const int expected[2][2] = {{1, 10}, {10, 100}};
    for (int mode = 0; mode <= 1; ++mode) {
        for (int gradient = 0; gradient <= 1; ++gradient) {
            toy_setup t;
            make_flat_model(t.model, 41, 1);
            free_only(t.model, {&body_record::width});
            t.response.inversion_fits_gradient = gradient;
            int status = 0;
            run_whole_model(t, mode, 1, status);
            EXPECT_EQ(status, 1);
            EXPECT_FLOAT_EQ(t.state.misfit_weight, static_cast<float>(expected[mode][gradient]));
        }
    }
}

TEST(coordinate_descent, parameter_without_influence_drifts_one_probe_and_ends_the_run) {
    toy_setup t;
    make_flat_model(t.model, 41, 1);
    t.model.body(1).distance.value = 200.0f;
    observe_with(t, [](body_record& b) { b.distance.value = 220.0f; });
    free_only(t.model, {&body_record::plunge});  // the toy response ignores plunge
    int status = 0;
    const float misfit = run_whole_model(t, inversion_mode_magnetics, 25, status);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(t.state.iterations_done, 1);
    EXPECT_TRUE(t.state.stalled);
    EXPECT_FLOAT_EQ(t.model.body(1).plunge.value, 0.025f);  // 1% of the step 2.5, not put back
    EXPECT_EQ(t.view.misfit_box(0), t.view.misfit_box(1));
    EXPECT_GT(misfit, 0.0f);
    EXPECT_EQ(t.view.redraws, 0);
}

TEST(coordinate_descent, zero_misfit_at_the_start_restores_every_value) {
    toy_setup t;
    make_flat_model(t.model, 41, 1);
    t.model.body(1).distance.value = 200.0f;
    observe_with(t, [](body_record&) {});
    free_only(t.model, {&body_record::distance, &body_record::susc});
    int status = 0;
    const float misfit = run_whole_model(t, inversion_mode_magnetics, 25, status);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(misfit, 0.0f);
    EXPECT_EQ(t.state.iterations_done, 1);
    EXPECT_EQ(t.model.body(1).distance.value, 200.0f);
    EXPECT_EQ(t.model.body(1).susc.value, 50000.0f);
    // initial, probe of each, and the iteration's evaluation on the main arrays
    EXPECT_EQ(t.state.misfit_evaluations, 4);
}

TEST(coordinate_descent, large_secant_step_is_clamped_and_halved_within_a_run_wide_budget) {
    toy_setup t;
    make_flat_model(t.model, 81, 2);  // 0..800 m
    t.model.body(1).distance.value = 200.0f;
    t.model.body(2).distance.value = 600.0f;
    // Both bodies sit where their anomalies are; only the amplitude is wrong, so every move
    // of a distance makes the fit worse and the secant step is far larger than the step size.
    // Strong anomalies, so that a probe at the optimum still changes the misfit noticeably.
    t.model.body(1).susc.value = t.model.body(2).susc.value = 5e6f;
    const body_record b1 = t.model.body(1), b2 = t.model.body(2);
    t.model.body(1).susc.value = t.model.body(2).susc.value = 1e7f;
    observe_current_model(t.model, t.response);
    t.model.body(1) = b1;
    t.model.body(2) = b2;
    clear_body_results(t.model);
    free_only(t.model, {&body_record::distance});

    int status = 0;
    run_whole_model(t, inversion_mode_magnetics, 25, status);
    // Body 1: probe at +2, then exactly one step size (10) and three halvings, all refused.
    const std::vector<float> tried{200.0f, 202.0f, 190.0f, 195.0f, 197.5f, 198.75f};
    ASSERT_GE(t.engine.distances_seen.size(), tried.size());
    EXPECT_EQ(
        std::vector<float>(t.engine.distances_seen.begin(), t.engine.distances_seen.begin() + 6),
        tried);
    // Body 2: the budget of four is spent, so its refused trial ends the visit at once:
    // initial + (probe + 4 trials) + (probe + 1 trial) + the main evaluation.
    EXPECT_EQ(t.state.misfit_evaluations, 9);
    EXPECT_EQ(t.model.body(1).distance.value, 200.0f);
    EXPECT_EQ(t.model.body(2).distance.value, 600.0f);
    EXPECT_EQ(t.state.iterations_done, 1);
}

TEST(coordinate_descent, parameter_at_its_max_cannot_leave_it) {
    toy_setup t;
    make_flat_model(t.model, 41, 1);
    t.model.body(1).distance.value = 200.0f;
    observe_with(t, [](body_record& b) { b.susc.value = 40000.0f; });
    free_only(t.model, {&body_record::susc});
    t.model.body(1).susc.max = 50000.0f;  // the value sits at its upper limit
    int status = 0;
    run_whole_model(t, inversion_mode_magnetics, 25, status);
    // The fit wants a decrease, the move away from the upper limit is refused: restored.
    EXPECT_EQ(t.model.body(1).susc.value, 50000.0f);
    EXPECT_EQ(t.state.misfit_evaluations, 3);
    EXPECT_EQ(t.state.iterations_done, 1);
}

// The lower stop is tested against the value the probe left, x0 + delta, so it fires only when
// delta is within 0.0001 of the limit; a parameter sitting at its lower limit is in practice not
// refused a move up, and may move away from the limit into the fit.
TEST(coordinate_descent, lower_stop_reads_the_probed_value_so_a_parameter_at_its_min_moves_up) {
    toy_setup t;
    make_flat_model(t.model, 41, 1);
    t.model.body(1).distance.value = 200.0f;
    observe_with(t, [](body_record& b) { b.susc.value = 60000.0f; });
    free_only(t.model, {&body_record::susc});
    t.model.body(1).susc.min = 50000.0f;  // the value sits at its lower limit
    int status = 0;
    run_whole_model(t, inversion_mode_magnetics, 3, status);
    EXPECT_FLOAT_EQ(t.model.body(1).susc.value, 50750.0f);  // three steps of 250 upward
}

TEST(coordinate_descent, recovers_a_shifted_body_and_recomputes_one_body_per_evaluation) {
    toy_setup t;
    make_flat_model(t.model, 61, 5);  // 0..600 m
    for (int b = 1; b <= 5; ++b) t.model.body(b).distance.value = 100.0f * b;
    observe_with(t, [](body_record& b) {
        b.distance.value = 130.0f;
        b.width.value = 150.0f;
    });
    free_only(t.model, {&body_record::distance, &body_record::width});
    for (int b = 2; b <= 5; ++b) t.model.body(b).fix = 0;  // only body 1 takes part
    t.model.body(1).fix = 1;
    int status = 0;
    const float misfit = run_whole_model(t, inversion_mode_magnetics, 60, status);
    const float initial = std::stof(t.view.misfit_box(0));
    EXPECT_EQ(status, 1);
    EXPECT_LT(misfit, 0.01f * initial);
    EXPECT_NEAR(t.model.body(1).distance.value, 130.0f, 1.0f);
    EXPECT_NEAR(t.model.body(1).width.value, 150.0f, 3.0f);
    // Five bodies computed once at the start, then one body per evaluation.
    EXPECT_LE(t.engine.mag_computations, t.state.misfit_evaluations + 5);
    EXPECT_EQ(t.state.inversion_parameter_count, 2);
}

TEST(coordinate_descent, max_iterations_of_one_runs_one_pass_without_a_redraw) {
    toy_setup t;
    make_flat_model(t.model, 41, 1);
    t.model.body(1).distance.value = 150.0f;
    observe_with(t, [](body_record& b) { b.distance.value = 250.0f; });
    free_only(t.model, {&body_record::distance});
    int status = 0;
    run_whole_model(t, inversion_mode_magnetics, 1, status);
    EXPECT_EQ(t.state.iterations_done, 1);
    EXPECT_FALSE(t.state.stalled);
    EXPECT_EQ(t.view.redraws, 0);
    EXPECT_EQ(t.view.text(inversion_control::Text_num_iterations, 0), "1");
    EXPECT_FLOAT_EQ(t.model.body(1).distance.value, 160.0f);  // one clamped step of 10
}

TEST(coordinate_descent, stop_is_served_after_one_further_iteration) {
    toy_setup t;
    make_flat_model(t.model, 41, 1);
    t.model.body(1).distance.value = 200.0f;
    observe_with(t, [](body_record& b) { b.distance.value = 260.0f; });
    free_only(t.model, {&body_record::distance});
    // Pump calls 1 and 2 are before the loop; call 3 ends iteration 1: the click lands there.
    t.ui.on_pump = [&](int call) {
        if (call == 3) on_stop_inversion(t.ctx);
    };
    int status = 0;
    run_whole_model(t, inversion_mode_magnetics, 25, status);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(t.state.iterations_done, 2);
    EXPECT_FALSE(t.state.stalled);
    EXPECT_EQ(t.view.redraws, 1);
    EXPECT_FLOAT_EQ(t.model.body(1).distance.value, 220.0f);
}

}  // namespace
}  // namespace trensil
