#include "response/strike_frame.h"

#include <gtest/gtest.h>

#include "response_test_model.h"

namespace trensil {
namespace {

using testing_support::line_model;

constexpr double kPi = 3.14159265358979;

TEST(bearing_of, is_the_geographic_bearing_and_replaces_a_zero_second_argument) {
    // {east, north in, bearing, north after the call}
    const double cases[][4] = {{0.0, 1.0, 0.0, 1.0},           {0.0, -1.0, kPi, -1.0},
                               {1.0, 1.0, kPi / 4, 1.0},       {-1.0, -1.0, -3 * kPi / 4, -1.0},
                               {-3.0, 2.0, -0.982793723, 2.0}, {1.0, 0.0, kPi / 2, 1e-9},
                               {-1.0, -0.0, -kPi / 2, 1e-9}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c[0] << ", " << c[1]);
        double y = c[1];
        EXPECT_NEAR(bearing_of(c[0], y), c[2], 1e-8);
        EXPECT_EQ(y, c[3]);
    }
}

TEST(search_sorted, finds_equal_entries_and_stops_between_neighbours) {
    array1<float> d(1, 5);
    for (int i = 1; i <= 5; ++i) d(i) = 10.0f * (i - 1);  // 0 10 20 30 40
    // {value, index}: 25 gives the last index examined; an empty span ends at once.
    for (auto [v, want] : {std::pair{20.0, 3}, {0.0, 1}, {25.0, 3}, {99.0, 4}, {-5.0, 1}})
        EXPECT_EQ(search_sorted(d, 1, 5, v), want) << v;
    EXPECT_EQ(search_sorted(d, 2, 2, 5.0), 2);
}

TEST(locate_body_on_profile, interpolates_extrapolates_and_holds_repeated_distances) {
    // A bent line: east along the first leg, north along the second.
    model_record model = line_model(3, 100.0, 200.0, 10.0, 0.0, 0.0, 0);
    model.profile.location(easting_row, 3) = 110.0;
    model.profile.location(northing_row, 3) = 210.0;
    // {distance, east, north}: on station 2, between, beyond the last along the last leg,
    // before the first along the first.
    const double cases[][3] = {
        {10.0, 110.0, 200.0}, {5.0, 105.0, 200.0}, {30.0, 110.0, 220.0}, {-10.0, 90.0, 200.0}};
    for (const auto& c : cases) {
        double e = 0, n = 0;
        locate_body_on_profile(model.profile, static_cast<float>(c[0]), e, n);
        EXPECT_DOUBLE_EQ(e, c[1]) << c[0];
        EXPECT_DOUBLE_EQ(n, c[2]) << c[0];
    }
    // Two stations at one distance: the earlier station's position.
    double e = 0, n = 0;
    model.profile.profile_distance(3) = 10.0f;
    locate_body_on_profile(model.profile, 10.0f, e, n);
    EXPECT_DOUBLE_EQ(e, 110.0);
    EXPECT_DOUBLE_EQ(n, 200.0);
    // One station: the position is left alone.
    model_record one = line_model(1, 100.0, 200.0, 10.0, 0.0, 0.0, 0);
    e = -1.0;
    locate_body_on_profile(one.profile, 50.0f, e, n);
    EXPECT_EQ(e, -1.0);
}

}  // namespace
}  // namespace trensil
