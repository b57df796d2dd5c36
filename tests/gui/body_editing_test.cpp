// Editing a body through the window's own widgets, offscreen: a typed cell, a nudged bar, the
// body selector, the cylinder's frame, undo and redo from the keyboard.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QScrollBar>
#include <QStandardPaths>
#include <QTest>
#include <filesystem>
#include <vector>

#include "../workspace/workspace_files.h"
#include "body_table_widget.h"
#include "gui_application.h"
#include "modelling_window.h"
#include "support/memory_settings_store.h"
#include "support/scripted_platform.h"

namespace trensil {
namespace {

class body_editing_test : public ::testing::Test {
protected:
    void SetUp() override {
        application();
        QStandardPaths::setTestModeEnabled(true);
        folder_ = std::filesystem::temp_directory_path() /
                  (std::string("trensil_edit_") +
                   ::testing::UnitTest::GetInstance()->current_test_info()->name());
        const std::string model = testing_files::write_example_model(folder_);
        window_ = std::make_unique<modelling_window>(ui_, settings_);
        window_->resize(1400, 1000);
        window_->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        ASSERT_EQ(open_model_file(ws(), model), 0);
        table_ = window_->findChild<body_table_widget*>("Grid_body");
        ASSERT_NE(table_, nullptr);
    }
    void TearDown() override {
        window_.reset();
        std::filesystem::remove_all(folder_);
    }

    modelling_workspace& ws() { return window_->workspace(); }
    QLineEdit* edit_box() { return window_->findChild<QLineEdit*>("Text_edit"); }
    // The computed magnetic curve as plotted.
    std::vector<double> computed_curve() { return window_->graph(0)->series().y[1]; }
    void click_cell(int row, int column) {
        const QRect cell = table_->cell_rect(row, column).translated(-table_->viewport()->pos());
        QTest::mouseClick(table_->viewport(), Qt::LeftButton, {}, cell.center());
    }
    void type_in_box(const char* text) {
        edit_box()->selectAll();
        QTest::keyClicks(edit_box(), text);
    }
    QScrollBar* bar(const char* name) { return window_->findChild<QScrollBar*>(name); }
    // A click on the arrow at the bar's far end (right, or down).
    void click_far_arrow(QScrollBar* b) {
        const QPoint end = b->orientation() == Qt::Horizontal
                               ? QPoint(b->width() - 4, b->height() / 2)
                               : QPoint(b->width() / 2, b->height() - 4);
        QTest::mouseClick(b, Qt::LeftButton, {}, end);
    }

