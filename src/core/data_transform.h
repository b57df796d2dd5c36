// The coordinate transform of observed data: a two-point similarity with separate x and y scale
// and a z shift and scale. The reader applies it to every location it takes from a data file.
#pragma once

#include <cstdint>

namespace trensil {

struct data_transform {
    std::int32_t active = 0;  // -1 when the transform does anything
    double rotation = 0.0;    // degrees
    double cos_rotation = 1.0;
    double sin_rotation = 0.0;
    double x_scale = 1.0;
    double y_scale = 1.0;
    double x_input_origin = 0.0;
    double second_x_input_origin = 1.0;
    double x_output_origin = 0.0;
    double second_x_output_origin = 1.0;
    double y_input_origin = 0.0;
    double second_y_input_origin = 1.0;
    double y_output_origin = 0.0;
    double second_y_output_origin = 1.0;
    double z_shift = 0.0;
    double z_scale = 1.0;
    bool operator==(const data_transform&) const = default;
};

}  // namespace trensil
