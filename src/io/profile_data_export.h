// The profile data csv: stations, observed and computed channels, one line a station.
//
//   std::string error;
//   if (write_profile_data(model, "/data/line1.csv", error) != 0) ... error
//   export_profile_data(model, ui);   // the menu command: asks for the file, confirms, reports
#pragma once

#include <string>

#include "core/model_record.h"
#include "support/platform.h"

namespace trensil {

// Writes the file at `path` (through a temporary beside it). Returns 0, or -1 with the system's
// description of the failure in `error`; the old file is then untouched.
int write_profile_data(const model_record& model, const std::string& path, std::string& error);

// The export menu command: beeps when there are no stations, asks for the file name (default
// the model file's stem + ".csv"), adds ".csv" to a name without extension, asks before
// overwriting, writes and says "Output complete". Returns 0 when written, -1 otherwise (cancel,
// refusal, no stations, a failure reported through `ui`).
int export_profile_data(const model_record& model, platform& ui);

}  // namespace trensil
