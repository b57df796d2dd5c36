// The modelling window's "Define Coordinate Transform": the dialog edits the program-wide
// transform, which starts as the model's own; when the user accepts, the model takes it and its
// data must be read again through it.
//
//   begin_define_transform(ws);
//   define_transform(ws.transforms, ui, window);   // the dialog (gui/transform_dialog.h)
//   end_define_transform(ws);
#pragma once

#include "workspace/modelling_workspace.h"

namespace trensil {

// Sets the program-wide transform to the model's, so that the dialog shows the model's.
void begin_define_transform(modelling_workspace& ws);
// Unless the dialog was cancelled: the model takes the program-wide transform, the profile is to
// be loaded again, and the model is changed. Returns true when the model took it.
bool end_define_transform(modelling_workspace& ws);

}  // namespace trensil
