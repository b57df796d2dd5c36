// What the response engine keeps between calls: the graphs' display arrays, the base offsets the
// misfit reads, the filter weights, the gradient choice and the inversion's choices. A workspace
// or an inversion session owns one; tests build their own.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

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

    // Set when the bodies changed in number or order while none became stale (an undone add,
    // delete or sort): the next calculate_body_responses adds the bodies' rows into rows 6 anew
    // without recomputing any body, then clears it.
    bool channel_sums_stale = false;

    // How many body responses were computed since the counters were last set to 0; the
    // benchmarks and the cache tests read them.
    long mag_responses_computed = 0;
    long grav_responses_computed = 0;

    // Sizes of the closed-body work space: stations, vertices, triangles, bodies. Grown by the
    // driver when the profile outgrows them, never shrunk.
    int work_vertex_capacity = 0;
    int work_triangle_capacity = 0;
    int work_body_count = 0;
};

// Shows `text` through the state's platform when there is one.
inline void report_response_failure(response_state& state, const std::string& text) {
    if (state.ui) state.ui->show_message(text);
}

// The description of a value that the responses cannot store: "Overflow" for an infinite value
// or one beyond single precision, "Invalid procedure call or argument" for a value that is not a
// number (a logarithm of a negative ratio, 0 / 0). Empty for a value that can be stored.
inline std::string non_finite_description(double v) {
    if (std::isnan(v)) return "Invalid procedure call or argument";
    if (std::isinf(v) || std::fabs(v) > static_cast<double>(std::numeric_limits<float>::max()))
        return "Overflow";
    return "";
}

}  // namespace trensil
