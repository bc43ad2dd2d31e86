// The faster forms of two rules beside the plain ones. The crossing rule: as it reads
// (CrossingRule.cpp), on bitsets (CrossingBitsets.cpp) and as the sweep of long logs
// (CrossingSweep.cpp); the fusing of repeated codes: the plain search (StratumRuns.cpp) and the
// long lists (LongRunFusion.cpp). Each region takes one form by its size; here every region takes
// each in turn, on seeded boreholes rich in repeated codes and tied keys, and the trees of the
// faster forms must equal those of the plain forms to the bit.
#include "CorrelationTestSupport.h"
#include "correlation/Correlation.h"
#include "support/RandomBoreholes.h"

#include <limits>
#include <random>

namespace {

TEST(CrossingPaths, FasterFormsDecideAsThePlainRulesOnEveryRegion) {
  constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();
  xkl::Correlator plain;
  plain.plainPairLimit = kAll;
  xkl::Correlator bitsets; // beyond the pairs the bitsets take, the sweep
  bitsets.plainPairLimit = 0;
  bitsets.bitsetPairLimit = kAll;
  xkl::Correlator sweep;
  sweep.plainPairLimit = 0;
  sweep.bitsetPairLimit = 0;
  xkl::Correlator longRuns; // every run list fused as a long one
  longRuns.plainRunLimit = 0;
  plain.plainRunLimit = kAll;
  for (uint64_t seed = 9100000; seed < 9100400; ++seed) {
    std::mt19937_64 rng(seed);
    DataType::_sZK a;
    DataType::_sZK b;
    if (seed % 4 == 0) { // thin beds: hundreds of pairs, keys tied on a quarter-metre grid
      const int codes = xktest::UniformInt(rng, 2, 5);
      a = xktest::LongLog(rng, xktest::UniformInt(rng, 20, 120), codes, L"WEST");
      b = xktest::LongLog(rng, xktest::UniformInt(rng, 20, 120), codes, L"EAST");
      b.dX = a.dX + 30.0;
    } else { // envelopes, lenses and crossings among few codes
      xktest::RandomBoreholeOptions opt;
      opt.minStrata = 2;
      opt.maxStrata = 40;
      opt.codeCount = xktest::UniformInt(rng, 1, 4);
      opt.repeatPreviousChance = 0.3;
      opt.gridChance = 0.9;
      std::tie(a, b) = xktest::RandomBoreholePair(rng, opt);
    }
    DataType::_sLinkRegion byRule;
    DataType::_sLinkRegion byBitsets;
    DataType::_sLinkRegion bySweep;
    DataType::_sLinkRegion byLongRuns;
    plain.Correlate(a, b, byRule);
    bitsets.Correlate(a, b, byBitsets);
    sweep.Correlate(a, b, bySweep);
    longRuns.Correlate(a, b, byLongRuns);
    ASSERT_TRUE(xkltest::SameTree(byBitsets, byRule)) << "bitsets, seed " << seed;
    ASSERT_TRUE(xkltest::SameTree(bySweep, byRule)) << "sweep, seed " << seed;
    ASSERT_TRUE(xkltest::SameTree(byLongRuns, byRule)) << "long run lists, seed " << seed;
  }
}

} // namespace
