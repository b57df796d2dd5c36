#include "support/bounded_array.h"

#include <gtest/gtest.h>

namespace trensil {
namespace {

TEST(array1, keeps_its_lower_bound) {
    array1<int> a(0, 4, 7);
    EXPECT_EQ(a.lo(), 0);
    EXPECT_EQ(a.hi(), 4);
    EXPECT_EQ(a.size(), 5);
    EXPECT_EQ(a(0), 7);
    a(4) = 9;
    EXPECT_EQ(a[4], 9);

    array1<float> b(1, 3);
    b(1) = 1.5f;
    EXPECT_EQ(*b.data(), 1.5f);  // element 1 is the first stored

    array1<int> empty(1, 0);
    EXPECT_TRUE(empty.empty());
    EXPECT_EQ(empty.size(), 0);
    array1<int> inverted(5, 2);  // an upper bound below the lower is an empty array
    EXPECT_EQ(inverted.hi(), 4);
    EXPECT_EQ(inverted.size(), 0);
}

TEST(array1, resize_keep_grows_and_shrinks_the_upper_bound_only) {
    array1<int> a(0, 2);
    a(0) = 10;
    a(1) = 11;
    a(2) = 12;
    a.resize_keep(5, -1);
    EXPECT_EQ(a.lo(), 0);
    EXPECT_EQ(a.hi(), 5);
    EXPECT_EQ(a(2), 12);
    EXPECT_EQ(a(5), -1);
    a.resize_keep(1);
    EXPECT_EQ(a.hi(), 1);
    EXPECT_EQ(a(1), 11);
    a.resize(3, 4, 2);  // a plain resize drops the contents
    EXPECT_EQ(a.lo(), 3);
    EXPECT_EQ(a(3), 2);
}

TEST(array2, rows_are_contiguous_with_both_lower_bounds_kept) {
    array2<float> c(1, 10, 1, 4);
    EXPECT_EQ(c.rows(), 10);
    EXPECT_EQ(c.cols(), 4);
    for (int r = 1; r <= 10; ++r)
        for (int s = 1; s <= 4; ++s) c(r, s) = static_cast<float>(r * 100 + s);
    const float* row6 = c.row(6);
    EXPECT_EQ(row6[0], 601.0f);
    EXPECT_EQ(row6[3], 604.0f);

    array2<double> loc(0, 4, 1, 3);
    loc(0, 1) = -1.0;
    loc(4, 3) = 4.3;
    EXPECT_EQ(loc.row(4)[2], 4.3);
    EXPECT_EQ(loc.row_lo(), 0);
}

TEST(array2, resize_cols_keep_preserves_what_stays_in_range) {
    array2<int> a(1, 2, 1, 3);
    for (int r = 1; r <= 2; ++r)
        for (int c = 1; c <= 3; ++c) a(r, c) = r * 10 + c;
    a.resize_cols_keep(5, -7);
    EXPECT_EQ(a.col_hi(), 5);
    EXPECT_EQ(a(2, 3), 23);
    EXPECT_EQ(a(1, 4), -7);
    EXPECT_EQ(a(2, 5), -7);
    a.resize_cols_keep(2);
    EXPECT_EQ(a.cols(), 2);
    EXPECT_EQ(a(2, 2), 22);
    EXPECT_EQ(a.row(2)[1], 22);
    a.resize_cols_keep(0);  // no stations left
    EXPECT_TRUE(a.empty());
    EXPECT_EQ(a.rows(), 2);
}

#ifdef TRENSIL_BOUNDS_CHECK
TEST(bounded_array_death, an_index_outside_the_bounds_stops_the_program) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    array1<int> a(1, 3);
    EXPECT_DEATH(a(0), "array1 index 0 outside 1..3");
    EXPECT_DEATH(a(4), "outside 1..3");
    array2<float> c(1, 10, 1, 4);
    EXPECT_DEATH(c(11, 1), "array2 row index 11 outside 1..10");
    EXPECT_DEATH(c(1, 5), "array2 column index 5 outside 1..4");
    EXPECT_DEATH(c.row(0), "row index 0");
}
#endif

}  // namespace
}  // namespace trensil
