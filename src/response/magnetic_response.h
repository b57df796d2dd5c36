// The total-field magnetic anomaly of one body at every station: closed-form sheets, edge, step
// and sphere of infinite strike, the strike-limited thick sheet as an eight-cornered prism, and
// the cylinder/pipe as a triangulated solid.
//
//   calculate_mag_response(model, state, 2);   // rows 1, 3, 4, 5 of body 2's body_response
#pragma once

#include "core/model_record.h"
#include "response/response_state.h"

namespace trensil {

// Fills rows 1, 3, 4, 5 of body `body_index`'s body_response (nT). Sets the sphere's strike to
// profile_azimuth + 90 and the body's east and north from its distance. A failure is reported as
// "An error occurred while calculating the mag response: " and its description, and leaves the
// rows as far as they had got.
void calculate_mag_response(model_record& model, response_state& state, int body_index);

}  // namespace trensil
