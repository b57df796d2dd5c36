// The plan: the profile's stations in East and North at one scale, and each body's footprint
// clipped to the view, in the plan graph of the modelling window.
//
//   display_plan_view(model, plan_graph, options);
#pragma once

#include "core/model_record.h"
#include "workspace/graph_control.h"
#include "workspace/section_view.h"

namespace trensil {

// Redraws the plan from the model: the station series, square axes rounded with 8 ticks, then
// each footprint with its reference mark; a body without a footprint shows only its mark (green,
// red for the highlighted body) and cannot be picked. Rewrites the `display_index` table.
void display_plan_view(model_record& model, graph_control& graph, const section_options& options);

// The series of the plan: East and North of every station.
void build_plan_plot(const model_record& model, plot_data& plot);

}  // namespace trensil
