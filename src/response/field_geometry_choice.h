// The two field geometries of a model. The format's geometry (the default) reproduces the numbers
// of stored models; the exact geometry computes the physics of the same bodies: the field and the
// magnetisation resolved across the body's own strike, the sphere's own dipole, the full 2 G rho
// of an infinite body, and strike-limited bodies without cut-offs. The magnetic and gravity
// responses hand a body here when model.exact_field_geometry is set.
//
//   if (model.exact_field_geometry) failure = exact_mag_response(model, state, body_index);
#pragma once

#include <string>

#include "core/model_record.h"
#include "response/response_state.h"

namespace trensil {

// Newton's constant (6.6743e-11 m^3 kg^-1 s^-2) in the units that turn a density in g/cc times
// an attraction in metres into mGal (x 1000 kg/m^3 per g/cc, x 100000 mGal per m/s^2).
inline constexpr double exact_gravity_constant = 6.6743e-3;

// The text the window shows for the geometry in force.
std::string field_geometry_label(const model_record& model);

// Rows 1, 3, 4, 5 (rows 3 to 5 for strike-limited bodies only) of the body's response in the
// exact geometry, added to rows the caller has zeroed. Returns the failure's description, empty
// when all went well.
std::string exact_mag_response(model_record& model, response_state& state, int body_index);

// Row 2 of the body's response (mGal) in the exact geometry; as above.
std::string exact_grav_response(model_record& model, response_state& state, int body_index);

}  // namespace trensil
