#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "io/model_file_writer.h"
#include "support/scratch_dir.h"
#include "workspace/model_edit.h"
#include "workspace/modelling_workspace.h"
#include "workspace/recovery_copy.h"
#include "workspace_files.h"
#include "workspace_fixture.h"

namespace trensil {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using clock_type = autosave_schedule::clock;

std::vector<std::string> files_in(const fs::path& folder, const std::string& extension) {
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(folder))
        if (e.path().extension() == extension) names.push_back(e.path().string());
    return names;
}

TEST(autosave_schedule, writes_after_a_pause_or_a_long_burst_and_only_when_edited) {
    const clock_type::time_point t0{};
    autosave_schedule s;
    EXPECT_FALSE(s.due(t0 + 1h));  // nothing edited: nothing to write

    s.edited(t0);
    EXPECT_FALSE(s.due(t0 + 900ms));
    EXPECT_TRUE(s.due(t0 + 1s));
    s.taken();
    EXPECT_FALSE(s.due(t0 + 10s));

    // Edits every half second never pause; the copy is still taken 30 s after the first.
    for (auto t = t0 + 20s; t < t0 + 50s; t += 500ms) {
        s.edited(t);
        EXPECT_EQ(s.due(t), t >= t0 + 50s) << (t - t0).count();
    }
    s.edited(t0 + 50s);
    EXPECT_TRUE(s.due(t0 + 50s));

    // A failed write waits before trying again; a clean save forgets the edits.
    s.taken();
    s.failed(t0 + 51s);
    EXPECT_FALSE(s.due(t0 + 60s));
    EXPECT_TRUE(s.due(t0 + 81s));
    s.clean();
    EXPECT_FALSE(s.due(t0 + 200s));
}

TEST(recovery_copy, names_differ_per_window_model_and_folder_and_the_section_reads_back) {
    testing::scratch_dir dir("recovery_names");
    recovery_session session(dir.file("state"));
    ASSERT_TRUE(session.usable());
    const int w1 = session.next_window();
    const int w2 = session.next_window();
    const std::string a = session.copy_path(recovery_kind::model, "/lines/a/l10.qvx", w1);
    EXPECT_NE(a, session.copy_path(recovery_kind::model, "/lines/a/l10.qvx", w2));
    EXPECT_NE(a, session.copy_path(recovery_kind::model, "/lines/b/l10.qvx", w1));
    EXPECT_NE(a, session.copy_path(recovery_kind::model, "/lines/a/l20.qvx", w1));
    EXPECT_NE(session.copy_path(recovery_kind::model, "", w1),
              session.copy_path(recovery_kind::model, "", w2));
    EXPECT_EQ(a, session.copy_path(recovery_kind::model, "/lines/a/../a/l10.qvx", w1));
    EXPECT_NE(a.find("l10"), std::string::npos);  // a person can tell which file it is

    recovery_info info;
    info.kind = recovery_kind::project;
    info.original_path = "/survey/area one.qvj";
    info.data_file = "data=1.csv";
    info.saved_at = 1795000000.25;
    info.edits = 7;
    info.undo_steps = 3;
    info.session = session.id();
    std::string error;
    ASSERT_TRUE(
        write_recovery_copy(a, "Trensil Project Version 1.0\r\n" + recovery_trailer(info), error))
        << error;
    recovery_info back;
    ASSERT_TRUE(read_recovery_info(a, back));
    EXPECT_EQ(back.kind, recovery_kind::project);
    EXPECT_EQ(back.original_path, info.original_path);
    EXPECT_EQ(back.data_file, info.data_file);
    EXPECT_DOUBLE_EQ(back.saved_at, info.saved_at);
    EXPECT_EQ(back.edits, 7u);
    EXPECT_EQ(back.undo_steps, 3u);
    EXPECT_EQ(back.session, session.id());

    // A model file without the section is no copy.
    std::ofstream(dir.file("plain.qvx")) << "data.csv\r\n";
    EXPECT_FALSE(read_recovery_info(dir.file("plain.qvx"), back));
    EXPECT_FALSE(read_recovery_info(dir.file("missing.qvx"), back));
}

