// The project file: round trip, the repairs of the numbering line, the optional sample settings,
// and the format and write failures with their messages.
#include <gtest/gtest.h>

#include <tuple>

#include "io/project_file.h"
#include "model_test_files.h"
#include "support/scripted_platform.h"

namespace trensil {
namespace {

using model_testing::failing_writes;
using model_testing::read_text;
using model_testing::scratch_folder;
using model_testing::write_text;

struct project_file : ::testing::Test {
    scratch_folder dir{"project"};
    std::string path = dir.file("area.qvj");
    scripted_platform ui;
    project_definition project;
    std::int16_t status = 99;

    void read_text_as_project(const std::string& text) {
        write_text(path, text);
        read_project(path, project, status, ui);
    }
};

const std::string grids_and_two_lines =
    "mag.grd\r\ndtm.tif\r\n\r\n 2 \r\n 1020 \r\n/lines/l1020.qvx\r\n/lines/l1020.bmp\r\n"
    " 1000 \r\n/lines/l1000.qvx\r\n/lines/l1000.bmp\r\n";

TEST_F(project_file, round_trip_keeps_every_field) {
    project.first_line_number = 500;
    project.line_number_step = 20;
    project.grid_files = {"/grids/mag.ers", "/grids/dem.tif", ""};
    project.num_lines = 3;
    project.allocate_lines(3);
    for (int i = 1; i <= 3; ++i) {
        project.line_numbers(i) = 500 + 20 * i;
        project.model_paths(i) = "/lines/Line_" + std::to_string(500 + 20 * i) + ".qvx";
        project.picture_paths(i) = "/lines/Line " + std::to_string(i) + ", west.bmp";
    }
    project.sample_grid = {1, 0, 1};
    project.value_is_depth = 0;
    project.value_is_height = 1;
    ASSERT_TRUE(write_project(path, project, ui));

    project_definition back;
    read_project(path, back, status, ui);
    ASSERT_EQ(status, 0);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(back.first_line_number, 500);
    EXPECT_EQ(back.line_number_step, 20);
    EXPECT_EQ(back.grid_files, project.grid_files);
    ASSERT_EQ(back.num_lines, 3);
    EXPECT_EQ(back.line_numbers.hi(), 3 + 64);
    EXPECT_EQ(back.models.hi(), 3 + 64);
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(back.line_numbers(i), project.line_numbers(i));
        EXPECT_EQ(back.model_paths(i), project.model_paths(i));
        EXPECT_EQ(back.picture_paths(i), project.picture_paths(i));
    }
    EXPECT_TRUE(back.sample_settings_present);
    EXPECT_EQ(back.sample_grid, project.sample_grid);
    EXPECT_EQ(back.value_is_height, 1);
    // The highest number read is 560: the next one is a step above it.
    EXPECT_EQ(back.next_line_number, 580);
    EXPECT_EQ(read_text(path).substr(0, 40), "Trensil Project Version 1.0\r\n 500  20 \r\n");
}

TEST_F(project_file, numbering_line_repairs_and_absent_sample_settings) {
    // Numbering line, first number, step, next number (none of the lines is numbered above 10000).
    const std::tuple<std::string, int, int, int> cases[] = {
        {"0 0", 10000, 10, 10000},
        {"-5 abc", 1000, 10, 1030},
        {"x -3", 1000, 10, 1030},
        // A step between 0 and 1 is no whole step: 10, as it would read back after writing.
        {"500 0.4", 500, 10, 1030},
        {"0.3 2.6", 10000, 3, 10000}};
    for (const auto& [numbering, first, step, next] : cases) {
        SCOPED_TRACE(numbering);
        read_text_as_project("Trensil Project Version 1.0\r\n" + numbering + "\r\n" +
                             grids_and_two_lines);
        ASSERT_EQ(status, 0);
        EXPECT_EQ(project.first_line_number, first);
        EXPECT_EQ(project.line_number_step, step);
        EXPECT_EQ(project.next_line_number, next);
        EXPECT_FALSE(project.sample_settings_present);
        EXPECT_EQ(project.grid_files[2], "");
        EXPECT_EQ(project.model_paths(2), "/lines/l1000.qvx");

        // What was read is written and reads back the same.
        ASSERT_TRUE(write_project(path, project, ui));
        project_definition back;
        read_project(path, back, status, ui);
        EXPECT_EQ(back.first_line_number, first);
        EXPECT_EQ(back.line_number_step, step);
    }
}

TEST_F(project_file, format_failures_and_short_files_report_and_a_missing_file_does_not) {
    read_project(dir.file("none.qvj"), project, status, ui);
    EXPECT_EQ(status, -1);
    EXPECT_TRUE(ui.messages.empty());
    const std::string head = "Trensil Project Version 1.0\r\n1000 10\r\na\r\nb\r\nc\r\n";
    const std::string format = "The specified file does not have the corrext format";
    const std::pair<std::string, std::string> cases[] = {
        {"Some Other Project\r\n1000 10\r\n" + grids_and_two_lines, format},
        {head + "-2\r\n", format},
        {head + "many\r\n", format},
        {head + "5\r\n1\r\n", "An error occurred while saving the file: Input past end of file"}};
    for (const auto& [text, message] : cases) {
        SCOPED_TRACE(text);
        ui.messages.clear();
        read_text_as_project(text);
        EXPECT_EQ(status, -1);
        EXPECT_EQ(ui.messages, std::vector<std::string>{message});
    }
}

TEST_F(project_file, failed_write_keeps_old_file) {
    write_text(path, "old project");
    {
        failing_writes full_disk;
        EXPECT_FALSE(write_project(path, project, ui));
    }
    EXPECT_EQ(read_text(path), "old project");
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0], "An error occurred while saving the file: File too large");
}

}  // namespace
}  // namespace trensil
