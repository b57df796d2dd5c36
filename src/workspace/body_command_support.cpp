#include "workspace/body_command_support.h"

#include "response/response_driver.h"
#include "workspace/body_table.h"
#include "workspace/graph_display.h"
#include "workspace/plan_view.h"

namespace trensil {

body_record* current_body_of(modelling_workspace& ws) {
    const int current = ws.section.current_body;
    if (current < 1 || current > ws.model.num_bodies) return nullptr;
    return &ws.model.body(current);
}

void mark_model_changed(modelling_workspace& ws) {
    ws.model_changed = true;
    ws.view->set_enabled("Command_save_qvx_model", true);
}

void show_body_parameters(modelling_workspace& ws) {
    if (current_body_of(ws))
        display_body_parameters(ws);
    else
        clear_body_parameters(ws);
}

void recalculate_whole_model(modelling_workspace& ws) {
    model_record& model = ws.model;
    clear_body_results(model);
    if (model.profile.num_stations >= 1) {
        ws.response.ui = &ws.ui;
        recalculate_response(model, ws.response, model.profile.mag_channels,
                             model.profile.grav_channels, model.profile.residuals);
    }
    display_model(ws, 1);
}

void redraw_bodies(modelling_workspace& ws) {
    if (ws.plan_shown) {
        if (ws.plan) display_plan_view(ws.model, *ws.plan, ws.section);
        return;
    }
    display_maginv_model(ws.model, ws.graph_view, ws.graphs, ws.section, 1, section_graph);
}

}  // namespace trensil
