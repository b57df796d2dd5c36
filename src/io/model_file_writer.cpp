#include "io/model_file_writer.h"

#include <filesystem>

#include "io/display_settings.h"
#include "io/model_file_fields.h"
#include "io/model_line_source.h"
#include "io/model_side_files.h"
#include "support/atomic_file.h"
#include "support/paths.h"

namespace trensil {

namespace {

std::string header_text(const model_record& m) {
    std::string text = m.data_file + "\r\n";
    print_list l2, l3, l4, l5, l6, l7, l8, l9, l10, l11;
    l2.add(m.nhead).add(m.nstep).add(m.xpos).add(m.ypos).add(m.zpos).add(m.dtm).add(m.magpos);
    l2.add(m.gravpos).add(m.station_spacing).add(m.names_line);
    l3.add(m.mag_intensity).add(m.mag_inclination).add(m.mag_declination);
    // Written only when set, so a model in the format's geometry is written as it always was.
    if (m.exact_field_geometry) l3.add(std::int32_t{1});
    l4.add(m.residual).add(m.VG_filter_width).add(m.VG_filter_step).add(m.vg_component_1);
    l4.add(m.profile.inversion_first_station).add(m.profile.inversion_last_station);
    l5.add(m.basemag).add(m.topo).add(m.sensor_offset).add(m.basegrav);
    l5.add(m.float_base[0]).add(m.float_base[1]);
    const data_transform& t = m.transform;
    l6.add(t.rotation).add(t.x_scale).add(t.y_scale);
    l7.add(t.x_input_origin).add(t.y_input_origin);
    l8.add(t.x_output_origin).add(t.y_output_origin);
    l9.add(t.second_x_input_origin).add(t.second_y_input_origin);
    l10.add(t.second_x_output_origin).add(t.second_y_output_origin);
    l11.add(t.z_shift).add(t.z_scale);
    for (const print_list* l : {&l2, &l3, &l4, &l5, &l6, &l7, &l8, &l9, &l10, &l11})
        text += l->line();
    return text;
}

std::string body_text(body_record& b) {
    // The mesh of a cylinder is built from its width: both end diameters follow it on saving.
    b.diameter_start = b.width.value;
    b.diameter_end = b.width.value;

    print_list b1;
    b1.add(b.type).add(b.demag).add(b.fix).add(b.colour).add(b.disabled);
    std::string text = b1.text() + " " + b.name + "\r\n";
    text += b.rock_type + "\r\n";
    text += b.description + "\r\n";

    print_list b4, b5, b6, b7, b8, b9;
    b4.add(b.distance.value).add(b.east).add(b.north).add(b.top.value);
    b4.add(b.distance.vary).add(b.distance.min).add(b.distance.max);
    b4.add(b.top.vary).add(b.top.min).add(b.top.max);
    b4.add(b.diameter_start).add(b.diameter_end).add(b.shell_thickness).add(b.end_thickness);
    b4.add(b.num_sectors).add(b.num_segments).add(b.max_triangle_size);

    b5.add(b.strike.value).add(b.dip.value).add(b.width.value).add(b.depth_extent.value);
    for (const parameter* p : {&b.strike, &b.dip, &b.width, &b.depth_extent})
        b5.add(p->vary).add(p->min).add(p->max);

    b6.add(b.length);
    b7.add(b.offset);
    b8.add(b.plunge).add(b.slope);

    // Magnetic properties in file order: susceptibility, ratio, inclination, declination.
    b9.add(b.susc.value).add(b.rem_q.value).add(b.rem_i.value).add(b.rem_d.value);
    for (const parameter* p : {&b.susc, &b.rem_q, &b.rem_i, &b.rem_d})
        b9.add(p->vary).add(p->min).add(p->max);
    b9.add(b.density);

    for (const print_list* l : {&b4, &b5, &b6, &b7, &b8, &b9}) text += l->line();
    return text;
}

}  // namespace

std::string model_file_text(bool header_only, model_record& model) {
    std::string text = header_text(model);
    if (header_only) return text;
    print_list l12;
    l12.add(model.num_bodies).add(current_model_format_version);
    l12.add(model.infinite_body_length).add(model.finite_body_left_clip);
    l12.add(model.finite_body_right_clip);
    text += l12.line();
    for (int i = 1; i <= model.num_bodies; ++i) text += body_text(model.body(i));
    text += display_settings_text(model);
    return text;
}

bool write_model_core(bool header_only, const std::string& path, model_record& model,
                      platform& ui) {
    try {
        const std::string text = model_file_text(header_only, model);
        atomic_file out(path);
        if (!out.is_open()) throw file_run_error(out.error());
        out.stream() << text;
        if (!out.commit()) throw file_run_error(out.error());
        return true;
    } catch (const std::exception& e) {
        ui.show_message(std::string("An error occurred while saving the model parameters: ") +
                        e.what());
        return false;
    }
}

namespace {

// Puts the current directory back when the save ends, however it ends.
class directory_keeper {
public:
    directory_keeper() {
        std::error_code ec;
        saved_ = std::filesystem::current_path(ec).string();
    }
    ~directory_keeper() {
        if (!saved_.empty()) set_current_directory(saved_);
    }
    directory_keeper(const directory_keeper&) = delete;
    directory_keeper& operator=(const directory_keeper&) = delete;

private:
    std::string saved_;
};

std::string upper_case(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return text;
}

std::string current_directory_text() {
    std::error_code ec;
    std::string dir = std::filesystem::current_path(ec).string();
    if (!dir.empty() && dir.back() != '/' && dir.back() != '\\') dir += '/';
    return dir;
}

}  // namespace

void save_model(int silent, model_record& model, std::int16_t& status, platform& ui,
                const save_model_context& context) {
    directory_keeper keep_directory;
    status = 0;
    if (model.model_file.empty() && silent == 1) {
        status = -1;
        return;
    }
    std::string path;
    if (!model.model_file.empty())
        path = silent == 0 ? file_name_part(model.model_file) : model.model_file;

    if (context.opened_from_project &&
        upper_case(directory_part(context.project_line_model)) !=
            upper_case(current_directory_text()) &&
        !directory_part(model.model_file).empty())
        set_current_directory(directory_part(model.model_file));

    if (silent == 0) {
        auto chosen =
            ui.choose_save_file("Select the profile model file to create",
                                "Profile Model Files (*.qvx)|*.qvx|All files (*.*)|*.*", path);
        if (!chosen) return;
        path = *chosen;
        if (extension_part(path).empty()) path += ".qvx";
        if (file_exists(path) && !ui.ask_yes_no("That file already, exists, overwrite?", "Save"))
            return;
    }

    if (!write_model_core(false, path, model, ui)) {
        status = -1;
        return;
    }
    try {
        model.model_file = path;
        model.model_file_time = file_date_time(path);
        write_model_csv(model, side_file_path(path, "_model.csv"));
        write_model_mesh(model, side_file_path(path, "_model.msh"));
    } catch (const std::exception& e) {
        ui.show_message(std::string("An error occurred while writing the file: ") + e.what());
        return;
    }
    if (context.opened_from_project && context.update_current_line) context.update_current_line();
}

}  // namespace trensil
