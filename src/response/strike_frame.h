// Where a body sits on the profile and the angle helper of the forward model.
//
//   double y = north;
//   double bearing = bearing_of(east, y);   // atan2(east, north), radians
//   locate_body_on_profile(model.profile, body.distance.value, body.east, body.north);
#pragma once

#include "core/profile_block.h"

namespace trensil {

inline constexpr double pi_value = 3.14159265358979;
inline constexpr double two_pi_value = 6.28318530717958;
inline constexpr double degrees_to_radians = 0.017453292;

// The angle from the y axis toward the x axis, in -pi..pi radians: atan2(x, y), the geographic
// bearing when x is east and y north. A y of exactly 0 is replaced by 1e-9 in the caller's
// variable first, so a caller that goes on using y never divides by zero.
double bearing_of(double x, double& y);

// Binary search of an ascending array between lo and hi (inclusive) for `value`: the index of an
// equal entry, or the last index examined once lo and hi are neighbours. The caller decides what
// a miss means (locate_body_on_profile steps back one when the value lies below the hit).
template <class Array>
int search_sorted(const Array& values, int lo, int hi, double value) {
    int mid = lo;
    while (lo < hi) {
        mid = (lo + hi) / 2;
        if (static_cast<double>(values(mid)) == value) return mid;
        if (lo + 1 == hi) return mid;
        if (value < static_cast<double>(values(mid))) {
            hi = mid;
        } else {
            lo = mid;
        }
    }
    return mid;
}

// Map position of the point `distance` along the stations: interpolated on the leg that holds it,
// extrapolated along the first or last leg outside the line. With one station or none, east and
// north are left as they are.
void locate_body_on_profile(const profile_block& profile, float distance, double& east,
                            double& north);

}  // namespace trensil
