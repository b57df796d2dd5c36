#include "response/prism_corners.h"

#include <cmath>

#include "response/strike_frame.h"

namespace trensil {

void place_prism_top(const body_record& body, double width, prism_corners& c) {
    const double ss = body.sin_strike, cs = body.cos_strike;
    const double sin_plunge = std::sin(body.plunge.value * degrees_to_radians);
    const double s1 = body.length.value / 2.0 + body.offset.value;
    const double s2 = -body.length.value / 2.0 + body.offset.value;
    c.east[1] = s1 * ss + body.east;
    c.north[1] = s1 * cs + body.north;
    c.z[1] = body.top.value - s1 * sin_plunge;
    c.east[2] = s2 * ss + body.east;
    c.north[2] = s2 * cs + body.north;
    c.z[2] = body.top.value - s2 * sin_plunge;
    c.east[3] = cs * width + c.east[2];
    c.north[3] = c.north[2] - ss * width;
    c.z[3] = c.z[2];
    c.east[4] = cs * width + c.east[1];
    c.north[4] = c.north[1] - ss * width;
    c.z[4] = c.z[1];
}

void place_prism_bottom(const body_record& body, double shift, double depth, prism_corners& c) {
    for (int k = 1; k <= 4; ++k) {
        c.east[k + 4] = body.cos_strike * shift + c.east[k];
        c.north[k + 4] = c.north[k] - body.sin_strike * shift;
        c.z[k + 4] = c.z[k] - depth;
    }
}

void slope_prism_top(const body_record& body, double width, double rise, prism_corners& c) {
    const double dx = body.cos_strike * width;
    const double dy = body.sin_strike * width;
    // (moved corner, corner it is measured from)
    constexpr std::array<std::array<int, 2>, 4> moves{{{3, 2}, {4, 1}, {7, 6}, {8, 5}}};
    for (const auto& [k, from] : moves) {
        c.east[k] = dx + c.east[from];
        c.north[k] = c.north[from] - dy;
        c.z[k] = rise + c.z[from];
    }
}

}  // namespace trensil
