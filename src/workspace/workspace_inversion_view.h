// The inversion panel over the modelling window's controls: each panel control is the window
// control of the same name, items of a control array carry their index ("Text_MAGINV_misfit_1"),
// and the window's own work (redraw, body fields, model display, changed flag) goes to the
// workspace's handlers.
//
//   workspace_inversion_view panel(ws);
//   ws.inversion_panel = &panel;
//   command_invert(ws, 1);   // "Invert Entire Model"
#pragma once

#include <string>

#include "inversion/inversion_view.h"

namespace trensil {

struct modelling_workspace;

// The window's name of a panel control; `item` picks one of a control array.
std::string inversion_control_name(inversion_control control, int item);

class workspace_inversion_view : public inversion_view {
public:
    explicit workspace_inversion_view(modelling_workspace& ws) : ws_(ws) {}

    void set_text(inversion_control control, int item, const std::string& text) override;
    std::string text(inversion_control control, int item) const override;
    void set_caption(inversion_control control, const std::string& caption) override;
    void set_enabled(inversion_control control, bool enabled) override;
    void set_visible(inversion_control control, bool visible) override;
    bool is_visible(inversion_control control) const override;
    int list_index(inversion_control control) const override;
    void set_list_index(inversion_control control, int index) override;
    int check_value(inversion_control control) const override;

    void redraw_inversion_progress() override;
    void display_body_parameters() override;
    void display_model(int mode) override;
    void set_model_changed() override;
    void show_fit_summary(const inversion_state& state) override;

private:
    modelling_workspace& ws_;
};

}  // namespace trensil
