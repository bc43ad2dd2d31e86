// The inputs of the benchmarks, built once and shared. Each says why it is there.
#pragma once

#include <XKLinkDc/XKLinkDc.h>

#include <string>
#include <utility>
#include <vector>

namespace bench {

using HolePair = std::pair<DataType::_sZK, DataType::_sZK>;

// Typical pair, real: consecutive holes of the real AGS files (10-30 strata, a handful of codes),
// what an engineer redraws interactively. Empty when the real data is not beside the checkout.
const std::vector<HolePair>& RealPairs();

// Typical pair, random: 10-30 strata a hole, 4-8 codes, seeded.
const std::vector<HolePair>& RandomTypicalPairs();

// Long logs: cone-penetration or geophysical logs, `strata` thin layers of 6 codes that repeat
// again and again; the pairing of equal codes grows with the product of the occurrences.
const HolePair& LongLogPair(int strata);

// A site: every consecutive pair of the largest real file (hundreds of metres of alignment).
const std::vector<HolePair>& SitePairs();

// The batch: 100,000 random typical pairs, as a whole-site run of many sections.
const std::vector<HolePair>& BatchPairs();

} // namespace bench
