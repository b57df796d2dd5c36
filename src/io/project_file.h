// The project file (extension "qvj"): the numbering of lines, the three grids in use, and for
// each line its number, model file and picture file; then the grid sampling check boxes.
//
//   project_definition project;
//   std::int16_t status;
//   read_project("/survey/area.qvj", project, status, ui);
//   ...
//   write_project("/survey/area.qvj", project, ui);
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/model_record.h"
#include "support/bounded_array.h"
#include "support/platform.h"

namespace trensil {

inline constexpr const char* project_file_head = "Trensil Project Version 1.0";
// Spare room kept at the end of the line arrays.
inline constexpr int project_spare_lines = 64;

// The project form's list of lines. The five line arrays run 0 .. num_lines + 64; lines use
// 1 .. num_lines.
struct project_definition {
    std::int32_t first_line_number = 1000;
    std::int32_t line_number_step = 10;
    std::int32_t next_line_number = 1000;
    std::array<std::string, 3> grid_files;  // one for each grid tab, in order
    std::int32_t num_lines = 0;
    array1<std::int32_t> line_numbers;
    array1<std::string> model_paths;
    array1<std::string> picture_paths;
    array1<model_record> models;
    array1<line_profile> profiles;
    // The sample settings: present once read from a file or set by the form.
    bool sample_settings_present = false;
    std::array<std::int32_t, 3> sample_grid{0, 0, 0};  // 1 where that tab's grid is ticked
    std::int32_t value_is_depth = 0;
    std::int32_t value_is_height = 0;

    // Re-dimensions the line arrays to 0 .. count + 64 (contents not kept), resets every model.
    void allocate_lines(int count);
};

// Largest line count the reader accepts; a larger count is a run-time error.
inline constexpr int max_project_lines = 20000;

// Reads the project file. `status` -1 when the file does not exist, when it is not a project
// file ("The specified file does not have the corrext format", shown), or after a run-time error
// ("An error occurred while saving the file: " and the description, shown); else 0.
void read_project(const std::string& path, project_definition& project, std::int16_t& status,
                  platform& ui);

// The text of the project file; the sample settings lines are always written.
std::string project_file_text(const project_definition& project);

// Writes the project file through a temporary beside it. On failure shows "An error occurred
// while saving the file: " and the description, leaves any old file as it was, returns false.
bool write_project(const std::string& path, const project_definition& project, platform& ui);

}  // namespace trensil
