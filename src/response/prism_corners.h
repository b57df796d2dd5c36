// The eight corners of a strike-limited thick sheet and the tables that join them into faces and
// triangles. Corners 1 to 4 are the top, 5 to 8 the bottom, corner k + 4 under corner k. The
// magnetic and gravity responses build the bottom and the sloping top by different rules, so each
// passes its own offsets here.
//
//   prism_corners c;
//   place_prism_top(body, width, c);
//   place_prism_bottom(body, shift, depth, c);
#pragma once

#include <array>
#include <cstdint>

#include "core/body_record.h"

namespace trensil {

struct prism_corners {
    std::array<double, 9> east{};  // corners 1..8, entry 0 unused
    std::array<double, 9> north{};
    std::array<double, 9> z{};  // elevation
};

// Faces of four corners each, in the order that gives each face its outward winding.
inline constexpr std::array<std::array<int, 4>, 6> prism_faces{{
    {1, 2, 3, 4},
    {2, 6, 7, 3},
    {3, 7, 8, 4},
    {4, 8, 5, 1},
    {1, 5, 6, 2},
    {8, 7, 6, 5},
}};

// The same solid as twelve triangles, for the closed-body routine.
inline constexpr std::array<std::array<std::int32_t, 3>, 12> prism_triangles{{
    {1, 2, 3},
    {1, 3, 4},
    {2, 6, 7},
    {2, 7, 3},
    {3, 7, 8},
    {3, 8, 4},
    {4, 8, 5},
    {4, 5, 1},
    {1, 5, 6},
    {1, 6, 2},
    {8, 7, 6},
    {8, 6, 5},
}};

// Corners 1 and 2 at the two ends of the strike length (length / 2 + offset and
// -length / 2 + offset along strike from the reference point, lowered by the plunge), corners 3
// and 4 a width across strike from 2 and 1.
void place_prism_top(const body_record& body, double width, prism_corners& c);

// Corners 5..8: `shift` across strike and `depth` below corners 1..4.
void place_prism_bottom(const body_record& body, double shift, double depth, prism_corners& c);

// Tilts the top: corners 3, 4 (and 7, 8 below them) are moved to `width` across strike from
// corners 2, 1 (6, 5) and raised by `rise`.
void slope_prism_top(const body_record& body, double width, double rise, prism_corners& c);

}  // namespace trensil
