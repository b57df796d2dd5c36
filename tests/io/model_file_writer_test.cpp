// Writing model files: the round trip through the reader, the number forms, the text of the
// lines, the save with its side files, and failed writes that leave the old file alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <tuple>

#include "core/model_record.h"
#include "io/model_file_reader.h"
#include "io/model_file_writer.h"
#include "io/model_side_files.h"
#include "model_test_files.h"
#include "support/number_format.h"
#include "support/paths.h"
#include "support/scripted_platform.h"
#include "support/text_tokens.h"

namespace trensil {
namespace {

using model_testing::data_path;
using model_testing::failing_writes;
using model_testing::read_text;
using model_testing::scratch_folder;
using model_testing::write_text;

// The fields a model file stores, less the per-body ones, as one comparable tuple.
template <class Model>
auto header_fields(Model& m) {
    return std::tie(m.data_file, m.nhead, m.nstep, m.names_line, m.xpos, m.ypos, m.zpos, m.dtm,
                    m.magpos, m.gravpos, m.station_spacing, m.mag_intensity, m.mag_inclination,
                    m.mag_declination, m.residual, m.VG_filter_width, m.VG_filter_step,
                    m.vg_component_1, m.basemag, m.basegrav, m.topo, m.sensor_offset, m.float_base,
                    m.infinite_body_length, m.finite_body_left_clip, m.finite_body_right_clip,
                    m.display_axes, m.show_body_label, m.maintain_aspect_ratio, m.splitter,
                    m.tab_width, m.display_width, m.num_bodies);
}

auto body_fields(const body_record& b) {
    return std::tie(b.type, b.east, b.north, b.colour, b.name, b.rock_type, b.description, b.demag,
                    b.fix, b.shell_thickness, b.end_thickness, b.num_sectors, b.num_segments,
                    b.max_triangle_size);
}

// A model with every stored field away from its default, in values that 7 (single) and 15
// (double) significant digits hold exactly.
model_record full_model() {
    model_record m;
    reset_model(m);
    header_fields(m) = std::tuple(
        data_path("model_line.csv"), 3, 2, 1, 4, 5, 6, 7, 8, 9, 12.5f, 49299.0f, 62.6f, 0.1f, 3, 15,
        2, 1, 49231.17f, -12.5e-3f, 45.83f, 138.5f, std::array<std::int32_t, 2>{1, 1}, 500.0f,
        -1000.0f, 1e6f, 1, 1, 1, std::array<float, 4>{0.3f, 0.55f, 0.25f, 0.125f}, 5300, 12000, 2);
    m.vg_component_2 = 2;
    m.transform.rotation = 12.3456789012345;
    m.transform.x_scale = 0.999999999999;
    m.transform.y_scale = 1.25e-7;
    m.transform.x_input_origin = 357875.5;
    m.transform.y_input_origin = 1210778.75;
    m.transform.x_output_origin = -583110.36;
    m.transform.y_output_origin = 3751069.88;
    m.transform.second_x_input_origin = 1e20;
    m.transform.second_y_input_origin = -2.5e-30;
    m.transform.second_x_output_origin = 7.0;
    m.transform.second_y_output_origin = 8.0;
    m.transform.z_shift = -0.5;
    m.transform.z_scale = 3.048e-1;
    m.profile.inversion_first_station = 4;
    m.profile.inversion_last_station = 90;

    for (int i = 1; i <= 2; ++i) {
        new_body_defaults(m, i, nullptr);
        body_record& b = m.body(i);
        b.type = i == 1 ? 2 : 16;
        b.east = 583110.123456789;
        b.north = -3751069.5;
        b.colour = 65280;
        b.name = i == 1 ? "Main, dyke" : "1 pipe";
        b.rock_type = "basalt";
        b.description = "fits the anomaly at 42 km";
        b.demag = 1;
        b.fix = 0;
        b.disabled = 1;
        for (int k = 0; k < body_property_count; ++k)
            b.property(k) = parameter{static_cast<float>(k * 1.5 + i) / 7.0f, k % 2 ? 1.0f : 0.0f,
                                      -100.0f * k, k == 3 ? undefined_value : 2.5e8f};
        b.dip.value = 75.0f;
        b.susc.value = 12345.67f;
        b.shell_thickness = 5.0f;
        b.end_thickness = 2.5f;
        b.num_sectors = 16;
        b.num_segments = 3;
        b.max_triangle_size = 1e-3f;
    }
    return m;
}

// Single precision values agree to the 7 significant digits the file holds.
::testing::AssertionResult same_to_7_digits(float a, float b) {
    if (a == b || std::fabs(a - b) <= 6e-7f * std::fabs(a)) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << general_number(a) << " vs " << general_number(b);
}

void expect_same_stored_fields(const model_record& a, const model_record& b) {
    EXPECT_EQ(header_fields(a), header_fields(b));
    EXPECT_EQ(a.transform, b.transform);
    for (int i = 1; i <= std::min(a.num_bodies, b.num_bodies); ++i) {
        SCOPED_TRACE("body " + std::to_string(i));
        const body_record& x = a.body(i);
        const body_record& y = b.body(i);
        EXPECT_EQ(body_fields(x), body_fields(y));
        for (int k = 0; k < body_property_count; ++k) {
            SCOPED_TRACE("property " + std::to_string(k));
            const parameter &p = x.property(k), &q = y.property(k);
            EXPECT_TRUE(same_to_7_digits(p.value, q.value));
            EXPECT_EQ(p.vary, q.vary);
            EXPECT_TRUE(same_to_7_digits(p.min, q.min));
            EXPECT_TRUE(same_to_7_digits(p.max, q.max));
        }
        EXPECT_TRUE(same_to_7_digits(x.diameter_start, y.diameter_start));
        EXPECT_TRUE(same_to_7_digits(x.diameter_end, y.diameter_end));
    }
}

struct model_writer : ::testing::Test {
    scratch_folder dir{"writer"};
    scripted_platform ui;
    file_search_state search;
    model_file_services services{ui, search, nullptr};

