// The shapes of bodies in plan and in three dimensions, shared by the plan view, the section
// view and the DXF exports.
//
//   clip_rectangle clip{xmin, xmax, ymin, ymax};
//   std::array<float, 5> x{}, y{};
//   const int count = body_plan_outline(model, clip, b, x, y);   // -1: no footprint
//
//   trapezoid_corners corners;
//   convert_profile_model_to_trapezoid(model.body(b), corners);
//   corners(2, 1, 3)  // bottom end, corner 1, up: relative to the body's reference point
#pragma once

#include <array>

#include "core/model_record.h"

namespace trensil {

// An axis-parallel rectangle in plan: x is East, y is North.
struct clip_rectangle {
    float xmin = 0.0f;
    float xmax = 0.0f;
    float ymin = 0.0f;
    float ymax = 0.0f;
};

// Cohen-Sutherland clipping of the segment (x1, y1)-(x2, y2) against `clip`; outcode bits 1 left,
// 2 right, 4 below, 8 above. Crossings are worked out in double precision and stored in single.
// Returns -1 when the segment lies wholly outside (the points are then left as they were when
// that became known), otherwise 0 with the points clipped to the rectangle.
int clip_segment(float& x1, float& y1, float& x2, float& y2, const clip_rectangle& clip);

// Which lengths an outline gives a body without a strike length.
enum class outline_rules {
    // The plan view: `infinite_body_length` of the model (100000 each way when it is 0), and
    // strike-limited bodies held to `finite_body_left_clip` / `finite_body_right_clip`.
    plan_view,
    // The plan DXF: 125 each way along strike, and no left or right clip.
    dxf_export,
};

// The plan footprint of body `body` of `model`, clipped to `clip`: fills x[0..4], y[0..4] with a
// closed five-point outline and returns 5, or returns -1 when the body has none (types other than
// 1 to 4 and 16) or its line along strike misses the rectangle. A sheet's footprint lies to one
// side of its reference line; a cylinder's is centred on its axis and twice `width` broad.
int body_plan_outline(const model_record& model, const clip_rectangle& clip, int body,
                      std::array<float, 5>& x, std::array<float, 5>& y,
                      outline_rules rules = outline_rules::plan_view);

// The eight corners of a sheet, indexed (end 1..2, corner 1..4, axis 1..3): end 1 is the top,
// end 2 the bottom; axes are east, north, up, as offsets from the body's reference point
// (`east`, `north`, `top`).
struct trapezoid_corners {
    std::array<std::array<std::array<float, 3>, 4>, 2> value{};

    float& operator()(int end, int corner, int axis) {
        return value[static_cast<std::size_t>(end - 1)][static_cast<std::size_t>(corner - 1)]
                    [static_cast<std::size_t>(axis - 1)];
    }
    float operator()(int end, int corner, int axis) const {
        return value[static_cast<std::size_t>(end - 1)][static_cast<std::size_t>(corner - 1)]
                    [static_cast<std::size_t>(axis - 1)];
    }
};

// Fills `corners` for `body`, using the strike and dip cosines stored on the body (as the last
// response or tessellation left them). A `depth_extent` of 0 makes the sheet 1000 deep.
void convert_profile_model_to_trapezoid(const body_record& body, trapezoid_corners& corners);

}  // namespace trensil
