// The two entries seen from the host where the differential tests do not go: a root that already
// holds regions (from this call's holes or an earlier call's), holes without strata, and a context
// reused across the pairs of a section.
#include "CorrelationTestSupport.h"
#include "support/RandomBoreholes.h"

#include <XKLinkDc/XKLinkDc.h>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace xkltest {
namespace {

using Lines = std::vector<DataType::_sLinkLine>;

// Hole 1: A 100-95, B 95-90, C 90-80 at the origin; hole 2: A 102-96, C 96-85, 60 m east.
const auto kABC = MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"C", 80.0}});
const auto kAC = MakeBorehole(60.0, 0.0, 102.0, {{L"A", 96.0}, {L"C", 85.0}});
// A hole without strata is a hole of zero depth: every boundary on it lies at its collar.
const auto kLogged = MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}});
const auto kBare = MakeBorehole(40.0, 0.0, 98.0, {});

void ExpectLine(const DataType::_sLinkLine& l, double z1, double z2, const wchar_t* up,
                const wchar_t* down, int32_t type, double x2) {
  EXPECT_POINT(l.pt1, 0.0, 0.0, z1);
  EXPECT_POINT(l.pt2, x2, 0.0, z2);
  EXPECT_EQ(l.strUpName, up);
  EXPECT_EQ(l.strDownName, down);
  EXPECT_EQ(l.nType, type);
  EXPECT_FALSE(l.bBottom);
}

TEST(LinkDcTest, RegionsAlreadyInTheRootStayFirstAndAreVisited) {
  DataType::_sLinkRegion root;
  // A, B on hole 1, touching hole 2 above C.
  root.vecChild = {MakeRegion(kABC, kAC, 0, 2, 1, 1, L"pre", false, 2)};
  LinkDc(kABC, kAC, root);
  // The gap pass reads the whole child list, so the earlier region stands as the first
  // sub-region: a top gap down to its top on hole 2 (A of hole 2 pinching out), an empty gap
  // between it and A, then B between A and C.
  ASSERT_EQ(root.vecChild.size(), 5u);
  const auto& c = root.vecChild;
  EXPECT_EQ(c[0].strName + c[1].strName + c[2].strName + c[3].strName + c[4].strName, L"preACAB");
  EXPECT_RANGES(c[3], 0, 0, 0, 1);
  EXPECT_RANGES(c[4], 1, 2, 1, 1);
  EXPECT_TRUE(SameTree(c[0], With(MakeRegion(kABC, kAC, 0, 2, 1, 1, L"pre", false, 2),
                                  {MakeRegion(kABC, kAC, 0, 1, 1, 1, L"A", false, 2),
                                   MakeRegion(kABC, kAC, 1, 2, 1, 1, L"B", false, 2)})));
}

// Issue 18, item 6: a root reused from a call with longer holes still holds children whose ranges
// run past the strata of the new holes. They are left as they are, not read outside the strata
// (the sanitizers watch the reads); children that fit are worked on as usual.
TEST(LinkDcTest, LeftOverChildrenBeyondTheStrataAreLeftAsTheyAre) {
  const auto longer = MakeBorehole(
      0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"C", 80.0}, {L"B", 70.0}, {L"D", 60.0}});
  DataType::_sLinkRegion root;
  LinkDc(longer, longer, root);
  ASSERT_FALSE(root.vecChild.empty());
  DataType::_sLinkRegion beyond = MakeRegion(kABC, kAC, 2, 5, 0, 2, L"X", false, 0);
  beyond.vecChild = {MakeRegion(kABC, kAC, 0, 40, 0, 40, L"Y", false, 2)};
  root.vecChild.push_back(beyond);
  root.vecChild.push_back(MakeRegion(kABC, kAC, 0, 2, 1, 1, L"fits", false, 2));
  const std::size_t before = root.vecChild.size();
  LinkDc(kABC, kAC, root);
  ASSERT_EQ(root.vecChild.size(), before + 3);
  EXPECT_TRUE(SameTree(root.vecChild[before - 2], beyond));
  EXPECT_EQ(root.vecChild[before - 1].vecChild.size(), 2u); // A and B, wedges of the fitting child
  Lines lines;
  LinkDcLine(kABC, kAC, lines); // a fresh root: the worked section's three lines
  EXPECT_EQ(lines.size(), 3u);
}