    model_record read_back(const std::string& path) {
        model_record m;
        reset_model(m);
        std::int16_t status = 99;
        read_model_file(0, m, path, status, services);
        EXPECT_EQ(status, 0);
        return m;
    }
};

TEST_F(model_writer, round_trip_changes_only_disabled_window_and_second_gradient_selector) {
    model_record original = full_model();
    const std::string path = dir.file("full.qvx");
    ASSERT_TRUE(write_model_core(false, path, original, ui));
    model_record again = read_back(path);
    ASSERT_TRUE(ui.messages.empty());
    expect_same_stored_fields(original, again);
    // The three fields that do not come back.
    EXPECT_EQ(again.body(1).disabled, 0);
    EXPECT_EQ(again.profile.inversion_first_station, 0);
    EXPECT_EQ(again.profile.inversion_last_station, 0);
    EXPECT_EQ(again.vg_component_2, 0);
    // Writing what was read gives the same file.
    const std::string second = dir.file("again.qvx");
    again.body(1).disabled = 1;
    again.body(2).disabled = 1;
    again.profile.inversion_first_station = 4;
    again.profile.inversion_last_station = 90;
    ASSERT_TRUE(write_model_core(false, second, again, ui));
    EXPECT_EQ(read_text(path), read_text(second));
}

TEST_F(model_writer, old_versions_come_back_unchanged_after_conversion) {
    for (const char* name : {"model_v0.qvx", "model_v1.qvx", "model_v2.qvx", "model_v5.qvx",
                             "model_v6.qvx", "model_v7.qvx"}) {
        SCOPED_TRACE(name);
        model_record old = read_back(data_path(name));
        const std::string path = dir.file(std::string("current_") + name);
        ASSERT_TRUE(write_model_core(false, path, old, ui));
        expect_same_stored_fields(old, read_back(path));
    }
}

// The exact field geometry is a fourth value on the field line, written only when set: off, the
// line is as it always was; on, it reads back on with every other field unchanged.
TEST_F(model_writer, exact_field_geometry_rides_on_the_field_line) {
    model_record m = full_model();
    EXPECT_NE(model_file_text(true, m).find("\r\n 49299  62.6  .1 \r\n"), std::string::npos);
    m.exact_field_geometry = true;
    EXPECT_NE(model_file_text(true, m).find("\r\n 49299  62.6  .1  1 \r\n"), std::string::npos);
    const std::string path = dir.file("exact.qvx");
    ASSERT_TRUE(write_model_core(false, path, m, ui));
    model_record again = read_back(path);
    EXPECT_TRUE(again.exact_field_geometry);
    expect_same_stored_fields(m, again);
    again.exact_field_geometry = false;
    ASSERT_TRUE(write_model_core(false, path, again, ui));
    EXPECT_FALSE(read_back(path).exact_field_geometry);
}

TEST_F(model_writer, lines_are_print_lists_ended_by_cr_lf) {
    model_record m = full_model();
    const std::string header = model_file_text(true, m);
    EXPECT_EQ(m.display_settings_present, 0);
    const std::string text = model_file_text(false, m);
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find("\r\n", start);
        ASSERT_NE(end, std::string::npos) << "every line ends with CR LF";
        lines.push_back(text.substr(start, end - start));
        start = end + 2;
    }
    ASSERT_GE(lines.size(), 12u + 2 * 9 + 4);
    EXPECT_EQ(lines[1], " 3  2  4  5  6  7  8  9  12.5  1 ");
    EXPECT_EQ(lines[2], " 49299  62.6  .1 ");
    EXPECT_EQ(lines[3], " 3  15  2  1  4  90 ");
    EXPECT_EQ(lines[4], " 49231.17  45.83  138.5 -.0125  1  1 ");
    EXPECT_EQ(lines[5], " 12.3456789012345  .999999999999  1.25E-07 ");
    EXPECT_EQ(lines[8], " 1E+20 -2.5E-30 ");
    EXPECT_EQ(lines[11], " 2  7  500 -1000  1000000 ");
    EXPECT_EQ(lines[12], " 2  1  0  65280  1  Main, dyke");
    EXPECT_EQ(lines[13], "basalt");
    EXPECT_EQ(lines[lines.size() - 4], "[QVX Display Settings]");
    EXPECT_EQ(lines[lines.size() - 3], " 1  1  1 ");
    EXPECT_EQ(lines[lines.size() - 2], " .3  .55  .25  .125 ");
    EXPECT_EQ(lines[lines.size() - 1], " 5300  12000 ");
    EXPECT_EQ(m.display_settings_present, -1);
    // The header alone is the first eleven lines, without the display settings.
    EXPECT_EQ(header, text.substr(0, text.find("\r\n 2  7  500") + 2));
}

TEST_F(model_writer, saving_copies_width_into_both_diameters_in_memory) {
    model_record m = full_model();
    m.body(2).diameter_start = 1.0f;
    m.body(2).diameter_end = 2.0f;
    ASSERT_TRUE(write_model_core(false, dir.file("pipe.qvx"), m, ui));
    EXPECT_EQ(m.body(2).diameter_start, m.body(2).width.value);
    EXPECT_EQ(m.body(2).diameter_end, m.body(2).width.value);
    EXPECT_TRUE(same_to_7_digits(read_back(dir.file("pipe.qvx")).body(2).diameter_end,
                                 m.body(2).width.value));
}

TEST_F(model_writer, failed_write_keeps_old_file_and_reports) {
    const std::string path = dir.file("kept.qvx");
    write_text(path, "old contents\r\n");
    model_record m = full_model();
    {
        failing_writes full_disk;
        EXPECT_FALSE(write_model_core(false, path, m, ui));
    }
    EXPECT_EQ(read_text(path), "old contents\r\n");
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0],
              "An error occurred while saving the model parameters: File too large");
}

