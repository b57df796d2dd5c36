// The batch tool run as a program: compute on the bundled example agrees with the engine, and
// every bad input ends with exit status 1 and one line on standard error.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "core/model_record.h"
#include "io/coordinate_transform.h"
#include "io/load_line.h"
#include "io/model_file_reader.h"
#include "model_test_files.h"
#include "response/response_driver.h"
#include "support/paths.h"
#include "support/scripted_platform.h"
#include "support/text_tokens.h"

namespace trensil {
namespace {

using model_testing::data_path;
using model_testing::read_text;
using model_testing::scratch_folder;
using model_testing::write_text;

const std::string cli_path = std::string(TRENSIL_BINARY_DIR) + "/bin/trensil-cli";
const std::string example_model =
    std::string(TRENSIL_SOURCE_DIR) + "/examples/tempest/tempest_line_225401.qvx";

struct cli_run {
    int status = -1;
    std::string out;
    std::string err;
    int error_lines() const {
        int lines = 0;
        for (char c : err) lines += c == '\n';
        return lines;
    }
};

struct cli_tool : ::testing::Test {
    scratch_folder dir{"cli"};

    void SetUp() override { ASSERT_TRUE(file_exists(cli_path)) << "trensil-cli is not built"; }
    cli_run run(const std::string& arguments) {
        const std::string command = "'" + cli_path + "' " + arguments + " >'" + dir.file("out") +
                                    "' 2>'" + dir.file("err") + "'";
        cli_run r;
        const int raw = std::system(command.c_str());
        r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
        r.out = read_text(dir.file("out"));
        r.err = read_text(dir.file("err"));
        return r;
    }
    std::string q(const std::string& path) { return "'" + path + "'"; }
};

// The word of `text` that starts at `at`.
std::string take_word_after(const std::string& text, std::size_t at) {
    std::string rest = text.substr(at);
    return take_word(rest);
}

std::vector<std::string> csv_fields(std::string line) {
    std::vector<std::string> fields;
    std::stringstream s(line);
    std::string f;
    while (std::getline(s, f, ',')) fields.push_back(trim_text(f));
    return fields;
}

TEST_F(cli_tool, compute_on_the_example_writes_the_engine_response) {
    const std::string out = dir.file("example.csv");
    const cli_run r = run("compute " + q(example_model) + " -o " + q(out));
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out.substr(0, 30), "stations 2001, bodies 3, magne");

    // The same model loaded and computed here.
    scripted_platform ui;
    file_search_state search;
    transform_state transforms;
    load_line_services services{ui, search, transforms, nullptr};
    model_record model;
    reset_model(model);
    std::int16_t status = 99;
    load_line(example_model, model, "", status, services);
    ASSERT_EQ(status, 0);
    response_state state;
    calculate_display_channels(model, state);

    std::stringstream csv(read_text(out));
    std::string line;
    std::getline(csv, line);
    std::getline(csv, line);
    const std::vector<std::string> head = csv_fields(line);
    ASSERT_EQ(head.size(), 11u);
    EXPECT_EQ(head[8], "TMI_Mod");
    int station = 0;
    while (std::getline(csv, line) && !trim_text(line).empty()) {
        ++station;
        const std::vector<std::string> f = csv_fields(line);
        ASSERT_EQ(f.size(), 11u);
        EXPECT_NEAR(parse_number(f[3]), model.profile.profile_distance(station), 0.051);
        EXPECT_NEAR(parse_number(f[8]), model.profile.mag_channels(computed_raw, station), 5e-5);
        EXPECT_NEAR(parse_number(f[9]), model.profile.mag_channels(computed_level, station), 5e-5);
    }
    EXPECT_EQ(station, 2001);
}

TEST_F(cli_tool, compute_refuses_to_overwrite_without_force) {
    const std::string out = dir.file("exists.csv");
    write_text(out, "keep");
    cli_run r = run("compute " + q(example_model) + " -o " + q(out));
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.error_lines(), 1);
    EXPECT_EQ(read_text(out), "keep");
    r = run("compute " + q(example_model) + " -o " + q(out) + " --force");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_NE(read_text(out), "keep");
}

