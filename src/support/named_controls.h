// What both windows offer their logic: controls known by their names (texts, check boxes,
// enabling, showing, scroll bars, the items of a list), and the window's caption and size. The
// modelling and project windows' views add their own operations to these.
//
//   view.set_text("Text_sample_interval", "250");
//   if (view.checked("Check_maintain_aspect_ratio")) ...
//   view.set_enabled("Command_save_qvx_model", true);
#pragma once

#include <string>
#include <vector>

namespace trensil {

class named_controls {
public:
    virtual ~named_controls() = default;

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
    // Items of a list box or combo box, and the selected one (-1: none).
    virtual void set_items(const std::string& control, const std::vector<std::string>& items) = 0;
    virtual void select_item(const std::string& control, int index) = 0;
    virtual int selected_item(const std::string& control) const = 0;
    // The window's caption and size (in the window's own units).
    virtual void set_caption(const std::string& caption) = 0;
    virtual void resize_form(int width, int height) = 0;
    virtual int form_width() const = 0;
    virtual int form_height() const = 0;
};

}  // namespace trensil
