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

struct read_result {
    model_record model;
    int count_status = 0;
    int store_status = 0;
};

// Counting pass, then the storing pass when there are stations, as the loading forms do.
read_result read_both(model_record model, scripted_platform& ui,
                      const transform_state& transforms = {}) {
    read_result r{std::move(model)};
    r.count_status = read_location_data(0, r.model, r.model.profile, transforms, ui);
    if (r.model.profile.num_stations >= 1)
        r.store_status = read_location_data(1, r.model, r.model.profile, transforms, ui);
    return r;
}

std::vector<double> eastings(const model_record& m) {
    std::vector<double> xs;
    for (int i = 1; i <= m.profile.num_stations; ++i)
        xs.push_back(m.profile.location(easting_row, i));
    return xs;
}

TEST(location_grouping, nstep_takes_the_last_line_of_each_group) {
    scratch_dir dir("iodata_nstep");
    std::string text = "x y mag\r\n";
    for (int i = 1; i <= 10; ++i)
        text += std::to_string(i) + " 0 " + std::to_string(100 + i) + "\r\n";
    write_all(dir.file("a.dat"), text);
    model_record model = model_reading(dir.file("a.dat"), 2);
    model.nstep = 3;
    scripted_platform ui;
    read_result r = read_both(model, ui);
    EXPECT_EQ(r.count_status, 0);
    EXPECT_EQ(r.store_status, 0);
    EXPECT_EQ(eastings(r.model), (std::vector<double>{3, 6, 9}));
    EXPECT_EQ(r.model.profile.mag_channels(observed_raw, 2), 106.0f);
    EXPECT_TRUE(ui.messages.empty());
}

TEST(location_grouping, comments_do_not_count_and_blank_lines_are_passed_over) {
    scratch_dir dir("iodata_comments");
    write_all(dir.file("a.dat"),
              "1 0 5\r\n! note\r\n2 0 5\r\n\\ other note\r\n3 0 5\r\n4 0 5\r\n\r\n\r\n5 0 5\r\n");
    model_record model = model_reading(dir.file("a.dat"));
    model.nstep = 2;
    scripted_platform ui;
    read_result r = read_both(model, ui);
    // Groups: (1, 2) (3, 4) (blank, blank, then 5 once the count is reached).
    EXPECT_EQ(eastings(r.model), (std::vector<double>{2, 4, 5}));
}

TEST(location_rejection, dummy_or_text_in_a_used_column_drops_the_line) {
    scratch_dir dir("iodata_dummy");
    write_all(dir.file("a.dat"), "1 10 *\r\n2 20 7 label\r\n3 x 8\r\n4 40 9 *\r\n");
    scripted_platform ui;
    read_result r = read_both(model_reading(dir.file("a.dat")), ui);
    // Column 4 is not used, so text there is harmless.
    EXPECT_EQ(eastings(r.model), (std::vector<double>{2, 4}));
    EXPECT_EQ(r.model.profile.location(northing_row, 2), 40.0);
    EXPECT_TRUE(ui.messages.empty());
}

TEST(location_rejection, short_lines_keep_the_previous_value) {
    scratch_dir dir("iodata_short");
    write_all(dir.file("a.dat"), "1 10\r\n2 20 7\r\n3 30\r\n4 41 bad\r\n5\r\n");
    scripted_platform ui;
    read_result r = read_both(model_reading(dir.file("a.dat")), ui);
    const profile_block& p = r.model.profile;
    ASSERT_EQ(p.num_stations, 4);
    EXPECT_EQ(p.mag_channels(observed_raw, 1), -1e32f);  // nothing read yet
    EXPECT_EQ(p.mag_channels(observed_raw, 3), 7.0f);
    // The rejected line left its y (41) in the scratch; the short line after it takes that y.
    EXPECT_EQ(p.location(easting_row, 4), 5.0);
    EXPECT_EQ(p.location(northing_row, 4), 41.0);
}

TEST(location_columns, shared_and_chained_column_numbers) {
    scratch_dir dir("iodata_shared");
    write_all(dir.file("a.dat"), "1 2 3 4\r\n5 6 7 8\r\n");
    scripted_platform ui;

    model_record both = model_reading(dir.file("a.dat"));
    both.gravpos = 3;  // the same token feeds both channels
    both.dtm = 1;      // and x can feed the ground too
    read_result r = read_both(both, ui);
    EXPECT_EQ(r.model.profile.grav_channels(observed_raw, 2), 7.0f);
    EXPECT_EQ(r.model.profile.mag_channels(observed_raw, 2), 7.0f);
    EXPECT_EQ(r.model.profile.location(ground_row, 2), 5.0);

    model_record same_xy = model_reading(dir.file("a.dat"));
    same_xy.ypos = 1;  // x takes the token; y is never set
    r = read_both(same_xy, ui);
    EXPECT_EQ(r.model.profile.location(easting_row, 2), 5.0);
    EXPECT_EQ(r.model.profile.location(northing_row, 2), -1e32);
}

