// The exported records: member order and types of the binary interface, default values, copies
// (deep for strata and region subtrees), self-assignment, GetBotGC and IsSame.
#include <XKLinkDc/XKLinkDc.h>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using DataType::_sLinkLine;
using DataType::_sLinkRegion;
using DataType::_sZK;
using DataType::_sZKDC;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// --- binary interface ----------------------------------------------------------------------

static_assert(std::is_standard_layout_v<CXk3DPoint> && !std::is_polymorphic_v<CXk3DPoint>);
static_assert(sizeof(CXk3DPoint) == 3 * sizeof(double));
static_assert(offsetof(CXk3DPoint, x) == 0 && offsetof(CXk3DPoint, y) == sizeof(double) &&
              offsetof(CXk3DPoint, z) == 2 * sizeof(double));
static_assert(sizeof(bool) == 1);

template <class M, class T> constexpr bool kIs = std::is_same_v<M, T>;

static_assert(kIs<decltype(_sZKDC::strName), std::wstring> &&
              kIs<decltype(_sZKDC::dTopGC), double> && kIs<decltype(_sZKDC::dBotGC), double> &&
              kIs<decltype(_sZKDC::dAux), double> && kIs<decltype(_sZKDC::bAux), bool>);
static_assert(kIs<decltype(_sZK::strName), std::wstring> && kIs<decltype(_sZK::dTopGC), double> &&
              kIs<decltype(_sZK::dX), double> && kIs<decltype(_sZK::dY), double> &&
              kIs<decltype(_sZK::vecDC), std::vector<_sZKDC>>);
static_assert(kIs<decltype(_sLinkRegion::nType), int32_t> &&
              kIs<decltype(_sLinkRegion::bNamed), bool> &&
              kIs<decltype(_sLinkRegion::strName), std::wstring> &&
              kIs<decltype(_sLinkRegion::nBegin1), int32_t> &&
              kIs<decltype(_sLinkRegion::nEnd1), int32_t> &&
              kIs<decltype(_sLinkRegion::nBegin2), int32_t> &&
              kIs<decltype(_sLinkRegion::nEnd2), int32_t> &&
              kIs<decltype(_sLinkRegion::ptTop), CXk3DPoint[2]> &&
              kIs<decltype(_sLinkRegion::ptBot), CXk3DPoint[2]> &&
              kIs<decltype(_sLinkRegion::vecChild), std::vector<_sLinkRegion>>);
static_assert(kIs<decltype(_sLinkLine::pt1), CXk3DPoint> &&
              kIs<decltype(_sLinkLine::pt2), CXk3DPoint> &&
              kIs<decltype(_sLinkLine::nType), int32_t> &&
              kIs<decltype(_sLinkLine::bBottom), bool> &&
              kIs<decltype(_sLinkLine::strUpName), std::wstring> &&
              kIs<decltype(_sLinkLine::strDownName), std::wstring>);
static_assert(kIs<decltype(std::declval<const _sZK&>().GetBotGC()), double>);
static_assert(kIs<decltype(std::declval<const _sLinkLine&>().IsSame(_sLinkLine())), bool>);
static_assert(kIs<decltype(std::declval<_sLinkRegion&>() = _sLinkRegion()), _sLinkRegion&>);

// The records hold strings, so offsetof is only conditionally supported; GCC and Clang give the
// layout order, which is what the host relies on.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
static_assert(offsetof(_sZKDC, strName) < offsetof(_sZKDC, dTopGC) &&
              offsetof(_sZKDC, dTopGC) < offsetof(_sZKDC, dBotGC) &&
              offsetof(_sZKDC, dBotGC) < offsetof(_sZKDC, dAux) &&
              offsetof(_sZKDC, dAux) < offsetof(_sZKDC, bAux));
static_assert(offsetof(_sZK, strName) < offsetof(_sZK, dTopGC) &&
              offsetof(_sZK, dTopGC) < offsetof(_sZK, dX) &&
              offsetof(_sZK, dX) < offsetof(_sZK, dY) &&
              offsetof(_sZK, dY) < offsetof(_sZK, vecDC));
