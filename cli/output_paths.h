// The files a command may write: never one it reads (the model, its data file, a grid), with or
// without --force, and never two outputs to one file. Paths are compared as the files they name,
// through symbolic links, "..", and hard links, whether or not the output exists yet.
//
//   std::string why;
//   const int refused = refused_output_paths(
//       {{"the model", model_path}, {"the model's data file", model.data_file}}, {out, csv}, why);
//   if (refused != exit_ok) { std::cerr << "trensil-cli invert: " << why << "\n"; return refused; }
#pragma once

#include <string>
#include <vector>

namespace trensil::cli {

struct input_file {
    std::string what;  // "the model", "the model's data file", ...
    std::string path;
};

// exit_ok when every output may be written; exit_usage when two outputs name one file;
// exit_failure when an output names one of the inputs. `why` says which. Empty paths are not
// looked at.
int refused_output_paths(const std::vector<input_file>& inputs,
                         const std::vector<std::string>& outputs, std::string& why);

}  // namespace trensil::cli
