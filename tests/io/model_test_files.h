// Files for the model, project and batch tool tests: a scratch directory of one test, and the
// hand-written model files of every format version in tests/io/data.
#pragma once

#include <sys/resource.h>

#include <csignal>

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

// While it lives, every file this process writes fails at its first byte ("File too large"), as
// on a full disk: the file size limit is 0 and the signal of passing it is ignored.
class failing_writes {
public:
    failing_writes() {
        ::getrlimit(RLIMIT_FSIZE, &saved_);
        previous_ = std::signal(SIGXFSZ, SIG_IGN);
        rlimit none = saved_;
        none.rlim_cur = 0;
        ::setrlimit(RLIMIT_FSIZE, &none);
    }
    ~failing_writes() {
        ::setrlimit(RLIMIT_FSIZE, &saved_);
        std::signal(SIGXFSZ, previous_);
    }
    failing_writes(const failing_writes&) = delete;
    failing_writes& operator=(const failing_writes&) = delete;

private:
    rlimit saved_{};
    void (*previous_)(int) = nullptr;
};

}  // namespace trensil::model_testing
