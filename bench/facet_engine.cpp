// Rate of the facet engine in facet-station pairs per second on a finely tessellated pipe at
// 2,000 stations, for gravity and magnetics, and the same triangles and stations through
// `gmt gravmag3d` (raw triangles) timed in the same run, printed as a ratio of rates.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "response/polyhedron_response.h"
#include "response/solid_tessellation.h"

namespace {

using namespace trensil;

constexpr int bench_stations = 2000;

struct bench_body {
    int num_vertices = 0;
    int num_triangles = 0;
    array2<std::int32_t> triangles;
    array2<double> vertices;
    profile_block profile;
};

// A level pipe 1 km long running north, 80 m across, its axis 100 m down: 64 sectors by 30
// segments, 3,968 triangles. Stations cross it on a 2 km east-west line.
const bench_body& body() {
    static const bench_body b = [] {
        bench_body out;
        solid_pose pose;
        pose.position = {0.0, -500.0, -100.0};
        tessellate_cylinder(nullptr, true, true, out.num_vertices, out.num_triangles, pose, 1000.0,
                            40.0, 40.0, 0.0, 0.0, 1.0, 64, 30, out.triangles, out.vertices);
        out.profile.allocate_stations(bench_stations);
        for (int s = 1; s <= bench_stations; ++s) {
            out.profile.location(easting_row, s) = -1000.0 + 2000.0 * (s - 0.5) / bench_stations;
            out.profile.location(northing_row, s) = 3.7;
            out.profile.location(sensor_row, s) = 0.0;
        }
        return out;
    }();
    return b;
}

double pairs() {
    return static_cast<double>(body().num_triangles) * bench_stations;
}

double run_ours(polyhedron_mode mode) {
    const bench_body& b = body();
    solid_properties props;
    props.density = 2.5f;
    props.susc_si = 0.01f;
    std::vector<float> out(bench_stations);
    const auto start = std::chrono::steady_clock::now();
    polyhedron_response(mode, 0, earth_field{50000.0f, 60.0f, 5.0f}, props, b.num_vertices,
                        b.vertices, b.num_triangles, b.triangles, b.profile, out.data());
    benchmark::DoNotOptimize(out.data());
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void facet_engine_gravity(benchmark::State& state) {
    for (auto _ : state) run_ours(polyhedron_mode::gravity);
    state.counters["pairs_per_s"] = benchmark::Counter(
        pairs() * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(facet_engine_gravity)->UseRealTime()->Unit(benchmark::kMillisecond);

void facet_engine_magnetic(benchmark::State& state) {
    for (auto _ : state) run_ours(polyhedron_mode::magnetic);
    state.counters["pairs_per_s"] = benchmark::Counter(
        pairs() * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(facet_engine_magnetic)->UseRealTime()->Unit(benchmark::kMillisecond);

// The same triangles and stations as files for gmt: raw triangles (x1 y1 z1 ... z3), z up,
// and the station positions.
std::filesystem::path write_gmt_inputs() {
    const auto dir = std::filesystem::temp_directory_path() / "trensil_bench_facet";
    std::filesystem::create_directories(dir);
    const bench_body& b = body();
    {
        std::ofstream tri(dir / "body.raw");
        char line[512];
        for (int t = 1; t <= b.num_triangles; ++t) {
            std::string row;
            for (int c = 1; c <= 3; ++c) {
                const int v = b.triangles(c, t);
                std::snprintf(line, sizeof line, "%.6f %.6f %.6f ", b.vertices(1, v),
                              b.vertices(2, v), b.vertices(3, v));
                row += line;
            }
            tri << row << '\n';
        }
    }
    {
        std::ofstream xy(dir / "stations.xy");
        for (int s = 1; s <= bench_stations; ++s)
            xy << b.profile.location(easting_row, s) << ' ' << b.profile.location(northing_row, s)
               << '\n';
    }
    return dir;
}

// Seconds for one gmt run, or a negative value when gmt cannot be run.
double run_gmt(const std::filesystem::path& dir) {
    const std::string command = "gmt gravmag3d -Tr" + (dir / "body.raw").string() + " -F" +
                                (dir / "stations.xy").string() + " -C2500 -L0 > " +
                                (dir / "out.txt").string() + " 2>/dev/null";
    const auto start = std::chrono::steady_clock::now();
    const int status = std::system(command.c_str());
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return status == 0 ? seconds : -1.0;
}

void gmt_gravmag3d(benchmark::State& state) {
    const auto dir = write_gmt_inputs();
    for (auto _ : state) {
        const double seconds = run_gmt(dir);
        if (seconds < 0.0) {
            state.SkipWithError("gmt gravmag3d could not be run");
            break;
        }
        state.SetIterationTime(seconds);
    }
    state.counters["pairs_per_s"] = benchmark::Counter(
        pairs() * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(gmt_gravmag3d)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

// Best of three runs each, side by side.
void print_ratio() {
    double ours = 1e30, gmt = 1e30;
    const auto dir = write_gmt_inputs();
    for (int i = 0; i < 3; ++i) {
        ours = std::min(ours, run_ours(polyhedron_mode::gravity));
        const double g = run_gmt(dir);
        if (g < 0.0) {
            gmt = -1.0;
            break;
        }
        gmt = std::min(gmt, g);
    }
    std::printf("\n%d triangles x %d stations = %.0f facet-station pairs\n", body().num_triangles,
                bench_stations, pairs());
    std::printf("facet engine (gravity): %.3f s, %.1f million pairs/s\n", ours,
                pairs() / ours / 1e6);
    if (gmt < 0.0) {
        std::printf("gmt gravmag3d could not be run: our rate alone is reported\n");
        return;
    }
    std::printf("gmt gravmag3d:          %.3f s, %.1f million pairs/s\n", gmt, pairs() / gmt / 1e6);
    std::printf("ratio (our rate / gmt's rate): %.2f\n", gmt / ours);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    print_ratio();
    return 0;
}
