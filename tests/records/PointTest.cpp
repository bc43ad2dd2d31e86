// The exported point: both precisions, arithmetic with copies returned from the compound
// operators, the guarded divisor, tolerant comparison, distances and the plane-geometry tests.
#include <XKLinkDc/XKLinkDc.h>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The host reads these results as int: a bool would leave the upper bytes of the register unset.
static_assert(std::is_same_v<decltype(CXk3DPoint() == CXk3DPoint()), int> &&
              std::is_same_v<decltype(CXk3DPoint() != CXk3DPoint()), int> &&
              std::is_same_v<decltype(CXk3DPoint::IsConllinear({}, {}, {})), int>);

void ExpectExact(const CXk3DPoint& p, double x, double y, double z) {
  EXPECT_EQ(p.x, x);
  EXPECT_EQ(p.y, y);
  EXPECT_EQ(p.z, z);
}

TEST(PointTest, BothPrecisionsKeepTheCoordinatesInOrder) {
  CXk3DPoint p(0.5f, -2.0f, 0.1f); // widened: the double nearest to 0.1f, not 0.1
  ExpectExact(p, 0.5, -2.0, 0.100000001490116119384765625);
  p.Set(0.1, 16777217.0, 1e-60);
  double d[3] = {};
  p.Get(d[0], d[1], d[2]);
  ExpectExact({d[0], d[1], d[2]}, 0.1, 16777217.0, 1e-60);
  float f[3] = {9.0f, 9.0f, 9.0f};
  p.Get(f[0], f[1], f[2]);
  p.Set(f[1], f[0], f[2]);
  ExpectExact(p, 16777216.0, 0.1f, 0.0);
}

TEST(PointTest, ArithmeticLeavesOperandsAndCompoundOperatorsReturnCopies) {
  const CXk3DPoint a(1.0, -2.0, 0.5);
  const CXk3DPoint b(0.25, 4.0, -3.0);
  ExpectExact(a + b, 1.25, 2.0, -2.5);
  ExpectExact(b - a, -0.75, 6.0, -3.5);
  ExpectExact(a * -2.0, -2.0, 4.0, -1.0);
  CXk3DPoint p = a;
  ExpectExact(-p, -1.0, 2.0, -0.5);
  ExpectExact(p, 1.0, -2.0, 0.5);
  // Each compound operator changes p and hands back a copy: writing through it leaves p alone.
  ExpectExact(p += b, 1.25, 2.0, -2.5);
  (p -= b) = CXk3DPoint(99.0, 99.0, 99.0);
  ExpectExact(p, 1.0, -2.0, 0.5);
  (p *= 4.0).Set(99.0, 99.0, 99.0);
  ExpectExact(p, 4.0, -8.0, 2.0);
  (p /= 2.0).Set(99.0, 99.0, 99.0);
  ExpectExact(p, 2.0, -4.0, 1.0);
  (p += b) = CXk3DPoint(99.0, 99.0, 99.0);
  ExpectExact(p, 2.25, 0.0, -2.0);
  EXPECT_EQ(CXk3DPoint(1.0, 2.0, 3.0).Dist2(CXk3DPoint(4.0, 6.0, 15.0)), 169.0);
  EXPECT_EQ(CXk3DPoint(4.0, 6.0, 15.0).Distance(CXk3DPoint(1.0, 2.0, 3.0)), 13.0);
}

TEST(PointTest, DivisorBelowToleranceIsReplacedByPositiveTenThousandth) {
  const struct {
    double divisor, used;
  } cases[] = {{0.0, 1e-4},  {-0.0, 1e-4},   {-9e-6, 1e-4}, {9.99e-6, 1e-4},
               {1e-5, 1e-5}, {-1e-5, -1e-5}, {-4.0, -4.0},  {kNaN, kNaN}};
  const CXk3DPoint a(1.0, -2.0, 0.5);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.divisor);
    CXk3DPoint p = a;
    p /= c.divisor;
    for (const CXk3DPoint& v : {a / c.divisor, p}) {
      EXPECT_EQ(std::isnan(v.x) && std::isnan(v.y) && std::isnan(v.z), std::isnan(c.used));
      if (!std::isnan(c.used)) {
        ExpectExact(v, 1.0 / c.used, -2.0 / c.used, 0.5 / c.used);
      }
    }
  }
}

