#include "support/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

namespace trensil {

namespace {

namespace fs = std::filesystem;

// The file a path finally names: a symbolic link (or a chain of them) is followed to the file it
// points at, so that replacing the file keeps the link. A dangling link gives the path it points
// at, which the write then creates. Empty with `error` on a loop of links.
std::string file_behind_links(const std::string& path, std::string& error) {
    fs::path p(path);
    for (int hops = 0; hops < 40; ++hops) {
        std::error_code ec;
        if (!fs::is_symlink(fs::symlink_status(p, ec))) return p.string();
        const fs::path next = fs::read_symlink(p, ec);
        if (ec) {
            error = ec.message();
            return std::string();
        }
        p = next.is_absolute() ? next : p.parent_path() / next;
    }
    error = std::strerror(ELOOP);
    return std::string();
}

// The permission bits a new file of this process gets (0666 less the creation mask).
mode_t new_file_mode() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

// Flushes a file's or folder's contents to the disk; failures are left to the caller's later steps.
bool sync_path(const std::string& path, int flags) {
    const int fd = ::open(path.c_str(), flags | O_CLOEXEC);
    if (fd < 0) return false;
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    return synced;
}

}  // namespace

atomic_file::atomic_file(std::string target_path) : target_(std::move(target_path)) {
    destination_ = file_behind_links(target_, error_);
    if (destination_.empty()) return;

    // A short name of its own in the target's folder: a target whose name is near the longest
    // a folder allows still has room for it, and the rename stays within one file system.
    const fs::path folder = fs::path(destination_).parent_path();
    std::string pattern = (folder.empty() ? fs::path(".") : folder) / ".trensil-XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    const int fd = ::mkstemp(name.data());
    if (fd < 0) {
        error_ = std::strerror(errno);
        return;
    }
    temporary_ = name.data();
    // The replaced file keeps its permissions; a new one gets those of any new file.
    struct stat old {};
    const mode_t mode =
        ::stat(destination_.c_str(), &old) == 0 ? (old.st_mode & 07777) : new_file_mode();
    ::fchmod(fd, mode);
    ::close(fd);

    out_.open(temporary_, std::ios::binary | std::ios::trunc);
    if (!out_.is_open()) error_ = std::strerror(errno);
}

atomic_file::~atomic_file() {
    if (committed_ || temporary_.empty()) return;
    if (out_.is_open()) out_.close();
    std::error_code ec;
    fs::remove(temporary_, ec);
}

bool atomic_file::commit() {
    if (!out_.is_open()) {
        if (error_.empty()) error_ = "File not open";
        return false;
    }
    // A failed write may have happened while the text was streamed: its errno still stands.
    out_.flush();
    const bool written = static_cast<bool>(out_);
    out_.close();
    // On the disk before it takes the target's name: a power cut after the rename must not
    // leave an empty file in place of the old one.
    const bool synced = written && !out_.fail() && sync_path(temporary_, O_RDONLY);
    if (!synced) {
        error_ = errno != 0 ? std::strerror(errno) : "Write failure";
        std::error_code ec;
        fs::remove(temporary_, ec);
        return false;
    }
    if (std::rename(temporary_.c_str(), destination_.c_str()) != 0) {
        error_ = std::strerror(errno);
        std::error_code ec;
        fs::remove(temporary_, ec);
        return false;
    }
    committed_ = true;
    // The new name itself is kept by the folder.
    const fs::path folder = fs::path(destination_).parent_path();
    sync_path(folder.empty() ? "." : folder.string(), O_RDONLY | O_DIRECTORY);
    return true;
}

}  // namespace trensil
