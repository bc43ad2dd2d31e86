// Stratum runs: the strata of one side of a region, with the repeated occurrences of a code fused
// into one run that encloses whatever lies between them. A stratum met again lower in the same
// hole is read as one bed that envelopes the strata between (a lens or a tongue of another bed).
#include "correlation/Correlation.h"

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

// Whether `code` occurs a second time and may be fused: from its first occurrence up to (not
// including) its second, no run may carry the region's own name, since the envelope of the region
// must not be cut by another envelope.
bool IsFusable(const DcRunList& list, const std::wstring& code) {
  const std::wstring& regionName = list.pRegion->strName;
  bool seen = false;
  bool eligible = true;
  for (const DcRun& run : list.vecRun) {
    if (run.strName == code) {
      if (seen) {
        return eligible;
      }
      seen = true;
    }
    if (seen && run.strName == regionName) {
      eligible = false;
    }
  }
  return false;
}

} // namespace

void BuildDcRunList(const CorrelationState& state, DcRunList& list, const _sLinkRegion& region,
                    bool side) {
  list.pRegion = &region;
  list.pZK = side ? &state.zk1 : &state.zk2;
  list.vecRun.clear();
  const int32_t nBegin = std::max(side ? region.nBegin1 : region.nBegin2, -1);
  const int32_t nEnd = side ? region.nEnd1 : region.nEnd2;
  if (nBegin < 0 || nEnd - 1 < 0) {
    return;
  }
  for (int32_t i = nBegin; i < nEnd; ++i) {
    DcRun run;
    run.nBegin = i;
    run.nEnd = i + 1;
    run.strName = list.pZK->vecDC[Index(i)].strName;
    run.bMerged = false;
    list.vecRun.push_back(std::move(run));
  }
}

bool FindRepeatedDc(const DcRunList& list, std::wstring& name) {
  const _sLinkRegion& region = *list.pRegion;
  std::vector<const std::wstring*> candidates;
  for (const DcRun& run : list.vecRun) {
    const std::wstring& code = run.strName;
    if (region.bNamed && code == region.strName) {
      continue;
    }
    if (IsFusable(list, code) &&
        std::none_of(candidates.begin(), candidates.end(),
                     [&code](const std::wstring* c) { return *c == code; })) {
      candidates.push_back(&code);
    }
  }
  if (candidates.empty()) {
    return false;
  }
  const std::wstring* chosen = candidates.front();
  // Every comparison overwrites the choice, so the last pair compared decides: this is how the
  // host's sections have always been drawn, not a search for the thickest code.
  for (std::size_t i = 1; i < candidates.size(); ++i) {
    for (std::size_t j = i; j < candidates.size(); ++j) {
      const int32_t cmp = CompareDcThickness(list, *candidates[i - 1], *candidates[j]);
      chosen = cmp > 0 ? candidates[i - 1] : candidates[j];
    }
  }
  name = *chosen;
  return true;
}

int32_t CompareDcThickness(const DcRunList& list, const std::wstring& nameA,
                           const std::wstring& nameB) {
  if (nameA == nameB) {
    return 0;
  }
  double sumA = 0.0;
  double sumB = 0.0;
  int countA = 0;
  int countB = 0;
  for (const DcRun& run : list.vecRun) {
    if (run.strName == nameA) {
      sumA += RunThickness(*list.pZK, run);
      ++countA;
    } else if (run.strName == nameB) {
      sumB += RunThickness(*list.pZK, run);
      ++countB;
    }
  }
  if (countA < 2 || countB < 2) {
    return -2;
  }
  return CompareDouble(sumA, sumB);
}

void MergeDcRun(DcRunList& list, const std::wstring& name) {
  auto& runs = list.vecRun;
  const auto named = [&name](const DcRun& run) { return run.strName == name; };
  const auto first = std::find_if(runs.begin(), runs.end(), named);
  const auto lastReverse = std::find_if(runs.rbegin(), runs.rend(), named);
  if (first == runs.end()) {
    return;
  }
  const auto last = std::prev(lastReverse.base());
  if (!(first < last)) {
    return;
  }
  first->nEnd = last->nEnd;
  first->bMerged = true;
  runs.erase(first + 1, last + 1);
}

std::vector<DcRun> BuildFusedRuns(const CorrelationState& state, const _sLinkRegion& region,
                                  bool side) {
  DcRunList list;
  BuildDcRunList(state, list, region, side);
  std::wstring name;
  while (FindRepeatedDc(list, name)) {
    MergeDcRun(list, name);
  }
  return std::move(list.vecRun);
}

} // namespace xkl
