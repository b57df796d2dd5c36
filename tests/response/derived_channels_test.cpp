#include "response/derived_channels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "response_test_model.h"

namespace trensil {
namespace {

using testing_support::line_model;
using testing_support::state_for;

constexpr double kPi = 3.14159265358979;

// A linear ramp of 2 a station: the vertical gradient is 0 away from the ends, the horizontal
// derivative (2 / pi)(b - a) = 8 / pi per station inside and half that at the clamped ends.
TEST(channel_filter, gradients_of_a_linear_ramp) {
    const int n = 30;
    array2<float> ch(1, 10, 1, n);
    for (int i = 1; i <= n; ++i) ch(6, i) = 2.0f * i;
    array1<float> w;
    apply_channel_filter(vertical_gradient_filter, 5, 1, n, ch, 6, 8, w);
    for (int i = 6; i <= n - 5; ++i) EXPECT_NEAR(ch(8, i), 0.0f, 1e-4) << i;
    EXPECT_GT(std::fabs(ch(8, 1)), 0.1f);  // the clamped end is not a ramp

    apply_channel_filter(horizontal_derivative_filter, 1, 1, n, ch, 6, 9, w);
    EXPECT_NEAR(ch(9, 10), 8.0 / kPi, 1e-5);
    EXPECT_NEAR(ch(9, 1), 4.0 / kPi, 1e-5);

    // Triangular smoothing keeps a ramp inside, so the background-removed row is 0 there.
    apply_channel_filter(triangular_smoothing, 3, 1, n, ch, 6, 7, w);
    EXPECT_NEAR(ch(7, 15), 2.0f * 15 - 2.0f * 15 * (0.25f + 2 * (0.1875f + 0.125f + 0.0625f)),
                1e-4);
}

TEST(channel_filter, half_width_beyond_count_clamps_to_the_ends) {
    array2<float> ch(1, 10, 1, 3);
    ch(1, 1) = 1.0f;
    ch(1, 2) = 2.0f;
    ch(1, 3) = 4.0f;
    array1<float> w;
    apply_channel_filter(triangular_smoothing, 50, 1, 3, ch, 1, 2, w);
    apply_channel_filter(box_smoothing, 50, 1, 3, ch, 1, 4, w);
    apply_channel_filter(vertical_gradient_filter, 50, 7, 3, ch, 1, 3, w);
    for (int row = 2; row <= 4; ++row)
        for (int i = 1; i <= 3; ++i) EXPECT_TRUE(std::isfinite(ch(row, i)));
    // Zero stations: nothing at all.
    apply_channel_filter(triangular_smoothing, 5, 1, 0, ch, 1, 2, w);
}

// The filter of half-width N summed term by term in double precision, as the weights are
// defined: the reference for a half-width far beyond the profile.
double reference_filter(int mode, long N, int step, int count, const std::vector<double>& in,
                        int i) {
    auto at = [&](long j) {
        return in[static_cast<std::size_t>(std::clamp(j, 1L, long{count}) - 1)];
    };
    double w0 = 0.0, acc = 0.0, vg_sum = 0.0;
    if (mode == triangular_smoothing) w0 = 1.0 / (N + 1.0);
    for (long k = 1; k <= N; ++k) {
        double w = 0.0;
        if (mode == triangular_smoothing) w = w0 * double(N + 1 - k) / (N + 1.0);
        if (mode == vertical_gradient_filter && k % 2 == 1) w = (-2.0 / kPi) / (double(k) * k);
        vg_sum += w;
        acc += (at(i - step * k) + at(i + step * k)) * w;
    }
    if (mode == vertical_gradient_filter) w0 = -2.0 * vg_sum;
    acc += w0 * in[static_cast<std::size_t>(i - 1)];
    return mode > 1 ? acc : in[static_cast<std::size_t>(i - 1)] - acc;
}

// A residual or VG half-width of a million on a short profile: the result is that of every
// term summed, and a half-width of two thousand million (which would take minutes) is as quick.
TEST(channel_filter, huge_half_width_gives_the_full_result_in_bounded_time) {
    const int n = 12;
    array2<float> ch(1, 10, 1, n);
    std::vector<double> in;
    for (int i = 1; i <= n; ++i) {
        ch(1, i) = static_cast<float>(100.0 + 10.0 * std::sin(i) + 0.5 * i);
        in.push_back(ch(1, i));
    }
    array1<float> w;
    for (int mode : {triangular_smoothing, vertical_gradient_filter}) {
        for (int step : {1, 3}) {
            apply_channel_filter(mode, 1000000, step, n, ch, 1, 2, w);
            for (int i = 1; i <= n; ++i)
                EXPECT_NEAR(ch(2, i), reference_filter(mode, 1000000, step, n, in, i), 2e-3)
                    << "mode " << mode << " step " << step << " station " << i;
        }
        apply_channel_filter(mode, 2000000000, 1, n, ch, 1, 3, w);
        EXPECT_LE(w.hi(), 2 * n + 1);  // the weights no longer grow with the half-width
        for (int i = 1; i <= n; ++i) EXPECT_TRUE(std::isfinite(ch(3, i))) << i;
    }
    // The smoothing of a huge half-width tends to the mean of the end stations.
    apply_channel_filter(triangular_smoothing, 2000000000, 1, n, ch, 1, 3, w);
    EXPECT_NEAR(ch(3, 5), ch(1, 5) - (ch(1, 1) + ch(1, n)) / 2.0, 1e-3);
}

model_record levelled_model() {
    model_record model = line_model(4, 0.0, 0.0, 10.0, 0.0, 0.0, 0);
    model.basemag = 100.0f;
    model.basegrav = 5.0f;
    for (int i = 1; i <= 4; ++i) {
        model.profile.mag_channels(observed_raw, i) = 110.0f + i;
        model.profile.mag_channels(computed_raw, i) = 20.0f + 2 * i;  // mean 25
        model.profile.grav_channels(observed_raw, i) = 7.0f;
        model.profile.grav_channels(computed_raw, i) = 1.0f * i;  // mean 2.5
    }
    return model;
}

void derive(model_record& model, response_state& state, int base_mode) {
    auto& p = model.profile;
    if (base_mode == 1)
        calculate_derived_channels(model, state, model.channel_valid[1], model.channel_valid[4],
                                   p.mag_channels, p.grav_channels, 1, 2, 3, 0, 1);
    else
        calculate_derived_channels(model, state, model.channel_valid[2], model.channel_valid[5],
                                   p.mag_channels, p.grav_channels, 6, 7, 8, 0, 2);
}

TEST(derived_channels, observed_rows_level_by_the_base_as_it_stands) {
    scripted_platform ui;
    response_state state = state_for(ui);
    model_record model = levelled_model();
    model.float_base = {1, 1};  // observed rows never float
    derive(model, state, 1);
    EXPECT_EQ(model.profile.mag_channels(observed_level, 2), 12.0f);
    EXPECT_EQ(model.profile.grav_channels(observed_level, 2), 2.0f);
    EXPECT_EQ(model.channel_valid[1], -1);
    EXPECT_EQ(state.mag_display(2, 1), 12.0f);
    EXPECT_FALSE(is_display_value(state.mag_display(2, 2)));

    // Done: not derived again, yet copied to the display.
    model.profile.mag_channels(observed_level, 2) = -1.0f;
    state.mag_display(2, 1) = 0.0f;
    derive(model, state, 1);
    EXPECT_EQ(state.mag_display(2, 1), -1.0f);
}

// Floating base: magnetics take the computed mean less the observed mean; gravity takes the
// computed mean plus basegrav, since the observed gravity mean it reads is never stored and stays
// 0. Required behaviour.
TEST(derived_channels, floating_base_for_magnetics_and_gravity) {
    scripted_platform ui;
    response_state state = state_for(ui);
    model_record model = levelled_model();
    derive(model, state, 1);  // observed level rows: 11..14 (mean 12.5) and 2
    model.float_base = {1, 1};
    derive(model, state, 2);
    EXPECT_FLOAT_EQ(state.observed_mean_mag, 12.5f);
    EXPECT_FLOAT_EQ(state.mag_base_offset, 25.0f - 12.5f);
    EXPECT_FLOAT_EQ(state.grav_base_offset, 5.0f + 2.5f);
    EXPECT_EQ(state.observed_mean_grav, 0.0f);
    EXPECT_FLOAT_EQ(model.profile.mag_channels(computed_level, 1), 22.0f - 12.5f);
    EXPECT_FLOAT_EQ(model.profile.grav_channels(computed_level, 1), 1.0f - 7.5f);

    // Without floating base the computed rows are not shifted.
    model.float_base = {0, 0};
    model.channel_valid[2] = model.channel_valid[5] = 0;
    derive(model, state, 2);
    EXPECT_EQ(state.mag_base_offset, 0.0f);
    EXPECT_EQ(model.profile.mag_channels(computed_level, 1), 22.0f);
}

TEST(derived_channels, total_gradient_and_residual_filter) {
    scripted_platform ui;
    response_state state = state_for(ui);
    model_record model = levelled_model();
    model.residual = 1;
    auto& p = model.profile;
    calculate_derived_channels(model, state, model.channel_valid[2], model.channel_valid[5],
                               p.mag_channels, p.grav_channels, 6, 7, 8, 1, 2);
    // Background removed by the triangular filter of half-width 1: 24 - (24/2 + (22+26)/4).
    EXPECT_FLOAT_EQ(p.mag_channels(computed_level, 2), 0.0f);
    for (int i = 1; i <= 4; ++i)
        EXPECT_FLOAT_EQ(p.mag_channels(computed_total_gradient, i),
                        std::hypot(p.mag_channels(computed_vertical_gradient, i),
                                   p.mag_channels(computed_horizontal_derivative, i)));
    EXPECT_EQ(state.mag_gradient_display(3, 2), p.mag_channels(computed_total_gradient, 3));
}

}  // namespace
}  // namespace trensil
