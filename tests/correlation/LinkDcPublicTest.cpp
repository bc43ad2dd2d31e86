// The two entries seen from the host: the worked section A, B, C against A, C, holes without
// strata, a root that already holds regions, and properties over seeded random boreholes, through
// the module-wide entries and through a correlation context of the host's own.
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
DataType::_sZK HoleABC() {
  return MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"C", 80.0}});
}
DataType::_sZK HoleAC() {
  return MakeBorehole(60.0, 0.0, 102.0, {{L"A", 96.0}, {L"C", 85.0}});
}

void ExpectLine(const DataType::_sLinkLine& l, double z1, double z2, const wchar_t* up,
                const wchar_t* down, int32_t type, double x2 = 60.0) {
  EXPECT_POINT(l.pt1, 0.0, 0.0, z1);
  EXPECT_POINT(l.pt2, x2, 0.0, z2);
  EXPECT_EQ(l.strUpName, up);
  EXPECT_EQ(l.strDownName, down);
  EXPECT_EQ(l.nType, type);
  EXPECT_FALSE(l.bBottom);
}

::testing::AssertionResult SameLines(const Lines& a, const Lines& b) {
  if (a.size() != b.size()) {
    return ::testing::AssertionFailure() << a.size() << " lines against " << b.size();
  }
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!SamePoint(a[i].pt1, b[i].pt1) || !SamePoint(a[i].pt2, b[i].pt2) ||
        a[i].nType != b[i].nType || a[i].bBottom != b[i].bBottom ||
        a[i].strUpName != b[i].strUpName || a[i].strDownName != b[i].strDownName) {
      return ::testing::AssertionFailure() << "line " << i << " differs";
    }
  }
  return ::testing::AssertionSuccess();
}

TEST(LinkDcTest, WorkedSectionSplitsAtAAndCAndPinchesBOut) {
  DataType::_sLinkRegion root;
  LinkDc(HoleABC(), HoleAC(), root);
  EXPECT_RANGES(root, 0, 3, 0, 2);
  EXPECT_POINT(root.ptTop[1], 60.0, 0.0, 102.0);
  EXPECT_POINT(root.ptBot[0], 0.0, 0.0, 80.0);
  ASSERT_EQ(root.vecChild.size(), 3u);
  const auto& a = root.vecChild[0];
  const auto& c = root.vecChild[1];
  const auto& b = root.vecChild[2];
  EXPECT_EQ(a.strName + c.strName + b.strName, L"ACB");
  EXPECT_TRUE(a.nType == 0 && a.bNamed && c.nType == 0 && c.bNamed);
  EXPECT_RANGES(a, 0, 1, 0, 1);
  EXPECT_RANGES(c, 2, 3, 1, 2);
  EXPECT_EQ(b.nType, 2);
  EXPECT_FALSE(b.bNamed);
  EXPECT_RANGES(b, 1, 2, 1, 1);
  // Full thickness on hole 1, thinned out at the top of C on hole 2.
  EXPECT_Z(b, 95.0, 90.0, 96.0, 96.0);
  EXPECT_POINT(b.ptBot[1], 60.0, 0.0, 96.0);
  for (const auto& child : root.vecChild) {
    EXPECT_TRUE(child.vecChild.empty());
  }
}

TEST(LinkDcLineTest, WorkedSectionGivesThreeLines) {
  Lines lines;
  LinkDcLine(HoleABC(), HoleAC(), lines);
  ASSERT_EQ(lines.size(), 3u);
  ExpectLine(lines[0], 95.0, 96.0, L"A", L"B", 0);
  ExpectLine(lines[1], 90.0, 96.0, L"B", L"C", 2);
  ExpectLine(lines[2], 80.0, 85.0, L"C", L"", 0);
}

