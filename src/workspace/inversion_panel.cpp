#include "inversion/inversion_session.h"
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

}  // namespace

int inversion_body(const modelling_workspace& ws) {
    const int current = ws.section.current_body;
    if (current >= 1 && current <= ws.model.num_bodies) return current;
    return ws.model.num_bodies >= 1 ? 1 : 0;
}

void command_invert(modelling_workspace& ws, int item) {
    if (ws.inversion_running) return;
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
