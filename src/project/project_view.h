// The project window as its logic sees it: controls known by their names, with the few
// operations the logic needs (texts, check boxes, enabling, showing, scroll bars, lists, the two
// tables, the grid tabs and their viewers, the status bar, the caption and size). The Qt window
// implements it; tests use a fake that records the state of every control.
//
//   view.set_text("Text_sample_interval", "250");
//   if (view.checked("Check_sample_grid_0")) ...
//   view.set_table("Grid_profile_lines", {{"Line Number", "X", "Y", "Z", "Burial"}, ...});
//   view.set_viewer_lines(lines);                  // drawn over the grid on every tab
//
// Control arrays carry their index after an underscore: "Check_sample_grid_0" .. "_2" (the
// magnetic, DTM and sensor tabs), "Command_save_file_0" and "_1", "Command_save_point_0" and "_1".
#pragma once

#include <string>
#include <vector>

#include "support/named_controls.h"

namespace trensil {

class grid_source;

// A polyline drawn over the grids: the digitised baseline, its stations, or a project line.
struct viewer_line {
    enum class kind { digitised, stations, project_line, current_line };
    kind role = kind::project_line;
    std::vector<double> x, y;  // east, north
    std::string label;         // the line number of a project line; "" otherwise
};

class project_view : public named_controls {
public:
    // The two tables, Grid_database and Grid_profile_lines: row 0 is the heading row, every row
    // a list of cells. select_row marks a data row (1 is the first; 0 none).
    virtual void set_table(const std::string& control,
                           const std::vector<std::vector<std::string>>& rows) = 0;
    virtual void select_row(const std::string& control, int row) = 0;
    // The grid tabs: 0 magnetics, 1 DTM, 2 sensor.
    virtual void select_grid_tab(int tab) = 0;
    virtual int current_grid_tab() const = 0;
    // The viewer of tab `tab` shows this grid (null: none). The grid outlives the call until the
    // next show_grid of that tab.
    virtual void show_grid(int tab, const grid_source* grid) = 0;
    // The lines drawn over the grid on every tab, replacing those drawn before.
    virtual void set_viewer_lines(const std::vector<viewer_line>& lines) = 0;
    // Zooms every viewer to the box (east and north), with a margin of the viewer's choosing.
    virtual void zoom_viewers(double xmin, double ymin, double xmax, double ymax) = 0;
    // StatusBar_coords.
    virtual void set_status(const std::string& text) = 0;
};

}  // namespace trensil
