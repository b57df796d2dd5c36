// The least-squares solver: a cyclic coordinate descent over the free parameters. Each visit
// probes one parameter, takes a secant step limited to the parameter's step size and keeps it
// only if the misfit falls, halving it when it does not, within a run-wide budget of halvings.
//
//   float F = evaluate_misfit(ctx, p.mag_channels, p.grav_channels, state.current_residual);
//   iterate_inversion(ctx, max_iterations, F);
#pragma once

#include "inversion/inversion_context.h"

namespace trensil {

// Root of the sum of squares of vector(1..count), summed in double, returned in single
// precision; 0 for an empty vector.
float residual_norm(int count, const array1<float>& vector);

// Recalculates the response into the given channel arrays and residual vector and returns
// misfit_weight x residual_norm / N, N = inversion_count (root of the sum of squares over N, not
// an r.m.s. value). Returns 0 when N is 0.
float evaluate_misfit(inversion_context& ctx, array2<float>& mag_channels,
                      array2<float>& grav_channels, array1<float>& residual);

// Visits parameter k once with `F` the current misfit; F becomes the accepted trial's misfit.
// `failed_halvings` is the run's budget counter.
void visit_parameter(inversion_context& ctx, int k, float& F, int& failed_halvings);

// The iteration loop: F holds the initial misfit on entry and the final one on return. Ends at
// max_iterations (at least 1), on a stop request, or when an iteration gains less than 1%.
void iterate_inversion(inversion_context& ctx, int max_iterations, float& F);

}  // namespace trensil
