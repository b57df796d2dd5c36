// The program's recovery folder and session, and the offer at start-up of the work that runs
// which ended uncleanly left behind.
//
//   trensil::recovery_session session(trensil::recovery_folder());
//   trensil::use_recovery_session(&session);      // windows made from now on keep copies
//   trensil::offer_recovery_at_start(ui, settings, "");
#pragma once

#include <string>

#include "support/platform.h"
#include "support/settings_store.h"
#include "workspace/recovery_copy.h"

namespace trensil {

class project_window;

// $XDG_STATE_HOME (else ~/.local/state), then the program's folder "Trensil/recovery".
std::string recovery_folder();
void use_recovery_session(recovery_session* session);
// The session windows keep their copies in; null when none (tests, pictures).
recovery_session* recovery_session_in_use();

// Offers each copy that a run which ended uncleanly left, newest first, apart from copies of
// `opening` (the file the program was started on, which offers its own when it opens). A project
// recovered goes into `projects` when there is one; a model recovered opens in a modelling window
// of its own. Returns how many were recovered.
int offer_recovery_at_start(platform& ui, settings_store& settings, project_window* projects,
                            const std::string& opening);

}  // namespace trensil
