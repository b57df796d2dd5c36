// The magnetisation of a body and the shape coefficients of its closed-form responses, from the
// Earth's field, the susceptibility, the remanence and (for a sheet with demag 1) the reduction
// of the magnetisation across the sheet.
//
//   calculate_field_coefficients(model, state, 3);   // body 3's magnetisation, coef_a .. mag_z
#pragma once

#include "core/model_record.h"
#include "response/response_state.h"

namespace trensil {

// Stores cos_dip .. sin_strike, magnetisation (nT, negative for a negative susceptibility without
// remanence), field_cosines, magnetisation_cosines, coef_a/b/c and mag_x/y/z (east, north, down)
// on body `body_index`. A value that cannot be stored is reported as its description followed by
// "An error occurred while calculating the field coefficients"; what was stored stays.
void calculate_field_coefficients(model_record& model, response_state& state, int body_index);

}  // namespace trensil
