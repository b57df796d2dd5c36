// What the batch tool's commands share: their argument parsing, and loading a model with its
// data the way a project line is loaded, failing with one clear line instead of a dialog.
//
//   cli_arguments parsed;
//   if (!parse_cli_arguments(args, {"-o", "--data"}, {"--force"}, parsed, error)) return 2;
//   console_platform ui(parsed.has("--force"));
//   model_record model;
//   if (!load_cli_model({parsed.positional[0], parsed.value("--data"), true}, model, ui, error))
//       ...  // error: "model file 'x.qvx' is truncated ..."
#pragma once

#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "console_platform.h"
#include "core/model_record.h"

namespace trensil::cli {

struct cli_arguments {
    std::vector<std::string> positional;
    std::map<std::string, std::string> values;  // options that take a value
    std::set<std::string> flags;                // options without a value

    bool has(const std::string& flag) const { return flags.count(flag) > 0; }
    // The option's value, or "" when it was not given.
    std::string value(const std::string& option) const {
        const auto v = values.find(option);
        return v == values.end() ? std::string() : v->second;
    }
};

// Splits the arguments into positional ones, options with a value and flags. False with `error`
// on an unknown option or an option without its value.
bool parse_cli_arguments(const std::vector<std::string>& args,
                         const std::set<std::string>& value_options,
                         const std::set<std::string>& flag_options, cli_arguments& parsed,
                         std::string& error);

struct cli_model_request {
    std::string model_path;
    std::string data_override;  // replaces the data file named in the model when not empty
    bool with_data = true;      // read the data and set up the profile
};

// Reads the model (any version) and, when asked, its data: the profile is set up and every body
// has its response array, ready to compute. False with one line in `error` when the model or the
// data file is missing, empty, not text or truncated, or a step of the loading failed.
bool load_cli_model(const cli_model_request& request, model_record& model, console_platform& ui,
                    std::string& error);

// "" when `path` names a readable, non-empty text file; else why not, naming it as `what`.
std::string check_input_file(const std::string& path, const std::string& what);

// When a message was shown since message number `first` (the engine reports so while computing:
// a body whose response stopped, a solid that could not be built), writes the messages not yet
// written to `err`, one a line after `prefix`, and returns true: the command then fails instead
// of writing results that are not whole.
bool report_engine_failures(console_platform& ui, std::size_t first, std::ostream& err,
                            const std::string& prefix);

// Asks the overwrite question for an existing `path`: true when it may be written.
bool may_write(const std::string& path, console_platform& ui);

}  // namespace trensil::cli
