// The model reader on hand-written files of each format version, on truncated and missing files,
// and in its three modes.
#include <gtest/gtest.h>

#include <limits>

#include "core/model_record.h"
#include "io/model_file_reader.h"
#include "io/model_file_writer.h"
#include "model_test_files.h"
#include "support/memory_settings_store.h"
#include "support/scripted_platform.h"

namespace trensil {
namespace {

using model_testing::data_path;
using model_testing::scratch_folder;
using model_testing::write_text;

constexpr float four_pi = static_cast<float>(4.0 * 3.14159265358979);

struct model_reader : ::testing::Test {
    scripted_platform ui;
    file_search_state search;
    memory_settings_store settings;
    model_file_services services{ui, search, &settings};
    model_record model;
    model_read_summary summary;
    std::int16_t status = 99;

    model_reader() { reset_model(model); }
    void read(std::int16_t mode, const std::string& path) {
        read_model_file(mode, model, path, status, services, &summary);
    }
};

// Header lines 2 to 11 shared by the in-test files below.
const std::string header_tail =
    "2 1 1 2 0 0 3 0 0 1\r\n50000 -60 5\r\n0 11 1 0\r\n0 0 100 0 0 0\r\n0 1 1\r\n0 0\r\n0 0\r\n"
    "1 1\r\n1 1\r\n0 1\r\n";

TEST_F(model_reader, version_0_converts_susceptibility_density_and_remanence) {
    read(0, data_path("model_v0.qvx"));
    ASSERT_EQ(status, 0);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(summary.format_version, 0);
    EXPECT_FALSE(summary.truncated);
    // Seven tokens on line 2: gravity column and names line as they were.
    EXPECT_EQ(model.magpos, 3);
    EXPECT_EQ(model.gravpos, 0);
    EXPECT_EQ(model.names_line, 0);
    EXPECT_EQ(model.VG_filter_width, 11);  // line 4 holds the residual alone
    EXPECT_EQ(model.basegrav, -99999.0f);  // absent on line 5
    EXPECT_EQ(model.float_base[0], 0);
    ASSERT_EQ(model.num_bodies, 1);
    const body_record& b = model.body(1);
    EXPECT_EQ(b.type, 1);
    EXPECT_EQ(b.name, "model_line Body 1");
    EXPECT_EQ(b.dip.value, 45.0f);
    EXPECT_EQ(b.dip.vary, 1.0f);  // no limits in this layout: the defaults stay
    EXPECT_FLOAT_EQ(b.susc.value, 0.001f * four_pi);
    EXPECT_FLOAT_EQ(b.density.value, 2.67f);
    EXPECT_EQ(b.density.vary, 1.0f);
    EXPECT_EQ(b.density.min, -99999.0f);
    EXPECT_FLOAT_EQ(b.rem_q.value, 2.0f / (0.001f * four_pi) / 50000.0f);
    EXPECT_EQ(b.rem_i.value, -50.0f);
    EXPECT_EQ(b.rem_d.value, 10.0f);
    EXPECT_EQ(b.length.value, 250.0f);
    EXPECT_EQ(b.magnetisation, -1.0f);
}

TEST_F(model_reader, version_1_keeps_defaults_for_lines_it_does_not_hold) {
    read(0, data_path("model_v1.qvx"));
    ASSERT_EQ(status, 0);
    EXPECT_EQ(summary.format_version, 1);
    // Nine tokens on line 2: the names line comes from the missing token 10 as -999.
    EXPECT_EQ(model.names_line, -999);
    EXPECT_EQ(model.station_spacing, 25.0f);
    EXPECT_EQ(model.basegrav, -99999.0f);
    const body_record& b = model.body(1);
    EXPECT_EQ(b.name, "model_line Body 1");  // nothing after demag and fix
    EXPECT_EQ(b.length.value, 250.0f);
    EXPECT_EQ(b.offset.value, 0.0f);
    EXPECT_EQ(b.distance.min, 0.0f);
    EXPECT_EQ(b.distance.max, 300.0f);
    EXPECT_EQ(b.width.min, 10.0f);
    EXPECT_EQ(b.width.max, 100.0f);
    EXPECT_FLOAT_EQ(b.susc.value, 0.001f * four_pi);
    EXPECT_FLOAT_EQ(b.density.value, 2.67f);
    EXPECT_EQ(b.rem_q.value, 0.0f);
}

TEST_F(model_reader, version_2_reads_name_rock_type_and_description) {
    settings.save_setting("Ostrand", "Trensil", "StrikeLength", "777");
    settings.save_setting("Ostrand", "Trensil", "Depth", "888");
    read(0, data_path("model_v2.qvx"));
    ASSERT_EQ(status, 0);
    EXPECT_EQ(model.names_line, 1);
    EXPECT_EQ(model.basemag, 49200.0f);
    EXPECT_EQ(model.basegrav, 0.0f);
    EXPECT_EQ(model.float_base[0], 1);
    const body_record& b = model.body(1);
    EXPECT_EQ(b.type, 2);
    EXPECT_EQ(b.demag, 1);
    EXPECT_EQ(b.fix, 0);
    EXPECT_EQ(b.colour, 255);
    EXPECT_EQ(b.name, "Granite body");
    EXPECT_EQ(b.rock_type, "granite");
    EXPECT_EQ(b.description, "intrusive, altered");
    EXPECT_FLOAT_EQ(b.susc.value, 0.002f * four_pi);
    EXPECT_FLOAT_EQ(b.density.value, 0.2f);
    EXPECT_FLOAT_EQ(b.rem_q.value, 1.0f / (0.002f * four_pi) / 50000.0f);
    // New bodies take their defaults from the settings where the file holds no value.
    EXPECT_EQ(b.depth_extent.value, 300.0f);
    EXPECT_EQ(b.length.value, 777.0f);
}

TEST_F(model_reader, version_5_reads_window_from_eleven_tokens_and_first_word_quirk) {
    read(0, data_path("model_v5.qvx"));
    ASSERT_EQ(status, 0);
    EXPECT_EQ(model.profile.inversion_first_station, 5);
    EXPECT_EQ(model.profile.inversion_last_station, 40);
    EXPECT_EQ(model.names_line, 0);
    EXPECT_EQ(model.vg_component_1, 1);
    EXPECT_EQ(model.float_base[1], 1);
    EXPECT_EQ(model.infinite_body_length, 400.0f);
    ASSERT_EQ(model.num_bodies, 2);
    const body_record& b1 = model.body(1);
    EXPECT_EQ(b1.name, "North dyke");
    EXPECT_EQ(b1.disabled, 0);
    EXPECT_EQ(b1.length.value, 300.0f);
    EXPECT_EQ(b1.offset.value, 25.0f);
    EXPECT_EQ(b1.plunge.value, 5.0f);
    EXPECT_EQ(b1.slope.value, 2.0f);
    EXPECT_EQ(b1.susc.value, 1000.0f);  // no 4 pi from version 3 on
    EXPECT_FLOAT_EQ(b1.rem_q.value, 4.0f / 1000.0f / 50000.0f);
    EXPECT_EQ(b1.rem_i.value, -30.0f);
    EXPECT_EQ(b1.rem_d.value, 120.0f);
    EXPECT_EQ(b1.density, (parameter{2.9f, 1.0f, 2.0f, 3.2f}));
    // Before version 6 only a leading "1" is taken for the disabled flag: "0" stays in the name.
    EXPECT_EQ(model.body(2).name, "0 South dyke");
    EXPECT_EQ(model.body(2).density.value, 2.67f);
}

TEST_F(model_reader, version_6_pipe_keeps_ratio_and_zero_susceptibility_gives_zero) {
    read(0, data_path("model_v6.qvx"));
    ASSERT_EQ(status, 0);
    ASSERT_EQ(model.num_bodies, 2);
    const body_record& pipe = model.body(1);
    EXPECT_EQ(pipe.type, 16);
    EXPECT_EQ(pipe.name, "Flag zero pipe");
    EXPECT_EQ(pipe.dip.value, 30.0f);  // -30 in the file
    EXPECT_EQ(pipe.rem_q.value, 0.5f);
    EXPECT_EQ(pipe.diameter_start, 80.0f);
    EXPECT_EQ(pipe.diameter_end, 60.0f);
    EXPECT_EQ(pipe.shell_thickness, 5.0f);
    EXPECT_EQ(pipe.end_thickness, 10.0f);
    EXPECT_EQ(pipe.num_sectors, 16);
    EXPECT_EQ(pipe.num_segments, 3);
    EXPECT_EQ(pipe.max_triangle_size, 25.0f);
    EXPECT_EQ(model.body(2).name, "Silent sheet");
    EXPECT_EQ(model.body(2).rem_q.value, 0.0f);  // susc 0: no division
    EXPECT_EQ(model.display_settings_present, -1);
    EXPECT_EQ(model.display_axes, 1);
    EXPECT_EQ(model.maintain_aspect_ratio, 1);
    EXPECT_EQ(model.splitter[2], 0.25f);
    EXPECT_EQ(model.tab_width, 5300);
    EXPECT_EQ(model.display_width, 12000);
}

TEST_F(model_reader, version_7_drops_disabled_flag_and_window_on_line_4) {
    read(0, data_path("model_v7.qvx"));
    ASSERT_EQ(status, 0);
    EXPECT_EQ(summary.format_version, 7);
    EXPECT_EQ(model.profile.inversion_first_station, 0);  // written on line 4, not read there
    EXPECT_EQ(model.profile.inversion_last_station, 0);
    const body_record& b = model.body(1);
    EXPECT_EQ(b.name, "1st contact");
    EXPECT_EQ(b.disabled, 0);
    EXPECT_EQ(b.east, 1000.5);
    EXPECT_EQ(b.north, 2000.25);
    EXPECT_EQ(b.rem_q.value, 0.5f);  // current version: no conversion
    EXPECT_EQ(b.rem_i.value, 60.0f);
    EXPECT_EQ(b.rem_d.value, -5.0f);
    EXPECT_EQ(model.display_axes, 1);
    EXPECT_EQ(model.show_body_label, 1);
    EXPECT_EQ(model.splitter[0], 0.3f);
    // The data file is found beside the model, and both are stamped.
    EXPECT_EQ(model.data_file, data_path("model_line.csv"));
    EXPECT_GT(model.data_file_time, 0.0);
    EXPECT_EQ(model.model_file, data_path("model_v7.qvx"));
    EXPECT_GT(model.model_file_time, 0.0);
}

TEST_F(model_reader, unnumbered_layout_is_told_by_the_first_body_line) {
    scratch_folder dir("unnumbered");
    const std::string path = dir.file("m.qvx");
    write_text(path, data_path("model_line.csv") + "\r\n" + header_tail +
                         "2\r\n1 0 1\r\n10 0 0 5 1 0 50 1 0 50\r\n0 60 20 100\r\n"
                         "1 0 0 0\r\n2\r\n20 0 0 5 1 0 50 1 0 50\r\n0 60 20 100\r\n1 0 0 0\r\n");
    read(0, path);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(summary.format_version, 1);
    ASSERT_EQ(model.num_bodies, 2);
    EXPECT_EQ(model.body(2).type, 2);  // the second body's short line does not change the layout
    EXPECT_EQ(model.body(2).distance.value, 20.0f);
    EXPECT_EQ(model.body(2).distance.max, 50.0f);
}

TEST_F(model_reader, more_bodies_than_capacity_grow_it_and_discard_old_bodies) {
    model.num_bodies = 1;
    model.body(0).name = "scratch";
    model.body(32).name = "last";
    scratch_folder dir("capacity");
    const std::string path = dir.file("m.qvx");
    write_text(path, data_path("model_line.csv") + "\r\n" + header_tail + "40 7\r\n");
    read(0, path);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(model.body_capacity, 56);
    EXPECT_EQ(model.bodies.hi(), 56);
    EXPECT_EQ(model.num_bodies, 40);
    EXPECT_EQ(model.body(0).name, "");                   // re-dimensioned, not kept
    EXPECT_EQ(model.body(1).name, "model_line Body 1");  // file ended: defaults
    EXPECT_TRUE(summary.truncated);
}

TEST_F(model_reader, truncated_header_leaves_zeros_and_is_reported_as_truncated) {
    scratch_folder dir("truncated");
    const std::string path = dir.file("m.qvx");
    write_text(path, data_path("model_line.csv") + "\r\n2 1 1 2 0 0 3\r\n50000");
    read(0, path);
    EXPECT_EQ(status, 0);  // the reader checks nothing
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(model.mag_intensity, 50000.0f);
    EXPECT_EQ(model.mag_inclination, 0.0f);
    EXPECT_EQ(model.sensor_offset, 0.0f);
    EXPECT_EQ(model.num_bodies, 0);
    EXPECT_TRUE(summary.truncated);

    // No bodies and no display section: read cleanly, not truncated.
    write_text(path, data_path("model_line.csv") + "\r\n" + header_tail + "0 7\r\n");
    model.display_settings_present = -1;
    read(0, path);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(model.num_bodies, 0);
    EXPECT_EQ(model.display_settings_present, 0);
    EXPECT_FALSE(summary.truncated);
}

// A file cut right after its header text, inside its body-count line, or inside its last body
// line: each read as a whole model before (no bodies, or the lost fields as 0). The header alone
// with its line end is a new line's model, whole.
TEST_F(model_reader, file_cut_inside_a_line_is_reported_as_truncated) {
    scratch_folder dir("cut_lines");
    const std::string path = dir.file("m.qvx");
    const std::string head = data_path("model_line.csv") + "\r\n" + header_tail;
    const std::string body =
        " 1 0 1 255 0 Cut\r\n\r\n\r\n 5 0 0 1 \r\n 0 90 10 10 \r\n 1 0 0 0 0 0 \r\n 2 0 0 0 "
        "\r\n 0 0 0 0 0 0 0 0 \r\n 1000 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 2.67 0 0 0\r\n";
    const std::pair<std::string, bool> cases[] = {
        {head, false},                            // the header alone: a new line
        {head + "1 7 0 0 0\r\n" + body, false},   // whole
        {head.substr(0, head.size() - 2), true},  // line 11 without its line end
        {head.substr(0, head.size() - 1), true},  // cut between CR and LF
        {head + "1", true},                       // inside the body-count line
        {head + "0 7 0", true},                   // ... of no bodies
        {head + "1 7 0 0 0\r\n" + body.substr(0, body.size() - 12), true},  // last body line
    };
    for (const auto& [text, truncated] : cases) {
        SCOPED_TRACE(text.substr(head.size() > text.size() ? 0 : head.size()));
        write_text(path, text);
        read(0, path);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(summary.truncated, truncated);
    }
}

// 1e999 is no double: an east, north or transform value of it read as infinity, was written
// as "inf" and read back as 0. Every field refuses it, and the writer writes none.
TEST_F(model_reader, value_beyond_double_precision_fails_in_every_field) {
    scratch_folder dir("infinite");
    const std::string path = dir.file("m.qvx");
    const std::string data = data_path("model_line.csv") + "\r\n";
    const std::string body_lines = "1 7\r\n 1 0 1 255 0 B\r\n\r\n\r\n";
    const std::string cases[] = {
        data +
            "2 1 1 2 0 0 3 0 0 1\r\n50000 -60 5\r\n0 11 1 0\r\n0 0 100 0 0 0\r\n"
            "1e999 1 1\r\n0 0\r\n0 0\r\n1 1\r\n1 1\r\n0 1\r\n",  // rotation
        data + header_tail + body_lines + " 5 1e999 0 1 \r\n",   // body east
        data + header_tail + body_lines + " 5 0 -1e400 1 \r\n",  // body north
    };
    for (const std::string& text : cases) {
        write_text(path, text);
        ui.messages.clear();
        read(0, path);
        EXPECT_EQ(status, -1);
        EXPECT_EQ(ui.messages, std::vector<std::string>{
                                   "An error occurred while reading the location file : Overflow"});
    }

    model.transform.x_scale = std::numeric_limits<double>::infinity();
    model.num_bodies = 0;
    write_text(path, "old");
    EXPECT_FALSE(write_model_core(false, path, model, ui));
    EXPECT_EQ(ui.messages.back(), "An error occurred while saving the model parameters: Overflow");
    EXPECT_EQ(model_testing::read_text(path), "old");
}

TEST_F(model_reader, missing_file_and_number_out_of_range_report_and_fail) {
    scratch_folder dir("overflow");
    write_text(dir.file("m.qvx"), data_path("model_line.csv") + "\r\n1e20 1 1 2 0 0 3\r\n");
    const std::pair<std::string, std::string> cases[] = {
        {"/nonexistent/folder/m.qvx", "File not found"}, {dir.file("m.qvx"), "Overflow"}};
    for (const auto& [path, why] : cases) {
        ui.messages.clear();
        read(0, path);
        EXPECT_EQ(status, -1);
        EXPECT_EQ(ui.messages, std::vector<std::string>{
                                   "An error occurred while reading the location file : " + why});
    }
}

struct model_reader_missing_data : model_reader {
    scratch_folder dir{"missing_data"};
    std::string path = dir.file("m.qvx");
    model_reader_missing_data() {
        write_text(path,
                   "/gone/away/line9.csv\r\n" + header_tail +
                       "1 7\r\n 1 0 1 255 0 Kept body\r\n\r\n\r\n 5 0 0 1 \r\n 0 90 10 10 \r\n");
    }
};

TEST_F(model_reader_missing_data, giving_up_on_the_search_ends_reading_before_the_bodies) {
    ui.yes_answers.push_back(false);  // "Cancel reading rest ...?" No: the path becomes ""
    read(0, path);
    EXPECT_EQ(status, -1);
    ASSERT_EQ(ui.questions.size(), 1u);
    EXPECT_EQ(ui.questions[0], "Cancel reading rest of specification file?");
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0], "An error occurred while reading the location file : File not found");
    EXPECT_EQ(model.data_file, "");
    EXPECT_EQ(model.num_bodies, 0);
}

