// The modelling window as its logic sees it: controls known by their names, with the few
// operations the logic needs (texts, check boxes, enabling, showing, scroll bars, the tab, the
// status bar, the window's caption and size). The Qt window implements it; tests use a fake that
// records the state of every control.
//
//   view.set_text("Text_mag_intensity", "56000");
//   if (view.checked("Check_maintain_aspect_ratio")) ...
//   view.set_enabled("Command_save_qvx_model", true);
#pragma once

#include <string>
#include <vector>

namespace trensil {

class modelling_view {
public:
    virtual ~modelling_view() = default;

    // Text of a text box, label, button or menu item.
    virtual void set_text(const std::string& control, const std::string& text) = 0;
    virtual std::string text(const std::string& control) const = 0;
    // Check boxes and ticked menu items.
    virtual void set_checked(const std::string& control, bool checked) = 0;
    virtual bool checked(const std::string& control) const = 0;
    virtual void set_enabled(const std::string& control, bool enabled) = 0;
    virtual void set_visible(const std::string& control, bool visible) = 0;
    virtual bool visible(const std::string& control) const = 0;
    // Value and range of a scroll bar.
    virtual void set_scroll(const std::string& control, int value, int min, int max) = 0;
    // Items of a list box or combo box, and the selected one.
    virtual void set_items(const std::string& control, const std::vector<std::string>& items) = 0;
    virtual void select_item(const std::string& control, int index) = 0;
    virtual int selected_item(const std::string& control) const = 0;
    // The tabs of Tab_model.
    virtual void select_tab(int index) = 0;
    virtual int current_tab() const = 0;
    // Status bar panels 1 to 6.
    virtual void set_status(int panel, const std::string& text) = 0;
    virtual std::string status_text(int panel) const = 0;
    // Places a control within its container, in the window's layout units (twips, 15 to a
    // pixel of the screen's logical resolution).
    virtual void set_geometry(const std::string& control, float left, float top, float width,
                              float height) = 0;
    // The window's caption and size (in the window's own units).
    virtual void set_caption(const std::string& caption) = 0;
    virtual void resize_form(int width, int height) = 0;
    virtual int form_width() const = 0;
    virtual int form_height() const = 0;
};

}  // namespace trensil
