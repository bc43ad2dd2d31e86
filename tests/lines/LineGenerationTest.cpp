// Section lines from a correlation tree: which regions are drawn, the two lines of each, merging
// coinciding lines so that one line names the regions on both sides, ordering the lines from the
// highest down and dropping the highest, and what LinkDcLine hands back to the host.
#include "correlation/CorrelationTestSupport.h"
#include "lines/Lines.h"

#include <XKLinkDc/XKLinkDc.h>
#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

using DataType::_sLinkLine;
using DataType::_sLinkRegion;
using Lines = std::vector<_sLinkLine>;

_sLinkRegion Node(const std::wstring& name, int32_t type,
                  const std::vector<_sLinkRegion>& children = {}) {
  _sLinkRegion r;
  r.strName = name;
  r.nType = type;
  r.vecChild = children;
  return r;
}

_sLinkLine Line(CXk3DPoint p1, CXk3DPoint p2, const std::wstring& up, bool bottom) {
  _sLinkLine l;
  l.pt1 = p1;
  l.pt2 = p2;
  l.strUpName = up;
  l.bBottom = bottom;
  return l;
}

// A line from hole 1 at the origin to hole 2 60 m east.
_sLinkLine Line(double z1, double z2, const std::wstring& up, bool bottom) {
  return Line(CXk3DPoint(0.0, 0.0, z1), CXk3DPoint(60.0, 0.0, z2), up, bottom);
}

std::wstring Names(const Lines& lines) {
  std::wstring s;
  for (const auto& l : lines) {
    s += l.strUpName + L"/" + l.strDownName + L" ";
  }
  return s;
}

TEST(LeafRegionTest, NamedChildlessOrOnlyClosedChildrenCollectedInPreOrder) {
  EXPECT_TRUE(xkl::IsLeafRegion(Node(L"A", 0, {Node(L"", 0)})));
  EXPECT_TRUE(xkl::IsLeafRegion(Node(L"", 0)));
  EXPECT_TRUE(xkl::IsLeafRegion(Node(L"", 0, {Node(L"B", 2), Node(L"C", 1)})));
  EXPECT_FALSE(xkl::IsLeafRegion(Node(L"", 0, {Node(L"B", 2), Node(L"A", 0)})));
  EXPECT_FALSE(xkl::IsLeafRegion(Node(L"", 0, {Node(L"A", 0), Node(L"B", 2)})));
  // Collected in pre-order, a region before its sub-regions.
  const auto root = Node(L"", 0,
                         {Node(L"A", 0, {Node(L"L", 1)}),
                          Node(L"", 0, {Node(L"W", 2), Node(L"", 0, {Node(L"", 0)})})});
  std::vector<const _sLinkRegion*> leaves;
  xkl::CollectLeafRegions(root, leaves);
  const auto& c = root.vecChild;
  EXPECT_EQ(leaves, (std::vector<const _sLinkRegion*>{&c[0], &c[0].vecChild[0], &c[1].vecChild[0],
                                                      &c[1].vecChild[1].vecChild[0]}));
}

// A region between hole 1 at the origin and hole 2 60 m east, by its corner elevations.
_sLinkRegion Box(const std::wstring& name, int32_t type, double top1, double top2, double bot1,
                 double bot2) {
  auto r = Node(name, type);
  r.ptTop[0] = CXk3DPoint(0.0, 0.0, top1);
  r.ptTop[1] = CXk3DPoint(60.0, 0.0, top2);
  r.ptBot[0] = CXk3DPoint(0.0, 0.0, bot1);
  r.ptBot[1] = CXk3DPoint(60.0, 0.0, bot2);
  return r;
}

TEST(AppendLeafLinesTest, TopThenBottomLineOfEveryLeafAppended) {
  const auto root =
      Node(L"", 0, {Box(L"A", 0, 100.0, 102.0, 95.0, 96.0), Box(L"B", 2, 95.0, 96.0, 90.0, 96.0)});
  std::vector<_sLinkLine> lines(1, Line(50.0, 50.0, L"host", false));
  xkl::AppendLeafLines(root, lines);
  ASSERT_EQ(Names(lines), L"host/ A/ A/ B/ B/ ");
  const _sLinkLine expected[] = {Line(100.0, 102.0, L"A", false), Line(95.0, 96.0, L"A", true),
                                 Line(95.0, 96.0, L"B", false), Line(90.0, 96.0, L"B", true)};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_TRUE(lines[i + 1].IsSame(expected[i])) << i; // from hole 1's side to hole 2's
    EXPECT_EQ(lines[i + 1].nType, i < 2 ? 0 : 2) << i;
    EXPECT_EQ(lines[i + 1].bBottom, expected[i].bBottom) << i;
  }
  // A region whose top is its bottom: its two lines merge into one naming it on both sides.
  lines.clear();
  xkl::AppendLeafLines(Box(L"Z", 2, 92.0, 92.0, 92.0, 92.0), lines);
  ASSERT_EQ(lines.size(), 2u);
  xkl::MergeSameLines(lines);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].strUpName + lines[0].strDownName, L"ZZ");
}

TEST(LinkDcLineTest, LinesAlreadyInTheVectorTakePartAndLoseTheirFlag) {
  // K coincides with the bottom of C and is absorbed by it; Deep, a bottom line, survives.
  std::vector<_sLinkLine> lines = {Line(80.0, 85.0, L"K", false), Line(70.0, 70.0, L"Deep", true)};
  LinkDcLine(xkltest::MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"C", 80.0}}),
             xkltest::MakeBorehole(60.0, 0.0, 102.0, {{L"A", 96.0}, {L"C", 85.0}}), lines);
  ASSERT_EQ(Names(lines), L"A/B B/C C/K Deep/ ");
  const double z1[] = {95.0, 90.0, 80.0, 70.0};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(lines[i].pt1.z, z1[i]) << i;
    EXPECT_FALSE(lines[i].bBottom) << i;
  }
}

