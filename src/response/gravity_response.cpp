#include "response/gravity_response.h"

#include <cmath>
#include <string>
#include <vector>

#include "core/body_catalogue.h"
#include "response/facet_engine.h"
#include "response/field_geometry_choice.h"
#include "response/polyhedron_response.h"
#include "response/prism_corners.h"
#include "response/response_inputs.h"
#include "response/solid_tessellation.h"
#include "response/strike_frame.h"

namespace trensil {

namespace {

const std::string grav_failure_text = "An error occurred while calculating the gravity response: ";

// Infinite strike: the section's five points (the fifth closes it) summed edge by edge at each
// station, h the station's height above the top, not clamped.
std::string section_path(model_record& model, body_record& body, double A, double B, double C,
                         double W, double Dx, double S) {
    const profile_block& p = model.profile;
    const std::array<double, 6> xs{0.0, 0.0, W, W + S, S, 0.0};
    const std::array<double, 6> zs{0.0, 0.0, 0.0, -Dx, -Dx, 0.0};
    const double* E = p.location.row(easting_row);
    const double* N = p.location.row(northing_row);
    const double* Z = p.location.row(sensor_row);
    float* row = body.body_response.row(gravity_row);
    for (int i = 1; i <= p.num_stations; ++i) {
        const double h = Z[i - 1] - body.top.value;
        const double u = A * E[i - 1] + B * N[i - 1] + C;
        double sum = 0.0;
        for (int k = 1; k <= 4; ++k) {
            double x1 = xs[k] - u, x2 = xs[k + 1] - u, z1 = zs[k] - h, z2 = zs[k + 1] - h;
            sum += polygon_edge_gravity(x1, x2, z1, z2);
        }
        if (auto d = add_to_response_row(row, i, sum); !d.empty()) return d;
    }
    return "";
}

// Finite strike: the six faces of the prism through the facet engine.
void prism_path(model_record& model, body_record& body, double W, double Dx, double S) {
    const profile_block& p = model.profile;
    prism_corners c;
    place_prism_top(body, W, c);
    place_prism_bottom(body, S, Dx, c);
    const double slope = body.slope.value;
    if (std::fabs(slope) > 0.1) {
        // The gravity top takes tan(slope) in the width; the magnetic top takes tan(-slope).
        const double W2 =
            std::fabs(body.dip.value - 90.0) < 0.1
                ? W
                : W / (1.0 - body.cos_dip * std::tan(slope * degrees_to_radians) / body.sin_dip);
        slope_prism_top(body, W2, W2 * std::tan(slope * degrees_to_radians), c);
    }
    const double e1 = p.location(easting_row, 1), n1 = p.location(northing_row, 1);
    const double z1 = p.location(sensor_row, 1);
    array1<double> vx(1, 5), vy(1, 5), vz(1, 5), ex(1, 4), ey(1, 4), ez(1, 4);
    for (int f = 0; f < 6; ++f) {
        for (int j = 0; j < 4; ++j) {
            const int k = prism_faces[f][j];
            vx(j + 1) = c.north[k] - n1;
            vy(j + 1) = c.east[k] - e1;
            vz(j + 1) = -(c.z[k] - z1);
        }
        facet_response(f + 1, body, p, false, true, 0.0f, 0.0f, 0.0f, 0.0, 0.0, 0.0, 4, vx, vy, vz,
                       ex, ey, ez);
    }
}

// The cylinder/pipe through the closed-body routine, which returns mGal itself.
std::string solid_path(model_record& model, response_state& state, int body_index) {
    body_record& body = model.body(body_index);
    int failed = 0;
    build_body_solid(failed, model, state, body_index);
    if (failed != 0) return "";
    const solid_cache& s = body.solid;
    const int n = model.profile.num_stations;
    std::vector<float> result(static_cast<std::size_t>(n), 0.0f);
    const earth_field field{model.mag_intensity, model.mag_inclination, model.mag_declination};
    polyhedron_response(polyhedron_mode::gravity, 0, field,
                        solid_properties{0.0f, 0.0f, 0.0f, 0.0f, body.density.value},
                        s.num_placed_vertices, s.placed_vertices, s.num_triangles, s.triangles,
                        model.profile, result.data());
    float* row = body.body_response.row(gravity_row);
    for (int i = 1; i <= n; ++i) {
        if (auto d = add_to_response_row(row, i, result[static_cast<std::size_t>(i - 1)]);
            !d.empty())
            return d;
    }
    return "";
}

std::string grav_response_body(model_record& model, response_state& state, int body_index) {
    body_record& body = model.body(body_index);
    profile_block& p = model.profile;
    const int n = p.num_stations;
    if (auto d = first_non_finite_input(model, body); !d.empty()) return d;

    body.cos_dip = static_cast<float>(std::cos(body.dip.value * degrees_to_radians));
    body.sin_dip = static_cast<float>(std::sin(body.dip.value * degrees_to_radians));
    body.cos_strike = static_cast<float>(std::cos(body.strike.value * degrees_to_radians));
    body.sin_strike = static_cast<float>(std::sin(body.strike.value * degrees_to_radians));

    const double az = p.profile_azimuth;
    if (body.type == sphere_body) body.strike.value = p.profile_azimuth + 90.0f;
    if (std::fabs(std::sin(body.strike.value * degrees_to_radians - az)) < 0.1) return "";

    locate_body_on_profile(p, body.distance.value, body.east, body.north);
    const double A = body.cos_strike, B = -static_cast<double>(body.sin_strike);
    const double C = -A * body.east - B * body.north;

    if (std::fabs(body.density.value) < 0.0001) return "";
    if (body.type == cylinder_pipe) return solid_path(model, state, body_index);
    if (body.type != thin_sheet && body.type != thick_sheet) return "";

    const double W = body.width.value;
    double Dx = body.depth_extent.value;
    if (Dx == 0.0) Dx = 1000.0 * std::fabs(W);
    double S = 0.0;
    if (std::fabs(body.sin_dip) > 0.001) S = body.cos_dip * Dx / body.sin_dip;

    if (body.length.value > 0.0f) {
        prism_path(model, body, W, Dx, S);
    } else if (auto d = section_path(model, body, A, B, C, W, Dx, S); !d.empty()) {
        return d;
    }

    // Density x 0.00667 for both paths: no factor 2 on the two-dimensional sum.
    const double scale = body.density.value * gravity_constant;
    float* row = body.body_response.row(gravity_row);
    for (int i = 1; i <= n; ++i) {
        const double v = static_cast<double>(row[i - 1]) * scale;
        if (auto d = non_finite_description(v); !d.empty()) return d;
        row[i - 1] = static_cast<float>(v);
    }
    return "";
}

}  // namespace

// Talwani edge term (Talwani, Worzel and Landisman 1959), one edge of a 2-D polygon in metres:
// (ln(((m1 - m) c1) / ((m2 - m) c2)) m + (t1 - t2)) a sn cs, with m the edge's slope, t the
// bearings of the ends, c their cosines and a the edge's x at the station's level. Finite at a
// corner (x of 0 becomes 1e-9) and on level or vertical edges (0.001 floors).
double polygon_edge_gravity(double& x1, double& x2, double& z1, double& z2) {
    double dx = x2 - x1;
    if (std::fabs(dx) < 0.001) dx = 0.001;
    x2 = dx + x1;
    double dz = z2 - z1;
    if (std::fabs(dz) < 0.001) dz = 0.001;
    z2 = dz + z1;
    const double m = dz / dx;
    const double len = std::sqrt(dx * dx + dz * dz);
    const double sn = dz / len, cs = dx / len;
    const double t1 = bearing_of(z1, x1);
    const double r1 = std::sqrt(x1 * x1 + z1 * z1);
    const double c1 = x1 / r1, m1 = z1 / x1;
    const double t2 = bearing_of(z2, x2);
    const double r2 = std::sqrt(x2 * x2 + z2 * z2);
    const double c2 = x2 / r2, m2 = z2 / x2;
    const double a = x2 - z2 * dx / dz;
    return (std::log(((m1 - m) * c1) / ((m2 - m) * c2)) * m + (t1 - t2)) * (a * sn * cs);
}

void calculate_grav_response(model_record& model, response_state& state, int body_index) {
    body_record& body = model.body(body_index);
    const int n = model.profile.num_stations;
    if (n < 1) return;
    float* row = body.body_response.row(gravity_row);
    for (int i = 0; i < n; ++i) row[i] = 0.0f;
    const std::string failure = model.exact_field_geometry
                                    ? exact_grav_response(model, state, body_index)
                                    : grav_response_body(model, state, body_index);
    if (!failure.empty()) report_response_failure(state, grav_failure_text + failure);
}

}  // namespace trensil
