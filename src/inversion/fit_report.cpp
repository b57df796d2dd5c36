#include "inversion/fit_report.h"

#include "inversion/parameter_vector.h"
#include "support/number_format.h"
#include "support/text_tokens.h"

namespace trensil {

namespace {

// "body 2 Depth Ext" for table row k.
std::string parameter_name(const inversion_state& state, int k) {
    return "body " + std::to_string(state.parameter_map(k, map_body)) + " " +
           property_label(state.parameter_map(k, map_property_row));
}

// The print form of a number without its blanks.
std::string number(float value) {
    return trim_text(general_number(value));
}

}  // namespace

std::vector<std::string> fit_report_lines(const model_record& model, const inversion_state& state,
                                          bool gradient) {
    std::vector<std::string> lines;
    const fit_summary& fit = state.fit;
    if (!fit.available) return lines;
    lines.push_back("stopped by " + fit.stop_reason);
    const std::string per_metre = gradient ? "/m" : "";
    if (fit.noise_mag > 0.0f)
        lines.push_back("magnetic noise level " + number(fit.noise_mag) + " nT" + per_metre);
    if (fit.noise_grav > 0.0f)
        lines.push_back("gravity noise level " + number(fit.noise_grav) + " mGal" + per_metre);
    lines.push_back("normalised misfit " + format_fixed(fit.normalised_misfit, 2) + " over " +
                    std::to_string(fit.data_count) + " data");
    for (int k = 1; k <= state.inversion_parameter_count; ++k) {
        const parameter_error& e = fit.errors[static_cast<std::size_t>(k - 1)];
        const int b = state.parameter_map(k, map_body);
        const parameter* p =
            b >= 1 && b <= model.num_bodies
                ? property_by_row(model.body(b), state.parameter_map(k, map_property_row))
                : nullptr;
        std::string line = parameter_name(state, k) + " " + (p ? number(p->value) : "?");
        switch (e.state) {
            case error_state::estimated:
                line += " +- " + number(e.standard_error);
                break;
            case error_state::at_limit:
                line += " at its limit";
                break;
            case error_state::undetermined:
                line += " not determined by the data";
                break;
        }
        lines.push_back(line);
    }
    for (const parameter_correlation& c : fit.strongest)
        lines.push_back("correlation " + parameter_name(state, c.first) + ", " +
                        parameter_name(state, c.second) + " " + format_fixed(c.value, 2));
    return lines;
}

}  // namespace trensil
