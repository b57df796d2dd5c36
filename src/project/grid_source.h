// A gridded data set (magnetics, ground or sensor elevation on a regular north-up mesh of cells)
// as the project window uses it: its extent, cell size and values, and bilinear sampling at
// points. Grid files are opened through a `grid_opener`; the program's one opener reads them with
// GDAL (grid/gdal_grid.h). Tests and in-memory data use memory_grid.
//
//   std::string error;
//   std::unique_ptr<grid_source> grid = opener("/survey/mag.tif", error);
//   if (!grid) ui.show_message("An error occured while loading the grid file: " + error);
//   std::vector<double> values(n);
//   sample_grid(*grid, n, xs.data(), ys.data(), values.data());   // undefined: -1e32
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace trensil {

// The value given for a point where the grid has no value; a value below -1e30 counts as
// undefined everywhere in the program.
inline constexpr double grid_undefined = -1e32;
inline constexpr double grid_undefined_threshold = -1e30;

inline bool grid_value_defined(double v) {
    return v > grid_undefined_threshold;
}

// Where the cells lie. Column 0 is the western column; row 0 is the first row as stored, which
// is the northern one when cell_height is negative (the usual case) and the southern one when
// it is positive. Cells are areas: cell (c, r) covers x from x_origin + c cell_width to
// x_origin + (c + 1) cell_width, and its value belongs to its centre.
struct grid_geometry {
    int columns = 0;
    int rows = 0;
    double x_origin = 0.0;  // outer edge of column 0
    double y_origin = 0.0;  // outer edge of row 0
    double cell_width = 1.0;
    double cell_height = -1.0;
    std::string path;
    std::string format;      // the reader's name for the file's format ("GTiff", "netCDF", ...)
    std::string projection;  // the coordinate system as well-known text; "" when unknown
};

// The outer edges of a grid, east and north.
struct grid_extent {
    double xmin = 0.0, xmax = 0.0, ymin = 0.0, ymax = 0.0;
};

class grid_source {
public:
    virtual ~grid_source() = default;
    virtual const grid_geometry& geometry() const = 0;
    // The cells of row `row` (0 .. rows - 1), columns west to east; NaN where the cell has no
    // value (no-data, or a value below -1e30).
    virtual const float* row_values(int row) const = 0;
};

// Opens a grid file; null with the reason in `error` when it cannot be read.
using grid_opener =
    std::function<std::unique_ptr<grid_source>(const std::string& path, std::string& error)>;

grid_extent extent_of(const grid_source& grid);
// The least and greatest defined cell values; false when no cell has a value.
bool value_range(const grid_source& grid, double& lo, double& hi);

// The grid's value at (x, y) by bilinear interpolation between the four cell centres around the
// point; within half a cell of the outer edge the edge cells' values are carried out to it.
// grid_undefined outside the grid, and where any of the cells that the point takes a share from
// has no value: no number is ever made up from a neighbour without one.
double sample_grid_point(const grid_source& grid, double x, double y);

// Samples `count` points into `result`; 0 when done, -1 when the grid holds no cells.
int sample_grid(const grid_source& grid, int count, const double* x, const double* y,
                double* result);

// A grid held in memory: for tests, and for grids made by the program itself.
class memory_grid : public grid_source {
public:
    // `values` row by row as described for grid_geometry; NaN or values below -1e30: no value.
    memory_grid(grid_geometry geometry, std::vector<float> values);
    const grid_geometry& geometry() const override { return geometry_; }
    const float* row_values(int row) const override;

private:
    grid_geometry geometry_;
    std::vector<float> values_;
};

}  // namespace trensil
