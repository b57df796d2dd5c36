// The project window's handlers on a fake window: lines from a digitised baseline and from a data
// file, the line list and its project file, and the refusals that leave the project untouched.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>

#include "fake_project_view.h"
#include "io/model_file_writer.h"
#include "project/project_workspace.h"
#include "support/memory_settings_store.h"
#include "support/paths.h"
#include "support/scratch_dir.h"
#include "support/scripted_platform.h"
#include "test_grids.h"
#include "workspace/modelling_workspace.h"
#include "workspace/recording_graph_control.h"
#include "workspace/recovery_copy.h"

namespace trensil {
namespace {

using testing::read_all;
using testing::scratch_dir;

// The scripted platform, with the title of each question kept.
class titled_platform : public scripted_platform {
public:
    std::vector<std::string> titles;
    std::string last_message() const { return messages.empty() ? "" : messages.back(); }
    bool ask_yes_no(const std::string& question, const std::string& title) override {
        titles.push_back(title);
        return scripted_platform::ask_yes_no(question, title);
    }
};

// A 2 km by 1 km grid of 100 m cells whose value is the easting in km, with no value in the
// north-east cell; the opener knows it as "mag.grd".
std::unique_ptr<grid_source> open_test_grid(const std::string& path, std::string& error) {
    if (file_name_part(path) != "mag.grd") {
        error = "not a grid";
        return nullptr;
    }
    const grid_geometry g = testing::square_cells(20, 10, 0.0, 1000.0, 100.0);
    std::vector<float> values;
    for (int r = 0; r < g.rows; ++r)
        for (int c = 0; c < g.columns; ++c)
            values.push_back(r == 0 && c == 19 ? -1e32f : 0.05f + 0.1f * c);
    return std::make_unique<memory_grid>(g, values);
}

struct project_form : ::testing::Test {
    scratch_dir dir{"project_form"};
    titled_platform ui;
    memory_settings_store settings;
    fake_project_view view;
    recording_graph_control graph;
    project_workspace ws{ui, settings, open_test_grid};
    std::vector<std::string> opened;  // models the modelling window was opened on
    bool modeller_changed = false;

    project_form() {
        ws.view = &view;
        ws.profile_graph = &graph;
        ws.open_modeller = [this](const std::string& model) {
            opened.push_back(model);
            return 0;
        };
        project_form_load(ws);
        testing::write_all(dir.file("mag.grd"), "grid");
    }

