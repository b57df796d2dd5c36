// Drives the program's windows from a file of steps, the way a person clicks and types, so that
// a test can run the real program as a separate process (and kill it) and still make real edits.
// One step a line:
//
//   set NAME TEXT     the line edit NAME is typed over with TEXT; a scroll bar, slider or spin box
//                     takes the value TEXT; a combo box selects the item TEXT
//   click NAME        the button NAME is clicked, or the menu item NAME triggered
//   answer TEXT       the next dialog that comes up is answered: the message box button TEXT is
//                     pressed, or a file dialog takes TEXT as its file
//   wait MS           the interface runs on for MS milliseconds
//   quit              the program ends
//
// Answers are taken in their order as dialogs come up, whenever that is (the offer of a recovery
// copy comes while the model opens, before the other steps run).
#pragma once

#include <string>
#include <vector>

namespace trensil {

struct interface_step {
    std::string verb;
    std::string name;
    std::string text;
};

// The steps of a script file; false with the reason when it cannot be read or a line is not a
// step.
bool read_interface_script(const std::string& path, std::vector<interface_step>& steps,
                           std::string& error);

// Starts answering dialogs with the script's answers, from now on.
void start_answering(const std::vector<interface_step>& steps);
// Runs the steps other than answers, in order, on the widgets of the open windows. False with
// the reason on standard error when a named widget is not found.
bool run_interface_steps(const std::vector<interface_step>& steps);

}  // namespace trensil
