// What one autosave costs the interface thread, on the bundled example in the modelling window:
// the snapshot of the model (its model file text with the display settings taken from the window
// and the recovery section) and the hand-off to the writer thread. The writing itself runs on that
// thread and is not timed here. Goal: under 2 ms, so that an autosave is never a pause the user
// can feel. The 20-body case makes the example's model larger by copies of its bodies.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QApplication>
#include <chrono>
#include <filesystem>
#include <string>

#include "modelling_window.h"
#include "offscreen_benchmarks.h"
#include "support/memory_settings_store.h"
#include "support/scripted_platform.h"
#include "test_paths.h"
#include "workspace/model_recovery.h"

namespace {

namespace fs = std::filesystem;

void autosave_interface_time(benchmark::State& state) {
    const int bodies = static_cast<int>(state.range(0));
    const fs::path folder =
        fs::temp_directory_path() / ("trensil_bench_autosave_" + std::to_string(::getpid()));
    const std::string model =
        (fs::path(TRENSIL_SOURCE_DIR) / "examples" / "tempest" / "tempest_line_225401.qvx")
            .string();
    {
        trensil::recovery_session session(folder.string());
        trensil::scripted_platform ui;
        trensil::memory_settings_store settings;
        trensil::modelling_window window(ui, settings);
        window.show();
        QApplication::processEvents();
        trensil::modelling_workspace& ws = window.workspace();
        if (trensil::open_model_file(ws, model) != 0) {
            state.SkipWithError("the example could not be opened");
            return;
        }
        trensil::model_record& m = ws.model;
        const int own = m.num_bodies;
        if (bodies + 1 > m.body_capacity) trensil::grow_bodies(m, (bodies / 16 + 1) * 16);
        for (int i = own + 1; i <= bodies; ++i)
            static_cast<trensil::body_definition&>(m.body(i)) = m.body(1 + (i - 1) % own);
        m.num_bodies = std::max(own, bodies);
        trensil::start_model_autosave(ws, session);

        auto now = std::chrono::steady_clock::now();
        for (auto _ : state) {
            // An edit, then the timer's tick once the edits have paused: the copy is taken.
            ws.model_changed = true;
            trensil::model_autosave_tick(ws, now);
            now += std::chrono::seconds(2);
            trensil::model_autosave_tick(ws, now);
            state.PauseTiming();
            ws.autosave.slot.finish();
            state.ResumeTiming();
        }
        state.counters["bodies"] = m.num_bodies;
        state.counters["copy_bytes"] =
            static_cast<double>(fs::file_size(ws.autosave.slot.copy_path()));
        trensil::close_model_autosave(ws);
    }
    fs::remove_all(folder);
}

}  // namespace

BENCHMARK(autosave_interface_time)->Arg(3)->Arg(20)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv) {
    return trensil::run_offscreen_benchmarks(argc, argv);
}
