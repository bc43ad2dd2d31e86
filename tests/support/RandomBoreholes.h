// Seeded random boreholes for property and differential tests.
//
// A borehole is drawn from a small alphabet of stratum codes, from the collar downwards, with
// contiguous strata most of the time. The options below steer the features that the correlation is
// sensitive to:
//   - few distinct codes and repeated codes (common strata, crossings, envelopes of a repeated
//     stratum with lenses inside);
//   - codes that sort differently by code units than by number ("10" before "9");
//   - elevations on a coarse grid, so that mid elevations tie, boundaries of the two holes coincide
//     and section lines merge;
//   - zero-thickness strata, gaps between strata, collars above the first stratum;
//   - offsets below the comparison tolerance (1e-5), so that tolerant and plain comparisons differ;
//   - two holes at the same plan position, or sharing one plan coordinate.
//
// Everything is a pure function of the std::mt19937_64 passed in, so a failing case is reproduced
// from its seed alone. Only the engine's raw output is used (no std::*_distribution, whose results
// differ between standard libraries).
//
//   std::mt19937_64 rng(seed);
//   xktest::RandomBoreholeOptions opt;
//   opt.codeCount = 4;
//   auto [west, east] = xktest::RandomBoreholePair(rng, opt);
#pragma once

#include <XKLinkDc/XKLinkDc.h>
#include <cstdint>
#include <random>
#include <string>
#include <utility>

