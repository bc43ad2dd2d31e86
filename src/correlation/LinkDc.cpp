// The correlation entry and the walk over the region tree.
//
// The root region covers both boreholes. A region is split where both boreholes share a stratum
// code, and a region that cannot be split is closed into pinch-out wedges or lenses whose corners
// are fixed. The walk repeats this on every region produced until no region holds two neighbouring
// strata of different codes on either side.
#include "correlation/Correlation.h"
#include "correlation/Workspace.h"

#include <algorithm>

#include <cmath>

namespace xkl {

namespace {

std::size_t Index(int32_t i) { return static_cast<std::size_t>(i); }

// Index of the last stratum of a half-open range, with negative values counting as -1.
int32_t LastIndex(int32_t nEnd) { return nEnd - 1 < 0 ? -1 : nEnd - 1; }

// Whether every stratum a region names lies in the boreholes. Regions the walk makes always do; a
// root passed in may still hold children of an earlier call with other boreholes, and those are left
// as they are rather than read outside the strata.
bool FitsBoreholes(const CorrelationState& state, const _sLinkRegion& region) {
  const auto fits = [](int32_t nBegin, int32_t nEnd, const _sZK& zk) {
    return !(nBegin < nEnd) || nEnd <= static_cast<int64_t>(zk.vecDC.size());
  };
  return fits(region.nBegin1, region.nEnd1, state.Zk1()) &&
         fits(region.nBegin2, region.nEnd2, state.Zk2());
}

// Closes a region that is not split: a named envelope into lenses, anything else into wedges.
void CloseRegion(const CorrelationState& state, const _sLinkRegion& region, RegionList& out) {
  if (region.bNamed) {
    CloseNamedRegion(state, region, out);
  } else {
    CloseUnmatchedRegion(state, region, out);
  }
}

// Works on one region and appends what it produces to its own children. Answers false for a
// region with nothing to do, which is left as it is, children included.
bool ProcessRegion(const CorrelationState& state, _sLinkRegion& region, bool bSubRegion) {
  const CodeIndex& codes = state.Codes();
  if (!HasMixedStrata(codes.ids1, region.nBegin1, region.nEnd1) &&
      !HasMixedStrata(codes.ids2, region.nBegin2, region.nEnd2)) {
    // One code (or none) on each side: nothing to correlate inside, even when the two codes
    // differ; the region stays as it is.
    return false;
  }
  if (region.nType == 0 && HasCommonStratum(state, region)) {
    SplitAndCloseRegion(state, region, region.vecChild, bSubRegion);
  } else {
    // Regions made by closing are never split again, only closed again.
    CloseRegion(state, region, region.vecChild);
  }
  return true;
}

} // namespace

void InitRootRegion(const CorrelationState& state, _sLinkRegion& root) {
  const _sZK& zk1 = state.Zk1();
  const _sZK& zk2 = state.Zk2();
  root.nType = 0;
  root.bNamed = false;
  root.strName = L"";
  root.nBegin1 = 0;
  root.nEnd1 = static_cast<int32_t>(zk1.vecDC.size());
  root.nBegin2 = 0;
  root.nEnd2 = static_cast<int32_t>(zk2.vecDC.size());
  // The top follows the collars, not the first strata: a hole may start below ground with no log.
  root.ptTop[0] = CXk3DPoint(zk1.dX, zk1.dY, zk1.dTopGC);
  root.ptTop[1] = CXk3DPoint(zk2.dX, zk2.dY, zk2.dTopGC);
  root.ptBot[0] = CXk3DPoint(zk1.dX, zk1.dY, zk1.vecDC.empty() ? zk1.dTopGC : zk1.vecDC.back().dBotGC);
  root.ptBot[1] = CXk3DPoint(zk2.dX, zk2.dY, zk2.vecDC.empty() ? zk2.dTopGC : zk2.vecDC.back().dBotGC);
}

// Depth-first over the tree, without recursion: a log of many thousand repeated strata nests
// regions deeply, and the call stack of the host's thread is not ours to exhaust. A region's
// children are appended only while that region is processed, so the addresses taken here stay
// valid until the walk ends.
void LinkRegion(const CorrelationState& state, _sLinkRegion& region, bool bSubRegion) {
  std::vector<PendingRegion>& stack = state.Work().pendingRegions;
  stack.clear();
  stack.push_back({&region, bSubRegion});
  while (!stack.empty()) {
    const PendingRegion next = stack.back();
    stack.pop_back();
    if (!FitsBoreholes(state, *next.region) ||
        !ProcessRegion(state, *next.region, next.bSubRegion)) {
      // Nothing to do here, and nothing below: regions the walk makes have no children yet, and
      // those a caller left in a root are not the walk's to visit.
      continue;
    }
    RegionList& children = next.region->vecChild;
    for (auto it = children.rbegin(); it != children.rend(); ++it) {
      stack.push_back({&*it, true});
    }
  }
}

bool HasMixedStrata(const std::vector<int32_t>& codeIds, int32_t nBegin, int32_t nEnd) {
  if (!(nBegin < nEnd)) {
    return false;
  }
  const int32_t last = LastIndex(nEnd);
  // A range never starts before the first stratum; the bound keeps the first comparison inside.
  for (int32_t i = nBegin < 0 ? 1 : nBegin + 1; i <= last; ++i) {
    if (codeIds[Index(i - 1)] != codeIds[Index(i)]) {
      return true;
    }
  }
  return false;
}

bool HasCommonStratum(const CorrelationState& state, const _sLinkRegion& region) {
  if (!(region.nBegin1 < region.nEnd1) || !(region.nBegin2 < region.nEnd2)) {
    return false;
  }
  const CodeIndex& codes = state.Codes();
  // Inside the envelope of a stratum, that stratum's own occurrences do not correlate anything:
  // they are the envelope itself.
  const int32_t excluded = region.bNamed ? codes.IdOf(region.strName) : -1;
  const uint32_t mark = codes.NextMark();
  for (int32_t i2 = region.nBegin2 < 0 ? 0 : region.nBegin2; i2 <= LastIndex(region.nEnd2); ++i2) {
    const int32_t id = codes.ids2[Index(i2)];
    if (id != excluded) {
      codes.seen[Index(id)] = mark;
    }
  }
  for (int32_t i1 = region.nBegin1 < 0 ? 0 : region.nBegin1; i1 <= LastIndex(region.nEnd1); ++i1) {
    const int32_t id = codes.ids1[Index(i1)];
    if (id != excluded && codes.seen[Index(id)] == mark) {
      return true;
    }
  }
  return false;
}

void SplitAndCloseRegion(const CorrelationState& state, const _sLinkRegion& region,
                         RegionList& children, bool bSubRegion) {
  // Every child (a common stratum, or a wedge or lens of a gap) takes at least one stratum of the
  // region, so the region's strata bound their number; beyond a few dozen the list grows as usual.
  constexpr std::size_t kReservedChildren = 64;
  const auto strata = static_cast<std::size_t>(std::max(region.nEnd1 - region.nBegin1, 0)) +
                      static_cast<std::size_t>(std::max(region.nEnd2 - region.nBegin2, 0));
  ReserveMore(children, std::min(strata, kReservedChildren));
  SplitAtCommonStrata(state, region, children);
  RegionList& gaps = state.Work().gaps;
  gaps.clear();
  MakeGapRegions(state, region, children, gaps, bSubRegion);
  for (const _sLinkRegion& gap : gaps) {
    CloseRegion(state, gap, children);
  }
}

void RunLinkDc(CorrelationState& state, const _sZK& zk1, const _sZK& zk2, _sLinkRegion& root,
               Boreholes boreholes) {
  if (boreholes == Boreholes::Copied) {
    state.zk1 = zk1;
    state.zk2 = zk2;
    state.Release();
  } else {
    state.Borrow(zk1, zk2);
  }
  const double dy = state.Zk1().dY - state.Zk2().dY;
  const double dx = state.Zk1().dX - state.Zk2().dX;
  state.dDist = std::sqrt(dy * dy + dx * dx);
  InitRootRegion(state, root);
  LinkRegion(state, root, false);
  if (boreholes == Boreholes::Borrowed) {
    state.Release();
  }
  // The buffers of a long log would otherwise stay with the module until the next call.
  state.ReleaseWork();
}

} // namespace xkl

extern "C" void LinkDc(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                       DataType::_sLinkRegion& root) {
  xkl::RunLinkDc(xkl::g_state, zk1, zk2, root, xkl::Boreholes::Copied);
}
