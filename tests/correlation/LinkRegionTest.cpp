// The correlation entry: root initialisation, the work and common-stratum tests, and the choice
// between splitting and closing that the recursion makes for each region.
#include "CorrelationFixture.h"

namespace xkltest {
namespace {

using LinkRegionTest = CorrelationTest;

TEST_F(LinkRegionTest, RootTopAtCollarsBottomAtLastStratumChildrenKept) {
  // Both collars stand above the first logged stratum (unlogged fill).
  Load(MakeBorehole(10.0, 20.0, 101.2, {{L"Q4", 95.0}, {L"Q3", 88.0}}, 100.0),
       MakeBorehole(70.0, 100.0, 99.5, {{L"Q4", 93.0}, {L"N2", 80.0}}, 99.0));
  DataType::_sLinkRegion root;
  root.nType = 2;
  root.bNamed = true;
  root.strName = L"old";
  root.vecChild.resize(1);
  root.vecChild[0].strName = L"kept";
  xkl::InitRootRegion(state, root);
  auto expected = With(Region(0, 2, 0, 2), {root.vecChild[0]});
  expected.ptTop[0].z = 101.2;
  expected.ptTop[1].z = 99.5;
  EXPECT_TRUE(SameTree(root, expected));
}

TEST(HasMixedStrataTest, NeedsTwoNeighboursOfDifferentCode) {
  const auto zk = MakeBorehole(
      0.0, 0.0, 100.0, {{L"A", 98.0}, {L"A", 96.0}, {L"A", 94.0}, {L"B", 90.0}, {L"A", 85.0}});
  const std::vector<int32_t> ids = xkl::CodeIndex::Build(zk, DataType::_sZK()).ids1;
  EXPECT_FALSE(xkl::HasMixedStrata(ids, 0, 3)); // A, A, A
  EXPECT_TRUE(xkl::HasMixedStrata(ids, 0, 4));  // ..., A, B
  EXPECT_TRUE(xkl::HasMixedStrata(ids, 2, 5));  // A, B, A
  EXPECT_FALSE(xkl::HasMixedStrata(ids, 3, 4)); // a single stratum
  EXPECT_FALSE(xkl::HasMixedStrata(ids, 4, 4)); // touches only the boundary
  EXPECT_FALSE(xkl::HasMixedStrata(ids, -1, -1));
  EXPECT_FALSE(xkl::HasMixedStrata(ids, 4, 2));
}

TEST_F(LinkRegionTest, CommonStratumTestLeavesTheEnvelopeCodeOutOnlyWhenNamed) {
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 97.0}, {L"B", 94.0}, {L"A", 90.0}}),
       MakeBorehole(50.0, 0.0, 100.0, {{L"A", 96.0}, {L"C", 91.0}}));
  EXPECT_FALSE(xkl::HasCommonStratum(state, Region(0, 3, 0, 2, L"A", true)));
  EXPECT_TRUE(xkl::HasCommonStratum(state, Region(0, 3, 0, 2, L"A", false)));
  EXPECT_TRUE(xkl::HasCommonStratum(state, Region(0, 3, 0, 2, L"", false)));
  EXPECT_TRUE(xkl::HasCommonStratum(state, Region(0, 3, 0, 2, L"a", true))); // case-sensitive
  EXPECT_FALSE(xkl::HasCommonStratum(state, Region(1, 2, 0, 2)));            // B against A, C
  EXPECT_FALSE(xkl::HasCommonStratum(state, Region(0, 3, 1, 1)));            // empty on hole 2
  EXPECT_FALSE(xkl::HasCommonStratum(state, Region(2, 2, 0, 2)));            // empty on hole 1
}

TEST_F(LinkRegionTest, OneCodePerHoleLeavesTheRootAlone) {
  // A repeated on one side against A, and even A against B: no neighbours of different code.
  for (const std::wstring other : {L"A", L"B"}) {
    Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 97.0}, {L"A", 93.0}, {L"A", 90.0}}),
         MakeBorehole(40.0, 0.0, 101.0, {{other, 92.0}}));
    auto root = Root();
    xkl::LinkRegion(state, root, false);
    EXPECT_TRUE(SameTree(root, Region(0, 3, 0, 1)));
  }
}

TEST_F(LinkRegionTest, ARegionWithNothingToDoIsNotDescendedInto) {
  // The region holds one stratum a side; the child the caller left in it holds A over B, which
  // would be split if it were visited.
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 96.0}, {L"B", 91.0}}),
       MakeBorehole(60.0, 0.0, 99.0, {{L"A", 94.0}}));
  const auto untouched = With(Region(0, 1, 0, 1), {Region(0, 2, 0, 1)});
  auto region = untouched;
  xkl::LinkRegion(state, region, false);
  EXPECT_TRUE(SameTree(region, untouched));
}

TEST_F(LinkRegionTest, ClosedRegionWithMixedStrataIsClosedAgainNeverSplit) {
  // A shared by both holes would split a kind-0 region; a wedge or lens is closed as unmatched
  // strata: A of hole 1 first (equal codes), then A of hole 2 above B, then B.
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 96.0}, {L"B", 91.0}}),
       MakeBorehole(60.0, 0.0, 99.0, {{L"A", 94.0}}));
  for (const int32_t kind : {1, 2}) {
    auto wedge = Region(0, 2, 0, 1, L"Q", false, kind);
    xkl::LinkRegion(state, wedge, true);
    EXPECT_TRUE(SameTree(
        wedge, With(Region(0, 2, 0, 1, L"Q", false, kind),
                    {Region(0, 1, 0, 0, L"A", false, 2), Region(1, 1, 0, 1, L"A", false, 2),
                     Region(1, 2, 1, 1, L"B", false, 2)})));
  }
}

TEST(LinkDcStateTest, SlotsHoldCopiesAndPlanDistance) {
  const auto zk1 = MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"C", 80.0}});
  auto zk2 = MakeBorehole(30.0, 40.0, 102.0, {{L"A", 96.0}, {L"C", 85.0}});
  DataType::_sLinkRegion root;
  LinkDc(zk1, zk2, root);
  EXPECT_DOUBLE_EQ(xkl::g_dDist, 50.0);
  ASSERT_EQ(xkl::g_zk2.vecDC.size(), 2u);
  zk2.vecDC[1].strName = L"changed";
  EXPECT_EQ(xkl::g_zk2.vecDC[1].strName, L"C"); // a copy, not a reference
}

} // namespace
} // namespace xkltest
