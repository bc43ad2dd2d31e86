// Helpers shared by the correlation tests: boreholes with contiguous strata, boundary elevations
// computed independently of the library, regions placed on boundaries, and tree comparison.
#pragma once

#include "../support/ResultText.h"

#include <XKLinkDc/XKLinkDc.h>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace xkltest {

struct Layer {
  std::wstring code;
  double bottom; // elevation of the stratum's bottom; its top is the bottom of the one above
};

// A borehole at plan position (x, y) whose logged strata start at firstTop (by default the collar)
// and follow one another without gaps.
inline DataType::_sZK MakeBorehole(double x, double y, double collar,
                                   const std::vector<Layer>& layers, double firstTop = NAN) {
  DataType::_sZK zk;
  zk.strName = L"ZK";
  zk.dTopGC = collar;
  zk.dX = x;
  zk.dY = y;
  double top = std::isnan(firstTop) ? collar : firstTop;
  for (const Layer& layer : layers) {
    DataType::_sZKDC dc;
    dc.strName = layer.code;
    dc.dTopGC = top;
    dc.dBotGC = top = layer.bottom;
    zk.vecDC.push_back(dc);
  }
  return zk;
}

// Elevation of the boundary above stratum k, derived from the records themselves: the top of
// stratum k, below the last stratum its bottom, and on a hole without strata the collar.
inline double Boundary(const DataType::_sZK& zk, int32_t k) {
  if (k < 0) {
    return NAN; // no boundary: a corner placed there can match nothing
  }
  if (zk.vecDC.empty()) {
    return zk.dTopGC;
  }
  const auto n = static_cast<int32_t>(zk.vecDC.size());
  return k < n ? zk.vecDC[static_cast<std::size_t>(k)].dTopGC : zk.vecDC.back().dBotGC;
}

inline CXk3DPoint On(const DataType::_sZK& zk, double z) {
  return CXk3DPoint(zk.dX, zk.dY, z);
}

// A region over the given ranges with its corners on the enclosing boundaries.
inline DataType::_sLinkRegion MakeRegion(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                                         int32_t b1, int32_t e1, int32_t b2, int32_t e2,
                                         const std::wstring& name = L"", bool named = false,
                                         int32_t type = 0) {
  DataType::_sLinkRegion r;
  r.nType = type;
  r.bNamed = named;
  r.strName = name;
  r.nBegin1 = b1;
  r.nEnd1 = e1;
  r.nBegin2 = b2;
  r.nEnd2 = e2;
  r.ptTop[0] = On(zk1, Boundary(zk1, b1));
  r.ptTop[1] = On(zk2, Boundary(zk2, b2));
  r.ptBot[0] = On(zk1, Boundary(zk1, e1));
  r.ptBot[1] = On(zk2, Boundary(zk2, e2));
  return r;
}

#define EXPECT_RANGES(r, b1, e1, b2, e2)                                                           \
  EXPECT_EQ((std::vector<int32_t>{(r).nBegin1, (r).nEnd1, (r).nBegin2, (r).nEnd2}),                \
            (std::vector<int32_t>{b1, e1, b2, e2}))

// Bit-for-bit equality of two region trees, with the first differing field.
inline ::testing::AssertionResult SameTree(const DataType::_sLinkRegion& got,
                                           const DataType::_sLinkRegion& want) {
  const std::string why = xktest::FirstDifference(got, want, "root");
  if (why.empty()) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << why;
}

// A region with the given sub-regions, for building expected trees.
inline DataType::_sLinkRegion With(DataType::_sLinkRegion r,
                                   std::vector<DataType::_sLinkRegion> children) {
  r.vecChild = std::move(children);
  return r;
}

} // namespace xkltest
