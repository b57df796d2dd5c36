// Colouring every body by a property on a continuous colour scale, from the smallest value of the
// property over the bodies (blue) to the largest (red).
//
//   float r, g, b;
//   clcrgb(0.5f, r, g, b);                              // green, the middle of the scale
//   colour_bodies_by_property(model, colour_by_density);
#pragma once

#include "core/model_record.h"

namespace trensil {

struct modelling_workspace;

// Items of menu_colour_body: "Susceptability" (negative values counted as 0), "Remanent J"
// (the Koenigsberger ratio), "Density".
enum colour_property : int { colour_by_susc = 0, colour_by_remanence = 1, colour_by_density = 2 };

// The colour scale: a fraction 0 .. 1 (held to that range) to red, green and blue components in
// 0 .. 1, blue through cyan, green and yellow to red, continuous along the way.
void clcrgb(float fraction, float& red, float& green, float& blue);

// Gives each body the colour of its value's place between the smallest and largest value.
// Returns false, changing nothing, when all bodies have the same value (or there are none).
bool colour_bodies_by_property(model_record& model, int item);

// The window's command: colours the bodies, or says "The bodies all have the same specified
// value".
void menu_colour_body(modelling_workspace& ws, int item);

}  // namespace trensil
