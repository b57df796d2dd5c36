#include "inversion/solver.h"

#include <cmath>

#include "inversion/parameter_vector.h"

namespace trensil {

namespace {

// A change of misfit at or below this (weighted units) means the parameter has no influence.
constexpr float influence_threshold = 0.0001f;
// Failed trials a run may answer with a retry at half the step.
constexpr int halving_budget = 4;

// Copies the computed channels 6 to 10 of `from` into `to` at every station.
void copy_computed_channels(const array2<float>& from, array2<float>& to) {
    if (from.empty() || to.empty()) return;
    for (int r = computed_raw; r <= computed_total_gradient; ++r) {
        const float* src = from.row(r);
        float* dst = to.row(r);
        for (int i = 0; i < from.cols(); ++i) dst[i] = src[i];
    }
}

}  // namespace

float residual_norm(int count, const array1<float>& vector) {
    double sum = 0.0;
    for (int i = 1; i <= count; ++i) {
        const double r = vector(i);
        sum += r * r;
    }
    return static_cast<float>(std::sqrt(sum));
}

float evaluate_misfit(inversion_context& ctx, array2<float>& mag_channels,
                      array2<float>& grav_channels, array1<float>& residual) {
    ctx.recalculate(ctx.model, ctx.response, mag_channels, grav_channels, residual);
    ++ctx.state.misfit_evaluations;
    const int n = ctx.state.inversion_count;
    if (n < 1) return 0.0f;
    const double per_point = static_cast<double>(residual_norm(n, residual)) / n;
    return static_cast<float>(ctx.state.misfit_weight * per_point);
}

void visit_parameter(inversion_context& ctx, int k, float& F, int& failed_halvings) {
    inversion_state& s = ctx.state;
    profile_block& p = ctx.model.profile;
    float proximity = 0.0f;
    float& value = s.inversion_parameters(k, column_value);
    const float min = s.inversion_parameters(k, column_min);
    const float max = s.inversion_parameters(k, column_max);
    const float step = s.inversion_parameters(k, column_step);

    // Probe one per cent of the step or of the value, whichever is larger.
    const float x0 = value;
    const float delta = static_cast<float>(0.01 * std::fmax(std::fabs(step), std::fabs(x0)));
    value = x0 + delta;
    apply_parameter(ctx.model, s, k, proximity);
    float F1 = evaluate_misfit(ctx, p.saved_mag_channels, p.saved_grav_channels, s.trial_residual);

    // No influence: the parameter stays at the probe and nothing else changes.
    const float change = F1 - F;
    if (!(std::fabs(change) > influence_threshold)) return;

    // Secant step that would bring a linear misfit to zero; the new value is x0 - step_taken.
    float step_taken = delta * F / change;
    if (std::fabs(step_taken) > step) step_taken = step_taken > 0.0f ? step : -step;

    // Limit stops against the value still at the probe: at the lower limit no move up, at the
    // upper limit no move down. The move further out is clamped below and fails the misfit test.
    if (step_taken < 0.0f && min > undefined_value && static_cast<float>(min + 0.0001) >= value)
        step_taken = 0.0f;
    if (step_taken > 0.0f && max > undefined_value && static_cast<float>(max - 0.0001) <= value)
        step_taken = 0.0f;

    while (step_taken != 0.0f) {
        value = x0 - step_taken;
        if (min > undefined_value && value < min) value = min;
        if (max > undefined_value && value > max) value = max;
        apply_parameter(ctx.model, s, k, proximity);
        F1 = evaluate_misfit(ctx, p.saved_mag_channels, p.saved_grav_channels, s.trial_residual);
        if (F1 < F) break;
        step_taken /= 2.0f;
        ++failed_halvings;
        if (failed_halvings >= halving_budget) {
            step_taken = 0.0f;
            break;
        }
    }

    if (step_taken == 0.0f) {
        value = x0;
        apply_parameter(ctx.model, s, k, proximity);
        return;
    }
    F = F1;
    copy_computed_channels(p.saved_mag_channels, p.mag_channels);
    copy_computed_channels(p.saved_grav_channels, p.grav_channels);
    for (int i = 1; i <= s.inversion_count; ++i) s.current_residual(i) = s.trial_residual(i);
}

void iterate_inversion(inversion_context& ctx, int max_iterations, float& F) {
    inversion_state& s = ctx.state;
    profile_block& p = ctx.model.profile;
    int failed_halvings = 0;
    int iteration = 0;
    s.stalled = false;
    for (;;) {
        ++iteration;
        const float F_start = F;
        for (int k = 1; k <= s.inversion_parameter_count; ++k)
            visit_parameter(ctx, k, F, failed_halvings);
        s.iterations_done = iteration;

        bool finished = iteration == max_iterations || s.stop_requested;
        // An iteration must gain at least one per cent or it is the last one.
        if (static_cast<float>(0.99 * F_start) <= F) {
            finished = true;
            s.stalled = true;
        }
        const float main_misfit =
            evaluate_misfit(ctx, p.mag_channels, p.grav_channels, s.current_residual);
        // The last iteration reports the misfit of the main arrays; one that goes on reports
        // the accepted misfit after the redraw (they differ only by the drift of a probe).
        if (finished) {
            ctx.observer->iteration_done(make_progress(s, iteration, main_misfit));
            return;
        }

        ctx.view.redraw_inversion_progress();
        ctx.model.channel_valid[3] = -1;
        ctx.model.channel_valid[6] = -1;
        ctx.observer->iteration_done(make_progress(s, iteration, F));
        ctx.ui.process_events();
    }
}

}  // namespace trensil