TEST_F(cli_tool, export_dxf_writes_both_files_beside_the_model_and_replaces_them_only_by_force) {
    const std::string model = dir.file("line.qvx");
    write_text(model, read_text(example_model));
    std::filesystem::copy_file(
        std::string(TRENSIL_SOURCE_DIR) + "/examples/tempest/line_225401.csv",
        dir.file("line_225401.csv"));
    ASSERT_EQ(run("export-dxf " + q(model)).status, 0);
    const std::vector<std::string> written = {dir.file("line.dxf"), dir.file("line_3d.dxf")};
    for (const std::string& path : written) {
        ASSERT_TRUE(file_exists(path)) << path;
        write_text(path, "old");
    }
    const cli_run refused = run("export-dxf " + q(model));
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.error_lines(), 1) << refused.err;
    for (const std::string& path : written) EXPECT_EQ(read_text(path), "old");
    EXPECT_EQ(run("export-dxf " + q(model) + " --force").status, 0);
    for (const std::string& path : written) EXPECT_NE(read_text(path), "old");
}

// The synthetic example with its first body moved off its true place, as start.qvx.
void write_synthetic_start(const scratch_folder& dir) {
    const std::string synthetic = std::string(TRENSIL_SOURCE_DIR) + "/examples/synthetic/";
    std::string model = read_text(synthetic + "synthetic_truth.qvx");
    const std::size_t at = model.find(" 3000  0  0  150 ");
    ASSERT_NE(at, std::string::npos);
    model.replace(at, 5, " 3300");
    write_text(dir.file("start.qvx"), model);
    std::filesystem::copy_file(synthetic + "synthetic_line.csv", dir.file("synthetic_line.csv"));
}

// The misfit after `label` ("initial misfit ", "final misfit ") in the tool's output.
double printed_misfit(const std::string& out, const std::string& label) {
    const std::size_t at = out.find(label);
    return at == std::string::npos ? -1.0 : parse_number(take_word_after(out, at + label.size()));
}

TEST_F(cli_tool, invert_lowers_the_misfit_and_writes_its_output_once) {
    write_synthetic_start(dir);
    const std::string args = "invert " + q(dir.file("start.qvx")) + " -o " + q(dir.file("fit.qvx"));
    const cli_run r = run(args);
    ASSERT_EQ(r.status, 0) << r.err;
    ASSERT_GE(printed_misfit(r.out, "final misfit "), 0.0) << r.out;
    EXPECT_LT(printed_misfit(r.out, "final misfit "), printed_misfit(r.out, "initial misfit "))
        << r.out;
    ASSERT_TRUE(file_exists(dir.file("fit.qvx")));
    const std::string fitted = read_text(dir.file("fit.qvx"));
    const cli_run again = run(args);
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.error_lines(), 1) << again.err;
    EXPECT_EQ(read_text(dir.file("fit.qvx")), fitted);
}

