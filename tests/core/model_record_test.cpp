#include "core/model_record.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/body_catalogue.h"
#include "support/memory_settings_store.h"

namespace trensil {
namespace {

TEST(reset_model, sets_the_defaults_and_keeps_basegrav_as_found) {
    model_record model;
    model.basemag = 123.0f;
    model.data_file = "/data/line.csv";
    model.magpos = 9;
    model.mag_intensity = 1.0f;
    model.sensor_offset = 0.0f;
    model.VG_filter_width = 3;
    model.float_base = {1, 1};
    model.channel_valid = {1, 1, 1, 1, 1, 1, 1};
    model.transform.active = -1;
    model.transform.rotation = 30.0;
    model.profile.mag_min = 5.0f;
    model.profile.xmin = 7.0;
    grow_bodies(model, 48);
    model.bodies(3).name = "kept?";
    reset_model(model);

    EXPECT_EQ(model.basemag, -99999.0f);
    EXPECT_EQ(model.basegrav, 0.0f);  // a fresh record: reset does not touch it
    EXPECT_EQ(model.data_file, "");
    EXPECT_EQ(model.magpos, 5);
    EXPECT_EQ(model.mag_intensity, 56000.0f);
    EXPECT_EQ(model.sensor_offset, 10.0f);
    EXPECT_EQ(model.VG_filter_width, 11);
    EXPECT_EQ(model.float_base, (std::array<std::int32_t, 2>{0, 0}));
    EXPECT_EQ(model.channel_valid, (std::array<std::int16_t, 7>{}));
    EXPECT_EQ(model.transform, data_transform{});
    // The ranges start empty, ready for the first station to set them.
    EXPECT_EQ(model.profile.mag_min, 1e32f);
    EXPECT_EQ(model.profile.mag_max, -1e32f);
    EXPECT_EQ(model.profile.xmin, 1e32);
    EXPECT_EQ(model.body_capacity, 32);
    EXPECT_EQ(model.bodies.lo(), 0);
    EXPECT_EQ(model.bodies.hi(), 32);
    EXPECT_EQ(model.bodies(3).name, "");  // the bodies are replaced
}

TEST(reset_model, leaves_its_listed_fields_alone) {
    model_record model;
    model.basegrav = 9.8f;
    model.num_bodies = 4;
    model.profile_ready = -1;
    model.display_width = 1200;
    model.splitter = {0.1f, 0.2f, 0.3f, 0.4f};
    model.finite_body_right_clip = 100.0f;
    const model_record before = model;
    reset_model(model);
    EXPECT_EQ(model.basegrav, 9.8f);  // unlike basemag
    EXPECT_EQ(model.num_bodies, before.num_bodies);
    EXPECT_EQ(model.profile_ready, before.profile_ready);
    EXPECT_EQ(model.display_width, before.display_width);
    EXPECT_EQ(model.splitter, before.splitter);
    EXPECT_EQ(model.finite_body_right_clip, before.finite_body_right_clip);
}

TEST(clear_body_results, clears_computed_flags_and_every_body_up_to_capacity) {
    model_record model;
    model.channel_valid = {0, -1, -1, -1, -1, -1, -1};
    for (int i = 0; i <= 32; ++i) {
        model.bodies(i).magnetisation = 3.0f;
        model.bodies(i).mag_valid = -1;
        model.bodies(i).grav_valid = -1;
    }
    model.num_bodies = 2;
    clear_body_results(model);
    // Observed-done flags 1 and 4 stay.
    EXPECT_EQ(model.channel_valid, (std::array<std::int16_t, 7>{0, -1, 0, 0, -1, 0, 0}));
    for (int i : {0, 1, 2, 3, 32}) {
        EXPECT_EQ(model.bodies(i).magnetisation, -1.0f) << i;
        EXPECT_EQ(model.bodies(i).mag_valid, 0) << i;
        EXPECT_EQ(model.bodies(i).grav_valid, 0) << i;
    }
}

TEST(new_body_defaults, fills_the_built_in_defaults) {
    model_record model;
    model.data_file = "/surveys/line 12.csv";
    model.bodies(3).type = 4;  // a code read from a file is left as found
    model.bodies(3).demag = 1;
    model.bodies(3).fix = 0;
    model.bodies(3).disabled = 1;
    model.bodies(3).magnetisation = 5.0f;
    model.bodies(3).mag_valid = -1;
    new_body_defaults(model, 3, nullptr);
    const body_record& b = model.bodies(3);
    EXPECT_EQ(b.type, 4);
    EXPECT_EQ(b.name, "line 12 Body 3");
    EXPECT_EQ(b.dip.value, 90.0f);
    EXPECT_EQ(b.width.value, 100.0f);
    EXPECT_EQ(b.density.value, 2.67f);
    EXPECT_EQ(b.demag, 0);
    EXPECT_EQ(b.fix, 1);
    EXPECT_EQ(b.disabled, 0);
    EXPECT_EQ(b.magnetisation, -1.0f);
    EXPECT_EQ(b.mag_valid, 0);
    EXPECT_EQ(b.grav_valid, 0);

    // The vary column in record order, and no limits anywhere.
    const float vary[body_property_count] = {1, 1, 0, 1, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
    for (int k = 0; k < body_property_count; ++k) {
        EXPECT_EQ(b.property(k).vary, vary[k]) << k;
        EXPECT_EQ(b.property(k).min, -99999.0f) << k;
        EXPECT_EQ(b.property(k).max, -99999.0f) << k;
    }

    model.bodies(4).type = cylinder_pipe;
    new_body_defaults(model, 4, nullptr);
    EXPECT_EQ(model.bodies(4).dip.value, 0.0f);
}

TEST(new_body_defaults, numeric_settings_take_precedence) {
    memory_settings_store settings;
    for (auto [key, value] : {std::pair{"Type", "16"},
                              {"Dip", "45"},
                              {"Thick", "20"},
                              {"Depth", " 300 "},
                              {"StrikeLength", "1e3"},
                              {"Density", "3.1"},
                              {"Susc", "1000"},
                              {"Colour", "255"}})
        settings.save_setting("Ostrand", "Trensil", key, value);
    model_record model;
    new_body_defaults(model, 1, &settings);
    const body_record& b = model.bodies(1);
    EXPECT_EQ(b.type, 16);
    // The cylinder's dip of 0 gives way to the setting.
    EXPECT_EQ(b.dip.value, 45.0f);
    EXPECT_EQ(b.width.value, 20.0f);
    EXPECT_EQ(b.depth_extent.value, 300.0f);
    EXPECT_EQ(b.length.value, 1000.0f);
    EXPECT_EQ(b.density.value, 3.1f);
    EXPECT_EQ(b.susc.value, 1000.0f);
    EXPECT_EQ(b.colour, 255);
    EXPECT_EQ(b.name, " Body 1");  // no data file yet
}

TEST(new_body_defaults, settings_that_are_not_numbers_are_ignored) {
    memory_settings_store settings;
    settings.save_setting("Ostrand", "Trensil", "Dip", "steep");
    settings.save_setting("Ostrand", "Trensil", "Thick", "");
    settings.save_setting("Ostrand", "Trensil", "Susc", "45x");
    settings.save_setting("Ostrand", "Trensil", "Type", "pipe");
    settings.save_setting("Ostrand", "OtherSection", "Density", "9");
    model_record model;
    model.bodies(2).type = 2;
    new_body_defaults(model, 2, &settings);
    const body_record& b = model.bodies(2);
    EXPECT_EQ(b.type, 2);
    EXPECT_EQ(b.dip.value, 90.0f);
    EXPECT_EQ(b.width.value, 100.0f);
    EXPECT_EQ(b.susc.value, 50000.0f);
    EXPECT_EQ(b.density.value, 2.67f);
}

TEST(grow_bodies, keeps_the_bodies_there_are) {
    model_record model;
    model.bodies(32).name = "last";
    grow_bodies(model, 48);
    EXPECT_EQ(model.body_capacity, 48);
    EXPECT_EQ(model.bodies.hi(), 48);
    EXPECT_EQ(model.bodies(32).name, "last");
    EXPECT_EQ(model.bodies(48).magnetisation, -1.0f);
    grow_bodies(model, 40);  // never shrinks
    EXPECT_EQ(model.body_capacity, 48);
}

model_record model_with_stations(int n) {
    model_record model;
    model.profile.allocate_stations(n);
    return model;
}

TEST(prepare_channels, gives_every_body_its_response_rows) {
    model_record model = model_with_stations(7);
    model.profile_ready = -1;
    model.channel_valid[2] = -1;
    model.bodies(5).mag_valid = -1;
    prepare_channels(model);
    EXPECT_EQ(model.profile_ready, 0);
    EXPECT_EQ(model.channel_valid[2], 0);
    EXPECT_EQ(model.bodies(5).mag_valid, 0);
    for (int i : {0, 1, 32}) {
        const auto& r = model.bodies(i).body_response;
        EXPECT_EQ(r.row_lo(), 1);
        EXPECT_EQ(r.row_hi(), 5);
        EXPECT_EQ(r.col_lo(), 1);
        EXPECT_EQ(r.col_hi(), 7);
    }
}

TEST(prepare_channels, checks_the_inversion_window) {
    // {first, last in; first, last out} on 10 stations: 0, 0 as most model files give it is the
    // whole profile; a last station beyond n (after resampling) resets the first as well.
    const int cases[][4] = {{0, 0, 1, 10}, {3, 8, 3, 8}, {3, 11, 1, 10}, {0, 5, 1, 10}};
    for (const auto& c : cases) {
        model_record model = model_with_stations(10);
        model.profile.inversion_first_station = c[0];
        model.profile.inversion_last_station = c[1];
        prepare_channels(model);
        EXPECT_EQ(model.profile.inversion_first_station, c[2]) << c[0] << ".." << c[1];
        EXPECT_EQ(model.profile.inversion_last_station, c[3]) << c[0] << ".." << c[1];
    }
}

TEST(prepare_channels, a_profile_without_stations_gets_empty_rows) {
    model_record model = model_with_stations(0);
    model.profile.inversion_first_station = 2;
    model.profile.inversion_last_station = 4;
    prepare_channels(model);
    EXPECT_EQ(model.profile.inversion_first_station, 1);
    EXPECT_EQ(model.profile.inversion_last_station, 0);
    EXPECT_EQ(model.bodies(1).body_response.cols(), 0);
    EXPECT_TRUE(model.profile.mag_channels.empty());
}

TEST(prepare_channels, regression_capacity_raised_without_the_array) {
    // A capacity above the array's bound used to index past the end of bodies.
    model_record model = model_with_stations(3);
    model.body_capacity = 40;
    prepare_channels(model);
    EXPECT_EQ(model.bodies.hi(), 40);
    EXPECT_EQ(model.bodies(40).body_response.col_hi(), 3);
}

TEST(fill_line_profile, runs_along_the_polyline_not_the_projection) {
    model_record model = model_with_stations(4);
    model.magpos = 5;
    model.dtm = 0;
    model.zpos = 4;
    const double xs[] = {0.0, 3.0, 3.0, 0.0};
    const double ys[] = {0.0, 4.0, 0.0, 0.0};
    for (int i = 1; i <= 4; ++i) {
        model.profile.location(easting_row, i) = 500000.0 + xs[i - 1];
        model.profile.location(northing_row, i) = 7000000.0 + ys[i - 1];
        model.profile.location(sensor_row, i) = 100.25 + i;
        model.profile.location(ground_row, i) = 90.0;
        model.profile.mag_channels(observed_raw, i) = 56000.0f + static_cast<float>(i);
        model.profile.profile_distance(i) = static_cast<float>(i - 1);  // not used
    }
    line_profile record;
    fill_line_profile(model, record);
    EXPECT_EQ(record.count, 4);
    EXPECT_EQ(record.has_mag, -1);
    EXPECT_EQ(record.has_dtm, 0);
    EXPECT_EQ(record.has_sensor, -1);
    EXPECT_EQ(record.distance.lo(), 0);
    EXPECT_EQ(record.distance.hi(), 4);
    // 5 to the second station, 4 back south, 3 back west: 0, 5, 9, 12 even though the last
    // station is back at the first.
    EXPECT_EQ(record.distance(1), 0.0f);
    EXPECT_FLOAT_EQ(record.distance(2), 5.0f);
    EXPECT_FLOAT_EQ(record.distance(3), 9.0f);
    EXPECT_FLOAT_EQ(record.distance(4), 12.0f);
    EXPECT_EQ(record.x(2), 500003.0);
    EXPECT_EQ(record.y(2), 7000004.0);
    EXPECT_EQ(record.sensor(3), 103.25f);
    EXPECT_EQ(record.ground(4), 90.0f);
    EXPECT_EQ(record.mag(4), 56004.0f);

    model_record empty = model_with_stations(0);
    empty.magpos = 0;
    fill_line_profile(empty, record);
    EXPECT_EQ(record.count, 0);
    EXPECT_EQ(record.has_mag, 0);
    EXPECT_EQ(record.distance.hi(), 0);
}

}  // namespace
}  // namespace trensil