TEST(recovery_session, a_run_counts_as_ended_only_once_its_process_is_gone) {
    testing::scratch_dir dir("recovery_sessions");
    const std::string folder = dir.file("state");
    recovery_session mine(folder);
    std::string other_id;
    {
        recovery_session other(folder);
        other_id = other.id();
        EXPECT_FALSE(mine.ended(other_id));  // alive
        EXPECT_FALSE(mine.ended(mine.id()));
    }
    EXPECT_TRUE(mine.ended(other_id));  // closed normally

    // A child takes a session and dies without cleaning up, as a killed program does.
    int pipe_fd[2];
    ASSERT_EQ(::pipe(pipe_fd), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::close(pipe_fd[0]);
        auto* killed = new recovery_session(folder);  // never destroyed
        const std::string id = killed->id();
        (void)!::write(pipe_fd[1], id.data(), id.size());
        ::close(pipe_fd[1]);
        ::pause();
        ::_exit(0);
    }
    ::close(pipe_fd[1]);
    char buffer[128] = {};
    const ssize_t n = ::read(pipe_fd[0], buffer, sizeof buffer - 1);
    ::close(pipe_fd[0]);
    ASSERT_GT(n, 0);
    const std::string killed_id(buffer, static_cast<std::size_t>(n));
    EXPECT_FALSE(mine.ended(killed_id));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(fs::exists(fs::path(folder) / (killed_id + ".session")));
    EXPECT_TRUE(mine.ended(killed_id));
}

// A workspace showing the example model, its recovery copies in a scratch state folder.
class model_recovery_test : public ::testing::Test {
protected:
    void SetUp() override {
        old_ = fs::current_path();
        fs::current_path(dir_.path());
        model_path_ = testing_files::write_example_model(dir_.path() / "lines");
        open(f_);
    }
    void TearDown() override { fs::current_path(old_); }

    void open(workspace_fixture& f) {
        start_model_autosave(f.ws, *session_);
        ASSERT_EQ(open_model_file(f.ws, model_path_), 0);
    }
    // An edit through the edit path: the dip of body 1 and the Earth's field.
    void edit(workspace_fixture& f) {
        {
            model_edit e(f.ws, "Dip of Body 1");
            f.ws.model.body(1).dip.value = 61.5f;
            f.ws.model.body(1).mag_valid = 0;
        }
        f.type("Text_mag_intensity", "54321");
    }
    // Runs the window's timer at `t` and waits for the writer.
    void tick(workspace_fixture& f, clock_type::time_point t) {
        model_autosave_tick(f.ws, t);
        f.ws.autosave.slot.finish();
        model_autosave_tick(f.ws, t);  // hears how the write went
        f.ws.autosave.slot.finish();
    }
    // The timer sees the edit at `t` and writes the copy once the edits have paused.
    void write_copy(workspace_fixture& f, clock_type::time_point t) {
        tick(f, t);
        tick(f, t + 2s);
    }
    bool has_copy(workspace_fixture& f) { return fs::exists(f.ws.autosave.slot.copy_path()); }
    // A copy left by a run that was killed: this fixture's session ends without cleaning up.
    void leave_copy_and_crash() {
        edit(f_);
        write_copy(f_, t0_ + 5s);
        ASSERT_TRUE(has_copy(f_));
        // The run ends without its window closing: the copy stays, and the lock is free.
        crashed_copy_ = f_.ws.autosave.slot.copy_path();
        session_.reset();
        ASSERT_TRUE(fs::exists(crashed_copy_));
        session_ = std::make_unique<recovery_session>(dir_.file("state"));
    }

    testing::scratch_dir dir_{"model_recovery"};
    fs::path old_;
    std::string model_path_;
    std::unique_ptr<recovery_session> session_ =
        std::make_unique<recovery_session>(dir_.file("state"));
    std::string crashed_copy_;
    const clock_type::time_point t0_ = clock_type::now();
    workspace_fixture f_;
};

TEST_F(model_recovery_test, copy_is_written_after_an_edit_and_removed_by_save_and_close) {
    tick(f_, t0_ + 60s);
    EXPECT_FALSE(has_copy(f_));  // nothing edited

    edit(f_);
    tick(f_, t0_ + 60s);  // the edit was seen now: the copy waits for a pause
    EXPECT_FALSE(has_copy(f_));
    tick(f_, t0_ + 61s);
    ASSERT_TRUE(has_copy(f_));
    recovery_info info;
    ASSERT_TRUE(read_recovery_info(f_.ws.autosave.slot.copy_path(), info));
    EXPECT_EQ(info.original_path, recovery_key_path(model_path_));
    EXPECT_EQ(info.edits, 2u);
    EXPECT_EQ(info.undo_steps, 1u);
    EXPECT_EQ(info.session, session_->id());

    // A clean save removes it, and so does closing after another edit.
    f_.ui.file_answers.push_back(model_path_);
    f_.ui.yes_answers.push_back(true);
    ASSERT_EQ(menu_open_model(f_.ws, 1), 0);
    f_.ws.autosave.slot.finish();
    EXPECT_FALSE(has_copy(f_));
    tick(f_, t0_ + 100s);
    EXPECT_FALSE(has_copy(f_));  // saved: nothing to write until the next edit

    edit(f_);
    write_copy(f_, t0_ + 110s);
    ASSERT_TRUE(has_copy(f_));
    close_model_autosave(f_.ws);
    EXPECT_FALSE(has_copy(f_));
    EXPECT_TRUE(files_in(dir_.file("state"), ".qvx").empty());
}

