// The damped least-squares solver's view of the model: the channels it fits with their noise
// levels, the weighted residuals at a parameter vector, and the Jacobian by finite differences
// through the per-body response cache. A column moves one parameter of one body, recomputes that
// body alone and only the responses the parameter moves and the fit reads, and then puts the
// body back as it was, cached responses included, so that the next column starts from the same
// model.
//
//   least_squares_problem problem = prepare_least_squares(ctx, state.least_squares);
//   move_to_point(ctx, problem, x);       // residuals, misfit
//   evaluate_jacobian(ctx, problem);      // one body response per column
#pragma once

#include <vector>

#include "inversion/inversion_context.h"

namespace trensil {

// One channel of the fit: the data type, whether its gradient rows are fitted, and the noise
// level that weights its residuals.
struct fit_channel {
    bool gravity = false;
    bool gradient = false;
    double noise = 1.0;
};

struct least_squares_problem {
    // The data type the session chose comes first; a joint fit adds the other.
    std::vector<fit_channel> channels;
    int points = 0;      // stations of the inversion range, per channel
    int parameters = 0;  // rows of the parameter table
    int data() const { return points * static_cast<int>(channels.size()); }

    // The parameter values the bodies hold and the main channel arrays were computed for.
    std::vector<float> point;
    std::vector<double> residual;  // (computed - observed) / noise, channel after channel
    // The program's misfit at `point`: weight x root of the sum of squares over N, in the
    // first channel's units (the other's residuals scaled by the ratio of the noise levels).
    float misfit = 0.0f;

    // The weighted Jacobian at jacobian_point: data() rows by parameters columns, column after
    // column.
    std::vector<float> jacobian_point;
    std::vector<double> jacobian;

    long forward_evaluations = 0;  // parameter vectors and Jacobian columns computed
    array1<float> channel_residual;
};

// The channels of a fit from the session's choices (data type, gradient fitting) and `options`;
// a noise level of 0 is estimated from the observed channel over the inversion range. The
// parameter table, the inversion range and the misfit weight must be set up.
least_squares_problem prepare_least_squares(inversion_context& ctx,
                                            const least_squares_options& options);

// Writes `x`, rounded to single precision, into the parameter table and the bodies (a body is
// invalidated only where a value changed), recomputes the main channel arrays, and fills the
// weighted residuals, the misfit and the session's current_residual. Nothing is done when the
// bodies already hold x.
void move_to_point(inversion_context& ctx, least_squares_problem& problem, const double* x);

// The weighted Jacobian at the point the bodies hold, unless it is already there. Each column
// is a forward difference over a step of a thousandth of the larger of the parameter's step
// size and its value, taken toward the inside of its limits, computed on the trial channel
// arrays.
void evaluate_jacobian(inversion_context& ctx, least_squares_problem& problem);

// True for a table value within a ten-thousandth of its step of its min or max.
bool parameter_at_limit(const inversion_state& state, int k);

}  // namespace trensil
