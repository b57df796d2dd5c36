// A fresh directory under the build tree for one test, removed again at the end, so that no test
// leaves files behind or meets another run's (the system's temporary folder is not used).
//
//   testing::scratch_dir dir("bitmap");
//   write_all(dir.file("in.csv"), "1,2\n");
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "test_paths.h"

namespace trensil::testing {

class scratch_dir {
public:
    explicit scratch_dir(const std::string& name) {
        path_ = std::filesystem::path(TRENSIL_BINARY_DIR) / "scratch" /
                (name + "_" + std::to_string(::getpid()));
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~scratch_dir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    scratch_dir(const scratch_dir&) = delete;
    scratch_dir& operator=(const scratch_dir&) = delete;

    std::string file(const std::string& name) const { return (path_ / name).string(); }
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

// This process's own scratch directory, made on first use and removed with everything in it
// when the process exits: for programs that write files run after run, such as the fuzz targets.
inline const scratch_dir& process_scratch_dir() {
    static const scratch_dir dir("process");
    return dir;
}

inline std::string read_all(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void write_all(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
}

}  // namespace trensil::testing
