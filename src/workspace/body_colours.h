// Colouring every body by a property on a continuous colour scale, from the smallest value of the
// property over the bodies (the dark blue end of the colour ramp) to the largest (its magenta end).
//
//   colour_bodies_by_property(model, colour_by_density);
#pragma once

#include "core/model_record.h"

namespace trensil {

struct modelling_workspace;

// Items of menu_colour_body: "Susceptability" (negative values counted as 0), "Remanent J"
// (the Koenigsberger ratio), "Density".
enum colour_property : int { colour_by_susc = 0, colour_by_remanence = 1, colour_by_density = 2 };

// Gives each body the colour of its value's place between the smallest and largest value.
// Returns false, changing nothing, when all bodies have the same value (or there are none).
bool colour_bodies_by_property(model_record& model, int item);

// The window's command: colours the bodies, or says "The bodies all have the same specified
// value".
void menu_colour_body(modelling_workspace& ws, int item);

}  // namespace trensil
