#include <string>

#include "response/channel_setup.h"
#include "response/response_driver.h"
#include "workspace/graph_display.h"
#include "workspace/modelling_workspace.h"
#include "workspace/plan_view.h"

namespace trensil {

namespace {
void show_pan_bar(modelling_workspace& ws) {
    const graph_view_state& v = ws.graph_view;
    display_guard guard(ws);
    ws.view->set_scroll("HScroll_pan", v.pan_value, v.pan_min, v.pan_max);
}

void reset_vertical_bar(modelling_workspace& ws, const std::string& name) {
    display_guard guard(ws);
    ws.view->set_scroll(name, 0, -1, 1);
}

void draw_all(modelling_workspace& ws, int keep_scale) {
    for (int i = 0; i < graph_count; ++i)
        display_maginv_model(ws.model, ws.graph_view, ws.graphs, ws.section, keep_scale, i);
}

void apply_zoom(modelling_workspace& ws) {
    calculate_zoom_settings(ws.model, ws.graph_view);
    update_graph_display(ws.model, ws.graph_view, ws.graphs);
    show_pan_bar(ws);
    update_inversion_limit_display(ws);
}
}  // namespace

void display_model(modelling_workspace& ws, int keep_scale) {
    model_record& model = ws.model;
    if (model.profile.num_stations < 1) return;
    ws.response.ui = &ws.ui;
    calculate_display_channels(model, ws.response);
    // The first display of new data sets the axes, whatever the caller asked.
    const bool fresh = ws.graph_view.graph_ranges_valid == 0;
    setup_graph_data_ranges(model, ws.graph_view);
    load_computed_series(model, ws.response, ws.graph_view);
    if (ws.plan_shown) {
        if (ws.plan) display_plan_view(model, *ws.plan, ws.section);
        return;
    }
    draw_all(ws, fresh ? 0 : keep_scale);
    if (fresh || keep_scale == 0) {
        update_graph_display(model, ws.graph_view, ws.graphs);
        show_pan_bar(ws);
    }
    update_inversion_limit_display(ws);
}

void update_section_or_plan_view(modelling_workspace& ws, int mode) {
    modelling_view& view = *ws.view;
    if (mode == 0) {
        view.set_enabled("menu_display_axes", true);
        clear_body_results(ws.model);
        ws.plan_shown = false;
        view.set_visible("Frame_plan", false);
        view.set_visible("Frame_section", true);
        view.set_visible("Frame_base_levels", true);
        display_model(ws, 1);
        view.set_text("Command_show_section_or_plan", "Show Plan View");
    } else {
        view.set_enabled("menu_display_axes", false);
        view.set_visible("Frame_base_levels", false);
        view.set_visible("Frame_section", false);
        view.set_visible("Frame_plan", true);
        ws.plan_shown = true;
        if (ws.plan) display_plan_view(ws.model, *ws.plan, ws.section);
        view.set_text("Command_show_section_or_plan", "Show Section View");
    }
}

void command_show_section_or_plan(modelling_workspace& ws) {
    modelling_view& view = *ws.view;
    const bool section_ticked = view.checked("menu_view_mode_0");
    {
        display_guard guard(ws);
        view.set_checked("menu_view_mode_0", !section_ticked);
        view.set_checked("menu_view_mode_1", section_ticked);
    }
    update_section_or_plan_view(ws, section_ticked ? 1 : 0);
}

void menu_view_mode(modelling_workspace& ws, int item) {
    if (ws.updating_display) return;
    modelling_view& view = *ws.view;
    const std::string name = "menu_view_mode_" + std::to_string(item);
    const std::string other = "menu_view_mode_" + std::to_string(1 - item);
    // The item's tick was already toggled by the click when the event comes here: the other
    // item's tick tells whether anything changes.
    if (!view.checked(other)) {
        display_guard guard(ws);
        view.set_checked(name, true);
        return;
    }
    {
        display_guard guard(ws);
        view.set_checked(name, true);
        view.set_checked(other, false);
    }
    update_section_or_plan_view(ws, item);
}

void menu_display_axes(modelling_workspace& ws) {
    if (ws.updating_display) return;
    modelling_view& view = *ws.view;
    const bool on = view.checked("menu_display_axes");
    ws.model.display_axes = on ? 1 : 0;
    for (graph_control* graph : ws.graphs)
        if (graph) graph->set_display_axes(on);
    update_inversion_limit_display(ws);
    draw_all(ws, 1);
}

void menu_highlight_on(modelling_workspace& ws) {
    if (ws.updating_display) return;
    display_guard guard(ws);
    ws.section.highlight_on = ws.view->checked("menu_highlight_on");
    if (ws.plan_shown) {
        if (ws.plan) display_plan_view(ws.model, *ws.plan, ws.section);
    } else {
        display_maginv_model(ws.model, ws.graph_view, ws.graphs, ws.section, 1, section_graph);
    }
}

void check_show_body_label(modelling_workspace& ws) {
    if (ws.updating_display) return;
    ws.section.show_body_label = ws.view->checked("Check_show_body_label");
    ws.model.show_body_label = ws.section.show_body_label ? 1 : 0;
    display_maginv_model(ws.model, ws.graph_view, ws.graphs, ws.section, 1, section_graph);
}

void check_display_total_gradient(modelling_workspace& ws) {
    if (ws.updating_display) return;
    const bool total = ws.view->checked("Check_display_total_gradient");
    for (int i : {1, 3})
        if (ws.graphs[static_cast<std::size_t>(i)])
            ws.graphs[static_cast<std::size_t>(i)]->title = graph_title(i, total);
    set_up_derived_channels(ws.model, ws.response, total);
    ws.model_changed = true;
    ws.view->set_enabled("Command_save_qvx_model", true);
    ws.model.channel_valid[1] = 0;
    ws.model.channel_valid[4] = 0;
    clear_body_results(ws.model);
    ws.graph_view.graph_ranges_valid = 0;
    display_model(ws, 1);
}

void check_maintain_aspect_ratio(modelling_workspace& ws) {
    if (ws.updating_display) return;
    const bool on = ws.view->checked("Check_maintain_aspect_ratio");
    ws.model.maintain_aspect_ratio = on ? 1 : 0;
    ws.view->set_enabled("VScroll_zoom_4", !on);
    reset_vertical_bar(ws, "VScroll_zoom_4");
    if (on) update_graph_display(ws.model, ws.graph_view, ws.graphs);
}

void command_reset_graph_scale(modelling_workspace& ws) {
    graph_view_state& v = ws.graph_view;
    setup_graph_data_ranges(ws.model, v);
    v.zoom_ratio = 1.0f;
    for (int i = 1; i < graph_count; ++i) v.graph_zoom_level[static_cast<std::size_t>(i)] = 0;
    display_model(ws, 0);
    for (std::size_t i = 0; i < graph_count; ++i) {
        v.graph_yspan[i] = v.graph_ymax[i] - v.graph_ymin[i];
        v.graph_ycentre[i] = (v.graph_ymax[i] + v.graph_ymin[i]) / 2.0f;
    }
    update_graph_display(ws.model, v, ws.graphs);
    update_inversion_limit_display(ws);
    for (int i = 0; i < graph_count; ++i)
        reset_vertical_bar(ws, "VScroll_zoom_" + std::to_string(i));
    {
        display_guard guard(ws);
        ws.view->select_item("Combo_zoom", 0);
    }
}

void combo_zoom_selected(modelling_workspace& ws, int index) {
    if (ws.updating_display) return;
    static const char* entries[] = {"100%", "125%", "150%", "200%", "300%",
                                    "400%", "600%", "800%", "1000%"};
    const std::string entry = index >= 0 && index < zoom_step_count ? entries[index] : "";
    display_guard guard(ws);
    ws.graph_view.zoom_ratio = zoom_ratio_for_entry(index, entry);
    apply_zoom(ws);
}

void combo_zoom_typed(modelling_workspace& ws, const std::string& text) {
    if (ws.updating_display) return;
    float ratio = 1.0f;
    if (!zoom_ratio_for_text(text, ratio)) return;
    display_guard guard(ws);
    ws.graph_view.zoom_ratio = ratio;
    apply_zoom(ws);
}

void hscroll_pan_changed(modelling_workspace& ws, int value) {
    if (ws.updating_display) return;
    display_guard guard(ws);
    ws.graph_view.pan_position = value;
    apply_zoom(ws);
}

void vscroll_zoom_changed(modelling_workspace& ws, int index, int value) {
    if (ws.updating_display || value == 0 || index < 0 || index >= graph_count) return;
    graph_control* graph = ws.graphs[static_cast<std::size_t>(index)];
    if (graph) zoom_graph_vertically(ws.graph_view, *graph, index, value > 0);
    reset_vertical_bar(ws, "VScroll_zoom_" + std::to_string(index));
}

void vscroll_pan_changed(modelling_workspace& ws, int index, int value) {
    if (ws.updating_display || value == 0 || index < 0 || index >= graph_count) return;
    graph_control* graph = ws.graphs[static_cast<std::size_t>(index)];
    if (graph) pan_graph_vertically(ws.graph_view, *graph, index, value == 1);
    reset_vertical_bar(ws, "VScroll_pan_" + std::to_string(index));
}

void timer_resize(modelling_workspace& ws) {
    if (ws.updating_display) return;
    display_guard guard(ws);
    ws.model.display_width = ws.view->form_width();
    for (graph_control* graph : ws.graphs)
        if (graph) graph->redraw();
    if (ws.plan) ws.plan->redraw();
}

}  // namespace trensil
