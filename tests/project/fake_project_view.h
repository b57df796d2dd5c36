// A project window without widgets for the logic tests: every control's text, tick, enabled and
// shown state, scroll bar, list and table is kept by name, with the grids shown and the lines
// drawn over them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "project/project_view.h"
#include "support/recorded_controls.h"

namespace trensil {

class fake_project_view : public recorded_controls<project_view> {
public:
    fake_project_view() : recorded_controls(-1) {}

    std::map<std::string, std::vector<std::vector<std::string>>> tables;
    std::map<std::string, int> selected_rows;
    std::map<int, const grid_source*> grids_shown;
    std::vector<viewer_line> lines;
    std::vector<double> zoom_box;
    std::string status;
    int tab = 0;

    void set_table(const std::string& c,
                   const std::vector<std::vector<std::string>>& rows) override {
        tables[c] = rows;
    }
    void select_row(const std::string& c, int row) override { selected_rows[c] = row; }
    void select_grid_tab(int index) override { tab = index; }
    int current_grid_tab() const override { return tab; }
    void show_grid(int index, const grid_source* grid) override { grids_shown[index] = grid; }
    void set_viewer_lines(const std::vector<viewer_line>& drawn) override { lines = drawn; }
    void zoom_viewers(double xmin, double ymin, double xmax, double ymax) override {
        zoom_box = {xmin, ymin, xmax, ymax};
    }
    void set_status(const std::string& text) override { status = text; }
};

}  // namespace trensil
