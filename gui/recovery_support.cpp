#include "recovery_support.h"

#include <QApplication>
#include <cstdlib>

#include "modelling_window.h"
#include "project/project_recovery.h"
#include "project_window.h"

namespace trensil {

namespace {
recovery_session* in_use = nullptr;
}

std::string recovery_folder() {
    std::string base;
    if (const char* state = std::getenv("XDG_STATE_HOME"); state && *state) {
        base = state;
    } else if (const char* home = std::getenv("HOME"); home && *home) {
        base = std::string(home) + "/.local/state";
    } else {
        return {};
    }
    return base + "/Trensil/recovery";
}

void use_recovery_session(recovery_session* session) {
    in_use = session;
}

recovery_session* recovery_session_in_use() {
    return in_use;
}

int offer_recovery_at_start(platform& ui, settings_store& settings, project_window* projects,
                            const std::string& opening) {
    if (!in_use) return 0;
    const std::string skip = recovery_key_path(opening);
    int recovered = 0;
    for (const found_copy& copy : copies_to_offer_at_start(*in_use)) {
        if (!skip.empty() && copy.info.original_path == skip) continue;
        const bool project = copy.info.kind == recovery_kind::project;
        if (project && !projects) continue;
        if (offer_recovery(ui, *in_use, copy) != recovery_choice::recover) continue;
        if (project) {
            if (recover_project(projects->workspace(), copy) == 0) ++recovered;
            continue;
        }
        auto* window = new modelling_window(ui, settings);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->show();
        QApplication::processEvents();
        if (recover_model(window->workspace(), copy) == 0) ++recovered;
    }
    return recovered;
}

}  // namespace trensil
