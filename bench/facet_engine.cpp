// Rate of the facet engine in facet-station pairs per second on a finely tessellated pipe at
// 2,000 stations: through the polyhedron response (stations split over two threads) for gravity
// and magnetics, and on one thread for each block kernel and the one-station-at-a-time
// reference. Rates are given per second of wall time and per second of processor time (all
// threads), since the machine may be shared. At the end, the best rates side by side with GMT's
// `gmt gravmag3d` on the same triangles and stations (raw-triangle input), timed in the same run,
// as a ratio; where gmt cannot be run, a fixed reference rate stands in.
//
//   bench_facet_engine [--reference_rate=8e6] [benchmark options]
#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <unistd.h>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "response/facet_engine.h"
#include "response/polyhedron_response.h"
#include "response/solid_tessellation.h"

namespace {

using namespace trensil;

constexpr int bench_stations = 2000;

// Facet-station pairs a second of an established one-thread code on this body and these
// stations, the rate to beat five times over; --reference_rate= replaces it.
double reference_rate = 8.0e6;
bool reference_rate_given = false;

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

// The same triangles prepared for the kernel in the facet frame, and the stations.
struct prepared_body {
    std::vector<double> vx, vy, vz, ex, ey, ez;
    std::vector<facet_face> faces;
    std::vector<double> xs, ys, zs;
    facet_stations stations() const { return {xs.size(), xs.data(), ys.data(), zs.data()}; }
};

const prepared_body& prepared() {
    static const prepared_body p = [] {
        const bench_body& b = body();
        prepared_body out;
        const double east1 = b.profile.location(easting_row, 1);
        const double north1 = b.profile.location(northing_row, 1);
        const double elev1 = b.profile.location(sensor_row, 1);
        const auto count = static_cast<std::size_t>(b.num_triangles);
        out.vx.resize(4 * count);
        out.vy.resize(4 * count);
        out.vz.resize(4 * count);
        out.ex.resize(3 * count);
        out.ey.resize(3 * count);
        out.ez.resize(3 * count);
        for (std::size_t t = 0; t < count; ++t) {
            for (std::size_t c = 0; c < 3; ++c) {
                const int v = b.triangles(static_cast<int>(c) + 1, static_cast<int>(t) + 1);
                out.vx[4 * t + c] = b.vertices(2, v) - north1;
                out.vy[4 * t + c] = b.vertices(1, v) - east1;
                out.vz[4 * t + c] = -(b.vertices(3, v) - elev1);
            }
            facet_face face;
            if (prepare_facet(3, &out.vx[4 * t], &out.vy[4 * t], &out.vz[4 * t], &out.ex[3 * t],
                              &out.ey[3 * t], &out.ez[3 * t], false, 0.0f, 0.0f, 0.0f, face))
                out.faces.push_back(face);
        }
        for (int s = 1; s <= bench_stations; ++s) {
            out.xs.push_back(b.profile.location(northing_row, s) - north1);
            out.ys.push_back(b.profile.location(easting_row, s) - east1);
            out.zs.push_back(-(b.profile.location(sensor_row, s) - elev1));
        }
        return out;
    }();
    return p;
}

double process_seconds() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

// Wall and processor seconds of one run.
struct run_time {
    double wall = 0.0, cpu = 0.0;
};

template <class Work>
run_time timed(Work&& work) {
    const double cpu0 = process_seconds();
    const auto wall0 = std::chrono::steady_clock::now();
    work();
    run_time t;
    t.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - wall0).count();
    t.cpu = process_seconds() - cpu0;
    return t;
}

run_time run_polyhedron(polyhedron_mode mode) {
    const bench_body& b = body();
    solid_properties props;
    props.density = 2.5f;
    props.susc_si = 0.01f;
    std::vector<float> out(bench_stations);
    const run_time t = timed([&] {
        polyhedron_response(mode, 0, earth_field{50000.0f, 60.0f, 5.0f}, props, b.num_vertices,
                            b.vertices, b.num_triangles, b.triangles, b.profile, out.data());
    });
    benchmark::DoNotOptimize(out.data());
    return t;
}

