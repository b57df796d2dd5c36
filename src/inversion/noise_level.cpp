#include "inversion/noise_level.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace trensil {

namespace {

double median_of(std::vector<double>& v) {
    const std::size_t mid = v.size() / 2;
    std::nth_element(v.begin(), v.begin() + static_cast<std::ptrdiff_t>(mid), v.end());
    const double upper = v[mid];
    if (v.size() % 2 == 1) return upper;
    const double lower = *std::max_element(v.begin(), v.begin() + static_cast<std::ptrdiff_t>(mid));
    return 0.5 * (lower + upper);
}

}  // namespace

float estimate_noise_level(const float* values, int count) {
    double sigma = 0.0;
    if (count >= 5) {
        std::vector<double> d;
        d.reserve(static_cast<std::size_t>(count - 4));
        for (int i = 2; i + 2 < count; ++i) {
            const double v = static_cast<double>(values[i - 2]) - 4.0 * values[i - 1] +
                             6.0 * values[i] - 4.0 * values[i + 1] + values[i + 2];
            if (std::isfinite(v)) d.push_back(v);
        }
        if (!d.empty()) {
            const double centre = median_of(d);
            for (double& x : d) x = std::fabs(x - centre);
            sigma = 1.4826 * median_of(d) / std::sqrt(70.0);
        }
    }
    // Values that are no numbers take no part.
    double lo = 0.0, hi = 0.0;
    bool any = false;
    for (int i = 0; i < count; ++i) {
        if (!std::isfinite(values[i])) continue;
        if (!any || values[i] < lo) lo = values[i];
        if (!any || values[i] > hi) hi = values[i];
        any = true;
    }
    const double least = 1e-4 * (hi - lo);
    if (std::isfinite(sigma) && sigma > least) return static_cast<float>(sigma);
    return least > 0.0 && std::isfinite(least) ? static_cast<float>(least) : 1.0f;
}

}  // namespace trensil
