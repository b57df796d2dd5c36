// The passive views' operations on a control found by name, whatever its kind: text boxes,
// labels, buttons, menu items, combo boxes, check boxes, scroll bars and grid file selectors.
// Writing a control blocks its signals, so that code that writes a control never runs the
// control's own event (the windows' `updating_display` rule, kept by Qt).
//
//   set_control_text(findChild<QObject*>("Text_sample_interval"), "250");
#pragma once

#include <QObject>
#include <QString>
#include <string>
#include <vector>

namespace trensil {

// The program's text as Qt's.
inline QString q(const std::string& text) {
    return QString::fromStdString(text);
}

// A new control with its name, as the window builders make them.
template <class T>
T* named(T* object, const QString& name) {
    object->setObjectName(name);
    return object;
}

void set_control_text(QObject* control, const std::string& text);
std::string control_text(const QObject* control);
void set_control_checked(QObject* control, bool checked);
bool control_checked(const QObject* control);
void set_control_enabled(QObject* control, bool enabled);
void set_control_visible(QObject* control, bool visible);
// False for a control that is hidden itself (not merely in a hidden window), or not found.
bool control_visible(const QObject* control);
void set_control_scroll(QObject* control, int value, int min, int max);
void set_control_items(QObject* control, const std::vector<std::string>& items);
void select_control_item(QObject* control, int index);
int control_selected_item(const QObject* control);

}  // namespace trensil
