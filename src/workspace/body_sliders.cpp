#include "workspace/body_sliders.h"

#include <cmath>
#include <cstdint>

#include "core/body_catalogue.h"
#include "inversion/parameter_vector.h"
#include "response/strike_frame.h"
#include "support/number_format.h"
#include "workspace/body_table.h"
#include "workspace/graph_display.h"
#include "workspace/model_edit.h"
#include "workspace/modelling_workspace.h"
#include "workspace/plan_view.h"

namespace trensil {

namespace {

// Which way a press moves the property.
enum class direction {
    plus_at_one,             // bar at 1: plus, else minus
    minus_at_one,            // bar at 1: minus, else plus
    minus_at_minus_one,      // bar at -1: minus, else plus
    plus_at_minus_one,       // bar at -1: plus, else minus
    coarse_plus_fine_minus,  // the coarse bar always adds, the fine bar always subtracts
};

// Where the coarse step comes from.
enum class step_source { fixed, profile_length, top, value, absolute_value, width, susc };

// What refuses a step, looking at the value plus the step.
enum class refusal {
    none,
    dip,           // down to 5 or below, up to 175 or above
    depth_extent,  // a result of 0 or below; any step of a cylinder
    down_to_zero,  // a step down to 0 or below
    sign_change,   // a result whose product with the old value is 0 or below
    plunge,        // down to -45 or below, up to 45 or above
    slope,         // down to -75 or below, up to 75 or above
    positive,      // a result of 0 or below
};

// The responses a step makes stale.
enum class affects { shape, magnetics, gravity };

struct bar_rule {
    const char* control;
    int first_item;  // the coarse item of the pair: 0, or 2 and 4 on VScroll_RemJ
    int row;
    step_source source;
    float fixed_step;
    direction way;
    refusal refuse;
    affects stale;
    bool field_coefficients;  // the step makes the field coefficients stale
    bool wraps;               // strike and plunge wrap at 360 with two decimals
};

using ds = direction;
using ss = step_source;
using rf = refusal;
constexpr bar_rule bar_rules[] = {
    {"HScroll_dist", 0, row_distance, ss::profile_length, 0.0f, ds::plus_at_one, rf::none,
     affects::shape, false, false},
    {"HScroll_strike", 0, row_strike, ss::fixed, 5.0f, ds::plus_at_one, rf::none, affects::shape,
     true, true},
    {"HScroll_dip", 0, row_dip, ss::fixed, 5.0f, ds::minus_at_one, rf::dip, affects::shape, true,
     false},
    {"VScroll_depth", 0, row_top, ss::top, 0.0f, ds::minus_at_one, rf::none, affects::shape, false,
     false},
    {"VScroll_depth_extent", 0, row_depth_extent, ss::value, 0.0f, ds::minus_at_minus_one,
     rf::depth_extent, affects::shape, false, false},
    {"HScroll_width", 0, row_width, ss::width, 0.0f, ds::plus_at_one, rf::down_to_zero,
     affects::shape, false, false},
    {"HScroll_length", 0, row_length, ss::value, 0.0f, ds::coarse_plus_fine_minus, rf::down_to_zero,
     affects::shape, false, false},
    {"VScroll_susc", 0, row_susc, ss::susc, 0.0f, ds::plus_at_minus_one, rf::sign_change,
     affects::magnetics, true, false},
    {"VScroll_dens", 0, row_density, ss::fixed, 0.1f, ds::plus_at_minus_one, rf::none,
     affects::gravity, false, false},
    {"HScroll_plunge", 0, row_plunge, ss::fixed, 5.0f, ds::plus_at_one, rf::plunge, affects::shape,
     true, true},
    {"VScroll_slope", 0, row_slope, ss::fixed, 2.0f, ds::minus_at_one, rf::slope, affects::shape,
     true, false},
    {"HScroll_offset", 0, row_offset, ss::absolute_value, 0.0f, ds::coarse_plus_fine_minus,
     rf::none, affects::shape, false, false},
    {"VScroll_RemJ", 0, row_rem_q, ss::fixed, 0.01f, ds::minus_at_one, rf::positive,
     affects::magnetics, true, false},
    {"VScroll_RemJ", 2, row_rem_i, ss::fixed, 2.5f, ds::minus_at_one, rf::none, affects::magnetics,
     true, false},
    {"VScroll_RemJ", 4, row_rem_d, ss::fixed, 2.5f, ds::minus_at_one, rf::none, affects::magnetics,
     true, false},
};

const bar_rule* rule_of(const std::string& control, int item) {
    for (const bar_rule& rule : bar_rules)
        if (control == rule.control && (item == rule.first_item || item == rule.first_item + 1))
            return &rule;
    return nullptr;
}

std::string bar_name(const std::string& control, int item) {
    return control + "_" + std::to_string(item);
}

float coarse_step(const bar_rule& rule, const model_record& model, float v) {
    switch (rule.source) {
        case ss::fixed:
            return rule.fixed_step;
        case ss::profile_length: {
            const profile_block& p = model.profile;
            return profile_length_step(p.profile_distance(p.num_stations));
        }
        case ss::top:
            return std::max(std::fabs(v) / 25.0f, 0.1f);
        case ss::value:
            return property_value_step(v);
        case ss::absolute_value:
            return property_value_step(std::fabs(v));
        case ss::width:
            return width_value_step(v);
        case ss::susc:
            return std::max(std::fabs(v) / 50.0f, 10.0f);
    }
    return 0.0f;
}

float signed_step(const bar_rule& rule, bool fine, int value, float step) {
    bool plus = true;
    switch (rule.way) {
        case ds::plus_at_one:
            plus = value == 1;
            break;
        case ds::minus_at_one:
            plus = value != 1;
            break;
        case ds::minus_at_minus_one:
            plus = value != -1;
            break;
        case ds::plus_at_minus_one:
            plus = value == -1;
            break;
        case ds::coarse_plus_fine_minus:
            plus = !fine;
            break;
    }
    const float sized = fine ? step / 10.0f : step;
    return plus ? sized : -sized;
}

bool refused(const bar_rule& rule, const body_record& body, float v, float step) {
    const float result = v + step;
    const bool down = step < 0.0f;
    const bool up = step > 0.0f;
    switch (rule.refuse) {
        case rf::none:
            return false;
        case rf::dip:
            return (down && result <= 5.0f) || (up && result >= 175.0f);
        case rf::depth_extent:
            return result <= 0.0f || body.type == cylinder_pipe;
        case rf::down_to_zero:
            return down && result <= 0.0f;
        case rf::sign_change:
            return result * v <= 0.0f;
        case rf::plunge:
            return (down && result <= -45.0f) || (up && result >= 45.0f);
        case rf::slope:
            return (down && result <= -75.0f) || (up && result >= 75.0f);
        case rf::positive:
            return result <= 0.0f;
    }
    return false;
}

// Strike and plunge: the sum in hundredths, rounded, modulo 36000 with the sign of the sum.
float wrapped(float v, float step) {
    const auto hundredths = static_cast<std::int64_t>(
        std::nearbyint((static_cast<double>(v) + static_cast<double>(step)) * 100.0));
    return static_cast<float>(hundredths % 36000) / 100.0f;
}

// One step of the current body's property: flags, value, table cell, redraw.
void apply_step(modelling_workspace& ws, const bar_rule& rule, body_record& body, float step) {
    parameter& p = *property_by_row(body, rule.row);
    const int current = ws.section.current_body;
    const std::string label =
        body_row_label(rule.row, body.type) + " of Body " + std::to_string(current);
    {
        model_edit edit(ws, label, "bar " + label);
        if (rule.stale != affects::gravity) body.mag_valid = 0;
        if (rule.stale != affects::magnetics) body.grav_valid = 0;
        if (rule.field_coefficients) body.magnetisation = -1.0f;
        p.value = rule.wraps ? wrapped(p.value, step) : p.value + step;
        if (rule.row == row_distance)
            locate_body_on_profile(ws.model.profile, p.value, body.east, body.north);
        edit.commit();
    }
    // The remanence shows three decimals here, whatever the table itself uses.
    const int decimals = rule.row >= row_rem_q ? 3 : body_row_decimals(rule.row);
    ws.view->set_grid_cell("Grid_body", rule.row, cell_value, format_fixed(p.value, decimals));
    if (rule.row == row_distance) show_body_position(ws);
    // The edit's commit marked the model changed, unless the step changed nothing (a width of
    // 0 has a step of 0).
    display_model(ws, 1);
}

bool has_current_body(const modelling_workspace& ws) {
    const int current = ws.section.current_body;
    return ws.model.num_bodies >= 1 && current >= 1 && current <= ws.model.num_bodies;
}

// Commits an open table edit and closes the type list: another control is about to act.
void leave_table_edits(modelling_workspace& ws) {
    commit_pending_edit(ws);
    display_guard guard(ws);
    ws.view->set_visible("Combo_model_type", false);
}

}  // namespace

float profile_length_step(float last_distance) {
    const float l = last_distance;
    if (l < 1.0f) return 0.05f;
    if (l < 5.0f) return 0.1f;
    if (l < 10.0f) return 0.25f;
    if (l < 100.0f) return 0.5f;
    if (l < 200.0f) return 1.0f;
    if (l < 500.0f) return 5.0f;
    return 10.0f;
}

float property_value_step(float value) {
    if (value >= 500.0f) return 50.0f;
    if (value >= 250.0f) return 25.0f;
    if (value >= 25.0f) return 5.0f;
    return value / 5.0f;
}

float width_value_step(float value) {
    if (value > 500.0f) return 50.0f;
    if (value > 250.0f) return 25.0f;
    if (value > 25.0f) return 5.0f;
    return value / 5.0f;
}

void body_bar_changed(modelling_workspace& ws, const std::string& control, int item, int value) {
    if (ws.updating_display) return;
    leave_table_edits(ws);
    body_bar_scrolled(ws, control, item, value);
}

void body_bar_scrolled(modelling_workspace& ws, const std::string& control, int item, int value) {
    if (ws.updating_display || !has_current_body(ws)) return;
    const bar_rule* rule = rule_of(control, item);
    if (!rule) return;
    modelling_view& view = *ws.view;
    // The guard covers the reset of the bar to 0, whose own change event must not step again.
    display_guard guard(ws);
    const std::string coarse = bar_name(control, rule->first_item);
    const std::string fine = bar_name(control, rule->first_item + 1);
    view.set_enabled(coarse, false);
    view.set_enabled(fine, false);

    body_record& body = ws.model.body(ws.section.current_body);
    const float v = property_by_row(body, rule->row)->value;
    const bool is_fine = item == rule->first_item + 1;
    const float step = signed_step(*rule, is_fine, value, coarse_step(*rule, ws.model, v));
    if (ws.model.profile.num_stations >= 1 && !refused(*rule, body, v, step))
        apply_step(ws, *rule, body, step);

    view.set_scroll(bar_name(control, item), 0, -1, 1);
    view.set_enabled(coarse, true);
    view.set_enabled(fine, true);
}

void hscroll_body_changed(modelling_workspace& ws, int value) {
    if (ws.updating_display || !has_current_body(ws)) return;
    leave_table_edits(ws);
    if (value == ws.section.current_body || value < 1 || value > ws.model.num_bodies) return;
    ws.section.current_body = value;
    display_body_parameters(ws);
    if (ws.plan_shown && ws.plan) display_plan_view(ws.model, *ws.plan, ws.section);
    display_maginv_model(ws.model, ws.graph_view, ws.graphs, ws.section, 1, section_graph);
}

}  // namespace trensil
