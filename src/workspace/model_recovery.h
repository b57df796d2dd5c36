// The modelling window's recovery copy: while the model has edits that are not saved, a copy of
// it (the model file with its display settings, plus the original's path, the time and the number
// of edits) is kept in the recovery folder; reading or saving the model cleanly removes it. On
// opening a model whose copy from a run that ended uncleanly is newer than the file, the window
// offers Recover, Discard or Later; Recover shows the copy as an unsaved change of the file.
//
//   start_model_autosave(ws, session);             // the window is up
//   model_autosave_tick(ws, steady_clock::now());  // from the window's timer, a few times a second
//   close_model_autosave(ws);                      // the window closes
#pragma once

#include <optional>
#include <string>

#include "workspace/autosave_slot.h"

namespace trensil {

struct modelling_workspace;

struct model_autosave {
    autosave_slot slot;
    unsigned long long seen_edits = 0;  // the edit count the slot has heard of
    long long clean_edits = 0;          // the edit count when the model was read or saved
};

void start_model_autosave(modelling_workspace& ws, recovery_session& session);
// Edits not saved since the model was read or saved (a recovered copy's count included).
unsigned long long edits_not_saved(const modelling_workspace& ws);
// Notes new edits and, when the schedule says so, hands a snapshot of the model to the writer.
// Nothing is taken while an inversion runs: its model is between two trial steps.
void model_autosave_tick(modelling_workspace& ws, autosave_slot::time_point now);
// The copy's text: the model file as a save would write it, the display settings from the
// window, then the recovery section. The model being edited is left exactly as it was.
std::string model_recovery_text(modelling_workspace& ws);
// The model was read or saved: the copy goes and the edits start again from 0.
void model_work_saved(modelling_workspace& ws);
// The window closes: the copy goes, and the writer finishes.
void close_model_autosave(modelling_workspace& ws);

// The copies of `path` that opening it offers: asks about each in turn and returns the one to
// recover, if any (Discard deletes a copy, Later keeps it for the next start).
std::optional<found_copy> offer_model_recovery(modelling_workspace& ws, const std::string& path);
// Reads the copy with its data and shows it as an unsaved change of its original file (or of a
// new model). The copy stays until the window's own copy of it is written. Returns 0 or -1.
int recover_model(modelling_workspace& ws, const found_copy& copy);

}  // namespace trensil