TEST(LinkDcTest, HoleWithoutStrataTakesEveryBoundaryAtItsCollar) {
  DataType::_sLinkRegion root;
  LinkDc(kLogged, kBare, root);
  EXPECT_TRUE(SameTree(root, With(MakeRegion(kLogged, kBare, 0, 2, 0, 0),
                                  {MakeRegion(kLogged, kBare, 0, 1, 0, 0, L"A", false, 2),
                                   MakeRegion(kLogged, kBare, 1, 2, 0, 0, L"B", false, 2)})));
  DataType::_sLinkRegion mirrored;
  LinkDc(kBare, kLogged, mirrored);
  EXPECT_TRUE(SameTree(mirrored, With(MakeRegion(kBare, kLogged, 0, 0, 0, 2),
                                      {MakeRegion(kBare, kLogged, 0, 0, 0, 1, L"A", false, 2),
                                       MakeRegion(kBare, kLogged, 0, 0, 1, 2, L"B", false, 2)})));
  DataType::_sLinkRegion none;
  LinkDc(kBare, kBare, none);
  EXPECT_TRUE(SameTree(none, MakeRegion(kBare, kBare, 0, 0, 0, 0)));

  // The lines of the strata meet at the bare hole's collar.
  Lines lines;
  LinkDcLine(kLogged, kBare, lines);
  ASSERT_EQ(lines.size(), 2u);
  ExpectLine(lines[0], 95.0, 98.0, L"A", L"B", 2, 40.0);
  ExpectLine(lines[1], 90.0, 98.0, L"B", L"", 2, 40.0);
  // Two bare holes: the root's top and bottom coincide and merge, and the one line left is the
  // highest, which is removed.
  lines.clear();
  LinkDcLine(kBare, MakeBorehole(0.0, 0.0, 97.0, {}), lines);
  EXPECT_TRUE(lines.empty());
}

// A context reads the caller's boreholes in place: one context runs a whole section of pairs whose
// holes are gone after each call (a dangling read would show under the sanitizers), and one hole
// may stand on both sides. Every result equals the module-wide entry's.
TEST(CorrelationContextTest, ReusedAcrossPairsWhoseHolesAreGoneAfterEachCall) {
  XKLinkDc::CorrelationContext context;
  std::mt19937_64 rng(20261124);
  xktest::RandomBoreholeOptions opt;
  opt.minStrata = 1;
  opt.maxStrata = 30;
  opt.codeCount = 5;
  for (int k = 0; k < 40; ++k) {
    DataType::_sLinkRegion viaContext;
    DataType::_sLinkRegion expected;
    Lines contextLines;
    Lines expectedLines;
    {
      auto pair = xktest::RandomBoreholePair(rng, opt, 0.0, 0.1);
      const DataType::_sZK& second = k % 8 == 7 ? pair.first : pair.second;
      context.LinkDcTreeAndLines(pair.first, second, viaContext, contextLines);
      LinkDc(pair.first, second, expected);
      LinkDcLine(pair.first, second, expectedLines);
    }
    ASSERT_TRUE(SameTree(viaContext, expected)) << "pair " << k;
    ASSERT_EQ(contextLines.size(), expectedLines.size()) << "pair " << k;
    for (std::size_t i = 0; i < contextLines.size(); ++i) {
      EXPECT_TRUE(contextLines[i].IsSame(expectedLines[i]) &&
                  contextLines[i].strUpName == expectedLines[i].strUpName &&
                  contextLines[i].strDownName == expectedLines[i].strDownName)
          << "pair " << k << ", line " << i;
    }
  }
}

} // namespace
} // namespace xkltest
