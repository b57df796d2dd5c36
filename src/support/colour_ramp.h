// The program's colour scale: a fraction from 0 to 1 to a colour running dark blue, blue, cyan,
// green, yellow, red to magenta, the scale geophysicists read grids and body properties in.
//
//   const colour_fraction c = colour_ramp(0.5);          // components 0..1
//   std::int32_t bgr = colour_ramp_value(0.5);           // 24-bit blue-green-red value
#pragma once

#include <cstdint>

namespace trensil {

struct colour_fraction {
    float red = 0.0f;
    float green = 0.0f;
    float blue = 0.0f;
};

// The colour at `fraction` of the scale; fractions outside 0..1 (and NaN) are held to the ends.
// Continuous: neighbouring fractions give neighbouring colours.
colour_fraction colour_ramp(double fraction);

// The same as a 24-bit colour in blue-green-red byte order (255 red, 16711680 blue), each
// component times 255.
std::int32_t colour_ramp_value(double fraction);

}  // namespace trensil
