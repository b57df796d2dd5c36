#include "workspace/model_recovery.h"

#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "io/model_file_writer.h"
#include "io/model_line_source.h"
#include "support/paths.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

namespace {

// The data file as a path that the reader finds from the recovery folder: the model may name it
// relative to the current directory, which the copy's folder is not.
std::string data_file_from_anywhere(const std::string& data_file) {
    if (data_file.empty() || !file_exists(data_file)) return data_file;
    std::error_code ec;
    const auto absolute = std::filesystem::absolute(data_file, ec);
    return ec ? data_file : absolute.string();
}

}  // namespace

void start_model_autosave(modelling_workspace& ws, recovery_session& session) {
    model_autosave& a = ws.autosave;
    a.slot.start(session, recovery_kind::model);
    a.slot.set_original(ws.model.model_file);
    a.seen_edits = ws.model_changed.edits();
    a.clean_edits = static_cast<long long>(a.seen_edits);
}

unsigned long long edits_not_saved(const modelling_workspace& ws) {
    const long long n = static_cast<long long>(ws.model_changed.edits()) - ws.autosave.clean_edits;
    return n > 0 ? static_cast<unsigned long long>(n) : 0;
}

std::string model_recovery_text(modelling_workspace& ws) {
    model_record& m = ws.model;
    if (ws.view) take_display_settings(ws);
    // Writing copies each width into the end diameters and marks the display settings present,
    // as a save does; a copy must leave the model being edited as it is, so they are put back.
    std::vector<std::pair<float, float>> diameters;
    diameters.reserve(static_cast<std::size_t>(m.num_bodies));
    for (int i = 1; i <= m.num_bodies; ++i)
        diameters.emplace_back(m.body(i).diameter_start, m.body(i).diameter_end);
    const std::int16_t settings_present = m.display_settings_present;
    const std::string data_file = m.data_file;
    m.data_file = data_file_from_anywhere(data_file);

    std::string text = model_file_text(false, m);

    m.data_file = data_file;
    m.display_settings_present = settings_present;
    for (int i = 1; i <= m.num_bodies; ++i) {
        const auto& [start, end] = diameters[static_cast<std::size_t>(i - 1)];
        m.body(i).diameter_start = start;
        m.body(i).diameter_end = end;
    }

    recovery_info info;
    info.kind = recovery_kind::model;
    info.original_path = recovery_key_path(m.model_file);
    info.data_file = data_file;
    info.saved_at = recovery_clock_seconds();
    info.edits = edits_not_saved(ws);
    info.undo_steps = ws.history.undo_count();
    if (const recovery_session* session = ws.autosave.slot.session()) info.session = session->id();
    return text + recovery_trailer(info);
}

void model_autosave_tick(modelling_workspace& ws, autosave_slot::time_point now) {
    model_autosave& a = ws.autosave;
    autosave_slot& slot = a.slot;
    if (!slot.active()) return;
    slot.poll(now);
    if (slot.original() != recovery_key_path(ws.model.model_file))
        slot.set_original(ws.model.model_file);
    const unsigned long long edits = ws.model_changed.edits();
    if (edits != a.seen_edits) {
        a.seen_edits = edits;
        slot.edited(now);
    }
    if (!ws.model_changed || ws.inversion_running) return;
    if (slot.due(now)) slot.write(model_recovery_text(ws));
}

void model_work_saved(modelling_workspace& ws) {
    model_autosave& a = ws.autosave;
    a.seen_edits = ws.model_changed.edits();
    a.clean_edits = static_cast<long long>(a.seen_edits);
    a.slot.discard();
    a.slot.set_original(ws.model.model_file);
}

void close_model_autosave(modelling_workspace& ws) {
    ws.autosave.slot.close();
}

std::optional<found_copy> offer_model_recovery(modelling_workspace& ws, const std::string& path) {
    return ws.autosave.slot.offer_copy(ws.ui, path);
}

int recover_model(modelling_workspace& ws, const found_copy& copy) {
    if (show_model_file(ws, copy.path) != 0) return -1;
    model_record& m = ws.model;
    const std::string& original = copy.info.original_path;
    m.model_file = original;
    m.data_file = copy.info.data_file;
    m.model_file_time = 0.0;
    if (!original.empty() && file_exists(original)) {
        try {
            m.model_file_time = file_date_time(original);
        } catch (const std::exception&) {
        }
    }
    ws.view->set_caption("Trensil: " + (original.empty() ? std::string("(recovered model)")
                                                         : file_name_part(original)));
    ws.model_changed = true;
    ws.view->set_enabled("Command_save_qvx_model", true);
    // The edits of the copy are still not saved; this window's own copy replaces the old one.
    model_autosave& a = ws.autosave;
    a.clean_edits =
        static_cast<long long>(ws.model_changed.edits()) - static_cast<long long>(copy.info.edits);
    a.slot.set_original(original);
    a.slot.adopt(copy.path);
    return 0;
}

}  // namespace trensil