// One thread, every face over every station, gravity: the block kernel `isa`, or the
// reference when `reference` is set.
run_time run_one_thread(bool reference, facet_block_isa isa) {
    const prepared_body& p = prepared();
    const facet_stations st = p.stations();
    std::vector<double> g(st.count, 0.0);
    const facet_sums<double> sums{nullptr, nullptr, nullptr, g.data()};
    const run_time t = timed([&] {
        for (const facet_face& f : p.faces) {
            if (reference)
                facet_kernel_reference(f, st, 0, st.count, false, true, sums);
            else
                facet_kernel(f, st, 0, st.count, false, true, sums, isa);
        }
    });
    benchmark::DoNotOptimize(g.data());
    return t;
}

template <class Run>
void report(benchmark::State& state, Run&& run) {
    double wall = 0.0, cpu = 0.0;
    for (auto _ : state) {
        const run_time t = run();
        state.SetIterationTime(t.wall);
        wall += t.wall;
        cpu += t.cpu;
    }
    const double n = pairs() * static_cast<double>(state.iterations());
    state.counters["Mpairs_per_wall_s"] = n / wall / 1e6;
    state.counters["Mpairs_per_cpu_s"] = n / cpu / 1e6;
}

void facet_engine_gravity_two_threads(benchmark::State& state) {
    report(state, [] { return run_polyhedron(polyhedron_mode::gravity); });
}
BENCHMARK(facet_engine_gravity_two_threads)->UseManualTime()->Unit(benchmark::kMillisecond);

void facet_engine_magnetic_two_threads(benchmark::State& state) {
    report(state, [] { return run_polyhedron(polyhedron_mode::magnetic); });
}
BENCHMARK(facet_engine_magnetic_two_threads)->UseManualTime()->Unit(benchmark::kMillisecond);

