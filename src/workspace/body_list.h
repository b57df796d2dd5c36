// The commands that change the list of bodies: add a new body, copy or split the current one,
// delete the current body or all of them, change a body's type, sort and move bodies in the
// list, and shift every body along the profile. Each command's change of the model is a routine
// on the model alone (tested without a window); the window's command wraps it in one step of the
// undo history and brings the table and the graphs up to date.
//
//   std::int32_t current = 1;
//   add_body(model, current, add_copy, 0.0f, 0.0f, &settings);   // a copy behind body 1
//   sort_bodies(model, current, sort_ascending);
//
//   menu_add_body(ws, add_split);          // the window's command
//   menu_delete_body(ws, delete_current);
#pragma once

#include <cstdint>

#include "core/model_record.h"

namespace trensil {

struct modelling_workspace;

// Items of menu_add_body: "Add a new body", "Copy current body", "Split current body".
enum add_kind : int { add_new = 0, add_copy = 1, add_split = 2 };
// Items of menu_delete_body: "All bodies", "Current body".
enum delete_item : int { delete_all = 0, delete_current = 1 };
// Items of menu_sort_bodies.
enum sort_item : int {
    sort_ascending = 0,   // "Ascending distance"
    sort_descending = 1,  // "Descending distance"
    send_to_start = 2,    // "Send current body to start"
    send_to_end = 3,      // "Send current body to end"
};

// --- Changes of the model ---------------------------------------------------------------------

// Adds a body as `kind` says and makes it current. A new body goes last, a thick sheet with the
// saved defaults, at `distance` with its top at `top`, striking across the profile. A copy or a
// split goes right behind the current body, a copy 50 beyond the old body's far edge, a split
// half of the old width on (both halves keeping half the width). A body striking along the
// profile cannot be copied or split: false, nothing changed.
bool add_body(model_record& model, std::int32_t& current_body, int kind, float distance, float top,
              const settings_store* settings);
// Takes the current body out of the list; the body behind it (or the new last one) becomes
// current. The only body goes as with delete_all_bodies.
void delete_current_body(model_record& model, std::int32_t& current_body);
void delete_all_bodies(model_record& model, std::int32_t& current_body);
// A new type for a body: the dip turns by 90 into or out of the cylinder's own scale. False
// when the type is the body's own.
bool change_body_type(body_record& body, int type);
// Sorts by distance (ascending or descending, equal distances keeping their order) and renames
// every body "Body n" by its new place, or sends the current body to the start or the end. The
// current body follows its body. False when nothing moved.
bool sort_bodies(model_record& model, std::int32_t& current_body, int item);
// Moves every body `shift` along the profile, recomputing East and North.
void shift_bodies(model_record& model, float shift);

// Makes room for one more body: the list grows by 16 when full, each new place with its
// response rows for the stations.
void make_room_for_body(model_record& model);

// --- The window's commands --------------------------------------------------------------------

// Adds a body of `kind` at `distance` and `top` (the routine behind the add commands and the
// double click), as one step of the undo history, then shows it.
void MAGINV_add_body(modelling_workspace& ws, int kind, float distance, float top);
// The add commands: a new body at the centre of the section's view, 10 below the ground of the
// middle station; copy and split of the current body. Needs stations.
void menu_add_body(modelling_workspace& ws, int item);
void menu_delete_body(modelling_workspace& ws, int item);
// The Delete key on a picked body: asks first, then deletes the current body.
void delete_picked_body(modelling_workspace& ws);
// Combo_model_type chose body type `type` (1, 2 or 16; another code is ignored) for the current
// body.
void combo_model_type_selected(modelling_workspace& ws, int type);
void menu_sort_bodies(modelling_workspace& ws, int item);
// Asks for the distance and shifts every body by it; less than 1 either way does nothing.
void menu_shift_bodies(modelling_workspace& ws);

}  // namespace trensil
