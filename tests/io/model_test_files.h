// Files for the model, project and batch tool tests: a scratch directory of one test, and the
// hand-written model files of every format version in tests/io/data.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>

#include "support/scratch_dir.h"
#include "test_paths.h"

namespace trensil::model_testing {

inline std::string data_path(const std::string& name) {
    return std::string(TRENSIL_SOURCE_DIR) + "/tests/io/data/" + name;
}

// The tests' one scratch folder and its file helpers, under the names these tests use.
using scratch_folder = testing::scratch_dir;
inline std::string read_text(const std::string& path) {
    return testing::read_all(path);
}
inline void write_text(const std::string& path, const std::string& bytes) {
    testing::write_all(path, bytes);
}

// Makes writing `path` fail: the temporary file that a write goes through is taken by a folder.
inline void block_writes_to(const std::string& path) {
    std::filesystem::create_directories(path + ".tmp" + std::to_string(::getpid()));
}

}  // namespace trensil::model_testing
