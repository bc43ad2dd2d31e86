// Internal routines of the stratum correlation. Every routine reads the two boreholes and their
// plan distance through a CorrelationState passed by reference; regions hold index ranges into
// the state's stratum lists, never copies of strata.
#pragma once

#include "correlation/CodeIndex.h"

#include <XKLinkDc/XKLinkDc.h>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace xkl {
struct Workspace;
}

namespace XKLinkDc {

// The two boreholes of one correlation and their plan distance. LinkDc uses the single
// module-wide instance (g_zk1, g_zk2, g_dDist alias its members), which keeps copies of the
// boreholes; CorrelationContext owns its own and reads the caller's boreholes in place for the
// length of a call. The correlation reads the boreholes through Zk1() and Zk2() only.
struct CorrelationState {
  DataType::_sZK zk1; // the state's own copies, read unless Borrow() points elsewhere
  DataType::_sZK zk2;
  double dDist = 0.0;

  CorrelationState();
  CorrelationState(const CorrelationState& other); // the own copies and distance only
  CorrelationState& operator=(const CorrelationState& other);
  ~CorrelationState();

  const DataType::_sZK& Zk1() const { return *m_zk1; }
  const DataType::_sZK& Zk2() const { return *m_zk2; }
  // Reads two boreholes held by the caller, who keeps them unchanged until Release().
  void Borrow(const DataType::_sZK& a, const DataType::_sZK& b);
  // Back to the own copies: nothing refers to the caller's boreholes any more.
  void Release();

  // The codes of zk1 and zk2 interned, built on first use after the boreholes were set.
  const xkl::CodeIndex& Codes() const;
  // To be called whenever zk1 or zk2 change.
  void ForgetCodes() { m_codesBuilt = false; }
  // Reusable working storage of the splitting passes, created on first use.
  xkl::Workspace& Work() const;
  // Returns the working storage to the system (at the end of a correlation).
  void ReleaseWork() const;

private:
  const DataType::_sZK* m_zk1 = &zk1;
  const DataType::_sZK* m_zk2 = &zk2;
  mutable xkl::CodeIndex m_codes;
  mutable bool m_codesBuilt = false;
  mutable std::unique_ptr<xkl::Workspace> m_work;
};

} // namespace XKLinkDc

