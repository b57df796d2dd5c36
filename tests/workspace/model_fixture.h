// Models built in code for the window's logic tests: a straight east-running profile of evenly
// spaced stations, and bodies placed on it.
#pragma once

#include "core/body_catalogue.h"
#include "core/model_record.h"
#include "support/straight_line.h"

namespace trensil::testing_models {

// `n` stations from distance 0 at `spacing`, running east from (1000, 5000), sensor at `sensor`
// and ground at `ground`; magnetics in column 5, observed level row equal to 100 + i.
inline model_record line_model(int n, float spacing = 10.0f, double sensor = 50.0,
                               double ground = 40.0) {
    model_record model;
    reset_model(model);
    profile_block& p = model.profile;
    testing_support::lay_out_straight_line(p, n, 1000.0, 5000.0, spacing, 0.0, sensor, ground);
    p.xmin = 1000.0;
    p.xmax = 1000.0 + spacing * (n - 1);
    p.ymin = p.ymax = 5000.0;
    for (int i = 1; i <= n; ++i) {
        p.mag_channels(observed_raw, i) = 100.0f + static_cast<float>(i);
        p.mag_channels(observed_level, i) = 100.0f + static_cast<float>(i);
    }
    p.zmin = static_cast<float>(ground);
    p.zmax = static_cast<float>(ground);
    p.dtm_max = static_cast<float>(ground);
    p.inversion_first_station = 1;
    p.inversion_last_station = n;
    return model;
}

// Adds a body of `type` at `distance` with its top at `top`, striking across the profile.
inline body_record& add_body(model_record& model, int type, float distance, float top) {
    const int i = ++model.num_bodies;
    new_body_defaults(model, i, nullptr);
    body_record& b = model.body(i);
    b.type = type;
    b.distance.value = distance;
    b.top.value = top;
    b.strike.value = 0.0f;  // north: across an east-running line
    b.dip.value = 90.0f;
    b.length.value = 0.0f;
    return b;
}

}  // namespace trensil::testing_models
