#include "support/atomic_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace trensil {

atomic_file::atomic_file(std::string target_path) : target_(std::move(target_path)) {
    temporary_ = target_ + ".tmp" + std::to_string(::getpid());
    out_.open(temporary_, std::ios::binary | std::ios::trunc);
    if (!out_.is_open()) error_ = std::strerror(errno);
}

atomic_file::~atomic_file() {
    if (committed_) return;
    if (out_.is_open()) out_.close();
    std::error_code ec;
    std::filesystem::remove(temporary_, ec);
}

bool atomic_file::commit() {
    if (!out_.is_open()) {
        if (error_.empty()) error_ = "File not open";
        return false;
    }
    out_.flush();
    const bool written = static_cast<bool>(out_);
    out_.close();
    if (!written || out_.fail()) {
        error_ = errno != 0 ? std::strerror(errno) : "Write failure";
        std::error_code ec;
        std::filesystem::remove(temporary_, ec);
        return false;
    }
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0) {
        error_ = std::strerror(errno);
        std::error_code ec;
        std::filesystem::remove(temporary_, ec);
        return false;
    }
    committed_ = true;
    return true;
}

}  // namespace trensil
