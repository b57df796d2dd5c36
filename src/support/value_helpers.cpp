#include "support/value_helpers.h"

#include <cmath>

namespace trensil {

std::string yes_no_text(long flag) {
    return flag != 0 ? "Yes" : "No";
}

float log10_of(double x) {
    const double magnitude = std::fabs(x);
    if (magnitude == 0.0) return 0.0f;
    return static_cast<float>(std::log(magnitude) / std::log(10.0));
}

}  // namespace trensil
