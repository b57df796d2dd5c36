#include "project/project_controls.h"

#include "support/number_format.h"
#include "support/text_tokens.h"

namespace trensil {

std::string grid_selector_name(int tab) {
    return "GridFileSelector_" + std::to_string(tab);
}

std::string sample_check_name(int tab) {
    return "Check_sample_grid_" + std::to_string(tab);
}

void show_column_positions(project_workspace& ws) {
    project_view& view = *ws.view;
    const model_record& m = ws.scratch;
    project_display_guard guard(ws);
    view.set_text("Text_data_locations", m.data_file);
    const std::pair<const char*, int> boxes[] = {
        {"Text_MAGINV_nhead", m.nhead},   {"Text_MAGINV_nstep", m.nstep},
        {"Text_MAGINV_xpos", m.xpos},     {"Text_MAGINV_ypos", m.ypos},
        {"Text_MAGINV_zpos", m.zpos},     {"Text_MAGINV_dtm", m.dtm},
        {"Text_MAGINV_magpos", m.magpos}, {"Text_MAGINV_gravpos", m.gravpos}};
    for (const auto& [control, value] : boxes) view.set_text(control, std::to_string(value));
    view.set_text("Text_locations_name_line", std::to_string(std::max(m.names_line, 0)));
}

void show_sample_settings(project_workspace& ws) {
    const project_definition& p = ws.project;
    if (!p.sample_settings_present) return;
    project_display_guard guard(ws);
    for (int tab = 0; tab < grid_tab_count; ++tab)
        ws.view->set_checked(sample_check_name(tab),
                             p.sample_grid[static_cast<std::size_t>(tab)] != 0);
    ws.view->set_checked("Check_value_is_depth", p.value_is_depth != 0);
    ws.view->set_checked("Check_value_is_height", p.value_is_height != 0);
}

void take_sample_settings(project_workspace& ws) {
    project_definition& p = ws.project;
    for (int tab = 0; tab < grid_tab_count; ++tab)
        p.sample_grid[static_cast<std::size_t>(tab)] =
            ws.view->checked(sample_check_name(tab)) ? 1 : 0;
    p.value_is_depth = ws.view->checked("Check_value_is_depth") ? 1 : 0;
    p.value_is_height = ws.view->checked("Check_value_is_height") ? 1 : 0;
    p.sample_settings_present = true;
}

void show_digitising_frames(project_workspace& ws, bool digitising) {
    project_view& view = *ws.view;
    view.set_visible("Frame_grid_profiles", digitising);
    view.set_visible("Frame_qvx_list", !digitising);
    view.set_enabled("Command_digitise_new_line", !digitising);
    view.set_enabled("Command_done_new_line", digitising);
}

int open_tab_grid(project_workspace& ws, int tab, const std::string& path) {
    auto& slot = ws.grids[static_cast<std::size_t>(tab)];
    ws.view->show_grid(tab, nullptr);
    slot.reset();
    if (path.empty()) return 0;
    std::string error;
    try {
        if (ws.open_grid)
            slot = ws.open_grid(path, error);
        else
            error = "no grid reader is available";
    } catch (const std::exception& e) {
        error = e.what();
    }
    if (!slot) {
        ws.ui.show_message("An error occured while loading the grid file: " + error);
        return -1;
    }
    ws.view->show_grid(tab, slot.get());
    return 0;
}

namespace {
viewer_line polyline(viewer_line::kind role, const array1<double>& x, const array1<double>& y,
                     int count) {
    viewer_line line;
    line.role = role;
    for (int k = 1; k <= count; ++k) {
        line.x.push_back(x(k));
        line.y.push_back(y(k));
    }
    return line;
}
}  // namespace

void show_viewer_lines(project_workspace& ws) {
    std::vector<viewer_line> lines;
    const project_definition& p = ws.project;
    for (int i = 1; i <= p.num_lines; ++i) {
        const line_profile& lp = p.profiles(i);
        if (lp.count < 1) continue;
        lines.push_back(polyline(i == ws.current_line ? viewer_line::kind::current_line
                                                      : viewer_line::kind::project_line,
                                 lp.x, lp.y, lp.count));
        lines.back().label = format_fixed(p.line_numbers(i), 0);
    }
    const digitising_state& d = ws.digitising;
    if (d.active && d.num_digitised_points > 0) {
        lines.push_back(polyline(viewer_line::kind::digitised, d.x, d.y, d.num_digitised_points));
        lines.push_back(
            polyline(viewer_line::kind::stations, d.sample_x, d.sample_y, d.num_samples));
    }
    ws.view->set_viewer_lines(lines);
}

line_sampling ticked_sampling(project_workspace& ws) {
    line_sampling s;
    for (int tab = 0; tab < grid_tab_count; ++tab) {
        if (ws.view->checked(sample_check_name(tab)))
            s.grids[static_cast<std::size_t>(tab)] = ws.grids[static_cast<std::size_t>(tab)].get();
    }
    s.value_is_height = ws.view->checked("Check_value_is_height");
    s.value_is_depth = ws.view->checked("Check_value_is_depth");
    s.surface_elevation = ws.digitising.surface_elevation;
    s.sensor_offset = ws.digitising.sensor_offset;
    return s;
}

bool ask_line_number(project_workspace& ws, int& number) {
    const auto answer = ws.ui.input_box("Enter the new line number", "QVX File Line Number",
                                        format_fixed(ws.project.next_line_number, 0));
    if (!answer || trim_text(*answer).empty()) return false;
    if (!is_numeric_text(*answer)) {
        ws.ui.show_message("The specified line number is not valid");
        return false;
    }
    const double value = parse_number(*answer);
    if (value < 0.0) {
        ws.ui.show_message("The line number must be positive");
        return false;
    }
    if (value > 2147483647.0) {
        ws.ui.show_message("The specified line number is not valid");
        return false;
    }
    number = static_cast<int>(value + 0.5);
    return true;
}

}  // namespace trensil
