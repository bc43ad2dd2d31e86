// Splitting a region at strata common to both holes: pairing and crossing resolution, the named
// sub-regions of the first pass, and the gap regions of the second pass.
#include "CorrelationFixture.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace xkltest {
namespace {

using Pairs = std::vector<std::pair<int32_t, int32_t>>;

class SplittingTest : public CorrelationTest {
protected:
  Pairs Match(const DataType::_sLinkRegion& region) {
    std::vector<xkl::DcPair> pairs;
    xkl::MatchCommonStrata(state, region, pairs);
    Pairs out;
    for (const auto& p : pairs) {
      EXPECT_FALSE(p.bDrop);
      out.emplace_back(p.nDC1, p.nDC2);
    }
    return out;
  }
  xkl::RegionList Split(const DataType::_sLinkRegion& region) {
    xkl::RegionList out;
    xkl::SplitAtCommonStrata(state, region, out);
    return out;
  }
  xkl::RegionList Gaps(const DataType::_sLinkRegion& region, bool bSubRegion) {
    const auto children = Split(region);
    xkl::RegionList gaps;
    xkl::MakeGapRegions(state, region, children, gaps, bSubRegion);
    return gaps;
  }
  // Hole 1: A, B, C (and optionally D); hole 2: A, C.
  void LoadABCAgainstAC(bool withD = false) {
    std::vector<Layer> one = {{L"A", 95.0}, {L"B", 90.0}, {L"C", 80.0}};
    if (withD) {
      one.push_back({L"D", 72.0});
    }
    Load(MakeBorehole(0.0, 0.0, 100.0, one),
         MakeBorehole(60.0, 0.0, 102.0, {{L"A", 96.0}, {L"C", 85.0}}));
  }
};

using MatchCommonStrataTest = SplittingTest;

TEST_F(MatchCommonStrataTest, PairsEqualCodesWithMidElevationDifference) {
  LoadABCAgainstAC();
  std::vector<xkl::DcPair> pairs;
  xkl::MatchCommonStrata(state, Root(), pairs);
  ASSERT_EQ(pairs.size(), 2u);
  EXPECT_EQ(pairs[0].nDC1, 0);
  EXPECT_EQ(pairs[0].nDC2, 0);
  EXPECT_DOUBLE_EQ(pairs[0].dDiffGC, 1.5); // mid 97.5 against 99.0
  EXPECT_EQ(pairs[1].nDC1, 2);
  EXPECT_EQ(pairs[1].nDC2, 1);
  EXPECT_DOUBLE_EQ(pairs[1].dDiffGC, 5.5); // mid 85.0 against 90.5
}

TEST_F(MatchCommonStrataTest, CrossingPairDropsTheOneWithLargerDifference) {
  // A, B against B, A: A's mids differ by 6.5, B's by 3.5.
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}}),
       MakeBorehole(60.0, 0.0, 98.0, {{L"B", 94.0}, {L"A", 88.0}}));
  EXPECT_EQ(Match(Root()), (Pairs{{1, 0}}));
  EXPECT_EQ(Split(Root()).size(), 1u);
}

TEST_F(MatchCommonStrataTest, CrossingPairsWithEqualDifferenceDropTheLaterOne) {
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}}),
       MakeBorehole(60.0, 0.0, 100.0, {{L"B", 95.0}, {L"A", 90.0}}));
  EXPECT_EQ(Match(Root()), (Pairs{{0, 1}}));
  const auto subs = Split(Root());
  ASSERT_EQ(subs.size(), 1u);
  EXPECT_EQ(subs[0].strName, L"A");
}

TEST_F(MatchCommonStrataTest, PairDroppedByADroppedPairIsReadmitted) {
  // A, B, C against B, C, A with mid differences 5 (A), 1 (B) and 7 (C): A is dropped by B, C by
  // the already dropped A; A still crosses B, while C crosses nothing kept and comes back.
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 98.0}, {L"B", 94.0}, {L"C", 84.0}}),
       MakeBorehole(60.0, 0.0, 97.5, {{L"B", 96.5}, {L"C", 95.5}, {L"A", 92.5}}));
  EXPECT_EQ(Match(Root()), (Pairs{{1, 0}, {2, 1}}));
  const auto subs = Split(Root());
  ASSERT_EQ(subs.size(), 2u);
  EXPECT_EQ(subs[0].strName, L"B");
  EXPECT_RANGES(subs[0], 1, 2, 0, 1);
  EXPECT_EQ(subs[1].strName, L"C");
  EXPECT_RANGES(subs[1], 2, 3, 1, 2);
}

