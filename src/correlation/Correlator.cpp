// The correlation of two boreholes: the root region and the walk over the region tree.
//
// The root region covers both boreholes. A region is split where both boreholes share a stratum
// code, and a region that cannot be split is closed into pinch-out wedges or lenses whose corners
// are fixed. The walk repeats this on every region produced until no region holds two neighbouring
// strata of different codes on either side.
#include "correlation/Correlation.h"

#include <algorithm>
#include <cmath>

namespace xkl {

namespace {

std::size_t Index(int32_t i) {
  return static_cast<std::size_t>(i);
}

// Index of the last stratum of a half-open range, with negative values counting as -1.
int32_t LastIndex(int32_t end) {
  return end - 1 < 0 ? -1 : end - 1;
}

// Scratch up to this size stays for the next correlation: typical pairs then allocate nothing
// there, and the next pair of long logs finds its pages mapped already (logs of 2,000 strata need
// about 5 MB, of 8,000 about 60 MB). The larger scratch of longer logs goes back at once.
constexpr std::size_t kKeptScratchBytes = std::size_t{64} << 20;

} // namespace

std::size_t PairBuffers::Bytes() const {
  return BytesOf(pairs) + BytesOf(firstOfCode) + BytesOf(nextOfCode) + BytesOf(countOfCode) +
         BytesOf(candidates);
}

std::size_t BitsetBuffers::Bytes() const {
  return BytesOf(rowBegin) + BytesOf(rowEnd) + BytesOf(column) + BytesOf(earlierColumns) +
         BytesOf(band) + BytesOf(lowerBands) + BytesOf(keptBefore) + BytesOf(keptAfter) +
         BytesOf(candidates);
}

std::size_t SweepBuffers::Bytes() const {
  return BytesOf(mid1) + BytesOf(mid2) + BytesOf(rowsOfCode) + BytesOf(rowsOfCodeAt) +
         BytesOf(columnsOfCode) + BytesOf(columnsOfCodeAt) + BytesOf(firstPair) + BytesOf(dropped) +
         BytesOf(row) + BytesOf(offset) + BytesOf(entries) + BytesOf(keyed) + BytesOf(lo) +
         BytesOf(hi) + BytesOf(treeMin) + BytesOf(treeMax) + BytesOf(keptBefore) +
         BytesOf(keptAfter) + BytesOf(rowKept) + BytesOf(columnKept) + BytesOf(readmittedBefore) +
         BytesOf(readmittedAfter) + BytesOf(candidates);
}

std::size_t LongFusionBuffers::Bytes() const {
  // A node of the ordered set holds its key and three pointers and a colour.
  constexpr std::size_t kSetNode = sizeof(int32_t) + 4 * sizeof(void*);
  return BytesOf(next) + BytesOf(prev) + BytesOf(nextSame) + BytesOf(prevSame) + BytesOf(head) +
         BytesOf(tail) + BytesOf(count) + BytesOf(eligibleAt) + BytesOf(blocker) +
         BytesOf(blockedNext) + BytesOf(blockedPrev) + BytesOf(blockedFirst) +
         BytesOf(regionAtOrAfter) + BytesOf(sum) + BytesOf(sumValid) + BytesOf(touched) +
         BytesOf(codesPresent) + BytesOf(changed) + eligible.size() * kSetNode;
}

std::size_t RunBuffers::Bytes() const {
  return BytesOf(side1) + BytesOf(side2) + BytesOf(firstRun) + BytesOf(secondRun) +
         BytesOf(codesInOrder) + BytesOf(namedBefore) + longLists.Bytes();
}

std::size_t WalkBuffers::Bytes() const {
  return BytesOf(pending) + BytesOf(gaps);
}

std::size_t Correlator::Bytes() const {
  return pairs.Bytes() + bitsets.Bytes() + sweep.Bytes() + runs.Bytes() + walk.Bytes() +
         m_codes.Bytes();
}

void Correlator::ReleaseLargeScratch() {
  if (pairs.Bytes() > kKeptScratchBytes) {
    pairs = PairBuffers();
  }
  if (bitsets.Bytes() > kKeptScratchBytes) {
    bitsets = BitsetBuffers();
  }
  if (sweep.Bytes() > kKeptScratchBytes) {
    sweep = SweepBuffers();
  }
  if (runs.Bytes() > kKeptScratchBytes) {
    runs = RunBuffers();
  }
  if (walk.Bytes() > kKeptScratchBytes) {
    walk = WalkBuffers();
  }
}

double GetBoundaryGC(const _sZK& zk, int32_t k) {
  const auto count = static_cast<int64_t>(zk.vecDC.size());
  if (count == 0) {
    // A hole logged without strata has no depth: all its boundaries lie at the collar.
    return zk.dTopGC;
  }
  if (k < count) {
    // Negative boundary indices do not arise from valid ranges; they count as the top.
    return zk.vecDC[Index(k < 0 ? 0 : k)].dTopGC;
  }
  return zk.vecDC.back().dBotGC;
}

void Correlator::Correlate(const _sZK& zk1, const _sZK& zk2, _sLinkRegion& root) {
  m_zk1 = &zk1;
  m_zk2 = &zk2;
  const double dy = zk1.dY - zk2.dY;
  const double dx = zk1.dX - zk2.dX;
  m_distance = std::sqrt(dy * dy + dx * dx);
  m_codes.Rebuild(zk1, zk2);
  InitRootRegion(root);
  LinkRegion(root);
  // Nothing refers to the caller's boreholes once the call has returned.
  m_zk1 = nullptr;
  m_zk2 = nullptr;
  m_codes.Forget();
  ReleaseLargeScratch();
}

void Correlator::InitRootRegion(_sLinkRegion& root) const {
  const _sZK& zk1 = Zk1();
  const _sZK& zk2 = Zk2();
  root.nType = ToInt(RegionKind::Open);
  root.bNamed = false;
  root.strName = L"";
  root.nBegin1 = 0;
  root.nEnd1 = static_cast<int32_t>(zk1.vecDC.size());
  root.nBegin2 = 0;
  root.nEnd2 = static_cast<int32_t>(zk2.vecDC.size());
  // The top follows the collars, not the first strata: a hole may start below ground with no log.
  root.ptTop[0] = CXk3DPoint(zk1.dX, zk1.dY, zk1.dTopGC);
  root.ptTop[1] = CXk3DPoint(zk2.dX, zk2.dY, zk2.dTopGC);
  root.ptBot[0] = CXk3DPoint(zk1.dX, zk1.dY, GetBoundaryGC(zk1, root.nEnd1));
  root.ptBot[1] = CXk3DPoint(zk2.dX, zk2.dY, GetBoundaryGC(zk2, root.nEnd2));
}

// Depth-first over the tree, without recursion: a log of many thousand repeated strata nests
// regions deeply, and the call stack of the host's thread is not ours to exhaust. A region's
// children are appended only while that region is processed, so the addresses taken here stay
// valid until the walk ends.
void Correlator::LinkRegion(_sLinkRegion& root) {
  std::vector<WalkBuffers::Pending>& stack = walk.pending;
  stack.clear();
  stack.push_back({&root, false});
  while (!stack.empty()) {
    const WalkBuffers::Pending next = stack.back();
    stack.pop_back();
    if (!FitsBoreholes(*next.region) || !ProcessRegion(*next.region, next.subRegion)) {
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

// Whether every stratum a region names lies in the boreholes. Regions the walk makes always do; a
// root passed in may still hold children of an earlier call with other boreholes, and those are
// left as they are rather than read outside the strata.
bool Correlator::FitsBoreholes(const _sLinkRegion& region) const {
  const auto fits = [](int32_t begin, int32_t end, const _sZK& zk) {
    return !(begin < end) || end <= static_cast<int64_t>(zk.vecDC.size());
  };
  return fits(region.nBegin1, region.nEnd1, Zk1()) && fits(region.nBegin2, region.nEnd2, Zk2());
}

// Works on one region and appends what it produces to its own children. Answers false for a
// region with nothing to do, which is left as it is, children included.
bool Correlator::ProcessRegion(_sLinkRegion& region, bool subRegion) {
  if (!HasMixedStrata(m_codes.ids1, region.nBegin1, region.nEnd1) &&
      !HasMixedStrata(m_codes.ids2, region.nBegin2, region.nEnd2)) {
    // One code (or none) on each side: nothing to correlate inside, even when the two codes
    // differ; the region stays as it is.
    return false;
  }
  if (IsOpen(region) && HasCommonStratum(*this, region)) {
    SplitAndCloseRegion(region, region.vecChild, subRegion);
  } else {
    // Regions made by closing are never split again, only closed again.
    CloseRegion(region, region.vecChild);
  }
  return true;
}

// Closes a region that is not split: a named envelope into lenses, anything else into wedges.
void Correlator::CloseRegion(const _sLinkRegion& region, RegionList& out) {
  if (region.bNamed) {
    CloseNamedRegion(*this, region, out);
  } else {
    CloseUnmatchedRegion(*this, region, out);
  }
}

void Correlator::SplitAndCloseRegion(const _sLinkRegion& region, RegionList& children,
                                     bool subRegion) {
  // Every child (a common stratum, or a wedge or lens of a gap) takes at least one stratum of the
  // region, so the region's strata bound their number; beyond a few dozen the list grows as usual.
  constexpr std::size_t kReservedChildren = 64;
  const auto strata = static_cast<std::size_t>(std::max(region.nEnd1 - region.nBegin1, 0)) +
                      static_cast<std::size_t>(std::max(region.nEnd2 - region.nBegin2, 0));
  ReserveMore(children, std::min(strata, kReservedChildren));
  SplitAtCommonStrata(*this, region, children);
  RegionList& gaps = walk.gaps;
  gaps.clear();
  MakeGapRegions(*this, region, children, gaps, subRegion);
  for (const _sLinkRegion& gap : gaps) {
    CloseRegion(gap, children);
  }
}

bool HasMixedStrata(const std::vector<int32_t>& codeIds, int32_t begin, int32_t end) {
  if (!(begin < end)) {
    return false;
  }
  const int32_t last = LastIndex(end);
  // A range never starts before the first stratum; the bound keeps the first comparison inside.
  for (int32_t i = begin < 0 ? 1 : begin + 1; i <= last; ++i) {
    if (codeIds[Index(i - 1)] != codeIds[Index(i)]) {
      return true;
    }
  }
  return false;
}

bool HasCommonStratum(Correlator& correlator, const _sLinkRegion& region) {
  if (!(region.nBegin1 < region.nEnd1) || !(region.nBegin2 < region.nEnd2)) {
    return false;
  }
  CodeIndex& codes = correlator.Codes();
  // Inside the envelope of a stratum, that stratum's own occurrences do not correlate anything:
  // they are the envelope itself.
  const int32_t excluded = region.bNamed ? codes.IdOf(region.strName) : -1;
  const uint32_t mark = codes.NextMark();
  for (int32_t i2 = std::max(region.nBegin2, 0); i2 <= LastIndex(region.nEnd2); ++i2) {
    const int32_t id = codes.ids2[Index(i2)];
    if (id != excluded) {
      codes.seen[Index(id)] = mark;
    }
  }
  for (int32_t i1 = std::max(region.nBegin1, 0); i1 <= LastIndex(region.nEnd1); ++i1) {
    const int32_t id = codes.ids1[Index(i1)];
    if (id != excluded && codes.seen[Index(id)] == mark) {
      return true;
    }
  }
  return false;
}

} // namespace xkl
