// trensil-cli convert: reads a model file of any format version and writes it in the current one.
#include <iostream>

#include "cli_command.h"
#include "cli_model.h"
#include "io/model_file_writer.h"
#include "output_paths.h"

namespace trensil::cli {
namespace {

constexpr const char* convert_usage = "convert MODEL.qvx -o NEW.qvx [--force]";

int run_convert(const std::vector<std::string>& args) {
    cli_arguments parsed;
    std::string error;
    if (!parse_cli_arguments(args, {"-o"}, {"--force"}, parsed, error) ||
        parsed.positional.size() != 1 || parsed.value("-o").empty()) {
        std::cerr << "trensil-cli convert: "
                  << (error.empty() ? "one model file and -o NEW.qvx are needed" : error)
                  << "\nusage: trensil-cli " << convert_usage << "\n";
        return exit_usage;
    }
    const std::string out = parsed.value("-o");
    console_platform ui(parsed.has("--force"));
    model_record model;
    if (!load_cli_model({parsed.positional[0], "", false}, model, ui, error)) {
        std::cerr << "trensil-cli convert: " << error << "\n";
        return exit_failure;
    }
    if (const int refused = report_refused_outputs(
            "convert", model_inputs(parsed.positional[0], model.data_file), {out}))
        return refused;
    if (!may_write(out, ui)) {
        std::cerr << "trensil-cli convert: " << out << " exists; give --force to overwrite it\n";
        return exit_failure;
    }
    if (!write_model_core(false, out, model, ui)) {
        std::cerr << "trensil-cli convert: " << ui.last_message() << "\n";
        return exit_failure;
    }
    std::cout << "wrote " << out << " (" << model.num_bodies << " bodies)\n";
    return exit_ok;
}

const cli_command_registration convert_registration{"convert", convert_usage, run_convert};

}  // namespace
}  // namespace trensil::cli
