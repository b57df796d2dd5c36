// A new line drawn on a grid: the baseline's points as the user clicked and edited them, and the
// stations spaced along it at the sample interval, round the corners, with the values sampled
// from the grids.
//
//   digitising_state d;
//   add_digitised_point(d, 357900, 1210780, "-89.02");
//   add_digitised_point(d, 463700, 1210700, "12.40");
//   d.num_samples = space_stations(d.x, d.y, d.num_digitised_points, 250.0f,
//                                  d.sample_x, d.sample_y, d.sample_distance);
#pragma once

#include <string>

#include "support/bounded_array.h"

namespace trensil {

// Points 1 .. 2048 are held; the arrays run 0 .. 2048.
inline constexpr int max_digitised_points = 2048;
// A baseline longer than this many sample intervals gets no stations.
inline constexpr int max_baseline_intervals = 1024;

struct digitising_state {
    bool active = false;  // the user is digitising a new line
    array1<double> x{0, max_digitised_points};
    array1<double> y{0, max_digitised_points};
    array1<std::string> label{0, max_digitised_points};  // grid value at the point; "*" none
    int num_digitised_points = 0;
    int current_point = 0;  // the point HScroll_data_point shows; 0 none

    float sample_interval = 0.0f;
    float surface_elevation = 0.0f;
    float sensor_offset = 10.0f;

    // Stations along the baseline, 1 .. num_samples, and what the grids give there (-1e32 where
    // a grid gives nothing; ground is the surface elevation when no DTM grid is open).
    int num_samples = 0;
    array1<double> sample_x, sample_y;
    array1<float> sample_distance;
    array1<double> sample_mag, sample_ground, sample_sensor;
};

// Stores a point after the last one; false when 2048 are already held.
bool add_digitised_point(digitising_state& d, double x, double y, const std::string& label);
// Removes point `index` (1 .. count); the later points move down by one.
void delete_digitised_point(digitising_state& d, int index);
// Forgets the points and the stations.
void clear_digitised_points(digitising_state& d);

// Spaces stations every `interval` along the polyline through points 1 .. count: stations at the
// start of each segment's remaining distance, the spacing carried on round each corner, and a
// station at the end of a segment when it falls within 0.01 intervals of it. A segment of zero
// length is walked as if it were two intervals long (the stations stand on its point) and adds
// nothing to the baseline's length. The station arrays get room for the stations made; each
// station's distance is (k - 1) x interval. Returns the number of stations: 0 when there are
// fewer than two points, the interval is not positive, or the baseline is longer than 1024
// intervals (then nothing is made).
int space_stations(const array1<double>& px, const array1<double>& py, int count, float interval,
                   array1<double>& sx, array1<double>& sy, array1<float>& distance);

}  // namespace trensil
