#include "io/profile_setup.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

#include "io/cubic_spline.h"
#include "response/strike_frame.h"

namespace trensil {

namespace {

const char* const too_short = "The data profile is not long enough to model";
const char* const setup_failure = "An error occurred while setting up the profile coordinates : ";

// Largest number of intervals a resampled profile is cut into.
constexpr int max_resampled_intervals = max_resampled_stations - 1;

// Station columns moved together: the four location rows and the observed row of each channel.
void swap_stations(profile_block& p, int i, int j) {
    for (int r = easting_row; r <= ground_row; ++r) std::swap(p.location(r, i), p.location(r, j));
    std::swap(p.mag_channels(observed_raw, i), p.mag_channels(observed_raw, j));
    std::swap(p.grav_channels(observed_raw, i), p.grav_channels(observed_raw, j));
}

void copy_station(profile_block& p, int from, int to) {
    for (int r = easting_row; r <= ground_row; ++r) p.location(r, to) = p.location(r, from);
    p.mag_channels(observed_raw, to) = p.mag_channels(observed_raw, from);
    p.grav_channels(observed_raw, to) = p.grav_channels(observed_raw, from);
}

// The line from the first to the last station: its coefficients, start and azimuth. False when
// the two stations coincide.
bool set_profile_line(profile_block& p, double dx, double dy) {
    const double length = std::sqrt(dx * dx + dy * dy);
    if (!(length > 0.0)) return false;
    p.start_x = p.location(easting_row, 1);
    p.start_y = p.location(northing_row, 1);
    p.line_a = -dy / length;
    p.line_b = dx / length;
    p.line_c = -(p.line_a * p.start_x + p.line_b * p.start_y);
    // Bearing of the negated profile direction: -pi/2 for a line running east, pi for one
    // running north.
    double north = -dy;
    p.profile_azimuth = static_cast<float>(bearing_of(-dx, north));
    return true;
}

double span_x(const profile_block& p, int n) {
    return p.location(easting_row, n) - p.location(easting_row, 1);
}
double span_y(const profile_block& p, int n) {
    return p.location(northing_row, n) - p.location(northing_row, 1);
}

// Keeps the stations that advance beyond every earlier one along the line, packed to the front;
// returns how many there are. profile_distance gets their distances from the first station.
int project_stations(profile_block& p, int n) {
    if (p.profile_distance.lo() != 1 || p.profile_distance.hi() != n)
        p.profile_distance.resize(1, n);
    const double x1 = p.location(easting_row, 1);
    const double y1 = p.location(northing_row, 1);
    p.profile_distance(1) = 0.0f;
    float reached = 0.0f;  // in single precision, so kept distances strictly increase as stored
    int k = 1;
    for (int i = 2; i <= n; ++i) {
        const double d = (p.location(easting_row, i) - x1) * p.line_b -
                         (p.location(northing_row, i) - y1) * p.line_a;
        const auto d32 = static_cast<float>(d);
        if (!(d32 > reached)) continue;
        reached = d32;
        ++k;
        p.profile_distance(k) = d32;
        if (k < i) copy_station(p, i, k);
    }
    return k;
}

void shrink_stations(profile_block& p, int k) {
    p.location.resize_cols_keep(k);
    p.mag_channels.resize_cols_keep(k);
    p.grav_channels.resize_cols_keep(k);
    p.profile_distance.resize_keep(k);
    p.saved_mag_channels.resize(1, 10, 1, k);
    p.saved_grav_channels.resize(1, 10, 1, k);
    p.residuals.resize(1, k);
    p.num_stations = k;
    p.station_capacity = k;
}

float mean_of_row(const array2<float>& channels, int row, int n) {
    double sum = 0.0;
    for (int i = 1; i <= n; ++i) sum += channels(row, i);
    return static_cast<float>(sum / n);
}

// Resamples every column that exists to `spacing` along the profile through a not-a-knot cubic
// spline of the old stations; columns that do not exist become 0.
void resample_profile(model_record& model) {
    profile_block& p = model.profile;
    const int n = p.num_stations;

    array2<double> work(1, 6, 1, n);
    array1<double> tau(1, n);
    for (int i = 1; i <= n; ++i) {
        for (int r = easting_row; r <= ground_row; ++r) work(r, i) = p.location(r, i);
        work(5, i) = p.mag_channels(observed_raw, i);
        work(6, i) = p.grav_channels(observed_raw, i);
        tau(i) = p.profile_distance(i);
    }

    const double length = tau(n);
    double count = std::round(length / model.station_spacing + 1.0);
    if (count > max_resampled_intervals) {
        model.station_spacing = static_cast<float>(length / max_resampled_intervals);
        count = std::round(length / model.station_spacing + 1.0);
    }
    if (!(count >= 1.0 && count <= max_resampled_stations)) throw std::overflow_error("Overflow");
    const int m = static_cast<int>(count);

    p.allocate_stations(m);
    for (int j = 1; j <= m; ++j)
        p.profile_distance(j) =
            static_cast<float>(static_cast<double>(model.station_spacing) * (j - 1));

    const bool done[7] = {
        false, true, true, model.zpos >= 1, model.dtm >= 1, model.magpos >= 1, model.gravpos >= 1};
    array2<double> c(1, n, 1, 4);
    for (int r = 1; r <= 6; ++r) {
        if (!done[r]) continue;  // left at 0 by the allocation
        for (int i = 1; i <= n; ++i) c(i, 1) = work(r, i);
        cubspl(n, tau, c, 0, 0);
        for (int j = 1; j <= m; ++j) {
            const double value = cubval(n, tau, c, p.profile_distance(j));
            if (r <= ground_row) {
                p.location(r, j) = value;
            } else if (r == 5) {
                p.mag_channels(observed_raw, j) = static_cast<float>(value);
                p.saved_mag_channels(observed_raw, j) = static_cast<float>(value);
            } else {
                p.grav_channels(observed_raw, j) = static_cast<float>(value);
                p.saved_grav_channels(observed_raw, j) = static_cast<float>(value);
            }
        }
    }
}

int run_setup(model_record& model, platform& ui) {
    profile_block& p = model.profile;
    int n = p.num_stations;
    if (n < 1) {
        ui.show_message(too_short);
        return -1;
    }

    // Orientation: the profile runs towards growing easting, or growing northing when it runs
    // more north-south than east-west.
    double dx = span_x(p, n);
    double dy = span_y(p, n);
    const double length = std::sqrt(dx * dx + dy * dy);
    if (std::isinf(length)) throw std::overflow_error("Overflow");
    if (!(length > 0.0)) {
        ui.show_message(too_short);
        return -1;
    }
    const double leading = std::fabs(dx) > std::fabs(dy) ? dx : dy;
    if (!(leading > 0.0)) {
        for (int i = 1; i <= n / 2; ++i) swap_stations(p, i, n + 1 - i);
        dx = -dx;
        dy = -dy;
    }
    set_profile_line(p, dx, dy);

    const int kept = project_stations(p, n);
    // Coordinates far apart enough to overflow leave no usable distance.
    if (!std::isfinite(p.profile_distance(kept)) || !std::isfinite(p.line_c))
        throw std::overflow_error("Overflow");
    if (kept < n) {
        shrink_stations(p, kept);
        n = kept;
        if (!set_profile_line(p, span_x(p, n), span_y(p, n))) {
            ui.show_message(too_short);
            return -1;
        }
    }

    if (model.magpos >= 1) {
        p.mag_mean = mean_of_row(p.mag_channels, observed_raw, n);
        if (model.basemag == undefined_value) model.basemag = p.mag_mean;
    }
    if (model.gravpos >= 1) {
        p.grav_mean = mean_of_row(p.grav_channels, observed_raw, n);
        if (model.basegrav == undefined_value) model.basegrav = p.grav_mean;
    }

    if (model.station_spacing > 0.0f) {
        resample_profile(model);
    } else {
        p.saved_mag_channels.resize(1, 10, 1, n);
        p.saved_grav_channels.resize(1, 10, 1, n);
        p.residuals.resize(1, n);
    }

    for (int b = 1; b <= model.num_bodies; ++b) place_body_on_profile(model, b);
    return 0;
}

}  // namespace

int setup_profile(model_record& model, platform& ui) {
    try {
        return run_setup(model, ui);
    } catch (const std::exception& e) {
        ui.show_message(std::string(setup_failure) + e.what());
        return -1;
    }
}

void place_body_on_profile(model_record& model, int index) {
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    if (n < 1) return;
    body_record& body = model.body(index);
    const float d = body.distance.value;
    const float t = body.top.value;
    const float width = body.width.value;

    // The width is taken off although top is a depth below the ground, and a cylinder takes it
    // off twice: the bodies stored in model files are placed by this elevation, so it stays.
    float z_reference = 0.0f;
    if (model.dtm < 1) {
        z_reference = -(t - model.topo) - width;
    } else {
        int i = search_sorted(p.profile_distance, 1, n, d);
        if (d < p.profile_distance(i)) --i;
        i = std::clamp(i, 1, std::max(n - 1, 1));
        double ground = p.location(ground_row, i);
        if (n >= 2) {
            const double left = p.profile_distance(i);
            const double f = (d - left) / (p.profile_distance(i + 1) - left);
            ground += f * (p.location(ground_row, i + 1) - ground);
        }
        z_reference = static_cast<float>(-(t - ground) - width);
    }
    if (body.type == 16) z_reference -= width;
    body.z_reference = z_reference;
}

}  // namespace trensil
