// Splitting a region at strata common to both holes: pairing and crossing resolution, the named
// sub-regions of the first pass, and the gap regions of the second pass.
#include "CorrelationFixture.h"
#include "correlation/CrossingResolution.h"
#include "support/RandomBoreholes.h"

#include <bit>
#include <limits>
#include <random>
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
    xkl::RegionList gaps;
    xkl::MakeGapRegions(state, region, Split(region), gaps, bSubRegion);
    return gaps;
  }
};

TEST_F(SplittingTest, PairsCarryTheMidElevationDifferenceSubRegionsAreAppended) {
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"C", 80.0}}),
       MakeBorehole(60.0, 0.0, 102.0, {{L"A", 96.0}, {L"C", 85.0}}));
  std::vector<xkl::DcPair> pairs;
  auto root = Root();
  xkl::MatchCommonStrata(state, root, pairs);
  ASSERT_EQ(pairs.size(), 2u);
  EXPECT_EQ(pairs[0].dDiffGC, 1.5); // A: mid 97.5 against 99.0
  EXPECT_EQ(pairs[1].dDiffGC, 5.5); // C: mid 85.0 against 90.5
  xkl::RegionList out(1);
  out[0].strName = L"earlier";
  xkl::SplitAtCommonStrata(state, root, out);
  ASSERT_EQ(out.size(), 3u);
  EXPECT_EQ(out[0].strName, L"earlier");
  root.nType = 2; // nothing is split inside a wedge
  EXPECT_TRUE(Split(root).empty());
}

// A named sub-region of a split: code and ranges; its corners lie on the boundaries of the ranges.
struct Sub {
  const wchar_t* code;
  int32_t b1, e1, b2, e2;
};

class MatchCommonStrataTest : public SplittingTest {
protected:
  // The surviving pairs of the root and, where listed, the sub-regions of its split.
  void Expect(const char* what, const DataType::_sZK& one, const DataType::_sZK& two,
              const Pairs& pairs, const std::vector<Sub>& subs = {}) {
    SCOPED_TRACE(what);
    Load(one, two);
    EXPECT_EQ(Match(Root()), pairs);
    if (subs.empty()) {
      return;
    }
    const auto split = Split(Root());
    ASSERT_EQ(split.size(), subs.size());
    for (std::size_t i = 0; i < subs.size(); ++i) {
      const Sub& s = subs[i];
      EXPECT_TRUE(SameTree(split[i], Region(s.b1, s.e1, s.b2, s.e2, s.code, true))) << i;
    }
  }
};

// Hole 1 at the origin, hole 2 60 m east.
DataType::_sZK One(double collar, const std::vector<Layer>& layers, double firstTop = NAN) {
  return MakeBorehole(0.0, 0.0, collar, layers, firstTop);
}
DataType::_sZK Two(double collar, const std::vector<Layer>& layers, double firstTop = NAN) {
  return MakeBorehole(60.0, 0.0, collar, layers, firstTop);
}

