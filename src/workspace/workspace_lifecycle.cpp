#include <filesystem>
#include <system_error>

#include "core/body_catalogue.h"
#include "inversion/inversion_session.h"
#include "support/number_format.h"
#include "support/paths.h"
#include "support/text_tokens.h"
#include "workspace/graph_display.h"
#include "workspace/model_edit.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

namespace {
std::string get(const modelling_workspace& ws, const char* key) {
    return ws.settings.get_setting(settings_application, settings_section, key);
}
void put(modelling_workspace& ws, const char* key, const std::string& value) {
    ws.settings.save_setting(settings_application, settings_section, key, value);
}
std::string current_directory() {
    std::error_code error;
    const auto path = std::filesystem::current_path(error);
    return error ? std::string() : path.string();
}
bool usable(const std::string& value) {
    return value != no_setting_value && !value.empty();
}

// A field of the Earth's field from the settings: stored and shown when numeric.
void take_field_setting(modelling_workspace& ws, const char* key, const char* control,
                        float& field) {
    const std::string value = get(ws, key);
    if (value == no_setting_value || !is_numeric_text(value)) return;
    field = static_cast<float>(parse_number(value));
    ws.view->set_text(control, trim_text(value));
}
}  // namespace

void form_load(modelling_workspace& ws) {
    modelling_view& view = *ws.view;
    ws.form_ready = false;
    display_guard guard(ws);

    ws.graph_view = graph_view_state{};
    ws.model.profile.num_stations = 0;
    view.set_text("Text_number_locations", "");
    reset_model(ws.model);
    ws.response.inversion_fits_gradient = 0;

    // Only these three types can be chosen for a new body, though files know others.
    view.set_items("Combo_model_type", {"Thin Sheet", "Thick Sheet", "Cylinder/Pipe"});
    clear_body_results(ws.model);
    forget_best_model(ws.inversion);
    clear_edit_history(ws);

    view.set_text("Text_mag_intensity", general_number(ws.model.mag_intensity));
    view.set_text("Text_mag_inclination", general_number(ws.model.mag_inclination));
    view.set_text("Text_mag_declination", general_number(ws.model.mag_declination));
    for (int i = 0; i < graph_count; ++i)
        if (ws.graphs[i]) ws.graphs[i]->title = graph_title(i, false);
    view.set_checked("menu_view_mode_0", true);
    view.set_checked("menu_view_mode_1", false);
    ws.plan_shown = false;

    const std::string directory = get(ws, "WorkingDirectory");
    if (directory != no_setting_value) set_current_directory(directory);

    take_field_setting(ws, "MagIntensity", "Text_mag_intensity", ws.model.mag_intensity);
    take_field_setting(ws, "MagInclination", "Text_mag_inclination", ws.model.mag_inclination);
    take_field_setting(ws, "MagDeclination", "Text_mag_declination", ws.model.mag_declination);

    const std::string axes = get(ws, "DisplayAxes");
    if (axes != no_setting_value && is_numeric_text(axes)) {
        const bool on = parse_number(axes) != 0.0;
        view.set_checked("menu_display_axes", on);
        ws.model.display_axes = on ? 1 : 0;
        for (graph_control* graph : ws.graphs)
            if (graph) graph->set_display_axes(on);
    }

    view.set_visible("Frame_qvx_data_file_definitions", !ws.opened_from_project);
    view.set_enabled("menu_open_model_0", !ws.opened_from_project);
    ws.ui.process_events();
    ws.form_ready = true;

    // "width;height"; an empty value counts as absent.
    const std::string size = get(ws, "FormSize");
    const std::size_t split = size.find(';');
    if (usable(size) && split != std::string::npos) {
        const std::string width = size.substr(0, split);
        const std::string height = size.substr(split + 1);
        if (is_numeric_text(width) && is_numeric_text(height))
            view.resize_form(static_cast<int>(parse_number(width)),
                             static_cast<int>(parse_number(height)));
    }
    ws.modeller_open = true;
}

void form_unload(modelling_workspace& ws) {
    modelling_view& view = *ws.view;
    put(ws, "WorkingDirectory", current_directory());
    if (!view.text("Text_mag_intensity").empty()) {
        put(ws, "MagIntensity", view.text("Text_mag_intensity"));
        put(ws, "MagInclination", view.text("Text_mag_inclination"));
        put(ws, "MagDeclination", view.text("Text_mag_declination"));
    }
    put(ws, "FormSize",
        std::to_string(view.form_width()) + ";" + std::to_string(view.form_height()));
    put(ws, "DisplayAxes", view.checked("menu_display_axes") ? "1" : "0");
    ws.modeller_open = false;
}

void save_working_directory(modelling_workspace& ws) {
    put(ws, "WorkingDirectory", current_directory());
}

void return_to_working_directory(modelling_workspace& ws) {
    const std::string directory = get(ws, "WorkingDirectory");
    std::error_code error;
    if (directory == no_setting_value || !std::filesystem::is_directory(directory, error)) return;
    set_current_directory(directory);
}

void save_body_defaults(modelling_workspace& ws) {
    const model_record& model = ws.model;
    const int current = ws.section.current_body;
    if (model.num_bodies < 1 || current < 1 || current > model.num_bodies) return;
    const body_record& b = model.body(current);
    put(ws, "Type", format_fixed(b.type, 0));
    put(ws, "Dip", format_fixed(b.dip.value, 1));
    put(ws, "Thick", format_fixed(b.width.value, 2));
    put(ws, "Depth", format_fixed(b.depth_extent.value, 2));
    put(ws, "StrikeLength", format_fixed(b.length.value, 2));
    put(ws, "Density", format_fixed(b.density.value, 3));
    put(ws, "Susc", format_fixed(b.susc.value, 1));
    put(ws, "Colour", format_fixed(b.colour, 0));
}

}  // namespace trensil
