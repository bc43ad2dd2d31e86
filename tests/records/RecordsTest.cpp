// The exported records as the host's binary sees them: the order of the members, and the point's
// guarded division and plane geometry, which nothing else in the library exercises. Copies and
// moves of region trees are the deep-structure tests' (a hundred thousand levels, a descendant
// assigned to its ancestor).
#include <XKLinkDc/XKLinkDc.h>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <initializer_list>

namespace {

using DataType::_sLinkLine;
using DataType::_sLinkRegion;
using DataType::_sZK;
using DataType::_sZKDC;

constexpr bool Ascending(std::initializer_list<std::size_t> offsets) {
  return std::is_sorted(offsets.begin(), offsets.end()) &&
         std::adjacent_find(offsets.begin(), offsets.end()) == offsets.end();
}

static_assert(sizeof(CXk3DPoint) == 3 * sizeof(double) && offsetof(CXk3DPoint, z) == 16);
// The records hold strings, so offsetof is only conditionally supported; GCC and Clang give the
// layout order, which is what the host relies on.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
static_assert(Ascending({offsetof(_sZKDC, strName), offsetof(_sZKDC, dTopGC),
                         offsetof(_sZKDC, dBotGC), offsetof(_sZKDC, dAux),
                         offsetof(_sZKDC, bAux)}));
static_assert(Ascending({offsetof(_sZK, strName), offsetof(_sZK, dTopGC), offsetof(_sZK, dX),
                         offsetof(_sZK, dY), offsetof(_sZK, vecDC)}));
static_assert(Ascending({offsetof(_sLinkRegion, nType), offsetof(_sLinkRegion, bNamed),
                         offsetof(_sLinkRegion, strName), offsetof(_sLinkRegion, nBegin1),
                         offsetof(_sLinkRegion, nEnd1), offsetof(_sLinkRegion, nBegin2),
                         offsetof(_sLinkRegion, nEnd2), offsetof(_sLinkRegion, ptTop),
                         offsetof(_sLinkRegion, ptBot), offsetof(_sLinkRegion, vecChild)}));
static_assert(Ascending({offsetof(_sLinkLine, pt1), offsetof(_sLinkLine, pt2),
                         offsetof(_sLinkLine, nType), offsetof(_sLinkLine, bBottom),
                         offsetof(_sLinkLine, strUpName), offsetof(_sLinkLine, strDownName)}));
#pragma GCC diagnostic pop

TEST(PointTest, DivisorBelowToleranceIsReplacedByPositiveTenThousandth) {
  const struct {
    double divisor, used;
  } cases[] = {{0.0, 1e-4},  {-0.0, 1e-4},   {-9e-6, 1e-4}, {9.99e-6, 1e-4},
               {1e-5, 1e-5}, {-1e-5, -1e-5}, {-4.0, -4.0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.divisor);
    CXk3DPoint p(1.0, -2.0, 0.5);
    p /= c.divisor;
    for (const CXk3DPoint& v : {CXk3DPoint(1.0, -2.0, 0.5) / c.divisor, p}) {
      EXPECT_EQ(v.x, 1.0 / c.used);
      EXPECT_EQ(v.z, 0.5 / c.used);
    }
  }
}

TEST(PlaneGeometryTest, CircleThroughThreePointsAndPointsInsideIt) {
  const struct {
    double x1, y1, x2, y2, x3, y3;
    int expected;
    double r, cx, cy;
  } circles[] = {
      {0.0, 0.0, 0.0, 2.0, 2.0, 0.0, 1, std::sqrt(2.0), 1.0, 1.0}, // clockwise
      {1010.0, -500.0, 1000.0, -490.0, 990.0, -500.0, 1, 10.0, 1000.0, -500.0},
      {0.0, 0.0, 1.0, 1.0, 2.0, 2.0, 0, 7.0, 8.0, 9.0}, // degenerate: the outputs keep their values
      {0.0, 0.0, 1e-3, 0.0, 0.0, 1e-3, 0, 7.0, 8.0, 9.0}, // cross product 1e-6
  };
  for (const auto& c : circles) {
    SCOPED_TRACE(testing::Message() << c.x1 << "," << c.y1 << " " << c.x2 << "," << c.y2);
    double r = 7.0;
    double cx = 8.0;
    double cy = 9.0;
    EXPECT_EQ(CXk3DPoint::Get_3P_Circle(c.x1, c.y1, c.x2, c.y2, c.x3, c.y3, r, cx, cy), c.expected);
    EXPECT_NEAR(r, c.r, 1e-9);
    EXPECT_NEAR(cx, c.cx, 1e-9);
    EXPECT_NEAR(cy, c.cy, 1e-9);
  }
  EXPECT_EQ(CXk3DPoint::IsPtInCircle(1000.000005, -50.0, 999.0, -50.0, 1.0), 1); // on it
  EXPECT_EQ(CXk3DPoint::IsPtInCircle(1000.00002, -50.0, 999.0, -50.0, 1.0), 0);
  EXPECT_EQ(CXk3DPoint::IsConllinear({}, {1000.0, 0.0, 0.0}, {2000.0, 1e-9, 0.0}), 1);
  EXPECT_EQ(CXk3DPoint::IsConllinear({}, {1000.0, 0.0, 0.0}, {2000.0, 1e-7, 0.0}), 0);
  // The circle through (0, 0), (2, 0), (0, 2), whichever way round: 1 inside, 0 on, -1 outside.
  const double r = std::sqrt(2.0);
  const struct {
    double px, py;
    int expected;
  } in3P[] = {{1.0, 1.0, 1},
              {0.0, 0.0, 0},
              {3.0, 3.0, -1},
              {1.0 + r * (1.0 - 1e-5), 1.0, 1},
              {1.0 + r * (1.0 + 1e-7), 1.0, 0},
              {1.0 + r * (1.0 + 1e-5), 1.0, -1}};
  for (const auto& c : in3P) {
    SCOPED_TRACE(testing::Message() << c.px << "," << c.py);
    EXPECT_EQ(CXk3DPoint::IsPtIn3PCircle(c.px, c.py, 0.0, 0.0, 2.0, 0.0, 0.0, 2.0), c.expected);
    EXPECT_EQ(CXk3DPoint::IsPtIn3PCircle(c.px, c.py, 0.0, 0.0, 0.0, 2.0, 2.0, 0.0), c.expected);
  }
}

} // namespace
