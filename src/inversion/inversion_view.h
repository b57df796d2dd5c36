// The inversion panel of the modelling window as the inversion sees it: a passive view that sets
// texts, captions, enabled and visible states of the panel's controls, reads what the user typed
// or chose, and asks the window to redraw. The window implements it; tests use a recording fake.
//
//   view.set_text(inversion_control::Text_MAGINV_misfit, 0, "12.5000");
//   view.set_enabled(inversion_control::Command_reject_changes, true);
#pragma once

#include <string>

namespace trensil {

struct inversion_state;

// The panel's controls by their names in the window.
enum class inversion_control {
    Text_max_iterations,
    Combo_invert,
    Check_inversion_mode,
    Command_invert,
    Text_MAGINV_misfit,  // item 0 "Initial Misfit", item 1 "Final Misfit"
    Text_num_iterations,
    Command_stop_inversion,
    Command_reject_changes,
    Command_restore_best,
    Label_status,
    Frame_move_body,
    Command_toggle_invert_body,
    Command_save_qvx_model,
};

class inversion_view {
public:
    virtual ~inversion_view() = default;

    // Text of a text box or label; `item` picks one of a control array (0 otherwise).
    virtual void set_text(inversion_control control, int item, const std::string& text) = 0;
    virtual std::string text(inversion_control control, int item) const = 0;
    virtual void set_caption(inversion_control control, const std::string& caption) = 0;
    virtual void set_enabled(inversion_control control, bool enabled) = 0;
    virtual void set_visible(inversion_control control, bool visible) = 0;
    virtual bool is_visible(inversion_control control) const = 0;
    // List index of Combo_invert: 0 "Magnetics", 1 "Gravity".
    virtual int list_index(inversion_control control) const = 0;
    virtual void set_list_index(inversion_control control, int index) = 0;
    // Value of a check box, 0 or 1.
    virtual int check_value(inversion_control control) const = 0;

    // The window's own work: redraw the graphs (or the plan view) between iterations, show the
    // body table anew, redisplay the model (recomputing what is stale), mark the model changed.
    virtual void redraw_inversion_progress() = 0;
    virtual void display_body_parameters() = 0;
    virtual void display_model(int mode) = 0;
    virtual void set_model_changed() = 0;

    // The standard errors and strongest correlations of the last least-squares run
    // (state.fit) beside the parameter values; a summary that is not available clears them.
    virtual void show_fit_summary(const inversion_state&) {}
};

}  // namespace trensil
