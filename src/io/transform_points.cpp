#include "io/transform_points.h"

#include <cmath>

namespace trensil {

namespace {
constexpr double radians_to_degrees = 57.29577951308232;
}

bool derive_transform_from_points(data_transform& t) {
    const double in_x = t.second_x_input_origin - t.x_input_origin;
    const double in_y = t.second_y_input_origin - t.y_input_origin;
    const double out_x = t.second_x_output_origin - t.x_output_origin;
    const double out_y = t.second_y_output_origin - t.y_output_origin;
    const double in_length = std::hypot(in_x, in_y);
    const double out_length = std::hypot(out_x, out_y);
    if (in_length == 0.0 || out_length == 0.0) return false;
    // The forward transform turns (dx, dy) clockwise by the rotation: the direction of the data
    // frame's vector less that of the target frame's.
    double rotation = (std::atan2(in_y, in_x) - std::atan2(out_y, out_x)) * radians_to_degrees;
    if (rotation > 180.0) rotation -= 360.0;
    if (rotation <= -180.0) rotation += 360.0;
    t.rotation = rotation;
    t.x_scale = out_length / in_length;
    t.y_scale = t.x_scale;
    return true;
}

}  // namespace trensil
