// Turning the stations read from a data file into a profile: one straight line, one direction,
// strictly growing distances, default base levels, optional resampling to a station spacing, and
// each body's reference elevation.
//
//   read_location_data(1, model, model.profile, transforms, ui);
//   if (setup_profile(model, ui) != 0) ...   // "The data profile is not long enough to model"
#pragma once

#include "core/model_record.h"
#include "support/platform.h"

namespace trensil {

// Largest number of stations a resampled profile holds.
inline constexpr int max_resampled_stations = 8193;

// Orients, projects and resamples the profile of `model` and places its bodies. Returns -1 (after
// the message) when the first and last stations coincide, before or after dropping stations that
// do not advance; the arrays then stay as they were. Otherwise 0.
int setup_profile(model_record& model, platform& ui);

// The reference elevation of body `index` from its distance and top on the current profile.
void place_body_on_profile(model_record& model, int index);

}  // namespace trensil
