// What the pointer does on the modelling window: the readout in the status bar, picking a body by
// a click on its outline, adding a body by a double click on the section, dragging the two
// inversion limit markers above the section, and dragging the splitters that share the height
// among the graphs. Bodies are not dragged on the graphs: their shape is edited in the table and
// with the sliders. The graphs give their pointer positions in world units.
//
//   pointer_move_on_model(ws, 4, false, 1250.0, -80.0);   // status panels 1 to 5
//   object_click_on_model(ws, 4, 2);                      // polygon 2: select its body
//   double_click_on_model(ws, 4);                         // a new body where the readout says
//
//   limit_marker_down(ws, 0, 60.0f);                      // marker x in its own units
//   limit_marker_move(ws, 0, 360.0f);                     // 300 to the right, if allowed
//   limit_marker_up(ws, 0);
#pragma once

#include <array>

#include "workspace/graph_layout.h"

namespace trensil {

struct modelling_workspace;
struct model_record;
struct graph_view_state;

// The track allowance at the end of the marker strip, and the least gap between the markers.
inline constexpr float limit_track_allowance = 75.0f;
inline constexpr float limit_marker_gap = 20.0f;
// The strip's height above the section graph.
inline constexpr float limit_strip_height = 180.0f;

// `Picture_inversion_limits` and its two markers `Image_inversion_limit(0)` (first station of
// the inversion window) and `Image_inversion_limit(1)` (last station). The strip lies over the
// section's plot, so that a marker's centre stands over the window's line on the graphs; the
// markers' lefts are measured inside the strip. Layout units (twips).
struct limit_markers {
    float strip_left = 0.0f;  // from the section graph's left
    float strip_width = 0.0f;
    float marker_width = 120.0f;
    std::array<float, 2> left{};
    std::array<bool, 2> shown{};

    bool limit_dragging = false;
    float limit_grab_x = 0.0f;
};

struct pointer_state {
    graph_layout layout;
    limit_markers limits;
    // Layout units in one drawing unit of the graphs.
    float twips_per_pixel = 15.0f;
};

// --- Status bar readouts ----------------------------------------------------------------------

// Pointer over graph `index` at world (x, y); `outside` when it is not over the plot.
void pointer_move_on_model(modelling_workspace& ws, int index, bool outside, double x, double y);
void pointer_move_on_plan(modelling_workspace& ws, bool outside, double x, double y);

// --- Picking and adding -----------------------------------------------------------------------

// A click on polygon `n` (numbered in order of drawing): the section and the plan select the
// body drawn as that polygon; the response graphs do nothing.
void object_click_on_model(modelling_workspace& ws, int index, int n);
void object_click_on_plan(modelling_workspace& ws, int n);
// A double click on the section adds a new body at the distance and height the readout shows
// (a non-numeric readout counts as 0).
void double_click_on_model(modelling_workspace& ws, int index);

// --- Inversion limit markers ------------------------------------------------------------------

// Marker lefts from the inversion window and the horizontal view, with the strip of `limits`;
// a marker whose station lies outside the view is hidden. Without stations nothing changes.
void place_limit_markers(const model_record& model, const graph_view_state& view,
                         limit_markers& limits);
// Moves marker `i` to `new_left` if it stays on its track and clear of the other marker, and
// sets the inversion window's end to the station under its centre. Returns false when refused.
bool move_limit_marker(model_record& model, const graph_view_state& view, limit_markers& limits,
                       int i, float new_left);

// Lays the strip over the section's plot and places the markers (through the view).
void update_inversion_limit_display(modelling_workspace& ws);
// Button down, move and up on marker `i`, with x in the marker's own layout units.
void limit_marker_down(modelling_workspace& ws, int i, float x);
void limit_marker_move(modelling_workspace& ws, int i, float x);
void limit_marker_up(modelling_workspace& ws, int i);

// --- Splitters and the graph area -------------------------------------------------------------

// Button down, move and up on a splitter, with y in the splitter's own layout units.
void splitter_down(modelling_workspace& ws, splitter_id id, float y);
void splitter_move(modelling_workspace& ws, splitter_id id, float y);
void splitter_up(modelling_workspace& ws, splitter_id id);
// The graph area has a new size: the layout is replayed at that size and applied.
void graph_area_resized(modelling_workspace& ws, float width, float height);
// The frames shown follow the data: the height is shared anew when that set changes.
void share_graph_area(modelling_workspace& ws, bool mag_shown, bool grav_shown);
// Places the frames, graphs, splitters, limit strip and plan through the view.
void apply_graph_layout(modelling_workspace& ws);

}  // namespace trensil
