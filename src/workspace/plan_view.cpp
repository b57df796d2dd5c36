#include "workspace/plan_view.h"

#include <array>

#include "exports/body_geometry.h"
#include "workspace/nice_range.h"

namespace trensil {

void build_plan_plot(const model_record& model, plot_data& plot) {
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    plot.resize(n, 1);
    for (int i = 1; i <= n; ++i) {
        const auto row = static_cast<std::size_t>(i - 1);
        plot.x[row] = p.location(easting_row, i);
        plot.y[0][row] = p.location(northing_row, i);
    }
}

void display_plan_view(model_record& model, graph_control& graph, const section_options& options) {
    graph.clear_data();
    graph.clear_objects();
    const profile_block& p = model.profile;
    if (p.num_stations < 1) return;

    plot_data plot;
    build_plan_plot(model, plot);
    graph.charttype = 1;
    graph.markersize = 25;
    graph.equal_scales = true;
    graph.load_data(plot);

    // Square axes: the smaller of the two ranges is widened to the larger about its centre.
    const double east_range = p.xmax - p.xmin;
    const double north_range = p.ymax - p.ymin;
    float a = static_cast<float>(p.xmin), b = static_cast<float>(p.xmax);
    if (north_range > east_range) {
        const double centre = (p.xmin + p.xmax) / 2.0;
        a = static_cast<float>(centre - north_range / 2.0);
        b = static_cast<float>(centre + north_range / 2.0);
    }
    nice_range(a, b, 8, graph.x_tick_step, graph.xaxismin, graph.xaxismax);
    a = static_cast<float>(p.ymin);
    b = static_cast<float>(p.ymax);
    if (east_range > north_range) {
        const double centre = (p.ymin + p.ymax) / 2.0;
        a = static_cast<float>(centre - east_range / 2.0);
        b = static_cast<float>(centre + east_range / 2.0);
    }
    nice_range(a, b, 8, graph.y_tick_step, graph.yaxismin, graph.yaxismax);
    graph.redraw();

    if (model.num_bodies < 1) return;
    const clip_rectangle clip{graph.xaxismin, graph.xaxismax, graph.yaxismin, graph.yaxismax};
    int drawn = 0;
    std::array<float, 5> plan_x{}, plan_y{};
    for (int i = 1; i <= model.num_bodies; ++i) {
        const body_record& b = model.body(i);
        const bool highlighted = i == options.current_body && options.highlight_on;
        const auto east = static_cast<float>(b.east);
        const auto north = static_cast<float>(b.north);
        const int count = body_plan_outline(model, clip, i, plan_x, plan_y);
        if (count > 0) {
            std::int32_t fill = highlighted ? colour_red : b.colour;
            const std::int32_t line = highlighted ? colour_red : colour_black;
            if (fill == colour_white) fill = no_fill;
            graph.draw_polygon(5, plan_x.data(), plan_y.data(), line, fill, 1);
            graph.draw_marker(east, north, 3, colour_black);
            ++drawn;
            model.body(drawn).display_index = i;
        } else {
            graph.draw_marker(east, north, 3, highlighted ? colour_red : colour_green);
        }
    }
    graph.redraw();
}

}  // namespace trensil
