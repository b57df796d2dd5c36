// Loading a project line: the chain from the model file to a profile ready to compute, and where
// it stops.
#include <gtest/gtest.h>

#include "io/load_line.h"
#include "model_test_files.h"
#include "support/scripted_platform.h"

namespace trensil {
namespace {

using model_testing::data_path;
using model_testing::read_text;
using model_testing::scratch_folder;
using model_testing::write_text;

struct load_line_chain : ::testing::Test {
    scripted_platform ui;
    file_search_state search;
    transform_state transforms;
    load_line_services services{ui, search, transforms, nullptr};
    model_record model;
    std::int16_t status = 99;
    load_line_chain() { reset_model(model); }
};

TEST_F(load_line_chain, example_line_is_ready_to_compute) {
    load_line(std::string(TRENSIL_SOURCE_DIR) + "/examples/tempest/tempest_line_225401.qvx", model,
              "", status, services);
    ASSERT_EQ(status, 0);
    EXPECT_TRUE(ui.messages.empty());
    const profile_block& p = model.profile;
    ASSERT_EQ(p.num_stations, 2001);
    EXPECT_EQ(p.profile_distance(1), 0.0f);
    EXPECT_NEAR(p.profile_distance(2001), 105862.0f, 1.0f);
    EXPECT_EQ(p.inversion_first_station, 1);
    EXPECT_EQ(p.inversion_last_station, 2001);
    EXPECT_EQ(model.basemag, 49245.0f);  // set in the file: not replaced by the mean
    ASSERT_EQ(model.num_bodies, 3);
    EXPECT_EQ(model.body(3).body_response.col_hi(), 2001);
}

TEST_F(load_line_chain, data_file_from_a_moved_folder_is_found_beside_the_model) {
    scratch_folder dir("moved");
    write_text(dir.file("model_line.csv"), read_text(data_path("model_line.csv")));
    std::string model_text = read_text(data_path("model_v7.qvx"));
    model_text.replace(0, model_text.find('\r'), "/old/disk/model_line.csv");
    write_text(dir.file("m.qvx"), model_text);
    load_line(dir.file("m.qvx"), model, "", status, services);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(model.data_file, dir.file("model_line.csv"));
    EXPECT_EQ(model.profile.num_stations, 5);
    EXPECT_TRUE(ui.questions.empty());
}

TEST_F(load_line_chain, stops_with_the_message_of_the_failing_step) {
    load_line("/no/such/model.qvx", model, "", status, services);
    EXPECT_EQ(status, -1);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0], "An error occurred while reading the location file : File not found");

    scratch_folder dir("no_columns");
    write_text(dir.file("model_line.csv"), read_text(data_path("model_line.csv")));
    std::string model_text = read_text(data_path("model_v7.qvx"));
    const std::size_t line_2 = model_text.find('\n') + 1;
    model_text.replace(line_2, model_text.find('\r', line_2) - line_2, "2 1 1 2 0 0 0 0 0 1");
    write_text(dir.file("m.qvx"), model_text);
    load_line(dir.file("m.qvx"), model, "", status, services);
    EXPECT_EQ(status, -1);
    EXPECT_EQ(ui.messages.back(), "You must specify either a mag column or gravity column");
}

// Every data line shorter than the magnetic column: each station read -1e32 as its reading and
// a compute reported a misfit of 1e32 as success. The empty column is reported and nothing read.
TEST_F(load_line_chain, data_lines_shorter_than_the_magnetic_column_fail_with_no_valid_values) {
    scratch_folder dir("short_lines");
    write_text(dir.file("model_line.csv"), "East North\r\n10 20\r\n30 40\r\n50 60\r\n");
    write_text(dir.file("m.qvx"), read_text(data_path("model_v7.qvx")));
    load_line(dir.file("m.qvx"), model, "", status, services);
    EXPECT_EQ(status, -1);
    EXPECT_EQ(ui.messages, std::vector<std::string>{"No valid mag values were read"});
}

TEST_F(load_line_chain, data_without_stations_fails_quietly) {
    scratch_folder dir("no_stations");
    write_text(dir.file("model_line.csv"), "East North TMI\r\n");
    write_text(dir.file("m.qvx"), read_text(data_path("model_v7.qvx")));
    load_line(dir.file("m.qvx"), model, "", status, services);
    EXPECT_EQ(status, -1);
    EXPECT_EQ(model.profile.num_stations, 0);
}

}  // namespace
}  // namespace trensil
