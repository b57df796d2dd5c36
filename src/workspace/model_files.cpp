#include <filesystem>
#include <system_error>

#include "inversion/inversion_session.h"
#include "io/data_definition.h"
#include "io/load_line.h"
#include "io/location_reader.h"
#include "io/model_file_reader.h"
#include "io/model_file_writer.h"
#include "io/profile_setup.h"
#include "response/channel_setup.h"
#include "support/number_format.h"
#include "support/paths.h"
#include "workspace/body_table.h"
#include "workspace/graph_display.h"
#include "workspace/model_edit.h"
#include "workspace/model_recovery.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

namespace {
constexpr const char* model_filter = "Trensil definition Files(*.qvx)|*.qvx|All files (*.*)|*.*";

std::string current_directory() {
    std::error_code error;
    const auto path = std::filesystem::current_path(error);
    return error ? std::string() : path.string();
}

void mark_changed(modelling_workspace& ws) {
    ws.model_changed = true;
    ws.view->set_enabled("Command_save_qvx_model", true);
}

// Reads the data file the model names and sets up its profile. Returns 0 or -1 (reported).
int load_model_data(modelling_workspace& ws) {
    ws.model.profile.num_stations = 0;
    load_line_services services{ws.ui, ws.search, ws.transforms, &ws.settings};
    std::int16_t status = -1;
    trensil::load_model_data(ws.model, status, services);
    if (status != 0) return -1;
    ws.graph_view.graph_ranges_valid = 0;
    return 0;
}

// The state of a freshly read model: nothing computed, no inversion to go back to.
void reset_form_display(modelling_workspace& ws) {
    modelling_view& view = *ws.view;
    view.select_tab(0);
    ws.model.profile.num_stations = 0;
    view.set_text("Text_number_locations", "");
    ws.model.profile_ready = 0;
    view.set_enabled("Command_invert_0", false);
    view.set_enabled("Command_invert_1", false);
    view.set_text("Text_MAGINV_misfit_0", "");
    view.set_text("Text_MAGINV_misfit_1", "");
    view.set_enabled("Command_restore_best", false);
    view.set_enabled("Command_reject_changes", false);
    view.set_visible("Label_status", false);
    forget_best_model(ws.inversion);
    // Steps of another model cannot be undone on this one.
    clear_edit_history(ws);
    // The sliders are on show, the inversion panel a click away.
    view.set_text("Command_toggle_invert_body", "Perform Inversion");
    view.set_visible("Frame_move_body", true);
    view.set_visible("Frame_inversion", false);
    ws.graph_view.graph_ranges_valid = 0;
}

void show_base_levels(modelling_workspace& ws) {
    const model_record& model = ws.model;
    if (model.magpos >= 1) ws.view->set_text("Text_MAGINV_basemag", format_fixed(model.basemag, 2));
    if (model.gravpos >= 1)
        ws.view->set_text("Text_MAGINV_basegrav", format_fixed(model.basegrav, 2));
}

// The model is on show: the bodies tab with its graphs.
void show_loaded_model(modelling_workspace& ws) {
    {
        display_guard guard(ws);
        load_data_format_on_form(ws);
        ws.view->set_text("Text_number_locations", format_fixed(ws.model.profile.num_stations, 0));
        show_base_levels(ws);
        for (const char* invert : {"Command_invert_0", "Command_invert_1"})
            ws.view->set_enabled(invert, ws.model.profile.num_stations > 0);
        int& current = ws.section.current_body;
        if (current < 1 || current > ws.model.num_bodies)
            current = ws.model.num_bodies >= 1 ? 1 : 0;
    }
    if (ws.model.num_bodies >= 1) {
        display_body_parameters(ws);
    } else {
        clear_body_parameters(ws);
    }
}
}  // namespace

void load_data_format_on_form(modelling_workspace& ws) {
    modelling_view& view = *ws.view;
    const model_record& m = ws.model;
    display_guard guard(ws);
    view.set_text("Text_MAGINV_data_file", m.data_file);
    view.set_text("Text_MAGINV_nhead", std::to_string(m.nhead));
    view.set_text("Text_MAGINV_nstep", std::to_string(m.nstep));
    view.set_text("Text_MAGINV_xpos", std::to_string(m.xpos));
    view.set_text("Text_MAGINV_ypos", std::to_string(m.ypos));
    view.set_text("Text_MAGINV_zpos", std::to_string(m.zpos));
    view.set_text("Text_MAGINV_dtm", std::to_string(m.dtm));
    view.set_text("Text_MAGINV_magpos", std::to_string(m.magpos));
    view.set_text("Text_MAGINV_gravpos", std::to_string(m.gravpos));
    view.set_text("Text_MAGINV_station_spacing", general_number(m.station_spacing));
    view.set_text("Text_mag_intensity", general_number(m.mag_intensity));
    view.set_text("Text_mag_inclination", general_number(m.mag_inclination));
    view.set_text("Text_mag_declination", general_number(m.mag_declination));
    view.set_text("Text_MAGINV_sensor_offset", general_number(m.sensor_offset));
    view.set_text("Text_MAGINV_topo", general_number(m.topo));
    view.set_text("Text_MAGINV_residual", std::to_string(m.residual));
    view.set_text("Text_VG_filter_step", std::to_string(m.VG_filter_step));
    view.set_text("Text_VG_filter_width", std::to_string(m.VG_filter_width));
    view.set_text("Text_profile_grid_spacing", general_number(m.profile_grid_spacing));
    view.set_text("Text_depth_grid_spacing", general_number(m.depth_grid_spacing));
    view.set_text("Text_finite_body_left_clip", general_number(m.finite_body_left_clip));
    view.set_text("Text_finite_body_right_clip", general_number(m.finite_body_right_clip));
    view.set_text("Text_infinite_body_length", general_number(m.infinite_body_length));
    view.set_checked("Check_display_total_gradient", m.vg_component_1 == 1);
    show_field_geometry(ws);
    if (m.display_settings_present) {
        view.set_checked("menu_display_axes", m.display_axes != 0);
        view.set_checked("Check_show_body_label", m.show_body_label != 0);
        view.set_checked("Check_maintain_aspect_ratio", m.maintain_aspect_ratio != 0);
        ws.section.show_body_label = m.show_body_label != 0;
        for (graph_control* graph : ws.graphs)
            if (graph) graph->set_display_axes(m.display_axes != 0);
    }
}

