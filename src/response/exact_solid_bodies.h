// The strike-limited thick sheet (an eight-cornered prism) and the cylinder/pipe (its
// triangulated solid) in the exact geometry: no strike or coefficient cut-off, `offset` along
// +strike for both, `plunge` tilting the pipe's axis, stations on an edge's line at the limit
// value of the terms.
//
//   solid_request r{magnetisation, field, true, false};
//   std::string failure = exact_solid_response(model, state, body_index, r);
#pragma once

#include <string>

#include "core/model_record.h"
#include "response/facet_limit_terms.h"
#include "response/response_state.h"

namespace trensil {

struct solid_request {
    space_vector magnetisation{};  // nT (chi F plus remanence), (east, north, up)
    space_vector field{};          // unit direction of the Earth's field, (east, north, up)
    bool magnetic = false;         // rows 1, 3, 4, 5
    bool gravity = false;          // row 2, mGal
};

// Adds the body's response to its rows; the body is located and its angles stored.
std::string exact_solid_response(model_record& model, response_state& state, int body_index,
                                 const solid_request& request);

}  // namespace trensil
