#include "io/model_file_reader.h"

#include <cmath>
#include <new>

#include "io/display_settings.h"
#include "io/model_file_fields.h"
#include "io/model_line_source.h"
#include "support/paths.h"
#include "support/text_tokens.h"

namespace trensil {

namespace {

constexpr double pi = 3.14159265358979;
constexpr int header_lines = 11;

void take_limits(std::string& line, parameter& p) {
    p.vary = take_f32(line);
    p.min = take_f32(line);
    p.max = take_f32(line);
}

void take_parameter(std::string& line, parameter& p) {
    p.value = take_f32(line);
    take_limits(line, p);
}

// Line 1: the data file, by its stored path, beside the model file, or through the search.
void resolve_data_file(const std::string& line, const std::string& model_path, model_record& model,
                       model_file_services& services) {
    std::string data_file = trim_text(line);
    int search_status = 0;
    if (!file_exists(data_file)) {
        const std::string beside = directory_part(model_path) + file_name_part(data_file);
        if (file_exists(beside)) {
            data_file = beside;
        } else {
            search_status =
                search_for_file("profile data file", data_file, "", services.search, services.ui);
        }
    }
    model.data_file = trim_text(data_file);
    // Only a found file has a date; an empty path here (the user gave up) ends the reading.
    if (search_status == 0) model.data_file_time = file_date_time(model.data_file);
}

// Line 2: the column layout. Seven tokens are the oldest layout; eight to ten add gravity, the
// station spacing and the names line; eleven carry the inversion window in place of the names.
void read_layout_line(std::string line, model_record& model) {
    model.names_line = 0;
    model.profile.inversion_first_station = 0;
    model.profile.inversion_last_station = 0;
    model.nhead = take_i32(line);
    model.nstep = take_i32(line);
    model.xpos = take_i32(line);
    model.ypos = take_i32(line);
    model.zpos = take_i32(line);
    model.dtm = take_i32(line);
    model.magpos = take_i32(line);
    if (line.empty()) return;
    model.gravpos = take_i32(line);
    model.station_spacing = take_f32(line);
    std::int32_t token_10 = -999;
    std::int32_t token_11 = -999;
    bool eleven = false;
    if (!line.empty()) token_10 = take_i32(line);
    if (!line.empty()) {
        token_11 = take_i32(line);
        eleven = true;
    }
    if (eleven) {
        model.profile.inversion_first_station = token_10;
        model.profile.inversion_last_station = token_11;
    } else {
        // -999 from an eight- or nine-token line means that there is no names line.
        model.names_line = token_10;
    }
}

void read_header(model_line_source& lines, model_record& model) {
    std::string l3 = lines.next();
    model.mag_intensity = take_f32(l3);
    model.mag_inclination = take_f32(l3);
    model.mag_declination = take_f32(l3);
    // An optional fourth value, 1 for the exact field geometry; absent or 0 is the format's.
    model.exact_field_geometry = !l3.empty() && take_i32(l3) == 1;

    // The inversion window written at the end of this line is not read back.
    std::string l4 = lines.next();
    model.residual = take_i32(l4);
    if (!l4.empty()) {
        model.VG_filter_width = take_i32(l4);
        model.VG_filter_step = take_i32(l4);
    }
    if (!l4.empty()) model.vg_component_1 = take_i32(l4);

    std::string l5 = lines.next();
    model.basemag = take_f32(l5);
    model.topo = take_f32(l5);
    model.sensor_offset = take_f32(l5);
    model.basegrav = l5.empty() ? undefined_value : take_f32(l5);
    model.float_base = {0, 0};
    if (!l5.empty()) {
        model.float_base[0] = take_i32(l5);
        model.float_base[1] = take_i32(l5);
    }

    data_transform& t = model.transform;
    std::string l6 = lines.next();
    t.rotation = take_f64(l6);
    t.x_scale = take_f64(l6);
    t.y_scale = take_f64(l6);
    std::string l7 = lines.next();
    t.x_input_origin = take_f64(l7);
    t.y_input_origin = take_f64(l7);
    std::string l8 = lines.next();
    t.x_output_origin = take_f64(l8);
    t.y_output_origin = take_f64(l8);
    std::string l9 = lines.next();
    t.second_x_input_origin = take_f64(l9);
    t.second_y_input_origin = take_f64(l9);
    std::string l10 = lines.next();
    t.second_x_output_origin = take_f64(l10);
    t.second_y_output_origin = take_f64(l10);
    std::string l11 = lines.next();
    t.z_shift = take_f64(l11);
    t.z_scale = take_f64(l11);
}

// Reads one body's lines into body `index`, which holds the new-body defaults. `version` is
// settled on the first body of a file that gives none.
void read_body(model_line_source& lines, model_record& model, int index, std::int32_t& version) {
    body_record& b = model.body(index);

    std::string b1 = lines.next();
    b.type = take_i32(b1);
    // An unnumbered file: anything after the type on the first body's line marks the layout
    // with flags and limits (1), nothing the oldest layout (0); it holds for the whole file.
    if (index == 1 && version < 1) version = b1.empty() ? 0 : 1;
    const std::int32_t v = version;
    if (v > 0) {
        b.demag = take_i32(b1);
        b.fix = take_i32(b1);
        if (!b1.empty()) {
            b.colour = take_i32(b1);
            b1 = trim_text(b1);
            // The disabled flag is known only by its first character, so a name of a file
            // before version 6 that starts with "1" loses its first word. The flag itself is
            // dropped: every body is enabled after loading.
            if (b1.starts_with("1") || (b1.starts_with("0") && v >= 6)) take_word(b1);
            b.name = b1;
        }
    }
    if (v >= 2) {
        b.rock_type = lines.next();
        b.description = lines.next();
    }

    std::string b4 = lines.next();
    b.distance.value = take_f32(b4);
    b.east = take_f64(b4);
    b.north = take_f64(b4);
    b.top.value = take_f32(b4);
    if (v > 0) {
        take_limits(b4, b.distance);
        take_limits(b4, b.top);
    }
    if (!b4.empty() && v >= 6) {
        b.diameter_start = take_f32(b4);
        b.diameter_end = take_f32(b4);
        b.shell_thickness = take_f32(b4);
        b.end_thickness = take_f32(b4);
        b.num_sectors = take_i32(b4);
        b.num_segments = take_i32(b4);
        b.max_triangle_size = take_f32(b4);
    }

    std::string b5 = lines.next();
    b.strike.value = take_f32(b5);
    b.dip.value = std::fabs(take_f32(b5));
    b.width.value = take_f32(b5);
    b.depth_extent.value = take_f32(b5);
    if (v > 0) {
        take_limits(b5, b.strike);
        take_limits(b5, b.dip);
        take_limits(b5, b.width);
        take_limits(b5, b.depth_extent);
    }

    if (v > 2) {
        std::string b6 = lines.next();
        take_parameter(b6, b.length);
        std::string b7 = lines.next();
        take_parameter(b7, b.offset);
    }
    if (v > 3) {
        std::string b8 = lines.next();
        take_parameter(b8, b.plunge);
        take_parameter(b8, b.slope);
    }

    std::string b9 = lines.next();
    b.magnetisation = -1.0f;
    b.susc.value = take_f32(b9);
    // Before version 3 susceptibility was stored in units 4 pi smaller.
    if (v < 3) b.susc.value = to_f32(static_cast<double>(b.susc.value) * 4.0 * pi);
    b.rem_q.value = take_f32(b9);
    b.rem_i.value = take_f32(b9);
    b.rem_d.value = take_f32(b9);
    if (v > 0) {
        take_limits(b9, b.susc);
        take_limits(b9, b.rem_q);
        take_limits(b9, b.rem_i);
        take_limits(b9, b.rem_d);
    }
    if (!b9.empty()) {
        // The oldest layout has no limits anywhere: only the density value follows.
        b.density.value = take_f32(b9);
        if (v > 0) take_limits(b9, b.density);
        // Before version 3 density was stored as half its value.
        if (v < 3) b.density.value = to_f32(2.0 * static_cast<double>(b.density.value));
    }

    // Before version 7 the ratio held the remanent intensity; it becomes the Koenigsberger ratio
    // by the susceptibility and the field of the model. Pipes always held the ratio.
    if (v < 7 && b.type != 16) {
        if (b.susc.value == 0.0f || model.mag_intensity == 0.0f)
            b.rem_q.value = 0.0f;
        else
            b.rem_q.value = b.rem_q.value / b.susc.value / model.mag_intensity;
        // A tiny susceptibility can lift the ratio beyond single precision: no field holds that.
        if (!std::isfinite(b.rem_q.value)) throw file_run_error("Overflow");
    }
}

void read_bodies(model_line_source& lines, model_record& model, model_file_services& services,
                 model_read_summary& summary) {
    model.num_bodies = 0;
    if (lines.at_end()) return;
    std::string l12 = lines.next();
    const std::int32_t count = take_i32(l12);
    std::int32_t version = take_i32(l12);
    if (!l12.empty()) {
        model.infinite_body_length = take_f32(l12);
        model.finite_body_left_clip = take_f32(l12);
        model.finite_body_right_clip = take_f32(l12);
    }
    if (count > max_model_bodies) throw file_run_error("Out of memory");
    if (count > model.body_capacity) {
        model.body_capacity = count + 16;
        model.bodies.resize(0, model.body_capacity);
    }
    // A negative count holds no bodies.
    model.num_bodies = count < 0 ? 0 : count;
    const std::size_t missing_before = lines.reads_past_end();
    for (int i = 1; i <= model.num_bodies; ++i) {
        new_body_defaults(model, i, services.settings);
        read_body(lines, model, i, version);
    }
    summary.format_version = version;
    // Bodies missing their lines, or a count line or last body line cut short.
    if (lines.reads_past_end() > missing_before || lines.ended_inside_last_line())
        summary.truncated = true;
}

// Passes over lines up to the section head; on finding it reads the three lines after it.
void read_display_section(model_line_source& lines, model_record& model) {
    while (!lines.at_end()) {
        if (lines.next() != display_settings_head) continue;
        std::string d1 = lines.next();
        std::string d2 = lines.next();
        std::string d3 = lines.next();
        read_display_settings(d1, d2, d3, model);
        return;
    }
}

}  // namespace

void read_model_file(std::int16_t mode, model_record& model, const std::string& path,
                     std::int16_t& status, model_file_services& services,
                     model_read_summary* summary) {
    model_read_summary found;
    try {
        model_line_source lines;
        std::string error;
        if (!lines.open(path, error)) throw file_run_error(error);

        const std::string line_1 = lines.next();
        if (mode <= 0) {
            resolve_data_file(line_1, path, model, services);
            read_layout_line(lines.next(), model);
            model.display_settings_present = 0;
            read_header(lines, model);
            // A file of the header alone (a new line's model) ends with line 11 and its line
            // end; one cut before that, or inside line 11, is not whole.
            if (lines.reads_past_end() > 0 || lines.ended_inside_last_line())
                found.truncated = true;
        } else {
            for (int i = 2; i <= header_lines; ++i) lines.next();
        }
        if (mode >= 0) read_bodies(lines, model, services, found);
        if (mode <= 0 && !lines.at_end()) read_display_section(lines, model);

        model.model_file = path;
        model.model_file_time = file_date_time(path);
        status = 0;
    } catch (const std::bad_alloc&) {
        services.ui.show_message(
            "An error occurred while reading the location file : Out of memory");
        status = -1;
    } catch (const std::exception& e) {
        services.ui.show_message(
            std::string("An error occurred while reading the location file : ") + e.what());
        status = -1;
    }
    if (summary) *summary = found;
}

}  // namespace trensil
