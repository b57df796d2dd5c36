#include <string>

#include "workspace/graph_display.h"
#include "workspace/modelling_workspace.h"
#include "workspace/pointer_interaction.h"

namespace trensil {

namespace {
const char* marker_name(int i) {
    return i == 0 ? "Image_inversion_limit_0" : "Image_inversion_limit_1";
}

// The marker track: the strip less its end allowance.
float track_of(const limit_markers& limits) {
    return limits.strip_width - limit_track_allowance;
}

void show_markers(modelling_workspace& ws) {
    const limit_markers& limits = ws.pointer.limits;
    display_guard guard(ws);
    for (int i = 0; i < 2; ++i) {
        ws.view->set_geometry(marker_name(i), limits.left[static_cast<std::size_t>(i)], 0.0f,
                              limits.marker_width, limit_strip_height);
        ws.view->set_visible(marker_name(i), limits.shown[static_cast<std::size_t>(i)]);
    }
}
}  // namespace

void place_limit_markers(const model_record& model, const graph_view_state& view,
                         limit_markers& limits) {
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    if (n < 1) return;
    const float m = limits.marker_width;
    const float track = track_of(limits);
    const float left = view.view_centre - view.view_width / 2.0f;
    const float right = left + view.view_width;
    const int ends[2] = {p.inversion_first_station, p.inversion_last_station};
    for (std::size_t i = 0; i < 2; ++i) {
        const int station = ends[i] < 1 ? 1 : (ends[i] > n ? n : ends[i]);
        const float d = p.profile_distance(station);
        limits.shown[i] = d >= left && d <= right;
        if (!limits.shown[i]) continue;
        if (i == 0 && ends[i] <= 1)
            limits.left[i] = -m / 2.0f;
        else if (i == 1 && ends[i] >= n)
            limits.left[i] = track - m / 2.0f;
        else
            limits.left[i] =
                (view.view_width > 0.0f ? (d - left) / view.view_width : 0.0f) * track - m / 2.0f;
    }
}

bool move_limit_marker(model_record& model, const graph_view_state& view, limit_markers& limits,
                       int i, float new_left) {
    const float m = limits.marker_width;
    const float track = track_of(limits);
    const auto other = static_cast<std::size_t>(1 - i);
    if (new_left < -m / 2.0f || new_left > limits.strip_width - m - limit_track_allowance)
        return false;
    if (i == 0 && new_left + m > limits.left[other] - limit_marker_gap) return false;
    if (i == 1 && new_left < limits.left[other] + m + limit_marker_gap) return false;
    profile_block& p = model.profile;
    if (p.num_stations >= 1 && track > 0.0f) {
        const float d = (m / 2.0f + new_left) / track * view.view_width +
                        (view.view_centre - view.view_width / 2.0f);
        const int k = station_at_distance(p, d);
        if (i == 0)
            p.inversion_first_station = k;
        else
            p.inversion_last_station = k;
    }
    limits.left[static_cast<std::size_t>(i)] = new_left;
    return true;
}

void update_inversion_limit_display(modelling_workspace& ws) {
    limit_markers& limits = ws.pointer.limits;
    const graph_control* section = ws.graphs[section_graph];
    if (section) {
        // The track covers the section's plot, so that a marker's centre stands over the
        // window's line whatever room the axes take.
        limits.strip_left = section->plot_left() * ws.pointer.twips_per_pixel;
        limits.strip_width =
            section->plot_width() * ws.pointer.twips_per_pixel + limit_track_allowance;
        display_guard guard(ws);
        ws.view->set_geometry("Picture_inversion_limits", limits.strip_left, 0.0f,
                              limits.strip_width, limit_strip_height);
    }
    if (ws.model.profile.num_stations < 1) return;
    place_limit_markers(ws.model, ws.graph_view, limits);
    show_markers(ws);
}

void limit_marker_down(modelling_workspace& ws, int i, float x) {
    if (i < 0 || i > 1) return;
    ws.pointer.limits.limit_dragging = true;
    ws.pointer.limits.limit_grab_x = x;
}

void limit_marker_move(modelling_workspace& ws, int i, float x) {
    limit_markers& limits = ws.pointer.limits;
    if (ws.updating_display || !limits.limit_dragging || i < 0 || i > 1) return;
    const float dx = x - limits.limit_grab_x;
    if (dx == 0.0f) return;
    display_guard guard(ws);
    const float new_left = limits.left[static_cast<std::size_t>(i)] + dx;
    if (!move_limit_marker(ws.model, ws.graph_view, limits, i, new_left)) return;
    // The window lines follow on every graph; a fit made over the old window is no longer the
    // one to go back to.
    for (int g = 0; g < graph_count; ++g)
        display_maginv_model(ws.model, ws.graph_view, ws.graphs, ws.section, 1, g);
    modelling_view& view = *ws.view;
    view.set_text("Text_MAGINV_misfit_0", "");
    view.set_text("Text_MAGINV_misfit_1", "");
    view.set_enabled("Command_restore_best", false);
    view.set_enabled("Command_reject_changes", false);
    ws.inversion.best_misfit = undefined_value;
    show_markers(ws);
}

void limit_marker_up(modelling_workspace& ws, int) {
    ws.pointer.limits.limit_dragging = false;
}

}  // namespace trensil
