// Section lines from a correlation tree: which regions are drawn, the two lines of each, and what
// LinkDcLine hands back to the host.
#include "correlation/CorrelationTestSupport.h"
#include "lines/Lines.h"

#include <XKLinkDc/XKLinkDc.h>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using DataType::_sLinkLine;
using DataType::_sLinkRegion;

_sLinkRegion Node(const std::wstring& name, int32_t type,
                  const std::vector<_sLinkRegion>& children = {}) {
  _sLinkRegion r;
  r.strName = name;
  r.nType = type;
  r.vecChild = children;
  return r;
}

_sLinkLine Line(double z1, double z2, const std::wstring& up, bool bottom) {
  _sLinkLine l;
  l.pt1 = CXk3DPoint(0.0, 0.0, z1);
  l.pt2 = CXk3DPoint(60.0, 0.0, z2);
  l.strUpName = up;
  l.bBottom = bottom;
  return l;
}

TEST(IsLeafRegionTest, NamedChildlessOrOnlyClosedChildren) {
  EXPECT_TRUE(xkl::IsLeafRegion(Node(L"A", 0, {Node(L"", 0)})));
  EXPECT_TRUE(xkl::IsLeafRegion(Node(L"", 0)));
  EXPECT_TRUE(xkl::IsLeafRegion(Node(L"", 0, {Node(L"B", 2), Node(L"C", 1)})));
  EXPECT_FALSE(xkl::IsLeafRegion(Node(L"", 0, {Node(L"B", 2), Node(L"A", 0)})));
  EXPECT_FALSE(xkl::IsLeafRegion(Node(L"", 0, {Node(L"A", 0), Node(L"B", 2)})));
}

TEST(CollectLeafRegionsTest, PreOrderRegionBeforeItsSubRegions) {
  const auto root = Node(L"", 0,
                         {Node(L"A", 0, {Node(L"L", 1)}),
                          Node(L"", 0, {Node(L"W", 2), Node(L"", 0, {Node(L"", 0)})})});
  std::vector<const _sLinkRegion*> leaves;
  xkl::CollectLeafRegions(root, leaves);
  std::vector<const _sLinkRegion*> expected = {&root.vecChild[0], &root.vecChild[0].vecChild[0],
                                               &root.vecChild[1].vecChild[0],
                                               &root.vecChild[1].vecChild[1].vecChild[0]};
  EXPECT_EQ(leaves, expected);
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

TEST(AppendLeafLinesTest, TopThenBottomLineOfEveryLeaf) {
  const auto root =
      Node(L"", 0, {Box(L"A", 0, 100.0, 102.0, 95.0, 96.0), Box(L"B", 2, 95.0, 96.0, 90.0, 96.0)});
  std::vector<_sLinkLine> lines(1, Line(50.0, 50.0, L"host", false));
  xkl::AppendLeafLines(root, lines);
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[0].strUpName, L"host");
  const _sLinkLine expected[] = {Line(100.0, 102.0, L"A", false), Line(95.0, 96.0, L"A", true),
                                 Line(95.0, 96.0, L"B", false), Line(90.0, 96.0, L"B", true)};
  for (std::size_t i = 0; i < 4; ++i) {
    const auto& l = lines[i + 1];
    EXPECT_TRUE(l.IsSame(expected[i])) << i; // from hole 1's side to hole 2's
    EXPECT_EQ(l.strUpName, expected[i].strUpName) << i;
    EXPECT_EQ(l.strDownName, L"") << i;
    EXPECT_EQ(l.nType, i < 2 ? 0 : 2) << i;
    EXPECT_EQ(l.bBottom, expected[i].bBottom) << i;
  }
}

TEST(AppendLeafLinesTest, RegionWhoseTopIsItsBottomMergesIntoOneLine) {
  std::vector<_sLinkLine> lines;
  xkl::AppendLeafLines(Box(L"Z", 2, 92.0, 92.0, 92.0, 92.0), lines);
  ASSERT_EQ(lines.size(), 2u);
  xkl::MergeSameLines(lines);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].strUpName, L"Z");
  EXPECT_EQ(lines[0].strDownName, L"Z");
  EXPECT_FALSE(lines[0].bBottom);
}

TEST(LinkDcLineTest, RootWithoutSubRegionsGivesOnlyItsBottomLine) {
  // One code on each side: nothing to split or close.
  std::vector<_sLinkLine> lines;
  LinkDcLine(xkltest::MakeBorehole(0.0, 0.0, 100.0, {{L"A", 97.0}, {L"A", 93.0}, {L"A", 90.0}}),
             xkltest::MakeBorehole(40.0, 0.0, 101.0, {{L"A", 92.0}}), lines);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].pt1.z, 90.0);
  EXPECT_EQ(lines[0].pt2.z, 92.0);
  EXPECT_EQ(lines[0].pt2.x, 40.0);
  EXPECT_EQ(lines[0].strUpName, L"");
  EXPECT_EQ(lines[0].strDownName, L"");
  EXPECT_FALSE(lines[0].bBottom);
}

TEST(LinkDcLineTest, LinesAlreadyInTheVectorTakePartAndLoseTheirFlag) {
  // K coincides with the bottom of C and is absorbed by it; Deep, a bottom line, survives.
  std::vector<_sLinkLine> lines = {Line(80.0, 85.0, L"K", false), Line(70.0, 70.0, L"Deep", true)};
  LinkDcLine(xkltest::MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"C", 80.0}}),
             xkltest::MakeBorehole(60.0, 0.0, 102.0, {{L"A", 96.0}, {L"C", 85.0}}), lines);
  ASSERT_EQ(lines.size(), 4u);
  const wchar_t* up[] = {L"A", L"B", L"C", L"Deep"};
  const wchar_t* down[] = {L"B", L"C", L"K", L""};
  const double z1[] = {95.0, 90.0, 80.0, 70.0};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(lines[i].strUpName, up[i]) << i;
    EXPECT_EQ(lines[i].strDownName, down[i]) << i;
    EXPECT_EQ(lines[i].pt1.z, z1[i]) << i;
    EXPECT_FALSE(lines[i].bBottom) << i;
  }
}

} // namespace
