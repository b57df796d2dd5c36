// A model for the response tests: stations evenly spaced along a straight line at one sensor
// elevation, the profile azimuth taken as the bearing of the negated line direction, and bodies
// with the built-in defaults.
#pragma once

#include <cmath>

#include "core/model_record.h"
#include "response/response_state.h"
#include "response/strike_frame.h"
#include "support/scripted_platform.h"

namespace trensil::testing_support {

// n stations from (east0, north0) with step (step_east, step_north) at `elevation`, magnetics in
// column 5 and gravity in column 6, the sensor and ground columns present so the heights stand.
inline model_record line_model(int n, double east0, double north0, double step_east,
                               double step_north, double elevation, int bodies) {
    model_record model;
    reset_model(model);
    model.zpos = 4;
    model.dtm = 7;
    model.magpos = 5;
    model.gravpos = 6;
    model.profile.allocate_stations(n);
    const double step = std::hypot(step_east, step_north);
    for (int i = 1; i <= n; ++i) {
        model.profile.location(easting_row, i) = east0 + step_east * (i - 1);
        model.profile.location(northing_row, i) = north0 + step_north * (i - 1);
        model.profile.location(sensor_row, i) = elevation;
        model.profile.location(ground_row, i) = elevation;
        model.profile.profile_distance(i) = static_cast<float>(step * (i - 1));
    }
    double y = -step_north;
    model.profile.profile_azimuth = static_cast<float>(bearing_of(-step_east, y));
    model.num_bodies = bodies;
    for (int b = 1; b <= bodies; ++b) new_body_defaults(model, b, nullptr);
    prepare_channels(model);
    model.profile_ready = -1;
    return model;
}

// A state that reports to `ui`.
inline response_state state_for(scripted_platform& ui) {
    response_state state;
    state.ui = &ui;
    return state;
}

}  // namespace trensil::testing_support
