// The columns of a data file known by their names: the entries of its names line, the preview of
// its first lines as a table, and which columns hold easting, northing, sensor elevation, ground,
// magnetics and gravity, judged from the names a survey file usually carries.
//
//   decode_names_line("#East North TMI") == {"East", "North", "TMI"}
//   column_roles roles = guess_columns({"line", "easting_albers_m", "northing_albers_m",
//   "tmi_nt"});
//   // roles.xpos == 2, roles.ypos == 3, roles.magpos == 4
#pragma once

#include <string>
#include <vector>

#include "core/model_record.h"

namespace trensil {

// The entries of a names line: leading "/", "#", ";" and "," dropped, then one entry a word
// (blanks, tabs and commas separate), so entry k names column k.
std::vector<std::string> decode_names_line(std::string line);

// The stored lines of a data file as table rows: a heading row "Line", "1", "2" ... as wide as the
// widest line, then one row a stored line: its number, then its fields (split as the column
// preview splits them).
std::vector<std::vector<std::string>> column_table(const std::vector<std::string>& lines);

// Column numbers (from 1; 0 none) for the roles of a data definition.
struct column_roles {
    int xpos = 0, ypos = 0, zpos = 0, dtm = 0, magpos = 0, gravpos = 0;
};

// Finds each role's column among `names` (entry k names column k + 1): the first name whose
// leading words, lower case, match a name for the role: "x", "east", "easting"; "y", "north",
// "northing"; "sensor", "z", "elevation", "height", "altitude", "gps elevation"; "dtm", "dem",
// "ground", "topo", "terrain"; "tmi", "mag", "magnetic", "magnetics", "rmi", "total field";
// "grav", "gravity", "bouguer", "free air", "gz". Words are split at "_", "-", ".", blanks, so
// "easting_albers_m" is an easting and "radar_altimeter_m" is nothing.
column_roles guess_columns(const std::vector<std::string>& names);

// When `first_line` of a data file is a names line (its first word is not a number): the data
// start on line 2, the names are on line 1, and each column is the one guess_columns finds (0
// where none is found); returns true. Otherwise returns false and leaves `definition` alone.
bool columns_from_names_line(const std::string& first_line, data_definition& definition);

}  // namespace trensil
