// The crossing rule: which pairs of equal strata are the same bed.
//
// Beds do not cross. Two pairs cross when one lies above the other in one hole and below it in
// the other; they cannot both be the same bed, and the pair whose mid elevations differ more (its
// key) is the less plausible one. The rule settles a list of pairs in collection order (by
// borehole-1 stratum, then borehole-2 stratum) in two rounds:
//   1. Each pair that still stands meets every later pair that still stands; of two that cross,
//      the one with the greater key falls (the later one on equal keys). A pair that has fallen
//      goes on meeting the pairs after it, and may still make them fall.
//   2. A second chance for the fallen: those that cross no standing pair are taken up again, those
//      that share no stratum with a standing pair first (their key becomes 0), then by key, in list
//      order among equal keys; each unless it crosses one taken up before it.
// This file states the rule as it reads. MatchManyCommonStrata (CrossingSweep.cpp) takes the same
// decisions for long logs, where pairs run into the millions.
#include "correlation/Correlation.h"

#include <algorithm>

namespace xkl {

namespace {

bool Crosses(const StratumPair& a, const StratumPair& b) {
  const bool aAboveIn1 = a.dc1 < b.dc1;
  const bool aBelowIn1 = a.dc1 > b.dc1;
  return (aAboveIn1 && a.dc2 > b.dc2) || (aBelowIn1 && a.dc2 < b.dc2);
}

bool SharesStratum(const StratumPair& a, const StratumPair& b) {
  return a.dc1 == b.dc1 || a.dc2 == b.dc2;
}

} // namespace

void SettleCrossings(std::vector<StratumPair>& pairs, std::vector<StratumPair*>& candidates) {
  // Round 1.
  for (std::size_t a = 0; a < pairs.size(); ++a) {
    if (pairs[a].dropped) {
      continue;
    }
    for (std::size_t b = a + 1; b < pairs.size(); ++b) {
      if (!pairs[b].dropped && Crosses(pairs[a], pairs[b])) {
        StratumPair& loser = pairs[a].key > pairs[b].key ? pairs[a] : pairs[b];
        loser.dropped = true;
      }
    }
  }

  // Round 2: the fallen that cross no standing pair, keyed 0 when they share no stratum with one.
  candidates.clear();
  for (StratumPair& fallen : pairs) {
    if (!fallen.dropped) {
      continue;
    }
    const auto standing = [](const StratumPair& other) { return !other.dropped; };
    bool blocked = false;
    bool sharing = false;
    for (const StratumPair& other : pairs) {
      if (standing(other)) {
        blocked = blocked || Crosses(fallen, other);
        sharing = sharing || SharesStratum(fallen, other);
      }
    }
    if (blocked) {
      continue;
    }
    if (!sharing) {
      fallen.key = 0.0;
    }
    candidates.push_back(&fallen);
  }
  // By key, list order kept among equal keys; each taken up unless it crosses one taken up before.
  SortCandidatesByKey(candidates);
  for (std::size_t k = 0; k < candidates.size(); ++k) {
    const auto takenUp = [&](StratumPair* earlier) {
      return !earlier->dropped && Crosses(*candidates[k], *earlier);
    };
    if (std::none_of(candidates.begin(), candidates.begin() + static_cast<std::ptrdiff_t>(k),
                     takenUp)) {
      candidates[k]->dropped = false;
    }
  }
}

} // namespace xkl
