// The project window's logic without its widgets: the project's numbered lines, the data file
// whose columns are being chosen, the grids of the three tabs, the baseline being digitised, and
// the handlers that the window's events call. The window hands in its controls (project_view),
// its profile graph (graph_control), the desktop's services (platform), the settings store, the
// grid opener, and the hooks by which it reaches the modelling window.
//
//   project_workspace ws{ui, settings, open_gdal_grid};
//   ws.view = &window; ws.profile_graph = &graph;
//   ws.open_modeller = [&](const std::string& model) { return show_modelling_window(model); };
//   project_form_load(ws);
//   open_project_file(ws, "/survey/area.qvj");
//   select_line(ws, 1);
//   command_open_trensil(ws);
//   ...                                  // the modelling window saves the line:
//   update_current_QVX_line(ws);
//   project_form_unload(ws);
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/model_record.h"
#include "io/coordinate_transform.h"
#include "io/file_search.h"
#include "io/project_file.h"
#include "project/digitising.h"
#include "project/grid_source.h"
#include "project/project_recovery.h"
#include "project/project_view.h"
#include "support/bounded_array.h"
#include "support/platform.h"
#include "support/settings_store.h"
#include "workspace/graph_control.h"

namespace trensil {

inline constexpr const char* project_settings_section = "TrensilProject";
// Lines of a data file kept for the column preview.
inline constexpr int stored_header_lines = 64;
inline constexpr int grid_tab_count = 3;  // magnetics, DTM, sensor

struct project_workspace {
    project_workspace(platform& ui_, settings_store& settings_, grid_opener opener)
        : ui(ui_), settings(settings_), open_grid(std::move(opener)) {}

    platform& ui;
    settings_store& settings;
    grid_opener open_grid;
    project_view* view = nullptr;
    graph_control* profile_graph = nullptr;  // Graph_profile

    // The modelling window, as far as the project needs it. open_modeller shows the modelling
    // window on a model file (opened from the project) and returns 0, or -1 when it could not;
    // modeller_is_open tells whether it is on the screen, modeller_has_changes whether it holds
    // unsaved changes. Unset hooks count as a closed window without changes.
    std::function<int(const std::string& model_path)> open_modeller;
    std::function<bool()> modeller_is_open;
    std::function<bool()> modeller_has_changes;

    project_definition project;  // the lines: numbers, model and picture paths, models, profiles
    std::string project_file;    // "" until the project is read or saved
    int current_line = 0;        // 0: none

    // The data file of a new line: its first lines, and the scratch record whose data
    // definition the column boxes edit and whose stations a loaded file fills.
    array1<std::string> header_lines{1, stored_header_lines};
    int num_header_lines = 0;
    model_record scratch;
    line_profile scratch_profile;  // the loaded data file's stations, for Graph_profile
    bool locations_loaded = false;

    std::array<std::unique_ptr<grid_source>, grid_tab_count> grids;
    digitising_state digitising;

    file_search_state search;
    transform_state transforms;
    bool updating_display = false;

