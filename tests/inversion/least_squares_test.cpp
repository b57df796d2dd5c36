// The damped least-squares solver on synthetic lines made by the engine itself with seeded
// noise: recovery within the stated standard errors, joint and robust fits, limits, the
// Jacobian through the per-body cache, and the session around it.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "inversion/fit_summary.h"
#include "inversion/inversion_session.h"
#include "inversion/least_squares_problem.h"
#include "inversion/noise_level.h"
#include "inversion/parameter_vector.h"
#include "inversion_fakes.h"
#include "synthetic_line.h"

namespace trensil {
namespace {

using testing::free_only;
using synthetic_line = testing::synthetic_line_with<testing::recording_view>;
using member = parameter body_record::*;

constexpr member distance = &body_record::distance;
constexpr member dip = &body_record::dip;
constexpr member top = &body_record::top;
constexpr member susc = &body_record::susc;
constexpr member density = &body_record::density;

// The dipping thick sheet the coordinate descent stalls on: dip 60 as the truth, the start 60 m
// off in distance, 10 degrees off in dip and 40 per cent off in susceptibility.
void dipping_sheet_truth(synthetic_line& line) {
    line.model.body(1).dip.value = 60.0f;
}
void dipping_sheet_start(synthetic_line& line) {
    free_only(line.model, {distance, dip, susc});
    body_record& b = line.model.body(1);
    b.distance.value = 560.0f;
    b.dip.value = 70.0f;
    b.susc.value = 30000.0f;
}

// The value each table row held in the true model.
std::vector<float> true_values(const synthetic_line& line, const std::vector<body_record>& truth) {
    std::vector<float> values;
    const inversion_state& s = line.state;
    for (int k = 1; k <= s.inversion_parameter_count; ++k)
        values.push_back(
            property_by_row(truth[static_cast<std::size_t>(s.parameter_map(k, map_body))],
                            s.parameter_map(k, map_property_row))
                ->value);
    return values;
}

// How many of its standard errors each parameter lies from the truth (-1: no error estimated).
std::vector<double> error_multiples(const synthetic_line& line, const std::vector<float>& truth) {
    std::vector<double> multiples;
    const inversion_state& s = line.state;
    for (int k = 1; k <= s.inversion_parameter_count; ++k) {
        const parameter_error& e = s.fit.errors[static_cast<std::size_t>(k - 1)];
        const double off = std::fabs(s.inversion_parameters(k, column_value) -
                                     truth[static_cast<std::size_t>(k - 1)]);
        multiples.push_back(e.state == error_state::estimated ? off / e.standard_error : -1.0);
    }
    return multiples;
}

// The line with the truth observed, the bodies kept, noise added, and the start model set.
struct recovery_run {
    synthetic_line line;
    std::vector<body_record> truth;

