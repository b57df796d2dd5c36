// Writes recovery copies on a thread of its own, so that the interface thread only takes the
// snapshot and never waits for the disk. Tasks run in the order given; a copy waiting to be
// written is replaced by a newer one of the same file, and removing a file drops its waiting
// copies, so a copy written after the save that removed it cannot come back.
//
//   recovery_writer writer;
//   writer.write(path, text);               // returns at once
//   if (auto r = writer.take_result()) ...  // the last write that finished: ok or the reason
//   writer.remove(path);                    // after a save or on closing
//   writer.wait_idle();
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace trensil {

class recovery_writer {
public:
    struct result {
        std::string path;
        bool ok = false;
        std::string error;
    };

    recovery_writer();
    // Finishes the tasks given, then stops the thread.
    ~recovery_writer();
    recovery_writer(const recovery_writer&) = delete;
    recovery_writer& operator=(const recovery_writer&) = delete;

    void write(std::string path, std::string text);
    void remove(std::string path);
    // The outcome of the last write finished since the previous call, if any.
    std::optional<result> take_result();
    // Returns when every task given so far is done.
    void wait_idle();

private:
    struct task {
        std::string path;
        std::string text;
        bool remove = false;
    };
    void run(std::stop_token stop);

    std::mutex mutex_;
    std::condition_variable_any wake_;
    std::condition_variable idle_;
    std::deque<task> tasks_;
    bool busy_ = false;
    std::optional<result> last_;
    std::jthread thread_;
};

}  // namespace trensil
