// When the recovery copy of a changed model or project is written. A burst of edits is written
// once it pauses for `quiet` (so the copy follows the last edit within about a second), and a
// burst that never pauses is written `longest_wait` after its first edit not yet in the copy, so
// the copy never lags the work by more than that. Nothing is due while no edit waits; a write that
// failed is tried again after `retry_after`.
//
//   autosave_schedule schedule;
//   schedule.edited(now);                 // the model changed
//   if (schedule.due(now)) { ...snapshot and hand it to the writer...; schedule.taken(); }
//   schedule.failed(now);                 // the writer could not write it
//   schedule.clean();                     // saved or closed: nothing waits any more
#pragma once

#include <chrono>
#include <optional>

namespace trensil {

class autosave_schedule {
public:
    using clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds quiet{1000};
    static constexpr std::chrono::seconds longest_wait{30};
    static constexpr std::chrono::seconds retry_after{30};

    void edited(clock::time_point now);
    bool due(clock::time_point now) const;
    // The copy of everything edited so far was taken for writing.
    void taken();
    // Writing the last copy failed: the edits wait again, tried no sooner than `retry_after`.
    void failed(clock::time_point now);
    void clean();
    bool waiting() const { return first_unwritten_.has_value(); }

private:
    std::optional<clock::time_point> first_unwritten_;
    clock::time_point last_edit_{};
    clock::time_point not_before_{};
};

// The changed flag of a model that also counts how often it was set: every edit sets it, so the
// count tells the autosave that something changed since it last looked, and the recovery offer
// how many edits a copy holds. Reads and assigns like the bool it replaces.
class change_flag {
public:
    change_flag& operator=(bool changed) {
        changed_ = changed;
        if (changed) ++edits_;
        return *this;
    }
    operator bool() const { return changed_; }  // NOLINT(google-explicit-constructor)
    // Times the flag was set since the record was made; never goes down.
    unsigned long long edits() const { return edits_; }

private:
    bool changed_ = false;
    unsigned long long edits_ = 0;
};

}  // namespace trensil
