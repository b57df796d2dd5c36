#include "io/cubic_spline.h"

#include <algorithm>

namespace trensil {

// Solves for the slopes s(i) at the points by one forward elimination and back substitution of
// the tridiagonal system of slope continuity, the end rows coming from the end conditions; then
// turns value and slope at both ends of each piece into the derivatives at its left end. During
// the solve c(i, 3) holds the step tau(i) - tau(i-1), c(i, 4) the divided difference over it,
// and c(i, 2) the right-hand side, then the slope.
void cubspl(int n, const array1<double>& tau, array2<double>& c, int begin_condition,
            int end_condition) {
    if (n < 2) return;
    const int l = n - 1;
    for (int m = 2; m <= n; ++m) {
        c(m, 3) = tau(m) - tau(m - 1);
        c(m, 4) = (c(m, 1) - c(m - 1, 1)) / c(m, 3);
    }

    // First equation, from the begin condition.
    bool interior_rows = true;
    if (begin_condition == 0) {
        if (n == 2) {
            // Nothing to make not-a-knot with: the slope is that of the chord.
            c(1, 4) = 1.0;
            c(1, 3) = 1.0;
            c(1, 2) = 2.0 * c(2, 4);
            interior_rows = false;
        } else {
            c(1, 4) = c(3, 3);
            c(1, 3) = c(2, 3) + c(3, 3);
            c(1, 2) =
                ((c(2, 3) + 2.0 * c(1, 3)) * c(2, 4) * c(3, 3) + c(2, 3) * c(2, 3) * c(3, 4)) /
                c(1, 3);
        }
    } else if (begin_condition == 1) {
        c(1, 4) = 1.0;
        c(1, 3) = 0.0;
        interior_rows = n > 2;
    } else {
        c(1, 4) = 2.0;
        c(1, 3) = 1.0;
        c(1, 2) = 3.0 * c(2, 4) - c(2, 3) / 2.0 * c(1, 2);
        interior_rows = n > 2;
    }

    // Forward elimination over the interior points; row m then reads
    // c(m, 4) s(m) + c(m, 3) s(m + 1) = c(m, 2).
    if (interior_rows) {
        for (int m = 2; m <= l; ++m) {
            const double g = -c(m + 1, 3) / c(m - 1, 4);
            c(m, 2) = g * c(m - 1, 2) + 3.0 * (c(m, 3) * c(m + 1, 4) + c(m + 1, 3) * c(m, 4));
            c(m, 4) = g * c(m - 1, 3) + 2.0 * (c(m, 3) + c(m + 1, 3));
        }
    }

    // Last equation, from the end condition, and the end of the elimination.
    enum class last_row { slope_given, finish_with_unit, finish_with_g, chord };
    last_row step = last_row::slope_given;
    double g = 0.0;
    if (end_condition == 1) {
        step = last_row::slope_given;
    } else if (end_condition == 0) {
        if (interior_rows && !(n == 3 && begin_condition == 0)) {
            g = c(n - 1, 3) + c(n, 3);
            c(n, 2) = ((c(n, 3) + 2.0 * g) * c(n, 4) * c(n - 1, 3) +
                       c(n, 3) * c(n, 3) * (c(n - 1, 1) - c(n - 2, 1)) / c(n - 1, 3)) /
                      g;
            g = -g / c(n - 1, 4);
            c(n, 4) = c(n - 1, 3);
            step = last_row::finish_with_g;
        } else if (!interior_rows && begin_condition == 0) {
            step = last_row::chord;  // two points, not-a-knot at both ends: a straight line
        } else {
            c(n, 2) = 2.0 * c(n, 4);
            c(n, 4) = 1.0;
            step = last_row::finish_with_unit;
        }
    } else {
        c(n, 2) = 3.0 * c(n, 4) + c(n, 3) / 2.0 * c(n, 2);
        c(n, 4) = 2.0;
        step = last_row::finish_with_unit;
    }
    if (step == last_row::chord) {
        c(n, 2) = c(n, 4);
    } else if (step != last_row::slope_given) {
        if (step == last_row::finish_with_unit) g = -1.0 / c(n - 1, 4);
        c(n, 4) = g * c(n - 1, 3) + c(n, 4);
        c(n, 2) = (g * c(n - 1, 2) + c(n, 2)) / c(n, 4);
    }

    // Back substitution for the slopes.
    for (int j = l; j >= 1; --j) c(j, 2) = (c(j, 2) - c(j, 3) * c(j + 1, 2)) / c(j, 4);

    // Derivatives at the left end of each piece from value and slope at both of its ends.
    for (int i = 2; i <= n; ++i) {
        const double dtau = c(i, 3);
        const double divdf1 = (c(i, 1) - c(i - 1, 1)) / dtau;
        const double divdf3 = c(i - 1, 2) + c(i, 2) - 2.0 * divdf1;
        c(i - 1, 3) = 2.0 * (divdf1 - c(i - 1, 2) - divdf3) / dtau;
        c(i - 1, 4) = (divdf3 / dtau) * (6.0 / dtau);
    }
}

double cubval(int n, const array1<double>& tau, const array2<double>& c, double at) {
    if (n < 2) return n == 1 ? c(1, 1) : 0.0;
    // The piece i with tau(i) <= at < tau(i + 1), held to 1 .. n - 1.
    const double* first = &tau(1);
    const double* past = first + n;
    int i = static_cast<int>(std::upper_bound(first, past, at) - first);
    i = std::clamp(i, 1, n - 1);
    const double h = at - tau(i);
    return c(i, 1) + h * (c(i, 2) + h * (c(i, 3) + h * c(i, 4) / 3.0) / 2.0);
}

}  // namespace trensil
