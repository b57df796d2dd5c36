#include "response/strike_frame.h"

#include <cmath>

namespace trensil {

namespace {
double sign_of(double v) {
    return v > 0.0 ? 1.0 : (v < 0.0 ? -1.0 : 0.0);
}
}  // namespace

double bearing_of(double x, double& y) {
    if (y == 0.0) y = 1e-9;
    const double a = std::atan(std::fabs(x) / std::fabs(y));
    double r = (a * sign_of(x) - pi_value / 2.0) * sign_of(y) + pi_value / 2.0;
    if (r > pi_value) r -= two_pi_value;
    return r;
}

void locate_body_on_profile(const profile_block& profile, float distance, double& east,
                            double& north) {
    const int n = profile.num_stations;
    if (n <= 1) return;
    const array1<float>& dist = profile.profile_distance;
    int i = search_sorted(dist, 1, n, static_cast<double>(distance));
    if (distance < dist(i)) i -= 1;
    if (i < 1) i = 1;
    if (i >= n) i = n - 1;
    const double d = static_cast<double>(dist(i + 1)) - static_cast<double>(dist(i));
    const double t = d == 0.0 ? 0.0 : (static_cast<double>(distance) - dist(i)) / d;
    const array2<double>& loc = profile.location;
    east = (loc(easting_row, i + 1) - loc(easting_row, i)) * t + loc(easting_row, i);
    north = (loc(northing_row, i + 1) - loc(northing_row, i)) * t + loc(northing_row, i);
}

}  // namespace trensil
