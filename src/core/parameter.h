// One adjustable body property: its value, whether the inversion may vary it, and its limits.
#pragma once

namespace trensil {

// Marker of an undefined limit or base level: a limit at or below it is no limit.
inline constexpr float undefined_value = -99999.0f;

struct parameter {
    float value = 0.0f;
    float vary = 0.0f;  // 1: the inversion may change the value
    float min = undefined_value;
    float max = undefined_value;
    bool operator==(const parameter&) const = default;
};

}  // namespace trensil
