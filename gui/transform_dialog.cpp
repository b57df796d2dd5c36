#include "transform_dialog.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <array>

#include "control_access.h"
#include "io/transform_points.h"
#include "support/number_format.h"
#include "support/text_tokens.h"

namespace trensil {

transform_dialog::transform_dialog(transform_state& transforms, platform& ui, QWidget* parent)
    : QDialog(parent), transforms_(transforms), ui_(ui) {
    setObjectName("Form_define_point_transform");
    setWindowTitle("Point Transform Definition");
    setModal(true);

    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    auto add = [this, grid](const char* name, double data_transform::*member, const char* label,
                            int row, int column) {
        auto* edit = new QLineEdit;
        edit->setObjectName(name);
        edit->setMinimumWidth(110);
        grid->addWidget(edit, row, column);
        const bool derived = member == &data_transform::rotation ||
                             member == &data_transform::x_scale ||
                             member == &data_transform::y_scale;
        fields_.push_back({edit, member, label, derived});
        return edit;
    };
    grid->addWidget(new QLabel("<b>Data frame</b>"), 0, 1, 1, 2, Qt::AlignCenter);
    grid->addWidget(new QLabel("<b>Target frame</b>"), 0, 3, 1, 2, Qt::AlignCenter);
    for (int c = 0; c < 2; ++c) {
        grid->addWidget(new QLabel("X"), 1, 1 + 2 * c, Qt::AlignCenter);
        grid->addWidget(new QLabel("Y"), 1, 2 + 2 * c, Qt::AlignCenter);
    }
    grid->addWidget(new QLabel("First point"), 2, 0);
    grid->addWidget(new QLabel("Second point"), 3, 0);
    using t = data_transform;
    const std::array<QLineEdit*, 8> points = {
        add("Text_x_input_origin", &t::x_input_origin, "first point, data x", 2, 1),
        add("Text_y_input_origin", &t::y_input_origin, "first point, data y", 2, 2),
        add("Text_x_output_origin", &t::x_output_origin, "first point, target x", 2, 3),
        add("Text_y_output_origin", &t::y_output_origin, "first point, target y", 2, 4),
        add("Text_second_x_input_origin", &t::second_x_input_origin, "second point, data x", 3, 1),
        add("Text_second_y_input_origin", &t::second_y_input_origin, "second point, data y", 3, 2),
        add("Text_second_x_output_origin", &t::second_x_output_origin, "second point, target x", 3,
            3),
        add("Text_second_y_output_origin", &t::second_y_output_origin, "second point, target y", 3,
            4),
    };
    grid->addWidget(new QLabel("Rotation (degrees)"), 4, 0);
    add("Text_rotation", &t::rotation, "rotation", 4, 1);
    grid->addWidget(new QLabel("X scale"), 4, 2, Qt::AlignRight);
    add("Text_x_scale", &t::x_scale, "x scale", 4, 3);
    grid->addWidget(new QLabel("Y scale"), 5, 2, Qt::AlignRight);
    add("Text_y_scale", &t::y_scale, "y scale", 5, 3);
    grid->addWidget(new QLabel("Z shift"), 6, 0);
    add("Text_z_shift", &t::z_shift, "z shift", 6, 1);
    grid->addWidget(new QLabel("Z scale"), 6, 2, Qt::AlignRight);
    add("Text_z_scale", &t::z_scale, "z scale", 6, 3);
    layout->addLayout(grid);

    auto* note = new QLabel(
        "The rotation and scales follow the two points as they are typed; edit them after the "
        "points to set them apart. Z is shifted, then scaled.");
    note->setWordWrap(true);
    layout->addWidget(note);
    check_ = new QLabel;
    check_->setObjectName("Label_transform_check");
    check_->setWordWrap(true);
    layout->addWidget(check_);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    auto* done = new QPushButton("Done");
    done->setObjectName("Command_done_transformation");
    done->setDefault(true);
    auto* cancel = new QPushButton("Cancel");
    cancel->setObjectName("Command_cancel_transform");
    buttons->addWidget(done);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);
    connect(done, &QPushButton::clicked, this, &transform_dialog::command_done_transformation);
    connect(cancel, &QPushButton::clicked, this, &transform_dialog::command_cancel_transform);

    show_record(transforms_.program_transform, false);
    for (QLineEdit* edit : points)
        connect(edit, &QLineEdit::textEdited, this, &transform_dialog::points_edited);
    for (const field& f : fields_)
        connect(f.edit, &QLineEdit::textEdited, this, &transform_dialog::show_check);
    show_check();
}

void transform_dialog::show_record(const data_transform& t, bool derived_only) {
    for (const field& f : fields_)
        if (f.derived || !derived_only) f.edit->setText(q(general_number(t.*(f.member))));
}

const transform_dialog::field* transform_dialog::read_fields(data_transform& t) const {
    for (const field& f : fields_) {
        const std::string text = f.edit->text().toStdString();
        if (!is_numeric_text(text)) return &f;
        t.*(f.member) = parse_number(text);
    }
    return nullptr;
}

void transform_dialog::points_edited() {
    data_transform t = transforms_.program_transform;
    if (read_fields(t) != nullptr) return;
    if (derive_transform_from_points(t)) show_record(t, true);
}

void transform_dialog::show_check() {
    data_transform t = transforms_.program_transform;
    if (const field* bad = read_fields(t)) {
        check_->setText(QString("The %1 is not a number.").arg(bad->label));
        return;
    }
    prepare_transform(t);
    if (t.active == 0) {
        check_->setText("This transform changes nothing: the data are read as they stand.");
        return;
    }
    double x = t.second_x_input_origin, y = t.second_y_input_origin, z = 0.0;
    apply_transform(1, t, x, y, z);
    check_->setText(QString("The second data point goes to %1, %2.")
                        .arg(q(format_fixed(x, 2)), q(format_fixed(y, 2))));
}

void transform_dialog::command_done_transformation() {
    data_transform t = transforms_.program_transform;
    if (const field* bad = read_fields(t)) {
        ui_.show_message(std::string("The ") + bad->label + " is not a number",
                         "Point Transform Definition");
        bad->edit->setFocus();
        bad->edit->selectAll();
        return;
    }
    prepare_transform(t);
    transforms_.program_transform = t;
    transforms_.define_cancelled = false;
    accept();
}

void transform_dialog::command_cancel_transform() {
    transforms_.define_cancelled = true;
    reject();
}

void define_transform(transform_state& transforms, platform& ui, QWidget* parent) {
    transforms.define_cancelled = true;
    transform_dialog dialog(transforms, ui, parent);
    dialog.exec();
}

}  // namespace trensil
