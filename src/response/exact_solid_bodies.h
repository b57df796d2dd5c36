// The strike-limited thick sheet (an eight-cornered prism) and the cylinder/pipe (its
// triangulated solid) in the exact geometry: no strike or coefficient cut-off, `offset` along
// +strike for both, `plunge` tilting the pipe's axis, stations on an edge's line at the limit
// value of the terms.
//
//   solid_request r{magnetisation, field, true, false};
//   std::string failure = exact_solid_response(model, state, body_index, r);
#pragma once

#include <string>
#include <vector>

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

// The corners of a pipe's built mesh (body.solid) as the exact geometry poses them, in east,
// north and elevation: the axis tilted down along +strike by dip plus plunge about its start,
// turned to the strike, the start placed so that the middle of the axis lies `offset` along
// +strike from the reference point, at elevation `top`.
std::vector<space_vector> exact_pipe_vertices(const body_record& body);

// Adds the body's response to its rows; the body is located and its angles stored.
std::string exact_solid_response(model_record& model, response_state& state, int body_index,
                                 const solid_request& request);

}  // namespace trensil
