// Checks shared by the magnetic and gravity responses: the first input of a body's response that
// is not a finite number, and the addition into a single-precision response row that refuses a
// sum it cannot store. Both return the failure's description (see non_finite_description), empty
// when all is well.
//
//   if (auto d = first_non_finite_input(model, body); !d.empty()) return d;
#pragma once

#include <string>

#include "core/model_record.h"

namespace trensil {

// The profile azimuth, the body's fifteen parameters, then the easting, northing and sensor rows
// of every station, in that order.
std::string first_non_finite_input(const model_record& model, const body_record& body);

// Adds `value` to row[i - 1] (station i, 1-based); leaves the row alone and returns the
// description when the sum is not a number or beyond single precision.
std::string add_to_response_row(float* row, int i, double value);

}  // namespace trensil