    std::filesystem::path folder_;
    scripted_platform ui_;
    memory_settings_store settings_;
    std::unique_ptr<modelling_window> window_;
    body_table_widget* table_ = nullptr;
};

TEST_F(body_editing_test, typed_cell_changes_the_curve_and_escape_or_leaving_behave) {
    EXPECT_EQ(table_->cell_text(0, 4).toStdString(), "Max");
    EXPECT_EQ(table_->cell_text(6, 0).toStdString(), "Dip");
    const auto before = computed_curve();

    click_cell(6, 1);
    ASSERT_TRUE(edit_box()->isVisible());
    EXPECT_TRUE(edit_box()->hasFocus());
    EXPECT_EQ(edit_box()->text().toStdString(), "90.0");
    EXPECT_EQ(edit_box()->toolTip().toStdString(), "The dip of the body");
    // The box lies over its cell.
    const QRect cell = table_->cell_rect(6, 1);
    EXPECT_NEAR(edit_box()->geometry().center().y(), cell.center().y(), 2);
    type_in_box("45");
    QTest::keyClick(edit_box(), Qt::Key_Return);
    EXPECT_FALSE(edit_box()->isVisible());
    EXPECT_FLOAT_EQ(ws().model.body(1).dip.value, 45.0f);
    EXPECT_EQ(table_->cell_text(6, 1).toStdString(), "45");
    EXPECT_NE(computed_curve(), before);
    // The table keeps the edited cell as its current one.
    EXPECT_EQ(table_->currentRow() + 1, 6);
    EXPECT_EQ(table_->currentColumn(), 1);

    // Escape: nothing stored.
    click_cell(7, 1);
    type_in_box("-10");
    QTest::keyClick(edit_box(), Qt::Key_Escape);
    EXPECT_FALSE(edit_box()->isVisible());
    EXPECT_FLOAT_EQ(ws().model.body(1).top.value, -40.0f);

    // Leaving the box for another cell commits it first.
    click_cell(7, 1);
    type_in_box("-60");
    click_cell(9, 0);
    EXPECT_FLOAT_EQ(ws().model.body(1).top.value, -60.0f);
    EXPECT_FALSE(edit_box()->isVisible());

    // Undo and redo from the keyboard, named on the Edit menu.
    auto* undo = window_->findChild<QAction*>("menu_undo");
    ASSERT_NE(undo, nullptr);
    EXPECT_EQ(undo->text().toStdString(), "Undo Top of Body 1");
    QTest::keyClick(window_.get(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FLOAT_EQ(ws().model.body(1).top.value, -40.0f);
    EXPECT_EQ(table_->cell_text(7, 1).toStdString(), "-40.00");
    QTest::keyClick(window_.get(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FLOAT_EQ(ws().model.body(1).dip.value, 90.0f);
    EXPECT_EQ(computed_curve(), before);
    EXPECT_FALSE(undo->isEnabled());
    QTest::keyClick(window_.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FLOAT_EQ(ws().model.body(1).dip.value, 45.0f);
    EXPECT_EQ(window_->findChild<QAction*>("menu_redo")->text().toStdString(),
              "Redo Top of Body 1");
}

TEST_F(body_editing_test, arrow_of_a_bar_nudges_the_body_and_the_bar_rests_again) {
    const auto before = computed_curve();
    QScrollBar* dip = bar("HScroll_dip_0");
    ASSERT_NE(dip, nullptr);
    click_far_arrow(dip);  // right arrow: dip less
    EXPECT_FLOAT_EQ(ws().model.body(1).dip.value, 85.0f);
    EXPECT_EQ(dip->value(), 0);
    EXPECT_TRUE(dip->isEnabled());
    EXPECT_EQ(table_->cell_text(6, 1).toStdString(), "85.0");
    EXPECT_NE(computed_curve(), before);

    QScrollBar* fine_top = bar("VScroll_depth_1");
    ASSERT_NE(fine_top, nullptr);
    click_far_arrow(fine_top);  // down arrow: deeper by a tenth of 40 / 25
    EXPECT_FLOAT_EQ(ws().model.body(1).top.value, -40.16f);
    EXPECT_EQ(fine_top->value(), 0);

    // Back on the dip bar: a step of its own, since the top came between.
    click_far_arrow(dip);
    EXPECT_EQ(window_->findChild<QAction*>("menu_undo")->text().toStdString(),
              "Undo Dip of Body 1");
    window_->findChild<QAction*>("menu_undo")->trigger();
    EXPECT_FLOAT_EQ(ws().model.body(1).dip.value, 85.0f);
    EXPECT_FLOAT_EQ(ws().model.body(1).top.value, -40.16f);
}

TEST_F(body_editing_test, selector_shows_the_cylinder_frame_for_a_cylinder_only) {
    QScrollBar* selector = bar("HScroll_body");
    ASSERT_NE(selector, nullptr);
    EXPECT_EQ(selector->maximum(), 2);
    EXPECT_TRUE(window_->findChild<QWidget*>("Frame_cylinder")->isHidden());
    selector->setValue(2);
    EXPECT_EQ(ws().section.current_body, 2);
    EXPECT_FALSE(window_->findChild<QWidget*>("Frame_cylinder")->isHidden());
    EXPECT_EQ(table_->cell_text(9, 0).toStdString(), "Diameter");
    EXPECT_EQ(window_->text("Text_num_sectors"), "12");
    selector->setValue(1);
    EXPECT_TRUE(window_->findChild<QWidget*>("Frame_cylinder")->isHidden());
}

}  // namespace
}  // namespace trensil