// Every number form the writer emits reads back to the value it stands for, and prints again to
// the same text: single precision to 7 significant digits, double precision to 15.
TEST(model_number_forms, every_printed_number_reads_back_to_the_same_text) {
    std::mt19937 rng(2024);
    std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
    std::uniform_int_distribution<int> exponent(-40, 40);
    std::vector<double> values{0.0,  -0.0, 1.0,      -1.0, 0.5,   -0.25,    1e-5, 99999.99,
                               1e15, 1e16, -99999.0, 1e32, -1e32, 123456.7, 0.1,  1.0 / 3.0};
    for (int i = 0; i < 20000; ++i) values.push_back(mantissa(rng) * std::pow(10.0, exponent(rng)));
    for (double v : values) {
        const float f = static_cast<float>(v);
        if (!std::isfinite(f)) continue;  // beyond single precision: no field holds it
        const std::string single = print_number(f);
        ASSERT_EQ(single.back(), ' ');
        const float f_back = static_cast<float>(parse_number(single));
        ASSERT_EQ(print_number(f_back), single) << v;
        ASSERT_NEAR(f_back, f, std::fabs(f) * 6e-7f) << single;  // half a 7th digit and an ulp

        const std::string wide = print_number(v);
        const double v_back = parse_number(wide);
        ASSERT_EQ(print_number(v_back), wide) << v;
        ASSERT_NEAR(v_back, v, std::fabs(v) * 5e-15) << wide;
    }
    for (int i : {0, 1, -1, 2147483647, -2147483647 - 1})
        EXPECT_EQ(parse_number(print_number(i)), static_cast<double>(i));
}

