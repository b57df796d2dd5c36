// What the response engine keeps between calls: the graphs' display arrays, the base offsets the
// misfit reads, the filter weights, the gradient choice and the inversion's choices. A workspace
// or an inversion session owns one; tests build their own.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

#include "support/bounded_array.h"
#include "support/platform.h"

namespace trensil {

// The empty value of a display array entry: a station or column with nothing to show.
inline constexpr float no_display_value = std::numeric_limits<float>::quiet_NaN();
inline bool is_display_value(float v) {
    return !std::isnan(v);
}

struct response_state {
    platform* ui = nullptr;  // where failures are reported; may be null (nothing is shown)

    // Station capacity of the work arrays; grows with num_stations, never shrinks.
    int work_capacity_stations = 0;

    // What the graphs read: stations 1..n by columns 1 (observed) and 2 (computed).
    array2<float> mag_display;
    array2<float> mag_gradient_display;
    array2<float> grav_display;
    array2<float> grav_gradient_display;

    float mag_base_offset = 0.0f;
    float grav_base_offset = 0.0f;
    float observed_mean_mag = 0.0f;
    float observed_mean_grav = 0.0f;  // read by the gravity branch; never stored to
    array1<float> filter_weights;

    // vg_mode[0]: 1 while the total gradient is displayed; vg_mode[1]: 0 vertical gradient,
    // 2 total gradient (the residual rows 8 + vg_mode[1] and 3 + vg_mode[1]).
    std::array<std::int32_t, 2> vg_mode{0, 0};
    std::int32_t inversion_uses_gravity = 0;
    std::int32_t inversion_fits_gradient = 0;

    // How many body responses were computed since the counters were last set to 0; the
    // benchmarks and the cache tests read them.
    long mag_responses_computed = 0;
    long grav_responses_computed = 0;
};

}  // namespace trensil
