#include "project/line_files.h"

#include <filesystem>
#include <system_error>

#include "io/coordinate_transform.h"
#include "io/model_file_writer.h"
#include "support/atomic_file.h"
#include "support/number_format.h"
#include "support/paths.h"

namespace trensil {

namespace {

bool defined(double v) {
    return v > grid_undefined_threshold;
}

// The values of one grid at the stations; grid_undefined where it has none.
void sample_into(const grid_source& grid, const array1<double>& x, const array1<double>& y,
                 int count, array1<double>& out) {
    for (int i = 1; i <= count; ++i) out(i) = sample_grid_point(grid, x(i), y(i));
}

std::string value_text(double v, int decimals) {
    return defined(v) ? format_fixed(v, decimals) : std::string(line_csv_dummy);
}

}  // namespace

void gather_line_values(const array1<double>& x, const array1<double>& y, int count,
                        const line_sampling& sampling, const model_record* data,
                        line_station_values& values) {
    values.count = count;
    values.x.resize(1, count);
    values.y.resize(1, count);
    values.mag.resize(1, count, grid_undefined);
    values.ground.resize(1, count, grid_undefined);
    values.sensor.resize(1, count, grid_undefined);
    for (int i = 1; i <= count; ++i) {
        values.x(i) = x(i);
        values.y(i) = y(i);
    }
    const bool data_mag = data && data->magpos >= 1;
    const bool data_ground = data && data->dtm >= 1;
    const bool data_sensor = data && data->zpos >= 1;
    const auto& [mag_grid, ground_grid, sensor_grid] = sampling.grids;

    // Magnetics: the grid, else the data's column, else none.
    if (mag_grid) {
        sample_into(*mag_grid, x, y, count, values.mag);
    } else if (data_mag) {
        for (int i = 1; i <= count; ++i)
            values.mag(i) = data->profile.mag_channels(observed_raw, i);
    }
    // Ground: the grid, else the data's column, else the surface elevation.
    if (ground_grid) {
        sample_into(*ground_grid, x, y, count, values.ground);
    } else if (data_ground) {
        for (int i = 1; i <= count; ++i) values.ground(i) = data->profile.location(ground_row, i);
    } else {
        values.ground.fill(sampling.surface_elevation);
    }
    // Sensor: the grid's height, depth or elevation, else the data's column, else the ground
    // plus the sensor offset.
    if (sensor_grid) {
        sample_into(*sensor_grid, x, y, count, values.sensor);
        for (int i = 1; i <= count; ++i) {
            double& s = values.sensor(i);
            if (!defined(s)) continue;
            if (sampling.value_is_height || sampling.value_is_depth) {
                const double g = values.ground(i);
                s = !defined(g) ? grid_undefined : sampling.value_is_height ? g + s : g - s;
            }
        }
    } else if (data_sensor) {
        for (int i = 1; i <= count; ++i) values.sensor(i) = data->profile.location(sensor_row, i);
    } else {
        for (int i = 1; i <= count; ++i) {
            const double g = values.ground(i);
            values.sensor(i) = defined(g) ? g + sampling.sensor_offset : grid_undefined;
        }
    }
    values.has_mag = mag_grid != nullptr || data_mag;
    values.has_ground = ground_grid != nullptr || data_ground;
    values.has_sensor = sensor_grid != nullptr || data_sensor;
}

std::string line_csv_text(const line_station_values& v) {
    std::string text = "      X,      Y";
    if (v.has_ground) text += ",      DTM";
    if (v.has_sensor) text += ",   Sensor";
    if (v.has_mag) text += ",      TMI";
    text += "\r\n";
    for (int i = 1; i <= v.count; ++i) {
        // The dummy carries the comma that follows it, so a row keeps one field a column.
        std::string row = format_fixed(v.x(i), 2) + "," + format_fixed(v.y(i), 2);
        bool after_dummy = false;
        auto add = [&](double value, int decimals) {
            if (!after_dummy) row += ",";
            row += value_text(value, decimals);
            after_dummy = !defined(value);
        };
        if (v.has_ground) add(v.ground(i), 2);
        if (v.has_sensor) add(v.sensor(i), 2);
        if (v.has_mag) add(v.mag(i), 4);
        text += row + "\r\n";
    }
    return text;
}

bool write_line_csv(const std::string& path, const line_station_values& values, platform& ui) {
    try {
        const std::string text = line_csv_text(values);
        atomic_file out(path);
        if (!out.is_open() || !(out.stream() << text) || !out.commit()) {
            ui.show_message("An error occurred while reading the file: " + out.error());
            return false;
        }
        return true;
    } catch (const std::exception& e) {
        ui.show_message(std::string("An error occurred while reading the file: ") + e.what());
        return false;
    }
}

void set_line_columns(data_definition& d, const line_station_values& v) {
    d.nhead = 1;
    d.nstep = 1;
    d.names_line = 1;
    d.xpos = 1;
    d.ypos = 2;
    int column = 2;
    d.dtm = v.has_ground ? ++column : 0;
    d.zpos = v.has_sensor ? ++column : 0;
    d.magpos = v.has_mag ? ++column : 0;
    d.gravpos = 0;
}

bool write_line_model(const std::string& path, const std::string& csv_path,
                      const line_station_values& values, model_record& scratch, platform& ui) {
    const data_definition kept = scratch;
    const data_transform kept_transform = scratch.transform;
    static_cast<data_definition&>(scratch).data_file = csv_path;
    set_line_columns(scratch, values);
    // The csv holds the stations in the map's frame already: read through the data's own
    // transform they would be moved a second time.
    reset_transform(scratch.transform);
    const bool written = write_model_core(true, path, scratch, ui);
    static_cast<data_definition&>(scratch) = kept;
    scratch.transform = kept_transform;
    return written;
}

std::string line_file_stem(const std::string& project_path, int number) {
    return directory_part(project_path) + "Line_" + format_fixed(number, 0);
}

int enter_line(project_definition& p, int number, const std::string& model_path,
               const std::string& picture_path) {
    const int n = p.num_lines;
    if (p.line_numbers.lo() != 0) p.allocate_lines(n);  // a project never read or made
    const int hi = n + 1 + project_spare_lines;
    p.line_numbers.resize_keep(hi);
    p.model_paths.resize_keep(hi);
    p.picture_paths.resize_keep(hi);
    p.models.resize_keep(hi);
    p.profiles.resize_keep(hi);
    int place = n + 1;
    while (place > 1 && p.line_numbers(place - 1) > number) --place;
    for (int i = n; i >= place; --i) {
        p.line_numbers(i + 1) = p.line_numbers(i);
        p.model_paths(i + 1) = std::move(p.model_paths(i));
        p.picture_paths(i + 1) = std::move(p.picture_paths(i));
        p.models(i + 1) = std::move(p.models(i));
        p.profiles(i + 1) = std::move(p.profiles(i));
    }
    p.line_numbers(place) = number;
    p.model_paths(place) = model_path;
    p.picture_paths(place) = picture_path;
    p.models(place) = model_record{};
    reset_model(p.models(place));
    p.profiles(place) = line_profile{};
    p.num_lines = n + 1;
    if (p.next_line_number < number + p.line_number_step)
        p.next_line_number = number + p.line_number_step;
    return place;
}

void remove_line(project_definition& p, int index) {
    const int n = p.num_lines;
    if (index < 1 || index > n) return;
    for (int i = index; i < n; ++i) {
        p.line_numbers(i) = p.line_numbers(i + 1);
        p.model_paths(i) = std::move(p.model_paths(i + 1));
        p.picture_paths(i) = std::move(p.picture_paths(i + 1));
        p.models(i) = std::move(p.models(i + 1));
        p.profiles(i) = std::move(p.profiles(i + 1));
    }
    p.line_numbers(n) = 0;
    p.model_paths(n).clear();
    p.picture_paths(n).clear();
    p.models(n) = model_record{};
    p.profiles(n) = line_profile{};
    p.num_lines = n - 1;
}

std::string resolve_line_path(const std::string& project_path, const std::string& stored) {
    namespace fs = std::filesystem;
    std::error_code ec;
    if (stored.empty() || fs::path(stored).is_absolute()) return stored;
    const std::string beside =
        fs::path(directory_part(project_path) + stored).lexically_normal().string();
    if (!directory_part(project_path).empty() && fs::exists(beside, ec)) return beside;
    return stored;
}

std::string project_relative_path(const std::string& project_path, const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::path file = fs::absolute(path, ec).lexically_normal();
    if (ec || path.empty()) return path;
    if (project_path.empty()) return file.string();
    fs::path folder = fs::path(project_path).parent_path();
    if (folder.empty()) folder = ".";
    folder = fs::absolute(folder, ec).lexically_normal();
    if (ec) return file.string();
    const fs::path relative = file.lexically_relative(folder);
    // Within the project's folder, or beside it in its parent's: kept relative, so that a survey
    // folder moved as a whole keeps its lines. Anything farther stays absolute.
    int ups = 0;
    for (const fs::path& part : relative) ups += part == "..";
    if (relative.empty() || ups > 1 || (ups == 1 && *relative.begin() != ".."))
        return file.string();
    return relative.string();
}

}  // namespace trensil