TEST_F(model_reader_missing_data, cancelling_the_search_keeps_the_path_and_reads_the_bodies) {
    ui.yes_answers.push_back(true);
    read(0, path);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(model.data_file, "/gone/away/line9.csv");
    ASSERT_EQ(model.num_bodies, 1);
    EXPECT_EQ(model.body(1).name, "Kept body");
}

TEST_F(model_reader, header_mode_reads_display_settings_but_keeps_body_count) {
    model.num_bodies = 3;
    read(-1, data_path("model_v6.qvx"));
    ASSERT_EQ(status, 0);
    EXPECT_EQ(model.num_bodies, 3);
    EXPECT_EQ(model.mag_intensity, 50000.0f);
    EXPECT_EQ(model.display_settings_present, -1);
    EXPECT_EQ(model.tab_width, 5300);

    // A body named like the section head is taken for it.
    scratch_folder dir("head_name");
    write_text(dir.file("m.qvx"),
               data_path("model_line.csv") + "\r\n" + header_tail +
                   "1 7\r\n1 0 1 255 0 x\r\n[QVX Display Settings]\r\n 1  1  1 \r\n");
    model.display_settings_present = 0;
    model.display_axes = 0;
    read(-1, dir.file("m.qvx"));
    EXPECT_EQ(model.display_settings_present, -1);
    EXPECT_EQ(model.display_axes, 1);
}

TEST_F(model_reader, bodies_mode_leaves_header_and_data_file_alone) {
    model.data_file = "/my/data.csv";
    model.mag_intensity = 12345.0f;
    model.display_settings_present = -1;
    read(1, data_path("model_v6.qvx"));
    ASSERT_EQ(status, 0);
    EXPECT_EQ(model.data_file, "/my/data.csv");
    EXPECT_EQ(model.mag_intensity, 12345.0f);
    EXPECT_EQ(model.display_settings_present, -1);
    EXPECT_EQ(model.display_axes, 0);  // nothing after the bodies is read
    ASSERT_EQ(model.num_bodies, 2);
    EXPECT_EQ(model.body(1).type, 16);
}

}  // namespace
}  // namespace trensil
