// The exact field and attraction of a uniformly magnetised, uniformly dense sphere at a station
// anywhere around it, whatever the line's direction.
//
//   double dt = sphere_total_field(volume, magnetisation, field, offset);
//   double g = sphere_gravity(volume, offset);
#pragma once

#include "response/facet_limit_terms.h"

namespace trensil {

// Total-field anomaly (nT) of a sphere of `volume` (m^3) magnetised with `magnetisation` in nT
// (chi F, any frame), seen along the unit `field` (same frame), at `offset` = station - centre (m):
//   dT = V / (4 pi) (3 (J . r)(f . r) / r^5 - (J . f) / r^3),
// the field of its centred dipole (Blakely 1995, eq. 4.14), exact outside the sphere. A station at
// the centre is singular: 0.
double sphere_total_field(double volume, const space_vector& magnetisation,
                          const space_vector& field, const space_vector& offset);

// Downward attraction of the sphere (m, to be multiplied by G rho) at `offset` = station - centre
// in (east, north, up): g = V dz / r^3 with dz the station's height above the centre, that of its
// mass at the centre. A station at the centre is singular: 0.
double sphere_gravity(double volume, const space_vector& offset);

}  // namespace trensil
