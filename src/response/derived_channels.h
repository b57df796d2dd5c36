// The rows derived from a raw channel (observed row 1 or computed row 6): the levelled or
// background-removed row, the vertical gradient and, on request, the horizontal derivative and
// the total gradient; and the graphs' display arrays.
//
//   calculate_derived_channels(model, state, model.channel_valid[2], model.channel_valid[5],
//                              mag, grav, 6, 7, 8, state.vg_mode[0], 2);
#pragma once

#include <cstdint>

#include "core/model_record.h"
#include "response/response_state.h"

namespace trensil {

// Filter modes of build_filter_weights and apply_channel_filter.
enum filter_mode : int {
    box_smoothing = -1,
    triangular_smoothing = 1,
    vertical_gradient_filter = 2,
    horizontal_derivative_filter = 3,
};

// Derives level_row, gradient_row (and gradient_row + 1, + 2 when want_total_gradient is 1) from
// raw_row of each channel present (magpos, gravpos at least 1) whose done flag is clear, then sets
// the flag to -1; copies the level and gradient rows into column base_mode of the display arrays.
// base_mode 1 (observed) levels by basemag / basegrav; 2 (computed) by 0 or, with float_base, by
// the floating offset.
void calculate_derived_channels(model_record& model, response_state& state, std::int16_t& mag_done,
                                std::int16_t& grav_done, array2<float>& mag_channels,
                                array2<float>& grav_channels, int raw_row, int level_row,
                                int gradient_row, int want_total_gradient, int base_mode);

// One symmetric convolution of row in_row into out_row over stations 1..count, sampling every
// `step` stations out to half_width steps. Modes above 1 store the filtered value; modes 1 and
// below store the input less it (background removal). Ends repeat the end stations (mode below 1
// reflects at the start).
void apply_channel_filter(int mode, int half_width, int step, int count, array2<float>& channels,
                          int in_row, int out_row, array1<float>& weights);

// The weights 0..half_width of a filter mode; another mode leaves them untouched.
void build_filter_weights(int mode, int half_width, array1<float>& weights);

}  // namespace trensil
