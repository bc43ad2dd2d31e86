// Working storage of one correlation, reused from region to region so that a typical pair
// allocates almost nothing beyond the regions it returns, and the large arrays of long logs are
// allocated once.
#pragma once

#include "correlation/Correlation.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace xkl {

// A pair of the row the sweep has reached.
struct SweepPair {
  int32_t pair;   // number in list order
  int32_t column; // counted from the lowest column of the list
  double key;     // as collected; not a number is allowed
};

// Buffers of the crossing sweep over the pairs of equal strata.
struct SweepBuffers {
  std::vector<uint8_t> dropped;                  // per pair, in list order
  std::vector<SweepPair> row;                    // the pairs of the row the sweep has reached
  std::vector<int32_t> offset;                   // first entry of each column
  std::vector<int32_t> entries;                  // pairs by column, each column sorted by key
  std::vector<std::pair<double, int32_t>> keyed; // one column's entries with their keys
  std::vector<int32_t> lo;                       // first live entry of each column
  std::vector<int32_t> hi;                       // last live entry of each column
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

// Buffers of the matching of many equal-code pairs, which lists the pairs by code instead of one
// by one. Rows are the borehole-1 strata of the region, columns its borehole-2 strata, both
// counted from the first.
struct CodeSweepBuffers {
  std::vector<double> mid1;           // mid elevation of each row
  std::vector<double> mid2;           // and of each column
  std::vector<int32_t> rowsOfCode;    // the rows of each code in order, code after code
  std::vector<int32_t> rowsOfCodeAt;  // where each code's rows begin, and one past the end
  std::vector<int32_t> columnsOfCode; // the same for columns
  std::vector<int32_t> columnsOfCodeAt;
  std::vector<int32_t> firstPair; // number of the first pair of each row, list order
};

// Buffers of the crossing resolution by bitsets.
struct BitsetBuffers {
  std::vector<int32_t> rowBegin;        // first pair of each pair's row
  std::vector<int32_t> rowEnd;          // one past the last pair of each pair's row
  std::vector<int32_t> column;          // each pair's column, counted from the lowest
  std::vector<uint64_t> earlierColumns; // per column: the pairs in the columns before it
  std::vector<uint8_t> band;            // each pair's band of keys
  std::vector<uint64_t> lowerBands;     // per band: the pairs in the bands below it
  std::vector<int32_t> keptBefore;      // the staircase of the kept pairs (KeptStaircase)
  std::vector<int32_t> keptAfter;
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
  CodeSweepBuffers codeSweep;
  BitsetBuffers bitsets;
  RunBuffers runs;
  RegionList gaps; // the gaps of the region being split, closed one by one
  std::vector<PendingRegion> pendingRegions;

  // Bytes held by the buffers.
  std::size_t Footprint() const;
};

} // namespace xkl
