// Grid_body, the current body as a table: one row per property (the property rows of the
// inversion), with the columns "Property", "Value", "Vary", "Min" and "Max". A click on a cell
// lays the edit box Text_edit (or, on the type, Combo_model_type) over it or flips the Vary flag;
// leaving the edit box commits the text with the row's range and tolerance, through the edit
// path, and recalculates for a value.
//
//   display_body_parameters(ws);          // the table and the body's fields from the body
//   grid_body_click(ws, 6, 1);            // the edit box over the dip's value
//   view.set_text("Text_edit", "45");
//   text_edit_commit(ws);                 // dip 45, body stale, model redrawn
#pragma once

#include <string>

#include "core/parameter.h"

namespace trensil {

struct modelling_workspace;

// Rows of Grid_body besides the property rows 4 to 18.
enum body_table_row : int { row_heading = 0, row_type = 1, row_east = 2, row_north = 3 };
// Columns of Grid_body.
enum body_table_column : int {
    cell_label = 0,
    cell_value = 1,
    cell_vary = 2,
    cell_min = 3,
    cell_max = 4
};
inline constexpr int body_table_last_row = 18;

// A limit in format "0.0", or an empty text for an unset limit (at or below -99999).
std::string FormatLimit(float value);
// A property row's cells after the label: the value with `decimals` decimals, "Yes" or "No" for
// Vary, Min and Max by FormatLimit, separated by tabs.
std::string FormatLimits(const parameter& property, int decimals);

// The row's label as the table shows it for a body of `type` ("Top", or "Depth" for a cylinder).
std::string body_row_label(int row, int type);
// The edit box's tooltip over a cell of `row` for a body of `type`; empty for rows 1 to 3.
std::string body_row_tooltip(int row, int type);
// Decimals of the row's value in the table.
int body_row_decimals(int row);

// Rebuilds the table and the body's side controls (name, colour, texts, check boxes, the cylinder
// frame for a cylinder only, HScroll_body) from the current body. A body of a type other than
// 1, 2 or 16 becomes a thin sheet. Nothing without bodies or a current body.
void display_body_parameters(modelling_workspace& ws);
// Empties the table and the body's fields: no body to show.
void clear_body_parameters(modelling_workspace& ws);

// The body type of item `item` of Combo_model_type: thin sheet, thick sheet, cylinder/pipe.
int offered_body_type(int item);

// A double click on Text_body_colour: the colour chooser, the chosen colour stored in the
// current body as an edit, the body redrawn.
void text_body_colour_double_click(modelling_workspace& ws);

// A click on cell (row, column) of Grid_body.
void grid_body_click(modelling_workspace& ws, int row, int column);
// Text_edit left (Return or focus elsewhere): commits its text into the cell under edit.
void text_edit_commit(modelling_workspace& ws);
// Escape in Text_edit: the box goes away, nothing is stored.
void text_edit_cancel(modelling_workspace& ws);
// Before another control acts on the body: commits the edit box's text when it is open.
void commit_pending_edit(modelling_workspace& ws);

// Rewrites rows 2 to 4 (East, North, Distance) from the current body's position.
void show_body_position(modelling_workspace& ws);

}  // namespace trensil
