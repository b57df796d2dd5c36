#include "response/response_inputs.h"

#include "response/response_state.h"

namespace trensil {

std::string first_non_finite_input(const model_record& model, const body_record& body) {
    if (auto d = non_finite_description(model.profile.profile_azimuth); !d.empty()) return d;
    for (int k = 0; k < body_property_count; ++k) {
        if (auto d = non_finite_description(body.property(k).value); !d.empty()) return d;
    }
    const profile_block& p = model.profile;
    for (int row = easting_row; row <= sensor_row; ++row) {
        const double* r = p.location.row(row);
        for (int i = 0; i < p.num_stations; ++i) {
            if (auto d = non_finite_description(r[i]); !d.empty()) return d;
        }
    }
    return "";
}

std::string add_to_response_row(float* row, int i, double value) {
    const double sum = static_cast<double>(row[i - 1]) + value;
    std::string d = non_finite_description(sum);
    if (d.empty()) row[i - 1] = static_cast<float>(sum);
    return d;
}

}  // namespace trensil