TEST_F(model_recovery_test, a_copy_leaves_the_edited_model_exactly_as_it_was) {
    edit(f_);
    take_display_settings(f_.ws);  // the copy takes them from the window, as a save does
    f_.ws.model.body(2).diameter_start = 3.0f;  // writing would set it to the width
    const std::string before = model_file_text(false, f_.ws.model);
    f_.ws.model.body(2).diameter_start = 3.0f;
    const std::int16_t present = f_.ws.model.display_settings_present;
    const std::string data_file = f_.ws.model.data_file;
    (void)model_recovery_text(f_.ws);
    EXPECT_EQ(f_.ws.model.body(2).diameter_start, 3.0f);
    EXPECT_EQ(f_.ws.model.display_settings_present, present);
    EXPECT_EQ(f_.ws.model.data_file, data_file);
    EXPECT_EQ(model_file_text(false, f_.ws.model), before);
}

TEST_F(model_recovery_test, recover_gives_the_edited_model_as_an_unsaved_change_of_the_file) {
    f_.view.checks["Check_show_body_label"] = true;
    leave_copy_and_crash();
    const std::string edited = model_file_text(false, f_.ws.model);

    workspace_fixture g;
    g.ui.choice_answers.push_back(0);  // Recover
    open(g);
    ASSERT_EQ(g.ui.choices.size(), 1u);
    EXPECT_NE(g.ui.choices[0].find("File: " + recovery_key_path(model_path_)), std::string::npos);
    EXPECT_NE(g.ui.choices[0].find("Edits not saved: 2"), std::string::npos);

    model_record& m = g.ws.model;
    EXPECT_EQ(model_file_text(false, m), edited);  // every field the model file holds
    EXPECT_EQ(m.body(1).dip.value, 61.5f);
    EXPECT_EQ(m.mag_intensity, 54321.0f);
    EXPECT_EQ(m.show_body_label, 1);
    EXPECT_EQ(m.model_file, recovery_key_path(model_path_));
    EXPECT_EQ(m.data_file, f_.ws.model.data_file);
    EXPECT_TRUE(g.ws.model_changed);
    EXPECT_EQ(edits_not_saved(g.ws), 2u);
    EXPECT_EQ(g.view.caption, "Trensil: line_a.qvx");
    EXPECT_GT(m.profile.num_stations, 0);

    // The old copy goes once the new window's own copy is written; a save writes the file.
    write_copy(g, t0_ + 10s);
    EXPECT_FALSE(fs::exists(crashed_copy_));
    EXPECT_TRUE(has_copy(g));
    g.ui.file_answers.push_back(model_path_);
    g.ui.yes_answers.push_back(true);
    ASSERT_EQ(menu_open_model(g.ws, 1), 0);
    g.ws.autosave.slot.finish();
    EXPECT_TRUE(files_in(dir_.file("state"), ".qvx").empty());
    workspace_fixture h;
    open(h);
    EXPECT_TRUE(h.ui.choices.empty());
    EXPECT_EQ(h.ws.model.body(1).dip.value, 61.5f);
}

TEST_F(model_recovery_test, offered_only_when_newer_and_later_or_discard_keep_the_file) {
    leave_copy_and_crash();

    // Later: the file opens as it is, the copy stays and is not asked about again in this run.
    workspace_fixture later;
    later.ui.choice_answers.push_back(2);
    open(later);
    EXPECT_EQ(later.ui.choices.size(), 1u);
    EXPECT_NE(later.ws.model.body(1).dip.value, 61.5f);
    EXPECT_TRUE(fs::exists(crashed_copy_));
    workspace_fixture again;
    open(again);
    EXPECT_TRUE(again.ui.choices.empty());

    // The next run asks again; a file changed after the copy was taken is not offered its copy.
    session_ = std::make_unique<recovery_session>(dir_.file("state"));
    recovery_info info;
    ASSERT_TRUE(read_recovery_info(crashed_copy_, info));
    const auto copy_time = fs::file_time_type::clock::now();
    fs::last_write_time(model_path_, copy_time + 10s);
    workspace_fixture stale;
    open(stale);
    EXPECT_TRUE(stale.ui.choices.empty());
    fs::last_write_time(model_path_, copy_time - 3600s);

    workspace_fixture discard;
    discard.ui.choice_answers.push_back(1);
    open(discard);
    EXPECT_EQ(discard.ui.choices.size(), 1u);
    EXPECT_FALSE(fs::exists(crashed_copy_));
    EXPECT_NE(discard.ws.model.body(1).dip.value, 61.5f);
}

