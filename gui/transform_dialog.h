// The coordinate transform dialog "Point Transform Definition": the first and second point of
// the data frame and of the target frame, the rotation and the x and y scales (derived from the
// points as they are typed, and open to editing), and the z shift and scale.
//
//   transform_state& transforms = ws.transforms;
//   define_transform(transforms, ui, this);     // modal
//   if (!transforms.define_cancelled) ... take transforms.program_transform into the model
#pragma once

#include <QDialog>
#include <vector>

#include "io/coordinate_transform.h"
#include "support/platform.h"

class QLineEdit;
class QLabel;

namespace trensil {

class transform_dialog : public QDialog {
    Q_OBJECT
public:
    // Edits `transforms.program_transform`; Done stores the fields into it and clears
    // `define_cancelled`, Cancel sets the flag and leaves the record alone.
    transform_dialog(transform_state& transforms, platform& ui, QWidget* parent = nullptr);

    // Command_done_transformation: every field must be a number; the first that is not is named
    // in a message and the dialog stays open.
    void command_done_transformation();
    void command_cancel_transform();

private:
    struct field {
        QLineEdit* edit;
        double data_transform::*member;
        const char* label;
        bool derived;  // rotation and scales, which follow the points
    };
    // Shows the record in the fields, or only its rotation and scales.
    void show_record(const data_transform& t, bool derived_only);
    // The point fields changed: derives the rotation and scales when both point pairs differ.
    void points_edited();
    // Reads every field into `t`; the first field that is not a number, or nullptr.
    const field* read_fields(data_transform& t) const;
    // One line under the fields: whether the transform does anything, and where the second data
    // point lands.
    void show_check();

    transform_state& transforms_;
    platform& ui_;
    std::vector<field> fields_;
    QLabel* check_ = nullptr;
};

// Opens the dialog modally over the program-wide transform (define_transform of the data
// intake): `define_cancelled` is true afterwards unless the user pressed Done.
void define_transform(transform_state& transforms, platform& ui, QWidget* parent);

}  // namespace trensil
