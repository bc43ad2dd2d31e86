// Differential tests: the library's LinkDc and LinkDcLine (and the re-entrant context) against the
// plain reference implementation, on many seeded random borehole pairs.
//
// Region trees must agree field by field, doubles bit for bit. Section lines must agree field by
// field too, with allowances that come from the ordering predicate: lines that are mutually
// unordered may come out of an unstable sort in either order, and the predicate is not even a
// strict weak ordering (its equality has a tolerance and its criterion changes from pair to pair:
// first ends, second ends or sums), so it can cycle. Accepted besides identical output:
//   1. the same lines in another order, provided that the library's order is consistent with the
//      predicate wherever the predicate itself is consistent (see PrecedenceRanks);
//   2. another highest line removed: the library's output equals the reference's merged and sorted
//      list (before the highest line goes) less exactly one line x that is, like the line r0 that
//      the reference removed, of the highest rank: for a strict weak ordering, x and r0 are
//      mutually unordered and no line is above either; otherwise x and r0 also may be two lines
//      of one cycle of the predicate at the top of the list.
// Anything else is a failure, reported with the seed, the first differing field and the boreholes.
#include "reference/ReferenceCorrelation.h"
#include "support/RandomBoreholes.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <limits>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace {

using DataType::_sLinkLine;
using DataType::_sLinkRegion;
using DataType::_sZK;

uint64_t Bits(double v) {
  return std::bit_cast<uint64_t>(v);
}

std::string Num(double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.17g [%016llx]", v, static_cast<unsigned long long>(Bits(v)));
  return buf;
}

std::string Narrow(const std::wstring& w) {
  std::string s;
  for (const wchar_t c : w) {
    s += (c >= 32 && c < 127) ? static_cast<char>(c) : '?';
  }
  return s;
}

// ---------------------------------------------------------------------------------------------
// Field-by-field comparison with a readable description of the first difference

std::string DiffPoint(const CXk3DPoint& lib, const CXk3DPoint& ref, const std::string& path) {
  const double l[3] = {lib.x, lib.y, lib.z};
  const double r[3] = {ref.x, ref.y, ref.z};
  const char* axis[3] = {".x", ".y", ".z"};
  for (int k = 0; k < 3; ++k) {
    if (Bits(l[k]) != Bits(r[k])) {
      return path + axis[k] + ": library " + Num(l[k]) + ", reference " + Num(r[k]);
    }
  }
  return {};
}

template <typename T> std::string DiffValue(const T& lib, const T& ref, const std::string& path) {
  if (lib == ref) {
    return {};
  }
  std::ostringstream os;
  os << path << ": library " << lib << ", reference " << ref;
  return os.str();
}

std::string DiffName(const std::wstring& lib, const std::wstring& ref, const std::string& path) {
  if (lib == ref) {
    return {};
  }
  return path + ": library \"" + Narrow(lib) + "\", reference \"" + Narrow(ref) + "\"";
}

std::string DiffRegion(const _sLinkRegion& lib, const _sLinkRegion& ref, const std::string& path) {
  std::string d;
  auto first = [&d](std::string s) {
    if (d.empty()) {
      d = std::move(s);
    }
  };
  first(DiffValue(lib.nType, ref.nType, path + ".nType"));
  first(DiffValue(lib.bNamed, ref.bNamed, path + ".bNamed"));
  first(DiffName(lib.strName, ref.strName, path + ".strName"));
  first(DiffValue(lib.nBegin1, ref.nBegin1, path + ".nBegin1"));
  first(DiffValue(lib.nEnd1, ref.nEnd1, path + ".nEnd1"));
  first(DiffValue(lib.nBegin2, ref.nBegin2, path + ".nBegin2"));
  first(DiffValue(lib.nEnd2, ref.nEnd2, path + ".nEnd2"));
  first(DiffPoint(lib.ptTop[0], ref.ptTop[0], path + ".ptTop[0]"));
  first(DiffPoint(lib.ptTop[1], ref.ptTop[1], path + ".ptTop[1]"));
  first(DiffPoint(lib.ptBot[0], ref.ptBot[0], path + ".ptBot[0]"));
  first(DiffPoint(lib.ptBot[1], ref.ptBot[1], path + ".ptBot[1]"));
  first(DiffValue(lib.vecChild.size(), ref.vecChild.size(), path + ".vecChild.size()"));
  if (!d.empty()) {
    return d;
  }
  for (std::size_t k = 0; k < lib.vecChild.size(); ++k) {
    d = DiffRegion(lib.vecChild[k], ref.vecChild[k], path + ".vecChild[" + std::to_string(k) + "]");
    if (!d.empty()) {
      return d;
    }
  }
  return {};
}

