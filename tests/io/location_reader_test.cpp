#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "data_intake_files.h"
#include "io/location_reader.h"
#include "support/scripted_platform.h"
#include "support/text_tokens.h"
#include "test_paths.h"

namespace trensil {
namespace {

using testing::model_reading;
using testing::scratch_dir;
using testing::write_all;

// Writes `text` as a data file and reads it as the loading forms do: counting pass, then the
// storing pass when there are stations. `adjust` changes the definition first.
template <class Adjust>
model_record read_text(const std::string& text, Adjust adjust, scripted_platform& ui,
                       const transform_state& transforms = {}) {
    scratch_dir dir("iodata_read");
    write_all(dir.file("a.dat"), text);
    model_record m = model_reading(dir.file("a.dat"));
    adjust(m);
    EXPECT_EQ(read_location_data(0, m, m.profile, transforms, ui), 0);
    if (m.profile.num_stations >= 1) {
        EXPECT_EQ(read_location_data(1, m, m.profile, transforms, ui), 0);
    }
    return m;
}
model_record read_text(const std::string& text, scripted_platform& ui) {
    return read_text(
        text, [](model_record&) {}, ui);
}

std::vector<double> row_of(const model_record& m, int row) {
    std::vector<double> v;
    for (int i = 1; i <= m.profile.num_stations; ++i) v.push_back(m.profile.location(row, i));
    return v;
}

TEST(location_grouping, nstep_comments_and_blank_lines) {
    scripted_platform ui;
    std::string text = "x y mag\r\n";
    for (int i = 1; i <= 10; ++i) text += std::to_string(i) + " 0 5\r\n";
    // From the first data line, the third of each group of three is the station.
    auto every_third = read_text(
        text, [](model_record& m) { m.nhead = 2, m.nstep = 3; }, ui);
    EXPECT_EQ(row_of(every_third, easting_row), (std::vector<double>{3, 6, 9}));

    // Comment lines do not count; blank lines count but a station must be a non-empty line.
    auto pairs = read_text(
        "1 0 5\r\n! note\r\n2 0 5\r\n\\ note\r\n3 0 5\r\n4 0 5\r\n\r\n\r\n5 0 5\r\n",
        [](model_record& m) { m.nstep = 2; }, ui);
    EXPECT_EQ(row_of(pairs, easting_row), (std::vector<double>{2, 4, 5}));
    EXPECT_TRUE(ui.messages.empty());
}

TEST(location_rejection, dummies_and_short_lines) {
    scripted_platform ui;
    // "*" or text in a used column drops the line; text in an unused column does not.
    auto dropped = read_text("1 10 *\r\n2 20 7 label\r\n3 x 8\r\n4 40 9 *\r\n", ui);
    EXPECT_EQ(row_of(dropped, easting_row), (std::vector<double>{2, 4}));

    // A short line keeps earlier values (-1e32 before any); a dropped line's values stay too.
    auto shorts = read_text("1 10\r\n2 20 7\r\n3 30\r\n4 41 bad\r\n5\r\n", ui);
    const profile_block& p = shorts.profile;
    ASSERT_EQ(p.num_stations, 4);
    EXPECT_EQ(p.mag_channels(observed_raw, 1), -1e32f);
    EXPECT_EQ(p.mag_channels(observed_raw, 3), 7.0f);
    EXPECT_EQ(p.location(northing_row, 4), 41.0);
    EXPECT_TRUE(ui.messages.empty());
}

TEST(location_columns, shared_chained_and_comma_separated_columns) {
    scripted_platform ui;
    // One token feeds both channels, and x may feed the ground as well.
    auto shared = read_text(
        "5 6 7 8\r\n", [](model_record& m) { m.gravpos = 3, m.dtm = 1; }, ui);
    EXPECT_EQ(shared.profile.grav_channels(observed_raw, 1), 7.0f);
    EXPECT_EQ(shared.profile.location(ground_row, 1), 5.0);
    // With xpos equal to ypos the token goes to x and y is never set.
    auto chained = read_text(
        "5 6 7 8\r\n", [](model_record& m) { m.ypos = 1; }, ui);
    EXPECT_EQ(chained.profile.location(northing_row, 1), -1e32);

    // An empty csv field keeps the columns in place, and drops its line when it is used.
    auto csv = read_text(
        "e,n,note,mag\n1,10,,100\n2,20,ab,200\n3,,x,300\n",
        [](model_record& m) { m.nhead = 2, m.magpos = 4; }, ui);
    EXPECT_EQ(row_of(csv, easting_row), (std::vector<double>{1, 2}));
    EXPECT_EQ(csv.profile.mag_channels(observed_raw, 1), 100.0f);
}

TEST(location_columns, words_and_numbers_follow_the_shared_text_rules) {
    // The reader splits and converts without copying words; the result must be what take_word,
    // is_numeric_text and parse_number make of the same line.
    for (const std::string text :
         {"1 2 3", " 1.5,\t-2.25 , 3e2", "+4 .5 -.5", "1,,3", ",2,3", "1e 2 3", "1d2 2.5D-1 3",
          "-0 00012 3.", "12345678901234567 2 3", "0.1 0.2 0.30000000000000004", "5 6 7x", "- 1 2",
          "9.999999999999999e22 1 1"}) {
        std::string rest = text;
        std::vector<double> expected;
        for (int k = 0; k < 3 && !rest.empty(); ++k) {
            const std::string word = take_word(rest);
            if (!is_numeric_text(word)) break;
            expected.push_back(parse_number(word));
        }
        scripted_platform ui;
        model_record m = read_text(text + "\r\n", ui);
        ASSERT_EQ(m.profile.num_stations, expected.size() == 3 ? 1 : 0) << text;
        if (expected.size() != 3) continue;
        EXPECT_EQ(m.profile.location(easting_row, 1), expected[0]) << text;
        EXPECT_EQ(m.profile.location(northing_row, 1), expected[1]) << text;
        EXPECT_EQ(m.profile.mag_channels(observed_raw, 1), static_cast<float>(expected[2])) << text;
    }
}

TEST(location_line_ends, cr_lf_only_and_marked_files_read_alike) {
    const std::string lines[] = {"1\t10 100", "2 20\t200", "3 30 300"};
    scripted_platform ui;
    // CR LF, CR, LF (tolerant reader), and a byte-order mark before CR LF (tolerant reader, which
    // takes CR LF as one line end and drops the mark's three bytes).
    for (const std::string end : {"\r\n", "\r", "\n", "bom"}) {
        std::string text = end == "bom" ? "\xEF\xBB\xBF" : "";
        for (const std::string& l : lines) text += l + (end == "bom" ? "\r\n" : end);
        model_record m = read_text(text, ui);
        EXPECT_EQ(row_of(m, easting_row), (std::vector<double>{1, 2, 3})) << end;
        EXPECT_EQ(m.profile.mag_channels(observed_raw, 3), 300.0f) << end;
    }
    EXPECT_TRUE(ui.messages.empty());

    // Tabs stay in plain lines (they still separate words); the tolerant reader makes them
    // blanks and drops control characters and bytes from 127 up, also across read blocks.
    scratch_dir dir("iodata_lines");
    write_all(dir.file("cr.dat"), "1\t2\r\n");
    const std::string long_word(3 << 20, '7');
    write_all(dir.file("lf.dat"), "1\t2 \x01\x80" + long_word + "\n\n9 8\n");
    location_line_reader reader;
    ASSERT_TRUE(reader.open(dir.file("cr.dat")));
    EXPECT_FALSE(reader.tolerant());
    EXPECT_EQ(reader.read_line(), "1\t2");
    ASSERT_TRUE(reader.open(dir.file("lf.dat")));
    EXPECT_TRUE(reader.tolerant());
    EXPECT_EQ(reader.read_line(), "1 2 " + long_word);
    EXPECT_EQ(reader.read_line(), "");
    EXPECT_EQ(reader.read_line(), "9 8");
    EXPECT_TRUE(reader.at_end());
    EXPECT_EQ(reader.read_line(), "");
}

TEST(location_ranges, counting_pass_ranges_allocation_and_empty_columns) {
    scripted_platform ui;
    auto m = read_text(
        "5 50 1 7\r\n3 70 2 6\r\n9 60 3 8\r\n", [](model_record& d) { d.zpos = 4; }, ui);
    const profile_block& p = m.profile;
    EXPECT_EQ(p.num_stations, 3);
    EXPECT_EQ(p.location.col_hi(), 3);
    EXPECT_EQ(p.mag_channels.row_hi(), 10);
    EXPECT_EQ(std::vector<double>({p.xmin, p.xmax, p.ymin, p.ymax}),
              std::vector<double>({3, 9, 50, 70}));
    EXPECT_EQ(std::vector<float>({p.zmin, p.zmax, p.mag_min, p.mag_max}),
              std::vector<float>({6, 8, 1, 3}));
    // A column not asked for keeps what the first station's scratch held.
    EXPECT_EQ(p.dtm_max, -1e32f);
    EXPECT_EQ(check_location_ranges(m, p, ui), 0);

    // Counting only: the number and nothing else.
    scratch_dir dir("iodata_count");
    write_all(dir.file("a.dat"), "5 50 1\r\n3 70 2\r\n");
    model_record counted = model_reading(dir.file("a.dat"));
    EXPECT_EQ(read_location_data(-1, counted, counted.profile, {}, ui), 0);
    EXPECT_EQ(counted.profile.num_stations, 2);
    EXPECT_TRUE(counted.profile.location.empty());

    auto empty = read_text(
        "1 2\r\n3 4\r\n", [](model_record& d) { d.zpos = 5, d.dtm = 6, d.gravpos = 7; }, ui);
    EXPECT_EQ(check_location_ranges(empty, empty.profile, ui), -1);
    EXPECT_EQ(ui.messages,
              (std::vector<std::string>{
                  "No valid z coordinate values were read", "No valid DTM values were read",
                  "No valid mag values were read", "No valid gravity values were read"}));
}

TEST(location_transform, active_transform_moves_x_y_and_sensor_once) {
    transform_state transforms;
    transforms.program_transform.x_output_origin = 1000.0;
    transforms.program_transform.z_shift = 1.0;
    prepare_transform(transforms.program_transform);
    scripted_platform ui;
    auto zdm = [](model_record& m) { m.zpos = 3, m.dtm = 4, m.magpos = 5; };
    auto m = read_text("10 20 30 40 50\r\n11 21\r\n", zdm, ui, transforms);
    const profile_block& p = m.profile;
    EXPECT_EQ(row_of(m, easting_row), (std::vector<double>{1010, 1011}));
    EXPECT_EQ(p.location(ground_row, 1), 40.0);
    EXPECT_EQ(p.mag_channels(observed_raw, 1), 50.0f);
    // The short line keeps the sensor as read and it is shifted once, not once more.
    EXPECT_EQ(row_of(m, sensor_row), (std::vector<double>{31, 31}));
    EXPECT_EQ(p.xmin, 1010.0);

    transforms.program_transform.active = 0;  // inactive: not applied whatever the fields say
    EXPECT_EQ(read_text("10 20 30\r\n", zdm, ui, transforms).profile.location(easting_row, 1),
              10.0);
}

TEST(location_failures, missing_file_short_header_and_overflow) {
    scripted_platform ui;
    model_record gone = model_reading("/nonexistent/iodata/none.dat");
    EXPECT_EQ(read_location_data(0, gone, gone.profile, {}, ui), -1);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_TRUE(ui.messages[0].starts_with("An error occurred while reading the location file : "));

    EXPECT_EQ(read_text(
                  "h1\r\nh2\r\n", [](model_record& m) { m.nhead = 5; }, ui)
                  .profile.num_stations,
              0);
    // A first data line two thousand million lines on stops at the end of the file at once
    // (passing over the lines that are not there took minutes).
    EXPECT_EQ(read_text(
                  "1 2 3\r\n4 5 6\r\n", [](model_record& m) { m.nhead = 2000000000; }, ui)
                  .profile.num_stations,
              0);

    // Found by the data fuzz target: an easting of 1e3091 read as infinity, and set-up then had
    // no finite distance. A number too large for its column is a reading error; channels are
    // single precision, so 1e39 is too large there while 1e300 fits a coordinate.
    for (const char* text : {"1 2 3\r\n1e3091 11 3\r\n", "1e300 2 1e39\r\n"}) {
        scratch_dir dir("iodata_overflow");
        write_all(dir.file("a.dat"), text);
        model_record m = model_reading(dir.file("a.dat"));
        ui.messages.clear();
        EXPECT_EQ(read_location_data(0, m, m.profile, {}, ui), -1);
        EXPECT_EQ(ui.messages, std::vector<std::string>{
                                   "An error occurred while reading the location file : Overflow"});
    }
}

TEST(location_real_data, airborne_magnetic_line_reads_every_record) {
    // Flight line 5676 (LF line ends): a header, then easting, northing, height and anomaly in
    // columns 4 to 7.
    model_record m =
        model_reading(std::string(TRENSIL_SHARED_DATA_DIR) + "/osborne-mag-lines/line_5676.csv", 2);
    m.xpos = 4, m.ypos = 5, m.zpos = 6, m.magpos = 7;
    scripted_platform ui;
    ASSERT_EQ(read_location_data(0, m, m.profile, {}, ui), 0);
    ASSERT_EQ(read_location_data(1, m, m.profile, {}, ui), 0);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(m.profile.num_stations, 3924);
    EXPECT_DOUBLE_EQ(m.profile.location(easting_row, 1), 448428.44);
    EXPECT_DOUBLE_EQ(m.profile.location(northing_row, 1), 7556656.20);
    EXPECT_EQ(m.profile.location(sensor_row, 1), 350.0);
    EXPECT_EQ(m.profile.mag_channels(observed_raw, 1), 157.0f);
}

TEST(location_split_fields, delimiters_words_quotes_and_counts) {
    array1<std::string> f;
    int count = 0;
    split_fields(count, "  \"East\", North ,,\"TMI nT\"  ", f);
    ASSERT_EQ(count, 4);
    EXPECT_EQ(std::vector<std::string>(f.begin(), f.end()),
              (std::vector<std::string>{"East", "North", "", "TMI nT"}));
    count = 2;  // only as many as asked for
    split_fields(count, "a,b,c", f);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(f(2), "b");
    count = 5;  // more asked for than there are: words, the rest empty
    split_fields(count, "x y\tz", f, ';');
    EXPECT_EQ(count, 3);
    EXPECT_EQ(f.hi(), 5);
    EXPECT_EQ(f(3), "z");
    EXPECT_EQ(f(5), "");
}

}  // namespace
}  // namespace trensil
