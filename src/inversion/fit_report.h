// The lines that tell the user what a least-squares run found out about its parameters, as the
// inversion panel shows them and the batch tool prints them.
//
//   for (const std::string& line : fit_report_lines(model, state, gradient)) std::cout << line;
#pragma once

#include <string>
#include <vector>

#include "core/model_record.h"
#include "inversion/inversion_state.h"

namespace trensil {

// One line each, without line ends: why the run stopped, the noise levels (units per metre when
// the gradient was fitted), the normalised misfit, then every free parameter
//   "body 1 Distance 500.02 +- 0.075" (or "at its limit", "not determined by the data")
// and the strongest correlations
//   "correlation body 1 Distance, body 1 Dip 0.89".
// Empty when no least-squares run filled state.fit.
std::vector<std::string> fit_report_lines(const model_record& model, const inversion_state& state,
                                          bool gradient);

}  // namespace trensil
