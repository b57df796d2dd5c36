// A platform for tests and for runs without a desktop: every message and question is recorded,
// questions take canned answers (default No), dialogs return what the test queued.
//
//   scripted_platform ui;
//   ui.yes_answers.push_back(true);
//   ...
//   EXPECT_EQ(ui.messages.at(0), "The sample interval must be positive");
#pragma once

#include <deque>

#include "support/platform.h"

namespace trensil {

class scripted_platform : public platform {
public:
    std::vector<std::string> messages;   // every message shown, in order
    std::vector<std::string> questions;  // every Yes/No question asked
    std::deque<bool> yes_answers;        // answers to the next questions; No when empty
    std::vector<std::string> choices;    // every question with its own buttons
    std::deque<int> choice_answers;      // buttons chosen; the last button when empty
    std::deque<std::optional<std::string>> file_answers;   // for both file dialogs
    std::deque<std::optional<std::string>> input_answers;  // for input boxes
    std::deque<std::optional<std::int32_t>> colour_answers;
    int process_events_calls = 0;
    int beeps = 0;
    bool busy = false;
    bool progress_visible = false;
    picture clipboard;

    void show_message(const std::string& text, const std::string& = "") override {
        messages.push_back(text);
    }
    bool ask_yes_no(const std::string& question, const std::string& = "") override {
        questions.push_back(question);
        if (yes_answers.empty()) return false;
        const bool answer = yes_answers.front();
        yes_answers.pop_front();
        return answer;
    }
    int ask_choice(const std::string& question, const std::string&,
                   const std::vector<std::string>& buttons) override {
        choices.push_back(question);
        if (choice_answers.empty()) return static_cast<int>(buttons.size()) - 1;
        const int answer = choice_answers.front();
        choice_answers.pop_front();
        return answer;
    }
    std::optional<std::string> choose_open_file(const std::string&, const std::string&,
                                                const std::string&) override {
        return next(file_answers);
    }
    std::optional<std::string> choose_save_file(const std::string&, const std::string&,
                                                const std::string&) override {
        return next(file_answers);
    }
    std::optional<std::string> input_box(const std::string&, const std::string&,
                                         const std::string&) override {
        return next(input_answers);
    }
    std::optional<std::int32_t> choose_colour(std::int32_t) override {
        return next(colour_answers);
    }
    void set_busy(bool b) override { busy = b; }
    void process_events() override { ++process_events_calls; }
    void show_progress(bool visible) override { progress_visible = visible; }
    void copy_picture_to_clipboard(const picture& image) override { clipboard = image; }
    void beep() override { ++beeps; }

private:
    template <class T>
    static std::optional<T> next(std::deque<std::optional<T>>& queue) {
        if (queue.empty()) return std::nullopt;
        auto v = queue.front();
        queue.pop_front();
        return v;
    }
};

}  // namespace trensil
