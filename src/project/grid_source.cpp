#include "project/grid_source.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace trensil {

namespace {

bool has_value(float v) {
    return !std::isnan(v) && static_cast<double>(v) > grid_undefined_threshold;
}

}  // namespace

memory_grid::memory_grid(grid_geometry geometry, std::vector<float> values)
    : geometry_(std::move(geometry)), values_(std::move(values)) {
    values_.resize(static_cast<std::size_t>(std::max(geometry_.columns, 0)) *
                       static_cast<std::size_t>(std::max(geometry_.rows, 0)),
                   std::numeric_limits<float>::quiet_NaN());
    for (float& v : values_)
        if (!has_value(v)) v = std::numeric_limits<float>::quiet_NaN();
}

const float* memory_grid::row_values(int row) const {
    return values_.data() +
           static_cast<std::size_t>(row) * static_cast<std::size_t>(geometry_.columns);
}

grid_extent extent_of(const grid_source& grid) {
    const grid_geometry& g = grid.geometry();
    const double x2 = g.x_origin + g.columns * g.cell_width;
    const double y2 = g.y_origin + g.rows * g.cell_height;
    return {std::min(g.x_origin, x2), std::max(g.x_origin, x2), std::min(g.y_origin, y2),
            std::max(g.y_origin, y2)};
}

bool value_range(const grid_source& grid, double& lo, double& hi) {
    const grid_geometry& g = grid.geometry();
    bool any = false;
    for (int r = 0; r < g.rows; ++r) {
        const float* row = grid.row_values(r);
        for (int c = 0; c < g.columns; ++c) {
            if (!has_value(row[c])) continue;
            const double v = row[c];
            if (!any) lo = hi = v;
            lo = std::min(lo, v);
            hi = std::max(hi, v);
            any = true;
        }
    }
    return any;
}

double sample_grid_point(const grid_source& grid, double x, double y) {
    const grid_geometry& g = grid.geometry();
    if (g.columns < 1 || g.rows < 1 || g.cell_width == 0.0 || g.cell_height == 0.0)
        return grid_undefined;
    // Position in cells from the outer corner; the centre of cell (c, r) is at (c + .5, r + .5).
    const double fc = (x - g.x_origin) / g.cell_width;
    const double fr = (y - g.y_origin) / g.cell_height;
    if (!(fc >= 0.0 && fc <= g.columns && fr >= 0.0 && fr <= g.rows)) return grid_undefined;

    // The two columns and rows whose centres surround the point, and the share of the second;
    // beyond the outermost centres both are the edge cell.
    auto bracket = [](double f, int n, int& i0, int& i1, double& t) {
        const double centre = f - 0.5;
        if (centre <= 0.0) {
            i0 = i1 = 0;
            t = 0.0;
        } else if (centre >= n - 1) {
            i0 = i1 = n - 1;
            t = 0.0;
        } else {
            i0 = static_cast<int>(std::floor(centre));
            i1 = i0 + 1;
            t = centre - i0;
            // A point on a centre, give or take rounding, takes nothing from the next cell.
            if (t < 1e-9) {
                i1 = i0;
                t = 0.0;
            } else if (t > 1.0 - 1e-9) {
                i0 = i1;
                t = 0.0;
            }
        }
    };
    int c0, c1, r0, r1;
    double tc, tr;
    bracket(fc, g.columns, c0, c1, tc);
    bracket(fr, g.rows, r0, r1, tr);

    const double weights[4] = {(1 - tc) * (1 - tr), tc * (1 - tr), (1 - tc) * tr, tc * tr};
    const float cells[4] = {grid.row_values(r0)[c0], grid.row_values(r0)[c1],
                            grid.row_values(r1)[c0], grid.row_values(r1)[c1]};
    double sum = 0.0;
    for (int k = 0; k < 4; ++k) {
        if (weights[k] == 0.0) continue;
        if (!has_value(cells[k])) return grid_undefined;
        sum += weights[k] * static_cast<double>(cells[k]);
    }
    return sum;
}

int sample_grid(const grid_source& grid, int count, const double* x, const double* y,
                double* result) {
    const grid_geometry& g = grid.geometry();
    if (g.columns < 1 || g.rows < 1) return -1;
    for (int i = 0; i < count; ++i) result[i] = sample_grid_point(grid, x[i], y[i]);
    return 0;
}

}  // namespace trensil
