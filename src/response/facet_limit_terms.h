// The two terms of a flat face's field, written so that a station on the line of an edge, or in
// the plane of a face, gets their limit value instead of a division by zero: the line integral
// of 1 / r along an edge and the solid angle of a triangle.
//
//   double l = edge_line_integral(s1, r1, s2, r2);
//   half_angle h = triangle_half_angle(a, ra, b, rb, c, rc);   // omega = 2 atan2(num, den)
#pragma once

#include <array>
#include <cmath>

namespace trensil {

using space_vector = std::array<double, 3>;

inline double dot(const space_vector& a, const space_vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

inline space_vector cross(const space_vector& a, const space_vector& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// The integral of 1 / r (1/m x m, dimensionless) along a straight edge, s1 and s2 the positions
// of its ends along the edge's direction and r1, r2 their distances, all from the station:
//   L = ln((r2 + s2) / (r1 + s1)) = ln((r1 - s1) / (r2 - s2)),
// taking the form whose terms do not cancel, so that a station on the line of the edge beyond
// its ends gets the limit ln(s2 / s1) (Guptasarma and Singh 1999). A station on the edge itself
// or on a corner is singular: the edge adds 0. edge_ratio is the argument of the logarithm, so
// that edges whose terms share a weight can share one logarithm.
inline double edge_ratio(double s1, double r1, double s2, double r2) {
    double num, den;
    if (s1 + s2 >= 0.0) {
        num = r2 + s2;
        den = r1 + s1;
    } else {
        num = r1 - s1;
        den = r2 - s2;
    }
    if (!(num > 0.0) || !(den > 0.0)) return 1.0;
    return num / den;
}

inline double edge_line_integral(double s1, double r1, double s2, double r2) {
    return std::log(edge_ratio(s1, r1, s2, r2));
}

// Half the signed solid angle of the triangle a, b, c (positions from the station, r their
// lengths) as the argument of den + i num, positive when the station sees the corners
// counter-clockwise, i.e. stands behind the right-handed normal:
//   tan(omega / 2) = a . (b x c) / (|a||b||c| + (a.b)|c| + (a.c)|b| + (b.c)|a|)
// (Van Oosterom and Strackee 1983). A station in the triangle's plane outside it gives num 0 and
// den above 0 (omega 0); one on the triangle itself num 0 and den below 0.
struct half_angle {
    double num = 0.0, den = 1.0;
};

inline half_angle triangle_half_angle(const space_vector& a, double ra, const space_vector& b,
                                      double rb, const space_vector& c, double rc) {
    return {dot(a, cross(b, c)), ra * rb * rc + dot(a, b) * rc + dot(a, c) * rb + dot(b, c) * ra};
}

}  // namespace trensil
