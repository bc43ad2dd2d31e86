// The two ways of settling crossing pairs must agree decision for decision: bitsets serve the
// pairs of ordinary logs, the sweep tree those of long logs, and a region's pair count decides
// which one runs. Random pair sets of every size up to the bitsets' limit (one to sixteen words),
// with tied keys (equal mid-elevation differences are common on surveyed grids) and keys that are
// not numbers.
#include "correlation/CrossingResolution.h"

#include "support/RandomBoreholes.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace {

using xkl::DcPair;

// How the keys of a pair set are drawn: mostly spread with some ties and some keys that are not
// finite; only a few tied values (a surveyed grid); or spread over hundreds of orders of magnitude.
enum class Keys { Mixed, Tied, Extreme };

// Pairs (row, column) in collection order, each cell taken with the given chance.
std::vector<DcPair> RandomPairs(std::mt19937_64& rng, int rows, int columns, double density,
                                Keys style = Keys::Mixed) {
  std::vector<DcPair> pairs;
  const double keys[] = {0.0, 0.5, 1.0, 1.5, 2.0, 0.25};
  const double extremes[] = {0.0, 5e-324, 1e-300, 1e-9, 3.0, 1e9, 1e300, 1.7e308};
  for (int r = 0; r < rows; ++r) {
    for (int c = 0; c < columns; ++c) {
      if (!xktest::Chance(rng, density)) {
        continue;
      }
      DcPair pair;
      pair.nDC1 = r + 3; // ranges need not start at the top of the hole
      pair.nDC2 = c * 2 + 1;
      const int pick = xktest::UniformInt(rng, 0, 40);
      if (style == Keys::Tied) {
        pair.dDiffGC = keys[pick % 6];
      } else if (style == Keys::Extreme) {
        pair.dDiffGC = extremes[pick % 8];
      } else {
        pair.dDiffGC = pick < 6    ? keys[pick]
                       : pick == 6 ? std::numeric_limits<double>::quiet_NaN()
                       : pick == 7 ? std::numeric_limits<double>::infinity()
                                   : xktest::UniformReal(rng, 0.0, 20.0);
      }
      pairs.push_back(pair);
    }
  }
  return pairs;
}

