// The main of a benchmark program that paints with Qt: an offscreen application that lives in
// main, so that it is gone before the program's static objects are, around the registered
// benchmarks.
//
//   int main(int argc, char** argv) { return trensil::run_offscreen_benchmarks(argc, argv); }
#pragma once

#include <benchmark/benchmark.h>

#include <QApplication>
#include <cstdlib>

namespace trensil {

inline int run_offscreen_benchmarks(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    int app_argc = 1;
    QApplication app(app_argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}  // namespace trensil
