// The files of a new project line: its csv data file (one row a station, a dummy where a grid
// gave nothing), the model file that reads it (the header alone), and its place in the project's
// list of lines, in line number order.
//
//   line_station_values v;
//   gather_line_values(d.sample_x, d.sample_y, d.num_samples, sampling, nullptr, v);
//   write_line_csv("/survey/Line_1010.csv", v, ui);
//   write_line_model("/survey/Line_1010.qvx", "/survey/Line_1010.csv", v, scratch, ui);
//   int index = enter_line(project, 1010, "/survey/Line_1010.qvx", "/survey/Line_1010.bmp");
#pragma once

#include <array>
#include <string>

#include "core/model_record.h"
#include "io/project_file.h"
#include "project/grid_source.h"
#include "support/bounded_array.h"
#include "support/platform.h"

namespace trensil {

// The text written for a value that is not defined; the data reader drops the whole row.
inline constexpr const char* line_csv_dummy = "       * ,";

// What goes into a line's csv: the stations, and which of the three value columns it has.
struct line_station_values {
    int count = 0;
    array1<double> x, y;                 // 1 .. count
    array1<double> ground, sensor, mag;  // 1 .. count; below -1e30: undefined
    bool has_ground = false, has_sensor = false, has_mag = false;
};

// How the three grids feed a line: a grid that is not ticked is null. The sensor grid's value is
// a height above the ground (value_is_height), a depth below it (value_is_depth), or else the
// sensor's elevation itself.
struct line_sampling {
    std::array<const grid_source*, 3> grids{nullptr, nullptr, nullptr};  // mag, DTM, sensor
    bool value_is_height = false;
    bool value_is_depth = false;
    float surface_elevation = 0.0f;
    float sensor_offset = 10.0f;
};

// The values of a line at its stations x, y (1 .. count). The magnetics come from the magnetic
// grid, else from the data file's column, else none. The ground comes from the DTM grid, else
// from the data's DTM column, else it is the surface elevation. The sensor comes from the sensor
// grid as described above, else from the data's sensor column, else it is the ground plus the
// sensor offset. `data` is the model whose stations x, y are (a line taken from a data file), or
// null for a digitised baseline. A column is written when its grid is ticked or the data have it.
void gather_line_values(const array1<double>& x, const array1<double>& y, int count,
                        const line_sampling& sampling, const model_record* data,
                        line_station_values& values);

// The csv: the heading "      X,      Y" with ",      DTM", ",   Sensor", ",      TMI" for the
// columns present, then one row a station: x, y and the ground and sensor in "0.00", the
// magnetics in "0.0000", an undefined value as the dummy. Lines end with CR LF.
std::string line_csv_text(const line_station_values& values);
// Writes the csv through a temporary beside it. On failure shows "An error occurred while
// reading the file: " and the description and returns false.
bool write_line_csv(const std::string& path, const line_station_values& values, platform& ui);

// Sets the columns that read a line's csv: first data line 1 (the heading row is not numeric and
// so is dropped), names on line 1, x 1, y 2, then DTM, sensor and magnetics numbered in that
// order as present (else 0), no gravity.
void set_line_columns(data_definition& definition, const line_station_values& values);

// Writes the header-only model of a line into `path`: `scratch` (the project's data definition
// and Earth's field) with the line's csv as its data file, the line's columns and no coordinate
// transform (the csv's stations are in the map's frame already). The scratch record's own data
// file, columns and transform are as they were afterwards. False (shown) on failure.
bool write_line_model(const std::string& path, const std::string& csv_path,
                      const line_station_values& values, model_record& scratch, platform& ui);

// Where the files of line `number` of a project go: the project's folder + "Line_" + number.
std::string line_file_stem(const std::string& project_path, int number);

// Enters a line into the project after every line whose number is not greater, moving the later
// ones up, with a reset model and an empty profile; the arrays keep 64 spare entries. The next
// proposed number becomes at least number + step. Returns the line's index (1 .. num_lines).
int enter_line(project_definition& project, int number, const std::string& model_path,
               const std::string& picture_path);
// Removes line `index` (1 .. num_lines), closing the arrays up.
void remove_line(project_definition& project, int index);

// The model path of a project line as it can be opened: a relative path is taken from the
// project file's folder when a file is there; otherwise the path as it stands.
std::string resolve_line_path(const std::string& project_path, const std::string& stored);
// The path to store for a file of the project: relative to the project file's folder when the
// file lies in it or below it, or in a folder beside it ("../tempest/line.qvx"); else absolute.
std::string project_relative_path(const std::string& project_path, const std::string& path);

}  // namespace trensil
