#include "inversion/inversion_session.h"

#include <cmath>

#include "inversion/least_squares_solver.h"
#include "inversion/parameter_vector.h"
#include "inversion/solver.h"
#include "support/number_format.h"
#include "support/text_tokens.h"

namespace trensil {

namespace {

using ic = inversion_control;

void empty_misfit_boxes(inversion_view& view) {
    view.set_text(ic::Text_MAGINV_misfit, 0, "");
    view.set_text(ic::Text_MAGINV_misfit, 1, "");
}

void disable_way_back(inversion_view& view) {
    view.set_enabled(ic::Command_restore_best, false);
    view.set_enabled(ic::Command_reject_changes, false);
}

// The errors of the last least-squares run no longer describe the model shown.
void forget_fit(inversion_context& ctx) {
    ctx.state.fit = fit_summary{};
    ctx.view.show_fit_summary(ctx.state);
}

// Records the current value column as the best model with misfit F.
void keep_as_best(inversion_context& ctx, float F) {
    inversion_state& s = ctx.state;
    s.best_misfit = F;
    for (int k = 1; k <= s.inversion_parameter_count; ++k)
        s.best_parameters(k) = s.inversion_parameters(k, column_value);
    ctx.view.set_enabled(ic::Command_restore_best, true);
    s.have_best_model = true;
}

// Copies all ten channels of the main arrays into the trial arrays, shaped like them.
void copy_all_channels(const array2<float>& from, array2<float>& to) {
    to = from;
}

}  // namespace

void forget_best_model(inversion_state& state) {
    state.best_misfit = undefined_value;
    state.have_best_model = false;
}

void run_inversion(inversion_context& ctx, bool whole_model, int mode, int max_iterations,
                   int current_body, float& misfit, int& status) {
    model_record& model = ctx.model;
    profile_block& p = model.profile;
    inversion_state& s = ctx.state;
    const int n = p.num_stations;
    if (n < 1 || model.num_bodies < 1 || current_body < 1 || current_body > model.num_bodies)
        return;

    // The range: a first point not below the last means the whole profile.
    if (p.inversion_first_station >= p.inversion_last_station) {
        p.inversion_first_station = 1;
        p.inversion_last_station = n;
        s.inversion_count = n;
    } else {
        s.inversion_count = p.inversion_last_station - p.inversion_first_station + 1;
    }

    ctx.response.inversion_uses_gravity = mode;
    const bool least_squares = s.solver == inversion_solver::damped_least_squares;
    const bool joint = least_squares && s.least_squares.joint;
    if (joint && (model.magpos < 1 || model.gravpos < 1)) {
        ctx.ui.show_message("A joint fit needs both magnetic and gravity data");
        status = 0;
        return;
    }
    // A joint fit frees the properties of both data types.
    const int collect_mode = joint ? inversion_mode_joint : mode;
    int count = 0;
    if (whole_model) {
        collect_all_parameters(model, s, false, collect_mode, count);
    } else {
        collect_body_parameters(model, s, false, collect_mode, current_body, count);
    }
    if (count == 0) {
        ctx.ui.show_message("There are no parameters free to invert on");
        status = 0;
        return;
    }

    s.misfit_weight = mode == inversion_mode_gravity ? 10.0f : 1.0f;
    if (ctx.response.inversion_fits_gradient == 1) s.misfit_weight *= 10.0f;

    // A table of another size belongs to another set of free parameters: its best model goes.
    if (count != s.inversion_parameter_count || s.inversion_parameters.rows() != count) {
        dimension_parameter_table(s, count);
        s.have_best_model = false;
    }
    if (s.inversion_count != s.current_residual.size()) {
        s.current_residual.resize(1, s.inversion_count);
        s.trial_residual.resize(1, s.inversion_count);
    }

    ctx.ui.process_events();
    int filled = 0;
    if (whole_model) {
        collect_all_parameters(model, s, true, collect_mode, filled);
    } else {
        collect_body_parameters(model, s, true, collect_mode, current_body, filled);
    }
    for (int k = 1; k <= count; ++k)
        s.start_parameters(k) = s.inversion_parameters(k, column_value);
    ctx.ui.process_events();

    copy_all_channels(p.mag_channels, p.saved_mag_channels);
    copy_all_channels(p.grav_channels, p.saved_grav_channels);

    least_squares_problem problem;
    float F = least_squares
                  ? start_least_squares(ctx, problem)
                  : evaluate_misfit(ctx, p.mag_channels, p.grav_channels, s.current_residual);
    // Data or a response beyond single precision make the misfit infinite (or not a number): no
    // step could lower it, and a run would only pretend to fit.
    if (!std::isfinite(F)) {
        ctx.ui.show_message(
            "The misfit cannot be computed: the observed or computed values are out of range");
        status = 0;
        return;
    }
    // A joint fit measures its misfit on both data types: a best misfit of another measure
    // cannot be compared with it.
    const joint_measure measure{joint, joint ? s.least_squares.noise_mag : 0.0f,
                                joint ? s.least_squares.noise_grav : 0.0f};
    if (!(measure == s.best_measure)) {
        forget_best_model(s);
        s.best_measure = measure;
    }
    // The best model of a first run starts as the model the user came with.
    if (s.best_misfit == undefined_value) keep_as_best(ctx, F);
    ctx.observer->run_started(make_progress(s, 0, F));

    s.fit = fit_summary{};
    if (least_squares) {
        run_least_squares(ctx, problem, max_iterations, F);
    } else {
        iterate_inversion(ctx, max_iterations, F);
    }
    misfit = F;

    if (F < s.best_misfit) keep_as_best(ctx, F);
    status = 1;
    ctx.ui.process_events();
}

int parse_max_iterations(const std::string& text) {
    const std::string trimmed = trim_text(text);
    if (trimmed.empty() || !is_numeric_text(trimmed)) return 25;
    const double rounded = std::nearbyint(parse_number(trimmed));
    if (rounded < 1.0) return 1;
    if (rounded > 2147483647.0) return 2147483647;
    return static_cast<int>(rounded);
}

void keep_possible_data_type(inversion_context& ctx) {
    const int selection = ctx.view.list_index(ic::Combo_invert);
    if (selection == inversion_mode_magnetics && ctx.model.magpos < 1) {
        ctx.view.set_list_index(ic::Combo_invert, inversion_mode_gravity);
    } else if (selection == inversion_mode_gravity && ctx.model.gravpos < 1) {
        ctx.view.set_list_index(ic::Combo_invert, inversion_mode_magnetics);
    }
}

void on_invert_click(inversion_context& ctx, int item, int current_body) {
    inversion_view& view = ctx.view;
    inversion_state& s = ctx.state;
    if (ctx.model.profile.num_stations < 1) return;

    view.set_visible(ic::Label_status, false);
    keep_possible_data_type(ctx);
    const int mode = view.list_index(ic::Combo_invert);
    ctx.response.inversion_uses_gravity = mode;

    const int max_iterations = parse_max_iterations(view.text(ic::Text_max_iterations, 0));

    view.set_enabled(ic::Command_reject_changes, false);
    view.set_visible(ic::Command_stop_inversion, true);
    view.set_visible(ic::Text_num_iterations, true);
    view.set_text(ic::Text_num_iterations, 0, "");
    s.stop_requested = false;
    empty_misfit_boxes(view);
    ctx.ui.set_busy(true);

    float misfit = 0.0f;
    int status = 0;
    run_inversion(ctx, item == 1, mode, max_iterations, current_body, misfit, status);

    ctx.ui.set_busy(false);
    view.set_visible(ic::Command_stop_inversion, false);
    view.set_visible(ic::Text_num_iterations, false);
    s.stop_requested = false;
    view.set_text(ic::Text_max_iterations, 0, format_fixed(max_iterations, 0));

    if (status == 0) {
        view.set_model_changed();
        view.set_enabled(ic::Command_save_qvx_model, true);
    } else if (status < 0) {
        view.set_enabled(ic::Command_reject_changes, false);
        view.set_text(ic::Label_status, 0, "Inversion failed: " + format_fixed(-1 - status, 0));
        view.set_visible(ic::Label_status, true);
    } else {
        view.set_enabled(ic::Command_reject_changes, true);
        view.set_text(ic::Label_status, 0, "Inversion succeeded");
        view.set_visible(ic::Label_status, true);
    }

    ctx.ui.process_events();
    view.display_body_parameters();
    view.show_fit_summary(s);
    clear_body_results(ctx.model);
    view.display_model(1);
}

void on_reject_changes(inversion_context& ctx) {
    inversion_state& s = ctx.state;
    for (int k = 1; k <= s.inversion_parameter_count; ++k)
        s.inversion_parameters(k, column_value) = s.start_parameters(k);
    empty_misfit_boxes(ctx.view);
    disable_way_back(ctx.view);
    forget_fit(ctx);
    s.best_misfit = undefined_value;
    float proximity = 0.0f;
    apply_all_parameters(ctx.model, s, proximity);
    ctx.view.display_body_parameters();
    ctx.view.display_model(1);
}

void on_restore_best(inversion_context& ctx) {
    inversion_state& s = ctx.state;
    empty_misfit_boxes(ctx.view);
    forget_fit(ctx);
    if (s.best_misfit > undefined_value && s.have_best_model) {
        disable_way_back(ctx.view);
        s.best_misfit = undefined_value;
        // The model as it stands is kept in latest.qvx before the best one replaces it.
        ctx.write_model(ctx.model, latest_model_file);
        for (int k = 1; k <= s.inversion_parameter_count; ++k)
            s.inversion_parameters(k, column_value) = s.best_parameters(k);
        float proximity = 0.0f;
        apply_all_parameters(ctx.model, s, proximity);
        ctx.view.display_body_parameters();
        ctx.view.display_model(1);
        // best_misfit is read after it was reset: the box shows -99999 / N, no computed misfit.
        const double shown = s.inversion_count != 0
                                 ? static_cast<double>(s.best_misfit) / s.inversion_count
                                 : static_cast<double>(s.best_misfit);
        ctx.view.set_text(ic::Text_MAGINV_misfit, 1, format_fixed(shown, 4));
    }
    disable_way_back(ctx.view);
    forget_best_model(s);
}

void on_stop_inversion(inversion_context& ctx) {
    ctx.state.stop_requested = true;
    ctx.ui.process_events();
}

void on_inversion_mode_click(inversion_context& ctx) {
    ctx.response.inversion_fits_gradient = ctx.view.check_value(ic::Check_inversion_mode);
    empty_misfit_boxes(ctx.view);
    disable_way_back(ctx.view);
    forget_fit(ctx);
    ctx.state.best_misfit = undefined_value;
}

void on_toggle_invert_panel(inversion_context& ctx) {
    inversion_view& view = ctx.view;
    if (ctx.model.num_bodies < 1 || ctx.model.profile.num_stations < 1) return;
    if (view.is_visible(ic::Frame_move_body)) {
        view.set_visible(ic::Frame_move_body, false);
        view.set_caption(ic::Command_toggle_invert_body, "Move This Body");
    } else {
        view.set_visible(ic::Frame_move_body, true);
        view.set_caption(ic::Command_toggle_invert_body, "Perform Inversion");
    }
    view.set_visible(ic::Command_stop_inversion, false);
    view.set_visible(ic::Text_num_iterations, false);
    ctx.state.stop_requested = false;
    empty_misfit_boxes(view);
    disable_way_back(view);
    forget_fit(ctx);
    ctx.state.best_misfit = undefined_value;
}

}  // namespace trensil
