// Recovery copies: while a model or project has changes that are not saved, its window keeps a
// copy of it in the user's state folder, so that a crash, a power cut or a killed session loses
// nothing. A copy is the file itself (model or project format, so the ordinary readers read it)
// followed by a section that says whose copy it is: the original file, the time it was taken, how
// many edits it holds and which run of the program wrote it.
//
// Each run holds a session (a lock on a file in the folder for as long as the process lives), so
// a copy whose session lock is free belongs to a run that ended without cleaning up: a crash.
//
//   recovery_session session(state_folder + "/recovery");
//   const std::string path = session.copy_path(recovery_kind::model, "/lines/l10.qvx", window);
//   write_recovery_copy(path, model_text + recovery_trailer(info), error);
//   for (const found_copy& c : copies_to_offer(session, recovery_kind::model, "/lines/l10.qvx"))
//       offer_recovery(ui, session, c);      // Recover, Discard or Later
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "support/platform.h"

namespace trensil {

inline constexpr const char* recovery_section_head = "[Trensil Recovery]";

enum class recovery_kind { model, project };

// What the section after the copied file says.
struct recovery_info {
    recovery_kind kind = recovery_kind::model;
    std::string original_path;  // absolute; "" for a model or project never saved
    std::string data_file;      // a model's data file as the model names it
    double saved_at = 0.0;      // seconds since 1970-01-01 UTC when the copy was taken
    std::uint64_t edits = 0;    // edits since the file was read or saved
    std::uint64_t undo_steps = 0;
    std::string session;  // the run that wrote the copy
};

// The section, head line first, lines ended by CR LF.
std::string recovery_trailer(const recovery_info& info);
// Reads the section of a copy; false when the file cannot be read or holds no such section.
bool read_recovery_info(const std::string& path, recovery_info& info);

// Writes a copy through a temporary file renamed over it. False with the reason on failure.
bool write_recovery_copy(const std::string& path, const std::string& text, std::string& error);

// The absolute, normalised form of a path ("" stays ""), as copies record and compare them.
std::string recovery_key_path(const std::string& path);

// This run's hold on the recovery folder.
class recovery_session {
public:
    // Creates the folder if needed and takes the session lock. Without a usable folder the
    // session is not usable() and windows keep no copies.
    explicit recovery_session(std::string folder);
    ~recovery_session();
    recovery_session(const recovery_session&) = delete;
    recovery_session& operator=(const recovery_session&) = delete;

    bool usable() const { return lock_fd_ >= 0; }
    const std::string& folder() const { return folder_; }
    const std::string& id() const { return id_; }
    // A number for each window of this run, so that two windows never share a copy.
    int next_window() { return ++windows_; }
    // The copy of `original_path` ("" for a file never saved) kept by `window` of this run.
    std::string copy_path(recovery_kind kind, const std::string& original_path, int window) const;
    // True when `session` is not this run and no live process holds its lock.
    bool ended(const std::string& session) const;

    // Copies answered "Later" in this run are not offered again until the next run.
    bool postponed(const std::string& copy) const { return postponed_.count(copy) != 0; }
    void postpone(const std::string& copy) { postponed_.insert(copy); }

private:
    std::string folder_;
    std::string id_;
    int lock_fd_ = -1;
    int windows_ = 0;
    std::set<std::string> postponed_;
};

struct found_copy {
    std::string path;
    recovery_info info;
};

// The copies in the folder left by runs that ended, of `kind`, newest first.
std::vector<found_copy> ended_copies(const recovery_session& session, recovery_kind kind);
// True when the copy was taken after the original file last changed, or the original has no file.
bool copy_is_newer(const found_copy& copy);
// The ended runs' copies of `original_path` that are newer than the file and were not postponed
// in this run: what opening that file offers.
std::vector<found_copy> copies_to_offer(const recovery_session& session, recovery_kind kind,
                                        const std::string& original_path);
// Every copy of ended runs that is newer than its file and not postponed: what start-up offers.
std::vector<found_copy> copies_to_offer_at_start(const recovery_session& session);

// Seconds since 1970-01-01 UTC now, as copies record their time.
double recovery_clock_seconds();

enum class recovery_choice { recover, discard, later };
// The question: which file, when the copy was taken and how many edits it holds.
std::string recovery_offer_text(const found_copy& copy);
inline constexpr const char* recovery_offer_title = "Recover Unsaved Work";
// Asks "Recover", "Discard" or "Later". Discard deletes the copy; Later postpones it for this run.
// Recover leaves the copy for the caller, which removes it once the work is safe again.
recovery_choice offer_recovery(platform& ui, recovery_session& session, const found_copy& copy);

}  // namespace trensil
