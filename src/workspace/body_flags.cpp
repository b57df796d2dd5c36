#include "workspace/body_flags.h"

#include <string>

#include "workspace/body_command_support.h"
#include "workspace/model_edit.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

namespace {
// Item 0 sets the flag to `on`, item 1 to the other value, item 2 flips it.
void set_flag(std::int32_t& flag, int item, std::int32_t on) {
    if (item == flag_set)
        flag = on;
    else if (item == flag_clear)
        flag = 1 - on;
    else if (item == flag_flip)
        flag = 1 - flag;
}

template <class Change>
void for_every_body(model_record& model, Change change) {
    for (int i = 1; i <= model.num_bodies; ++i) change(model.body(i));
}

// A flag menu: one step for every body's flag, marked changed even when no flag changed, then
// every body recomputed and redrawn.
template <class Change>
void flag_menu(modelling_workspace& ws, const char* label, Change change) {
    {
        model_edit edit(ws, label);
        change(ws.model);
    }
    mark_model_changed(ws);
    recalculate_whole_model(ws);
}

std::string of_current(const char* what, const modelling_workspace& ws) {
    return std::string(what) + " of Body " + std::to_string(ws.section.current_body);
}
}  // namespace

void set_demag_flags(model_record& model, int item) {
    for_every_body(model, [&](body_record& b) { set_flag(b.demag, item, 1); });
}

void set_disable_flags(model_record& model, int item) {
    for_every_body(model, [&](body_record& b) { set_flag(b.disabled, item, 0); });
}

void set_fix_flags(model_record& model, int item) {
    for_every_body(model, [&](body_record& b) {
        if (item == fix_outside_limits)
            b.fix = fix_for_inversion_window(model, b);
        else
            set_flag(b.fix, item, 1);
    });
}

std::int32_t fix_for_inversion_window(const model_record& model, const body_record& body) {
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    if (n < 1) return body.fix;
    const int first = p.inversion_first_station;
    const int last = p.inversion_last_station;
    const float distance = body.distance.value;
    const float reach = distance + body.width.value;
    const auto at = [&](int station) { return p.profile_distance(station < 1 ? 1 : station); };
    const bool cut_at_start = first > 1;
    const bool cut_at_end = last < n;
    if (cut_at_start && !cut_at_end) return at(first) - 10.0f <= reach ? 1 : 0;
    if (cut_at_start && cut_at_end)
        return at(first) - 10.0f <= reach && at(last) + 10.0f >= distance ? 1 : 0;
    if (cut_at_end) return at(last) + 10.0f < distance ? 0 : 1;
    return body.fix;
}

void menu_set_demag_flags(modelling_workspace& ws, int item) {
    if (ws.updating_display) return;
    flag_menu(ws, "Set Demag Flags", [item](model_record& m) { set_demag_flags(m, item); });
}

void menu_set_disable_flag(modelling_workspace& ws, int item) {
    if (ws.updating_display) return;
    flag_menu(ws, "Set Use Flags", [item](model_record& m) { set_disable_flags(m, item); });
}

void menu_set_fix_flags(modelling_workspace& ws, int item) {
    if (ws.updating_display) return;
    flag_menu(ws,
              item == fix_outside_limits ? "Fix Bodies outside Inversion Limits" : "Set Fix Flags",
              [item](model_record& m) { set_fix_flags(m, item); });
    show_body_parameters(ws);
}

void check_fix_this_body(modelling_workspace& ws) {
    if (ws.updating_display) return;
    body_record* b = current_body_of(ws);
    if (!b) return;
    // The box shows the body fixed; the flag says it takes part in the inversion.
    model_edit edit(ws, of_current("Fix", ws));
    b->fix = ws.view->checked("Check_fix_this_body") ? 0 : 1;
    edit.commit();
    mark_model_changed(ws);
}

void check_include_demagnetisation(modelling_workspace& ws) {
    if (ws.updating_display || ws.model.profile.num_stations < 1) return;
    body_record* b = current_body_of(ws);
    if (!b) return;
    {
        model_edit edit(ws, of_current("Demagnetisation", ws));
        b->mag_valid = 0;
        b->demag = ws.view->checked("Check_include_demagnetisation") ? 1 : 0;
        b->magnetisation = -1.0f;
    }
    mark_model_changed(ws);
    display_model(ws, 1);
}

void check_turn_off_body(modelling_workspace& ws) {
    if (ws.updating_display) return;
    body_record* b = current_body_of(ws);
    if (!b) return;
    {
        model_edit edit(ws, of_current("Use", ws));
        b->disabled = ws.view->checked("Check_turn_off_body") ? 1 : 0;
        b->mag_valid = 0;
        b->grav_valid = 0;
        b->magnetisation = -1.0f;
    }
    mark_model_changed(ws);
    display_model(ws, 1);
}

}  // namespace trensil
