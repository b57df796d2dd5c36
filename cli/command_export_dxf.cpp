// trensil-cli export-dxf: the model's plan DXF (profile line and body footprints) and its 3-D DXF
// (bodies as faces), by default beside the model file.
#include <iostream>

#include "cli_command.h"
#include "cli_model.h"
#include "exports/dxf_export.h"
#include "output_paths.h"
#include "response/field_coefficients.h"
#include "response/response_driver.h"
#include "support/paths.h"

namespace trensil::cli {
namespace {

constexpr const char* export_dxf_usage =
    "export-dxf MODEL.qvx [--plan OUT.dxf] [--3d OUT_3d.dxf] [--force]";

// The window exports what its last display computed: every body's strike and dip cosines are
// current. The driver skips bodies that are switched off, so their cosines are stored here too.
void bring_bodies_up_to_date(model_record& model, response_state& state) {
    calculate_display_channels(model, state);
    for (int b = 1; b <= model.num_bodies; ++b) calculate_field_coefficients(model, state, b);
}

int run_export_dxf(const std::vector<std::string>& args) {
    cli_arguments parsed;
    std::string error;
    if (!parse_cli_arguments(args, {"--plan", "--3d"}, {"--force"}, parsed, error) ||
        parsed.positional.size() != 1) {
        std::cerr << "trensil-cli export-dxf: "
                  << (error.empty() ? "one model file is needed" : error) << "\nusage: trensil-cli "
                  << export_dxf_usage << "\n";
        return exit_usage;
    }
    const std::string model_path = parsed.positional[0];

    console_platform ui(parsed.has("--force"));
    model_record model;
    if (!load_cli_model({model_path, "", true}, model, ui, error)) {
        std::cerr << "trensil-cli export-dxf: " << error << "\n";
        return exit_failure;
    }
    if (model.model_file.empty()) model.model_file = model_path;

    response_state state;
    state.ui = &ui;
    bring_bodies_up_to_date(model, state);

    std::string plan_path = parsed.value("--plan");
    if (plan_path.empty()) plan_path = plan_dxf_default_name(model);
    std::string body_path = parsed.value("--3d");
    if (body_path.empty()) body_path = body_dxf_default_name(model);
    const bool write_bodies = model.num_bodies > 0;
    if (const int refused = report_refused_outputs(
            "export-dxf", model_inputs(model_path, model.data_file), {plan_path, body_path}))
        return refused;

    std::vector<std::string> targets{plan_path};
    if (write_bodies) targets.push_back(body_path);
    for (const std::string& path : targets) {
        if (!may_write(path, ui)) {
            std::cerr << "trensil-cli export-dxf: " << path
                      << " exists; give --force to overwrite it\n";
            return exit_failure;
        }
    }

    if (write_plan_dxf(model, plan_path, error) != 0) {
        std::cerr << "trensil-cli export-dxf: cannot write " << plan_path << ": " << error << "\n";
        return exit_failure;
    }
    std::cout << "wrote " << plan_path << "\n";
    if (write_bodies) {
        if (write_body_dxf(model, state, body_path, error) != 0) {
            std::cerr << "trensil-cli export-dxf: cannot write " << body_path << ": " << error
                      << "\n";
            return exit_failure;
        }
        std::cout << "wrote " << body_path << "\n";
    } else {
        std::cout << "no bodies: no 3-D file\n";
    }
    ui.flush_messages(std::cerr, "trensil-cli export-dxf: note: ");
    return exit_ok;
}

const cli_command_registration export_dxf_registration{"export-dxf", export_dxf_usage,
                                                       run_export_dxf};

}  // namespace
}  // namespace trensil::cli
