// The modelling window's logic without its widgets: the current model, the response engine's
// state, the graphs' view, the window's flags, and the handlers that the window's events call.
// The window hands in its graphs (graph_control), its controls (modelling_view), the desktop's
// services (platform) and the user settings store.
//
//   modelling_workspace ws{ui, settings};
//   ws.view = &window; ws.graphs = {...}; ws.plan = &plan_graph;
//   form_load(ws);
//   load_and_display_QVX_model(ws, "/lines/l10.qvx");
//   ...
//   form_unload(ws);
#pragma once

#include <cstdint>
#include <string>

#include "core/model_record.h"
#include "inversion/inversion_state.h"
#include "inversion/inversion_view.h"
#include "io/coordinate_transform.h"
#include "io/file_search.h"
#include "response/response_state.h"
#include "support/platform.h"
#include "support/settings_store.h"
#include "workspace/autosave_schedule.h"
#include "workspace/edit_history.h"
#include "workspace/graph_view.h"
#include "workspace/model_recovery.h"
#include "workspace/modelling_view.h"
#include "workspace/pointer_interaction.h"
#include "workspace/section_view.h"

namespace trensil {

inline constexpr const char* settings_application = "Ostrand";
inline constexpr const char* settings_section = "Trensil";

struct modelling_workspace {
    modelling_workspace(platform& ui_, settings_store& settings_) : ui(ui_), settings(settings_) {}

    platform& ui;
    settings_store& settings;
    modelling_view* view = nullptr;
    graph_array graphs{};
    graph_control* plan = nullptr;

    model_record model;
    response_state response;
    graph_view_state graph_view;
    section_options section;
    file_search_state search;
    transform_state transforms;

    bool updating_display = false;
    // Set by every edit, which it also counts (the recovery copy follows the count).
    change_flag model_changed;
    bool form_ready = false;
    bool modeller_open = false;
    // The project form opened this window: it supplies the data definitions.
    bool opened_from_project = false;
    bool plan_shown = false;
    // The graph area's layout, its splitters and the inversion limit markers.
    pointer_state pointer;

    // The inversion kept between runs (best model, start values, residuals), the panel it talks
    // to, and whether a run is under way (the event pump serves clicks during one).
    inversion_state inversion;
    inversion_view* inversion_panel = nullptr;
    bool inversion_running = false;

    // The undo and redo steps of the body edits (workspace/model_edit.h).
    edit_history history;
    // The cell of Grid_body under edit (workspace/body_table.h).
    std::int32_t edit_row = 0;
    std::int32_t edit_column = 0;