TEST_F(MatchCommonStrataTest, ScreeningKeysContinuationAndStableOrderDecideTheSurvivors) {
  // Candidate (1, 0) shares no stratum with the kept (2, 3): its key becomes 0 and it beats the
  // crossing candidate (0, 3), whose key 7.5 stays because it shares S of hole 2 with (2, 3).
  Load(MakeBorehole(0.0, 0.0, 96.0, {{L"S", 94.0}, {L"V", 90.0}, {L"S", 89.0}, {L"U", 83.0}}),
       MakeBorehole(60.0, 0.0, 104.0, {{L"V", 98.0}, {L"U", 92.0}, {L"U", 88.0}, {L"S", 87.0}}));
  EXPECT_EQ(Match(Root()), (Pairs{{1, 0}, {2, 3}}));
  // (0, 1) is dropped by (1, 0) and, already dropped, still drops (2, 0) (4 against 4.5).
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"T", 98.0}, {L"V", 95.0}, {L"V", 93.0}}),
       MakeBorehole(60.0, 0.0, 99.5, {{L"V", 97.5}, {L"T", 92.5}, {L"V", 87.5}}));
  EXPECT_EQ(Match(Root()), (Pairs{{1, 0}, {1, 2}, {2, 2}}));
  // Candidates (0, 3) and (1, 0) keep the equal key 4.5 and cross: the first in list order wins.
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"V", 99.0}, {L"V", 97.0}, {L"U", 96.0}}),
       MakeBorehole(60.0, 0.0, 103.0, {{L"V", 102.0}, {L"U", 99.0}, {L"T", 97.0}, {L"V", 93.0}}));
  EXPECT_EQ(Match(Root()), (Pairs{{0, 0}, {0, 3}, {1, 3}}));
}

TEST_F(MatchCommonStrataTest, EnvelopeCodeAndEmptyRangesGivePairsOfOtherCodesOnly) {
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 97.0}, {L"B", 94.0}, {L"A", 90.0}}),
       MakeBorehole(50.0, 0.0, 100.0, {{L"A", 96.0}, {L"B", 93.0}, {L"A", 89.0}}));
  EXPECT_EQ(Match(Region(0, 3, 0, 3, L"A", true)), (Pairs{{1, 1}}));
  // Unnamed, A pairs four ways; (0, 2) and (2, 0) cross each other and B, so only the
  // level-running pairs survive.
  EXPECT_EQ(Match(Region(0, 3, 0, 3)), (Pairs{{0, 0}, {1, 1}, {2, 2}}));
  EXPECT_TRUE(Match(Region(0, 3, 1, 1)).empty());
  EXPECT_TRUE(Split(Region(2, 2, 0, 3)).empty());
}

using SplitAtCommonStrataTest = SplittingTest;

TEST_F(SplitAtCommonStrataTest, OneNamedSubRegionPerCommonStratum) {
  LoadABCAgainstAC();
  const auto root = Root();
  xkl::RegionList out(1);
  out[0].strName = L"earlier";
  xkl::SplitAtCommonStrata(state, root, out);
  ASSERT_EQ(out.size(), 3u);
  EXPECT_EQ(out[0].strName, L"earlier"); // appended to, never cleared
  const auto& a = out[1];
  const auto& c = out[2];
  EXPECT_EQ(a.nType, 0);
  EXPECT_TRUE(a.bNamed);
  EXPECT_EQ(a.strName, L"A");
  EXPECT_RANGES(a, 0, 1, 0, 1);
  EXPECT_POINT(a.ptTop[1], 60.0, 0.0, 102.0);
  EXPECT_Z(a, 100.0, 95.0, 102.0, 96.0);
  EXPECT_EQ(c.strName, L"C");
  EXPECT_TRUE(c.bNamed);
  EXPECT_RANGES(c, 2, 3, 1, 2);
  EXPECT_Z(c, 90.0, 80.0, 96.0, 85.0); // the last strata: their bottoms
  EXPECT_TRUE(c.vecChild.empty());

  xkl::RegionList none;
  auto wedge = root;
  wedge.nType = 2;
  xkl::SplitAtCommonStrata(state, wedge, none);
  EXPECT_TRUE(none.empty());
}

