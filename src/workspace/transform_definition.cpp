#include "workspace/transform_definition.h"

namespace trensil {

void begin_define_transform(modelling_workspace& ws) {
    ws.transforms.program_transform = ws.model.transform;
}

bool end_define_transform(modelling_workspace& ws) {
    if (!take_defined_transform(ws.transforms, ws.model.transform)) return false;
    // The stations were read through the old transform.
    ws.model.profile.num_stations = 0;
    ws.model.profile_ready = 0;
    ws.view->set_text("Text_number_locations", "");
    ws.graph_view.graph_ranges_valid = 0;
    clear_body_results(ws.model);
    ws.model_changed = true;
    ws.view->set_enabled("Command_save_qvx_model", true);
    return true;
}

}  // namespace trensil
