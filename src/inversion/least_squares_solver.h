// The second solver: bounded damped least squares (Levenberg-Marquardt) over the same free
// parameters and limits as the coordinate descent, with joint magnetic and gravity fits weighted
// by noise level, an optional Huber loss, and standard errors and correlations at the end.
// The minimiser is Ceres Solver's trust-region Levenberg-Marquardt; the residuals and the
// Jacobian come from the program's own forward response (least_squares_problem).
//
//   least_squares_problem problem;
//   float F = start_least_squares(ctx, problem);       // the misfit the run starts from
//   run_least_squares(ctx, problem, max_iterations, F);  // F: the final misfit; state.fit
#pragma once

#include "inversion/inversion_context.h"
#include "inversion/least_squares_problem.h"

namespace trensil {

// Sets up `problem` from the session's choices and state.least_squares and returns the misfit
// of the model as it stands: the program's misfit of the chosen data type, to which a joint fit
// adds the other data type's residuals scaled by the ratio of the noise levels.
float start_least_squares(inversion_context& ctx, least_squares_problem& problem);

// Runs the fit from the parameter table's values: F holds the initial misfit on entry and the
// final one on return, the table and the bodies hold the fitted values, the main channel arrays
// their response, state.fit the standard errors and correlations. Ends when the misfit changes
// by less than 1e-6 of itself, the step by less than 1e-6 of the parameters, at max_iterations,
// or at a stop request (served once per iteration, after the progress is reported). A start
// value outside its limits is first moved onto the nearer one.
void run_least_squares(inversion_context& ctx, least_squares_problem& problem, int max_iterations,
                       float& F);

}  // namespace trensil
