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
        for (int i = 1; i <= n; ++i) c(i, 1) = f(tau(i) = xs[static_cast<std::size_t>(i - 1)]);
    }
    double operator()(double x) const { return cubval(n, tau, c, x); }
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

TEST(spline_not_a_knot, reproduces_a_cubic_and_its_derivatives) {
    sampled s(uneven, cubic);
    cubspl(s.n, s.tau, s.c, 0, 0);
    // Outside the points the end pieces go on, which for a cubic is the cubic itself.
    for (double x = -4.0; x <= 8.5; x += 0.37) EXPECT_NEAR(s(x), cubic(x), 1e-9) << x;
    for (int i = 1; i < s.n; ++i) {
        EXPECT_NEAR(s.c(i, 2), cubic_slope(s.tau(i)), 1e-10);
        EXPECT_NEAR(s.c(i, 3), cubic_curvature(s.tau(i)), 1e-10);
        EXPECT_NEAR(s.c(i, 4), 0.75, 1e-10);
    }
}

TEST(spline_not_a_knot, few_points_and_a_sampled_sine) {
    sampled two({1.0, 3.0}, [](double x) { return 5.0 - 2.0 * x; });
    cubspl(two.n, two.tau, two.c, 0, 0);
    EXPECT_NEAR(two(-1.0), 7.0, 1e-12);
    auto parabola = [](double x) { return 1.0 + x - 0.5 * x * x; };
    sampled three({0.0, 1.0, 3.5}, parabola);
    cubspl(three.n, three.tau, three.c, 0, 0);
    for (double x : {-1.0, 0.3, 2.0, 5.0}) EXPECT_NEAR(three(x), parabola(x), 1e-12);

    // 21 points over half a period: h = pi/20, the bound 5/384 h^4 max|f''''| is 8e-6.
    std::vector<double> xs;
    for (int i = 0; i <= 20; ++i) xs.push_back(3.14159265358979 * i / 20.0);
    sampled s(xs, [](double x) { return std::sin(x); });
    cubspl(s.n, s.tau, s.c, 0, 0);
    for (double x = 0.0; x <= 3.14159; x += 0.01) EXPECT_NEAR(s(x), std::sin(x), 2e-5);
}

TEST(spline_end_conditions, given_slopes_or_curvatures_reproduce_a_cubic) {
    // Slope (1) or second derivative (2) at an end, given in c(1, 2) and c(n, 2).
    for (int n : {2, 3, 8}) {
        const std::vector<double> xs(uneven.begin(), uneven.begin() + n);
        for (int begin : {1, 2}) {
            for (int end : {1, 2}) {
                sampled s(xs, cubic);
                s.c(1, 2) = begin == 1 ? cubic_slope(xs.front()) : cubic_curvature(xs.front());
                s.c(n, 2) = end == 1 ? cubic_slope(xs.back()) : cubic_curvature(xs.back());
                cubspl(n, s.tau, s.c, begin, end);
                for (double x = xs.front(); x <= xs.back(); x += 0.13)
                    EXPECT_NEAR(s(x), cubic(x), 1e-9) << n << begin << end << " at " << x;
            }
        }
    }
}

}  // namespace
}  // namespace trensil
