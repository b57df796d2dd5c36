// The noise level of an observed channel estimated from its own scatter, the default weight of
// a channel in a joint fit and the scale of the robust loss.
//
//   const float sigma = estimate_noise_level(p.mag_channels.row(observed_level) + first - 1, n);
#pragma once

namespace trensil {

// The standard deviation of the noise on `count` evenly spaced values: the median absolute
// deviation of the fourth differences (1, -4, 6, -4, 1), scaled to a standard deviation
// (x 1.4826) and divided by the root of 70 (the variance of a fourth difference of white noise
// is 70 sigma^2). An anomaly several stations wide hardly shows in fourth differences, and a few
// spikes do not move the median. Never below 1e-4 of the range of the values, so that data
// without scatter (synthetic, or fewer than 5 values) are not weighted without bound; 1 for a
// flat line.
float estimate_noise_level(const float* values, int count);

}  // namespace trensil
