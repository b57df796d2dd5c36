// The project window's recovery copy: while the project differs from what its file holds (or a
// project that was never saved has lines), a copy in the project file format is kept in the
// recovery folder; opening, saving or emptying the project removes it. Opening a project whose
// copy from a run that ended uncleanly is newer than the file offers Recover, Discard or Later.
//
//   start_project_autosave(ws, session);
//   project_autosave_tick(ws, steady_clock::now());   // from the window's timer
//   close_project_autosave(ws);
#pragma once

#include <optional>
#include <string>

#include "workspace/autosave_slot.h"

namespace trensil {

struct project_workspace;

struct project_autosave {
    autosave_slot slot;
    std::string saved_text;        // the project file's text as last read, written or emptied
    std::string seen_text;         // the text at the last tick
    unsigned long long edits = 0;  // changes seen since the project was saved
};

void start_project_autosave(project_workspace& ws, recovery_session& session);
// Notes a change of the project and, when due, hands a copy to the writer.
void project_autosave_tick(project_workspace& ws, autosave_slot::time_point now);
// The project was read, written or emptied: it is what its file holds, and the copy goes.
void project_work_saved(project_workspace& ws);
void close_project_autosave(project_workspace& ws);

// The copies of `path` that opening it offers; the one to recover, if any.
std::optional<found_copy> offer_project_recovery(project_workspace& ws, const std::string& path);
// Shows the copy as an unsaved change of its project file (or of a new project). 0 or -1.
int recover_project(project_workspace& ws, const found_copy& copy);

}  // namespace trensil
