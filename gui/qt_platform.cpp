#include "qt_platform.h"

#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QFileDialog>
#include <QImage>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QStringList>
#include <iostream>

#include "control_access.h"

namespace trensil {

namespace {
QString caption(const std::string& title) {
    return title.empty() ? QStringLiteral("Trensil") : q(title);
}
}  // namespace

QString qt_platform::qt_filter(const std::string& filter) {
    const QStringList parts = q(filter).split('|');
    QStringList out;
    // Qt takes the patterns from the label's parentheses, separated by blanks: the label's own
    // "(*.dat;*.csv)" would be one pattern that matches nothing, so it is rebuilt from the list.
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QString label = parts[i];
        const qsizetype open = label.indexOf('(');
        if (open >= 0) label.truncate(open);
        const QString patterns = QString(parts[i + 1]).replace(';', ' ');
        out << label.trimmed() + " (" + patterns + ")";
    }
    return out.join(";;");
}

void qt_platform::show_message(const std::string& text, const std::string& title) {
    ++messages_shown;
    if (console) {
        std::cerr << text << "\n";
        return;
    }
    QMessageBox::information(owner_, caption(title), q(text));
}

bool qt_platform::ask_yes_no(const std::string& question, const std::string& title) {
    if (console) {
        std::cerr << question << " (answered No)\n";
        return false;
    }
    return QMessageBox::question(owner_, caption(title), q(question),
                                 QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

int qt_platform::ask_choice(const std::string& question, const std::string& title,
                            const std::vector<std::string>& buttons) {
    const int last = static_cast<int>(buttons.size()) - 1;
    if (console) {
        std::cerr << question << " (answered " << (last >= 0 ? buttons.back() : "") << ")\n";
        return last;
    }
    QMessageBox box(QMessageBox::Question, caption(title), q(question), QMessageBox::NoButton,
                    owner_);
    box.setObjectName("recovery_offer");
    std::vector<QAbstractButton*> shown;
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        const auto role = i == 0                        ? QMessageBox::AcceptRole
                          : static_cast<int>(i) == last ? QMessageBox::RejectRole
                                                        : QMessageBox::DestructiveRole;
        shown.push_back(box.addButton(q(buttons[i]), role));
    }
    if (!shown.empty()) {
        box.setDefaultButton(qobject_cast<QPushButton*>(shown.front()));
        box.setEscapeButton(shown.back());
    }
    box.exec();
    for (std::size_t i = 0; i < shown.size(); ++i)
        if (box.clickedButton() == shown[i]) return static_cast<int>(i);
    return last;
}

std::optional<std::string> qt_platform::choose_open_file(const std::string& title,
                                                         const std::string& filter,
                                                         const std::string& initial_path) {
    if (console) return std::nullopt;
    const QString file =
        QFileDialog::getOpenFileName(owner_, q(title), q(initial_path), qt_filter(filter));
    if (file.isEmpty()) return std::nullopt;
    return file.toStdString();
}

std::optional<std::string> qt_platform::choose_save_file(const std::string& title,
                                                         const std::string& filter,
                                                         const std::string& initial_path) {
    if (console) return std::nullopt;
    const QString file =
        QFileDialog::getSaveFileName(owner_, q(title), q(initial_path), qt_filter(filter), nullptr,
                                     QFileDialog::DontConfirmOverwrite);
    if (file.isEmpty()) return std::nullopt;
    return file.toStdString();
}

std::optional<std::string> qt_platform::input_box(const std::string& prompt,
                                                  const std::string& title,
                                                  const std::string& initial_text) {
    if (console) return std::nullopt;
    bool ok = false;
    const QString text = QInputDialog::getText(owner_, caption(title), q(prompt), QLineEdit::Normal,
                                               q(initial_text), &ok);
    if (!ok) return std::nullopt;
    return text.toStdString();
}

std::optional<std::int32_t> qt_platform::choose_colour(std::int32_t initial) {
    if (console) return std::nullopt;
    const QColor start(initial & 0xff, (initial >> 8) & 0xff, (initial >> 16) & 0xff);
    const QColor c = QColorDialog::getColor(start, owner_);
    if (!c.isValid()) return std::nullopt;
    return c.red() | (c.green() << 8) | (c.blue() << 16);
}

void qt_platform::set_busy(bool busy) {
    if (busy == busy_) return;
    busy_ = busy;
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void qt_platform::process_events() {
    QApplication::processEvents();
}

void qt_platform::show_progress(bool) {}

void qt_platform::copy_picture_to_clipboard(const picture& image) {
    if (image.width <= 0 || image.height <= 0) return;
    QImage copy(image.rgb.data(), image.width, image.height, image.width * 3,
                QImage::Format_RGB888);
    if (QClipboard* clipboard = QApplication::clipboard()) clipboard->setImage(copy.copy());
}

void qt_platform::beep() {
    QApplication::beep();
}

}  // namespace trensil
