// Differential tests: the library's LinkDc and LinkDcLine, and a CorrelationContext reused across a
// whole group, against the plain reference implementation on many seeded random borehole pairs.
//
// Region trees must agree field by field, doubles bit for bit, and so must section lines, in
// order: both sides sort them with the standard library's introsort (the reference with std::sort
// itself), whose order is defined even where the ordering predicate is not a strict weak ordering.
// Anything else is a failure, reported with the group, the seed, the first differing field and the
// boreholes.
#include "reference/ReferenceCorrelation.h"
#include "support/RandomBoreholes.h"
#include "support/ResultText.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace {

using DataType::_sLinkLine;
using DataType::_sLinkRegion;
using DataType::_sZK;
using xktest::Chance;
using xktest::Describe;
using xktest::FirstDifference;
using xktest::UniformInt;
using xktest::UniformReal;

// One case: two holes and the lines the caller already holds, which take part in merging, sorting
// and removal.
struct Case {
  _sZK a;
  _sZK b;
  std::vector<_sLinkLine> start;
};

_sLinkLine CallerLine(const _sZK& a, const _sZK& b, double z1, double z2) {
  _sLinkLine l;
  l.pt1 = CXk3DPoint(a.dX, a.dY, z1);
  l.pt2 = CXk3DPoint(b.dX, b.dY, z2);
  l.nType = 7;
  l.strUpName = L"caller";
  return l;
}

// A few caller lines, at the top boundary of the holes (so that they merge) or anywhere.
void AddCallerLines(std::mt19937_64& rng, Case& c) {
  for (int k = UniformInt(rng, 1, 3); k > 0; --k) {
    const bool atTop = !c.a.vecDC.empty() && !c.b.vecDC.empty() && Chance(rng, 0.5);
    const double z1 = atTop ? c.a.vecDC[0].dTopGC : UniformReal(rng, 50, 150);
    const double z2 = atTop ? c.b.vecDC[0].dTopGC : UniformReal(rng, 50, 150);
    c.start.push_back(CallerLine(c.a, c.b, z1, z2));
    c.start.back().bBottom = Chance(rng, 0.5);
    c.start.back().strDownName = Chance(rng, 0.5) ? L"" : L"old";
  }
}

// A root left over from earlier use (without children): the correlation must set every member
// that it reads.
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
  r.ptBot[1].x = -3;
  return r;
}

// The first difference from the reference of the module's entries and of the context's (the
// tree and lines at once, or one after the other).
std::string Check(const Case& c, bool staleRoot, bool bothAtOnce,
                  XKLinkDc::CorrelationContext& context) {
  _sLinkRegion ref;
  reference::ReferenceLinkDc(c.a, c.b, ref);
  std::vector<_sLinkLine> expected = c.start;
  reference::ReferenceAppendLeafLines(ref, expected);
  reference::ReferenceMergeSameLines(expected);
  reference::ReferenceSortLines(expected);
  if (!expected.empty()) {
    expected.erase(expected.begin());
  }

  _sLinkRegion lib = staleRoot ? StaleRoot() : _sLinkRegion();
  LinkDc(c.a, c.b, lib);
  std::string why = FirstDifference(lib, ref, "LinkDc root");
  std::vector<_sLinkLine> lines = c.start;
  if (why.empty()) {
    LinkDcLine(c.a, c.b, lines);
    why = FirstDifference(lines, expected, "LinkDcLine lines");
  }
  if (why.empty()) {
    _sLinkRegion viaContext;
    lines = c.start;
    if (bothAtOnce) {
      context.LinkDcTreeAndLines(c.a, c.b, viaContext, lines);
    } else {
      context.LinkDc(c.a, c.b, viaContext);
      context.LinkDcLine(c.a, c.b, lines);
    }
    why = FirstDifference(viaContext, ref, "context root");
    if (why.empty()) {
      why = FirstDifference(lines, expected, "context lines");
    }
  }
  return why;
}

