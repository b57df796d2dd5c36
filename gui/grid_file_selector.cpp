#include "grid_file_selector.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QToolButton>

namespace trensil {

grid_file_selector::grid_file_selector(platform& ui, QWidget* parent) : QWidget(parent), ui_(ui) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    path_ = new QLineEdit;
    path_->setPlaceholderText("No grid: choose a grid file");
    path_->setToolTip("The grid file of this tab; type a path and press Enter, or browse");
    browse_ = new QToolButton;
    browse_->setText("...");
    browse_->setToolTip("Choose a grid file");
    layout->addWidget(path_, 1);
    layout->addWidget(browse_);
    connect(browse_, &QToolButton::clicked, this, &grid_file_selector::choose_file);
    connect(path_, &QLineEdit::returnPressed, this, [this] { emit file_changed(path_->text()); });
}

QString grid_file_selector::file() const {
    return path_->text();
}

void grid_file_selector::set_file(const QString& path) {
    path_->setText(path);
    path_->setCursorPosition(static_cast<int>(path.size()));
}

void grid_file_selector::choose_file() {
    const std::string start = path_->text().toStdString();
    const auto chosen = ui_.choose_open_file("Select the grid file", grid_file_filter, start);
    if (!chosen) return;
    const QString path = QString::fromStdString(*chosen);
    set_file(path);
    emit file_changed(path);
}

}  // namespace trensil