    // The recovery copy kept while the model has unsaved edits (workspace/model_recovery.h).
    model_autosave autosave;
};

// Holds `updating_display` set for a scope, restoring the value it found.
class display_guard {
public:
    explicit display_guard(modelling_workspace& ws) : ws_(ws), was_(ws.updating_display) {
        ws_.updating_display = true;
    }
    ~display_guard() { ws_.updating_display = was_; }
    display_guard(const display_guard&) = delete;
    display_guard& operator=(const display_guard&) = delete;

private:
    modelling_workspace& ws_;
    bool was_;
};

// --- Lifecycle and settings -------------------------------------------------------------------

// Comes up with the defaults, then takes the working directory, the Earth's field, the axes
// option and the window size from the settings where they hold usable values.
void form_load(modelling_workspace& ws);
// Stores the working directory, the field texts, the window size and the axes option.
void form_unload(modelling_workspace& ws);
void save_working_directory(modelling_workspace& ws);
void return_to_working_directory(modelling_workspace& ws);
// "Save current body parameters as default": type, dip, thickness, depth extent, strike length,
// density, susceptibility and colour of the current body.
void save_body_defaults(modelling_workspace& ws);

// --- Model files ------------------------------------------------------------------------------

// The items of menu_open_model: 0 reads data definitions and bodies, 1 saves, 3 reads the bodies
// only. Returns 0 when done, -1 when cancelled or failed (reported).
int menu_open_model(modelling_workspace& ws, int item);
// Shows a project line: reads the model and its data and displays them. Returns 0 or -1. A
// recovery copy of the file left by a run that ended uncleanly is offered first.
int load_and_display_QVX_model(modelling_workspace& ws, const std::string& path);
// The same without the offer.
int show_model_file(modelling_workspace& ws, const std::string& path);
// Takes the display settings that a model file keeps (widths, axes, labels, aspect) from the form.
void take_display_settings(modelling_workspace& ws);
// Opens a model given on the command line as the modelling window's own file: reads it with its
// data and displays the model on the bodies tab. Returns 0 or -1 (reported).
int open_model_file(modelling_workspace& ws, const std::string& path);
// Checks that the data are loaded (loading them when not), sets the gradient choice and shows
// the frames the data need. Returns 0, or -1 when the data cannot be used.
int validate_model_display(modelling_workspace& ws);
// Shows the data definitions of the model on the definitions tab.
void load_data_format_on_form(modelling_workspace& ws);

// --- Fields of Tab_model ----------------------------------------------------------------------

// The change event of a model-wide field; `control` is its name. Reads the text from the view.
void model_field_changed(modelling_workspace& ws, const std::string& control);
// Leaving or entering a tab. Returns false when the window must stay on tab 0.
bool tab_model_changing(modelling_workspace& ws, int old_tab, int new_tab);

// --- Current body and inversion panel ---------------------------------------------------------

// The body an inversion of the current body works on: the one last picked, or body 1.
int inversion_body(const modelling_workspace& ws);
// The panel's controls. A click on an invert button, reject or restore while a run is under way
// is ignored: they would work on the parameter table the run is using.
void command_invert(modelling_workspace& ws, int item);
void command_stop_inversion(modelling_workspace& ws);
void command_reject_changes(modelling_workspace& ws);
void command_restore_best(modelling_workspace& ws);
void check_inversion_mode_clicked(modelling_workspace& ws);
// Command_toggle_invert_body: the slider frame and the inversion panel take turns.
void command_toggle_invert_body(modelling_workspace& ws);
void combo_invert_selected(modelling_workspace& ws);
// Combo_solver: the joint and robust boxes and the noise levels belong to the least squares
// ("Damped Least Squares") and are enabled only while it is chosen.
void combo_solver_selected(modelling_workspace& ws);

// --- Display ----------------------------------------------------------------------------------

// Computes what is stale, then draws the plan or all five graphs.
void display_model(modelling_workspace& ws, int keep_scale);
void update_section_or_plan_view(modelling_workspace& ws, int mode);
void command_show_section_or_plan(modelling_workspace& ws);
void menu_view_mode(modelling_workspace& ws, int item);
void menu_display_axes(modelling_workspace& ws);
void menu_highlight_on(modelling_workspace& ws);
void check_show_body_label(modelling_workspace& ws);
void check_display_total_gradient(modelling_workspace& ws);
void check_maintain_aspect_ratio(modelling_workspace& ws);
// Check_exact_field_geometry: the model's field geometry, an undoable edit, recomputed at once.
void check_exact_field_geometry(modelling_workspace& ws);
// Sets the check box and the status label ("Exact field geometry" or "Format field geometry")
// from the model.
void show_field_geometry(modelling_workspace& ws);
void command_reset_graph_scale(modelling_workspace& ws);

// --- Zoom and pan -----------------------------------------------------------------------------

void combo_zoom_selected(modelling_workspace& ws, int index);
void combo_zoom_typed(modelling_workspace& ws, const std::string& text);
void hscroll_pan_changed(modelling_workspace& ws, int value);
// One step of a graph's vertical zoom or pan bar; `value` is the bar's value after the step.
void vscroll_zoom_changed(modelling_workspace& ws, int index, int value);
void vscroll_pan_changed(modelling_workspace& ws, int index, int value);
// Deferred layout after a resize: redraws the five graphs and the plan.
void timer_resize(modelling_workspace& ws);

}  // namespace trensil
