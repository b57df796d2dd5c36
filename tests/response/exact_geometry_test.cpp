// The exact field geometry against closed forms written here, independently of the engine: the
// 2-D polygon line integrals, the dipole, the 2-D rectangle and the rectangular prism.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "core/body_catalogue.h"
#include "response/facet_closed_forms.h"
#include "response/gravity_response.h"
#include "response/magnetic_response.h"
#include "response_test_model.h"

namespace trensil {
namespace {

using testing_shapes::rectangle_attraction;
using testing_support::line_model;
constexpr double pi = 3.14159265358979;
constexpr double deg = pi / 180.0;
constexpr double big_g = 6.6743e-3;  // G in mGal per (g/cc x m)

struct vec {
    double e, n, d;  // east, north, down
};

vec direction(double inclination, double declination) {
    return {std::cos(inclination * deg) * std::sin(declination * deg),
            std::cos(inclination * deg) * std::cos(declination * deg), std::sin(inclination * deg)};
}

// chi F along the field plus Q chi F along the remanence, nT.
vec magnetisation(const model_record& m, const body_record& b) {
    const double j = b.susc.value / 1e6 * m.mag_intensity;
    const vec f = direction(m.mag_inclination, m.mag_declination);
    const vec r = direction(b.rem_i.value, b.rem_d.value);
    const double q = b.rem_q.value;
    return {j * (f.e + q * r.e), j * (f.n + q * r.n), j * (f.d + q * r.d)};
}

using corner = std::array<double, 2>;  // x across strike, z down

// Total-field anomaly (nT) at (px, pz) of a 2-D polygon magnetised with (jx, jz) nT, seen along
// (fx, fz): the field of the surface poles J . n on each edge,
//   B = -1 / (2 pi) sum_e (J . n_e) [t_e ln(r2 / r1) + n_e (atan(s2 / d) - atan(s1 / d))],
// t_e along the edge, n_e its outward normal, d the station's distance from its line.
double talwani_total_field(std::vector<corner> poly, double jx, double jz, double fx, double fz,
                           double px, double pz) {
    double area = 0.0;
    for (std::size_t k = 0; k < poly.size(); ++k) {
        const corner& a = poly[k];
        const corner& b = poly[(k + 1) % poly.size()];
        area += a[0] * b[1] - b[0] * a[1];
    }
    if (area < 0.0) std::reverse(poly.begin(), poly.end());
    double bx = 0.0, bz = 0.0;
    for (std::size_t k = 0; k < poly.size(); ++k) {
        const corner& a = poly[k];
        const corner& b = poly[(k + 1) % poly.size()];
        const double len = std::hypot(b[0] - a[0], b[1] - a[1]);
        const double tx = (b[0] - a[0]) / len, tz = (b[1] - a[1]) / len;
        const double nx = tz, nz = -tx;
        const double ax = a[0] - px, az = a[1] - pz, cx = b[0] - px, cz = b[1] - pz;
        const double d = ax * nx + az * nz;
        const double s1 = ax * tx + az * tz, s2 = cx * tx + cz * tz;
        const double lg = 0.5 * std::log((cx * cx + cz * cz) / (ax * ax + az * az));
        const double th = std::atan(s2 / d) - std::atan(s1 / d);
        const double sigma = jx * nx + jz * nz;
        bx -= sigma * (tx * lg + nx * th) / (2.0 * pi);
        bz -= sigma * (tz * lg + nz * th) / (2.0 * pi);
    }
    return bx * fx + bz * fz;
}

body_record& exact_body(model_record& model, int type) {
    model.exact_field_geometry = true;
    body_record& b = model.body(1);
    b.type = type;
    b.distance.value = 480.0f;
    b.top.value = -40.0f;
    b.dip.value = 60.0f;
    b.width.value = 80.0f;
    b.depth_extent.value = 200.0f;
    b.length.value = 0.0f;
    b.susc.value = 20000.0f;
    b.rem_q.value = 0.8f;
    b.rem_i.value = 30.0f;
    b.rem_d.value = 120.0f;
    b.density.value = 0.4f;
    return b;
}

float magnetic(model_record& model, int i) {
    return model.body(1).body_response(total_field_row, i);
}

float gravity(model_record& model, int i) {
    return model.body(1).body_response(gravity_row, i);
}

double peak(model_record& model, int row) {
    double p = 0.0;
    for (int i = 1; i <= model.profile.num_stations; ++i)
        p = std::max(p, std::fabs(static_cast<double>(model.body(1).body_response(row, i))));
    return p;
}

struct line_case {
    const char* name;
    double step_east, step_north;
};
constexpr line_case lines[] = {{"east", 20.0, 0.0}, {"north", 0.0, 20.0}, {"oblique", 12.0, 16.0}};
constexpr double strikes[] = {0.0, 30.0, 90.0, 135.0, 250.0};

// The section of each of types 1 to 4 as the polygon closed forms see it, on three lines at five
// strikes with remanence. Thin sheet: a polygon a centimetre wide scaled to the width; edge and
// step: corners pushed 10^7 m out, compared after the mean is taken off (their anomaly is known
// up to a constant). Tolerance 1e-3 of the peak.
TEST(exact_sections, match_the_polygon_line_integrals_at_any_strike_and_line) {
    for (int type : {thin_sheet, thick_sheet, edge_body, sloping_step}) {
        for (const line_case& line : lines) {
            for (double strike : strikes) {
                SCOPED_TRACE(::testing::Message()
                             << "type " << type << ", line " << line.name << ", strike " << strike);
                model_record model =
                    line_model(50, 1000.0, 2000.0, line.step_east, line.step_north, 0.0, 1);
                body_record& b = exact_body(model, type);
                b.strike.value = static_cast<float>(strike);
                response_state state;
                calculate_mag_response(model, state, 1);

                const vec j = magnetisation(model, b);
                const vec f = direction(model.mag_inclination, model.mag_declination);
                const double cs = std::cos(strike * deg), ss = std::sin(strike * deg);
                const double jx = j.e * cs - j.n * ss, fx = f.e * cs - f.n * ss;
                const double W = b.width.value, D = b.depth_extent.value;
                const double S = D / std::tan(b.dip.value * deg);
                const double far = 1e7;
                std::vector<double> expected, got;
                for (int i = 1; i <= model.profile.num_stations; ++i) {
                    const double x = (model.profile.location(easting_row, i) - b.east) * cs -
                                     (model.profile.location(northing_row, i) - b.north) * ss;
                    const double z = b.top.value - model.profile.location(sensor_row, i);
                    double v = 0.0;
                    if (type == thin_sheet) {
                        const double e = 0.01, x0 = W / 2 - e / 2;
                        v = W / e *
                            talwani_total_field(
                                {{x0, 0}, {x0 + e, 0}, {x0 + e + S, D}, {x0 + S, D}}, jx, j.d, fx,
                                f.d, x, z);
                    } else if (type == thick_sheet) {
                        v = talwani_total_field({{0, 0}, {W, 0}, {W + S, D}, {S, D}}, jx, j.d, fx,
                                                f.d, x, z);
                    } else {
                        const double c = far / std::tan(b.dip.value * deg);
                        auto edge = [&](double cx, double cz) {
                            return talwani_total_field({{cx, cz},
                                                        {cx + far, cz},
                                                        {cx + far, cz + far},
                                                        {cx + c, cz + far}},
                                                       jx, j.d, fx, f.d, x, z);
                        };
                        v = edge(0, 0) - (type == sloping_step ? edge(W, D) : 0.0);
                    }
                    expected.push_back(v);
                    got.push_back(magnetic(model, i));
                }
                auto centre = [&](std::vector<double>& v) {
                    double mean = 0.0;
                    for (double x : v) mean += x / static_cast<double>(v.size());
                    if (type == edge_body || type == sloping_step)
                        for (double& x : v) x -= mean;
                };
                centre(expected);
                centre(got);
                double scale = 0.0;
                for (double x : expected) scale = std::max(scale, std::fabs(x));
                // On a line along the strike the response is constant, which the mean removes.
                const bool along = std::fabs(std::sin(std::atan2(line.step_east, line.step_north) -
                                                      strike * deg)) < 1e-9;
                if (!along) {
                    ASSERT_GT(scale, 1.0);
                }
                for (std::size_t k = 0; k < got.size(); ++k)
                    ASSERT_NEAR(got[k], expected[k], 1e-3 * scale + 1e-3) << "station " << k + 1;
            }
        }
    }
}

// The thick sheet's other sections against the same line integrals (1e-3 of the peak): a sloping
// top (its far side kept on the down-dip line from the width's end), no bottom (corners 10^7 m
// down, the mean taken off), and a body whose top stands above the stations, so that some of
// them lie inside it.
TEST(exact_sections, sloping_open_and_enclosing_thick_sheets) {
    struct variant {
        const char* name;
        float slope, depth_extent, top;
    };
    for (const variant& c :
         {variant{"sloping top", 15.0f, 200.0f, -40.0f}, variant{"no bottom", 0.0f, 0.0f, -40.0f},
          variant{"stations inside", 0.0f, 200.0f, 60.0f}}) {
        SCOPED_TRACE(c.name);
        model_record model = line_model(60, 1000.0, 2000.0, 12.0, 16.0, 0.0, 1);
        body_record& b = exact_body(model, thick_sheet);
        b.strike.value = 135.0f;
        b.slope.value = c.slope;
        b.depth_extent.value = c.depth_extent;
        b.top.value = c.top;
        response_state state;
        calculate_mag_response(model, state, 1);
        const vec j = magnetisation(model, b);
        const vec f = direction(model.mag_inclination, model.mag_declination);
        const double cs = std::cos(135.0 * deg), ss = std::sin(135.0 * deg);
        const double cot = 1.0 / std::tan(b.dip.value * deg), ts = std::tan(c.slope * deg);
        const double W2 = b.width.value / (1.0 + cot * ts), rise = W2 * ts;
        const double D = c.depth_extent > 0.0f ? c.depth_extent : 1e7;
        const std::vector<corner> section{
            {0, 0}, {W2, -rise}, {W2 + D * cot, D - rise}, {D * cot, D}};
        std::vector<double> expected, got;
        for (int i = 1; i <= 60; ++i) {
            const double x = (model.profile.location(easting_row, i) - b.east) * cs -
                             (model.profile.location(northing_row, i) - b.north) * ss;
            expected.push_back(talwani_total_field(section, j.e * cs - j.n * ss, j.d,
                                                   f.e * cs - f.n * ss, f.d, x, c.top));
            got.push_back(magnetic(model, i));
        }
        if (c.depth_extent == 0.0f) {
            for (std::vector<double>* v : {&expected, &got}) {
                double mean = 0.0;
                for (double x : *v) mean += x / 60.0;
                for (double& x : *v) x -= mean;
            }
        }
        double scale = 0.0;
        for (double x : expected) scale = std::max(scale, std::fabs(x));
        for (int i = 0; i < 60; ++i) EXPECT_NEAR(got[i], expected[i], 1e-3 * scale) << i + 1;
    }
}

// A thin sheet and a thick sheet of the same small width agree (1e-3 of the peak); a thick sheet
// listed with a negative width is the mirror of the positive one, in both channels (1e-4).
TEST(exact_sections, thin_and_thick_agree_and_the_winding_does_not_matter) {
    model_record thin = line_model(60, 0.0, 0.0, 15.0, 5.0, 0.0, 1);
    model_record thick = thin;
    exact_body(thin, thin_sheet).width.value = 2.0f;
    exact_body(thick, thick_sheet).width.value = 2.0f;
    response_state state;
    calculate_mag_response(thin, state, 1);
    calculate_mag_response(thick, state, 1);
    const double p = peak(thick, total_field_row);
    for (int i = 1; i <= 60; ++i) EXPECT_NEAR(magnetic(thin, i), magnetic(thick, i), 1e-3 * p);

    model_record right = line_model(60, 0.0, 0.0, 15.0, 0.0, 0.0, 1);
    model_record left = right;
    exact_body(right, thick_sheet).strike.value = 0.0f;
    body_record& l = exact_body(left, thick_sheet);
    l.strike.value = 0.0f;
    l.width.value = -80.0f;
    l.distance.value = 480.0f + 80.0f;
    for (model_record* m : {&right, &left}) {
        calculate_mag_response(*m, state, 1);
        calculate_grav_response(*m, state, 1);
    }
    for (int i = 1; i <= 60; ++i) {
        EXPECT_NEAR(magnetic(left, i), magnetic(right, i), 1e-4 * peak(right, total_field_row));
        EXPECT_NEAR(gravity(left, i), gravity(right, i), 1e-4 * peak(right, gravity_row));
    }
}

// A vertical rectangle of infinite strike against the 2-D rectangle with the full 2 G rho
// (1e-5 relative), and a station exactly on a corner's line stays finite.
TEST(exact_gravity, infinite_strike_matches_the_rectangle_with_two_g_rho) {
    model_record model = line_model(41, 0.0, 0.0, 25.0, 0.0, 0.0, 1);
    body_record& b = exact_body(model, thick_sheet);
    b.strike.value = 0.0f;
    b.dip.value = 90.0f;
    b.distance.value = 500.0f;
    response_state state;
    calculate_grav_response(model, state, 1);
    for (int i = 1; i <= 41; ++i) {
        const double x = b.east - model.profile.location(easting_row, i);
        const double g =
            b.density.value * big_g * rectangle_attraction(x, x + b.width.value, 40.0, 240.0);
        EXPECT_NEAR(gravity(model, i), g, 1e-5 * std::fabs(g) + 1e-6) << "station " << i;
    }
}

// The same body as a prism 200 km long and as an infinite body, on an oblique line at strike 30
// with remanence: they agree in both channels (1e-3 of the peak). The prism also agrees with the
// format's own facet prism, which is right for this geometry (magnetics 1e-4 of the peak; gravity
// after the ratio of the two values of G).
TEST(exact_long_prism, equals_the_infinite_body_and_the_facet_prism) {
    model_record infinite = line_model(50, 1000.0, 2000.0, 12.0, 16.0, 0.0, 1);
    exact_body(infinite, thick_sheet).strike.value = 30.0f;
    model_record prism = infinite;
    prism.body(1).length.value = 200000.0f;
    model_record format = prism;
    format.exact_field_geometry = false;
    response_state state;
    for (model_record* m : {&infinite, &prism, &format}) {
        calculate_mag_response(*m, state, 1);
        calculate_grav_response(*m, state, 1);
    }
    const double pm = peak(infinite, total_field_row), pg = peak(infinite, gravity_row);
    for (int i = 1; i <= 50; ++i) {
        EXPECT_NEAR(magnetic(prism, i), magnetic(infinite, i), 1e-3 * pm) << "station " << i;
        EXPECT_NEAR(gravity(prism, i), gravity(infinite, i), 1e-3 * pg) << "station " << i;
        EXPECT_NEAR(magnetic(prism, i), magnetic(format, i), 1e-4 * pm) << "station " << i;
        EXPECT_NEAR(gravity(prism, i), gravity(format, i) * 6.6743 / 6.67, 1e-4 * pg);
    }
}

// A sphere on a line running east, where the format's strike leaves it silent: the exact sphere
// is the dipole of radius |width| at the reference point, elevation top (1e-4 relative), and its
// gravity that of its mass at the centre.
TEST(exact_sphere, matches_the_dipole_on_an_east_running_line) {
    model_record model = line_model(41, 0.0, 500.0, 25.0, 0.0, 0.0, 1);
    body_record& b = exact_body(model, sphere_body);
    b.width.value = 60.0f;
    b.top.value = -120.0f;
    model_record format = model;
    format.exact_field_geometry = false;
    response_state state;
    calculate_mag_response(model, state, 1);
    calculate_grav_response(model, state, 1);
    calculate_mag_response(format, state, 1);
    const double volume = 4.0 / 3.0 * pi * 60.0 * 60.0 * 60.0;
    const vec j = magnetisation(model, b);
    const vec f = direction(model.mag_inclination, model.mag_declination);
    for (int i = 1; i <= 41; ++i) {
        // From the centre to the station in (east, north, down).
        const vec r{model.profile.location(easting_row, i) - b.east,
                    model.profile.location(northing_row, i) - b.north, -120.0};
        const double d = std::sqrt(r.e * r.e + r.n * r.n + r.d * r.d);
        const double jr = (j.e * r.e + j.n * r.n + j.d * r.d) / d;
        // B = V / (4 pi) (3 (J . u) u - J) / d^3, u the unit vector from the centre.
        const vec field{(3 * jr * r.e / d - j.e), (3 * jr * r.n / d - j.n),
                        (3 * jr * r.d / d - j.d)};
        const double t =
            volume / (4 * pi) / (d * d * d) * (field.e * f.e + field.n * f.n + field.d * f.d);
        EXPECT_NEAR(magnetic(model, i), t, 1e-4 * std::fabs(t) + 1e-4) << "station " << i;
        const double g = b.density.value * big_g * volume * 120.0 / (d * d * d);
        EXPECT_NEAR(gravity(model, i), g, 1e-5 * g);
        EXPECT_EQ(magnetic(format, i), 0.0f);
    }
}

// A prism striking north (width east, length north) against the rectangular prism's Hessian:
// in a horizontal field pointing east, which silences every format body, and with the field and
// magnetisation vertical at a station straight above a vertical edge, where the format moves the
// station. Gravity at that station against the closed form too. Tolerance 1e-5 relative.
TEST(exact_prism, matches_the_rectangular_prism_in_a_horizontal_field_and_above_an_edge) {
    struct prism_case {
        const char* name;
        float inclination, declination;
        double station_east;  // of the one station, metres east of the reference point
        float offset;         // of the prism's middle along strike (north) from it
    };
    // At offset 150 the prism's south-west vertical edge runs straight under the station.
    const prism_case cases[] = {{"horizontal field", 0.0f, 90.0f, -35.0, 40.0f},
                                {"above a vertical edge", 90.0f, 0.0f, 0.0, 150.0f}};
    for (const prism_case& c : cases) {
        SCOPED_TRACE(c.name);
        model_record model = line_model(3, 5000.0, 7000.0, 100.0, 0.0, 0.0, 1);
        model.mag_inclination = c.inclination;
        model.mag_declination = c.declination;
        body_record& b = exact_body(model, thick_sheet);
        b.strike.value = 0.0f;
        b.dip.value = 90.0f;
        b.rem_q.value = 0.0f;
        b.length.value = 300.0f;
        b.offset.value = c.offset;
        b.distance.value = static_cast<float>(100.0 - c.station_east);  // station 2 is the one
        response_state state;
        calculate_mag_response(model, state, 1);
        calculate_grav_response(model, state, 1);

        // The prism from the station: x north, y east, z down.
        const double e0 = b.east - model.profile.location(easting_row, 2);
        const testing_shapes::prism_box box{
            c.offset - 150.0, c.offset + 150.0, e0, e0 + 80.0, 40.0, 240.0};
        const std::array<double, 9> h = testing_shapes::prism_hessian(box);
        const vec f = direction(c.inclination, c.declination);
        const double m = b.susc.value / 1e6 * model.mag_intensity / (4 * pi);
        // Field along f of the magnetisation m f: f . U'' f m, in (north, east, down).
        const double fv[3] = {f.n, f.e, f.d};
        double t = 0.0;
        for (int r = 0; r < 3; ++r)
            for (int k = 0; k < 3; ++k) {
                // A Hessian term undefined on the edge's line, times a zero component.
                if (std::fabs(fv[r]) < 1e-12 || std::fabs(fv[k]) < 1e-12) continue;
                t += fv[r] * h[static_cast<std::size_t>(3 * r + k)] * fv[k] * m;
            }
        EXPECT_NEAR(magnetic(model, 2), t, 1e-5 * std::fabs(t));
        const double g = b.density.value * big_g * testing_shapes::prism_attraction(box);
        EXPECT_NEAR(gravity(model, 2), g, 1e-5 * std::fabs(g));
    }
}

}  // namespace
}  // namespace trensil

