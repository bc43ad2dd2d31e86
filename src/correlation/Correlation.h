// Internal routines of the stratum correlation.
//
// A Correlator runs one correlation at a time: it reads the two boreholes in place for the length
// of a call and owns the scratch storage of every step, kept from one call to the next so that the
// next pair of a section starts warm. Regions hold index ranges into the boreholes' strata, never
// copies of strata; every routine below reads the boreholes through the correlator.
#pragma once

#include "correlation/CodeIndex.h"
#include "records/RegionKind.h"

#include <XKLinkDc/XKLinkDc.h>
#include <cstddef>
#include <cstdint>
#include <set>
#include <utility>
#include <vector>

namespace xkl {

using DataType::_sLinkRegion;
using DataType::_sZK;
using DataType::_sZKDC;
using RegionList = std::vector<_sLinkRegion>;

// Two strata of one code, one in each hole: a candidate for being the same bed. `key` is the
// difference of their mid elevations, the less plausible the larger.
struct StratumPair {
  int32_t dc1 = -1;
  int32_t dc2 = -1;
  double key = 0.0;
  bool dropped = false;
};

// Strata of one side of a region, the repeated occurrences of a code fused into one run.
struct StratumRun {
  int32_t begin = -1;
  int32_t end = -1;
  int32_t code = -1; // interned (CodeIndex)
  bool merged = false;
};

template <class T> std::size_t BytesOf(const std::vector<T>& v) {
  return v.capacity() * sizeof(T);
}

// Scratch of the first splitting pass over few pairs: the pairs themselves, the borehole-2 strata
// chained by code, and the candidates of the second chance.
struct PairBuffers {
  std::vector<StratumPair> pairs;
  std::vector<int32_t> firstOfCode; // per code: its first borehole-2 stratum, -1 outside a call
  std::vector<int32_t> nextOfCode;  // per stratum: the next one of its code
  std::vector<int32_t> countOfCode; // per code: its borehole-2 strata, 0 outside a call
  std::vector<StratumPair*> candidates;
  std::size_t Bytes() const;
};

// Scratch of the crossing rule on bitsets (CrossingBitsets.cpp).
struct BitsetBuffers {
  std::vector<int32_t> rowBegin;        // first pair of each pair's row
  std::vector<int32_t> rowEnd;          // one past the last pair of each pair's row
  std::vector<int32_t> column;          // each pair's column, counted from the lowest
  std::vector<uint64_t> earlierColumns; // per column: the pairs in the columns before it
  std::vector<uint8_t> band;            // each pair's band of keys
  std::vector<uint64_t> lowerBands;     // per band: the pairs in the bands below it
  std::vector<int32_t> keptBefore;      // the staircase of the kept pairs (KeptStaircase)
  std::vector<int32_t> keptAfter;
  std::vector<StratumPair*> candidates;
  std::size_t Bytes() const;
};

// Scratch of the sweep that settles many pairs without listing them (CrossingSweep.cpp).
struct SweepPair {
  int32_t pair;   // number in collection order
  int32_t column; // counted from the region's first borehole-2 stratum
  double key;
};
struct SweepBuffers {
  std::vector<double> mid1;           // mid elevation of each row (borehole-1 stratum)
  std::vector<double> mid2;           // and of each column (borehole-2 stratum)
  std::vector<int32_t> rowsOfCode;    // the rows of each code in order, code after code
  std::vector<int32_t> rowsOfCodeAt;  // where each code's rows begin, and one past the end
  std::vector<int32_t> columnsOfCode; // the same for columns
  std::vector<int32_t> columnsOfCodeAt;
  std::vector<int32_t> firstPair;                // number of the first pair of each row
  std::vector<uint8_t> dropped;                  // per pair
  std::vector<SweepPair> row;                    // the pairs of the row the sweep has reached
  std::vector<int32_t> offset;                   // first entry of each column
  std::vector<int32_t> entries;                  // rows by column, each column sorted by key
  std::vector<std::pair<double, int32_t>> keyed; // one column's entries with their keys
  std::vector<int32_t> lo;                       // first live entry of each column
  std::vector<int32_t> hi;                       // last live entry of each column
  std::vector<double> treeMin;                   // segment tree over the columns
  std::vector<double> treeMax;
  std::vector<int32_t> keptBefore; // staircase of the kept pairs
  std::vector<int32_t> keptAfter;
  std::vector<uint8_t> rowKept;
  std::vector<uint8_t> columnKept;
  std::vector<int32_t> readmittedBefore; // Fenwick trees over the rows of re-admitted pairs
  std::vector<int32_t> readmittedAfter;
  std::vector<StratumPair*> candidates;
  std::size_t Bytes() const;
};

// Scratch of fusing a long run list (LongRunFusion.cpp): linked lists over the runs, per code and
// per run of the region's own code.
struct LongFusionBuffers {
  std::vector<int32_t> next, prev;         // per run: the list of runs
  std::vector<int32_t> nextSame, prevSame; // per run: the runs of its code
  std::vector<int32_t> head, tail, count;  // per code: its runs
  std::vector<int32_t> eligibleAt;         // per code: its key in `eligible`, or -1
  std::vector<int32_t> blocker;            // per code: the region-code run that blocks it, or -1
  std::vector<int32_t> blockedNext, blockedPrev; // per code: the codes blocked by one run
  std::vector<int32_t> blockedFirst;             // per run: the first code it blocks, or -1
  std::vector<int32_t> regionAtOrAfter;          // per run: towards the next region-code run left
  std::vector<double> sum;                       // per code: summed thickness of its runs
  std::vector<char> sumValid, touched;           // per code
  std::vector<int32_t> codesPresent, changed;
  std::set<int32_t> eligible; // the first runs of the eligible codes
  std::size_t Bytes() const;
};

// Scratch of the stratum runs of the closing routines.
struct RunBuffers {
  std::vector<StratumRun> side1;
  std::vector<StratumRun> side2;
  // Per code: the first and second run carrying it in the list being searched, -1 outside a
  // search.
  std::vector<int32_t> firstRun;
  std::vector<int32_t> secondRun;
  std::vector<int32_t> codesInOrder; // codes by their first run
  std::vector<int32_t> namedBefore;  // runs carrying the region's own code among the first k
  LongFusionBuffers longLists;
  std::size_t Bytes() const;
};

// Scratch of the walk over the tree.
struct WalkBuffers {
  struct Pending {
    _sLinkRegion* region;
    bool subRegion;
  };
  std::vector<Pending> pending; // regions still to be processed, the next one last
  RegionList gaps;              // the gaps of the region being split, closed one by one
  std::size_t Bytes() const;
};

class Correlator {
public:
  // Correlates two boreholes into the tree below root, reading them in place: the caller keeps
  // them unchanged until the call returns.
  void Correlate(const _sZK& zk1, const _sZK& zk2, _sLinkRegion& root);