std::string DiffLine(const _sLinkLine& lib, const _sLinkLine& ref, const std::string& path) {
  std::string d = DiffPoint(lib.pt1, ref.pt1, path + ".pt1");
  if (d.empty()) {
    d = DiffPoint(lib.pt2, ref.pt2, path + ".pt2");
  }
  if (d.empty()) {
    d = DiffValue(lib.nType, ref.nType, path + ".nType");
  }
  if (d.empty()) {
    d = DiffValue(lib.bBottom, ref.bBottom, path + ".bBottom");
  }
  if (d.empty()) {
    d = DiffName(lib.strUpName, ref.strUpName, path + ".strUpName");
  }
  if (d.empty()) {
    d = DiffName(lib.strDownName, ref.strDownName, path + ".strDownName");
  }
  return d;
}

std::string DiffLines(const std::vector<_sLinkLine>& lib, const std::vector<_sLinkLine>& ref) {
  if (lib.size() != ref.size()) {
    return "lines.size(): library " + std::to_string(lib.size()) + ", reference " +
           std::to_string(ref.size());
  }
  for (std::size_t k = 0; k < lib.size(); ++k) {
    std::string d = DiffLine(lib[k], ref[k], "lines[" + std::to_string(k) + "]");
    if (!d.empty()) {
      return d;
    }
  }
  return {};
}

// A total order over every field of a line (doubles by their bits).
auto LineKey(const _sLinkLine& l) {
  return std::make_tuple(Bits(l.pt1.x), Bits(l.pt1.y), Bits(l.pt1.z), Bits(l.pt2.x), Bits(l.pt2.y),
                         Bits(l.pt2.z), l.nType, l.bBottom, l.strUpName, l.strDownName);
}

bool KeyLess(const _sLinkLine& a, const _sLinkLine& b) {
  return LineKey(a) < LineKey(b);
}

std::vector<_sLinkLine> Canonical(std::vector<_sLinkLine> v) {
  std::sort(v.begin(), v.end(), KeyLess);
  return v;
}

// Ranks of the lines of a list under the ordering predicate. The relation "a may precede b" (b is
// not above a) holds at least one way round for every two lines, so its strongly connected
// components are totally ordered; rank 0 is the lowest component. Where the predicate is a strict
// weak ordering the components are its classes of mutually unordered lines; where it is not, a
// component also holds the lines of every cycle of the predicate (a above b above c above a, or a
// above b while both are unordered with c), for which no order is the right one. Any comparison
// sort puts a line of a higher component before every line of a lower one. Tarjan's algorithm,
// iterative, quadratic in predicate calls.
std::vector<int> PrecedenceRanks(const std::vector<_sLinkLine>& s) {
  const int n = static_cast<int>(s.size());
  auto at = [](auto& v, int k) -> auto& {
    return v[static_cast<std::size_t>(k)];
  };
  auto edge = [&](int u, int v) {
    return u != v && !reference::ReferenceIsLineAbove(at(s, v), at(s, u));
  };
  std::vector<int> index(s.size(), -1);
  std::vector<int> low(s.size(), 0);
  std::vector<int> rank(s.size(), -1);
  std::vector<char> onStack(s.size(), 0);
  std::vector<int> stack;
  struct Frame {
    int v;
    int next;
  };
  std::vector<Frame> frames;
  int counter = 0;
  int components = 0;
  for (int root = 0; root < n; ++root) {
    if (at(index, root) >= 0) {
      continue;
    }
    auto enter = [&](int v) {
      at(index, v) = at(low, v) = counter++;
      stack.push_back(v);
      at(onStack, v) = 1;
      frames.push_back({v, 0});
    };
    enter(root);
    while (!frames.empty()) {
      const int v = frames.back().v;
      if (frames.back().next < n) {
        const int w = frames.back().next++;
        if (!edge(v, w)) {
          continue;
        }
        if (at(index, w) < 0) {
          enter(w);
        } else if (at(onStack, w) != 0) {
          at(low, v) = std::min(at(low, v), at(index, w));
        }
        continue;
      }
      if (at(low, v) == at(index, v)) {
        int w = -1;
        do {
          w = stack.back();
          stack.pop_back();
          at(onStack, w) = 0;
          at(rank, w) = components;
        } while (w != v);
        ++components;
      }
      frames.pop_back();
      if (!frames.empty()) {
        const int parent = frames.back().v;
        at(low, parent) = std::min(at(low, parent), at(low, v));
      }
    }
  }
  return rank;
}

