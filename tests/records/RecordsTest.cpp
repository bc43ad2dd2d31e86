// The exported records: the member layout the host's binary relies on, default values, copies and
// moves (deep for strata and region subtrees), GetBotGC and IsSame.
#include <XKLinkDc/XKLinkDc.h>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <sstream>
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

// --- binary interface: the order of the members ------------------------------------------------

constexpr bool Ascending(std::initializer_list<std::size_t> offsets) {
  return std::is_sorted(offsets.begin(), offsets.end()) &&
         std::adjacent_find(offsets.begin(), offsets.end()) == offsets.end();
}

static_assert(std::is_standard_layout_v<CXk3DPoint> && sizeof(CXk3DPoint) == 3 * sizeof(double) &&
              offsetof(CXk3DPoint, x) == 0 && offsetof(CXk3DPoint, z) == 2 * sizeof(double));
// The records hold strings, so offsetof is only conditionally supported; GCC and Clang give the
// layout order, which is what the host relies on.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
static_assert(Ascending({offsetof(_sZKDC, strName), offsetof(_sZKDC, dTopGC),
                         offsetof(_sZKDC, dBotGC), offsetof(_sZKDC, dAux),
                         offsetof(_sZKDC, bAux)}));
static_assert(Ascending({offsetof(_sZK, strName), offsetof(_sZK, dTopGC), offsetof(_sZK, dX),
                         offsetof(_sZK, dY), offsetof(_sZK, vecDC)}));
static_assert(Ascending({offsetof(_sLinkRegion, nType), offsetof(_sLinkRegion, bNamed),
                         offsetof(_sLinkRegion, strName), offsetof(_sLinkRegion, nBegin1),
                         offsetof(_sLinkRegion, nEnd1), offsetof(_sLinkRegion, nBegin2),
                         offsetof(_sLinkRegion, nEnd2), offsetof(_sLinkRegion, ptTop),
                         offsetof(_sLinkRegion, ptBot), offsetof(_sLinkRegion, vecChild)}));
static_assert(Ascending({offsetof(_sLinkLine, pt1), offsetof(_sLinkLine, pt2),
                         offsetof(_sLinkLine, nType), offsetof(_sLinkLine, bBottom),
                         offsetof(_sLinkLine, strUpName), offsetof(_sLinkLine, strDownName)}));
#pragma GCC diagnostic pop

// --- every member of a record as text, children included ----------------------------------------

template <class... T> std::string Join(const T&... parts) {
  std::ostringstream out;
  out.precision(17);
  ((out << parts << ' '), ...);
  return out.str();
}
std::string W(const std::wstring& text) {
  return {text.begin(), text.end()};
} // ASCII names
std::string P(const CXk3DPoint& p) {
  return Join(p.x, p.y, p.z);
}
std::string Describe(const _sZKDC& d) {
  return Join(W(d.strName), d.dTopGC, d.dBotGC, d.dAux, d.bAux);
}
std::string Describe(const _sLinkLine& l) {
  return Join(P(l.pt1), P(l.pt2), l.nType, l.bBottom, W(l.strUpName), W(l.strDownName));
}
std::string Describe(const _sLinkRegion& r);
template <class Item> std::string List(const std::vector<Item>& items) {
  std::string out = "[";
  for (const Item& item : items) {
    out += Describe(item) + ";";
  }
  return out + "]";
}
std::string Describe(const _sZK& z) {
  return Join(W(z.strName), z.dTopGC, z.dX, z.dY, List(z.vecDC));
}
std::string Describe(const _sLinkRegion& r) {
  return Join(r.nType, r.bNamed, W(r.strName), r.nBegin1, r.nEnd1, r.nBegin2, r.nEnd2,
              P(r.ptTop[0]), P(r.ptTop[1]), P(r.ptBot[0]), P(r.ptBot[1]), List(r.vecChild));
}

_sZKDC Stratum(const wchar_t* name, double top, double bot, double aux = 0.0, bool flag = false) {
  _sZKDC dc;
  dc.strName = name;
  dc.dTopGC = top;
  dc.dBotGC = bot;
  dc.dAux = aux;
  dc.bAux = flag;
  return dc;
}

// A region whose every member differs from the defaults and from every other region's.
_sLinkRegion Region(int32_t seed, std::vector<_sLinkRegion> children = {}) {
  _sLinkRegion r;
  r.nType = seed % 3;
  r.bNamed = true;
  r.strName = std::to_wstring(seed);
  int32_t* ranges[] = {&r.nBegin1, &r.nEnd1, &r.nBegin2, &r.nEnd2};
  for (int i = 0; i < 4; ++i) {
    *ranges[i] = seed + i;
  }
  for (int i = 0; i < 2; ++i) {
    r.ptTop[i] = CXk3DPoint(seed + 60.0 * i, 0.5 + i, 100.0 - seed + i);
    r.ptBot[i] = CXk3DPoint(seed + 60.0 * i, 2.5 + i, 90.0 - seed + i);
  }
  r.vecChild = std::move(children);
  return r;
}

_sLinkLine Line(double x1, double y1, double z1, double x2, double y2, double z2) {
  _sLinkLine l;
  l.pt1 = CXk3DPoint(x1, y1, z1);
  l.pt2 = CXk3DPoint(x2, y2, z2);
  return l;
}

