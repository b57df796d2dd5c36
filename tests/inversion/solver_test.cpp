#include <gtest/gtest.h>

#include <vector>

#include "inversion/parameter_vector.h"
#include "inversion/solver.h"
#include "inversion_fakes.h"

namespace trensil {
namespace {

using testing::free_only;
using testing::toy_setup;

TEST(misfit, residual_norm_sums_in_double_and_the_misfit_is_weighted_norm_over_n_not_rms) {
    array1<float> v(1, 3);
    EXPECT_EQ(residual_norm(0, v), 0.0f);
    v(1) = 3.0f;
    v(2) = 4.0f;
    v(3) = 100.0f;  // beyond count: not summed
    EXPECT_EQ(residual_norm(2, v), 5.0f);
    v(1) = v(2) = 1e20f;  // squares overflow single precision but not the double sum
    EXPECT_FLOAT_EQ(residual_norm(2, v), 1.41421356e20f);

    toy_setup t;
    t.flat_line(4, 1);
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

TEST(coordinate_descent, parameter_without_influence_drifts_one_probe_and_ends_the_run) {
    toy_setup t;
    t.shifted_body(220.0f);
    free_only(t.model, {&body_record::plunge});  // the toy response ignores plunge
    int status = 0;
    EXPECT_GT(t.run(25, status), 0.0f);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(t.state.iterations_done, 1);
    EXPECT_TRUE(t.state.stalled);
    EXPECT_FLOAT_EQ(t.model.body(1).plunge.value, 0.025f);  // 1% of the step 2.5, not put back
    EXPECT_EQ(t.view.misfit_box(0), t.view.misfit_box(1));
    EXPECT_EQ(t.view.redraws, 0);
}

TEST(coordinate_descent, zero_misfit_at_the_start_restores_every_value) {
    toy_setup t;
    t.shifted_body(200.0f);
    t.model.body(1).susc.vary = 1.0f;
    int status = 0;
    EXPECT_EQ(t.run(25, status), 0.0f);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(t.state.iterations_done, 1);
    EXPECT_EQ(t.model.body(1).distance.value, 200.0f);
    EXPECT_EQ(t.model.body(1).susc.value, 50000.0f);
    // initial, probe of each, and the iteration's evaluation on the main arrays
    EXPECT_EQ(t.state.misfit_evaluations, 4);
}

TEST(coordinate_descent, large_secant_step_is_clamped_and_halved_within_a_run_wide_budget) {
    toy_setup t;
    t.flat_line(81, 2);  // 0..800 m
    t.model.body(1).distance.value = 200.0f;
    t.model.body(2).distance.value = 600.0f;
    // Both bodies sit where their anomalies are; only the amplitude is wrong (strong anomalies,
    // so that a probe at the optimum still changes the misfit noticeably), so every move of a
    // distance makes the fit worse and the secant step is far larger than the step size.
    t.model.body(1).susc.value = t.model.body(2).susc.value = 1e7f;
    t.observe_with([](body_record&) {});
    t.model.body(1).susc.value = t.model.body(2).susc.value = 5e6f;
    clear_body_results(t.model);
    free_only(t.model, {&body_record::distance});

    int status = 0;
    t.run(25, status);
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

// A parameter at its max is refused the move the fit wants (down) and put back. The lower stop,
// by contrast, is tested against the value the probe left, x0 + delta, so it fires only when
// delta is within 0.0001 of the limit: a parameter sitting at its min is in practice not refused
// a move up, and moves away from the limit into the fit.
TEST(coordinate_descent, limit_senses_max_holds_and_lower_stop_reads_the_probed_value) {
    const struct {
        const char* name;
        float truth;
        bool at_max;
        int max_iterations;
        float end;
        int evaluations;
    } table[] = {
        {"at max, fit wants less", 40000.0f, true, 25, 50000.0f, 3},
        {"at min, fit wants more", 60000.0f, false, 3, 50750.0f, -1},  // three steps of 250 up
    };
    for (const auto& r : table) {
        SCOPED_TRACE(r.name);
        toy_setup t;
        t.shifted_body(200.0f);
        t.observe_with([&r](body_record& b) { b.susc.value = r.truth; });
        free_only(t.model, {&body_record::susc});
        (r.at_max ? t.model.body(1).susc.max : t.model.body(1).susc.min) = 50000.0f;
        int status = 0;
        t.run(r.max_iterations, status);
        EXPECT_FLOAT_EQ(t.model.body(1).susc.value, r.end);
        if (r.evaluations > 0) {
            EXPECT_EQ(t.state.misfit_evaluations, r.evaluations);
            EXPECT_EQ(t.state.iterations_done, 1);
        }
    }
}

TEST(coordinate_descent, recovers_a_shifted_body_and_recomputes_one_body_per_evaluation) {
    toy_setup t;
    t.flat_line(61, 5);  // 0..600 m
    for (int b = 1; b <= 5; ++b) t.model.body(b).distance.value = 100.0f * b;
    t.observe_with([](body_record& b) {
        b.distance.value = 130.0f;
        b.width.value = 150.0f;
    });
    free_only(t.model, {&body_record::distance, &body_record::width});
    for (int b = 2; b <= 5; ++b) t.model.body(b).fix = 0;  // only body 1 takes part
    int status = 0;
    const float misfit = t.run(60, status);
    EXPECT_EQ(status, 1);
    EXPECT_LT(misfit, 0.01f * std::stof(t.view.misfit_box(0)));
    EXPECT_NEAR(t.model.body(1).distance.value, 130.0f, 1.0f);
    EXPECT_NEAR(t.model.body(1).width.value, 150.0f, 3.0f);
    // Five bodies computed once at the start, then one body per evaluation.
    EXPECT_LE(t.engine.mag_computations, t.state.misfit_evaluations + 5);
    EXPECT_EQ(t.state.inversion_parameter_count, 2);
}

// One iteration asked for: one pass, one clamped step of 10, no redraw. A Stop click during
// iteration 1 (pump calls 1 and 2 come before the loop) is served after one further iteration.
TEST(coordinate_descent, one_iteration_and_a_stop_click_end_the_run_where_they_should) {
    const struct {
        int max_iterations, stop_at_pump, iterations, redraws;
        float distance;
    } table[] = {{1, 0, 1, 0, 210.0f}, {25, 3, 2, 1, 220.0f}};
    for (const auto& r : table) {
        SCOPED_TRACE(r.max_iterations);
        toy_setup t;
        t.shifted_body(260.0f);
        t.ui.on_pump = [&](int call) {
            if (call == r.stop_at_pump) on_stop_inversion(t.ctx);
        };
        int status = 0;
        t.run(r.max_iterations, status);
        EXPECT_EQ(status, 1);
        EXPECT_EQ(t.state.iterations_done, r.iterations);
        EXPECT_FALSE(t.state.stalled);
        EXPECT_EQ(t.view.redraws, r.redraws);
        EXPECT_FLOAT_EQ(t.model.body(1).distance.value, r.distance);
        if (r.max_iterations == 1) {
            EXPECT_EQ(t.view.text(inversion_control::Text_num_iterations, 0), "1");
        }
    }
}

}  // namespace
}  // namespace trensil
