// Mapping of region corners and line ends into the section plane and the regions that are filled;
// the section line: where holes stand along it, and which holes are shallow beside their
// neighbours.
#include "SectionGeometry.h"

#include "Alignment.h"
#include "Beneath.h"
#include "SectionFixtures.h"

#include <gtest/gtest.h>
#include <limits>
#include <optional>

namespace xklink::drawing {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

SectionHole HoleAt(double x, double y, double chainage) {
  return {"H", chainage, testing::MakeHole(L"H", x, y, {{L"A", 10.0, 0.0}})};
}

TEST(MapToSection, DistanceFromTheFirstHoleScaledToTheChainagesOfThePair) {
  const SectionHole a = HoleAt(10.0, 20.0, 100.0); // 50 in plan from b (3-4-5)
  const SectionHole b = HoleAt(40.0, 60.0, 150.0);
  const SectionHole c = HoleAt(0.0, 0.0, 0.0); // 50 in plan from d, 80 along the section
  const SectionHole d = HoleAt(50.0, 0.0, 80.0);
  struct Case {
    const char* what;
    const SectionHole& from;
    SectionHole to;
    CXk3DPoint p;
    std::optional<double> s; // none: refused
  };
  const Case cases[] = {
      {"first hole", a, b, CXk3DPoint(10.0, 20.0, 7.5), 100.0},
      {"second hole", a, b, CXk3DPoint(40.0, 60.0, -3.0), 150.0},
      {"40 % in plan", a, b, CXk3DPoint(22.0, 36.0, 1.0), 120.0},
      {"bent line stretched", c, d, CXk3DPoint(25.0, 0.0, 0.0), 40.0},
      {"distance, not projection", c, d, CXk3DPoint(0.0, 10.0, 0.0), 16.0},
      {"NaN x", c, d, CXk3DPoint(kNaN, 0.0, 0.0), std::nullopt},
      {"infinite y", c, d, CXk3DPoint(0.0, kInf, 0.0), std::nullopt},
      {"infinite z", c, d, CXk3DPoint(0.0, 0.0, -kInf), std::nullopt},
      {"holes at one place", c, HoleAt(0.0, 0.0, 10.0), CXk3DPoint(0.0, 0.0, 1.0), std::nullopt},
      {"NaN chainage", c, HoleAt(50.0, 0.0, kNaN), CXk3DPoint(0.0, 0.0, 1.0), std::nullopt},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    const std::optional<SectionPoint> p = MapToSection(k.from, k.to, k.p);
    ASSERT_EQ(p.has_value(), k.s.has_value());
    if (p) {
      EXPECT_NEAR(p->s, *k.s, 1e-12);
      EXPECT_DOUBLE_EQ(p->z, k.p.z);
    }
  }
}

TEST(CollectRegionShapes, LensOfTheSecondHoleKeepsItsCornersAndFollowsItsHost) {
  const std::vector<RegionShape> shapes = CollectRegionShapes(testing::LensOfSecondHole());
  ASSERT_EQ(shapes.size(), 2u);
  const RegionShape& lens = shapes[1];
  EXPECT_EQ(lens.code, L"SAND");
  EXPECT_EQ(lens.kind, 1);
  // Corners 0 and 3 (ptTop[0], ptBot[0]) stand on the east hole, at the top and bottom of the
  // sand; the tip (1 and 2) lies inside the pair, nearer east, at the sand's mid elevation.
  const double sEast = 50.0; // (30, 40) from (0, 0)
  EXPECT_NEAR(lens.polygon[0].s, sEast, 1e-9);
  EXPECT_NEAR(lens.polygon[3].s, sEast, 1e-9);
  EXPECT_DOUBLE_EQ(lens.polygon[0].z, 6.0);
  EXPECT_DOUBLE_EQ(lens.polygon[3].z, 4.0);
  EXPECT_DOUBLE_EQ(lens.polygon[1].s, lens.polygon[2].s);
  EXPECT_GT(lens.polygon[1].s, 25.0);
  EXPECT_LT(lens.polygon[1].s, sEast);
  EXPECT_DOUBLE_EQ(lens.polygon[1].z, 5.0);
}

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
