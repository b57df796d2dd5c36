// The project window's life and its project file: coming up, going down, new, open and save.
#include <filesystem>
#include <system_error>

#include "project/line_files.h"
#include "project/project_controls.h"
#include "project/project_recovery.h"
#include "project/project_workspace.h"
#include "support/number_format.h"
#include "support/paths.h"
#include "support/text_tokens.h"
#include "workspace/modelling_workspace.h"

#ifndef TRENSIL_VERSION_MAJOR
#define TRENSIL_VERSION_MAJOR 0
#define TRENSIL_VERSION_MINOR 1
#endif

namespace trensil {

namespace {

constexpr const char* open_filter = "Trensil Project Files(*.qvj)|*.qvj|All files (*.*)|*.*";
constexpr const char* save_filter = "Trensil Project (*.qvj)|*.qvj|All files (*.*)|*.*";

std::string get(const project_workspace& ws, const char* key) {
    return ws.settings.get_setting(settings_application, project_settings_section, key);
}
void put(project_workspace& ws, const char* key, const std::string& value) {
    ws.settings.save_setting(settings_application, project_settings_section, key, value);
}

// Offers to save the lines of the project before they are dropped; `question` is the text.
void offer_to_save(project_workspace& ws, const char* question) {
    if (ws.project.num_lines < 1 || !ws.ui.ask_yes_no(question)) return;
    if (ws.project_file.empty()) {
        file_save_project(ws);
    } else {
        write_current_project(ws);
    }
}

// A stored project path taken to another project file: still pointing at the same file.
std::string moved_path(const std::string& old_project, const std::string& new_project,
                       const std::string& stored) {
    if (stored.empty()) return stored;
    return project_relative_path(new_project, resolve_line_path(old_project, stored));
}

}  // namespace

std::string project_form_caption() {
    const int minor = TRENSIL_VERSION_MINOR;
    return "Trensil Project Version " + std::to_string(TRENSIL_VERSION_MAJOR) + "." +
           (minor < 10 ? "0" : "") + std::to_string(minor) + " July 2021";
}

void project_form_load(project_workspace& ws) {
    project_view& view = *ws.view;
    {
        project_display_guard guard(ws);
        reset_model(ws.scratch);
        ws.scratch.num_bodies = 0;
        clear_modeller_project_parameters(ws);
        view.set_caption(project_form_caption());
        view.set_items("Combo_names", {"N/A"});
        view.select_item("Combo_names", 0);
        show_column_positions(ws);
        view.set_text("Text_surface_elevation", general_number(ws.digitising.surface_elevation));
        view.set_text("Text_sensor_offset", general_number(ws.digitising.sensor_offset));
        view.set_text("Text_num_digitised_points", "0");
        show_digitising_frames(ws, false);
        for (int tab = 0; tab < grid_tab_count; ++tab) view.show_grid(tab, nullptr);
    }

    const std::string directory = get(ws, "WorkingDirectory");
    if (directory != no_setting_value) set_current_directory(directory);
    // "width;height"; an empty value counts as absent.
    const std::string size = get(ws, "FormSize");
    const std::size_t split = size.find(';');
    if (size != no_setting_value && split != std::string::npos) {
        const std::string width = size.substr(0, split), height = size.substr(split + 1);
        if (is_numeric_text(width) && is_numeric_text(height)) {
            project_display_guard guard(ws);
            view.resize_form(static_cast<int>(parse_number(width)),
                             static_cast<int>(parse_number(height)));
        }
    }
}

void project_form_unload(project_workspace& ws) {
    std::error_code error;
    const auto directory = std::filesystem::current_path(error);
    if (!error) put(ws, "WorkingDirectory", directory.string());
    put(ws, "FormSize",
        std::to_string(ws.view->form_width()) + ";" + std::to_string(ws.view->form_height()));
}

int clear_modeller_project_parameters(project_workspace& ws) {
    try {
        ws.project = project_definition{};
        ws.project.allocate_lines(0);
        ws.project_file.clear();
        ws.current_line = 0;
        display_qvx_list(ws);
        build_body_list(ws);
        display_QVX_line(ws);
        project_work_saved(ws);
        return 0;
    } catch (const std::exception& e) {
        ws.ui.show_message(
            std::string("An error occurred while clearing the project definitions: ") + e.what());
        return -1;
    }
}

void file_create_project(project_workspace& ws) {
    offer_to_save(ws, "That current porject has lines defined, do you wish to save them first?");
    if (clear_modeller_project_parameters(ws) == 0) ws.view->set_caption(project_form_caption());
}

int file_open_project(project_workspace& ws) {
    offer_to_save(ws, "That current project has lines defined, do you wish to save them first?");
    const auto chosen =
        ws.ui.choose_open_file("Select the Modeller Project file", open_filter, ws.project_file);
    if (!chosen) return -1;
    return open_project_file(ws, *chosen);
}

int open_project_file(project_workspace& ws, const std::string& path) {
    if (!file_exists(path)) {
        ws.ui.show_message("That file does not exist");
        return -1;
    }
    if (const auto copy = offer_project_recovery(ws, path)) return recover_project(ws, *copy);
    return show_project_file(ws, path, path);
}

int show_project_file(project_workspace& ws, const std::string& read_path,
                      const std::string& path) {
    try {
        project_definition read;
        std::int16_t status = 0;
        read_project(read_path, read, status, ws.ui);
        if (status != 0) {
            ws.ui.show_message("There was a problem reading that file");
            return -1;
        }
        ws.project = std::move(read);
        ws.project_file = path;
        ws.current_line = 0;
        project_work_saved(ws);
        ws.view->set_caption(path.empty() ? project_form_caption()
                                          : "Trensil Project: " + file_name_part(path));
        show_sample_settings(ws);
        for (int tab = 0; tab < grid_tab_count; ++tab) {
            const std::string& name = ws.project.grid_files[static_cast<std::size_t>(tab)];
            ws.view->set_text(grid_selector_name(tab), name);
            open_tab_grid(ws, tab, resolve_line_path(path, trim_text(name)));
        }
        ws.ui.set_busy(true);
        for (int i = 1; i <= ws.project.num_lines; ++i) load_project_line(ws, i);
        ws.ui.set_busy(false);
        if (ws.project.num_lines >= 1) ws.current_line = 1;
        display_qvx_list(ws);
        build_body_list(ws);
        display_QVX_line(ws);
        return 0;
    } catch (const std::exception& e) {
        ws.ui.set_busy(false);
        ws.ui.show_message(std::string("An error occurred while reading the file: ") + e.what());
        return -1;
    }
}

int file_save_project(project_workspace& ws) {
    auto chosen = ws.ui.choose_save_file("Select the trensil project file to create", save_filter,
                                         ws.project_file);
    if (!chosen || trim_text(*chosen).empty()) return -1;
    std::string path = trim_text(*chosen);
    if (extension_part(path).empty()) path += ".qvj";
    if (file_exists(path) && !ws.ui.ask_yes_no("That file already, exists, overwrite?")) return -1;

    // The lines and grids kept relative to the old project's folder stay where they are.
    project_definition& p = ws.project;
    const std::string old_project = ws.project_file;
    for (int i = 1; i <= p.num_lines; ++i) {
        p.model_paths(i) = moved_path(old_project, path, p.model_paths(i));
        p.picture_paths(i) = moved_path(old_project, path, p.picture_paths(i));
    }
    for (std::string& grid : p.grid_files) grid = moved_path(old_project, path, trim_text(grid));
    for (int tab = 0; tab < grid_tab_count; ++tab)
        ws.view->set_text(grid_selector_name(tab), p.grid_files[static_cast<std::size_t>(tab)]);

    ws.project_file = path;
    if (write_current_project(ws) != 0) return -1;
    ws.view->set_caption("Trensil Project: " + file_name_part(path));
    return 0;
}

int write_current_project(project_workspace& ws) {
    if (ws.project_file.empty()) return -1;
    take_sample_settings(ws);
    if (!write_project(ws.project_file, ws.project, ws.ui)) return -1;
    project_work_saved(ws);
    return 0;
}

}  // namespace trensil
