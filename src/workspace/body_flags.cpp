#include "workspace/body_flags.h"

#include "workspace/body_command_support.h"
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

// A flag menu's ending: every body recomputed and redrawn.
void after_flag_menu(modelling_workspace& ws) {
    mark_model_changed(ws);
    recalculate_whole_model(ws);
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
    set_demag_flags(ws.model, item);
    after_flag_menu(ws);
}

void menu_set_disable_flag(modelling_workspace& ws, int item) {
    if (ws.updating_display) return;
    set_disable_flags(ws.model, item);
    after_flag_menu(ws);
}

void menu_set_fix_flags(modelling_workspace& ws, int item) {
    if (ws.updating_display) return;
    set_fix_flags(ws.model, item);
    show_body_parameters(ws);
    after_flag_menu(ws);
}

void check_fix_this_body(modelling_workspace& ws) {
    if (ws.updating_display) return;
    body_record* b = current_body_of(ws);
    if (!b) return;
    // The box shows the body fixed; the flag says it takes part in the inversion.
    b->fix = ws.view->checked("Check_fix_this_body") ? 0 : 1;
    mark_model_changed(ws);
}

void check_include_demagnetisation(modelling_workspace& ws) {
    if (ws.updating_display || ws.model.profile.num_stations < 1) return;
    body_record* b = current_body_of(ws);
    if (!b) return;
    b->mag_valid = 0;
    b->demag = ws.view->checked("Check_include_demagnetisation") ? 1 : 0;
    b->magnetisation = -1.0f;
    mark_model_changed(ws);
    display_model(ws, 1);
}

void check_turn_off_body(modelling_workspace& ws) {
    if (ws.updating_display) return;
    body_record* b = current_body_of(ws);
    if (!b) return;
    b->disabled = ws.view->checked("Check_turn_off_body") ? 1 : 0;
    b->mag_valid = 0;
    b->grav_valid = 0;
    b->magnetisation = -1.0f;
    mark_model_changed(ws);
    display_model(ws, 1);
}

}  // namespace trensil