static_assert(offsetof(_sLinkRegion, nType) < offsetof(_sLinkRegion, bNamed) &&
              offsetof(_sLinkRegion, bNamed) < offsetof(_sLinkRegion, strName) &&
              offsetof(_sLinkRegion, strName) < offsetof(_sLinkRegion, nBegin1) &&
              offsetof(_sLinkRegion, nBegin1) < offsetof(_sLinkRegion, nEnd1) &&
              offsetof(_sLinkRegion, nEnd1) < offsetof(_sLinkRegion, nBegin2) &&
              offsetof(_sLinkRegion, nBegin2) < offsetof(_sLinkRegion, nEnd2) &&
              offsetof(_sLinkRegion, nEnd2) < offsetof(_sLinkRegion, ptTop) &&
              offsetof(_sLinkRegion, ptTop) < offsetof(_sLinkRegion, ptBot) &&
              offsetof(_sLinkRegion, ptBot) < offsetof(_sLinkRegion, vecChild));
static_assert(offsetof(_sLinkLine, pt1) < offsetof(_sLinkLine, pt2) &&
              offsetof(_sLinkLine, pt2) < offsetof(_sLinkLine, nType) &&
              offsetof(_sLinkLine, nType) < offsetof(_sLinkLine, bBottom) &&
              offsetof(_sLinkLine, bBottom) < offsetof(_sLinkLine, strUpName) &&
              offsetof(_sLinkLine, strUpName) < offsetof(_sLinkLine, strDownName));
#pragma GCC diagnostic pop

// --- helpers -------------------------------------------------------------------------------

_sZKDC Stratum(const wchar_t* name, double top, double bot, double aux = 0.0, bool flag = false) {
  _sZKDC dc;
  dc.strName = name;
  dc.dTopGC = top;
  dc.dBotGC = bot;
  dc.dAux = aux;
  dc.bAux = flag;
  return dc;
}

void ExpectPoint(const CXk3DPoint& p, double x, double y, double z) {
  EXPECT_EQ(p.x, x);
  EXPECT_EQ(p.y, y);
  EXPECT_EQ(p.z, z);
}

void ExpectSameStratum(const _sZKDC& a, const _sZKDC& b) {
  EXPECT_EQ(a.strName, b.strName);
  EXPECT_EQ(a.dTopGC, b.dTopGC);
  EXPECT_EQ(a.dBotGC, b.dBotGC);
  EXPECT_EQ(a.dAux, b.dAux);
  EXPECT_EQ(a.bAux, b.bAux);
}

void ExpectSameBorehole(const _sZK& a, const _sZK& b) {
  EXPECT_EQ(a.strName, b.strName);
  EXPECT_EQ(a.dTopGC, b.dTopGC);
  EXPECT_EQ(a.dX, b.dX);
  EXPECT_EQ(a.dY, b.dY);
  ASSERT_EQ(a.vecDC.size(), b.vecDC.size());
  for (std::size_t i = 0; i < a.vecDC.size(); ++i) {
    ExpectSameStratum(a.vecDC[i], b.vecDC[i]);
  }
}

void ExpectSameRegion(const _sLinkRegion& a, const _sLinkRegion& b) {
  EXPECT_EQ(a.nType, b.nType);
  EXPECT_EQ(a.bNamed, b.bNamed);
  EXPECT_EQ(a.strName, b.strName);
  EXPECT_EQ(a.nBegin1, b.nBegin1);
  EXPECT_EQ(a.nEnd1, b.nEnd1);
  EXPECT_EQ(a.nBegin2, b.nBegin2);
  EXPECT_EQ(a.nEnd2, b.nEnd2);
  for (int i = 0; i < 2; ++i) {
    ExpectPoint(a.ptTop[i], b.ptTop[i].x, b.ptTop[i].y, b.ptTop[i].z);
    ExpectPoint(a.ptBot[i], b.ptBot[i].x, b.ptBot[i].y, b.ptBot[i].z);
  }
  ASSERT_EQ(a.vecChild.size(), b.vecChild.size());
  for (std::size_t i = 0; i < a.vecChild.size(); ++i) {
    ExpectSameRegion(a.vecChild[i], b.vecChild[i]);
  }
}

