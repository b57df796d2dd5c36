// trensil-cli sample-grid: a new line drawn across grids without a window. Stations are spaced
// along the baseline's points at the interval, round its corners; the magnetic grid, and the
// ground and sensor grids when given, are sampled there, and the line's csv is written with a
// dummy where a grid has no value; --model also writes the model that reads it.
#include <iostream>

#include "cli_command.h"
#include "cli_model.h"
#include "field_option.h"
#include "grid/gdal_grid.h"
#include "output_paths.h"
#include "project/digitising.h"
#include "project/line_files.h"
#include "support/paths.h"
#include "support/text_tokens.h"

namespace trensil::cli {
namespace {

constexpr const char* sample_grid_usage =
    "sample-grid --mag GRID [--dtm GRID] [--sensor GRID [--sensor-is height|depth|elevation]] "
    "--line X1,Y1,X2,Y2,... --interval D [--surface-elevation Z] [--sensor-offset H] "
    "-o LINE.csv [--model LINE.qvx [--field F,I,D]] [--force]";

int usage_failure(const std::string& why) {
    std::cerr << "trensil-cli sample-grid: " << why << "\nusage: trensil-cli " << sample_grid_usage
              << "\n";
    return exit_usage;
}

int failure(const std::string& why) {
    std::cerr << "trensil-cli sample-grid: " << why << "\n";
    return exit_failure;
}

// A number option; `fallback` when absent; false when given and not a number.
bool number_option(const cli_arguments& parsed, const std::string& name, double fallback,
                   double& out) {
    const std::string text = trim_text(parsed.value(name));
    out = fallback;
    if (text.empty()) return true;
    if (!is_numeric_text(text)) return false;
    out = parse_number(text);
    return true;
}

int run_sample_grid(const std::vector<std::string>& args) {
    cli_arguments parsed;
    std::string error;
    if (!parse_cli_arguments(args,
                             {"--mag", "--dtm", "--sensor", "--sensor-is", "--line", "--interval",
                              "--surface-elevation", "--sensor-offset", "-o", "--model", "--field"},
                             {"--force"}, parsed, error))
        return usage_failure(error);
    if (!parsed.positional.empty()) return usage_failure("unexpected " + parsed.positional[0]);
    if (parsed.value("--mag").empty()) return usage_failure("--mag GRID is needed");
    const std::string out = parsed.value("-o");
    if (out.empty()) return usage_failure("-o LINE.csv is needed");
    double interval = 0.0, surface = 0.0, offset = 10.0;
    if (!number_option(parsed, "--interval", 0.0, interval) || !(interval > 0.0))
        return usage_failure("The sample interval must be positive");
    if (!number_option(parsed, "--surface-elevation", 0.0, surface) ||
        !number_option(parsed, "--sensor-offset", 10.0, offset))
        return usage_failure("--surface-elevation and --sensor-offset take numbers");
    const std::string sensor_is = parsed.value("--sensor-is");
    if (!sensor_is.empty() && sensor_is != "height" && sensor_is != "depth" &&
        sensor_is != "elevation")
        return usage_failure("--sensor-is takes height, depth or elevation");
    if (const int refused = report_refused_outputs(
            "sample-grid",
            grid_inputs(parsed.value("--mag"), parsed.value("--dtm"), parsed.value("--sensor")),
            {out, parsed.value("--model")}))
        return refused;

    model_record scratch;  // the header of the line's model
    reset_model(scratch);
    scratch.num_bodies = 0;
    if (!apply_field_option(parsed.value("--field"), scratch, error)) return usage_failure(error);

    // The baseline's points: pairs of numbers.
    digitising_state d;
    std::string points = parsed.value("--line");
    std::vector<double> values;
    while (!trim_text(points).empty()) {
        const std::string word = take_word(points);
        if (!is_numeric_text(word))
            return usage_failure("--line takes numbers, not '" + word + "'");
        values.push_back(parse_number(word));
    }
    if (values.size() < 4 || values.size() % 2 != 0)
        return usage_failure("--line takes two or more points: X1,Y1,X2,Y2,...");
    for (std::size_t i = 0; i < values.size(); i += 2) {
        if (!add_digitised_point(d, values[i], values[i + 1], "*"))
            return failure("a baseline holds at most 2048 points");
    }
    d.sample_interval = static_cast<float>(interval);
    d.num_samples = space_stations(d.x, d.y, d.num_digitised_points, d.sample_interval, d.sample_x,
                                   d.sample_y, d.sample_distance);
    if (d.num_samples == 0)
        return failure(
            "the baseline is longer than 1024 sample intervals (or has no length): "
            "give a longer interval");
    if (d.num_samples < 16)
        return failure("The digitised baseline is not long enough to be meaningful (" +
                       std::to_string(d.num_samples) + " stations; 16 are needed)");

    // The grids.
    std::unique_ptr<grid_source> grids[3];
    const char* options[3] = {"--mag", "--dtm", "--sensor"};
    line_sampling sampling;
    for (int k = 0; k < 3; ++k) {
        const std::string path = parsed.value(options[k]);
        if (path.empty()) continue;
        grids[k] = open_gdal_grid(path, error);
        if (!grids[k])
            return failure("An error occured while loading the grid file: " + path + ": " + error);
        sampling.grids[static_cast<std::size_t>(k)] = grids[k].get();
    }
    sampling.value_is_height = sensor_is == "height";
    sampling.value_is_depth = sensor_is == "depth";
    sampling.surface_elevation = static_cast<float>(surface);
    sampling.sensor_offset = static_cast<float>(offset);

    line_station_values line;
    gather_line_values(d.sample_x, d.sample_y, d.num_samples, sampling, nullptr, line);
    int undefined = 0;
    for (int i = 1; i <= line.count; ++i)
        if (!grid_value_defined(line.mag(i))) ++undefined;

    console_platform ui(parsed.has("--force"));
    const std::string model_path = parsed.value("--model");
    if (!may_write(out, ui)) return failure(out + " exists; give --force to overwrite it");
    if (!model_path.empty() && !may_write(model_path, ui))
        return failure(model_path + " exists; give --force to overwrite it");
    if (!write_line_csv(out, line, ui)) return failure(ui.last_message());
    std::cout << "stations " << line.count << " every " << interval << " m";
    if (undefined > 0)
        std::cout << ", " << undefined << " without a magnetic value (written as dummies)";
    std::cout << "; wrote " << out << "\n";

    if (!model_path.empty()) {
        // As the window writes it: the typed elevations stand where the csv has no column.
        scratch.topo = sampling.surface_elevation;
        scratch.sensor_offset = sampling.sensor_offset;
        if (!write_line_model(model_path, out, line, scratch, ui))
            return failure(ui.last_message());
        std::cout << "wrote " << model_path << "\n";
    }
    return exit_ok;
}

const cli_command_registration sample_grid_registration{"sample-grid", sample_grid_usage,
                                                        run_sample_grid};

}  // namespace
}  // namespace trensil::cli
