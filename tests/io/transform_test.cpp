#include <gtest/gtest.h>

#include <cmath>

#include "io/coordinate_transform.h"

namespace trensil {
namespace {

TEST(transform_prepare, defaults_and_repaired_zero_scales_stay_inactive) {
    data_transform t;
    t.active = -1;
    prepare_transform(t);
    EXPECT_EQ(t.active, 0);

    // An older file leaves the scales at 0: they become 1 and change nothing.
    data_transform old;
    old.x_scale = old.y_scale = old.z_scale = 0.0;
    prepare_transform(old);
    EXPECT_EQ(old.x_scale, 1.0);
    EXPECT_EQ(old.y_scale, 1.0);
    EXPECT_EQ(old.z_scale, 1.0);
    EXPECT_EQ(old.active, 0);
}

TEST(transform_prepare, rotation_counts_only_in_whole_degrees) {
    data_transform t;
    t.rotation = 0.4;
    prepare_transform(t);
    EXPECT_EQ(t.active, 0);
    EXPECT_NEAR(t.cos_rotation, std::cos(0.4 * 0.017453292), 1e-15);
    EXPECT_NEAR(t.sin_rotation, std::sin(0.4 * 0.017453292), 1e-15);

    t.rotation = 0.6;
    prepare_transform(t);
    EXPECT_EQ(t.active, -1);

    t.rotation = 720.2;  // whole turns count as none
    prepare_transform(t);
    EXPECT_EQ(t.active, 0);

    t.rotation = -90.0;
    prepare_transform(t);
    EXPECT_EQ(t.active, -1);
}

TEST(transform_prepare, each_other_difference_activates_within_its_tolerance) {
    auto active_with = [](auto change) {
        data_transform t;
        change(t);
        prepare_transform(t);
        return t.active;
    };
    EXPECT_EQ(active_with([](data_transform& t) { t.x_output_origin = 5.0; }), -1);
    EXPECT_EQ(active_with([](data_transform& t) { t.y_input_origin = 1.0; }), -1);
    EXPECT_EQ(active_with([](data_transform& t) { t.x_scale = 1.0 + 5e-7; }), 0);
    EXPECT_EQ(active_with([](data_transform& t) { t.x_scale = 1.0 + 2e-6; }), -1);
    EXPECT_EQ(active_with([](data_transform& t) { t.y_scale = 1.0 - 2e-6; }), -1);
    EXPECT_EQ(active_with([](data_transform& t) { t.z_shift = 0.001; }), -1);
    // z scale has a tolerance a hundred times wider than x and y.
    EXPECT_EQ(active_with([](data_transform& t) { t.z_scale = 1.0 + 5e-5; }), 0);
    EXPECT_EQ(active_with([](data_transform& t) { t.z_scale = 1.0 + 2e-4; }), -1);
    // Moving both origins of a pair by the same amount changes nothing.
    EXPECT_EQ(active_with([](data_transform& t) {
                  t.x_input_origin = t.x_output_origin = 1000.0;
                  t.second_x_output_origin = 77.0;  // second points are not looked at
              }),
              0);
}

TEST(transform_apply, forward_follows_origin_scale_and_clockwise_rotation) {
    data_transform t;
    t.rotation = 90.0;
    t.x_input_origin = 100.0;
    t.y_input_origin = 200.0;
    t.x_output_origin = 5000.0;
    t.y_output_origin = 7000.0;
    t.x_scale = 2.0;
    t.y_scale = 3.0;
    t.z_shift = 10.0;
    t.z_scale = 0.5;
    prepare_transform(t);

    // The degree constant 0.017453292 is short of pi/180, so a quarter turn leaves a cosine of
    // about 7e-8: positions agree to 1e-5 over these 30 units, not to rounding.
    double x = 110.0, y = 200.0, z = 30.0;
    apply_transform(1, t, x, y, z);
    // dx = 20 along data x turns to target -y under a quarter turn clockwise.
    EXPECT_NEAR(x, 5000.0, 1e-5);
    EXPECT_NEAR(y, 7000.0 - 20.0, 1e-5);
    EXPECT_DOUBLE_EQ(z, 20.0);

    x = 100.0, y = 210.0;
    apply_transform(1, t, x, y, z);
    EXPECT_NEAR(x, 5030.0, 1e-5);
    EXPECT_NEAR(y, 7000.0, 1e-5);
}

TEST(transform_apply, reverse_undoes_forward_and_undefined_z_passes) {
    data_transform t;
    t.rotation = 37.25;
    t.x_input_origin = 1234.5;
    t.y_input_origin = -88.0;
    t.x_output_origin = 500000.0;
    t.y_output_origin = 7000000.0;
    t.x_scale = 0.3048;
    t.y_scale = -1.7;
    t.z_shift = -12.0;
    t.z_scale = 3.0;
    prepare_transform(t);
    for (double x0 : {-1e4, 0.0, 12345.678}) {
        for (double y0 : {-5.0, 987.0}) {
            double x = x0, y = y0, z = 250.0;
            apply_transform(1, t, x, y, z);
            apply_transform(-1, t, x, y, z);
            EXPECT_NEAR(x, x0, 1e-8);
            EXPECT_NEAR(y, y0, 1e-8);
            EXPECT_NEAR(z, 250.0, 1e-10);
        }
    }
    double x = 1.0, y = 2.0, z = -1e32;
    apply_transform(1, t, x, y, z);
    EXPECT_EQ(z, -1e32);
    apply_transform(-1, t, x, y, z);
    EXPECT_EQ(z, -1e32);
}

TEST(transform_apply, single_precision_values_go_through_in_double) {
    data_transform t;
    t.x_output_origin = 0.25;
    t.z_scale = 2.0;
    prepare_transform(t);
    float x = 1.0f, y = 2.0f, z = 3.0f;
    apply_transform(1, t, x, y, z);
    EXPECT_EQ(x, 1.25f);
    EXPECT_EQ(y, 2.0f);
    EXPECT_EQ(z, 6.0f);
}

TEST(transform_reset, restores_identity) {
    data_transform t;
    t.rotation = 12.0;
    t.active = -1;
    t.second_y_output_origin = 9.0;
    reset_transform(t);
    EXPECT_EQ(t, data_transform{});
}

}  // namespace
}  // namespace trensil
