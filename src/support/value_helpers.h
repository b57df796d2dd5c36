// Small value helpers shared by the readers, the writer and the views.
//
//   yes_no_text(-1) == "Yes";  log10_of(-1000.0) == 3.0f;  greater_of(2, 3.5) == 3.5
#pragma once

#include <string>
#include <type_traits>

namespace trensil {

// "Yes" for a non-zero flag, "No" for 0.
std::string yes_no_text(long flag);

// Base-10 logarithm of |x|, as ln |x| / ln 10 rounded to single precision; 0 when x is 0.
float log10_of(double x);

// The larger and the smaller of two numbers, in their common type. When the two compare equal
// (or either is NaN) the second is returned.
template <class A, class B>
std::common_type_t<A, B> greater_of(A a, B b) {
    using T = std::common_type_t<A, B>;
    return static_cast<T>(a) > static_cast<T>(b) ? static_cast<T>(a) : static_cast<T>(b);
}

template <class A, class B>
std::common_type_t<A, B> lesser_of(A a, B b) {
    using T = std::common_type_t<A, B>;
    return static_cast<T>(a) < static_cast<T>(b) ? static_cast<T>(a) : static_cast<T>(b);
}

}  // namespace trensil
