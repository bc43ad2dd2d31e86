// Stratum runs: the strata of one side of a region, with the repeated occurrences of a code fused
// into one run that encloses whatever lies between them. A stratum met again lower in the same
// hole is read as one bed that envelopes the strata between (a lens or a tongue of another bed).
#include "correlation/Correlation.h"

#include "records/CompareDouble.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

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

// A code is fused from its first to its last occurrence, swallowing what lies between, when it
// occurs a second time and no run from its first occurrence up to (not including) its second
// carries the region's own name: the envelope of the region must not be cut by another envelope.
// Among several such codes, the thickness comparison of the last two (in order of first
// occurrence) decides which is fused first; earlier comparisons would all be overwritten by it.
bool FindRepeatedDc(const DcRunList& list, std::wstring& name) {
  const _sLinkRegion& region = *list.pRegion;
  const std::vector<DcRun>& runs = list.vecRun;
  struct Occurrences {
    std::size_t first;
    std::size_t second;
  };
  constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  std::unordered_map<std::wstring_view, Occurrences> occurrences;
  std::vector<std::wstring_view> byFirstOccurrence;
  // namedBefore[k]: runs among the first k that carry the region's name.
  std::vector<std::size_t> namedBefore(runs.size() + 1, 0);
  for (std::size_t k = 0; k < runs.size(); ++k) {
    const std::wstring_view code = runs[k].strName;
    namedBefore[k + 1] = namedBefore[k] + (code == region.strName ? 1 : 0);
    const auto [it, inserted] = occurrences.try_emplace(code, Occurrences{k, kNone});
    if (inserted) {
      byFirstOccurrence.push_back(code);
    } else if (it->second.second == kNone) {
      it->second.second = k;
    }
  }
  std::vector<std::wstring_view> candidates;
  for (const std::wstring_view code : byFirstOccurrence) {
    if (region.bNamed && code == region.strName) {
      continue;
    }
    const Occurrences& o = occurrences.at(code);
    if (o.second != kNone && namedBefore[o.second] == namedBefore[o.first]) {
      candidates.push_back(code);
    }
  }
  if (candidates.empty()) {
    return false;
  }
  if (candidates.size() == 1) {
    name = candidates.front();
    return true;
  }
  const std::wstring a(candidates[candidates.size() - 2]);
  const std::wstring b(candidates.back());
  name = CompareDcThickness(list, a, b) > 0 ? a : b;
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