namespace xktest {

struct RandomBoreholeOptions {
  int minStrata = 1;  // number of strata, drawn uniformly from [minStrata, maxStrata]
  int maxStrata = 30; // (0 allowed: a hole without strata)
  int codeCount = 6;  // distinct codes to draw from (at least 1)
  // false: codes "A", "B", ..., "Z", "AA", ...; true: codes "1", "2", ..., whose ordinal order
  // ("10" < "2" < "9") differs from their numeric order.
  bool numericCodes = false;
  double repeatPreviousChance = 0.15; // a stratum carries the code of the stratum above it
  double emptyCodeChance = 0.0;       // a stratum carries the empty code
  double minThickness = 0.5;
  double maxThickness = 8.0;
  // With this chance a hole has all its elevations on a grid of gridStep (collar and thicknesses
  // are multiples of it), so that elevations of the two holes often coincide exactly.
  double gridChance = 0.6;
  double gridStep = 0.5;
  double zeroThicknessChance = 0.04; // a stratum with top == bottom
  double gapChance = 0.04;           // a stratum starts below the bottom of the one above
  double collarGapChance = 0.1;      // the first stratum starts below the collar
  double jitterChance = 0.02;        // an elevation moved by less than 1e-5
  double collarMin = 90.0;
  double collarMax = 110.0;
  double planMin = 0.0; // plan coordinates are drawn from [planMin, planMax]
  double planMax = 200.0;
  double planGridChance = 0.3; // plan coordinates on a grid of 50, so that holes line up
};

// Uniform integer in [lo, hi] (hi >= lo).
inline int UniformInt(std::mt19937_64& rng, int lo, int hi) {
  const auto span = static_cast<uint64_t>(static_cast<int64_t>(hi) - lo + 1);
  return lo + static_cast<int>(rng() % span);
}

// Uniform double in [0, 1).
inline double Uniform01(std::mt19937_64& rng) {
  return static_cast<double>(rng() >> 11) * (1.0 / 9007199254740992.0);
}

inline double UniformReal(std::mt19937_64& rng, double lo, double hi) {
  return lo + (hi - lo) * Uniform01(rng);
}

inline bool Chance(std::mt19937_64& rng, double p) {
  return Uniform01(rng) < p;
}

// The code with the given index: "A".."Z", "AA", "AB", ... or "1", "2", ...
inline std::wstring CodeName(int index, bool numeric) {
  if (numeric) {
    return std::to_wstring(index + 1);
  }
  std::wstring name;
  int n = index;
  do {
    name.insert(name.begin(), static_cast<wchar_t>(L'A' + n % 26));
    n = n / 26 - 1;
  } while (n >= 0);
  return name;
}

inline double SnapToGrid(double v, double step) {
  return static_cast<double>(static_cast<int64_t>(v / step)) * step;
}

// One random borehole named `name`, strata from the top down.
inline DataType::_sZK RandomBorehole(std::mt19937_64& rng, const RandomBoreholeOptions& opt,
                                     const std::wstring& name = L"ZK") {
  DataType::_sZK zk;
  zk.strName = name;
  const bool onGrid = Chance(rng, opt.gridChance);
  auto elevationStep = [&](double lo, double hi) {
    double v = UniformReal(rng, lo, hi);
    if (onGrid) {
      v = SnapToGrid(v, opt.gridStep);
    }
    return v;
  };
  auto jitter = [&](double v) {
    if (Chance(rng, opt.jitterChance)) {
      v += UniformReal(rng, -9e-6, 9e-6);
    }
    return v;
  };

  zk.dTopGC = elevationStep(opt.collarMin, opt.collarMax);
  zk.dX = UniformReal(rng, opt.planMin, opt.planMax);
  zk.dY = UniformReal(rng, opt.planMin, opt.planMax);
  if (Chance(rng, opt.planGridChance)) {
    zk.dX = SnapToGrid(zk.dX, 50.0);
    zk.dY = SnapToGrid(zk.dY, 50.0);
  }

  const int count = UniformInt(rng, opt.minStrata, opt.maxStrata);
  const int codes = opt.codeCount < 1 ? 1 : opt.codeCount;
  double top = zk.dTopGC;
  if (Chance(rng, opt.collarGapChance)) {
    top -= elevationStep(opt.minThickness, opt.maxThickness);
  }
  top = jitter(top);
  std::wstring previous;
  for (int k = 0; k < count; ++k) {
    DataType::_sZKDC dc;
    if (k > 0 && Chance(rng, opt.repeatPreviousChance)) {
      dc.strName = previous;
    } else if (Chance(rng, opt.emptyCodeChance)) {
      dc.strName = L"";
    } else {
      dc.strName = CodeName(UniformInt(rng, 0, codes - 1), opt.numericCodes);
    }
    if (k > 0 && Chance(rng, opt.gapChance)) {
      top = jitter(top - elevationStep(opt.minThickness, opt.maxThickness));
    }
    dc.dTopGC = top;
    double thickness = 0.0;
    if (!Chance(rng, opt.zeroThicknessChance)) {
      thickness = elevationStep(opt.minThickness, opt.maxThickness);
    }
    dc.dBotGC = jitter(top - thickness);
    dc.dAux = static_cast<double>(k);
    dc.bAux = (k % 2) == 0;
    top = dc.dBotGC;
    previous = dc.strName;
    zk.vecDC.push_back(dc);
  }
  return zk;
}

// Two random boreholes. With samePlaceChance the second stands at the plan position of the first
// (plan distance 0); with sharedAxisChance it shares one plan coordinate with it.
inline std::pair<DataType::_sZK, DataType::_sZK>
RandomBoreholePair(std::mt19937_64& rng, const RandomBoreholeOptions& opt,
                   double samePlaceChance = 0.03, double sharedAxisChance = 0.1) {
  DataType::_sZK a = RandomBorehole(rng, opt, L"ZK1");
  DataType::_sZK b = RandomBorehole(rng, opt, L"ZK2");
  if (Chance(rng, samePlaceChance)) {
    b.dX = a.dX;
    b.dY = a.dY;
  } else if (Chance(rng, sharedAxisChance)) {
    if (Chance(rng, 0.5)) {
      b.dX = a.dX;
    } else {
      b.dY = a.dY;
    }
  }
  return {std::move(a), std::move(b)};
}

// A long log: many strata from few codes with heavy repetition, as in a thick sequence of
// alternating beds. Contiguous, on a grid, without gaps or zero thicknesses.
inline DataType::_sZK LongLog(std::mt19937_64& rng, int strata = 2000, int codeCount = 6,
                              const std::wstring& name = L"LONG") {
  RandomBoreholeOptions opt;
  opt.minStrata = strata;
  opt.maxStrata = strata;
  opt.codeCount = codeCount;
  opt.repeatPreviousChance = 0.4;
  opt.minThickness = 0.2;
  opt.maxThickness = 3.0;
  opt.gridChance = 1.0;
  opt.gridStep = 0.25;
  opt.zeroThicknessChance = 0.0;
  opt.gapChance = 0.0;
  opt.collarGapChance = 0.0;
  opt.jitterChance = 0.0;
  return RandomBorehole(rng, opt, name);
}

} // namespace xktest
