// Rounding of an axis range to a tick step from the ladder 1, 1.2, 1.5, 2, 3, 5, 6, 8 and its
// decades, with no more than `ticks` steps across the range.
//
//   float step, lo = 0, hi = 0;
//   nice_range(0, 1000, 8, step, lo, hi);   // step 150, lo 0, hi 1050
#pragma once

#include <cstdint>

namespace trensil {

// When `hi` is not above `lo`, `step` is 1 and `out_lo`, `out_hi` are left as they are.
void nice_range(float lo, float hi, std::int32_t ticks, float& step, float& out_lo, float& out_hi);

}  // namespace trensil