TEST(LinkDcTest, RegionsAlreadyInTheRootStayFirstAndAreVisited) {
  DataType::_sLinkRegion root;
  root.vecChild.resize(1);
  auto& pre = root.vecChild[0];
  pre.nType = 2;
  pre.strName = L"pre";
  pre.nBegin1 = 0; // A, B on hole 1, touching hole 2 above C
  pre.nEnd1 = 2;
  pre.nBegin2 = pre.nEnd2 = 1;
  pre.ptTop[0] = CXk3DPoint(0.0, 0.0, 100.0);
  pre.ptBot[0] = CXk3DPoint(0.0, 0.0, 90.0);
  pre.ptTop[1] = pre.ptBot[1] = CXk3DPoint(60.0, 0.0, 96.0);
  LinkDc(HoleABC(), HoleAC(), root);
  // The gap pass reads the whole child list, so the earlier region stands as the first
  // sub-region: a top gap down to its top on hole 2 (A of hole 2 pinching out), an empty gap
  // between it and A, then B between A and C.
  ASSERT_EQ(root.vecChild.size(), 5u);
  EXPECT_EQ(root.vecChild[0].strName, L"pre");
  EXPECT_EQ(root.vecChild[1].strName, L"A");
  EXPECT_EQ(root.vecChild[2].strName, L"C");
  EXPECT_EQ(root.vecChild[3].strName, L"A");
  EXPECT_RANGES(root.vecChild[3], 0, 0, 0, 1);
  EXPECT_EQ(root.vecChild[4].strName, L"B");
  EXPECT_RANGES(root.vecChild[4], 1, 2, 1, 1);
  const auto& closed = root.vecChild[0].vecChild;
  ASSERT_EQ(closed.size(), 2u);
  EXPECT_RANGES(closed[0], 0, 1, 1, 1);
  EXPECT_RANGES(closed[1], 1, 2, 1, 1);
  EXPECT_POINT(closed[1].ptBot[1], 60.0, 0.0, 96.0);
}

// A hole without strata is a hole of zero depth: every boundary on it lies at its collar, so all
// strata of the other hole pinch out there.
TEST(LinkDcTest, HoleWithoutStrataTakesEveryBoundaryAtItsCollar) {
  const auto logged = MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}});
  const auto bare = MakeBorehole(40.0, 0.0, 98.0, {});
  DataType::_sLinkRegion root;
  LinkDc(logged, bare, root);
  EXPECT_RANGES(root, 0, 2, 0, 0);
  EXPECT_POINT(root.ptTop[1], 40.0, 0.0, 98.0);
  EXPECT_POINT(root.ptBot[1], 40.0, 0.0, 98.0);
  ASSERT_EQ(root.vecChild.size(), 2u);
  for (int i = 0; i < 2; ++i) {
    const auto& w = root.vecChild[static_cast<std::size_t>(i)];
    EXPECT_EQ(w.nType, 2);
    EXPECT_RANGES(w, i, i + 1, 0, 0);
    EXPECT_POINT(w.ptTop[1], 40.0, 0.0, 98.0);
    EXPECT_POINT(w.ptBot[1], 40.0, 0.0, 98.0);
  }
  EXPECT_POINT(root.vecChild[1].ptBot[0], 0.0, 0.0, 90.0);

  DataType::_sLinkRegion mirrored;
  LinkDc(bare, logged, mirrored);
  EXPECT_POINT(mirrored.ptBot[0], 40.0, 0.0, 98.0);
  ASSERT_EQ(mirrored.vecChild.size(), 2u);
  EXPECT_RANGES(mirrored.vecChild[1], 0, 0, 1, 2);
  EXPECT_POINT(mirrored.vecChild[1].ptTop[0], 40.0, 0.0, 98.0);
  EXPECT_POINT(mirrored.vecChild[1].ptBot[0], 40.0, 0.0, 98.0);

  DataType::_sLinkRegion none;
  LinkDc(bare, bare, none);
  EXPECT_RANGES(none, 0, 0, 0, 0);
  EXPECT_TRUE(none.vecChild.empty());
}

TEST(LinkDcLineTest, HoleWithoutStrataGivesLinesMeetingAtItsCollar) {
  const auto logged = MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}});
  const auto bare = MakeBorehole(40.0, 0.0, 98.0, {});
  Lines lines;
  LinkDcLine(logged, bare, lines);
  ASSERT_EQ(lines.size(), 2u);
  ExpectLine(lines[0], 95.0, 98.0, L"A", L"B", 2, 40.0);
  ExpectLine(lines[1], 90.0, 98.0, L"B", L"", 2, 40.0);
  // Two bare holes: the root's top and bottom coincide and merge, and the one line left is the
  // highest, which is removed.
  Lines nothing;
  LinkDcLine(bare, MakeBorehole(0.0, 0.0, 97.0, {}), nothing);
  EXPECT_TRUE(nothing.empty());
}

class RandomCorrelationTest : public ::testing::TestWithParam<unsigned> {};

