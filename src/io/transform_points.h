// The transform dialog's derivation: a rotation and a scale from two points known in both frames.
//
//   t.x_input_origin = 1000; t.y_input_origin = 2000;          // first point, data frame
//   t.x_output_origin = 357000; t.y_output_origin = 1210000;   // the same point, target frame
//   t.second_x_input_origin = ...; t.second_y_input_origin = ...; (and the second outputs)
//   if (derive_transform_from_points(t)) prepare_transform(t);
#pragma once

#include "core/data_transform.h"

namespace trensil {

// Sets `rotation`, `x_scale` and `y_scale` so that the forward transform takes the second point
// of the data frame onto the second point of the target frame, the first points being the two
// origins. Two point pairs fix one scale, so x and y get the same one (the ratio of the two
// points' distances); the rotation is the turn from the data frame's direction to the target
// frame's, in degrees, clockwise positive as the transform applies it. Returns false, and leaves
// the record as it was, when either pair of points coincides.
bool derive_transform_from_points(data_transform& t);

}  // namespace trensil
