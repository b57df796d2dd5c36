#include "project/project_recovery.h"

#include "io/project_file.h"
#include "project/project_workspace.h"

namespace trensil {

void start_project_autosave(project_workspace& ws, recovery_session& session) {
    ws.autosave.slot.start(session, recovery_kind::project);
    ws.autosave.slot.set_original(ws.project_file);
}

void project_autosave_tick(project_workspace& ws, autosave_slot::time_point now) {
    project_autosave& a = ws.autosave;
    autosave_slot& slot = a.slot;
    if (!slot.active()) return;
    slot.poll(now);
    if (slot.original() != recovery_key_path(ws.project_file)) slot.set_original(ws.project_file);
    std::string text = project_file_text(ws.project);
    if (text == a.seen_text) {
        if (text == a.saved_text || !slot.due(now)) return;
    } else {
        a.seen_text = text;
        if (text == a.saved_text) {
            // Changed back to what the file holds.
            slot.discard();
            a.edits = 0;
            return;
        }
        ++a.edits;
        slot.edited(now);
        if (!slot.due(now)) return;
    }
    recovery_info info;
    info.kind = recovery_kind::project;
    info.original_path = slot.original();
    info.saved_at = recovery_clock_seconds();
    info.edits = a.edits;
    info.session = slot.session()->id();
    slot.write(std::move(text) + recovery_trailer(info));
}

void project_work_saved(project_workspace& ws) {
    project_autosave& a = ws.autosave;
    a.saved_text = project_file_text(ws.project);
    a.seen_text = a.saved_text;
    a.edits = 0;
    a.slot.discard();
    a.slot.set_original(ws.project_file);
}

void close_project_autosave(project_workspace& ws) {
    ws.autosave.slot.close();
}

std::optional<found_copy> offer_project_recovery(project_workspace& ws, const std::string& path) {
    return ws.autosave.slot.offer_copy(ws.ui, path);
}

int recover_project(project_workspace& ws, const found_copy& copy) {
    if (show_project_file(ws, copy.path, copy.info.original_path) != 0) return -1;
    // What the file holds is what it held before the copy; the copy's text is the change.
    project_autosave& a = ws.autosave;
    a.saved_text.clear();
    if (!copy.info.original_path.empty()) {
        project_definition file;
        std::int16_t status = 0;
        read_project(copy.info.original_path, file, status, ws.ui);
        if (status == 0) a.saved_text = project_file_text(file);
    }
    a.edits = copy.info.edits;
    a.seen_text = project_file_text(ws.project);
    a.slot.adopt(copy.path);
    if (a.seen_text != a.saved_text) a.slot.edited(autosave_slot::time_point{});
    return 0;
}

}  // namespace trensil
