// Settling the pairs of equal strata that contradict each other, fast.
//
// Two pairs cross when one lies above the other in one borehole and below it in the other: a
// two-dimensional dominance relation between the pairs as points (nDC1, nDC2). The sweeps below
// answer "which live pairs cross this one" with a segment tree over the borehole-2 indices instead
// of comparing every pair with every other, and give exactly the decisions of the pairwise rules.
#pragma once

#include "correlation/Correlation.h"
#include "correlation/Workspace.h"

#include <vector>

namespace xkl {

// The first sweep. Pairs are in collection order (by nDC1, then nDC2). For each pair a, in order,
// that is not dropped: every later pair not yet dropped that crosses a is compared with it, and the
// one whose mid elevations differ more is dropped (the later one on equal keys). A pair that has
// lost goes on comparing with the pairs after it.
void DropCrossingPairs(std::vector<DcPair>& pairs, SweepBuffers& buffers);

// The second chance: dropped pairs that cross no kept pair are re-admitted, those sharing no
// stratum with a kept pair first (their key becomes 0), then by their key (stable), each unless it
// crosses a pair re-admitted before it.
void ReadmitDroppedPairs(std::vector<DcPair>& pairs);

} // namespace xkl
