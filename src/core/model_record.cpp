#include "core/model_record.h"

#include <cmath>
#include <optional>

#include "core/body_catalogue.h"
#include "support/paths.h"
#include "support/settings_store.h"
#include "support/text_tokens.h"

namespace trensil {

void profile_block::allocate_stations(int n) {
    num_stations = n;
    station_capacity = n;
    location.resize(0, 4, 1, n);
    mag_channels.resize(1, 10, 1, n);
    grav_channels.resize(1, 10, 1, n);
    saved_mag_channels.resize(1, 10, 1, n);
    saved_grav_channels.resize(1, 10, 1, n);
    residuals.resize(1, n);
    profile_distance.resize(1, n);
}

void reset_model(model_record& model) {
    static_cast<data_definition&>(model) = data_definition{};
    model.model_file.clear();
    model.model_file_time = 0.0;
    model.station_spacing = 0.0f;
    model.mag_intensity = 56000.0f;
    model.mag_inclination = -65.0f;
    model.mag_declination = -4.0f;
    model.exact_field_geometry = false;
    model.basemag = undefined_value;
    model.topo = 0.0f;
    model.sensor_offset = 10.0f;
    model.profile_grid_spacing = 0.0f;
    model.depth_grid_spacing = 0.0f;
    model.display_settings_present = 0;

    profile_block& p = model.profile;
    p.xmin = 1e32;
    p.xmax = -1e32;
    p.ymin = 1e32;
    p.ymax = -1e32;
    p.zmin = range_unset_min;
    p.zmax = range_unset_max;
    p.mag_min = range_unset_min;
    p.mag_max = range_unset_max;
    p.mag_plot_min = range_unset_min;
    p.mag_plot_max = range_unset_max;

    model.residual = 0;
    model.vg_component_1 = 0;
    model.vg_component_2 = 0;
    model.VG_filter_width = 11;
    model.VG_filter_step = 1;
    model.float_base = {0, 0};
    model.transform = data_transform{};
    model.channel_valid = {0, 0, 0, 0, 0, 0, 0};
    model.body_capacity = 32;
    model.bodies.resize(0, 32);
}

void clear_body_results(model_record& model) {
    model.channel_valid[2] = 0;
    model.channel_valid[3] = 0;
    model.channel_valid[5] = 0;
    model.channel_valid[6] = 0;
    for (int i = 0; i <= model.body_capacity && i <= model.bodies.hi(); ++i) {
        body_record& b = model.bodies(i);
        b.magnetisation = -1.0f;
        b.mag_valid = 0;
        b.grav_valid = 0;
    }
}

std::string default_body_name(const model_record& model, int index) {
    return drop_extension(file_name_part(model.data_file)) + " Body " + std::to_string(index);
}

namespace {
// A setting as a number, or nothing when it is absent or not numeric.
std::optional<float> numeric_setting(const settings_store* settings, const char* key) {
    if (!settings) return std::nullopt;
    const std::string text = settings->get_setting("Ostrand", "Trensil", key);
    if (text == no_setting_value || !is_numeric_text(text)) return std::nullopt;
    return static_cast<float>(parse_number(text));
}

parameter with_value(float value, float vary) {
    return parameter{value, vary, undefined_value, undefined_value};
}
}  // namespace

void new_body_defaults(model_record& model, int index, const settings_store* settings) {
    body_record& b = model.bodies(index);
    if (auto v = numeric_setting(settings, "Type")) b.type = static_cast<std::int32_t>(*v);
    b.east = 0.0;
    b.north = 0.0;
    b.colour = 0xff0000;
    if (auto v = numeric_setting(settings, "Colour")) b.colour = static_cast<std::int32_t>(*v);
    b.name = default_body_name(model, index);
    b.rock_type.clear();
    b.description.clear();

    const float dip = b.type == cylinder_pipe ? 0.0f : 90.0f;
    b.distance = with_value(0.0f, 1.0f);
    b.top = with_value(0.0f, 1.0f);
    b.strike = with_value(0.0f, 0.0f);
    b.dip = with_value(numeric_setting(settings, "Dip").value_or(dip), 1.0f);
    b.plunge = with_value(0.0f, 0.0f);
    b.slope = with_value(0.0f, 0.0f);
    b.width = with_value(numeric_setting(settings, "Thick").value_or(100.0f), 1.0f);
    b.depth_extent = with_value(numeric_setting(settings, "Depth").value_or(250.0f), 0.0f);
    b.length = with_value(numeric_setting(settings, "StrikeLength").value_or(250.0f), 0.0f);
    b.offset = with_value(0.0f, 0.0f);
    b.susc = with_value(numeric_setting(settings, "Susc").value_or(50000.0f), 1.0f);
    b.rem_q = with_value(0.0f, 0.0f);
    b.rem_d = with_value(0.0f, 0.0f);
    b.rem_i = with_value(0.0f, 0.0f);
    b.density = with_value(numeric_setting(settings, "Density").value_or(2.67f), 1.0f);

    b.diameter_start = 0.0f;
    b.diameter_end = 0.0f;
    b.shell_thickness = 0.0f;
    b.end_thickness = 0.0f;
    b.num_sectors = 12;
    b.num_segments = 1;
    b.max_triangle_size = 0.0f;
    b.solid = solid_cache{};
    b.demag = 0;
    b.fix = 1;
    b.disabled = 0;
    b.magnetisation = -1.0f;
    b.mag_valid = 0;
    b.grav_valid = 0;
}

void grow_bodies(model_record& model, int capacity) {
    if (capacity <= model.body_capacity && model.bodies.hi() >= capacity) return;
    model.bodies.resize_keep(capacity);
    model.body_capacity = capacity;
}

void prepare_channels(model_record& model) {
    model.profile_ready = 0;
    clear_body_results(model);
    const int n = model.profile.num_stations;
    // A capacity raised without the array (a reader that set body_capacity alone) is made real
    // here, so every body up to the capacity gets its response rows.
    if (model.bodies.hi() < model.body_capacity) grow_bodies(model, model.body_capacity);
    for (int i = 0; i <= model.body_capacity; ++i) model.bodies(i).body_response.resize(1, 5, 1, n);
    profile_block& p = model.profile;
    const bool window_ok = p.inversion_first_station != 0 && p.inversion_last_station > 0 &&
                           p.inversion_last_station <= n;
    if (!window_ok) {
        p.inversion_first_station = 1;
        p.inversion_last_station = n;
    }
}

void fill_line_profile(const model_record& model, line_profile& record) {
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    record.count = n;
    record.has_mag = model.magpos >= 1 ? -1 : 0;
    record.has_dtm = model.dtm >= 1 ? -1 : 0;
    record.has_sensor = model.zpos >= 1 ? -1 : 0;
    record.distance.resize(0, n);
    record.x.resize(0, n);
    record.y.resize(0, n);
    record.sensor.resize(0, n);
    record.ground.resize(0, n);
    record.mag.resize(0, n);
    for (int i = 1; i <= n; ++i) {
        record.x(i) = p.location(easting_row, i);
        record.y(i) = p.location(northing_row, i);
        record.sensor(i) = static_cast<float>(p.location(sensor_row, i));
        record.ground(i) = static_cast<float>(p.location(ground_row, i));
        record.mag(i) = p.mag_channels(observed_raw, i);
        if (i == 1) {
            record.distance(i) = 0.0f;
        } else {
            const double dx = record.x(i) - record.x(i - 1);
            const double dy = record.y(i) - record.y(i - 1);
            record.distance(i) =
                record.distance(i - 1) + static_cast<float>(std::sqrt(dx * dx + dy * dy));
        }
    }
}

}  // namespace trensil
