// The exported point: construction and access in both precisions, arithmetic with copies returned
// from the compound operators, the guarded divisor, tolerant comparisons, distances, and the
// static plane-geometry tests.
#include <XKLinkDc/XKLinkDc.h>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>
#include <utility>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The host's binary interface: results are int and the compound operators return copies.
static_assert(std::is_same_v<decltype(std::declval<CXk3DPoint&>() += CXk3DPoint()), CXk3DPoint>);
static_assert(std::is_same_v<decltype(std::declval<CXk3DPoint&>() -= CXk3DPoint()), CXk3DPoint>);
static_assert(std::is_same_v<decltype(std::declval<CXk3DPoint&>() *= 1.0), CXk3DPoint>);
static_assert(std::is_same_v<decltype(std::declval<CXk3DPoint&>() /= 1.0), CXk3DPoint>);
static_assert(std::is_same_v<decltype(std::declval<CXk3DPoint&>() = CXk3DPoint()), CXk3DPoint&>);
static_assert(std::is_same_v<decltype(CXk3DPoint() == CXk3DPoint()), int>);
static_assert(std::is_same_v<decltype(CXk3DPoint() != CXk3DPoint()), int>);
static_assert(std::is_same_v<decltype(CXk3DPoint::IsConllinear({}, {}, {})), int>);
// Negation and the accessors are non-const members; there is no scalar-times-point form.
template <class P>
concept Negatable = requires(P p) {
  -p;
};
template <class P>
concept Readable = requires(P p, double& d) {
  p.Get(d, d, d);
};
template <class P>
concept ScalableFromLeft = requires(P p) {
  2.0 * p;
};
static_assert(Negatable<CXk3DPoint&> && !Negatable<const CXk3DPoint&>);
static_assert(Readable<CXk3DPoint&> && !Readable<const CXk3DPoint&>);
static_assert(!ScalableFromLeft<const CXk3DPoint&>);

void ExpectExact(const CXk3DPoint& p, double x, double y, double z) {
  EXPECT_EQ(p.x, x);
  EXPECT_EQ(p.y, y);
  EXPECT_EQ(p.z, z);
}

TEST(PointTest, ConstructionAndAccessInBothPrecisions) {
  ExpectExact(CXk3DPoint(), 0.0, 0.0, 0.0);
  ExpectExact(CXk3DPoint(0.1, -2.5e7, 1e-300), 0.1, -2.5e7, 1e-300);
  // Floats are widened: the double nearest to 0.1f, not 0.1.
  const CXk3DPoint wide(0.1f, -0.3f, 16777216.0f);
  ExpectExact(wide, 0.100000001490116119384765625, -0.300000011920928955078125, 16777216.0);
  ExpectExact(CXk3DPoint(wide), wide.x, wide.y, wide.z);

  CXk3DPoint p;
  p.Set(0.1f, 2.0f, -0.5f);
  ExpectExact(p, 0.100000001490116119384765625, 2.0, -0.5);
  p.Set(0.1, 16777217.0, 1e-60);
  ExpectExact(p, 0.1, 16777217.0, 1e-60);
  // Narrowing rounds to nearest (16777217 is a tie, to even) and underflows to zero.
  float fx = 9.0f;
  float fy = 9.0f;
  float fz = 9.0f;
  p.Get(fx, fy, fz);
  EXPECT_EQ(fx, 0.1f);
  EXPECT_EQ(fy, 16777216.0f);
  EXPECT_EQ(fz, 0.0f);
  double dx = 0.0;
  double dy = 0.0;
  double dz = 0.0;
  p.Get(dx, dy, dz);
  EXPECT_EQ(dx, 0.1);
  EXPECT_EQ(dy, 16777217.0);
  EXPECT_EQ(dz, 1e-60);
}

TEST(PointTest, AssignmentCopiesAndSurvivesSelfAssignment) {
  CXk3DPoint p(1.0, 2.0, 3.0);
  const CXk3DPoint q(-4.0, 5.5, 6.25);
  EXPECT_EQ(&(p = q), &p);
  ExpectExact(p, -4.0, 5.5, 6.25);
  CXk3DPoint& alias = p;
  EXPECT_EQ(&(p = alias), &p);
  ExpectExact(p, -4.0, 5.5, 6.25);
}

