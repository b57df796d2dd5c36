#include <string>

#include "workspace/modelling_workspace.h"
#include "workspace/pointer_interaction.h"

namespace trensil {

namespace {
const char* splitter_name(splitter_id id) {
    switch (id) {
        case splitter_id::mag:
            return "Image_splitter_mag";
        case splitter_id::grav:
            return "Image_splitter_grav";
        case splitter_id::frames:
            return "Image_splitter_0";
        case splitter_id::section:
            break;
    }
    return "Image_splitter_1";
}

std::string graph_name(int i) {
    return "zngraph_model_" + std::to_string(i);
}

// A box as a child of `frame`.
void place_in(modelling_view& view, const std::string& name, const layout_box& box,
              const layout_box& frame) {
    view.set_geometry(name, box.left - frame.left, box.top - frame.top, box.width, box.height);
}

void redraw_graph(modelling_workspace& ws, int i) {
    if (graph_control* g = ws.graphs[static_cast<std::size_t>(i)]) g->redraw();
}
}  // namespace

void apply_graph_layout(modelling_workspace& ws) {
    graph_layout& layout = ws.pointer.layout;
    modelling_view& view = *ws.view;
    display_guard guard(ws);
    const float w = layout.area_width;
    auto place_frame = [&](const char* frame_name, const layout_box& frame, int upper,
                           splitter_id id) {
        view.set_geometry(frame_name, frame.left, frame.top, frame.width, frame.height);
        place_in(view, graph_name(upper), layout.graph[static_cast<std::size_t>(upper)], frame);
        place_in(view, graph_name(upper + 1), layout.graph[static_cast<std::size_t>(upper + 1)],
                 frame);
        const float top = layout.splitter_top[static_cast<std::size_t>(id)];
        view.set_geometry(splitter_name(id), 0.0f, top - frame.top, w, splitter_thickness);
    };
    place_frame("Frame_mag_profiles", layout.mag_frame, 0, splitter_id::mag);
    place_frame("Frame_grav_profiles", layout.grav_frame, 2, splitter_id::grav);

    // The section frame holds the limit strip above the section graph.
    const layout_box& section = layout.graph[section_graph];
    view.set_geometry("Frame_section", section.left, section.top, section.width, section.height);
    view.set_geometry(graph_name(section_graph), 0.0f, limit_strip_height, section.width,
                      section.height - limit_strip_height);
    view.set_geometry("Frame_plan", section.left, section.top, section.width, section.height);

    for (splitter_id id : {splitter_id::frames, splitter_id::section})
        view.set_geometry(splitter_name(id), 0.0f,
                          layout.splitter_top[static_cast<std::size_t>(id)], w, splitter_thickness);
    view.set_visible(splitter_name(splitter_id::frames), layout.mag_shown && layout.grav_shown);
    view.set_visible(splitter_name(splitter_id::section), layout.mag_shown || layout.grav_shown);
}

void graph_area_resized(modelling_workspace& ws, float width, float height) {
    if (!(width > 0.0f) || !(height > 0.0f)) return;
    scale_graph_layout(ws.pointer.layout, width, height);
    apply_graph_layout(ws);
    update_inversion_limit_display(ws);
}

void share_graph_area(modelling_workspace& ws, bool mag_shown, bool grav_shown) {
    graph_layout& layout = ws.pointer.layout;
    if (layout.shared && layout.mag_shown == mag_shown && layout.grav_shown == grav_shown) return;
    share_graph_heights(layout, mag_shown, grav_shown);
    ws.model.splitter = splitter_positions(layout);
    apply_graph_layout(ws);
}

void splitter_down(modelling_workspace& ws, splitter_id, float y) {
    ws.pointer.layout.splitter_dragging = true;
    ws.pointer.layout.splitter_grab_y = y;
}

void splitter_move(modelling_workspace& ws, splitter_id id, float y) {
    graph_layout& layout = ws.pointer.layout;
    if (ws.updating_display || !layout.splitter_dragging) return;
    const float dy = y - layout.splitter_grab_y;
    if (dy == 0.0f) return;
    if (!drag_splitter(layout, id, dy)) return;
    apply_graph_layout(ws);
    switch (id) {
        case splitter_id::mag:
            redraw_graph(ws, 0), redraw_graph(ws, 1);
            break;
        case splitter_id::grav:
            redraw_graph(ws, 2), redraw_graph(ws, 3);
            break;
        default:
            for (int i = 0; i < graph_count; ++i) redraw_graph(ws, i);
            update_inversion_limit_display(ws);
            break;
    }
}

void splitter_up(modelling_workspace& ws, splitter_id) {
    graph_layout& layout = ws.pointer.layout;
    layout.splitter_dragging = false;
    ws.model.splitter = splitter_positions(layout);
    ws.ui.process_events();
}

}  // namespace trensil
