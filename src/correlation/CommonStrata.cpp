// The first splitting pass: pairing the strata that both boreholes share and cutting one named
// sub-region out of the region for every group of pairs that belong together.
//
// Strata of equal code are candidates for being the same bed. Pairs that cross cannot both be the
// same bed (CrossingRule.cpp settles them); the pairs that remain stand in order down both holes,
// and pairs that share a stratum chain into one envelope: a code repeated in one hole makes one
// sub-region from its first to its last occurrence there.
#include "correlation/Correlation.h"

#include <algorithm>
#include <cmath>

namespace xkl {

namespace {

std::size_t Index(int32_t i) {
  return static_cast<std::size_t>(i);
}
int32_t Normalised(int32_t i) {
  return i < 0 ? -1 : i;
}

PairingRange PairingRangeOf(const Correlator& correlator, const _sLinkRegion& region) {
  return {std::max(Normalised(region.nBegin1), 0), Normalised(region.nEnd1 - 1),
          std::max(Normalised(region.nBegin2), 0), Normalised(region.nEnd2 - 1),
          region.bNamed ? correlator.Codes().IdOf(region.strName) : -1};
}

// Counts the pairs of equal codes of the range, and lists them when there are at most `limit`:
// every combination, ordered by the borehole-1 index and then the borehole-2 index. Inside the
// envelope of a stratum, that stratum's own occurrences are the envelope and pair with nothing.
std::size_t CollectPairs(Correlator& correlator, const PairingRange& range, std::size_t limit,
                         std::vector<StratumPair>& pairs) {
  const CodeIndex& codes = correlator.Codes();
  PairBuffers& b = correlator.pairs;
  const auto [first1, last1, first2, last2, excluded] = range;
  // The borehole-2 strata of the range chained by code, each chain in increasing index.
  const auto codeCount = Index(codes.Count());
  if (b.firstOfCode.size() < codeCount) {
    b.firstOfCode.resize(codeCount, -1);
    b.countOfCode.resize(codeCount, 0);
  }
  b.nextOfCode.resize(Index(std::max(last2 + 1, 0)));
  for (int32_t j = last2; j >= first2; --j) {
    const auto id = Index(codes.ids2[Index(j)]);
    b.nextOfCode[Index(j)] = b.firstOfCode[id];
    b.firstOfCode[id] = j;
    ++b.countOfCode[id];
  }
  std::size_t count = 0;
  for (int32_t i = first1; i <= last1; ++i) {
    const int32_t id = codes.ids1[Index(i)];
    if (id != excluded) {
      count += Index(b.countOfCode[Index(id)]);
    }
  }
  if (count <= limit) {
    for (int32_t i = first1; i <= last1; ++i) {
      const int32_t id = codes.ids1[Index(i)];
      if (id == excluded) {
        continue;
      }
      const double mid1 = MidElevation(correlator.Zk1().vecDC[Index(i)]);
      for (int32_t j = b.firstOfCode[Index(id)]; j >= 0; j = b.nextOfCode[Index(j)]) {
        const double mid2 = MidElevation(correlator.Zk2().vecDC[Index(j)]);
        pairs.push_back({i, j, std::fabs(mid1 - mid2), false});
      }
    }
  }
  for (int32_t j = first2; j <= last2; ++j) {
    const auto id = Index(codes.ids2[Index(j)]);
    b.firstOfCode[id] = -1;
    b.countOfCode[id] = 0;
  }
  return count;
}

// Marks consumed every unconsumed pair whose borehole-1 index (row) or borehole-2 index (column)
// equals `value`, and returns the greatest other index among them; found is false when there is
// none. The kept pairs stand in increasing order of both indices (none crosses another), so each
// row and each column is one stretch of the list.
template <class Key, class Other>
int32_t ConsumeAt(std::vector<StratumPair>& pairs, int32_t value, Key key, Other other,
                  bool& found) {
  found = false;
  int32_t m = -1;
  auto it = std::lower_bound(pairs.begin(), pairs.end(), value,
                             [&key](const StratumPair& pair, int32_t v) { return key(pair) < v; });
  for (; it != pairs.end() && key(*it) == value; ++it) {
    if (!it->dropped) {
      it->dropped = true;
      m = found ? std::max(m, other(*it)) : other(*it);
      found = true;
    }
  }
  return m;
}

} // namespace

void MatchCommonStrata(Correlator& correlator, const _sLinkRegion& region,
                       std::vector<StratumPair>& kept) {
  if (!(region.nBegin2 < region.nEnd2)) {
    return;
  }
  const PairingRange range = PairingRangeOf(correlator, region);
  const std::size_t listed = std::max(correlator.plainPairLimit, correlator.bitsetPairLimit);
  const std::size_t count = CollectPairs(correlator, range, listed, kept);
  if (count <= correlator.plainPairLimit) {
    SettleCrossings(kept, correlator.pairs.candidates);
  } else if (count > listed || !SettleCrossingsByBitsets(kept, correlator.bitsets)) {
    kept.clear();
    MatchManyCommonStrata(correlator, range, kept);
    return;
  }
  std::erase_if(kept, [](const StratumPair& pair) { return pair.dropped; });
}

void SplitAtCommonStrata(Correlator& correlator, const _sLinkRegion& region, RegionList& out) {
  if (!IsOpen(region)) {
    return;
  }
  std::vector<StratumPair>& pairs = correlator.pairs.pairs;
  pairs.clear();
  if (region.nBegin1 < region.nEnd1) {
    MatchCommonStrata(correlator, region, pairs);
  }
  const _sZK& zk1 = correlator.Zk1();
  const _sZK& zk2 = correlator.Zk2();
  const auto row = [](const StratumPair& pair) { return pair.dc1; };
  const auto column = [](const StratumPair& pair) { return pair.dc2; };
  for (const StratumPair& start : pairs) {
    if (start.dropped) {
      continue; // consumed by an earlier sub-region
    }
    _sLinkRegion& sub = out.emplace_back();
    sub.nType = ToInt(RegionKind::Open);
    sub.bNamed = true;
    sub.strName = zk1.vecDC[Index(start.dc1)].strName;
    int32_t i1 = start.dc1;
    int32_t i2 = start.dc2;
    sub.nBegin1 = Normalised(i1);
    sub.nBegin2 = Normalised(i2);
    for (bool found = true; found;) {
      const int32_t m2 = ConsumeAt(pairs, i1, row, column, found);
      if (found) {
        i2 = m2;
        const int32_t m1 = ConsumeAt(pairs, i2, column, row, found);
        i1 = found ? m1 : i1;
      }
    }
    sub.nEnd1 = Normalised(i1 + 1);
    sub.nEnd2 = Normalised(i2 + 1);
    sub.ptTop[0] =
        CXk3DPoint(region.ptTop[0].x, region.ptTop[0].y, GetBoundaryGC(zk1, sub.nBegin1));
    sub.ptTop[1] =
        CXk3DPoint(region.ptTop[1].x, region.ptTop[1].y, GetBoundaryGC(zk2, sub.nBegin2));
    sub.ptBot[0] = CXk3DPoint(region.ptBot[0].x, region.ptBot[0].y, GetBoundaryGC(zk1, sub.nEnd1));
    sub.ptBot[1] = CXk3DPoint(region.ptBot[1].x, region.ptBot[1].y, GetBoundaryGC(zk2, sub.nEnd2));
  }
}

} // namespace xkl