TEST_P(RandomCorrelationTest, TreesAreRepeatableAndWellFormed) {
  std::mt19937_64 rng(GetParam());
  xktest::RandomBoreholeOptions opt;
  opt.minStrata = 0; // now and then a hole of zero depth
  opt.maxStrata = 12;
  opt.codeCount = 4;
  int splits = 0; // the properties below must not hold vacuously
  int wedges = 0;
  int lenses = 0;
  for (int round = 0; round < 40; ++round) {
    const auto holes = xktest::RandomBoreholePair(rng, opt, 0.0);
    const DataType::_sZK& zk1 = holes.first;
    const DataType::_sZK& zk2 = holes.second;
    const double dist = std::hypot(zk2.dX - zk1.dX, zk2.dY - zk1.dY);
    DataType::_sLinkRegion first;
    DataType::_sLinkRegion second;
    DataType::_sLinkRegion viaContext;
    LinkDc(zk1, zk2, first);
    LinkDc(zk1, zk2, second);
    XKLinkDc::CorrelationContext context;
    context.LinkDc(zk1, zk2, viaContext);
    ASSERT_TRUE(SameTree(first, second)) << "seed " << GetParam() << " round " << round;
    ASSERT_TRUE(SameTree(first, viaContext)) << "seed " << GetParam() << " round " << round;

    Lines lines;
    Lines contextLines;
    LinkDcLine(zk1, zk2, lines);
    context.LinkDcLine(zk1, zk2, contextLines);
    ASSERT_TRUE(SameLines(lines, contextLines)) << "seed " << GetParam() << " round " << round;
    for (const auto& l : lines) {
      EXPECT_FALSE(l.bBottom);
    }

    ForEachRegion(first, [&](const DataType::_sLinkRegion& r) {
      // The named sub-regions of one split run from the top down without overlapping.
      const DataType::_sLinkRegion* above = nullptr;
      for (const auto& child : r.vecChild) {
        if (child.nType != 0 || !child.bNamed) {
          continue;
        }
        if (above != nullptr) {
          EXPECT_LE(above->nEnd1, child.nBegin1);
          EXPECT_LE(above->nEnd2, child.nBegin2);
        }
        above = &child;
        ++splits;
      }
      if (r.nType == 2) { // a pinch-out wedge: all four corners on boundaries of its holes
        ++wedges;
        EXPECT_TRUE(SamePoint(r.ptTop[0], On(zk1, Boundary(zk1, r.nBegin1))));
        EXPECT_TRUE(SamePoint(r.ptBot[0], On(zk1, Boundary(zk1, r.nEnd1))));
        EXPECT_TRUE(SamePoint(r.ptTop[1], On(zk2, Boundary(zk2, r.nBegin2))));
        EXPECT_TRUE(SamePoint(r.ptBot[1], On(zk2, Boundary(zk2, r.nEnd2))));
      }
      if (r.nType == 1) { // a lens: full thickness on its hole, tip at its mid elevation
        ++lenses;
        const bool onOne = r.nBegin1 >= 0;
        const auto& own = onOne ? zk1 : zk2;
        const auto& other = onOne ? zk2 : zk1;
        EXPECT_EQ(onOne ? r.nBegin2 : r.nBegin1, -1);
        EXPECT_TRUE(SamePoint(r.ptTop[0], On(own, Boundary(own, onOne ? r.nBegin1 : r.nBegin2))));
        EXPECT_TRUE(SamePoint(r.ptBot[0], On(own, Boundary(own, onOne ? r.nEnd1 : r.nEnd2))));
        const CXk3DPoint tip = r.ptTop[1];
        EXPECT_TRUE(SamePoint(r.ptBot[1], tip));
        EXPECT_DOUBLE_EQ(tip.z, (r.ptTop[0].z + r.ptBot[0].z) * 0.5);
        if (dist < 1e-3) {
          return; // holes on one plan position (both on the same grid point): no direction
        }
        // On the plan line towards the other hole, at most 45 % of the way.
        const double reach = std::hypot(tip.x - own.dX, tip.y - own.dY);
        EXPECT_LE(reach, 0.45 * dist + 1e-9);
        EXPECT_NEAR(reach + std::hypot(other.dX - tip.x, other.dY - tip.y), dist, 1e-7);
      }
    });
  }
  EXPECT_GT(splits, 0);
  EXPECT_GT(wedges, 0);
  EXPECT_GT(lenses, 0);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomCorrelationTest, ::testing::Range(1u, 26u));

} // namespace
} // namespace xkltest
