// The section: the fifth graph of the modelling window, a vertical cut along the profile that
// shows the ground line, the sensor positions, an optional grid and every body as a filled
// outline, at one to one when the window's shape allows.
//
//   float bottom = 0, top = 0;
//   section_vertical_seed(model, graph, bottom, top);   // before nice_range with 8 ticks
//   ... axes, inversion window, redraw ...
//   draw_section_objects(model, graph, options, view.dist_last);   // grid, marks, bodies, redraw
#pragma once

#include <cstdint>
#include <string>

#include "core/model_record.h"
#include "workspace/graph_control.h"

namespace trensil {

// What the section draws besides the model: the selected body, the highlight and label options.
struct section_options {
    std::int32_t current_body = 0;
    bool highlight_on = false;
    bool show_body_label = false;
};

// The vertical range of the section before rounding, from the sensors or the ground, the profile
// length and the graph's shape. `deepest_top` is added below a 100 unit profile only.
void section_vertical_seed(const model_record& model, const graph_control& graph, float& y_bottom,
                           float& y_top);

// Draws the grid, the sensor marks and the bodies with their reference marks and label into the
// graph (whose axes are already set), then redraws it. Rewrites `z_reference` of every body and
// the `display_index` table (entry n: the body drawn as polygon n).
void draw_section_objects(model_record& model, graph_control& graph, const section_options& options,
                          float dist_last);

// The station k with DIST[k] <= d < DIST[k + 1], held to 1 .. num_stations: a binary search of
// the station distances, less 1 when d lies below the station found; the last station for a
// distance at or past it.
int station_at_distance(const profile_block& profile, float d);

}  // namespace trensil
