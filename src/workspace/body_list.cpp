#include "workspace/body_list.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "core/body_catalogue.h"
#include "response/strike_frame.h"
#include "support/text_tokens.h"
#include "workspace/body_command_support.h"
#include "workspace/graph_control.h"
#include "workspace/model_edit.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

namespace {
constexpr float degree = 0.017453292f;
// The list grows by this many places when it is full.
constexpr int body_capacity_step = 16;

std::string numbered_name(int index) {
    return "Body " + std::to_string(index);
}

void mark_stale(body_record& b) {
    b.mag_valid = 0;
    b.grav_valid = 0;
}

void swap_bodies(model_record& model, int a, int b) {
    std::swap(model.body(a), model.body(b));
}

// |sin| of the angle between the body's strike and the profile: below 0.01 the body runs along
// the profile.
float strike_across(const model_record& model, const body_record& b) {
    return std::fabs(std::sin(b.strike.value * degree - model.profile.profile_azimuth));
}

// Where a split puts the new half: half of the old width on, across the profile and down the dip.
float split_distance(const body_record& b, float across) {
    return b.distance.value + b.width.value / across / std::sin(b.dip.value * degree) / 2.0f;
}
}  // namespace

void make_room_for_body(model_record& model) {
    if (model.num_bodies + 1 <= model.body_capacity) return;
    const int old = model.body_capacity;
    grow_bodies(model, old + body_capacity_step);
    const int n = model.profile.num_stations;
    for (int i = old + 1; i <= model.body_capacity; ++i) {
        body_record& b = model.body(i);
        mark_stale(b);
        b.body_response.resize(1, 5, 1, n);
    }
}

bool add_body(model_record& model, std::int32_t& current_body, int kind, float distance, float top,
              const settings_store* settings) {
    const profile_block& p = model.profile;
    if (kind != add_new) {
        if (current_body < 1 || current_body > model.num_bodies) return false;
        const body_record& old = model.body(current_body);
        const float across = strike_across(model, old);
        if (across < 0.01f) return false;
        if (kind == add_split && !std::isfinite(split_distance(old, across))) return false;
    }
    make_room_for_body(model);
    ++model.num_bodies;

    if (kind == add_new) {
        const int index = model.num_bodies;
        body_record& b = model.body(index);
        b.type = thick_sheet;
        new_body_defaults(model, index, settings);
        b.distance.value = distance;
        locate_body_on_profile(p, distance, b.east, b.north);
        b.top.value = top;
        b.colour = colour_blue;
        b.name = numbered_name(index);
        b.strike.value = p.profile_azimuth / degree + 90.0f;
        current_body = index;
        return true;
    }

    // Room behind the current body: the bodies behind it move up one place with their stores.
    const int place = current_body + 1;
    for (int i = model.num_bodies; i > place; --i) swap_bodies(model, i, i - 1);
    body_record& old = model.body(current_body);
    body_record& b = model.body(place);
    b = old;
    if (kind == add_copy) {
        b.distance.value = old.width.value + old.distance.value + 50.0f;
    } else {
        b.distance.value = split_distance(old, strike_across(model, old));
        old.width.value = old.width.value / 2.0f;
        b.width.value = old.width.value;
    }
    locate_body_on_profile(p, b.distance.value, b.east, b.north);
    mark_stale(old);
    mark_stale(b);
    b.colour = colour_blue;
    b.name = numbered_name(place);
    current_body = place;
    return true;
}

void delete_current_body(model_record& model, std::int32_t& current_body) {
    if (model.num_bodies < 2 || current_body < 1 || current_body > model.num_bodies) {
        delete_all_bodies(model, current_body);
        return;
    }
    // The bodies behind it move down one place with their response stores; the deleted record
    // ends beyond the count.
    for (int i = current_body; i < model.num_bodies; ++i) swap_bodies(model, i, i + 1);
    --model.num_bodies;
    if (current_body > model.num_bodies) current_body = model.num_bodies;
}

void delete_all_bodies(model_record& model, std::int32_t& current_body) {
    model.num_bodies = 0;
    current_body = 0;
}

bool change_body_type(body_record& body, int type) {
    if (type == body.type) return false;
    // The cylinder keeps its axis as a dip on its own scale, 90 below a sheet's.
    if (body.type == cylinder_pipe)
        body.dip.value += 90.0f;
    else if (type == cylinder_pipe)
        body.dip.value -= 90.0f;
    body.type = type;
    mark_stale(body);
    body.magnetisation = -1.0f;
    return true;
}

bool sort_bodies(model_record& model, std::int32_t& current_body, int item) {
    const int n = model.num_bodies;
    if (n < 2) return false;
    if (item == sort_ascending || item == sort_descending) {
        // Selection sort with a strict comparison: of equal distances the earliest is taken.
        const bool ascending = item == sort_ascending;
        for (int i = 1; i < n; ++i) {
            int found = i;
            for (int j = i + 1; j <= n; ++j) {
                const float d = model.body(j).distance.value;
                const float best = model.body(found).distance.value;
                if (ascending ? d < best : d > best) found = j;
            }
            if (found == i) continue;
            swap_bodies(model, i, found);
            if (current_body == i)
                current_body = found;
            else if (current_body == found)
                current_body = i;
        }
        // Names follow the places: names the user gave are not kept by a sort.
        for (int i = 1; i <= n; ++i) model.body(i).name = numbered_name(i);
        return true;
    }
    if (current_body < 1 || current_body > n) return false;
    if (item == send_to_start) {
        if (current_body == 1) return false;
        for (int i = current_body; i > 1; --i) swap_bodies(model, i, i - 1);
        current_body = 1;
        return true;
    }
    if (item == send_to_end) {
        if (current_body == n) return false;
        for (int i = current_body; i < n; ++i) swap_bodies(model, i, i + 1);
        current_body = n;
        return true;
    }
    return false;
}

