// The two files written beside a saved model: "_model.csv", one line a body for other programs,
// and "_model.msh", a box round the data as counts and steps for a 3-D mesh.
//
//   write_model_csv(model, side_file_path(model.model_file, "_model.csv"));
//   write_model_mesh(model, side_file_path(model.model_file, "_model.msh"));
//
// Both throw file_run_error with the description of a failure; a failed write leaves any old
// file as it was.
#pragma once

#include <string>

#include "core/model_record.h"

namespace trensil {

// The path without its extension, followed by `suffix`.
std::string side_file_path(const std::string& model_path, const std::string& suffix);

std::string model_csv_text(const model_record& model);
void write_model_csv(const model_record& model, const std::string& path);

// Throws file_run_error "Subscript out of range" for a model without stations.
std::string model_mesh_text(const model_record& model);
void write_model_mesh(const model_record& model, const std::string& path);

}  // namespace trensil
