// A model for the response tests: stations evenly spaced along a straight line at one sensor
// elevation, the profile azimuth taken as the bearing of the negated line direction, and bodies
// with the built-in defaults.
#pragma once

#include "core/model_record.h"
#include "response/response_state.h"
#include "support/scripted_platform.h"
#include "support/straight_line.h"

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
    lay_out_straight_line(model.profile, n, east0, north0, step_east, step_north, elevation,
                          elevation);
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
