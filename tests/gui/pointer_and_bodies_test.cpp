// The pointer and the body commands on the real window, offscreen: picking an outline, adding a
// body by a double click, the Delete key, a body menu and its undo, a limit marker, and the plan
// of the bundled example.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QMouseEvent>
#include <QTest>
#include <cmath>
#include <filesystem>

#include "../workspace/workspace_files.h"
#include "gui_application.h"
#include "modelling_window.h"
#include "support/memory_settings_store.h"
#include "support/number_format.h"
#include "support/scripted_platform.h"
#include "test_paths.h"

namespace trensil {
namespace {

class pointer_window_test : public ::testing::Test {
protected:
    void SetUp() override {
        application();
        folder_ = std::filesystem::temp_directory_path() /
                  (std::string("trensil_pointer_") +
                   ::testing::UnitTest::GetInstance()->current_test_info()->name());
        window_ = std::make_unique<modelling_window>(ui_, settings_);
        window_->resize(1200, 900);
        window_->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window_.get()));
        ASSERT_EQ(open_model_file(ws(), testing_files::write_example_model(folder_)), 0);
        QApplication::processEvents();
    }
    void TearDown() override {
        window_.reset();
        std::filesystem::remove_all(folder_);
    }
    modelling_workspace& ws() { return window_->workspace(); }
    graph_widget* section() { return window_->graph(section_graph); }
    QPoint at(double distance, double elevation) {
        return section()->to_pixel(distance, elevation).toPoint();
    }
    // A drag of `widget` by (dx, dy) pixels from `from`, with the button held on the way.
    static void drag(QWidget* widget, QPoint from, int dx, int dy) {
        QTest::mousePress(widget, Qt::LeftButton, Qt::NoModifier, from);
        const QPoint to = from + QPoint(dx, dy);
        QMouseEvent move(QEvent::MouseMove, to, widget->mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(widget, &move);
        QTest::mouseRelease(widget, Qt::LeftButton, Qt::NoModifier, to);
    }

    std::filesystem::path folder_;
    scripted_platform ui_;
    memory_settings_store settings_;
    std::unique_ptr<modelling_window> window_;
};

TEST_F(pointer_window_test, clicking_an_outline_picks_its_body) {
    ASSERT_EQ(ws().section.current_body, 1);
    QTest::mouseClick(section(), Qt::LeftButton, Qt::NoModifier, at(1500.0, -80.0));
    EXPECT_EQ(ws().section.current_body, 2);
    EXPECT_EQ(window_->text("Text_body_name"), ws().model.body(2).name);
    QTest::mouseMove(section(), at(1250.0, -100.0));
    // The readout: the distance under the pointer (to a pixel) and the station at or before it.
    const double distance = std::stod(window_->status_text(4));
    EXPECT_NEAR(distance, 1250.0, 5.0);
    const double station_east = 500000.0 + 10.0 * std::floor(distance / 10.0);
    EXPECT_EQ(window_->status_text(2), format_fixed(station_east, 1));
    // A click beside every outline leaves the choice alone.
    QTest::mouseClick(section(), Qt::LeftButton, Qt::NoModifier, at(200.0, -500.0));
    EXPECT_EQ(ws().section.current_body, 2);
}

TEST_F(pointer_window_test, double_click_on_the_section_adds_a_body_there) {
    const QPoint spot = at(600.0, -60.0);
    QTest::mouseMove(section(), spot);
    QTest::mouseDClick(section(), Qt::LeftButton, Qt::NoModifier, spot);
    ASSERT_EQ(ws().model.num_bodies, 3);
    EXPECT_EQ(ws().section.current_body, 3);
    const body_record& b = ws().model.body(3);
    EXPECT_NEAR(b.distance.value, 600.0f, 10.0f);  // within a pixel or two of the pointer
    EXPECT_NEAR(b.top.value, -60.0f, 10.0f);
    EXPECT_EQ(section()->polygon_count(), 3);
    EXPECT_TRUE(ws().model_changed);
}

TEST_F(pointer_window_test, delete_key_on_a_picked_body_asks_first) {
    QTest::mouseClick(section(), Qt::LeftButton, Qt::NoModifier, at(1500.0, -80.0));
    QTest::keyClick(section(), Qt::Key_Delete);  // answered No
    ASSERT_EQ(ui_.questions.size(), 1u);
    EXPECT_EQ(ws().model.num_bodies, 2);
    ui_.yes_answers.push_back(true);
    QTest::keyClick(section(), Qt::Key_Delete);
    EXPECT_EQ(ws().model.num_bodies, 1);
    EXPECT_EQ(section()->polygon_count(), 1);
}

TEST_F(pointer_window_test, body_menu_commands_and_their_undo) {
    auto* copy = window_->findChild<QAction*>("menu_add_body_1");
    ASSERT_NE(copy, nullptr);
    copy->trigger();
    ASSERT_EQ(ws().model.num_bodies, 3);
    EXPECT_EQ(ws().section.current_body, 2);
    EXPECT_FLOAT_EQ(ws().model.body(2).distance.value, 1000.0f + 50.0f + 50.0f);
    EXPECT_EQ(ws().model.body(3).type, cylinder_pipe);  // the old body 2 moved up
    window_->findChild<QAction*>("menu_sort_bodies_1")->trigger();
    EXPECT_EQ(ui_.messages.back(), "The bodies have been sorted");
    EXPECT_FLOAT_EQ(ws().model.body(1).distance.value, 1500.0f);

    // Ctrl+Z twice: the sort, then the copy, undone; the Edit menu names each step.
    auto* undo = window_->findChild<QAction*>("menu_undo");
    ASSERT_NE(undo, nullptr);
    EXPECT_EQ(undo->text().toStdString(), "Undo Sort Bodies by Descending Distance");
    QTest::keyClick(section(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(undo->text().toStdString(), "Undo Copy Body 1");
    QTest::keyClick(section(), Qt::Key_Z, Qt::ControlModifier);
    ASSERT_EQ(ws().model.num_bodies, 2);
    EXPECT_FLOAT_EQ(ws().model.body(2).distance.value, 1500.0f);
    EXPECT_EQ(section()->polygon_count(), 2);
    EXPECT_FALSE(undo->isEnabled());
    EXPECT_EQ(window_->findChild<QAction*>("menu_redo")->text().toStdString(), "Redo Copy Body 1");
}

TEST_F(pointer_window_test, dragging_the_start_marker_moves_the_inversion_window) {
    auto* marker = window_->findChild<QWidget*>("Image_inversion_limit_0");
    ASSERT_NE(marker, nullptr);
    ASSERT_TRUE(marker->isVisible());
    // The marker's centre stands over the section's first station.
    const QPoint centre = section()->mapFromGlobal(marker->mapToGlobal(marker->rect().center()));
    EXPECT_NEAR(section()->to_world(QPointF(centre)).x(), 0.0, 15.0);
    const int dx =
        static_cast<int>(section()->to_pixel(500.0, 0.0).x() - section()->to_pixel(0.0, 0.0).x());
    drag(marker, marker->rect().center(), dx, 0);
    const int first = ws().model.profile.inversion_first_station;
    EXPECT_NEAR(ws().model.profile.profile_distance(first), 500.0f, 20.0f);
    // The graphs show the window's new start.
    const QPoint moved = section()->mapFromGlobal(marker->mapToGlobal(marker->rect().center()));
    EXPECT_NEAR(section()->to_world(QPointF(moved)).x(), 500.0, 15.0);
}

TEST(plan_of_the_example, covers_the_whole_line_with_a_tick_at_each_end) {
    application();
    scripted_platform ui;
    memory_settings_store settings;
    modelling_window window(ui, settings);
    window.resize(1200, 900);
    window.show();
    ASSERT_EQ(open_model_file(window.workspace(), std::string(TRENSIL_SOURCE_DIR) +
                                                      "/examples/tempest/tempest_line_225401.qvx"),
              0);
    command_show_section_or_plan(window.workspace());
    QApplication::processEvents();
    const graph_widget* plan = window.plan_graph();
    const profile_block& p = window.workspace().model.profile;
    const QRectF plot = plan->plot_rect();
    for (int i : {1, p.num_stations}) {
        const QPointF px = plan->to_pixel(p.location(easting_row, i), p.location(northing_row, i));
        EXPECT_TRUE(plot.contains(px)) << i;
    }
    // The axes were rounded in single precision to 14999.999 steps; the last tick, at the east
    // end, was lost to that rounding.
    const auto east = graph_widget::tick_values(plan->xaxismin, plan->xaxismax, plan->x_tick_step);
    ASSERT_FALSE(east.empty());
    EXPECT_NEAR(east.front(), 345000.0, 1e-6);
    EXPECT_NEAR(east.back(), 465000.0, 1e-6);
}

}  // namespace
}  // namespace trensil