TEST_F(SplitAtCommonStrataTest, TopCornersAtFirstStratumNotAtCollar) {
  Load(MakeBorehole(0.0, 0.0, 101.2, {{L"A", 95.0}, {L"B", 90.0}}, 100.0),
       MakeBorehole(60.0, 0.0, 102.4, {{L"A", 97.0}}, 101.5));
  const auto subs = Split(Root());
  ASSERT_EQ(subs.size(), 1u);
  EXPECT_Z(subs[0], 100.0, 95.0, 101.5, 97.0);
}

TEST_F(SplitAtCommonStrataTest, RepeatedCodeChainsIntoOneEnvelope) {
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 90.0}}),
       MakeBorehole(50.0, 0.0, 100.0, {{L"A", 97.0}, {L"X", 94.0}, {L"A", 88.0}}));
  EXPECT_EQ(Match(Root()), (Pairs{{0, 0}, {0, 2}}));
  const auto subs = Split(Root());
  ASSERT_EQ(subs.size(), 1u);
  EXPECT_RANGES(subs[0], 0, 1, 0, 3);
  EXPECT_Z(subs[0], 100.0, 90.0, 100.0, 88.0);
}

TEST_F(SplitAtCommonStrataTest, CodeTwiceInEachHoleDropsOneCrossingPairAndChains) {
  // K at 3 and 7 in hole 1 (2 m strata from 100 m), at 5 and 9 in hole 2 (2 m strata from 110 m):
  // the crossing pairs (3, 9) and (7, 5) differ by 2 and 14, so (7, 5) is dropped.
  std::vector<Layer> one;
  std::vector<Layer> two;
  for (int i = 0; i < 10; ++i) {
    one.push_back({i == 3 || i == 7 ? L"K" : L"P" + std::to_wstring(i), 98.0 - 2.0 * i});
    two.push_back({i == 5 || i == 9 ? L"K" : L"R" + std::to_wstring(i), 108.0 - 2.0 * i});
  }
  Load(MakeBorehole(0.0, 0.0, 100.0, one), MakeBorehole(80.0, 0.0, 110.0, two));
  EXPECT_EQ(Match(Root()), (Pairs{{3, 5}, {3, 9}, {7, 9}}));
  const auto subs = Split(Root());
  ASSERT_EQ(subs.size(), 1u);
  EXPECT_EQ(subs[0].strName, L"K");
  EXPECT_RANGES(subs[0], 3, 8, 5, 10);
  EXPECT_Z(subs[0], 94.0, 84.0, 100.0, 90.0);
}

using MakeGapRegionsTest = SplittingTest;

TEST_F(MakeGapRegionsTest, RootGetsMiddleGapButNoBottomGap) {
  for (const bool withD : {false, true}) {
    LoadABCAgainstAC(withD);
    const auto root = Root();
    const auto subs = Split(root);
    const auto gaps = Gaps(root, false);
    ASSERT_EQ(gaps.size(), 1u) << "with D: " << withD;
    const auto& g = gaps[0];
    EXPECT_EQ(g.nType, 0);
    EXPECT_FALSE(g.bNamed);
    EXPECT_EQ(g.strName, L"");
    EXPECT_RANGES(g, 1, 2, 1, 1); // B on hole 1, nothing on hole 2
    for (int i = 0; i < 2; ++i) {
      EXPECT_TRUE(SamePoint(g.ptTop[i], subs[0].ptBot[i]));
      EXPECT_TRUE(SamePoint(g.ptBot[i], subs[1].ptTop[i]));
    }
  }
  // D, below the deepest common stratum, ends up in no region of the tree.
  auto root = Root();
  xkl::LinkRegion(state, root, false);
  ForEachRegion(root, [&](const DataType::_sLinkRegion& r) {
    if (&r != &root) {
      EXPECT_FALSE(r.nBegin1 <= 3 && 3 < r.nEnd1) << "D in region " << r.nBegin1 << "-" << r.nEnd1;
    }
  });
}

