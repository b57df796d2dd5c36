// The exact field and attraction of a closed body with flat faces, uniformly magnetised and
// uniformly dense, at every station: per face its solid angle and the line integrals of its
// edges, each edge integrated once for the two faces that share it. Stations on the line of an
// edge get the limit value of the terms (see facet_limit_terms.h), not a moved position.
//
//   polyhedron_body body;   // corners in (east, north, up), faces by corner numbers
//   polyhedron_fields out = polyhedron_fields_at(body, magnetisation, stations);
#pragma once

#include <cstddef>
#include <vector>

#include "response/facet_limit_terms.h"

namespace trensil {

// Corners in metres in (east, north, up) from any origin the stations share; each face a loop of
// corner numbers (0-based) around a flat face. The winding may face in or out throughout: the
// signed volume settles which.
struct polyhedron_body {
    std::vector<space_vector> corners;
    std::vector<std::vector<int>> faces;
};

// Station positions in (east, north, up) from the same origin as the corners.
struct polyhedron_stations {
    std::size_t count = 0;
    const double* east = nullptr;
    const double* north = nullptr;
    const double* up = nullptr;
};

// Per station, the anomalous field in nT (north, east, down) and the attraction (m, to be
// multiplied by G rho) downward. Empty vectors for what was not asked for.
struct polyhedron_fields {
    std::vector<double> north, east, down;
    std::vector<double> gravity;
};

// The field of `body` magnetised with `magnetisation` (east, north, up) in nT / (4 pi), that is
// chi F / (4 pi) for the induced part:
//   B = -sum_f (M . n_f) (n_f omega_f - sum_e m_fe L_e),
// and with want_gravity its attraction, the integral of depth / r^3 over the volume:
//   g = sum_f n_f,up (sum_e (r_e . m_fe) L_e - h_f omega_f),
// n_f the outward normal, m_fe the outward normal of edge e in the face's plane, L_e the line
// integral of 1 / r, omega_f the face's solid angle and h_f its distance from the station
// (Blakely 1995; Singh and Guptasarma 2001). Stations split over two threads for long lines.
polyhedron_fields polyhedron_fields_at(const polyhedron_body& body,
                                       const space_vector& magnetisation, bool want_magnetic,
                                       bool want_gravity, const polyhedron_stations& stations);

// The body's signed volume (m^3): positive when its faces wind outward (right-handed normals).
double polyhedron_volume(const polyhedron_body& body);

}  // namespace trensil
