#include "workspace/body_table.h"

#include <cmath>
#include <limits>

#include "core/body_catalogue.h"
#include "inversion/parameter_vector.h"
#include "response/strike_frame.h"
#include "support/number_format.h"
#include "support/text_tokens.h"
#include "workspace/model_edit.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

namespace {

constexpr const char* grid = "Grid_body";
constexpr double unbounded = std::numeric_limits<double>::infinity();

// What a property row accepts: its range (inclusive), the change that counts as none, whether a
// change makes the field coefficients stale, and the edit box's tooltips.
struct row_rule {
    int decimals;
    double lo;
    double hi;
    double tolerance;
    bool field_coefficients;
    const char* tooltip;
    const char* cylinder_tooltip;  // null: the same as for other bodies
};

// Rows 4 to 18 in order.
constexpr row_rule row_rules[] = {
    {1, -unbounded, unbounded, 0.01, false,
     "Distance along the profile of the reference point for the body", nullptr},
    {1, -360.0, 360.0, 0.05, true, "The strike of the body", nullptr},
    {1, 0.0, 180.0, 0.05, true, "The dip of the body", nullptr},
    {2, -unbounded, unbounded, 0.01, false, "The depth of the top of the body",
     "The depth of the centre of the cylinder"},
    {2, 0.0, unbounded, 0.01, false, "The depth extent of the  body", nullptr},
    {2, 1.0, unbounded, 0.01, false, "The width of the  body", "The diameter of the cylinder"},
    {2, 0.0, unbounded, 0.01, false,
     "The total length of the body (only used for strike limited thick bodies)", nullptr},
    {1, -unbounded, unbounded, 1.0, true, "The susceptibility of the  body (SI)", nullptr},
    {3, -unbounded, unbounded, 0.001, false, "The density of the  body (g/cc)", nullptr},
    {1, -45.0, 45.0, 0.05, true,
     "The plunge of the body (only used for strike limited thick bodies)", nullptr},
    {1, -80.0, 80.0, 0.05, true, "The slope of the top of the body", nullptr},
    {1, -unbounded, unbounded, 0.05, false,
     "The distance of the reference point for the body from the profile (only used for strike "
     "limited thick bodies)",
     nullptr},
    {3, 0.0, unbounded, 0.001, true, "The Koenigsburger ratio", nullptr},
    {1, -unbounded, unbounded, 0.05, true, "The inclination of the remanent direction", nullptr},
    {1, -unbounded, unbounded, 0.05, true, "The declination of the remanent direction", nullptr},
};

bool property_row_number(int row) {
    return row >= row_distance && row <= body_table_last_row;
}

const row_rule& rule_of(int row) {
    return row_rules[row - row_distance];
}

// Rows that a cylinder does not use: shown as "N/A" and not editable.
bool unused_by_cylinder(int row) {
    return row == row_depth_extent || row == row_plunge || row == row_slope;
}

// The body types Combo_model_type offers, by item.
constexpr int offered_types[] = {thin_sheet, thick_sheet, cylinder_pipe};

body_record* current_body(modelling_workspace& ws) {
    const int current = ws.section.current_body;
    if (ws.model.num_bodies < 1 || current < 1 || current > ws.model.num_bodies) return nullptr;
    return &ws.model.body(current);
}

std::string step_label(const std::string& what, int row, int type, int body) {
    return what + body_row_label(row, type) + " of Body " + std::to_string(body);
}

std::string table_text(const body_record& b) {
    std::string text = "Property\tValue\tVary\tMin\tMax";
    const auto row = [&](const std::string& cells) { text += grid_row_separator + cells; };
    row("Body Type\t" + body_type_name(b.type));
    row("East\t" + format_fixed(b.east, 1));
    row("North\t" + format_fixed(b.north, 1));
    for (int r = row_distance; r <= body_table_last_row; ++r) {
        const parameter& p = *property_by_row(b, r);
        std::string cells = FormatLimits(p, body_row_decimals(r));
        if (b.type == cylinder_pipe && unused_by_cylinder(r))
            cells = "N/A" + cells.substr(cells.find(grid_column_separator));
        row(body_row_label(r, b.type) + grid_column_separator + cells);
    }
    return text;
}

// Lays `control` over the cell under edit: 1.5 pixels in from the cell's left, 1 down, 2 wider.
void lay_over_cell(modelling_workspace& ws, const std::string& control) {
    modelling_view& view = *ws.view;
    const view_rect g = view.control_rect(grid);
    const view_rect c = view.grid_cell_rect(grid, ws.edit_row, ws.edit_column);
    view.set_control_rect(control,
                          {g.left + c.left + 1.5, g.top + c.top + 1.0, c.width + 2.0, c.height});
}

// Columns 3 and 4: a limit. An empty text clears it (-99999); limits matter to the inversion
// only, so nothing is recalculated and the changed flag stays as it is.
void commit_limit(modelling_workspace& ws, body_record& b, const std::string& text) {
    const int row = ws.edit_row;
    if (!property_row_number(row)) return;
    double value = undefined_value;
    if (!text.empty()) {
        if (!is_numeric_text(text)) return;
        value = parse_number(text);
    }
    // The cylinder has no depth extent: nothing is stored.
    if (row == row_depth_extent && b.type == cylinder_pipe) return;
    const bool positive_only =
        row == row_depth_extent || row == row_width || row == row_length || row == row_rem_q;
    if (positive_only && value < 0.0) return;
    const bool is_min = ws.edit_column == cell_min;
    const int current = ws.section.current_body;
    model_edit edit(ws, step_label(is_min ? "Min " : "Max ", row, b.type, current));
    parameter& p = *property_by_row(b, row);
    (is_min ? p.min : p.max) = static_cast<float>(value);
    if (rule_of(row).field_coefficients) b.magnetisation = -1.0f;
    edit.commit(false);
    ws.view->set_grid_cell(grid, row, ws.edit_column, FormatLimit(static_cast<float>(value)));
}

// Rows 2 and 3: the body moves to the station whose easting (northing) is nearest the number.
void commit_coordinate(modelling_workspace& ws, body_record& b, double value) {
    const int row = ws.edit_row;
    const double old = row == row_east ? b.east : b.north;
    if (std::fabs(value - old) <= 0.01) return;
    const profile_block& p = ws.model.profile;
    if (p.num_stations < 1) return;
    const int location_row = row == row_east ? easting_row : northing_row;
    int nearest = 1;
    for (int k = 2; k <= p.num_stations; ++k)
        if (std::fabs(value - p.location(location_row, k)) <
            std::fabs(value - p.location(location_row, nearest)))
            nearest = k;
    {
        model_edit edit(ws, step_label("", row, b.type, ws.section.current_body));
        b.distance.value = p.profile_distance(nearest);
        locate_body_on_profile(p, b.distance.value, b.east, b.north);
        b.mag_valid = 0;
        b.grav_valid = 0;
        edit.commit();
    }
    show_body_position(ws);
    display_model(ws, 1);
}

// Column 1 of rows 4 to 18: the value, within the row's range and beyond its tolerance.
void commit_value(modelling_workspace& ws, body_record& b, double value, const std::string& text) {
    const int row = ws.edit_row;
    const row_rule& rule = rule_of(row);
    const bool cylinder = b.type == cylinder_pipe;
    // A cylinder's diameter has no lower bound, and its depth extent is not used.
    const double lo = row == row_width && cylinder ? -unbounded : rule.lo;
    if (row == row_depth_extent && cylinder) return;
    if (value < lo || value > rule.hi) return;
    parameter& p = *property_by_row(b, row);
    if (std::fabs(value - static_cast<double>(p.value)) <= rule.tolerance) return;
    {
        model_edit edit(ws, step_label("", row, b.type, ws.section.current_body));
        p.value = static_cast<float>(value);
        if (row == row_distance) locate_body_on_profile(ws.model.profile, p.value, b.east, b.north);
        if (rule.field_coefficients) b.magnetisation = -1.0f;
        // The flags go by row number: rows up to 12 clear the gravity, all rows but 12 the
        // magnetics. So plunge, slope, offset and remanence keep the gravity marked valid, and
        // susceptibility clears it.
        if (row <= row_density) b.grav_valid = 0;
        if (row != row_density) b.mag_valid = 0;
        edit.commit();
    }
    if (row == row_distance) show_body_position(ws);
    ws.view->set_grid_cell(grid, row, cell_value, text);
    display_model(ws, 1);
}

}  // namespace

