#include "workspace/workspace_inversion_view.h"

#include "inversion/fit_report.h"
#include "workspace/body_table.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

std::string inversion_control_name(inversion_control control, int item) {
    using ic = inversion_control;
    switch (control) {
        case ic::Text_max_iterations:
            return "Text_max_iterations";
        case ic::Combo_invert:
            return "Combo_invert";
        case ic::Check_inversion_mode:
            return "Check_inversion_mode";
        case ic::Command_invert:
            return "Command_invert_" + std::to_string(item);
        case ic::Text_MAGINV_misfit:
            return "Text_MAGINV_misfit_" + std::to_string(item);
        case ic::Text_num_iterations:
            return "Text_num_iterations";
        case ic::Command_stop_inversion:
            return "Command_stop_inversion";
        case ic::Command_reject_changes:
            return "Command_reject_changes";
        case ic::Command_restore_best:
            return "Command_restore_best";
        case ic::Label_status:
            return "Label_status";
        case ic::Frame_move_body:
            return "Frame_move_body";
        case ic::Command_toggle_invert_body:
            return "Command_toggle_invert_body";
        case ic::Command_save_qvx_model:
            return "Command_save_qvx_model";
    }
    return {};
}

void workspace_inversion_view::set_text(inversion_control control, int item,
                                        const std::string& text) {
    display_guard guard(ws_);
    ws_.view->set_text(inversion_control_name(control, item), text);
}

std::string workspace_inversion_view::text(inversion_control control, int item) const {
    return ws_.view->text(inversion_control_name(control, item));
}

void workspace_inversion_view::set_caption(inversion_control control, const std::string& caption) {
    ws_.view->set_text(inversion_control_name(control, 0), caption);
}

void workspace_inversion_view::set_enabled(inversion_control control, bool enabled) {
    // Command_invert is a pair of buttons: both follow.
    if (control == inversion_control::Command_invert) {
        for (int item = 0; item <= 1; ++item)
            ws_.view->set_enabled(inversion_control_name(control, item), enabled);
        return;
    }
    ws_.view->set_enabled(inversion_control_name(control, 0), enabled);
}

void workspace_inversion_view::set_visible(inversion_control control, bool visible) {
    ws_.view->set_visible(inversion_control_name(control, 0), visible);
    // The inversion panel takes the slider frame's place.
    if (control == inversion_control::Frame_move_body)
        ws_.view->set_visible("Frame_inversion", !visible);
}

bool workspace_inversion_view::is_visible(inversion_control control) const {
    return ws_.view->visible(inversion_control_name(control, 0));
}

int workspace_inversion_view::list_index(inversion_control control) const {
    return ws_.view->selected_item(inversion_control_name(control, 0));
}

void workspace_inversion_view::set_list_index(inversion_control control, int index) {
    ws_.view->select_item(inversion_control_name(control, 0), index);
}

int workspace_inversion_view::check_value(inversion_control control) const {
    return ws_.view->checked(inversion_control_name(control, 0)) ? 1 : 0;
}

void workspace_inversion_view::redraw_inversion_progress() {
    trensil::display_model(ws_, 1);
}

void workspace_inversion_view::display_body_parameters() {
    trensil::display_body_parameters(ws_);
}

void workspace_inversion_view::display_model(int mode) {
    trensil::display_model(ws_, mode);
}

void workspace_inversion_view::set_model_changed() {
    ws_.model_changed = true;
}

// The findings of a least-squares run, one a line, in Text_fit_summary below the panel's
// buttons; hidden when there are none.
void workspace_inversion_view::show_fit_summary(const inversion_state& state) {
    std::string text;
    for (const std::string& line :
         fit_report_lines(ws_.model, state, ws_.response.inversion_fits_gradient == 1))
        text += (text.empty() ? "" : "\n") + line;
    display_guard guard(ws_);
    ws_.view->set_text("Text_fit_summary", text);
    ws_.view->set_visible("Text_fit_summary", !text.empty());
}

}  // namespace trensil
