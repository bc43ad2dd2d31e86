// Placing the tip of a lens in the vertical plane of the section, and the segment intersection
// behind it.
#include "CorrelationFixture.h"

#include <vector>

namespace xkltest {
namespace {

CXk3DPoint P(double x, double y) {
  return CXk3DPoint(x, y, 0.0);
}

using GetLensTipTest = CorrelationTest;

TEST_F(GetLensTipTest, TipReaches45PercentUnlessAnEnvelopeEdgeCrossesTheMidElevation) {
  // Hole 1 at the origin, hole 2 at (60, 80): 100 m apart on a diagonal, so the tip's plan
  // position at reach t is (0.6 t, 0.8 t) from hole 1. The lens's mid elevation is 98 m; the
  // envelope's top edge runs from top1 (hole 1) to top2 (hole 2), its bottom likewise.
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 80.0}}),
       MakeBorehole(60.0, 80.0, 100.0, {{L"A", 80.0}}));
  const struct {
    const char* what;
    double top1, top2, bot1, bot2;
    bool side;
    double reach; // from the lens's own hole
  } cases[] = {
      {"envelope clear of the mid elevation", 100, 100, 90, 90, true, 45},
      {"top edge falling 0.2 m/m crosses at 10 m: tip at 6 m", 100, 80, 90, 90, true, 6},
      {"bottom edge rising 0.4 m/m crosses at 5 m, inside the shortened probe", 100, 80, 96, 136,
       true, 3},
      {"bottom edge rising 0.25 m/m crosses at 8 m, beyond the shortened probe", 100, 80, 96, 121,
       true, 6},
      {"bottom edge alone, crossing at 20 m", 100, 100, 97, 102, true, 12},
      {"an edge along the probe does not move the tip", 98, 98, 90, 90, true, 45},
      {"a lens of hole 2 measures from hole 2", 80, 100, 90, 90, false, 6},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    DataType::_sLinkRegion r;
    r.ptTop[0] = CXk3DPoint(0.0, 0.0, c.top1);
    r.ptTop[1] = CXk3DPoint(60.0, 80.0, c.top2);
    r.ptBot[0] = CXk3DPoint(0.0, 0.0, c.bot1);
    r.ptBot[1] = CXk3DPoint(60.0, 80.0, c.bot2);
    const CXk3DPoint mid = c.side ? CXk3DPoint(0.0, 0.0, 98.0) : CXk3DPoint(60.0, 80.0, 98.0);
    const double t = c.side ? c.reach : 100.0 - c.reach;
    EXPECT_POINT(xkl::GetLensTip(state, r, mid, c.side), 0.6 * t, 0.8 * t, 98.0);
  }
}

// Checks the number of points two segments share and the points themselves.
void ExpectMeet(CXk3DPoint p0, CXk3DPoint p1, CXk3DPoint q0, CXk3DPoint q1,
                const std::vector<CXk3DPoint>& expected) {
  CXk3DPoint r[2];
  ASSERT_EQ(xkl::IntersectSegment(p0, p1, q0, q1, r[0], r[1]),
            static_cast<int32_t>(expected.size()));
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_POINT(r[i], expected[i].x, expected[i].y, 0.0);
  }
}

TEST(IntersectSegmentTest, CrossingTouchingOverlappingAndDegenerateSegments) {
  ExpectMeet(P(0, 0), P(10, 0), P(5, -5), P(5, 5), {P(5, 0)});
  ExpectMeet(P(0, 0), P(10, 0), P(10, 0), P(10, 10), {P(10, 0)}); // touching at an end
  ExpectMeet(P(0, 0), P(10, 0), P(10, 0), P(20, 0), {P(10, 0)});  // collinear, one point shared
  ExpectMeet(P(0, 0), P(10, 0), P(5, 1), P(5, 5), {});
  ExpectMeet(P(0, 0), P(10, 0), P(12, -5), P(12, 5), {});
  ExpectMeet(P(0, 0), P(10, 0), P(5, 0), P(15, 0), {P(5, 0), P(10, 0)}); // collinear overlap
  ExpectMeet(P(0, 0), P(10, 0), P(0, 1), P(10, 1), {});                  // parallel
  ExpectMeet(P(0, 0), P(10, 0), P(11, 0), P(20, 0), {});                 // collinear apart
  ExpectMeet(P(3, 4), P(3, 4), P(3, 4), P(3, 4), {P(3, 4)});             // two equal points
  ExpectMeet(P(3, 4), P(3, 4), P(3, 5), P(3, 5), {});
  ExpectMeet(P(5, 0), P(5, 0), P(0, 0), P(10, 0), {P(5, 0)}); // a point on a segment
  ExpectMeet(P(5, 1), P(5, 1), P(0, 0), P(10, 0), {});
  ExpectMeet(P(0, 0), P(10, 0), P(7, 0), P(7, 0), {P(7, 0)});
}

} // namespace
} // namespace xkltest
