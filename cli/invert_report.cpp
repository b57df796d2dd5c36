#include "invert_report.h"

#include <string>

#include "inversion/parameter_vector.h"
#include "support/number_format.h"

namespace trensil::cli {

namespace {

// "body 2 Depth Ext" for table row k.
std::string parameter_name(const inversion_state& state, int k) {
    return "body " + std::to_string(state.parameter_map(k, map_body)) + " " +
           property_label(state.parameter_map(k, map_property_row));
}

// general_number without the blanks of the print form.
std::string number(float value) {
    std::string text = general_number(value);
    const auto first = text.find_first_not_of(' ');
    const auto last = text.find_last_not_of(' ');
    return first == std::string::npos ? text : text.substr(first, last - first + 1);
}

}  // namespace

void console_progress::run_started(const inversion_progress& progress) {
    last = progress;
    out_ << "initial misfit " << format_fixed(progress.misfit, 4) << std::endl;
}

void console_progress::iteration_done(const inversion_progress& progress) {
    last = progress;
    out_ << "iteration " << progress.iteration << " misfit " << format_fixed(progress.misfit, 4)
         << std::endl;
}

void print_fit_summary(std::ostream& out, const model_record& model, const inversion_state& state,
                       bool gradient) {
    const fit_summary& fit = state.fit;
    if (!fit.available) return;
    out << "stopped by " << fit.stop_reason << "\n";
    const char* per_metre = gradient ? "/m" : "";
    if (fit.noise_mag > 0.0f)
        out << "magnetic noise level " << number(fit.noise_mag) << " nT" << per_metre << "\n";
    if (fit.noise_grav > 0.0f)
        out << "gravity noise level " << number(fit.noise_grav) << " mGal" << per_metre << "\n";
    out << "normalised misfit " << format_fixed(fit.normalised_misfit, 2) << " over "
        << fit.data_count << " data\n";
    for (int k = 1; k <= state.inversion_parameter_count; ++k) {
        const parameter_error& e = fit.errors[static_cast<std::size_t>(k - 1)];
        const int b = state.parameter_map(k, map_body);
        const parameter* p =
            b >= 1 && b <= model.num_bodies
                ? property_by_row(model.body(b), state.parameter_map(k, map_property_row))
                : nullptr;
        out << parameter_name(state, k) << " " << (p ? number(p->value) : std::string("?"));
        switch (e.state) {
            case error_state::estimated:
                out << " +- " << number(e.standard_error) << "\n";
                break;
            case error_state::at_limit:
                out << " at its limit\n";
                break;
            case error_state::undetermined:
                out << " not determined by the data\n";
                break;
        }
    }
    for (const parameter_correlation& c : fit.strongest)
        out << "correlation " << parameter_name(state, c.first) << ", "
            << parameter_name(state, c.second) << " " << format_fixed(c.value, 2) << "\n";
}

}  // namespace trensil::cli