TEST_F(model_recovery_test, a_failed_save_says_why_and_keeps_the_change_and_the_copy) {
    edit(f_);
    write_copy(f_, t0_ + 3s);
    ASSERT_TRUE(has_copy(f_));
    const std::string gone = dir_.file("gone/line_a.qvx");  // a folder that is not there
    f_.ui.file_answers.push_back(gone);
    EXPECT_EQ(menu_open_model(f_.ws, 1), -1);
    ASSERT_EQ(f_.ui.messages.size(), 1u);
    EXPECT_EQ(f_.ui.messages[0],
              "An error occurred while saving the model parameters: No such file or directory");
    EXPECT_TRUE(f_.ws.model_changed);
    EXPECT_EQ(f_.ws.model.model_file, model_path_);
    EXPECT_EQ(edits_not_saved(f_.ws), 2u);
    f_.ws.autosave.slot.finish();
    EXPECT_TRUE(has_copy(f_));
    tick(f_, t0_ + 100s);
    EXPECT_TRUE(has_copy(f_));
}

std::string read_all(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// A save onto a full file system: a small tmpfs filled up where the tests may mount one, else a
// forked save whose file size limit is below the model's size (the write fails the same way).
TEST_F(model_recovery_test, a_save_to_a_full_disk_fails_with_the_reason_and_leaves_the_file) {
    const fs::path disk = dir_.path() / "small_disk";
    fs::create_directories(disk);
    const bool mounted = ::mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=256k") == 0;
    const std::string target = (disk / "line_a.qvx").string();
    fs::copy_file(model_path_, target);
    const std::string original = read_all(target);
    f_.ws.model.model_file = target;
    edit(f_);
    write_copy(f_, t0_ + 3s);
    ASSERT_TRUE(has_copy(f_));
    f_.ui.file_answers.push_back(target);
    f_.ui.yes_answers.push_back(true);

    std::string message;
    if (mounted) {
        {
            std::ofstream fill(disk / "filler", std::ios::binary);
            const std::string block(4096, 'x');
            while (fill.write(block.data(), static_cast<std::streamsize>(block.size()))) {
            }
        }
        EXPECT_EQ(menu_open_model(f_.ws, 1), -1);
        message = f_.ui.messages.empty() ? "" : f_.ui.messages.back();
        EXPECT_TRUE(f_.ws.model_changed);
        EXPECT_EQ(edits_not_saved(f_.ws), 2u);
        f_.ws.autosave.slot.finish();
        EXPECT_TRUE(has_copy(f_));
    } else {
        int pipe_fd[2];
        ASSERT_EQ(::pipe(pipe_fd), 0);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{original.size() / 2, original.size() / 2};
            ::setrlimit(RLIMIT_FSIZE, &limit);
            const int status = menu_open_model(f_.ws, 1);
            const std::string said = f_.ui.messages.empty() ? "" : f_.ui.messages.back();
            (void)!::write(pipe_fd[1], said.data(), said.size());
            ::_exit(status == -1 && f_.ws.model_changed ? 0 : 1);
        }
        ::close(pipe_fd[1]);
        char buffer[512] = {};
        const ssize_t n = ::read(pipe_fd[0], buffer, sizeof buffer - 1);
        ::close(pipe_fd[0]);
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        message.assign(buffer, n > 0 ? static_cast<std::size_t>(n) : 0);
        EXPECT_TRUE(has_copy(f_));
    }
    const std::string prefix = "An error occurred while saving the model parameters: ";
    EXPECT_EQ(message.substr(0, prefix.size()), prefix);
    EXPECT_NE(message.find(mounted ? "No space left on device" : "File too large"),
              std::string::npos)
        << message;
    EXPECT_EQ(read_all(target), original);  // byte for byte
    if (mounted) ::umount2(disk.c_str(), MNT_DETACH);
}

}  // namespace
}  // namespace trensil
