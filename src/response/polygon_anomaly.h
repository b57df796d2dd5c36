// The exact two-dimensional response of a body's cross-section: the magnetic field of a
// uniformly magnetised section and the attraction of a uniformly dense one, by line integrals
// over the section's edges. One kernel serves the thin sheet, the thick sheet, the edge and the
// sloping step; each is a list of corners joined by straight edges, where the first corner may be
// reached from infinity and the last may leave to infinity along a ray.
//
//   section_outline s = thick_sheet_outline(width, 0.0, depth_extent, shift, down_dip);
//   sheet_section m = prepare_sheet_section(s, magnetisation, field_direction);
//   double dt = sheet_section_total_field(m, x, depth);
//   double g = section_gravity(s, x, depth);
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
    // When set, the section is unbounded below: corner 0 is reached from infinity and the last
    // corner leaves to infinity, both along the unit direction `out_ray` (magnetics only).
    bool open = false;
    complex_value out_ray{0.0, 0.0};
};

// The thick sheet: top from (0, 0) to (width, -rise), bottom shifted by `shift` across and
// `depth_extent` down. A depth_extent of 0 leaves the bottom open: the sides go down along the
// unit `down_dip` (x + i depth) without end (magnetics only).
section_outline thick_sheet_outline(double width, double rise, double depth_extent, double shift,
                                    complex_value down_dip);

// The magnetic sum of a sheet's section (the thick sheet, closed or open below) made ready for
// every station: the magnetisation J (nT, x + i depth; chi F for the induced part) and the
// field's unit direction f in the section's plane.
struct sheet_section {
    section_outline outline;
    complex_value k{0.0, 0.0};  // -i (J f) / (4 pi) (conj(t_top)^2 - conj(t_side)^2)
    double inside = 0.0;        // what a station inside the section adds
};
sheet_section prepare_sheet_section(const section_outline& s, const complex_value& magnetisation,
                                    const complex_value& field_direction);

// Total-field anomaly (nT) at station (x, depth) of a uniformly magnetised section:
//   dT = Re( -i (J f) / (4 pi) sum_e conj(t_e)^2 ln(w2 / w1) ),
// w the corners relative to the station as complex x + i depth, t_e the edge's unit direction
// (Talwani and Heirtzler 1964, in the complex form of Won and Bevis 1987). The sides of a sheet
// are parallel in pairs, so the sum is (conj(t_top)^2 - conj(t_side)^2) (L_top + L_bottom): one
// logarithm and two angles a station. An open section drops the constant from its corners at
// infinity. A station inside the section gets the field of its poles (mu0 H), as the solid bodies
// give it. Singular at a corner or on an edge (the angle there is taken as 0).
double sheet_section_total_field(const sheet_section& s, double x, double depth);

// The edge made ready: its corner at (0, 0), the dipping side coming up along -down_dip and the
// top leaving along +x, both without end.
struct edge_section {
    // dT = log_weight ln |w| + in_weight a_in + out_weight a_out: the real and imaginary parts of
    // c (conj(t_side)^2 - 1), -i c conj(t_side)^2 and -i c, c = -i (J f) / (4 pi).
    double log_weight = 0.0, in_weight = 0.0, out_weight = 0.0;
    double from = 0.0;  // direction of the dipping side's far end; the top's is 0
};
edge_section prepare_edge_section(complex_value down_dip, const complex_value& magnetisation,
                                  const complex_value& field_direction);

// Total-field anomaly (nT) of the edge at station (x, depth), up to a constant:
//   dT = Re( c (conj(t_side)^2 (ln w + i a_in) - (ln w - i a_out)) ),
// a_in and a_out the angles its two rays subtend. With a second corner `width` across and
// `drop` down taken off, the sloping step. Singular at a corner: 0.
double edge_total_field(const edge_section& e, double x, double depth);
double step_total_field(const edge_section& e, double width, double drop, double x, double depth);

// The thin sheet made ready: width times J on its mid-line from (x_top, 0) to
// (x_top + shift, depth_extent), depth_extent 0 meaning without end.
struct thin_sheet_terms {
    double x_top = 0.0, shift = 0.0, depth_extent = 0.0;
    complex_value k{0.0, 0.0};  // -i W (J f) / (4 pi) (1 - conj(t_side)^2)
};
thin_sheet_terms prepare_thin_sheet(double width, double x_top, double shift, double depth_extent,
                                    complex_value down_dip, const complex_value& magnetisation,
                                    const complex_value& field_direction);

// The limit of the thick section for a small width:
//   dT = Re( -i W (J f) / (4 pi) (1 - conj(t_s)^2) (1 / w_top - 1 / w_bottom) ).
// Singular on the sheet's ends (adds 0 there).
double thin_sheet_total_field(const thin_sheet_terms& t, double x, double depth);

// Vertical attraction (m, times G rho to get the acceleration) at station (x, depth) of a closed
// section: 2 times the integral of depth / r^2 over the area,
//   g = Im( -i sum_e t_e^2 [conj(w) ln conj(w)] from w1 to w2 ),
// Talwani, Worzel and Landisman (1959). A station on a corner takes the limit 0 ln 0 = 0.
double section_gravity(const section_outline& s, double x, double depth);

// The thin sheet's vertical attraction (m, times G rho), width times 2 times the integral of
// depth / r^2 along the mid-line, which ends at depth_extent (above 0):
//   g = Im( -i W (1 - t_s^2) (ln conj(w_top) - ln conj(w_bottom)) ).
// Singular on the sheet's ends (adds 0 there).
double thin_sheet_gravity(double width, double x_top, double shift, double depth_extent, double x,
                          double depth);

}  // namespace trensil