TEST_F(MatchCommonStrataTest, CrossingPairsAndChainsDecideTheSubRegions) {
  Expect("A, B against B, A: A's mids differ by 6.5, B's by 3.5; the larger goes",
         One(100, {{L"A", 95}, {L"B", 90}}), Two(98, {{L"B", 94}, {L"A", 88}}), {{1, 0}},
         {{L"B", 1, 2, 0, 1}});
  Expect("equal differences: the later pair goes", One(100, {{L"A", 95}, {L"B", 90}}),
         Two(100, {{L"B", 95}, {L"A", 90}}), {{0, 1}}, {{L"A", 0, 1, 1, 2}});
  Expect("differences A 5, B 1, C 7: A is dropped by B, C by the already dropped A; A still "
         "crosses B, while C crosses nothing kept and is readmitted",
         One(100, {{L"A", 98}, {L"B", 94}, {L"C", 84}}),
         Two(97.5, {{L"B", 96.5}, {L"C", 95.5}, {L"A", 92.5}}), {{1, 0}, {2, 1}},
         {{L"B", 1, 2, 0, 1}, {L"C", 2, 3, 1, 2}});
  Expect("(1, 0) shares no stratum with the kept (2, 3): its key becomes 0 and it beats the "
         "crossing (0, 3), whose key 7.5 stays because it shares S of hole 2 with (2, 3)",
         One(96, {{L"S", 94}, {L"V", 90}, {L"S", 89}, {L"U", 83}}),
         Two(104, {{L"V", 98}, {L"U", 92}, {L"U", 88}, {L"S", 87}}), {{1, 0}, {2, 3}});
  Expect("(0, 1) is dropped by (1, 0) and, already dropped, still drops (2, 0) (4 against 4.5)",
         One(100, {{L"T", 98}, {L"V", 95}, {L"V", 93}}),
         Two(99.5, {{L"V", 97.5}, {L"T", 92.5}, {L"V", 87.5}}), {{1, 0}, {1, 2}, {2, 2}});
  Expect("(0, 3) and (1, 0) keep the equal key 4.5 and cross: the first in list order wins",
         One(100, {{L"V", 99}, {L"V", 97}, {L"U", 96}}),
         Two(103, {{L"V", 102}, {L"U", 99}, {L"T", 97}, {L"V", 93}}), {{0, 0}, {0, 3}, {1, 3}});
  Expect("a repeated code chains into one envelope", One(100, {{L"A", 90}}),
         Two(100, {{L"A", 97}, {L"X", 94}, {L"A", 88}}), {{0, 0}, {0, 2}}, {{L"A", 0, 1, 0, 3}});
  Expect("top corners at the first stratum, not at the collar",
         One(101.2, {{L"A", 95}, {L"B", 90}}, 100.0), Two(102.4, {{L"A", 97}}, 101.5), {{0, 0}},
         {{L"A", 0, 1, 0, 1}});
  // K at 3 and 7 in hole 1 (2 m strata from 100 m), at 5 and 9 in hole 2 (2 m strata from 110 m):
  // the crossing pairs (3, 9) and (7, 5) differ by 2 and 14, so (7, 5) goes.
  std::vector<Layer> k1;
  std::vector<Layer> k2;
  for (int i = 0; i < 10; ++i) {
    k1.push_back({i == 3 || i == 7 ? L"K" : L"P" + std::to_wstring(i), 98.0 - 2.0 * i});
    k2.push_back({i == 5 || i == 9 ? L"K" : L"R" + std::to_wstring(i), 108.0 - 2.0 * i});
  }
  Expect("K twice in each hole", One(100, k1), Two(110, k2), {{3, 5}, {3, 9}, {7, 9}},
         {{L"K", 3, 8, 5, 10}});
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

TEST_F(SplittingTest, GapsLieBetweenSubRegionsAndBelowOnlyInsideTheRoot) {
  // The holes' strata start at their collars, so a region over all strata is the root. The gaps
  // (ranges) are unnamed and their corners lie on the boundaries of their ranges.
  using Gap = std::vector<int32_t>;
  const auto abc = MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"C", 80.0}});
  const auto abcd =
      MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"C", 80.0}, {L"D", 72.0}});
  const auto ac = MakeBorehole(60.0, 0.0, 102.0, {{L"A", 96.0}, {L"C", 85.0}});
  const auto ab = MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}});
  const auto ab2 = MakeBorehole(60.0, 0.0, 100.0, {{L"A", 96.0}, {L"B", 91.0}});
  const auto xab = MakeBorehole(60.0, 0.0, 103.0, {{L"X", 100.0}, {L"A", 96.0}, {L"B", 91.0}});
  const struct {
    const char* what;
    const DataType::_sZK *zk1, *zk2;
    bool bSubRegion;
    std::vector<Gap> gaps;
  } cases[] = {
      {"B on hole 1, nothing on hole 2", &abc, &ac, false, {{1, 2, 1, 1}}},
      {"at the root nothing below the deepest common stratum", &abcd, &ac, false, {{1, 2, 1, 1}}},
      {"below the root a bottom gap", &abcd, &ac, true, {{1, 2, 1, 1}, {3, 4, 2, 2}}},
      {"C ends at the region's end on both sides", &abc, &ac, true, {{1, 2, 1, 1}}},
      {"touching sub-regions: an empty middle gap", &ab, &ab2, false, {{1, 1, 1, 1}}},
      {"hole 2 starts lower: top gap empty on 1", &ab, &xab, false, {{0, 0, 0, 1}, {1, 1, 2, 2}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Load(*c.zk1, *c.zk2);
    const auto region = Region(0, static_cast<int32_t>(c.zk1->vecDC.size()), 0,
                               static_cast<int32_t>(c.zk2->vecDC.size()));
    const auto gaps = Gaps(region, c.bSubRegion);
    ASSERT_EQ(gaps.size(), c.gaps.size());
    for (std::size_t i = 0; i < gaps.size(); ++i) {
      const Gap& g = c.gaps[i];
      EXPECT_TRUE(SameTree(gaps[i], Region(g[0], g[1], g[2], g[3]))) << i;
    }
  }
  // D, below the deepest common stratum, ends up in no region of the tree.
  Load(abcd, ac);
  auto root = Root();
  xkl::LinkRegion(state, root, false);
  ForEachRegion(root, [&](const DataType::_sLinkRegion& r) {
    if (&r != &root) {
      EXPECT_FALSE(r.nBegin1 <= 3 && 3 < r.nEnd1) << "D in region " << r.nBegin1 << "-" << r.nEnd1;
    }
  });
}

TEST_F(SplittingTest, EnvelopeGapsSkipItsLeadingStratumAndMayCutItsLastOne) {
  // Envelope A holding A, B, X, A against A, B, A: only X remains, in a named bottom gap that
  // ends at the region's bottom.
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 97.0}, {L"B", 94.0}, {L"X", 90.0}, {L"A", 86.0}}),
       MakeBorehole(50.0, 0.0, 101.0, {{L"A", 98.0}, {L"B", 95.0}, {L"A", 91.0}}));
  auto gaps = Gaps(Region(0, 4, 0, 3, L"A", true), true);
  ASSERT_EQ(gaps.size(), 1u);
  EXPECT_TRUE(gaps[0].bNamed);
  EXPECT_EQ(gaps[0].strName, L"A");
  EXPECT_RANGES(gaps[0], 2, 3, 2, 2);
  EXPECT_TRUE(Near({gaps[0].ptTop[0].z, gaps[0].ptBot[0].z, gaps[0].ptTop[1].z, gaps[0].ptBot[1].z},
                   {94.0, 86.0, 95.0, 91.0}));
  // The stratum above the region carries A: the last stratum drops out of the bottom gap,
  // whatever its code; for a name found nowhere above, the bottom gap is made.
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 97.0}, {L"B", 94.0}, {L"K", 90.0}, {L"C", 86.0}}),
       MakeBorehole(50.0, 0.0, 100.0, {{L"A", 96.0}, {L"D", 93.0}, {L"K", 89.0}, {L"E", 85.0}}));
  gaps = Gaps(Region(1, 4, 1, 4, L"A", true), true);
  ASSERT_EQ(gaps.size(), 1u);
  EXPECT_RANGES(gaps[0], 1, 2, 1, 2);
  gaps = Gaps(Region(1, 4, 1, 4, L"Z", true), true);
  ASSERT_EQ(gaps.size(), 2u);
  EXPECT_RANGES(gaps[1], 3, 4, 3, 4);
}

