#include "inversion/parameter_vector.h"

#include <cmath>

namespace trensil {

namespace {

constexpr float no_lower_bound = -1e32f;
constexpr float no_upper_bound = 1e32f;

// Vary is exactly 1 when the user marked the property free.
bool marked_free(const parameter& p) {
    return p.vary == 1.0f;
}

// A stored limit counts only above the undefined marker.
bool limit_set(float limit) {
    return limit > undefined_value;
}

// The highest ground elevation of the profile; `top` may not rise past a point 1.0 below it.
float highest_surface(const model_record& model) {
    const profile_block& p = model.profile;
    double highest = 0.0;
    for (int i = 1; i <= p.num_stations; ++i) {
        const double z = p.location(ground_row, i);
        if (i == 1 || z > highest) highest = z;
    }
    return static_cast<float>(highest);
}

struct default_limits {
    float min;
    float max;
};

default_limits limits_for(const model_record& model, int row) {
    switch (row) {
        case row_distance:
            return {no_lower_bound, no_upper_bound};
        case row_top:
            return {no_lower_bound, highest_surface(model) - 1.0f};
        case row_strike:
            return {-360.0f, 360.0f};
        case row_dip:
            return {-175.0f, 175.0f};
        case row_plunge:
            return {-45.0f, 45.0f};
        case row_slope:
            return {-80.0f, 80.0f};
        case row_width:
            return {1.0f, no_upper_bound};
        case row_depth_extent:
            return {0.1f, no_upper_bound};
        case row_length:
            return {10.0f, no_upper_bound};
        case row_offset:
            return {no_lower_bound, no_upper_bound};
        case row_density:
            return {-100.0f, 100.0f};
        case row_susc:
            return {100.0f, 1e7f};
        case row_rem_q:
            return {0.001f, 100.0f};
        case row_rem_i:
            return {-90.0f, 90.0f};
        case row_rem_d:
            return {-360.0f, 360.0f};
        default:
            return {no_lower_bound, no_upper_bound};
    }
}

// A body takes part when it is not fixed and not turned off, and, while the inversion range is
// narrower than the profile, when it lies beside the stretch: not before the range's first point
// less 10, not past the profile's last point plus 10 (the whole profile, so narrowing the range
// from the right excludes nothing).
bool body_takes_part(const model_record& model, const body_record& body) {
    if (body.fix != 1 || body.disabled != 0) return false;
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    const bool whole_profile = p.inversion_first_station < 2 && p.inversion_last_station >= n;
    if (whole_profile) return true;
    const int first = p.inversion_first_station;
    if (n < 1 || first < 1 || first > n) return true;
    const float d = body.distance.value;
    return d >= p.profile_distance(first) - 10.0f && d <= p.profile_distance(n) + 10.0f;
}

// The free property rows of one body in the order a body contributes them.
int free_rows(const body_record& body, int mode, int (&rows)[15]) {
    int count = 0;
    const auto take = [&](int row, bool condition) {
        if (condition && marked_free(*property_by_row(body, row))) rows[count++] = row;
    };
    const bool not_cylinder = body.type != 16;
    const bool thick_sheet = body.type == 2;
    const bool magnetics = mode == inversion_mode_magnetics || mode == inversion_mode_joint;
    take(row_distance, true);
    take(row_top, true);
    take(row_strike, true);
    take(row_dip, true);
    take(row_plunge, not_cylinder);
    take(row_slope, not_cylinder);
    take(row_width, true);
    take(row_depth_extent, body.depth_extent.value > 0.0f && not_cylinder);
    take(row_length, body.length.value > 0.0f && thick_sheet);
    take(row_offset, body.offset.value > 0.0f && thick_sheet);
    take(row_density, mode == inversion_mode_gravity || mode == inversion_mode_joint);
    take(row_susc, magnetics);
    // susc and rem_q exclude each other: with both marked only susc moves.
    take(row_rem_q, magnetics && !marked_free(body.susc));
    take(row_rem_i, magnetics && body.rem_q.value > 0.0f);
    take(row_rem_d, magnetics && body.rem_q.value > 0.0f);
    return count;
}

// The geometry: position, pose and size of the body.
bool geometry_row(int row) {
    switch (row) {
        case row_distance:
        case row_top:
        case row_strike:
        case row_dip:
        case row_plunge:
        case row_slope:
        case row_width:
        case row_depth_extent:
        case row_length:
        case row_offset:
            return true;
        default:
            return false;
    }
}

}  // namespace

bool parameter_moves_magnetics(int row) {
    return geometry_row(row) || row == row_susc || row == row_rem_q || row == row_rem_i ||
           row == row_rem_d;
}

bool parameter_moves_gravity(int row) {
    return geometry_row(row) || row == row_density;
}

bool parameter_moves_magnetisation(int row) {
    switch (row) {
        case row_strike:
        case row_dip:
        case row_plunge:
        case row_slope:
        case row_susc:
        case row_rem_q:
        case row_rem_i:
        case row_rem_d:
            return true;
        default:
            return false;
    }
}

parameter* property_by_row(body_record& body, int row) {
    switch (row) {
        case row_distance:
            return &body.distance;
        case row_strike:
            return &body.strike;
        case row_dip:
            return &body.dip;
        case row_top:
            return &body.top;
        case row_depth_extent:
            return &body.depth_extent;
        case row_width:
            return &body.width;
        case row_length:
            return &body.length;
        case row_susc:
            return &body.susc;
        case row_density:
            return &body.density;
        case row_plunge:
            return &body.plunge;
        case row_slope:
            return &body.slope;
        case row_offset:
            return &body.offset;
        case row_rem_q:
            return &body.rem_q;
        case row_rem_i:
            return &body.rem_i;
        case row_rem_d:
            return &body.rem_d;
        default:
            return nullptr;
    }
}

const parameter* property_by_row(const body_record& body, int row) {
    return property_by_row(const_cast<body_record&>(body), row);
}

const char* property_label(int row) {
    switch (row) {
        case row_distance:
            return "Distance";
        case row_strike:
            return "Strike";
        case row_dip:
            return "Dip";
        case row_top:
            return "Top";
        case row_depth_extent:
            return "Depth Ext";
        case row_width:
            return "Width";
        case row_length:
            return "Length";
        case row_susc:
            return "Susc";
        case row_density:
            return "Dens";
        case row_plunge:
            return "Plunge";
        case row_slope:
            return "Slope";
        case row_offset:
            return "Offset";
        case row_rem_q:
            return "Rem Q";
        case row_rem_i:
            return "Rem I";
        case row_rem_d:
            return "Rem D";
        default:
            return "";
    }
}

float parameter_step(int row, float value) {
    switch (row) {
        case row_distance:
            return 10.0f;
        case row_top:
            return 5.0f;
        case row_depth_extent:
            return value <= 100.0f ? 1.0f : 5.0f;
        case row_length:
            return 5.0f;
        case row_density:
            return 0.025f;
        case row_susc:
            return 250.0f;
        case row_rem_q:
            return 0.1f;
        default:
            return 2.5f;  // the angles, width and offset
    }
}

void collect_body_parameters(const model_record& model, inversion_state& state, bool fill, int mode,
                             int body_index, int& count) {
    if (!fill) count = 0;
    if (body_index < 1 || body_index > model.num_bodies) return;
    const body_record& body = model.body(body_index);
    if (!body_takes_part(model, body)) return;
    int rows[15];
    const int found = free_rows(body, mode, rows);
    if (!fill) {
        count += found;
        return;
    }
    for (int j = 0; j < found; ++j) {
        const int row = rows[j];
        const parameter& p = *property_by_row(body, row);
        const default_limits limits = limits_for(model, row);
        ++count;
        state.inversion_parameters(count, column_value) = p.value;
        state.inversion_parameters(count, column_min) = limit_set(p.min) ? p.min : limits.min;
        state.inversion_parameters(count, column_max) = limit_set(p.max) ? p.max : limits.max;
        state.inversion_parameters(count, column_step) = parameter_step(row, p.value);
        state.parameter_map(count, map_body) = body_index;
        state.parameter_map(count, map_property_row) = row;
    }
}

void collect_all_parameters(const model_record& model, inversion_state& state, bool fill, int mode,
                            int& count) {
    count = 0;
    for (int b = 1; b <= model.num_bodies; ++b) {
        if (fill) {
            collect_body_parameters(model, state, true, mode, b, count);
        } else {
            int body_count = 0;
            collect_body_parameters(model, state, false, mode, b, body_count);
            count += body_count;
        }
    }
}

void dimension_parameter_table(inversion_state& state, int count) {
    state.inversion_parameter_count = count;
    state.inversion_parameters.resize(1, count, 1, 4);
    state.parameter_map.resize(1, count, 1, 2);
    state.start_parameters.resize(1, count);
    state.best_parameters.resize(1, count);
}

float parameter_proximity(float value, float min, float max, float step, float running) {
    float p = 0.0f;
    if (limit_set(min)) {
        if (min + step / 10000.0f >= value) {
            p = 10000.0f;
        } else if (min + step > value) {
            p = -2500.0f * std::log10((value - min) / step);
        } else {
            p = 0.0f;
        }
        if (p > running) running = p;
    }
    if (limit_set(max)) {
        if (max - step / 10000.0f <= value) {
            p = 10000.0f;
        } else if (max - step < value) {
            p = -2500.0f * std::log10((max - value) / step);
        }
        if (p > running) running = p;
    }
    return running;
}

void apply_parameter(model_record& model, const inversion_state& state, int k, float& proximity) {
    const int body_index = state.parameter_map(k, map_body);
    const int row = state.parameter_map(k, map_property_row);
    // A table kept from an earlier run may name a body that no longer exists.
    if (body_index < 1 || body_index > model.num_bodies) return;
    body_record& body = model.body(body_index);
    parameter* p = property_by_row(body, row);
    if (p == nullptr) return;
    const float value = state.inversion_parameters(k, column_value);
    if (p->value == value) return;

    if (parameter_moves_magnetics(row)) body.mag_valid = 0;
    if (parameter_moves_gravity(row)) body.grav_valid = 0;
    if (parameter_moves_magnetisation(row)) body.magnetisation = -1.0f;
    p->value = value;
    proximity = parameter_proximity(value, state.inversion_parameters(k, column_min),
                                    state.inversion_parameters(k, column_max),
                                    state.inversion_parameters(k, column_step), proximity);
}

void apply_all_parameters(model_record& model, const inversion_state& state, float& proximity) {
    proximity = 0.0f;
    for (int k = 1; k <= state.inversion_parameter_count; ++k)
        apply_parameter(model, state, k, proximity);
}

}  // namespace trensil
