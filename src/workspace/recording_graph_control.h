// A graph control that draws nothing and records every call, for the tests of the window's
// logic: what was loaded, the axes at each redraw, and every line, marker, polygon and text.
//
//   recording_graph_control g;
//   display_section(...);
//   EXPECT_EQ(g.polygons().size(), 2u);
#pragma once

#include <utility>
#include <vector>

#include "workspace/graph_control.h"

namespace trensil {

class recording_graph_control : public graph_control {
public:
    enum class call_kind {
        clear_data,
        clear_objects,
        load_data,
        redraw,
        line,
        marker,
        polygon,
        text
    };

    struct call {
        call_kind kind = call_kind::redraw;
        std::vector<float> x, y;  // points of a line (2), marker (1), polygon (count), text (1)
        std::int32_t colour = 0;  // line or marker colour; polygon line colour
        std::int32_t fill = 0;
        int width = 0;
        int style = 0;       // marker style; text mode
        int markersize = 0;  // markersize at the time of a marker
        std::string text;
        // Axes at a redraw.
        float xmin = 0, xmax = 0, ymin = 0, ymax = 0;
    };

    static call make(call_kind kind, std::vector<float> x = {}, std::vector<float> y = {}) {
        call c;
        c.kind = kind;
        c.x = std::move(x);
        c.y = std::move(y);
        return c;
    }

    std::vector<call> calls;
    plot_data loaded;
    int control_width = 800;
    int control_height = 400;
    float control_font_height = 12.0f;

    void clear_data() override {
        calls.push_back(make(call_kind::clear_data));
        loaded = plot_data{};
    }
    void clear_objects() override { calls.push_back(make(call_kind::clear_objects)); }
    void load_data(const plot_data& data) override {
        calls.push_back(make(call_kind::load_data));
        loaded = data;
    }
    void redraw() override {
        call c = make(call_kind::redraw);
        c.xmin = xaxismin;
        c.xmax = xaxismax;
        c.ymin = yaxismin;
        c.ymax = yaxismax;
        calls.push_back(c);
    }
    void draw_line(float x1, float y1, float x2, float y2, std::int32_t colour,
                   int width) override {
        call c = make(call_kind::line, {x1, x2}, {y1, y2});
        c.colour = colour;
        c.width = width;
        calls.push_back(c);
    }
    void draw_marker(float x, float y, int style, std::int32_t colour) override {
        call c = make(call_kind::marker, {x}, {y});
        c.style = style;
        c.colour = colour;
        c.markersize = markersize;
        calls.push_back(c);
    }
    void draw_polygon(int count, const float* x, const float* y, std::int32_t line_colour,
                      std::int32_t fill_colour, int width) override {
        call c = make(call_kind::polygon, std::vector<float>(x, x + count),
                      std::vector<float>(y, y + count));
        c.colour = line_colour;
        c.fill = fill_colour;
        c.width = width;
        calls.push_back(c);
    }
    void draw_text(int mode, float x, float y, const std::string& text) override {
        call c = make(call_kind::text, {x}, {y});
        c.style = mode;
        c.text = text;
        calls.push_back(c);
    }
    int width() const override { return control_width; }
    int height() const override { return control_height; }
    float y_scale() const override {
        const float span = yaxismax - yaxismin;
        return span > 0 ? static_cast<float>(control_height) / span : 1.0f;
    }
    float font_height() const override { return control_font_height; }

    // The recorded calls of one kind, in order.
    std::vector<call> of(call_kind kind) const {
        std::vector<call> out;
        for (const call& c : calls)
            if (c.kind == kind) out.push_back(c);
        return out;
    }
    std::vector<call> polygons() const { return of(call_kind::polygon); }
    std::vector<call> markers() const { return of(call_kind::marker); }
    std::vector<call> lines() const { return of(call_kind::line); }
    std::vector<call> texts() const { return of(call_kind::text); }
    void forget() { calls.clear(); }
};

}  // namespace trensil