std::string FormatLimit(float value) {
    return value > undefined_value ? format_fixed(value, 1) : std::string();
}

std::string FormatLimits(const parameter& property, int decimals) {
    const char tab = grid_column_separator;
    return format_fixed(property.value, decimals) + tab + (property.vary != 0.0f ? "Yes" : "No") +
           tab + FormatLimit(property.min) + tab + FormatLimit(property.max);
}

std::string body_row_label(int row, int type) {
    if (type == cylinder_pipe && row == row_top) return "Depth";
    if (type == cylinder_pipe && row == row_width) return "Diameter";
    switch (row) {
        case row_type:
            return "Body Type";
        case row_east:
            return "East";
        case row_north:
            return "North";
        default:
            return property_label(row);
    }
}

std::string body_row_tooltip(int row, int type) {
    if (!property_row_number(row)) return {};
    const row_rule& rule = rule_of(row);
    return type == cylinder_pipe && rule.cylinder_tooltip ? rule.cylinder_tooltip : rule.tooltip;
}

int body_row_decimals(int row) {
    return property_row_number(row) ? rule_of(row).decimals : 1;
}

void display_body_parameters(modelling_workspace& ws) {
    body_record* found = current_body(ws);
    if (!found) return;
    body_record& b = *found;
    modelling_view& view = *ws.view;
    if (b.type != thin_sheet && b.type != thick_sheet && b.type != cylinder_pipe) {
        // Only the three offered types are shown; any other becomes a thin sheet.
        model_edit edit(ws, "Type of Body " + std::to_string(ws.section.current_body));
        b.type = thin_sheet;
        edit.commit(false);
    }
    display_guard guard(ws);
    view.set_grid_text(grid, table_text(b));

    view.set_checked("Check_fix_this_body", b.fix == 0);
    view.set_checked("Check_turn_off_body", b.disabled == 1);
    view.set_checked("Check_include_demagnetisation", b.demag == 1);
    view.set_text("Text_body_name", b.name);
    view.set_text("Text_body_colour", format_fixed(b.colour, 0));
    view.set_text("Text_body_rock_type", b.rock_type);
    view.set_text("Text_body_description", b.description);
    const bool cylinder = b.type == cylinder_pipe;
    view.set_visible("Frame_cylinder", cylinder);
    if (cylinder) {
        view.set_text("Text_Shell_Thickness", format_fixed(b.shell_thickness, 3));
        view.set_text("Text_End_Thickness", format_fixed(b.end_thickness, 3));
        view.set_text("Text_num_sectors", format_fixed(b.num_sectors, 0));
        view.set_text("Text_num_segments", format_fixed(b.num_segments, 0));
        view.set_text("Text_max_triangle_size", format_fixed(b.max_triangle_size, 3));
    }
    // The label column takes a tenth of the grid's width on top of its contents, the others a
    // twentieth.
    view.fit_grid_columns(grid, {0.1, 0.05, 0.05, 0.05, 0.05});
    view.set_scroll("HScroll_body", ws.section.current_body, 1, ws.model.num_bodies);
    view.set_status(1, b.name);
}

