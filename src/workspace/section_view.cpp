#include "workspace/section_view.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/body_catalogue.h"
#include "response/strike_frame.h"
#include "support/number_format.h"
#include "support/text_measure.h"

namespace trensil {

namespace {
constexpr float degrees_to_radian_factor = 0.017453292f;
constexpr int circle_steps = 32;
// More grid lines than this in one direction would hide the section; they are not drawn.
constexpr int max_grid_lines = 10000;

// Label side of a reference point: 0 off the visible axis, -1 right of the centre, +1 left.
int label_side(const graph_control& graph, float d) {
    if (graph.xaxismin > d || graph.xaxismax < d) return 0;
    return (graph.xaxismin + graph.xaxismax) / 2.0f < d ? -1 : 1;
}

// Depth below the ground (or `topo`) of a body's top at distance d.
float depth_below_surface(const model_record& model, float d, float t) {
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    if (model.dtm <= 0) return model.topo - t;
    int k = station_at_distance(p, d);
    if (k > n - 1) k = n - 1;
    if (k < 1) return static_cast<float>(p.location(ground_row, 1)) - t;
    const float dk = p.profile_distance(k);
    const float f = (d - dk) / (p.profile_distance(k + 1) - dk);
    const float g0 = static_cast<float>(p.location(ground_row, k));
    const float g1 = static_cast<float>(p.location(ground_row, k + 1));
    return (g0 + f * (g1 - g0)) - t;
}

void draw_grid(const model_record& model, graph_control& graph) {
    const float gx = model.profile_grid_spacing;
    const float gy = model.depth_grid_spacing;
    if (gx <= 0.0f && gy <= 0.0f) return;
    if (gx > 0.0f) {
        float x = gx * std::nearbyint(graph.xaxismin / gx);
        for (int lines = 0; x <= graph.xaxismax && lines < max_grid_lines; ++lines, x += gx)
            graph.draw_line(x, graph.yaxismin, x, graph.yaxismax, colour_black, 1);
    }
    if (gy > 0.0f) {
        float y = gy * std::nearbyint(graph.yaxismin / gy);
        for (int lines = 0; y <= graph.yaxismax && lines < max_grid_lines; ++lines, y += gy)
            graph.draw_line(graph.xaxismin, y, graph.xaxismax, y, colour_black, 1);
    }
}

void draw_sensor_marks(const model_record& model, graph_control& graph) {
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    int stride = 1;
    while (n / stride > 128) ++stride;
    graph.markersize = 10;
    for (int i = 1; i <= n; i += stride)
        graph.draw_marker(p.profile_distance(i), static_cast<float>(p.location(sensor_row, i)), 3,
                          colour_blue);
    graph.markersize = 15;
}
}  // namespace

int station_at_distance(const profile_block& profile, float d) {
    const int n = profile.num_stations;
    if (n < 1) return 1;
    // The search stops one short of the last station for a distance at or past it: the pointer
    // there stands over the last station.
    if (d >= profile.profile_distance(n)) return n;
    int k = search_sorted(profile.profile_distance, 1, n, d);
    if (d < profile.profile_distance(k)) --k;
    return std::clamp(k, 1, n);
}

void section_vertical_seed(const model_record& model, const graph_control& graph, float& y_bottom,
                           float& y_top) {
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    float deepest_top = 0.0f;
    for (int i = 1; i <= model.num_bodies; ++i)
        deepest_top =
            i == 1 ? model.body(i).top.value : std::min(deepest_top, model.body(i).top.value);

    if (model.zpos > 0) {
        y_top = static_cast<float>(p.location(sensor_row, 1));
        for (int i = 2; i <= n; ++i)
            y_top = std::max(y_top, static_cast<float>(p.location(sensor_row, i)));
    } else {
        y_top = p.dtm_max + model.sensor_offset;
    }
    // Whatever the sensors say, the top is the profile's stored maximum, or 0 below sea level.
    y_top = y_top < 0.0f ? 0.0f : p.zmax;

    const float length = n >= 1 ? p.profile_distance(n) : 0.0f;
    const float h = static_cast<float>(graph.height());
    const float w = static_cast<float>(std::max(graph.width(), 1));
    if (length >= 100.0f) {
        y_top += 2.5f;
        y_bottom = y_top - h * length / w;
    } else {
        y_top += length >= 10.0f ? 0.25f : 0.1f;
        y_bottom = y_top - h * length / w + deepest_top;
    }
}

void draw_section_objects(model_record& model, graph_control& graph, const section_options& options,
                          float dist_last) {
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    draw_grid(model, graph);
    draw_sensor_marks(model, graph);

    std::array<float, 5> section_x{}, section_y{};
    std::array<float, 67> circle_x{}, circle_y{};
    int drawn = 0;
    float sina = 0.0f, cosa = 0.0f;
    float label_x = 0.0f, label_y = 0.0f;
    int side = 0;
    int line_width = 0;  // what the last sheet used; cylinders draw with it
    std::string burial;
    float u = 0.0f;

    for (int i = 1; i <= model.num_bodies; ++i) {
        body_record& b = model.body(i);
        bool outline = true;
        if (b.type != sphere_body) {
            const float angle = b.strike.value * degrees_to_radian_factor - p.profile_azimuth;
            sina = std::sin(angle);
            cosa = std::cos(angle);
            // A body along the profile has no outline, and keeps the label point before it.
            if (std::fabs(sina) < 0.01f) outline = false;
        }
        const float d = b.distance.value;
        const float t = b.top.value;
        const bool labelled = options.show_body_label && i == options.current_body;
        if (outline) {
            label_x = d;
            label_y = t;
            side = label_side(graph, d);
            if (n > 0) {
                b.z_reference = depth_below_surface(model, d, t);
                if (b.type == cylinder_pipe) b.z_reference -= b.width.value;
            }
        }
        const bool highlighted = i == options.current_body && options.highlight_on;
        std::int32_t fill = highlighted ? colour_red : b.colour;
        std::int32_t line = highlighted ? colour_red : colour_black;
        if (fill == colour_white) fill = no_fill;

        if (outline && b.type >= thin_sheet && b.type <= sloping_step) {
            const float extent =
                b.depth_extent.value != 0.0f ? b.depth_extent.value : t - graph.yaxismin;
            const float bottom = t - extent;
            const float dip = b.dip.value;
            const bool vertical = std::fabs(dip - 90.0f) < 0.1f;
            const float tand = std::tan(dip * degrees_to_radian_factor);
            float shift = 0.0f;
            if (!vertical) shift = std::fabs(tand) < 0.01f ? extent * 100.0f : extent / tand;
            const float aw = b.width.value / sina;
            const float xb = d + shift / sina;

            float x2, y2 = t, x3, y3 = bottom;
            const float slope = b.slope.value * degrees_to_radian_factor;
            if (b.type == edge_body || b.type == sloping_step) {
                x2 = x3 = sina > 0.0f ? dist_last : 0.0f;
            } else if (std::fabs(b.slope.value) <= 0.1f) {
                x2 = d + aw;
                x3 = xb + aw;
            } else {
                const float run = vertical ? aw : aw / (1.0f - std::tan(-slope) / tand);
                const float rise = run * std::tan(slope);
                x2 = d + run;
                y2 = t + rise;
                x3 = xb + run;
                y3 = bottom + rise;
            }
            section_x = {d, x2, x3, xb, d};
            section_y = {t, y2, y3, bottom, t};

            // A profile beyond the end of a strike-limited body sees it displaced along strike.
            float s = 0.0f, sz = 0.0f;
            const float length = b.length.value;
            const float offset = b.offset.value;
            if (length > 0.0f && length / 2.0f < std::fabs(offset)) {
                s = offset < 0.0f ? offset + length / 2.0f : offset - length / 2.0f;
                sz = -std::sin(b.plunge.value * degrees_to_radian_factor) * s;
                s = s * cosa;
            }
            for (int c = 0; c < 4; ++c) {
                section_x[static_cast<std::size_t>(c)] += s;
                section_y[static_cast<std::size_t>(c)] += sz;
            }
            line_width = 1;
            if (s != 0.0f) {
                line = s > 0.0f ? colour_blue : colour_green;
                line_width = 4;
                section_x[0] -= 2.0f;
                section_x[3] -= 2.0f;
            }
            section_x[4] = section_x[0];
            section_y[4] = section_y[0];
            graph.draw_polygon(5, section_x.data(), section_y.data(), line, fill, line_width);
            ++drawn;
            model.body(drawn).display_index = i;
        } else if (outline && b.type == cylinder_pipe) {
            const float step = static_cast<float>(2.0 * pi_value / circle_steps);
            const float r = b.width.value / 2.0f;
            const float stretch = 1.0f / std::fabs(sina);
            if (labelled) {
                burial = n > 0 ? "Burial depth: " + format_fixed(b.z_reference, 2) : "";
                u = graph.font_height() / graph.y_scale();
                const std::string& longest = burial.size() > b.name.size() ? burial : b.name;
                side = label_side(graph, d);
                if (side == -1) label_x = d - 2.0f * r - (text_width(longest, 1.0f) + 2.0f) * u;
                if (side == 1) label_x = d + r + u;
            } else {
                side = 0;
            }
            int count = 0;
            auto put = [&](float radius, float a) {
                circle_x[static_cast<std::size_t>(count)] = d + radius * std::cos(a) * stretch;
                circle_y[static_cast<std::size_t>(count)] = t + radius * std::sin(a);
                ++count;
            };
            if (b.shell_thickness > 0.0f) {
                put(r, -step / 10.0f);
                const float inner = r - b.shell_thickness;
                put(inner, -step / 10.0f);
                for (int k = 1; k <= circle_steps; ++k) put(inner, -step * static_cast<float>(k));
            } else {
                put(r, 0.0f);
            }
            for (int k = 0; k <= circle_steps; ++k) put(r, step * static_cast<float>(k));
            graph.draw_polygon(count, circle_x.data(), circle_y.data(), line, fill, line_width);
            ++drawn;
            model.body(drawn).display_index = i;
        }

        graph.draw_marker(d, t, 3, colour_black);
        if (labelled && side != 0) {
            graph.draw_text(0, label_x, label_y, b.name);
            if (!burial.empty()) graph.draw_text(0, label_x, label_y - 2.0f * u, burial);
        }
    }
    graph.redraw();
}

}  // namespace trensil
