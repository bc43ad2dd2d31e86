// The tolerant three-way comparison behind every coordinate and elevation test: absolute 1e-5,
// relative 1e-5 as well below magnitude 1, exact zero spared the relative test, -1 for NaN.
#include "records/CompareDouble.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(CompareDoubleTest, AnswersTheTableAndItsMirror) {
  const struct {
    double a, b;
    int expected;
  } cases[] = {
      {0.0, -9.9e-6, 0},  {-0.0, 5e-6, 0},      {0.0, -0.0, 0}, // zero: the absolute test only
      {1e-6, 2e-6, -1},   {5e-7, -5e-7, 1}, // tiny, but far apart relative to their size
      {0.5, 0.500004, 0}, {0.3, 0.300005, -1},  {-0.5, -0.500009, 1},   {0.9999995, 0.999999, 0},
      {1.0, 0.999995, 0}, {-1.5, -1.500005, 0}, {100.0, 100.000009, 0}, // from 1 up: absolute
      {2.0, 2.00001, -1}, {1e300, -1e300, 1},   {kInf, 1e300, 1},       {-kInf, kInf, -1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.a << " vs " << c.b);
    EXPECT_EQ(xkl::CompareDouble(c.a, c.b), c.expected);
    EXPECT_EQ(xkl::CompareDouble(c.b, c.a), -c.expected);
  }
}

TEST(CompareDoubleTest, EveryNumberEqualsItselfAndNaNIsLessBothWaysRound) {
  for (const double x : {0.0, -0.0, 1e-300, std::numeric_limits<double>::denorm_min(), 0.3, -7.25,
                         std::numeric_limits<double>::max(), -kInf, kInf}) {
    SCOPED_TRACE(x);
    EXPECT_EQ(xkl::CompareDouble(x, x), 0);
    EXPECT_EQ(xkl::CompareDouble(kNaN, x), -1);
    EXPECT_EQ(xkl::CompareDouble(x, kNaN), -1);
  }
  EXPECT_EQ(xkl::CompareDouble(kNaN, kNaN), -1);
}

} // namespace
