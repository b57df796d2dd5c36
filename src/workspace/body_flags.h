// The flags of bodies: the three menus that set a flag on every body (self-demagnetisation,
// use, fix for the inversion, the last with "Fix outside inversion limits"), and the current
// body's three check boxes.
//
//   set_fix_flags(model, fix_outside_limits);   // free the bodies that reach the window
//   menu_set_demag_flags(ws, flag_flip);        // the window's command
#pragma once

#include "core/model_record.h"

namespace trensil {

struct modelling_workspace;

// Items of the flag menus. For "Set Use body flags" item 0 clears `disabled` (the bodies are
// used) and item 1 sets it.
enum flag_item : int { flag_set = 0, flag_clear = 1, flag_flip = 2, fix_outside_limits = 3 };

// --- Changes of the model ---------------------------------------------------------------------

void set_demag_flags(model_record& model, int item);
void set_disable_flags(model_record& model, int item);
void set_fix_flags(model_record& model, int item);
// The `fix` a body takes from "Fix outside inversion limits": 1 (free to invert) when the body,
// from its distance to its distance plus width, comes within 10 of the inversion window; the
// body's own flag when the window covers the whole profile.
std::int32_t fix_for_inversion_window(const model_record& model, const body_record& body);

// --- The window's commands --------------------------------------------------------------------

void menu_set_demag_flags(modelling_workspace& ws, int item);
void menu_set_disable_flag(modelling_workspace& ws, int item);
void menu_set_fix_flags(modelling_workspace& ws, int item);
// The current body's check boxes, read from the view.
void check_fix_this_body(modelling_workspace& ws);
void check_include_demagnetisation(modelling_workspace& ws);
void check_turn_off_body(modelling_workspace& ws);

}  // namespace trensil
