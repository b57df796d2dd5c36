// The files a command may write: never one it reads (the model, its data file, a grid), with or
// without --force, and never two outputs to one file. Paths are compared as the files they name,
// through symbolic links, "..", and hard links, whether or not the output exists yet.
//
//   if (const int refused = report_refused_outputs(
//           "invert", model_inputs(model_path, model.data_file), {out, csv}))
//       return refused;   // "trensil-cli invert: two outputs name one file: fit.qvx" (status 2)
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

// The same, with `why` written to standard error as the one line of "trensil-cli COMMAND".
int report_refused_outputs(const std::string& command, const std::vector<input_file>& inputs,
                           const std::vector<std::string>& outputs);

// What a command that reads a model reads: the model and its data file.
std::vector<input_file> model_inputs(const std::string& model_path, const std::string& data_file);
// What a command that samples grids reads: the magnetic, DTM and sensor grids ("" for none).
std::vector<input_file> grid_inputs(const std::string& mag, const std::string& dtm,
                                    const std::string& sensor);

}  // namespace trensil::cli
