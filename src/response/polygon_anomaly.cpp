#include "response/polygon_anomaly.h"

#include <cmath>

namespace trensil {

namespace {

constexpr double pi = 3.14159265358979;
constexpr complex_value minus_i{0.0, -1.0};

// An angle brought into (-pi, pi]: the angle a straight edge subtends at a station off it.
double wrap_angle(double a) {
    if (a > pi) return a - 2.0 * pi;
    if (a <= -pi) return a + 2.0 * pi;
    return a;
}

// One corner seen from the station: w = corner - station, ln |w| and arg w.
struct corner_view {
    complex_value w;
    double log_r = 0.0;
    double arg = 0.0;
    bool at_station = false;
};

corner_view view_corner(double cx, double cdepth, double x, double depth) {
    corner_view v;
    v.w = complex_value(cx - x, cdepth - depth);
    const double r2 = std::norm(v.w);
    v.at_station = r2 == 0.0;
    if (!v.at_station) {
        v.log_r = 0.5 * std::log(r2);
        v.arg = std::atan2(v.w.imag(), v.w.real());
    }
    return v;
}

complex_value unit_direction(const complex_value& a, const complex_value& b) {
    const complex_value d = b - a;
    const double len = std::abs(d);
    return len > 0.0 ? d / len : complex_value(0.0, 0.0);
}

// sum_e t^2 [conj(w) ln conj(w)] over the edges of a closed section at one station, each ln
// continuous along its edge.
complex_value sum_gravity_edges(const section_outline& s, double x, double depth) {
    std::array<corner_view, 6> v;
    for (int k = 0; k < s.count; ++k) v[k] = view_corner(s.x[k], s.depth[k], x, depth);
    complex_value out{0.0, 0.0};
    for (int e = 0; e < s.count; ++e) {
        const corner_view& a = v[e];
        const corner_view& b = v[(e + 1) % s.count];
        if (a.at_station || b.at_station) continue;
        const complex_value t =
            unit_direction(complex_value(s.x[e], s.depth[e]),
                           complex_value(s.x[(e + 1) % s.count], s.depth[(e + 1) % s.count]));
        const double turn = wrap_angle(b.arg - a.arg);
        const complex_value lb(b.log_r, -(a.arg + turn)), la(a.log_r, -a.arg);
        out += t * t * (std::conj(b.w) * lb - std::conj(a.w) * la);
    }
    return out;
}

// The angle from a to b seen from the origin, in (-pi, pi]: atan2(a x b, a . b).
double subtended(double ax, double az, double bx, double bz) {
    return std::atan2(ax * bz - az * bx, ax * bx + az * bz);
}

}  // namespace

section_outline thick_sheet_outline(double width, double rise, double depth_extent, double shift,
                                    complex_value down_dip) {
    section_outline s;
    s.x[0] = 0.0;
    s.depth[0] = 0.0;
    s.x[1] = width;
    s.depth[1] = -rise;
    if (depth_extent > 0.0) {
        s.count = 4;
        s.x[2] = width + shift;
        s.depth[2] = depth_extent - rise;
        s.x[3] = shift;
        s.depth[3] = depth_extent;
    } else {
        s.count = 2;
        s.open = true;
        s.out_ray = down_dip;
    }
    return s;
}

double section_gravity(const section_outline& s, double x, double depth) {
    return (minus_i * sum_gravity_edges(s, x, depth)).imag();
}

sheet_section prepare_sheet_section(const section_outline& s, const complex_value& magnetisation,
                                    const complex_value& field_direction) {
    sheet_section out;
    out.outline = s;
    const complex_value c = minus_i * magnetisation * field_direction / (4.0 * pi);
    const complex_value top =
        unit_direction(complex_value(s.x[0], s.depth[0]), complex_value(s.x[1], s.depth[1]));
    const complex_value side = s.open ? s.out_ray
                                      : unit_direction(complex_value(s.x[1], s.depth[1]),
                                                       complex_value(s.x[2], s.depth[2]));
    const complex_value top_c = std::conj(top), side_c = std::conj(side);
    out.k = c * (top_c * top_c - side_c * side_c);
    // Inside, the four edges (or the top and the two rays) wind once round the station: the
    // sides' sum gains 2 pi i, and the poles' field the -J / 2 that the complex form leaves out
    // outside, where the winding is 0. The value is the field of the poles (mu0 H), as the
    // solid bodies give it.
    out.inside = (c * side_c * side_c * complex_value(0.0, 2.0 * pi)).real() -
                 (std::conj(magnetisation) * field_direction).real() / 2.0;
    return out;
}

double sheet_section_total_field(const sheet_section& m, double x, double depth) {
    const section_outline& s = m.outline;
    const double ax = s.x[0] - x, az = s.depth[0] - depth;
    const double bx = s.x[1] - x, bz = s.depth[1] - depth;
    double ra = ax * ax + az * az, rb = bx * bx + bz * bz;
    double angle = subtended(ax, az, bx, bz);
    // Where the station lies in the frame of the top edge and the side: inside for 0 < u < 1 and
    // 0 < v (< 1 when closed).
    const double ex = s.x[1] - s.x[0], ez = s.depth[1] - s.depth[0];
    const double sx = s.open ? s.out_ray.real() : s.x[3] - s.x[0];
    const double sz = s.open ? s.out_ray.imag() : s.depth[3] - s.depth[0];
    const double det = ex * sz - ez * sx;
    const double u = det != 0.0 ? (-ax * sz + az * sx) / det : -1.0;
    const double v = det != 0.0 ? (ex * -az + ez * ax) / det : -1.0;
    bool inside = u > 0.0 && u < 1.0 && v > 0.0;
    if (!s.open) {
        // L_top + L_bottom: the bottom runs from the third corner to the fourth.
        const double cx = s.x[2] - x, cz = s.depth[2] - depth;
        const double dx = s.x[3] - x, dz = s.depth[3] - depth;
        ra *= cx * cx + cz * cz;
        rb *= dx * dx + dz * dz;
        angle += subtended(cx, cz, dx, dz);
        inside = inside && v < 1.0;
    }
    if (ra == 0.0 || rb == 0.0) return 0.0;
    const double log_sum = 0.5 * std::log(rb / ra);
    return m.k.real() * log_sum - m.k.imag() * angle + (inside ? m.inside : 0.0);
}

edge_section prepare_edge_section(complex_value down_dip, const complex_value& magnetisation,
                                  const complex_value& field_direction) {
    const complex_value c = minus_i * magnetisation * field_direction / (4.0 * pi);
    const complex_value side_c = std::conj(down_dip);
    const complex_value k = side_c * side_c;
    edge_section e;
    e.log_weight = (c * (k - 1.0)).real();
    e.in_weight = (c * k * complex_value(0.0, 1.0)).real();
    e.out_weight = (c * complex_value(0.0, 1.0)).real();
    e.from = std::arg(down_dip);  // the side comes up from infinity below
    return e;
}

namespace {

// The angle terms of the edge at a corner w (relative to the station): the two rays' subtended
// angles, weighted.
double edge_angles(const edge_section& e, double wx, double wz) {
    const double arg = std::atan2(wz, wx);
    return e.in_weight * wrap_angle(arg - e.from) + e.out_weight * wrap_angle(-arg);
}

}  // namespace

double edge_total_field(const edge_section& e, double x, double depth) {
    const double wx = -x, wz = -depth;
    const double r2 = wx * wx + wz * wz;
    if (r2 == 0.0) return 0.0;
    return e.log_weight * 0.5 * std::log(r2) + edge_angles(e, wx, wz);
}

double step_total_field(const edge_section& e, double width, double drop, double x, double depth) {
    const double ax = -x, az = -depth, bx = width - x, bz = drop - depth;
    const double ra = ax * ax + az * az, rb = bx * bx + bz * bz;
    if (ra == 0.0 || rb == 0.0) return 0.0;
    return e.log_weight * 0.5 * std::log(ra / rb) + edge_angles(e, ax, az) - edge_angles(e, bx, bz);
}

thin_sheet_terms prepare_thin_sheet(double width, double x_top, double shift, double depth_extent,
                                    complex_value down_dip, const complex_value& magnetisation,
                                    const complex_value& field_direction) {
    thin_sheet_terms t;
    t.x_top = x_top;
    t.shift = shift;
    t.depth_extent = depth_extent;
    const complex_value side_c = std::conj(down_dip);
    t.k = minus_i * width * magnetisation * field_direction / (4.0 * pi) * (1.0 - side_c * side_c);
    return t;
}

double thin_sheet_total_field(const thin_sheet_terms& t, double x, double depth) {
    // 1 / w = conj(w) / |w|^2 for the top and the bottom end.
    const double tx = t.x_top - x, tz = -depth;
    const double rt = tx * tx + tz * tz;
    if (rt == 0.0) return 0.0;
    double ur = tx / rt, ui = -tz / rt;
    if (t.depth_extent > 0.0) {
        const double bx = t.x_top + t.shift - x, bz = t.depth_extent - depth;
        const double rb = bx * bx + bz * bz;
        if (rb == 0.0) return 0.0;
        ur -= bx / rb;
        ui += bz / rb;
    }
    return t.k.real() * ur - t.k.imag() * ui;
}

double thin_sheet_gravity(double width, double x_top, double shift, double depth_extent, double x,
                          double depth) {
    const corner_view top = view_corner(x_top, 0.0, x, depth);
    const corner_view bottom = view_corner(x_top + shift, depth_extent, x, depth);
    // ln conj(w_top) - ln conj(w_bottom), continuous along the sheet.
    const double turn = wrap_angle(top.arg - bottom.arg);
    double log_ratio = 0.0;
    if (!top.at_station && !bottom.at_station) log_ratio = top.log_r - bottom.log_r;
    const complex_value d(log_ratio, -turn);
    const complex_value down_dip =
        unit_direction(complex_value(0.0, 0.0), complex_value(shift, depth_extent));
    const complex_value k = 1.0 - down_dip * down_dip;
    return (minus_i * width * k * d).imag();
}

}  // namespace trensil
