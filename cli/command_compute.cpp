// trensil-cli compute: the model's response at every station of its data, written as the
// profile data csv, with a one-line summary of the fit.
#include <cmath>
#include <filesystem>
#include <iostream>

#include "cli_command.h"
#include "cli_model.h"
#include "io/profile_data_export.h"
#include "output_paths.h"
#include "response/channel_setup.h"
#include "support/number_format.h"
#include "support/paths.h"

namespace trensil::cli {
namespace {

constexpr const char* compute_usage =
    "compute MODEL.qvx [-o OUT.csv] [--data DATAFILE] [--exact] [--force]";

// Root mean square of computed less observed, both levelled as the graphs plot them (rows 7
// and 2), over every station.
double rms_misfit(const array2<float>& channels, int n) {
    double sum = 0.0;
    for (int i = 1; i <= n; ++i) {
        const double d = static_cast<double>(channels(computed_level, i)) -
                         static_cast<double>(channels(observed_level, i));
        sum += d * d;
    }
    return n > 0 ? std::sqrt(sum / n) : 0.0;
}

int run_compute(const std::vector<std::string>& args) {
    cli_arguments parsed;
    std::string error;
    if (!parse_cli_arguments(args, {"-o", "--data"}, {"--force", "--exact"}, parsed, error) ||
        parsed.positional.size() != 1) {
        std::cerr << "trensil-cli compute: " << (error.empty() ? "one model file is needed" : error)
                  << "\nusage: trensil-cli " << compute_usage << "\n";
        return exit_usage;
    }
    const std::string model_path = parsed.positional[0];
    std::string out = parsed.value("-o");
    if (out.empty()) out = drop_extension(model_path) + ".csv";

    console_platform ui(parsed.has("--force"));
    model_record model;
    if (!load_cli_model({model_path, parsed.value("--data"), true}, model, ui, error)) {
        std::cerr << "trensil-cli compute: " << error << "\n";
        return exit_failure;
    }

    // Checked before the work: MODEL.csv, the default, may be the model's own data file.
    if (const int refused =
            report_refused_outputs("compute", model_inputs(model_path, model.data_file), {out}))
        return refused;

    // --exact computes the bodies' physics whatever the file holds.
    if (parsed.has("--exact")) {
        model.exact_field_geometry = true;
        clear_body_results(model);
    }
    // The channels the window would show and export for this model file.
    response_state state;
    state.ui = &ui;
    const std::size_t messages_before = ui.messages.size();
    calculate_model_channels(model, state);
    if (report_engine_failures(ui, messages_before, std::cerr, "trensil-cli compute: ")) {
        std::cerr << "trensil-cli compute: the response is not whole; " << out
                  << " is not written\n";
        return exit_failure;
    }

    // A new folder for the output is made, as a save dialog would let the user do.
    const std::string out_folder = directory_part(out);
    std::error_code ec;
    if (!out_folder.empty()) std::filesystem::create_directories(out_folder, ec);
    if (!may_write(out, ui)) {
        std::cerr << "trensil-cli compute: " << out << " exists; give --force to overwrite it\n";
        return exit_failure;
    }
    if (write_profile_data(model, out, error) != 0) {
        std::cerr << "trensil-cli compute: cannot write " << out << ": " << error << "\n";
        return exit_failure;
    }
    ui.flush_messages(std::cerr, "trensil-cli compute: note: ");

    const int n = model.profile.num_stations;
    std::cout << "stations " << n << ", bodies " << model.num_bodies;
    if (model.magpos >= 1)
        std::cout << ", magnetic misfit "
                  << format_fixed(rms_misfit(model.profile.mag_channels, n), 2) << " nT rms";
    if (model.gravpos >= 1)
        std::cout << ", gravity misfit "
                  << format_fixed(rms_misfit(model.profile.grav_channels, n), 4) << " mGal rms";
    if (model.exact_field_geometry) std::cout << ", exact field geometry";
    std::cout << "; wrote " << out << "\n";
    return exit_ok;
}

const cli_command_registration compute_registration{"compute", compute_usage, run_compute};

}  // namespace
}  // namespace trensil::cli
