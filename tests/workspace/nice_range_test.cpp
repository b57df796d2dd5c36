#include "workspace/nice_range.h"

#include <gtest/gtest.h>

#include <cmath>

namespace trensil {
namespace {

TEST(nice_range, rounds_and_encloses_the_range_in_at_most_the_ticks) {
    // tolerance 0 compares to within four units in the last place; NaN expectations are not
    // compared, only the enclosure.
    const float any = std::nanf("");
    struct row {
        float lo, hi, step, out_lo, out_hi, tolerance;
    };
    const row rows[] = {
        {0.0f, 1000.0f, 150.0f, 0.0f, 1050.0f, 1e-3f},     // the ladder's 1.5, decade kept
        {0.0f, 10000.0f, 1500.0f, 0.0f, 10500.0f, 1e-2f},  // the next decade
        {0.0f, 0.7f, 0.1f, 0.0f, 0.7f, 1e-6f},             // below one; 0.08 gives > 8 steps
        {-37.0f, 12.0f, 8.0f, -40.0f, 16.0f, 0.0f},        // across zero
        {1.0e6f, 1.0e6f + 0.0625f, any, any, any, 0.0f},   // step below the ends' resolution
    };
    for (const row& r : rows) {
        SCOPED_TRACE(::testing::Message() << r.lo << " .. " << r.hi);
        float step = -1.0f, lo = -7.0f, hi = -7.0f;
        nice_range(r.lo, r.hi, 8, step, lo, hi);
        EXPECT_LE(lo, r.lo);
        EXPECT_GE(hi, r.hi);
        EXPECT_LE((hi - lo) / step, 8.0f);
        const float expected[] = {r.step, r.out_lo, r.out_hi}, got[] = {step, lo, hi};
        for (int k = 0; k < 3; ++k) {
            if (std::isnan(expected[k])) continue;
            if (r.tolerance == 0.0f)
                EXPECT_FLOAT_EQ(got[k], expected[k]) << "output " << k;
            else
                EXPECT_NEAR(got[k], expected[k], r.tolerance) << "output " << k;
        }
    }
}

TEST(nice_range, empty_or_reversed_range_keeps_outputs_with_step_one) {
    for (const auto& [lo, hi] : {std::pair{5.0f, 5.0f}, std::pair{9.0f, 2.0f}}) {
        float step = -1.0f, out_lo = -7.0f, out_hi = -7.0f;
        nice_range(lo, hi, 8, step, out_lo, out_hi);
        EXPECT_EQ(step, 1.0f) << lo;
        EXPECT_EQ(out_lo, -7.0f) << lo;
        EXPECT_EQ(out_hi, -7.0f) << lo;
    }
}

}  // namespace
}  // namespace trensil