bool SameKey(double a, double b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

TEST(CrossingResolution, BitsetsAndSweepTreeDecideAlike) {
  xkl::Workspace work;
  int compared = 0;
  int withReadmission = 0;
  for (uint64_t seed = 1; seed <= 600; ++seed) {
    std::mt19937_64 rng(seed);
    const int rows = xktest::UniformInt(rng, 1, 30);
    const int columns = xktest::UniformInt(rng, 1, 30);
    const Keys style = seed % 5 == 0 ? Keys::Tied : seed % 5 == 1 ? Keys::Extreme : Keys::Mixed;
    std::vector<DcPair> pairs =
        RandomPairs(rng, rows, columns, xktest::UniformReal(rng, 0.02, 0.5), style);
    if (pairs.size() > xkl::kMaxBitsetPairs) {
      pairs.resize(xkl::kMaxBitsetPairs); // the first rows: still in collection order
    }
    std::vector<DcPair> byBitsets = pairs;
    std::vector<DcPair> bySweep = pairs;
    ASSERT_TRUE(xkl::ResolveCrossingsByBitsets(byBitsets, work.bitsets));
    xkl::ResolveCrossingsBySweep(bySweep, work.sweep);
    bool readmitted = false;
    for (std::size_t p = 0; p < pairs.size(); ++p) {
      ASSERT_EQ(byBitsets[p].bDrop, bySweep[p].bDrop) << "seed " << seed << ", pair " << p;
      ASSERT_TRUE(SameKey(byBitsets[p].dDiffGC, bySweep[p].dDiffGC)) << "seed " << seed;
      readmitted =
          readmitted || (!bySweep[p].bDrop && !SameKey(bySweep[p].dDiffGC, pairs[p].dDiffGC));
    }
    // What remains never crosses.
    for (std::size_t p = 0; p < pairs.size(); ++p) {
      for (std::size_t q = p + 1; q < pairs.size() && !byBitsets[p].bDrop; ++q) {
        if (!byBitsets[q].bDrop) {
          ASSERT_FALSE(byBitsets[q].nDC1 > byBitsets[p].nDC1 &&
                       byBitsets[q].nDC2 < byBitsets[p].nDC2)
              << "seed " << seed;
        }
      }
    }
    ++compared;
    withReadmission += readmitted ? 1 : 0;
  }
  EXPECT_EQ(compared, 600);
  EXPECT_GT(withReadmission, 30); // the second chance was exercised, not only the first sweep
}

// A rare code against a long log: a few pairs spread over thousands of columns go to the sweep,
// which settles them alike.
TEST(CrossingResolution, FewPairsOverManyColumnsAreLeftToTheSweep) {
  xkl::Workspace work;
  const std::vector<DcPair> pairs{
      {3, 5000, 2.0, false}, {3, 9000, 1.0, false}, {8, 10, 0.5, false}, {9, 20, 3.0, false}};
  std::vector<DcPair> byBitsets = pairs;
  EXPECT_FALSE(xkl::ResolveCrossingsByBitsets(byBitsets, work.bitsets));
  for (std::size_t p = 0; p < pairs.size(); ++p) {
    EXPECT_FALSE(byBitsets[p].bDrop);
    EXPECT_EQ(byBitsets[p].dDiffGC, pairs[p].dDiffGC);
  }
  std::vector<DcPair> resolved = pairs;
  xkl::ResolveCrossings(resolved, work);
  std::vector<DcPair> bySweep = pairs;
  xkl::ResolveCrossingsBySweep(bySweep, work.sweep);
  for (std::size_t p = 0; p < pairs.size(); ++p) {
    EXPECT_EQ(resolved[p].bDrop, bySweep[p].bDrop) << p;
  }
  // (8, 10) crosses both pairs of row 3 and has the least key: they are dropped, and (9, 20),
  // which crosses them too, stays with it.
  EXPECT_TRUE(resolved[0].bDrop);
  EXPECT_TRUE(resolved[1].bDrop);
  EXPECT_FALSE(resolved[2].bDrop);
  EXPECT_FALSE(resolved[3].bDrop);
}

TEST(CrossingResolution, ASinglePairOrNoneIsLeftAlone) {
  xkl::Workspace work;
  std::vector<DcPair> none;
  xkl::ResolveCrossings(none, work);
  EXPECT_TRUE(none.empty());
  std::vector<DcPair> one{DcPair{4, 7, std::numeric_limits<double>::quiet_NaN(), false}};
  xkl::ResolveCrossings(one, work);
  EXPECT_FALSE(one[0].bDrop);
}

// The candidates of the second chance end in the order that inserting them one by one in list
// order gives: ties keep list order, and a key that is not a number stops the insertion of a later
// candidate in front of it. Lists around the size where the method changes, with many ties (the
// key 0 of candidates sharing no stratum) and with and without such keys.
TEST(CrossingResolution, CandidatesSortAsInsertedOneByOne) {
  const auto inserted = [](std::vector<DcPair*> list) {
    for (std::size_t k = 1; k < list.size(); ++k) {
      for (std::size_t j = k; j > 0 && list[j]->dDiffGC < list[j - 1]->dDiffGC; --j) {
        std::swap(list[j], list[j - 1]);
      }
    }
    return list;
  };
  for (uint64_t seed = 1; seed <= 300; ++seed) {
    std::mt19937_64 rng(seed);
    std::vector<DcPair> pairs(static_cast<std::size_t>(xktest::UniformInt(rng, 2, 80)));
    const bool withNaN = seed % 3 == 0;
    for (DcPair& pair : pairs) {
      const int pick = xktest::UniformInt(rng, 0, 9);
      pair.dDiffGC = pick < 4               ? 0.0
                     : pick < 6             ? 1.5
                     : pick == 6 && withNaN ? std::numeric_limits<double>::quiet_NaN()
                                            : xktest::UniformReal(rng, 0.0, 3.0);
    }
    std::vector<DcPair*> candidates;
    for (DcPair& pair : pairs) {
      candidates.push_back(&pair);
    }
    const std::vector<DcPair*> expected = inserted(candidates);
    xkl::StableSortByKey(candidates);
    ASSERT_EQ(candidates, expected) << "seed " << seed << ", " << pairs.size() << " candidates";
  }
}

} // namespace
