// Writes a file so that a crash, a power cut or a full disk never leaves it half-written: the
// text goes to a temporary file of a short unique name in the target's folder, which is flushed
// to the disk and renamed over the target only when all of it was written. Until then, and if
// anything fails, the old file stays as it was. A replaced file keeps its permissions, and a
// target that is a symbolic link is written through: the file it points at is replaced.
//
//   atomic_file out(path);
//   if (!out.is_open()) ... out.error()
//   out.stream() << "line\r\n";
//   if (!out.commit()) ... out.error()       // the old file is untouched
#pragma once

#include <fstream>
#include <string>

namespace trensil {

class atomic_file {
public:
    explicit atomic_file(std::string target_path);
    ~atomic_file();  // removes the temporary file unless committed
    atomic_file(const atomic_file&) = delete;
    atomic_file& operator=(const atomic_file&) = delete;

    bool is_open() const { return out_.is_open(); }
    std::ostream& stream() { return out_; }
    // Flushes, closes and renames the temporary over the target; false (with error()) on failure.
    bool commit();
    // The system's description of the last failure.
    const std::string& error() const { return error_; }
    const std::string& target() const { return target_; }

private:
    std::string target_;
    std::string destination_;  // the target with its symbolic links followed
    std::string temporary_;
    std::ofstream out_;
    std::string error_;
    bool committed_ = false;
};

}  // namespace trensil
