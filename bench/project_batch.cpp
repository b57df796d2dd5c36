// A survey of 50 lines computed by the batch tool: 50 single `compute` runs one after the other,
// against one `project compute` of a project of those 50 lines, one line at a time and two at a
// time. Each line is the bundled Tempest line (2,001 stations,
// three bodies) with its own copy of the model and data. The project is written to a folder
// under the build tree at start and removed at the end; trensil-cli must be built.
#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "test_paths.h"

namespace {

namespace fs = std::filesystem;

constexpr int line_count = 50;
const std::string cli = std::string(TRENSIL_BINARY_DIR) + "/bin/trensil-cli";
fs::path folder;

int shell(const std::string& command) {
    const int raw = std::system((command + " >/dev/null 2>&1").c_str());
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
}

std::string line_name(int k) {
    std::string name("line_");
    return name.append(std::to_string(k));
}

bool make_project() {
    folder =
        fs::path(TRENSIL_BINARY_DIR) / "scratch" / ("bench_project_" + std::to_string(::getpid()));
    fs::remove_all(folder);
    fs::create_directories(folder);
    const fs::path example = fs::path(TRENSIL_SOURCE_DIR) / "examples" / "tempest";
    std::string project = "cd '" + folder.string() + "' && '" + cli + "' project new area.qvj";
    if (shell(project) != 0) return false;
    for (int k = 1; k <= line_count; ++k) {
        const fs::path dir = folder / line_name(k);
        fs::create_directories(dir);
        fs::copy_file(example / "line_225401.csv", dir / "line_225401.csv");
        fs::copy_file(example / "tempest_line_225401.qvx", dir / "model.qvx");
        if (shell("cd '" + folder.string() + "' && '" + cli + "' project add area.qvj " +
                  line_name(k) + "/model.qvx") != 0)
            return false;
    }
    return true;
}

void single_runs(benchmark::State& state) {
    for (auto _ : state) {
        for (int k = 1; k <= line_count; ++k) {
            const fs::path dir = folder / line_name(k);
            if (shell("'" + cli + "' compute '" + (dir / "model.qvx").string() + "' -o '" +
                      (dir / "model_profile.csv").string() + "' --force") != 0)
                state.SkipWithError("a single compute failed");
        }
    }
    state.counters["lines"] = line_count;
}

void project_compute(benchmark::State& state) {
    const std::string jobs = std::to_string(state.range(0));
    for (auto _ : state) {
        if (shell("'" + cli + "' project compute '" + (folder / "area.qvj").string() + "' -j " +
                  jobs + " --force") != 0)
            state.SkipWithError("project compute failed");
    }
    state.counters["lines"] = line_count;
}

}  // namespace

BENCHMARK(single_runs)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);
BENCHMARK(project_compute)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(3);

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (!fs::exists(cli) || !make_project()) {
        std::fprintf(stderr, "trensil-cli is not built or the project could not be made\n");
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    fs::remove_all(folder);
    return 0;
}