int menu_open_model(modelling_workspace& ws, int item) {
    modelling_view& view = *ws.view;
    model_record& model = ws.model;
    if (item == 1) {
        take_display_settings(ws);
        // The writer stamps the file's time only when the model file was written: a cancelled
        // dialog and a failed write both leave this mark, and the recovery copy with it.
        const double time_before = model.model_file_time;
        model.model_file_time = -1.0;
        std::int16_t status = 0;
        save_model(0, model, status, ws.ui);
        const bool written = model.model_file_time != -1.0;
        if (!written) model.model_file_time = time_before;
        if (status != 0 || !written || model.model_file.empty()) return -1;
        view.set_caption("Trensil: " + file_name_part(model.model_file));
        model_work_saved(ws);
        return 0;
    }
    if (item != 0 && item != 3) return -1;

    const std::string directory = current_directory();
    const auto chosen = ws.ui.choose_open_file("Select the profile model file", model_filter, "");
    if (!chosen) {
        set_current_directory(directory);
        return -1;
    }
    if (!file_exists(*chosen)) {
        ws.ui.show_message("That file does not exist");
        set_current_directory(directory);
        return -1;
    }
    if (item == 0) {
        if (const auto copy = offer_model_recovery(ws, *chosen)) return recover_model(ws, *copy);
    }
    model_file_services services{ws.ui, ws.search, &ws.settings};
    std::int16_t status = 0;
    read_model_file(item == 0 ? 0 : 1, model, *chosen, status, services);
    if (status != 0) {
        set_current_directory(directory);
        return -1;
    }
    mark_changed(ws);
    if (item == 0) {
        model.model_file = *chosen;
        view.set_caption("Trensil: " + file_name_part(*chosen));
        load_data_format_on_form(ws);
    }
    reset_form_display(ws);
    clear_body_results(model);
    if (load_model_data(ws) != 0) return -1;
    show_loaded_model(ws);
    return 0;
}

void take_display_settings(modelling_workspace& ws) {
    const modelling_view& view = *ws.view;
    model_record& model = ws.model;
    model.tab_width = view.form_width() / 3 + 300;
    model.display_width = view.form_width();
    model.display_axes = view.checked("menu_display_axes") ? 1 : 0;
    model.maintain_aspect_ratio = view.checked("Check_maintain_aspect_ratio") ? 1 : 0;
    model.show_body_label = view.checked("Check_show_body_label") ? 1 : 0;
}

int load_and_display_QVX_model(modelling_workspace& ws, const std::string& path) {
    if (const auto copy = offer_model_recovery(ws, path)) return recover_model(ws, *copy);
    return show_model_file(ws, path);
}

int show_model_file(modelling_workspace& ws, const std::string& path) {
    ws.view->set_caption("Trensil: " + file_name_part(path));
    load_line_services services{ws.ui, ws.search, ws.transforms, &ws.settings};
    std::int16_t status = 0;
    reset_form_display(ws);
    load_line(path, ws.model, "", status, services);
    if (status != 0) {
        ws.model.profile.num_stations = 0;
        return -1;
    }
    ws.model.model_file = path;
    show_loaded_model(ws);
    if (ws.model.num_bodies >= 1) {
        if (tab_model_changing(ws, 0, 1)) ws.view->select_tab(1);
        ws.model_changed = false;
    }
    model_work_saved(ws);
    return 0;
}

int open_model_file(modelling_workspace& ws, const std::string& path) {
    if (!file_exists(path)) {
        ws.ui.show_message("That file does not exist");
        return -1;
    }
    if (const auto copy = offer_model_recovery(ws, path)) return recover_model(ws, *copy);
    if (show_model_file(ws, path) != 0) return -1;
    if (ws.model.num_bodies < 1 && tab_model_changing(ws, 0, 1)) ws.view->select_tab(1);
    ws.model_changed = false;
    return 0;
}

int validate_model_display(modelling_workspace& ws) {
    model_record& model = ws.model;
    modelling_view& view = *ws.view;
    if (model.profile.num_stations < 1 && load_model_data(ws) != 0) return -1;
    if (model.profile.num_stations < 1) return -1;
    const bool total = view.checked("Check_display_total_gradient");
    set_up_derived_channels(model, ws.response, total);
    for (int i : {1, 3})
        if (ws.graphs[static_cast<std::size_t>(i)])
            ws.graphs[static_cast<std::size_t>(i)]->title = graph_title(i, total);
    const bool mag = model.magpos > 0;
    const bool grav = model.gravpos > 0;
    view.set_visible("Frame_mag_profiles", mag || !grav);
    view.set_visible("Frame_grav_profiles", grav);
    share_graph_area(ws, mag || !grav, grav);
    view.set_text("Text_number_locations", format_fixed(model.profile.num_stations, 0));
    ws.graph_view.graph_ranges_valid = 0;
    return 0;
}

}  // namespace trensil
