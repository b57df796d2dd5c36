// The platform of the batch tool: no windows. Messages are kept for the command to report on
// standard error, questions are answered by the command's flags (No unless it was told Yes, as
// by --force), and file dialogs return the file the command was given, if any.
//
//   console_platform ui(force);
//   ui.fixed_answers["That file already, exists, overwrite?"] = true;
//   ...
//   if (failed) std::cerr << "trensil-cli: " << ui.last_message() << "\n";
#pragma once

#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "support/platform.h"

namespace trensil::cli {

class console_platform : public platform {
public:
    explicit console_platform(bool answer_yes = false) : answer_yes_(answer_yes) {}

    std::vector<std::string> messages;          // every message shown, in order
    std::vector<std::string> questions;         // every question asked, in order
    std::map<std::string, bool> fixed_answers;  // answers to known questions
    std::optional<std::string> open_file_answer;
    std::optional<std::string> save_file_answer;

    // The last message shown, or "" when there was none.
    std::string last_message() const { return messages.empty() ? std::string() : messages.back(); }
    // Writes the messages not yet written, one a line, each after `prefix`.
    void flush_messages(std::ostream& out, const std::string& prefix);

    void show_message(const std::string& text, const std::string& title = "") override;
    bool ask_yes_no(const std::string& question, const std::string& title = "") override;
    std::optional<std::string> choose_open_file(const std::string& title, const std::string& filter,
                                                const std::string& initial_path) override;
    std::optional<std::string> choose_save_file(const std::string& title, const std::string& filter,
                                                const std::string& initial_path) override;
    std::optional<std::string> input_box(const std::string& prompt, const std::string& title,
                                         const std::string& initial_text) override;
    std::optional<std::int32_t> choose_colour(std::int32_t initial) override;
    void set_busy(bool) override {}
    void process_events() override {}
    void show_progress(bool) override {}
    void copy_picture_to_clipboard(const picture&) override {}
    void beep() override {}

private:
    bool answer_yes_;
    std::size_t flushed_ = 0;
};

}  // namespace trensil::cli
