// trensil-cli new-line: the model file of a new line for a data file, as the project window's
// "Save New Trensil File" makes it: the header alone (data file, columns, Earth's field), no
// bodies. The columns come from the file's names line when it has one, or from --columns.
#include <iostream>
#include <map>

#include "cli_command.h"
#include "cli_model.h"
#include "field_option.h"
#include "io/load_line.h"
#include "io/location_reader.h"
#include "io/model_file_writer.h"
#include "output_paths.h"
#include "project/column_names.h"
#include "support/paths.h"
#include "support/text_tokens.h"

namespace trensil::cli {
namespace {

constexpr const char* new_line_usage =
    "new-line DATAFILE [--columns x=N,y=N,z=N,dtm=N,mag=N,grav=N] [--field F,I,D] "
    "[-o LINE.qvx] [--force]";

int usage_failure(const std::string& why) {
    std::cerr << "trensil-cli new-line: " << why << "\nusage: trensil-cli " << new_line_usage
              << "\n";
    return exit_usage;
}

// The first line of the file that holds anything.
std::string first_line(const std::string& path) {
    location_line_reader reader;
    if (!reader.open(path)) return "";
    while (!reader.at_end()) {
        std::string line = reader.read_line();
        if (!trim_text(line).empty()) return line;
    }
    return "";
}

// "x=3,y=4,mag=12" into the columns; false with the reason.
bool apply_columns(const std::string& text, data_definition& d, std::string& why) {
    const std::map<std::string, std::int32_t*> keys = {
        {"x", &d.xpos},      {"y", &d.ypos},       {"z", &d.zpos},
        {"sensor", &d.zpos}, {"dtm", &d.dtm},      {"ground", &d.dtm},
        {"mag", &d.magpos},  {"grav", &d.gravpos}, {"gravity", &d.gravpos}};
    std::string rest = text;
    while (!trim_text(rest).empty()) {
        const std::string item = take_word(rest);
        const std::size_t eq = item.find('=');
        const std::string key = item.substr(0, eq);
        const auto field = keys.find(key);
        if (eq == std::string::npos || field == keys.end() ||
            !is_numeric_text(item.substr(eq + 1)) || parse_number(item.substr(eq + 1)) < 0) {
            why =
                "--columns takes x=N,y=N,z=N,dtm=N,mag=N,grav=N (column numbers from 1, 0 for "
                "none), not '" +
                item + "'";
            return false;
        }
        *field->second = static_cast<std::int32_t>(parse_number(item.substr(eq + 1)));
    }
    return true;
}

std::string column_text(const char* role, int column, const std::vector<std::string>& names) {
    std::string text = std::string(role) + " " + std::to_string(column);
    if (column >= 1 && column <= static_cast<int>(names.size()))
        text += " (" + names[static_cast<std::size_t>(column - 1)] + ")";
    return text;
}

int run_new_line(const std::vector<std::string>& args) {
    cli_arguments parsed;
    std::string error;
    if (!parse_cli_arguments(args, {"-o", "--columns", "--field"}, {"--force"}, parsed, error))
        return usage_failure(error);
    if (parsed.positional.size() != 1) return usage_failure("one data file is needed");
    const std::string data = parsed.positional[0];
    error = check_input_file(data, "data file");
    if (!error.empty()) {
        std::cerr << "trensil-cli new-line: " << error << "\n";
        return exit_failure;
    }
    std::string out = parsed.value("-o");
    if (out.empty()) out = drop_extension(data) + ".qvx";
    if (const int refused = report_refused_outputs("new-line", {{"the data file", data}}, {out}))
        return refused;

    model_record model;
    reset_model(model);
    model.num_bodies = 0;
    model.data_file = data;  // as given: the user chooses an absolute or a relative path
    model.xpos = model.ypos = model.magpos = 0;
    const std::string heading = first_line(data);
    const bool has_names = columns_from_names_line(heading, model);
    const std::vector<std::string> names =
        has_names ? decode_names_line(heading) : std::vector<std::string>{};
    if (!has_names) {
        model.nhead = 1;
        model.names_line = 0;
    }
    if (!apply_columns(parsed.value("--columns"), model, error) ||
        !apply_field_option(parsed.value("--field"), model, error))
        return usage_failure(error);
    if (model.xpos < 1 || model.ypos < 1 || (model.magpos < 1 && model.gravpos < 1)) {
        std::cerr << "trensil-cli new-line: "
                  << (has_names ? "the names line of " + data + " does not show"
                                : data + " has no names line to show")
                  << " which columns hold x, y and the magnetics or gravity; give them with "
                     "--columns x=N,y=N,mag=N\n";
        return exit_failure;
    }

    // The data must read with these columns, as the window would read them.
    console_platform ui(parsed.has("--force"));
    file_search_state search;
    transform_state transforms;
    load_line_services services{ui, search, transforms, nullptr};
    model_record check = model;
    std::int16_t status = -1;
    load_model_data(check, status, services);
    if (status != 0) {
        std::cerr << "trensil-cli new-line: " << data << " does not read with these columns: "
                  << (ui.messages.empty() ? "no station was read" : ui.last_message()) << "\n";
        return exit_failure;
    }
    if (!may_write(out, ui)) {
        std::cerr << "trensil-cli new-line: " << out << " exists; give --force to overwrite it\n";
        return exit_failure;
    }
    if (!write_model_core(true, out, model, ui)) {
        ui.flush_messages(std::cerr, "trensil-cli new-line: ");
        return exit_failure;
    }
    std::cout << "columns " << column_text("x", model.xpos, names) << ", "
              << column_text("y", model.ypos, names);
    if (model.zpos >= 1) std::cout << ", " << column_text("sensor", model.zpos, names);
    if (model.dtm >= 1) std::cout << ", " << column_text("dtm", model.dtm, names);
    if (model.magpos >= 1) std::cout << ", " << column_text("mag", model.magpos, names);
    if (model.gravpos >= 1) std::cout << ", " << column_text("gravity", model.gravpos, names);
    std::cout << "; stations " << check.profile.num_stations << "; wrote " << out << "\n";
    return exit_ok;
}

const cli_command_registration new_line_registration{"new-line", new_line_usage, run_new_line};

}  // namespace
}  // namespace trensil::cli
