// Mapping of region corners and line ends into the section plane, and the choice of the regions
// that are filled.
#include "SectionGeometry.h"

#include "SectionFixtures.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace xklink::drawing {
namespace {

using testing::CorrelatedSection;
using testing::MakeHole;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

SectionHole HoleAt(double x, double y, double chainage) {
  return {"H", chainage, MakeHole(L"H", x, y, {{L"A", 10.0, 0.0}})};
}

TEST(MapToSection, HoleEndsLandOnTheirChainages) {
  // Plan distance 50 (a 3-4-5 triangle), chainages 100 and 150.
  const SectionHole a = HoleAt(10.0, 20.0, 100.0);
  const SectionHole b = HoleAt(40.0, 60.0, 150.0);
  const auto atA = MapToSection(a, b, CXk3DPoint(10.0, 20.0, 7.5));
  const auto atB = MapToSection(a, b, CXk3DPoint(40.0, 60.0, -3.0));
  ASSERT_TRUE(atA && atB);
  EXPECT_DOUBLE_EQ(atA->s, 100.0);
  EXPECT_DOUBLE_EQ(atA->z, 7.5);
  EXPECT_DOUBLE_EQ(atB->s, 150.0);
  EXPECT_DOUBLE_EQ(atB->z, -3.0);
}

TEST(MapToSection, PointsBetweenScaleByTheChainageOfThePair) {
  const SectionHole a = HoleAt(10.0, 20.0, 100.0);
  const SectionHole b = HoleAt(40.0, 60.0, 150.0);
  // 40 % of the way in plan: 20 of 50.
  const auto p = MapToSection(a, b, CXk3DPoint(22.0, 36.0, 1.0));
  ASSERT_TRUE(p);
  EXPECT_NEAR(p->s, 120.0, 1e-12);
  // A section whose chainage is not the plan distance (a bent section line measured along its
  // own course) stretches the pair to its chainage: half way in plan is half way in chainage.
  const SectionHole c = HoleAt(0.0, 0.0, 0.0);
  const SectionHole d = HoleAt(50.0, 0.0, 80.0);
  const auto q = MapToSection(c, d, CXk3DPoint(25.0, 0.0, 0.0));
  ASSERT_TRUE(q);
  EXPECT_NEAR(q->s, 40.0, 1e-12);
}

TEST(MapToSection, UsesTheDistanceFromTheFirstHoleWhateverTheDirection) {
  // The rule measures distance, not projection: a point 10 off the line beside hole a maps 10
  // along, as far as a point 10 along the line does.
  const SectionHole a = HoleAt(0.0, 0.0, 0.0);
  const SectionHole b = HoleAt(100.0, 0.0, 100.0);
  const auto beside = MapToSection(a, b, CXk3DPoint(0.0, 10.0, 0.0));
  ASSERT_TRUE(beside);
  EXPECT_NEAR(beside->s, 10.0, 1e-12);
}

TEST(MapToSection, RefusesWhatCannotBeDrawn) {
  const SectionHole a = HoleAt(0.0, 0.0, 0.0);
  const SectionHole b = HoleAt(100.0, 0.0, 100.0);
  EXPECT_FALSE(MapToSection(a, b, CXk3DPoint(kNaN, 0.0, 0.0)));
  EXPECT_FALSE(MapToSection(a, b, CXk3DPoint(0.0, kInf, 0.0)));
  EXPECT_FALSE(MapToSection(a, b, CXk3DPoint(0.0, 0.0, -kInf)));
  // Two holes at one plan position give no direction to measure along.
  EXPECT_FALSE(MapToSection(a, HoleAt(0.0, 0.0, 10.0), CXk3DPoint(0.0, 0.0, 1.0)));
  EXPECT_FALSE(MapToSection(a, HoleAt(100.0, 0.0, kNaN), CXk3DPoint(0.0, 0.0, 1.0)));
}

// Borehole 1 holds CLAY only, borehole 2 CLAY, SAND, CLAY: the SAND lens belongs to borehole 2 and
// keeps its borehole-2 corners in element 0 of the corner pairs.
Section LensOfSecondHole() {
  return CorrelatedSection(
      "lens", {{"W", MakeHole(L"W", 0.0, 0.0, {{L"CLAY", 10.0, 0.0}})},
               {"E", MakeHole(L"E", 30.0, 40.0,
                              {{L"CLAY", 10.0, 6.0}, {L"SAND", 6.0, 4.0}, {L"CLAY", 4.0, 0.0}})}});
}

TEST(CollectRegionShapes, LensOfTheSecondHoleLiesBetweenTheHolesOnItsOwnSide) {
  const Section section = LensOfSecondHole();
  const std::vector<RegionShape> shapes = CollectRegionShapes(section);
  const auto lens = std::find_if(shapes.begin(), shapes.end(),
                                 [](const RegionShape& r) { return r.code == L"SAND"; });
  ASSERT_NE(lens, shapes.end());
  EXPECT_EQ(lens->kind, 1);
  const double sEast = section.holes[1].chainage;
  ASSERT_DOUBLE_EQ(sEast, 50.0);
  // Corners 0 and 3 (ptTop[0], ptBot[0]) stand on the east hole at the top and bottom of the sand.
  EXPECT_NEAR(lens->corners[0].s, sEast, 1e-9);
  EXPECT_NEAR(lens->corners[3].s, sEast, 1e-9);
  EXPECT_DOUBLE_EQ(lens->corners[0].z, 6.0);
  EXPECT_DOUBLE_EQ(lens->corners[3].z, 4.0);
  // The tip (corners 1 and 2) lies inside the pair, at the sand's mid elevation, nearer to the
  // east hole than to the west one.
  EXPECT_DOUBLE_EQ(lens->corners[1].s, lens->corners[2].s);
  EXPECT_GT(lens->corners[1].s, 25.0);
  EXPECT_LT(lens->corners[1].s, sEast);
  EXPECT_DOUBLE_EQ(lens->corners[1].z, 5.0);
}

TEST(CollectRegionShapes, HostComesBeforeItsLens) {
  const std::vector<RegionShape> shapes = CollectRegionShapes(LensOfSecondHole());
  ASSERT_EQ(shapes.size(), 2u);
  EXPECT_EQ(shapes[0].code, L"CLAY");
  EXPECT_EQ(shapes[1].code, L"SAND");
}

TEST(CollectRegionShapes, OneShapePerLeafInEveryPair) {
  const Section section = testing::LondonSection();
  const std::vector<RegionShape> shapes = CollectRegionShapes(section);
  EXPECT_EQ(shapes.size(), testing::LeafCount(section));
  // Pairs in order, each pair's shapes together.
  EXPECT_TRUE(
      std::is_sorted(shapes.begin(), shapes.end(),
                     [](const RegionShape& a, const RegionShape& b) { return a.pair < b.pair; }));
  for (const RegionShape& shape : shapes) {
    const SectionPair& pair = section.pairs[shape.pair];
    for (const SectionPoint& p : shape.corners) {
      EXPECT_GE(p.s, section.holes[pair.from].chainage - 1e-9);
      EXPECT_LE(p.s, section.holes[pair.to].chainage + 1e-9);
    }
  }
}

TEST(CollectRegionShapes, StrataBelowTheDeepestCommonStratumStayUnfilled) {
  const Section section = CorrelatedSection(
      "below",
      {{"W", MakeHole(L"W", 0.0, 0.0,
                      {{L"A", 10.0, 8.0}, {L"B", 8.0, 5.0}, {L"C", 5.0, 2.0}, {L"D", 2.0, 0.0}})},
       {"E", MakeHole(L"E", 50.0, 0.0, {{L"A", 11.0, 9.0}, {L"C", 9.0, 4.0}})}});
  std::vector<std::wstring> codes;
  for (const RegionShape& shape : CollectRegionShapes(section)) {
    codes.push_back(shape.code);
  }
  std::sort(codes.begin(), codes.end());
  EXPECT_EQ(codes, (std::vector<std::wstring>{L"A", L"B", L"C"}));
}

TEST(CollectRegionShapes, UnnamedRootTakesTheCodeOnlyWhenItHoldsOneCode) {
  // Nothing to split: the root is the only leaf and has no name.
  const Section same = CorrelatedSection(
      "same", {{"W", MakeHole(L"W", 0.0, 0.0, {{L"A", 10.0, 8.0}, {L"A", 8.0, 5.0}})},
               {"E", MakeHole(L"E", 50.0, 0.0, {{L"A", 11.0, 9.0}})}});
  const std::vector<RegionShape> one = CollectRegionShapes(same);
  ASSERT_EQ(one.size(), 1u);
  EXPECT_EQ(one[0].code, L"A");

  // A against B: the library does not match them, so the drawing must not pretend it did.
  const Section different =
      CorrelatedSection("different", {{"W", MakeHole(L"W", 0.0, 0.0, {{L"A", 10.0, 8.0}})},
                                      {"E", MakeHole(L"E", 50.0, 0.0, {{L"B", 11.0, 9.0}})}});
  const std::vector<RegionShape> two = CollectRegionShapes(different);
  ASSERT_EQ(two.size(), 1u);
  EXPECT_TRUE(two[0].code.empty());
}

TEST(CollectRegionShapes, SkipsBadPairsAndRegionsThatDoNotMap) {
  Section section = LensOfSecondHole();
  section.pairs[0].root.vecChild[0].vecChild[0].ptTop[1].x = kNaN; // the lens tip
  const std::vector<RegionShape> shapes = CollectRegionShapes(section);
  ASSERT_EQ(shapes.size(), 1u);
  EXPECT_EQ(shapes[0].code, L"CLAY");

  Section bad = LensOfSecondHole();
  bad.pairs[0].to = 0; // a hole paired with itself
  EXPECT_TRUE(CollectRegionShapes(bad).empty());
  EXPECT_TRUE(CollectLineShapes(bad).empty());
  bad.pairs[0].to = 7; // no such hole
  EXPECT_TRUE(CollectRegionShapes(bad).empty());
  EXPECT_TRUE(CollectLineShapes(bad).empty());
}

TEST(CollectLineShapes, OneShapePerLineWithFiniteEnds) {
  Section section = testing::LondonSection();
  EXPECT_EQ(CollectLineShapes(section).size(), testing::LineCount(section));
  section.pairs[1].lines[0].pt2.z = kInf;
  EXPECT_EQ(CollectLineShapes(section).size(), testing::LineCount(section) - 1);
}

TEST(SectionExtent, CoversCollarsAndTheDeepestStratum) {
  const Section section = testing::LondonSection();
  const Extent extent =
      SectionExtent(section, CollectRegionShapes(section), CollectLineShapes(section));
  ASSERT_FALSE(extent.empty);
  EXPECT_DOUBLE_EQ(extent.sMin, 0.0);
  EXPECT_DOUBLE_EQ(extent.sMax, section.holes.back().chainage);
  EXPECT_DOUBLE_EQ(extent.zMax, 6.2);
  EXPECT_DOUBLE_EQ(extent.zMin, -25.5);
}

TEST(NiceStep, RoundsUpToOneTwoTwoAndAHalfOrFive) {
  EXPECT_DOUBLE_EQ(NiceStep(0.7), 1.0);
  EXPECT_DOUBLE_EQ(NiceStep(1.0), 1.0);
  EXPECT_DOUBLE_EQ(NiceStep(1.2), 2.0);
  EXPECT_DOUBLE_EQ(NiceStep(2.1), 2.5);
  EXPECT_DOUBLE_EQ(NiceStep(3.0), 5.0);
  EXPECT_DOUBLE_EQ(NiceStep(7.0), 10.0);
  EXPECT_DOUBLE_EQ(NiceStep(45.0), 50.0);
  EXPECT_NEAR(NiceStep(0.013), 0.02, 1e-15);
  // 0.2 is not pushed to 0.25 by the rounding of its logarithm.
  EXPECT_NEAR(NiceStep(0.2), 0.2, 1e-15);
  EXPECT_DOUBLE_EQ(NiceStep(0.0), 1.0);
  EXPECT_DOUBLE_EQ(NiceStep(kNaN), 1.0);
}

TEST(ChooseExaggeration, AimsAtAHalfAsHighAsLongSheet) {
  // 0.45 * 184 / 32 = 2.6: 2.5.
  EXPECT_DOUBLE_EQ(ChooseExaggeration(184.0, 32.0), 2.5);
  // 0.45 * 3400 / 42 = 36.4, nearer to 50 than to 25 on a logarithmic scale.
  EXPECT_DOUBLE_EQ(ChooseExaggeration(3400.0, 42.0), 50.0);
  // 0.45 * 1000 / 30 = 15: 20 is 1.33 times that, 10 is 1.5 times smaller, so 20.
  EXPECT_DOUBLE_EQ(ChooseExaggeration(1000.0, 30.0), 20.0);
  // Deep holes close together are never compressed.
  EXPECT_DOUBLE_EQ(ChooseExaggeration(20.0, 60.0), 1.0);
  EXPECT_DOUBLE_EQ(ChooseExaggeration(0.0, 10.0), 1.0);
  EXPECT_DOUBLE_EQ(ChooseExaggeration(100.0, 0.0), 1.0);
  EXPECT_DOUBLE_EQ(ChooseExaggeration(kInf, 10.0), 1.0);
}

TEST(DecimalsFor, ShowsEveryMultipleOfTheStep) {
  EXPECT_EQ(DecimalsFor(5.0), 0);
  EXPECT_EQ(DecimalsFor(50.0), 0);
  EXPECT_EQ(DecimalsFor(2.5), 1);
  EXPECT_EQ(DecimalsFor(0.1), 1);
  EXPECT_EQ(DecimalsFor(0.25), 2);
}

} // namespace
} // namespace xklink::drawing
