// One press of a slider arrow in the modelling window on the bundled example, from the bar's
// event to the graphs painted offscreen: the dip bar's coarse arrow on body 1 (its handler, the
// edit path's step, one body recomputed, the channel summed over every body, the derived rows,
// the five graphs reloaded), then each shown graph painted into a picture of its size. Goal: under
// 16 ms (one frame) with 20 bodies on 2,000 stations. The 20,000-station case runs the same line
// with stations interpolated between the real ones.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QScrollBar>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "modelling_window.h"
#include "offscreen_benchmarks.h"
#include "support/memory_settings_store.h"
#include "support/scripted_platform.h"
#include "test_paths.h"

namespace {

namespace fs = std::filesystem;

const fs::path example_folder = fs::path(TRENSIL_SOURCE_DIR) / "examples" / "tempest";
constexpr const char* model_name = "tempest_line_225401.qvx";
constexpr const char* data_name = "line_225401.csv";

std::vector<double> numbers(const std::string& line) {
    std::vector<double> values;
    std::stringstream cells(line);
    std::string cell;
    while (std::getline(cells, cell, ',')) values.push_back(std::strtod(cell.c_str(), nullptr));
    return values;
}

// The example model beside a copy of its data with `stations` lines, each column interpolated
// linearly between the real stations, in `folder`. Returns the model's path.
std::string write_dense_example(const fs::path& folder, int stations) {
    fs::create_directories(folder);
    fs::copy_file(example_folder / model_name, folder / model_name);
    std::ifstream in(example_folder / data_name);
    std::string header, line;
    std::getline(in, header);
    std::vector<std::vector<double>> rows;
    while (std::getline(in, line))
        if (!line.empty()) rows.push_back(numbers(line));
    std::ofstream out(folder / data_name);
    out << header << "\n";
    out.precision(12);
    const double last = static_cast<double>(rows.size() - 1);
    for (int k = 0; k < stations; ++k) {
        const double at = last * k / (stations - 1);
        const auto i = static_cast<std::size_t>(std::min(at, last - 1.0));
        const double t = at - static_cast<double>(i);
        for (std::size_t c = 0; c < rows[i].size(); ++c)
            out << (c ? "," : "") << rows[i][c] + t * (rows[i + 1][c] - rows[i][c]);
        out << "\n";
    }
    return (folder / model_name).string();
}

// Makes the model `total` bodies: the example's own and narrower copies of them spread along the
// line, everything computed once.
void add_bodies(trensil::modelling_workspace& ws, int total) {
    trensil::model_record& m = ws.model;
    const int own = m.num_bodies;
    if (total + 1 > m.body_capacity) trensil::grow_bodies(m, (total / 16 + 1) * 16);
    const float length = m.profile.profile_distance(m.profile.num_stations);
    for (int i = own + 1; i <= total; ++i) {
        trensil::body_record& b = m.body(i);
        static_cast<trensil::body_definition&>(b) = m.body(1 + (i - 1) % own);
        b.distance.value = length * static_cast<float>(i) / static_cast<float>(total + 1);
        b.width.value = 1500.0f;
        b.top.value = -1000.0f - 20.0f * static_cast<float>(i);
        b.name = "Body " + std::to_string(i);
    }
    m.num_bodies = total;
    trensil::prepare_channels(m);
    trensil::display_model(ws, 0);
}

void slider_press(benchmark::State& state) {
    const int bodies = static_cast<int>(state.range(0));
    const int stations = static_cast<int>(state.range(1));
    const fs::path folder =
        fs::temp_directory_path() / ("trensil_bench_slider_" + std::to_string(::getpid()));
    std::string model = (example_folder / model_name).string();
    if (stations != 2001) model = write_dense_example(folder, stations);

    trensil::scripted_platform ui;
    trensil::memory_settings_store settings;
    trensil::modelling_window window(ui, settings);
    window.resize(1600, 1000);
    window.show();
    QApplication::processEvents();
    trensil::modelling_workspace& ws = window.workspace();
    const bool opened = trensil::open_model_file(ws, model) == 0;
    if (opened) add_bodies(ws, bodies);
    QApplication::processEvents();
    auto* dip = window.findChild<QScrollBar*>("HScroll_dip_0");
    if (!opened || !dip || ws.model.profile.num_stations != stations) {
        fs::remove_all(folder);
        state.SkipWithError("the example could not be set up");
        return;
    }

    std::vector<int> shown;
    std::vector<QImage> images;
    for (int i = 0; i < trensil::graph_count; ++i) {
        trensil::graph_widget* graph = window.graph(i);
        if (!graph->isVisibleTo(&window)) continue;
        shown.push_back(i);
        images.emplace_back(graph->size(), QImage::Format_RGB32);
    }
    ws.response.mag_responses_computed = 0;
    bool right = true;
    for (auto _ : state) {
        // Right arrow, then left: the dip goes 5 down and back up.
        dip->triggerAction(right ? QAbstractSlider::SliderSingleStepAdd
                                 : QAbstractSlider::SliderSingleStepSub);
        right = !right;
        for (std::size_t k = 0; k < shown.size(); ++k) {
            QPainter painter(&images[k]);
            window.graph(shown[k])->paint_graph(painter);
        }
    }
    state.counters["bodies"] = ws.model.num_bodies;
    state.counters["stations"] = ws.model.profile.num_stations;
    state.counters["recomputed_per_press"] =
        static_cast<double>(ws.response.mag_responses_computed) /
        static_cast<double>(state.iterations());
    fs::remove_all(folder);
}
BENCHMARK(slider_press)->Args({20, 2001})->Args({100, 20000})->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    return trensil::run_offscreen_benchmarks(argc, argv);
}
