#include "exports/body_geometry.h"

#include <cmath>
#include <initializer_list>
#include <utility>

namespace trensil {

namespace {

constexpr double degrees_to_radians = 0.017453292;

// Half length of the line drawn for a body of unbounded strike when the model sets none.
constexpr double unbounded_half_length = 100000.0;
// Half length of an unbounded body in the plan DXF.
constexpr double dxf_unbounded_half_length = 125.0;

enum outcode_bit : int { left_bit = 1, right_bit = 2, below_bit = 4, above_bit = 8 };

int outcode(double x, double y, const clip_rectangle& clip) {
    int code = 0;
    if (x < clip.xmin) {
        code |= left_bit;
    } else if (x > clip.xmax) {
        code |= right_bit;
    }
    if (y < clip.ymin) {
        code |= below_bit;
    } else if (y > clip.ymax) {
        code |= above_bit;
    }
    return code;
}

// The ends of a body's line along strike, as distances from its reference point.
struct strike_span {
    float s1 = 0.0f;
    float s2 = 0.0f;
};

// offset -/+ length / 2 (a pipe in the exact geometry: its tilted axis's footprint), held to
// the model's left and right clips in the plan view.
strike_span limited_span(const model_record& model, const body_record& b, outline_rules rules) {
    strike_span span;
    span.s1 = b.offset.value - b.length.value / 2.0f;
    span.s2 = b.length.value / 2.0f + b.offset.value;
    if (b.type == 16 && model.exact_field_geometry) {
        // The exact geometry tilts the pipe's axis down along +strike by dip plus plunge from the
        // start of the axis: the footprint runs over the axis's horizontal reach and the
        // diameter's along-strike part at either end.
        const double tilt = (b.dip.value + b.plunge.value) * degrees_to_radians;
        const double reach = b.length.value * std::cos(tilt);
        const double end_cap = b.width.value / 2.0 * std::fabs(std::sin(tilt));
        const double start = span.s1;
        span.s1 = static_cast<float>(start + std::min(reach, 0.0) - end_cap);
        span.s2 = static_cast<float>(start + std::max(reach, 0.0) + end_cap);
    }
    if (rules == outline_rules::plan_view) {
        if (model.finite_body_left_clip > 0.0f && span.s1 < -model.finite_body_left_clip) {
            span.s1 = -model.finite_body_left_clip;
        }
        if (model.finite_body_right_clip > 0.0f && span.s2 > model.finite_body_right_clip) {
            span.s2 = model.finite_body_right_clip;
        }
    }
    return span;
}

}  // namespace

int clip_segment(float& x1, float& y1, float& x2, float& y2, const clip_rectangle& clip) {
    int code1 = outcode(x1, y1, clip);
    int code2 = outcode(x2, y2, clip);
    for (;;) {
        if ((code1 | code2) == 0) return 0;
        if ((code1 & code2) != 0) return -1;

        // Move the end that is outside onto the edge it lies beyond.
        const int code = code1 != 0 ? code1 : code2;
        const double ax = x1, ay = y1, bx = x2, by = y2;
        double x = 0.0, y = 0.0;
        if ((code & above_bit) != 0) {
            x = ax + (bx - ax) * (clip.ymax - ay) / (by - ay);
            y = clip.ymax;
        } else if ((code & below_bit) != 0) {
            x = ax + (bx - ax) * (clip.ymin - ay) / (by - ay);
            y = clip.ymin;
        } else if ((code & right_bit) != 0) {
            y = ay + (by - ay) * (clip.xmax - ax) / (bx - ax);
            x = clip.xmax;
        } else {
            y = ay + (by - ay) * (clip.xmin - ax) / (bx - ax);
            x = clip.xmin;
        }
        if (code == code1) {
            x1 = static_cast<float>(x);
            y1 = static_cast<float>(y);
            code1 = outcode(x1, y1, clip);
        } else {
            x2 = static_cast<float>(x);
            y2 = static_cast<float>(y);
            code2 = outcode(x2, y2, clip);
        }
    }
}

int body_plan_outline(const model_record& model, const clip_rectangle& clip, int body,
                      std::array<float, 5>& x, std::array<float, 5>& y, outline_rules rules) {
    const body_record& b = model.body(body);
    const double angle = b.strike.value * degrees_to_radians;
    const double ss = std::sin(angle);
    const double cs = std::cos(angle);
    // Across strike, the side to which a sheet's width extends.
    const double wx = cs * b.width.value;
    const double wy = -ss * b.width.value;

    auto point_at = [&](double s, double shift_x, double shift_y, float& px, float& py) {
        px = static_cast<float>(b.east + s * ss + shift_x);
        py = static_cast<float>(b.north + s * cs + shift_y);
    };

    if (b.type < 5) {
        double s1 = 0.0, s2 = 0.0;
        if (b.length.value > 0.0f && b.type == 2) {
            const strike_span span = limited_span(model, b, rules);
            s1 = span.s1;
            s2 = span.s2;
        } else {
            double half = unbounded_half_length;
            if (rules == outline_rules::dxf_export) {
                half = dxf_unbounded_half_length;
            } else if (model.infinite_body_length > 0.0f) {
                half = model.infinite_body_length / 2.0f;
            }
            s1 = -half;
            s2 = half;
        }
        point_at(s1, 0.0, 0.0, x[0], y[0]);
        point_at(s2, 0.0, 0.0, x[1], y[1]);
        if (clip_segment(x[0], y[0], x[1], y[1], clip) < 0) return -1;
        x[2] = static_cast<float>(x[1] + wx);
        y[2] = static_cast<float>(y[1] + wy);
        x[3] = static_cast<float>(x[0] + wx);
        y[3] = static_cast<float>(y[0] + wy);
        x[4] = x[0];
        y[4] = y[0];
        return 5;
    }

    if (b.type == 16) {
        // Centred on the axis: start one width back and span two widths across.
        const strike_span span = limited_span(model, b, rules);
        point_at(span.s1, -wx, -wy, x[0], y[0]);
        point_at(span.s2, -wx, -wy, x[1], y[1]);
        if (clip_segment(x[0], y[0], x[1], y[1], clip) < 0) return -1;
        x[2] = static_cast<float>(x[1] + 2.0 * wx);
        y[2] = static_cast<float>(y[1] + 2.0 * wy);
        x[3] = static_cast<float>(x[0] + 2.0 * wx);
        y[3] = static_cast<float>(y[0] + 2.0 * wy);
        x[4] = x[0];
        y[4] = y[0];
        return 5;
    }

    return -1;
}

void convert_profile_model_to_trapezoid(const body_record& body, trapezoid_corners& corners) {
    const float cs = body.cos_strike;
    const float ss = body.sin_strike;
    const float cd = body.cos_dip;
    const float sd = body.sin_dip;
    const float width = body.width.value;
    const float a = body.length.value / 2.0f + body.offset.value;
    const float b = -body.length.value / 2.0f + body.offset.value;
    const float sin_plunge = static_cast<float>(std::sin(body.plunge.value * degrees_to_radians));

    // Top: the two ends along strike, then the same moved across strike by the width.
    corners(1, 1, 1) = a * ss;
    corners(1, 1, 2) = a * cs;
    corners(1, 1, 3) = -sin_plunge * a;
    corners(1, 2, 1) = b * ss;
    corners(1, 2, 2) = b * cs;
    corners(1, 2, 3) = -sin_plunge * b;
    const float wx = width * cs;
    const float wy = -width * ss;
    for (const auto& [to, from] : {std::pair{3, 2}, std::pair{4, 1}}) {
        corners(1, to, 1) = corners(1, from, 1) + wx;
        corners(1, to, 2) = corners(1, from, 2) + wy;
        corners(1, to, 3) = corners(1, from, 3);
    }

    // Bottom: down by the depth extent (1000 when it is 0), thrown down dip.
    const float depth = body.depth_extent.value == 0.0f ? 1000.0f : body.depth_extent.value;
    float throw_down_dip = 0.0f;
    if (std::fabs(sd) > 0.001f) throw_down_dip = cd * depth / sd;
    for (int k = 1; k <= 4; ++k) {
        corners(2, k, 1) = corners(1, k, 1) + cs * throw_down_dip;
        corners(2, k, 2) = corners(1, k, 2) - ss * throw_down_dip;
        corners(2, k, 3) = corners(1, k, 3) - depth;
    }

    // A sloping top: the far edge of each end rises, over the width reduced as the section
    // shows it.
    const float slope = body.slope.value;
    if (std::fabs(slope) > 0.1f) {
        const double slope_angle = slope * degrees_to_radians;
        float u = width;
        if (std::fabs(cd) >= 0.1f) {
            u = static_cast<float>(width / (1.0 - std::tan(-slope_angle) * cd / sd));
        }
        const float rise = static_cast<float>(std::tan(slope_angle) * u);
        for (int end = 1; end <= 2; ++end) {
            for (const auto& [to, from] : {std::pair{3, 2}, std::pair{4, 1}}) {
                corners(end, to, 1) = corners(end, from, 1) + cs * u;
                corners(end, to, 2) = corners(end, from, 2) - ss * u;
                corners(end, to, 3) = corners(end, from, 3) + rise;
            }
        }
    }
}

}  // namespace trensil