// A region whose every member differs from the defaults; depth > 0 adds two children.
_sLinkRegion MakeRegion(const std::wstring& name, int32_t seed, int depth) {
  _sLinkRegion r;
  r.nType = seed % 3;
  r.bNamed = true;
  r.strName = name;
  r.nBegin1 = seed;
  r.nEnd1 = seed + 1;
  r.nBegin2 = seed + 2;
  r.nEnd2 = seed + 3;
  const double s = seed;
  r.ptTop[0] = CXk3DPoint(s, 0.5, 100.0 - s);
  r.ptTop[1] = CXk3DPoint(s + 60.0, 1.5, 101.0 - s);
  r.ptBot[0] = CXk3DPoint(s, 2.5, 90.0 - s);
  r.ptBot[1] = CXk3DPoint(s + 60.0, 3.5, 91.0 - s);
  if (depth > 0) {
    r.vecChild.push_back(MakeRegion(name + L"a", 10 * seed + 1, depth - 1));
    r.vecChild.push_back(MakeRegion(name + L"b", 10 * seed + 2, depth - 1));
  }
  return r;
}

_sLinkLine Line(double x1, double y1, double z1, double x2, double y2, double z2) {
  _sLinkLine l;
  l.pt1 = CXk3DPoint(x1, y1, z1);
  l.pt2 = CXk3DPoint(x2, y2, z2);
  return l;
}

// --- defaults ------------------------------------------------------------------------------

TEST(RecordsTest, DefaultsAreEmptyAndZero) {
  const _sZKDC dc;
  EXPECT_TRUE(dc.strName.empty());
  EXPECT_EQ(dc.dTopGC, 0.0);
  EXPECT_EQ(dc.dBotGC, 0.0);
  EXPECT_EQ(dc.dAux, 0.0);
  EXPECT_FALSE(dc.bAux);

  const _sZK zk;
  EXPECT_TRUE(zk.strName.empty());
  EXPECT_EQ(zk.dTopGC, 0.0);
  EXPECT_EQ(zk.dX, 0.0);
  EXPECT_EQ(zk.dY, 0.0);
  EXPECT_TRUE(zk.vecDC.empty());

  const _sLinkRegion region;
  EXPECT_EQ(region.nType, 0);
  EXPECT_FALSE(region.bNamed);
  EXPECT_TRUE(region.strName.empty());
  EXPECT_EQ(region.nBegin1, -1);
  EXPECT_EQ(region.nEnd1, -1);
  EXPECT_EQ(region.nBegin2, -1);
  EXPECT_EQ(region.nEnd2, -1);
  for (int i = 0; i < 2; ++i) {
    ExpectPoint(region.ptTop[i], 0.0, 0.0, 0.0);
    ExpectPoint(region.ptBot[i], 0.0, 0.0, 0.0);
  }
  EXPECT_TRUE(region.vecChild.empty());

  const _sLinkLine line;
  ExpectPoint(line.pt1, 0.0, 0.0, 0.0);
  ExpectPoint(line.pt2, 0.0, 0.0, 0.0);
  EXPECT_EQ(line.nType, 0);
  EXPECT_FALSE(line.bBottom);
  EXPECT_TRUE(line.strUpName.empty());
  EXPECT_TRUE(line.strDownName.empty());
}

// --- copies --------------------------------------------------------------------------------

TEST(RecordsTest, StratumCopiesEveryMember) {
  const _sZKDC src = Stratum(L"Q4ml", 12.5, -3.25, 7.75, true);
  const _sZKDC copy(src);
  ExpectSameStratum(copy, src);
  _sZKDC assigned = Stratum(L"x", 1.0, 2.0, 3.0, false);
  EXPECT_EQ(&(assigned = src), &assigned);
  ExpectSameStratum(assigned, src);
  _sZKDC& alias = assigned;
  EXPECT_EQ(&(assigned = alias), &assigned);
  ExpectSameStratum(assigned, src);
}

