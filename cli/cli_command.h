// The commands of trensil-cli. Each command lives in its own file and registers itself:
//
//   static const cli_command_registration compute_registration{
//       "compute", "compute MODEL.qvx [-o OUT.csv] [--data DATAFILE]", run_compute};
//
// A command returns the exit status: 0 success, 1 failure (one message on standard error),
// 2 bad usage.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace trensil::cli {

inline constexpr int exit_ok = 0;
inline constexpr int exit_failure = 1;
inline constexpr int exit_usage = 2;

using command_function = std::function<int(const std::vector<std::string>& args)>;

struct cli_command {
    std::string name;
    std::string usage;  // one line, shown by --help and on bad usage
    command_function run;
};

std::vector<cli_command>& cli_commands();

struct cli_command_registration {
    cli_command_registration(std::string name, std::string usage, command_function run) {
        cli_commands().push_back({std::move(name), std::move(usage), std::move(run)});
    }
};

}  // namespace trensil::cli