TEST(location_line_ends, cr_lf_only_and_marked_files_read_the_same_stations) {
    scratch_dir dir("iodata_endings");
    const std::string body = "1\t10 100\n2 20\t200\n3 30 300";
    std::string cr_lf, cr_only, lf_only = body;
    for (char c : body) {
        if (c == '\n') {
            cr_lf += "\r\n";
            cr_only += "\r";
        } else {
            cr_lf += c;
            cr_only += c;
        }
    }
    write_all(dir.file("crlf.dat"), cr_lf);
    write_all(dir.file("cr.dat"), cr_only);
    write_all(dir.file("lf.dat"), lf_only);
    write_all(dir.file("bom.dat"), "\xEF\xBB\xBF" + cr_lf);
    scripted_platform ui;
    for (const char* name : {"crlf.dat", "cr.dat", "lf.dat", "bom.dat"}) {
        read_result r = read_both(model_reading(dir.file(name)), ui);
        EXPECT_EQ(eastings(r.model), (std::vector<double>{1, 2, 3})) << name;
        EXPECT_EQ(r.model.profile.mag_channels(observed_raw, 3), 300.0f) << name;
    }
    EXPECT_TRUE(ui.messages.empty());

    location_line_reader reader;
    ASSERT_TRUE(reader.open(dir.file("crlf.dat")));
    EXPECT_FALSE(reader.tolerant());
    EXPECT_EQ(reader.read_line(), "1\t10 100");  // tabs stay in plain lines
    ASSERT_TRUE(reader.open(dir.file("lf.dat")));
    EXPECT_TRUE(reader.tolerant());
    EXPECT_EQ(reader.read_line(), "1 10 100");
    ASSERT_TRUE(reader.open(dir.file("bom.dat")));
    EXPECT_TRUE(reader.tolerant());
    EXPECT_EQ(reader.read_line(), "1 10 100");  // the mark's three bytes are gone
    EXPECT_EQ(reader.read_line(), "2 20 200");
    EXPECT_EQ(reader.read_line(), "3 30 300");
    EXPECT_TRUE(reader.at_end());
    EXPECT_EQ(reader.read_line(), "");
}

TEST(location_line_ends, tolerant_reader_drops_control_and_high_bytes_across_blocks) {
    scratch_dir dir("iodata_long");
    // Lines longer than a read block, with bytes the tolerant reader drops.
    std::string long_line(3 << 20, '7');
    write_all(dir.file("a.dat"), "1 2 \x01\x80" + long_line + "\n\n9 8 7\n");
    location_line_reader reader;
    ASSERT_TRUE(reader.open(dir.file("a.dat")));
    EXPECT_EQ(reader.read_line(), "1 2 " + long_line);
    EXPECT_EQ(reader.read_line(), "");
    EXPECT_FALSE(reader.at_end());
    EXPECT_EQ(reader.read_line(), "9 8 7");
    EXPECT_TRUE(reader.at_end());
}

TEST(location_columns, comma_separated_columns_keep_their_places) {
    scratch_dir dir("iodata_csv");
    write_all(dir.file("a.csv"), "east,north,note,mag\n1,10,,100\n2,20,ab,200\n3,,x,300\n");
    model_record model = model_reading(dir.file("a.csv"), 2);
    model.magpos = 4;
    scripted_platform ui;
    read_result r = read_both(model, ui);
    // The empty note does not shift the mag column; the empty north drops its line.
    EXPECT_EQ(eastings(r.model), (std::vector<double>{1, 2}));
    EXPECT_EQ(r.model.profile.mag_channels(observed_raw, 1), 100.0f);
}

