// The Bodies menu's commands on the list of bodies (add, delete, sort, shift, colour, the three
// flag menus) and the current body's check boxes with the "Delete this body" button. Every item
// and box carries its control name, an item its number as a suffix ("menu_sort_bodies_2").
#pragma once

class QMenu;
class QWidget;

namespace trensil {

struct modelling_workspace;

// Adds the list commands to the Bodies menu; `owner` keeps the actions.
void add_body_list_menus(QMenu* bodies, modelling_workspace& ws, QWidget* owner);

// "Fix this body", "Turn off this body", "Include demagnetisation" and "Delete this body".
QWidget* build_body_switches(modelling_workspace& ws);

}  // namespace trensil