enum class LineMatch { Identical, Reordered, OtherTopRemoved, Different };

// Compares the library's lines with the reference's; refMerged is the reference's merged and
// sorted list before the highest line was removed; ranks caches PrecedenceRanks(refMerged) (pass
// an empty vector first). On Different, why says what differs.
//
// Identical: equal field by field, in order. Otherwise the library's lines must be the merged lines
// less exactly one line x (compared by value: all fields, doubles by bits), x must belong to the
// highest rank of PrecedenceRanks, and the library's order must never put a line of a lower rank
// before one of a higher rank. Reordered: x equals the reference's removed line r0. Where the
// predicate is a strict weak ordering on the merged lines, the highest rank is the set of lines
// that no line is above, all mutually unordered, so OtherTopRemoved then means exactly: x and r0
// are two mutually unordered top lines. Where the predicate cycles among the highest lines, every
// line of the cycle may come first.
LineMatch MatchLines(const std::vector<_sLinkLine>& lib, const std::vector<_sLinkLine>& refMerged,
                     std::vector<int>& ranks, std::string& why) {
  std::vector<_sLinkLine> ref(refMerged.begin() + (refMerged.empty() ? 0 : 1), refMerged.end());
  why = DiffLines(lib, ref);
  if (why.empty()) {
    return LineMatch::Identical;
  }
  if (refMerged.empty() || lib.size() + 1 != refMerged.size()) {
    return LineMatch::Different;
  }
  // Ranks of the merged lines (computed once per pair of boreholes), looked up by value.
  if (ranks.empty()) {
    ranks = PrecedenceRanks(refMerged);
  }
  std::vector<std::pair<_sLinkLine, int>> byKey;
  for (std::size_t k = 0; k < refMerged.size(); ++k) {
    byKey.emplace_back(refMerged[k], ranks[k]);
  }
  std::sort(byKey.begin(), byKey.end(),
            [](const auto& a, const auto& b) { return KeyLess(a.first, b.first); });
  const int top = *std::max_element(ranks.begin(), ranks.end());
  if (ranks[0] != top) {
    why = "reference: its highest line is not of the highest rank";
    return LineMatch::Different;
  }
  // The library's lines must be the merged ones less one, x.
  const std::vector<_sLinkLine> libSorted = Canonical(lib);
  std::vector<std::size_t> missing;
  std::size_t i = 0;
  for (std::size_t k = 0; k < byKey.size(); ++k) {
    if (i < libSorted.size() && DiffLine(libSorted[i], byKey[k].first, "").empty()) {
      ++i;
    } else {
      missing.push_back(k);
    }
  }
  if (i != libSorted.size() || missing.size() != 1) {
    why += " (the library's lines are not the merged lines less one)";
    return LineMatch::Different;
  }
  const _sLinkLine& x = byKey[missing[0]].first;
  if (byKey[missing[0]].second != top) {
    why += " (the library removed a line that is not a highest line)";
    return LineMatch::Different;
  }
  // The library's order: never a lower rank before a higher one.
  auto rankOf = [&](const _sLinkLine& l) {
    const auto it = std::lower_bound(byKey.begin(), byKey.end(), l,
                                     [](const std::pair<_sLinkLine, int>& a, const _sLinkLine& b) {
                                       return KeyLess(a.first, b);
                                     });
    return it->second;
  };
  for (std::size_t k = 0; k + 1 < lib.size(); ++k) {
    if (rankOf(lib[k]) < rankOf(lib[k + 1])) {
      why = "LinkDcLine order: lines[" + std::to_string(k + 1) + "] is above lines[" +
            std::to_string(k) + "] and not part of a cycle of the ordering with it";
      return LineMatch::Different;
    }
  }
  return DiffLine(x, refMerged[0], "").empty() ? LineMatch::Reordered : LineMatch::OtherTopRemoved;
}

