// Settling the pairs of equal strata that contradict each other, fast.
//
// Two pairs cross when one lies above the other in one borehole and below it in the other: a
// two-dimensional dominance relation between the pairs as points (nDC1, nDC2). Both methods below
// give exactly the decisions of the pairwise rules:
//   1. the first sweep: for each pair a, in order, that is not dropped, every later pair not yet
//      dropped that crosses a is compared with it, and the one whose mid elevations differ more is
//      dropped (the later one on equal keys); a pair that has lost goes on comparing with the
//      pairs after it;
//   2. the second chance: dropped pairs that cross no kept pair are re-admitted, those sharing no
//      stratum with a kept pair first (their key becomes 0), then by their key (stable), each
//      unless it crosses a pair re-admitted before it.
#pragma once

#include "correlation/Correlation.h"
#include "correlation/Workspace.h"

#include <cmath>
#include <limits>
#include <vector>

namespace xkl {

// The key by which the sweep orders pairs. The pairwise rule "drop b unless a's key is greater"
// and "drop a when a's key is greater" treat a key that is not a number exactly like +infinity on
// b's side: b is always dropped and never drops a. On a's side a NaN key drops every crossing pair
// and never a itself, which the sweep handles apart.
inline double SweepKey(double dDiffGC) {
  return std::isnan(dDiffGC) ? std::numeric_limits<double>::infinity() : dDiffGC;
}

// Pairs are in collection order (by nDC1, then nDC2), none dropped; afterwards bDrop marks the
// pairs that lost for good. Chooses the method by the number of pairs.
void ResolveCrossings(std::vector<DcPair>& pairs, Workspace& work);

// Sets of pairs as bitsets, for at most kMaxBitsetPairs pairs over not too many columns; false (and
// nothing done) otherwise.
constexpr std::size_t kMaxBitsetPairs = 1024;
bool ResolveCrossingsByBitsets(std::vector<DcPair>& pairs, BitsetBuffers& buffers);
// A sweep over a segment tree: n log n in the number of pairs.
void ResolveCrossingsBySweep(std::vector<DcPair>& pairs, SweepBuffers& buffers);

// The second chance, on a list whose dropped pairs are marked by bDrop. The list may leave out
// dropped pairs that cross a kept one: they are never candidates.
void ReadmitDroppedPairs(std::vector<DcPair>& pairs, SweepBuffers& buffers);

// Sorts re-admission candidates by key, keeping the list order of equal keys, exactly as inserting
// them one by one in list order would, keys that are not numbers included. The candidates point
// into one pair list, in list order.
void StableSortByKey(std::vector<DcPair*>& candidates);

} // namespace xkl
