// How the graph area of the modelling window shares its height: the magnetic frame (graphs 0 and
// 1), the gravity frame (graphs 2 and 3) and the section (graph 4) under them, and the four
// splitters that move the boundaries between them. All values are the window's layout units
// (twips), with tops measured from the top of the graph area; the graphs span its width.
//
//   graph_layout layout;
//   layout.area_width = 18000; layout.area_height = 12000;
//   share_graph_heights(layout, true, false);            // magnetics only
//   drag_splitter(layout, splitter_id::section, -300);   // the section grows by 300
//   scale_graph_layout(layout, 18000, 9000);             // the window became shorter
#pragma once

#include <array>
#include <cstdint>

#include "workspace/graph_view.h"

namespace trensil {

struct layout_box {
    float left = 0.0f;
    float top = 0.0f;
    float width = 0.0f;
    float height = 0.0f;

    float bottom() const { return top + height; }
};

// The splitters: between graphs 0 and 1 (`Image_splitter_mag`), between graphs 2 and 3
// (`Image_splitter_grav`), between the two frames (`Image_splitter(0)`), and between the frames
// and the section (`Image_splitter(1)`).
enum class splitter_id : int { mag = 0, grav = 1, frames = 2, section = 3 };
inline constexpr int splitter_count = 4;

// Gaps of the layout: between two graphs of a frame, below the lower graph of a frame, by which
// the section reaches up into the lowest frame's bottom margin, above the first frame and
// between two frames.
inline constexpr float graph_gap = 15.0f;
inline constexpr float frame_bottom_margin = 90.0f;
inline constexpr float section_overlap = 45.0f;
inline constexpr float first_frame_top = 60.0f;
inline constexpr float frame_gap = 45.0f;
// The thickness of a splitter handle.
inline constexpr float splitter_thickness = 90.0f;

struct graph_layout {
    float area_width = 0.0f;
    float area_height = 0.0f;
    bool mag_shown = true;
    bool grav_shown = false;
    // The heights have been shared for the frames shown (cleared when the set changes).
    bool shared = false;

    layout_box mag_frame;
    layout_box grav_frame;
    std::array<layout_box, graph_count> graph{};
    // Top of each splitter handle, by splitter_id.
    std::array<float, splitter_count> splitter_top{};

    bool splitter_dragging = false;
    float splitter_grab_y = 0.0f;
};

// The first sharing of the height among the frames shown, from the section's bottom (the area's
// bottom): the section takes 2000 of 7000 parts with both frames, 2000 of 4500 with one; each
// frame a quarter more than the section; the graphs of a frame share it evenly. The splitters
// follow their boundaries.
void share_graph_heights(graph_layout& layout, bool mag_shown, bool grav_shown);

// A new height for a frame: its two graphs keep their shares of it (the upper one with its gap
// below, the lower one with the frame's bottom margin).
void resize_mag_frame(graph_layout& layout);
void resize_grav_frame(graph_layout& layout);
// The section below the lowest frame shown, reaching up into that frame's bottom margin, down
// to the area's bottom.
void resize_section_frame(graph_layout& layout);

// One step of a splitter's drag by `dy`. A new top outside the splitter's limits leaves the
// layout as it was and returns false.
bool drag_splitter(graph_layout& layout, splitter_id id, float dy);

// A new size of the area: every top and height scaled by the same factor, as the window's layout
// is replayed at a new size.
void scale_graph_layout(graph_layout& layout, float area_width, float area_height);

// The positions the model file keeps: each splitter's top over the section's height, in the
// order magnetic, frames, gravity, section.
std::array<float, 4> splitter_positions(const graph_layout& layout);

}  // namespace trensil
