#include <gtest/gtest.h>

#include "io/coordinate_transform.h"
#include "io/transform_points.h"

namespace trensil {
namespace {

struct point_pairs {
    double in1x, in1y, in2x, in2y, out1x, out1y, out2x, out2y;
    double rotation, scale;
};

data_transform with_points(const point_pairs& c) {
    data_transform t;
    t.x_input_origin = c.in1x;
    t.y_input_origin = c.in1y;
    t.second_x_input_origin = c.in2x;
    t.second_y_input_origin = c.in2y;
    t.x_output_origin = c.out1x;
    t.y_output_origin = c.out1y;
    t.second_x_output_origin = c.out2x;
    t.second_y_output_origin = c.out2y;
    return t;
}

// Each derived transform must carry the second data point onto the second target point, since
// that is what the user typed; the expected angle pins the sense of rotation.
TEST(transform_points, derived_transform_maps_second_point_onto_its_target) {
    const point_pairs cases[] = {
        // local grid with +x east and metres: a pure shift
        {0, 0, 100, 0, 357000, 1210000, 357100, 1210000, 0, 1},
        // data +x runs north in the target frame: a quarter turn anticlockwise, as -90
        {0, 0, 100, 0, 5000, 7000, 5000, 7100, -90, 1},
        // feet to metres and a quarter turn clockwise
        {10, 20, 10 + 1000, 20, 0, 0, 0, -304.8, 90, 0.3048},
        // a turn across the +/-180 cut stays in (-180, 180]
        {0, 0, -1, -0.001, 0, 0, -1, 0.001, 0.1145916, 1},
        // scale 2, rotation 30 degrees, away from the origins
        {1000, 2000, 1000 + 500 * 0.8660254037844, 2000 + 250, 357875.5, 1210778.75,
         357875.5 + 1000, 1210778.75, 30, 2},
    };
    for (const point_pairs& c : cases) {
        data_transform t = with_points(c);
        ASSERT_TRUE(derive_transform_from_points(t));
        EXPECT_NEAR(t.rotation, c.rotation, 1e-5) << c.out2x;
        EXPECT_NEAR(t.x_scale, c.scale, 1e-9);
        EXPECT_EQ(t.x_scale, t.y_scale);
        prepare_transform(t);
        double x = c.in2x, y = c.in2y, z = 0;
        apply_transform(1, t, x, y, z);
        EXPECT_NEAR(x, c.out2x, 1e-3) << c.rotation;
        EXPECT_NEAR(y, c.out2y, 1e-3) << c.rotation;
    }
}

TEST(transform_points, coincident_points_leave_the_record_alone) {
    for (const point_pairs& c :
         {point_pairs{5, 5, 5, 5, 0, 0, 1, 1, 0, 0}, point_pairs{0, 0, 1, 1, 7, 7, 7, 7, 0, 0}}) {
        data_transform t = with_points(c);
        t.rotation = 12;
        t.x_scale = 3;
        t.y_scale = 4;
        const data_transform before = t;
        EXPECT_FALSE(derive_transform_from_points(t));
        EXPECT_EQ(t, before);
    }
}

}  // namespace
}  // namespace trensil
