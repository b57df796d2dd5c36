// The gravity of one body at every station: the infinite-strike section summed edge by edge, the
// strike-limited sheet as a six-faced prism, the cylinder/pipe as a triangulated solid.
//
//   calculate_grav_response(model, state, 2);   // row 2 of body 2's body_response, mGal
#pragma once

#include "core/model_record.h"
#include "response/response_state.h"

namespace trensil {

// The program's gravity constant: density (g/cc) x 0.00667 gives mGal per metre of geometry.
inline constexpr double gravity_constant = 0.00667;

// Fills row 2 of body `body_index`'s body_response (mGal). Types other than 1, 2 and 16 leave it
// 0. A failure is reported as "An error occurred while calculating the gravity response: " and
// its description, and leaves the row as far as it had got.
void calculate_grav_response(model_record& model, response_state& state, int body_index);

// One edge's term of the two-dimensional polygon sum, from (x1, z1) to (x2, z2) relative to the
// station. Edges shorter than 0.001 in x or z are stretched to 0.001, and an x of exactly 0 is
// moved to 1e-9 (both in the caller's variables), so a station on a corner stays finite.
double polygon_edge_gravity(double& x1, double& x2, double& z1, double& z2);

}  // namespace trensil
