// The batch tool's line and project commands run as a program: a model for a data file, a line
// sampled across the survey grid, and a project whose lines are computed, inverted and exported
// several at once, with a bad line failing alone.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>

#include "io/load_line.h"
#include "support/paths.h"
#include "support/scratch_dir.h"
#include "support/scripted_platform.h"
#include "test_paths.h"

namespace trensil {
namespace {

namespace fs = std::filesystem;
using testing::read_all;

const std::string cli = std::string(TRENSIL_BINARY_DIR) + "/bin/trensil-cli";
const std::string source = TRENSIL_SOURCE_DIR;
const std::string tempest_data = source + "/examples/tempest/line_225401.csv";
const std::string survey_grid = source + "/examples/project/map_mag_1km.tif";

// "L<k><ending>": the files of the test project's lines.
std::string line_file(int k, const char* ending) {
    std::string name(1, 'L');
    name.append(std::to_string(k)).append(ending);
    return name;
}

struct run_result {
    int status = -1;
    std::string out, err;
};

struct batch_tool : ::testing::Test {
    testing::scratch_dir dir{"project_batch"};

    void SetUp() override { ASSERT_TRUE(file_exists(cli)) << "trensil-cli is not built"; }
    run_result run(const std::string& arguments) {
        const std::string command = "cd '" + dir.path().string() + "' && '" + cli + "' " +
                                    arguments + " >out.txt 2>err.txt";
        const int raw = std::system(command.c_str());
        return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, read_all(dir.file("out.txt")),
                read_all(dir.file("err.txt"))};
    }
    // Loads a line as the window does; the number of stations, -1 when it does not load.
    int stations_of(const std::string& model_path, model_record& model) {
        scripted_platform ui;
        file_search_state search;
        transform_state transforms;
        load_line_services services{ui, search, transforms, nullptr};
        reset_model(model);
        std::int16_t status = -1;
        load_line(model_path, model, "", status, services);
        return status == 0 ? model.profile.num_stations : -1;
    }
};

TEST_F(batch_tool, new_line_takes_its_columns_from_the_names_line) {
    run_result r = run("new-line '" + tempest_data + "' -o tempest.qvx --field 49299,62.6,0.1");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("columns x 3 (easting_albers_m), y 4 (northing_albers_m), sensor 9 "
                         "(gps_elevation_m), dtm 11 (dtm_m), mag 12 (tmi_nt); stations 2001"),
              std::string::npos)
        << r.out;
    model_record m;
    EXPECT_EQ(stations_of(dir.file("tempest.qvx"), m), 2001);
    EXPECT_EQ(m.num_bodies, 0);
    EXPECT_EQ(m.nhead, 2);
    EXPECT_EQ(m.names_line, 1);
    EXPECT_EQ(m.mag_intensity, 49299.0f);

    r = run("new-line '" + tempest_data + "' -o tempest.qvx --columns mag=13,z=0 --force");
    ASSERT_EQ(r.status, 0) << r.err;
    stations_of(dir.file("tempest.qvx"), m);
    EXPECT_EQ(m.magpos, 13);
    EXPECT_EQ(m.zpos, 0);

    testing::write_all(dir.file("plain.xyz"), "1 2 3\n4 5 6\n7 8 9\n");
    r = run("new-line plain.xyz");
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("--columns x=N,y=N,mag=N"), std::string::npos) << r.err;
    r = run("new-line plain.xyz --columns x=1,y=2,mag=3 -o tempest.qvx");
    EXPECT_EQ(r.status, 1);  // exists, and no --force
    EXPECT_NE(r.err.find("give --force"), std::string::npos) << r.err;
}

