// Drawing a new line on a grid: the grids of the three tabs, the points of the baseline, and the
// stations spaced along it with what the grids give there.
#include "project/line_files.h"
#include "project/project_controls.h"
#include "project/project_workspace.h"
#include "support/number_format.h"
#include "support/text_tokens.h"

namespace trensil {

namespace {

constexpr int pointer_click = 5;
constexpr int left_button = 1;

const grid_source* tab_grid(const project_workspace& ws, int tab) {
    if (tab < 0 || tab >= grid_tab_count) return nullptr;
    return ws.grids[static_cast<std::size_t>(tab)].get();
}

// The value a point shows: the grid of the tab it was taken on, in "0.00"; "*" for none.
std::string point_label(const grid_source* grid, double x, double y) {
    if (!grid) return "*";
    const double v = sample_grid_point(*grid, x, y);
    return grid_value_defined(v) ? format_fixed(v, 2) : "*";
}

// A number from a text box, or `fallback` with `message` shown (and the box set to it).
float elevation_from(project_workspace& ws, const char* control, float fallback) {
    const std::string text = ws.view->text(control);
    if (is_numeric_text(text)) return static_cast<float>(parse_number(text));
    ws.ui.show_message(std::string("The elevation value is not valid, defaulting to ") +
                       general_number(fallback));
    project_display_guard guard(ws);
    ws.view->set_text(control, general_number(fallback));
    return fallback;
}

void show_point(project_workspace& ws) {
    const digitising_state& d = ws.digitising;
    project_view& view = *ws.view;
    project_display_guard guard(ws);
    view.set_text("Text_num_digitised_points", std::to_string(d.num_digitised_points));
    view.set_scroll("HScroll_data_point", d.current_point, d.num_digitised_points >= 1 ? 1 : 0,
                    d.num_digitised_points);
    const int k = d.current_point;
    const bool shown = k >= 1 && k <= d.num_digitised_points;
    view.set_text("Text_east", shown ? format_fixed(d.x(k), 1) : "");
    view.set_text("Text_north", shown ? format_fixed(d.y(k), 1) : "");
    view.set_text("Text_label", shown ? d.label(k) : "");
    view.set_enabled("Command_save_point_0", shown);
    view.set_enabled("Command_save_point_1", shown);
}

}  // namespace

int grid_file_changed(project_workspace& ws, int tab, const std::string& path) {
    if (ws.updating_display || tab < 0 || tab >= grid_tab_count) return -1;
    const std::string name = trim_text(path);
    const int status = open_tab_grid(ws, tab, name);
    ws.project.grid_files[static_cast<std::size_t>(tab)] =
        status == 0 && !name.empty() ? project_relative_path(ws.project_file, name) : "";
    if (ws.digitising.active) setup_and_display_grid_profile(ws);
    return status;
}

void grid_viewer_pointer(project_workspace& ws, int tab, int event, int button, bool shift,
                         double x, double y) {
    const grid_source* grid = tab_grid(ws, tab);
    std::string status = "X: " + format_fixed(x, 2) + "  Y: " + format_fixed(y, 2);
    if (grid) status += "  Value: " + point_label(grid, x, y);
    ws.view->set_status(status);

    digitising_state& d = ws.digitising;
    if (!d.active || event != pointer_click || button != left_button || shift) return;
    if (!add_digitised_point(d, x, y, point_label(grid, x, y))) {
        ws.ui.beep();  // 2048 points are held
        return;
    }
    d.current_point = d.num_digitised_points;
    show_point(ws);
    setup_and_display_grid_profile(ws);
}

int command_digitise_new_line(project_workspace& ws) {
    const std::string text = trim_text(ws.view->text("Text_sample_interval"));
    if (text.empty()) {
        ws.ui.show_message("The sample interval has not been specified");
        return -1;
    }
    if (!is_numeric_text(text) || !(parse_number(text) > 0.0)) {
        ws.ui.show_message("The sample interval must be positive");
        return -1;
    }
    digitising_state& d = ws.digitising;
    d.sample_interval = static_cast<float>(parse_number(text));
    clear_digitised_points(d);
    d.active = true;
    show_digitising_frames(ws, true);
    show_point(ws);
    display_grid_profile(ws);
    show_viewer_lines(ws);
    return 0;
}

void hscroll_data_point_changed(project_workspace& ws, int value) {
    if (ws.updating_display) return;
    digitising_state& d = ws.digitising;
    if (value < 1 || value > d.num_digitised_points) return;
    d.current_point = value;
    show_point(ws);
}

void command_save_point(project_workspace& ws, int index) {
    digitising_state& d = ws.digitising;
    const int k = d.current_point;
    if (k < 1 || k > d.num_digitised_points) return;
    if (index == 1) {
        delete_digitised_point(d, k);
    } else {
        const std::string east = ws.view->text("Text_east");
        const std::string north = ws.view->text("Text_north");
        if (!is_numeric_text(east) || !is_numeric_text(north)) return;
        const double x = parse_number(east), y = parse_number(north);
        const grid_source* grid = tab_grid(ws, ws.view->current_grid_tab());
        const std::string label = point_label(grid, x, y);
        if (grid && label == "*") {
            ws.ui.show_message("The grid value must be defined");
            return;
        }
        d.x(k) = x;
        d.y(k) = y;
        d.label(k) = label;
    }
    show_point(ws);
    setup_and_display_grid_profile(ws);
}

void setup_and_display_grid_profile(project_workspace& ws) {
    digitising_state& d = ws.digitising;
    d.surface_elevation = elevation_from(ws, "Text_surface_elevation", 0.0f);
    d.sensor_offset = elevation_from(ws, "Text_sensor_offset", 10.0f);
    d.num_samples = space_stations(d.x, d.y, d.num_digitised_points, d.sample_interval, d.sample_x,
                                   d.sample_y, d.sample_distance);

    // What the grids give along the baseline: the magnetics of the first tab whenever it has a
    // grid, the ground and sensor grids when they are ticked.
    line_sampling sampling = ticked_sampling(ws);
    sampling.grids[0] = tab_grid(ws, 0);
    line_station_values values;
    gather_line_values(d.sample_x, d.sample_y, d.num_samples, sampling, nullptr, values);
    d.sample_mag = std::move(values.mag);
    d.sample_ground = std::move(values.ground);
    d.sample_sensor = std::move(values.sensor);
    display_grid_profile(ws);
    show_viewer_lines(ws);
}

void display_grid_profile(project_workspace& ws) {
    const digitising_state& d = ws.digitising;
    line_profile lp;
    const int n = d.num_samples;
    lp.count = n;
    lp.has_mag = tab_grid(ws, 0) ? -1 : 0;
    lp.distance.resize(0, n);
    lp.x.resize(0, n);
    lp.y.resize(0, n);
    lp.sensor.resize(0, n);
    lp.ground.resize(0, n);
    lp.mag.resize(0, n);
    for (int i = 1; i <= n; ++i) {
        lp.distance(i) = d.sample_distance(i);
        lp.x(i) = d.sample_x(i);
        lp.y(i) = d.sample_y(i);
        lp.mag(i) = static_cast<float>(d.sample_mag(i));
        lp.ground(i) = static_cast<float>(d.sample_ground(i));
        lp.sensor(i) = static_cast<float>(d.sample_sensor(i));
    }
    draw_profile(ws, lp);
}

void command_done_new_line(project_workspace& ws) {
    ws.digitising.active = false;
    show_digitising_frames(ws, false);
    display_qvx_list(ws);
    display_QVX_line(ws);
}

}  // namespace trensil