xktest::RandomBoreholeOptions Options(int minStrata, int maxStrata, int minCodes, int maxCodes,
                                      double repeat, std::mt19937_64& rng) {
  xktest::RandomBoreholeOptions opt;
  opt.minStrata = minStrata;
  opt.maxStrata = maxStrata;
  opt.codeCount = UniformInt(rng, minCodes, maxCodes);
  opt.repeatPreviousChance = repeat;
  return opt;
}

Case Pair(std::mt19937_64& rng, const xktest::RandomBoreholeOptions& opt, double samePlace) {
  auto [a, b] = xktest::RandomBoreholePair(rng, opt, samePlace);
  return {std::move(a), std::move(b), {}};
}

// Elevations for caller lines around the 1e-4 cells by which long lists of lines are searched:
// within and just beyond the tolerance, below magnitude 1 (where it is relative) and off the cells
// (beyond a million, infinite).
double NearTolerance(std::mt19937_64& rng) {
  const double offsets[] = {0.0, 3e-6, -3e-6, 6e-6, -6e-6, 9.5e-6, -9.5e-6, 1.1e-5, -1.1e-5};
  const double bases[] = {100.0, 100.0001, 100.0002, 57.123, 0.5, 2e-6, 0.0, -3.0};
  const double offCells[] = {2e6, -5e7, 3e12 + 0.5, -1e15, std::numeric_limits<double>::infinity()};
  if (Chance(rng, 0.05)) {
    return offCells[UniformInt(rng, 0, 4)];
  }
  return bases[UniformInt(rng, 0, 7)] + offsets[UniformInt(rng, 0, 8)];
}

struct Group {
  const char* name;
  uint64_t firstSeed;
  uint64_t count;
  std::function<Case(std::mt19937_64&)> draw;
};

