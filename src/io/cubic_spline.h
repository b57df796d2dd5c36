// Cubic spline interpolation through points with growing abscissae: coefficients once, then
// values anywhere (de Boor, A Practical Guide to Splines, 1978, routines of the same form).
//
//   array1<double> tau(1, n);            // growing abscissae
//   array2<double> c(1, n, 1, 4);        // c(i, 1) = value at tau(i)
//   cubspl(n, tau, c, 0, 0);             // not-a-knot at both ends
//   double v = cubval(n, tau, c, 12.5);
#pragma once

#include "support/bounded_array.h"

namespace trensil {

// Turns the values in c(1..n, 1) into the coefficients of the cubic spline through (tau(i),
// c(i, 1)): afterwards c(i, 2), c(i, 3), c(i, 4) are the first, second and third derivative at
// tau(i) from the right. An end condition of 0 is not-a-knot, 1 a given slope and 2 a given
// second derivative, the value given in c(1, 2) for the first point or c(n, 2) for the last.
// Two points give the straight line, three with both conditions 0 the parabola. `c` must have
// rows 1..n and columns 1..4.
void cubspl(int n, const array1<double>& tau, array2<double>& c, int begin_condition,
            int end_condition);

// The spline's value at `at`; outside tau(1)..tau(n) the end pieces are extended. n of 1 gives
// the single value.
double cubval(int n, const array1<double>& tau, const array2<double>& c, double at);

}  // namespace trensil
