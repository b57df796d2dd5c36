#include "response/magnetic_response.h"

#include <cmath>
#include <string>
#include <vector>

#include "core/body_catalogue.h"
#include "response/facet_engine.h"
#include "response/field_coefficients.h"
#include "response/field_geometry_choice.h"
#include "response/polyhedron_response.h"
#include "response/prism_corners.h"
#include "response/response_inputs.h"
#include "response/solid_tessellation.h"
#include "response/strike_frame.h"

namespace trensil {

namespace {

const std::string mag_failure_text = "An error occurred while calculating the mag response: ";
constexpr double susc_scale = 1000000.0;

// Adds to a single-precision row, refusing a sum that cannot be stored.
struct row_adder {
    float* row;
    std::string failure;
    bool add(int i, double value) {
        failure = add_to_response_row(row, i, value);
        return failure.empty();
    }
};

// The first input of a body's response that is not a finite number, as its description: the
// earth field, then what the gravity response checks too.
std::string check_inputs(const model_record& model, const body_record& body) {
    for (double v :
         {static_cast<double>(model.mag_intensity), static_cast<double>(model.mag_inclination),
          static_cast<double>(model.mag_declination)}) {
        if (auto d = non_finite_description(v); !d.empty()) return d;
    }
    return first_non_finite_input(model, body);
}

// Height of the station above the body's top, held at 0.1 for a station at or below it.
double height_above_top(double elevation, double top) {
    const double z = elevation - top;
    return z > 0.0 ? z : 0.1;
}

struct strike_frame {
    double A, B, C;
    double across(double east, double north) const { return A * east + B * north + C; }
};

// The infinite-strike thick sheet, a thick dipping prism that reaches down without end:
// G(h, t) = c1 ln((p^2 + 1) / (q^2 + 1)) + c2 (atan p - atan q), p and q the two edges' offsets
// over the depth h (nT). After the ribbon-integral of the 2-D dipole line (Gay 1963); p and q are
// finite since h is at least 0.1.
double thick_sheet_term(double c1, double c2, double W, double x, double h, double t) {
    const double p = (W / 2.0 + x - t) / h;
    const double q = (x - W / 2.0 - t) / h;
    return c1 * std::log((p * p + 1.0) / (q * q + 1.0)) + c2 * (std::atan(p) - std::atan(q));
}

// Rows 3, 4, 5 of the prism by the facet engine, then their projection on the field into row 1.
bool prism_by_facets(model_record& model, body_record& body, const prism_corners& c, double fx,
                     double fy, double fz, std::string& failure) {
    profile_block& p = model.profile;
    const int n = p.num_stations;
    array1<double> vx(1, 5), vy(1, 5), vz(1, 5), ex(1, 4), ey(1, 4), ez(1, 4);
    for (int f = 0; f < 6; ++f) {
        for (int j = 0; j < 4; ++j) {
            const int k = prism_faces[f][j];
            vx(j + 1) = c.north[k];
            vy(j + 1) = c.east[k];
            vz(j + 1) = -c.z[k];
        }
        facet_response(f + 1, body, p, true, false, body.mag_x, body.mag_y, body.mag_z, fx, fy, fz,
                       4, vx, vy, vz, ex, ey, ez);
    }
    row_adder total{body.body_response.row(total_field_row), {}};
    const float* hn = body.body_response.row(north_row);
    const float* he = body.body_response.row(east_row);
    const float* hd = body.body_response.row(down_row);
    for (int i = 1; i <= n; ++i) {
        const double t = static_cast<double>(hn[i - 1]) * fx + static_cast<double>(he[i - 1]) * fy +
                         static_cast<double>(hd[i - 1]) * fz;
        if (!total.add(i, t)) {
            failure = total.failure;
            return false;
        }
    }
    return true;
}

// Copies one value a station from a closed-body routine into row 1.
bool copy_solid_result(body_record& body, const std::vector<float>& result, std::string& failure) {
    row_adder total{body.body_response.row(total_field_row), {}};
    for (std::size_t i = 0; i < result.size(); ++i) {
        total.row[i] = 0.0f;
        if (!total.add(static_cast<int>(i) + 1, result[i])) {
            failure = total.failure;
            return false;
        }
    }
    return true;
}

solid_properties magnetic_properties(const body_record& body) {
    return solid_properties{static_cast<float>(body.susc.value / susc_scale), body.rem_d.value,
                            body.rem_i.value, body.rem_q.value, 0.0f};
}

earth_field field_of(const model_record& model) {
    return earth_field{model.mag_intensity, model.mag_inclination, model.mag_declination};
}

std::string strike_limited_body(model_record& model, response_state& state, int body_index);

// The body of the response; returns the failure's description, empty when it ran to the end or
// stopped early by design.
std::string mag_response_body(model_record& model, response_state& state, int body_index) {
    body_record& body = model.body(body_index);
    profile_block& p = model.profile;
    const int n = p.num_stations;

    if (auto d = check_inputs(model, body); !d.empty()) return d;

    if (!(body.magnetisation > 0.0f)) calculate_field_coefficients(model, state, body_index);

    const double az = p.profile_azimuth;
    // The sphere always lies across the profile; the angle is a sum of radians and degrees, as
    // the program has always stored it.
    if (body.type == sphere_body) body.strike.value = p.profile_azimuth + 90.0f;
    const double sgn = std::sin(body.strike.value * degrees_to_radians - az);
    if (std::fabs(sgn) < 0.1) return "";

    locate_body_on_profile(p, body.distance.value, body.east, body.north);
    const double A = body.cos_strike, B = -static_cast<double>(body.sin_strike);
    const strike_frame frame{A, B, -A * body.east - B * body.north};

    if (std::fabs(body.magnetisation) < 0.0001) return "";
    if (body.type == polygon_body) return "";

    const double T = body.magnetisation;
    const double a = body.coef_a, b = body.coef_b;
    const double cd = body.cos_dip, sd = body.sin_dip;
    double c1, c2, c3 = body.coef_c;
    if (body.type == sphere_body) {
        c1 = a;
        c2 = b;
    } else if (sgn > 0.0) {
        c1 = -2.0 * a * cd + b * sd;
        c2 = -2.0 * a * sd - b * cd;
    } else {
        c1 = 2.0 * a * cd + b * sd;
        c2 = -2.0 * a * sd + b * cd;
    }
    c1 *= T;
    c2 *= T;
    c3 *= T;
    if (std::fabs(c1) + std::fabs(c2) + std::fabs(c3) < 1e-6) return "";

    const double* E = p.location.row(easting_row);
    const double* N = p.location.row(northing_row);
    const double* Z = p.location.row(sensor_row);
    const double top = body.top.value;
    row_adder row1{body.body_response.row(total_field_row), {}};

    double W = body.width.value;
    const double Dx = body.depth_extent.value;
    double S = 0.0;
    if (Dx > 0.0 && std::fabs(sd) > 0.001) S = cd * Dx / sd;

    switch (body.type) {
        case thin_sheet: {
            c1 *= W;
            c2 *= W;
            if (sgn < 0.0) {
                W = -W;
                S = -S;
            }
            for (int i = 1; i <= n; ++i) {
                const double z = height_above_top(Z[i - 1], top);
                const double x = frame.across(E[i - 1], N[i - 1]) - W / 2.0;
                double v = (c1 * x + c2 * z) / (z * z + x * x);
                if (Dx > 0.0) {
                    const double zb = z + Dx, xb = x - S;
                    v -= (c1 * xb + c2 * zb) / (zb * zb + xb * xb);
                }
                if (!row1.add(i, v)) return row1.failure;
            }
            return "";
        }
        case thick_sheet:
        case cylinder_pipe: {
            if (!(body.length.value > 0.0f) && body.slope.value == 0.0f) {
                if (sgn < 0.0) {
                    W = -W;
                    S = -S;
                }
                c1 = sd * c1 / 2.0;
                c2 = sd * c2;
                for (int i = 1; i <= n; ++i) {
                    const double z = height_above_top(Z[i - 1], top);
                    const double x = frame.across(E[i - 1], N[i - 1]) - std::fabs(W) / 2.0;
                    double v = thick_sheet_term(c1, c2, W, x, z, 0.0);
                    if (Dx > 0.0) v -= thick_sheet_term(c1, c2, W, x, z + Dx, S);
                    if (!row1.add(i, v)) return row1.failure;
                }
                return "";
            }
            return strike_limited_body(model, state, body_index);
        }
        case edge_body:
        case sloping_step: {
            c1 = sd * c1 / 2.0;
            c2 = sd * c2;
            for (int i = 1; i <= n; ++i) {
                const double z = height_above_top(Z[i - 1], top);
                const double x = frame.across(E[i - 1], N[i - 1]);
                double v;
                if (body.type == edge_body) {
                    v = c1 * std::log(z * z + x * x) + c2 * std::atan(x / z);
                } else {
                    const double zb = z + Dx, xb = x - W;
                    v = c1 * std::log((z * z + x * x) / (zb * zb + xb * xb)) +
                        c2 * (std::atan(x / z) - std::atan(xb / zb));
                }
                if (!row1.add(i, v)) return row1.failure;
            }
            return "";
        }
        case sphere_body: {
            // R = 2 |width| taken as a diameter: the sphere's volume R^3 pi / 6 is that of a
            // sphere of radius |width|.
            const double R = 2.0 * std::fabs(W);
            const double vol = R * R * R * pi_value / 6.0;
            c1 *= vol;
            c2 *= vol;
            c3 *= vol;
            for (int i = 1; i <= n; ++i) {
                const double z = height_above_top(Z[i - 1], top);
                const double x = frame.across(E[i - 1], N[i - 1]);
                const double r2 = x * x + z * z;
                const double v = (c1 * x * x + c2 * z * z + c3 * x * z) / std::pow(r2, 2.5);
                if (!row1.add(i, v)) return row1.failure;
            }
            return "";
        }
        default:
            return "";
    }
}

// The strike-limited thick sheet and the cylinder/pipe: the magnetisation in the north, east,
// down frame, then the prism (facet engine, or the closed-body routine with demagnetisation) or
// the triangulated solid.
std::string strike_limited_body(model_record& model, response_state& state, int body_index) {
    body_record& body = model.body(body_index);
    profile_block& p = model.profile;
    const int n = p.num_stations;
    const double F = model.mag_intensity;
    const double incl = model.mag_inclination * degrees_to_radians;
    const double decl = model.mag_declination * degrees_to_radians;
    const double cI = std::cos(incl);
    const double fx = std::cos(decl) * cI, fy = std::sin(decl) * cI, fz = std::sin(incl);
    const double susc = body.susc.value;
    const double Jr = F * body.rem_q.value * susc / (4.0 * pi_value) / susc_scale;
    const double ri = body.rem_i.value * degrees_to_radians;
    const double rd = body.rem_d.value * degrees_to_radians;
    body.mag_x = static_cast<float>((susc * F * fx) / (4.0 * pi_value) / susc_scale +
                                    Jr * std::cos(ri) * std::cos(rd));
    body.mag_y = static_cast<float>((susc * F * fy) / (4.0 * pi_value) / susc_scale +
                                    Jr * std::cos(ri) * std::sin(rd));
    body.mag_z =
        static_cast<float>((susc * F * fz) / (4.0 * pi_value) / susc_scale + Jr * std::sin(ri));

    std::string failure;
    if (body.type == cylinder_pipe) {
        int failed = 0;
        build_body_solid(failed, model, state, body_index);
        if (failed != 0) return "";
        const solid_cache& s = body.solid;
        std::vector<float> result(static_cast<std::size_t>(n), 0.0f);
        polyhedron_response(polyhedron_mode::magnetic, body.demag != 0 ? demag_control_on : 0,
                            field_of(model), magnetic_properties(body), s.num_placed_vertices,
                            s.placed_vertices, s.num_triangles, s.triangles, p, result.data());
        copy_solid_result(body, result, failure);
        return failure;
    }

    const double W = body.width.value;
    const double cd = body.cos_dip, sd = body.sin_dip;
    prism_corners c;
    place_prism_top(body, W, c);
    double S = 0.0, depth = body.depth_extent.value;
    if (body.depth_extent.value == 0.0f && std::fabs(sd) > 0.001) {
        S = 5000.0 * cd / sd;
        depth = 5000.0;
    } else if (body.depth_extent.value > 0.0f && std::fabs(sd) > 0.001) {
        S = cd * body.depth_extent.value / sd;
    }
    place_prism_bottom(body, S, depth, c);
    const double slope = body.slope.value;
    if (std::fabs(slope) > 0.1) {
        // The magnetic top takes tan(-slope) in the width; the gravity top takes tan(slope).
        const double W2 = std::fabs(body.dip.value - 90.0) < 0.1
                              ? W
                              : W / (1.0 - cd * std::tan(-slope * degrees_to_radians) / sd);
        slope_prism_top(body, W2, W2 * std::tan(slope * degrees_to_radians), c);
    }

    if (body.demag == 0) {
        const double e1 = p.location(easting_row, 1), n1 = p.location(northing_row, 1);
        const double z1 = p.location(sensor_row, 1);
        for (int k = 1; k <= 8; ++k) {
            c.east[k] -= e1;
            c.north[k] -= n1;
            c.z[k] -= z1;
        }
        prism_by_facets(model, body, c, fx, fy, fz, failure);
        return failure;
    }

    array2<double> vertices(1, 3, 1, 8);
    for (int k = 1; k <= 8; ++k) {
        vertices(1, k) = c.east[k];
        vertices(2, k) = c.north[k];
        vertices(3, k) = c.z[k];
    }
    array2<std::int32_t> triangles(1, 3, 1, 12);
    for (int t = 0; t < 12; ++t)
        for (int j = 0; j < 3; ++j) triangles(j + 1, t + 1) = prism_triangles[t][j];
    std::vector<float> result(static_cast<std::size_t>(n), 0.0f);
    polyhedron_response(polyhedron_mode::magnetic, demag_control_on, field_of(model),
                        magnetic_properties(body), 8, vertices, 12, triangles, p, result.data());
    copy_solid_result(body, result, failure);
    return failure;
}

}  // namespace

void calculate_mag_response(model_record& model, response_state& state, int body_index) {
    body_record& body = model.body(body_index);
    const int n = model.profile.num_stations;
    if (n < 1) return;
    for (int row : {total_field_row, north_row, east_row, down_row}) {
        float* r = body.body_response.row(row);
        for (int i = 0; i < n; ++i) r[i] = 0.0f;
    }
    const std::string failure = model.exact_field_geometry
                                    ? exact_mag_response(model, state, body_index)
                                    : mag_response_body(model, state, body_index);
    if (!failure.empty()) report_response_failure(state, mag_failure_text + failure);
}

}  // namespace trensil
