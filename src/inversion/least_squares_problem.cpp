#include "inversion/least_squares_problem.h"

#include <cmath>

#include "inversion/noise_level.h"
#include "inversion/parameter_vector.h"

namespace trensil {

namespace {

// A finite-difference step is this fraction of the larger of a parameter's step and its value.
constexpr double difference_fraction = 1e-3;

// Sets the response engine to fill residuals for one channel, and back when it goes.
class channel_choice {
public:
    channel_choice(response_state& response, const fit_channel& channel)
        : response_(response),
          gravity_(response.inversion_uses_gravity),
          gradient_(response.inversion_fits_gradient) {
        response_.inversion_uses_gravity = channel.gravity ? 1 : 0;
        response_.inversion_fits_gradient = channel.gradient ? 1 : 0;
    }
    ~channel_choice() {
        response_.inversion_uses_gravity = gravity_;
        response_.inversion_fits_gradient = gradient_;
    }
    channel_choice(const channel_choice&) = delete;
    channel_choice& operator=(const channel_choice&) = delete;

private:
    response_state& response_;
    std::int32_t gravity_;
    std::int32_t gradient_;
};

// Residuals of one channel on the given channel arrays into problem.channel_residual.
void channel_residuals(inversion_context& ctx, least_squares_problem& problem,
                       const fit_channel& channel, array2<float>& mag, array2<float>& grav) {
    const channel_choice choice(ctx.response, channel);
    ctx.recalculate(ctx.model, ctx.response, mag, grav, problem.channel_residual);
}

// The observed row the residuals of a channel are formed against.
int observed_row(const inversion_context& ctx, const fit_channel& channel) {
    return channel.gradient ? observed_vertical_gradient + ctx.response.vg_mode[1] : observed_level;
}

bool fits(const least_squares_problem& problem, bool gravity) {
    for (const fit_channel& c : problem.channels)
        if (c.gravity == gravity) return true;
    return false;
}

// What a Jacobian column changes outside the body it moves: the engine's base offsets and the
// model's flags of derived rows, which the trial arrays' recomputation rewrites.
struct engine_marks {
    std::array<std::int16_t, 7> channel_valid;
    float mag_base_offset, grav_base_offset, observed_mean_mag;

