// The section line: where holes stand along it, and which holes are shallow beside their
// neighbours.
#include "Alignment.h"

#include "Beneath.h"
#include "SectionFixtures.h"

#include <gtest/gtest.h>

namespace xklink::drawing {
namespace {

TEST(Alignment, ChainageAndOffsetOfAPointOnAnLShapedLine) {
  // East 100 m, then south 50 m: chainage 0 at (0, 0), the bend at 100.
  const Alignment line({{0.0, 0.0}, {100.0, 0.0}, {100.0, -50.0}}, AlignmentKind::Given);
  struct Case {
    const char* what;
    PlanPoint p;
    double chainage;
    double offset; // positive right of the direction of chainage
  };
  const Case cases[] = {
      {"on the first leg", {30.0, 0.0}, 30.0, 0.0},
      {"north of the first leg is left", {30.0, 4.0}, 30.0, -4.0},
      {"south of the first leg is right", {30.0, -4.0}, 30.0, 4.0},
      {"before the start, on the extended leg", {-20.0, 3.0}, -20.0, -3.0},
      {"west of the second leg is right", {97.0, -20.0}, 120.0, 3.0},
      {"beyond the end, on the extended leg", {100.0, -70.0}, 170.0, 0.0},
      {"outside the bend: the vertex, at its distance", {103.0, 4.0}, 100.0, -5.0},
      {"inside the bend: the nearer leg", {90.0, -2.0}, 90.0, 2.0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const Station s = line.Project(c.p);
    EXPECT_NEAR(s.chainage, c.chainage, 1e-9);
    EXPECT_NEAR(s.offset, c.offset, 1e-9);
  }
  EXPECT_DOUBLE_EQ(line.Length(), 150.0);
  EXPECT_DOUBLE_EQ(line.BearingAt(50.0), 90.0);
  EXPECT_DOUBLE_EQ(line.BearingAt(120.0), 180.0);
  EXPECT_EQ(CompassPoint(line.BearingAt(120.0)), "S");
}

TEST(Alignment, BestFitLineRunsEastThroughTheSpreadOfTheHoles) {
  // Holes scattered about a line running north-east, given west to east and back.
  const Alignment line =
      BestFitLine({{430000.0, 180000.0}, {430102.0, 180098.0}, {430049.0, 180051.0}});
  EXPECT_EQ(line.Kind(), AlignmentKind::BestFit);
  EXPECT_NEAR(line.BearingAt(0.0), 46.1, 0.5); // atan2(102, 98): the middle hole lies near it
  EXPECT_NEAR(line.Project({430000.0, 180000.0}).chainage, 0.0, 1e-6);
  EXPECT_NEAR(line.Project({430102.0, 180098.0}).chainage, line.Length(), 1e-6);
  // Due north: south to north.
  EXPECT_DOUBLE_EQ(BestFitLine({{5.0, 10.0}, {5.0, 0.0}}).BearingAt(0.0), 0.0);
}

TEST(Beneath, SpansRunBetweenHolesDeeperThanTheShallowOnes) {
  // Each hole by its depth below a collar at 50 m.
  struct Case {
    const char* what;
    std::vector<double> depths;
    std::vector<std::pair<std::size_t, std::size_t>> spans;
  };
  const Case cases[] = {
      {"pits between two boreholes", {25.0, 0.6, 0.3, 0.8, 30.0}, {{0, 4}}},
      {"a window sample beside each", {20.0, 6.0, 20.0, 6.0, 20.0}, {{0, 2}, {2, 4}}},
      {"boreholes of like depths", {35.0, 30.0, 33.0}, {}},
      {"into the lower half is not shallow", {20.0, 11.0, 20.0}, {}},
      {"a pit at the end has no deeper hole beyond", {20.0, 20.0, 1.0}, {}},
      {"a run ends at a hole deep beside the first",
       {30.0, 1.0, 2.0, 16.0, 1.0, 30.0},
       {{0, 3}, {3, 5}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::vector<SectionHole> holes;
    for (std::size_t i = 0; i < c.depths.size(); ++i) {
      holes.push_back({"H", 10.0 * static_cast<double>(i),
                       testing::MakeHole(L"H", 0.0, 0.0, {{L"A", 50.0, 50.0 - c.depths[i]}})});
    }
    std::vector<std::pair<std::size_t, std::size_t>> got;
    for (const BeneathSpan& s : SpansBeneathShallowHoles(holes)) {
      got.emplace_back(s.from, s.to);
    }
    EXPECT_EQ(got, c.spans);
  }
}

} // namespace
} // namespace xklink::drawing
