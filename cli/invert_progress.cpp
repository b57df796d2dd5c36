#include "invert_progress.h"

#include "support/number_format.h"

namespace trensil::cli {

void console_progress::run_started(const inversion_progress& progress) {
    last = progress;
    out_ << "initial misfit " << format_fixed(progress.misfit, 4) << std::endl;
}

void console_progress::iteration_done(const inversion_progress& progress) {
    last = progress;
    out_ << "iteration " << progress.iteration << " misfit " << format_fixed(progress.misfit, 4)
         << std::endl;
}

}  // namespace trensil::cli
