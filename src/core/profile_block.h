// The profile of a model: the straight line the stations are projected on, the stations, the
// observed and computed channels and their ranges.
#pragma once

#include <cstdint>

#include "support/bounded_array.h"

namespace trensil {

// Range markers for ranges that have seen no value yet.
inline constexpr float range_unset_min = 1e32f;
inline constexpr float range_unset_max = -1e32f;

// Rows of the location array.
enum location_row : int { easting_row = 1, northing_row = 2, sensor_row = 3, ground_row = 4 };

// Rows of mag_channels and grav_channels.
enum channel_row : int {
    observed_raw = 1,
    observed_level = 2,
    observed_vertical_gradient = 3,
    observed_horizontal_derivative = 4,
    observed_total_gradient = 5,
    computed_raw = 6,
    computed_level = 7,
    computed_vertical_gradient = 8,
    computed_horizontal_derivative = 9,
    computed_total_gradient = 10,
};

struct profile_block {
    double line_a = 0.0;  // -dy / L
    double line_b = 0.0;  // dx / L
    double line_c = 0.0;  // -(a start_x + b start_y)
    double start_x = 0.0;
    double start_y = 0.0;
    float profile_azimuth = 0.0f;  // radians
    double xmin = 1e32, xmax = -1e32;
    double ymin = 1e32, ymax = -1e32;
    float zmin = range_unset_min, zmax = range_unset_max;
    float dtm_min = 0.0f, dtm_max = 0.0f;
    float mag_min = range_unset_min, mag_max = range_unset_max;
    float mag_mean = 0.0f, mag_residual_mean = 0.0f;
    float mag_plot_min = range_unset_min, mag_plot_max = range_unset_max;
    float grav_min = 0.0f, grav_max = 0.0f;
    float grav_mean = 0.0f, grav_residual_mean = 0.0f;
    float grav_plot_min = 0.0f, grav_plot_max = 0.0f;
    std::int32_t num_stations = 0;
    std::int32_t station_capacity = 0;

    array2<double> location;      // rows 0..4 by stations 1..n
    array2<float> mag_channels;   // rows 1..10 by stations 1..n
    array2<float> grav_channels;  // rows 1..10 by stations 1..n
    array2<float> saved_mag_channels;
    array2<float> saved_grav_channels;
    std::int32_t inversion_first_station = 0;
    std::int32_t inversion_last_station = 0;
    array1<float> residuals;         // 1..n
    array1<float> profile_distance;  // 1..n, first 0, strictly increasing

    // Allocates the location array and the channel arrays (and their saved copies) for n
    // stations, all zero, and sets num_stations and station_capacity to n.
    void allocate_stations(int n);
};

// One project line's digest for the project form's graph.
struct line_profile {
    std::int32_t count = 0;
    std::int16_t has_mag = 0, has_dtm = 0, has_sensor = 0;
    array1<float> distance;  // 0..count, running polyline length, entry 1 is 0
    array1<double> x, y;     // 0..count
    array1<float> sensor, ground, mag;
};

}  // namespace trensil
