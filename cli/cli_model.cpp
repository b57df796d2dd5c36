#include "cli_model.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>

#include "io/coordinate_transform.h"
#include "io/file_search.h"
#include "io/load_line.h"
#include "io/model_file_reader.h"
#include "support/paths.h"
#include "support/text_tokens.h"

namespace trensil::cli {

bool parse_cli_arguments(const std::vector<std::string>& args,
                         const std::set<std::string>& value_options,
                         const std::set<std::string>& flag_options, cli_arguments& parsed,
                         std::string& error) {
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (value_options.count(a)) {
            if (i + 1 >= args.size()) {
                error = "option " + a + " needs a value";
                return false;
            }
            parsed.values[a] = args[++i];
        } else if (flag_options.count(a)) {
            parsed.flags.insert(a);
        } else if (a.size() > 1 && a[0] == '-') {
            error = "unknown option " + a;
            return false;
        } else {
            parsed.positional.push_back(a);
        }
    }
    return true;
}

namespace {

std::string in_quotes(const std::string& path) {
    return "'" + path + "'";
}

std::string read_head(const std::string& path, std::size_t bytes) {
    std::ifstream in(path, std::ios::binary);
    std::string head(bytes, '\0');
    in.read(head.data(), static_cast<std::streamsize>(bytes));
    head.resize(static_cast<std::size_t>(in.gcount()));
    return head;
}

// The last line of a data file that does not end with a line end and holds fewer words than the
// columns the model reads: the file was cut short in the middle of a station.
bool data_ends_inside_a_line(const std::string& path, const data_definition& d) {
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    const std::streamoff size = in.tellg();
    if (size <= 0) return false;
    const std::streamoff tail = std::min<std::streamoff>(size, 4096);
    in.seekg(size - tail);
    std::string text(static_cast<std::size_t>(tail), '\0');
    in.read(text.data(), tail);
    if (text.back() == '\n' || text.back() == '\r') return false;
    std::string last = text.substr(text.find_last_of("\r\n") + 1);
    const int needed = std::max({d.xpos, d.ypos, d.zpos, d.dtm, d.magpos, d.gravpos});
    int words = 0;
    while (!take_word(last).empty()) ++words;
    return words < needed;
}

}  // namespace

std::string check_input_file(const std::string& path, const std::string& what) {
    std::error_code ec;
    if (path.empty()) return "no " + what + " was given";
    if (!std::filesystem::exists(path, ec)) return what + " " + in_quotes(path) + " does not exist";
    if (!std::filesystem::is_regular_file(path, ec))
        return what + " " + in_quotes(path) + " is not a file";
    std::ifstream probe(path, std::ios::binary);
    if (!probe.is_open()) return what + " " + in_quotes(path) + " cannot be opened";
    if (std::filesystem::file_size(path, ec) == 0)
        return what + " " + in_quotes(path) + " is empty";
    const std::string head = read_head(path, 65536);
    const auto control = std::count_if(head.begin(), head.end(), [](char c) {
        const auto u = static_cast<unsigned char>(c);
        return u == 0 || (u < 32 && c != '\n' && c != '\r' && c != '\t');
    });
    if (control > 0) return what + " " + in_quotes(path) + " is not a text file";
    return std::string();
}

bool report_engine_failures(console_platform& ui, std::size_t first, std::ostream& err,
                            const std::string& prefix) {
    if (ui.messages.size() <= first) return false;
    ui.flush_messages(err, prefix);
    return true;
}

bool may_write(const std::string& path, console_platform& ui) {
    if (!file_exists(path)) return true;
    return ui.ask_yes_no("That file already, exists, overwrite?", "Save");
}

bool load_cli_model(const cli_model_request& request, model_record& model, console_platform& ui,
                    std::string& error) {
    error = check_input_file(request.model_path, "model file");
    if (error.empty() && !request.data_override.empty())
        error = check_input_file(request.data_override, "data file");
    if (!error.empty()) return false;

    // A data file that cannot be found is not asked for: the reading goes on with the bodies and
    // the missing file is reported below, or replaced by the one given.
    ui.fixed_answers["Cancel reading rest of specification file?"] = true;
    if (!request.data_override.empty()) ui.open_file_answer = request.data_override;

    reset_model(model);
    model.num_bodies = 0;
    file_search_state search;
    transform_state transforms;
    model_file_services reader{ui, search, nullptr};
    model_read_summary summary;
    std::int16_t status = 0;
    read_model_file(0, model, request.model_path, status, reader, &summary);
    if (status != 0) {
        error =
            "cannot read model file " + in_quotes(request.model_path) + ": " + ui.last_message();
        return false;
    }
    if (summary.truncated) {
        error = "model file " + in_quotes(request.model_path) +
                " is truncated: it ends inside its header or body lines";
        return false;
    }
    if (!request.data_override.empty()) model.data_file = request.data_override;
    if (!request.with_data) return true;

    if (!file_exists(model.data_file)) {
        error = "cannot find data file " + in_quotes(model.data_file) + " named in " +
                in_quotes(request.model_path) + " (give its path with --data)";
        return false;
    }
    error = check_input_file(model.data_file, "data file");
    if (!error.empty()) return false;
    if (data_ends_inside_a_line(model.data_file, model)) {
        error =
            "data file " + in_quotes(model.data_file) + " is truncated: its last line is cut short";
        return false;
    }

    load_line_services services{ui, search, transforms, nullptr};
    const std::size_t messages_before = ui.messages.size();
    try {
        load_model_data(model, status, services);
    } catch (const std::bad_alloc&) {
        error = "not enough memory for data file " + in_quotes(model.data_file);
        return false;
    }
    if (status != 0) {
        error =
            ui.messages.size() > messages_before
                ? "cannot load data file " + in_quotes(model.data_file) + ": " + ui.last_message()
                : "no station could be read from data file " + in_quotes(model.data_file);
        return false;
    }
    return true;
}

}  // namespace trensil::cli
