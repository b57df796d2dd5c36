#include "workspace/graph_layout.h"

namespace trensil {

namespace {
// The smallest height the frame splitter and the section splitter leave a frame or the section.
constexpr float least_frame = 1024.0f;
// How close the splitter inside a frame may come to the frame's top and bottom.
constexpr float least_upper_graph = 625.0f;
constexpr float least_lower_graph = 400.0f;

// The two graphs of a frame keep their shares of its height; the splitter stays on the lower
// graph's top.
void share_frame(const layout_box& frame, layout_box& upper, layout_box& lower, float& splitter) {
    const float a = upper.height + graph_gap;
    const float b = lower.height + frame_bottom_margin;
    upper.top = frame.top;
    if (a + b > 0.0f) {
        upper.height = a / (a + b) * frame.height - graph_gap;
        lower.height = b / (a + b) * frame.height - frame_bottom_margin;
    } else {
        upper.height = lower.height = (frame.height - graph_gap - frame_bottom_margin) / 2.0f;
    }
    lower.top = upper.top + upper.height + graph_gap;
    splitter = lower.top;
}

void split_frame_evenly(const layout_box& frame, layout_box& upper, layout_box& lower,
                        float& splitter) {
    upper.height = lower.height = (frame.height - graph_gap - frame_bottom_margin) / 2.0f;
    share_frame(frame, upper, lower, splitter);
}

float& top_of(graph_layout& layout, splitter_id id) {
    return layout.splitter_top[static_cast<std::size_t>(id)];
}

void centre_frame_splitter(graph_layout& layout) {
    top_of(layout, splitter_id::frames) = layout.grav_frame.top - splitter_thickness / 2.0f;
}

void centre_section_splitter(graph_layout& layout) {
    top_of(layout, splitter_id::section) =
        layout.graph[section_graph].top - splitter_thickness / 2.0f;
}

// Inside one frame: the upper graph grows by dy and the lower one gives it up.
bool drag_inside_frame(graph_layout& layout, const layout_box& frame, int upper, float& top,
                       float dy) {
    const float new_top = top + dy;
    if (new_top < frame.top + least_upper_graph ||
        new_top > frame.top + frame.height - least_lower_graph)
        return false;
    layout_box& a = layout.graph[static_cast<std::size_t>(upper)];
    layout_box& b = layout.graph[static_cast<std::size_t>(upper + 1)];
    a.height += dy;
    b.height -= dy;
    b.top = a.top + a.height + graph_gap;
    top = new_top;
    return true;
}

bool drag_between_frames(graph_layout& layout, float dy) {
    if (!layout.mag_shown || !layout.grav_shown) return false;
    float& top = top_of(layout, splitter_id::frames);
    const float new_top = top + dy;
    if (new_top < layout.mag_frame.top + least_frame ||
        new_top > layout.grav_frame.bottom() - least_frame)
        return false;
    layout.mag_frame.height += dy;
    layout.grav_frame.top += dy;
    layout.grav_frame.height -= dy;
    resize_mag_frame(layout);
    resize_grav_frame(layout);
    resize_section_frame(layout);
    top = new_top;
    return true;
}

bool drag_above_section(graph_layout& layout, float dy) {
    float& top = top_of(layout, splitter_id::section);
    const float new_top = top + dy;
    const layout_box& section = layout.graph[section_graph];
    if (layout.mag_shown && layout.grav_shown) {
        if (new_top < layout.mag_frame.top + 2.0f * least_frame ||
            new_top > section.bottom() - least_frame)
            return false;
        // Both frames take half of the move; one that would fall below its least height keeps
        // that and the other takes the rest.
        const float total = layout.mag_frame.height + layout.grav_frame.height + dy;
        float mag = layout.mag_frame.height + dy / 2.0f;
        float grav = layout.grav_frame.height + dy / 2.0f;
        if (mag < least_frame) {
            mag = least_frame;
            grav = total - least_frame;
        } else if (grav < least_frame) {
            grav = least_frame;
            mag = total - least_frame;
        }
        layout.mag_frame.height = mag;
        layout.grav_frame.top = layout.mag_frame.bottom() - frame_gap;
        layout.grav_frame.height = grav;
        resize_mag_frame(layout);
        resize_grav_frame(layout);
        resize_section_frame(layout);
        top = new_top;
        centre_frame_splitter(layout);
        return true;
    }
    if (!layout.mag_shown && !layout.grav_shown) return false;
    layout_box& frame = layout.mag_shown ? layout.mag_frame : layout.grav_frame;
    if (new_top < frame.top + least_frame || new_top > section.bottom() - least_frame) return false;
    frame.height += dy;
    if (layout.mag_shown)
        resize_mag_frame(layout);
    else
        resize_grav_frame(layout);
    resize_section_frame(layout);
    top = new_top;
    return true;
}
}  // namespace

void resize_mag_frame(graph_layout& layout) {
    share_frame(layout.mag_frame, layout.graph[0], layout.graph[1],
                top_of(layout, splitter_id::mag));
}

void resize_grav_frame(graph_layout& layout) {
    share_frame(layout.grav_frame, layout.graph[2], layout.graph[3],
                top_of(layout, splitter_id::grav));
}

void resize_section_frame(graph_layout& layout) {
    layout_box& section = layout.graph[section_graph];
    if (layout.grav_shown)
        section.top = layout.grav_frame.bottom() - section_overlap;
    else if (layout.mag_shown)
        section.top = layout.mag_frame.bottom() - section_overlap;
    else
        section.top = first_frame_top;
    section.height = layout.area_height - section.top;
}

void share_graph_heights(graph_layout& layout, bool mag_shown, bool grav_shown) {
    layout.mag_shown = mag_shown;
    layout.grav_shown = grav_shown;
    layout.shared = true;
    const float h = layout.area_height - first_frame_top;
    const float section = mag_shown && grav_shown ? h * 2000.0f / 7000.0f : h * 2000.0f / 4500.0f;
    const float frame = section * 2500.0f / 2000.0f;

    // The next frame reaches up into the bottom margin of the one above, as the section does.
    float top = first_frame_top;
    layout.mag_frame = {0.0f, top, layout.area_width, mag_shown ? frame : 0.0f};
    if (mag_shown) top = layout.mag_frame.bottom() - frame_gap;
    layout.grav_frame = {0.0f, top, layout.area_width, grav_shown ? frame : 0.0f};
    for (layout_box& g : layout.graph) {
        g.left = 0.0f;
        g.width = layout.area_width;
    }
    split_frame_evenly(layout.mag_frame, layout.graph[0], layout.graph[1],
                       top_of(layout, splitter_id::mag));
    split_frame_evenly(layout.grav_frame, layout.graph[2], layout.graph[3],
                       top_of(layout, splitter_id::grav));
    resize_section_frame(layout);
    centre_frame_splitter(layout);
    centre_section_splitter(layout);
}

bool drag_splitter(graph_layout& layout, splitter_id id, float dy) {
    if (dy == 0.0f) return false;
    switch (id) {
        case splitter_id::mag:
            return layout.mag_shown && drag_inside_frame(layout, layout.mag_frame, 0,
                                                         top_of(layout, splitter_id::mag), dy);
        case splitter_id::grav:
            return layout.grav_shown && drag_inside_frame(layout, layout.grav_frame, 2,
                                                          top_of(layout, splitter_id::grav), dy);
        case splitter_id::frames:
            return drag_between_frames(layout, dy);
        case splitter_id::section:
            return drag_above_section(layout, dy);
    }
    return false;
}

void scale_graph_layout(graph_layout& layout, float area_width, float area_height) {
    const float old_height = layout.area_height;
    layout.area_width = area_width;
    layout.area_height = area_height;
    if (!layout.shared || !(old_height > 0.0f)) {
        share_graph_heights(layout, layout.mag_shown, layout.grav_shown);
        return;
    }
    const float f = area_height / old_height;
    auto scale = [&](layout_box& box) {
        box.top *= f;
        box.height *= f;
        box.width = area_width;
    };
    scale(layout.mag_frame);
    scale(layout.grav_frame);
    for (layout_box& g : layout.graph) scale(g);
    for (float& top : layout.splitter_top) top *= f;
}

std::array<float, 4> splitter_positions(const graph_layout& layout) {
    const float section = layout.graph[section_graph].height;
    if (!(section > 0.0f)) return {0.0f, 0.0f, 0.0f, 0.0f};
    auto at = [&](splitter_id id) { return layout.splitter_top[static_cast<std::size_t>(id)]; };
    return {at(splitter_id::mag) / section, at(splitter_id::frames) / section,
            at(splitter_id::grav) / section, at(splitter_id::section) / section};
}

}  // namespace trensil