TEST(RecordsTest, BoreholeCopiesStrataDeeply) {
  _sZK src;
  src.strName = L"ZK-07";
  src.dTopGC = 101.5;
  src.dX = 3500123.25;
  src.dY = 412345.5;
  src.vecDC = {Stratum(L"A", 101.5, 95.0, 1.0, true), Stratum(L"B", 95.0, 90.0),
               Stratum(L"C", 90.0, 80.0, -2.0, true)};
  const _sZK before(src);
  ExpectSameBorehole(before, src);

  _sZK copy(src);
  copy.vecDC[1].strName = L"Z";
  copy.vecDC[1].dBotGC = 1.0;
  copy.vecDC.push_back(Stratum(L"D", 80.0, 70.0));
  ExpectSameBorehole(src, before);

  // Assignment into a target holding more strata, fewer strata, and itself.
  for (std::size_t n : {0u, 2u, 5u}) {
    SCOPED_TRACE(n);
    _sZK target;
    target.strName = L"old";
    target.vecDC.assign(n, Stratum(L"old", 1.0, 0.0, 9.0, true));
    EXPECT_EQ(&(target = src), &target);
    ExpectSameBorehole(target, src);
    target.vecDC[0].strName = L"changed";
    ExpectSameBorehole(src, before);
  }
  _sZK& alias = src;
  EXPECT_EQ(&(src = alias), &src);
  ExpectSameBorehole(src, before);
}

TEST(RecordsTest, RegionCopiesItsSubtreeDeeply) {
  const _sLinkRegion src = MakeRegion(L"R", 1, 3); // root, children, grandchildren, great-grand
  const _sLinkRegion before(src);
  ASSERT_EQ(before.vecChild.size(), 2u);
  ASSERT_EQ(before.vecChild[1].vecChild[0].vecChild.size(), 2u);
  ExpectSameRegion(before, src);

  _sLinkRegion copy(src);
  _sLinkRegion& grandchild = copy.vecChild[1].vecChild[0];
  grandchild.strName = L"changed";
  grandchild.nEnd2 = 99;
  grandchild.ptBot[1].z = -1.0;
  grandchild.vecChild.clear();
  ExpectSameRegion(src, before);

  // Assignment replaces a differently shaped tree and leaves the same state as a copy.
  _sLinkRegion target = MakeRegion(L"T", 7, 1);
  target.vecChild[0].vecChild.push_back(MakeRegion(L"U", 5, 2));
  EXPECT_EQ(&(target = src), &target);
  ExpectSameRegion(target, before);
  target.vecChild[0].vecChild[1].ptTop[0].x = 123.0;
  ExpectSameRegion(src, before);

  _sLinkRegion self(src);
  _sLinkRegion& alias = self;
  EXPECT_EQ(&(self = alias), &self);
  ExpectSameRegion(self, before);
}