    recovery_run(int stations, int data, void (*make_truth)(synthetic_line&),
                 void (*make_start)(synthetic_line&), std::uint32_t seed = 7)
        : line(stations, 2, data) {
        make_truth(line);
        line.observe();
        truth.assign(line.model.bodies.begin(), line.model.bodies.end());
        line.add_noise(seed, 0.5f, 0.01f);
        make_start(line);
        clear_body_results(line.model);
        calculate_display_channels(line.model, line.response);
        line.state.solver = inversion_solver::damped_least_squares;
    }
};

// Each case with noise of one seed: every free parameter within three of its standard errors of
// the truth (the calibration test below checks that the errors are honest), the normalised
// misfit near 1 with the noise levels given.
TEST(least_squares_recovery, bodies_come_back_within_their_errors_and_the_misfit_at_the_noise) {
    const struct {
        const char* name;
        int data;
        bool joint;
        void (*truth)(synthetic_line&);
        void (*start)(synthetic_line&);
    } table[] = {
        {"dipping sheet: distance, dip, susceptibility", synthetic_line::magnetics, false,
         dipping_sheet_truth, dipping_sheet_start},
        {"two sheets: distance and susceptibility of each", synthetic_line::magnetics, false,
         [](synthetic_line& l) {
             l.model.body(1).distance.value = 350.0f;
             body_record& second = l.add_copy_of_first_body();
             second.distance.value = 620.0f;
             second.dip.value = 75.0f;
             second.susc.value = 30000.0f;
         },
         [](synthetic_line& l) {
             free_only(l.model, {distance, susc});
             l.model.body(1).distance.value = 385.0f;
             l.model.body(1).susc.value = 35000.0f;
             l.model.body(2).distance.value = 590.0f;
             l.model.body(2).susc.value = 21000.0f;
         }},
        {"joint: depth, susceptibility and density of a shared body", synthetic_line::both, true,
         [](synthetic_line& l) { l.model.body(1).dip.value = 70.0f; },
         [](synthetic_line& l) {
             free_only(l.model, {distance, top, susc, density});
             body_record& b = l.model.body(1);
             b.distance.value = 530.0f;
             b.top.value = -55.0f;
             b.susc.value = 35000.0f;
             b.density.value = 0.35f;
         }},
    };
    for (const auto& r : table) {
        SCOPED_TRACE(r.name);
        recovery_run run(101, r.data, r.truth, r.start);
        synthetic_line& line = run.line;
        line.state.least_squares = {r.joint, false, 0.5f, 0.01f};
        float initial = 0.0f;
        const float misfit = line.invert(inversion_mode_magnetics, initial);
        ASSERT_EQ(line.status, 1);
        ASSERT_TRUE(line.state.fit.available);
        EXPECT_LT(misfit, 0.05f * initial);
        for (double m : error_multiples(line, true_values(line, run.truth))) {
            EXPECT_GE(m, 0.0);  // every parameter has its error
            EXPECT_LT(m, 3.0);
        }
        EXPECT_NEAR(line.state.fit.normalised_misfit, 1.0f, 0.2f);
        EXPECT_EQ(line.state.fit.data_count, r.joint ? 202 : 101);
    }
}

// Over 30 noise seeds the deviations from the truth, in standard errors, have an r.m.s. near
// 1: the errors are neither inflated nor too small.
TEST(least_squares_recovery, standard_errors_match_the_scatter_of_repeated_fits) {
    double sum_squares = 0.0;
    int count = 0;
    for (std::uint32_t seed = 1; seed <= 30; ++seed) {
        recovery_run run(101, synthetic_line::magnetics, dipping_sheet_truth, dipping_sheet_start,
                         seed);
        float initial = 0.0f;
        run.line.invert(inversion_mode_magnetics, initial);
        ASSERT_EQ(run.line.status, 1);
        for (double m : error_multiples(run.line, true_values(run.line, run.truth))) {
            sum_squares += m * m;
            ++count;
        }
    }
    EXPECT_NEAR(std::sqrt(sum_squares / count), 1.0, 0.3);
}

// Two spikes of 300 nT on 201 stations (1 per cent), on the flanks of the anomaly: the plain
// fit is pulled many of the robust fit's standard errors away, the Huber fit stays within three
// of them. The noise level comes from the data.
TEST(least_squares_recovery, robust_loss_survives_one_per_cent_spikes_and_the_plain_loss_not) {
    double worst[2] = {0.0, 0.0};
    std::vector<float> robust_errors;
    std::vector<float> values[2];
    std::vector<float> truth;
    for (int robust = 1; robust >= 0; --robust) {
        recovery_run run(201, synthetic_line::magnetics, dipping_sheet_truth, dipping_sheet_start);
        synthetic_line& line = run.line;
        line.add_spikes({45, 60}, 300.0f);
        line.state.least_squares.robust = robust == 1;
        float initial = 0.0f;
        line.invert(inversion_mode_magnetics, initial);
        ASSERT_EQ(line.status, 1);
        truth = true_values(line, run.truth);
        for (int k = 1; k <= line.state.inversion_parameter_count; ++k) {
            values[robust].push_back(line.state.inversion_parameters(k, column_value));
            if (robust == 1)
                robust_errors.push_back(
                    line.state.fit.errors[static_cast<std::size_t>(k - 1)].standard_error);
        }
        if (robust == 1) {
            EXPECT_NEAR(line.state.fit.noise_mag, 0.5f, 0.15f);
            EXPECT_NEAR(line.state.fit.normalised_misfit, 1.0f, 0.25f);
        }
    }
    for (int robust = 0; robust <= 1; ++robust)
        for (std::size_t k = 0; k < truth.size(); ++k)
            worst[robust] = std::fmax(worst[robust],
                                      std::fabs(values[robust][k] - truth[k]) / robust_errors[k]);
    EXPECT_LT(worst[1], 3.0);
    EXPECT_GT(worst[0], 10.0);
}

// The susceptibility may not reach the true 50000: it ends on its max, is never evaluated
// beyond it (the Jacobian steps inward there), and is reported at its limit, without an error.
TEST(least_squares_limits, a_parameter_at_its_limit_stays_there_and_gets_no_error) {
    recovery_run run(101, synthetic_line::magnetics, dipping_sheet_truth, dipping_sheet_start);
    synthetic_line& line = run.line;
    line.model.body(1).susc.max = 45000.0f;
    float highest = 0.0f;
    const response_function engine = line.ctx.recalculate;
    line.ctx.recalculate = [&](model_record& m, response_state& r, array2<float>& a,
                               array2<float>& b, array1<float>& res) {
        highest = std::fmax(highest, m.body(1).susc.value);
        engine(m, r, a, b, res);
    };
    float initial = 0.0f;
    line.invert(inversion_mode_magnetics, initial);
    ASSERT_EQ(line.status, 1);
    EXPECT_EQ(line.model.body(1).susc.value, 45000.0f);
    EXPECT_LE(highest, 45000.0f);
    const std::vector<parameter_error>& e = line.state.fit.errors;
    ASSERT_EQ(e.size(), 3u);
    EXPECT_EQ(e[0].state, error_state::estimated);  // distance
    EXPECT_EQ(e[1].state, error_state::estimated);  // dip
    EXPECT_EQ(e[2].state, error_state::at_limit);   // susc
    for (const parameter_correlation& c : line.state.fit.strongest) {
        EXPECT_NE(c.first, 3);
        EXPECT_NE(c.second, 3);
    }
}

// Three bodies, a joint fit: the distance of body 1 moves both responses, the susceptibility of
// body 2 only the magnetic one, the density of body 3 only gravity. Each column recomputes its
// own body alone, only what the property moves, and agrees to the bit with a recompute of the
// whole model; afterwards the model is as it was. A magnetic fit on the same line leaves the
// gravity of the moved body alone.
TEST(least_squares_jacobian, a_column_costs_one_body_response_and_matches_a_full_recompute) {
    for (const bool joint : {true, false}) {
        SCOPED_TRACE(joint ? "joint" : "magnetics only");
        synthetic_line line(61, 2, synthetic_line::both);
        line.add_copy_of_first_body().distance.value = 200.0f;
        line.add_copy_of_first_body().distance.value = 400.0f;
        line.observe();
        line.add_noise(11, 0.5f, 0.01f);
        free_only(line.model, {});
        line.model.body(1).distance.vary = 1.0f;
        line.model.body(2).susc.vary = 1.0f;
        line.model.body(3).density.vary = 1.0f;
        inversion_state& s = line.state;
        s.least_squares.joint = joint;
        s.inversion_count = 61;
        s.current_residual.resize(1, 61);
        int count = 0;
        const int mode = joint ? inversion_mode_joint : inversion_mode_magnetics;
        collect_all_parameters(line.model, s, false, mode, count);
        dimension_parameter_table(s, count);
        collect_all_parameters(line.model, s, true, mode, count);
        ASSERT_EQ(count, joint ? 3 : 2);
        profile_block& p = line.model.profile;
        p.saved_mag_channels = p.mag_channels;
        p.saved_grav_channels = p.grav_channels;

        least_squares_problem problem = prepare_least_squares(line.ctx, s.least_squares);
        std::vector<double> x;
        for (int k = 1; k <= count; ++k) x.push_back(s.inversion_parameters(k, column_value));
        move_to_point(line.ctx, problem, x.data());
        const std::vector<double> residual = problem.residual;
        const array2<float> mag_before = p.mag_channels, grav_before = p.grav_channels;
        std::vector<array2<float>> bodies_before;
        for (int b = 1; b <= 3; ++b) bodies_before.push_back(line.model.body(b).body_response);

        line.response.mag_responses_computed = line.response.grav_responses_computed = 0;
        evaluate_jacobian(line.ctx, problem);
        EXPECT_EQ(line.response.mag_responses_computed, 2);
        EXPECT_EQ(line.response.grav_responses_computed, joint ? 2 : 0);
        EXPECT_EQ(p.mag_channels, mag_before);
        EXPECT_EQ(p.grav_channels, grav_before);
        for (int b = 1; b <= 3; ++b) {
            EXPECT_EQ(line.model.body(b).body_response,
                      bodies_before[static_cast<std::size_t>(b - 1)]);
            EXPECT_EQ(line.model.body(b).mag_valid, -1);
            EXPECT_EQ(line.model.body(b).grav_valid, -1);
        }

        // The same columns from the whole model recomputed at each moved point.
        const std::size_t m = static_cast<std::size_t>(problem.data());
        for (int k = 1; k <= count; ++k) {
            least_squares_problem moved = prepare_least_squares(line.ctx, s.least_squares);
            std::vector<double> xk = x;
            const double h = 1e-3 * std::fmax(std::fabs(x[static_cast<std::size_t>(k - 1)]),
                                              s.inversion_parameters(k, column_step));
            xk[static_cast<std::size_t>(k - 1)] += h;
            clear_body_results(line.model);
            move_to_point(line.ctx, moved, xk.data());
            const double step = static_cast<double>(static_cast<float>(xk[k - 1])) -
                                static_cast<float>(x[static_cast<std::size_t>(k - 1)]);
            for (std::size_t i = 0; i < m; ++i) {
                const double full = (moved.residual[i] - residual[i]) / step;
                ASSERT_EQ(problem.jacobian[static_cast<std::size_t>(k - 1) * m + i], full)
                    << "column " << k << " datum " << i;
            }
            clear_body_results(line.model);
            problem.point.clear();
            move_to_point(line.ctx, problem, x.data());
        }
    }
}

// A recording observer: both solvers report the start and every iteration through it.
struct recording_observer : inversion_observer {
    std::vector<inversion_progress> seen;
    void run_started(const inversion_progress& p) override { seen.push_back(p); }
    void iteration_done(const inversion_progress& p) override { seen.push_back(p); }
};

TEST(least_squares_session, both_solvers_report_progress_as_numbers_and_never_report_a_rise) {
    for (const auto solver :
         {inversion_solver::coordinate_descent, inversion_solver::damped_least_squares}) {
        recovery_run run(101, synthetic_line::magnetics, dipping_sheet_truth, dipping_sheet_start);
        synthetic_line& line = run.line;
        line.state.solver = solver;
        recording_observer observer;
        line.ctx.observer = &observer;
        float initial = 0.0f;
        const float misfit = line.invert(inversion_mode_magnetics, initial, 8);
        ASSERT_EQ(line.status, 1);
        EXPECT_EQ(line.view.misfit_box(0), "");  // the panel is not written by another observer
        ASSERT_EQ(static_cast<int>(observer.seen.size()), line.state.iterations_done + 1);
        for (std::size_t i = 0; i < observer.seen.size(); ++i) {
            EXPECT_EQ(observer.seen[i].iteration, static_cast<int>(i));
            EXPECT_EQ(observer.seen[i].parameters.size(), 3u);
            if (i > 0) {
                EXPECT_LE(observer.seen[i].misfit, observer.seen[i - 1].misfit);
            }
        }
        EXPECT_EQ(observer.seen.back().misfit, misfit);
        EXPECT_EQ(observer.seen.back().parameters[2], line.model.body(1).susc.value);
    }
}

// The Stop click is served once per iteration, after the progress of that iteration is shown,
// and ends the run there. Reject Changes goes back to the start; a second run and Restore Best
// Model bring back the best fit.
TEST(least_squares_session, stop_reject_and_restore_work_as_after_the_coordinate_descent) {
    recovery_run run(101, synthetic_line::magnetics, dipping_sheet_truth, dipping_sheet_start);
    synthetic_line& line = run.line;
    int pumps = 0;
    testing::pumping_platform ui;
    ui.on_pump = [&](int) {
        if (line.view.text(inversion_control::Text_num_iterations, 0) == "2" && pumps++ == 0)
            on_stop_inversion(line.ctx);
    };
    inversion_context ctx{line.model, line.response, line.state, ui, line.view};
    ctx.write_model = [](model_record&, const std::string&) { return true; };
    line.view.set_text(inversion_control::Text_max_iterations, 0, "");
    on_invert_click(ctx, 1, 1);
    EXPECT_EQ(line.state.iterations_done, 2);
    EXPECT_EQ(line.state.fit.stop_reason, "stopped");
    EXPECT_EQ(line.view.text(inversion_control::Label_status, 0), "Inversion succeeded");
    EXPECT_TRUE(line.view.is_enabled(inversion_control::Command_reject_changes));
    const float stopped_at = line.model.body(1).distance.value;
    EXPECT_NE(stopped_at, 560.0f);

    on_reject_changes(ctx);
    EXPECT_EQ(line.model.body(1).distance.value, 560.0f);
    EXPECT_EQ(line.model.body(1).susc.value, 30000.0f);
    EXPECT_FALSE(line.state.fit.available);

    on_invert_click(ctx, 1, 1);  // to the end this time
    const float fitted = line.model.body(1).distance.value;
    EXPECT_NEAR(fitted, 500.0f, 1.0f);
    line.model.body(1).distance.value = 700.0f;  // the user moves the body away
    on_restore_best(ctx);
    EXPECT_EQ(line.model.body(1).distance.value, fitted);
}

// A joint fit needs both data types. A joint misfit counts both, so a best model of a one-type
// run is forgotten when a joint run starts, and the joint run's own start becomes the best to
// beat.
TEST(least_squares_session, a_joint_fit_needs_both_data_and_keeps_its_own_best_model) {
    synthetic_line magnetic_only(41, 2, synthetic_line::magnetics);
    magnetic_only.state.solver = inversion_solver::damped_least_squares;
    magnetic_only.state.least_squares.joint = true;
    float initial = 0.0f;
    magnetic_only.invert(inversion_mode_magnetics, initial);
    EXPECT_EQ(magnetic_only.status, 0);
    EXPECT_EQ(magnetic_only.ui.messages,
              std::vector<std::string>{"A joint fit needs both magnetic and gravity data"});

    recovery_run run(101, synthetic_line::both, dipping_sheet_truth, dipping_sheet_start);
    synthetic_line& line = run.line;
    line.invert(inversion_mode_magnetics, initial, 2);
    const float one_type_best = line.state.best_misfit;
    line.state.least_squares.joint = true;
    line.model.body(1).distance.value = 560.0f;
    const float joint = line.invert(inversion_mode_magnetics, initial);
    ASSERT_EQ(line.status, 1);
    EXPECT_NE(line.state.best_misfit, one_type_best);
    EXPECT_EQ(line.state.best_misfit, joint);
    EXPECT_GT(initial, joint);
    EXPECT_TRUE(line.state.best_measure.joint);
}

TEST(noise_level, fourth_differences_see_the_noise_not_the_anomaly_nor_the_spikes) {
    testing::gaussian_noise noise(5);
    std::vector<float> pure(2000), line(2000);
    for (std::size_t i = 0; i < line.size(); ++i) {
        const double x = (static_cast<double>(i) - 1000.0) / 20.0;  // 20 stations wide
        pure[i] = static_cast<float>(2.0 * noise.next());
        line[i] = static_cast<float>(500.0 / (1.0 + x * x)) + pure[i];
    }
    const float sigma = estimate_noise_level(pure.data(), 2000);
    EXPECT_NEAR(sigma, 2.0f, 0.2f);
    EXPECT_NEAR(estimate_noise_level(line.data(), 2000), sigma, 0.01f * sigma);
    // 1% spikes spoil 5% of the fourth differences: the median moves a few per cent.
    for (std::size_t i = 0; i < line.size(); i += 100) line[i] += 400.0f;
    EXPECT_NEAR(estimate_noise_level(line.data(), 2000), sigma, 0.1f * sigma);

    const float smooth[] = {0.0f, 1.0f, 4.0f, 9.0f, 16.0f, 25.0f, 36.0f};  // no scatter at all
    EXPECT_FLOAT_EQ(estimate_noise_level(smooth, 7), 36.0f * 1e-4f);
    const float flat[] = {3.0f, 3.0f, 3.0f, 3.0f, 3.0f, 3.0f};
    EXPECT_EQ(estimate_noise_level(flat, 6), 1.0f);
}

// A straight line a + b x through ten points: the textbook errors and correlation; a column
// repeated (in other units) makes both copies undetermined; a parameter at its limit is held
// and left out.
TEST(parameter_errors, straight_line_errors_and_undetermined_and_held_parameters) {
    const int n = 10;
    const double r[n] = {0.3, -0.5, 0.1, 0.8, -0.2, -0.7, 0.4, 0.0, -0.1, 0.6};
    std::vector<double> residual(r, r + n), j3;
    double sx = 0, sxx = 0, ss = 0;
    for (int i = 0; i < n; ++i) {
        sx += i;
        sxx += i * i;
        ss += r[i] * r[i];
    }
    for (int c = 0; c < 3; ++c)
        for (int i = 0; i < n; ++i) j3.push_back(c == 0 ? 1.0 : i);
    const std::vector<double> j2(j3.begin(), j3.begin() + 2 * n);

    fit_summary f;
    estimate_parameter_errors(j2, residual, n, 2, {false, false}, 0.0, f);
    const double s2 = ss / (n - 2), det = n * sxx - sx * sx;
    EXPECT_NEAR(f.errors[0].standard_error, std::sqrt(s2 * sxx / det), 1e-6);
    EXPECT_NEAR(f.errors[1].standard_error, std::sqrt(s2 * n / det), 1e-6);
    ASSERT_EQ(f.strongest.size(), 1u);
    EXPECT_NEAR(f.strongest[0].value, -sx / std::sqrt(n * sxx), 1e-6);
    EXPECT_NEAR(f.normalised_misfit, std::sqrt(s2), 1e-6);

    // The copy in units a thousand times larger trades with the original just the same.
    for (int i = 0; i < n; ++i) j3[static_cast<std::size_t>(2 * n + i)] *= 1000.0;
    estimate_parameter_errors(j3, residual, n, 3, {false, false, false}, 0.0, f);
    EXPECT_EQ(f.errors[0].state, error_state::estimated);
    EXPECT_EQ(f.errors[1].state, error_state::undetermined);
    EXPECT_EQ(f.errors[2].state, error_state::undetermined);
    EXPECT_TRUE(f.strongest.empty());

    estimate_parameter_errors(j2, residual, n, 2, {false, true}, 0.0, f);
    EXPECT_EQ(f.errors[1].state, error_state::at_limit);
    EXPECT_NEAR(f.errors[0].standard_error, std::sqrt(ss / (n - 1) / n), 1e-6);
}

}  // namespace
}  // namespace trensil
