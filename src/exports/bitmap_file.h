// Screen captures as files: a 24-bit Windows bitmap writer, and the names the captures of the
// modelling window take beside the model.
//
//   std::string error;
//   if (write_bitmap_file("/data/line1_model.bmp", image, error) != 0) ... error
//   save_screen_capture(model, image, plan_shown, ui);   // file beside the model + clipboard
#pragma once

#include <string>

#include "core/model_record.h"
#include "support/platform.h"

namespace trensil {

// Writes `image` (rows from the top, red-green-blue bytes) as an uncompressed 24-bit bitmap:
// a 14-byte file header, a 40-byte information header, rows from the bottom in blue-green-red
// order, each padded to a multiple of 4 bytes. An existing file is replaced. Returns 0, or -1
// with a description in `error` (an empty or inconsistent picture, or the system's failure).
int write_bitmap_file(const std::string& path, const picture& image, std::string& error);

// The capture's file: the model file's path and base name + "_plan.bmp" while the plan is shown,
// else + "_model.bmp"; empty when the model has no file.
std::string capture_file_name(const model_record& model, bool plan_shown);

// Saves a capture: the file of capture_file_name (replaced without asking) when the model has a
// file, and the picture on the clipboard in any case. Returns the name of the file written, or
// "" when none was (no model file, or a failure reported through `ui`).
std::string save_screen_capture(const model_record& model, const picture& image, bool plan_shown,
                                platform& ui);

}  // namespace trensil