TEST(RecordsTest, LineCopiesEveryMember) {
  _sLinkLine src = Line(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
  src.nType = 2;
  src.bBottom = true;
  src.strUpName = L"up";
  src.strDownName = L"down";
  const auto expectSame = [](const _sLinkLine& a, const _sLinkLine& b) {
    ExpectPoint(a.pt1, b.pt1.x, b.pt1.y, b.pt1.z);
    ExpectPoint(a.pt2, b.pt2.x, b.pt2.y, b.pt2.z);
    EXPECT_EQ(a.nType, b.nType);
    EXPECT_EQ(a.bBottom, b.bBottom);
    EXPECT_EQ(a.strUpName, b.strUpName);
    EXPECT_EQ(a.strDownName, b.strDownName);
  };
  const _sLinkLine copy(src);
  expectSame(copy, src);
  _sLinkLine assigned;
  EXPECT_EQ(&(assigned = src), &assigned);
  expectSame(assigned, src);
  _sLinkLine& alias = assigned;
  EXPECT_EQ(&(assigned = alias), &assigned);
  expectSame(assigned, src);
}

// --- GetBotGC ------------------------------------------------------------------------------

TEST(RecordsTest, GetBotGCIsTheLowestOfCollarAndBottoms) {
  struct Case {
    const char* what;
    double collar;
    std::vector<double> bottoms;
    double expected; // NaN: the result is not a number
  };
  const Case cases[] = {
      {"no strata", 100.0, {}, 100.0},
      {"downward strata", 100.0, {95.0, 90.0, 80.0}, 80.0},
      {"bottoms above the collar", 10.0, {20.0, 30.0}, 10.0},
      {"unordered strata", 100.0, {80.0, 95.0, 90.0}, 80.0},
      {"bottom equal to the collar", -5.0, {-5.0}, -5.0},
      {"NaN in the middle is replaced by the next", 100.0, {90.0, kNaN, 95.0}, 95.0},
      {"NaN replaced even by a bottom above the collar", 100.0, {kNaN, 120.0}, 120.0},
      {"NaN last", 100.0, {90.0, kNaN}, kNaN},
      {"NaN collar replaced", kNaN, {50.0, 60.0}, 50.0},
      {"NaN collar, no strata", kNaN, {}, kNaN},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    _sZK zk;
    zk.dTopGC = c.collar;
    for (double bottom : c.bottoms) {
      zk.vecDC.push_back(Stratum(L"A", -1000.0, bottom)); // tops play no part
    }
    if (std::isnan(c.expected)) {
      EXPECT_TRUE(std::isnan(zk.GetBotGC()));
    } else {
      EXPECT_EQ(zk.GetBotGC(), c.expected);
    }
  }
}

// --- IsSame --------------------------------------------------------------------------------

TEST(RecordsTest, IsSameComparesEndsInOrderWithinTolerance) {
  const _sLinkLine base = Line(10.0, 20.0, 95.0, 70.0, 20.0, 96.0);
  EXPECT_TRUE(base.IsSame(base));

  _sLinkLine named = base;
  named.strUpName = L"A";
  named.strDownName = L"B";
  named.bBottom = true;
  named.nType = 2;
  EXPECT_TRUE(base.IsSame(named));
  EXPECT_TRUE(named.IsSame(base));

  const _sLinkLine reversed = Line(70.0, 20.0, 96.0, 10.0, 20.0, 95.0);
  EXPECT_FALSE(base.IsSame(reversed));
  EXPECT_FALSE(reversed.IsSame(base));
  const _sLinkLine point = Line(1.0, 2.0, 3.0, 1.0, 2.0, 3.000005);
  const _sLinkLine pointReversed = Line(1.0, 2.0, 3.000005, 1.0, 2.0, 3.0);
  EXPECT_TRUE(point.IsSame(pointReversed));

  // Each of the six coordinates moved alone: 5e-6 is within the tolerance, 2e-5 is not.
  for (int k = 0; k < 6; ++k) {
    for (double delta : {5e-6, -5e-6, 2e-5, -2e-5}) {
      SCOPED_TRACE(testing::Message() << "coordinate " << k << " moved by " << delta);
      _sLinkLine moved = base;
      double* coords[] = {&moved.pt1.x, &moved.pt1.y, &moved.pt1.z,
                          &moved.pt2.x, &moved.pt2.y, &moved.pt2.z};
      *coords[k] += delta;
      const bool same = std::fabs(delta) < 1e-5;
      EXPECT_EQ(base.IsSame(moved), same);
      EXPECT_EQ(moved.IsSame(base), same);
    }
  }

  // Below magnitude 1 the difference must also be small relative to the value.
  EXPECT_TRUE(Line(0.7, 0.0, 0.0, 1.0, 1.0, 1.0).IsSame(Line(0.700005, 9e-6, 0.0, 1.0, 1.0, 1.0)));
  EXPECT_FALSE(Line(0.3, 0.0, 0.0, 1.0, 1.0, 1.0).IsSame(Line(0.300005, 0.0, 0.0, 1.0, 1.0, 1.0)));

  // A coordinate that is not a number matches nothing, not even itself.
  const _sLinkLine undefined = Line(1.0, 2.0, 3.0, 4.0, 5.0, kNaN);
  EXPECT_FALSE(undefined.IsSame(undefined));
}

} // namespace
