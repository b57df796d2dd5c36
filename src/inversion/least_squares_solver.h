// The second solver: bounded damped least squares (Levenberg-Marquardt) over the same free
// parameters and limits as the coordinate descent, with joint magnetic and gravity fits weighted
// by noise level, an optional Huber loss, and standard errors and correlations at the end.
// The minimiser is Ceres Solver's trust-region Levenberg-Marquardt; the residuals and the
// Jacobian come from the program's own forward response (least_squares_problem).
//
//   float F = initial_misfit;
//   run_least_squares(ctx, max_iterations, F);   // F: the final misfit; ctx.state.fit filled
#pragma once

#include "inversion/inversion_context.h"

namespace trensil {

// Runs the fit from the parameter table's values: F holds the initial misfit on entry and the
// final one on return, the table and the bodies hold the fitted values, the main channel arrays
// their response, state.fit the standard errors and correlations. Ends when the misfit changes
// by less than 1e-6 of itself, the step by less than 1e-6 of the parameters, at max_iterations,
// or at a stop request (served once per iteration, after the progress is reported). A start
// value outside its limits is first moved onto the nearer one.
void run_least_squares(inversion_context& ctx, int max_iterations, float& F);

}  // namespace trensil
