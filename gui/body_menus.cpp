#include "body_menus.h"

#include <QAction>
#include <QCheckBox>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>
#include <functional>

#include "workspace/body_colours.h"
#include "workspace/body_flags.h"
#include "workspace/body_list.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

namespace {
// A submenu, put before `before`, whose items call `handler` with their number.
void numbered_menu(QMenu* parent, QAction* before, QWidget* owner, const QString& name,
                   const QString& caption, const QStringList& items,
                   std::function<void(int)> handler) {
    auto* menu = new QMenu(caption, parent);
    parent->insertMenu(before, menu);
    menu->setObjectName(name);
    menu->menuAction()->setObjectName(name);
    menu->menuAction()->setParent(owner);
    for (int i = 0; i < items.size(); ++i) {
        QAction* action = menu->addAction(items[i]);
        action->setObjectName(QString("%1_%2").arg(name).arg(i));
        action->setParent(owner);
        QObject::connect(action, &QAction::triggered, owner, [handler, i] { handler(i); });
    }
}
}  // namespace

void add_body_list_menus(QMenu* bodies, modelling_workspace& ws, QWidget* owner) {
    // The list commands come before the menu's own items.
    QAction* first = bodies->actions().isEmpty() ? nullptr : bodies->actions().front();
    numbered_menu(bodies, first, owner, "menu_add_body", "Add Body",
                  {"Add a new body", "Copy current body", "Split current body"},
                  [&ws](int i) { menu_add_body(ws, i); });
    numbered_menu(bodies, first, owner, "menu_delete_body", "Delete Body",
                  {"All bodies", "Current body"}, [&ws](int i) { menu_delete_body(ws, i); });
    numbered_menu(bodies, first, owner, "menu_sort_bodies", "Sort Bodies",
                  {"Ascending distance", "Descending distance", "Send current body to start",
                   "Send current body to end"},
                  [&ws](int i) { menu_sort_bodies(ws, i); });
    auto* shift = new QAction("Shift All Bodies laterally", owner);
    bodies->insertAction(first, shift);
    shift->setObjectName("menu_shift_bodies");
    QObject::connect(shift, &QAction::triggered, owner, [&ws] { menu_shift_bodies(ws); });
    numbered_menu(bodies, first, owner, "menu_colour_body", "Colour Bodies by",
                  {"Susceptability", "Remanent J", "Density"},
                  [&ws](int i) { menu_colour_body(ws, i); });
    bodies->insertSeparator(first);
    numbered_menu(bodies, first, owner, "menu_set_demag_flags", "Set Demag flags",
                  {"Include demagnetisation", "Exclude demagnetisation", "Flip"},
                  [&ws](int i) { menu_set_demag_flags(ws, i); });
    numbered_menu(bodies, first, owner, "menu_set_disable_flag", "Set Use body flags",
                  {"Use all bodies", "Turn off all bodies", "Flip"},
                  [&ws](int i) { menu_set_disable_flag(ws, i); });
    numbered_menu(
        bodies, first, owner, "menu_set_fix_flags", "Set Fix body flags",
        {"Free all bodies for inversion", "Fix all bodies", "Flip", "Fix outside inversion limits"},
        [&ws](int i) { menu_set_fix_flags(ws, i); });
    bodies->insertSeparator(first);
}

QWidget* build_body_switches(modelling_workspace& ws) {
    auto* box = new QWidget;
    box->setObjectName("Frame_body_switches");
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    auto check = [&](const QString& name, const QString& caption,
                     void (*handler)(modelling_workspace&)) {
        auto* c = new QCheckBox(caption);
        c->setObjectName(name);
        QObject::connect(c, &QCheckBox::clicked, box, [&ws, handler] { handler(ws); });
        layout->addWidget(c);
    };
    check("Check_fix_this_body", "Fix this body", check_fix_this_body);
    check("Check_turn_off_body", "Turn off this body", check_turn_off_body);
    check("Check_include_demagnetisation", "Include demagnetisation",
          check_include_demagnetisation);
    auto* remove = new QPushButton("Delete this body");
    remove->setObjectName("Command_delete_body");
    QObject::connect(remove, &QPushButton::clicked, box,
                     [&ws] { menu_delete_body(ws, delete_current); });
    layout->addWidget(remove);
    return box;
}

}  // namespace trensil
