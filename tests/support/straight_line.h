// The stations of a straight survey line, shared by the test folders that build models in code:
// n stations from (east0, north0), each (step_east, step_north) on from the last, at one sensor
// and one ground elevation, with their distances from the first station and the profile azimuth
// of the line's direction.
//
//   model_record model;
//   reset_model(model);
//   lay_out_straight_line(model.profile, 101, 0.0, 0.0, 10.0, 0.0, 50.0, 40.0);  // east-running
#pragma once

#include <cmath>

#include "core/profile_block.h"
#include "response/strike_frame.h"

namespace trensil::testing_support {

inline void lay_out_straight_line(profile_block& p, int n, double east0, double north0,
                                  double step_east, double step_north, double sensor,
                                  double ground) {
    p.allocate_stations(n);
    const double step = std::hypot(step_east, step_north);
    for (int i = 1; i <= n; ++i) {
        p.location(easting_row, i) = east0 + step_east * (i - 1);
        p.location(northing_row, i) = north0 + step_north * (i - 1);
        p.location(sensor_row, i) = sensor;
        p.location(ground_row, i) = ground;
        p.profile_distance(i) = static_cast<float>(step * (i - 1));
    }
    double y = -step_north;
    p.profile_azimuth = static_cast<float>(bearing_of(-step_east, y));
}

}  // namespace trensil::testing_support
