// A digitised baseline: its points, the stations spaced along it, and bilinear sampling of a
// grid at them.
#include <gtest/gtest.h>

#include <cmath>

#include "project/digitising.h"
#include "project/grid_source.h"
#include "test_grids.h"

namespace trensil {
namespace {

struct baseline {
    digitising_state d;
    int spaced(float interval) {
        return space_stations(d.x, d.y, d.num_digitised_points, interval, d.sample_x, d.sample_y,
                              d.sample_distance);
    }
    void add(double x, double y) { ASSERT_TRUE(add_digitised_point(d, x, y, "*")); }
};

TEST(digitised_points, hold_2048_and_close_up_on_delete) {
    baseline b;
    for (int i = 1; i <= max_digitised_points; ++i) b.add(i, -i);
    EXPECT_FALSE(add_digitised_point(b.d, 0, 0, "*"));  // the 2049th
    EXPECT_EQ(b.d.num_digitised_points, 2048);

    b.d.current_point = 2048;
    delete_digitised_point(b.d, 3);
    EXPECT_EQ(b.d.num_digitised_points, 2047);
    EXPECT_EQ(b.d.x(2), 2.0);
    EXPECT_EQ(b.d.x(3), 4.0);  // the later points moved down by one
    EXPECT_EQ(b.d.y(2047), -2048.0);
    EXPECT_EQ(b.d.current_point, 2047);
    delete_digitised_point(b.d, 0);  // no such point: nothing moves
    EXPECT_EQ(b.d.num_digitised_points, 2047);
}

TEST(station_spacing, carries_the_spacing_round_corners) {
    baseline b;
    b.add(0, 0);
    b.add(250, 0);    // 250 m east
    b.add(250, 300);  // then 300 m north
    ASSERT_EQ(b.spaced(100.0f), 6);
    // Stations at 0, 100, 200 along the first leg; 300 is 50 m round the corner, then 150, 250.
    const double x[] = {0, 100, 200, 250, 250, 250};
    const double y[] = {0, 0, 0, 50, 150, 250};
    for (int k = 1; k <= 6; ++k) {
        EXPECT_NEAR(b.d.sample_x(k), x[k - 1], 1e-9) << k;
        EXPECT_NEAR(b.d.sample_y(k), y[k - 1], 1e-9) << k;
        EXPECT_EQ(b.d.sample_distance(k), 100.0f * (k - 1));
    }
}

TEST(station_spacing, limit_of_1024_intervals) {
    struct row {
        double length;
        int stations;
    };
    const row rows[] = {
        {1024.0 * 10.0, 1025},     // exactly 1024 intervals: a station on the end
        {1024.0 * 10.0 + 0.5, 0},  // slightly longer: refused, no stations
        {155.0, 16},               // 15.5 intervals
        {10.05, 2},                // the end within 0.01 intervals gets its station
    };
    for (const row& r : rows) {
        baseline b;
        b.add(500, 500);
        b.add(500 + r.length, 500);
        EXPECT_EQ(b.spaced(10.0f), r.stations) << r.length;
    }
    baseline one;
    one.add(0, 0);
    EXPECT_EQ(one.spaced(10.0f), 0);
}

// A point clicked twice makes a segment of no length: it is walked as two intervals, so the
// stations stand twice on that point, and the baseline's length does not count it.
TEST(station_spacing, repeated_point_stands_two_stations_on_it) {
    baseline b;
    b.add(0, 0);
    b.add(100, 0);
    b.add(100, 0);
    b.add(200, 0);
    const int n = b.spaced(50.0f);
    ASSERT_EQ(n, 7);
    const double x[] = {0, 50, 100, 100, 100, 150, 200};
    for (int k = 1; k <= n; ++k) EXPECT_NEAR(b.d.sample_x(k), x[k - 1], 1e-9) << k;
}

// Centres: x 1005, 1015, 1025; y 1995 (row 0), 1985 (row 1).
memory_grid small_grid() {
    return memory_grid(testing::square_cells(3, 2, 1000.0, 2000.0, 10.0),
                       {1, 2, testing::no_value, 3, 5, -1e31f});
}

TEST(grid_sampling, bilinear_and_nothing_made_up_from_a_cell_without_value) {
    const memory_grid grid = small_grid();
    struct row {
        double x, y, expected;
    };
    const row rows[] = {
        {1005, 1995, 1},                      // a centre
        {1010, 1990, (1 + 2 + 3 + 5) / 4.0},  // between four centres
        {1007.5, 1995, 1.25},                 // along a row
        {1001, 1999, 1},                      // outer half cell: the edge cell's value
        {1015, 1995, 2},                      // a centre beside a cell without value
        {1020, 1995, grid_undefined},         // takes a share from it
        {1025, 1985, grid_undefined},         // below -1e30 counts as none
        {999, 1995, grid_undefined},          // outside
        {1010, 2000.5, grid_undefined},
    };
    for (const row& r : rows)
        EXPECT_DOUBLE_EQ(sample_grid_point(grid, r.x, r.y), r.expected) << r.x << ", " << r.y;

    const grid_extent e = extent_of(grid);
    EXPECT_EQ(e.xmin, 1000.0);
    EXPECT_EQ(e.xmax, 1030.0);
    EXPECT_EQ(e.ymin, 1980.0);
    EXPECT_EQ(e.ymax, 2000.0);
    double lo = 0, hi = 0;
    ASSERT_TRUE(value_range(grid, lo, hi));
    EXPECT_EQ(lo, 1.0);
    EXPECT_EQ(hi, 5.0);
}

}  // namespace
}  // namespace trensil