// ---------------------------------------------------------------------------------------------
// Running both sides

std::string Describe(const _sZK& zk) {
  std::ostringstream os;
  os << "  collar " << Num(zk.dTopGC) << " at (" << Num(zk.dX) << ", " << Num(zk.dY) << "), "
     << zk.vecDC.size() << " strata\n";
  if (zk.vecDC.size() <= 60) {
    for (const auto& dc : zk.vecDC) {
      os << "    \"" << Narrow(dc.strName) << "\" " << Num(dc.dTopGC) << " .. " << Num(dc.dBotGC)
         << "\n";
    }
  }
  return os.str();
}

struct Tally {
  int pairs = 0;
  int identicalLines = 0;
  int reorderedLines = 0;
  int otherTopRemoved = 0;
  int failures = 0;
};

// Some caller lines already in the vector; they take part in merging, sorting and removal.
std::vector<_sLinkLine> CallerLines(std::mt19937_64& rng, const _sZK& a, const _sZK& b) {
  std::vector<_sLinkLine> lines;
  const int n = xktest::UniformInt(rng, 1, 3);
  for (int k = 0; k < n; ++k) {
    _sLinkLine l;
    l.pt1.x = a.dX;
    l.pt1.y = a.dY;
    l.pt2.x = b.dX;
    l.pt2.y = b.dY;
    // Either at a boundary of the holes (so that it merges) or anywhere.
    if (!a.vecDC.empty() && !b.vecDC.empty() && xktest::Chance(rng, 0.5)) {
      l.pt1.z = a.vecDC[0].dTopGC;
      l.pt2.z = b.vecDC[0].dTopGC;
    } else {
      l.pt1.z = xktest::UniformReal(rng, 50, 150);
      l.pt2.z = xktest::UniformReal(rng, 50, 150);
    }
    l.bBottom = xktest::Chance(rng, 0.5);
    l.nType = 7;
    l.strUpName = L"caller";
    l.strDownName = xktest::Chance(rng, 0.5) ? L"" : L"old";
    lines.push_back(l);
  }
  return lines;
}

// A root region left over from earlier use (but without children): the correlation must set every
// member that it reads.
_sLinkRegion StaleRoot() {
  _sLinkRegion r;
  r.nType = 2;
  r.bNamed = true;
  r.strName = L"stale";
  r.nBegin1 = 7;
  r.nEnd1 = 3;
  r.nBegin2 = -5;
  r.nEnd2 = 9;
  r.ptTop[0].z = 1e9;
  r.ptTop[1].x = -3;
  r.ptBot[0].y = 42;
  r.ptBot[1].z = -1e9;
  return r;
}

// The reference's lines of the tree ref appended to the caller's lines, merged and sorted (the
// highest not yet removed).
std::vector<_sLinkLine> ReferenceLines(const _sLinkRegion& ref, std::vector<_sLinkLine> lines) {
  reference::ReferenceAppendLeafLines(ref, lines);
  reference::ReferenceMergeSameLines(lines);
  reference::ReferenceSortLines(lines);
  return lines;
}

// LinkDcLine on the caller's lines against the reference's merged lines; counts the outcome.
LineMatch CheckLinkDcLine(const _sZK& a, const _sZK& b, const std::vector<_sLinkLine>& start,
                          const std::vector<_sLinkLine>& refMerged, Tally& tally,
                          std::string& why) {
  std::vector<_sLinkLine> lines = start;
  LinkDcLine(a, b, lines);
  std::vector<int> ranks;
  const LineMatch match = MatchLines(lines, refMerged, ranks, why);
  tally.identicalLines += match == LineMatch::Identical ? 1 : 0;
  tally.reorderedLines += match == LineMatch::Reordered ? 1 : 0;
  tally.otherTopRemoved += match == LineMatch::OtherTopRemoved ? 1 : 0;
  return match;
}