namespace xkl {

using DataType::_sLinkRegion;
using DataType::_sZK;
using XKLinkDc::CorrelationState;
using RegionList = std::vector<_sLinkRegion>;

// The module-wide correlation state: the copies of the two boreholes of the latest LinkDc call and
// their plan distance. They keep their values until the next call.
extern CorrelationState g_state;
extern _sZK& g_zk1;
extern _sZK& g_zk2;
extern double& g_dDist;

// How a correlation holds its two boreholes: the module-wide state keeps copies that outlive the
// call; a context reads the caller's in place.
enum class Boreholes { Copied, Borrowed };

// Runs a whole correlation on the given state: takes the boreholes, computes the plan distance,
// initialises the root and walks the tree.
void RunLinkDc(CorrelationState& state, const _sZK& zk1, const _sZK& zk2, _sLinkRegion& root,
               Boreholes boreholes);
// Runs LinkDc on a root of its own and appends the finished section lines.
void RunLinkDcLine(CorrelationState& state, const _sZK& zk1, const _sZK& zk2,
                   std::vector<DataType::_sLinkLine>& lines, Boreholes boreholes);

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

// --- entry and recursion -------------------------------------------------------------------
void InitRootRegion(const CorrelationState& state, _sLinkRegion& root);
void LinkRegion(const CorrelationState& state, _sLinkRegion& region, bool bSubRegion);
// codeIds: the interned code of every stratum of one borehole (CodeIndex::ids1 or ids2).
bool HasMixedStrata(const std::vector<int32_t>& codeIds, int32_t nBegin, int32_t nEnd);
bool HasCommonStratum(const CorrelationState& state, const _sLinkRegion& region);
void SplitAndCloseRegion(const CorrelationState& state, const _sLinkRegion& region,
                         RegionList& children, bool bSubRegion);

// --- first splitting pass: strata common to both boreholes ---------------------------------
struct DcPair {
  int32_t nDC1 = -1;
  int32_t nDC2 = -1;
  double dDiffGC = 0.0; // |mid elevation 1 - mid elevation 2|; later only a sort key
  bool bDrop = false;
};
void MatchCommonStrata(const CorrelationState& state, const _sLinkRegion& region,
                       std::vector<DcPair>& pairs);
inline double MidElevation(const DataType::_sZKDC& dc) {
  return (dc.dTopGC + dc.dBotGC) * 0.5;
}
// The strata of a region that can pair: the index ranges, normalised, and the code that pairs with
// nothing (the region's own inside its envelope; -1 when none).
struct PairingRange {
  int32_t first1;
  int32_t last1;
  int32_t first2;
  int32_t last2;
  int32_t excluded;
};
PairingRange PairingRangeOf(const CorrelationState& state, const _sLinkRegion& region);
// MatchCommonStrata for more pairs than the bitsets settle: the same kept pairs, found without
// listing every pair (two long logs have millions).
void MatchManyCommonStrata(const CorrelationState& state, const PairingRange& range,
                           std::vector<DcPair>& pairs);
void SplitAtCommonStrata(const CorrelationState& state, const _sLinkRegion& region,
                         RegionList& out);

// --- second splitting pass: the gaps between common strata ---------------------------------
void MakeGapRegions(const CorrelationState& state, const _sLinkRegion& region,
                    const RegionList& children, RegionList& gaps, bool bSubRegion);

// --- stratum runs, shared by both closing routines -----------------------------------------
// Runs carry the interned code of their strata (CorrelationState::Codes), so that fusing compares
// integers; the code itself is CodeName(list, run).
struct DcRun {
  int32_t nBegin = -1;
  int32_t nEnd = -1;
  int32_t nCode = -1;
  bool bMerged = false; // fused from several occurrences of one code
};
struct DcRunList {
  const _sLinkRegion* pRegion = nullptr;
  const _sZK* pZK = nullptr;
  const CorrelationState* pState = nullptr;
  int32_t nRegionCode = -1; // the code of the region's name; -1 when no stratum carries it
  std::vector<DcRun> vecRun;
};
// side true: borehole 1 with nBegin1/nEnd1; false: borehole 2 with nBegin2/nEnd2.
void BuildDcRunList(const CorrelationState& state, DcRunList& list, const _sLinkRegion& region,
                    bool side);
const std::wstring& CodeName(const DcRunList& list, const DcRun& run);
// The code to fuse next, or false when nothing is left to fuse.
bool FindRepeatedDc(const DcRunList& list, int32_t& code);
int32_t CompareDcThickness(const DcRunList& list, int32_t codeA, int32_t codeB);
void MergeDcRun(DcRunList& list, int32_t code);
// Builds the run list of one side into `runs` and fuses repeated codes until none is left.
void BuildFusedRuns(const CorrelationState& state, const _sLinkRegion& region, bool side,
                    std::vector<DcRun>& runs);

// --- closing ---------------------------------------------------------------------------------
void CloseUnmatchedRegion(const CorrelationState& state, const _sLinkRegion& region,
                          RegionList& out);
void CloseNamedRegion(const CorrelationState& state, const _sLinkRegion& region, RegionList& out);

// --- lens geometry ---------------------------------------------------------------------------
CXk3DPoint GetLensTip(const CorrelationState& state, const _sLinkRegion& region,
                      const CXk3DPoint& mid, bool side);
int32_t IntersectSegment(const CXk3DPoint& p0, const CXk3DPoint& p1, const CXk3DPoint& q0,
                         const CXk3DPoint& q1, CXk3DPoint& r1, CXk3DPoint& r2);
bool IsBetween(const CXk3DPoint& p, const CXk3DPoint& a, const CXk3DPoint& b);

} // namespace xkl
