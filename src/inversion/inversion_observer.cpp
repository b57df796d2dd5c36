#include "inversion/inversion_observer.h"

#include "support/number_format.h"

namespace trensil {

inversion_progress make_progress(const inversion_state& state, int iteration, float misfit) {
    inversion_progress progress;
    progress.iteration = iteration;
    progress.misfit = misfit;
    progress.parameters.reserve(static_cast<std::size_t>(state.inversion_parameter_count));
    for (int k = 1; k <= state.inversion_parameter_count; ++k)
        progress.parameters.push_back(state.inversion_parameters(k, column_value));
    return progress;
}

void panel_progress::run_started(const inversion_progress& progress) {
    view_.set_text(inversion_control::Text_MAGINV_misfit, 0, format_fixed(progress.misfit, 4));
}

void panel_progress::iteration_done(const inversion_progress& progress) {
    view_.set_text(inversion_control::Text_num_iterations, 0, format_fixed(progress.iteration, 0));
    view_.set_text(inversion_control::Text_MAGINV_misfit, 1, format_fixed(progress.misfit, 4));
}

}  // namespace trensil
