// The undo and redo lists of the model's body edits. A step holds its label ("Dip of Body 2",
// "Add Body", "Inversion"), the body definitions before and after the edit (only the changed
// bodies when the count is unchanged, the whole lists otherwise), the current body before and
// after, and a merge key: a step with the same key recorded within a second of the last one is
// merged into it, so a held slider arrow is one step. The lists keep at most `max_steps` steps and
// about `max_bytes` of definitions; the oldest steps go first.
//
//   edit_history history;
//   auto step = make_edit_step(before, 2, model, 2);   // no value when nothing changed
//   if (step) history.record(std::move(*step), "Dip of Body 2", "");
//   if (const edit_step* s = history.next_undo()) {
//       auto bodies = step_definitions(*s, body_definitions(model), false);
//       ... put `bodies` in place ...
//       history.undone();
//   }
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/model_record.h"

namespace trensil {

using edit_clock = std::function<std::chrono::steady_clock::time_point()>;

struct edit_step {
    std::string label;
    std::string merge_key;  // empty: never merged
    std::chrono::steady_clock::time_point time;
    // false: `bodies` lists the changed bodies (1-based) and before/after hold their definitions;
    // true: before/after are the whole lists of bodies 1..n.
    bool whole_lists = false;
    std::vector<int> bodies;
    std::vector<body_definition> before;
    std::vector<body_definition> after;
    int current_before = 0;
    int current_after = 0;
    // The model's field geometry before and after; a step may change only that.
    bool exact_before = false;
    bool exact_after = false;
    std::size_t bytes = 0;  // estimated size of the definitions held
};

// The definitions of bodies 1..num_bodies.
std::vector<body_definition> body_definitions(const model_record& model);

// The step from the definitions `before` (current body `current_before`) to the bodies of `model`
// (current body `current_after`); no value when no definition changed.
std::optional<edit_step> make_edit_step(const std::vector<body_definition>& before,
                                        int current_before, const model_record& model,
                                        int current_after);

// The definitions a step leads to from `present`: its after state when `forward`, else its
// before state.
std::vector<body_definition> step_definitions(const edit_step& step,
                                              std::vector<body_definition> present, bool forward);

class edit_history {
public:
    static constexpr std::size_t max_steps = 1000;
    static constexpr std::size_t max_bytes = std::size_t{64} << 20;
    static constexpr std::chrono::milliseconds merge_window{1000};

    // Where the time of a step comes from; tests set their own.
    edit_clock clock = [] { return std::chrono::steady_clock::now(); };

    // Adds a step labelled `label` and drops the redo list. With a non-empty `merge_key` equal to
    // the last step's, recorded within `merge_window` of it and with no undo or redo between,
    // the step is merged into the last one instead; a merge that leaves no net change removes
    // the step.
    void record(edit_step step, const std::string& label, const std::string& merge_key);

    const edit_step* next_undo() const { return undo_.empty() ? nullptr : &undo_.back(); }
    const edit_step* next_redo() const { return redo_.empty() ? nullptr : &redo_.back(); }
    // The step of next_undo was undone: it goes to the redo list. And the other way round.
    void undone();
    void redone();
    void clear();

    std::size_t undo_count() const { return undo_.size(); }
    std::size_t redo_count() const { return redo_.size(); }

private:
    bool merge_into_last(edit_step& step);
    void trim();

    std::deque<edit_step> undo_;
    std::deque<edit_step> redo_;
    std::size_t bytes_ = 0;
    bool last_open_ = false;  // the last step may take a merge
};

}  // namespace trensil
