#include "response/field_coefficients.h"

#include <cmath>

#include "core/body_catalogue.h"
#include "response/strike_frame.h"

namespace trensil {

namespace {
// Susceptibility is held in millionths of SI.
constexpr double susc_scale = 1000000.0;
}  // namespace

void calculate_field_coefficients(model_record& model, response_state& state, int body_index) {
    body_record& body = model.body(body_index);
    const double F = model.mag_intensity;
    const double incl = model.mag_inclination * degrees_to_radians;
    const double decl = model.mag_declination * degrees_to_radians;
    const double sI = std::sin(incl), cI = std::cos(incl);
    const double sD = std::sin(decl), cD = std::cos(decl);

    body.cos_dip = static_cast<float>(std::cos(body.dip.value * degrees_to_radians));
    body.sin_dip = static_cast<float>(std::sin(body.dip.value * degrees_to_radians));
    body.cos_strike = static_cast<float>(std::cos(body.strike.value * degrees_to_radians));
    body.sin_strike = static_cast<float>(std::sin(body.strike.value * degrees_to_radians));

    const double susc = body.susc.value;
    // Induced magnetisation in nT: J = F k / (4 pi).
    const double J = F * susc / 4.0 / pi_value / susc_scale;
    double e = J * cI * sD;
    double n = J * cI * cD;
    double v = J * sI;

    if (body.demag == 1) {
        // Rotate into the sheet's frame, reduce the component normal to the sheet by 1 / (1 + k),
        // and rotate back.
        const double a = body.cos_dip, b = body.sin_dip;
        const double c = body.cos_strike, d = body.sin_strike;
        double p = e * c - n * d;
        const double q = n * c + e * d;
        double u = v * a + p * b;
        const double w = -p * a + v * b;
        u = u / (1.0 + susc / susc_scale);
        p = u * b - w * a;
        v = u * a + w * b;
        e = p * c + q * d;
        n = -p * d + q * c;
    }

    double resultant_decl = model.mag_declination;
    double sM = sI, cM = cI;
    double magnetisation = 0.0;
    if (std::fabs(body.rem_q.value) > 0.0) {
        const double Jr = F * body.rem_q.value * susc / 4.0 / pi_value / susc_scale;
        const double ri = body.rem_i.value * degrees_to_radians;
        const double rd = body.rem_d.value * degrees_to_radians;
        e += std::cos(ri) * Jr * std::sin(rd);
        n += std::cos(ri) * Jr * std::cos(rd);
        v += std::sin(ri) * Jr;
        magnetisation = std::sqrt(e * e + n * n + v * v);
        resultant_decl = bearing_of(e, n) / degrees_to_radians;  // n may become 1e-9
        double h = std::sqrt(e * e + n * n);
        bearing_of(v, h);  // the resultant inclination; only its sine and cosine are used
        // A body without magnetisation has no direction of its own: keep the field's.
        if (magnetisation > 0.0) {
            sM = v / magnetisation;
            cM = h / magnetisation;
        }
    } else {
        magnetisation = std::sqrt(e * e + n * n + v * v);
        if (susc < 0.0) magnetisation = -magnetisation;
    }

    const double l = cD * cI, m = sD * cI, nn = sI;
    const double Dm = resultant_decl * degrees_to_radians;
    const double L = std::cos(Dm) * cM, M = std::sin(Dm) * cM, N = sM;
    double ca, cb, cc;
    if (body.type == sphere_body) {
        ca = 2.0 * L * l - M * m - N * nn;
        cb = 2.0 * N * nn - L * l - M * m;
        cc = 3.0 * (N * l + L * nn);
    } else {
        ca = L * l - N * nn;
        cb = -2.0 * (N * l + L * nn);
        cc = 0.0;
    }

    std::string description;
    for (double value : {magnetisation, ca, cb, cc, e, n, v}) {
        description = non_finite_description(value);
        if (!description.empty()) break;
    }
    if (!description.empty()) {
        report_response_failure(
            state, description + "An error occurred while calculating the field coefficients");
        return;
    }

    body.magnetisation = static_cast<float>(magnetisation);
    body.field_cosines = {static_cast<float>(l), static_cast<float>(m), static_cast<float>(nn)};
    body.magnetisation_cosines = {static_cast<float>(L), static_cast<float>(M),
                                  static_cast<float>(N)};
    body.coef_a = static_cast<float>(ca);
    body.coef_b = static_cast<float>(cb);
    body.coef_c = static_cast<float>(cc);
    body.mag_x = static_cast<float>(e);
    body.mag_y = static_cast<float>(n);
    body.mag_z = static_cast<float>(v);
}

}  // namespace trensil
