#include "io/project_file.h"

#include <new>

#include "io/model_file_fields.h"
#include "io/model_line_source.h"
#include "support/atomic_file.h"
#include "support/paths.h"
#include "support/text_tokens.h"

namespace trensil {

void project_definition::allocate_lines(int count) {
    const int hi = count + project_spare_lines;
    line_numbers.resize(0, hi);
    model_paths.resize(0, hi);
    picture_paths.resize(0, hi);
    models.resize(0, hi);
    profiles.resize(0, hi);
    for (model_record& m : models) reset_model(m);
}

namespace {

constexpr const char* format_message = "The specified file does not have the corrext format";

// A line past the end of a project file is an error: the file promised more lines than it has.
std::string required_line(model_line_source& lines) {
    if (lines.at_end()) throw file_run_error("Input past end of file");
    return lines.next();
}

// Reads a project into `project`; false when the file is not a project file.
bool read_project_lines(model_line_source& lines, project_definition& project) {
    if (!lines.next().starts_with("Trensil Project")) return false;

    std::string l2 = required_line(lines);
    std::string first = take_word(l2);
    if (!is_numeric_text(first) || parse_number(first) < 0) first = "1000";
    project.first_line_number = to_i32(parse_number(first));
    if (project.first_line_number == 0) project.first_line_number = 10000;
    project.next_line_number = project.first_line_number;
    // The step is a whole number: one between 0 and 1 would be kept as 0, written as 0 and read
    // back as 10, so it is tested after rounding and the file reads back as it was written.
    const std::string step = take_word(l2);
    const double step_value = is_numeric_text(step) ? parse_number(step) : 0.0;
    project.line_number_step = step_value > 0 ? to_i32(step_value) : 10;
    if (project.line_number_step < 1) project.line_number_step = 10;

    for (std::string& grid : project.grid_files) grid = required_line(lines);

    std::string l6 = required_line(lines);
    const std::string count_text = take_word(l6);
    if (!is_numeric_text(count_text) || parse_number(count_text) < 0) return false;
    const std::int32_t count = to_i32(parse_number(count_text));
    if (count > max_project_lines) throw file_run_error("Out of memory");
    if (lines.lines_left() < static_cast<std::size_t>(count) * 3)
        throw file_run_error("Input past end of file");
    project.num_lines = count;
    project.allocate_lines(count);

    for (int i = 1; i <= count; ++i) {
        std::string number = required_line(lines);
        project.line_numbers(i) = take_i32(number);
        if (project.line_numbers(i) > project.next_line_number)
            project.next_line_number = project.line_numbers(i) + project.line_number_step;
        project.model_paths(i) = required_line(lines);
        project.picture_paths(i) = required_line(lines);
    }

    project.sample_settings_present = !lines.at_end();
    if (project.sample_settings_present) {
        std::string ticks = lines.next();
        for (std::int32_t& tick : project.sample_grid) tick = take_i32(ticks);
        std::string depth_height = lines.next();
        project.value_is_depth = take_i32(depth_height);
        project.value_is_height = take_i32(depth_height);
    }
    return true;
}

}  // namespace

void read_project(const std::string& path, project_definition& project, std::int16_t& status,
                  platform& ui) {
    status = -1;
    if (!file_exists(path)) return;
    try {
        model_line_source lines;
        std::string error;
        if (!lines.open(path, error)) throw file_run_error(error);
        if (!read_project_lines(lines, project)) {
            ui.show_message(format_message);
            return;
        }
        status = 0;
    } catch (const std::bad_alloc&) {
        ui.show_message("An error occurred while saving the file: Out of memory");
    } catch (const std::exception& e) {
        ui.show_message(std::string("An error occurred while saving the file: ") + e.what());
    }
}

std::string project_file_text(const project_definition& project) {
    std::string text = std::string(project_file_head) + "\r\n";
    text += print_list().add(project.first_line_number).add(project.line_number_step).line();
    for (const std::string& grid : project.grid_files) text += grid + "\r\n";
    text += print_list().add(project.num_lines).line();
    if (project.num_lines > project.line_numbers.hi() ||
        project.num_lines > project.model_paths.hi() ||
        project.num_lines > project.picture_paths.hi())
        throw file_run_error("Subscript out of range");
    for (int i = 1; i <= project.num_lines; ++i) {
        text += print_list().add(project.line_numbers(i)).line();
        text += project.model_paths(i) + "\r\n";
        text += project.picture_paths(i) + "\r\n";
    }
    print_list ticks, depth_height;
    for (std::int32_t tick : project.sample_grid) ticks.add(tick);
    depth_height.add(project.value_is_depth).add(project.value_is_height);
    return text + ticks.line() + depth_height.line();
}

bool write_project(const std::string& path, const project_definition& project, platform& ui) {
    try {
        const std::string text = project_file_text(project);
        atomic_file out(path);
        if (!out.is_open()) throw file_run_error(out.error());
        out.stream() << text;
        if (!out.commit()) throw file_run_error(out.error());
        return true;
    } catch (const std::exception& e) {
        ui.show_message(std::string("An error occurred while saving the file: ") + e.what());
        return false;
    }
}

}  // namespace trensil
