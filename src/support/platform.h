// The services of the desktop that the program's logic asks for: messages, questions, file and
// input dialogs, the colour chooser, the busy pointer, the event pump that lets a Stop click
// arrive, the clipboard and the beep. The window implements them with Qt, the batch tool on the
// console, and the tests with canned answers (scripted_platform.h).
//
//   ui.show_message("The sample interval must be positive");
//   if (ui.ask_yes_no("That file already, exists, overwrite?", "Save")) ...
//
// It sits in support so that every layer, the response engine included, reports through it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace trensil {

// A picture for the clipboard: 24-bit pixels, rows from the top, red-green-blue bytes.
struct picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb;  // width * height * 3 bytes
};

class platform {
public:
    virtual ~platform() = default;

    // A message box with an OK button.
    virtual void show_message(const std::string& text, const std::string& title = "") = 0;
    // A Yes/No question; true for Yes.
    virtual bool ask_yes_no(const std::string& question, const std::string& title = "") = 0;
    // A question with its own buttons, such as "Recover", "Discard", "Later"; the index of the
    // button chosen. Where no one can answer, the last button, which must be the one that
    // changes nothing.
    virtual int ask_choice(const std::string& question, const std::string& title,
                           const std::vector<std::string>& buttons) {
        (void)question;
        (void)title;
        return static_cast<int>(buttons.size()) - 1;
    }
    // File dialogs; no value when the user cancels. `filter` is "Label (*.ext)|..." style text.
    virtual std::optional<std::string> choose_open_file(const std::string& title,
                                                        const std::string& filter,
                                                        const std::string& initial_path) = 0;
    virtual std::optional<std::string> choose_save_file(const std::string& title,
                                                        const std::string& filter,
                                                        const std::string& initial_path) = 0;
    // An input box; no value when cancelled.
    virtual std::optional<std::string> input_box(const std::string& prompt,
                                                 const std::string& title,
                                                 const std::string& initial_text) = 0;
    // The colour chooser on a 24-bit blue-green-red value; no value when cancelled.
    virtual std::optional<std::int32_t> choose_colour(std::int32_t initial) = 0;
    // The busy pointer on or off.
    virtual void set_busy(bool busy) = 0;
    // Lets queued interface events run (a Stop click during an inversion).
    virtual void process_events() = 0;
    // The load progress bar of the modelling form shown or hidden.
    virtual void show_progress(bool visible) = 0;
    virtual void copy_picture_to_clipboard(const picture& image) = 0;
    virtual void beep() = 0;
};

}  // namespace trensil
