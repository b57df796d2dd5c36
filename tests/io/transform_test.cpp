#include <gtest/gtest.h>

#include <cmath>

#include "io/coordinate_transform.h"

namespace trensil {
namespace {

int active_after(void (*change)(data_transform&)) {
    data_transform t;
    change(t);
    prepare_transform(t);
    return t.active;
}

TEST(transform_prepare, activity_tests_and_their_tolerances) {
    EXPECT_EQ(active_after([](data_transform&) {}), 0);
    // Zero scales from an older file are repaired to 1 and change nothing.
    EXPECT_EQ(active_after([](data_transform& t) { t.x_scale = t.y_scale = t.z_scale = 0; }), 0);
    // Rotation counts in whole degrees only: under half a degree, or whole turns, is none.
    EXPECT_EQ(active_after([](data_transform& t) { t.rotation = 0.4; }), 0);
    EXPECT_EQ(active_after([](data_transform& t) { t.rotation = 0.6; }), -1);
    EXPECT_EQ(active_after([](data_transform& t) { t.rotation = 720.2; }), 0);
    EXPECT_EQ(active_after([](data_transform& t) { t.x_output_origin = 5; }), -1);
    EXPECT_EQ(active_after([](data_transform& t) { t.x_input_origin = t.x_output_origin = 9; }), 0);
    EXPECT_EQ(active_after([](data_transform& t) { t.x_scale = 1 + 5e-7; }), 0);
    EXPECT_EQ(active_after([](data_transform& t) { t.y_scale = 1 - 2e-6; }), -1);
    EXPECT_EQ(active_after([](data_transform& t) { t.z_shift = 0.001; }), -1);
    // z scale has a tolerance a hundred times wider than x and y.
    EXPECT_EQ(active_after([](data_transform& t) { t.z_scale = 1 + 5e-5; }), 0);
    EXPECT_EQ(active_after([](data_transform& t) { t.z_scale = 1 + 2e-4; }), -1);

    data_transform t;
    t.rotation = 0.4;
    t.x_scale = 0.0;
    prepare_transform(t);
    EXPECT_EQ(t.x_scale, 1.0);
    EXPECT_NEAR(t.sin_rotation, std::sin(0.4 * 0.017453292), 1e-15);  // set although inactive
}

TEST(transform_apply, forward_value_reverse_round_trip_and_undefined_z) {
    data_transform t;
    t.rotation = 90.0;
    t.x_input_origin = 100.0;
    t.x_output_origin = 5000.0;
    t.y_output_origin = 7000.0;
    t.x_scale = 2.0;
    t.z_shift = 10.0;
    t.z_scale = 0.5;
    prepare_transform(t);
    // A quarter turn clockwise takes data +x to target -y. The degree constant 0.017453292 is
    // short of pi/180, leaving a cosine of about 7e-8: positions agree to 1e-5, not to rounding.
    double x = 110.0, y = 0.0, z = 30.0;
    apply_transform(1, t, x, y, z);
    EXPECT_NEAR(x, 5000.0, 1e-5);
    EXPECT_NEAR(y, 7000.0 - 20.0, 1e-5);
    EXPECT_DOUBLE_EQ(z, 20.0);

    t.rotation = 37.25;
    t.y_input_origin = -88.0;
    t.y_scale = -1.7;
    prepare_transform(t);
    for (double x0 : {-1e4, 0.0, 12345.678}) {
        x = x0, y = 987.0, z = 250.0;
        apply_transform(1, t, x, y, z);
        apply_transform(-1, t, x, y, z);
        EXPECT_NEAR(x, x0, 1e-8);
        EXPECT_NEAR(y, 987.0, 1e-8);
        EXPECT_NEAR(z, 250.0, 1e-10);
    }
    float xf = 1.0f, yf = 2.0f, zf = -1e32f;  // undefined z passes both ways
    apply_transform(1, t, xf, yf, zf);
    EXPECT_EQ(zf, -1e32f);
    apply_transform(-1, t, xf, yf, zf);
    EXPECT_EQ(zf, -1e32f);
}

}  // namespace
}  // namespace trensil