namespace trensil {
namespace {

// A vertical dyke striking north in a field of declination 0 sees no horizontal field across
// it, so its anomaly is the mirror image of itself about the dyke (1e-5 of the peak). The format
// puts the north component across the dyke and gives a lopsided anomaly with a deep low.
TEST(exact_sections, dyke_striking_north_is_symmetric_when_the_field_has_no_across_component) {
    model_record exact = line_model(201, 0.0, 0.0, 5.0, 0.0, 0.0, 1);
    exact.mag_declination = 0.0f;
    body_record& b = exact_body(exact, thin_sheet);
    b.strike.value = 0.0f;
    b.dip.value = 90.0f;
    b.width.value = 10.0f;
    b.distance.value = 495.0f;  // the dyke's middle under station 101
    b.rem_q.value = 0.0f;
    model_record format = exact;
    format.exact_field_geometry = false;
    response_state state;
    calculate_mag_response(exact, state, 1);
    calculate_mag_response(format, state, 1);
    const double p = peak(exact, total_field_row);
    float format_low = 0.0f;
    for (int i = 1; i <= 100; ++i) {
        EXPECT_NEAR(magnetic(exact, i), magnetic(exact, 202 - i), 1e-5 * p) << "station " << i;
        format_low = std::min(format_low, magnetic(format, i));
    }
    EXPECT_LT(format_low, -0.1 * p);
}

}  // namespace
}  // namespace trensil

