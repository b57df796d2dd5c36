#include "io/coordinate_transform.h"

#include <cmath>

namespace trensil {

namespace {
constexpr double degrees_to_radians = 0.017453292;
// A z at or below this is undefined and passes through the transform unchanged.
constexpr double undefined_z = -1e30;
}  // namespace

void reset_transform(data_transform& t) {
    t = data_transform{};
}

bool take_defined_transform(const transform_state& state, data_transform& target) {
    if (state.define_cancelled) return false;
    target = state.program_transform;
    prepare_transform(target);
    return true;
}

void prepare_transform(data_transform& t) {
    t.active = 0;
    t.cos_rotation = std::cos(t.rotation * degrees_to_radians);
    t.sin_rotation = std::sin(t.rotation * degrees_to_radians);
    // A scale never set (read as 0 from an older file) means no scaling.
    if (t.x_scale == 0.0) t.x_scale = 1.0;
    if (t.y_scale == 0.0) t.y_scale = 1.0;
    if (t.z_scale == 0.0) t.z_scale = 1.0;

    // The whole-degree test on the rotation is deliberate: a rotation below half a degree, or a
    // whole number of turns, leaves the data unrotated although cos and sin are set above.
    const double whole_degrees = std::fmod(std::round(t.rotation), 360.0);
    const bool changes_something =
        t.x_input_origin != t.x_output_origin || t.y_input_origin != t.y_output_origin ||
        std::fabs(t.x_scale - 1.0) > 1e-6 || std::fabs(t.y_scale - 1.0) > 1e-6 ||
        std::fabs(whole_degrees) > 0.01 || t.z_shift != 0.0 || std::fabs(t.z_scale - 1.0) > 1e-4;
    if (changes_something) t.active = -1;
}

void apply_transform(int direction, const data_transform& t, double& x, double& y, double& z) {
    if (direction == -1) {
        const double dx = x - t.x_output_origin;
        const double dy = y - t.y_output_origin;
        x = (dx * t.cos_rotation - dy * t.sin_rotation) / t.x_scale + t.x_input_origin;
        y = (dx * t.sin_rotation + dy * t.cos_rotation) / t.y_scale + t.y_input_origin;
        if (z > undefined_z) z = z / t.z_scale - t.z_shift;
        return;
    }
    const double dx = (x - t.x_input_origin) * t.x_scale;
    const double dy = (y - t.y_input_origin) * t.y_scale;
    x = dy * t.sin_rotation + dx * t.cos_rotation + t.x_output_origin;
    y = -dx * t.sin_rotation + dy * t.cos_rotation + t.y_output_origin;
    if (z > undefined_z) z = (z + t.z_shift) * t.z_scale;
}

}  // namespace trensil
