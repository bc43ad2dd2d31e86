// Plain reference implementation of the correlation and of the section lines. See the header for
// its purpose. Each function below follows its rule one step at a time; nothing is cached, indexed
// or reordered, and shortcuts that would change the order of floating-point operations are avoided
// on purpose (mid elevation = (bottom + top) * 0.5, tip = (X2 - X1) * t / dist + X1, and so on).
#include "reference/ReferenceCorrelation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

namespace reference {

using DataType::_sLinkLine;
using DataType::_sLinkRegion;
using DataType::_sZK;
using DataType::_sZKDC;

namespace {

// Three-way comparison with the tolerance 1e-5, absolute, and also relative when both values are
// below 1 in magnitude: 0 equal, 1 a greater, -1 a less or not comparable (NaN).
int CompareDouble(double a, double b) {
  if (a == b) {
    return 0;
  }
  const double d = a - b;
  if (std::fabs(d) < 1e-5) {
    if (a == 0.0 || b == 0.0) {
      return 0;
    }
    const double m = std::fabs(a) > std::fabs(b) ? std::fabs(a) : std::fabs(b);
    if (!(m < 1.0)) {
      return 0;
    }
    if (std::fabs(d / m) < 1e-5) {
      return 0;
    }
  }
  return a > b ? 1 : -1;
}

// The two boreholes of one correlation and their plan distance. One instance per call: the
// reference keeps no state between calls.
struct State {
  _sZK zk1;
  _sZK zk2;
  double dist = 0.0;
};

// An index read from a region: negative values all mean "before the first stratum".
int32_t Norm(int32_t k) {
  return k < 0 ? -1 : k;
}

int32_t Count(const _sZK& zk) {
  return static_cast<int32_t>(zk.vecDC.size());
}

const _sZKDC& Stratum(const _sZK& zk, int32_t i) {
  if (i < 0 || i >= Count(zk)) {
    // No rule of the correlation reads outside the strata; reaching this is a fault of the
    // reference itself and must show up in the tests.
    throw std::logic_error("reference: stratum index out of range");
  }
  return zk.vecDC[static_cast<std::size_t>(i)];
}

const std::wstring& Code(const _sZK& zk, int32_t i) {
  return Stratum(zk, i).strName;
}

// Elevation of the boundary above stratum k; below the last stratum, the bottom of the hole. A hole
// without strata has zero depth: all its boundaries lie at the collar.
double BoundaryGC(const _sZK& zk, int32_t k) {
  if (zk.vecDC.empty()) {
    return zk.dTopGC;
  }
  if (k < Count(zk)) {
    return Stratum(zk, k).dTopGC;
  }
  return zk.vecDC.back().dBotGC;
}

CXk3DPoint MakePoint(double x, double y, double z) {
  CXk3DPoint p;
  p.x = x;
  p.y = y;
  p.z = z;
  return p;
}

// A corner with the plan position of `plan` and the elevation z.
CXk3DPoint AtElevation(const CXk3DPoint& plan, double z) {
  return MakePoint(plan.x, plan.y, z);
}

// ---------------------------------------------------------------------------------------------
// Work test and common-stratum test

bool HasMixedStrata(const _sZK& zk, int32_t begin, int32_t end) {
  if (!(begin < end)) {
    return false;
  }
  const int32_t b = Norm(begin);
  const int32_t last = Norm(end - 1);
  for (int32_t i = b + 1; i <= last; ++i) {
    if (Code(zk, i - 1) != Code(zk, i)) {
      return true;
    }
  }
  return false;
}

// ---------------------------------------------------------------------------------------------
// First splitting pass: pairs of equal codes, crossing resolution, one named sub-region per chain

struct Pair {
  int32_t nDC1 = -1;
  int32_t nDC2 = -1;
  double dDiffGC = 0.0;
  bool bDrop = false;
};

double MidGC(const _sZKDC& dc) {
  return (dc.dTopGC + dc.dBotGC) * 0.5;
}

bool Cross(const Pair& p, const Pair& q) {
  if (p.nDC1 == q.nDC1 || p.nDC2 == q.nDC2) {
    return false;
  }
  return (p.nDC1 < q.nDC1) != (p.nDC2 < q.nDC2);
}

// 1. Every pair of strata with equal codes, by borehole-1 index and then borehole-2 index; in a
// named region the region's own code pairs with nothing.
std::vector<Pair> CollectPairs(const State& s, const _sLinkRegion& r) {
  std::vector<Pair> pairs;
  if (!(r.nBegin1 < r.nEnd1) || !(r.nBegin2 < r.nEnd2)) {
    return pairs;
  }
  for (int32_t i = Norm(r.nBegin1); i <= Norm(r.nEnd1 - 1); ++i) {
    for (int32_t j = Norm(r.nBegin2); j <= Norm(r.nEnd2 - 1); ++j) {
      const bool own = r.bNamed && (Code(s.zk1, i) == r.strName || Code(s.zk2, j) == r.strName);
      if (!own && Code(s.zk1, i) == Code(s.zk2, j)) {
        Pair p;
        p.nDC1 = i;
        p.nDC2 = j;
        p.dDiffGC = std::fabs(MidGC(Stratum(s.zk1, i)) - MidGC(Stratum(s.zk2, j)));
        pairs.push_back(p);
      }
    }
  }
  return pairs;
}

std::vector<Pair> MatchCommonStrata(const State& s, const _sLinkRegion& r) {
  std::vector<Pair> pairs = CollectPairs(s, r);
  // 2. First sweep: of two crossing pairs the one whose mid elevations differ more is dropped (the
  // later one on equal keys). A dropped pair goes on dropping later pairs.
  for (std::size_t a = 0; a < pairs.size(); ++a) {
    if (pairs[a].bDrop) {
      continue;
    }
    for (std::size_t b = a + 1; b < pairs.size(); ++b) {
      if (pairs[b].bDrop) {
        continue;
      }
      if (Cross(pairs[a], pairs[b])) {
        if (pairs[a].dDiffGC > pairs[b].dDiffGC) {
          pairs[a].bDrop = true;
        } else {
          pairs[b].bDrop = true;
        }
      }
    }
  }

  // 3. Candidates: the dropped pairs, by position in the pair list.
  std::vector<std::size_t> candidates;
  for (std::size_t k = 0; k < pairs.size(); ++k) {
    if (pairs[k].bDrop) {
      candidates.push_back(k);
    }
  }

  // 4. Screening against the kept pairs (which do not change during this step).
  std::vector<std::size_t> screened;
  for (const std::size_t c : candidates) {
    bool crossesKept = false;
    bool sharesStratum = false;
    for (const Pair& kept : pairs) {
      if (kept.bDrop) {
        continue;
      }
      if (Cross(pairs[c], kept)) {
        crossesKept = true;
      }
      if (kept.nDC1 == pairs[c].nDC1 || kept.nDC2 == pairs[c].nDC2) {
        sharesStratum = true;
      }
    }
    if (crossesKept) {
      continue; // dropped for good
    }
    if (!sharesStratum) {
      pairs[c].dDiffGC = 0.0;
    }
    screened.push_back(c);
  }

  // 5. Stable sort by key, ascending (insertion sort: equal keys keep their order).
  for (std::size_t k = 1; k < screened.size(); ++k) {
    const std::size_t moving = screened[k];
    std::size_t j = k;
    while (j > 0 && pairs[screened[j - 1]].dDiffGC > pairs[moving].dDiffGC) {
      screened[j] = screened[j - 1];
      --j;
    }
    screened[j] = moving;
  }

  // 6. Re-admission in sorted order, unless crossing an already re-admitted candidate.
  std::vector<std::size_t> readmitted;
  for (const std::size_t c : screened) {
    bool crosses = false;
    for (const std::size_t prev : readmitted) {
      if (Cross(pairs[c], pairs[prev])) {
        crosses = true;
      }
    }
    if (!crosses) {
      pairs[c].bDrop = false;
      readmitted.push_back(c);
    }
  }

  // 7. Only the kept and re-admitted pairs remain, in collection order.
  std::erase_if(pairs, [](const Pair& p) { return p.bDrop; });
  return pairs;
}

// Consumes every remaining pair whose stratum on one side is `at` and returns the deepest stratum
// they reach on the other side; -1 when no pair is left there.
int32_t FollowChain(std::vector<Pair>& pairs, int32_t Pair::*side, int32_t Pair::*other,
                    int32_t at) {
  int32_t deepest = -1;
  for (Pair& q : pairs) {
    if (!q.bDrop && q.*side == at) {
      q.bDrop = true;
      deepest = std::max(deepest, q.*other);
    }
  }
  return deepest;
}

void SplitAtCommonStrata(const State& s, const _sLinkRegion& r, std::vector<_sLinkRegion>& out) {
  if (r.nType != 0) {
    return;
  }
  std::vector<Pair> pairs = MatchCommonStrata(s, r);
  _sLinkRegion sub; // working record, reused
  for (std::size_t k = 0; k < pairs.size(); ++k) {
    if (pairs[k].bDrop) {
      continue; // consumed by an earlier chain
    }
    const Pair& p = pairs[k];
    sub.nType = 0;
    sub.bNamed = true;
    sub.strName = Code(s.zk1, p.nDC1);
    int32_t i1 = p.nDC1;
    int32_t i2 = p.nDC2;
    sub.nBegin1 = Norm(i1);
    sub.nBegin2 = Norm(i2);
    // The chain: from a stratum on one side to the deepest it pairs with on the other, and back,
    // until a stratum pairs with nothing more.
    for (;;) {
      const int32_t deepest2 = FollowChain(pairs, &Pair::nDC1, &Pair::nDC2, i1);
      if (deepest2 < 0) {
        break;
      }
      i2 = deepest2;
      const int32_t deepest1 = FollowChain(pairs, &Pair::nDC2, &Pair::nDC1, i2);
      if (deepest1 < 0) {
        break;
      }
      i1 = deepest1;
    }
    sub.nEnd1 = Norm(i1 + 1);
    sub.nEnd2 = Norm(i2 + 1);
    sub.ptTop[0] = AtElevation(r.ptTop[0], BoundaryGC(s.zk1, sub.nBegin1));
    sub.ptTop[1] = AtElevation(r.ptTop[1], BoundaryGC(s.zk2, sub.nBegin2));
    sub.ptBot[0] = AtElevation(r.ptBot[0], BoundaryGC(s.zk1, sub.nEnd1));
    sub.ptBot[1] = AtElevation(r.ptBot[1], BoundaryGC(s.zk2, sub.nEnd2));
    out.push_back(sub);
  }
}

// ---------------------------------------------------------------------------------------------
// Second splitting pass: the gaps above, between and (below the root) beneath the sub-regions

void MakeGapRegions(const State& s, const _sLinkRegion& r,
                    const std::vector<_sLinkRegion>& children, std::vector<_sLinkRegion>& gaps,
                    bool bSubRegion) {
  const std::size_t n = children.size();
  if (n == 0) {
    throw std::logic_error("reference: gap pass without sub-regions");
  }
  const _sLinkRegion& first = children[0];
  const _sLinkRegion& last = children[n - 1];

  // Each gap is a fresh record of kind 0 carrying the region's name and flag, its four indices and
  // the corners of the boundaries above and below it, copied whole.
  auto append = [&](int32_t b1, int32_t e1, int32_t b2, int32_t e2, const CXk3DPoint* top,
                    const CXk3DPoint* bot) {
    gaps.emplace_back();
    _sLinkRegion& made = gaps.back();
    made.bNamed = r.bNamed;
    made.strName = r.strName;
    made.nBegin1 = b1;
    made.nEnd1 = e1;
    made.nBegin2 = b2;
    made.nEnd2 = e2;
    for (int side = 0; side < 2; ++side) {
      made.ptTop[side] = top[side];
      made.ptBot[side] = bot[side];
    }
  };

  // 1. Adjusted top indices: a named region's own leading stratum is left out.
  int32_t i1 = r.nBegin1;
  int32_t i2 = r.nBegin2;
  if (r.bNamed) {
    if (r.nBegin1 >= 0 && Code(s.zk1, r.nBegin1) == r.strName) {
      i1 = r.nBegin1 + 1;
    }
    if (r.nBegin2 >= 0 && Code(s.zk2, r.nBegin2) == r.strName) {
      i2 = r.nBegin2 + 1;
    }
  }
  // 2. Top gap.
  if (first.nBegin1 != i1 || first.nBegin2 != i2) {
    append(i1, first.nBegin1, i2, first.nBegin2, r.ptTop, first.ptTop);
  }
  // 3. Middle gaps, also when empty on both sides.
  for (std::size_t k = 1; k < n; ++k) {
    const _sLinkRegion& above = children[k - 1];
    const _sLinkRegion& below = children[k];
    append(above.nEnd1, below.nBegin1, above.nEnd2, below.nBegin2, above.ptBot, below.ptTop);
  }
  // 4. No gap below the last sub-region of the root.
  if (!bSubRegion) {
    return;
  }
  // 5. Adjusted bottom indices: the stratum tested is the one just above the adjusted top index.
  int32_t e1 = r.nEnd1;
  int32_t e2 = r.nEnd2;
  if (r.bNamed) {
    const int32_t j1 = Norm(i1 - 1);
    const int32_t j2 = Norm(i2 - 1);
    if (j1 >= 0 && Code(s.zk1, j1) == r.strName) {
      e1 = r.nEnd1 - 1;
    }
    if (j2 >= 0 && Code(s.zk2, j2) == r.strName) {
      e2 = r.nEnd2 - 1;
    }
  }
  // 6. Bottom gap.
  if (last.nEnd1 != e1 || last.nEnd2 != e2) {
    append(last.nEnd1, e1, last.nEnd2, e2, last.ptBot, r.ptBot);
  }
}

// ---------------------------------------------------------------------------------------------
// Stratum runs shared by both closing routines

struct Run {
  int32_t nBegin = -1;
  int32_t nEnd = -1;
  std::wstring strName;
  bool bMerged = false;
};

std::vector<Run> BuildRuns(const _sZK& zk, int32_t begin, int32_t end) {
  std::vector<Run> runs;
  const int32_t b = Norm(begin);
  const int32_t last = Norm(end - 1);
  if (b < 0 || last < 0) {
    return runs;
  }
  for (int32_t i = b; i <= last; ++i) {
    runs.push_back({i, i + 1, Code(zk, i), false});
  }
  return runs;
}

double RunThickness(const _sZK& zk, const Run& run) {
  if (run.nBegin < 0 || run.nEnd - 1 < 0) {
    return 0.0;
  }
  return Stratum(zk, run.nBegin).dTopGC - Stratum(zk, run.nEnd - 1).dBotGC;
}

int32_t CompareDcThickness(const _sZK& zk, const std::vector<Run>& runs, const std::wstring& a,
                           const std::wstring& b) {
  if (a == b) {
    return 0;
  }
  double sumA = 0.0;
  double sumB = 0.0;
  int countA = 0;
  int countB = 0;
  for (const Run& run : runs) {
    if (run.strName == a) {
      sumA += RunThickness(zk, run);
      ++countA;
    } else if (run.strName == b) {
      sumB += RunThickness(zk, run);
      ++countB;
    }
  }
  if (countA < 2 || countB < 2) {
    return -2;
  }
  return CompareDouble(sumA, sumB);
}

// The code to fuse next, as the index of a run that bears it; runs.size() when there is none.
std::size_t FindRepeatedDc(const _sZK& zk, const _sLinkRegion& r, const std::vector<Run>& runs) {
  std::vector<std::size_t> candidates; // first run of each candidate code
  for (std::size_t p = 0; p < runs.size(); ++p) {
    const std::wstring& code = runs[p].strName;
    if (r.bNamed && code == r.strName) {
      continue;
    }
    int count = 0;
    bool eligible = true;
    for (const Run& run : runs) {
      if (run.strName == code) {
        ++count;
        if (count == 2) {
          break; // the second occurrence itself is not tested
        }
      }
      if (count >= 1 && run.strName == r.strName) {
        eligible = false;
      }
    }
    if (count < 2 || !eligible) {
      continue;
    }
    const bool known = std::any_of(candidates.begin(), candidates.end(),
                                   [&](std::size_t c) { return runs[c].strName == code; });
    if (!known) {
      candidates.push_back(p);
    }
  }
  if (candidates.empty()) {
    return runs.size();
  }
  if (candidates.size() == 1) {
    return candidates[0];
  }
  // Every comparison overwrites the result: the last pair compared decides.
  std::size_t result = runs.size();
  const std::size_t n = candidates.size();
  for (std::size_t i = 1; i < n; ++i) {
    for (std::size_t j = i; j < n; ++j) {
      const std::size_t a = candidates[i - 1];
      const std::size_t b = candidates[j];
      const int32_t c = CompareDcThickness(zk, runs, runs[a].strName, runs[b].strName);
      result = c > 0 ? a : b;
    }
  }
  return result;
}

// Fuses the first run of the code with everything down to its last run.
void MergeDcRun(std::vector<Run>& runs, const std::wstring& name) {
  const auto bears = [&name](const Run& run) { return run.strName == name; };
  const auto firstRun = std::find_if(runs.begin(), runs.end(), bears);
  const auto lastRun = std::find_if(runs.rbegin(), runs.rend(), bears);
  if (firstRun == runs.end()) {
    return;
  }
  const auto first = static_cast<std::size_t>(firstRun - runs.begin());
  const auto last = static_cast<std::size_t>(runs.rend() - lastRun) - 1;
  if (!(first < last)) {
    return;
  }
  runs[first].nEnd = runs[last].nEnd;
  runs[first].bMerged = true;
  runs.erase(runs.begin() + static_cast<std::ptrdiff_t>(first) + 1,
             runs.begin() + static_cast<std::ptrdiff_t>(last) + 1);
}

// The runs of one side of a region after all repeated codes have been fused.
std::vector<Run> FusedRuns(const _sZK& zk, const _sLinkRegion& r, int32_t begin, int32_t end) {
  std::vector<Run> runs = BuildRuns(zk, begin, end);
  for (;;) {
    const std::size_t k = FindRepeatedDc(zk, r, runs);
    if (k >= runs.size()) {
      return runs;
    }
    const std::wstring name = runs[k].strName; // a copy: fusing removes runs
    MergeDcRun(runs, name);
  }
}

// ---------------------------------------------------------------------------------------------
// Closing a region of unmatched strata: pinch-out wedges interleaved by code

void CloseUnmatchedRegion(const State& s, const _sLinkRegion& r, std::vector<_sLinkRegion>& out) {
  const _sZK* zk[2] = {&s.zk1, &s.zk2};
  const std::vector<Run> runs[2] = {FusedRuns(s.zk1, r, r.nBegin1, r.nEnd1),
                                    FusedRuns(s.zk2, r, r.nBegin2, r.nEnd2)};
  const int32_t ends[2] = {r.nEnd1, r.nEnd2};
  std::size_t next[2] = {0, 0};
  while (next[0] < runs[0].size() || next[1] < runs[1].size()) {
    // The run that comes first by code takes the next wedge; borehole 1 on equal codes.
    int side = 0;
    if (next[0] >= runs[0].size()) {
      side = 1;
    } else if (next[1] < runs[1].size() &&
               runs[0][next[0]].strName.compare(runs[1][next[1]].strName) > 0) {
      side = 1;
    }
    const int other = 1 - side;
    const Run& run = runs[side][next[side]++];
    // On the other hole the wedge pinches out at the top of its next run, or at the region's end.
    const int32_t at =
        next[other] < runs[other].size() ? runs[other][next[other]].nBegin : ends[other];
    _sLinkRegion wedge;
    wedge.nType = 2;
    wedge.bNamed = run.bMerged;
    wedge.strName = run.strName;
    (side == 0 ? wedge.nBegin1 : wedge.nBegin2) = run.nBegin;
    (side == 0 ? wedge.nEnd1 : wedge.nEnd2) = run.nEnd;
    (side == 0 ? wedge.nBegin2 : wedge.nBegin1) = at;
    (side == 0 ? wedge.nEnd2 : wedge.nEnd1) = at;
    wedge.ptTop[side] = AtElevation(r.ptTop[side], BoundaryGC(*zk[side], run.nBegin));
    wedge.ptBot[side] = AtElevation(r.ptBot[side], BoundaryGC(*zk[side], run.nEnd));
    wedge.ptTop[other] = AtElevation(r.ptTop[other], BoundaryGC(*zk[other], at));
    wedge.ptBot[other] = AtElevation(r.ptBot[other], BoundaryGC(*zk[other], at));
    out.push_back(wedge);
  }
}

// ---------------------------------------------------------------------------------------------
// Lens geometry, in the vertical plane of the section: (plan distance, elevation, 0)

struct V {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

V Sub(const V& a, const V& b) {
  return V{a.x - b.x, a.y - b.y, a.z - b.z};
}
V AddScaled(const V& base, const V& d, double s) {
  return V{base.x + d.x * s, base.y + d.y * s, base.z + d.z * s};
}

bool IsBetween(const V& p, const V& a, const V& b) {
  if (std::fabs(a.x - b.x) <= 1e-5) {
    return (p.y >= a.y && b.y >= p.y) || (a.y >= p.y && p.y >= b.y);
  }
  return (p.x >= a.x && b.x >= p.x) || (a.x >= p.x && p.x >= b.x);
}

int32_t IntersectSegment(const V& p0, const V& p1, const V& q0, const V& q1, V& r1, V& r2) {
  const V d1 = Sub(p1, p0);
  const V d2 = Sub(q1, q0);
  const V w = Sub(p0, q0);
  const double cross = d1.x * d2.y - d1.y * d2.x;
  const bool crossing = std::fabs(cross) >= 1e-5;
  if (crossing) {
    // s along the first segment, u along the second; both must lie in [0, 1], without tolerance.
    const double s = (w.y * d2.x - d2.y * w.x) / cross;
    const double u = (d1.x * w.y - d1.y * w.x) / cross;
    const bool outside = s < 0 || s > 1 || u < 0 || u > 1;
    if (outside) {
      return 0;
    }
    r1 = AddScaled(p0, d1, s);
    return 1;
  }
  if (std::fabs(d1.x * w.y - d1.y * w.x) > 1e-5) {
    return 0;
  }
  if (std::fabs(w.y * d2.x - d2.y * w.x) > 1e-5) {
    return 0;
  }
  const double len1 = std::fabs(d1.x * d1.x + d1.y * d1.y + d1.z * d1.z);
  const double len2 = std::fabs(d2.x * d2.x + d2.y * d2.y + d2.z * d2.z);
  if (len1 <= 1e-5 && len2 <= 1e-5) {
    if (CompareDouble(p0.x, q0.x) != 0 || CompareDouble(p0.y, q0.y) != 0 ||
        CompareDouble(p0.z, q0.z) != 0) {
      return 0;
    }
    r1 = p0;
    return 1;
  }
  if (len1 <= 1e-5) {
    if (!IsBetween(p0, q0, q1)) {
      return 0;
    }
    r1 = p0;
    return 1;
  }
  if (len2 <= 1e-5) {
    if (!IsBetween(q0, p0, p1)) {
      return 0;
    }
    r1 = q0;
    return 1;
  }
  // Both proper: P0 and P1 as parameters along Q0-Q1, on x unless Q0-Q1 is vertical.
  const bool alongX = std::fabs(d2.x) > 1e-5;
  const double along = alongX ? d2.x : d2.y;
  double lo = (alongX ? w.x : w.y) / along;
  double hi = (alongX ? p1.x - q0.x : p1.y - q0.y) / along;
  if (lo > hi) {
    std::swap(lo, hi);
  }
  if (lo > 1 || hi < 0) {
    return 0;
  }
  lo = std::max(lo, 0.0);
  hi = std::min(hi, 1.0);
  r1 = AddScaled(q0, d2, lo);
  if (!(std::fabs(lo - hi) > 1e-5)) {
    return 1;
  }
  r2 = AddScaled(q0, d2, hi);
  return 2;
}

double PlanDistance(const CXk3DPoint& p, double ox, double oy) {
  const double dy = p.y - oy;
  const double dx = p.x - ox;
  return std::sqrt(dy * dy + dx * dx);
}

// The tip of a lens with mid point m inside region r; side true: the lens lies on borehole 1.
CXk3DPoint GetLensTip(const State& s, const _sLinkRegion& r, const CXk3DPoint& m, bool side) {
  const _sZK& own = side ? s.zk1 : s.zk2;
  const double ox = own.dX;
  const double oy = own.dY;
  const V top0{PlanDistance(r.ptTop[0], ox, oy), r.ptTop[0].z, 0.0};
  const V top1{PlanDistance(r.ptTop[1], ox, oy), r.ptTop[1].z, 0.0};
  const V bot0{PlanDistance(r.ptBot[0], ox, oy), r.ptBot[0].z, 0.0};
  const V bot1{PlanDistance(r.ptBot[1], ox, oy), r.ptBot[1].z, 0.0};
  const V c0{PlanDistance(m, ox, oy), m.z, 0.0};
  V c1{0.45 * s.dist, m.z, 0.0};
  double t = 0.45 * s.dist;
  V r1;
  V r2;
  if (IntersectSegment(top0, top1, c0, c1, r1, r2) == 1) {
    t = (r1.x - c0.x) * 0.6 + c0.x;
    c1.x = t;
  }
  if (IntersectSegment(bot0, bot1, c0, c1, r1, r2) == 1) {
    t = (r1.x - c0.x) * 0.6 + c0.x;
  }
  const double x1 = s.zk1.dX;
  const double y1 = s.zk1.dY;
  const double x2 = s.zk2.dX;
  const double y2 = s.zk2.dY;
  if (side) {
    return MakePoint((x2 - x1) * t / s.dist + x1, (y2 - y1) * t / s.dist + y1, m.z);
  }
  return MakePoint((x1 - x2) * t / s.dist + x2, (y1 - y2) * t / s.dist + y2, m.z);
}

// ---------------------------------------------------------------------------------------------
// Closing a named region: every enclosed stratum becomes a lens ending in a tip inside the envelope

void CloseNamedRegion(const State& s, const _sLinkRegion& r, std::vector<_sLinkRegion>& out) {
  const std::vector<Run> runs[2] = {FusedRuns(s.zk1, r, r.nBegin1, r.nEnd1),
                                    FusedRuns(s.zk2, r, r.nBegin2, r.nEnd2)};
  // All lenses of borehole 1, then all of borehole 2, each top to bottom. Both keep the corners on
  // their own borehole in element 0 and the tip in element 1.
  for (int side = 0; side < 2; ++side) {
    const _sZK& zk = side == 0 ? s.zk1 : s.zk2;
    for (const Run& run : runs[side]) {
      if (run.strName == r.strName) {
        continue;
      }
      const double zTop = BoundaryGC(zk, run.nBegin);
      const double zBot = BoundaryGC(zk, run.nEnd);
      const CXk3DPoint mid = MakePoint(zk.dX, zk.dY, (zBot + zTop) * 0.5);
      _sLinkRegion lens;
      lens.nType = 1;
      lens.bNamed = run.bMerged;
      lens.strName = run.strName;
      (side == 0 ? lens.nBegin1 : lens.nBegin2) = run.nBegin;
      (side == 0 ? lens.nEnd1 : lens.nEnd2) = run.nEnd;
      lens.ptTop[0] = MakePoint(zk.dX, zk.dY, zTop);
      lens.ptBot[0] = MakePoint(zk.dX, zk.dY, zBot);
      lens.ptTop[1] = lens.ptBot[1] = GetLensTip(s, r, mid, side == 0);
      out.push_back(lens);
    }
  }
}

void CloseRegion(const State& s, const _sLinkRegion& r, std::vector<_sLinkRegion>& out) {
  if (r.bNamed) {
    CloseNamedRegion(s, r, out);
  } else {
    CloseUnmatchedRegion(s, r, out);
  }
}

// ---------------------------------------------------------------------------------------------
// Recursion over the region tree

void SplitAndCloseRegion(const State& s, const _sLinkRegion& r, std::vector<_sLinkRegion>& children,
                         bool bSubRegion) {
  SplitAtCommonStrata(s, r, children);
  std::vector<_sLinkRegion> gaps;
  MakeGapRegions(s, r, children, gaps, bSubRegion);
  for (const _sLinkRegion& gap : gaps) {
    CloseRegion(s, gap, children);
  }
}

void LinkRegion(const State& s, _sLinkRegion& r, bool bSubRegion) {
  if (!HasMixedStrata(s.zk1, r.nBegin1, r.nEnd1) && !HasMixedStrata(s.zk2, r.nBegin2, r.nEnd2)) {
    return;
  }
  if (r.nType == 0 && !CollectPairs(s, r).empty()) {
    SplitAndCloseRegion(s, r, r.vecChild, bSubRegion);
  } else {
    CloseRegion(s, r, r.vecChild);
  }
  const std::size_t n = r.vecChild.size();
  for (std::size_t k = 0; k < n; ++k) {
    LinkRegion(s, r.vecChild[k], true);
  }
}

double LastBottomGC(const _sZK& zk) {
  return zk.vecDC.empty() ? zk.dTopGC : zk.vecDC.back().dBotGC;
}

void Correlate(State& s, const _sZK& zk1, const _sZK& zk2, _sLinkRegion& root) {
  s.zk1 = zk1;
  s.zk2 = zk2;
  const double dy = s.zk1.dY - s.zk2.dY;
  const double dx = s.zk1.dX - s.zk2.dX;
  s.dist = std::sqrt(dy * dy + dx * dx);

  root.nType = 0;
  root.bNamed = false;
  root.strName = L"";
  root.nBegin1 = 0;
  root.nEnd1 = Count(s.zk1);
  root.nBegin2 = 0;
  root.nEnd2 = Count(s.zk2);
  root.ptTop[0] = MakePoint(s.zk1.dX, s.zk1.dY, s.zk1.dTopGC);
  root.ptTop[1] = MakePoint(s.zk2.dX, s.zk2.dY, s.zk2.dTopGC);
  root.ptBot[0] = MakePoint(s.zk1.dX, s.zk1.dY, LastBottomGC(s.zk1));
  root.ptBot[1] = MakePoint(s.zk2.dX, s.zk2.dY, LastBottomGC(s.zk2));

  LinkRegion(s, root, false);
}

// ---------------------------------------------------------------------------------------------
// Section lines

// A leaf is named, or holds nothing but lenses and wedges (or nothing at all).
bool IsLeafRegion(const _sLinkRegion& r) {
  return r.strName != L"" || std::none_of(r.vecChild.begin(), r.vecChild.end(),
                                          [](const _sLinkRegion& c) { return c.nType == 0; });
}

void CollectLeafRegions(const _sLinkRegion& r, std::vector<const _sLinkRegion*>& leaves) {
  if (IsLeafRegion(r)) {
    leaves.push_back(&r);
  }
  for (const _sLinkRegion& child : r.vecChild) {
    CollectLeafRegions(child, leaves);
  }
}

// Geometric equality of two lines within tolerance, end by end.
bool IsSameLine(const _sLinkLine& a, const _sLinkLine& b) {
  return CompareDouble(a.pt1.x, b.pt1.x) == 0 && CompareDouble(a.pt1.y, b.pt1.y) == 0 &&
         CompareDouble(a.pt1.z, b.pt1.z) == 0 && CompareDouble(a.pt2.x, b.pt2.x) == 0 &&
         CompareDouble(a.pt2.y, b.pt2.y) == 0 && CompareDouble(a.pt2.z, b.pt2.z) == 0;
}

} // namespace

void ReferenceLinkDc(const _sZK& zk1, const _sZK& zk2, _sLinkRegion& root) {
  State s;
  Correlate(s, zk1, zk2, root);
}

void ReferenceAppendLeafLines(const _sLinkRegion& root, std::vector<_sLinkLine>& lines) {
  std::vector<const _sLinkRegion*> leaves;
  CollectLeafRegions(root, leaves);
  _sLinkLine line; // working line, reused
  for (const _sLinkRegion* leaf : leaves) {
    line.strUpName = leaf->strName;
    line.nType = leaf->nType;
    line.bBottom = false;
    line.pt1 = leaf->ptTop[0];
    line.pt2 = leaf->ptTop[1];
    lines.push_back(line);
    line.pt1 = leaf->ptBot[0];
    line.pt2 = leaf->ptBot[1];
    line.bBottom = true;
    lines.push_back(line);
  }
}

void ReferenceMergeSameLines(std::vector<_sLinkLine>& lines) {
  for (std::ptrdiff_t i = static_cast<std::ptrdiff_t>(lines.size()) - 1; i >= 0; --i) {
    const auto ui = static_cast<std::size_t>(i);
    std::ptrdiff_t found = -1;
    for (std::ptrdiff_t j = i - 1; j >= 0; --j) {
      if (IsSameLine(lines[ui], lines[static_cast<std::size_t>(j)])) {
        found = j;
        break;
      }
    }
    if (found < 0) {
      continue;
    }
    const auto uj = static_cast<std::size_t>(found);
    if (lines[ui].bBottom) {
      // The bottom boundary survives and takes the upper name of the line it absorbs; it moves
      // down to i - 1 and is examined once more there.
      lines[ui].strDownName = lines[uj].strUpName;
      lines.erase(lines.begin() + found);
    } else {
      lines[uj].strDownName = lines[ui].strUpName;
      lines.erase(lines.begin() + i);
    }
  }
  for (_sLinkLine& line : lines) {
    line.bBottom = false;
  }
}

bool ReferenceIsLineAbove(const _sLinkLine& a, const _sLinkLine& b) {
  // Step 1: the first ends on one plan position decide alone, by a plain comparison.
  const bool firstEndsTogether =
      CompareDouble(a.pt1.x, b.pt1.x) == 0 && CompareDouble(a.pt1.y, b.pt1.y) == 0;
  if (firstEndsTogether) {
    return a.pt1.z > b.pt1.z;
  }
  // Step 2: else the second ends, likewise.
  const bool secondEndsTogether =
      CompareDouble(a.pt2.x, b.pt2.x) == 0 && CompareDouble(a.pt2.y, b.pt2.y) == 0;
  if (secondEndsTogether) {
    return a.pt2.z > b.pt2.z;
  }
  // Step 3: else the sums of the end elevations.
  const double sumA = a.pt2.z + a.pt1.z;
  const double sumB = b.pt2.z + b.pt1.z;
  return sumA > sumB;
}

void ReferenceSortLines(std::vector<_sLinkLine>& lines) {
  // The standard library's sort, on the positions of the lines. A position of -1 stands on either
  // side and compares false with everything: libstdc++'s unguarded scans, which an inconsistent
  // predicate could lead out of the range, stop there.
  std::vector<long> order(lines.size() + 2, -1);
  for (std::size_t k = 0; k < lines.size(); ++k) {
    order[k + 1] = static_cast<long>(k);
  }
  std::sort(order.begin() + 1, order.end() - 1, [&lines](long a, long b) {
    return a >= 0 && b >= 0 &&
           ReferenceIsLineAbove(lines[static_cast<std::size_t>(a)],
                                lines[static_cast<std::size_t>(b)]);
  });
  std::vector<_sLinkLine> sorted;
  sorted.reserve(lines.size());
  for (std::size_t k = 0; k < lines.size(); ++k) {
    sorted.push_back(std::move(lines[static_cast<std::size_t>(order[k + 1])]));
  }
  lines.swap(sorted);
}

void ReferenceLinkDcLine(const _sZK& zk1, const _sZK& zk2, std::vector<_sLinkLine>& lines) {
  _sLinkRegion root;
  ReferenceLinkDc(zk1, zk2, root);
  ReferenceAppendLeafLines(root, lines);
  ReferenceMergeSameLines(lines);
  ReferenceSortLines(lines);
  if (!lines.empty()) {
    lines.erase(lines.begin());
  }
}

} // namespace reference
