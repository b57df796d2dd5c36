#include "workspace/graph_display.h"

#include "workspace/nice_range.h"

namespace trensil {

std::string graph_title(int index, bool total_gradient) {
    switch (index) {
        case 0:
            return "Total Magnetic Intensity (black = obseved, red = modelled)";
        case 1:
            return total_gradient ? "Calculated Total Gradient" : "Calculated Vertical Gradient";
        case 2:
            return "Observed Gravity (black = obseved, red = modelled)";
        case 3:
            return total_gradient ? "Calculated Gravity Total Gradient"
                                  : "Calculated Gravity Vertical Gradient";
        case 4:
            return "Modelled Source Section";
        default:
            return "";
    }
}

namespace {
// The value range a response graph is scaled to.
void data_range(const model_record& model, const graph_view_state& view, int index, float& lo,
                float& hi) {
    const profile_block& p = model.profile;
    switch (index) {
        case 0:
            lo = p.mag_min, hi = p.mag_max;
            break;
        case 1:
            lo = view.mag_gradient_min, hi = view.mag_gradient_max;
            break;
        case 2:
            lo = p.grav_min, hi = p.grav_max;
            break;
        default:
            lo = view.grav_gradient_min, hi = view.grav_gradient_max;
            break;
    }
}

void set_axes(model_record& model, graph_view_state& view, graph_control& graph, int index) {
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    nice_range(p.profile_distance(1), p.profile_distance(n), 8, graph.x_tick_step, graph.xaxismin,
               graph.xaxismax);

    float seed_lo = 0.0f, seed_hi = 0.0f;
    if (index == section_graph)
        section_vertical_seed(model, graph, seed_lo, seed_hi);
    else
        data_range(model, view, index, seed_lo, seed_hi);
    float step = 1.0f, lo = seed_lo, hi = seed_hi;
    nice_range(seed_lo, seed_hi, 8, step, lo, hi);
    if (index != section_graph) {
        while (lo > seed_lo && lo - step < lo) lo -= step;
        while (hi < seed_hi && hi + step > hi) hi += step;
    }
    if (!(lo < hi)) {
        lo -= 1.0f;
        hi += 1.0f;
    }
    graph.yaxismin = lo;
    graph.yaxismax = hi;
    graph.y_tick_step = step;

    view.graph_ymin[index] = graph.yaxismin;
    view.graph_ymax[index] = graph.yaxismax;
    view.graph_zoom_level[index] = 1;
    view.graph_yspan[index] = view.graph_ymax[index] - view.graph_ymin[index];
    view.graph_ycentre[index] = (view.graph_ymax[index] + view.graph_ymin[index]) / 2.0f;
}

// The red lines at the ends of the inversion window, where it is narrower than the profile.
void draw_inversion_window(const model_record& model, graph_control& graph) {
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    const int first = p.inversion_first_station;
    const int last = p.inversion_last_station;
    if (first > 1 && first <= n) {
        const float x = p.profile_distance(first);
        graph.draw_line(x, graph.yaxismax, x, graph.yaxismin, colour_blue, 1);
    }
    if (last >= 1 && last < n) {
        const float x = p.profile_distance(last);
        graph.draw_line(x, graph.yaxismax, x, graph.yaxismin, colour_blue, 1);
    }
}
}  // namespace

void display_maginv_model(model_record& model, graph_view_state& view, const graph_array& graphs,
                          const section_options& options, int keep_scale, int index) {
    if (model.profile.num_stations < 1 || index < 0 || index >= graph_count) return;
    graph_control* graph = graphs[static_cast<std::size_t>(index)];
    if (!graph) return;
    graph->clear_data();
    graph->load_data(view.plots[static_cast<std::size_t>(index)]);
    if (keep_scale == 0) set_axes(model, view, *graph, index);
    draw_inversion_window(model, *graph);
    graph->redraw();
    if (index == section_graph) draw_section_objects(model, *graph, options, view.dist_last);
}

}  // namespace trensil
