#include "workspace/pointer_interaction.h"

#include "support/number_format.h"
#include "support/text_tokens.h"
#include "workspace/body_command_support.h"
#include "workspace/body_list.h"
#include "workspace/body_sliders.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

namespace {
// Status bar panels.
constexpr int panel_name = 1;
constexpr int panel_east = 2;
constexpr int panel_north = 3;
constexpr int panel_distance = 4;
constexpr int panel_value = 5;

// A number read back from a status panel: 0 unless the whole text is numeric.
float status_number(const modelling_view& view, int panel) {
    const std::string text = view.status_text(panel);
    return is_numeric_text(text) ? static_cast<float>(parse_number(text)) : 0.0f;
}

// The body drawn as polygon n of the graph last drawn, if it may be selected.
void pick_polygon(modelling_workspace& ws, int n) {
    if (ws.updating_display) return;
    model_record& model = ws.model;
    if (n < 1 || n > model.bodies.hi()) return;
    const int b = model.body(n).display_index;
    // HScroll_body takes the body's number, and its change selects the body.
    if (b > 0 && b <= model.num_bodies && b != ws.section.current_body) {
        {
            display_guard guard(ws);
            ws.view->set_scroll("HScroll_body", b, 1, model.num_bodies);
        }
        hscroll_body_changed(ws, b);
    }
}
}  // namespace

void pointer_move_on_model(modelling_workspace& ws, int index, bool outside, double x, double y) {
    static const char* names[] = {"Residual Mag Data", "Vertical Mag Gradient",
                                  "Residual Grav Data", "Vertical Grav Gradient"};
    modelling_view& view = *ws.view;
    if (index >= 0 && index < section_graph) {
        view.set_status(panel_name, names[index]);
    } else if (index == section_graph && ws.graphs[section_graph]) {
        // The section's vertical stretch: its shape over the ratio of its axis spans. Axes that
        // are not in order leave the panel as it was.
        const graph_control& g = *ws.graphs[section_graph];
        const float x_span = g.xaxismax - g.xaxismin;
        if (g.yaxismin < g.yaxismax && x_span > 0.0f && g.width() > 0) {
            const double shape = static_cast<double>(g.height()) / g.width();
            const double stretch = shape / ((g.yaxismax - g.yaxismin) / x_span);
            view.set_status(panel_name, "Model (Vertical stretch " + format_fixed(stretch, 2));
        }
    }
    if (outside) {
        view.set_status(panel_distance, "");
        view.set_status(panel_value, "");
        return;
    }
    view.set_status(panel_distance, format_fixed(x, 2));
    view.set_status(panel_value, format_fixed(y, 4));
    const profile_block& p = ws.model.profile;
    if (p.num_stations < 1) return;
    const int k = station_at_distance(p, static_cast<float>(x));
    view.set_status(panel_east, format_fixed(p.location(easting_row, k), 1));
    view.set_status(panel_north, format_fixed(p.location(northing_row, k), 1));
}

void pointer_move_on_plan(modelling_workspace& ws, bool outside, double x, double y) {
    modelling_view& view = *ws.view;
    view.set_status(panel_name, "Plan View");
    if (outside) {
        for (int panel = panel_east; panel <= panel_value; ++panel) view.set_status(panel, "");
        return;
    }
    view.set_status(panel_east, format_fixed(x, 1));
    view.set_status(panel_north, format_fixed(y, 1));
    view.set_status(panel_distance, format_fixed(x, 2));
    view.set_status(panel_value, format_fixed(y, 2));
}

void object_click_on_model(modelling_workspace& ws, int index, int n) {
    if (index == section_graph) pick_polygon(ws, n);
}

void object_click_on_plan(modelling_workspace& ws, int n) {
    pick_polygon(ws, n);
}

void double_click_on_model(modelling_workspace& ws, int index) {
    if (ws.updating_display || index != section_graph || ws.model.profile.num_stations < 1) return;
    // The body goes where the readout points, at the readout's rounding; East and North follow
    // from the distance.
    const float distance = status_number(*ws.view, panel_distance);
    const float top = status_number(*ws.view, panel_value);
    MAGINV_add_body(ws, add_new, distance, top);
}

}  // namespace trensil
