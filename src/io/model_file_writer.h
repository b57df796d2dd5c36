// Writing the model file (extension "qvx") and the whole save with its side files.
//
//   write_model_core(false, "/lines/l10.qvx", model, ui);     // every line; false on failure
//   std::int16_t status;
//   save_model(1, model, status, ui);                          // silent save to model.model_file
//
// Every numeric line is one print list. The file goes to a temporary file beside the target that
// is renamed over it once complete, so a failed write leaves the old file as it was.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/model_record.h"
#include "support/platform.h"

namespace trensil {

inline constexpr std::int32_t current_model_format_version = 7;

// The text of the model file: lines 1 to 11 when `header_only` is true, else everything (header,
// bodies, display settings). Copies each body's width into diameter_start and diameter_end, and
// marks the display settings present, as writing does.
std::string model_file_text(bool header_only, model_record& model);

// Writes the model file. On failure shows "An error occurred while saving the model parameters: "
// and the description, leaves any old file as it was and returns false.
bool write_model_core(bool header_only, const std::string& path, model_record& model, platform& ui);

// What a save needs from the workspace when it was opened from a project.
struct save_model_context {
    bool opened_from_project = false;
    std::string project_line_model;             // model path of the project's current line
    std::function<void()> update_current_line;  // reloads the project's current line, if any
};

// The whole save: asks for a file unless `silent` is 1, asks before overwriting, writes the model,
// then the "_model.csv" and "_model.msh" side files. `status` is -1 when a silent save has no
// model file or the model file could not be written; a cancelled dialog leaves it 0. A failure of
// the side files shows "An error occurred while writing the file: " and the description.
void save_model(int silent, model_record& model, std::int16_t& status, platform& ui,
                const save_model_context& context = {});

}  // namespace trensil