TEST(location_columns, words_and_numbers_follow_the_shared_text_rules) {
    // The reader splits and converts lines without copying words; what it reads must be what
    // take_word, is_numeric_text and parse_number make of the same line.
    const std::vector<std::string> lines = {"1 2 3",
                                            " 1.5,\t-2.25 , 3e2",
                                            "+4 .5 -.5",
                                            "1,,3",
                                            ",2,3",
                                            "7 8 9,",
                                            "1e 2 3",
                                            "1d2 2.5D-1 3",
                                            "-0 00012 3.",
                                            "12345678901234567 2 3",
                                            "0.1 0.2 0.30000000000000004",
                                            "1,, ,3",
                                            "5 6 7x",
                                            "- 1 2",
                                            "1 2 3 4 5",
                                            "9.999999999999999e22 1 1"};
    for (const std::string& text : lines) {
        // Expected: the first three words, each numeric, or the line is not a station.
        std::string rest = text;
        std::vector<double> expected;
        bool station = true;
        for (int k = 0; k < 3 && !rest.empty(); ++k) {
            const std::string word = take_word(rest);
            if (!is_numeric_text(word)) {
                station = false;
                break;
            }
            expected.push_back(parse_number(word));
        }
        scratch_dir dir("iodata_words");
        write_all(dir.file("a.dat"), text + "\r\n");
        scripted_platform ui;
        read_result r = read_both(model_reading(dir.file("a.dat")), ui);
        ASSERT_EQ(r.model.profile.num_stations, station ? 1 : 0) << text;
        if (!station) continue;
        const profile_block& p = r.model.profile;
        const double read[3] = {p.location(easting_row, 1), p.location(northing_row, 1),
                                p.mag_channels(observed_raw, 1)};
        for (std::size_t k = 0; k < expected.size(); ++k) {
            if (k < 2)
                EXPECT_EQ(read[k], expected[k]) << text << " column " << k + 1;
            else
                EXPECT_EQ(read[k], static_cast<float>(expected[k])) << text;
        }
    }
}

TEST(location_ranges, counting_pass_sets_ranges_from_first_station_and_widens) {
    scratch_dir dir("iodata_ranges");
    write_all(dir.file("a.dat"), "5 50 1 7\r\n3 70 2 6\r\n9 60 3 8\r\n");
    model_record model = model_reading(dir.file("a.dat"));
    model.zpos = 4;
    model.profile.zmin = -5.0f;  // whatever was there before is replaced by the first station
    scripted_platform ui;
    EXPECT_EQ(read_location_data(0, model, model.profile, {}, ui), 0);
    const profile_block& p = model.profile;
    EXPECT_EQ(p.num_stations, 3);
    EXPECT_EQ(p.xmin, 3.0);
    EXPECT_EQ(p.xmax, 9.0);
    EXPECT_EQ(p.ymin, 50.0);
    EXPECT_EQ(p.ymax, 70.0);
    EXPECT_EQ(p.zmin, 6.0f);
    EXPECT_EQ(p.zmax, 8.0f);
    EXPECT_EQ(p.mag_min, 1.0f);
    EXPECT_EQ(p.mag_max, 3.0f);
    // Columns not asked for hold what the first station's scratch held.
    EXPECT_EQ(p.dtm_min, -1e32f);
    EXPECT_EQ(p.dtm_max, -1e32f);
    EXPECT_EQ(p.location.col_hi(), 3);
    EXPECT_EQ(p.mag_channels.row_hi(), 10);
    EXPECT_EQ(p.location.row_lo(), 0);
    EXPECT_EQ(check_location_ranges(model, p, ui), 0);

    // Counting only: the number of stations and nothing else.
    model_record counted = model_reading(dir.file("a.dat"));
    EXPECT_EQ(read_location_data(-1, counted, counted.profile, {}, ui), 0);
    EXPECT_EQ(counted.profile.num_stations, 3);
    EXPECT_TRUE(counted.profile.location.empty());
    EXPECT_EQ(counted.profile.xmax, -1e32);
}

TEST(location_ranges, columns_never_read_are_reported_in_order) {
    scratch_dir dir("iodata_norange");
    write_all(dir.file("a.dat"), "1 2\r\n3 4\r\n");
    model_record model = model_reading(dir.file("a.dat"));
    model.zpos = 5;
    model.dtm = 6;
    model.gravpos = 7;
    scripted_platform ui;
    read_location_data(0, model, model.profile, {}, ui);
    EXPECT_EQ(check_location_ranges(model, model.profile, ui), -1);
    EXPECT_EQ(ui.messages,
              (std::vector<std::string>{
                  "No valid z coordinate values were read", "No valid DTM values were read",
                  "No valid mag values were read", "No valid gravity values were read"}));
}

TEST(location_transform, active_program_transform_moves_x_y_and_sensor_only) {
    scratch_dir dir("iodata_transform");
    write_all(dir.file("a.dat"), "10 20 30 40 50\r\n11 21\r\n");
    model_record model = model_reading(dir.file("a.dat"));
    model.zpos = 3;
    model.dtm = 4;
    model.magpos = 5;
    transform_state transforms;
    transforms.program_transform.x_output_origin = 1000.0;
    transforms.program_transform.z_shift = 1.0;
    prepare_transform(transforms.program_transform);
    scripted_platform ui;
    read_result r = read_both(model, ui, transforms);
    const profile_block& p = r.model.profile;
    EXPECT_EQ(p.location(easting_row, 1), 1010.0);
    EXPECT_EQ(p.location(northing_row, 1), 20.0);
    EXPECT_EQ(p.location(sensor_row, 1), 31.0);
    EXPECT_EQ(p.location(ground_row, 1), 40.0);
    EXPECT_EQ(p.mag_channels(observed_raw, 1), 50.0f);
    EXPECT_EQ(p.xmin, 1010.0);
    // A short line keeps the sensor as read, and it is shifted once, not once more.
    EXPECT_EQ(p.location(sensor_row, 2), 31.0);
    EXPECT_EQ(p.location(easting_row, 2), 1011.0);

    // An inactive transform is not applied even when its fields differ.
    transforms.program_transform.active = 0;
    r = read_both(model, ui, transforms);
    EXPECT_EQ(r.model.profile.location(easting_row, 1), 10.0);
}

