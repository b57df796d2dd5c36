// What trensil-cli invert prints about a run: the misfit at the start and after every
// iteration as the solver reports them, and after a least-squares run the noise levels, the
// normalised misfit, each free parameter's standard error and the strongest correlations.
//
//   console_progress progress(std::cout);
//   ctx.observer = &progress;
//   ... run ...
//   std::cout << "final misfit " << format_fixed(progress.last.misfit, 4) << "\n";
//   print_fit_summary(std::cout, model, state, gradient);
#pragma once

#include <ostream>

#include "core/model_record.h"
#include "inversion/inversion_observer.h"
#include "inversion/inversion_state.h"

namespace trensil::cli {

// "initial misfit 12.3456", then "iteration 1 misfit 4.5678" and so on, format "0.0000".
class console_progress : public inversion_observer {
public:
    explicit console_progress(std::ostream& out) : out_(out) {}
    void run_started(const inversion_progress& progress) override;
    void iteration_done(const inversion_progress& progress) override;

    inversion_progress last;  // the latest report

private:
    std::ostream& out_;
};

// The summary of state.fit, one line each: why the run stopped, the noise levels (units per
// metre when the gradient was fitted), the normalised misfit, then
//   "body 1 Distance 500.02 +- 0.075" (or "at its limit", "not determined by the data")
//   "correlation body 1 Distance, body 1 Dip 0.89"
// Nothing when no least-squares run filled it.
void print_fit_summary(std::ostream& out, const model_record& model, const inversion_state& state,
                       bool gradient);

}  // namespace trensil::cli
