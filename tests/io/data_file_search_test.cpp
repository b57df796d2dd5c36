#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "io/file_search.h"
#include "support/scratch_dir.h"
#include "support/scripted_platform.h"

namespace trensil {
namespace {

using testing::scratch_dir;
using testing::write_all;

// Records what the open dialog was asked to show.
class dialog_recorder : public scripted_platform {
public:
    std::string title, filter, initial;
    std::optional<std::string> choose_open_file(const std::string& t, const std::string& f,
                                                const std::string& i) override {
        title = t, filter = f, initial = i;
        return scripted_platform::choose_open_file(t, f, i);
    }
};

// A moved project: <root>/new/survey/lines/ holds the line files.
struct moved_project {
    scratch_dir dir{"iodata_search"};
    std::string root = dir.path().string();
    std::string lines = root + "/new/survey/lines/";
    moved_project() {
        std::filesystem::create_directories(lines);
        write_all(lines + "iodata_line1.csv", "1 2 3\n");
        write_all(lines + "iodata_line2.csv", "1 2 3\n");
    }
};

TEST(data_file_search, finds_a_moved_file_beside_or_above_its_owner) {
    moved_project p;
    file_search_state state;
    scripted_platform ui;
    const auto cwd = std::filesystem::current_path();

    std::string path = "/old/place/lines/iodata_line1.csv";
    EXPECT_EQ(search_for_file("profile data file", path, p.lines + "model.qvx", state, ui), 0);
    EXPECT_EQ(path, p.lines + "iodata_line1.csv");

    // Relative, written from the project's level with back slashes: found by climbing.
    path = "lines\\iodata_line2.csv";
    EXPECT_EQ(
        search_for_file("profile data file", path, p.root + "/new/survey/a/b/x.qvj", state, ui), 0);
    EXPECT_EQ(path, p.root + "/new/survey/lines/iodata_line2.csv");
    EXPECT_TRUE(ui.questions.empty());
    EXPECT_EQ(std::filesystem::current_path(), cwd);
}

TEST(data_file_search, the_users_answer_teaches_the_move_for_later_files) {
    moved_project p;
    file_search_state state;
    dialog_recorder ui;
    ui.file_answers.push_back(p.lines + "iodata_line1.csv");
    std::string path = "/old/place/survey/lines/iodata_line1.csv";
    EXPECT_EQ(search_for_file("profile data file", path, "", state, ui), 0);
    EXPECT_EQ(path, p.lines + "iodata_line1.csv");
    EXPECT_EQ(ui.title, "Could not find profile data file please specify its location");
    EXPECT_EQ(ui.filter, "Data files (*.csv)|*.csv|All files (*.*)|*.*");
    EXPECT_EQ(ui.initial, "/old/place/survey/lines/iodata_line1.csv");
    // The trailing "survey/lines" is common: the leading parts that differ are remembered.
    EXPECT_EQ(state.old_prefix, "/old/place/");
    EXPECT_EQ(state.new_prefix, p.root + "/new/");

    // A file in another folder of the old tree is now found through the prefix, unasked.
    std::filesystem::create_directories(p.root + "/new/survey/grids");
    write_all(p.root + "/new/survey/grids/iodata_mag.grd", "");
    path = "/old/place/survey/grids/iodata_mag.grd";
    EXPECT_EQ(search_for_file("grid file", path, "", state, ui), 0);
    EXPECT_EQ(path, p.root + "/new/survey/grids/iodata_mag.grd");
}

TEST(data_file_search, cancel_and_wrong_answers) {
    file_search_state state;
    dialog_recorder ui;
    std::string path = "/old/place/iodata_gone";
    ui.file_answers = {std::nullopt, std::nullopt, std::string("/also/not/here.csv")};
    ui.yes_answers = {true, false};
    // Cancel, then Yes: stop reading the owner, path unchanged.
    EXPECT_EQ(search_for_file("profile data file", path, "", state, ui), -1);
    EXPECT_EQ(path, "/old/place/iodata_gone");
    EXPECT_EQ(ui.questions.back(), "Cancel reading rest of specification file?");
    EXPECT_EQ(ui.filter, "All files (*.*)|*.*");
    // Cancel, then No: go on without the file.
    EXPECT_EQ(search_for_file("profile data file", path, "", state, ui), 0);
    EXPECT_EQ(path, "");
    // A picked name that does not exist either.
    path = "/old/place/iodata_gone";
    EXPECT_EQ(search_for_file("profile data file", path, "", state, ui), 0);
    EXPECT_EQ(path, "");
    EXPECT_TRUE(state.last_found.empty());
}

}  // namespace
}  // namespace trensil