// Regions with more equal-code pairs than the bitsets settle are matched without listing every
// pair; the kept pairs must be those of settling the full list. Random holes of few codes, ranges
// that start below the top, envelopes whose own code pairs with nothing, and mid elevations that
// tie, are infinite or are not numbers.
TEST_F(SplittingTest, ManyPairsAreMatchedAsTheirFullListWouldBe) {
  int many = 0;
  for (uint64_t seed = 1; seed <= 120; ++seed) {
    std::mt19937_64 rng(seed);
    xktest::RandomBoreholeOptions opt;
    opt.minStrata = 40;
    opt.maxStrata = 160;
    opt.codeCount = xktest::UniformInt(rng, 1, 4);
    opt.gridChance = 0.9; // tied keys
    auto one = xktest::RandomBorehole(rng, opt, L"ONE");
    auto two = xktest::RandomBorehole(rng, opt, L"TWO");
    for (auto* hole : {&one, &two}) {
      for (auto& dc : hole->vecDC) {
        if (xktest::Chance(rng, 0.02)) {
          dc.dBotGC = xktest::Chance(rng, 0.5) ? std::numeric_limits<double>::quiet_NaN()
                                               : -std::numeric_limits<double>::infinity();
        }
      }
    }
    Load(one, two);
    const auto n1 = static_cast<int32_t>(one.vecDC.size());
    const auto n2 = static_cast<int32_t>(two.vecDC.size());
    const int32_t b1 = xktest::UniformInt(rng, 0, 3);
    const int32_t b2 = xktest::UniformInt(rng, 0, 3);
    const bool named = xktest::Chance(rng, 0.5);
    const std::wstring name = one.vecDC[static_cast<std::size_t>(b1)].strName;
    const auto region = Region(b1, n1, b2, n2, named ? name : L"", named);

    std::vector<xkl::DcPair> expected;
    for (int32_t i = b1; i < n1; ++i) {
      for (int32_t j = b2; j < n2; ++j) {
        const auto& a = one.vecDC[static_cast<std::size_t>(i)];
        const auto& b = two.vecDC[static_cast<std::size_t>(j)];
        if (a.strName == b.strName && !(named && a.strName == name)) {
          xkl::DcPair pair;
          pair.nDC1 = i;
          pair.nDC2 = j;
          pair.dDiffGC = std::fabs(xkl::MidElevation(a) - xkl::MidElevation(b));
          expected.push_back(pair);
        }
      }
    }
    many += expected.size() > xkl::kMaxBitsetPairs ? 1 : 0;
    xkl::Workspace work;
    xkl::ResolveCrossingsBySweep(expected, work.sweep);
    std::erase_if(expected, [](const xkl::DcPair& pair) { return pair.bDrop; });

    std::vector<xkl::DcPair> pairs;
    xkl::MatchCommonStrata(state, region, pairs);
    ASSERT_EQ(pairs.size(), expected.size()) << "seed " << seed;
    for (std::size_t k = 0; k < pairs.size(); ++k) {
      EXPECT_EQ(pairs[k].nDC1, expected[k].nDC1) << "seed " << seed << " pair " << k;
      EXPECT_EQ(pairs[k].nDC2, expected[k].nDC2) << "seed " << seed << " pair " << k;
      EXPECT_EQ(std::bit_cast<uint64_t>(pairs[k].dDiffGC),
                std::bit_cast<uint64_t>(expected[k].dDiffGC))
          << "seed " << seed << " pair " << k;
      EXPECT_FALSE(pairs[k].bDrop);
    }
  }
  EXPECT_GT(many, 60); // most regions take the way for many pairs
}

} // namespace
} // namespace xkltest