    // The recovery copy kept while the project differs from its file (project/project_recovery.h).
    project_autosave autosave;
};

// Holds `updating_display` set for a scope, restoring the value it found.
class project_display_guard {
public:
    explicit project_display_guard(project_workspace& ws) : ws_(ws), was_(ws.updating_display) {
        ws_.updating_display = true;
    }
    ~project_display_guard() { ws_.updating_display = was_; }
    project_display_guard(const project_display_guard&) = delete;
    project_display_guard& operator=(const project_display_guard&) = delete;

private:
    project_workspace& ws_;
    bool was_;
};

// --- Form and project file --------------------------------------------------------------------

// The caption "Trensil Project Version <major>.<two digits> July 2021".
std::string project_form_caption();
// Comes up empty: the caption, the heads of the line list, "N/A" in Combo_names, the scratch
// record's data definition on the column boxes; the working directory and the window size from
// the settings "WorkingDirectory" and "FormSize" (section "TrensilProject").
void project_form_load(project_workspace& ws);
// Stores the working directory and "FormSize" as "width;height".
void project_form_unload(project_workspace& ws);

// Empties the project: no lines, no project file, default numbering. Returns 0, -1 on an error
// ("An error occurred while clearing the project definitions: ", shown).
int clear_modeller_project_parameters(project_workspace& ws);
// New project: with lines defined asks "That current porject has lines defined, do you wish to
// save them first?" (Yes saves), then empties the project.
void file_create_project(project_workspace& ws);
// Open project: with lines defined offers to save them first, asks for the file
// ("Select the Modeller Project file"), reads it and loads its lines. Returns 0 or -1.
int file_open_project(project_workspace& ws);
// Reads a project file (the command line, a recent file) and loads its lines and grids; the
// caption becomes "Trensil Project: " + its name. Returns 0, or -1 with the reason shown.
int open_project_file(project_workspace& ws, const std::string& path);
// Reads the project file at `read_path` (a recovery copy, or the file itself) and shows it as
// the project of file `path` ("" for one never saved). Returns 0 or -1 (shown).
int show_project_file(project_workspace& ws, const std::string& read_path, const std::string& path);
// Save project as: asks for the file ("Select the trensil project file to create"), adds
// ".qvj", asks before overwriting, writes. Returns 0, or -1 when cancelled or failed.
int file_save_project(project_workspace& ws);
// Writes the project to its file when it has one (the lines, grid names and sample settings on
// the form). Returns 0, -1 when it has none or the write failed (shown).
int write_current_project(project_workspace& ws);

// --- The line list ----------------------------------------------------------------------------

// Fills Grid_profile_lines ("Line Number", "X", "Y", "Z", "Burial": the line's centre, its mean
// sensor elevation and the depth below ground of its shallowest body top) and Combo_QVX_line,
// and draws the lines over the grids.
void display_qvx_list(project_workspace& ws);
// Reads line `index`'s model and data into the project's arrays and its profile digest. 0, or -1
// when the line could not be loaded (the loading showed why); the line stays in the list.
int load_project_line(project_workspace& ws, int index);
// A click on row `row` of Grid_profile_lines (or a choice in Combo_QVX_line): with unsaved
// changes in the modelling window asks "Discard the changes to the current model?" (No keeps the
// old line), makes the line current, shows it, and shows it in an open modelling window.
void select_line(project_workspace& ws, int row);
// Adds a line for a model file that exists: asks for it ("Select the profile model file"), and
// for its number as a new line's ("QVX File Line Number"), enters it in number order, loads it
// and writes the project. Returns 0, or -1 when cancelled or refused (shown).
int command_add_line_model(project_workspace& ws);
// Asks "Delete the line <number>" ("Confirm Deletion") and removes the current line; the
// project file is written when there is one.
void command_delete_line(project_workspace& ws);
// "Open Trensil": the modelling window on the current line's model.
int command_open_trensil(project_workspace& ws);
// Zooms the viewers to the current line's stations.
void command_zoom_to_line(project_workspace& ws);
// The model path of the current line as it can be opened; "" when no line is current.
std::string current_line_model(const project_workspace& ws);
// Fills Combo_body_list with "None", "All" and the current line's bodies.
void build_body_list(project_workspace& ws);
// Draws the current line's profile in Graph_profile.
void display_QVX_line(project_workspace& ws);
// The pointer over Graph_profile at (distance, value): shown in StatusBar_coords, "0.00" and
// "0.0000".
void graph_profile_pointer(project_workspace& ws, double distance, double value);
// After the modelling window saved the current line: reads it again and shows it.
void update_current_QVX_line(project_workspace& ws);

// --- A data file for a new line ---------------------------------------------------------------

// "Add new file": asks for the data file ("Select the observed  data file"). A model file
// (extension QVX) gives the scratch record its data definition; a data file is previewed:
// its first lines are stored, the names line decoded and the columns shown. Returns 0 or -1.
int command_add_new_file(project_workspace& ws);
// Stores the first 64 lines of the data file and shows them. 0, or -1 (shown).
int load_names(project_workspace& ws, const std::string& path);
// Reads the column boxes (Text_MAGINV_nhead, _nstep, _xpos, _ypos, _zpos, _magpos, _gravpos,
// _dtm) into the scratch record; a box without a number leaves its value.
void decode_column_positions(project_workspace& ws);
// Reads Text_locations_name_line into names_line (0 when not a number) and refills Combo_names
// with "N/A" and the entries of that stored line when it is 1 .. 64.
void decode_names(project_workspace& ws);
// Shows the stored lines in Grid_database.
void display_column_data(project_workspace& ws);
// "Load locations": checks the data definition, reads the data file into the scratch record
// (nothing usable in a chosen column is reported and stops it) and draws its profile.
int command_load_locations(project_workspace& ws);

// --- Grids and digitising ---------------------------------------------------------------------

// The grid file of tab `tab` was chosen ("" closes it): opens it and shows it. 0, or -1 with
// "An error occured while loading the grid file: " and the reason.
int grid_file_changed(project_workspace& ws, int tab, const std::string& path);
// A pointer event on the viewer of tab `tab` at (x, y): shows the position in StatusBar_coords;
// a click (event 5) of the left button (1) without shift while digitising adds a point.
void grid_viewer_pointer(project_workspace& ws, int tab, int event, int button, bool shift,
                         double x, double y);
// "Digitise new line": refuses a blank or non-positive Text_sample_interval, then starts an
// empty baseline and shows the digitising frames.
int command_digitise_new_line(project_workspace& ws);
// HScroll_data_point moved to point `value`: shows it in Text_east, Text_north, Text_label.
void hscroll_data_point_changed(project_workspace& ws, int value);
// Command_save_point: index 0 stores the edited position of the current point, index 1 deletes
// it. The profile is set up again.
void command_save_point(project_workspace& ws, int index);
// Spaces stations along the baseline, samples the grids there and draws the profile.
void setup_and_display_grid_profile(project_workspace& ws);
// Draws the sampled stations in Graph_profile.
void display_grid_profile(project_workspace& ws);
// "Close": leaves digitising and shows the current line again.
void command_done_new_line(project_workspace& ws);

// --- Line files -------------------------------------------------------------------------------

// Command_save_file: index 1 "Save New Trensil File" writes the line's csv and its model and
// enters the line into the project (written at once); index 0 "Save New CSV Data File" writes the
// csv alone. The line is the digitised baseline while digitising, else the loaded data file.
// Returns 0, or -1 when refused, cancelled or failed (shown).
int save_line(project_workspace& ws, int index);

}  // namespace trensil
