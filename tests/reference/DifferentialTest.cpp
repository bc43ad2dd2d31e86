// Differential tests: the library's LinkDc and LinkDcLine (and the re-entrant context) against the
// plain reference implementation, on many seeded random borehole pairs.
//
// Region trees must agree field by field, doubles bit for bit, and so must section lines, in
// order: both sides sort them with the standard library's introsort (the reference with std::sort
// itself), whose order is defined even where the ordering predicate is not a strict weak ordering.
// Anything else is a failure, reported with the seed, the first differing field and the boreholes.
#include "reference/ReferenceCorrelation.h"
#include "support/RandomBoreholes.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace {

using DataType::_sLinkLine;
using DataType::_sLinkRegion;
using DataType::_sZK;

// Every field of a tree or a list of lines, one per line of text with its path, doubles as their
// bits: two results are identical exactly when their texts are, and the first line that differs
// names the first differing field.
std::string Num(double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.17g [%016llx]", v,
                static_cast<unsigned long long>(std::bit_cast<uint64_t>(v)));
  return buf;
}

std::string Narrow(const std::wstring& w) {
  std::string s;
  for (const wchar_t c : w) {
    s += (c >= 32 && c < 127) ? static_cast<char>(c) : '?';
  }
  return s;
}

void Field(std::vector<std::string>& out, const std::string& path, const std::string& value) {
  out.push_back(path + ": " + value);
}

void Point(std::vector<std::string>& out, const std::string& path, const CXk3DPoint& p) {
  Field(out, path + ".x", Num(p.x));
  Field(out, path + ".y", Num(p.y));
  Field(out, path + ".z", Num(p.z));
}

void Fields(std::vector<std::string>& out, const _sLinkRegion& r, const std::string& path) {
  Field(out, path + ".nType", std::to_string(r.nType));
  Field(out, path + ".bNamed", std::to_string(r.bNamed));
  Field(out, path + ".strName", "\"" + Narrow(r.strName) + "\"");
  Field(out, path + ".ranges",
        std::to_string(r.nBegin1) + " " + std::to_string(r.nEnd1) + " " +
            std::to_string(r.nBegin2) + " " + std::to_string(r.nEnd2));
  for (int k = 0; k < 2; ++k) {
    Point(out, path + ".ptTop[" + std::to_string(k) + "]", r.ptTop[k]);
    Point(out, path + ".ptBot[" + std::to_string(k) + "]", r.ptBot[k]);
  }
  Field(out, path + ".vecChild.size()", std::to_string(r.vecChild.size()));
  for (std::size_t k = 0; k < r.vecChild.size(); ++k) {
    Fields(out, r.vecChild[k], path + ".vecChild[" + std::to_string(k) + "]");
  }
}

void Fields(std::vector<std::string>& out, const std::vector<_sLinkLine>& lines) {
  Field(out, "lines.size()", std::to_string(lines.size()));
  for (std::size_t k = 0; k < lines.size(); ++k) {
    const _sLinkLine& l = lines[k];
    const std::string path = "lines[" + std::to_string(k) + "]";
    Point(out, path + ".pt1", l.pt1);
    Point(out, path + ".pt2", l.pt2);
    Field(out, path + ".nType", std::to_string(l.nType));
    Field(out, path + ".bBottom", std::to_string(l.bBottom));
    Field(out, path + ".names",
          "\"" + Narrow(l.strUpName) + "\" / \"" + Narrow(l.strDownName) + "\"");
  }
}

// The first differing field of two results, or nothing.
template <class Result>
std::string FirstDifference(const Result& lib, const Result& ref, const std::string& path) {
  std::vector<std::string> a;
  std::vector<std::string> b;
  if constexpr (std::is_same_v<Result, _sLinkRegion>) {
    Fields(a, lib, path);
    Fields(b, ref, path);
  } else {
    Fields(a, lib);
    Fields(b, ref);
  }
  const auto [x, y] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  if (x == a.end() && y == b.end()) {
    return {};
  }
  return "library " + (x == a.end() ? std::string("(nothing)") : *x) + ", reference " +
         (y == b.end() ? std::string("(nothing)") : *y);
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

// The reference's lines of the tree ref appended to the caller's lines, merged, sorted and trimmed.
std::vector<_sLinkLine> ReferenceLines(const _sLinkRegion& ref, std::vector<_sLinkLine> lines) {
  reference::ReferenceAppendLeafLines(ref, lines);
  reference::ReferenceMergeSameLines(lines);
  reference::ReferenceSortLines(lines);
  if (!lines.empty()) {
    lines.erase(lines.begin());
  }
  return lines;
}

// LinkDcLine on the caller's lines against the reference's; what differs, or nothing.
std::string CheckLinkDcLine(const _sZK& a, const _sZK& b, const std::vector<_sLinkLine>& start,
                            const std::vector<_sLinkLine>& expected) {
  std::vector<_sLinkLine> lines = start;
  LinkDcLine(a, b, lines);
  return FirstDifference(lines, expected, "");
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
  failure = FirstDifference(lib, ref, "LinkDc: root");
  if (failure.empty()) {
    XKLinkDc::CorrelationContext context;
    _sLinkRegion viaContext;
    context.LinkDc(a, b, viaContext);
    failure = FirstDifference(viaContext, ref, "CorrelationContext::LinkDc: root");
  }

  if (failure.empty()) {
    std::vector<_sLinkLine> start;
    if (xktest::Chance(rng, 0.1)) {
      start = CallerLines(rng, a, b);
    }
    const std::vector<_sLinkLine> expected = ReferenceLines(ref, start);
    const std::string why = CheckLinkDcLine(a, b, start, expected);
    if (!why.empty()) {
      failure = "LinkDcLine: " + why;
    }
    if (failure.empty()) {
      XKLinkDc::CorrelationContext context;
      std::vector<_sLinkLine> ctxLines = start;
      context.LinkDcLine(a, b, ctxLines);
      const std::string viaContext = FirstDifference(ctxLines, expected, "");
      if (!viaContext.empty()) {
        failure = "CorrelationContext::LinkDcLine: " + viaContext;
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
  std::printf("[ %s ] %d pairs, failures %d\n", what, t.pairs, t.failures);
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
  const double offCells[] = {2e6, -5e7, 3e12 + 0.5, -1e15, std::numeric_limits<double>::infinity()};
  Tally tally;
  for (uint64_t seed = 7000000; seed < 7000060; ++seed) {
    std::mt19937_64 rng(seed);
    const auto elevation = [&] {
      if (xktest::Chance(rng, 0.05)) {
        return offCells[xktest::UniformInt(rng, 0, 4)];
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
    const std::string why = CheckLinkDcLine(a, b, start, ReferenceLines(ref, start));
    if (!why.empty()) {
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
