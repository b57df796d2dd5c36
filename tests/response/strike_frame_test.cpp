#include "response/strike_frame.h"

#include <gtest/gtest.h>

#include "response_test_model.h"

namespace trensil {
namespace {

using testing_support::line_model;

TEST(bearing_of, is_the_geographic_bearing_of_east_and_north) {
    double y = 1.0;
    EXPECT_DOUBLE_EQ(bearing_of(0.0, y), 0.0);
    y = -1.0;
    EXPECT_NEAR(bearing_of(0.0, y), 3.14159265358979, 1e-12);
    y = 1.0;
    EXPECT_NEAR(bearing_of(1.0, y), 3.14159265358979 / 4, 1e-12);
    y = -1.0;
    EXPECT_NEAR(bearing_of(-1.0, y), -3.0 * 3.14159265358979 / 4, 1e-12);
    y = 2.0;
    EXPECT_NEAR(bearing_of(-3.0, y), std::atan2(-3.0, 2.0), 1e-12);
}

TEST(bearing_of, replaces_a_zero_second_argument_in_the_callers_variable) {
    double y = 0.0;
    const double r = bearing_of(1.0, y);
    EXPECT_EQ(y, 1e-9);
    EXPECT_NEAR(r, 3.14159265358979 / 2, 1e-8);
    y = -0.0;
    EXPECT_NEAR(bearing_of(-1.0, y), -3.14159265358979 / 2, 1e-8);
}

TEST(search_sorted, finds_equal_entries_and_stops_between_neighbours) {
    array1<float> d(1, 5);
    for (int i = 1; i <= 5; ++i) d(i) = 10.0f * (i - 1);  // 0 10 20 30 40
    EXPECT_EQ(search_sorted(d, 1, 5, 20.0), 3);
    EXPECT_EQ(search_sorted(d, 1, 5, 0.0), 1);
    EXPECT_EQ(search_sorted(d, 1, 5, 25.0), 3);  // last index examined
    EXPECT_EQ(search_sorted(d, 1, 5, 99.0), 4);
    EXPECT_EQ(search_sorted(d, 1, 5, -5.0), 1);
    EXPECT_EQ(search_sorted(d, 2, 2, 5.0), 2);  // an empty span ends at once
}

TEST(locate_body_on_profile, interpolates_extrapolates_and_holds_repeated_distances) {
    // A bent line: east along the first leg, north along the second.
    model_record model = line_model(3, 100.0, 200.0, 10.0, 0.0, 0.0, 0);
    model.profile.location(easting_row, 3) = 110.0;
    model.profile.location(northing_row, 3) = 210.0;
    double e = 0, n = 0;

    locate_body_on_profile(model.profile, 10.0f, e, n);  // exactly on station 2
    EXPECT_DOUBLE_EQ(e, 110.0);
    EXPECT_DOUBLE_EQ(n, 200.0);

    locate_body_on_profile(model.profile, 5.0f, e, n);
    EXPECT_DOUBLE_EQ(e, 105.0);
    EXPECT_DOUBLE_EQ(n, 200.0);

    locate_body_on_profile(model.profile, 30.0f, e, n);  // beyond the last: along the last leg
    EXPECT_DOUBLE_EQ(e, 110.0);
    EXPECT_DOUBLE_EQ(n, 220.0);

    locate_body_on_profile(model.profile, -10.0f, e, n);  // before the first: along the first
    EXPECT_DOUBLE_EQ(e, 90.0);
    EXPECT_DOUBLE_EQ(n, 200.0);

    // Two stations at one distance: the earlier station's position.
    model.profile.profile_distance(3) = 10.0f;
    locate_body_on_profile(model.profile, 10.0f, e, n);
    EXPECT_DOUBLE_EQ(e, 110.0);
    EXPECT_DOUBLE_EQ(n, 200.0);
}

TEST(locate_body_on_profile, leaves_the_position_alone_with_one_station) {
    model_record model = line_model(1, 100.0, 200.0, 10.0, 0.0, 0.0, 0);
    double e = -1.0, n = -2.0;
    locate_body_on_profile(model.profile, 50.0f, e, n);
    EXPECT_EQ(e, -1.0);
    EXPECT_EQ(n, -2.0);
}

}  // namespace
}  // namespace trensil
