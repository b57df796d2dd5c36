// The named-control operations of a window's view, done on the window's Qt widgets found by
// their object names (gui/control_access.h). A window derives from qt_named_controls<its view>
// and says how it finds a control by name.
#pragma once

#include <QObject>
#include <string>
#include <vector>

#include "control_access.h"

namespace trensil {

template <class View>
class qt_named_controls : public View {
public:
    void set_text(const std::string& name, const std::string& text) override {
        set_control_text(control(name), text);
    }
    std::string text(const std::string& name) const override { return control_text(control(name)); }
    void set_checked(const std::string& name, bool on) override {
        set_control_checked(control(name), on);
    }
    bool checked(const std::string& name) const override { return control_checked(control(name)); }
    void set_enabled(const std::string& name, bool on) override {
        set_control_enabled(control(name), on);
    }
    void set_visible(const std::string& name, bool on) override {
        set_control_visible(control(name), on);
    }
    bool visible(const std::string& name) const override { return control_visible(control(name)); }
    void set_scroll(const std::string& name, int value, int min, int max) override {
        set_control_scroll(control(name), value, min, max);
    }
    void set_items(const std::string& name, const std::vector<std::string>& items) override {
        set_control_items(control(name), items);
    }
    void select_item(const std::string& name, int index) override {
        select_control_item(control(name), index);
    }
    int selected_item(const std::string& name) const override {
        return control_selected_item(control(name));
    }

protected:
    // The window's control of that object name; null when there is none.
    virtual QObject* control(const std::string& name) const = 0;
};

}  // namespace trensil
