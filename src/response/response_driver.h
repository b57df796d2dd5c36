// What is computed when: every body keeps its own response at every station, only stale bodies
// are recomputed, and the computed channels are rebuilt by adding the bodies' rows.
//
//   calculate_display_channels(model, state);            // before every redraw
//   recalculate_response(model, state, model.profile.mag_channels,
//                        model.profile.grav_channels, residuals);   // inversion, Force Recalc
#pragma once

#include "core/model_record.h"
#include "response/response_state.h"

namespace trensil {

// Recomputes the stale bodies (mag_valid / grav_valid 0; a body with disabled exactly 1 gets
// zero rows) and rebuilds row 6 of each channel that had a stale body, leaving rows 6 to 10 of a
// channel with none untouched. magpos or gravpos below 1 skips that channel: its bodies stay
// stale. With no bodies, rows 6 to 10 are 0 and the computed display entries are empty. With
// the state's channel_sums_stale set, both channels are summed anew even with no stale body.
void calculate_body_responses(model_record& model, response_state& state,
                              array2<float>& mag_channels, array2<float>& grav_channels);

// calculate_body_responses, the computed derived rows (6, 7, 8, base mode 2), then `residuals`
// 1..(last - first + 1) over the inversion window: gradient rows, level rows, or raw computed
// less observed level and base offset, by the state's inversion choices.
void recalculate_response(model_record& model, response_state& state, array2<float>& mag_channels,
                          array2<float>& grav_channels, array1<float>& residuals);

// Sensor and ground elevations (rows 3, 4 of the location array) from topo and sensor_offset
// where the data have no such column; zmin, zmax from the ground row. Does nothing while
// profile_ready is set.
void prepare_station_heights(model_record& model);

// The computing half of a redraw: station heights, body responses, the observed derived rows
// (1, 2, 3, base mode 1) and the computed ones (6, 7, 8, base mode 2).
void calculate_display_channels(model_record& model, response_state& state);

}  // namespace trensil