// Runs one pair through the library, the context and the reference; false on a mismatch, which is
// reported with the group and seed that reproduce it.
bool CheckPair(const char* group, uint64_t seed, const _sZK& a, const _sZK& b, std::mt19937_64& rng,
               Tally& tally) {
  ++tally.pairs;
  std::string failure;

  _sLinkRegion ref;
  reference::ReferenceLinkDc(a, b, ref);
  _sLinkRegion lib = xktest::Chance(rng, 0.2) ? StaleRoot() : _sLinkRegion();
  LinkDc(a, b, lib);
  failure = DiffRegion(lib, ref, "LinkDc: root");
  if (failure.empty()) {
    XKLinkDc::CorrelationContext context;
    _sLinkRegion viaContext;
    context.LinkDc(a, b, viaContext);
    failure = DiffRegion(viaContext, ref, "CorrelationContext::LinkDc: root");
  }

  if (failure.empty()) {
    std::vector<_sLinkLine> start;
    if (xktest::Chance(rng, 0.1)) {
      start = CallerLines(rng, a, b);
    }
    const std::vector<_sLinkLine> refMerged = ReferenceLines(ref, start);
    std::string why;
    if (CheckLinkDcLine(a, b, start, refMerged, tally, why) == LineMatch::Different) {
      failure = "LinkDcLine: " + why;
    }
    if (failure.empty()) {
      XKLinkDc::CorrelationContext context;
      std::vector<_sLinkLine> ctxLines = start;
      context.LinkDcLine(a, b, ctxLines);
      std::vector<int> ranks;
      if (MatchLines(ctxLines, refMerged, ranks, why) == LineMatch::Different) {
        failure = "CorrelationContext::LinkDcLine: " + why;
      }
    }
  }

  if (failure.empty()) {
    return true;
  }
  ++tally.failures;
  ADD_FAILURE() << group << ", seed " << seed << ": " << failure << "\nborehole 1:\n"
                << Describe(a) << "borehole 2:\n"
                << Describe(b);
  return false;
}

void Report(const char* what, const Tally& t) {
  std::printf("[ %s ] %d pairs: lines identical %d, reordered %d, other top line removed %d, "
              "failures %d\n",
              what, t.pairs, t.identicalLines, t.reorderedLines, t.otherTopRemoved, t.failures);
}

// Runs count seeded pairs drawn with options from makeOptions; stops at the first failure.
void RunSeeds(const char* what, uint64_t firstSeed, int count,
              const std::function<xktest::RandomBoreholeOptions(std::mt19937_64&)>& makeOptions,
              double samePlaceChance = 0.03) {
  Tally tally;
  for (int k = 0; k < count; ++k) {
    const uint64_t seed = firstSeed + static_cast<uint64_t>(k);
    std::mt19937_64 rng(seed);
    const xktest::RandomBoreholeOptions opt = makeOptions(rng);
    auto [a, b] = xktest::RandomBoreholePair(rng, opt, samePlaceChance);
    if (!CheckPair(what, seed, a, b, rng, tally)) {
      break;
    }
  }
  Report(what, tally);
}

// ---------------------------------------------------------------------------------------------

TEST(Differential, TypicalBoreholes) {
  RunSeeds("typical", 1000000, 2000, [](std::mt19937_64& rng) {
    xktest::RandomBoreholeOptions opt;
    opt.minStrata = 1;
    opt.maxStrata = 30;
    opt.codeCount = xktest::UniformInt(rng, 2, 8);
    opt.numericCodes = xktest::Chance(rng, 0.3);
    return opt;
  });
}

TEST(Differential, FewCodesManyRepeats) {
  // Envelopes, lenses inside lenses, fused runs and crossing pairs.
  RunSeeds("few codes", 2000000, 1200, [](std::mt19937_64& rng) {
    xktest::RandomBoreholeOptions opt;
    opt.minStrata = 3;
    opt.maxStrata = 40;
    opt.codeCount = xktest::UniformInt(rng, 2, 4);
    opt.repeatPreviousChance = 0.35;
    opt.numericCodes = xktest::Chance(rng, 0.5);
    return opt;
  });
}

