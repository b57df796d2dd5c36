#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "data_intake_files.h"
#include "io/location_reader.h"
#include "io/profile_setup.h"
#include "support/scripted_platform.h"
#include "test_paths.h"

namespace trensil {
namespace {

struct station {
    double x, y, ground, mag;
};

// A model holding `stations` as the data reader leaves them; gravity is minus the magnetics.
model_record model_with(const std::vector<station>& stations) {
    model_record model;
    reset_model(model);
    model.magpos = 3;
    profile_block& p = model.profile;
    const int n = static_cast<int>(stations.size());
    p.allocate_stations(n);
    for (int i = 1; i <= n; ++i) {
        const station& s = stations[static_cast<std::size_t>(i - 1)];
        p.location(easting_row, i) = s.x;
        p.location(northing_row, i) = s.y;
        p.location(ground_row, i) = s.ground;
        p.mag_channels(observed_raw, i) = static_cast<float>(s.mag);
        p.grav_channels(observed_raw, i) = static_cast<float>(-s.mag);
    }
    return model;
}

std::vector<float> distances(const model_record& m) {
    const auto& d = m.profile.profile_distance;
    return std::vector<float>(d.begin(), d.begin() + m.profile.num_stations);
}

TEST(profile_orientation, too_short_or_overflowing_profiles_are_refused) {
    model_record model = model_with({{5, 5, 0, 1}, {9, 9, 0, 2}, {5, 5, 0, 3}});
    const model_record before = model;
    scripted_platform ui;
    EXPECT_EQ(setup_profile(model, ui), -1);
    EXPECT_EQ(ui.messages,
              std::vector<std::string>{"The data profile is not long enough to model"});
    EXPECT_EQ(model.profile.location, before.profile.location);

    model_record huge = model_with({{-1.5e308, 0, 0, 1}, {1.5e308, 0, 0, 2}});
    EXPECT_EQ(setup_profile(huge, ui), -1);
    EXPECT_EQ(ui.messages.back(),
              "An error occurred while setting up the profile coordinates : Overflow");
}

TEST(profile_orientation, backward_lines_are_reversed_with_their_channels) {
    model_record west = model_with({{300, 0, 3, 30}, {200, 0, 2, 20}, {100, 1, 1, 10}});
    scripted_platform ui;
    ASSERT_EQ(setup_profile(west, ui), 0);
    const profile_block& p = west.profile;
    EXPECT_EQ(p.location(easting_row, 1), 100.0);  // distance 0 at the smaller easting
    EXPECT_EQ(p.location(ground_row, 1), 1.0);
    EXPECT_EQ(p.mag_channels(observed_raw, 1), 10.0f);
    EXPECT_EQ(p.grav_channels(observed_raw, 3), -30.0f);
    EXPECT_EQ(p.start_y, 1.0);
    EXPECT_NEAR(p.profile_distance(3), std::sqrt(200.0 * 200.0 + 1.0), 1e-3);

    // |dx| equal to |dy|: the sign of dy decides. South-west turns to north-east, south-east
    // to north-west.
    model_record sw = model_with({{100, 100, 0, 1}, {0, 0, 0, 2}});
    model_record se = model_with({{0, 100, 0, 1}, {100, 0, 0, 2}});
    ASSERT_EQ(setup_profile(sw, ui), 0);
    ASSERT_EQ(setup_profile(se, ui), 0);
    EXPECT_EQ(sw.profile.location(easting_row, 1), 0.0);
    EXPECT_EQ(se.profile.location(easting_row, 1), 100.0);
}

TEST(profile_azimuth_reading, bearing_of_the_negated_direction) {
    // East-running line: -90 degrees; north-running: 180 degrees.
    model_record east = model_with({{0, 0, 0, 1}, {100, 0, 0, 2}});
    model_record north = model_with({{0, 0, 0, 1}, {0, 100, 0, 2}});
    scripted_platform ui;
    ASSERT_EQ(setup_profile(east, ui), 0);
    ASSERT_EQ(setup_profile(north, ui), 0);
    EXPECT_NEAR(east.profile.profile_azimuth, -3.14159265358979 / 2.0, 1e-6);
    EXPECT_NEAR(std::fabs(north.profile.profile_azimuth), 3.14159265358979, 1e-6);
    EXPECT_EQ(east.profile.line_b, 1.0);
    EXPECT_EQ(north.profile.line_a, -1.0);
}

TEST(profile_projection, stations_that_do_not_advance_are_dropped) {
    model_record model = model_with({{0, 0, 0, 1},
                                     {10, 3, 0, 2},
                                     {8, -2, 0, 3},  // doubles back
                                     {10, 0, 0, 4},  // repeats a distance
                                     {25, 1, 0, 5},
                                     {40, 0, 0, 6}});
    scripted_platform ui;
    ASSERT_EQ(setup_profile(model, ui), 0);
    const profile_block& p = model.profile;
    EXPECT_EQ(p.num_stations, 4);
    EXPECT_EQ(p.location.col_hi(), 4);
    EXPECT_EQ(p.residuals.hi(), 4);
    EXPECT_EQ(distances(model), (std::vector<float>{0, 10, 25, 40}));
    EXPECT_EQ(p.mag_channels(observed_raw, 3), 5.0f);
    EXPECT_EQ(p.location(northing_row, 3), 1.0);
}

TEST(profile_base_levels, only_an_exact_undefined_marker_is_replaced) {
    model_record model = model_with({{0, 0, 0, 10}, {10, 0, 0, 20}, {20, 0, 0, 60}});
    model.gravpos = 4;
    model.basegrav = undefined_value;
    scripted_platform ui;
    ASSERT_EQ(setup_profile(model, ui), 0);
    EXPECT_EQ(model.basemag, 30.0f);
    EXPECT_EQ(model.basegrav, -30.0f);

    model_record kept = model_with({{0, 0, 0, 10}, {10, 0, 0, 20}});
    kept.basemag = -99999.5f;
    ASSERT_EQ(setup_profile(kept, ui), 0);
    EXPECT_EQ(kept.basemag, -99999.5f);
}

TEST(profile_resampling, spacing_resamples_through_the_spline_and_is_capped) {
    // Ground and magnetics cubic in distance: the not-a-knot spline gives them back exactly.
    auto ground = [](double d) { return 100.0 + 0.5 * d - 0.01 * d * d; };
    auto mag = [](double d) { return 1e-4 * d * d * d - 0.02 * d * d + 3.0; };
    std::vector<station> stations;
    for (double d : {0.0, 7.0, 15.0, 31.0, 38.0, 52.0, 61.0, 80.0})
        stations.push_back({1000.0 + d, 500.0, ground(d), mag(d)});
    scripted_platform ui;
    for (float spacing : {0.0f, -5.0f}) {  // kept as read
        model_record same = model_with(stations);
        same.station_spacing = spacing;
        ASSERT_EQ(setup_profile(same, ui), 0);
        EXPECT_EQ(same.profile.num_stations, 8);
        EXPECT_EQ(same.profile.saved_mag_channels.col_hi(), 8);
    }
    model_record model = model_with(stations);
    model.dtm = 4;
    model.station_spacing = 10.0f;
    ASSERT_EQ(setup_profile(model, ui), 0);
    const profile_block& p = model.profile;
    ASSERT_EQ(p.num_stations, 9);
    for (int j = 1; j <= 9; ++j) {
        const double d = 10.0 * (j - 1);
        EXPECT_EQ(p.profile_distance(j), static_cast<float>(d));
        EXPECT_NEAR(p.location(easting_row, j), 1000.0 + d, 1e-9);
        EXPECT_NEAR(p.location(ground_row, j), ground(d), 1e-9);
        EXPECT_NEAR(p.mag_channels(observed_raw, j), mag(d), 1e-4);
        EXPECT_EQ(p.saved_mag_channels(observed_raw, j), p.mag_channels(observed_raw, j));
        EXPECT_EQ(p.grav_channels(observed_raw, j), 0.0f);  // no gravity column: 0
    }

    model_record tiny = model_with({{0, 0, 0, 1}, {500, 0, 0, 2}, {1000, 0, 0, 3}});
    tiny.station_spacing = 0.01f;  // would be 100001 stations
    ASSERT_EQ(setup_profile(tiny, ui), 0);
    EXPECT_EQ(tiny.profile.num_stations, 8193);
    EXPECT_EQ(tiny.station_spacing, static_cast<float>(1000.0 / 8192.0));
    EXPECT_NEAR(tiny.profile.mag_channels(observed_raw, 4097), 2.0f, 1e-5);
}

TEST(profile_body_placement, reference_elevation_from_topo_or_ground) {
    model_record model = model_with({{0, 0, 100, 1}, {10, 0, 120, 2}, {30, 0, 80, 3}});
    model.num_bodies = 3;
    for (int b = 1; b <= 3; ++b) new_body_defaults(model, b, nullptr);
    auto place = [&](int b, int type, float distance, float top, float width) {
        model.body(b).type = type;
        model.body(b).distance.value = distance;
        model.body(b).top.value = top;
        model.body(b).width.value = width;
    };
    place(1, 1, 5.0f, 20.0f, 100.0f);
    place(2, 1, 40.0f, 0.0f, 10.0f);  // beyond the end: the last leg goes on
    place(3, 16, 10.0f, 50.0f, 8.0f);
    model.topo = 7.0f;
    scripted_platform ui;
    ASSERT_EQ(setup_profile(model, ui), 0);
    // No ground column: the constant topography. Width comes off, twice for a cylinder.
    EXPECT_EQ(model.body(1).z_reference, -(20.0f - 7.0f) - 100.0f);
    EXPECT_EQ(model.body(3).z_reference, -(50.0f - 7.0f) - 8.0f - 8.0f);

    model.dtm = 4;
    for (int b = 1; b <= 3; ++b) place_body_on_profile(model, b);
    EXPECT_FLOAT_EQ(model.body(1).z_reference, -(20.0f - 110.0f) - 100.0f);
    EXPECT_FLOAT_EQ(model.body(2).z_reference, -(0.0f - 60.0f) - 10.0f);
    EXPECT_FLOAT_EQ(model.body(3).z_reference, -(50.0f - 120.0f) - 16.0f);
}

TEST(profile_real_data, scattered_gravity_traverse_is_oriented_and_resampled) {
    model_record model =
        testing::model_reading(std::string(TRENSIL_SHARED_DATA_DIR) +
                                   "/southern-africa-gravity/profile_bushveld_28.9E.csv",
                               2);
    model.xpos = 3, model.ypos = 4, model.zpos = 5, model.magpos = 0, model.gravpos = 9;
    model.station_spacing = 1000.0f;
    scripted_platform ui;
    ASSERT_EQ(read_location_data(0, model, model.profile, {}, ui), 0);
    ASSERT_EQ(model.profile.num_stations, 53);
    ASSERT_EQ(read_location_data(1, model, model.profile, {}, ui), 0);
    ASSERT_EQ(setup_profile(model, ui), 0);
    EXPECT_TRUE(ui.messages.empty());
    const profile_block& p = model.profile;
    // The traverse runs north: the stations are in growing northing at 1 km.
    EXPECT_GT(p.num_stations, 300);
    EXPECT_NEAR(p.profile_distance(2), 1000.0f, 1e-3);
    for (int i = 2; i <= p.num_stations; ++i)
        ASSERT_GT(p.location(northing_row, i), p.location(northing_row, i - 1));
}

}  // namespace
}  // namespace trensil
