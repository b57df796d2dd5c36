// What the window's body commands share: the current body, the mark of an edited model, the
// table after a change, and the redraws after a change of the list.
#pragma once

#include "workspace/modelling_workspace.h"

namespace trensil {

// The current body, or null when there is none.
body_record* current_body_of(modelling_workspace& ws);

// `model_changed` set and the save button enabled.
void mark_model_changed(modelling_workspace& ws);

// The current body's table and side controls, or an empty table when no body is left.
void show_body_parameters(modelling_workspace& ws);

// Every body recomputed on the main arrays (with the residuals of the inversion window), then
// the graphs or the plan redrawn.
void recalculate_whole_model(modelling_workspace& ws);

// The section, or the plan while it is shown, drawn again without recomputing: the outlines'
// order, colours and the table of which polygon is which body follow the list.
void redraw_bodies(modelling_workspace& ws);

}  // namespace trensil
