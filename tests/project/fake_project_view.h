// A project window without widgets for the logic tests: every control's text, tick, enabled and
// shown state, scroll bar, list and table is kept by name, with the grids shown and the lines
// drawn over them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "project/project_view.h"

namespace trensil {

class fake_project_view : public project_view {
public:
    struct scroll_state {
        int value = 0, min = 0, max = 0;
    };
    std::map<std::string, std::string> texts;
    std::map<std::string, bool> checks, enabled, shown;
    std::map<std::string, scroll_state> scrolls;
    std::map<std::string, std::vector<std::string>> items;
    std::map<std::string, int> selected;
    std::map<std::string, std::vector<std::vector<std::string>>> tables;
    std::map<std::string, int> selected_rows;
    std::map<int, const grid_source*> grids_shown;
    std::vector<viewer_line> lines;
    std::vector<double> zoom_box;
    std::string status, caption;
    int tab = 0;
    int width = 12000, height = 9000;

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
    int selected_item(const std::string& c) const override { return value_of(selected, c, -1); }
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
    void set_caption(const std::string& c) override { caption = c; }
    void resize_form(int w, int h) override { width = w, height = h; }
    int form_width() const override { return width; }
    int form_height() const override { return height; }

private:
    template <class T>
    static T value_of(const std::map<std::string, T>& m, const std::string& c, T absent) {
        const auto f = m.find(c);
        return f == m.end() ? absent : f->second;
    }
};

}  // namespace trensil
