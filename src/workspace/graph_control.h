// The drawing control behind every graph of the modelling window: the four response graphs, the
// section and the plan. It keeps the series last loaded and a retained list of drawn objects, so
// that `redraw` alone repaints a graph with new axes. All coordinates are world units (profile
// distance, data value, elevation, East and North); the control converts them to its own plot.
//
//   graph.clear_data();
//   graph.load_data(plot);
//   graph.xaxismin = 0; graph.xaxismax = 1050; graph.x_tick_step = 150;
//   graph.redraw();
//   graph.draw_polygon(5, xs, ys, 0, 255, 1);   // polygon 1 since clear_data
//   graph.redraw();
//
// The window's widget paints with Qt (gui/graph_widget.h); tests use recording_graph_control.h.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/parameter.h"

namespace trensil {

// A table of series for `load_data`: x values and one or more y series over the same rows.
// Entries without a value are NaN and are not drawn; a NaN splits a series into pieces.
struct plot_data {
    std::vector<double> x;
    std::vector<std::vector<double>> y;  // y[c][row], one vector per series

    int rows() const { return static_cast<int>(x.size()); }
    void resize(int rows, int series);
};

// Colours are 24-bit blue-green-red values; -1 as a fill means no fill.
inline constexpr std::int32_t colour_red = 255;
inline constexpr std::int32_t colour_green = 65280;
inline constexpr std::int32_t colour_blue = 0xff0000;
inline constexpr std::int32_t colour_white = 0xffffff;
inline constexpr std::int32_t colour_black = 0;
inline constexpr std::int32_t no_fill = -1;

class graph_control {
public:
    virtual ~graph_control() = default;

    // Properties read and written by the window's logic; axis values take effect at the next
    // redraw. An axis value of -99999 means "not set yet".
    float xaxismin = undefined_value;
    float xaxismax = undefined_value;
    float yaxismin = undefined_value;
    float yaxismax = undefined_value;
    float x_tick_step = 0.0f;
    float y_tick_step = 0.0f;
    std::string title;
    bool display_x_axis = true;
    bool display_y_axis = true;
    bool display_legend = false;
    std::int32_t charttype = 1;
    std::int32_t markersize = 10;
    // On the plan: markers scale with the plot and East and North keep one scale.
    bool equal_scales = false;

    // Drops series and drawn objects.
    virtual void clear_data() = 0;
    // Drops drawn objects only.
    virtual void clear_objects() = 0;
    virtual void load_data(const plot_data& data) = 0;
    // Repaints axes, series, then the retained objects in order of drawing.
    virtual void redraw() = 0;
    virtual void draw_line(float x1, float y1, float x2, float y2, std::int32_t colour,
                           int width) = 0;
    // Style 3, the only one the window uses, is a plus-shaped mark of `markersize`.
    virtual void draw_marker(float x, float y, int style, std::int32_t colour) = 0;
    // A closed outline of `count` points; numbered from 1 in order of drawing since clear_data.
    virtual void draw_polygon(int count, const float* x, const float* y, std::int32_t line_colour,
                              std::int32_t fill_colour, int width) = 0;
    // Text starting at (x, y); mode 0 is the only mode.
    virtual void draw_text(int mode, float x, float y, const std::string& text) = 0;

    // The control's size in drawing units (pixels).
    virtual int width() const = 0;
    virtual int height() const = 0;
    // Drawing units per world unit of y at the current axes.
    virtual float y_scale() const = 0;
    // Height of one line of the control's font in drawing units.
    virtual float font_height() const = 0;
    // The plot inside the axes: its left edge from the control's left, and its width, in
    // drawing units. A control without axes margins plots over its whole width.
    virtual float plot_left() const { return 0.0f; }
    virtual float plot_width() const { return static_cast<float>(width()); }

    // Both axes on or off together, as the window always sets them.
    void set_display_axes(bool on) {
        display_x_axis = on;
        display_y_axis = on;
    }
};

}  // namespace trensil
