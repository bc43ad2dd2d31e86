// The segment intersection behind the lens tips: the branches a lens inside a section seldom
// reaches (touching, overlapping and degenerate segments), each at its boundary.
#include "CorrelationTestSupport.h"
#include "correlation/Correlation.h"

#include <vector>

namespace {

CXk3DPoint P(double x, double y) {
  return CXk3DPoint(x, y, 0.0);
}

TEST(IntersectSegmentTest, CrossingTouchingOverlappingAndDegenerateSegments) {
  const struct {
    CXk3DPoint p0, p1, q0, q1;
    std::vector<CXk3DPoint> meet; // no point, one point, or the two ends of an overlap
  } cases[] = {
      {P(0, 0), P(10, 0), P(5, -5), P(5, 5), {P(5, 0)}},
      {P(0, 0), P(10, 0), P(10, 0), P(10, 10), {P(10, 0)}}, // touching at an end
      {P(0, 0), P(10, 0), P(10, 0), P(20, 0), {P(10, 0)}},  // collinear, one point shared
      {P(0, 0), P(10, 0), P(5, 1), P(5, 5), {}},
      {P(0, 0), P(10, 0), P(12, -5), P(12, 5), {}},
      {P(0, 0), P(10, 0), P(5, 0), P(15, 0), {P(5, 0), P(10, 0)}}, // collinear overlap
      {P(0, 0), P(10, 0), P(0, 1), P(10, 1), {}},                  // parallel
      {P(0, 0), P(10, 0), P(11, 0), P(20, 0), {}},                 // collinear apart
      {P(3, 4), P(3, 4), P(3, 4), P(3, 4), {P(3, 4)}},             // two equal points
      {P(3, 4), P(3, 4), P(3, 5), P(3, 5), {}},
      {P(5, 0), P(5, 0), P(0, 0), P(10, 0), {P(5, 0)}}, // a point on a segment
      {P(5, 1), P(5, 1), P(0, 0), P(10, 0), {}},
      {P(0, 0), P(10, 0), P(7, 0), P(7, 0), {P(7, 0)}},
      {P(2, 0), P(2, 9), P(2, 3), P(2, 3), {P(2, 3)}}, // vertical: betweenness on y
  };
  for (const auto& c : cases) {
    CXk3DPoint r[2];
    ASSERT_EQ(xkl::IntersectSegment(c.p0, c.p1, c.q0, c.q1, r[0], r[1]),
              static_cast<int32_t>(c.meet.size()));
    for (std::size_t i = 0; i < c.meet.size(); ++i) {
      EXPECT_POINT(r[i], c.meet[i].x, c.meet[i].y, 0.0);
    }
  }
}

} // namespace
