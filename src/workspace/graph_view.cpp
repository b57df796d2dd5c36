#include "workspace/graph_view.h"

#include <cmath>
#include <limits>

#include "response/response_state.h"
#include "support/text_tokens.h"

namespace trensil {

namespace {
constexpr double no_value = std::numeric_limits<double>::quiet_NaN();

// One range update: the maximum is tested only when the value is not a new minimum.
void widen(float value, float& lo, float& hi) {
    if (value < lo)
        lo = value;
    else if (value > hi)
        hi = value;
}

std::int32_t round_even(float v) {
    return static_cast<std::int32_t>(std::nearbyint(v));
}

void apply_vertical_view(const graph_view_state& view, graph_control& graph, int index) {
    graph.yaxismin = view.graph_ycentre[index] - view.graph_yspan[index] / 2.0f;
    graph.yaxismax = view.graph_ycentre[index] + view.graph_yspan[index] / 2.0f;
}

double display_entry(const array2<float>& display, int station) {
    if (station < display.row_lo() || station > display.row_hi() || display.col_hi() < 2 ||
        display.col_lo() > 2)
        return no_value;
    const float v = display(station, 2);
    return is_display_value(v) ? static_cast<double>(v) : no_value;
}
}  // namespace

void plot_data::resize(int rows, int series) {
    x.assign(static_cast<std::size_t>(rows), 0.0);
    y.assign(static_cast<std::size_t>(series), std::vector<double>(x.size(), no_value));
}

void setup_graph_data_ranges(model_record& model, graph_view_state& view) {
    if (view.graph_ranges_valid) return;
    profile_block& p = model.profile;
    const int n = p.num_stations;
    if (n >= 1) {
        const auto& mag = p.mag_channels;
        const auto& grav = p.grav_channels;
        const int vg = model.vg_component_2;
        const bool calculated_ready = model.channel_valid[2] != 0;

        p.mag_min = p.mag_max = mag(observed_level, 1);
        if (calculated_ready) widen(mag(computed_level, 1), p.mag_min, p.mag_max);
        p.grav_min = p.grav_max = grav(observed_level, 1);
        view.mag_gradient_min = view.mag_gradient_max = mag(3 + vg, 1);
        if (calculated_ready) widen(mag(8 + vg, 1), p.mag_min, p.mag_max);
        view.grav_gradient_min = view.grav_gradient_max = grav(3 + vg, 1);

        for (int g = 0; g < section_graph; ++g) view.plots[g].resize(n, 2);
        view.plots[section_graph].resize(n, 1);
        for (int i = 1; i <= n; ++i) {
            const double dist = p.profile_distance(i);
            const auto row = static_cast<std::size_t>(i - 1);
            for (plot_data& plot : view.plots) plot.x[row] = dist;
            view.plots[0].y[0][row] = mag(observed_level, i);
            view.plots[1].y[0][row] = mag(3 + vg, i);
            view.plots[2].y[0][row] = grav(observed_level, i);
            view.plots[3].y[0][row] = grav(3 + vg, i);
            view.plots[section_graph].y[0][row] = p.location(ground_row, i);

            widen(mag(observed_level, i), p.mag_min, p.mag_max);
            if (calculated_ready) widen(mag(computed_level, i), p.mag_min, p.mag_max);
            widen(mag(3 + vg, i), view.mag_gradient_min, view.mag_gradient_max);
            if (calculated_ready) widen(mag(computed_level, i), p.mag_min, p.mag_max);
            widen(grav(observed_level, i), p.grav_min, p.grav_max);
            widen(grav(3 + vg, i), view.grav_gradient_min, view.grav_gradient_max);
        }
    }
    view.graph_ranges_valid = 1;
    view.zoom_ratio = 1.0f;
    for (int g = 1; g < graph_count; ++g) view.graph_zoom_level[g] = 0;
    calculate_zoom_settings(model, view);
}

void load_computed_series(const model_record& model, const response_state& response,
                          graph_view_state& view) {
    const int n = model.profile.num_stations;
    const std::array<const array2<float>*, 4> displays{
        &response.mag_display, &response.mag_gradient_display, &response.grav_display,
        &response.grav_gradient_display};
    for (int g = 0; g < section_graph; ++g) {
        plot_data& plot = view.plots[g];
        if (plot.rows() != n || plot.y.size() < 2) continue;
        for (int i = 1; i <= n; ++i)
            plot.y[1][static_cast<std::size_t>(i - 1)] = display_entry(*displays[g], i);
    }
}

void calculate_zoom_settings(const model_record& model, graph_view_state& view) {
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    if (view.dist_last - view.dist_first <= 0.0f) view.zoom_ratio = 1.0f;
    if (n < 1) {
        view.zoom_ratio = 1.0f;
        return;
    }
    if (view.zoom_ratio == 1.0f) {
        view.pan_position = 0;
        view.dist_first = p.profile_distance(1);
        view.dist_last = p.profile_distance(n);
        view.full_width = view.dist_last - view.dist_first;
        view.full_centre = (view.dist_first + view.dist_last) / 2.0f;
        view.view_width = view.full_width;
        view.view_centre = view.full_centre;
        view.pan_value = view.pan_max = view.pan_min = 0;
        return;
    }
    view.view_width = view.full_width / view.zoom_ratio;
    view.pan_value = 0;
    view.pan_max = round_even(2.0f * view.zoom_ratio);
    view.pan_min = round_even(-2.0f * view.zoom_ratio);
    const float shift = view.pan_max != 0 ? (view.full_width - view.view_width) *
                                                static_cast<float>(view.pan_position) /
                                                static_cast<float>(view.pan_max)
                                          : 0.0f;
    view.view_centre = shift / 2.0f + view.full_centre;
    if (view.pan_position > view.pan_max) view.pan_position = view.pan_max;
    if (view.pan_position < -view.pan_max) view.pan_position = -view.pan_max;
    view.pan_value = view.pan_position;
}

void display_pan_values(graph_view_state& view) {
    view.pan_value = 0;
    view.pan_max = round_even(20.0f * view.zoom_ratio);
    view.pan_min = round_even(-20.0f * view.zoom_ratio);
    view.pan_value = view.pan_position;
}

void update_graph_display(const model_record& model, graph_view_state& view,
                          const graph_array& graphs) {
    for (int i = 0; i < graph_count; ++i) {
        graph_control* graph = graphs[i];
        if (!graph) continue;
        graph->xaxismin = view.view_centre - view.view_width / 2.0f;
        graph->xaxismax = view.view_centre + view.view_width / 2.0f;
        if (view.graph_yspan[i] > 0.0f) {
            if (i == section_graph && model.maintain_aspect_ratio == 1 && graph->width() > 0) {
                const float s = view.view_width / static_cast<float>(graph->width());
                view.graph_ymin[i] = view.graph_ymax[i] - static_cast<float>(graph->height()) * s;
                view.graph_yspan[i] = view.graph_ymax[i] - view.graph_ymin[i];
                view.graph_ycentre[i] = (view.graph_ymax[i] + view.graph_ymin[i]) / 2.0f;
            }
            apply_vertical_view(view, *graph, i);
        }
        graph->redraw();
    }
}

void zoom_graph_vertically(graph_view_state& view, graph_control& graph, int index, bool up) {
    if (index == section_graph)
        view.graph_ycentre[index] = view.graph_ycentre[index] + view.graph_yspan[index] / 2.0f;
    std::int32_t& level = view.graph_zoom_level[index];
    if (up) {
        if (level < zoom_step_count - 1) ++level;
    } else if (level >= 1) {
        --level;
    }
    view.graph_yspan[index] = (view.graph_ymax[index] - view.graph_ymin[index]) /
                              view.zoom_factor[static_cast<std::size_t>(level)];
    if (index == section_graph) view.graph_ycentre[index] -= view.graph_yspan[index] / 2.0f;
    apply_vertical_view(view, graph, index);
    graph.redraw();
}

void pan_graph_vertically(graph_view_state& view, graph_control& graph, int index, bool up) {
    if (up)
        view.graph_ycentre[index] += view.graph_yspan[index] / 4.0f;
    else
        view.graph_ycentre[index] -= view.graph_yspan[index] / 4.0f;
    apply_vertical_view(view, graph, index);
    graph.redraw();
}

float zoom_ratio_for_entry(int index, const std::string& entry) {
    if (index <= 0) return 1.0f;
    return static_cast<float>(parse_number(entry)) / 100.0f;
}

bool zoom_ratio_for_text(const std::string& text, float& ratio) {
    if (!is_numeric_text(text)) return false;
    const double value = parse_number(text);
    if (value < 100.0 || value > 10000.0) return false;
    ratio = static_cast<float>(value / 100.0);
    return true;
}

}  // namespace trensil
