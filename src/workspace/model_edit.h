// The one way the bodies of the model (and its field geometry) are changed: every edit (a table
// cell, a slider step, a body operation, a flag menu, an accepted inversion) runs inside a
// model_edit, which keeps the body definitions as they were and, on commit, records the change as
// an undo step, marks the model changed and names the step on the Edit menu ("Undo Dip of Body 2").
// Undo and redo put the definitions back; a body whose definition is unchanged keeps its computed
// response, so undoing a sort or a delete recomputes nothing it need not.
//
//   {
//       model_edit edit(ws, "Dip of Body 2");            // or with a merge key for a slider
//       ws.model.body(2).dip.value = 45.0f;
//       ws.model.body(2).mag_valid = 0;
//       edit.commit();                                   // no step when nothing changed
//   }
//   display_model(ws, 1);
//   menu_undo(ws);                                       // dip back, body 2 recomputed
#pragma once

#include <string>
#include <vector>

#include "core/body_record.h"

namespace trensil {

struct modelling_workspace;
struct model_record;

class model_edit {
public:
    // Keeps the definitions of the bodies and the current body as they are now. Edits with the
    // same non-empty `merge_key` within a second of each other become one step.
    model_edit(modelling_workspace& ws, std::string label, std::string merge_key = {});
    // Commits, unless commit was called.
    ~model_edit();
    model_edit(const model_edit&) = delete;
    model_edit& operator=(const model_edit&) = delete;

    // Records the change since construction as a step (or merges it), drops the redo list,
    // updates the Edit menu and, with `mark_model_changed`, sets model_changed and enables
    // Command_save_qvx_model. Returns false, doing nothing, when no definition changed. Only the
    // first call acts.
    bool commit(bool mark_model_changed = true);

private:
    modelling_workspace& ws_;
    std::string label_;
    std::string merge_key_;
    std::vector<body_definition> before_;
    int current_before_ = 0;
    bool exact_before_ = false;
    bool done_ = false;
    bool changed_ = false;
};

// The Edit menu: undo or redo the last step, then show the bodies and redraw. Nothing while a
// handler is updating the display or an inversion runs.
void menu_undo(modelling_workspace& ws);
void menu_redo(modelling_workspace& ws);
// Names the steps on menu_undo and menu_redo ("Undo Dip of Body 2", "Redo Add Body"), and
// enables each only when it has a step.
void show_edit_menu(modelling_workspace& ws);
// Forgets every step: a new model was read.
void clear_edit_history(modelling_workspace& ws);

// Makes `target` bodies 1..n of the model. A record of the array (a present body, or one past
// the end such as a deleted body's) whose definition equals a target definition moves into place
// with its computed response; the other places take a left-over
// record and the target definition, and go stale only for what changed (the magnetic response
// for magnetic properties, the gravity for density, both for the shape, position, type or the
// off switch; nothing for texts, colour, flags of the inversion and limits). Records left over
// stay beyond num_bodies with their response stores. Returns true when the bodies changed in
// number or order, so that the channel totals must be summed anew.
bool restore_body_definitions(model_record& model, const std::vector<body_definition>& target);

// What a change from definition `was` to `now` makes stale, as the responses depend on it.
struct response_change {
    bool magnetic = false;
    bool gravity = false;
};
response_change responses_changed(const body_definition& was, const body_definition& now);

}  // namespace trensil
