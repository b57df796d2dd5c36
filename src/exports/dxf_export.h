// The two DXF files of a model: the plan (profile line and body footprints as polylines) and the
// 3-D model (every body as faces). Both are minimal ASCII DXF: a header with the squared plan
// extents, the entities, no tables, blocks or layer definitions.
//
//   std::string error;
//   if (write_plan_dxf(model, "/data/line1.dxf", error) != 0) ... error
//   write_body_dxf(model, state, "/data/line1_3d.dxf", error);
//   menu_export_dxf(model, state, ui);   // the menu command: both files through save dialogs
#pragma once

#include <ostream>
#include <string>

#include "core/model_record.h"
#include "exports/body_geometry.h"
#include "response/response_state.h"
#include "support/platform.h"

namespace trensil {

// The plan extents made square: the shorter of the East and North ranges is widened to the
// longer about its centre. The header's extents and the footprints' clip rectangle.
clip_rectangle squared_plan_extents(const model_record& model);

// The default file names: the model file's path and base name + ".dxf" or "_3d.dxf"; empty when
// the model has no file.
std::string plan_dxf_default_name(const model_record& model);
std::string body_dxf_default_name(const model_record& model);

// The text of each file, written to `out`. The 3-D file builds (or reuses) the mesh of every
// cylinder; a cylinder whose mesh can't be made is left out.
void write_plan_dxf(std::ostream& out, const model_record& model);
void write_body_dxf(std::ostream& out, model_record& model, response_state& state);

// Each file at `path`, through a temporary beside it. Returns 0, or -1 with the system's
// description of the failure in `error`; an older file at `path` is then untouched.
int write_plan_dxf(const model_record& model, const std::string& path, std::string& error);
int write_body_dxf(model_record& model, response_state& state, const std::string& path,
                   std::string& error);

// The commands: ask for the file name (the default name above), add ".dxf" to a name without
// extension, write, say "Output complete". The working directory is put back afterwards.
// Return 0 when written, -1 on a cancel or a failure (reported through `ui`). The 3-D export does
// nothing when there are no bodies.
int export_plan_dxf(const model_record& model, platform& ui);
int export_body_dxf(model_record& model, response_state& state, platform& ui);

// The plan file, then the 3-D file; a cancel of the first does not stop the second.
void menu_export_dxf(model_record& model, response_state& state, platform& ui);

}  // namespace trensil
