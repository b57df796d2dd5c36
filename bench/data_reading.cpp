// Reading a large data file: the counting pass and the storing pass of read_location_data beside
// a plain line count of the same file, in MB/s. The file (about 100 MB of five-column xyz
// records, LF line ends, so the character-by-character reader is the one measured) is written
// to the temporary directory at start and removed at the end.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "core/model_record.h"
#include "io/location_reader.h"
#include "support/scripted_platform.h"

namespace {

using namespace trensil;

constexpr std::size_t target_bytes = 100u << 20;

std::string data_path;
std::size_t data_bytes = 0;

void write_data_file() {
    data_path = (std::filesystem::temp_directory_path() /
                 ("trensil_bench_" + std::to_string(::getpid()) + ".xyz"))
                    .string();
    std::FILE* out = std::fopen(data_path.c_str(), "wb");
    std::fputs("/ easting northing height dtm tmi\n", out);
    char line[128];
    for (long i = 0; data_bytes < target_bytes; ++i) {
        const int len = std::snprintf(line, sizeof line, "%.2f %.2f %.1f %.2f %.3f\n",
                                      448000.0 + 9.28 * static_cast<double>(i % 100000),
                                      7556656.2 + 0.03 * static_cast<double>(i % 100000),
                                      350.0 + static_cast<double>(i % 17),
                                      45.83 + 0.01 * static_cast<double>(i % 300),
                                      49231.174 + 0.5 * static_cast<double>(i % 1000));
        std::fwrite(line, 1, static_cast<std::size_t>(len), out);
        data_bytes += static_cast<std::size_t>(len);
    }
    std::fclose(out);
    data_bytes = static_cast<std::size_t>(std::filesystem::file_size(data_path));
}

model_record bench_model() {
    model_record model;
    reset_model(model);
    model.data_file = data_path;
    model.nhead = 2;
    model.xpos = 1;
    model.ypos = 2;
    model.zpos = 3;
    model.dtm = 4;
    model.magpos = 5;
    return model;
}

void BM_line_count_getline(benchmark::State& state) {
    for (auto _ : state) {
        std::ifstream in(data_path);
        std::string line;
        long lines = 0;
        while (std::getline(in, line)) ++lines;
        benchmark::DoNotOptimize(lines);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * data_bytes));
}

void BM_line_count_memchr(benchmark::State& state) {
    std::string block(1 << 20, '\0');
    for (auto _ : state) {
        std::FILE* in = std::fopen(data_path.c_str(), "rb");
        long lines = 0;
        std::size_t got = 0;
        while ((got = std::fread(block.data(), 1, block.size(), in)) > 0) {
            const char* p = block.data();
            const char* end = p + got;
            while ((p = static_cast<const char*>(
                        std::memchr(p, '\n', static_cast<std::size_t>(end - p))))) {
                ++lines;
                ++p;
            }
        }
        std::fclose(in);
        benchmark::DoNotOptimize(lines);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * data_bytes));
}

void BM_read_location_counting_pass(benchmark::State& state) {
    scripted_platform ui;
    transform_state transforms;
    for (auto _ : state) {
        model_record model = bench_model();
        read_location_data(0, model, model.profile, transforms, ui);
        benchmark::DoNotOptimize(model.profile.num_stations);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * data_bytes));
}

// Counting only (a mode below 0): the reading without the arrays the counting pass allocates.
void BM_read_location_count_only(benchmark::State& state) {
    scripted_platform ui;
    transform_state transforms;
    model_record model = bench_model();
    for (auto _ : state) {
        read_location_data(-1, model, model.profile, transforms, ui);
        benchmark::DoNotOptimize(model.profile.num_stations);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * data_bytes));
}

void BM_read_location_storing_pass(benchmark::State& state) {
    scripted_platform ui;
    transform_state transforms;
    model_record model = bench_model();
    read_location_data(0, model, model.profile, transforms, ui);
    for (auto _ : state) {
        read_location_data(1, model, model.profile, transforms, ui);
        benchmark::DoNotOptimize(model.profile.location(1, 1));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * data_bytes));
    state.counters["stations"] = model.profile.num_stations;
}

BENCHMARK(BM_line_count_getline)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_line_count_memchr)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_read_location_counting_pass)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_read_location_count_only)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_read_location_storing_pass)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

int main(int argc, char** argv) {
    write_data_file();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::filesystem::remove(data_path);
    return 0;
}
