// Frame_move_body: pairs of small scroll bars that nudge one property of the current body, the
// coarse bar (item 0) by a step and the fine bar (item 1) by a tenth of it. A bar rests at 0; a
// click on an arrow moves it to +1 or -1, the handler applies one step in the bar's direction
// unless the property's limit refuses it, redraws, and puts the bar back to 0. VScroll_RemJ holds
// three pairs (items 0-1 rem_q, 2-3 rem_i, 4-5 rem_d). Every step goes through the edit path;
// steps of one pair on one body within a second are one undo step. HScroll_body selects the body
// on show.
//
//   body_bar_changed(ws, "HScroll_dip", 0, 1);    // coarse bar to its right arrow: dip 5 less
//   body_bar_changed(ws, "VScroll_RemJ", 3, -1);  // fine rem_i bar up: rem_i 0.25 more
//   hscroll_body_changed(ws, 2);                  // body 2 on show
#pragma once

#include <string>

namespace trensil {

struct modelling_workspace;

// The step of HScroll_dist from the distance of the last station.
float profile_length_step(float last_distance);
// The coarse step of depth extent, length and offset (of its absolute value) from the value.
float property_value_step(float value);
// The coarse step of width from the value: the same ladder with the comparisons moved by one.
float width_value_step(float value);

// The change event of bar `control` item `item`, now at `value`: closes the type list, commits a
// pending table edit, then acts as the scroll event.
void body_bar_changed(modelling_workspace& ws, const std::string& control, int item, int value);
// The scroll event: one step of the bar's property, or nothing when refused.
void body_bar_scrolled(modelling_workspace& ws, const std::string& control, int item, int value);

// HScroll_body moved to `value`: that body goes on show, nothing is recalculated.
void hscroll_body_changed(modelling_workspace& ws, int value);

}  // namespace trensil
