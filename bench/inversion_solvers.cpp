// The two solvers on the recovery cases of the tests (synthetic lines from the engine itself,
// 0.5 nT and 0.01 mGal of seeded noise): wall time of a run, forward evaluations (parameter
// vectors and Jacobian columns), body responses computed, iterations, the final misfit and how
// far the worst free parameter ended from the truth, in its step sizes. The coordinate descent
// fits one data type; in the joint case it fits the magnetics alone, and it has no robust loss.
//
// A second pair times one Jacobian column against one evaluation of the whole model on a line
// of 1,000 stations under 10 strike-limited bodies: the column recomputes one body (both its
// responses, since a distance moves both), the evaluation all ten.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "inversion/least_squares_problem.h"
#include "inversion/parameter_vector.h"
#include "inversion_fakes.h"
#include "synthetic_line.h"

namespace trensil {
namespace {

using synthetic_line = testing::synthetic_line_with<testing::recording_view>;
using testing::free_only;

enum recovery_case { dipping_sheet, two_sheets, joint_body, spiked_line };

// The true model of a case on its line.
void make_truth(synthetic_line& line, recovery_case c) {
    body_record& b = line.model.body(1);
    if (c == dipping_sheet || c == spiked_line) b.dip.value = 60.0f;
    if (c == joint_body) b.dip.value = 70.0f;
    if (c == two_sheets) {
        b.distance.value = 350.0f;
        body_record& second = line.add_copy_of_first_body();
        second.distance.value = 620.0f;
        second.dip.value = 75.0f;
        second.susc.value = 30000.0f;
    }
}

// The start model: which parameters are free and how far off they start.
void make_start(synthetic_line& line, recovery_case c) {
    body_record& b = line.model.body(1);
    switch (c) {
        case dipping_sheet:
        case spiked_line:
            free_only(line.model, {&body_record::distance, &body_record::dip, &body_record::susc});
            b.distance.value = 560.0f;
            b.dip.value = 70.0f;
            b.susc.value = 30000.0f;
            break;
        case two_sheets:
            free_only(line.model, {&body_record::distance, &body_record::susc});
            b.distance.value = 385.0f;
            b.susc.value = 35000.0f;
            line.model.body(2).distance.value = 590.0f;
            line.model.body(2).susc.value = 21000.0f;
            break;
        case joint_body:
            free_only(line.model, {&body_record::distance, &body_record::top, &body_record::susc,
                                   &body_record::density});
            b.distance.value = 530.0f;
            b.top.value = -55.0f;
            b.susc.value = 35000.0f;
            b.density.value = 0.35f;
            break;
    }
}

void run_case(benchmark::State& bench, recovery_case c, inversion_solver solver) {
    double evaluations = 0, computed = 0, iterations = 0, misfit = 0, worst = 0;
    long runs = 0;
    for (auto _ : bench) {
        bench.PauseTiming();
        const int stations = c == spiked_line ? 201 : 101;
        synthetic_line line(stations, 2,
                            c == joint_body ? synthetic_line::both : synthetic_line::magnetics);
        make_truth(line, c);
        line.observe();
        const std::vector<body_record> truth(line.model.bodies.begin(), line.model.bodies.end());
        line.add_noise(7, 0.5f, 0.01f);
        if (c == spiked_line) line.add_spikes({45, 60}, 300.0f);
        make_start(line, c);
        line.state.solver = solver;
        line.state.least_squares.joint = c == joint_body;
        line.state.least_squares.robust = c == spiked_line;
        clear_body_results(line.model);
        calculate_display_channels(line.model, line.response);
        line.response.mag_responses_computed = line.response.grav_responses_computed = 0;
        bench.ResumeTiming();

        float initial = 0.0f;
        const float final_misfit = line.invert(inversion_mode_magnetics, initial, 50);

        bench.PauseTiming();
        const inversion_state& s = line.state;
        evaluations += static_cast<double>(s.misfit_evaluations);
        computed += static_cast<double>(line.response.mag_responses_computed +
                                        line.response.grav_responses_computed);
        iterations += s.iterations_done;
        misfit += final_misfit;
        double off = 0.0;
        for (int k = 1; k <= s.inversion_parameter_count; ++k) {
            const body_record& t = truth[static_cast<std::size_t>(s.parameter_map(k, map_body))];
            const float true_value =
                property_by_row(t, s.parameter_map(k, map_property_row))->value;
            off = std::fmax(off, std::fabs(s.inversion_parameters(k, column_value) - true_value) /
                                     s.inversion_parameters(k, column_step));
        }
        worst += off;
        ++runs;
        bench.ResumeTiming();
    }
    const double n = static_cast<double>(runs);
    bench.counters["evaluations"] = evaluations / n;
    bench.counters["bodies_computed"] = computed / n;
    bench.counters["iterations"] = iterations / n;
    bench.counters["final_misfit"] = misfit / n;
    bench.counters["worst_off_steps"] = worst / n;
}

void BM_recovery(benchmark::State& bench) {
    run_case(bench, static_cast<recovery_case>(bench.range(0)),
             static_cast<inversion_solver>(bench.range(1)));
}

BENCHMARK(BM_recovery)
    ->ArgNames({"case", "lm"})
    ->ArgsProduct({{dipping_sheet, two_sheets, joint_body, spiked_line}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

// Ten strike-limited thick sheets (400 m) 90 m apart under 1,000 stations, magnetics and
// gravity, a joint fit with the distance of every body free, the model evaluated once at the
// start.
struct ten_bodies {
    synthetic_line line{1000, 2, synthetic_line::both, 400.0f};
    least_squares_problem problem;
    std::vector<double> x;

    ten_bodies() {
        for (int b = 2; b <= 10; ++b) line.add_copy_of_first_body();
        for (int b = 1; b <= 10; ++b) line.model.body(b).distance.value = 90.0f * b + 50.0f;
        line.observe();
        line.add_noise(3, 0.5f, 0.01f);
        free_only(line.model, {&body_record::distance});
        inversion_state& s = line.state;
        s.least_squares.joint = true;
        s.inversion_count = 1000;
        s.current_residual.resize(1, 1000);
        int count = 0;
        collect_all_parameters(line.model, s, false, inversion_mode_joint, count);
        dimension_parameter_table(s, count);
        collect_all_parameters(line.model, s, true, inversion_mode_joint, count);
        profile_block& p = line.model.profile;
        p.saved_mag_channels = p.mag_channels;
        p.saved_grav_channels = p.grav_channels;
        problem = prepare_least_squares(line.ctx, s.least_squares);
        for (int k = 1; k <= count; ++k) x.push_back(s.inversion_parameters(k, column_value));
        move_to_point(line.ctx, problem, x.data());
    }
};

// One Jacobian (ten columns) through the per-body cache, reported per column.
void BM_jacobian_column(benchmark::State& bench) {
    ten_bodies model;
    long columns = 0;
    model.line.response.mag_responses_computed = model.line.response.grav_responses_computed = 0;
    for (auto _ : bench) {
        model.problem.jacobian_point.clear();
        evaluate_jacobian(model.line.ctx, model.problem);
        columns += 10;
    }
    bench.SetItemsProcessed(columns);
    bench.counters["bodies_per_column"] =
        static_cast<double>(model.line.response.mag_responses_computed) /
        static_cast<double>(columns);
}
BENCHMARK(BM_jacobian_column)->Unit(benchmark::kMicrosecond);

// The whole model recomputed at one parameter vector: what a column would cost without the cache.
void BM_whole_model_evaluation(benchmark::State& bench) {
    ten_bodies model;
    long evaluations = 0;
    model.line.response.mag_responses_computed = model.line.response.grav_responses_computed = 0;
    for (auto _ : bench) {
        clear_body_results(model.line.model);
        model.problem.point.clear();
        move_to_point(model.line.ctx, model.problem, model.x.data());
        ++evaluations;
    }
    bench.SetItemsProcessed(evaluations);
    bench.counters["bodies_per_evaluation"] =
        static_cast<double>(model.line.response.mag_responses_computed) /
        static_cast<double>(evaluations);
}
BENCHMARK(BM_whole_model_evaluation)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace trensil

BENCHMARK_MAIN();
