#include "project/project_transform.h"

namespace trensil {

void begin_define_transform(project_workspace& ws) {
    ws.transforms.program_transform = ws.scratch.transform;
}

bool end_define_transform(project_workspace& ws) {
    if (!take_defined_transform(ws.transforms, ws.scratch.transform)) return false;
    // The stations were read through the old transform.
    ws.locations_loaded = false;
    ws.scratch.profile.num_stations = 0;
    return true;
}

}  // namespace trensil
