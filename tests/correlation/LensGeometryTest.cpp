// Placing the tip of a lens in the vertical plane of the section, and the plane tests behind it.
#include "CorrelationFixture.h"

#include <gtest/gtest.h>

namespace xkltest {
namespace {

CXk3DPoint P(double x, double y) {
  return CXk3DPoint(x, y, 0.0);
}

// Hole 1 at the origin, hole 2 at (60, 80): 100 m apart on a diagonal, so the tip's plan
// position at reach t is (0.6 t, 0.8 t) from hole 1.
class GetLensTipTest : public CorrelationTest {
protected:
  void SetUp() override {
    Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 80.0}}),
         MakeBorehole(60.0, 80.0, 100.0, {{L"A", 80.0}}));
  }
  // An envelope whose top edge runs from top1 (hole 1) to top2 (hole 2), its bottom likewise.
  CXk3DPoint Tip(double top1, double top2, double bot1, double bot2, bool side = true) {
    DataType::_sLinkRegion r;
    r.ptTop[0] = CXk3DPoint(0.0, 0.0, top1);
    r.ptTop[1] = CXk3DPoint(60.0, 80.0, top2);
    r.ptBot[0] = CXk3DPoint(0.0, 0.0, bot1);
    r.ptBot[1] = CXk3DPoint(60.0, 80.0, bot2);
    const CXk3DPoint mid = side ? CXk3DPoint(0.0, 0.0, 98.0) : CXk3DPoint(60.0, 80.0, 98.0);
    return xkl::GetLensTip(state, r, mid, side);
  }
};

TEST_F(GetLensTipTest, EnvelopeClearOfTheMidElevationLetsTheLensReach45Percent) {
  EXPECT_POINT(Tip(100.0, 100.0, 90.0, 90.0), 27.0, 36.0, 98.0);
}

TEST_F(GetLensTipTest, TopEdgeCrossingAt10mStopsTheTipAt6m) {
  // Top edge falls 0.2 m per metre from 100 m: it reaches 98 m at 10 m.
  EXPECT_POINT(Tip(100.0, 80.0, 90.0, 90.0), 3.6, 4.8, 98.0);
}

TEST_F(GetLensTipTest, BottomEdgeTestedOnTheShortenedProbeHasTheLastWord) {
  // Bottom edge rising 0.4 m per metre from 96 m crosses at 5 m, inside the 6 m probe.
  EXPECT_POINT(Tip(100.0, 80.0, 96.0, 136.0), 1.8, 2.4, 98.0);
  // Rising 0.25 m per metre it crosses at 8 m, beyond the shortened probe: no effect.
  EXPECT_POINT(Tip(100.0, 80.0, 96.0, 121.0), 3.6, 4.8, 98.0);
  // Without a top crossing the bottom edge alone, crossing at 20 m, gives 12 m.
  EXPECT_POINT(Tip(100.0, 100.0, 97.0, 102.0), 7.2, 9.6, 98.0);
}

TEST_F(GetLensTipTest, EdgeAlongTheProbeDoesNotMoveTheTip) {
  EXPECT_POINT(Tip(98.0, 98.0, 90.0, 90.0), 27.0, 36.0, 98.0);
}

TEST_F(GetLensTipTest, LensOfHoleTwoMeasuresFromHoleTwo) {
  // Seen from hole 2 the top edge falls from 100 m to 80 m: crossing at 10 m, tip at 6 m.
  EXPECT_POINT(Tip(80.0, 100.0, 90.0, 90.0, false), 56.4, 75.2, 98.0);
}

TEST(IntersectSegmentTest, CrossingAndTouchingSegmentsMeetInOnePoint) {
  CXk3DPoint r1;
  CXk3DPoint r2;
  EXPECT_EQ(xkl::IntersectSegment(P(0, 0), P(10, 0), P(5, -5), P(5, 5), r1, r2), 1);
  EXPECT_POINT(r1, 5.0, 0.0, 0.0);
  EXPECT_EQ(xkl::IntersectSegment(P(0, 0), P(10, 0), P(10, 0), P(10, 10), r1, r2), 1);
  EXPECT_POINT(r1, 10.0, 0.0, 0.0);
  EXPECT_EQ(xkl::IntersectSegment(P(0, 0), P(10, 0), P(10, 0), P(20, 0), r1, r2), 1);
  EXPECT_POINT(r1, 10.0, 0.0, 0.0);
  EXPECT_EQ(xkl::IntersectSegment(P(0, 0), P(10, 0), P(5, 1), P(5, 5), r1, r2), 0);
  EXPECT_EQ(xkl::IntersectSegment(P(0, 0), P(10, 0), P(12, -5), P(12, 5), r1, r2), 0);
}

TEST(IntersectSegmentTest, CollinearSegmentsOverlapFromOneEndToTheOther) {
  CXk3DPoint r1;
  CXk3DPoint r2;
  EXPECT_EQ(xkl::IntersectSegment(P(0, 0), P(10, 0), P(5, 0), P(15, 0), r1, r2), 2);
  EXPECT_POINT(r1, 5.0, 0.0, 0.0);
  EXPECT_POINT(r2, 10.0, 0.0, 0.0);
  EXPECT_EQ(xkl::IntersectSegment(P(0, 0), P(10, 0), P(0, 1), P(10, 1), r1, r2), 0);
  EXPECT_EQ(xkl::IntersectSegment(P(0, 0), P(10, 0), P(11, 0), P(20, 0), r1, r2), 0);
}

TEST(IntersectSegmentTest, DegenerateSegmentsArePoints) {
  CXk3DPoint r1;
  CXk3DPoint r2;
  EXPECT_EQ(xkl::IntersectSegment(P(3, 4), P(3, 4), P(3, 4), P(3, 4), r1, r2), 1);
  EXPECT_POINT(r1, 3.0, 4.0, 0.0);
  EXPECT_EQ(xkl::IntersectSegment(P(3, 4), P(3, 4), P(3, 5), P(3, 5), r1, r2), 0);
  EXPECT_EQ(xkl::IntersectSegment(P(5, 0), P(5, 0), P(0, 0), P(10, 0), r1, r2), 1);
  EXPECT_POINT(r1, 5.0, 0.0, 0.0);
  EXPECT_EQ(xkl::IntersectSegment(P(5, 1), P(5, 1), P(0, 0), P(10, 0), r1, r2), 0);
  EXPECT_EQ(xkl::IntersectSegment(P(0, 0), P(10, 0), P(7, 0), P(7, 0), r1, r2), 1);
  EXPECT_POINT(r1, 7.0, 0.0, 0.0);
}

TEST(IsBetweenTest, VerticalSegmentsAreTestedOnYOthersOnX) {
  EXPECT_TRUE(xkl::IsBetween(P(3, 5), P(3, 0), P(3, 10)));
  EXPECT_TRUE(xkl::IsBetween(P(100, 5), P(3, 10), P(3.000001, 0))); // off the line: not checked
  EXPECT_FALSE(xkl::IsBetween(P(3, 11), P(3, 0), P(3, 10)));
  EXPECT_TRUE(xkl::IsBetween(P(5, 100), P(0, 0), P(10, 10)));
  EXPECT_TRUE(xkl::IsBetween(P(10, 10), P(10, 10), P(0, 0))); // ends included
  EXPECT_FALSE(xkl::IsBetween(P(-1, -1), P(10, 10), P(0, 0)));
}

} // namespace
} // namespace xkltest
