#include "workspace/model_edit.h"

#include <algorithm>
#include <utility>

#include "workspace/body_table.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

namespace {

// Whether anything that gives the body its shape or place changed: type, position, the off
// switch, the ten geometric properties, the cylinder's mesh.
bool shape_changed(const body_definition& a, const body_definition& b) {
    if (a.type != b.type || a.east != b.east || a.north != b.north || a.disabled != b.disabled)
        return true;
    for (auto p : {&body_definition::distance, &body_definition::top, &body_definition::strike,
                   &body_definition::dip, &body_definition::plunge, &body_definition::slope,
                   &body_definition::width, &body_definition::depth_extent,
                   &body_definition::length, &body_definition::offset})
        if ((a.*p).value != (b.*p).value) return true;
    return a.diameter_start != b.diameter_start || a.diameter_end != b.diameter_end ||
           a.shell_thickness != b.shell_thickness || a.end_thickness != b.end_thickness ||
           a.num_sectors != b.num_sectors || a.num_segments != b.num_segments ||
           a.max_triangle_size != b.max_triangle_size;
}

void make_stale(body_record& body, response_change change) {
    if (change.magnetic) {
        body.mag_valid = 0;
        body.magnetisation = -1.0f;
    }
    if (change.gravity) body.grav_valid = 0;
}

// Gives a record the response store of the profile when it has none of the right size.
void size_response_store(body_record& body, int num_stations) {
    if (num_stations > 0 && body.body_response.cols() != num_stations)
        body.body_response.resize(1, 5, 1, num_stations);
}

// Puts the bodies back as `target` and shows them, current body `current`.
void show_restored(modelling_workspace& ws, const std::vector<body_definition>& target,
                   int current) {
    {
        display_guard guard(ws);
        ws.view->set_visible("Text_edit", false);
        ws.view->set_visible("Combo_model_type", false);
    }
    // Bodies in another number or order sum to other channel totals, though none is stale.
    if (restore_body_definitions(ws.model, target)) ws.response.channel_sums_stale = true;
    const int n = ws.model.num_bodies;
    ws.section.current_body = n < 1 ? 0 : std::clamp(current, 1, n);
    if (n >= 1) {
        display_body_parameters(ws);
    } else {
        clear_body_parameters(ws);
    }
    display_model(ws, 1);
    ws.model_changed = true;
    ws.view->set_enabled("Command_save_qvx_model", true);
    show_edit_menu(ws);
}

// Undoes the last step, or redoes the last undone one when `forward`.
void step_through_history(modelling_workspace& ws, bool forward) {
    if (ws.updating_display || ws.inversion_running) return;
    const edit_step* step = forward ? ws.history.next_redo() : ws.history.next_undo();
    if (!step) return;
    const auto target = step_definitions(*step, body_definitions(ws.model), forward);
    const int current = forward ? step->current_after : step->current_before;
    if (forward) {
        ws.history.redone();
    } else {
        ws.history.undone();
    }
    show_restored(ws, target, current);
}

}  // namespace

model_edit::model_edit(modelling_workspace& ws, std::string label, std::string merge_key)
    : ws_(ws),
      label_(std::move(label)),
      merge_key_(std::move(merge_key)),
      before_(body_definitions(ws.model)),
      current_before_(ws.section.current_body) {}

model_edit::~model_edit() {
    commit();
}

bool model_edit::commit(bool mark_model_changed) {
    if (done_) return changed_;
    done_ = true;
    auto step = make_edit_step(before_, current_before_, ws_.model, ws_.section.current_body);
    if (!step) return false;
    changed_ = true;
    ws_.history.record(std::move(*step), label_, merge_key_);
    if (mark_model_changed) {
        ws_.model_changed = true;
        ws_.view->set_enabled("Command_save_qvx_model", true);
    }
    show_edit_menu(ws_);
    return true;
}

void menu_undo(modelling_workspace& ws) {
    step_through_history(ws, false);
}

void menu_redo(modelling_workspace& ws) {
    step_through_history(ws, true);
}

