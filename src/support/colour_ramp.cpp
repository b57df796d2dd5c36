#include "support/colour_ramp.h"

#include <array>
#include <cmath>

namespace trensil {

namespace {
struct stop {
    double at;
    float red, green, blue;
};
// Piecewise linear between these stops; the ends are the lowest and highest colours.
constexpr std::array<stop, 7> stops = {{
    {0.00, 0.00f, 0.00f, 0.50f},  // dark blue
    {0.16, 0.00f, 0.25f, 1.00f},  // blue
    {0.34, 0.00f, 0.85f, 1.00f},  // cyan
    {0.50, 0.10f, 0.80f, 0.15f},  // green
    {0.66, 1.00f, 0.95f, 0.00f},  // yellow
    {0.84, 1.00f, 0.15f, 0.00f},  // red
    {1.00, 1.00f, 0.45f, 1.00f},  // magenta
}};
}  // namespace

colour_fraction colour_ramp(double fraction) {
    if (!(fraction > 0.0)) fraction = 0.0;  // NaN too
    if (fraction > 1.0) fraction = 1.0;
    std::size_t i = 1;
    while (i + 1 < stops.size() && fraction > stops[i].at) ++i;
    const stop& a = stops[i - 1];
    const stop& b = stops[i];
    const float w = static_cast<float>((fraction - a.at) / (b.at - a.at));
    return {a.red + (b.red - a.red) * w, a.green + (b.green - a.green) * w,
            a.blue + (b.blue - a.blue) * w};
}

std::int32_t colour_ramp_value(double fraction) {
    const colour_fraction c = colour_ramp(fraction);
    auto byte = [](float v) { return static_cast<std::int32_t>(std::lround(v * 255.0f)); };
    return byte(c.red) | (byte(c.green) << 8) | (byte(c.blue) << 16);
}

}  // namespace trensil
