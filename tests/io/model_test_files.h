// Files for the model, project and batch tool tests: a scratch directory of one test, and the
// hand-written model files of every format version in tests/io/data.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "test_paths.h"

namespace trensil::model_testing {

inline std::string data_path(const std::string& name) {
    return std::string(TRENSIL_SOURCE_DIR) + "/tests/io/data/" + name;
}

class scratch_folder {
public:
    explicit scratch_folder(const std::string& name) {
        path_ = std::filesystem::path(TRENSIL_BINARY_DIR) / "scratch" /
                ("iomodel_" + name + "_" + std::to_string(::getpid()));
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~scratch_folder() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    scratch_folder(const scratch_folder&) = delete;
    scratch_folder& operator=(const scratch_folder&) = delete;

    std::string file(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

inline std::string read_text(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void write_text(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
}

// Makes writing `path` fail: the temporary file that a write goes through is taken by a folder.
inline void block_writes_to(const std::string& path) {
    std::filesystem::create_directories(path + ".tmp" + std::to_string(::getpid()));
}

}  // namespace trensil::model_testing
