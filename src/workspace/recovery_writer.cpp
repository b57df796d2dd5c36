#include "workspace/recovery_writer.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "workspace/recovery_copy.h"

namespace trensil {

recovery_writer::recovery_writer() : thread_([this](std::stop_token stop) { run(stop); }) {}

recovery_writer::~recovery_writer() {
    wait_idle();
    thread_.request_stop();
    wake_.notify_all();
}

void recovery_writer::write(std::string path, std::string text) {
    {
        std::lock_guard lock(mutex_);
        auto waiting = std::find_if(tasks_.begin(), tasks_.end(),
                                    [&](const task& t) { return !t.remove && t.path == path; });
        if (waiting != tasks_.end()) {
            waiting->text = std::move(text);
        } else {
            tasks_.push_back({std::move(path), std::move(text), false});
        }
    }
    wake_.notify_one();
}

void recovery_writer::remove(std::string path) {
    {
        std::lock_guard lock(mutex_);
        std::erase_if(tasks_, [&](const task& t) { return !t.remove && t.path == path; });
        tasks_.push_back({std::move(path), {}, true});
    }
    wake_.notify_one();
}

std::optional<recovery_writer::result> recovery_writer::take_result() {
    std::lock_guard lock(mutex_);
    std::optional<result> r = std::move(last_);
    last_.reset();
    return r;
}

void recovery_writer::wait_idle() {
    std::unique_lock lock(mutex_);
    idle_.wait(lock, [this] { return tasks_.empty() && !busy_; });
}

void recovery_writer::run(std::stop_token stop) {
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, stop, [this] { return !tasks_.empty(); });
        if (tasks_.empty()) return;  // asked to stop with nothing left to do
        task next = std::move(tasks_.front());
        tasks_.pop_front();
        busy_ = true;
        lock.unlock();
        result done{next.path, true, {}};
        if (next.remove) {
            std::error_code ec;
            std::filesystem::remove(next.path, ec);
        } else {
            done.ok = write_recovery_copy(next.path, next.text, done.error);
        }
        lock.lock();
        busy_ = false;
        if (!next.remove) last_ = std::move(done);
        if (tasks_.empty()) idle_.notify_all();
    }
}

}  // namespace trensil
