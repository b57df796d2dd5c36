#include "inversion/inversion_session.h"
#include "support/number_format.h"
#include "support/text_tokens.h"
#include "workspace/body_table.h"
#include "workspace/model_edit.h"
#include "workspace/modelling_workspace.h"
#include "workspace/workspace_inversion_view.h"

namespace trensil {

namespace {

// Runs `handler` with a context over the workspace's model, engine state and inversion state.
template <class Handler>
void with_context(modelling_workspace& ws, Handler handler) {
    workspace_inversion_view own_view(ws);
    inversion_view& view = ws.inversion_panel ? *ws.inversion_panel : own_view;
    inversion_context ctx{ws.model, ws.response, ws.inversion, ws.ui, view};
    handler(ctx);
}

// Holds `inversion_running` set while a run lasts.
class running_guard {
public:
    explicit running_guard(modelling_workspace& ws) : ws_(ws) { ws_.inversion_running = true; }
    ~running_guard() { ws_.inversion_running = false; }
    running_guard(const running_guard&) = delete;
    running_guard& operator=(const running_guard&) = delete;

private:
    modelling_workspace& ws_;
};

// The panel's solver choices as the run will use them. A noise level box that is empty or
// holds no positive number leaves that level to the data's own scatter.
void read_solver_choices(modelling_workspace& ws) {
    const modelling_view& view = *ws.view;
    inversion_state& s = ws.inversion;
    s.solver = view.selected_item("Combo_solver") == 1 ? inversion_solver::damped_least_squares
                                                       : inversion_solver::coordinate_descent;
    s.least_squares.joint = view.checked("Check_joint_fit");
    s.least_squares.robust = view.checked("Check_robust_fit");
    const auto level = [&view](const char* control) {
        const std::string text = trim_text(view.text(control));
        const double value = is_numeric_text(text) ? parse_number(text) : 0.0;
        return value > 0.0 ? static_cast<float>(value) : 0.0f;
    };
    s.least_squares.noise_mag = level("Text_noise_mag");
    s.least_squares.noise_grav = level("Text_noise_grav");
}

}  // namespace

int inversion_body(const modelling_workspace& ws) {
    const int current = ws.section.current_body;
    if (current >= 1 && current <= ws.model.num_bodies) return current;
    return ws.model.num_bodies >= 1 ? 1 : 0;
}

void combo_solver_selected(modelling_workspace& ws) {
    const bool least_squares = ws.view->selected_item("Combo_solver") == 1;
    for (const char* control :
         {"Check_joint_fit", "Check_robust_fit", "Text_noise_mag", "Text_noise_grav"})
        ws.view->set_enabled(control, least_squares);
}

void command_invert(modelling_workspace& ws, int item) {
    if (ws.inversion_running) return;
    read_solver_choices(ws);
    // The run's result is one step: undo puts back the model the run began with.
    model_edit edit(ws, "Inversion");
    {
        running_guard running(ws);
        with_context(
            ws, [&](inversion_context& ctx) { on_invert_click(ctx, item, inversion_body(ws)); });
    }
    edit.commit();
}

void command_stop_inversion(modelling_workspace& ws) {
    with_context(ws, [](inversion_context& ctx) { on_stop_inversion(ctx); });
}

void command_reject_changes(modelling_workspace& ws) {
    if (ws.inversion_running) return;
    model_edit edit(ws, "Reject Changes");
    with_context(ws, [](inversion_context& ctx) { on_reject_changes(ctx); });
    edit.commit();
}

void command_restore_best(modelling_workspace& ws) {
    if (ws.inversion_running) return;
    model_edit edit(ws, "Restore Best Model");
    with_context(ws, [](inversion_context& ctx) { on_restore_best(ctx); });
    edit.commit();
}

void command_toggle_invert_body(modelling_workspace& ws) {
    if (ws.updating_display || ws.inversion_running) return;
    commit_pending_edit(ws);
    with_context(ws, [](inversion_context& ctx) { on_toggle_invert_panel(ctx); });
}

void check_inversion_mode_clicked(modelling_workspace& ws) {
    with_context(ws, [](inversion_context& ctx) { on_inversion_mode_click(ctx); });
}

void combo_invert_selected(modelling_workspace& ws) {
    with_context(ws, [](inversion_context& ctx) { keep_possible_data_type(ctx); });
}

}  // namespace trensil