    // Saves the project as area.qvj in the scratch folder.
    void save_project() {
        ui.file_answers.push_back(dir.file("area"));
        ASSERT_EQ(file_save_project(ws), 0);
    }
    // Digitises an east-running baseline of `stations` stations 100 m apart across the grid.
    int digitise(int stations) {
        grid_file_changed(ws, 0, dir.file("mag.grd"));
        view.checks["Check_sample_grid_0"] = true;
        view.texts["Text_sample_interval"] = "100";
        if (command_digitise_new_line(ws) != 0) return -1;
        grid_viewer_pointer(ws, 0, 5, 1, false, 50.0, 550.0);
        grid_viewer_pointer(ws, 0, 5, 1, false, 50.0 + 100.0 * (stations - 1), 550.0);
        return ws.digitising.num_samples;
    }
    int save_new_line(const std::string& number) {
        ui.input_answers.push_back(number);
        return save_line(ws, 1);
    }
};

TEST_F(project_form, digitised_line_is_written_entered_and_reopened) {
    save_project();
    ASSERT_EQ(digitise(20), 20);
    EXPECT_EQ(view.texts["Text_num_digitised_points"], "2");
    EXPECT_EQ(view.texts["Text_label"], "1.95");  // the grid's value at the last point
    EXPECT_NE(view.status.find("Value: 1.95"), std::string::npos) << view.status;
    ASSERT_EQ(graph.loaded.rows(), 20);
    EXPECT_NEAR(graph.loaded.y[0][3], 0.35, 1e-6);  // easting 350 m

    ASSERT_EQ(save_new_line("1010"), 0) << ui.last_message();
    const std::string csv = read_all(dir.file("Line_1010.csv"));
    EXPECT_EQ(csv.substr(0, 36), "      X,      Y,      TMI\r\n50.00,550");
    ASSERT_EQ(ws.project.num_lines, 1);
    EXPECT_EQ(ws.project.model_paths(1), "Line_1010.qvx");
    EXPECT_EQ(ws.project.picture_paths(1), "Line_1010.bmp");
    EXPECT_EQ(ws.project.profiles(1).count, 20);
    EXPECT_EQ(view.tables["Grid_profile_lines"].at(1).at(0), "1010");
    EXPECT_NE(read_all(dir.file("area.qvj")).find("Line_1010.qvx"), std::string::npos);
    EXPECT_EQ(ws.project.next_line_number, 1020);

    command_done_new_line(ws);
    EXPECT_TRUE(view.visible("Frame_qvx_list"));
    project_workspace again{ui, settings, open_test_grid};
    fake_project_view view2;
    again.view = &view2;
    again.open_modeller = ws.open_modeller;
    project_form_load(again);
    ASSERT_EQ(open_project_file(again, dir.file("area.qvj")), 0);
    EXPECT_EQ(view2.caption, "Trensil Project: area.qvj");
    EXPECT_TRUE(view2.checks["Check_sample_grid_0"]);
    EXPECT_EQ(view2.texts["GridFileSelector_0"], "mag.grd");
    EXPECT_NE(view2.grids_shown[0], nullptr);
    ASSERT_EQ(again.current_line, 1);
    EXPECT_EQ(again.project.profiles(1).count, 20);
    ASSERT_EQ(command_open_trensil(again), 0);
    EXPECT_EQ(opened.back(), dir.file("Line_1010.qvx"));
}

TEST_F(project_form, short_baseline_and_bad_numbers_leave_the_project_untouched) {
    save_project();
    ASSERT_EQ(digitise(15), 15);
    EXPECT_EQ(save_line(ws, 1), -1);
    EXPECT_EQ(ui.last_message(), "The digitised baseline is not long enough to be meaningful");
    ASSERT_EQ(digitise(16), 16);

    struct row {
        std::optional<std::string> answer;
        const char* message;  // "" for none
    };
    const row rows[] = {{"ten", "The specified line number is not valid"},
                        {"-5", "The line number must be positive"},
                        {"", ""},
                        {std::nullopt, ""}};
    for (const row& r : rows) {
        ui.messages.clear();
        ui.input_answers.push_back(r.answer);
        EXPECT_EQ(save_line(ws, 1), -1);
        EXPECT_EQ(ui.last_message(), r.message);
    }
    EXPECT_EQ(ws.project.num_lines, 0);
    EXPECT_FALSE(std::filesystem::exists(dir.file("Line_1000.csv")));

    ASSERT_EQ(save_new_line("1000"), 0);
    ui.yes_answers.push_back(false);  // do not overwrite the csv
    EXPECT_EQ(save_new_line("1000"), -1);
    EXPECT_EQ(ui.questions.back(), "The csv file already already, exists, overwrite?");
    EXPECT_EQ(ws.project.num_lines, 1);
}

TEST_F(project_form, digitising_refusals_and_defaults) {
    struct row {
        const char* interval;
        const char* message;
    };
    const row rows[] = {{"", "The sample interval has not been specified"},
                        {"0", "The sample interval must be positive"},
                        {"abc", "The sample interval must be positive"}};
    for (const row& r : rows) {
        view.texts["Text_sample_interval"] = r.interval;
        EXPECT_EQ(command_digitise_new_line(ws), -1);
        EXPECT_EQ(ui.last_message(), r.message);
        EXPECT_FALSE(ws.digitising.active);
    }
    view.texts["Text_surface_elevation"] = "x";
    view.texts["Text_sensor_offset"] = "";
    ui.messages.clear();
    setup_and_display_grid_profile(ws);
    EXPECT_EQ(ui.messages,
              (std::vector<std::string>{"The elevation value is not valid, defaulting to 0",
                                        "The elevation value is not valid, defaulting to 10"}));
    EXPECT_EQ(ws.digitising.sensor_offset, 10.0f);

    // A point moved off the grid's values is refused; deleting closes the points up.
    ASSERT_EQ(digitise(5), 5);
    hscroll_data_point_changed(ws, 2);
    view.texts["Text_east"] = "1950";
    view.texts["Text_north"] = "950";
    command_save_point(ws, 0);
    EXPECT_EQ(ui.last_message(), "The grid value must be defined");
    EXPECT_EQ(ws.digitising.x(2), 450.0);
    command_save_point(ws, 1);
    EXPECT_EQ(ws.digitising.num_digitised_points, 1);
    EXPECT_EQ(ws.digitising.num_samples, 0);
}

TEST_F(project_form, data_file_line_through_the_column_preview) {
    save_project();
    const std::string data =
        std::string(TRENSIL_SHARED_DATA_DIR) + "/usgs-map-tempest-mag-line/line_225401.csv";
    ui.file_answers.push_back(data);
    ASSERT_EQ(command_add_new_file(ws), 0);
    EXPECT_EQ(view.texts["Text_MAGINV_xpos"], "3");
    EXPECT_EQ(view.texts["Text_MAGINV_magpos"], "12");
    EXPECT_EQ(view.items["Combo_names"].size(), 14u);  // "N/A" and the 13 names
    EXPECT_EQ(view.items["Combo_names"][3], "easting_albers_m");
    EXPECT_EQ(view.tables["Grid_database"].size(), 65u);  // heading and 64 lines
    EXPECT_EQ(view.tables["Grid_database"][2][3], "357875.50");

    view.texts["Text_MAGINV_magpos"] = "13";    // the residual field instead
    view.texts["Text_MAGINV_zpos"] = "sensor";  // not a number: stays 9
    decode_column_positions(ws);
    EXPECT_EQ(ws.scratch.magpos, 13);
    EXPECT_EQ(ws.scratch.zpos, 9);

    ASSERT_EQ(command_load_locations(ws), 0);
    EXPECT_EQ(ws.scratch_profile.count, 2001);
    ASSERT_EQ(save_new_line("225401"), 0) << ui.last_message();
    const model_record& line = ws.project.models(1);
    EXPECT_EQ(line.profile.num_stations, 2001);
    EXPECT_EQ(line.magpos, 5);  // X, Y, DTM, Sensor, TMI
    EXPECT_NEAR(line.profile.mag_channels(observed_raw, 1), -89.022f, 1e-3);
    EXPECT_NEAR(line.profile.location(ground_row, 1), 45.83, 1e-9);
    EXPECT_EQ(ws.current_line, 1);
}

// A column that never holds a number (every data line is shorter than the magnetic column) is
// reported by the loading and no line is made from it.
TEST_F(project_form, data_file_whose_chosen_column_holds_nothing) {
    save_project();
    testing::write_all(dir.file("short.csv"), "East,North,Mag\n1,2\n3,4\n5,6\n");
    ui.file_answers.push_back(dir.file("short.csv"));
    ASSERT_EQ(command_add_new_file(ws), 0);
    EXPECT_EQ(ws.scratch.magpos, 3);
    EXPECT_EQ(command_load_locations(ws), -1);
    EXPECT_EQ(ui.last_message(), "No valid mag values were read");
    EXPECT_EQ(save_new_line("1000"), -1);
    EXPECT_EQ(ws.project.num_lines, 0);
    EXPECT_FALSE(std::filesystem::exists(dir.file("Line_1000.csv")));
}

TEST_F(project_form, names_line_fills_the_names_list) {
    ws.num_header_lines = 2;
    ws.header_lines(1) = "#East North TMI";
    ws.header_lines(2) = "1 2 3";
    struct row {
        const char* line;
        std::size_t entries;
    };
    const row rows[] = {{"1", 4}, {"2", 4}, {"65", 1}, {"name", 1}, {"0", 1}};
    for (const row& r : rows) {
        view.texts["Text_locations_name_line"] = r.line;
        decode_names(ws);
        EXPECT_EQ(view.items["Combo_names"].size(), r.entries) << r.line;
        EXPECT_EQ(view.items["Combo_names"][0], "N/A");
    }
    EXPECT_EQ(ws.scratch.names_line, 0);  // "0"
    view.texts["Text_locations_name_line"] = "1";
    decode_names(ws);
    EXPECT_EQ(view.items["Combo_names"][3], "TMI");
}

TEST_F(project_form, selecting_deleting_and_updating_lines) {
    save_project();
    ASSERT_EQ(digitise(20), 20);
    ASSERT_EQ(save_new_line("1010"), 0);
    ASSERT_EQ(save_new_line("1000"), 0);
    command_done_new_line(ws);
    ASSERT_EQ(ws.project.line_numbers(1), 1000);
    select_line(ws, 1);
    ASSERT_EQ(ws.current_line, 1);

    // An open modelling window with changes: No keeps the line, Yes moves and shows the new one.
    ws.modeller_is_open = [] { return true; };
    ws.modeller_has_changes = [this] { return modeller_changed; };
    modeller_changed = true;
    select_line(ws, 2);
    EXPECT_EQ(ui.questions.back(), "Discard the changes to the current model?");
    EXPECT_EQ(ws.current_line, 1);
    ui.yes_answers.push_back(true);
    select_line(ws, 2);
    EXPECT_EQ(ws.current_line, 2);
    EXPECT_EQ(opened.back(), dir.file("Line_1010.qvx"));

    // The modelling window saves the line with a body: the project shows it.
    model_record saved = ws.project.models(2);
    saved.num_bodies = 1;
    new_body_defaults(saved, 1, nullptr);
    saved.body(1).name = "Dyke";
    saved.body(1).top.value = -40.0f;
    ASSERT_TRUE(write_model_core(false, dir.file("Line_1010.qvx"), saved, ui));
    update_current_QVX_line(ws);
    EXPECT_EQ(view.items["Combo_body_list"], (std::vector<std::string>{"None", "All", "Dyke"}));
    EXPECT_EQ(view.tables["Grid_profile_lines"].at(2).at(4), "40.0");  // 40 m below the ground

    ui.yes_answers.push_back(true);
    command_delete_line(ws);
    EXPECT_EQ(ui.questions.back(), "Delete the line 1010");
    EXPECT_EQ(ui.titles.back(), "Confirm Deletion");
    EXPECT_EQ(ws.project.num_lines, 1);
    EXPECT_EQ(read_all(dir.file("area.qvj")).find("Line_1010"), std::string::npos);
}

TEST_F(project_form, a_model_file_added_as_a_line) {
    save_project();
    const std::string model =
        std::string(TRENSIL_SOURCE_DIR) + "/examples/tempest/tempest_line_225401.qvx";
    ui.file_answers.push_back(dir.file("none.qvx"));
    EXPECT_EQ(command_add_line_model(ws), -1);
    EXPECT_EQ(ui.last_message(), "That file does not exist");
    ui.file_answers.push_back(model);
    ui.input_answers.push_back("225401");
    ASSERT_EQ(command_add_line_model(ws), 0);
    ASSERT_EQ(ws.current_line, 1);
    EXPECT_EQ(ws.project.model_paths(1), model);  // far from the project: kept absolute
    EXPECT_EQ(ws.project.profiles(1).count, 2001);
    EXPECT_EQ(view.items["Combo_body_list"].size(), 5u);  // "None", "All" and three bodies
    EXPECT_EQ(view.tables["Grid_profile_lines"].at(1).at(0), "225401");
    graph_profile_pointer(ws, 1234.5678, 12.3);
    EXPECT_EQ(view.status, "Distance: 1234.57  Value: 12.3000");
}

TEST_F(project_form, project_files_that_cannot_be_read) {
    EXPECT_EQ(open_project_file(ws, dir.file("none.qvj")), -1);
    EXPECT_EQ(ui.last_message(), "That file does not exist");
    testing::write_all(dir.file("bad.qvj"), "Not a project\r\n");
    EXPECT_EQ(open_project_file(ws, dir.file("bad.qvj")), -1);
    EXPECT_EQ(ui.messages,
              (std::vector<std::string>{"That file does not exist",
                                        "The specified file does not have the corrext format",
                                        "There was a problem reading that file"}));
    EXPECT_EQ(grid_file_changed(ws, 1, dir.file("bad.qvj")), -1);
    EXPECT_EQ(ui.last_message(), "An error occured while loading the grid file: not a grid");
}

// A project never saved is kept as a recovery copy once it has a line, comes back after the run
// dies, and leaves no copy once it is saved.
TEST_F(project_form, an_unsaved_project_is_kept_and_recovered_after_a_crash) {
    using namespace std::chrono_literals;
    auto session = std::make_unique<recovery_session>(dir.file("state"));
    start_project_autosave(ws, *session);
    const auto t = std::chrono::steady_clock::now();
    // The timer sees a change at `at`, takes the copy after the pause, and hears how it went.
    auto tick = [](project_workspace& w, std::chrono::steady_clock::time_point at) {
        for (auto when : {at, at + 2s, at + 2s}) {
            project_autosave_tick(w, when);
            w.autosave.slot.finish();
        }
    };
    tick(ws, t);
    const std::string copy = ws.autosave.slot.copy_path();
    EXPECT_FALSE(std::filesystem::exists(copy));  // an empty project holds nothing to lose

    const std::string model =
        std::string(TRENSIL_SOURCE_DIR) + "/examples/tempest/tempest_line_225401.qvx";
    ui.file_answers.push_back(model);
    ui.input_answers.push_back("225401");
    ASSERT_EQ(command_add_line_model(ws), 0);
    tick(ws, t + 10s);
    ASSERT_TRUE(std::filesystem::exists(copy));

    session.reset();  // the run ends without the window closing
    session = std::make_unique<recovery_session>(dir.file("state"));
    titled_platform ui2;
    fake_project_view view2;
    recording_graph_control graph2;
    project_workspace again{ui2, settings, open_test_grid};
    again.view = &view2;
    again.profile_graph = &graph2;
    project_form_load(again);
    start_project_autosave(again, *session);
    const auto offered = copies_to_offer_at_start(*session);
    ASSERT_EQ(offered.size(), 1u);
    EXPECT_EQ(offered[0].info.kind, recovery_kind::project);
    EXPECT_NE(recovery_offer_text(offered[0]).find("a new project that was never saved"),
              std::string::npos);
    ASSERT_EQ(recover_project(again, offered[0]), 0);
    ASSERT_EQ(again.project.num_lines, 1);
    EXPECT_EQ(again.project.model_paths(1), model);
    EXPECT_EQ(again.project.line_numbers(1), 225401);
    EXPECT_TRUE(again.project_file.empty());

    tick(again, t + 20s);  // its own copy replaces the old one
    EXPECT_FALSE(std::filesystem::exists(copy));
    EXPECT_TRUE(std::filesystem::exists(again.autosave.slot.copy_path()));
    ui2.file_answers.push_back(dir.file("area"));
    ASSERT_EQ(file_save_project(again), 0);
    again.autosave.slot.finish();
    EXPECT_FALSE(std::filesystem::exists(again.autosave.slot.copy_path()));
    tick(again, t + 30s);
    EXPECT_FALSE(std::filesystem::exists(again.autosave.slot.copy_path()));
}

}  // namespace
}  // namespace trensil
