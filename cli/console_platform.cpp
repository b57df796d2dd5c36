#include "console_platform.h"

namespace trensil::cli {

void console_platform::flush_messages(std::ostream& out, const std::string& prefix) {
    for (; flushed_ < messages.size(); ++flushed_) out << prefix << messages[flushed_] << "\n";
}

void console_platform::show_message(const std::string& text, const std::string&) {
    messages.push_back(text);
}

bool console_platform::ask_yes_no(const std::string& question, const std::string&) {
    questions.push_back(question);
    const auto fixed = fixed_answers.find(question);
    return fixed != fixed_answers.end() ? fixed->second : answer_yes_;
}

std::optional<std::string> console_platform::choose_open_file(const std::string&,
                                                              const std::string&,
                                                              const std::string&) {
    return open_file_answer;
}

std::optional<std::string> console_platform::choose_save_file(const std::string&,
                                                              const std::string&,
                                                              const std::string&) {
    return save_file_answer;
}

std::optional<std::string> console_platform::input_box(const std::string&, const std::string&,
                                                       const std::string&) {
    return std::nullopt;
}

std::optional<std::int32_t> console_platform::choose_colour(std::int32_t) {
    return std::nullopt;
}

}  // namespace trensil::cli