TEST(PointTest, ArithmeticLeavesOperandsAndReturnsCopies) {
  const CXk3DPoint a(1.0, -2.0, 0.5);
  const CXk3DPoint b(0.25, 4.0, -3.0);
  ExpectExact(a + b, 1.25, 2.0, -2.5);
  ExpectExact(a - b, 0.75, -6.0, 3.5);
  ExpectExact(b - a, -0.75, 6.0, -3.5);
  ExpectExact(a * -2.0, -2.0, 4.0, -1.0);
  ExpectExact(a, 1.0, -2.0, 0.5);

  CXk3DPoint n(1.0, -2.0, 0.5);
  ExpectExact(-n, -1.0, 2.0, -0.5);
  ExpectExact(n, 1.0, -2.0, 0.5); // negation leaves the point

  CXk3DPoint p = a;
  const CXk3DPoint sum = (p += b);
  ExpectExact(p, 1.25, 2.0, -2.5);
  ExpectExact(sum, 1.25, 2.0, -2.5);
  // Each compound operator hands back a copy: writing through it leaves p as it is.
  (p -= b) = CXk3DPoint(99.0, 99.0, 99.0);
  ExpectExact(p, 1.0, -2.0, 0.5);
  (p *= 4.0).Set(99.0, 99.0, 99.0);
  ExpectExact(p, 4.0, -8.0, 2.0);
  (p /= 2.0).Set(99.0f, 99.0f, 99.0f);
  ExpectExact(p, 2.0, -4.0, 1.0);
  (p += b) = CXk3DPoint(99.0, 99.0, 99.0);
  ExpectExact(p, 2.25, 0.0, -2.0);
}

TEST(PointTest, DivisorBelowToleranceIsReplacedByPositiveTenThousandth) {
  struct Case {
    double divisor;
    double used;
  };
  const Case cases[] = {{0.0, 1e-4},   {-0.0, 1e-4},    {9e-6, 1e-4}, {-9e-6, 1e-4},
                        {-1e-6, 1e-4}, {9.99e-6, 1e-4}, {1e-5, 1e-5}, {-1e-5, -1e-5},
                        {2.0, 2.0},    {-4.0, -4.0},    {kNaN, kNaN}};
  const CXk3DPoint a(1.0, -2.0, 0.5);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.divisor);
    const CXk3DPoint q = a / c.divisor;
    CXk3DPoint p = a;
    const CXk3DPoint r = (p /= c.divisor);
    for (const CXk3DPoint& v : {q, p, r}) {
      if (std::isnan(c.used)) {
        EXPECT_TRUE(std::isnan(v.x) && std::isnan(v.y) && std::isnan(v.z));
      } else {
        EXPECT_DOUBLE_EQ(v.x, 1.0 / c.used);
        EXPECT_DOUBLE_EQ(v.y, -2.0 / c.used);
        EXPECT_DOUBLE_EQ(v.z, 0.5 / c.used);
      }
    }
  }
}

TEST(PointTest, ComparisonIsTolerantCoordinateByCoordinate) {
  struct Case {
    CXk3DPoint p;
    CXk3DPoint q;
    int equal;
  };
  const Case cases[] = {
      {{1.5, 2.0, 3.0}, {1.500005, 2.0, 3.0}, 1}, {{1.0, 0.7, 3.0}, {1.0, 0.700005, 3.0}, 1},
      {{1.0, 2.0, 0.3}, {1.0, 2.0, 0.300005}, 0}, {{0.0, 0.0, 0.0}, {9e-6, -9e-6, 9.9e-6}, 1},
      {{1.0, 2.0, 3.0}, {1.00002, 2.0, 3.0}, 0},  {{1.0, 2.0, 3.0}, {1.0, 2.00002, 3.0}, 0},
      {{1.0, 2.0, 3.0}, {1.0, 2.0, 2.99998}, 0},  {{1.0, 2.0, kNaN}, {1.0, 2.0, kNaN}, 0},
      {{kNaN, 2.0, 3.0}, {1.0, 2.0, 3.0}, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.p.x << "," << c.p.y << "," << c.p.z << " vs " << c.q.x
                                    << "," << c.q.y << "," << c.q.z);
    EXPECT_EQ(c.p == c.q, c.equal);
    EXPECT_EQ(c.q == c.p, c.equal);
    EXPECT_EQ(c.p != c.q, 1 - c.equal);
    EXPECT_EQ(c.q != c.p, 1 - c.equal);
  }
}