void show_edit_menu(modelling_workspace& ws) {
    if (!ws.view) return;
    const edit_step* undo = ws.history.next_undo();
    const edit_step* redo = ws.history.next_redo();
    ws.view->set_text("menu_undo", undo ? "Undo " + undo->label : "Undo");
    ws.view->set_enabled("menu_undo", undo != nullptr);
    ws.view->set_text("menu_redo", redo ? "Redo " + redo->label : "Redo");
    ws.view->set_enabled("menu_redo", redo != nullptr);
}

void clear_edit_history(modelling_workspace& ws) {
    ws.history.clear();
    show_edit_menu(ws);
}

response_change responses_changed(const body_definition& was, const body_definition& now) {
    const bool shape = shape_changed(was, now);
    const bool magnetic = was.demag != now.demag || was.susc.value != now.susc.value ||
                          was.rem_q.value != now.rem_q.value ||
                          was.rem_i.value != now.rem_i.value || was.rem_d.value != now.rem_d.value;
    const bool gravity = was.density.value != now.density.value;
    return {shape || magnetic, shape || gravity};
}

bool restore_body_definitions(model_record& model, const std::vector<body_definition>& target) {
    const int n = static_cast<int>(target.size());
    const int old_n = model.num_bodies;
    while (n > model.body_capacity) grow_bodies(model, model.body_capacity + 16);

    // Every record of the array takes part: the present bodies, and past them the spare
    // records, among them those of deleted bodies with their responses. Entry k of the vectors
    // below stands for place k + 1.
    const int pool_size = model.body_capacity;
    std::vector<body_record> pool;
    pool.reserve(static_cast<std::size_t>(pool_size));
    for (int i = 1; i <= pool_size; ++i) pool.push_back(std::move(model.body(i)));
    const auto at = [](auto& list, int k) -> auto& {
        return list[static_cast<std::size_t>(k)];
    };
    std::vector<int> source(static_cast<std::size_t>(n), -1);
    std::vector<char> used(static_cast<std::size_t>(pool_size), 0);
    const auto same = [&](int j, int i) {
        return static_cast<const body_definition&>(at(pool, j)) == at(target, i);
    };
    const auto take = [&](int i, int j) {
        at(source, i) = j;
        at(used, j) = 1;
    };

    // Unchanged in place, then unchanged elsewhere (a sort, a delete or an add undone).
    for (int i = 0; i < std::min(n, old_n); ++i)
        if (same(i, i)) take(i, i);
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < pool_size && at(source, i) < 0; ++j)
            if (!at(used, j) && same(j, i)) take(i, j);
    }
    // Alike in all that the responses depend on (a sort by distance renames the bodies after
    // their places): the record keeps its responses and takes the target's name and flags.
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < std::min(pool_size, old_n) && at(source, i) < 0; ++j) {
            if (at(used, j)) continue;
            const response_change change = responses_changed(at(pool, j), at(target, i));
            if (change.magnetic || change.gravity) continue;
            take(i, j);
            static_cast<body_definition&>(at(pool, j)) = at(target, i);
        }
    }
    // Changed: the record of the same place, when it is free, keeps what the change leaves
    // valid; any other record is stale throughout.
    for (int i = 0; i < n; ++i) {
        if (at(source, i) >= 0) continue;
        const int j = !at(used, i)
                          ? i
                          : static_cast<int>(std::find(used.begin(), used.end(), 0) - used.begin());
        take(i, j);
        body_record& body = at(pool, j);
        const bool own_place = j == i && i < old_n;
        make_stale(
            body, own_place ? responses_changed(body, at(target, i)) : response_change{true, true});
        static_cast<body_definition&>(body) = at(target, i);
        size_response_store(body, model.profile.num_stations);
    }

    for (int i = 0; i < n; ++i) model.body(i + 1) = std::move(at(pool, at(source, i)));
    int slot = n + 1;
    for (int j = 0; j < pool_size; ++j)
        if (!at(used, j)) model.body(slot++) = std::move(at(pool, j));
    model.num_bodies = n;
    bool moved = n != old_n;
    for (int i = 0; i < n; ++i) moved = moved || at(source, i) != i;
    return moved;
}

}  // namespace trensil
