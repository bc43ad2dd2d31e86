// Helpers shared by the correlation tests: boreholes with contiguous strata, boundary elevations
// computed independently of the library, regions placed on boundaries, and tree comparison.
#pragma once

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

// Exact equality of two points; two not-a-number coordinates count as equal.
inline ::testing::AssertionResult SamePoint(const CXk3DPoint& a, const CXk3DPoint& b) {
  const auto same = [](double u, double v) { return u == v || (std::isnan(u) && std::isnan(v)); };
  if (same(a.x, b.x) && same(a.y, b.y) && same(a.z, b.z)) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << "(" << a.x << ", " << a.y << ", " << a.z << ") vs ("
                                       << b.x << ", " << b.y << ", " << b.z << ")";
}

#define EXPECT_RANGES(r, b1, e1, b2, e2)                                                           \
  EXPECT_EQ((std::vector<int32_t>{(r).nBegin1, (r).nEnd1, (r).nBegin2, (r).nEnd2}),                \
            (std::vector<int32_t>{b1, e1, b2, e2}))

// Bit-for-bit equality of two region trees, with the path of the first difference.
inline ::testing::AssertionResult SameTree(const DataType::_sLinkRegion& a,
                                           const DataType::_sLinkRegion& b,
                                           const std::string& path = "root") {
  if (a.nType != b.nType || a.bNamed != b.bNamed || a.strName != b.strName ||
      a.nBegin1 != b.nBegin1 || a.nEnd1 != b.nEnd1 || a.nBegin2 != b.nBegin2 ||
      a.nEnd2 != b.nEnd2 || a.vecChild.size() != b.vecChild.size()) {
    return ::testing::AssertionFailure() << "fields differ at " << path;
  }
  for (int i = 0; i < 2; ++i) {
    if (!SamePoint(a.ptTop[i], b.ptTop[i]) || !SamePoint(a.ptBot[i], b.ptBot[i])) {
      return ::testing::AssertionFailure() << "corners differ at " << path;
    }
  }
  for (std::size_t i = 0; i < a.vecChild.size(); ++i) {
    auto sub = SameTree(a.vecChild[i], b.vecChild[i], path + "/" + std::to_string(i));
    if (!sub) {
      return sub;
    }
  }
  return ::testing::AssertionSuccess();
}

// A region with the given sub-regions, for building expected trees.
inline DataType::_sLinkRegion With(DataType::_sLinkRegion r,
                                   std::vector<DataType::_sLinkRegion> children) {
  r.vecChild = std::move(children);
  return r;
}

} // namespace xkltest
