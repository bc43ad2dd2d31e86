// The tolerant three-way comparison: absolute 1e-5, relative 1e-5 below magnitude 1, exact zero
// spared the relative test, and -1 for anything that is not a number.
#include "records/CompareDouble.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

static_assert(std::is_same_v<decltype(xkl::CompareDouble(0.0, 0.0)), int>);

struct CompareCase {
  double a;
  double b;
  int expected;
};

TEST(CompareDoubleTest, AnswersTheTableAndItsMirror) {
  const CompareCase cases[] = {
      // Reference values of the comparison.
      {0.0, 9e-6, 0},
      {1e-6, 2e-6, -1},
      {0.5, 0.500004, 0},
      {0.5, 0.500009, -1},
      {-0.5, -0.500009, 1},
      {0.9999995, 0.999999, 0},
      {1.0, 1.000009, 0},
      {100.0, 100.000009, 0},
      {2.0, 2.00001, -1},
      // Exact zero equals anything within the absolute tolerance, of either sign.
      {0.0, -9.9e-6, 0},
      {1e-6, 0.0, 0},
      {-0.0, 5e-6, 0},
      {0.0, -0.0, 0},
      // 5e-6 apart: equal at magnitude 1 and above, relative test below it.
      {1.5, 1.500005, 0},
      {0.7, 0.700005, 0},
      {0.3, 0.300005, -1},
      {1.0, 0.999995, 0}, // larger magnitude exactly 1: no relative test
      {-1.5, -1.500005, 0},
      // Outside the tolerance.
      {1000.0, 1000.00002, -1},
      {-3.0, 4.0, -1},
      {1e300, -1e300, 1},
      {kInf, 1e300, 1},
      {-kInf, kInf, -1},
      {5e-7, -5e-7, 1}, // 1e-6 apart, relative difference 2
  };
  for (const CompareCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.a << " vs " << c.b);
    EXPECT_EQ(xkl::CompareDouble(c.a, c.b), c.expected);
    EXPECT_EQ(xkl::CompareDouble(c.b, c.a), -c.expected);
  }
}

TEST(CompareDoubleTest, EveryNumberEqualsItself) {
  const double values[] = {0.0,   -0.0, 1e-300, -1e-300, std::numeric_limits<double>::denorm_min(),
                           0.3,   1.0,  -7.25,  1e15,    std::numeric_limits<double>::max(),
                           -kInf, kInf};
  for (double x : values) {
    SCOPED_TRACE(x);
    EXPECT_EQ(xkl::CompareDouble(x, x), 0);
  }
}

TEST(CompareDoubleTest, NotANumberIsLessBothWaysRound) {
  const double others[] = {0.0, 1.0, -1.0, 1e-6, kInf, -kInf, kNaN};
  for (double x : others) {
    SCOPED_TRACE(x);
    EXPECT_EQ(xkl::CompareDouble(kNaN, x), -1);
    EXPECT_EQ(xkl::CompareDouble(x, kNaN), -1);
  }
}

} // namespace
