#include "inversion/least_squares_solver.h"

#include <ceres/ceres.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "inversion/fit_summary.h"
#include "inversion/inversion_observer.h"
#include "inversion/least_squares_problem.h"

namespace trensil {

namespace {

// The Huber loss is quadratic within this many noise levels and linear beyond (95 per cent
// efficient on Gaussian noise).
constexpr double huber_threshold = 1.345;
// Relative change of the misfit, and relative step, below which a run has converged.
constexpr double misfit_tolerance = 1e-6;
constexpr double step_tolerance = 1e-6;

// Everything the residual blocks and callbacks share.
struct fit_run {
    inversion_context& ctx;
    least_squares_problem& problem;
    std::vector<double> x;  // the parameter block Ceres moves
};

// One datum: its residual and its Jacobian row, read from the evaluation of the whole model
// that the evaluation callback made for the current point.
class datum_cost : public ceres::CostFunction {
public:
    datum_cost(const fit_run& run, int index) : run_(run), index_(index) {
        set_num_residuals(1);
        mutable_parameter_block_sizes()->push_back(run.problem.parameters);
    }

    bool Evaluate(double const* const*, double* residuals, double** jacobians) const override {
        const least_squares_problem& p = run_.problem;
        const double r = p.residual[static_cast<std::size_t>(index_)];
        if (!std::isfinite(r)) return false;
        residuals[0] = r;
        if (jacobians != nullptr && jacobians[0] != nullptr) {
            const std::size_t m = static_cast<std::size_t>(p.data());
            for (int k = 0; k < p.parameters; ++k) {
                const double d =
                    p.jacobian[static_cast<std::size_t>(k) * m + static_cast<std::size_t>(index_)];
                if (!std::isfinite(d)) return false;
                jacobians[0][k] = d;
            }
        }
        return true;
    }

private:
    const fit_run& run_;
    int index_;
};

// Before Ceres reads any datum: the model is moved to the point (recomputing only the bodies
// whose values changed) and, when asked, the Jacobian is formed there.
class shared_evaluation : public ceres::EvaluationCallback {
public:
    explicit shared_evaluation(fit_run& run) : run_(run) {}
    void PrepareForEvaluation(bool evaluate_jacobians, bool) override {
        move_to_point(run_.ctx, run_.problem, run_.x.data());
        if (evaluate_jacobians) evaluate_jacobian(run_.ctx, run_.problem);
    }

private:
    fit_run& run_;
};

// The end of an iteration: the model is brought to the solver's current parameters (after a
// rejected step it still holds the trial), the observer told, the graphs redrawn, and the event
// queue served once, where a Stop click ends the run.
class iteration_end : public ceres::IterationCallback {
public:
    explicit iteration_end(fit_run& run) : run_(run) {}
    ceres::CallbackReturnType operator()(const ceres::IterationSummary& summary) override {
        if (summary.iteration == 0) return ceres::SOLVER_CONTINUE;
        inversion_context& ctx = run_.ctx;
        move_to_point(ctx, run_.problem, run_.x.data());
        ctx.state.iterations_done = summary.iteration;
        ctx.observer->iteration_done(
            make_progress(ctx.state, summary.iteration, run_.problem.misfit));
        ctx.view.redraw_inversion_progress();
        ctx.model.channel_valid[3] = -1;  // the graphs keep their ranges between iterations
        ctx.model.channel_valid[6] = -1;
        ctx.ui.process_events();
        return ctx.state.stop_requested ? ceres::SOLVER_TERMINATE_SUCCESSFULLY
                                        : ceres::SOLVER_CONTINUE;
    }

private:
    fit_run& run_;
};

std::string stop_reason(const ceres::Solver::Summary& summary) {
    switch (summary.termination_type) {
        case ceres::CONVERGENCE:
            if (summary.message.rfind("Function tolerance", 0) == 0) return "misfit change";
            if (summary.message.rfind("Parameter tolerance", 0) == 0) return "step size";
            return "gradient";
        case ceres::NO_CONVERGENCE:
            return "iteration limit";
        case ceres::USER_SUCCESS:
        case ceres::USER_FAILURE:
            return "stopped";
        default:
            return "failed: " + summary.message;
    }
}

}  // namespace

float start_least_squares(inversion_context& ctx, least_squares_problem& problem) {
    inversion_state& s = ctx.state;
    problem = prepare_least_squares(ctx, s.least_squares);
    std::vector<double> x;
    for (int k = 1; k <= s.inversion_parameter_count; ++k)
        x.push_back(s.inversion_parameters(k, column_value));
    move_to_point(ctx, problem, x.data());
    return problem.misfit;
}

void run_least_squares(inversion_context& ctx, least_squares_problem& problem, int max_iterations,
                       float& F) {
    inversion_state& s = ctx.state;
    const int n = s.inversion_parameter_count;
    fit_run run{ctx, problem, {}};

    // The start, held inside the limits.
    run.x.resize(static_cast<std::size_t>(n));
    for (int k = 1; k <= n; ++k) {
        double v = s.inversion_parameters(k, column_value);
        const float min = s.inversion_parameters(k, column_min);
        const float max = s.inversion_parameters(k, column_max);
        if (min > undefined_value && v < min) v = min;
        if (max > undefined_value && v > max) v = max;
        run.x[static_cast<std::size_t>(k - 1)] = v;
    }

    shared_evaluation evaluation(run);
    ceres::HuberLoss huber(huber_threshold);
    ceres::Problem::Options problem_options;
    problem_options.evaluation_callback = &evaluation;
    problem_options.loss_function_ownership = ceres::DO_NOT_TAKE_OWNERSHIP;
    ceres::Problem fit(problem_options);
    ceres::LossFunction* loss = s.least_squares.robust ? &huber : nullptr;
    for (int i = 0; i < problem.data(); ++i)
        fit.AddResidualBlock(new datum_cost(run, i), loss, run.x.data());
    for (int k = 1; k <= n; ++k) {
        const float min = s.inversion_parameters(k, column_min);
        const float max = s.inversion_parameters(k, column_max);
        if (min > undefined_value) fit.SetParameterLowerBound(run.x.data(), k - 1, min);
        if (max > undefined_value) fit.SetParameterUpperBound(run.x.data(), k - 1, max);
    }

    ceres::Solver::Options options;
    options.minimizer_type = ceres::TRUST_REGION;
    options.trust_region_strategy_type = ceres::LEVENBERG_MARQUARDT;
    options.linear_solver_type = ceres::DENSE_QR;
    options.max_num_iterations = std::max(1, max_iterations);
    options.function_tolerance = misfit_tolerance;
    options.parameter_tolerance = step_tolerance;
    options.num_threads = 1;
    options.logging_type = ceres::SILENT;
    options.minimizer_progress_to_stdout = false;
    options.update_state_every_iteration = true;
    iteration_end end_of_iteration(run);
    options.callbacks.push_back(&end_of_iteration);

    ceres::Solver::Summary summary;
    ceres::Solve(options, &fit, &summary);
    const bool failed = summary.termination_type == ceres::FAILURE;
    if (failed) ctx.ui.show_message("The least-squares fit could not go on: " + summary.message);

    // The model, the table and the main arrays at the final parameters, with their Jacobian.
    move_to_point(ctx, problem, run.x.data());
    evaluate_jacobian(ctx, problem);
    F = problem.misfit;
    s.iterations_done = std::max(0, static_cast<int>(summary.iterations.size()) - 1);
    s.stalled = false;

    fit_summary& result = s.fit;
    std::vector<bool> at_limit(static_cast<std::size_t>(n));
    for (int k = 1; k <= n; ++k)
        at_limit[static_cast<std::size_t>(k - 1)] = parameter_at_limit(s, k);
    if (failed) {
        // Residuals that cannot be computed give no errors either.
        result.errors.assign(static_cast<std::size_t>(n), parameter_error{});
        result.data_count = problem.data();
    } else {
        estimate_parameter_errors(problem.jacobian, problem.residual, problem.data(), n, at_limit,
                                  s.least_squares.robust ? huber_threshold : 0.0, result);
    }
    result.available = true;
    result.noise_mag = result.noise_grav = 0.0f;
    for (const fit_channel& c : problem.channels)
        (c.gravity ? result.noise_grav : result.noise_mag) = static_cast<float>(c.noise);
    result.stop_reason = stop_reason(summary);
}

}  // namespace trensil
