// One full redraw of the modelling window's five graphs on the bundled example: the window's
// logic reloading every graph's series and objects, then each graph painted into an offscreen
// picture of its size.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QPainter>

#include "modelling_window.h"
#include "offscreen_benchmarks.h"
#include "support/memory_settings_store.h"
#include "support/scripted_platform.h"
#include "test_paths.h"
#include "workspace/graph_display.h"

namespace {

void redraw_five_graphs(benchmark::State& state) {
    trensil::scripted_platform ui;
    trensil::memory_settings_store settings;
    trensil::modelling_window window(ui, settings);
    window.resize(1280, 860);
    window.show();
    QApplication::processEvents();
    const std::string model = TRENSIL_SOURCE_DIR "/examples/tempest/tempest_line_225401.qvx";
    if (trensil::open_model_file(window.workspace(), model) != 0) {
        state.SkipWithError("the example could not be opened");
        return;
    }
    trensil::modelling_workspace& ws = window.workspace();
    std::vector<QImage> images;
    for (int i = 0; i < trensil::graph_count; ++i)
        images.emplace_back(window.graph(i)->size(), QImage::Format_RGB32);
    for (auto _ : state) {
        for (int i = 0; i < trensil::graph_count; ++i) {
            trensil::display_maginv_model(ws.model, ws.graph_view, ws.graphs, ws.section, 1, i);
            QPainter painter(&images[static_cast<std::size_t>(i)]);
            window.graph(i)->paint_graph(painter);
        }
    }
    state.counters["stations"] = ws.model.profile.num_stations;
}
BENCHMARK(redraw_five_graphs)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    return trensil::run_offscreen_benchmarks(argc, argv);
}
