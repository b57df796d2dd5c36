#include "control_access.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>

#include "grid_file_selector.h"

namespace trensil {

void set_control_text(QObject* c, const std::string& text) {
    const QSignalBlocker block(c);
    if (auto* e = qobject_cast<QLineEdit*>(c))
        e->setText(q(text));
    else if (auto* l = qobject_cast<QLabel*>(c))
        l->setText(q(text));
    else if (auto* p = qobject_cast<QPlainTextEdit*>(c))
        p->setPlainText(q(text));
    else if (auto* b = qobject_cast<QAbstractButton*>(c))
        b->setText(q(text));
    else if (auto* a = qobject_cast<QAction*>(c))
        a->setText(q(text));
    else if (auto* s = qobject_cast<grid_file_selector*>(c))
        s->set_file(q(text));
    else if (auto* cb = qobject_cast<QComboBox*>(c); cb && cb->isEditable())
        cb->setEditText(q(text));
}

std::string control_text(const QObject* c) {
    if (auto* e = qobject_cast<const QLineEdit*>(c)) return e->text().toStdString();
    if (auto* l = qobject_cast<const QLabel*>(c)) return l->text().toStdString();
    if (auto* p = qobject_cast<const QPlainTextEdit*>(c)) return p->toPlainText().toStdString();
    if (auto* b = qobject_cast<const QAbstractButton*>(c)) return b->text().toStdString();
    if (auto* a = qobject_cast<const QAction*>(c)) return a->text().toStdString();
    if (auto* s = qobject_cast<const grid_file_selector*>(c)) return s->file().toStdString();
    if (auto* cb = qobject_cast<const QComboBox*>(c)) return cb->currentText().toStdString();
    return {};
}

void set_control_checked(QObject* c, bool on) {
    const QSignalBlocker block(c);
    if (auto* b = qobject_cast<QAbstractButton*>(c)) b->setChecked(on);
    if (auto* a = qobject_cast<QAction*>(c)) a->setChecked(on);
}

bool control_checked(const QObject* c) {
    if (auto* b = qobject_cast<const QAbstractButton*>(c)) return b->isChecked();
    if (auto* a = qobject_cast<const QAction*>(c)) return a->isChecked();
    return false;
}

void set_control_enabled(QObject* c, bool on) {
    if (auto* w = qobject_cast<QWidget*>(c)) w->setEnabled(on);
    if (auto* a = qobject_cast<QAction*>(c)) a->setEnabled(on);
}

void set_control_visible(QObject* c, bool on) {
    if (auto* w = qobject_cast<QWidget*>(c)) w->setVisible(on);
    if (auto* a = qobject_cast<QAction*>(c)) a->setVisible(on);
}

bool control_visible(const QObject* c) {
    if (auto* w = qobject_cast<const QWidget*>(c)) return !w->isHidden();
    if (auto* a = qobject_cast<const QAction*>(c)) return a->isVisible();
    return false;
}

void set_control_scroll(QObject* c, int value, int min, int max) {
    auto* bar = qobject_cast<QScrollBar*>(c);
    if (!bar) return;
    const QSignalBlocker block(bar);
    bar->setRange(min, max);
    bar->setValue(value);
}

void set_control_items(QObject* c, const std::vector<std::string>& items) {
    auto* combo = qobject_cast<QComboBox*>(c);
    if (!combo) return;
    const QSignalBlocker block(combo);
    combo->clear();
    for (const std::string& item : items) combo->addItem(q(item));
}

void select_control_item(QObject* c, int index) {
    auto* combo = qobject_cast<QComboBox*>(c);
    if (!combo) return;
    const QSignalBlocker block(combo);
    combo->setCurrentIndex(index);
}

int control_selected_item(const QObject* c) {
    auto* combo = qobject_cast<const QComboBox*>(c);
    return combo ? combo->currentIndex() : -1;
}

}  // namespace trensil
