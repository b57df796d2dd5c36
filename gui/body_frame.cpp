#include "body_frame.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QVBoxLayout>

#include "body_table_widget.h"
#include "workspace/body_sliders.h"
#include "workspace/body_table.h"
#include "workspace/modelling_workspace.h"

namespace trensil {

namespace {

// Text_body_colour: the colour's number with a swatch of it, read-only; a double click asks for
// another colour.
class colour_field : public QLineEdit {
public:
    explicit colour_field(modelling_workspace& ws) : ws_(ws) {
        setObjectName("Text_body_colour");
        setReadOnly(true);
        setToolTip("Double click to choose the body's colour");
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        QLineEdit::paintEvent(event);
        bool ok = false;
        const int bgr = text().toInt(&ok);
        if (!ok) return;
        QPainter painter(this);
        const int side = height() - 8;
        painter.fillRect(QRect(width() - side - 4, 4, side, side),
                         QColor(bgr & 0xff, (bgr >> 8) & 0xff, (bgr >> 16) & 0xff));
    }
    void mouseDoubleClickEvent(QMouseEvent*) override { text_body_colour_double_click(ws_); }

private:
    modelling_workspace& ws_;
};

// A text field of the body; the window connects every field of its tabs to the workspace.
void add_field(QFormLayout* form, const char* name, const char* label) {
    auto* edit = new QLineEdit;
    edit->setObjectName(name);
    form->addRow(label, edit);
}

}  // namespace

body_frame::body_frame(modelling_workspace& ws, QWidget* parent)
    : QGroupBox("Current body", parent), table_(new body_table_widget) {
    setObjectName("Frame_body");
    auto* layout = new QVBoxLayout(this);

    auto* selector = new QHBoxLayout;
    selector->addWidget(new QLabel("Body"));
    auto* bodies = new QScrollBar(Qt::Horizontal);
    bodies->setObjectName("HScroll_body");
    bodies->setRange(0, 0);
    bodies->setPageStep(1);
    bodies->setToolTip("Choose the body to show and edit");
    connect(bodies, &QScrollBar::valueChanged, this,
            [&ws](int value) { hscroll_body_changed(ws, value); });
    selector->addWidget(bodies, 1);
    layout->addLayout(selector);

    layout->addWidget(table_);
    connect(table_, &body_table_widget::cell_clicked, this,
            [&ws](int row, int column) { grid_body_click(ws, row, column); });
    connect(table_, &body_table_widget::edit_finished, this, [&ws] { text_edit_commit(ws); });
    connect(table_, &body_table_widget::edit_cancelled, this, [&ws] { text_edit_cancel(ws); });
    connect(table_, &body_table_widget::type_chosen, this,
            [this](int item) { emit type_chosen(offered_body_type(item)); });

    auto* texts = new QFormLayout;
    add_field(texts, "Text_body_name", "Name");
    texts->addRow("Colour", new colour_field(ws));
    add_field(texts, "Text_body_rock_type", "Rock type");
    add_field(texts, "Text_body_description", "Description");
    layout->addLayout(texts);

    auto* cylinder = new QGroupBox("Cylinder mesh");
    cylinder->setObjectName("Frame_cylinder");
    auto* mesh = new QFormLayout(cylinder);
    add_field(mesh, "Text_Shell_Thickness", "Shell thickness");
    add_field(mesh, "Text_End_Thickness", "End thickness");
    add_field(mesh, "Text_num_sectors", "Sectors");
    add_field(mesh, "Text_num_segments", "Segments");
    add_field(mesh, "Text_max_triangle_size", "Largest triangle");
    cylinder->hide();
    layout->addWidget(cylinder);
}

}  // namespace trensil
