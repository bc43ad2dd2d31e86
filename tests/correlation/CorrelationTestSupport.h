// Helpers shared by the correlation tests: boreholes with contiguous strata, boundary elevations
// computed independently of the library, regions placed on boundaries, and tree comparison.
#pragma once

#include <XKLinkDc/XKLinkDc.h>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace xkltest {

struct Layer {
  std::wstring code;
  double bottom; // elevation of the stratum's bottom; its top is the bottom of the one above
};

// A borehole at plan position (x, y) whose logged strata start at firstTop (usually the collar)
// and follow one another without gaps.
inline DataType::_sZK MakeBorehole(double x, double y, double collar,
                                   const std::vector<Layer>& layers, double firstTop) {
  DataType::_sZK zk;
  zk.strName = L"ZK";
  zk.dTopGC = collar;
  zk.dX = x;
  zk.dY = y;
  double top = firstTop;
  for (const Layer& layer : layers) {
    DataType::_sZKDC dc;
    dc.strName = layer.code;
    dc.dTopGC = top;
    dc.dBotGC = layer.bottom;
    zk.vecDC.push_back(dc);
    top = layer.bottom;
  }
  return zk;
}

inline DataType::_sZK MakeBorehole(double x, double y, double collar,
                                   const std::vector<Layer>& layers) {
  return MakeBorehole(x, y, collar, layers, collar);
}

// Elevation of the boundary above stratum k, derived from the records themselves: the top of
// stratum k, below the last stratum its bottom, and on a hole without strata the collar.
inline double Boundary(const DataType::_sZK& zk, int32_t k) {
  if (k < 0) {
    return std::nan(""); // no boundary: a corner placed there can match nothing
  }
  if (zk.vecDC.empty()) {
    return zk.dTopGC;
  }
  if (k < static_cast<int32_t>(zk.vecDC.size())) {
    return zk.vecDC[static_cast<std::size_t>(k)].dTopGC;
  }
  return zk.vecDC.back().dBotGC;
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

inline bool SameValue(double a, double b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

// Exact equality of two points; two not-a-number coordinates count as equal.
inline ::testing::AssertionResult SamePoint(const CXk3DPoint& a, const CXk3DPoint& b) {
  if (SameValue(a.x, b.x) && SameValue(a.y, b.y) && SameValue(a.z, b.z)) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << "(" << a.x << ", " << a.y << ", " << a.z << ") vs ("
                                       << b.x << ", " << b.y << ", " << b.z << ")";
}

#define EXPECT_POINT(actual, ex, ey, ez)                                                           \
  do {                                                                                             \
    const CXk3DPoint& p_ = (actual);                                                               \
    EXPECT_NEAR(p_.x, (ex), 1e-9);                                                                 \
    EXPECT_NEAR(p_.y, (ey), 1e-9);                                                                 \
    EXPECT_NEAR(p_.z, (ez), 1e-9);                                                                 \
  } while (false)

// Elevations of the four corners, in the order top and bottom on hole 1, top and bottom on hole 2.
#define EXPECT_Z(region, top1, bot1, top2, bot2)                                                   \
  do {                                                                                             \
    const DataType::_sLinkRegion& z_ = (region);                                                   \
    EXPECT_NEAR(z_.ptTop[0].z, (top1), 1e-9);                                                      \
    EXPECT_NEAR(z_.ptBot[0].z, (bot1), 1e-9);                                                      \
    EXPECT_NEAR(z_.ptTop[1].z, (top2), 1e-9);                                                      \
    EXPECT_NEAR(z_.ptBot[1].z, (bot2), 1e-9);                                                      \
  } while (false)

#define EXPECT_RANGES(region, b1, e1, b2, e2)                                                      \
  do {                                                                                             \
    const DataType::_sLinkRegion& r_ = (region);                                                   \
    EXPECT_EQ(r_.nBegin1, (b1));                                                                   \
    EXPECT_EQ(r_.nEnd1, (e1));                                                                     \
    EXPECT_EQ(r_.nBegin2, (b2));                                                                   \
    EXPECT_EQ(r_.nEnd2, (e2));                                                                     \
  } while (false)

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

template <typename Visit> void ForEachRegion(const DataType::_sLinkRegion& r, const Visit& visit) {
  visit(r);
  for (const auto& child : r.vecChild) {
    ForEachRegion(child, visit);
  }
}

} // namespace xkltest