TEST_F(MakeGapRegionsTest, BelowTheRootABottomGapReachesTheRegionEnd) {
  LoadABCAgainstAC(true);
  const auto region = Region(0, 4, 0, 2);
  const auto gaps = Gaps(region, true);
  ASSERT_EQ(gaps.size(), 2u);
  EXPECT_RANGES(gaps[0], 1, 2, 1, 1);
  EXPECT_RANGES(gaps[1], 3, 4, 2, 2);
  EXPECT_Z(gaps[1], 80.0, 72.0, 85.0, 85.0);

  LoadABCAgainstAC(false); // C ends at the region's end on both sides
  EXPECT_EQ(Gaps(Region(0, 3, 0, 2), true).size(), 1u);
}

TEST_F(MakeGapRegionsTest, TouchingSubRegionsStillGetAnEmptyMiddleGap) {
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}}),
       MakeBorehole(60.0, 0.0, 100.0, {{L"A", 96.0}, {L"B", 91.0}}));
  const auto gaps = Gaps(Root(), false);
  ASSERT_EQ(gaps.size(), 1u);
  EXPECT_RANGES(gaps[0], 1, 1, 1, 1);
  EXPECT_Z(gaps[0], 95.0, 95.0, 96.0, 96.0);
}

TEST_F(MakeGapRegionsTest, TopGapEmptyOnHoleOneWhenHoleTwoStartsLower) {
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}}),
       MakeBorehole(60.0, 0.0, 103.0, {{L"X", 100.0}, {L"A", 96.0}, {L"B", 91.0}}));
  const auto gaps = Gaps(Root(), false);
  ASSERT_EQ(gaps.size(), 2u);
  EXPECT_RANGES(gaps[0], 0, 0, 0, 1);
  EXPECT_Z(gaps[0], 100.0, 100.0, 103.0, 100.0);
  EXPECT_RANGES(gaps[1], 1, 1, 2, 2);
}

TEST_F(MakeGapRegionsTest, EnvelopeSkipsItsLeadingStratumAndItsLastOne) {
  // Envelope A holding A, B, X, A against A, B, A: only X remains, in a named bottom gap.
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 97.0}, {L"B", 94.0}, {L"X", 90.0}, {L"A", 86.0}}),
       MakeBorehole(50.0, 0.0, 101.0, {{L"A", 98.0}, {L"B", 95.0}, {L"A", 91.0}}));
  const auto gaps = Gaps(Region(0, 4, 0, 3, L"A", true), true);
  ASSERT_EQ(gaps.size(), 1u);
  EXPECT_TRUE(gaps[0].bNamed);
  EXPECT_EQ(gaps[0].strName, L"A");
  EXPECT_RANGES(gaps[0], 2, 3, 2, 2);
  EXPECT_Z(gaps[0], 94.0, 86.0, 95.0, 91.0);
}

TEST_F(MakeGapRegionsTest, EnvelopeNameJustAboveTheRegionCutsItsLastStratum) {
  // The stratum above the region carries A: the last stratum drops out of the bottom gap,
  // whatever its code; for a name found nowhere above, the bottom gap is made.
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 97.0}, {L"B", 94.0}, {L"K", 90.0}, {L"C", 86.0}}),
       MakeBorehole(50.0, 0.0, 100.0, {{L"A", 96.0}, {L"D", 93.0}, {L"K", 89.0}, {L"E", 85.0}}));
  const auto gapsA = Gaps(Region(1, 4, 1, 4, L"A", true), true);
  ASSERT_EQ(gapsA.size(), 1u);
  EXPECT_RANGES(gapsA[0], 1, 2, 1, 2);
  const auto gapsZ = Gaps(Region(1, 4, 1, 4, L"Z", true), true);
  ASSERT_EQ(gapsZ.size(), 2u);
  EXPECT_RANGES(gapsZ[1], 3, 4, 3, 4);
}

} // namespace
} // namespace xkltest
