#include "response/derived_channels.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "response/strike_frame.h"

namespace trensil {

namespace {

// Sum of 1 / k^2 over the odd k above m: summed term by term up to a point far enough out, then
// by its Euler-Maclaurin tail, whose first neglected term is below 1e-24 there.
double odd_inverse_squares_above(long m) {
    constexpr long far_out = 65536;
    double sum = 0.0;
    long k = m % 2 == 0 ? m + 1 : m + 2;
    for (; k <= far_out; k += 2) sum += 1.0 / (double(k) * k);
    const double a = double(k);
    return sum + 1.0 / (2.0 * a) + 1.0 / (2.0 * a * a) + 1.0 / (3.0 * a * a * a);
}

// Fills weights 0..terms of a filter of half-width N (terms at most N) and returns the sum of
// the weights terms + 1..N that are not filled, at a cost that does not grow with N. With terms
// equal to N this is the whole filter and the sum is 0.
double fill_filter_weights(int mode, int N, int terms, array1<float>& weights) {
    const long rest = long{N} - terms;  // weights past the filled ones
    switch (mode) {
        case box_smoothing: {
            const float w0 = static_cast<float>(1.0 / (2.0 * N + 1.0));
            for (int k = 0; k <= terms; ++k) weights(k) = w0;
            return double(rest) * w0;
        }
        case triangular_smoothing: {
            const float w0 = static_cast<float>(1.0 / (N + 1.0));
            weights(0) = w0;
            for (int k = 1; k <= terms; ++k)
                weights(k) = static_cast<float>(static_cast<double>(w0) * (N + 1 - k) / (N + 1.0));
            // w[k] falls by w0 / (N + 1) a step to w0 / (N + 1) at k = N.
            return static_cast<double>(w0) / (N + 1.0) *
                   (double(rest) * (double(rest) + 1.0) / 2.0);
        }
        case vertical_gradient_filter: {
            // Symmetric weights that add to 0: a constant or a linear ramp has no gradient.
            double sum = 0.0;
            for (int k = 1; k <= terms; ++k) {
                weights(k) =
                    k % 2 == 0 ? 0.0f : static_cast<float>((-2.0 / pi_value) / (double(k) * k));
                sum += weights(k);
            }
            const double tail = rest == 0 ? 0.0
                                          : (-2.0 / pi_value) * (odd_inverse_squares_above(terms) -
                                                                 odd_inverse_squares_above(N));
            sum += tail;
            const float w0 = static_cast<float>(pi_value / 2.0);
            weights(0) = static_cast<float>(w0 - (w0 + 2.0 * sum));
            return tail;
        }
        case horizontal_derivative_filter: {
            weights(0) = 0.0f;
            double s = 1.0;
            for (int k = 1; k <= terms; ++k) {
                if (k % 2 == 0) {
                    weights(k) = 0.0f;
                } else {
                    weights(k) = static_cast<float>((2.0 * s / pi_value) / (double(k) * k));
                    s = -s;
                }
            }
            // The signs alternate, so the weights past the filled ones add to less than the
            // first of them: summed out to where that is below 1e-9, the rest left out.
            double tail = 0.0;
            const long last = std::min<long>(N, 65536);
            for (long k = terms + 1; k <= last; ++k) {
                if (k % 2 == 0) continue;
                tail += (2.0 * s / pi_value) / (double(k) * k);
                s = -s;
            }
            return tail;
        }
        default:
            return 0.0;
    }
}

}  // namespace

void build_filter_weights(int mode, int half_width, array1<float>& weights) {
    fill_filter_weights(mode, half_width, half_width, weights);
}

void apply_channel_filter(int mode, int half_width, int step, int count, array2<float>& channels,
                          int in_row, int out_row, array1<float>& weights) {
    if (half_width < 0) half_width = 0;
    // Past 2 count + 1 terms every sample of the filter is held at an end station (whatever the
    // step), so all further terms are one pair of values: they are added at once with the sum of
    // their weights, and a half-width far beyond the profile costs no more than its length.
    const int terms = static_cast<int>(std::min<long>(half_width, 2L * std::max(count, 0) + 1));
    weights.resize(0, terms);
    const double tail_weight = fill_filter_weights(mode, half_width, terms, weights);
    if (count < 1) return;
    const float* in = channels.row(in_row);
    float* out = channels.row(out_row);
    // Sampled with 1-based station numbers.
    auto at = [in](long i) { return in[i - 1]; };
    // The filtered value of each station is formed from the input alone, so out_row may not be
    // in_row: work through a copy when they are the same.
    std::vector<float> result(static_cast<std::size_t>(count));
    // A station number held to the profile, for a step that is not at least 1.
    auto held = [count](long j) { return j < 1 ? 1L : (j > count ? long{count} : j); };
    // The pair of samples of term k at station i.
    auto pair_at = [&](long i, long k) {
        const long o = static_cast<long>(step) * k;
        const long j = i - o;
        float a, b;
        if (mode < 1) {
            // Folded ends: reflect at the start, take the first station past the end.
            a = j >= 1 ? at(held(j)) : (1 - j <= count ? at(1 - j) : at(count));
            b = i + o <= count ? at(held(i + o)) : at(1);
        } else {
            a = j >= 1 ? at(held(j)) : at(1);
            b = i + o <= count ? at(held(i + o)) : at(count);
        }
        return mode == horizontal_derivative_filter ? static_cast<double>(b) - a
                                                    : static_cast<double>(b) + a;
    };
    for (long i = 1; i <= count; ++i) {
        float acc = at(i) * weights(0);
        for (int k = 1; k <= terms; ++k) acc = static_cast<float>(pair_at(i, k) * weights(k) + acc);
        if (terms < half_width)
            acc = static_cast<float>(pair_at(i, terms + 1L) * tail_weight + acc);
        result[static_cast<std::size_t>(i - 1)] = mode > 1 ? acc : at(i) - acc;
    }
    for (long i = 0; i < count; ++i) out[i] = result[static_cast<std::size_t>(i)];
}

namespace {

// Makes the display arrays stations 1..n by columns 1, 2, empty, when they do not fit.
void fit_display(array2<float>& display, int n) {
    if (display.row_lo() != 1 || display.row_hi() != n || display.cols() != 2 ||
        display.col_lo() != 1)
        display.resize(1, n, 1, 2, no_display_value);
}

// Mean of a row over stations 1..n, summed in single precision.
float row_mean(const array2<float>& channels, int row, int n) {
    const float* r = channels.row(row);
    float sum = 0.0f;
    for (int i = 0; i < n; ++i) sum += r[i];
    return sum / static_cast<float>(n);
}

void derive_one(model_record& model, response_state& state, bool gravity, std::int16_t& done,
                array2<float>& ch, int raw_row, int level_row, int gradient_row,
                int want_total_gradient, int base_mode) {
    const int n = model.profile.num_stations;
    array2<float>& display = gravity ? state.grav_display : state.mag_display;
    array2<float>& gradient_display =
        gravity ? state.grav_gradient_display : state.mag_gradient_display;
    fit_display(display, n);
    fit_display(gradient_display, n);

    if (!done) {
        if (model.residual > 0) {
            apply_channel_filter(triangular_smoothing, model.residual, 1, n, ch, raw_row, level_row,
                                 state.filter_weights);
        } else {
            // The graphs' ranges follow the new levels.
            model.channel_valid[gravity ? 6 : 3] = 0;
            float offset = 0.0f;
            if (base_mode == 1) {
                offset = gravity ? model.basegrav : model.basemag;
            } else if (model.float_base[gravity ? 1 : 0] == 1) {
                const float m = row_mean(ch, computed_raw, n);
                if (gravity) {
                    // Gravity floats on the computed mean plus its base; the observed mean it
                    // reads is never stored, so stays 0.
                    offset = (model.basegrav - state.observed_mean_grav) + m;
                } else {
                    state.observed_mean_mag = row_mean(ch, observed_level, n);
                    offset = m - state.observed_mean_mag;
                }
            }
            (gravity ? state.grav_base_offset : state.mag_base_offset) = offset;
            const float* raw = ch.row(raw_row);
            float* level = ch.row(level_row);
            for (int i = 0; i < n; ++i) level[i] = raw[i] - offset;
        }
        apply_channel_filter(vertical_gradient_filter, model.VG_filter_width, model.VG_filter_step,
                             n, ch, raw_row, gradient_row, state.filter_weights);
        if (want_total_gradient == 1) {
            apply_channel_filter(horizontal_derivative_filter, 1, model.VG_filter_step, n, ch,
                                 raw_row, gradient_row + 1, state.filter_weights);
            const float* vg = ch.row(gradient_row);
            const float* hd = ch.row(gradient_row + 1);
            float* tg = ch.row(gradient_row + 2);
            for (int i = 0; i < n; ++i)
                tg[i] = static_cast<float>(std::sqrt(static_cast<double>(hd[i]) * hd[i] +
                                                     static_cast<double>(vg[i]) * vg[i]));
        }
        done = -1;
    }

    const float* level = ch.row(level_row);
    const float* grad = ch.row(want_total_gradient == 1 ? gradient_row + 2 : gradient_row);
    for (int i = 1; i <= n; ++i) {
        display(i, base_mode) = level[i - 1];
        gradient_display(i, base_mode) = grad[i - 1];
    }
}

}  // namespace

void calculate_derived_channels(model_record& model, response_state& state, std::int16_t& mag_done,
                                std::int16_t& grav_done, array2<float>& mag_channels,
                                array2<float>& grav_channels, int raw_row, int level_row,
                                int gradient_row, int want_total_gradient, int base_mode) {
    if (model.profile.num_stations < 1) return;
    if (model.magpos >= 1)
        derive_one(model, state, false, mag_done, mag_channels, raw_row, level_row, gradient_row,
                   want_total_gradient, base_mode);
    if (model.gravpos >= 1)
        derive_one(model, state, true, grav_done, grav_channels, raw_row, level_row, gradient_row,
                   want_total_gradient, base_mode);
}

}  // namespace trensil
