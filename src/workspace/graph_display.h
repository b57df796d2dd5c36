// Drawing one graph of the modelling window: its series, its axes (unless kept), the inversion
// window lines, and for the section the model itself.
//
//   display_maginv_model(model, view, graphs, options, 0, 4);   // the section, new axes
//   display_maginv_model(model, view, graphs, options, 1, 0);   // magnetics, axes kept
#pragma once

#include <string>

#include "workspace/graph_view.h"
#include "workspace/section_view.h"

namespace trensil {

// Draws graph `index` (0 to 4). `keep_scale` non-zero leaves the axes as they are; otherwise the
// distance axis and the value axis are rounded with 8 ticks and the graph's vertical view is
// taken from them. Does nothing while there are no stations.
void display_maginv_model(model_record& model, graph_view_state& view, const graph_array& graphs,
                          const section_options& options, int keep_scale, int index);

// The title of graph `index`; graphs 1 and 3 name the total gradient while it is displayed.
std::string graph_title(int index, bool total_gradient);

}  // namespace trensil
