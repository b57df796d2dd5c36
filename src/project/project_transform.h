// The project window's "Define Coordinate Transform": the dialog edits the program-wide
// transform, which starts as the one of the data definition of new lines; when the user accepts,
// that definition takes it, and a data file already loaded must be loaded again through it. The
// line files made afterwards carry it in their model.
//
//   begin_define_transform(ws);
//   define_transform(ws.transforms, ui, window);   // the dialog (gui/transform_dialog.h)
//   end_define_transform(ws);
#pragma once

#include "project/project_workspace.h"

namespace trensil {

void begin_define_transform(project_workspace& ws);
// Unless the dialog was cancelled: the scratch record takes the transform and its loaded
// locations are forgotten. Returns true when it took it.
bool end_define_transform(project_workspace& ws);

}  // namespace trensil
