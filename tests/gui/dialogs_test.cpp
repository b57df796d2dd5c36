// The coordinate transform dialog and the file dialog filters, offscreen.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "../support/scratch_dir.h"
#include "../workspace/workspace_files.h"
#include "gui_application.h"
#include "modelling_window.h"
#include "qt_platform.h"
#include "support/memory_settings_store.h"
#include "support/scripted_platform.h"
#include "transform_dialog.h"
#include "workspace/transform_definition.h"

namespace trensil {
namespace {

void type(QDialog& dialog, const char* field, const QString& text) {
    auto* edit = dialog.findChild<QLineEdit*>(field);
    ASSERT_NE(edit, nullptr) << field;
    edit->setText(text);
    emit edit->textEdited(text);
}

QString shown(QDialog& dialog, const char* field) {
    return dialog.findChild<QLineEdit*>(field)->text();
}

TEST(transform_dialog, points_typed_give_rotation_and_scale_and_done_keeps_them) {
    application();
    scripted_platform ui;
    transform_state transforms;
    transforms.program_transform.z_shift = 5.0;
    transform_dialog dialog(transforms, ui);
    EXPECT_EQ(dialog.windowTitle(), "Point Transform Definition");
    EXPECT_EQ(dialog.objectName(), "Form_define_point_transform");
    EXPECT_EQ(shown(dialog, "Text_z_shift"), "5");

    // A local grid whose +x axis runs north, in feet.
    type(dialog, "Text_x_output_origin", "357000");
    type(dialog, "Text_y_output_origin", "1210000");
    type(dialog, "Text_second_x_input_origin", "1000");
    type(dialog, "Text_second_y_input_origin", "0");
    type(dialog, "Text_second_x_output_origin", "357000");
    type(dialog, "Text_second_y_output_origin", "1210304.8");
    EXPECT_NEAR(shown(dialog, "Text_rotation").toDouble(), -90.0, 1e-9);
    EXPECT_NEAR(shown(dialog, "Text_x_scale").toDouble(), 0.3048, 1e-9);
    EXPECT_EQ(shown(dialog, "Text_y_scale"), shown(dialog, "Text_x_scale"));
    EXPECT_TRUE(dialog.findChild<QLabel*>("Label_transform_check")->text().contains("357000.00"));
    EXPECT_TRUE(transforms.define_cancelled);  // nothing stored before Done

    dialog.findChild<QPushButton*>("Command_done_transformation")->click();
    EXPECT_FALSE(transforms.define_cancelled);
    const data_transform& t = transforms.program_transform;
    EXPECT_EQ(t.active, -1);
    EXPECT_NEAR(t.rotation, -90.0, 1e-9);
    EXPECT_DOUBLE_EQ(t.second_y_output_origin, 1210304.8);
    EXPECT_DOUBLE_EQ(t.z_shift, 5.0);
    EXPECT_TRUE(ui.messages.empty());
}

TEST(transform_dialog, bad_field_is_named_and_cancel_leaves_the_record) {
    application();
    scripted_platform ui;
    transform_state transforms;
    transforms.program_transform.x_scale = 2.0;
    const data_transform before = transforms.program_transform;
    {
        transform_dialog dialog(transforms, ui);
        type(dialog, "Text_y_scale", "1.5x");
        dialog.findChild<QPushButton*>("Command_done_transformation")->click();
        ASSERT_EQ(ui.messages.size(), 1u);
        EXPECT_EQ(ui.messages[0], "The y scale is not a number");
        EXPECT_TRUE(transforms.define_cancelled);
        EXPECT_EQ(transforms.program_transform, before);
        dialog.findChild<QPushButton*>("Command_cancel_transform")->click();
    }
    EXPECT_TRUE(transforms.define_cancelled);
    EXPECT_EQ(transforms.program_transform, before);
}

// The model takes an accepted transform and reads its stations again through it; a cancelled
// dialog changes nothing.
TEST(transform_dialog, modelling_window_reads_its_data_through_an_accepted_transform) {
    application();
    const testing::scratch_dir folder("gui_transform");
    const std::string model = testing_files::write_example_model(folder.path());
    scripted_platform ui;
    memory_settings_store settings;
    {
        modelling_window window(ui, settings);
        modelling_workspace& ws = window.workspace();
        ASSERT_EQ(open_model_file(ws, model), 0);
        const double east = ws.model.profile.location(easting_row, 1);

        begin_define_transform(ws);
        ws.transforms.program_transform.x_output_origin = 1000.0;
        ws.transforms.define_cancelled = true;
        EXPECT_FALSE(end_define_transform(ws));
        EXPECT_EQ(ws.model.transform.active, 0);

        window.select_tab(0);
        begin_define_transform(ws);
        ws.transforms.program_transform.x_output_origin = 1000.0;
        ws.transforms.define_cancelled = false;
        EXPECT_TRUE(end_define_transform(ws));
        EXPECT_EQ(ws.model.transform.active, -1);
        EXPECT_TRUE(ws.model_changed);
        EXPECT_EQ(ws.model.profile.num_stations, 0);
        ASSERT_TRUE(tab_model_changing(ws, 0, 1));
        EXPECT_DOUBLE_EQ(ws.model.profile.location(easting_row, 1), east + 1000.0);
    }
}

// The file dialogs list only files whose names match the patterns Qt finds in the label's
// parentheses, blank-separated: the program's "(*.dat;*.csv)" labels listed nothing.
TEST(file_dialog_filter, patterns_are_rebuilt_blank_separated) {
    const struct {
        const char* program;
        const char* qt;
    } cases[] = {
        {"Data Files (*.dat;*.xyz;*.csv;*.txt)|*.dat;*.xyz;*.csv;*.txt|All files (*.*)|*.*",
         "Data Files (*.dat *.xyz *.csv *.txt);;All files (*.*)"},
        {"Trensil definition Files(*.qvx)|*.qvx", "Trensil definition Files (*.qvx)"},
        {"Profile data file (*csv)|*.csv", "Profile data file (*.csv)"},
        {"Grid files|*.tif;*.grd", "Grid files (*.tif *.grd)"},
    };
    for (const auto& c : cases) EXPECT_EQ(qt_platform::qt_filter(c.program).toStdString(), c.qt);
}

}  // namespace
}  // namespace trensil