namespace trensil {
namespace {

// The pipe's solid against the format's closed-body routine, which is right where the two poses
// agree: offset 0, and the exact pipe tilted by plunge as the format's is by dip. Solid and
// hollow with caps (annuli and caps coplanar in pieces), magnetics 1e-4 of the peak, gravity
// after the ratio of the two values of G.
TEST(exact_pipe, matches_the_format_solid_where_the_poses_agree) {
    for (float shell : {0.0f, 6.0f}) {
        SCOPED_TRACE(::testing::Message() << "shell " << shell);
        model_record exact = line_model(50, 1000.0, 2000.0, 12.0, 16.0, 0.0, 1);
        body_record& b = exact_body(exact, cylinder_pipe);
        b.strike.value = 30.0f;
        b.dip.value = 0.0f;
        b.plunge.value = 20.0f;
        b.width.value = 40.0f;
        b.length.value = 300.0f;
        b.shell_thickness = shell;
        b.end_thickness = shell;
        model_record format = exact;
        format.exact_field_geometry = false;
        format.body(1).dip.value = 20.0f;
        format.body(1).plunge.value = 0.0f;
        response_state state;
        for (model_record* m : {&exact, &format}) {
            calculate_mag_response(*m, state, 1);
            calculate_grav_response(*m, state, 1);
        }
        const double pm = peak(exact, total_field_row), pg = peak(exact, gravity_row);
        ASSERT_GT(pm, 1.0);
        for (int i = 1; i <= 50; ++i) {
            EXPECT_NEAR(magnetic(exact, i), magnetic(format, i), 1e-4 * pm) << "station " << i;
            EXPECT_NEAR(gravity(exact, i), gravity(format, i) * 6.6743 / 6.67, 1e-4 * pg);
        }
    }
}

}  // namespace
}  // namespace trensil
