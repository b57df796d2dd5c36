// The model's field geometry on the Definitions tab and in the status bar.
#include "response/field_geometry_choice.h"
#include "workspace/model_edit.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

void show_field_geometry(modelling_workspace& ws) {
    if (!ws.view) return;
    display_guard guard(ws);
    ws.view->set_checked("Check_exact_field_geometry", ws.model.exact_field_geometry);
    ws.view->set_text("Label_field_geometry", field_geometry_label(ws.model));
}

void check_exact_field_geometry(modelling_workspace& ws) {
    if (ws.updating_display) return;
    const bool exact = ws.view->checked("Check_exact_field_geometry");
    if (ws.inversion_running || exact == ws.model.exact_field_geometry) {
        show_field_geometry(ws);
        return;
    }
    {
        model_edit edit(ws, exact ? "Exact Field Geometry" : "Format Field Geometry");
        ws.model.exact_field_geometry = exact;
        clear_body_results(ws.model);
    }
    show_field_geometry(ws);
    display_model(ws, 1);
}

}  // namespace trensil
