// The controls of a window without widgets, for the logic tests of both windows: every control's
// text, tick, enabled and shown state, scroll bar, items and selection is kept by name, with the
// caption and the size. A fake view derives from recorded_controls<its view> and adds the rest.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace trensil {

template <class View>
class recorded_controls : public View {
public:
    struct scroll_state {
        int value = 0, min = 0, max = 0;
    };
    std::map<std::string, std::string> texts;
    std::map<std::string, bool> checks, enabled, shown;
    std::map<std::string, scroll_state> scrolls;
    std::map<std::string, std::vector<std::string>> items;
    std::map<std::string, int> selected;
    std::string caption;
    int width = 12000, height = 9000;

    // `unselected`: what selected_item gives for a list never selected.
    explicit recorded_controls(int unselected) : unselected_(unselected) {}

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
    int selected_item(const std::string& c) const override {
        return value_of(selected, c, unselected_);
    }
    void set_caption(const std::string& c) override { caption = c; }
    void resize_form(int w, int h) override { width = w, height = h; }
    int form_width() const override { return width; }
    int form_height() const override { return height; }

protected:
    template <class K, class T>
    static T value_of(const std::map<K, T>& m, const K& c, T absent) {
        const auto f = m.find(c);
        return f == m.end() ? absent : f->second;
    }

private:
    int unselected_;
};

}  // namespace trensil
