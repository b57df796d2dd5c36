#include "response/response_driver.h"

#include "response/derived_channels.h"
#include "response/gravity_response.h"
#include "response/magnetic_response.h"

namespace trensil {

namespace {

// Grows the closed-body work space to the profile; it never shrinks.
void grow_work_space(response_state& state, int n) {
    if (n <= state.work_capacity_stations) return;
    state.work_capacity_stations = n;
    state.work_vertex_capacity = 8;
    state.work_triangle_capacity = 12;
    state.work_body_count = 1;
}

void fit_display(array2<float>& display, int n) {
    if (display.row_lo() != 1 || display.row_hi() != n || display.col_lo() != 1 ||
        display.col_hi() != 2)
        display.resize(1, n, 1, 2, no_display_value);
}

void clear_computed_rows(array2<float>& channels, int n) {
    for (int row = computed_raw; row <= computed_total_gradient; ++row) {
        float* r = channels.row(row);
        for (int i = 0; i < n; ++i) r[i] = 0.0f;
    }
}

// A body's rows sized for the profile, so that a body added since the channels were prepared
// cannot be written out of bounds.
void fit_body_rows(body_record& body, int n) {
    const array2<float>& r = body.body_response;
    if (r.row_lo() != 1 || r.row_hi() != 5 || r.col_lo() != 1 || r.col_hi() != n)
        body.body_response.resize(1, 5, 1, n);
}

// True when some body of 1..num_bodies is stale in this channel.
bool any_stale(const model_record& model, bool gravity) {
    for (int b = 1; b <= model.num_bodies; ++b) {
        const body_record& body = model.body(b);
        if ((gravity ? body.grav_valid : body.mag_valid) == 0) return true;
    }
    return false;
}

// Brings every body current in one channel and adds their rows into row 6, each addition
// rounded to single precision.
void rebuild_channel(model_record& model, response_state& state, bool gravity,
                     array2<float>& channels) {
    const int n = model.profile.num_stations;
    float* total = channels.row(computed_raw);
    for (int b = 1; b <= model.num_bodies; ++b) {
        body_record& body = model.body(b);
        std::int16_t& valid = gravity ? body.grav_valid : body.mag_valid;
        if (valid == 0) {
            fit_body_rows(body, n);
            if (body.disabled != 1) {
                if (gravity) {
                    calculate_grav_response(model, state, b);
                    ++state.grav_responses_computed;
                } else {
                    calculate_mag_response(model, state, b);
                    ++state.mag_responses_computed;
                }
            } else {
                // Turned off: current, with zero rows.
                static constexpr int mag_rows[] = {total_field_row, north_row, east_row, down_row};
                static constexpr int grav_rows[] = {gravity_row};
                const int* rows = gravity ? grav_rows : mag_rows;
                const int count = gravity ? 1 : 4;
                for (int k = 0; k < count; ++k) {
                    float* r = body.body_response.row(rows[k]);
                    for (int i = 0; i < n; ++i) r[i] = 0.0f;
                }
            }
            valid = -1;
        }
        const float* own = body.body_response.row(gravity ? gravity_row : total_field_row);
        for (int i = 0; i < n; ++i) total[i] = total[i] + own[i];
    }
    model.channel_valid[gravity ? 5 : 2] = 0;
}

}  // namespace

void calculate_body_responses(model_record& model, response_state& state,
                              array2<float>& mag_channels, array2<float>& grav_channels) {
    const int n = model.profile.num_stations;
    if (n < 1) return;
    grow_work_space(state, n);
    if (state.ui) state.ui->show_progress(true);

    if (model.num_bodies < 1) {
        clear_computed_rows(mag_channels, n);
        clear_computed_rows(grav_channels, n);
        for (array2<float>* d : {&state.mag_display, &state.mag_gradient_display,
                                 &state.grav_display, &state.grav_gradient_display}) {
            fit_display(*d, n);
            for (int i = 1; i <= n; ++i) (*d)(i, 2) = no_display_value;
        }
    } else {
        const bool resum = state.channel_sums_stale;
        const bool mag_noted = model.magpos > 0 && (resum || any_stale(model, false));
        const bool grav_noted = model.gravpos > 0 && (resum || any_stale(model, true));
        if (mag_noted) clear_computed_rows(mag_channels, n);
        if (grav_noted) clear_computed_rows(grav_channels, n);
        if (mag_noted) rebuild_channel(model, state, false, mag_channels);
        if (grav_noted) rebuild_channel(model, state, true, grav_channels);
    }
    state.channel_sums_stale = false;

    if (state.ui) state.ui->show_progress(false);
}

void recalculate_response(model_record& model, response_state& state, array2<float>& mag_channels,
                          array2<float>& grav_channels, array1<float>& residuals) {
    calculate_body_responses(model, state, mag_channels, grav_channels);
    const int n = model.profile.num_stations;
    if (n < 1) return;
    calculate_derived_channels(model, state, model.channel_valid[2], model.channel_valid[5],
                               mag_channels, grav_channels, computed_raw, computed_level,
                               computed_vertical_gradient, state.vg_mode[0], 2);

    profile_block& p = model.profile;
    const int first = p.inversion_first_station < 1 ? 1 : p.inversion_first_station;
    const int last = p.inversion_last_station > n ? n : p.inversion_last_station;
    if (last < first) return;
    const int count = last - first + 1;
    if (residuals.lo() > 1 || residuals.hi() < count) residuals.resize(1, count);

    const bool gravity = state.inversion_uses_gravity != 0;
    const array2<float>& ch = gravity ? grav_channels : mag_channels;
    const double base = gravity ? state.grav_base_offset : state.mag_base_offset;
    const int shift = state.vg_mode[1];
    for (int i = first; i <= last; ++i) {
        double r;
        if (state.inversion_fits_gradient != 0) {
            r = static_cast<double>(ch(computed_vertical_gradient + shift, i)) -
                ch(observed_vertical_gradient + shift, i);
        } else if (model.residual > 0) {
            r = static_cast<double>(ch(computed_level, i)) - ch(observed_level, i);
        } else {
            r = static_cast<double>(ch(computed_raw, i)) - ch(observed_level, i) - base;
        }
        residuals(i - first + 1) = static_cast<float>(r);
    }
}

void prepare_station_heights(model_record& model) {
    if (model.profile_ready) return;
    profile_block& p = model.profile;
    const int n = p.num_stations;
    const bool has_sensor = model.zpos >= 1, has_ground = model.dtm >= 1;
    for (int i = 1; i <= n; ++i) {
        if (!has_sensor && !has_ground) {
            p.location(ground_row, i) = model.topo;
            p.location(sensor_row, i) = static_cast<double>(model.topo) + model.sensor_offset;
        } else if (!has_sensor) {
            p.location(sensor_row, i) = p.location(ground_row, i) + model.sensor_offset;
        } else if (!has_ground) {
            p.location(ground_row, i) = p.location(sensor_row, i) - model.sensor_offset;
        }
    }
    if (n >= 1) {
        p.zmin = p.zmax = static_cast<float>(p.location(ground_row, 1));
        for (int i = 2; i <= n; ++i) {
            const float g = static_cast<float>(p.location(ground_row, i));
            if (g < p.zmin) p.zmin = g;
            if (g > p.zmax) p.zmax = g;
        }
    }
    model.profile_ready = -1;
    model.observed_ready = 0;
    model.channel_valid[1] = 0;
    model.channel_valid[4] = 0;
}

void calculate_display_channels(model_record& model, response_state& state) {
    prepare_station_heights(model);
    profile_block& p = model.profile;
    calculate_body_responses(model, state, p.mag_channels, p.grav_channels);
    calculate_derived_channels(model, state, model.channel_valid[1], model.channel_valid[4],
                               p.mag_channels, p.grav_channels, observed_raw, observed_level,
                               observed_vertical_gradient, state.vg_mode[0], 1);
    calculate_derived_channels(model, state, model.channel_valid[2], model.channel_valid[5],
                               p.mag_channels, p.grav_channels, computed_raw, computed_level,
                               computed_vertical_gradient, state.vg_mode[0], 2);
}

}  // namespace trensil
