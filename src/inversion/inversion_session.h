// The user's side of an inversion: the invert buttons, the choice of data type, the run with its
// range, best misfit and best parameters, and the two ways back ("Reject Changes", "Restore Best
// Model"), as handlers of the inversion panel.
//
//   inversion_context ctx{model, response, state, ui, view};
//   on_invert_click(ctx, 1, current_body);      // "Invert Entire Model"
//   on_reject_changes(ctx);                     // back to where that run began
#pragma once

#include <string>

#include "inversion/inversion_context.h"

namespace trensil {

// The file "Restore Best Model" saves the current model to, in the current directory.
inline constexpr const char* latest_model_file = "latest.qvx";

// Runs one inversion: whole_model or only body `current_body`, data type `mode`. `misfit` is the
// final misfit; `status` is 1 when a run ended, 0 when there was nothing to run (left untouched
// without stations, bodies or a current body).
void run_inversion(inversion_context& ctx, bool whole_model, int mode, int max_iterations,
                   int current_body, float& misfit, int& status);

// The iteration limit typed in Text_max_iterations: 25 when empty or not numeric, else the
// number rounded to an integer (halves to even), at least 1.
int parse_max_iterations(const std::string& text);

// Combo_invert on selection: Magnetics without a magnetic column becomes Gravity, Gravity
// without a gravity column becomes Magnetics.
void keep_possible_data_type(inversion_context& ctx);

// Command_invert: item 0 "Invert Current Body", item 1 "Invert Entire Model".
void on_invert_click(inversion_context& ctx, int item, int current_body);

void on_reject_changes(inversion_context& ctx);
void on_restore_best(inversion_context& ctx);
void on_stop_inversion(inversion_context& ctx);
// Check_inversion_mode clicked: fit the gradient channel or the field itself.
void on_inversion_mode_click(inversion_context& ctx);
// Command_toggle_invert_body: switches between the slider frame and the inversion panel.
void on_toggle_invert_panel(inversion_context& ctx);

// Forgets the best misfit: at form load, a new model, new locations, a moved range slider.
void forget_best_model(inversion_state& state);

}  // namespace trensil