TEST(PointTest, Distances) {
  const CXk3DPoint a(1.0, 2.0, 3.0);
  const CXk3DPoint b(4.0, 6.0, 15.0);
  EXPECT_EQ(a.Dist2(b), 169.0);
  EXPECT_EQ(b.Dist2(a), 169.0);
  EXPECT_EQ(a.Distance(b), 13.0);
  EXPECT_EQ(a.Distance(a), 0.0);
  EXPECT_DOUBLE_EQ(CXk3DPoint(-1.0, -1.0, 0.0).Distance(CXk3DPoint(1.0, 1.0, 0.0)), std::sqrt(8.0));
}

TEST(PlaneGeometryTest, IsConllinear) {
  struct Case {
    CXk3DPoint p1;
    CXk3DPoint p2;
    CXk3DPoint p3;
    int expected;
  };
  const Case cases[] = {
      {{1.0, 1.0, 1.0}, {1.0, 1.0, 1.0}, {1.0, 1.0, 1.0}, 1},
      {{0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {5.0, 1.0, 0.0}, 1},    // p2 repeats p1
      {{0.0, 0.0, 0.0}, {5.0, 1.0, 0.0}, {0.0, 0.0, 0.0}, 1},    // p3 repeats p1
      {{0.0, 0.0, 0.0}, {5.0, 1.0, 0.0}, {5.0, 1.0, 0.0}, 1},    // p3 repeats p2
      {{0.0, 0.0, 0.0}, {5e-6, 0.0, 0.0}, {0.0, 100.0, 0.0}, 1}, // p2 within 1e-5 of p1
      {{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}, {-2.0, -2.0, -2.0}, 1},
      {{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, 0},
      {{0.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 0.0, 0.0}, 0},        // off the line in x only
      {{0.0, 0.0, 0.0}, {1000.0, 0.0, 0.0}, {2000.0, 1e-9, 0.0}, 1}, // |u x v| = 1e-6
      {{0.0, 0.0, 0.0}, {1000.0, 0.0, 0.0}, {2000.0, 1e-7, 0.0}, 0}, // |u x v| = 1e-4
      {{0.0, 0.0, 0.0}, {1e-3, 0.0, 0.0}, {0.0, 1e-3, 0.0}, 1},      // absolute, not normalised
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "p2 " << c.p2.x << "," << c.p2.y << " p3 " << c.p3.x << ","
                                    << c.p3.y << "," << c.p3.z);
    EXPECT_EQ(CXk3DPoint::IsConllinear(c.p1, c.p2, c.p3), c.expected);
  }
}

TEST(PlaneGeometryTest, CircleThroughThreePoints) {
  struct Case {
    double x1, y1, x2, y2, x3, y3;
    int expected;
    double r, cx, cy;
  };
  const double s2 = std::sqrt(2.0);
  const Case cases[] = {
      {0.0, 0.0, 2.0, 0.0, 0.0, 2.0, 1, s2, 1.0, 1.0},
      {0.0, 0.0, 0.0, 2.0, 2.0, 0.0, 1, s2, 1.0, 1.0}, // clockwise
      {1.0, 1.0, 4.0, 5.0, 7.0, 1.0, 1, 3.125, 4.0, 1.875},
      {1010.0, -500.0, 1000.0, -490.0, 990.0, -500.0, 1, 10.0, 1000.0, -500.0},
      // Degenerate: the outputs keep what they held.
      {0.0, 0.0, 1.0, 1.0, 2.0, 2.0, 0, 7.0, 8.0, 9.0},
      {3.0, 4.0, 3.0, 4.0, 0.0, 1.0, 0, 7.0, 8.0, 9.0},
      {3.0, 4.0, 0.0, 1.0, 3.0, 4.0, 0, 7.0, 8.0, 9.0},
      {0.0, 0.0, 3.0, 4.0, 3.0, 4.0, 0, 7.0, 8.0, 9.0},
      {0.0, 0.0, 5e-6, 0.0, 0.0, 1.0, 0, 7.0, 8.0, 9.0},
      {0.0, 0.0, 1e-3, 0.0, 0.0, 1e-3, 0, 7.0, 8.0, 9.0}, // cross product 1e-6
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "(" << c.x1 << "," << c.y1 << ") (" << c.x2 << "," << c.y2
                                    << ") (" << c.x3 << "," << c.y3 << ")");
    double r = 7.0;
    double cx = 8.0;
    double cy = 9.0;
    EXPECT_EQ(CXk3DPoint::Get_3P_Circle(c.x1, c.y1, c.x2, c.y2, c.x3, c.y3, r, cx, cy), c.expected);
    EXPECT_NEAR(r, c.r, 1e-9);
    EXPECT_NEAR(cx, c.cx, 1e-9);
    EXPECT_NEAR(cy, c.cy, 1e-9);
  }
}