TEST(PointTest, EqualityIsTolerantInEveryCoordinate) {
  const struct {
    CXk3DPoint p, q;
    int equal;
  } cases[] = {
      {{1.5, 2.0, 0.7}, {1.500005, 2.0, 0.700005}, 1}, {{1.0, 2.0, 3.0}, {1.00002, 2.0, 3.0}, 0},
      {{1.0, 2.0, 3.0}, {1.0, 2.00002, 3.0}, 0},       {{1.0, 2.0, 3.0}, {1.0, 2.0, 2.99998}, 0},
      {{1.0, 2.0, 0.3}, {1.0, 2.0, 0.300005}, 0},      {{1.0, 2.0, kNaN}, {1.0, 2.0, kNaN}, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.q.x << "," << c.q.y << "," << c.q.z);
    EXPECT_EQ(c.p == c.q, c.equal);
    EXPECT_EQ(c.q == c.p, c.equal);
    EXPECT_EQ(c.p != c.q, 1 - c.equal);
    EXPECT_EQ(c.q != c.p, 1 - c.equal);
  }
}

// Repeated points, and cross products of the edges shorter than 1e-5 (not normalised by their
// length): 1e-6 between 1000 m edges is collinear, 1e-4 is not.
TEST(PlaneGeometryTest, IsConllinearOnRepeatsAndShortCrossProducts) {
  const struct {
    CXk3DPoint p2, p3; // p1 is the origin
    int expected;
  } cases[] = {
      {{0.0, 0.0, 0.0}, {5.0, 1.0, 0.0}, 1},        {{5.0, 1.0, 0.0}, {0.0, 0.0, 0.0}, 1},
      {{5e-6, 0.0, 0.0}, {0.0, 100.0, 0.0}, 1},     {{1.0, 1.0, 1.0}, {-2.0, -2.0, -2.0}, 1},
      {{0.0, 0.0, 1.0}, {1.0, 0.0, 0.0}, 0},        {{1e-3, 0.0, 0.0}, {0.0, 1e-3, 0.0}, 1},
      {{1000.0, 0.0, 0.0}, {2000.0, 1e-9, 0.0}, 1}, {{1000.0, 0.0, 0.0}, {2000.0, 1e-7, 0.0}, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.p2.x << "," << c.p2.y << " " << c.p3.x << "," << c.p3.y);
    EXPECT_EQ(CXk3DPoint::IsConllinear({}, c.p2, c.p3), c.expected);
  }
}

