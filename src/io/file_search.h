// Finding a file named in a model or project file when its stored path no longer holds: by its
// name beside the current directory and the owning file, up the owning file's directories, beside
// the file last found, by the remembered change of prefix, and last by asking the user.
//
//   file_search_state search;   // lives for the program's run
//   std::string path = "C:\\survey\\lines\\line1.csv";
//   int status = search_for_file("profile data file", path, owner, search, ui);
//   // status 0: path is a file that exists, or "" (user gave up); -1: stop reading the owner
#pragma once

#include <string>

#include "support/platform.h"

namespace trensil {

// What the search remembers between calls: the last file the user pointed to, and the old and
// new leading directories of the last move, so that the other files of a moved project are found
// without asking again.
struct file_search_state {
    std::string last_found;
    std::string old_prefix;
    std::string new_prefix;
};

// Tries the candidates in order and puts the first that exists into `path`, returning 0. When
// none exists, asks the user through the open dialog "Could not find <label> please specify its
// location"; a cancel then asks whether to cancel reading the rest of the file (Yes: returns -1
// with `path` unchanged; No: `path` "" and 0). `owner` is the path of the file that names `path`.
// The current directory is the same on return as on entry.
int search_for_file(const std::string& label, std::string& path, const std::string& owner,
                    file_search_state& state, platform& ui);

}  // namespace trensil
