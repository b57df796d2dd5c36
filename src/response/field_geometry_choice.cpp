#include "response/field_geometry_choice.h"

#include <cmath>

#include "core/body_catalogue.h"
#include "response/exact_solid_bodies.h"
#include "response/exact_sphere.h"
#include "response/polygon_anomaly.h"
#include "response/response_inputs.h"
#include "response/strike_frame.h"

namespace trensil {

namespace {

constexpr double susc_scale = 1000000.0;
constexpr double pi = 3.14159265358979;

// Unit direction of an inclination and declination in degrees, (east, north, up); the
// inclination is positive downward.
space_vector direction_of(double inclination, double declination) {
    const double i = inclination * degrees_to_radians, d = declination * degrees_to_radians;
    return {std::cos(i) * std::sin(d), std::cos(i) * std::cos(d), -std::sin(i)};
}

space_vector field_direction(const model_record& model) {
    return direction_of(model.mag_inclination, model.mag_declination);
}

// The body's magnetisation in nT, (east, north, up): induced chi F along the field plus the
// remanence Q chi F along its own direction.
space_vector body_magnetisation(const model_record& model, const body_record& body) {
    const double chi = body.susc.value / susc_scale;
    const double induced = chi * model.mag_intensity;
    const space_vector f = field_direction(model);
    const space_vector r = direction_of(body.rem_i.value, body.rem_d.value);
    const double remanent = body.rem_q.value * induced;
    return {induced * f[0] + remanent * r[0], induced * f[1] + remanent * r[1],
            induced * f[2] + remanent * r[2]};
}

// The body's frame across strike: x along (cos strike, -sin strike) in (east, north), the way
// its width is measured; the reference point at x 0.
struct across_frame {
    double ux = 0.0, uy = 0.0;  // across-strike unit vector, (east, north)
    double east = 0.0, north = 0.0;
    double across(double e, double n) const { return ux * (e - east) + uy * (n - north); }
    // A vector (east, north, up) as x + i depth in the section's plane.
    complex_value in_section(const space_vector& v) const { return {ux * v[0] + uy * v[1], -v[2]}; }
};

across_frame frame_of(const body_record& body) {
    const double s = body.strike.value * degrees_to_radians;
    return across_frame{std::cos(s), -std::sin(s), body.east, body.north};
}

// What the dip gives the section: the bottom's shift across strike for a depth extent, and the
// unit down-dip direction (x + i depth). A dip within 0.06 degrees of horizontal moves nothing
// and goes straight down, as the section view draws it.
struct dip_terms {
    double cot = 0.0;
    complex_value down{0.0, 1.0};
};

dip_terms dip_of(const body_record& body) {
    const double d = body.dip.value * degrees_to_radians;
    dip_terms t;
    if (std::fabs(std::sin(d)) > 0.001) t.cot = std::cos(d) / std::sin(d);
    t.down = complex_value(t.cot, 1.0) / std::hypot(t.cot, 1.0);
    return t;
}

// The component of the magnetisation normal to the sheet reduced by 1 / (1 + chi): the thin
// body's own demagnetising field, normal to the dipping plane in the section.
complex_value demagnetised_in_sheet(complex_value j, const dip_terms& dip, double chi) {
    const complex_value normal = dip.down * complex_value(0.0, -1.0);
    const double jn = j.real() * normal.real() + j.imag() * normal.imag();
    return j - normal * (jn * chi / (1.0 + chi));
}

// The thick sheet's section: the top sloped by `slope`, its far corner kept on the side that
// runs down-dip from (width, 0); a negative width is listed from its far corner so the outline
// runs counter-clockwise.
section_outline thick_section(const body_record& body, const dip_terms& dip, double depth_extent) {
    const double W = body.width.value;
    double W2 = W, rise = 0.0;
    const double slope = body.slope.value;
    if (std::fabs(slope) > 0.1) {
        const double ts = std::tan(slope * degrees_to_radians);
        W2 = W / (1.0 + dip.cot * ts);
        rise = W2 * ts;
    }
    section_outline s =
        thick_sheet_outline(W2, rise, depth_extent, depth_extent * dip.cot, dip.down);
    if (W2 < 0.0) {
        if (s.count == 4) {
            std::swap(s.x[0], s.x[1]);
            std::swap(s.depth[0], s.depth[1]);
            std::swap(s.x[2], s.x[3]);
            std::swap(s.depth[2], s.depth[3]);
        } else {
            std::swap(s.x[0], s.x[1]);
            std::swap(s.depth[0], s.depth[1]);
        }
    }
    return s;
}

struct station_rows {
    const double* east;
    const double* north;
    const double* elevation;
};

station_rows rows_of(const profile_block& p) {
    return {p.location.row(easting_row), p.location.row(northing_row), p.location.row(sensor_row)};
}

// Types 1 to 4 and an infinite-strike thick sheet or pipe: the section at every station.
std::string section_magnetics(const model_record& model, body_record& body, float* row) {
    const across_frame frame = frame_of(body);
    const dip_terms dip = dip_of(body);
    const double chi = body.susc.value / susc_scale;
    const space_vector f3 = field_direction(model);
    const complex_value f = frame.in_section(f3);
    complex_value j = frame.in_section(body_magnetisation(model, body));
    if (body.demag == 1) j = demagnetised_in_sheet(j, dip, chi);
    const double W = body.width.value;
    const double Dx = std::max(0.0, static_cast<double>(body.depth_extent.value));
    const double top = body.top.value;
    const station_rows s = rows_of(model.profile);
    const sheet_section thick = prepare_sheet_section(thick_section(body, dip, Dx), j, f);
    const edge_section edge = prepare_edge_section(dip.down, j, f);
    const thin_sheet_terms thin =
        prepare_thin_sheet(std::fabs(W), W / 2.0, Dx * dip.cot, Dx, dip.down, j, f);
    for (int i = 1; i <= model.profile.num_stations; ++i) {
        const double x = frame.across(s.east[i - 1], s.north[i - 1]);
        const double depth = top - s.elevation[i - 1];
        double v = 0.0;
        switch (body.type) {
            case thin_sheet:
                v = thin_sheet_total_field(thin, x, depth);
                break;
            case edge_body:
                v = edge_total_field(edge, x, depth);
                break;
            case sloping_step:
                v = step_total_field(edge, W, Dx, x, depth);
                break;
            default:
                v = sheet_section_total_field(thick, x, depth);
                break;
        }
        if (auto d = add_to_response_row(row, i, v); !d.empty()) return d;
    }
    return "";
}

std::string section_gravity_row(const model_record& model, body_record& body, float* row) {
    const across_frame frame = frame_of(body);
    const dip_terms dip = dip_of(body);
    const double W = body.width.value;
    double Dx = body.depth_extent.value;
    if (Dx == 0.0) Dx = 1000.0 * std::fabs(W);
    const double scale = body.density.value * exact_gravity_constant;
    const double top = body.top.value;
    const station_rows s = rows_of(model.profile);
    const section_outline thick = thick_section(body, dip, Dx);
    for (int i = 1; i <= model.profile.num_stations; ++i) {
        const double x = frame.across(s.east[i - 1], s.north[i - 1]);
        const double depth = top - s.elevation[i - 1];
        const double g = body.type == thin_sheet
                             ? thin_sheet_gravity(std::fabs(W), W / 2.0, Dx * dip.cot, Dx, x, depth)
                             : section_gravity(thick, x, depth);
        if (auto d = add_to_response_row(row, i, g * scale); !d.empty()) return d;
    }
    return "";
}

// The sphere of radius |width| centred on the reference point at elevation `top`; with
// demagnetisation its magnetisation is that of a sphere in a uniform field, over 1 + chi / 3.
std::string sphere_row(const model_record& model, const body_record& body, bool gravity,
                       float* row) {
    const double radius = std::fabs(body.width.value);
    const double volume = 4.0 / 3.0 * pi * radius * radius * radius;
    space_vector j = body_magnetisation(model, body);
    if (body.demag != 0) {
        const double k = 1.0 + body.susc.value / susc_scale / 3.0;
        j = {j[0] / k, j[1] / k, j[2] / k};
    }
    const space_vector f = field_direction(model);
    const double scale = body.density.value * exact_gravity_constant;
    const station_rows s = rows_of(model.profile);
    for (int i = 1; i <= model.profile.num_stations; ++i) {
        const space_vector offset{s.east[i - 1] - body.east, s.north[i - 1] - body.north,
                                  s.elevation[i - 1] - body.top.value};
        const double v = gravity ? sphere_gravity(volume, offset) * scale
                                 : sphere_total_field(volume, j, f, offset);
        if (auto d = add_to_response_row(row, i, v); !d.empty()) return d;
    }
    return "";
}

bool strike_limited(const body_record& body) {
    return (body.type == thick_sheet || body.type == cylinder_pipe) && body.length.value > 0.0f;
}

// Locates the body and stores its angles, as both responses do first.
void place_body(model_record& model, body_record& body) {
    body.cos_dip = static_cast<float>(std::cos(body.dip.value * degrees_to_radians));
    body.sin_dip = static_cast<float>(std::sin(body.dip.value * degrees_to_radians));
    body.cos_strike = static_cast<float>(std::cos(body.strike.value * degrees_to_radians));
    body.sin_strike = static_cast<float>(std::sin(body.strike.value * degrees_to_radians));
    locate_body_on_profile(model.profile, body.distance.value, body.east, body.north);
}

std::string field_inputs(const model_record& model, const body_record& body) {
    for (double v :
         {static_cast<double>(model.mag_intensity), static_cast<double>(model.mag_inclination),
          static_cast<double>(model.mag_declination)}) {
        if (auto d = non_finite_description(v); !d.empty()) return d;
    }
    return first_non_finite_input(model, body);
}

}  // namespace

std::string field_geometry_label(const model_record& model) {
    return model.exact_field_geometry ? "Exact field geometry" : "Format field geometry";
}

std::string exact_mag_response(model_record& model, response_state& state, int body_index) {
    body_record& body = model.body(body_index);
    if (auto d = field_inputs(model, body); !d.empty()) return d;
    place_body(model, body);
    float* row = body.body_response.row(total_field_row);
    switch (body.type) {
        case thin_sheet:
        case edge_body:
        case sloping_step:
            return section_magnetics(model, body, row);
        case thick_sheet:
        case cylinder_pipe:
            if (strike_limited(body)) {
                const solid_request r{body_magnetisation(model, body), field_direction(model), true,
                                      false};
                return exact_solid_response(model, state, body_index, r);
            }
            return section_magnetics(model, body, row);
        case sphere_body:
            return sphere_row(model, body, false, row);
        default:
            return "";
    }
}

std::string exact_grav_response(model_record& model, response_state& state, int body_index) {
    body_record& body = model.body(body_index);
    if (auto d = first_non_finite_input(model, body); !d.empty()) return d;
    place_body(model, body);
    float* row = body.body_response.row(gravity_row);
    switch (body.type) {
        case thin_sheet:
            if (body.length.value > 0.0f)
                return exact_solid_response(model, state, body_index,
                                            solid_request{{}, {}, false, true});
            return section_gravity_row(model, body, row);
        case thick_sheet:
        case cylinder_pipe:
            if (strike_limited(body))
                return exact_solid_response(model, state, body_index,
                                            solid_request{{}, {}, false, true});
            return section_gravity_row(model, body, row);
        case sphere_body:
            return sphere_row(model, body, true, row);
        default:
            return "";
    }
}

}  // namespace trensil