// Copy and move construction and assignment into a record holding `other`, and self-assignment,
// each end with every member of `sample`, and leave the sample as it was.
template <class Record> void ExpectCopiesAndMoves(Record sample, const Record& other) {
  const std::string want = Describe(sample);
  ASSERT_NE(want, Describe(other));
  Record copy(sample);
  Record assigned(other);
  EXPECT_EQ(&(assigned = sample), &assigned);
  EXPECT_EQ(Describe(assigned), want);
  Record& alias = assigned;
  EXPECT_EQ(&(assigned = alias), &assigned);
  Record moveAssigned(other);
  EXPECT_EQ(&(moveAssigned = Record(std::move(copy))), &moveAssigned);
  for (const Record* r : {&sample, &assigned, &moveAssigned}) {
    EXPECT_EQ(Describe(*r), want);
  }
}

TEST(RecordsTest, DefaultsAreEmptyZeroAndMinusOneForRanges) {
  EXPECT_EQ(Describe(_sZKDC()), " 0 0 0 0 ");
  EXPECT_EQ(Describe(_sZK()), " 0 0 0 [] ");
  EXPECT_EQ(Describe(_sLinkRegion()), "0 0  -1 -1 -1 -1 0 0 0  0 0 0  0 0 0  0 0 0  [] ");
  EXPECT_EQ(Describe(_sLinkLine()), "0 0 0  0 0 0  0 0   ");
}

TEST(RecordsTest, CopiesAndMovesKeepEveryMemberOfEveryLevel) {
  ExpectCopiesAndMoves(Stratum(L"Q4ml", 12.5, -3.25, 7.75, true), Stratum(L"x", 1.0, 2.0, 3.0));
  _sZK zk;
  zk.strName = L"ZK-07";
  zk.dTopGC = 101.5;
  zk.dX = 3500123.25;
  zk.dY = 412345.5;
  zk.vecDC = {Stratum(L"A", 101.5, 95.0, 1.0, true), Stratum(L"B", 95.0, 90.0),
              Stratum(L"C", 90.0, 80.0, -2.0, true)};
  for (std::size_t n : {0u, 2u, 5u}) { // over fewer and more strata
    _sZK target;
    target.vecDC.assign(n, Stratum(L"old", 1.0, 0.0, 9.0, true));
    ExpectCopiesAndMoves(zk, target);
  }
  _sLinkLine line = Line(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
  line.nType = 2;
  line.bBottom = true;
  line.strUpName = L"up";
  line.strDownName = L"down";
  ExpectCopiesAndMoves(line, _sLinkLine());
  // Four levels of an uneven tree, over a tree of another shape.
  ExpectCopiesAndMoves(Region(1, {Region(11, {Region(111, {Region(1111)}), Region(112)}),
                                  Region(12, {Region(121)})}),
                       Region(7, {Region(71), Region(72, {Region(721), Region(722)})}));
}

// The collar is the starting value; a bottom that is not strictly greater replaces it, so NaN
// replaces the running value and is replaced by the next bottom, whatever it is.
TEST(RecordsTest, GetBotGCIsTheLowestOfCollarAndBottoms) {
  const struct {
    double collar;
    std::vector<double> bottoms;
    double expected; // NaN: the result is not a number
  } cases[] = {
      {100.0, {}, 100.0},          {100.0, {80.0, 95.0, 90.0}, 80.0}, {10.0, {20.0, 30.0}, 10.0},
      {-5.0, {-5.0}, -5.0},        {100.0, {90.0, kNaN, 95.0}, 95.0}, {100.0, {kNaN, 120.0}, 120.0},
      {100.0, {90.0, kNaN}, kNaN}, {kNaN, {50.0, 60.0}, 50.0},        {kNaN, {}, kNaN}};
  for (const auto& c : cases) {
    _sZK zk;
    zk.dTopGC = c.collar;
    for (double bottom : c.bottoms) {
      zk.vecDC.push_back(Stratum(L"A", -1000.0, bottom)); // tops play no part
    }
    EXPECT_EQ(Join(zk.GetBotGC()), Join(c.expected)) << Describe(zk);
  }
}

TEST(RecordsTest, IsSameComparesEndsInOrderWithinTolerance) {
  const _sLinkLine base = Line(10.0, 20.0, 95.0, 70.0, 20.0, 96.0);
  _sLinkLine named = base; // names, type and flag play no part
  named.strUpName = L"A";
  named.bBottom = true;
  named.nType = 2;
  EXPECT_TRUE(base.IsSame(named) && named.IsSame(base));
  EXPECT_FALSE(base.IsSame(Line(70.0, 20.0, 96.0, 10.0, 20.0, 95.0))); // reversed
  // Each of the six coordinates moved alone: 5e-6 is within the tolerance, 2e-5 is not.
  for (int k = 0; k < 6; ++k) {
    for (double delta : {5e-6, -2e-5}) {
      _sLinkLine moved = base;
      double* coords[] = {&moved.pt1.x, &moved.pt1.y, &moved.pt1.z,
                          &moved.pt2.x, &moved.pt2.y, &moved.pt2.z};
      *coords[k] += delta;
      EXPECT_EQ(base.IsSame(moved), delta > 0) << "coordinate " << k << " moved by " << delta;
      EXPECT_EQ(moved.IsSame(base), delta > 0) << "coordinate " << k << " moved by " << delta;
    }
  }
  // Below magnitude 1 the difference must also be small relative to the value; a coordinate that
  // is not a number matches nothing, not even itself.
  EXPECT_FALSE(Line(0.3, 0, 0, 1, 1, 1).IsSame(Line(0.300005, 0, 0, 1, 1, 1)));
  const _sLinkLine undefined = Line(1.0, 2.0, 3.0, 4.0, 5.0, kNaN);
  EXPECT_FALSE(undefined.IsSame(undefined));
}

} // namespace
