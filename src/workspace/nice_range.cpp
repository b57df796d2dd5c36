#include "workspace/nice_range.h"

#include <array>
#include <cmath>

namespace trensil {

namespace {
// Ladder positions 1..8; position 9 stands for the 10 that starts the next decade.
constexpr std::array<float, 10> ladder{0.0f, 1.0f, 1.2f, 1.5f, 2.0f, 3.0f, 5.0f, 6.0f, 8.0f, 10.0f};
}  // namespace

void nice_range(float lo, float hi, std::int32_t ticks, float& step, float& out_lo, float& out_hi) {
    step = 1.0f;
    int position = 1;
    if (!(hi > lo)) return;
    const float span = hi - lo;
    const float limit = static_cast<float>(ticks);

    // Up the ladder until the range fits in `ticks` steps; the multiply-then-divide keeps the
    // decade (1 -> 1.2 is x 1.2 / 1, 8 -> 10 is x 10 / 8 and back to position 1).
    while (span / step > limit && std::isfinite(step)) {
        const int next = position + 1;
        step = step * ladder[next] / ladder[position];
        position = next == 9 ? 1 : next;
    }
    // Down the ladder while a smaller step still fits.
    while (span / step < limit) {
        float smaller;
        int lower;
        if (position == 1) {
            smaller = step * 8.0f / 10.0f;
            lower = 8;
        } else {
            smaller = step * ladder[position - 1] / ladder[position];
            lower = position - 1;
        }
        if (span / smaller > limit || !(smaller > 0.0f)) break;
        step = smaller;
        position = lower;
    }

    // A step below the resolution of a single at this magnitude would never move the ends;
    // such a range keeps its rounded ends.
    out_lo = step * std::nearbyint(lo / step);
    while (out_lo > lo && out_lo - step < out_lo) out_lo -= step;
    out_hi = step * std::nearbyint(hi / step);
    while (out_hi < hi && out_hi + step > out_hi) out_hi += step;
}

}  // namespace trensil
