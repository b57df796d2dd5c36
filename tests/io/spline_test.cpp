#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "io/cubic_spline.h"

namespace trensil {
namespace {

struct sampled {
    int n;
    array1<double> tau;
    array2<double> c;
    template <class F>
    sampled(const std::vector<double>& xs, F f)
        : n(static_cast<int>(xs.size())), tau(1, n), c(1, n, 1, 4) {
        for (int i = 1; i <= n; ++i) {
            tau(i) = xs[static_cast<std::size_t>(i - 1)];
            c(i, 1) = f(tau(i));
        }
    }
};

double cubic(double x) {
    return 2.0 - 3.0 * x + 0.5 * x * x + 0.125 * x * x * x;
}
double cubic_slope(double x) {
    return -3.0 + x + 0.375 * x * x;
}
double cubic_curvature(double x) {
    return 1.0 + 0.75 * x;
}

const std::vector<double> uneven = {-3.0, -2.2, 0.0, 0.5, 1.75, 4.0, 4.1, 7.0};

TEST(spline_not_a_knot, reproduces_a_cubic_on_uneven_points) {
    sampled s(uneven, cubic);
    cubspl(s.n, s.tau, s.c, 0, 0);
    for (double x = -3.0; x <= 7.0; x += 0.37)
        EXPECT_NEAR(cubval(s.n, s.tau, s.c, x), cubic(x), 1e-10) << x;
    // The coefficients are the derivatives at each point from the right.
    for (int i = 1; i < s.n; ++i) {
        EXPECT_NEAR(s.c(i, 2), cubic_slope(s.tau(i)), 1e-10);
        EXPECT_NEAR(s.c(i, 3), cubic_curvature(s.tau(i)), 1e-10);
        EXPECT_NEAR(s.c(i, 4), 0.75, 1e-10);
    }
    // Outside the points the end pieces go on, which for a cubic is the cubic itself.
    EXPECT_NEAR(cubval(s.n, s.tau, s.c, -4.0), cubic(-4.0), 1e-9);
    EXPECT_NEAR(cubval(s.n, s.tau, s.c, 8.5), cubic(8.5), 1e-9);
}

TEST(spline_not_a_knot, few_points_give_line_and_parabola) {
    sampled two({1.0, 3.0}, [](double x) { return 5.0 - 2.0 * x; });
    cubspl(two.n, two.tau, two.c, 0, 0);
    EXPECT_NEAR(cubval(two.n, two.tau, two.c, 2.2), 5.0 - 4.4, 1e-12);
    EXPECT_NEAR(cubval(two.n, two.tau, two.c, -1.0), 7.0, 1e-12);

    auto parabola = [](double x) { return 1.0 + x - 0.5 * x * x; };
    sampled three({0.0, 1.0, 3.5}, parabola);
    cubspl(three.n, three.tau, three.c, 0, 0);
    for (double x : {-1.0, 0.3, 2.0, 3.5, 5.0})
        EXPECT_NEAR(cubval(three.n, three.tau, three.c, x), parabola(x), 1e-12);

    sampled one({2.0}, [](double) { return 4.5; });
    EXPECT_EQ(cubval(one.n, one.tau, one.c, 10.0), 4.5);
}

TEST(spline_not_a_knot, sampled_sine_within_fourth_order_error) {
    // 21 points over half a period: h = pi/20, the error bound 5/384 h^4 max|f''''| is 8e-6.
    std::vector<double> xs;
    for (int i = 0; i <= 20; ++i) xs.push_back(3.14159265358979 * i / 20.0);
    sampled s(xs, [](double x) { return std::sin(x); });
    cubspl(s.n, s.tau, s.c, 0, 0);
    double worst = 0.0;
    for (double x = 0.0; x <= 3.14159; x += 0.01)
        worst = std::max(worst, std::fabs(cubval(s.n, s.tau, s.c, x) - std::sin(x)));
    EXPECT_LT(worst, 2e-5);
    EXPECT_GT(worst, 0.0);  // it is an approximation, not the function
}

TEST(spline_end_conditions, given_slopes_or_curvatures_reproduce_a_cubic) {
    for (int n : {2, 3, 8}) {
        std::vector<double> xs(uneven.begin(), uneven.begin() + n);
        sampled slope(xs, cubic);
        slope.c(1, 2) = cubic_slope(xs.front());
        slope.c(n, 2) = cubic_slope(xs.back());
        cubspl(n, slope.tau, slope.c, 1, 1);

        sampled mixed(xs, cubic);
        mixed.c(1, 2) = cubic_slope(xs.front());
        mixed.c(n, 2) = cubic_curvature(xs.back());
        cubspl(n, mixed.tau, mixed.c, 1, 2);

        sampled curvature(xs, cubic);
        curvature.c(1, 2) = cubic_curvature(xs.front());
        curvature.c(n, 2) = cubic_curvature(xs.back());
        cubspl(n, curvature.tau, curvature.c, 2, 2);

        for (double x = xs.front(); x <= xs.back(); x += 0.13) {
            EXPECT_NEAR(cubval(n, slope.tau, slope.c, x), cubic(x), 1e-9) << n << " " << x;
            EXPECT_NEAR(cubval(n, mixed.tau, mixed.c, x), cubic(x), 1e-9) << n << " " << x;
            EXPECT_NEAR(cubval(n, curvature.tau, curvature.c, x), cubic(x), 1e-9) << n << " " << x;
        }
    }
}

TEST(spline_not_a_knot, passes_through_every_point_of_noisy_data) {
    std::vector<double> xs;
    for (int i = 0; i < 50; ++i) xs.push_back(i * 1.5 + (i % 3) * 0.2);
    sampled s(xs, [](double x) { return std::fmod(x * 7.3, 5.0) - 2.0; });
    std::vector<double> values;
    for (int i = 1; i <= s.n; ++i) values.push_back(s.c(i, 1));
    cubspl(s.n, s.tau, s.c, 0, 0);
    for (int i = 1; i <= s.n; ++i)
        EXPECT_NEAR(cubval(s.n, s.tau, s.c, s.tau(i)), values[static_cast<std::size_t>(i - 1)],
                    1e-9);
}

}  // namespace
}  // namespace trensil
