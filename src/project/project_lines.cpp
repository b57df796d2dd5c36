// The project's list of lines: showing it, loading a line, selecting, deleting and opening one.
#include <algorithm>
#include <cmath>

#include "io/load_line.h"
#include "project/line_files.h"
#include "project/project_controls.h"
#include "project/project_workspace.h"
#include "support/number_format.h"
#include "support/paths.h"
#include "workspace/nice_range.h"

namespace trensil {

namespace {

bool line_exists(const project_workspace& ws, int index) {
    return index >= 1 && index <= ws.project.num_lines;
}

// Depth below the ground of the shallowest body top of a loaded line: the ground at the body's
// station (the DTM column, else the model's topography) less its top; "" without bodies or data.
std::string burial_text(const model_record& m) {
    const profile_block& p = m.profile;
    if (m.num_bodies < 1 || p.num_stations < 1 || p.profile_distance.empty()) return "";
    double least = 0.0;
    for (int b = 1; b <= m.num_bodies; ++b) {
        const float d = m.body(b).distance.value;
        const auto first = p.profile_distance.begin();
        const auto last = first + p.num_stations;
        const int k = std::clamp(static_cast<int>(std::lower_bound(first, last, d) - first) + 1, 1,
                                 p.num_stations);
        const double ground = m.dtm >= 1 ? p.location(ground_row, k) : m.topo;
        const double depth = ground - m.body(b).top.value;
        if (b == 1 || depth < least) least = depth;
    }
    return format_fixed(least, 1);
}

std::vector<std::string> line_row(const project_workspace& ws, int i) {
    const line_profile& lp = ws.project.profiles(i);
    std::vector<std::string> row{format_fixed(ws.project.line_numbers(i), 0)};
    if (lp.count < 1) return row;
    row.push_back(format_fixed((lp.x(1) + lp.x(lp.count)) / 2.0, 1));
    row.push_back(format_fixed((lp.y(1) + lp.y(lp.count)) / 2.0, 1));
    double sensor = 0.0;
    for (int k = 1; k <= lp.count; ++k) sensor += lp.sensor(k);
    row.push_back(format_fixed(sensor / lp.count, 1));
    row.push_back(burial_text(ws.project.models(i)));
    return row;
}

}  // namespace

void draw_profile(project_workspace& ws, const line_profile& lp) {
    graph_control* graph = ws.profile_graph;
    if (!graph) return;
    graph->clear_data();
    if (lp.count < 1) {
        graph->redraw();
        return;
    }
    plot_data plot;
    const bool mag = lp.has_mag != 0;
    plot.resize(lp.count, mag ? 1 : 2);
    for (int i = 1; i <= lp.count; ++i) {
        const auto r = static_cast<std::size_t>(i - 1);
        plot.x[r] = lp.distance(i);
        auto value = [](float v) { return v > -1e30f ? double{v} : std::nan(""); };
        if (mag) {
            plot.y[0][r] = value(lp.mag(i));
        } else {
            plot.y[0][r] = value(lp.ground(i));
            plot.y[1][r] = value(lp.sensor(i));
        }
    }
    graph->title = mag ? "Magnetics (nT)" : "Elevation (m)";
    // Axes rounded as the modelling window rounds its graphs.
    float lo = 1e32f, hi = -1e32f;
    for (const auto& series : plot.y)
        for (double v : series)
            if (!std::isnan(v))
                lo = std::min(lo, static_cast<float>(v)), hi = std::max(hi, static_cast<float>(v));
    if (!(hi > lo)) {
        lo = hi > -1e31f ? hi - 1.0f : 0.0f;
        hi = lo + 2.0f;
    }
    float step = 1.0f, x0 = 0.0f, x1 = std::max(lp.distance(lp.count), 1.0f), y0 = lo, y1 = hi;
    nice_range(0.0f, x1, 8, step, x0, x1);
    graph->xaxismin = x0;
    graph->xaxismax = x1;
    graph->x_tick_step = step;
    nice_range(lo, hi, 6, step, y0, y1);
    graph->yaxismin = y0;
    graph->yaxismax = y1;
    graph->y_tick_step = step;
    graph->load_data(plot);
    graph->redraw();
}

void display_qvx_list(project_workspace& ws) {
    project_view& view = *ws.view;
    project_display_guard guard(ws);
    std::vector<std::vector<std::string>> rows{{"Line Number", "X", "Y", "Z", "Burial"}};
    std::vector<std::string> numbers;
    for (int i = 1; i <= ws.project.num_lines; ++i) {
        rows.push_back(line_row(ws, i));
        numbers.push_back(format_fixed(ws.project.line_numbers(i), 0));
    }
    view.set_table("Grid_profile_lines", rows);
    view.set_items("Combo_QVX_line", numbers);
    view.select_row("Grid_profile_lines", ws.current_line);
    view.select_item("Combo_QVX_line", ws.current_line - 1);
    view.set_enabled("Command_open_trensil", ws.current_line >= 1);
    view.set_enabled("Command_zoom_to_line", ws.current_line >= 1);
    view.set_enabled("Command_delete_line", ws.current_line >= 1);
    show_viewer_lines(ws);
}

int load_project_line(project_workspace& ws, int index) {
    if (!line_exists(ws, index)) return -1;
    project_definition& p = ws.project;
    model_record& model = p.models(index);
    reset_model(model);
    model.num_bodies = 0;
    p.profiles(index) = line_profile{};
    const std::string path = resolve_line_path(ws.project_file, p.model_paths(index));
    load_line_services services{ws.ui, ws.search, ws.transforms, &ws.settings};
    std::int16_t status = 0;
    load_line(path, model, ws.project_file, status, services);
    if (status != 0) return -1;
    model.model_file = path;
    fill_line_profile(model, p.profiles(index));
    return 0;
}

void select_line(project_workspace& ws, int row) {
    if (ws.updating_display || !line_exists(ws, row) || row == ws.current_line) return;
    const bool modeller_open = ws.modeller_is_open && ws.modeller_is_open();
    if (modeller_open && ws.modeller_has_changes && ws.modeller_has_changes() &&
        !ws.ui.ask_yes_no("Discard the changes to the current model?")) {
        display_qvx_list(ws);  // the selection goes back to the current line
        return;
    }
    ws.current_line = row;
    display_qvx_list(ws);
    build_body_list(ws);
    display_QVX_line(ws);
    if (ws.open_modeller && modeller_open) ws.open_modeller(current_line_model(ws));
}

int command_add_line_model(project_workspace& ws) {
    const auto chosen = ws.ui.choose_open_file(
        "Select the profile model file",
        "Inversion definition Files(*.qvx)|*.qvx|All files (*.*)|*.*", ws.project_file);
    if (!chosen) return -1;
    if (!file_exists(*chosen)) {
        ws.ui.show_message("That file does not exist");
        return -1;
    }
    int number = 0;
    if (!ask_line_number(ws, number)) return -1;
    const std::string stored = project_relative_path(ws.project_file, *chosen);
    const int place = enter_line(ws.project, number, stored, drop_extension(stored) + ".bmp");
    load_project_line(ws, place);
    ws.current_line = place;
    write_current_project(ws);
    display_qvx_list(ws);
    build_body_list(ws);
    display_QVX_line(ws);
    return 0;
}

void command_delete_line(project_workspace& ws) {
    const int index = ws.current_line;
    if (!line_exists(ws, index)) return;
    const std::string number = format_fixed(ws.project.line_numbers(index), 0);
    if (!ws.ui.ask_yes_no("Delete the line " + number, "Confirm Deletion")) return;
    remove_line(ws.project, index);
    ws.current_line = std::min(index, ws.project.num_lines);
    if (!ws.project_file.empty()) write_current_project(ws);
    display_qvx_list(ws);
    build_body_list(ws);
    display_QVX_line(ws);
}

int command_open_trensil(project_workspace& ws) {
    if (!line_exists(ws, ws.current_line) || !ws.open_modeller) return -1;
    const std::string path = current_line_model(ws);
    if (!file_exists(path)) {
        ws.ui.show_message("That file does not exist");
        return -1;
    }
    return ws.open_modeller(path);
}

void command_zoom_to_line(project_workspace& ws) {
    if (!line_exists(ws, ws.current_line)) return;
    const line_profile& lp = ws.project.profiles(ws.current_line);
    if (lp.count < 1) return;
    double xmin = lp.x(1), xmax = lp.x(1), ymin = lp.y(1), ymax = lp.y(1);
    for (int i = 2; i <= lp.count; ++i) {
        xmin = std::min(xmin, lp.x(i));
        xmax = std::max(xmax, lp.x(i));
        ymin = std::min(ymin, lp.y(i));
        ymax = std::max(ymax, lp.y(i));
    }
    ws.view->zoom_viewers(xmin, ymin, xmax, ymax);
}

std::string current_line_model(const project_workspace& ws) {
    if (!line_exists(ws, ws.current_line)) return "";
    return resolve_line_path(ws.project_file, ws.project.model_paths(ws.current_line));
}

void build_body_list(project_workspace& ws) {
    std::vector<std::string> items{"None", "All"};
    if (line_exists(ws, ws.current_line)) {
        const model_record& m = ws.project.models(ws.current_line);
        for (int b = 1; b <= m.num_bodies; ++b) items.push_back(m.body(b).name);
    }
    project_display_guard guard(ws);
    ws.view->set_items("Combo_body_list", items);
    ws.view->select_item("Combo_body_list", 0);
}

void display_QVX_line(project_workspace& ws) {
    if (ws.digitising.active) return;
    static const line_profile none;
    draw_profile(ws,
                 line_exists(ws, ws.current_line) ? ws.project.profiles(ws.current_line) : none);
}

void graph_profile_pointer(project_workspace& ws, double distance, double value) {
    ws.view->set_status("Distance: " + format_fixed(distance, 2) +
                        "  Value: " + format_fixed(value, 4));
}

void update_current_QVX_line(project_workspace& ws) {
    if (!line_exists(ws, ws.current_line)) return;
    load_project_line(ws, ws.current_line);
    display_qvx_list(ws);
    build_body_list(ws);
    display_QVX_line(ws);
}

}  // namespace trensil
