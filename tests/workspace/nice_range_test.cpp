#include "workspace/nice_range.h"

#include <gtest/gtest.h>

namespace trensil {
namespace {

struct rounded {
    float step = -1.0f, lo = -7.0f, hi = -7.0f;
};
rounded round_range(float lo, float hi, int ticks = 8) {
    rounded r;
    nice_range(lo, hi, ticks, r.step, r.lo, r.hi);
    return r;
}

TEST(nice_range, climbs_the_ladder_and_keeps_the_decade) {
    const rounded a = round_range(0.0f, 1000.0f);
    EXPECT_NEAR(a.step, 150.0f, 1e-3f);
    EXPECT_NEAR(a.lo, 0.0f, 1e-3f);
    EXPECT_NEAR(a.hi, 1050.0f, 1e-2f);

    const rounded b = round_range(0.0f, 10000.0f);
    EXPECT_NEAR(b.step, 1500.0f, 1e-2f);
    EXPECT_NEAR(b.hi, 10500.0f, 0.1f);
}

TEST(nice_range, descends_below_one_for_small_ranges) {
    const rounded r = round_range(0.0f, 0.7f);
    EXPECT_NEAR(r.step, 0.1f, 1e-6f);  // 0.08 would give more than 8 steps
    EXPECT_LE(r.lo, 0.0f);
    EXPECT_GE(r.hi, 0.7f);
    EXPECT_LT(r.hi, 0.8f);
}

TEST(nice_range, encloses_a_range_across_zero) {
    const rounded r = round_range(-37.0f, 12.0f);
    EXPECT_FLOAT_EQ(r.step, 8.0f);
    EXPECT_FLOAT_EQ(r.lo, -40.0f);
    EXPECT_FLOAT_EQ(r.hi, 16.0f);
    EXPECT_LE((r.hi - r.lo) / r.step, 8.0f);
}

TEST(nice_range, empty_range_keeps_outputs_with_step_one) {
    const rounded equal = round_range(5.0f, 5.0f);
    EXPECT_EQ(equal.step, 1.0f);
    EXPECT_EQ(equal.lo, -7.0f);
    EXPECT_EQ(equal.hi, -7.0f);
    const rounded reversed = round_range(9.0f, 2.0f);
    EXPECT_EQ(reversed.step, 1.0f);
    EXPECT_EQ(reversed.lo, -7.0f);
}

TEST(nice_range, range_finer_than_single_precision_ends) {
    // One million and a hundredth: the step is below the resolution of the ends.
    const rounded r = round_range(1.0e6f, 1.0e6f + 0.0625f);
    EXPECT_LE(r.lo, 1.0e6f);
    EXPECT_GE(r.hi, 1.0e6f + 0.0625f);
}

}  // namespace
}  // namespace trensil
