// Magnetic and gravity response of a closed body given as vertices and triangles, summed over
// its faces by the facet engine, with optional self-demagnetisation through the body's
// demagnetising tensor.
//
//   std::vector<float> out(n);
//   polyhedron_response(polyhedron_mode::magnetic, 20, field, props, body_vertices, triangles,
//                       model.profile, out.data());
#pragma once

#include <cstdint>

#include "core/profile_block.h"
#include "support/bounded_array.h"

namespace trensil {

struct earth_field {
    float intensity = 0.0f;    // nT
    float inclination = 0.0f;  // degrees
    float declination = 0.0f;  // degrees
};

// The five properties of a body as the solid routines take them.
struct solid_properties {
    float susc_si = 0.0f;  // susceptibility in SI (the model's millionths / 1,000,000)
    float rem_d = 0.0f;    // remanence declination, degrees
    float rem_i = 0.0f;    // remanence inclination, degrees
    float rem_q = 0.0f;    // Koenigsberger ratio
    float density = 0.0f;  // g/cc
};

enum class polyhedron_mode : int { magnetic = 0, gravity = 1 };

// Control value for self-demagnetisation; 0 is none. The strike-limited prism with demag set
// takes this path too, as a solid of 12 triangles.
inline constexpr int demag_control_on = 20;

// Fills `result[0..n-1]` with one value per station of `stations`: the total-field anomaly in nT
// (mode magnetic) or the vertical attraction in mGal (mode gravity). `vertices` rows 1..3 hold
// easting, northing, elevation (absolute) by columns 1..num_vertices; `triangles` rows 1..3 hold
// 1-based corner numbers by columns 1..num_triangles, each facing out of the body. Returns 0 on
// success, non-zero for a body it cannot use (no triangles, a corner out of range).
int polyhedron_response(polyhedron_mode mode, int demag_control, const earth_field& field,
                        const solid_properties& properties, int num_vertices,
                        const array2<double>& vertices, int num_triangles,
                        const array2<std::int32_t>& triangles, const profile_block& stations,
                        float* result);

}  // namespace trensil
