#include "workspace/body_colours.h"

#include <algorithm>

#include "support/colour_ramp.h"
#include "workspace/body_command_support.h"
#include "workspace/model_edit.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

namespace {
// The value a body is coloured by.
float property_value(const body_record& b, int item) {
    switch (item) {
        case colour_by_susc:
            return std::max(b.susc.value, 0.0f);
        case colour_by_remanence:
            return b.rem_q.value;
        default:
            return b.density.value;
    }
}

}  // namespace

bool colour_bodies_by_property(model_record& model, int item) {
    float lo = 1e32f, hi = -1e32f;
    for (int i = 1; i <= model.num_bodies; ++i) {
        const float v = property_value(model.body(i), item);
        lo = std::min(lo, v);
        hi = std::max(hi, v);
    }
    if (!(lo < hi)) return false;
    for (int i = 1; i <= model.num_bodies; ++i) {
        body_record& b = model.body(i);
        // The program's one colour scale, the one the grid viewer shades grids in.
        b.colour = colour_ramp_value((property_value(b, item) - lo) / (hi - lo));
    }
    return true;
}

void menu_colour_body(modelling_workspace& ws, int item) {
    if (ws.updating_display || ws.model.num_bodies < 1) return;
    {
        model_edit edit(ws, item == colour_by_susc        ? "Colour Bodies by Susceptibility"
                            : item == colour_by_remanence ? "Colour Bodies by Remanence"
                                                          : "Colour Bodies by Density");
        if (!colour_bodies_by_property(ws.model, item)) {
            ws.ui.show_message("The bodies all have the same specified value");
            return;
        }
    }
    show_body_parameters(ws);
    redraw_bodies(ws);
}

}  // namespace trensil