struct model_save : model_writer {
    model_record m = full_model();
    std::int16_t status = 99;
    model_save() {
        // A short profile so that the mesh box has a size.
        profile_block& p = m.profile;
        p.allocate_stations(3);
        p.profile_distance(3) = 1000.0f;
        p.xmin = 1000.0;
        p.xmax = 1500.0;
        p.ymin = 2000.0;
        p.ymax = 2004.0;
        p.zmin = 40.0f;
        p.zmax = 2500.0f;
    }
};

TEST_F(model_save, silent_save_writes_model_and_both_side_files) {
    save_model(1, m, status, ui);  // no model file yet: nothing to save to
    EXPECT_EQ(status, -1);
    m.model_file = dir.file("line.qvx");
    save_model(1, m, status, ui);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_TRUE(file_exists(dir.file("line.qvx")));
    EXPECT_GT(m.model_file_time, 0.0);
    // s = 1000 / 3 -> 333; x 500 / 333 -> 2; y -> 0; z 2460 / 333 -> 7: all raised to 10.
    EXPECT_EQ(read_text(dir.file("line_model.msh")),
              " 10  10  10 \r\n 1000  2000  2500 \r\n10*333.0\r\n10*333.0\r\n10*333.0\r\n");
    const std::string csv = read_text(dir.file("line_model.csv"));
    EXPECT_TRUE(csv.starts_with("#Profile model for " + m.data_file + "\r\nEast, North, "));
}

TEST_F(model_save, dialog_save_adds_extension_and_refuses_overwrite_on_no) {
    m.model_file = dir.file("line.qvx");
    ui.file_answers.push_back(dir.file("chosen"));
    save_model(0, m, status, ui);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(m.model_file, dir.file("chosen.qvx"));
    EXPECT_TRUE(file_exists(dir.file("chosen_model.csv")));

    write_text(dir.file("other.qvx"), "keep me");
    ui.file_answers.push_back(dir.file("other.qvx"));
    ui.yes_answers.push_back(false);
    save_model(0, m, status, ui);
    ASSERT_EQ(ui.questions.size(), 1u);
    EXPECT_EQ(ui.questions[0], "That file already, exists, overwrite?");
    EXPECT_EQ(read_text(dir.file("other.qvx")), "keep me");
    EXPECT_EQ(m.model_file, dir.file("chosen.qvx"));
}

TEST_F(model_save, model_without_stations_fails_at_the_mesh_after_model_and_csv) {
    m.profile = profile_block{};
    m.model_file = dir.file("nodata.qvx");
    save_model(1, m, status, ui);
    EXPECT_TRUE(file_exists(dir.file("nodata.qvx")));
    EXPECT_TRUE(file_exists(dir.file("nodata_model.csv")));
    EXPECT_FALSE(file_exists(dir.file("nodata_model.msh")));
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0], "An error occurred while writing the file: Subscript out of range");
}

TEST(model_side_files, csv_line_moves_reference_point_to_centre_of_top) {
    model_record m;
    reset_model(m);
    m.data_file = "/d/line.csv";
    m.num_bodies = 1;
    new_body_defaults(m, 1, nullptr);
    body_record& b = m.body(1);
    b.east = 1000.0;
    b.north = 2000.0;
    b.strike.value = 90.0f;
    b.width.value = 100.0f;
    b.offset.value = 10.0f;
    b.sin_strike = 1.0f;  // as cached by the last response
    b.cos_strike = 0.0f;
    b.top.value = 25.5f;
    b.name = "  Dyke A ";
    const std::string text = model_csv_text(m);
    // East: cos 90 deg x 50 + 1 x 10 = 10; north: -sin 90 deg x 50 + 0 = -50.
    EXPECT_EQ(
        text.substr(text.rfind("\r\n", text.size() - 3) + 2),
        "1010.00,1950.00,25.50,100.00, 90 , 90 , 50000 , 2.67 , 0 , 0 , 250 , 250 ,Dyke A\r\n");
}

}  // namespace
}  // namespace trensil
