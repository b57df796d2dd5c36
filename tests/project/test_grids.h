// Small grids held in memory for the project tests.
#pragma once

#include <limits>
#include <vector>

#include "project/grid_source.h"

namespace trensil::testing {

inline constexpr float no_value = std::numeric_limits<float>::quiet_NaN();

// A north-up grid of square cells of `cell` metres whose north-west corner is (west, north);
// `values` row by row from the north.
inline grid_geometry square_cells(int columns, int rows, double west, double north, double cell) {
    grid_geometry g;
    g.columns = columns;
    g.rows = rows;
    g.x_origin = west;
    g.y_origin = north;
    g.cell_width = cell;
    g.cell_height = -cell;
    return g;
}

}  // namespace trensil::testing
