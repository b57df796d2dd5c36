// A modelling window without widgets for the logic tests: every control's text, tick, enabled
// and shown state and scroll bar is kept by name.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "support/recorded_controls.h"
#include "workspace/modelling_view.h"

namespace trensil {

class fake_modelling_view : public recorded_controls<modelling_view> {
public:
    fake_modelling_view() : recorded_controls(0) {}

    struct geometry {
        float left = 0, top = 0, width = 0, height = 0;
    };
    std::map<std::string, geometry> boxes;
    int tab = 0;
    // Grid cells by grid, row, column; every cell is 100 by 20 pixels, the grid at (10, 30).
    std::map<std::string, std::map<std::pair<int, int>, std::string>> grids;
    std::map<std::string, view_rect> rects;
    std::map<std::string, std::string> tooltips;
    std::map<std::string, std::vector<double>> column_shares;
    std::string focus;
    std::map<int, std::string> status;

    void select_tab(int index) override { tab = index; }
    int current_tab() const override { return tab; }
    void set_status(int panel, const std::string& t) override { status[panel] = t; }
    std::string status_text(int panel) const override { return value_of(status, panel, {}); }
    void set_geometry(const std::string& c, float l, float t, float w, float h) override {
        boxes[c] = {l, t, w, h};
    }

    void set_grid_text(const std::string& g, const std::string& text) override {
        auto& cells = grids[g];
        cells.clear();
        int row = 0, column = 0;
        std::string cell;
        for (char c : text + grid_row_separator) {
            if (c == grid_column_separator || c == grid_row_separator) {
                cells[{row, column}] = cell;
                cell.clear();
                if (c == grid_row_separator) {
                    ++row;
                    column = 0;
                } else {
                    ++column;
                }
            } else {
                cell += c;
            }
        }
    }
    std::string grid_cell(const std::string& g, int row, int column) const override {
        const auto found = grids.find(g);
        if (found == grids.end()) return {};
        return value_of(found->second, std::pair{row, column}, std::string{});
    }
    void set_grid_cell(const std::string& g, int row, int column, const std::string& t) override {
        grids[g][{row, column}] = t;
    }
    view_rect grid_cell_rect(const std::string&, int row, int column) const override {
        return {100.0 * column, 20.0 * row, 100.0, 20.0};
    }
    void fit_grid_columns(const std::string& g, const std::vector<double>& share) override {
        column_shares[g] = share;
    }
    view_rect control_rect(const std::string& c) const override {
        if (c == "Grid_body") return {10.0, 30.0, 500.0, 380.0};
        return value_of(rects, c, view_rect{});
    }
    void set_control_rect(const std::string& c, const view_rect& r) override { rects[c] = r; }
    void set_focus(const std::string& c) override { focus = c; }
    void set_tooltip(const std::string& c, const std::string& t) override { tooltips[c] = t; }
};

}  // namespace trensil
