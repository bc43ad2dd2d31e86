// Stratum runs: the strata of one side of a region, with the repeated occurrences of a code fused
// into one run that encloses whatever lies between them. A stratum met again lower in the same
// hole is read as one bed that envelopes the strata between (a lens or a tongue of another bed).
#include "correlation/Correlation.h"
#include "records/CompareDouble.h"

#include <algorithm>

namespace xkl {

namespace {

std::size_t Index(int32_t i) {
  return static_cast<std::size_t>(i);
}

// The runs of one side of one region while they are fused.
struct RunList {
  const _sLinkRegion& region;
  const _sZK& zk;
  int32_t regionCode; // the code of the region's name; -1 when no stratum carries it
  std::vector<StratumRun>& runs;
};

double Thickness(const _sZK& zk, const StratumRun& run) {
  if (run.begin < 0 || run.end - 1 < 0) {
    return 0.0;
  }
  return zk.vecDC[Index(run.begin)].dTopGC - zk.vecDC[Index(run.end - 1)].dBotGC;
}

// Which of two repeated codes is thicker in all: CompareDouble of the summed thicknesses of their
// runs; 0 for one code, -2 when either has fewer than two runs.
int32_t CompareDcThickness(const RunList& list, int32_t codeA, int32_t codeB) {
  if (codeA == codeB) {
    return 0;
  }
  double sums[2] = {0.0, 0.0};
  int counts[2] = {0, 0};
  for (const StratumRun& run : list.runs) {
    const int which = run.code == codeA ? 0 : run.code == codeB ? 1 : -1;
    if (which >= 0) {
      sums[which] += Thickness(list.zk, run);
      ++counts[which];
    }
  }
  return std::min(counts[0], counts[1]) < 2 ? -2 : CompareDouble(sums[0], sums[1]);
}

// A code is fused from its first to its last occurrence, swallowing what lies between, when it
// occurs a second time and no run from its first occurrence up to (not including) its second
// carries the region's own name: the envelope of the region must not be cut by another envelope.
// Among several such codes, the thickness comparison of the last two (in order of first
// occurrence) decides which is fused first; earlier comparisons would all be overwritten by it.
bool FindRepeatedDc(const RunList& list, RunBuffers& work, std::size_t codeCount, int32_t& code) {
  const std::vector<StratumRun>& runs = list.runs;
  if (runs.size() < 2) {
    return false; // nothing can occur twice
  }
  if (work.firstRun.size() < codeCount) {
    work.firstRun.resize(codeCount, -1);
    work.secondRun.resize(codeCount, -1);
  }
  work.codesInOrder.clear();
  work.namedBefore.resize(runs.size() + 1);
  work.namedBefore[0] = 0;
  for (std::size_t k = 0; k < runs.size(); ++k) {
    const int32_t c = runs[k].code;
    work.namedBefore[k + 1] = work.namedBefore[k] + (c == list.regionCode ? 1 : 0);
    if (work.firstRun[Index(c)] < 0) {
      work.firstRun[Index(c)] = static_cast<int32_t>(k);
      work.codesInOrder.push_back(c);
    } else if (work.secondRun[Index(c)] < 0) {
      work.secondRun[Index(c)] = static_cast<int32_t>(k);
    }
  }
  int32_t last = -1;
  int32_t beforeLast = -1;
  for (const int32_t c : work.codesInOrder) {
    const int32_t first = work.firstRun[Index(c)];
    const int32_t second = work.secondRun[Index(c)];
    work.firstRun[Index(c)] = -1;
    work.secondRun[Index(c)] = -1;
    if (list.region.bNamed && c == list.regionCode) {
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

// The first run of the code takes over everything down to the end of its last run.
void MergeDcRun(std::vector<StratumRun>& runs, int32_t code) {
  const auto coded = [code](const StratumRun& run) { return run.code == code; };
  const auto first = std::find_if(runs.begin(), runs.end(), coded);
  if (first == runs.end()) {
    return;
  }
  const auto last = std::prev(std::find_if(runs.rbegin(), runs.rend(), coded).base());
  if (first < last) {
    first->end = last->end;
    first->merged = true;
    runs.erase(first + 1, last + 1);
  }
}

} // namespace

void BuildFusedRuns(Correlator& correlator, const _sLinkRegion& region, bool side,
                    std::vector<StratumRun>& runs) {
  const CodeIndex& codes = correlator.Codes();
  RunList list{region, side ? correlator.Zk1() : correlator.Zk2(), codes.IdOf(region.strName),
               runs};
  runs.clear();
  const int32_t begin = std::max(side ? region.nBegin1 : region.nBegin2, -1);
  const int32_t end = side ? region.nEnd1 : region.nEnd2;
  if (begin < 0 || end - 1 < 0) {
    return;
  }
  const std::vector<int32_t>& ids = side ? codes.ids1 : codes.ids2;
  for (int32_t i = begin; i < end; ++i) {
    runs.push_back({i, i + 1, ids[Index(i)], false});
  }
  if (runs.size() > correlator.plainRunLimit) {
    FuseLongRunList(list.zk, list.regionCode, Index(codes.Count()), correlator.runs.longLists,
                    runs);
    return;
  }
  int32_t code = -1;
  while (FindRepeatedDc(list, correlator.runs, Index(codes.Count()), code)) {
    MergeDcRun(runs, code);
  }
}

void BuildFusedRunsOfBothSides(Correlator& correlator, const _sLinkRegion& region,
                               RegionList& out) {
  BuildFusedRuns(correlator, region, true, correlator.runs.side1);
  BuildFusedRuns(correlator, region, false, correlator.runs.side2);
  ReserveMore(out, correlator.runs.side1.size() + correlator.runs.side2.size());
}

} // namespace xkl
