// Column names of data files: the names line's entries, the preview table, and the columns
// recognised from the names that real survey files carry.
#include <gtest/gtest.h>

#include <fstream>

#include "project/column_names.h"
#include "test_paths.h"

namespace trensil {
namespace {

using names = std::vector<std::string>;

TEST(names_line, entries_after_the_comment_marks) {
    EXPECT_EQ(decode_names_line("#East North TMI"), (names{"East", "North", "TMI"}));
    EXPECT_EQ(decode_names_line("//;, X,Y,\tZ "), (names{"X", "Y", "Z"}));
    EXPECT_EQ(decode_names_line("#"), names{});
}

TEST(names_line, preview_table_is_as_wide_as_the_widest_line) {
    const auto table = column_table({"East,North,Mag", "1,2,3,4", "5 6"});
    ASSERT_EQ(table.size(), 4u);
    EXPECT_EQ(table[0], (names{"Line", "1", "2", "3", "4"}));
    EXPECT_EQ(table[1], (names{"1", "East", "North", "Mag"}));
    EXPECT_EQ(table[2], (names{"2", "1", "2", "3", "4"}));
    EXPECT_EQ(table[3], (names{"3", "5", "6"}));
}

std::string first_line(const std::string& relative) {
    std::ifstream in(std::string(TRENSIL_SHARED_DATA_DIR) + "/" + relative);
    std::string line;
    std::getline(in, line);
    return line;
}

TEST(column_guess, real_survey_headings) {
    struct row {
        std::string heading;
        column_roles expected;  // x, y, sensor, ground, mag, gravity
    };
    const row rows[] = {
        {first_line("usgs-map-tempest-mag-line/line_225401.csv"), {3, 4, 9, 11, 12, 0}},
        {first_line("osborne-mag-lines/line_5676.csv"), {4, 5, 6, 0, 7, 0}},
        {first_line("geoscixyz-kimberlite-mag/TKC_line02_N7135208.csv"), {1, 2, 3, 0, 4, 0}},
        {first_line("gmt-ship-gravity-profile/ship_03_utm25s.csv"), {3, 4, 0, 0, 0, 5}},
        {first_line("southern-africa-gravity/profile_bushveld_28.9E.csv"), {3, 4, 5, 0, 0, 6}},
        {"      X,      Y,      DTM,   Sensor,      TMI", {1, 2, 4, 3, 5, 0}},
        {"Easting Northing Elevation Mag Grav", {1, 2, 3, 0, 4, 5}},
        {"fid radar_altimeter_m e n", {0, 0, 0, 0, 0, 0}},
    };
    for (const row& r : rows) {
        ASSERT_FALSE(r.heading.empty());
        const column_roles c = guess_columns(decode_names_line(r.heading));
        const column_roles& e = r.expected;
        EXPECT_EQ((std::vector<int>{c.xpos, c.ypos, c.zpos, c.dtm, c.magpos, c.gravpos}),
                  (std::vector<int>{e.xpos, e.ypos, e.zpos, e.dtm, e.magpos, e.gravpos}))
            << r.heading;
    }
}

}  // namespace
}  // namespace trensil
