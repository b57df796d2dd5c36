#include "body_slider_frame.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollBar>
#include <QVBoxLayout>
#include <string>

#include "workspace/body_sliders.h"

namespace trensil {

namespace {

// One bar of a pair: resting at 0, one step either way.
QScrollBar* step_bar(modelling_workspace& ws, const char* control, int item,
                     Qt::Orientation orientation) {
    auto* bar = new QScrollBar(orientation);
    bar->setObjectName(QString("%1_%2").arg(control).arg(item));
    bar->setRange(-1, 1);
    bar->setPageStep(1);
    bar->setValue(0);
    bar->setToolTip(item % 2 == 0 ? "Coarse step" : "Fine step: a tenth of the coarse one");
    if (orientation == Qt::Vertical) {
        bar->setFixedSize(16, 64);
    } else {
        bar->setFixedHeight(16);
    }
    const std::string name = control;
    QObject::connect(bar, &QScrollBar::valueChanged, bar, [&ws, name, item](int value) {
        if (value != 0) body_bar_changed(ws, name, item, value);
    });
    return bar;
}

// A caption above vertical bar pairs: items first .. first + 2 * pairs - 1 of `control`.
QWidget* vertical_group(modelling_workspace& ws, const char* caption, const char* control,
                        int pairs) {
    auto* group = new QWidget;
    auto* layout = new QVBoxLayout(group);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel(caption), 0, Qt::AlignHCenter);
    auto* bars = new QHBoxLayout;
    bars->setSpacing(2);
    for (int item = 0; item < 2 * pairs; ++item) {
        if (item > 0 && item % 2 == 0) bars->addSpacing(6);
        bars->addWidget(step_bar(ws, control, item, Qt::Vertical));
    }
    layout->addLayout(bars);
    return group;
}

}  // namespace

body_slider_frame::body_slider_frame(modelling_workspace& ws, QWidget* parent)
    : QGroupBox("Move body", parent) {
    setObjectName("Frame_move_body");
    auto* layout = new QVBoxLayout(this);

    auto* across = new QGridLayout;
    across->setHorizontalSpacing(4);
    const std::pair<const char*, const char*> horizontal[] = {
        {"Dist", "HScroll_dist"},     {"Strike", "HScroll_strike"}, {"Dip", "HScroll_dip"},
        {"Width", "HScroll_width"},   {"Length", "HScroll_length"}, {"Plunge", "HScroll_plunge"},
        {"Offset", "HScroll_offset"},
    };
    int row = 0;
    for (const auto& [caption, control] : horizontal) {
        across->addWidget(new QLabel(caption), row, 0);
        across->addWidget(step_bar(ws, control, 0, Qt::Horizontal), row, 1);
        across->addWidget(step_bar(ws, control, 1, Qt::Horizontal), row, 2);
        ++row;
    }
    across->setColumnStretch(1, 2);
    across->setColumnStretch(2, 1);
    layout->addLayout(across);

    auto* down = new QHBoxLayout;
    down->addWidget(vertical_group(ws, "Top", "VScroll_depth", 1));
    down->addWidget(vertical_group(ws, "Depth   Ext", "VScroll_depth_extent", 1));
    down->addWidget(vertical_group(ws, "Susc", "VScroll_susc", 1));
    down->addWidget(vertical_group(ws, "Dens", "VScroll_dens", 1));
    down->addWidget(vertical_group(ws, "Slope", "VScroll_slope", 1));
    down->addWidget(vertical_group(ws, "  Rem    Q   I   D", "VScroll_RemJ", 3));
    down->addStretch();
    layout->addLayout(down);

    // Kept on the form for its state; the fine steps come from the second bar of each pair.
    auto* small = new QCheckBox("Use small step");
    small->setObjectName("Check_small_step");
    layout->addWidget(small);
}

}  // namespace trensil
