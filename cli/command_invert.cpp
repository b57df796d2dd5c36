// trensil-cli invert: one inversion of a model against its data, as the invert button runs it,
// with the misfit of every iteration on standard output, the parameters that moved, and the
// fitted model written to a new file. --solver lm runs the damped least squares instead of the
// coordinate descent, and prints each parameter's standard error and the strongest
// correlations; --joint fits magnetics and gravity together, --robust with the Huber loss,
// --noise-mag and --noise-grav set the noise levels (otherwise taken from the data's scatter).
// Ctrl-C asks the run to stop at the end of the iteration under way, as the Stop button does.
// --exact fits in the exact field geometry. --iterations is read as the "Max Iterations" box reads
// its text: empty or not a number runs 25, the number rounds to a whole one, at least 1.
#include <atomic>
#include <csignal>
#include <iostream>
#include <map>
#include <vector>

#include "cli_command.h"
#include "cli_model.h"
#include "inversion/fit_report.h"
#include "inversion/inversion_session.h"
#include "inversion/parameter_vector.h"
#include "invert_progress.h"
#include "io/model_file_writer.h"
#include "io/profile_data_export.h"
#include "output_paths.h"
#include "response/channel_setup.h"
#include "response/response_driver.h"
#include "support/number_format.h"
#include "support/paths.h"
#include "support/text_tokens.h"

namespace trensil::cli {
namespace {

constexpr const char* invert_usage =
    "invert MODEL.qvx [--gravity] [--gradient] [--body N | --all] [--iterations N] "
    "[--first-station K --last-station L] [--solver coordinate|lm] [--joint] [--robust] "
    "[--noise-mag NT] [--noise-grav MGAL] [--exact] [-o OUT.qvx] [--csv OUT.csv] [--force]";

std::atomic<bool> interrupt_requested{false};

extern "C" void request_stop(int) {
    interrupt_requested = true;
}

// The console's event pump: a Ctrl-C since the last pump becomes a click on Stop.
class invert_platform : public console_platform {
public:
    using console_platform::console_platform;
    inversion_context* ctx = nullptr;

    void process_events() override {
        if (ctx != nullptr && interrupt_requested.exchange(false)) {
            std::cerr << "trensil-cli invert: stop requested; ending after this iteration\n";
            on_stop_inversion(*ctx);
        }
    }
};

// The panel on the console: the typed limit, the data type and the status are held here, the
// window's redisplay becomes a recomputation of every channel. The progress goes to a
// console_progress instead.
class console_view : public inversion_view {
public:
    console_view(model_record& model, response_state& response)
        : model_(model), response_(response) {}

    std::map<std::pair<inversion_control, int>, std::string> texts;
    int data_type = 0;
    int gradient = 0;