  const _sZK& Zk1() const { return *m_zk1; }
  const _sZK& Zk2() const { return *m_zk2; }
  double Distance() const { return m_distance; } // plan distance of the two holes
  const CodeIndex& Codes() const { return m_codes; }
  CodeIndex& Codes() { return m_codes; }

  // How the crossing rule runs on the pairs of equal strata of a region: as it reads
  // (CrossingRule.cpp) up to plainPairLimit pairs, on bitsets (CrossingBitsets.cpp) up to
  // bitsetPairLimit, as a sweep (CrossingSweep.cpp) beyond. Ordinary logs have tens of pairs, a
  // unit sampled again and again in both holes a few hundred, two long logs millions. Tests set
  // the limits to run one path on every region.
  static constexpr std::size_t kPlainPairLimit = 16;
  static constexpr std::size_t kBitsetPairLimit = 1024; // the most the bitsets take
  std::size_t plainPairLimit = kPlainPairLimit;
  std::size_t bitsetPairLimit = kBitsetPairLimit;
  // Run lists of up to plainRunLimit runs are fused by the plain search (StratumRuns.cpp), which is
  // quicker to set up; longer ones by FuseLongRunList, which keeps the search up to date as runs
  // are swallowed.
  static constexpr std::size_t kPlainRunLimit = 64;
  std::size_t plainRunLimit = kPlainRunLimit;

  PairBuffers pairs;
  BitsetBuffers bitsets;
  SweepBuffers sweep;
  RunBuffers runs;
  WalkBuffers walk;

  // Bytes held by the scratch storage.
  std::size_t Bytes() const;

private:
  void InitRootRegion(_sLinkRegion& root) const;
  void LinkRegion(_sLinkRegion& root);
  bool ProcessRegion(_sLinkRegion& region, bool subRegion);
  void SplitAndCloseRegion(const _sLinkRegion& region, RegionList& children, bool subRegion);
  void CloseRegion(const _sLinkRegion& region, RegionList& out);
  bool FitsBoreholes(const _sLinkRegion& region) const;
  void ReleaseLargeScratch();