void facet_kernel_one_thread(benchmark::State& state, bool reference, facet_block_isa isa) {
    if (!reference && !facet_block_isa_available(isa)) {
        state.SkipWithError("this processor lacks the instruction set");
        return;
    }
    report(state, [&] { return run_one_thread(reference, isa); });
}
BENCHMARK_CAPTURE(facet_kernel_one_thread, reference, true, facet_block_isa::automatic)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(facet_kernel_one_thread, portable, false, facet_block_isa::portable)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(facet_kernel_one_thread, avx2, false, facet_block_isa::avx2)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(facet_kernel_one_thread, avx512, false, facet_block_isa::avx512)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// The same triangles and stations as files for gmt: raw triangles (x1 y1 z1 x2 ... z3) with z up,
// and the station positions; the stations lie at elevation 0, gmt's observation level. In a
// folder of this run's own, which print_ratio removes.
std::filesystem::path write_gmt_inputs() {
    const auto dir = std::filesystem::temp_directory_path() /
                     ("trensil_bench_facet_" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    const bench_body& b = body();
    std::ofstream tri(dir / "body.raw");
    char field[64];
    for (int t = 1; t <= b.num_triangles; ++t) {
        for (int c = 1; c <= 3; ++c) {
            const int v = b.triangles(c, t);
            for (int k = 1; k <= 3; ++k) {
                std::snprintf(field, sizeof field, "%.6f ", b.vertices(k, v));
                tri << field;
            }
        }
        tri << '\n';
    }
    std::ofstream xy(dir / "stations.xy");
    for (int s = 1; s <= bench_stations; ++s)
        xy << b.profile.location(easting_row, s) << ' ' << b.profile.location(northing_row, s)
           << '\n';
    return dir;
}

// Processor seconds used by finished child processes so far.
double children_cpu_seconds() {
    rusage u{};
    getrusage(RUSAGE_CHILDREN, &u);
    return static_cast<double>(u.ru_utime.tv_sec + u.ru_stime.tv_sec) +
           1e-6 * static_cast<double>(u.ru_utime.tv_usec + u.ru_stime.tv_usec);
}

// One gmt gravmag3d run (gravity of the body at the stations): wall and processor seconds, or a
// negative wall time when gmt cannot be run. Its times include starting the program and reading
// and writing the files, a few milliseconds of the total.
run_time run_gmt(const std::filesystem::path& dir) {
    const std::string command = "gmt gravmag3d -Tr" + (dir / "body.raw").string() + " -F" +
                                (dir / "stations.xy").string() + " -C2500 -L0 > " +
                                (dir / "out.txt").string() + " 2>/dev/null";
    const double cpu0 = children_cpu_seconds();
    const auto start = std::chrono::steady_clock::now();
    const int status = std::system(command.c_str());
    const double wall =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (status != 0) return {-1.0, -1.0};
    return {wall, children_cpu_seconds() - cpu0};
}

// Best of five runs each, side by side with the reference kernel and the reference rate. On a
// shared machine the second thread may find no free core: the processor-time rate of one
// thread, doubled, is what two free cores give.
void print_ratio() {
    run_time two{1e30, 1e30}, one{1e30, 1e30};
    for (int i = 0; i < 5; ++i) {
        const run_time t2 = run_polyhedron(polyhedron_mode::gravity);
        two.wall = std::min(two.wall, t2.wall);
        two.cpu = std::min(two.cpu, t2.cpu);
        const run_time t1 = run_one_thread(false, facet_block_isa::automatic);
        one.wall = std::min(one.wall, t1.wall);
        one.cpu = std::min(one.cpu, t1.cpu);
    }
    const run_time ref = run_one_thread(true, facet_block_isa::automatic);
    const double n = pairs();
    run_time gmt{1e30, 1e30};
    const auto dir = write_gmt_inputs();
    for (int i = 0; i < 3 && gmt.wall > 0.0; ++i) {
        const run_time g = run_gmt(dir);
        if (g.wall < 0.0) gmt = g;
        gmt.wall = std::min(gmt.wall, g.wall);
        gmt.cpu = std::min(gmt.cpu, g.cpu);
    }
    std::error_code ec;
    std::filesystem::remove_all(dir, ec);
    if (gmt.wall > 0.0 && !reference_rate_given) {
        std::printf(
            "\ngmt gravmag3d (same triangles and stations): %.3f s wall, %.3f s processor: "
            "%.1f million pairs/s\n",
            gmt.wall, gmt.cpu, n / gmt.cpu / 1e6);
        reference_rate = n / gmt.cpu;
    } else if (gmt.wall < 0.0) {
        std::printf("\ngmt gravmag3d could not be run: the fixed reference rate stands in\n");
    }
    std::printf("\n%d triangles x %d stations = %.0f facet-station pairs (gravity)\n",
                body().num_triangles, bench_stations, n);
    std::printf("one thread:  %.1f million pairs/s wall, %.1f per processor second\n",
                n / one.wall / 1e6, n / one.cpu / 1e6);
    std::printf("two threads: %.1f million pairs/s wall, %.1f per processor second\n",
                n / two.wall / 1e6, n / two.cpu / 1e6);
    std::printf(
        "one-station-at-a-time reference kernel: %.1f per processor second (block kernel "
        "%.1f times as fast)\n",
        n / ref.cpu / 1e6, ref.cpu / one.cpu);
    std::printf("reference rate to beat (gmt's, one thread): %.1f million pairs/s\n",
                reference_rate / 1e6);
    std::printf(
        "ratio to it: two threads %.2f by wall time; one thread %.2f by processor time, "
        "so %.2f for two free cores\n",
        n / two.wall / reference_rate, n / one.cpu / reference_rate,
        2.0 * n / one.cpu / reference_rate);
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        if (std::strncmp(argv[i], "--reference_rate=", 17) == 0) {
            reference_rate = std::atof(argv[i] + 17);
            reference_rate_given = true;
            for (int j = i; j + 1 < argc; ++j) argv[j] = argv[j + 1];
            --argc;
            --i;
        }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    print_ratio();
    return 0;
}
