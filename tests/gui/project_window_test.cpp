// The project window offscreen, the way a user works through it: a new project, a line taken
// from the example data file through the column preview, a line digitised on the magnetic grid,
// the line files, the line opened in the modelling window and its save coming back to the list.
#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QStandardPaths>
#include <QTableWidget>
#include <filesystem>
#include <fstream>

#include "../support/scratch_dir.h"
#include "gui_application.h"
#include "io/project_file.h"
#include "project_window.h"
#include "support/memory_settings_store.h"
#include "support/scripted_platform.h"
#include "test_paths.h"

namespace trensil {
namespace {

const std::string shared_data = TRENSIL_SHARED_DATA_DIR;
const std::string tempest_csv = shared_data + "/usgs-map-tempest-mag-line/line_225401.csv";
const std::string mag_grid = shared_data + "/usgs-map-mag-grid/map_mag_1km.tif";

class project_window_test : public ::testing::Test {
protected:
    void SetUp() override {
        application();
        QStandardPaths::setTestModeEnabled(true);
    }
    template <class T>
    static T* child(QWidget& window, const char* name) {
        T* found = window.findChild<T*>(name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    static void click(QWidget& window, const char* button) {
        child<QPushButton>(window, button)->click();
    }
    static void type(QWidget& window, const char* field, const QString& text) {
        auto* edit = child<QLineEdit>(window, field);
        edit->setText(text);
        emit edit->textEdited(text);
    }
    // A left click on the viewer at a world position, as the mouse gives it.
    static void click_on_map(grid_viewer* viewer, double x, double y) {
        const QPointF at = viewer->to_pixel({x, y});
        for (QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent e(type, at, viewer->mapToGlobal(at), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                          Qt::NoModifier);
            QApplication::sendEvent(viewer, &e);
        }
    }
    static std::vector<std::string> lines_of(const std::filesystem::path& file) {
        std::ifstream in(file);
        std::vector<std::string> lines;
        for (std::string line; std::getline(in, line);) lines.push_back(line);
        return lines;
    }

    testing::scratch_dir scratch_{std::string("project_window_") +
                                  ::testing::UnitTest::GetInstance()->current_test_info()->name()};
    const std::filesystem::path folder_ = scratch_.path();
    scripted_platform ui_;
    memory_settings_store settings_;
};

TEST_F(project_window_test, data_file_line_and_digitised_line_then_modelled_and_saved_back) {
    project_window window(ui_, settings_);
    window.resize(1400, 900);
    window.show();
    project_workspace& ws = window.workspace();
    EXPECT_EQ(window.windowTitle().toStdString(), project_form_caption());
    EXPECT_FALSE(window.visible("Frame_grid_profiles"));

    // A new project, saved at once so that its lines have a folder.
    const std::string project = (folder_ / "survey.qvj").string();
    ui_.file_answers.push_back(project);
    child<QAction>(window, "file_save_project")->trigger();
    ASSERT_TRUE(std::filesystem::exists(project));
    EXPECT_EQ(window.windowTitle(), "Trensil Project: survey.qvj");

    // The data file: its first lines in the preview, its names in Combo_names, and its columns
    // chosen from the names; the magnetics column is then typed in as a user would.
    ui_.file_answers.push_back(tempest_csv);
    click(window, "Command_add_new_file");
    auto* preview = child<QTableWidget>(window, "Grid_database");
    EXPECT_EQ(preview->rowCount(), 64);
    EXPECT_GE(preview->columnCount(), 13);
    EXPECT_EQ(preview->item(1, 3)->text(), "357875.50");  // easting of the first station
    auto* names = child<QComboBox>(window, "Combo_names");
    ASSERT_EQ(names->count(), 14);
    EXPECT_EQ(names->itemText(0), "N/A");
    EXPECT_EQ(names->itemText(12), "tmi_nt");
    EXPECT_EQ(window.text("Text_MAGINV_xpos"), "3");
    type(window, "Text_MAGINV_magpos", "13");  // the residual field instead of the total
    EXPECT_EQ(ws.scratch.magpos, 13);
    click(window, "Command_load_locations");
    ASSERT_TRUE(ws.locations_loaded) << (ui_.messages.empty() ? "" : ui_.messages.back());
    EXPECT_EQ(window.profile_graph()->series().rows(), 2001);

    ui_.input_answers.push_back("1000");
    click(window, "Command_save_file_1");
    ASSERT_TRUE(std::filesystem::exists(folder_ / "Line_1000.qvx"));
    auto* list = child<QTableWidget>(window, "Grid_profile_lines");
    ASSERT_EQ(list->rowCount(), 1);
    EXPECT_EQ(list->item(0, 0)->text(), "1000");
    EXPECT_EQ(list->horizontalHeaderItem(4)->text(), "Burial");

    // A line digitised on the magnetic grid, sampled every 500 m.
    ui_.file_answers.push_back(mag_grid);
    child<grid_file_selector>(window, "GridFileSelector_0")->choose_file();
    grid_viewer* viewer = window.viewer(0);
    ASSERT_TRUE(viewer->has_grid()) << (ui_.messages.empty() ? "" : ui_.messages.back());
    window.set_checked("Check_sample_grid_0", true);
    type(window, "Text_sample_interval", "500");
    click(window, "Command_digitise_new_line");
    EXPECT_TRUE(window.visible("Frame_grid_profiles"));
    EXPECT_FALSE(window.visible("Frame_qvx_list"));
    click_on_map(viewer, 380000.0, 1205000.0);
    click_on_map(viewer, 430000.0, 1215000.0);
    click_on_map(viewer, 445000.0, 1240000.0);
    EXPECT_EQ(window.text("Text_num_digitised_points"), "3");
    ASSERT_EQ(ws.digitising.num_digitised_points, 3);
    EXPECT_NE(ws.digitising.label(2), "*");
    EXPECT_NEAR(ws.digitising.x(2), 430000.0, 2 * viewer->view_box().width() / viewer->width());
    EXPECT_GT(ws.digitising.num_samples, 150);
    EXPECT_EQ(window.profile_graph()->series().rows(), ws.digitising.num_samples);

    ui_.input_answers.push_back("1010");
    click(window, "Command_save_file_1");
    const auto csv = lines_of(folder_ / "Line_1010.csv");
    ASSERT_EQ(static_cast<int>(csv.size()), ws.digitising.num_samples + 1);
    EXPECT_NE(csv[0].find("TMI"), std::string::npos);
    click(window, "Command_done_new_line");
    EXPECT_TRUE(window.visible("Frame_qvx_list"));
    ASSERT_EQ(list->rowCount(), 2);
    EXPECT_EQ(list->item(1, 0)->text(), "1010");

    // Line 1000 in the modelling window; a change saved there comes back to the project line.
    list->setCurrentCell(0, 0);
    emit list->cellClicked(0, 0);
    ASSERT_EQ(ws.current_line, 1);
    click(window, "Command_open_trensil");
    modelling_window* modeller = window.modeller();
    ASSERT_NE(modeller, nullptr);
    EXPECT_GT(modeller->workspace().model.profile.num_stations, 100);
    EXPECT_EQ(modeller->windowTitle(), "Trensil: Line_1000.qvx");
    type(*modeller, "Text_mag_intensity", "49299");
    EXPECT_NE(ws.project.models(1).mag_intensity, 49299.0f);
    ui_.file_answers.push_back((folder_ / "Line_1000.qvx").string());
    ui_.yes_answers.push_back(true);  // overwrite the line's model
    click(*modeller, "Command_save_qvx_model");
    EXPECT_EQ(ws.project.models(1).mag_intensity, 49299.0f);

    project_definition written;
    std::int16_t status = -1;
    read_project(project, written, status, ui_);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(written.num_lines, 2);
    EXPECT_EQ(written.line_numbers(2), 1010);
    modeller->close();
}

TEST_F(project_window_test, unreadable_grid_is_reported_and_the_tab_stays_empty) {
    project_window window(ui_, settings_);
    window.show();
    const std::string bad = (folder_ / "not_a_grid.tif").string();
    std::ofstream(bad) << "this is text\n";
    auto* selector = child<grid_file_selector>(window, "GridFileSelector_1");
    selector->set_file(QString::fromStdString(bad));
    emit selector->file_changed(QString::fromStdString(bad));
    ASSERT_EQ(ui_.messages.size(), 1u);
    EXPECT_EQ(ui_.messages[0].rfind("An error occured while loading the grid file: ", 0), 0u);
    EXPECT_GT(ui_.messages[0].size(), 50u);  // with GDAL's reason
    EXPECT_FALSE(window.viewer(1)->has_grid());
    (void)window.viewer(1)->grab();  // draws without a grid
}

}  // namespace
}  // namespace trensil
