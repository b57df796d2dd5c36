// trensil-cli project: a project file of lines without a window. new, add and list edit and show
// the list; compute, invert and export-dxf run the single-model command on every line, several
// lines at once (-j N, default one a processor), each line in its own run of this program so
// that a line that fails fails alone. One progress line is printed as each line finishes, then a
// summary; the exit status is 1 when any line failed.
#include <algorithm>
#include <iostream>
#include <set>

#include "cli_command.h"
#include "cli_model.h"
#include "io/project_file.h"
#include "line_jobs.h"
#include "output_paths.h"
#include "project/line_files.h"
#include "support/number_format.h"
#include "support/paths.h"
#include "support/text_tokens.h"

namespace trensil::cli {
namespace {

constexpr const char* project_usage =
    "project new|add|list|compute|invert|export-dxf PROJECT.qvj ...\n"
    "  trensil-cli project new PROJECT.qvj [--first N] [--step N] [--mag GRID] [--dtm GRID] "
    "[--sensor GRID] [--force]\n"
    "  trensil-cli project add PROJECT.qvj MODEL.qvx [--number N]\n"
    "  trensil-cli project list PROJECT.qvj\n"
    "  trensil-cli project compute PROJECT.qvj [-j N] [--force]\n"
    "  trensil-cli project invert PROJECT.qvj [-j N] [invert options] [--force]\n"
    "  trensil-cli project export-dxf PROJECT.qvj [-j N] [--force]";

int usage_failure(const std::string& why) {
    std::cerr << "trensil-cli project: " << why << "\nusage: trensil-cli " << project_usage << "\n";
    return exit_usage;
}

int failure(const std::string& why) {
    std::cerr << "trensil-cli project: " << why << "\n";
    return exit_failure;
}

bool read_project_file(const std::string& path, project_definition& project, std::string& error) {
    error = check_input_file(path, "project file");
    if (!error.empty()) return false;
    console_platform ui;
    std::int16_t status = -1;
    read_project(path, project, status, ui);
    if (status != 0) error = "cannot read project file " + path + ": " + ui.last_message();
    return status == 0;
}

bool write_project_file(const std::string& path, const project_definition& project,
                        std::string& error) {
    console_platform ui;
    if (write_project(path, project, ui)) return true;
    error = ui.last_message();
    return false;
}

// A whole number option; `value` kept when absent; false when given and not a whole number.
bool whole_option(const cli_arguments& parsed, const std::string& name, int& value) {
    const std::string text = trim_text(parsed.value(name));
    if (text.empty()) return true;
    if (!is_numeric_text(text) || parse_number(text) != static_cast<int>(parse_number(text)))
        return false;
    value = static_cast<int>(parse_number(text));
    return true;
}

// The project's proposed number for a new line, or one step past the highest line when that is
// taken (a project read back proposes its first number again while a line holds it).
int unused_line_number(const project_definition& project) {
    int number = project.next_line_number;
    for (int i = 1; i <= project.num_lines; ++i)
        if (project.line_numbers(i) >= number)
            number = project.line_numbers(i) + project.line_number_step;
    return number;
}

int run_new(const std::vector<std::string>& args) {
    cli_arguments parsed;
    std::string error;
    if (!parse_cli_arguments(args, {"--first", "--step", "--mag", "--dtm", "--sensor"}, {"--force"},
                             parsed, error))
        return usage_failure(error);
    if (parsed.positional.size() != 1) return usage_failure("one project file is needed");
    std::string path = parsed.positional[0];
    if (extension_part(path).empty()) path += ".qvj";
    project_definition project;
    project.allocate_lines(0);
    if (!whole_option(parsed, "--first", project.first_line_number) ||
        !whole_option(parsed, "--step", project.line_number_step) ||
        project.first_line_number < 0 || project.line_number_step < 1)
        return usage_failure("--first takes a whole number from 0, --step one from 1");
    project.next_line_number = project.first_line_number;
    const char* grids[3] = {"--mag", "--dtm", "--sensor"};
    for (std::size_t k = 0; k < 3; ++k) {
        const std::string grid = parsed.value(grids[k]);
        if (!grid.empty()) project.grid_files[k] = project_relative_path(path, grid);
        project.sample_grid[k] = grid.empty() ? 0 : 1;
    }
    project.sample_settings_present = true;
    if (const int refused = report_refused_outputs(
            "project",
            grid_inputs(parsed.value("--mag"), parsed.value("--dtm"), parsed.value("--sensor")),
            {path}))
        return refused;
    console_platform ui(parsed.has("--force"));
    if (!may_write(path, ui)) return failure(path + " exists; give --force to overwrite it");
    if (!write_project_file(path, project, error)) return failure(error);
    std::cout << "wrote " << path << "\n";
    return exit_ok;
}

int run_add(const std::vector<std::string>& args) {
    cli_arguments parsed;
    std::string error;
    if (!parse_cli_arguments(args, {"--number"}, {}, parsed, error)) return usage_failure(error);
    if (parsed.positional.size() != 2)
        return usage_failure("a project file and a model file are needed");
    const std::string path = parsed.positional[0], model = parsed.positional[1];
    project_definition project;
    if (!read_project_file(path, project, error)) return failure(error);
    error = check_input_file(model, "model file");
    if (!error.empty()) return failure(error);
    if (const int refused = report_refused_outputs("project", {{"the model", model}}, {path}))
        return refused;
    // The proposed number, or past the highest line when that is already taken (a project read
    // back proposes its first number again while a line holds it).
    int number = project.next_line_number;
    for (int i = 1; i <= project.num_lines; ++i)
        if (project.line_numbers(i) >= number)
            number = project.line_numbers(i) + project.line_number_step;
    if (!whole_option(parsed, "--number", number) || number < 0)
        return usage_failure("The line number must be positive");
    const std::string stored = project_relative_path(path, model);
    const int place = enter_line(project, number, stored, drop_extension(stored) + ".bmp");
    if (!write_project_file(path, project, error)) return failure(error);
    std::cout << "line " << number << " (" << place << " of " << project.num_lines
              << "): " << stored << "\n";
    return exit_ok;
}

int run_list(const std::vector<std::string>& args) {
    cli_arguments parsed;
    std::string error;
    if (!parse_cli_arguments(args, {}, {}, parsed, error)) return usage_failure(error);
    if (parsed.positional.size() != 1) return usage_failure("one project file is needed");
    const std::string path = parsed.positional[0];
    project_definition project;
    if (!read_project_file(path, project, error)) return failure(error);
    const char* tabs[3] = {"magnetic grid", "DTM grid", "sensor grid"};
    for (std::size_t k = 0; k < 3; ++k) {
        const std::string grid = trim_text(project.grid_files[k]);
        if (!grid.empty())
            std::cout << tabs[k] << ": " << grid << (project.sample_grid[k] ? " (sampled)" : "")
                      << "\n";
    }
    std::cout << project.num_lines << (project.num_lines == 1 ? " line" : " lines")
              << ", next number " << unused_line_number(project) << "\n";
    for (int i = 1; i <= project.num_lines; ++i) {
        const std::string model = resolve_line_path(path, project.model_paths(i));
        std::cout << project.line_numbers(i) << "  " << project.model_paths(i)
                  << (file_exists(model) ? "" : "  (missing)") << "\n";
    }
    return exit_ok;
}

// The single-model command's arguments for one line.
std::vector<std::string> line_arguments(const std::string& command, const std::string& model,
                                        const std::vector<std::string>& passed) {
    std::vector<std::string> args{command, model};
    // The profile goes beside the model under its own name: "<model>.csv" may be the line's
    // own data file.
    if (command == "compute")
        args.insert(args.end(), {"-o", drop_extension(model) + "_profile.csv"});
    args.insert(args.end(), passed.begin(), passed.end());
    return args;
}

// The last line a command wrote, without its line end.
std::string last_line(const std::string& text) {
    std::string t = text;
    while (!t.empty() && (t.back() == '\n' || t.back() == '\r')) t.pop_back();
    const std::size_t cut = t.find_last_of('\n');
    return cut == std::string::npos ? t : t.substr(cut + 1);
}

// What a failed line said: its messages, without the command's own prefix.
std::string failure_text(const std::string& command, const line_job_result& r) {
    std::string text = r.err;
    const std::string prefix = "trensil-cli " + command + ": ";
    for (std::size_t at = text.find(prefix); at != std::string::npos; at = text.find(prefix))
        text.erase(at, prefix.size());
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    for (char& c : text)
        if (c == '\n') c = ';';
    if (text.empty()) text = "ended with status " + std::to_string(r.exit_status);
    return text;
}

int run_lines(const std::string& command, const std::vector<std::string>& args) {
    // -j N is the project's; everything else but the project file goes to each line's command.
    std::vector<std::string> passed;
    std::string path;
    int jobs = processor_count();
    // Options of the line commands that take a value, and those that name one output file,
    // which cannot serve every line.
    const std::set<std::string> valued = {"--body",         "--iterations", "--first-station",
                                          "--last-station", "--solver",     "--noise-mag",
                                          "--noise-grav"};
    const std::set<std::string> single_file = {"-o", "--csv", "--plan", "--3d", "--data"};
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (single_file.count(args[i])) {
            return usage_failure(args[i] +
                                 " names one file; each line's output goes beside its model");
        } else if (valued.count(args[i]) && i + 1 < args.size()) {
            passed.push_back(args[i]);
            passed.push_back(args[++i]);
        } else if (args[i] == "-j") {
            if (i + 1 >= args.size() || !is_numeric_text(args[i + 1]) ||
                parse_number(args[i + 1]) < 1)
                return usage_failure("-j takes the number of lines to run at once, from 1");
            jobs = static_cast<int>(parse_number(args[++i]));
        } else if (path.empty() && !args[i].empty() && args[i][0] != '-') {
            path = args[i];
        } else {
            passed.push_back(args[i]);
        }
    }
    if (path.empty()) return usage_failure("one project file is needed");
    project_definition project;
    std::string error;
    if (!read_project_file(path, project, error)) return failure(error);
    if (project.num_lines < 1) {
        std::cout << "the project has no lines\n";
        return exit_ok;
    }

