// A modelling window without widgets for the logic tests: every control's text, tick, enabled
// and shown state and scroll bar is kept by name.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "workspace/modelling_view.h"

namespace trensil {

class fake_modelling_view : public modelling_view {
public:
    struct scroll_state {
        int value = 0, min = 0, max = 0;
    };
    struct geometry {
        float left = 0, top = 0, width = 0, height = 0;
    };
    std::map<std::string, std::string> texts;
    std::map<std::string, bool> checks, enabled, shown;
    std::map<std::string, scroll_state> scrolls;
    std::map<std::string, std::vector<std::string>> items;
    std::map<std::string, int> selected;
    std::map<std::string, geometry> boxes;
    std::string caption;
    int tab = 0;
    int width = 12000, height = 9000;
    // Grid cells by grid, row, column; every cell is 100 by 20 pixels, the grid at (10, 30).
    std::map<std::string, std::map<std::pair<int, int>, std::string>> grids;
    std::map<std::string, view_rect> rects;
    std::map<std::string, std::string> tooltips;
    std::map<std::string, std::vector<double>> column_shares;
    std::string focus;
    std::map<int, std::string> status;

    void set_text(const std::string& c, const std::string& t) override { texts[c] = t; }
    std::string text(const std::string& c) const override { return value_of(texts, c, {}); }
    void set_checked(const std::string& c, bool on) override { checks[c] = on; }
    bool checked(const std::string& c) const override { return value_of(checks, c, false); }
    void set_enabled(const std::string& c, bool on) override { enabled[c] = on; }
    void set_visible(const std::string& c, bool on) override { shown[c] = on; }
    bool visible(const std::string& c) const override { return value_of(shown, c, true); }
    void set_scroll(const std::string& c, int value, int min, int max) override {
        scrolls[c] = {value, min, max};
    }
    void set_items(const std::string& c, const std::vector<std::string>& list) override {
        items[c] = list;
    }
    void select_item(const std::string& c, int index) override { selected[c] = index; }
    int selected_item(const std::string& c) const override { return value_of(selected, c, 0); }
    void select_tab(int index) override { tab = index; }
    int current_tab() const override { return tab; }
    void set_status(int panel, const std::string& t) override { status[panel] = t; }
    std::string status_text(int panel) const override { return value_of(status, panel, {}); }
    void set_geometry(const std::string& c, float l, float t, float w, float h) override {
        boxes[c] = {l, t, w, h};
    }
    void set_caption(const std::string& c) override { caption = c; }
    void resize_form(int w, int h) override { width = w, height = h; }
    int form_width() const override { return width; }
    int form_height() const override { return height; }

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

private:
    template <class K, class T>
    static T value_of(const std::map<K, T>& m, const K& c, T absent) {
        const auto f = m.find(c);
        return f == m.end() ? absent : f->second;
    }
};

}  // namespace trensil
