#include "interface_script.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QSpinBox>
#include <QTimer>
#include <deque>
#include <fstream>
#include <iostream>
#include <sstream>

namespace trensil {

namespace {

std::deque<std::string> answers;

QObject* find_named(const std::string& name) {
    const QString wanted = QString::fromStdString(name);
    for (QWidget* top : QApplication::topLevelWidgets()) {
        if (top->objectName() == wanted) return top;
        if (QObject* found = top->findChild<QObject*>(wanted)) return found;
    }
    return nullptr;
}

QString plain(QString text) {
    return text.remove('&');
}

// Answers the dialog on top, if there is one and an answer waits.
void answer_dialog() {
    if (answers.empty()) return;
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal) return;
    const QString text = QString::fromStdString(answers.front());
    if (auto* files = qobject_cast<QFileDialog*>(modal)) {
        answers.pop_front();
        files->selectFile(text);
        QMetaObject::invokeMethod(files, "accept");
        return;
    }
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
        for (QAbstractButton* button : box->buttons()) {
            if (plain(button->text()) != text) continue;
            answers.pop_front();
            button->click();
            return;
        }
    }
}

// Types `text` over the edit's text as keys, so that the edit's own change signals fire.
void type_into(QLineEdit* edit, const std::string& text) {
    edit->setFocus();
    edit->selectAll();
    for (const QChar c : QString::fromStdString(text)) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
        QApplication::sendEvent(edit, &press);
    }
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(edit, &enter);
}

void run_for(int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds) QApplication::processEvents(QEventLoop::AllEvents, 20);
}

bool run_step(const interface_step& step) {
    if (step.verb == "answer") return true;
    if (step.verb == "wait") {
        run_for(std::atoi(step.name.c_str()));
        return true;
    }
    if (step.verb == "quit") {
        QApplication::closeAllWindows();
        QApplication::quit();
        return true;
    }
    QObject* target = find_named(step.name);
    if (!target) {
        std::cerr << "The script names no control " << step.name << "\n";
        return false;
    }
    if (step.verb == "click") {
        if (auto* button = qobject_cast<QAbstractButton*>(target)) {
            button->click();
        } else if (auto* action = qobject_cast<QAction*>(target)) {
            action->trigger();
        } else {
            std::cerr << step.name << " cannot be clicked\n";
            return false;
        }
    } else if (auto* edit = qobject_cast<QLineEdit*>(target)) {
        type_into(edit, step.text);
    } else if (auto* slider = qobject_cast<QAbstractSlider*>(target)) {
        slider->setValue(std::atoi(step.text.c_str()));
    } else if (auto* spin = qobject_cast<QSpinBox*>(target)) {
        spin->setValue(std::atoi(step.text.c_str()));
    } else if (auto* combo = qobject_cast<QComboBox*>(target)) {
        combo->setCurrentIndex(combo->findText(QString::fromStdString(step.text)));
    } else {
        std::cerr << step.name << " takes no value\n";
        return false;
    }
    QApplication::processEvents();
    return true;
}

}  // namespace

bool read_interface_script(const std::string& path, std::vector<interface_step>& steps,
                           std::string& error) {
    std::ifstream in(path);
    if (!in) {
        error = "The script " + path + " cannot be read";
        return false;
    }
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        std::istringstream words(line);
        interface_step step;
        words >> step.verb;
        if (step.verb == "answer") {
            std::getline(words >> std::ws, step.text);
        } else {
            words >> step.name;
            std::getline(words >> std::ws, step.text);
        }
        const bool known = step.verb == "set" || step.verb == "click" || step.verb == "answer" ||
                           step.verb == "wait" || step.verb == "quit";
        if (!known) {
            error = "Not a step: " + line;
            return false;
        }
        steps.push_back(step);
    }
    return true;
}

void start_answering(const std::vector<interface_step>& steps) {
    for (const interface_step& step : steps)
        if (step.verb == "answer") answers.push_back(step.text);
    auto* watcher = new QTimer(qApp);
    watcher->setInterval(50);
    QObject::connect(watcher, &QTimer::timeout, watcher, answer_dialog);
    watcher->start();
}

bool run_interface_steps(const std::vector<interface_step>& steps) {
    for (const interface_step& step : steps)
        if (!run_step(step)) return false;
    return true;
}

}  // namespace trensil