void clear_body_parameters(modelling_workspace& ws) {
    modelling_view& view = *ws.view;
    display_guard guard(ws);
    view.set_visible("Text_edit", false);
    view.set_visible("Combo_model_type", false);
    view.set_grid_text(grid, "Property\tValue\tVary\tMin\tMax");
    for (const char* name :
         {"Text_body_name", "Text_body_colour", "Text_body_rock_type", "Text_body_description"})
        view.set_text(name, "");
    view.set_visible("Frame_cylinder", false);
    view.set_scroll("HScroll_body", 0, 0, 0);
}

int offered_body_type(int item) {
    return item >= 0 && item < 3 ? offered_types[item] : 0;
}

void text_body_colour_double_click(modelling_workspace& ws) {
    if (ws.updating_display) return;
    body_record* found = current_body(ws);
    if (!found) return;
    const auto chosen = ws.ui.choose_colour(found->colour);
    if (!chosen) return;
    {
        model_edit edit(ws, "Colour of Body " + std::to_string(ws.section.current_body));
        found->colour = *chosen;
        edit.commit();
    }
    display_body_parameters(ws);
    display_model(ws, 1);
}

void grid_body_click(modelling_workspace& ws, int row, int column) {
    if (ws.updating_display) return;
    body_record* found = current_body(ws);
    if (!found || row < 1 || column < 1) return;
    body_record& b = *found;
    ws.edit_row = row;
    ws.edit_column = column;
    modelling_view& view = *ws.view;

    if (row == row_type && column == cell_value) {
        display_guard guard(ws);
        lay_over_cell(ws, "Combo_model_type");
        for (int item = 0; item < 3; ++item)
            if (offered_types[item] == b.type) view.select_item("Combo_model_type", item);
        view.set_visible("Combo_model_type", true);
        view.set_focus("Combo_model_type");
        return;
    }
    const bool position_cell = (row == row_east || row == row_north) && column == cell_value;
    const bool property_cell = property_row_number(row) &&
                               (column == cell_value || column == cell_min || column == cell_max);
    if (position_cell || property_cell) {
        if (b.type == cylinder_pipe && unused_by_cylinder(row)) return;
        display_guard guard(ws);
        lay_over_cell(ws, "Text_edit");
        view.set_text("Text_edit", view.grid_cell(grid, row, column));
        view.set_tooltip("Text_edit", body_row_tooltip(row, b.type));
        view.set_visible("Text_edit", true);
        view.set_focus("Text_edit");
        return;
    }
    if (property_row_number(row) && column == cell_vary) {
        // Even on a row a cylinder does not use: the inversion skips it there.
        parameter& p = *property_by_row(b, row);
        {
            model_edit edit(ws, step_label("Vary ", row, b.type, ws.section.current_body));
            p.vary = 1.0f - p.vary;
            edit.commit();
        }
        view.set_grid_cell(grid, row, cell_vary, p.vary != 0.0f ? "Yes" : "No");
    }
}

