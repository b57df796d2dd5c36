#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/colour_ramp.h"

namespace trensil {
namespace {

TEST(colour_ramp, ends_held_and_continuous_with_components_in_range) {
    const colour_fraction low = colour_ramp(0.0), high = colour_ramp(1.0);
    EXPECT_GT(low.blue, low.red);     // lows are blue
    EXPECT_GT(high.red, high.green);  // highs are red to magenta
    for (double outside : {-3.0, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(colour_ramp_value(outside), colour_ramp_value(0.0));
    EXPECT_EQ(colour_ramp_value(7.0), colour_ramp_value(1.0));

    colour_fraction previous = low;
    for (int i = 1; i <= 1000; ++i) {
        const colour_fraction c = colour_ramp(i / 1000.0);
        for (float v : {c.red, c.green, c.blue}) {
            EXPECT_GE(v, 0.0f);
            EXPECT_LE(v, 1.0f);
        }
        const float step = std::fabs(c.red - previous.red) + std::fabs(c.green - previous.green) +
                           std::fabs(c.blue - previous.blue);
        EXPECT_LT(step, 0.05f) << i;
        previous = c;
    }
}

}  // namespace
}  // namespace trensil
