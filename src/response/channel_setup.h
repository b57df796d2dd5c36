// Which rows the derived channels carry, decided in one place for the modelling window, the
// batch tool and a project's lines, so that all of them derive, show and export the same rows
// for the same model: the vertical gradient alone, or with it the horizontal derivative and the
// total gradient.
//
//   set_up_derived_channels(model, state, view.checked("Check_display_total_gradient"));
//   calculate_display_channels(model, state);     // the window, when it leaves the definitions
//   calculate_model_channels(model, state);       // a model loaded in a batch, then exported
#pragma once

#include "core/model_record.h"
#include "response/response_state.h"

namespace trensil {

// The gradient selectors: vg_component_1, vg_component_2 of the model and vg_mode of the state
// become 1, 2 when the total gradient is displayed, else 0, 0. When that changes what the derived
// rows hold, their done flags (channel_valid 1, 2, 4, 5) are cleared so that the next calculation
// derives them again; the bodies' responses are kept.
void set_up_derived_channels(model_record& model, response_state& state, bool total_gradient);

// A loaded model's channels as its window shows and exports them: the derived channels set up
// for the gradient the model file asks for (vg_component_1 of 1 for the total gradient), then
// every stale body response and every derived row.
void calculate_model_channels(model_record& model, response_state& state);

}  // namespace trensil
