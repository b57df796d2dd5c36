#include <cmath>
#include <functional>
#include <map>

#include "response/channel_setup.h"
#include "support/text_tokens.h"
#include "workspace/model_edit.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

namespace {
void mark_changed(modelling_workspace& ws) {
    ws.model_changed = true;
    ws.view->set_enabled("Command_save_qvx_model", true);
}

// The profile must be loaded again before the next display.
void data_reset(modelling_workspace& ws) {
    ws.model.profile.num_stations = 0;
    ws.view->set_text("Text_number_locations", "");
    ws.graph_view.graph_ranges_valid = 0;
}

struct field_text {
    std::string text;
    bool numeric;
    double value;
};

using field_handler = std::function<void(modelling_workspace&, const field_text&)>;

// A data column: numeric and above 0, else the old column stays.
field_handler column(std::int32_t data_definition::*field) {
    return [field](modelling_workspace& ws, const field_text& f) {
        if (f.numeric && f.value > 0) ws.model.*field = static_cast<std::int32_t>(f.value);
        data_reset(ws);
    };
}
// An optional column: anything but a number stores 0, "not used".
field_handler optional_column(std::int32_t data_definition::*field) {
    return [field](modelling_workspace& ws, const field_text& f) {
        ws.model.*field = f.numeric ? static_cast<std::int32_t>(f.value) : 0;
        data_reset(ws);
    };
}
field_handler earth_field(float model_record::*field) {
    return [field](modelling_workspace& ws, const field_text& f) {
        if (!f.numeric) return;
        ws.model.*field = static_cast<float>(f.value);
        clear_body_results(ws.model);
        mark_changed(ws);
    };
}
// Station heights: only a change of more than 0.1 counts.
field_handler height(float model_record::*field, bool at_least_zero) {
    return [field, at_least_zero](modelling_workspace& ws, const field_text& f) {
        if (!f.numeric || (at_least_zero && f.value < 0)) return;
        const auto v = static_cast<float>(f.value);
        if (!(std::fabs(v - ws.model.*field) > 0.1f)) return;
        ws.model.*field = v;
        ws.model.profile_ready = 0;
        clear_body_results(ws.model);
        mark_changed(ws);
    };
}
// Base levels: a bad text stores the undefined level; redisplay when the residual is not used.
field_handler base_level(float model_record::*field, std::int32_t data_definition::*column_of,
                         int observed_flag) {
    return [=](modelling_workspace& ws, const field_text& f) {
        const float v = f.numeric ? static_cast<float>(f.value) : undefined_value;
        if (!(std::fabs(v - ws.model.*field) > 0.01f)) return;
        ws.model.*field = v;
        if (ws.model.residual < 1 && ws.model.*column_of > 0) {
            ws.model.channel_valid[static_cast<std::size_t>(observed_flag)] = 0;
            ws.model.channel_valid[static_cast<std::size_t>(observed_flag + 1)] = 0;
            ws.graph_view.graph_ranges_valid = 0;
            display_model(ws, 1);
        }
    };
}
field_handler whole_number(std::int32_t model_record::*field) {
    return [field](modelling_workspace& ws, const field_text& f) {
        if (!f.numeric || f.value < 0) return;
        ws.model.*field = static_cast<std::int32_t>(f.value);
        mark_changed(ws);
    };
}
// Display-only lengths of the section and plan: any text, a bad one reads 0.
field_handler display_length(float model_record::*field) {
    return [field](modelling_workspace& ws, const field_text& f) {
        ws.model.*field = static_cast<float>(parse_number(f.text));
        mark_changed(ws);
    };
}
// The label of an edit of the current body's field ("Name of Body 2") and the key that merges
// the keystrokes of one field into one step.
std::string body_field_label(const char* field, int body) {
    return std::string(field) + " of Body " + std::to_string(body);
}

// Mesh settings of the current body: any change makes the body stale and redisplays.
template <class T>
field_handler body_mesh(T body_definition::*field, const char* label) {
    return [field, label](modelling_workspace& ws, const field_text& f) {
        const int current = ws.section.current_body;
        if (!f.numeric || f.value < 0 || current < 1 || current > ws.model.num_bodies) return;
        body_record& b = ws.model.body(current);
        const auto v = static_cast<T>(f.value);
        if (v == b.*field) return;
        model_edit edit(ws, body_field_label(label, current), body_field_label(label, current));
        b.*field = v;
        b.mag_valid = 0;
        b.grav_valid = 0;
        edit.commit();
        display_model(ws, 1);
    };
}
field_handler body_text(std::string body_definition::*field, const char* label) {
    return [field, label](modelling_workspace& ws, const field_text& f) {
        const int current = ws.section.current_body;
        if (current < 1 || current > ws.model.num_bodies) return;
        model_edit edit(ws, body_field_label(label, current), body_field_label(label, current));
        ws.model.body(current).*field = f.text;
        edit.commit();
        mark_changed(ws);
    };
}

const std::map<std::string, field_handler>& field_handlers() {
    static const std::map<std::string, field_handler> handlers{
        {"Text_MAGINV_xpos", column(&data_definition::xpos)},
        {"Text_MAGINV_magpos", column(&data_definition::magpos)},
        {"Text_MAGINV_gravpos", column(&data_definition::gravpos)},
        {"Text_MAGINV_nstep", column(&data_definition::nstep)},
        {"Text_MAGINV_nhead",
         [](modelling_workspace& ws, const field_text& f) {
             ws.model.nhead = f.numeric && f.value > 0 ? static_cast<std::int32_t>(f.value) : 0;
             data_reset(ws);
         }},
        {"Text_MAGINV_ypos", optional_column(&data_definition::ypos)},
        {"Text_MAGINV_zpos", optional_column(&data_definition::zpos)},
        {"Text_MAGINV_dtm", optional_column(&data_definition::dtm)},
        {"Text_MAGINV_station_spacing",
         [](modelling_workspace& ws, const field_text& f) {
             ws.model.station_spacing =
                 f.numeric && f.value > 0 ? static_cast<float>(f.value) : 0.0f;
             data_reset(ws);
             mark_changed(ws);
         }},
        {"Text_mag_intensity", earth_field(&model_record::mag_intensity)},
        {"Text_mag_inclination", earth_field(&model_record::mag_inclination)},
        {"Text_mag_declination", earth_field(&model_record::mag_declination)},
        {"Text_MAGINV_sensor_offset", height(&model_record::sensor_offset, true)},
        {"Text_MAGINV_topo", height(&model_record::topo, false)},
        {"Text_MAGINV_basemag", base_level(&model_record::basemag, &data_definition::magpos, 1)},
        {"Text_MAGINV_basegrav", base_level(&model_record::basegrav, &data_definition::gravpos, 4)},
        {"Text_MAGINV_residual", whole_number(&model_record::residual)},
        {"Text_VG_filter_step", whole_number(&model_record::VG_filter_step)},
        {"Text_VG_filter_width",
         [](modelling_workspace& ws, const field_text& f) {
             if (!f.numeric || f.value < 0) return;
             ws.model.VG_filter_width = static_cast<std::int32_t>(f.value);
             set_up_derived_channels(ws.model, ws.response,
                                     ws.view->checked("Check_display_total_gradient"));
             mark_changed(ws);
         }},
        {"Text_depth_grid_spacing", display_length(&model_record::depth_grid_spacing)},
        {"Text_profile_grid_spacing", display_length(&model_record::profile_grid_spacing)},
        {"Text_finite_body_left_clip", display_length(&model_record::finite_body_left_clip)},
        {"Text_finite_body_right_clip", display_length(&model_record::finite_body_right_clip)},
        {"Text_infinite_body_length", display_length(&model_record::infinite_body_length)},
        {"Text_End_Thickness", body_mesh(&body_record::end_thickness, "End Thickness")},
        {"Text_Shell_Thickness", body_mesh(&body_record::shell_thickness, "Shell Thickness")},
        {"Text_num_sectors", body_mesh(&body_record::num_sectors, "Sectors")},
        {"Text_num_segments", body_mesh(&body_record::num_segments, "Segments")},
        {"Text_max_triangle_size", body_mesh(&body_record::max_triangle_size, "Largest Triangle")},
        {"Text_body_name", body_text(&body_record::name, "Name")},
        {"Text_body_rock_type", body_text(&body_record::rock_type, "Rock Type")},
        {"Text_body_description", body_text(&body_record::description, "Description")},
    };
    return handlers;
}
}  // namespace

void model_field_changed(modelling_workspace& ws, const std::string& control) {
    if (ws.updating_display) return;
    const auto found = field_handlers().find(control);
    if (found == field_handlers().end()) return;
    field_text f;
    f.text = ws.view->text(control);
    f.numeric = is_numeric_text(f.text);
    f.value = f.numeric ? parse_number(f.text) : 0.0;
    found->second(ws, f);
}

bool tab_model_changing(modelling_workspace& ws, int old_tab, int new_tab) {
    if (ws.updating_display) return true;
    modelling_view& view = *ws.view;
    if (old_tab == 0 && new_tab != 0) {
        if (validate_model_display(ws) != 0) return false;
        clear_body_results(ws.model);
        display_model(ws, 1);
        if (view.checked("Check_maintain_aspect_ratio"))
            update_graph_display(ws.model, ws.graph_view, ws.graphs);
    }
    const bool definitions = new_tab == 0;
    for (const char* menu : {"menu_bodies", "menu_model", "menu_view", "menu_display_axes"})
        view.set_enabled(menu, !definitions);
    return true;
}

}  // namespace trensil
