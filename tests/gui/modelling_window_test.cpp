// The modelling window offscreen: opening a model, the graphs' contents, zoom and pan through
// the window's controls, the plan, and the settings kept between two windows.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QScrollBar>
#include <QStandardPaths>
#include <filesystem>

#include "../support/scratch_dir.h"
#include "../workspace/workspace_files.h"
#include "gui_application.h"
#include "modelling_window.h"
#include "support/memory_settings_store.h"
#include "support/scripted_platform.h"

namespace trensil {
namespace {

class window_test : public ::testing::Test {
protected:
    void SetUp() override {
        application();
        QStandardPaths::setTestModeEnabled(true);
        model_path_ = testing_files::write_example_model(scratch_.path());
    }

    testing::scratch_dir scratch_{std::string("gui_window_") +
                                  ::testing::UnitTest::GetInstance()->current_test_info()->name()};
    std::string model_path_;
    scripted_platform ui_;
    memory_settings_store settings_;
};

TEST_F(window_test, opened_model_fills_graphs_and_section) {
    modelling_window window(ui_, settings_);
    window.resize(1000, 800);
    window.show();
    ASSERT_EQ(open_model_file(window.workspace(), model_path_), 0);
    EXPECT_TRUE(ui_.messages.empty());
    EXPECT_EQ(window.windowTitle().toStdString(), "Trensil: line_a.qvx");

    const plot_data& mag = window.graph(0)->series();
    ASSERT_EQ(mag.rows(), 201);
    ASSERT_EQ(mag.y.size(), 2u);
    EXPECT_FALSE(std::isnan(mag.y[1][100]));  // computed beside observed
    EXPECT_EQ(window.graph(4)->polygon_count(), 2);

    // Picking: the cylinder's polygon is found under its centre.
    graph_widget* section = window.graph(4);
    const QPointF centre = section->to_pixel(1500.0, -80.0);
    EXPECT_EQ(section->polygon_at(centre), 2);
    EXPECT_EQ(section->polygon_at(section->to_pixel(200.0, -500.0)), 0);

    const QImage shot = window.capture_graphs();
    EXPECT_GT(shot.width(), 100);
    EXPECT_GT(shot.height(), 100);

    // The plan replaces the section.
    command_show_section_or_plan(window.workspace());
    EXPECT_TRUE(window.findChild<QWidget*>("Frame_section")->isHidden());
    EXPECT_FALSE(window.findChild<QWidget*>("Frame_plan")->isHidden());
    EXPECT_EQ(window.plan_graph()->polygon_count(), 2);
}

TEST_F(window_test, zoom_and_pan_controls_move_every_axis) {
    modelling_window window(ui_, settings_);
    window.show();
    ASSERT_EQ(open_model_file(window.workspace(), model_path_), 0);
    auto* zoom = window.findChild<QComboBox*>("Combo_zoom");
    ASSERT_NE(zoom, nullptr);
    zoom->setCurrentIndex(3);
    emit zoom->activated(3);  // 200%
    for (int i = 0; i < graph_count; ++i)
        EXPECT_NEAR(window.graph(i)->xaxismax - window.graph(i)->xaxismin, 1000.0f, 1e-2f);
    auto* pan = window.findChild<QScrollBar*>("HScroll_pan");
    ASSERT_NE(pan, nullptr);
    EXPECT_EQ(pan->maximum(), 4);
    pan->setValue(-4);
    EXPECT_NEAR(window.graph(4)->xaxismin, 0.0f, 1e-2f);
    EXPECT_NEAR(window.graph(0)->xaxismax, 1000.0f, 1e-2f);

    // A vertical zoom step touches its own graph only.
    const float span1 = window.graph(1)->yaxismax - window.graph(1)->yaxismin;
    const float span0 = window.graph(0)->yaxismax - window.graph(0)->yaxismin;
    window.findChild<QScrollBar*>("VScroll_zoom_0")->setValue(-1);
    EXPECT_LT(window.graph(0)->yaxismax - window.graph(0)->yaxismin, span0);
    EXPECT_FLOAT_EQ(window.graph(1)->yaxismax - window.graph(1)->yaxismin, span1);
    EXPECT_EQ(window.findChild<QScrollBar*>("VScroll_zoom_0")->value(), 0);
}

TEST_F(window_test, settings_written_at_close_come_back) {
    {
        modelling_window window(ui_, settings_);
        window.set_text("Text_mag_intensity", "52000");
        window.set_checked("menu_display_axes", false);
        window.resize(1111, 777);
        window.close();
    }
    EXPECT_EQ(settings_.get_setting("Ostrand", "Trensil", "FormSize"), "1111;777");
    modelling_window again(ui_, settings_);
    EXPECT_EQ(again.text("Text_mag_intensity"), "52000");
    EXPECT_FALSE(again.checked("menu_display_axes"));
    EXPECT_EQ(again.width(), 1111);
    EXPECT_FALSE(again.graph(0)->display_x_axis);
}

TEST_F(window_test, unreadable_model_leaves_an_empty_usable_window) {
    modelling_window window(ui_, settings_);
    window.show();
    EXPECT_EQ(open_model_file(window.workspace(), (scratch_.path() / "missing.qvx").string()), -1);
    ASSERT_EQ(ui_.messages.size(), 1u);
    EXPECT_EQ(ui_.messages[0], "That file does not exist");
    EXPECT_EQ(window.graph(0)->polygon_count(), 0);
    ASSERT_EQ(open_model_file(window.workspace(), model_path_), 0);
    EXPECT_EQ(window.graph(4)->polygon_count(), 2);
}

}  // namespace
}  // namespace trensil
