// The exact two-dimensional response of a body's cross-section: the magnetic field of a
// uniformly magnetised section and the attraction of a uniformly dense one, by line integrals
// over the section's edges. One kernel serves the thin sheet, the thick sheet, the edge and the
// sloping step; each is a list of corners joined by straight edges, where the first corner may be
// reached from infinity and the last may leave to infinity along a ray.
//
//   section_outline s = thick_sheet_outline(width, depth_extent, shift, 0.0, 0.0);
//   double dt = section_total_field(s, j_across, j_down, f_across, f_down, x, depth);
//
// Coordinates are metres in the plane across strike: x along the across-strike axis of the body
// (the way its width is measured), depth positive downward, both relative to the body's reference
// corner. A station is given by its own x and depth (negative above the reference corner).
#pragma once

#include <array>
#include <complex>

namespace trensil {

using complex_value = std::complex<double>;

struct section_outline {
    // Corners in counter-clockwise order in the (x, depth) plane: along the top toward +x, then
    // down. Corners 0..count-1.
    int count = 0;
    std::array<double, 6> x{};
    std::array<double, 6> depth{};
    // When set, corner 0 is reached along a ray from infinity in the unit direction `in_ray`, and
    // the last corner leaves along `out_ray` to infinity; the section is then unbounded and the
    // closing edge from the last corner to the first is not drawn.
    bool open = false;
    complex_value in_ray{0.0, 0.0};
    complex_value out_ray{0.0, 0.0};
};

// The thick sheet: top from (0, 0) to (width, -rise), bottom shifted by `shift` across and
// `depth_extent` down. A depth_extent of 0 leaves the bottom open: the sides go down along the
// unit `down_dip` (x + i depth) without end (magnetics only).
section_outline thick_sheet_outline(double width, double rise, double depth_extent, double shift,
                                    complex_value down_dip);

// The edge: the corner (0, 0) with the top running to +x and the dipping side coming up along
// `down_dip` from below, both without end.
section_outline edge_outline(complex_value down_dip);

// Total-field anomaly (nT) at station (x, depth) of a section magnetised with (j_across, j_down)
// in nT (chi F for the induced part), seen along the field's (f_across, f_down):
//   dT = Re( -i (J f) / (4 pi) sum_e conj(t_e)^2 ln(w2 / w1) ),
// w the corners relative to the station as complex x + i depth, t_e the edge's unit direction
// (Talwani and Heirtzler 1964, in the complex form of Won and Bevis 1987). An open section drops
// the constant from its corners at infinity. Singular at a corner or on an edge: that edge adds 0.
double section_total_field(const section_outline& s, const complex_value& magnetisation,
                           const complex_value& field_direction, double x, double depth);

// Vertical attraction (m, times G rho to get the acceleration) at station (x, depth) of a closed
// section: 2 times the integral of depth / r^2 over the area,
//   g = Im( -i sum_e t_e^2 [conj(w) ln conj(w)] from w1 to w2 ),
// Talwani, Worzel and Landisman (1959). A station on a corner takes the limit 0 ln 0 = 0.
double section_gravity(const section_outline& s, double x, double depth);

// The thin sheet as the limit of the thick section for a small width: the section's magnetic
// moment per unit length (width times J) on its mid-line from (x_top, 0) to
// (x_top + shift, depth_extent), depth_extent 0 meaning without end:
//   dT = Re( -i W (J f) / (4 pi) (1 - conj(t_s)^2) (1 / w_top - 1 / w_bottom) ).
// Singular on the sheet's ends (adds 0 there).
double thin_sheet_total_field(double width, double x_top, double shift, double depth_extent,
                              complex_value down_dip, const complex_value& magnetisation,
                              const complex_value& field_direction, double x, double depth);

// The thin sheet's vertical attraction (m, times G rho), width times 2 times the integral of
// depth / r^2 along the mid-line, which ends at depth_extent (above 0):
//   g = Im( -i W (1 - t_s^2) (ln conj(w_top) - ln conj(w_bottom)) ).
// Singular on the sheet's ends (adds 0 there).
double thin_sheet_gravity(double width, double x_top, double shift, double depth_extent, double x,
                          double depth);

}  // namespace trensil