// Three stacked regions A, B, C, each giving its top and then its bottom line.
Lines StackedABC() {
  return {Line(100.0, 102.0, L"A", false), Line(95.0, 96.0, L"A", true),
          Line(95.0, 96.0, L"B", false),   Line(90.0, 91.0, L"B", true),
          Line(90.0, 91.0, L"C", false),   Line(80.0, 85.0, L"C", true)};
}

TEST(MergeSameLinesTest, CoincidingLinesNameTheRegionsOnBothSides) {
  const auto at = [](double x1, const wchar_t* up, bool bottom) {
    return Line(CXk3DPoint(x1, 0.0, 95.0), CXk3DPoint(60.0, 0.0, 96.0), up, bottom);
  };
  const struct {
    const char* what;
    Lines lines;
    const wchar_t* names;
  } cases[] = {
      {"stacked regions share their boundaries", StackedABC(), L"A/ A/B B/C C/ "},
      {"the upper region's bottom line survives when it comes later",
       {Line(95.0, 96.0, L"B", false), Line(90.0, 91.0, L"B", true),
        Line(100.0, 102.0, L"A", false), Line(95.0, 96.0, L"A", true)},
       L"B/ A/ A/B "},
      {"a bottom line absorbs two earlier ones and keeps the front name",
       {Line(95.0, 96.0, L"X", false), Line(95.0, 96.0, L"Y", false), Line(95.0, 96.0, L"Z", true)},
       L"Z/X "},
      {"within the tolerance",
       {Line(95.0, 96.0, L"A", true), Line(95.000004, 95.999996, L"B", false)},
       L"A/B "},
      {"below magnitude 1 the difference must also be small relative to the values",
       {at(0.3, L"A", true), at(0.300005, L"B", false)},
       L"A/ B/ "},
      {"the same difference at 0.7", {at(0.7, L"A", true), at(0.700005, L"B", false)}, L"A/B "},
      {"a reversed line is another line",
       {at(0.0, L"A", true),
        Line(CXk3DPoint(60.0, 0.0, 96.0), CXk3DPoint(0.0, 0.0, 95.0), L"B", false)},
       L"A/ B/ "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Lines lines = c.lines;
    xkl::MergeSameLines(lines);
    EXPECT_EQ(Names(lines), c.names);
    for (const auto& l : lines) {
      EXPECT_FALSE(l.bBottom);
    }
  }
  // A top line that meets an earlier line hands its name to it, replacing what it held.
  Lines lines = {Line(95.0, 96.0, L"A", false), Line(95.0, 96.0, L"B", false)};
  lines[0].strDownName = L"old";
  xkl::MergeSameLines(lines);
  EXPECT_EQ(Names(lines), L"A/B ");
}

TEST(IsLineAboveTest, SameStartThenSameEndThenTheSumOfElevations) {
  const auto a = Line(90.0, 99.0, L"a", false);
  const auto b = Line(90.0, 80.0, L"b", false);
  // Same plan position within the tolerance, higher without it.
  const auto c =
      Line(CXk3DPoint(0.000009, 0.0, 90.000001), CXk3DPoint(60.0, 0.0, 70.0), L"c", false);
  // A lens tip 30 m out against a line from hole 1: both end on hole 2.
  const auto tip = Line(CXk3DPoint(30.0, 0.0, 95.0), CXk3DPoint(60.0, 0.0, 90.0), L"t", false);
  const auto low = Line(80.0, 96.0, L"l", false);
  // Neither end shared: the greater sum comes first (85 + 100 against 90 + 90).
  const auto p = Line(CXk3DPoint(60.0, 0.0, 85.0), CXk3DPoint(30.0, 0.0, 100.0), L"p", false);
  const auto q = Line(CXk3DPoint(0.0, 0.0, 90.0), CXk3DPoint(45.0, 0.0, 90.0), L"q", false);
  // (upper, lower); the reverse is never above.
  const std::pair<_sLinkLine, _sLinkLine> ordered[] = {{c, a}, {low, tip}, {p, q}};
  for (const auto& [upper, lower] : ordered) {
    EXPECT_TRUE(xkl::IsLineAbove(upper, lower)) << "upper " << upper.strUpName;
    EXPECT_FALSE(xkl::IsLineAbove(lower, upper)) << "upper " << upper.strUpName;
  }
  EXPECT_FALSE(xkl::IsLineAbove(a, b)); // equal starts: the ends are not looked at
  EXPECT_FALSE(xkl::IsLineAbove(b, a));
}

TEST(FinishLinesTest, LinesRunFromTheHighestWhichIsDropped) {
  auto lines = StackedABC();
  std::reverse(lines.begin(), lines.end()); // the sort, not the input order, decides
  xkl::FinishLines(lines);
  EXPECT_EQ(Names(lines), L"A/B B/C C/ ");
  Lines one = {Line(80.0, 85.0, L"C", true)};
  xkl::FinishLines(one);
  EXPECT_TRUE(one.empty()); // a single remaining line is the highest
  // Two lines from the same point of hole 1: neither is above the other, either order will do.
  lines = {Line(100.0, 102.0, L"top", false), Line(90.0, 96.0, L"up", true),
           Line(90.0, 80.0, L"down", true), Line(70.0, 75.0, L"low", true)};
  xkl::FinishLines(lines);
  const std::wstring names = Names(lines);
  EXPECT_TRUE(names == L"up/ down/ low/ " || names == L"down/ up/ low/ ") << names;
  EXPECT_TRUE(std::none_of(lines.begin(), lines.end(), [](auto& l) { return l.bBottom; }));
}

} // namespace