TEST(PlaneGeometryTest, CircleOutputsAreWrittenCentreXThenYThenRadius) {
  double shared = 0.0;
  double cy = 0.0;
  ASSERT_EQ(CXk3DPoint::Get_3P_Circle(1.0, 1.0, 4.0, 5.0, 7.0, 1.0, shared, shared, cy), 1);
  EXPECT_DOUBLE_EQ(shared, 3.125);
  EXPECT_DOUBLE_EQ(cy, 1.875);
  double r = 0.0;
  ASSERT_EQ(CXk3DPoint::Get_3P_Circle(1.0, 1.0, 4.0, 5.0, 7.0, 1.0, r, shared, shared), 1);
  EXPECT_DOUBLE_EQ(shared, 1.875);
}

TEST(PlaneGeometryTest, IsPtInCircle) {
  struct Case {
    double x, y, cx, cy, r;
    int expected;
  };
  const Case cases[] = {
      {0.0, 0.0, 0.0, 0.0, 1.0, 1},
      {0.6, -0.8, 0.0, 0.0, 1.0, 1},     // on the circle
      {1.000005, 0.0, 0.0, 0.0, 1.0, 1}, // 5e-6 outside
      {1.00002, 0.0, 0.0, 0.0, 1.0, 0},
      {2.0, 2.0, 0.0, 0.0, 1.0, 0},
      {1050.000005, 2000.0, 1000.0, 2000.0, 50.0, 1},
      {1000.0, 2050.00002, 1000.0, 2000.0, 50.0, 0},
      {0.0, 0.0, 0.0, 0.0, -1.0, 0}, // a negative radius holds nothing
      {kNaN, 0.0, 0.0, 0.0, 1.0, 0},
      {0.0, 0.0, 0.0, 0.0, kNaN, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "(" << c.x << "," << c.y << ") r " << c.r);
    EXPECT_EQ(CXk3DPoint::IsPtInCircle(c.x, c.y, c.cx, c.cy, c.r), c.expected);
  }
}

TEST(PlaneGeometryTest, IsPtIn3PCircleWhateverTheOrientation) {
  struct Case {
    double px, py;
    int expected;
  };
  // The circle through (0, 0), (2, 0), (0, 2): centre (1, 1), radius sqrt 2.
  const double r = std::sqrt(2.0);
  const Case cases[] = {
      {1.0, 1.0, 1},
      {0.5, 0.2, 1},
      {2.0, 2.0, 0},
      {0.0, 0.0, 0},
      {2.0, 0.0, 0},
      {3.0, 3.0, -1},
      {-1.0, 1.0, -1},
      {1.0 + r * (1.0 + 1e-7), 1.0, 0},  // |D| about 1.6e-6
      {1.0 + r * (1.0 + 1e-5), 1.0, -1}, // |D| about 1.6e-4
      {1.0 + r * (1.0 - 1e-5), 1.0, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "(" << c.px << "," << c.py << ")");
    EXPECT_EQ(CXk3DPoint::IsPtIn3PCircle(c.px, c.py, 0.0, 0.0, 2.0, 0.0, 0.0, 2.0), c.expected);
    EXPECT_EQ(CXk3DPoint::IsPtIn3PCircle(c.px, c.py, 0.0, 0.0, 0.0, 2.0, 2.0, 0.0), c.expected);
    EXPECT_EQ(CXk3DPoint::IsPtIn3PCircle(c.px, c.py, 2.0, 0.0, 0.0, 2.0, 0.0, 0.0), c.expected);
  }
}

TEST(PlaneGeometryTest, IsPtIn3PCircleAnswersOutsideForCollinearPoints) {
  const double points[][2] = {{1.0, 1.0}, {0.0, 0.0}, {100.0, 100.0}, {1.0, 0.0}, {0.5, 1e-7}};
  for (const auto& p : points) {
    SCOPED_TRACE(testing::Message() << "(" << p[0] << "," << p[1] << ")");
    EXPECT_EQ(CXk3DPoint::IsPtIn3PCircle(p[0], p[1], 0.0, 0.0, 1.0, 1.0, 2.0, 2.0), -1);
    // Twice the signed area is 1e-6, within the tolerance: no circle either.
    EXPECT_EQ(CXk3DPoint::IsPtIn3PCircle(p[0], p[1], 0.0, 0.0, 1.0, 0.0, 2.0, 1e-6), -1);
  }
}

} // namespace
