// Settling the pairs of equal strata that contradict each other, fast.
//
// Two pairs cross when one lies above the other in one borehole and below it in the other: a
// two-dimensional dominance relation between the pairs as points (nDC1, nDC2). The sweeps below
// answer "which live pairs cross this one" with a segment tree over the borehole-2 indices instead
// of comparing every pair with every other, and give exactly the decisions of the pairwise rules.
#pragma once

#include "correlation/Correlation.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace xkl {

// Working storage of the sweep, kept between the regions of one correlation so that the large
// arrays of long logs are allocated once.
struct SweepBuffers {
  std::vector<int32_t> column;  // borehole-2 column of each pair
  std::vector<double> key;      // sweep key of each pair
  std::vector<uint8_t> live;    // the pair is in the tree
  std::vector<int32_t> offset;  // first entry of each column
  std::vector<int32_t> entries; // pairs by column, each column sorted by key
  std::vector<int32_t> lo;      // first live entry of each column
  std::vector<int32_t> hi;      // last live entry of each column
  std::vector<double> treeMin;
  std::vector<double> treeMax;
};

// Everything the splitting passes allocate per region, reused from region to region.
struct Workspace {
  std::vector<DcPair> pairs;
  std::vector<std::pair<int32_t, int32_t>> byCode; // (code id, borehole-2 index)
  SweepBuffers sweep;

  // Bytes held by the buffers.
  std::size_t Footprint() const;
};

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
