// Working storage of one correlation, reused from region to region so that a typical pair
// allocates almost nothing beyond the regions it returns, and the large arrays of long logs are
// allocated once.
#pragma once

#include "correlation/Correlation.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace xkl {

// A pair in the sweep's columns, with its key beside it: the sweep reads the keys of a column in
// order, and long logs hold millions of pairs.
struct SweepEntry {
  double key;
  int32_t pair;
};

// Buffers of the crossing sweep over the pairs of equal strata.
struct SweepBuffers {
  std::vector<uint8_t> live;       // per pair: in the tree, left it, or dropped
  std::vector<int32_t> offset;     // first entry of each column
  std::vector<SweepEntry> entries; // pairs by column, each column sorted by key
  std::vector<int32_t> lo;         // first live entry of each column
  std::vector<int32_t> hi;         // last live entry of each column
  std::vector<double> treeMin;
  std::vector<double> treeMax;
  // The second chance.
  std::vector<int32_t> keptMaxBefore; // per row: greatest column of the kept pairs above it
  std::vector<int32_t> keptMinAfter;  // per row: least column of the kept pairs below it
  std::vector<uint8_t> rowKept;
  std::vector<uint8_t> columnKept;
  std::vector<int32_t> before; // Fenwick trees over the rows of the re-admitted pairs
  std::vector<int32_t> after;
  std::vector<DcPair*> candidates;
};

// Buffers of the crossing resolution by bitsets.
struct BitsetBuffers {
  std::vector<int32_t> rowBegin;        // first pair of each pair's row
  std::vector<int32_t> rowEnd;          // one past the last pair of each pair's row
  std::vector<int32_t> column;          // each pair's column, counted from the lowest
  std::vector<uint64_t> earlierColumns; // per column: the pairs in the columns before it
  std::vector<DcPair*> candidates;
};

// Buffers of the stratum runs of the closing routines.
struct RunBuffers {
  std::vector<DcRun> side1;
  std::vector<DcRun> side2;
  // Per code id: the first and second run carrying it in the list being searched, -1 outside a
  // search.
  std::vector<int32_t> firstRun;
  std::vector<int32_t> secondRun;
  std::vector<int32_t> codesInOrder; // codes by their first run
  std::vector<int32_t> namedBefore;  // runs carrying the region's own code among the first k
};

// A region of the walk over the tree that is still to be processed.
struct PendingRegion {
  _sLinkRegion* region;
  bool bSubRegion;
};

struct Workspace {
  std::vector<DcPair> pairs;
  // The borehole-2 strata of a region chained by code: the first of each code, the next of the
  // same code after each stratum, and the number of each code; -1 and 0 outside a collection.
  std::vector<int32_t> firstOfCode;
  std::vector<int32_t> nextOfCode;
  std::vector<int32_t> countOfCode;
  SweepBuffers sweep;
  BitsetBuffers bitsets;
  RunBuffers runs;
  RegionList gaps; // the gaps of the region being split, closed one by one
  std::vector<PendingRegion> pendingRegions;

  // Bytes held by the buffers.
  std::size_t Footprint() const;
};

} // namespace xkl