TEST_F(cli_tool, invert_by_least_squares_prints_errors_and_its_options_need_it) {
    write_synthetic_start(dir);
    const std::string start = q(dir.file("start.qvx")) + " -o " + q(dir.file("fit.qvx"));
    const cli_run r =
        run("invert " + start + " --solver lm --body 1 --iterations 8 --noise-mag 1.5");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_LT(printed_misfit(r.out, "final misfit "), printed_misfit(r.out, "initial misfit "))
        << r.out;
    EXPECT_NE(r.out.find("iteration 8 misfit "), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("magnetic noise level 1.5 nT\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("\nbody 1 Dip "), std::string::npos) << r.out;
    EXPECT_NE(r.out.find(" +- "), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("\ncorrelation body 1 "), std::string::npos) << r.out;

    for (const char* bad : {"--joint", "--robust", "--noise-grav 0.1", "--solver newton",
                            "--solver lm --noise-mag -1", "--solver lm --noise-grav x"}) {
        SCOPED_TRACE(bad);
        const cli_run refused = run("invert " + start + " --force " + bad);
        EXPECT_EQ(refused.status, 2);
    }
}

TEST_F(cli_tool, bad_model_files_fail_with_one_line) {
    const std::string model = read_text(example_model);
    const std::string data = std::string(TRENSIL_SOURCE_DIR) + "/examples/tempest/line_225401.csv";
    write_text(dir.file("empty.qvx"), "");
    write_text(dir.file("binary.qvx"), std::string("\x7f"
                                                   "ELF\x02\x01\x01\0\0\0\0",
                                                   11) +
                                           model);
    write_text(dir.file("truncated.qvx"), data + "\r\n" + model.substr(model.find('\n') + 1, 200));
    // Cut inside the body-count line, and inside the last body line (a bodies' file ends there
    // without its display settings): each read as a whole model before.
    const std::string whole = data + "\r\n" + model.substr(model.find('\n') + 1);
    write_text(dir.file("cut_in_count.qvx"), whole.substr(0, whole.find(" 3  7 ") + 1));
    const std::size_t last_body_end = whole.find("\r\n", whole.rfind(" 1 -99999 -99999 \r\n"));
    write_text(dir.file("cut_in_body.qvx"), whole.substr(0, last_body_end - 20));
    // 1e999 is no number a field can hold (it was read as infinity and written as "inf").
    std::string infinite = whole;
    infinite.replace(infinite.find("\r\n 0  1  1 \r\n") + 2, 9, " 1e999  1  1 ");
    write_text(dir.file("infinite.qvx"), infinite);
    for (const char* name : {"missing.qvx", "empty.qvx", "binary.qvx", "truncated.qvx",
                             "cut_in_count.qvx", "cut_in_body.qvx", "infinite.qvx"}) {
        SCOPED_TRACE(name);
        const cli_run r = run("compute " + q(dir.file(name)) + " -o " + q(dir.file("o.csv")));
        EXPECT_EQ(r.status, 1);
        EXPECT_EQ(r.error_lines(), 1) << r.err;
        EXPECT_NE(r.err.find(name), std::string::npos) << r.err;
        EXPECT_FALSE(file_exists(dir.file("o.csv")));
        const cli_run converted =
            run("convert " + q(dir.file(name)) + " -o " + q(dir.file("o.qvx")));
        EXPECT_EQ(converted.status, 1);
        EXPECT_FALSE(file_exists(dir.file("o.qvx")));
    }
}

TEST_F(cli_tool, bad_data_files_fail_with_one_line_and_data_option_replaces_them) {
    const std::string model = read_text(example_model);
    const std::string body = model.substr(model.find('\n'));
    const std::string data =
        read_text(std::string(TRENSIL_SOURCE_DIR) + "/examples/tempest/line_225401.csv");
    write_text(dir.file("empty.csv"), "");
    write_text(dir.file("binary.csv"), std::string("\0\0\x01\x02\xff", 5) + data);
    write_text(dir.file("truncated.csv"), data.substr(0, 1000));
    write_text(dir.file("heading_only.csv"), data.substr(0, data.find('\n') + 1));
    write_text(dir.file("short.csv"), data.substr(0, data.find('\n', 20000) + 1));
    // Every line shorter than the magnetic column (12): -1e32 stood for every reading.
    write_text(dir.file("narrow.csv"), "x y\r\n1 2\r\n3 4\r\n5 6\r\n");
    for (const char* name : {"gone.csv", "empty.csv", "binary.csv", "truncated.csv",
                             "heading_only.csv", "narrow.csv"}) {
        SCOPED_TRACE(name);
        write_text(dir.file("m.qvx"), dir.file(name) + body);
        const cli_run r = run("compute " + q(dir.file("m.qvx")) + " -o " + q(dir.file("o.csv")));
        EXPECT_EQ(r.status, 1);
        EXPECT_EQ(r.error_lines(), 1) << r.err;
        EXPECT_NE(r.err.find(name), std::string::npos) << r.err;
        // The data file given on the command line takes the place of the one named.
        const cli_run with_data = run("compute " + q(dir.file("m.qvx")) + " --force --data " +
                                      q(dir.file("short.csv")) + " -o " + q(dir.file("o.csv")));
        EXPECT_EQ(with_data.status, 0) << with_data.err;
    }
}

TEST_F(cli_tool, usage_errors_exit_with_2_and_help_with_0) {
    for (const char* bad :
         {"compute", "compute a.qvx --bogus", "compute a.qvx -o", "convert a.qvx", "info"})
        EXPECT_EQ(run(bad).status, 2) << bad;
    for (const char* command : {"compute", "convert", "info"}) {
        const cli_run r = run(std::string(command) + " --help");
        EXPECT_EQ(r.status, 0);
        EXPECT_NE(r.out.find(std::string("usage: trensil-cli ") + command), std::string::npos);
    }
}

TEST_F(cli_tool, convert_writes_the_current_version_and_info_lists_bodies) {
    const std::string out = dir.file("v5_now.qvx");
    cli_run r = run("convert " + q(data_path("model_v5.qvx")) + " -o " + q(out));
    ASSERT_EQ(r.status, 0) << r.err;
    const std::string text = read_text(out);
    EXPECT_NE(text.find("\r\n 2  7  400  0  0 \r\n"), std::string::npos) << text;

    scripted_platform ui;
    file_search_state search;
    model_file_services services{ui, search, nullptr};
    model_record old_model, new_model;
    reset_model(old_model);
    reset_model(new_model);
    std::int16_t status = 99;
    read_model_file(0, old_model, data_path("model_v5.qvx"), status, services);
    model_read_summary summary;
    read_model_file(0, new_model, out, status, services, &summary);
    EXPECT_EQ(summary.format_version, 7);
    EXPECT_EQ(new_model.body(1).rem_q.value, old_model.body(1).rem_q.value);  // converted once
    EXPECT_EQ(new_model.body(2).name, "0 South dyke");

    r = run("info " + q(out));
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("  1  Thin Sheet  100  10  20  400  15  75  1000  2.9  North dyke\n"),
              std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("field           50000 nT, inclination -60, declination 5"),
              std::string::npos);
}

// compute's default output, MODEL.csv, is the model's own data file here: it is never replaced,
// --force or not; nor is the model, by any name of it (a link, a hard link, "./").
TEST_F(cli_tool, outputs_never_replace_the_model_or_its_data_file) {
    const std::string data =
        read_text(std::string(TRENSIL_SOURCE_DIR) + "/examples/tempest/line_225401.csv");
    const std::string model = read_text(example_model);
    write_text(dir.file("line.csv"), data);
    write_text(dir.file("line.qvx"), "line.csv" + model.substr(model.find('\r')));
    std::filesystem::create_symlink("line.qvx", dir.path() / "link.qvx");
    std::filesystem::create_hard_link(dir.file("line.csv"), dir.file("hard.csv"));
    const std::string m = q(dir.file("line.qvx"));
    const std::string refused[] = {
        "compute " + m,
        "compute " + m + " --force",
        "compute " + m + " --force -o " + q(dir.file("hard.csv")),
        "convert " + m + " --force -o " + q(dir.file("link.qvx")),
        "convert " + m + " --force -o " + q(dir.path().string() + "/./line.csv"),
        "invert " + m + " --force -o " + q(dir.file("line.qvx")),
        "invert " + m + " --force -o " + q(dir.file("fit.qvx")) + " --csv " +
            q(dir.file("line.csv")),
        "export-dxf " + m + " --force --plan " + q(dir.file("line.csv")),
        "new-line " + q(dir.file("line.csv")) + " --force -o " + q(dir.file("hard.csv")),
    };
    for (const std::string& args : refused) {
        SCOPED_TRACE(args);
        const cli_run r = run(args);
        EXPECT_EQ(r.status, 1);
        EXPECT_EQ(r.error_lines(), 1) << r.err;
        EXPECT_NE(r.err.find("will not write"), std::string::npos) << r.err;
    }
    EXPECT_EQ(read_text(dir.file("line.csv")), data);
    EXPECT_EQ(read_text(dir.file("line.qvx")), "line.csv" + model.substr(model.find('\r')));
    EXPECT_FALSE(file_exists(dir.file("fit.qvx")));
}

// Two outputs of one path were written one over the other without a word: bad usage now.
TEST_F(cli_tool, two_outputs_of_one_path_are_bad_usage) {
    write_synthetic_start(dir);
    const std::string m = q(dir.file("start.qvx"));
    const std::string x = q(dir.file("x.out"));
    for (const std::string& args :
         {"export-dxf " + m + " --plan " + x + " --3d " + x,
          "invert " + m + " -o " + x + " --csv " + x,
          "invert " + m + " -o " + x + " --csv " +
              q(dir.path().string() + "/../" + dir.path().filename().string() + "/x.out")}) {
        SCOPED_TRACE(args);
        const cli_run r = run(args);
        EXPECT_EQ(r.status, 2);
        EXPECT_NE(r.err.find("two outputs name one file"), std::string::npos) << r.err;
        EXPECT_FALSE(file_exists(dir.file("x.out")));
    }
}

// A station exactly on the top corner of a dense sheet: the engine stops that body's gravity
// there. compute and invert used to write their results and exit 0; the message now goes to
// standard error, nothing is written and the status is 1.
TEST_F(cli_tool, engine_failure_while_computing_fails_the_command) {
    std::string rows = "x,y,z,ground,tmi,grav\n";
    for (int i = 0; i <= 10; ++i) rows += std::to_string(i * 100) + ",0,0,-10,0,0\n";
    write_text(dir.file("corner.csv"), rows);
    const std::string free = " 1 -99999 -99999 ";
    const std::string fixed = " 0 -99999 -99999 ";
    write_text(dir.file("corner.qvx"),
               "corner.csv\r\n 2 1 1 2 3 4 5 6 0 1\r\n 52000 -55 8\r\n 0 11 1 0 0 0\r\n"
               " 0 0 0 0 0 0\r\n 0 1 1\r\n 0 0\r\n 0 0\r\n 1 1\r\n 1 1\r\n 0 1\r\n"
               " 1 7 500 -1000 1000\r\n 2 0 1 255 0 Corner\r\n\r\n\r\n"
               " 500 0 0 0" +
                   free + fixed +
                   " 100 100 0 0 12 1 0\r\n"
                   " 0 90 100 200" +
                   fixed + fixed + free + fixed +
                   "\r\n"
                   " 0" +
                   fixed + "\r\n 0" + fixed + "\r\n 0" + fixed + " 0" + fixed +
                   "\r\n"
                   " 0 0 0 0" +
                   fixed + fixed + fixed + fixed + " 1" + free + "\r\n");
    const std::string m = q(dir.file("corner.qvx"));
    for (const std::string& args : {"compute " + m + " -o " + q(dir.file("o.csv")),
                                    "invert " + m + " --gravity -o " + q(dir.file("o.qvx"))}) {
        SCOPED_TRACE(args);
        const cli_run r = run(args);
        EXPECT_EQ(r.status, 1);
        EXPECT_NE(r.err.find("An error occurred while calculating the gravity response: "),
                  std::string::npos)
            << r.err;
    }
    EXPECT_FALSE(file_exists(dir.file("o.csv")));
    EXPECT_FALSE(file_exists(dir.file("o.qvx")));
}

// Observed values near the single-precision limit make the misfit infinite: the run used to go
// on and write a "fitted" model with status 0.
TEST_F(cli_tool, invert_refuses_an_infinite_misfit) {
    write_synthetic_start(dir);
    std::string data = read_text(dir.file("synthetic_line.csv"));
    std::string huge;
    std::istringstream lines(data);
    std::string line;
    std::getline(lines, line);
    huge = line + "\n";
    while (std::getline(lines, line)) {
        std::vector<std::string> f = csv_fields(line);
        if (f.size() < 6) continue;
        f[4] = "3.3e38";
        std::string joined;
        for (const std::string& v : f) joined += (joined.empty() ? "" : ",") + v;
        huge += joined + "\n";
    }
    write_text(dir.file("synthetic_line.csv"), huge);
    const cli_run r = run("invert " + q(dir.file("start.qvx")) + " -o " + q(dir.file("fit.qvx")));
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("The misfit cannot be computed"), std::string::npos) << r.err;
    EXPECT_FALSE(file_exists(dir.file("fit.qvx")));
}

}  // namespace
}  // namespace trensil