    void set_text(inversion_control c, int item, const std::string& t) override {
        texts[{c, item}] = t;
    }
    std::string text(inversion_control c, int item) const override {
        const auto it = texts.find({c, item});
        return it == texts.end() ? std::string() : it->second;
    }
    void set_caption(inversion_control, const std::string&) override {}
    void set_enabled(inversion_control, bool) override {}
    void set_visible(inversion_control, bool) override {}
    bool is_visible(inversion_control) const override { return false; }
    int list_index(inversion_control) const override { return data_type; }
    void set_list_index(inversion_control, int index) override { data_type = index; }
    int check_value(inversion_control) const override { return gradient; }
    void redraw_inversion_progress() override {}
    void display_body_parameters() override {}
    void display_model(int) override { calculate_display_channels(model_, response_); }
    void set_model_changed() override {}

private:
    model_record& model_;
    response_state& response_;
};

struct property_value {
    int body;
    int row;
    float value;
};

// Every property of every body, in the order of the table.
std::vector<property_value> all_properties(const model_record& model) {
    static const int rows[] = {row_distance, row_top,     row_strike,       row_dip,    row_plunge,
                               row_slope,    row_width,   row_depth_extent, row_length, row_offset,
                               row_susc,     row_density, row_rem_q,        row_rem_i,  row_rem_d};
    std::vector<property_value> all;
    for (int b = 1; b <= model.num_bodies; ++b)
        for (int row : rows) all.push_back({b, row, property_by_row(model.body(b), row)->value});
    return all;
}

// A whole number option; false when it is given and is not one.
bool integer_option(const cli_arguments& parsed, const std::string& name, int& out) {
    const std::string text = trim_text(parsed.value(name));
    if (text.empty()) return true;
    if (!is_numeric_text(text)) return false;
    out = static_cast<int>(parse_number(text));
    return static_cast<double>(out) == parse_number(text);
}

int usage_failure(const std::string& why) {
    std::cerr << "trensil-cli invert: " << why << "\nusage: trensil-cli " << invert_usage << "\n";
    return exit_usage;
}

// A noise level option: absent leaves `out` at 0 (from the data); false unless a positive number.
bool noise_option(const cli_arguments& parsed, const std::string& name, float& out) {
    const std::string text = trim_text(parsed.value(name));
    if (text.empty()) return true;
    if (!is_numeric_text(text)) return false;
    out = static_cast<float>(parse_number(text));
    return out > 0.0f;
}

// The solver and its choices from --solver, --joint, --robust, --noise-mag, --noise-grav; "" or
// why they cannot be used.
std::string solver_options(const cli_arguments& parsed, inversion_state& state) {
    const std::string solver = parsed.value("--solver");
    if (solver == "lm") {
        state.solver = inversion_solver::damped_least_squares;
    } else if (!solver.empty() && solver != "coordinate") {
        return "--solver is coordinate or lm";
    }
    least_squares_options& o = state.least_squares;
    o.joint = parsed.has("--joint");
    o.robust = parsed.has("--robust");
    if (!noise_option(parsed, "--noise-mag", o.noise_mag) ||
        !noise_option(parsed, "--noise-grav", o.noise_grav))
        return "the noise levels are positive numbers";
    const bool lm_options = o.joint || o.robust || o.noise_mag > 0.0f || o.noise_grav > 0.0f;
    if (lm_options && state.solver != inversion_solver::damped_least_squares)
        return "--joint, --robust and the noise levels go with --solver lm";
    return "";
}

int run_invert(const std::vector<std::string>& args) {
    cli_arguments parsed;
    std::string error;
    if (!parse_cli_arguments(
            args,
            {"--body", "--iterations", "--first-station", "--last-station", "-o", "--csv",
             "--solver", "--noise-mag", "--noise-grav"},
            {"--gravity", "--gradient", "--all", "--force", "--joint", "--robust", "--exact"},
            parsed, error))
        return usage_failure(error);
    if (parsed.positional.size() != 1) return usage_failure("one model file is needed");
    int body = 0, first = 0, last = 0;
    if (!integer_option(parsed, "--body", body) ||
        !integer_option(parsed, "--first-station", first) ||
        !integer_option(parsed, "--last-station", last))
        return usage_failure("--body and the stations take whole numbers");
    const bool whole_model = parsed.has("--all") || parsed.value("--body").empty();
    if (parsed.has("--all") && !parsed.value("--body").empty())
        return usage_failure("give --body N or --all, not both");
    if (parsed.value("--first-station").empty() != parsed.value("--last-station").empty())
        return usage_failure("--first-station and --last-station go together");
    inversion_state state;
    if (const std::string why = solver_options(parsed, state); !why.empty())
        return usage_failure(why);

    const std::string model_path = parsed.positional[0];
    std::string out = parsed.value("-o");
    if (out.empty()) out = drop_extension(model_path) + "_fit.qvx";
    const std::string csv = parsed.value("--csv");

    invert_platform ui(parsed.has("--force"));
    model_record model;
    if (!load_cli_model({model_path, "", true}, model, ui, error)) {
        std::cerr << "trensil-cli invert: " << error << "\n";
        return exit_failure;
    }
    // --exact fits in the bodies' physics; the fitted model keeps the setting.
    if (parsed.has("--exact")) {
        model.exact_field_geometry = true;
        clear_body_results(model);
    }
    const int n = model.profile.num_stations;
    if (n < 1) {
        std::cerr << "trensil-cli invert: the model has no stations\n";
        return exit_failure;
    }
    if (model.num_bodies < 1) {
        std::cerr << "trensil-cli invert: the model has no bodies\n";
        return exit_failure;
    }
    if (!whole_model && (body < 1 || body > model.num_bodies)) {
        std::cerr << "trensil-cli invert: there is no body " << body << "; the model has "
                  << model.num_bodies << "\n";
        return exit_failure;
    }
    if (!parsed.value("--first-station").empty()) {
        if (first < 1 || last > n || first > last) {
            std::cerr << "trensil-cli invert: the stations must lie in 1.." << n
                      << ", first not after last\n";
            return exit_failure;
        }
        model.profile.inversion_first_station = first;
        model.profile.inversion_last_station = last;
    }
    // Refuse before the run rather than lose its result.
    if (const int refused =
            report_refused_outputs("invert", model_inputs(model_path, model.data_file), {out, csv}))
        return refused;
    if (!may_write(out, ui) || (!csv.empty() && !may_write(csv, ui))) {
        std::cerr << "trensil-cli invert: " << (file_exists(out) ? out : csv)
                  << " exists; give --force to overwrite it\n";
        return exit_failure;
    }

    response_state response;
    response.ui = &ui;
    response.inversion_fits_gradient = parsed.has("--gradient") ? 1 : 0;
    const std::size_t messages_before = ui.messages.size();
    calculate_model_channels(model, response);

    console_view view(model, response);
    view.data_type = parsed.has("--gravity") ? inversion_mode_gravity : inversion_mode_magnetics;
    view.gradient = response.inversion_fits_gradient;
    view.texts[{inversion_control::Text_max_iterations, 0}] = parsed.value("--iterations");
    inversion_context ctx{model, response, state, ui, view};
    console_progress progress(std::cout);
    ctx.observer = &progress;
    ui.ctx = &ctx;

    const int requested_type = view.data_type;
    const std::vector<property_value> before = all_properties(model);
    interrupt_requested = false;
    const auto previous_handler = std::signal(SIGINT, request_stop);
    on_invert_click(ctx, whole_model ? 1 : 0, whole_model ? 1 : body);
    std::signal(SIGINT, previous_handler);
    ui.ctx = nullptr;
    if (view.data_type != requested_type)
        std::cerr << "trensil-cli invert: note: the model has no "
                  << (requested_type == inversion_mode_gravity ? "gravity" : "magnetic")
                  << " data; inverted the other kind\n";

    if (view.text(inversion_control::Label_status, 0) != "Inversion succeeded") {
        ui.flush_messages(std::cerr, "trensil-cli invert: ");
        std::cerr << "trensil-cli invert: nothing was inverted; the model is not written\n";
        return exit_failure;
    }
    if (report_engine_failures(ui, messages_before, std::cerr, "trensil-cli invert: ")) {
        std::cerr << "trensil-cli invert: the response was not whole during the run; the model "
                     "is not written\n";
        return exit_failure;
    }
    std::cout << "final misfit " << format_fixed(progress.last.misfit, 4) << " after "
              << state.iterations_done
              << (state.iterations_done == 1 ? " iteration" : " iterations") << "\n";
    const std::vector<property_value> after = all_properties(model);
    for (std::size_t j = 0; j < after.size(); ++j) {
        if (after[j].value == before[j].value) continue;
        std::cout << "body " << after[j].body << " " << property_label(after[j].row) << " "
                  << general_number(before[j].value) << " -> " << general_number(after[j].value)
                  << "\n";
    }
    for (const std::string& line :
         fit_report_lines(model, state, response.inversion_fits_gradient == 1))
        std::cout << line << "\n";

    if (!write_model_core(false, out, model, ui)) {
        ui.flush_messages(std::cerr, "trensil-cli invert: ");
        return exit_failure;
    }
    std::cout << "wrote " << out << "\n";
    if (!csv.empty()) {
        if (write_profile_data(model, csv, error) != 0) {
            std::cerr << "trensil-cli invert: cannot write " << csv << ": " << error << "\n";
            return exit_failure;
        }
        std::cout << "wrote " << csv << "\n";
    }
    ui.flush_messages(std::cerr, "trensil-cli invert: note: ");
    return exit_ok;
}

const cli_command_registration invert_registration{"invert", invert_usage, run_invert};

}  // namespace
}  // namespace trensil::cli
