// The coordinate transform of observed data, and the program-wide copy of it that the data
// reader applies to every location it takes from a file.
//
//   reset_transform(model.transform);
//   model.transform.rotation = 30;
//   prepare_transform(model.transform);            // sets active, cos/sin, repairs zero scales
//   apply_transform(1, model.transform, x, y, z);  // data frame to target frame
//   apply_transform(-1, model.transform, x, y, z); // and back
#pragma once

#include "core/data_transform.h"

namespace trensil {

// The transform the data reader applies, copied from a model by check_data_definition and edited
// by the transform dialog; `define_cancelled` is the dialog's answer (true until it is accepted).
struct transform_state {
    data_transform program_transform;
    bool define_cancelled = true;
};

// The transform dialog's result: when it was accepted, `target` takes the edited transform,
// prepared, and true comes back; a cancelled dialog leaves `target` as it was.
bool take_defined_transform(const transform_state& state, data_transform& target);

// Every field back to its default: the identity, inactive.
void reset_transform(data_transform& t);

// Derives cos_rotation and sin_rotation, turns a scale of exactly 0 into 1, and sets active to -1
// when the transform changes anything (else 0). Rotations that round to a whole multiple of 360
// degrees count as none.
void prepare_transform(data_transform& t);

// Transforms x, y, z in place in double precision: direction -1 is target frame to data frame,
// any other value data frame to target frame. A z at or below -1e30 (undefined) is left alone.
void apply_transform(int direction, const data_transform& t, double& x, double& y, double& z);

// The same for callers that hold their values in other numeric types (single precision sensor
// heights, say): the values go through in double and are narrowed back on return.
template <class X, class Y, class Z>
void apply_transform(int direction, const data_transform& t, X& x, Y& y, Z& z) {
    double dx = static_cast<double>(x), dy = static_cast<double>(y), dz = static_cast<double>(z);
    apply_transform(direction, t, dx, dy, dz);
    x = static_cast<X>(dx);
    y = static_cast<Y>(dy);
    z = static_cast<Z>(dz);
}

}  // namespace trensil