TEST(Differential, ManyCodes) {
  // Detailed logging schemes with dozens of codes, few of them shared by the two holes.
  RunSeeds("many codes", 7000000, 400, [](std::mt19937_64& rng) {
    xktest::RandomBoreholeOptions opt;
    opt.minStrata = 10;
    opt.maxStrata = 60;
    opt.codeCount = xktest::UniformInt(rng, 12, 40);
    opt.numericCodes = xktest::Chance(rng, 0.5);
    return opt;
  });
}

TEST(Differential, DegenerateGeometry) {
  // Holes without strata, zero thicknesses, gaps, sub-tolerance offsets, equal elevations on a
  // coarse grid, empty codes, holes at one plan position.
  RunSeeds(
      "degenerate", 3000000, 1500,
      [](std::mt19937_64& rng) {
        xktest::RandomBoreholeOptions opt;
        opt.minStrata = 0;
        opt.maxStrata = 12;
        opt.codeCount = xktest::UniformInt(rng, 1, 5);
        opt.repeatPreviousChance = 0.25;
        opt.emptyCodeChance = 0.05;
        opt.zeroThicknessChance = 0.2;
        opt.gapChance = 0.15;
        opt.jitterChance = 0.15;
        opt.gridChance = 0.9;
        opt.gridStep = 2.0;
        opt.minThickness = 0.0;
        opt.maxThickness = 6.0;
        opt.collarMin = 99.0;
        opt.collarMax = 101.0;
        opt.planMin = 0.0;
        opt.planMax = 2.0; // plan distances near 0 and below 1
        opt.planGridChance = 0.5;
        return opt;
      },
      0.15);
}

TEST(Differential, SmallMagnitudes) {
  // Elevations and plan coordinates below 1 in magnitude and around 0, where the tolerance is also
  // relative, with offsets just below the absolute tolerance.
  RunSeeds(
      "small magnitudes", 5000000, 1000,
      [](std::mt19937_64& rng) {
        xktest::RandomBoreholeOptions opt;
        opt.minStrata = 1;
        opt.maxStrata = 10;
        opt.codeCount = xktest::UniformInt(rng, 2, 5);
        opt.repeatPreviousChance = 0.25;
        opt.minThickness = 0.0;
        opt.maxThickness = 0.3;
        opt.gridChance = 0.5;
        opt.gridStep = 0.0625;
        opt.zeroThicknessChance = 0.1;
        opt.jitterChance = 0.3;
        opt.collarMin = -0.25;
        opt.collarMax = 0.5;
        opt.planMin = -1.0;
        opt.planMax = 1.0;
        opt.planGridChance = 0.2;
        return opt;
      },
      0.1);
}

TEST(Differential, SameBoreholeTwice) {
  // One object passed as both boreholes: plan distance 0, and every stratum has its twin, so the
  // root splits down to single codes and every line is merged. (Non-finite lens tips at plan
  // distance 0 come from the other groups, which put both holes at one plan position at times.)
  Tally tally;
  for (uint64_t seed = 6000000; seed < 6000300; ++seed) {
    std::mt19937_64 rng(seed);
    xktest::RandomBoreholeOptions opt;
    opt.maxStrata = 20;
    opt.codeCount = xktest::UniformInt(rng, 1, 5);
    opt.repeatPreviousChance = 0.2;
    const _sZK a = xktest::RandomBorehole(rng, opt);
    if (!CheckPair("same borehole", seed, a, a, rng, tally)) {
      break;
    }
  }
  Report("same borehole", tally);
}

