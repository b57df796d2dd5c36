// trensil-cli: batch work on model files without a window.
#include <algorithm>
#include <iostream>

#include "cli_command.h"

namespace trensil::cli {

std::vector<cli_command>& cli_commands() {
    static std::vector<cli_command> commands;
    return commands;
}

}  // namespace trensil::cli

namespace {

void print_usage(std::ostream& out) {
    out << "usage: trensil-cli COMMAND [ARGS]\n\ncommands:\n";
    auto commands = trensil::cli::cli_commands();
    std::sort(commands.begin(), commands.end(),
              [](const auto& a, const auto& b) { return a.name < b.name; });
    for (const auto& c : commands) out << "  trensil-cli " << c.usage << "\n";
    out << "\nEach command takes --help.\n";
}

}  // namespace

int main(int argc, char** argv) {
    using namespace trensil::cli;
    if (argc < 2) {
        print_usage(std::cerr);
        return exit_usage;
    }
    const std::string name = argv[1];
    if (name == "--help" || name == "-h" || name == "help") {
        print_usage(std::cout);
        return exit_ok;
    }
    for (const auto& c : cli_commands()) {
        if (c.name != name) continue;
        std::vector<std::string> args(argv + 2, argv + argc);
        if (std::find(args.begin(), args.end(), "--help") != args.end()) {
            std::cout << "usage: trensil-cli " << c.usage << "\n";
            return exit_ok;
        }
        return c.run(args);
    }
    std::cerr << "trensil-cli: unknown command '" << name << "'\n";
    print_usage(std::cerr);
    return exit_usage;
}
