// One window's recovery copy: the file it goes to, when it is due, and the writer thread that
// writes it. The window snapshots its model or project when the slot says so; the slot names the
// copy for this run and window, hands the text to the writer and hears back how it went.
//
//   autosave_slot slot;
//   slot.start(session, recovery_kind::model);
//   slot.set_original("/lines/l10.qvx");
//   slot.edited(now);
//   if (slot.due(now)) slot.write(snapshot_text, now);
//   slot.poll(now);                          // each tick: a failed write is tried again later
//   slot.discard();                          // saved or closed cleanly
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "workspace/autosave_schedule.h"
#include "workspace/recovery_copy.h"
#include "workspace/recovery_writer.h"

namespace trensil {

class autosave_slot {
public:
    using time_point = autosave_schedule::clock::time_point;

    // Takes a window number of the session and starts the writer. Without a usable session the
    // slot stays inactive and every call does nothing.
    void start(recovery_session& session, recovery_kind kind);
    bool active() const { return writer_ != nullptr; }
    recovery_session* session() const { return session_; }

    // The file the window's work belongs to ("" when never saved). A copy kept under another
    // file's name is removed; the next copy goes under this one.
    void set_original(const std::string& path);
    const std::string& original() const { return original_; }
    const std::string& copy_path() const { return copy_path_; }

    void edited(time_point now) { schedule_.edited(now); }
    bool due(time_point now) const { return active() && schedule_.due(now); }
    // Hands the copy's text to the writer; the edits so far count as written.
    void write(std::string text);
    // Takes the writer's news: a failed write makes the edits wait again, a written copy lets
    // a recovered copy that this window took over go.
    void poll(time_point now);
    // Keeps `copy` (a recovered copy) until this window's own copy is written or the work saved.
    void adopt(const std::string& copy) { adopted_ = copy; }
    // Removes the copy (and any adopted one): the work is saved, or the window closed cleanly.
    void discard();
    // Waits for the writer to finish what it was given (closing, tests, benchmarks).
    void finish();
    // The window closes cleanly: the copy goes and the writer finishes.
    void close() {
        discard();
        finish();
    }
    // Offers each copy of this slot's kind left for `path` by an ended run (Recover, Discard,
    // Later) and gives the first one the user recovers; none without a session.
    std::optional<found_copy> offer_copy(platform& ui, const std::string& path) const;
    // The reason the last copy could not be written; "" after a good write.
    const std::string& last_error() const { return last_error_; }

private:
    recovery_session* session_ = nullptr;
    recovery_kind kind_ = recovery_kind::model;
    int window_ = 0;
    std::string original_;
    std::string copy_path_;
    std::string adopted_;
    bool copy_written_ = false;
    std::string last_error_;
    autosave_schedule schedule_;
    std::unique_ptr<recovery_writer> writer_;
};

}  // namespace trensil
