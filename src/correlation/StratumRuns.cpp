// Stratum runs: the strata of one side of a region, with the repeated occurrences of a code fused
// into one run that encloses whatever lies between them. A stratum met again lower in the same
// hole is read as one bed that envelopes the strata between (a lens or a tongue of another bed).
#include "correlation/Correlation.h"
#include "correlation/Workspace.h"

#include "records/CompareDouble.h"

#include <algorithm>

namespace xkl {

namespace {

std::size_t Index(int32_t i) { return static_cast<std::size_t>(i); }

double RunThickness(const _sZK& zk, const DcRun& run) {
  if (run.nBegin < 0 || run.nEnd - 1 < 0) {
    return 0.0;
  }
  return zk.vecDC[Index(run.nBegin)].dTopGC - zk.vecDC[Index(run.nEnd - 1)].dBotGC;
}

} // namespace

void BuildDcRunList(const CorrelationState& state, DcRunList& list, const _sLinkRegion& region,
                    bool side) {
  const CodeIndex& codes = state.Codes();
  list.pRegion = &region;
  list.pZK = side ? &state.Zk1() : &state.Zk2();
  list.pState = &state;
  list.nRegionCode = codes.IdOf(region.strName);
  list.vecRun.clear();
  const int32_t nBegin = std::max(side ? region.nBegin1 : region.nBegin2, -1);
  const int32_t nEnd = side ? region.nEnd1 : region.nEnd2;
  if (nBegin < 0 || nEnd - 1 < 0) {
    return;
  }
  const std::vector<int32_t>& ids = side ? codes.ids1 : codes.ids2;
  for (int32_t i = nBegin; i < nEnd; ++i) {
    list.vecRun.push_back(DcRun{i, i + 1, ids[Index(i)], false});
  }
}

const std::wstring& CodeName(const DcRunList& list, const DcRun& run) {
  return *list.pState->Codes().codes[Index(run.nCode)];
}

// A code is fused from its first to its last occurrence, swallowing what lies between, when it
// occurs a second time and no run from its first occurrence up to (not including) its second
// carries the region's own name: the envelope of the region must not be cut by another envelope.
// Among several such codes, the thickness comparison of the last two (in order of first
// occurrence) decides which is fused first; earlier comparisons would all be overwritten by it.
bool FindRepeatedDc(const DcRunList& list, int32_t& code) {
  const std::vector<DcRun>& runs = list.vecRun;
  if (runs.size() < 2) {
    return false; // nothing can occur twice
  }
  RunBuffers& work = list.pState->Work().runs;
  const auto codeCount = Index(list.pState->Codes().Count());
  if (work.firstRun.size() < codeCount) {
    work.firstRun.resize(codeCount, -1);
    work.secondRun.resize(codeCount, -1);
  }
  work.codesInOrder.clear();
  work.namedBefore.resize(runs.size() + 1);
  work.namedBefore[0] = 0;
  for (std::size_t k = 0; k < runs.size(); ++k) {
    const int32_t c = runs[k].nCode;
    work.namedBefore[k + 1] = work.namedBefore[k] + (c == list.nRegionCode ? 1 : 0);
    if (work.firstRun[Index(c)] < 0) {
      work.firstRun[Index(c)] = static_cast<int32_t>(k);
      work.codesInOrder.push_back(c);
    } else if (work.secondRun[Index(c)] < 0) {
      work.secondRun[Index(c)] = static_cast<int32_t>(k);
    }
  }
  int32_t last = -1;
  int32_t beforeLast = -1;
  const bool named = list.pRegion->bNamed;
  for (const int32_t c : work.codesInOrder) {
    const int32_t first = work.firstRun[Index(c)];
    const int32_t second = work.secondRun[Index(c)];
    work.firstRun[Index(c)] = -1;
    work.secondRun[Index(c)] = -1;
    if (named && c == list.nRegionCode) {
      continue;
    }
    if (second >= 0 && work.namedBefore[Index(second)] == work.namedBefore[Index(first)]) {
      beforeLast = last;
      last = c;
    }
  }
  if (last < 0) {
    return false;
  }
  code = beforeLast >= 0 && CompareDcThickness(list, beforeLast, last) > 0 ? beforeLast : last;
  return true;
}

int32_t CompareDcThickness(const DcRunList& list, int32_t codeA, int32_t codeB) {
  if (codeA == codeB) {
    return 0;
  }
  double sumA = 0.0;
  double sumB = 0.0;
  int countA = 0;
  int countB = 0;
  for (const DcRun& run : list.vecRun) {
    if (run.nCode == codeA) {
      sumA += RunThickness(*list.pZK, run);
      ++countA;
    } else if (run.nCode == codeB) {
      sumB += RunThickness(*list.pZK, run);
      ++countB;
    }
  }
  if (countA < 2 || countB < 2) {
    return -2;
  }
  return CompareDouble(sumA, sumB);
}

void MergeDcRun(DcRunList& list, int32_t code) {
  auto& runs = list.vecRun;
  const auto coded = [code](const DcRun& run) { return run.nCode == code; };
  const auto first = std::find_if(runs.begin(), runs.end(), coded);
  if (first == runs.end()) {
    return;
  }
  const auto last = std::prev(std::find_if(runs.rbegin(), runs.rend(), coded).base());
  if (!(first < last)) {
    return;
  }
  first->nEnd = last->nEnd;
  first->bMerged = true;
  runs.erase(first + 1, last + 1);
}

void BuildFusedRuns(const CorrelationState& state, const _sLinkRegion& region, bool side,
                    std::vector<DcRun>& runs) {
  DcRunList list;
  list.vecRun.swap(runs); // reuse the caller's storage
  BuildDcRunList(state, list, region, side);
  int32_t code = -1;
  while (FindRepeatedDc(list, code)) {
    MergeDcRun(list, code);
  }
  runs.swap(list.vecRun);
}

} // namespace xkl
