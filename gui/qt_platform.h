// The desktop's services for the program's logic, with Qt: message boxes, questions, file and
// input dialogs, the colour chooser, the busy pointer, the event pump, the clipboard and the beep.
// With `console` set (a run that only draws a picture), messages go to standard error and
// questions are answered No.
#pragma once

#include <QString>

#include "support/platform.h"

class QWidget;

namespace trensil {

class qt_platform : public platform {
public:
    explicit qt_platform(QWidget* owner = nullptr) : owner_(owner) {}
    void set_owner(QWidget* owner) { owner_ = owner; }
    bool console = false;
    int messages_shown = 0;

    void show_message(const std::string& text, const std::string& title = "") override;
    bool ask_yes_no(const std::string& question, const std::string& title = "") override;
    int ask_choice(const std::string& question, const std::string& title,
                   const std::vector<std::string>& buttons) override;
    std::optional<std::string> choose_open_file(const std::string& title, const std::string& filter,
                                                const std::string& initial_path) override;
    std::optional<std::string> choose_save_file(const std::string& title, const std::string& filter,
                                                const std::string& initial_path) override;
    std::optional<std::string> input_box(const std::string& prompt, const std::string& title,
                                         const std::string& initial_text) override;
    std::optional<std::int32_t> choose_colour(std::int32_t initial) override;
    void set_busy(bool busy) override;
    void process_events() override;
    void show_progress(bool visible) override;
    void copy_picture_to_clipboard(const picture& image) override;
    void beep() override;

    // "Label (*.a)|*.a|All files (*.*)|*.*" as Qt's "Label (*.a);;All files (*.*)".
    static QString qt_filter(const std::string& filter);

private:
    QWidget* owner_ = nullptr;
    bool busy_ = false;
};

}  // namespace trensil
