// The modelling window as its logic sees it: controls known by their names, with the few
// operations the logic needs (texts, check boxes, enabling, showing, scroll bars, the tab, the
// status bar, the window's caption and size). The Qt window implements it; tests use a fake that
// records the state of every control.
//
//   view.set_text("Text_mag_intensity", "56000");
//   if (view.checked("Check_maintain_aspect_ratio")) ...
//   view.set_enabled("Command_save_qvx_model", true);
//   view.set_grid_text("Grid_body", "Property\tValue\rBody Type\tThin Sheet");
//   view_rect cell = view.grid_cell_rect("Grid_body", 6, 1);
#pragma once

#include <string>
#include <vector>

#include "support/named_controls.h"

namespace trensil {

// A rectangle on the window, in pixels: a control's place, or a grid cell's.
struct view_rect {
    double left = 0.0;
    double top = 0.0;
    double width = 0.0;
    double height = 0.0;
    bool operator==(const view_rect&) const = default;
};

// Separators of a grid's whole text: tabs between the cells of a row, returns between rows.
inline constexpr char grid_column_separator = '\t';
inline constexpr char grid_row_separator = '\r';

class modelling_view : public named_controls {
public:
    // The tabs of Tab_model.
    virtual void select_tab(int index) = 0;
    virtual int current_tab() const = 0;
    // Status bar panels 1 to 6.
    virtual void set_status(int panel, const std::string& text) = 0;
    virtual std::string status_text(int panel) const = 0;
    // Places a control within its container, in the window's layout units (twips, 15 to a
    // pixel of the screen's logical resolution).
    virtual void set_geometry(const std::string& control, float left, float top, float width,
                              float height) = 0;
    // Grids (Grid_body): row 0 is the heading and column 0 the row labels. The whole text is
    // handed over at once, cells separated by grid_column_separator, rows by grid_row_separator.
    virtual void set_grid_text(const std::string& grid, const std::string& text) = 0;
    virtual std::string grid_cell(const std::string& grid, int row, int column) const = 0;
    virtual void set_grid_cell(const std::string& grid, int row, int column,
                               const std::string& text) = 0;
    // A cell's rectangle relative to the grid's top left corner.
    virtual view_rect grid_cell_rect(const std::string& grid, int row, int column) const = 0;
    // Makes each column as wide as its contents plus `extra_share[c]` of the grid's width.
    virtual void fit_grid_columns(const std::string& grid,
                                  const std::vector<double>& extra_share) = 0;

    // A control's rectangle on the window, and moving it there (an edit box laid over a cell).
    virtual view_rect control_rect(const std::string& control) const = 0;
    virtual void set_control_rect(const std::string& control, const view_rect& rect) = 0;
    virtual void set_focus(const std::string& control) = 0;
    virtual void set_tooltip(const std::string& control, const std::string& text) = 0;
};

}  // namespace trensil