void shift_bodies(model_record& model, float shift) {
    for (int i = 1; i <= model.num_bodies; ++i) {
        body_record& b = model.body(i);
        mark_stale(b);
        b.distance.value += shift;
        locate_body_on_profile(model.profile, b.distance.value, b.east, b.north);
    }
}

// --- The window's commands --------------------------------------------------------------------

void MAGINV_add_body(modelling_workspace& ws, int kind, float distance, float top) {
    const std::string old = std::to_string(ws.section.current_body);
    model_edit edit(ws, kind == add_copy    ? "Copy Body " + old
                        : kind == add_split ? "Split Body " + old
                                            : std::string("Add Body"));
    if (!add_body(ws.model, ws.section.current_body, kind, distance, top, &ws.settings)) return;
    edit.commit();
    show_body_parameters(ws);
    display_model(ws, 1);
}

void menu_add_body(modelling_workspace& ws, int item) {
    if (ws.updating_display) return;
    const profile_block& p = ws.model.profile;
    const int n = p.num_stations;
    if (n < 1) return;
    // At the centre of the section's view, 10 below the ground of the middle station.
    const int middle = std::max(1, static_cast<int>(std::nearbyint(n / 2.0)));
    const float top = static_cast<float>(p.location(ground_row, middle)) - 10.0f;
    MAGINV_add_body(ws, item, ws.graph_view.view_centre, top);
}

void menu_delete_body(modelling_workspace& ws, int item) {
    if (ws.updating_display || ws.model.num_bodies < 1) return;
    model_record& model = ws.model;
    const bool one = item == delete_current && model.num_bodies >= 2;
    model_edit edit(ws, one ? "Delete Body " + std::to_string(ws.section.current_body)
                            : std::string("Delete All Bodies"));
    if (one)
        delete_current_body(model, ws.section.current_body);
    else
        delete_all_bodies(model, ws.section.current_body);
    edit.commit();
    show_body_parameters(ws);
    // The bodies left keep their responses; the channel totals are summed anew without them.
    ws.response.channel_sums_stale = true;
    display_model(ws, 1);
}

void delete_picked_body(modelling_workspace& ws) {
    if (ws.updating_display) return;
    const body_record* b = current_body_of(ws);
    if (!b) return;
    if (!ws.ui.ask_yes_no("Delete the body \"" + b->name + "\"?", "Delete body")) return;
    menu_delete_body(ws, delete_current);
}

void combo_model_type_selected(modelling_workspace& ws, int type) {
    if (ws.updating_display) return;
    if (type != thin_sheet && type != thick_sheet && type != cylinder_pipe) return;
    {
        display_guard guard(ws);
        ws.view->set_visible("Combo_model_type", false);
    }
    body_record* b = current_body_of(ws);
    if (!b) return;
    model_edit edit(ws, "Type of Body " + std::to_string(ws.section.current_body));
    const bool changed = change_body_type(*b, type);
    edit.commit();
    mark_model_changed(ws);
    show_body_parameters(ws);
    if (changed) display_model(ws, 1);
}

void menu_sort_bodies(modelling_workspace& ws, int item) {
    if (ws.updating_display || ws.model.num_bodies < 2) return;
    const bool whole_list = item == sort_ascending || item == sort_descending;
    const std::string body = "Body " + std::to_string(ws.section.current_body);
    model_edit edit(ws, item == sort_ascending    ? "Sort Bodies by Ascending Distance"
                        : item == sort_descending ? "Sort Bodies by Descending Distance"
                        : item == send_to_start   ? "Send " + body + " to Start"
                                                  : "Send " + body + " to End");
    sort_bodies(ws.model, ws.section.current_body, item);
    edit.commit();
    // Marked changed even when nothing moved, as every list command is.
    mark_model_changed(ws);
    if (!whole_list) show_body_parameters(ws);
    // Nothing is recomputed, but the outlines are drawn again so that a click picks the body
    // under the pointer by its new number.
    redraw_bodies(ws);
    ws.ui.show_message(whole_list ? "The bodies have been sorted" : "The body has been moved");
}

void menu_shift_bodies(modelling_workspace& ws) {
    if (ws.updating_display) return;
    const auto answer = ws.ui.input_box(
        "Enter the distance along the profile that you would like to use", "Lateral shift", "0");
    if (!answer || !is_numeric_text(*answer)) return;
    const auto shift = static_cast<float>(parse_number(*answer));
    if (std::fabs(shift) < 1.0f) return;
    {
        model_edit edit(ws, "Shift All Bodies");
        shift_bodies(ws.model, shift);
    }
    show_body_parameters(ws);
    recalculate_whole_model(ws);
}

}  // namespace trensil
