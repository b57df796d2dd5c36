#include "workspace/edit_history.h"

#include <algorithm>
#include <utility>

namespace trensil {

namespace {

std::size_t text_bytes(const std::string& s) {
    // Texts that fit the string's own buffer take no extra memory.
    return s.capacity() > 15 ? s.capacity() + 1 : 0;
}

std::size_t definition_bytes(const body_definition& d) {
    return sizeof(body_definition) + text_bytes(d.name) + text_bytes(d.rock_type) +
           text_bytes(d.description);
}

std::size_t step_bytes(const edit_step& step) {
    std::size_t bytes = sizeof(edit_step) + step.bodies.size() * sizeof(int);
    for (const body_definition& d : step.before) bytes += definition_bytes(d);
    for (const body_definition& d : step.after) bytes += definition_bytes(d);
    return bytes;
}

}  // namespace

std::vector<body_definition> body_definitions(const model_record& model) {
    std::vector<body_definition> list;
    list.reserve(static_cast<std::size_t>(std::max(model.num_bodies, 0)));
    for (int i = 1; i <= model.num_bodies; ++i) list.push_back(model.body(i));
    return list;
}

std::optional<edit_step> make_edit_step(const std::vector<body_definition>& before,
                                        int current_before, const model_record& model,
                                        int current_after) {
    edit_step step;
    step.current_before = current_before;
    step.current_after = current_after;
    if (static_cast<int>(before.size()) == model.num_bodies) {
        for (int i = 1; i <= model.num_bodies; ++i) {
            const body_definition& now = model.body(i);
            const body_definition& was = before[static_cast<std::size_t>(i - 1)];
            if (now == was) continue;
            step.bodies.push_back(i);
            step.before.push_back(was);
            step.after.push_back(now);
        }
        if (step.bodies.empty()) return std::nullopt;
    } else {
        step.whole_lists = true;
        step.before = before;
        step.after = body_definitions(model);
    }
    step.bytes = step_bytes(step);
    return step;
}

std::vector<body_definition> step_definitions(const edit_step& step,
                                              std::vector<body_definition> present, bool forward) {
    const std::vector<body_definition>& target = forward ? step.after : step.before;
    if (step.whole_lists) return target;
    for (std::size_t j = 0; j < step.bodies.size(); ++j) {
        const auto index = static_cast<std::size_t>(step.bodies[j] - 1);
        if (index < present.size()) present[index] = target[j];
    }
    return present;
}

void edit_history::record(edit_step step, const std::string& label, const std::string& merge_key) {
    step.label = label;
    step.merge_key = merge_key;
    step.time = clock();
    redo_.clear();
    if (merge_into_last(step)) return;
    bytes_ += step.bytes;
    undo_.push_back(std::move(step));
    last_open_ = true;
    trim();
}

bool edit_history::merge_into_last(edit_step& step) {
    if (!last_open_ || undo_.empty() || step.merge_key.empty()) return false;
    edit_step& last = undo_.back();
    if (last.merge_key != step.merge_key || last.whole_lists || step.whole_lists) return false;
    if (step.time - last.time > merge_window) return false;

    for (std::size_t j = 0; j < step.bodies.size(); ++j) {
        const auto found = std::find(last.bodies.begin(), last.bodies.end(), step.bodies[j]);
        if (found == last.bodies.end()) {
            last.bodies.push_back(step.bodies[j]);
            last.before.push_back(step.before[j]);
            last.after.push_back(step.after[j]);
        } else {
            last.after[static_cast<std::size_t>(found - last.bodies.begin())] = step.after[j];
        }
    }
    // Bodies nudged back to where they were are no change.
    for (std::size_t j = last.bodies.size(); j-- > 0;) {
        if (!(last.before[j] == last.after[j])) continue;
        last.bodies.erase(last.bodies.begin() + static_cast<std::ptrdiff_t>(j));
        last.before.erase(last.before.begin() + static_cast<std::ptrdiff_t>(j));
        last.after.erase(last.after.begin() + static_cast<std::ptrdiff_t>(j));
    }
    last.current_after = step.current_after;
    last.time = step.time;
    bytes_ -= last.bytes;
    if (last.bodies.empty()) {
        undo_.pop_back();
        last_open_ = false;
        return true;
    }
    last.bytes = step_bytes(last);
    bytes_ += last.bytes;
    return true;
}

void edit_history::trim() {
    while (undo_.size() > 1 && (undo_.size() > max_steps || bytes_ > max_bytes)) {
        bytes_ -= undo_.front().bytes;
        undo_.pop_front();
    }
}

void edit_history::undone() {
    if (undo_.empty()) return;
    bytes_ -= undo_.back().bytes;
    redo_.push_back(std::move(undo_.back()));
    undo_.pop_back();
    last_open_ = false;
}

void edit_history::redone() {
    if (redo_.empty()) return;
    bytes_ += redo_.back().bytes;
    undo_.push_back(std::move(redo_.back()));
    redo_.pop_back();
    last_open_ = false;
    trim();
}

void edit_history::clear() {
    undo_.clear();
    redo_.clear();
    bytes_ = 0;
    last_open_ = false;
}

}  // namespace trensil
