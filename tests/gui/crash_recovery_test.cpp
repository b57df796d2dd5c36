// The program is killed while it holds unsaved edits; the next run offers the recovery copy and
// brings the edited model back. Both runs are the real program in processes of their own, driven
// through their widgets by a step file.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "../support/scratch_dir.h"
#include "../workspace/workspace_files.h"
#include "gui_application.h"
#include "interface_script.h"
#include "io/model_file_reader.h"
#include "io/model_file_writer.h"
#include "modelling_window.h"
#include "qt_platform.h"
#include "support/memory_settings_store.h"
#include "workspace/model_recovery.h"
#include "workspace/recovery_copy.h"

namespace trensil {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

// The edits: the Earth's field typed in, two steps of the dip and one of the depth of body 1.
constexpr const char* edit_steps =
    "set Text_mag_intensity 54321\n"
    "set HScroll_dip_0 1\n"
    "wait 50\n"
    "set HScroll_dip_0 1\n"
    "wait 50\n"
    "set VScroll_depth_0 1\n";

pid_t start_program(const fs::path& home, const std::string& model, const std::string& steps) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    ::setenv("XDG_STATE_HOME", (home / "state").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (home / "config").c_str(), 1);
    const fs::path runtime = home / "runtime";
    fs::create_directories(runtime);
    fs::permissions(runtime, fs::perms::owner_all, fs::perm_options::replace);
    ::setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const std::string program = std::string(TRENSIL_BINARY_DIR) + "/bin/trensil";
    ::execl(program.c_str(), program.c_str(), model.c_str(), "--script", steps.c_str(),
            static_cast<char*>(nullptr));
    ::_exit(127);
}

std::vector<found_copy> copies(const fs::path& folder) {
    std::vector<found_copy> found;
    std::error_code ec;
    for (const auto& e : fs::directory_iterator(folder, ec)) {
        found_copy c{e.path().string(), {}};
        if (e.path().extension() == ".qvx" && read_recovery_info(c.path, c.info))
            found.push_back(c);
    }
    return found;
}

int wait_for_exit(pid_t child, std::chrono::seconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    int status = 0;
    while (std::chrono::steady_clock::now() < end) {
        if (::waitpid(child, &status, WNOHANG) == child)
            return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        std::this_thread::sleep_for(50ms);
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, &status, 0);
    return -2;
}

model_record read_back(const std::string& path) {
    model_record m;
    reset_model(m);
    scripted_platform ui;
    file_search_state search;
    model_file_services services{ui, search, nullptr};
    std::int16_t status = -1;
    read_model_file(0, m, path, status, services);
    EXPECT_EQ(status, 0) << path;
    return m;
}

// The model file text of a model, without what a model file does not carry back: the window's
// widths and the inversion window (written, but ignored on reading).
std::string model_text(model_record m) {
    m.display_width = 0;
    m.tab_width = 0;
    m.profile.inversion_first_station = 0;
    m.profile.inversion_last_station = 0;
    m.model_file_time = 0;
    return model_file_text(false, m);
}

TEST(crash_recovery, a_killed_window_comes_back_with_its_edits) {
    application();
    testing::scratch_dir home("crash_recovery");
    const std::string model = testing_files::write_example_model(home.path() / "lines");
    const std::string original_text = [&] {
        std::ifstream in(model, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }();

    // What the edits make of the model, in a window of this process.
    std::string expected;
    unsigned long long expected_edits = 0;
    {
        qt_platform ui;
        ui.console = true;
        memory_settings_store settings;
        modelling_window window(ui, settings);
        window.show();
        ASSERT_EQ(open_model_file(window.workspace(), model), 0);
        const std::string steps = home.file("edits_here.txt");
        std::ofstream(steps) << edit_steps;
        std::vector<interface_step> parsed;
        std::string error;
        ASSERT_TRUE(read_interface_script(steps, parsed, error)) << error;
        ASSERT_TRUE(run_interface_steps(parsed));
        ASSERT_TRUE(window.workspace().model_changed);
        expected_edits = edits_not_saved(window.workspace());
        window.workspace().model.model_file = model;
        expected = model_text(window.workspace().model);
        window.close();
    }
    ASSERT_NE(expected, model_text(read_back(model)));  // the edits changed something

    // The first run edits and is killed once its copy holds every edit.
    const std::string edits = home.file("edits.txt");
    std::ofstream(edits) << edit_steps;
    const fs::path folder = home.path() / "state" / "Trensil" / "recovery";
    const pid_t first = start_program(home.path(), model, edits);
    ASSERT_GT(first, 0);
    std::vector<found_copy> found;
    const auto give_up = std::chrono::steady_clock::now() + 60s;
    while (std::chrono::steady_clock::now() < give_up) {
        found = copies(folder);
        if (found.size() == 1 && found[0].info.edits == expected_edits) break;
        std::this_thread::sleep_for(100ms);
    }
    ::kill(first, SIGKILL);
    ::waitpid(first, nullptr, 0);
    ASSERT_EQ(found.size(), 1u) << "no recovery copy within a minute";
    EXPECT_GE(found[0].info.edits, 4u);  // each key typed is an edit
    EXPECT_EQ(found[0].info.original_path, recovery_key_path(model));
    {
        std::ifstream in(model, std::ios::binary);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), original_text);
    }

    // The second run is offered the copy, recovers it and saves it over the file.
    const std::string recover = home.file("recover.txt");
    std::ofstream(recover) << "answer Recover\n"
                              "wait 200\n"
                              "click Command_save_qvx_model\n"
                              "answer "
                           << model
                           << "\n"
                              "answer Yes\n"
                              "wait 200\n"
                              "quit\n";
    const pid_t second = start_program(home.path(), model, recover);
    ASSERT_GT(second, 0);
    EXPECT_EQ(wait_for_exit(second, 60s), 0);

    EXPECT_EQ(model_text(read_back(model)), expected);
    EXPECT_TRUE(copies(folder).empty());  // saved: no copy is left
}

}  // namespace
}  // namespace trensil
