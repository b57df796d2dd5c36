#include "line_jobs.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <thread>

extern char** environ;

namespace trensil::cli {

namespace {

// This program's own file, for starting it again.
std::string own_executable() {
    std::array<char, 4096> path{};
    const ssize_t n = ::readlink("/proc/self/exe", path.data(), path.size() - 1);
    return n > 0 ? std::string(path.data(), static_cast<std::size_t>(n)) : "trensil-cli";
}

struct running_job {
    std::size_t index = 0;
    pid_t pid = -1;
    int out_fd = -1, err_fd = -1;
    line_job_result result;
};

// Starts a job with its standard output and error on pipes; false with the reason.
bool start(const std::string& program, const line_job& job, running_job& run, std::string& why) {
    int out_pipe[2], err_pipe[2];
    if (::pipe2(out_pipe, O_CLOEXEC) != 0) {
        why = std::strerror(errno);
        return false;
    }
    if (::pipe2(err_pipe, O_CLOEXEC) != 0) {
        why = std::strerror(errno);
        ::close(out_pipe[0]);
        ::close(out_pipe[1]);
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out_pipe[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err_pipe[1], STDERR_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);

    std::vector<std::string> words{program};
    words.insert(words.end(), job.args.begin(), job.args.end());
    std::vector<char*> argv;
    for (std::string& w : words) argv.push_back(w.data());
    argv.push_back(nullptr);

    pid_t pid = -1;
    const int failed =
        ::posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(out_pipe[1]);
    ::close(err_pipe[1]);
    if (failed != 0) {
        why = std::strerror(failed);
        ::close(out_pipe[0]);
        ::close(err_pipe[0]);
        return false;
    }
    run.pid = pid;
    run.out_fd = out_pipe[0];
    run.err_fd = err_pipe[0];
    return true;
}

// Reads what is there on `fd` into `text`; closes it at the end of the output.
void drain(int& fd, std::string& text) {
    char buffer[4096];
    const ssize_t n = ::read(fd, buffer, sizeof buffer);
    if (n > 0) {
        text.append(buffer, static_cast<std::size_t>(n));
    } else if (n == 0 || (errno != EINTR && errno != EAGAIN)) {
        ::close(fd);
        fd = -1;
    }
}

int exit_status_of(int wait_status) {
    if (WIFEXITED(wait_status)) return WEXITSTATUS(wait_status);
    if (WIFSIGNALED(wait_status)) return 128 + WTERMSIG(wait_status);
    return 1;
}

}  // namespace

int processor_count() {
    const unsigned n = std::thread::hardware_concurrency();
    return n > 0 ? static_cast<int>(n) : 1;
}

void run_line_jobs(const std::vector<line_job>& jobs, int parallel,
                   const std::function<void(const line_job&, const line_job_result&)>& done) {
    const std::string program = own_executable();
    const std::size_t slots = static_cast<std::size_t>(parallel < 1 ? 1 : parallel);
    std::vector<running_job> running;
    std::size_t next = 0;
    while (next < jobs.size() || !running.empty()) {
        while (next < jobs.size() && running.size() < slots) {
            running_job run;
            run.index = next;
            std::string why;
            if (start(program, jobs[next], run, why)) {
                running.push_back(std::move(run));
            } else {
                done(jobs[next], {127, "", "cannot start " + program + ": " + why + "\n"});
            }
            ++next;
        }
        if (running.empty()) continue;

        std::vector<pollfd> fds;
        for (const running_job& r : running) {
            if (r.out_fd >= 0) fds.push_back({r.out_fd, POLLIN, 0});
            if (r.err_fd >= 0) fds.push_back({r.err_fd, POLLIN, 0});
        }
        if (!fds.empty() && ::poll(fds.data(), fds.size(), -1) < 0 && errno != EINTR) {
            // Polling itself failed: stop listening, so that the jobs are waited for below.
            for (running_job& r : running) {
                for (int* fd : {&r.out_fd, &r.err_fd}) {
                    if (*fd >= 0) ::close(*fd);
                    *fd = -1;
                }
            }
            fds.clear();
        }
        for (const pollfd& p : fds) {
            if (p.revents == 0) continue;
            for (running_job& r : running) {
                if (r.out_fd == p.fd) drain(r.out_fd, r.result.out);
                if (r.err_fd == p.fd) drain(r.err_fd, r.result.err);
            }
        }
        // A job whose output has ended has finished, or is about to: wait for it.
        for (auto it = running.begin(); it != running.end();) {
            if (it->out_fd >= 0 || it->err_fd >= 0) {
                ++it;
                continue;
            }
            int status = 0;
            while (::waitpid(it->pid, &status, 0) < 0 && errno == EINTR) {
            }
            it->result.exit_status = exit_status_of(status);
            done(jobs[it->index], it->result);
            it = running.erase(it);
        }
    }
}

}  // namespace trensil::cli
