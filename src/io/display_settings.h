// The display settings section at the end of a model file: the head line, then the axes and
// label check boxes, the four splitter positions, and the tab and window widths.
//
//   out << display_settings_text(model);                  // writer: head and three lines
//   if (line == display_settings_head) read_display_settings(d1, d2, d3, model);
#pragma once

#include <string>

#include "core/model_record.h"

namespace trensil {

inline constexpr const char* display_settings_head = "[QVX Display Settings]";

// The head line and the three lines D1, D2, D3, each ended by CR LF; marks the settings present.
std::string display_settings_text(model_record& model);

// Takes D1 (axes, labels, aspect ratio), D2 (four splitters), D3 (tab width, display width) and
// marks the settings present. Throws file_run_error on a number out of range.
void read_display_settings(std::string d1, std::string d2, std::string d3, model_record& model);

}  // namespace trensil
