// The first splitting pass: pairing the strata that both boreholes share and cutting one named
// sub-region out of the region for every group of pairs that belong together.
//
// Strata of equal code are candidates for being the same bed. Two pairs that cross (one lies
// higher in one hole and lower in the other) cannot both be the same bed, since beds do not cross;
// the pair whose mid elevations differ more is the less plausible one and is dropped. Dropped pairs
// get a second chance afterwards when they contradict nothing that was kept.
#include "correlation/Correlation.h"
#include "correlation/CrossingResolution.h"
#include "correlation/Workspace.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace xkl {

namespace {

std::size_t Index(int32_t i) {
  return static_cast<std::size_t>(i);
}
int32_t Normalised(int32_t i) {
  return i < 0 ? -1 : i;
}

// Every combination of equal codes, ordered by the borehole-1 index and then the borehole-2 index,
// or false (and nothing collected) when there are more than the bitsets settle: those are matched
// without listing them. Inside the envelope of a stratum, that stratum's own occurrences are the
// envelope and pair with nothing.
bool CollectPairs(const CorrelationState& state, const PairingRange& range,
                  std::vector<DcPair>& pairs) {
  const CodeIndex& codes = state.Codes();
  const auto [first1, last1, first2, last2, excluded] = range;
  // The borehole-2 strata of the range chained by code, each chain in increasing index, and the
  // length of each chain.
  Workspace& work = state.Work();
  const auto codeCount = Index(codes.Count());
  if (work.firstOfCode.size() < codeCount) {
    work.firstOfCode.resize(codeCount, -1);
    work.countOfCode.resize(codeCount, 0);
  }
  work.nextOfCode.resize(Index(std::max(last2 + 1, 0)));
  for (int32_t j = last2; j >= first2; --j) {
    const auto id = Index(codes.ids2[Index(j)]);
    work.nextOfCode[Index(j)] = work.firstOfCode[id];
    work.firstOfCode[id] = j;
    ++work.countOfCode[id];
  }
  // Count first: the pairs of two long logs run into the millions, and are not listed at all.
  std::size_t count = 0;
  for (int32_t i = first1; i <= last1; ++i) {
    const int32_t id = codes.ids1[Index(i)];
    if (id != excluded) {
      count += Index(work.countOfCode[Index(id)]);
    }
  }
  const bool few = count <= kMaxBitsetPairs;
  if (few) {
    pairs.reserve(pairs.size() + count);
    for (int32_t i = first1; i <= last1; ++i) {
      const int32_t id = codes.ids1[Index(i)];
      if (id == excluded) {
        continue;
      }
      const double mid1 = MidElevation(state.Zk1().vecDC[Index(i)]);
      for (int32_t j = work.firstOfCode[Index(id)]; j >= 0; j = work.nextOfCode[Index(j)]) {
        DcPair pair;
        pair.nDC1 = i;
        pair.nDC2 = j;
        pair.dDiffGC = std::fabs(mid1 - MidElevation(state.Zk2().vecDC[Index(j)]));
        pairs.push_back(pair);
      }
    }
  }
  for (int32_t j = first2; j <= last2; ++j) {
    const auto id = Index(codes.ids2[Index(j)]);
    work.firstOfCode[id] = -1;
    work.countOfCode[id] = 0;
  }
  return few;
}

// Marks consumed every unconsumed pair whose borehole-1 index (row) or borehole-2 index (column)
// equals `value`, and returns the greatest other index among them; found is false when there is
// none. The pairs that remain after the crossings are settled stand in increasing order of both
// indices (none crosses another), so each row and each column is one stretch of the list.
template <class Key, class Other>
int32_t ConsumeAt(std::vector<DcPair>& pairs, int32_t value, Key key, Other other, bool& found) {
  found = false;
  int32_t m = -1;
  auto it = std::lower_bound(pairs.begin(), pairs.end(), value,
                             [&key](const DcPair& pair, int32_t v) { return key(pair) < v; });
  for (; it != pairs.end() && key(*it) == value; ++it) {
    if (!it->bDrop) {
      it->bDrop = true;
      m = found ? std::max(m, other(*it)) : other(*it);
      found = true;
    }
  }
  return m;
}

} // namespace

PairingRange PairingRangeOf(const CorrelationState& state, const _sLinkRegion& region) {
  return {std::max(Normalised(region.nBegin1), 0), Normalised(region.nEnd1 - 1),
          std::max(Normalised(region.nBegin2), 0), Normalised(region.nEnd2 - 1),
          region.bNamed ? state.Codes().IdOf(region.strName) : -1};
}

void MatchCommonStrata(const CorrelationState& state, const _sLinkRegion& region,
                       std::vector<DcPair>& pairs) {
  if (!(region.nBegin2 < region.nEnd2)) {
    return;
  }
  const PairingRange range = PairingRangeOf(state, region);
  if (!CollectPairs(state, range, pairs)) {
    MatchManyCommonStrata(state, range, pairs);
    return;
  }
  ResolveCrossings(pairs, state.Work());
  std::erase_if(pairs, [](const DcPair& pair) { return pair.bDrop; });
}

void SplitAtCommonStrata(const CorrelationState& state, const _sLinkRegion& region,
                         RegionList& out) {
  if (region.nType != 0) {
    return;
  }
  std::vector<DcPair>& pairs = state.Work().pairs;
  pairs.clear();
  if (region.nBegin1 < region.nEnd1) {
    MatchCommonStrata(state, region, pairs);
  }
  const auto row = [](const DcPair& pair) { return pair.nDC1; };
  const auto column = [](const DcPair& pair) { return pair.nDC2; };
  for (std::size_t p = 0; p < pairs.size(); ++p) {
    if (pairs[p].bDrop) {
      continue; // consumed by an earlier sub-region
    }
    _sLinkRegion& sub = out.emplace_back();
    sub.nType = 0;
    sub.bNamed = true;
    sub.strName = state.Zk1().vecDC[Index(pairs[p].nDC1)].strName;
    int32_t i1 = pairs[p].nDC1;
    int32_t i2 = pairs[p].nDC2;
    sub.nBegin1 = Normalised(i1);
    sub.nBegin2 = Normalised(i2);
    // Chain the pairs that share a stratum with the group: a code repeated in one hole makes one
    // envelope from its first to its last occurrence there.
    for (;;) {
      bool found = false;
      const int32_t m2 = ConsumeAt(pairs, i1, row, column, found);
      if (!found) {
        break;
      }
      i2 = m2;
      const int32_t m1 = ConsumeAt(pairs, i2, column, row, found);
      if (!found) {
        break;
      }
      i1 = m1;
    }
    sub.nEnd1 = Normalised(i1 + 1);
    sub.nEnd2 = Normalised(i2 + 1);
    sub.ptTop[0] =
        CXk3DPoint(region.ptTop[0].x, region.ptTop[0].y, GetBoundaryGC(state.Zk1(), sub.nBegin1));
    sub.ptTop[1] =
        CXk3DPoint(region.ptTop[1].x, region.ptTop[1].y, GetBoundaryGC(state.Zk2(), sub.nBegin2));
    sub.ptBot[0] =
        CXk3DPoint(region.ptBot[0].x, region.ptBot[0].y, GetBoundaryGC(state.Zk1(), sub.nEnd1));
    sub.ptBot[1] =
        CXk3DPoint(region.ptBot[1].x, region.ptBot[1].y, GetBoundaryGC(state.Zk2(), sub.nEnd2));
  }
}

} // namespace xkl
