#include "grid_image.h"

#include <algorithm>
#include <cmath>

#include "support/colour_ramp.h"

namespace trensil {

bool undefined_cell(float value) {
    return std::isnan(value) || value < -1e30f;
}

colour_stretch equalised_stretch(const std::vector<float>& values, int levels) {
    std::vector<float> defined;
    defined.reserve(values.size());
    for (float v : values)
        if (!undefined_cell(v)) defined.push_back(v);
    colour_stretch stretch;
    if (defined.empty() || levels < 2) return stretch;
    std::sort(defined.begin(), defined.end());
    stretch.levels.resize(static_cast<std::size_t>(levels));
    const double last = static_cast<double>(defined.size() - 1);
    for (int i = 0; i < levels; ++i) {
        const auto at = static_cast<std::size_t>(std::lround(last * i / (levels - 1)));
        stretch.levels[static_cast<std::size_t>(i)] = defined[at];
    }
    return stretch;
}

double stretch_fraction(const colour_stretch& stretch, float value) {
    const std::vector<float>& l = stretch.levels;
    if (l.empty() || undefined_cell(value)) return 0.0;
    if (value <= l.front()) return 0.0;
    if (value >= l.back()) return 1.0;
    // Levels repeat where many cells share a value: take the middle of the run.
    const auto lo = std::lower_bound(l.begin(), l.end(), value);
    const auto hi = std::upper_bound(l.begin(), l.end(), value);
    const double steps = static_cast<double>(l.size() - 1);
    if (lo != hi)
        return (static_cast<double>(lo - l.begin()) + static_cast<double>(hi - l.begin()) - 1.0) /
               2.0 / steps;
    const auto i = static_cast<std::size_t>(lo - l.begin());  // l[i-1] < value < l[i]
    const double w = (value - l[i - 1]) / static_cast<double>(l[i] - l[i - 1]);
    return (static_cast<double>(i - 1) + w) / steps;
}

float stretch_value(const colour_stretch& stretch, double fraction) {
    const std::vector<float>& l = stretch.levels;
    if (l.empty()) return 0.0f;
    const double at = std::clamp(fraction, 0.0, 1.0) * static_cast<double>(l.size() - 1);
    const auto i = static_cast<std::size_t>(std::floor(at));
    if (i + 1 >= l.size()) return l.back();
    return static_cast<float>(l[i] + (l[i + 1] - l[i]) * (at - static_cast<double>(i)));
}

QImage grid_colour_image(int columns, int rows, const std::vector<float>& values,
                         const colour_stretch& stretch) {
    if (columns < 1 || rows < 1 ||
        values.size() < static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows))
        return {};
    QImage image(columns, rows, QImage::Format_ARGB32);
    // The ramp worked out once for 1024 shades; each cell takes the nearest.
    constexpr int shades = 1024;
    std::vector<QRgb> table(shades);
    for (int i = 0; i < shades; ++i) {
        const colour_fraction c = colour_ramp(static_cast<double>(i) / (shades - 1));
        table[static_cast<std::size_t>(i)] = qRgb(static_cast<int>(std::lround(c.red * 255.0f)),
                                                  static_cast<int>(std::lround(c.green * 255.0f)),
                                                  static_cast<int>(std::lround(c.blue * 255.0f)));
    }
    for (int r = 0; r < rows; ++r) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(r));
        const float* row = values.data() + static_cast<std::size_t>(r) * columns;
        for (int c = 0; c < columns; ++c) {
            const float v = row[c];
            if (undefined_cell(v)) {
                line[c] = qRgba(0, 0, 0, 0);
                continue;
            }
            const auto shade =
                static_cast<int>(std::lround(stretch_fraction(stretch, v) * (shades - 1)));
            line[c] = table[static_cast<std::size_t>(std::clamp(shade, 0, shades - 1))];
        }
    }
    return image;
}

}  // namespace trensil
