#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "io/profile_data_export.h"
#include "support/scratch_dir.h"
#include "support/scripted_platform.h"

namespace trensil {
namespace {

using testing::read_all;
using testing::scratch_dir;
using testing::write_all;

std::vector<std::string> lines_of(const std::string& path) {
    std::istringstream in(read_all(path));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

// Two stations with distinct values in every row the file can show.
model_record two_stations() {
    model_record model;
    reset_model(model);
    model.data_file = "/survey/line 7.csv";
    profile_block& p = model.profile;
    p.allocate_stations(2);
    for (int i = 1; i <= 2; ++i) {
        p.location(easting_row, i) = 1000.04 + i;
        p.location(northing_row, i) = 2000.0 + i;
        p.location(sensor_row, i) = 50.25;
        p.location(ground_row, i) = 40.0 + i;
        p.profile_distance(i) = 10.0f * static_cast<float>(i - 1);
        for (int r = 1; r <= 10; ++r) {
            p.mag_channels(r, i) = static_cast<float>(100 * r + i);
            p.grav_channels(r, i) = static_cast<float>(r) + 0.5f * static_cast<float>(i);
        }
    }
    return model;
}

TEST(export_profile_data, columns_follow_the_channels_present_and_the_displayed_gradient) {
    scratch_dir dir("iodata_export");
    std::string error;
    model_record mag = two_stations();
    mag.magpos = 3, mag.dtm = 4;
    mag.vg_component_1 = 1, mag.vg_component_2 = 2;  // total gradient shown: rows 5 and 10
    ASSERT_EQ(write_profile_data(mag, dir.file("mag.csv"), error), 0) << error;
    auto lines = lines_of(dir.file("mag.csv"));
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], "#Profile model data for /survey/line 7.csv");
    EXPECT_EQ(lines[1],
              "East, North, Sensor, Dist, DTM, TMI_Obs, TMI_Obs_Res, TMI_Obs_TG, "
              "TMI_Mod, TMI_Mod_Res, TMI_Mod_TG");
    EXPECT_EQ(lines[3],
              "1002.0, 2002.0, 50.3, 10.0, 42.0, 102.0000, 202.0000, 502.0000, "
              "602.0000, 702.0000, 1002.0000");

    // Gravity only: no TMI columns, and the gravity gradient rows stay the vertical ones.
    model_record grav = two_stations();
    grav.magpos = 0, grav.gravpos = 5, grav.vg_component_2 = 2;
    ASSERT_EQ(write_profile_data(grav, dir.file("grav.csv"), error), 0) << error;
    lines = lines_of(dir.file("grav.csv"));
    EXPECT_EQ(lines[1],
              "East, North, Sensor, Dist, Grav_Obs, Grav_Obs_Res, Grav_Obs_VG, "
              "Grav_Mod, Grav_Mod_Res, Grav_Mod_VG");
    EXPECT_EQ(lines[2],
              "1001.0, 2001.0, 50.3, 0.0, 1.5000, 2.5000, 3.5000, 6.5000, 7.5000, 8.5000");

    // Before any calculation the computed rows print as zeros.
    model_record fresh;
    reset_model(fresh);
    fresh.profile.allocate_stations(1);
    fresh.profile.mag_channels(observed_raw, 1) = 57000.5f;
    ASSERT_EQ(write_profile_data(fresh, dir.file("fresh.csv"), error), 0);
    EXPECT_EQ(lines_of(dir.file("fresh.csv"))[2],
              "0.0, 0.0, 0.0, 0.0, 57000.5000, 0.0000, 0.0000, 0.0000, 0.0000, 0.0000");
}

TEST(export_profile_data, menu_command_asks_confirms_and_reports) {
    scratch_dir dir("iodata_export_menu");
    model_record model = two_stations();
    model.magpos = 3;
    scripted_platform ui;

    EXPECT_EQ(export_profile_data(model_record{}, ui), -1);  // no stations: a beep
    EXPECT_EQ(ui.beeps, 1);
    ui.file_answers.push_back(std::nullopt);
    EXPECT_EQ(export_profile_data(model, ui), -1);
    EXPECT_TRUE(ui.messages.empty());

    ui.file_answers.push_back(dir.file("line7"));  // ".csv" is added
    EXPECT_EQ(export_profile_data(model, ui), 0);
    EXPECT_EQ(ui.messages, std::vector<std::string>{"Output complete"});
    EXPECT_EQ(lines_of(dir.file("line7.csv")).size(), 4u);

    write_all(dir.file("keep.csv"), "old");
    ui.file_answers = {dir.file("keep.csv"), dir.file("keep.csv")};
    ui.yes_answers = {false, true};
    EXPECT_EQ(export_profile_data(model, ui), -1);
    EXPECT_EQ(ui.questions.back(), "That file already, exists, overwrite?");
    EXPECT_EQ(read_all(dir.file("keep.csv")), "old");
    EXPECT_EQ(export_profile_data(model, ui), 0);
    EXPECT_NE(read_all(dir.file("keep.csv")), "old");

    ui.file_answers.push_back(dir.file("no/such/folder/out.csv"));
    EXPECT_EQ(export_profile_data(model, ui), -1);
    EXPECT_TRUE(ui.messages.back().starts_with("An error occurred while writing the file: "));
}

}  // namespace
}  // namespace trensil
