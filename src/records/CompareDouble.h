// The tolerant three-way comparison behind every equality test of coordinates and elevations.
#pragma once

#include <cmath>

namespace xkl {

// The one tolerance of the library: for equality of coordinates and elevations, and as the
// threshold of every geometric test (lens geometry, the point's plane tests, its guarded divisor).
inline constexpr double kTolerance = 1e-5;

// 0 when a and b are equal within 1e-5 (relative to the larger magnitude when both are below 1),
// 1 when a is greater, -1 when a is less or either is not a number.
//
// Survey coordinates and elevations carry centimetre or millimetre precision; 1e-5 absorbs the
// rounding of values that went through text or single precision without merging real boundaries.
// Below magnitude 1 the absolute test alone would equate values that differ by their whole size,
// so the difference must also be small relative to the larger one; an exact zero is spared the
// relative test, since nothing is small relative to zero.
inline int CompareDouble(double a, double b) {
  if (a == b) {
    return 0;
  }
  const double d = a - b;
  if (std::fabs(d) < kTolerance) {
    if (a == 0.0 || b == 0.0) {
      return 0;
    }
    const double fa = std::fabs(a);
    const double fb = std::fabs(b);
    const double m = fa > fb ? fa : fb;
    if (!(m < 1.0)) {
      return 0;
    }
    if (std::fabs(d / m) < kTolerance) {
      return 0;
    }
  }
  return a > b ? 1 : -1;
}

} // namespace xkl
