// Path helpers on plain strings, for both '/' and '\' separators.
//
//   directory_part("/data/line1.csv") == "/data/"
//   file_name_part("/data/line1.csv") == "line1.csv"
//   extension_part("/data/line1.csv") == "csv"
//   drop_extension("/data/line1.csv") == "/data/line1"
#pragma once

#include <string>

namespace trensil {

// The directory with its trailing separator; "" when the path has none.
std::string directory_part(const std::string& path);
// The part after the last separator.
std::string file_name_part(const std::string& path);
// The extension without its dot; "" when the file name has none.
std::string extension_part(const std::string& path);
// The path without the dot and extension of its file name.
std::string drop_extension(const std::string& path);
bool file_exists(const std::string& path);
// Changes the process's current directory; false when it cannot.
bool set_current_directory(const std::string& path);

}  // namespace trensil