TEST(location_failures, missing_file_and_file_shorter_than_header) {
    scripted_platform ui;
    model_record model = model_reading("/nonexistent/iodata/none.dat");
    EXPECT_EQ(read_location_data(0, model, model.profile, {}, ui), -1);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].rfind("An error occurred while reading the location file : ", 0), 0u);

    scratch_dir dir("iodata_header");
    write_all(dir.file("a.dat"), "h1\r\nh2\r\n");
    model = model_reading(dir.file("a.dat"), 5);
    EXPECT_EQ(read_location_data(0, model, model.profile, {}, ui), 0);
    EXPECT_EQ(model.profile.num_stations, 0);
    EXPECT_TRUE(model.profile.location.empty());
}

TEST(location_failures, number_too_large_for_its_column_is_a_reading_error) {
    // Found by the data fuzz target: an easting of 1e3091 read as infinity and set-up then
    // worked with no finite distance.
    scratch_dir dir("iodata_overflow");
    scripted_platform ui;
    write_all(dir.file("x.dat"), "1 2 3\r\n1e3091 11 3\r\n");
    model_record model = model_reading(dir.file("x.dat"));
    EXPECT_EQ(read_location_data(0, model, model.profile, {}, ui), -1);
    EXPECT_EQ(ui.messages, std::vector<std::string>{
                               "An error occurred while reading the location file : Overflow"});
    // Channels are single precision: 1e39 does not fit, 1e300 does for a coordinate.
    write_all(dir.file("m.dat"), "1e300 2 1e39\r\n");
    model = model_reading(dir.file("m.dat"));
    EXPECT_EQ(read_location_data(0, model, model.profile, {}, ui), -1);
    write_all(dir.file("ok.dat"), "1e300 2 1e38\r\n");
    model = model_reading(dir.file("ok.dat"));
    EXPECT_EQ(read_location_data(0, model, model.profile, {}, ui), 0);
    EXPECT_EQ(model.profile.num_stations, 1);
}

TEST(location_real_data, airborne_magnetic_line_reads_every_record) {
    // Flight line 5676: a header, then easting, northing, height and anomaly in columns 4..7.
    model_record model =
        model_reading(std::string(TRENSIL_SHARED_DATA_DIR) + "/osborne-mag-lines/line_5676.csv", 2);
    model.xpos = 4;
    model.ypos = 5;
    model.zpos = 6;
    model.magpos = 7;
    scripted_platform ui;
    read_result r = read_both(model, ui);
    ASSERT_TRUE(ui.messages.empty());
    const profile_block& p = r.model.profile;
    EXPECT_EQ(p.num_stations, 3924);
    EXPECT_DOUBLE_EQ(p.location(easting_row, 1), 448428.44);
    EXPECT_DOUBLE_EQ(p.location(northing_row, 1), 7556656.20);
    EXPECT_EQ(p.location(sensor_row, 1), 350.0);
    EXPECT_EQ(p.mag_channels(observed_raw, 1), 157.0f);
    EXPECT_LT(p.xmin, p.xmax);
    EXPECT_LE(p.mag_min, p.mag_max);
}

TEST(location_split_fields, delimiters_words_quotes_and_counts) {
    array1<std::string> f;
    int count = 0;
    split_fields(count, "  \"East\", North ,,\"TMI nT\"  ", f);
    ASSERT_EQ(count, 4);
    EXPECT_EQ(f(1), "East");
    EXPECT_EQ(f(2), "North");
    EXPECT_EQ(f(3), "");
    EXPECT_EQ(f(4), "TMI nT");

    count = 2;  // only as many as asked for
    split_fields(count, "a,b,c", f);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(f(2), "b");

    count = 5;  // asked for more than there are: the rest are empty
    split_fields(count, "x y\tz", f, ';');
    EXPECT_EQ(count, 3);
    EXPECT_EQ(f.hi(), 5);
    EXPECT_EQ(f(3), "z");
    EXPECT_EQ(f(5), "");

    count = 0;
    split_fields(count, "   ", f);
    EXPECT_EQ(count, 0);
}

}  // namespace
}  // namespace trensil