void text_edit_commit(modelling_workspace& ws) {
    if (ws.updating_display) return;
    body_record* found = current_body(ws);
    if (!found) return;
    {
        display_guard guard(ws);
        ws.view->set_visible("Text_edit", false);
    }
    const std::string raw = ws.view->text("Text_edit");
    const std::string text = trim_text(raw);
    const int row = ws.edit_row;
    const int column = ws.edit_column;
    if (column == cell_min || column == cell_max) {
        commit_limit(ws, *found, text);
        return;
    }
    if (column != cell_value || text.empty() || !is_numeric_text(text)) return;
    const double value = parse_number(text);
    if (row == row_east || row == row_north) {
        commit_coordinate(ws, *found, value);
    } else if (property_row_number(row)) {
        commit_value(ws, *found, value, raw);
    }
}

void show_body_position(modelling_workspace& ws) {
    const body_record* b = current_body(ws);
    if (!b) return;
    modelling_view& view = *ws.view;
    view.set_grid_cell(grid, row_east, cell_value, format_fixed(b->east, 1));
    view.set_grid_cell(grid, row_north, cell_value, format_fixed(b->north, 1));
    view.set_grid_cell(grid, row_distance, cell_value, format_fixed(b->distance.value, 1));
}

void commit_pending_edit(modelling_workspace& ws) {
    if (ws.view->visible("Text_edit")) text_edit_commit(ws);
}

void text_edit_cancel(modelling_workspace& ws) {
    if (ws.updating_display) return;
    display_guard guard(ws);
    ws.view->set_visible("Text_edit", false);
}

}  // namespace trensil
