// The files of a new line: its csv with dummies, the header-only model that reads it, and its
// place in the project's list.
#include <gtest/gtest.h>

#include <cmath>

#include "io/load_line.h"
#include "io/model_file_reader.h"
#include "project/line_files.h"
#include "response/response_driver.h"
#include "support/scratch_dir.h"
#include "support/scripted_platform.h"
#include "test_grids.h"

namespace trensil {
namespace {

using testing::read_all;
using testing::scratch_dir;

// Five stations 6 m apart along y = 0; a magnetic grid whose cell east of x 1025 has no value.
struct line_fixture : ::testing::Test {
    scripted_platform ui;
    array1<double> x{1, 5}, y{1, 5};
    memory_grid mag{testing::square_cells(4, 1, 995.0, 5.0, 10.0),
                    {100, 110, 120, testing::no_value}};
    line_fixture() {
        for (int i = 1; i <= 5; ++i) x(i) = 1000.0 + 6.0 * (i - 1), y(i) = 0.0;
    }
};

TEST_F(line_fixture, csv_has_the_columns_present_and_a_dummy_where_a_value_is_undefined) {
    line_sampling s;
    s.grids[0] = &mag;
    line_station_values v;
    gather_line_values(x, y, 5, s, nullptr, v);
    EXPECT_TRUE(v.has_mag);
    EXPECT_FALSE(v.has_ground);
    EXPECT_FALSE(v.has_sensor);
    EXPECT_EQ(line_csv_text(v),
              "      X,      Y,      TMI\r\n"
              "1000.00,0.00,100.0000\r\n"
              "1006.00,0.00,106.0000\r\n"
              "1012.00,0.00,112.0000\r\n"
              "1018.00,0.00,118.0000\r\n"
              "1024.00,0.00,       * ,\r\n");

    // A dummy in the middle keeps one field a column.
    v.has_ground = v.has_sensor = true;
    v.ground(1) = grid_undefined;
    v.sensor(1) = 12.25;
    v.mag(1) = -0.5;
    const std::string head =
        "      X,      Y,      DTM,   Sensor,      TMI\r\n"
        "1000.00,0.00,       * ,12.25,-0.5000\r\n";
    EXPECT_EQ(line_csv_text(v).substr(0, head.size()), head);
}

TEST_F(line_fixture, sensor_grid_as_height_depth_or_elevation) {
    memory_grid two{mag.geometry(), {2, 2, 2, 2}};
    memory_grid ten{mag.geometry(), {10, 10, 10, 10}};
    struct row {
        bool height, depth;
        double sensor;
    };
    const row rows[] = {{true, false, 12}, {false, true, 8}, {false, false, 2}};
    for (const row& r : rows) {
        line_sampling s;
        s.grids = {nullptr, &ten, &two};
        s.value_is_height = r.height;
        s.value_is_depth = r.depth;
        line_station_values v;
        gather_line_values(x, y, 5, s, nullptr, v);
        EXPECT_EQ(v.ground(1), 10.0);
        EXPECT_EQ(v.sensor(1), r.sensor) << r.height << r.depth;
    }
    // No grids: the surface elevation, and the sensor offset above it; no columns.
    line_sampling constants;
    constants.surface_elevation = 40.0f;
    constants.sensor_offset = 25.0f;
    line_station_values v;
    gather_line_values(x, y, 5, constants, nullptr, v);
    EXPECT_EQ(v.ground(3), 40.0);
    EXPECT_EQ(v.sensor(3), 65.0);
    EXPECT_FALSE(v.has_ground || v.has_sensor || v.has_mag);
}

// The header-only model reads its csv through the data reader: the heading row is not a station,
// a row with a dummy is dropped, and the line computes.
TEST_F(line_fixture, header_only_model_reads_its_csv_and_computes) {
    scratch_dir dir("line_model");
    line_sampling s;
    s.grids[0] = &mag;
    s.surface_elevation = 30.0f;
    line_station_values v;
    gather_line_values(x, y, 5, s, nullptr, v);
    ASSERT_TRUE(write_line_csv(dir.file("Line_10.csv"), v, ui));

    model_record scratch;
    reset_model(scratch);
    scratch.data_file = "/elsewhere/data.csv";
    scratch.magpos = 7;
    scratch.transform.x_input_origin = 500.0;  // the data's own transform: not for the csv
    ASSERT_TRUE(write_line_model(dir.file("Line_10.qvx"), dir.file("Line_10.csv"), v, scratch, ui));
    EXPECT_EQ(scratch.data_file, "/elsewhere/data.csv");
    EXPECT_EQ(scratch.magpos, 7);
    EXPECT_EQ(scratch.transform.x_input_origin, 500.0);
    EXPECT_EQ(read_all(dir.file("Line_10.qvx")).find("QVX Display"), std::string::npos);

    model_record line;
    reset_model(line);
    file_search_state search;
    transform_state transforms;
    load_line_services services{ui, search, transforms, nullptr};
    std::int16_t status = -1;
    load_line(dir.file("Line_10.qvx"), line, "", status, services);
    ASSERT_EQ(status, 0) << (ui.messages.empty() ? "" : ui.messages.back());
    EXPECT_EQ(line.nhead, 1);
    EXPECT_EQ(line.names_line, 1);
    EXPECT_EQ(line.magpos, 3);
    EXPECT_EQ(line.num_bodies, 0);
    ASSERT_EQ(line.profile.num_stations, 4);  // the fifth had no magnetic value
    EXPECT_EQ(line.profile.location(easting_row, 1), 1000.0);
    EXPECT_EQ(line.profile.mag_channels(observed_raw, 4), 118.0f);

    response_state response;
    response.ui = &ui;
    calculate_display_channels(line, response);
    EXPECT_EQ(line.profile.mag_channels(computed_raw, 2), 0.0f);  // no bodies, no anomaly
    EXPECT_TRUE(std::isfinite(line.profile.mag_channels(observed_level, 2)));
}

TEST(project_lines, entered_in_number_order_and_closed_up_on_removal) {
    project_definition p;
    const int numbers[] = {1010, 1000, 1020, 1010};
    const int places[] = {1, 1, 3, 3};  // an equal number goes after the one there
    for (int k = 0; k < 4; ++k) {
        const std::string name = "m" + std::to_string(k);
        EXPECT_EQ(enter_line(p, numbers[k], name + ".qvx", name + ".bmp"), places[k]);
    }
    ASSERT_EQ(p.num_lines, 4);
    const int order[] = {1000, 1010, 1010, 1020};
    const char* models[] = {"m1.qvx", "m0.qvx", "m3.qvx", "m2.qvx"};
    for (int i = 1; i <= 4; ++i) {
        EXPECT_EQ(p.line_numbers(i), order[i - 1]);
        EXPECT_EQ(p.model_paths(i), models[i - 1]);
    }
    EXPECT_EQ(p.picture_paths(3), "m3.bmp");
    EXPECT_EQ(p.next_line_number, 1030);
    EXPECT_EQ(p.line_numbers.hi(), 4 + 64);

    remove_line(p, 2);
    ASSERT_EQ(p.num_lines, 3);
    EXPECT_EQ(p.model_paths(2), "m3.qvx");
    EXPECT_EQ(p.line_numbers(3), 1020);
    EXPECT_EQ(p.model_paths(4), "");
}

TEST(project_lines, paths_kept_relative_to_the_project_folder) {
    scratch_dir dir("project_paths");
    const std::string project = dir.file("area.qvj");
    testing::write_all(dir.file("Line_10.qvx"), "x");
    EXPECT_EQ(project_relative_path(project, dir.file("lines/Line_20.qvx")), "lines/Line_20.qvx");
    EXPECT_EQ(project_relative_path(project, "/survey/other.qvx"), "/survey/other.qvx");
    EXPECT_EQ(project_relative_path("area.qvj", "lines/Line_10.qvx"), "lines/Line_10.qvx");
    const std::string beside = dir.path().parent_path().string() + "/tempest/line.qvx";
    EXPECT_EQ(project_relative_path(project, beside), "../tempest/line.qvx");
    EXPECT_EQ(resolve_line_path(project, "Line_10.qvx"), dir.file("Line_10.qvx"));
    EXPECT_EQ(resolve_line_path(project, "missing.qvx"), "missing.qvx");
    EXPECT_EQ(resolve_line_path(project, "/abs/a.qvx"), "/abs/a.qvx");
    EXPECT_EQ(line_file_stem(project, 1010), dir.file("Line_1010"));
}

}  // namespace
}  // namespace trensil
