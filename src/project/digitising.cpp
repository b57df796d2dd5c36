#include "project/digitising.h"

#include <cmath>

namespace trensil {

bool add_digitised_point(digitising_state& d, double x, double y, const std::string& label) {
    const int next = d.num_digitised_points + 1;
    if (next > d.x.hi()) return false;
    d.x(next) = x;
    d.y(next) = y;
    d.label(next) = label;
    d.num_digitised_points = next;
    return true;
}

void delete_digitised_point(digitising_state& d, int index) {
    const int n = d.num_digitised_points;
    if (index < 1 || index > n) return;
    for (int i = index; i < n; ++i) {
        d.x(i) = d.x(i + 1);
        d.y(i) = d.y(i + 1);
        d.label(i) = d.label(i + 1);
    }
    d.num_digitised_points = n - 1;
    if (d.current_point > d.num_digitised_points) d.current_point = d.num_digitised_points;
}

void clear_digitised_points(digitising_state& d) {
    d.num_digitised_points = 0;
    d.current_point = 0;
    d.num_samples = 0;
}

int space_stations(const array1<double>& px, const array1<double>& py, int count, float interval,
                   array1<double>& sx, array1<double>& sy, array1<float>& distance) {
    if (count < 2 || !(interval > 0.0f)) return 0;
    const double step = interval;

    // Segment lengths; a segment of zero length is walked as two intervals and adds nothing.
    array1<double> length(1, count - 1);
    double total = 0.0;
    int zero_segments = 0;
    for (int i = 1; i < count; ++i) {
        const double dx = px(i + 1) - px(i), dy = py(i + 1) - py(i);
        length(i) = std::sqrt(dx * dx + dy * dy);
        if (length(i) == 0.0) {
            length(i) = 2.0 * step;
            ++zero_segments;
        } else {
            total += length(i);
        }
    }
    if (total > max_baseline_intervals * step) return 0;

    // total / interval + 1 places, rounded; each zero segment stands up to three stations on
    // its point, which the places are grown for.
    const int places = static_cast<int>(std::lround(total / step)) + 1 + 3 * zero_segments + 1;
    sx.resize(1, places);
    sy.resize(1, places);
    distance.resize(1, places);

    int k = 0;
    double s = 0.0;
    for (int i = 1; i < count; ++i) {
        const double ux = (px(i + 1) - px(i)) / length(i);
        const double uy = (py(i + 1) - py(i)) / length(i);
        while (s <= length(i) + 0.01 * step) {
            ++k;
            if (k > sx.hi()) {
                sx.resize_keep(k + 16);
                sy.resize_keep(k + 16);
                distance.resize_keep(k + 16);
            }
            distance(k) = static_cast<float>(step * (k - 1));
            sx(k) = px(i) + ux * s;
            sy(k) = py(i) + uy * s;
            s += step;
        }
        s -= length(i);
    }
    return k;
}

}  // namespace trensil
