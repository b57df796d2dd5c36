#include "output_paths.h"

#include <filesystem>
#include <iostream>

#include "cli_command.h"

namespace trensil::cli {

namespace {

namespace fs = std::filesystem;

// Whether two paths name one file: the same file on the disk when both exist (a hard link
// included), else the same path once links, "." and ".." are resolved.
bool same_file(const std::string& a, const std::string& b) {
    std::error_code ec;
    if (fs::exists(a, ec) && fs::exists(b, ec)) {
        const bool equal = fs::equivalent(a, b, ec);
        if (!ec) return equal;
    }
    const fs::path ca = fs::weakly_canonical(fs::absolute(a, ec), ec);
    const fs::path cb = fs::weakly_canonical(fs::absolute(b, ec), ec);
    return ca == cb;
}

}  // namespace

int refused_output_paths(const std::vector<input_file>& inputs,
                         const std::vector<std::string>& outputs, std::string& why) {
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        if (outputs[i].empty()) continue;
        for (std::size_t j = i + 1; j < outputs.size(); ++j) {
            if (outputs[j].empty() || !same_file(outputs[i], outputs[j])) continue;
            why = "two outputs name one file: " + outputs[i] +
                  (outputs[i] == outputs[j] ? "" : " and " + outputs[j]);
            return exit_usage;
        }
    }
    for (const std::string& out : outputs) {
        if (out.empty()) continue;
        for (const input_file& in : inputs) {
            if (in.path.empty() || !same_file(out, in.path)) continue;
            why = "will not write " + out + ": it is " + in.what + " (" + in.path +
                  "); name another output";
            return exit_failure;
        }
    }
    return exit_ok;
}

int report_refused_outputs(const std::string& command, const std::vector<input_file>& inputs,
                           const std::vector<std::string>& outputs) {
    std::string why;
    const int refused = refused_output_paths(inputs, outputs, why);
    if (refused != exit_ok) std::cerr << "trensil-cli " << command << ": " << why << "\n";
    return refused;
}

std::vector<input_file> model_inputs(const std::string& model_path, const std::string& data_file) {
    return {{"the model", model_path}, {"the model's data file", data_file}};
}

std::vector<input_file> grid_inputs(const std::string& mag, const std::string& dtm,
                                    const std::string& sensor) {
    return {{"the magnetic grid", mag}, {"the DTM grid", dtm}, {"the sensor grid", sensor}};
}

}  // namespace trensil::cli