  const _sZK* m_zk1 = nullptr;
  const _sZK* m_zk2 = nullptr;
  double m_distance = 0.0;
  CodeIndex m_codes;
};

// Elevation of the boundary above stratum k: the top of stratum k, or below the last stratum its
// bottom. A borehole without strata has every boundary at its collar.
double GetBoundaryGC(const _sZK& zk, int32_t k);

// Room for `more` regions at the end of a list, growing geometrically: closing appends to one list
// again and again.
inline void ReserveMore(RegionList& out, std::size_t more) {
  const std::size_t needed = out.size() + more;
  if (needed > out.capacity()) {
    out.reserve(needed > 2 * out.capacity() ? needed : 2 * out.capacity());
  }
}

// --- the work test and the common-stratum test ---------------------------------------------
// codeIds: the interned code of every stratum of one borehole (CodeIndex::ids1 or ids2).
bool HasMixedStrata(const std::vector<int32_t>& codeIds, int32_t begin, int32_t end);
bool HasCommonStratum(Correlator& correlator, const _sLinkRegion& region);

// --- first splitting pass: strata common to both boreholes ---------------------------------
// The strata of a region that can pair: the index ranges, normalised, and the code that pairs with
// nothing (the region's own inside its envelope; -1 when none).
struct PairingRange {
  int32_t first1;
  int32_t last1;
  int32_t first2;
  int32_t last2;
  int32_t excluded;
};
void SplitAtCommonStrata(Correlator& correlator, const _sLinkRegion& region, RegionList& out);
// The kept pairs of a region, in collection order (CommonStrata.cpp).
void MatchCommonStrata(Correlator& correlator, const _sLinkRegion& region,
                       std::vector<StratumPair>& kept);
// The crossing rule on a list of pairs in collection order (CrossingRule.cpp).
void SettleCrossings(std::vector<StratumPair>& pairs, std::vector<StratumPair*>& candidates);
// The same decisions on bitsets, for at most Correlator::kBitsetPairLimit pairs over not too many
// columns; false (and nothing done) otherwise.
bool SettleCrossingsByBitsets(std::vector<StratumPair>& pairs, BitsetBuffers& buffers);
// The same decisions for pairs that run into the millions, without listing them
// (CrossingSweep.cpp); appends the kept pairs in collection order.
void MatchManyCommonStrata(Correlator& correlator, const PairingRange& range,
                           std::vector<StratumPair>& kept);
// Sorts candidates of the second chance by key, keeping list order among equal keys, as
// inserting them one by one would; they point into one pair list, in list order.
void SortCandidatesByKey(std::vector<StratumPair*>& candidates);
inline double MidElevation(const _sZKDC& dc) {
  return (dc.dTopGC + dc.dBotGC) * 0.5;
}

// --- second splitting pass: the gaps between common strata ---------------------------------
void MakeGapRegions(const Correlator& correlator, const _sLinkRegion& region,
                    const RegionList& children, RegionList& gaps, bool subRegion);

// --- closing -----------------------------------------------------------------------------------
// The runs of one side (true: borehole 1) of a region, repeated codes fused until none is left.
void BuildFusedRuns(Correlator& correlator, const _sLinkRegion& region, bool side,
                    std::vector<StratumRun>& runs);
// Both sides' fused runs into correlator.runs.side1 and side2, and room in `out` for a region each.
void BuildFusedRunsOfBothSides(Correlator& correlator, const _sLinkRegion& region, RegionList& out);
// Fuses `runs` (one per stratum, in hole order) exactly as the plain search does.
void FuseLongRunList(const _sZK& zk, int32_t regionCode, std::size_t codeCount,
                     LongFusionBuffers& work, std::vector<StratumRun>& runs);
void CloseUnmatchedRegion(Correlator& correlator, const _sLinkRegion& region, RegionList& out);
void CloseNamedRegion(Correlator& correlator, const _sLinkRegion& region, RegionList& out);

// --- lens geometry -----------------------------------------------------------------------------
CXk3DPoint GetLensTip(const Correlator& correlator, const _sLinkRegion& region,
                      const CXk3DPoint& mid, bool side);
int32_t IntersectSegment(const CXk3DPoint& p0, const CXk3DPoint& p1, const CXk3DPoint& q0,
                         const CXk3DPoint& q1, CXk3DPoint& r1, CXk3DPoint& r2);
bool IsBetween(const CXk3DPoint& p, const CXk3DPoint& a, const CXk3DPoint& b);

} // namespace xkl
