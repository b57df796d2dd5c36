// The four response graphs and the section share one distance axis: this is their view state
// (the whole profile, the visible part, the zoom and the pan position) and the per-graph
// vertical view, with the routines that rebuild the plotted series and apply the view.
//
//   setup_graph_data_ranges(model, view);        // once after the data or filtering changed
//   view.zoom_ratio = 2.0f;
//   calculate_zoom_settings(model, view);
//   update_graph_display(model, view, graphs);   // new axes on all five graphs, then redraw
#pragma once

#include <array>
#include <cstdint>

#include "core/model_record.h"
#include "workspace/graph_control.h"

namespace trensil {

struct response_state;

inline constexpr int graph_count = 5;
inline constexpr int section_graph = 4;
inline constexpr int zoom_step_count = 9;

using graph_array = std::array<graph_control*, graph_count>;

struct graph_view_state {
    // Horizontal view, common to the five graphs.
    float dist_first = 0.0f;
    float dist_last = 0.0f;
    float full_width = 0.0f;
    float full_centre = 0.0f;
    float view_width = 0.0f;
    float view_centre = 0.0f;
    float zoom_ratio = 1.0f;  // 1: the whole profile
    std::int32_t pan_position = 0;
    // What HScroll_pan shows.
    std::int32_t pan_value = 0;
    std::int32_t pan_min = 0;
    std::int32_t pan_max = 0;

    // Vertical view per graph.
    std::array<float, graph_count> graph_ymin{};
    std::array<float, graph_count> graph_ymax{};
    std::array<float, graph_count> graph_ycentre{};
    std::array<float, graph_count> graph_yspan{};
    std::array<std::int32_t, graph_count> graph_zoom_level{};
    // The steps of Combo_zoom, "100%" to "1000%".
    std::array<float, zoom_step_count> zoom_factor{1.0f, 1.25f, 1.5f, 2.0f, 3.0f,
                                                   4.0f, 6.0f,  8.0f, 10.0f};

    // Data ranges of the two gradient graphs (the magnetic and gravity ranges are kept in the
    // profile block).
    float mag_gradient_min = 0.0f;
    float mag_gradient_max = 0.0f;
    float grav_gradient_min = 0.0f;
    float grav_gradient_max = 0.0f;

    std::int16_t graph_ranges_valid = 0;
    // The series of each graph: distance, observed, computed (the section: distance, ground).
    std::array<plot_data, graph_count> plots;
};

// Rebuilds the plotted distance and observed series and the data ranges, unless they are
// valid; then resets the zoom to the whole profile. Calculated gravity and calculated
// gradients do not widen the ranges, and the calculated vertical gradient widens the
// magnetic range rather than the gradient range: that is how the graphs are scaled.
void setup_graph_data_ranges(model_record& model, graph_view_state& view);

// Copies the computed series of graphs 0 to 3 from the response engine's display arrays.
void load_computed_series(const model_record& model, const response_state& response,
                          graph_view_state& view);

// The horizontal view from `zoom_ratio` and `pan_position`; sets the pan bar's range (two
// steps per unit of zoom).
void calculate_zoom_settings(const model_record& model, graph_view_state& view);

// The pan bar's range at twenty steps per unit of zoom, keeping `pan_position`.
void display_pan_values(graph_view_state& view);

// Applies the horizontal view to all five graphs and each graph's vertical view, then redraws
// them. With `maintain_aspect_ratio` the section's bottom follows from its width.
void update_graph_display(const model_record& model, graph_view_state& view,
                          const graph_array& graphs);

// One step of a graph's vertical zoom bar (`up` for a step up); the section zooms about its
// top. Redraws that graph only.
void zoom_graph_vertically(graph_view_state& view, graph_control& graph, int index, bool up);

// One step of a graph's vertical pan bar: a quarter of the visible span.
void pan_graph_vertically(graph_view_state& view, graph_control& graph, int index, bool up);

// The zoom ratio for a Combo_zoom entry chosen from the list: index 0 or less is 1, otherwise
// the number the entry starts with over 100.
float zoom_ratio_for_entry(int index, const std::string& entry);
// The zoom ratio for a typed Combo_zoom text: numeric, 100 to 10000, else none.
bool zoom_ratio_for_text(const std::string& text, float& ratio);

}  // namespace trensil