    explicit engine_marks(const inversion_context& ctx)
        : channel_valid(ctx.model.channel_valid),
          mag_base_offset(ctx.response.mag_base_offset),
          grav_base_offset(ctx.response.grav_base_offset),
          observed_mean_mag(ctx.response.observed_mean_mag) {}
    void restore(inversion_context& ctx) const {
        ctx.model.channel_valid = channel_valid;
        ctx.response.mag_base_offset = mag_base_offset;
        ctx.response.grav_base_offset = grav_base_offset;
        ctx.response.observed_mean_mag = observed_mean_mag;
    }
};

// The value a column moves parameter k to: a thousandth of the larger of step and value away,
// toward the side with room inside the limits. A value that cannot move gives no column.
float difference_value(const inversion_state& s, int k) {
    const double x = s.inversion_parameters(k, column_value);
    const double min = s.inversion_parameters(k, column_min);
    const double max = s.inversion_parameters(k, column_max);
    const double h = difference_fraction *
                     std::fmax(std::fabs(s.inversion_parameters(k, column_step)), std::fabs(x));
    const double above = max > undefined_value ? max - x : h;
    const double below = min > undefined_value ? x - min : h;
    if (above >= h) return static_cast<float>(x + h);
    if (below >= h) return static_cast<float>(x - h);
    // Limits closer together than the step: as far as they allow, on the wider side.
    return static_cast<float>(above >= below ? x + std::fmax(above, 0.0)
                                             : x - std::fmax(below, 0.0));
}

}  // namespace

bool parameter_at_limit(const inversion_state& s, int k) {
    const float x = s.inversion_parameters(k, column_value);
    const float min = s.inversion_parameters(k, column_min);
    const float max = s.inversion_parameters(k, column_max);
    const float close = std::fabs(s.inversion_parameters(k, column_step)) / 10000.0f;
    return (min > undefined_value && x <= min + close) ||
           (max > undefined_value && x >= max - close);
}

least_squares_problem prepare_least_squares(inversion_context& ctx,
                                            const least_squares_options& options) {
    least_squares_problem problem;
    const bool gravity = ctx.response.inversion_uses_gravity != 0;
    const bool gradient = ctx.response.inversion_fits_gradient != 0;
    problem.channels.push_back({gravity, gradient, 1.0});
    if (options.joint) problem.channels.push_back({!gravity, gradient, 1.0});
    problem.points = ctx.state.inversion_count;
    problem.parameters = ctx.state.inversion_parameter_count;
    problem.channel_residual.resize(1, problem.points);

    const profile_block& p = ctx.model.profile;
    const int first = p.inversion_first_station;
    for (fit_channel& c : problem.channels) {
        const float given = c.gravity ? options.noise_grav : options.noise_mag;
        if (given > 0.0f) {
            c.noise = given;
        } else {
            const array2<float>& ch = c.gravity ? p.grav_channels : p.mag_channels;
            c.noise =
                estimate_noise_level(ch.row(observed_row(ctx, c)) + (first - 1), problem.points);
        }
    }
    return problem;
}

void move_to_point(inversion_context& ctx, least_squares_problem& problem, const double* x) {
    inversion_state& s = ctx.state;
    const int n = problem.parameters;
    std::vector<float> target(static_cast<std::size_t>(n));
    for (int k = 0; k < n; ++k) target[static_cast<std::size_t>(k)] = static_cast<float>(x[k]);
    if (!problem.point.empty() && target == problem.point) return;

    float proximity = 0.0f;
    for (int k = 1; k <= n; ++k) {
        s.inversion_parameters(k, column_value) = target[static_cast<std::size_t>(k - 1)];
        apply_parameter(ctx.model, s, k, proximity);
    }
    profile_block& p = ctx.model.profile;
    problem.residual.assign(static_cast<std::size_t>(problem.data()), 0.0);
    // The sum of squares in the first channel's units: another channel's residuals count
    // scaled by the ratio of the noise levels.
    double sum = 0.0;
    for (std::size_t c = 0; c < problem.channels.size(); ++c) {
        const fit_channel& channel = problem.channels[c];
        channel_residuals(ctx, problem, channel, p.mag_channels, p.grav_channels);
        double* out = problem.residual.data() + c * static_cast<std::size_t>(problem.points);
        const double to_first = c == 0 ? 1.0 : problem.channels[0].noise / channel.noise;
        for (int i = 1; i <= problem.points; ++i) {
            const double r = problem.channel_residual(i);
            out[i - 1] = r / channel.noise;
            sum += (r * to_first) * (r * to_first);
        }
        if (c == 0) {
            for (int i = 1; i <= problem.points; ++i)
                s.current_residual(i) = problem.channel_residual(i);
        }
    }
    const double per_point =
        static_cast<double>(static_cast<float>(std::sqrt(sum))) / problem.points;
    problem.misfit = static_cast<float>(s.misfit_weight * per_point);
    problem.point = std::move(target);
    ++problem.forward_evaluations;
    ++s.misfit_evaluations;
}

void evaluate_jacobian(inversion_context& ctx, least_squares_problem& problem) {
    if (!problem.jacobian_point.empty() && problem.jacobian_point == problem.point) return;
    inversion_state& s = ctx.state;
    profile_block& p = ctx.model.profile;
    const std::size_t m = static_cast<std::size_t>(problem.data());
    problem.jacobian.assign(m * static_cast<std::size_t>(problem.parameters), 0.0);
    const bool fit_mag = fits(problem, false), fit_grav = fits(problem, true);

    for (int k = 1; k <= problem.parameters; ++k) {
        const int b = s.parameter_map(k, map_body);
        const int row = s.parameter_map(k, map_property_row);
        if (b < 1 || b > ctx.model.num_bodies) continue;
        const bool moves_mag = fit_mag && parameter_moves_magnetics(row);
        const bool moves_grav = fit_grav && parameter_moves_gravity(row);
        if (!moves_mag && !moves_grav) continue;

        float& value = s.inversion_parameters(k, column_value);
        const float x0 = value;
        const float x1 = difference_value(s, k);
        const double h = static_cast<double>(x1) - x0;
        if (h == 0.0) continue;

        const body_record saved = ctx.model.body(b);
        const engine_marks marks(ctx);
        value = x1;
        float proximity = 0.0f;
        apply_parameter(ctx.model, s, k, proximity);
        // A response the fit does not read is left as it was: the body is put back afterwards.
        body_record& body = ctx.model.body(b);
        if (!fit_mag) body.mag_valid = saved.mag_valid;
        if (!fit_grav) body.grav_valid = saved.grav_valid;

        for (std::size_t c = 0; c < problem.channels.size(); ++c) {
            const fit_channel& channel = problem.channels[c];
            if (!(channel.gravity ? moves_grav : moves_mag)) continue;
            channel_residuals(ctx, problem, channel, p.saved_mag_channels, p.saved_grav_channels);
            const std::size_t offset = c * static_cast<std::size_t>(problem.points);
            double* column = problem.jacobian.data() + static_cast<std::size_t>(k - 1) * m + offset;
            const double* base = problem.residual.data() + offset;
            for (int i = 1; i <= problem.points; ++i)
                column[i - 1] = (problem.channel_residual(i) / channel.noise - base[i - 1]) / h;
        }
        ++problem.forward_evaluations;
        ++s.misfit_evaluations;

        value = x0;
        ctx.model.body(b) = saved;
        marks.restore(ctx);
    }
    problem.jacobian_point = problem.point;
}

}  // namespace trensil
