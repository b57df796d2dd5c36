#include "response/channel_setup.h"

#include "response/response_driver.h"

namespace trensil {

void set_up_derived_channels(model_record& model, response_state& state, bool total_gradient) {
    const bool was_total = state.vg_mode[0] == 1;
    model.vg_component_1 = total_gradient ? 1 : 0;
    model.vg_component_2 = total_gradient ? 2 : 0;
    state.vg_mode = {model.vg_component_1, model.vg_component_2};
    if (total_gradient == was_total) return;
    // Rows derived for the other choice lack (or needlessly hold) the horizontal derivative and
    // the total gradient.
    for (int entry : {1, 2, 4, 5}) model.channel_valid[static_cast<std::size_t>(entry)] = 0;
}

void calculate_model_channels(model_record& model, response_state& state) {
    set_up_derived_channels(model, state, model.vg_component_1 == 1);
    calculate_display_channels(model, state);
}

}  // namespace trensil