    std::vector<line_job> work;
    for (int i = 1; i <= project.num_lines; ++i) {
        const std::string model = resolve_line_path(path, project.model_paths(i));
        work.push_back({project.line_numbers(i), line_arguments(command, model, passed)});
    }
    std::vector<int> failed;
    int finished = 0;
    const int total = static_cast<int>(work.size());
    run_line_jobs(work, std::min(jobs, total), [&](const line_job& job, const line_job_result& r) {
        ++finished;
        std::cout << "[" << finished << "/" << total << "] line " << job.number << ": ";
        if (r.exit_status == 0) {
            std::cout << last_line(r.out) << "\n";
        } else {
            failed.push_back(job.number);
            std::cout << "FAILED: " << failure_text(command, r) << "\n";
        }
        std::cout.flush();
    });
    std::cout << command << ": " << total - static_cast<int>(failed.size()) << " of " << total
              << (total == 1 ? " line" : " lines") << " done";
    if (!failed.empty()) {
        std::sort(failed.begin(), failed.end());
        std::cout << ", " << failed.size() << " failed (line";
        if (failed.size() > 1) std::cout << "s";
        for (std::size_t k = 0; k < failed.size(); ++k)
            std::cout << (k == 0 ? " " : ", ") << failed[k];
        std::cout << ")";
    }
    std::cout << "\n";
    return failed.empty() ? exit_ok : exit_failure;
}

int run_project(const std::vector<std::string>& args) {
    if (args.empty()) return usage_failure("a project command is needed");
    const std::string what = args[0];
    const std::vector<std::string> rest(args.begin() + 1, args.end());
    if (what == "new") return run_new(rest);
    if (what == "add") return run_add(rest);
    if (what == "list") return run_list(rest);
    if (what == "compute" || what == "invert" || what == "export-dxf") return run_lines(what, rest);
    return usage_failure("unknown project command '" + what + "'");
}

const cli_command_registration project_registration{"project", project_usage, run_project};

}  // namespace
}  // namespace trensil::cli
