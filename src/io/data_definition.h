// Checks the data definition of a model (which file, which columns) before its data are read.
//
//   if (check_data_definition(model, transforms, ui) == 0)
//       read_location_data(0, model, model.profile, transforms, ui);
#pragma once

#include "core/model_record.h"
#include "io/coordinate_transform.h"
#include "support/platform.h"

namespace trensil {

// Runs the checks in order (data file named, file exists, nhead, nstep, xpos, ypos, a mag or a
// gravity column) and shows the message of the first that fails, returning 1. When all pass it
// prepares model.transform, copies it into transforms.program_transform and returns 0.
int check_data_definition(model_record& model, transform_state& transforms, platform& ui);

}  // namespace trensil