TEST(PlaneGeometryTest, CircleThroughThreePoints) {
  const double s2 = std::sqrt(2.0);
  const struct {
    double x1, y1, x2, y2, x3, y3;
    int expected;
    double r, cx, cy;
  } cases[] = {
      {0.0, 0.0, 2.0, 0.0, 0.0, 2.0, 1, s2, 1.0, 1.0},
      {0.0, 0.0, 0.0, 2.0, 2.0, 0.0, 1, s2, 1.0, 1.0}, // clockwise
      {1010.0, -500.0, 1000.0, -490.0, 990.0, -500.0, 1, 10.0, 1000.0, -500.0},
      // Degenerate: the outputs keep what they held.
      {0.0, 0.0, 1.0, 1.0, 2.0, 2.0, 0, 7.0, 8.0, 9.0},
      {3.0, 4.0, 0.0, 1.0, 3.0, 4.0, 0, 7.0, 8.0, 9.0},
      {0.0, 0.0, 1e-3, 0.0, 0.0, 1e-3, 0, 7.0, 8.0, 9.0}, // cross product 1e-6
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.x1 << "," << c.y1 << " " << c.x2 << "," << c.y2);
    double r = 7.0;
    double cx = 8.0;
    double cy = 9.0;
    EXPECT_EQ(CXk3DPoint::Get_3P_Circle(c.x1, c.y1, c.x2, c.y2, c.x3, c.y3, r, cx, cy), c.expected);
    EXPECT_NEAR(r, c.r, 1e-9);
    EXPECT_NEAR(cx, c.cx, 1e-9);
    EXPECT_NEAR(cy, c.cy, 1e-9);
  }
  // Centre (4, 1.875), radius 3.125. Hosts pass one variable twice: the centre is written x then
  // y, the radius last.
  double shared = 0.0;
  double other = 0.0;
  ASSERT_EQ(CXk3DPoint::Get_3P_Circle(1.0, 1.0, 4.0, 5.0, 7.0, 1.0, shared, shared, other), 1);
  EXPECT_DOUBLE_EQ(shared, 3.125);
  EXPECT_DOUBLE_EQ(other, 1.875);
  ASSERT_EQ(CXk3DPoint::Get_3P_Circle(1.0, 1.0, 4.0, 5.0, 7.0, 1.0, other, shared, shared), 1);
  EXPECT_DOUBLE_EQ(shared, 1.875);
}

TEST(PlaneGeometryTest, IsPtInCircleAndIsPtIn3PCircle) {
  const struct {
    double x, y, r;
    int expected;
  } inCircle[] = {{0.6, -0.8, 1.0, 1}, {1.000005, 0.0, 1.0, 1}, {1.00002, 0.0, 1.0, 0},
                  {0.0, 0.0, -1.0, 0}, {kNaN, 0.0, 1.0, 0},     {0.0, 0.0, kNaN, 0}};
  for (const auto& c : inCircle) {
    SCOPED_TRACE(testing::Message() << c.x << "," << c.y << " r " << c.r);
    EXPECT_EQ(CXk3DPoint::IsPtInCircle(c.x + 1000.0, c.y - 50.0, 1000.0, -50.0, c.r), c.expected);
  }
  // The circle through (0, 0), (2, 0), (0, 2): centre (1, 1), radius sqrt 2, whichever way round.
  // Just outside it, the determinant is about 1.6e-6 (on the circle) or 1.6e-4 (outside).
  const double r = std::sqrt(2.0);
  const struct {
    double px, py;
    int expected;
  } in3P[] = {{1.0, 1.0, 1},
              {2.0, 2.0, 0},
              {0.0, 0.0, 0},
              {3.0, 3.0, -1},
              {1.0 + r * (1.0 - 1e-5), 1.0, 1},
              {1.0 + r * (1.0 + 1e-7), 1.0, 0},
              {1.0 + r * (1.0 + 1e-5), 1.0, -1}};
  for (const auto& c : in3P) {
    SCOPED_TRACE(testing::Message() << c.px << "," << c.py);
    EXPECT_EQ(CXk3DPoint::IsPtIn3PCircle(c.px, c.py, 0.0, 0.0, 2.0, 0.0, 0.0, 2.0), c.expected);
    EXPECT_EQ(CXk3DPoint::IsPtIn3PCircle(c.px, c.py, 0.0, 0.0, 0.0, 2.0, 2.0, 0.0), c.expected);
    EXPECT_EQ(CXk3DPoint::IsPtIn3PCircle(c.px, c.py, 2.0, 0.0, 0.0, 2.0, 0.0, 0.0), c.expected);
  }
  // No circle through collinear points, nor through a triangle of twice the area 1e-6: outside.
  EXPECT_EQ(CXk3DPoint::IsPtIn3PCircle(1.0, 1e-7, 0.0, 0.0, 1.0, 1.0, 2.0, 2.0), -1);
  EXPECT_EQ(CXk3DPoint::IsPtIn3PCircle(1.0, 1e-7, 0.0, 0.0, 1.0, 0.0, 2.0, 1e-6), -1);
}

} // namespace