TEST_F(batch_tool, sample_grid_writes_dummies_where_the_grid_has_no_value) {
    // From the no-data south-west corner of the survey grid to its centre.
    run_result r = run("sample-grid --mag '" + survey_grid +
                       "' --line 346455,1173785,410455,1210785 --interval 1000 "
                       "--surface-elevation 50 -o l.csv --model l.qvx");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("stations 74 every 1000 m, "), std::string::npos) << r.out;
    const std::string csv = read_all(dir.file("l.csv"));
    EXPECT_EQ(csv.substr(0, 44), "      X,      Y,      TMI\r\n346455.00,1173785");
    std::size_t dummies = 0;
    for (std::size_t at = csv.find("* ,"); at != std::string::npos; at = csv.find("* ,", at + 1))
        ++dummies;
    ASSERT_GT(dummies, 0u);
    model_record m;
    EXPECT_EQ(stations_of(dir.file("l.qvx"), m), static_cast<int>(74 - dummies));
    EXPECT_EQ(m.topo, 50.0f);

    struct bad {
        std::string args, message;
    };
    const bad rows[] = {
        {"--mag '" + survey_grid + "' --line 400000,1200000,401000,1200000 --interval 100 -o s.csv",
         "The digitised baseline is not long enough to be meaningful (11 stations"},
        {"--mag '" + survey_grid + "' --line 400000,1200000,500000,1200000 --interval 10 -o s.csv",
         "longer than 1024 sample intervals"},
        {"--mag l.csv --line 400000,1200000,410000,1200000 --interval 100 -o s.csv",
         "An error occured while loading the grid file: l.csv: "},
        {"--mag '" + survey_grid + "' --line 1,2,3 --interval 100 -o s.csv", "two or more points"},
        // Outputs that are the grid, or one file twice.
        {"--mag l.csv --line 400000,1200000,410000,1200000 --interval 100 -o l.csv --force",
         "will not write l.csv: it is the magnetic grid"},
        {"--mag '" + survey_grid +
             "' --line 400000,1200000,410000,1200000 --interval 100 -o s.csv --model ./s.csv",
         "two outputs name one file"},
    };
    for (const bad& b : rows) {
        r = run("sample-grid " + b.args);
        EXPECT_NE(r.status, 0) << b.args;
        EXPECT_NE(r.err.find(b.message), std::string::npos) << r.err;
    }
    EXPECT_FALSE(fs::exists(dir.file("s.csv")));
}

TEST_F(batch_tool, project_lines_run_together_and_a_bad_line_fails_alone) {
    ASSERT_EQ(run("sample-grid --mag '" + survey_grid +
                  "' --line 360000,1210000,400000,1210000 --interval 500 -o base.csv "
                  "--model base.qvx")
                  .status,
              0);
    ASSERT_EQ(run("project new area --first 1000 --mag '" + survey_grid + "'").status, 0);
    const std::string base = read_all(dir.file("base.qvx"));
    for (int k = 0; k < 5; ++k) {
        const std::string name = line_file(k, ".qvx");
        std::string text = base;
        if (k == 2) text.replace(0, text.find('\r'), "gone.csv");  // its data are missing
        testing::write_all(dir.file(name), text);
        ASSERT_EQ(run("project add area.qvj " + name).status, 0);
    }
    run_result r = run("project list area.qvj");
    EXPECT_NE(r.out.find("5 lines, next number 1050"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("1020  L2.qvx"), std::string::npos) << r.out;

    r = run("project compute area.qvj -j 2");
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.out.find("line 1020: FAILED: cannot find data file 'gone.csv'"), std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("compute: 4 of 5 lines done, 1 failed (line 1020)"), std::string::npos)
        << r.out;
    for (int k = 0; k < 5; ++k)
        EXPECT_EQ(fs::exists(dir.file(line_file(k, "_profile.csv"))), k != 2) << k;
    int progress = 0;
    for (char c : r.out) progress += c == '\n';
    EXPECT_EQ(progress, 6);  // one line a line, and the summary

    r = run("project compute area.qvj -o x.csv");
    EXPECT_EQ(r.status, 2);
    r = run("project export-dxf area.qvj --force");
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.out.find("export-dxf: 4 of 5 lines done"), std::string::npos) << r.out;
}

TEST_F(batch_tool, project_invert_passes_its_options_to_every_line) {
    fs::copy_file(tempest_data, dir.file("line_225401.csv"));
    fs::copy_file(source + "/examples/tempest/tempest_line_225401.qvx", dir.file("t.qvx"));
    ASSERT_EQ(run("project new area").status, 0);
    ASSERT_EQ(run("project add area.qvj t.qvx --number 225401").status, 0);
    const run_result r = run("project invert area.qvj --all --iterations 1 -j 1");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    EXPECT_NE(r.out.find("[1/1] line 225401: wrote "), std::string::npos) << r.out;
    model_record m;
    EXPECT_EQ(stations_of(dir.file("t_fit.qvx"), m), 2001);
    EXPECT_EQ(m.num_bodies, 3);
}

}  // namespace
}  // namespace trensil
