// A grid as a colour picture: the values are stretched by their distribution (each colour of the
// ramp covers about as many cells as any other), so that a magnetic grid with a few strong
// anomalies still shows the fabric of the weak ones. Undefined cells are transparent.
//
//   const colour_stretch stretch = equalised_stretch(values);
//   QImage picture = grid_colour_image(columns, rows, values, stretch);
//   double f = stretch_fraction(stretch, 250.0f);   // where 250 nT sits on the colour bar
#pragma once

#include <QImage>
#include <vector>

namespace trensil {

// The value at each of `levels` equally spaced fractions of the defined cells, lowest first.
struct colour_stretch {
    std::vector<float> levels;
    bool empty() const { return levels.empty(); }
};

// True for a cell that holds no value: NaN or below -1e30.
bool undefined_cell(float value);

// The stretch of the defined values (none defined: an empty stretch).
colour_stretch equalised_stretch(const std::vector<float>& values, int levels = 256);

// The fraction 0..1 of the colour bar at which `value` sits, interpolated between levels.
double stretch_fraction(const colour_stretch& stretch, float value);
// The value at fraction 0..1 of the colour bar.
float stretch_value(const colour_stretch& stretch, double fraction);

// One pixel a cell, rows from the top (north), ARGB with undefined cells transparent.
QImage grid_colour_image(int columns, int rows, const std::vector<float>& values,
                         const colour_stretch& stretch);

}  // namespace trensil