// Many lines handed in by the caller, merged with the section's own: elevations on either side of
// the 1e-4 cells by which long lists of lines are searched, within and just beyond the tolerance,
// below magnitude 1 (where it is relative) and off the cells (beyond a million, infinite), with
// ends at one plan position or just apart. Short lists are scanned and long ones searched by
// cell; both must merge exactly as the plain implementation does.
TEST(Differential, MergeOfManyLinesNearTheTolerance) {
  const double offsets[] = {0.0, 3e-6, -3e-6, 6e-6, -6e-6, 9.5e-6, -9.5e-6, 1.1e-5, -1.1e-5};
  const double bases[] = {100.0, 100.0001, 100.0002, 57.123, 0.5, 2e-6, 0.0, -3.0};
  const double offCells[] = {2e6, -5e7, std::numeric_limits<double>::infinity()};
  Tally tally;
  for (uint64_t seed = 7000000; seed < 7000060; ++seed) {
    std::mt19937_64 rng(seed);
    const auto elevation = [&] {
      if (xktest::Chance(rng, 0.05)) {
        return offCells[xktest::UniformInt(rng, 0, 2)];
      }
      return bases[xktest::UniformInt(rng, 0, 7)] + offsets[xktest::UniformInt(rng, 0, 8)];
    };
    // Holes without strata: the section adds only its root's two lines.
    _sZK a;
    a.dTopGC = 101.0;
    _sZK b;
    b.dX = 60.0;
    b.dTopGC = 99.0;
    std::vector<_sLinkLine> start(static_cast<std::size_t>(xktest::UniformInt(rng, 20, 300)));
    for (std::size_t k = 0; k < start.size(); ++k) {
      _sLinkLine& l = start[k];
      l.pt1 = CXk3DPoint(xktest::Chance(rng, 0.1) ? 4e-6 : 0.0, 0.0, elevation());
      l.pt2 = CXk3DPoint(xktest::Chance(rng, 0.1) ? 60.5 : 60.0, 0.0, elevation());
      l.nType = 2;
      l.bBottom = xktest::Chance(rng, 0.5);
      l.strUpName = L"l" + std::to_wstring(k);
    }
    ++tally.pairs;
    _sLinkRegion ref;
    reference::ReferenceLinkDc(a, b, ref);
    std::string why;
    if (CheckLinkDcLine(a, b, start, ReferenceLines(ref, start), tally, why) ==
        LineMatch::Different) {
      ++tally.failures;
      ADD_FAILURE() << "seed " << seed << ", " << start.size() << " lines: " << why;
      break;
    }
  }
  Report("many lines", tally);
}

// Two logs of a few hundred thin beds in two to five codes: thousands of equal-code pairs at the
// root and hundreds in the envelopes below it, where the envelope's own code pairs with nothing.
// Beds on a quarter-metre grid give tied keys; some beds are missing from one log, so ranges start
// and end off the top and bottom.
TEST(Differential, ThinBedsOnBothSides) {
  Tally tally;
  for (uint64_t seed = 8000000; seed < 8000024; ++seed) {
    std::mt19937_64 rng(seed);
    const int codes = xktest::UniformInt(rng, 2, 5);
    _sZK a = xktest::LongLog(rng, xktest::UniformInt(rng, 60, 220), codes, L"WEST");
    _sZK b = xktest::LongLog(rng, xktest::UniformInt(rng, 60, 220), codes, L"EAST");
    b.dX = a.dX + xktest::UniformReal(rng, 5.0, 80.0);
    if (xktest::Chance(rng, 0.5)) {
      b.vecDC.erase(b.vecDC.begin(), b.vecDC.begin() + xktest::UniformInt(rng, 1, 10));
    }
    if (!CheckPair("thin beds", seed, a, b, rng, tally)) {
      break;
    }
  }
  Report("thin beds", tally);
}

TEST(Differential, LongLogs) {
  Tally tally;
  for (uint64_t seed = 4000000; seed < 4000004; ++seed) {
    std::mt19937_64 rng(seed);
    xktest::RandomBoreholeOptions shortOpt;
    shortOpt.codeCount = 6;
    _sZK a;
    _sZK b;
    switch (seed % 4) {
    case 0: // a thick sequence against an ordinary hole
      a = xktest::LongLog(rng, 2000, 6, L"LONG");
      b = xktest::RandomBorehole(rng, shortOpt, L"SHORT");
      break;
    case 1: // the same, the other way round
      a = xktest::RandomBorehole(rng, shortOpt, L"SHORT");
      b = xktest::LongLog(rng, 2000, 6, L"LONG");
      break;
    case 2: // a shorter sequence with fewer codes
      a = xktest::LongLog(rng, 600, 4, L"LONG");
      b = xktest::RandomBorehole(rng, shortOpt, L"SHORT");
      break;
    default: // two long sequences
      a = xktest::LongLog(rng, 300, 6, L"LONG1");
      b = xktest::LongLog(rng, 300, 6, L"LONG2");
      break;
    }
    if (!CheckPair("long logs", seed, a, b, rng, tally)) {
      break;
    }
  }
  Report("long logs", tally);
}

} // namespace
