// The inversion panel offscreen, on the synthetic line whose data were computed from its own
// model: a body moved off its place is inverted back, the two ways back work, and the run, the
// reject and the restore are each one undo step.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStandardPaths>
#include <filesystem>

#include "../support/scratch_dir.h"
#include "gui_application.h"
#include "modelling_window.h"
#include "support/memory_settings_store.h"
#include "support/number_format.h"
#include "support/scripted_platform.h"
#include "test_paths.h"

namespace trensil {
namespace {

// Runs in a scratch directory holding a copy of the synthetic line: "Restore Best Model" writes
// latest.qvx into the current directory.
class inversion_panel_test : public ::testing::Test {
protected:
    void SetUp() override {
        application();
        QStandardPaths::setTestModeEnabled(true);
        const std::filesystem::path examples =
            std::filesystem::path(TRENSIL_SOURCE_DIR) / "examples" / "synthetic";
        for (const char* file : {"synthetic_truth.qvx", "synthetic_line.csv"})
            std::filesystem::copy_file(examples / file, folder_ / file);
        old_ = std::filesystem::current_path();
        std::filesystem::current_path(folder_);
    }
    void TearDown() override { std::filesystem::current_path(old_); }

    template <class T>
    T* child(modelling_window& window, const char* name) {
        T* found = window.findChild<T*>(name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    double misfit(modelling_window& window, int item) {
        return std::stod(window.text("Text_MAGINV_misfit_" + std::to_string(item)));
    }
    // Body 1 moved 300 m along the line, so that the data no longer fit, then the panel shown in
    // the sliders' place and an inversion of the whole model of four iterations. Returns where body
    // 1 was moved to.
    float move_body_and_invert(modelling_window& window) {
        modelling_workspace& ws = window.workspace();
        const float moved = ws.model.body(1).distance.value + 300.0f;
        ws.model.body(1).distance.value = moved;
        clear_body_results(ws.model);
        display_model(ws, 1);
        if (!window.visible("Frame_inversion"))
            child<QPushButton>(window, "Command_toggle_invert_body")->click();
        window.set_text("Text_max_iterations", "4");
        child<QPushButton>(window, "Command_invert_1")->click();
        return moved;
    }

    testing::scratch_dir scratch_{std::string("gui_inversion_") +
                                  ::testing::UnitTest::GetInstance()->current_test_info()->name()};
    std::filesystem::path folder_ = scratch_.path(), old_;
    scripted_platform ui_;
    memory_settings_store settings_;
};

TEST_F(inversion_panel_test, whole_model_run_lowers_misfit_and_both_ways_back_work) {
    modelling_window window(ui_, settings_);
    window.show();
    modelling_workspace& ws = window.workspace();
    ASSERT_EQ(open_model_file(ws, (folder_ / "synthetic_truth.qvx").string()), 0);
    ASSERT_GE(ws.model.num_bodies, 1);

    // Body 1 moved 300 m along the line: the data no longer fit.
    const float moved = ws.model.body(1).distance.value + 300.0f;
    ws.model.body(1).distance.value = moved;
    clear_body_results(ws.model);
    display_model(ws, 1);

    // The panel takes the sliders' place.
    EXPECT_TRUE(window.visible("Frame_move_body"));
    EXPECT_FALSE(window.visible("Frame_inversion"));
    child<QPushButton>(window, "Command_toggle_invert_body")->click();
    EXPECT_FALSE(window.visible("Frame_move_body"));
    EXPECT_EQ(window.text("Command_toggle_invert_body"), "Move This Body");
    ASSERT_TRUE(child<QPushButton>(window, "Command_invert_1")->isVisible());
    window.set_text("Text_max_iterations", "4");
    child<QPushButton>(window, "Command_invert_1")->click();
    EXPECT_LT(misfit(window, 1), misfit(window, 0));
    EXPECT_NE(ws.model.body(1).distance.value, moved);
    EXPECT_EQ(window.text("Label_status"), "Inversion succeeded");
    EXPECT_TRUE(window.visible("Label_status"));
    EXPECT_FALSE(window.visible("Command_stop_inversion"));
    EXPECT_FALSE(window.visible("Text_num_iterations"));
    EXPECT_EQ(window.text("Text_max_iterations"), "4");

    // The run is one step: undo goes back to where it began, redo to its result.
    const float inverted = ws.model.body(1).distance.value;
    auto* undo = child<QAction>(window, "menu_undo");
    EXPECT_EQ(undo->text().toStdString(), "Undo Inversion");
    undo->trigger();
    EXPECT_EQ(ws.model.body(1).distance.value, moved);
    child<QAction>(window, "menu_redo")->trigger();
    EXPECT_EQ(ws.model.body(1).distance.value, inverted);

    auto* reject = child<QPushButton>(window, "Command_reject_changes");
    ASSERT_TRUE(reject->isEnabled());
    reject->click();
    EXPECT_EQ(ws.model.body(1).distance.value, moved);
    EXPECT_FALSE(reject->isEnabled());
    EXPECT_EQ(window.text("Text_MAGINV_misfit_0"), "");
    EXPECT_EQ(undo->text().toStdString(), "Undo Reject Changes");
    undo->trigger();
    EXPECT_EQ(ws.model.body(1).distance.value, inverted);
    child<QAction>(window, "menu_redo")->trigger();

    // A second run from the moved body, then back to its best: the model as it stood is kept
    // in latest.qvx, and the final box shows the "no computed misfit" mark -99999 / N.
    child<QPushButton>(window, "Command_invert_1")->click();
    auto* restore = child<QPushButton>(window, "Command_restore_best");
    ASSERT_TRUE(restore->isEnabled());
    restore->click();
    EXPECT_EQ(undo->text().toStdString(), "Undo Restore Best Model");
    EXPECT_TRUE(std::filesystem::exists(folder_ / "latest.qvx"));
    EXPECT_EQ(window.text("Text_MAGINV_misfit_1"),
              format_fixed(-99999.0 / ws.model.profile.num_stations, 4));
    EXPECT_FALSE(restore->isEnabled());
    EXPECT_TRUE(ui_.messages.empty());
}

// The least squares chosen on the panel, jointly on both data types: the run lowers the misfit,
// its findings appear below the buttons, and Reject Changes takes both the values and the
// findings back.
TEST_F(inversion_panel_test, least_squares_run_shows_its_errors_until_the_changes_are_rejected) {
    modelling_window window(ui_, settings_);
    window.show();
    modelling_workspace& ws = window.workspace();
    ASSERT_EQ(open_model_file(ws, (folder_ / "synthetic_truth.qvx").string()), 0);
    auto* joint = child<QCheckBox>(window, "Check_joint_fit");
    EXPECT_FALSE(joint->isEnabled());
    window.select_item("Combo_solver", 1);
    combo_solver_selected(ws);
    ASSERT_TRUE(joint->isEnabled());
    joint->setChecked(true);

    const float moved = move_body_and_invert(window);
    EXPECT_LT(misfit(window, 1), misfit(window, 0));
    EXPECT_EQ(window.text("Label_status"), "Inversion succeeded");
    ASSERT_TRUE(window.visible("Text_fit_summary"));
    const std::string summary = window.text("Text_fit_summary");
    EXPECT_NE(summary.find("gravity noise level "), std::string::npos) << summary;
    EXPECT_NE(summary.find("\nbody 1 Distance "), std::string::npos) << summary;
    EXPECT_NE(summary.find("body 1 Dens "), std::string::npos) << summary;

    child<QPushButton>(window, "Command_reject_changes")->click();
    EXPECT_EQ(ws.model.body(1).distance.value, moved);
    EXPECT_FALSE(window.visible("Text_fit_summary"));
    EXPECT_TRUE(ui_.messages.empty());
}

}  // namespace
}  // namespace trensil