const Group kGroups[] = {
    {"typical", 1000000, 2000,
     [](std::mt19937_64& rng) {
       auto opt = Options(1, 30, 2, 8, 0.15, rng);
       opt.numericCodes = Chance(rng, 0.3); // "10" sorts before "9"
       return Pair(rng, opt, 0.03);
     }},
    // Envelopes, lenses inside lenses, fused runs and crossing pairs.
    {"few_codes", 2000000, 1200,
     [](std::mt19937_64& rng) {
       auto opt = Options(3, 40, 2, 4, 0.35, rng);
       opt.numericCodes = Chance(rng, 0.5);
       return Pair(rng, opt, 0.03);
     }},
    // Detailed logging schemes with dozens of codes, few of them shared by the two holes.
    {"many_codes", 7000000, 400,
     [](std::mt19937_64& rng) {
       auto opt = Options(10, 60, 12, 40, 0.15, rng);
       opt.numericCodes = Chance(rng, 0.5);
       return Pair(rng, opt, 0.03);
     }},
    // Holes without strata, zero thicknesses, gaps, sub-tolerance offsets, equal elevations on a
    // coarse grid, empty codes, holes at one plan position or less than 1 apart.
    {"degenerate", 3000000, 1500,
     [](std::mt19937_64& rng) {
       auto opt = Options(0, 12, 1, 5, 0.25, rng);
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
       opt.planMax = 2.0;
       opt.planGridChance = 0.5;
       return Pair(rng, opt, 0.15);
     }},
    // Elevations and plan coordinates below 1 in magnitude and around 0, where the tolerance is
    // also relative, with offsets just below the absolute tolerance.
    {"small_magnitudes", 5000000, 1000,
     [](std::mt19937_64& rng) {
       auto opt = Options(1, 10, 2, 5, 0.25, rng);
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
       return Pair(rng, opt, 0.1);
     }},
    // One hole on both sides: plan distance 0, every stratum has its twin, every line merges.
    {"same_borehole", 6000000, 300,
     [](std::mt19937_64& rng) {
       const _sZK a = xktest::RandomBorehole(rng, Options(1, 20, 1, 5, 0.2, rng));
       return Case{a, a, {}};
     }},
    // Two holes without strata and up to 300 caller lines near the tolerance, with ends at one
    // plan position or just apart: short lists are scanned, long ones searched by cell.
    {"many_caller_lines", 7000000, 60,
     [](std::mt19937_64& rng) {
       Case c;
       c.a.dTopGC = 101.0;
       c.b.dX = 60.0;
       c.b.dTopGC = 99.0;
       for (int k = UniformInt(rng, 20, 300); k > 0; --k) {
         c.start.push_back(CallerLine(c.a, c.b, NearTolerance(rng), NearTolerance(rng)));
         _sLinkLine& l = c.start.back();
         l.pt1.x = Chance(rng, 0.1) ? 4e-6 : 0.0;
         l.pt2.x = Chance(rng, 0.1) ? 60.5 : 60.0;
         l.nType = 2;
         l.bBottom = Chance(rng, 0.5);
         l.strUpName = L"l" + std::to_wstring(k);
       }
       return c;
     }},
    // Logs of a few hundred thin beds in two to five codes: thousands of equal-code pairs, keys
    // tied on a quarter-metre grid, and ranges starting off the top when beds are missing.
    {"thin_beds", 8000000, 24,
     [](std::mt19937_64& rng) {
       const int codes = UniformInt(rng, 2, 5);
       Case c{xktest::LongLog(rng, UniformInt(rng, 60, 220), codes, L"WEST"),
              xktest::LongLog(rng, UniformInt(rng, 60, 220), codes, L"EAST"),
              {}};
       c.b.dX = c.a.dX + UniformReal(rng, 5.0, 80.0);
       if (Chance(rng, 0.5)) {
         c.b.vecDC.erase(c.b.vecDC.begin(), c.b.vecDC.begin() + UniformInt(rng, 1, 10));
       }
       return c;
     }},
    // A thick sequence against an ordinary hole, both ways round, and two long sequences.
    {"long_logs", 4000000, 4,
     [](std::mt19937_64& rng) {
       xktest::RandomBoreholeOptions shortOpt;
       const int strata[] = {2000, 2000, 600, 300};
       const int which = static_cast<int>(rng() % 4);
       Case c{xktest::LongLog(rng, strata[which], which == 2 ? 4 : 6, L"LONG1"),
              which == 3 ? xktest::LongLog(rng, 300, 6, L"LONG2")
                         : xktest::RandomBorehole(rng, shortOpt, L"SHORT"),
              {}};
       if (which == 1) {
         std::swap(c.a, c.b);
       }
       return c;
     }},
};

void PrintTo(const Group& group, std::ostream* os) {
  *os << group.name;
}

class Differential : public testing::TestWithParam<Group> {};

TEST_P(Differential, LibraryAndContextAgreeWithTheReference) {
  const Group& group = GetParam();
  XKLinkDc::CorrelationContext context; // reused: the holes of each case are gone after it
  int pairs = 0;
  for (uint64_t seed = group.firstSeed; seed < group.firstSeed + group.count; ++seed) {
    std::mt19937_64 rng(seed);
    Case c = group.draw(rng);
    if (c.start.empty() && Chance(rng, 0.1)) {
      AddCallerLines(rng, c);
    }
    const std::string why = Check(c, Chance(rng, 0.2), seed % 2 == 0, context);
    ++pairs;
    if (!why.empty()) {
      ADD_FAILURE() << group.name << ", seed " << seed
                    << " (got: library, want: reference): " << why << "\nborehole 1:\n"
                    << Describe(c.a) << "borehole 2:\n"
                    << Describe(c.b);
      break;
    }
  }
  std::printf("[ %s ] %d pairs compared\n", group.name, pairs);
}

INSTANTIATE_TEST_SUITE_P(Groups, Differential, testing::ValuesIn(kGroups),
                         [](const testing::TestParamInfo<Group>& p) { return p.param.name; });

} // namespace
