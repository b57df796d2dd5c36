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

// The sums over the edges of one section at one station: sum conj(t)^2 ln(w2 / w1) for the
// field and sum t^2 [conj(w) ln conj(w)] for the attraction, each ln continuous along its edge.
struct section_sums {
    complex_value magnetic{0.0, 0.0};
    complex_value gravity{0.0, 0.0};
};

section_sums sum_edges(const section_outline& s, double x, double depth, bool want_gravity) {
    std::array<corner_view, 6> v;
    for (int k = 0; k < s.count; ++k) v[k] = view_corner(s.x[k], s.depth[k], x, depth);
    section_sums out;
    const int edges = s.open ? s.count - 1 : s.count;
    for (int e = 0; e < edges; ++e) {
        const corner_view& a = v[e];
        const corner_view& b = v[(e + 1) % s.count];
        if (a.at_station || b.at_station) continue;
        const complex_value t =
            unit_direction(complex_value(s.x[e], s.depth[e]),
                           complex_value(s.x[(e + 1) % s.count], s.depth[(e + 1) % s.count]));
        const double turn = wrap_angle(b.arg - a.arg);
        const complex_value tc = std::conj(t);
        out.magnetic += tc * tc * complex_value(b.log_r - a.log_r, turn);
        if (want_gravity) {
            const complex_value lb(b.log_r, -(a.arg + turn)), la(a.log_r, -a.arg);
            out.gravity += t * t * (std::conj(b.w) * lb - std::conj(a.w) * la);
        }
    }
    if (s.open) {
        // The ray into corner 0 and the ray out of the last corner: the corners at infinity
        // give a constant, which is dropped; the angle each ray subtends stays continuous.
        const corner_view& first = v[0];
        const corner_view& last = v[s.count - 1];
        if (!first.at_station) {
            const double from = std::arg(-s.in_ray);
            const complex_value tc = std::conj(s.in_ray);
            out.magnetic += tc * tc * complex_value(first.log_r, wrap_angle(first.arg - from));
        }
        if (!last.at_station) {
            const double to = std::arg(s.out_ray);
            const complex_value tc = std::conj(s.out_ray);
            out.magnetic += tc * tc * complex_value(-last.log_r, wrap_angle(to - last.arg));
        }
    }
    return out;
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
        s.in_ray = -down_dip;
        s.out_ray = down_dip;
    }
    return s;
}

section_outline edge_outline(complex_value down_dip) {
    section_outline s;
    s.count = 1;
    s.open = true;
    s.in_ray = -down_dip;
    s.out_ray = complex_value(1.0, 0.0);
    return s;
}

double section_total_field(const section_outline& s, const complex_value& magnetisation,
                           const complex_value& field_direction, double x, double depth) {
    const complex_value sum = sum_edges(s, x, depth, false).magnetic;
    return (minus_i * magnetisation * field_direction / (4.0 * pi) * sum).real();
}

double section_gravity(const section_outline& s, double x, double depth) {
    return (minus_i * sum_edges(s, x, depth, true).gravity).imag();
}

double thin_sheet_total_field(double width, double x_top, double shift, double depth_extent,
                              complex_value down_dip, const complex_value& magnetisation,
                              const complex_value& field_direction, double x, double depth) {
    const complex_value w_top(x_top - x, -depth);
    if (std::norm(w_top) == 0.0) return 0.0;
    complex_value ends = 1.0 / w_top;
    if (depth_extent > 0.0) {
        const complex_value w_bottom(x_top + shift - x, depth_extent - depth);
        if (std::norm(w_bottom) == 0.0) return 0.0;
        ends -= 1.0 / w_bottom;
    }
    const complex_value tc = std::conj(down_dip);
    const complex_value k = 1.0 - tc * tc;
    return (minus_i * width * magnetisation * field_direction / (4.0 * pi) * k * ends).real();
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
