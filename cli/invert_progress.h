// What trensil-cli invert prints while a run goes: the misfit at the start and after every
// iteration, as the solver reports them.
//
//   console_progress progress(std::cout);
//   ctx.observer = &progress;
//   ... run ...
//   std::cout << "final misfit " << format_fixed(progress.last.misfit, 4) << "\n";
#pragma once

#include <ostream>

#include "inversion/inversion_observer.h"

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

}  // namespace trensil::cli
