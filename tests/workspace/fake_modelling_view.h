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
    std::map<int, std::string> status;
    std::string caption;
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

private:
    template <class K, class T>
    static T value_of(const std::map<K, T>& m, const K& c, T absent) {
        const auto f = m.find(c);
        return f == m.end() ? absent : f->second;
    }
};

}  // namespace trensil
