// The first splitting pass: pairing the strata that both boreholes share and cutting one named
// sub-region out of the region for every group of pairs that belong together.
//
// Strata of equal code are candidates for being the same bed. Two pairs that cross (one lies
// higher in one hole and lower in the other) cannot both be the same bed, since beds do not cross;
// the pair whose mid elevations differ more is the less plausible one and is dropped. Dropped pairs
// get a second chance afterwards when they contradict nothing that was kept.
#include "correlation/Correlation.h"

#include <algorithm>
#include <cmath>

namespace xkl {

namespace {

std::size_t Index(int32_t i) { return static_cast<std::size_t>(i); }
int32_t Normalised(int32_t i) { return i < 0 ? -1 : i; }

// Two pairs cross when one lies above the other in one borehole and below it in the other.
bool Cross(const DcPair& p, const DcPair& q) {
  if (p.nDC1 == q.nDC1 || p.nDC2 == q.nDC2) {
    return false;
  }
  return (p.nDC1 < q.nDC1) != (p.nDC2 < q.nDC2);
}

bool SharesStratum(const DcPair& p, const DcPair& q) {
  return p.nDC1 == q.nDC1 || p.nDC2 == q.nDC2;
}

double MidElevation(const DataType::_sZKDC& dc) { return (dc.dTopGC + dc.dBotGC) * 0.5; }

// Every combination of equal codes, ordered by the borehole-1 index and then the borehole-2 index.
void CollectPairs(const CorrelationState& state, const _sLinkRegion& region,
                  std::vector<DcPair>& pairs) {
  if (!(region.nBegin2 < region.nEnd2)) {
    return;
  }
  const auto excluded = [&region](const std::wstring& code) {
    return region.bNamed && code == region.strName;
  };
  const int32_t last1 = Normalised(region.nEnd1 - 1);
  const int32_t last2 = Normalised(region.nEnd2 - 1);
  for (int32_t i = std::max(Normalised(region.nBegin1), 0); i <= last1; ++i) {
    const DataType::_sZKDC& dc1 = state.zk1.vecDC[Index(i)];
    if (excluded(dc1.strName)) {
      continue;
    }
    for (int32_t j = std::max(Normalised(region.nBegin2), 0); j <= last2; ++j) {
      const DataType::_sZKDC& dc2 = state.zk2.vecDC[Index(j)];
      if (excluded(dc2.strName) || dc1.strName != dc2.strName) {
        continue;
      }
      DcPair pair;
      pair.nDC1 = i;
      pair.nDC2 = j;
      pair.dDiffGC = std::fabs(MidElevation(dc1) - MidElevation(dc2));
      pairs.push_back(pair);
    }
  }
}

// A dropped pair keeps dropping the later pairs that it crosses: the sweep does not stop comparing
// a pair once it has lost. The pairs wrongly dropped this way are re-admitted afterwards.
void DropCrossingPairs(std::vector<DcPair>& pairs) {
  for (std::size_t a = 0; a < pairs.size(); ++a) {
    if (pairs[a].bDrop) {
      continue;
    }
    for (std::size_t b = a + 1; b < pairs.size(); ++b) {
      if (pairs[b].bDrop || !Cross(pairs[a], pairs[b])) {
        continue;
      }
      if (pairs[a].dDiffGC > pairs[b].dDiffGC) {
        pairs[a].bDrop = true;
      } else {
        pairs[b].bDrop = true;
      }
    }
  }
}

// Gives the dropped pairs that contradict no kept pair a second chance, the least contradicted
// first: pairs that share no stratum with a kept pair go first (key 0), then by their key.
void ReadmitDroppedPairs(std::vector<DcPair>& pairs) {
  std::vector<DcPair*> candidates;
  for (DcPair& pair : pairs) {
    if (pair.bDrop) {
      candidates.push_back(&pair);
    }
  }
  std::erase_if(candidates, [&pairs](DcPair* candidate) {
    bool shares = false;
    for (const DcPair& kept : pairs) {
      if (kept.bDrop) {
        continue;
      }
      if (Cross(*candidate, kept)) {
        return true;
      }
      shares = shares || SharesStratum(*candidate, kept);
    }
    if (!shares) {
      candidate->dDiffGC = 0.0;
    }
    return false;
  });
  // Stable: many candidates share the key 0, and of two crossing ones the first must win.
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const DcPair* a, const DcPair* b) { return a->dDiffGC < b->dDiffGC; });
  std::vector<const DcPair*> readmitted;
  for (DcPair* candidate : candidates) {
    const bool crosses =
        std::any_of(readmitted.begin(), readmitted.end(),
                    [candidate](const DcPair* other) { return Cross(*candidate, *other); });
    if (!crosses) {
      candidate->bDrop = false;
      readmitted.push_back(candidate);
    }
  }
}

} // namespace

void MatchCommonStrata(const CorrelationState& state, const _sLinkRegion& region,
                       std::vector<DcPair>& pairs) {
  CollectPairs(state, region, pairs);
  DropCrossingPairs(pairs);
  ReadmitDroppedPairs(pairs);
  std::erase_if(pairs, [](const DcPair& pair) { return pair.bDrop; });
}

void SplitAtCommonStrata(const CorrelationState& state, const _sLinkRegion& region,
                         RegionList& out) {
  if (region.nType != 0) {
    return;
  }
  std::vector<DcPair> pairs;
  if (region.nBegin1 < region.nEnd1) {
    MatchCommonStrata(state, region, pairs);
  }
  _sLinkRegion sub;
  for (const DcPair& first : pairs) {
    if (first.bDrop) {
      continue; // consumed by an earlier sub-region
    }
    sub.nType = 0;
    sub.bNamed = true;
    sub.strName = state.zk1.vecDC[Index(first.nDC1)].strName;
    int32_t i1 = first.nDC1;
    int32_t i2 = first.nDC2;
    sub.nBegin1 = Normalised(i1);
    sub.nBegin2 = Normalised(i2);
    // Chain the pairs that share a stratum with the group: a code repeated in one hole makes one
    // envelope from its first to its last occurrence there.
    for (;;) {
      int32_t m = -1;
      bool found = false;
      for (DcPair& pair : pairs) {
        if (!pair.bDrop && pair.nDC1 == i1) {
          pair.bDrop = true;
          m = found ? std::max(m, pair.nDC2) : pair.nDC2;
          found = true;
        }
      }
      if (!found) {
        break;
      }
      i2 = m;
      found = false;
      for (DcPair& pair : pairs) {
        if (!pair.bDrop && pair.nDC2 == i2) {
          pair.bDrop = true;
          m = found ? std::max(m, pair.nDC1) : pair.nDC1;
          found = true;
        }
      }
      if (!found) {
        break;
      }
      i1 = m;
    }
    sub.nEnd1 = Normalised(i1 + 1);
    sub.nEnd2 = Normalised(i2 + 1);
    sub.ptTop[0] = CXk3DPoint(region.ptTop[0].x, region.ptTop[0].y,
                              GetBoundaryGC(state.zk1, sub.nBegin1));
    sub.ptTop[1] = CXk3DPoint(region.ptTop[1].x, region.ptTop[1].y,
                              GetBoundaryGC(state.zk2, sub.nBegin2));
    sub.ptBot[0] = CXk3DPoint(region.ptBot[0].x, region.ptBot[0].y,
                              GetBoundaryGC(state.zk1, sub.nEnd1));
    sub.ptBot[1] = CXk3DPoint(region.ptBot[1].x, region.ptBot[1].y,
                              GetBoundaryGC(state.zk2, sub.nEnd2));
    out.push_back(sub);
  }
}

} // namespace xkl
