// Merging coinciding section lines so that one line names the regions on both sides, ordering
// the lines from the highest down, and dropping the highest.
#include "lines/Lines.h"

#include <XKLinkDc/XKLinkDc.h>
#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using DataType::_sLinkLine;
using Lines = std::vector<_sLinkLine>;

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

// Three stacked regions A, B, C, each giving its top and then its bottom line.
Lines StackedABC() {
  return {Line(100.0, 102.0, L"A", false), Line(95.0, 96.0, L"A", true),
          Line(95.0, 96.0, L"B", false),   Line(90.0, 91.0, L"B", true),
          Line(90.0, 91.0, L"C", false),   Line(80.0, 85.0, L"C", true)};
}

TEST(MergeSameLinesTest, StackedRegionsShareTheirBoundaries) {
  auto lines = StackedABC();
  xkl::MergeSameLines(lines);
  EXPECT_EQ(Names(lines), L"A/ A/B B/C C/ ");
  EXPECT_EQ(lines[2].pt1.z, 90.0);
  for (const auto& l : lines) {
    EXPECT_FALSE(l.bBottom);
  }
}

TEST(MergeSameLinesTest, UpperRegionsBottomLineSurvivesWhicheverComesLater) {
  Lines lowerFirst = {Line(95.0, 96.0, L"B", false), Line(90.0, 91.0, L"B", true),
                      Line(100.0, 102.0, L"A", false), Line(95.0, 96.0, L"A", true)};
  xkl::MergeSameLines(lowerFirst);
  EXPECT_EQ(Names(lowerFirst), L"B/ A/ A/B ");
  // A top line that meets an earlier line hands its name to it, replacing what it held.
  Lines lines = {Line(95.0, 96.0, L"A", false), Line(95.0, 96.0, L"B", false)};
  lines[0].strDownName = L"old";
  xkl::MergeSameLines(lines);
  EXPECT_EQ(Names(lines), L"A/B ");
}

TEST(MergeSameLinesTest, BottomLineAbsorbsTwoEarlierOnesAndKeepsTheFrontName) {
  Lines lines = {Line(95.0, 96.0, L"X", false), Line(95.0, 96.0, L"Y", false),
                 Line(95.0, 96.0, L"Z", true)};
  xkl::MergeSameLines(lines);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].strUpName, L"Z");
  EXPECT_EQ(lines[0].strDownName, L"X");
  EXPECT_FALSE(lines[0].bBottom);
}

TEST(MergeSameLinesTest, SamenessFollowsTheToleranceAndTheDirection) {
  Lines near = {Line(95.0, 96.0, L"A", true), Line(95.000004, 95.999996, L"B", false)};
  xkl::MergeSameLines(near);
  EXPECT_EQ(Names(near), L"A/B ");
  // Below magnitude 1 the difference must also be small relative to the values.
  Lines small = {Line(CXk3DPoint(0.3, 0.0, 95.0), CXk3DPoint(60.0, 0.0, 96.0), L"A", true),
                 Line(CXk3DPoint(0.300005, 0.0, 95.0), CXk3DPoint(60.0, 0.0, 96.0), L"B", false)};
  xkl::MergeSameLines(small);
  EXPECT_EQ(small.size(), 2u);
  Lines larger = {Line(CXk3DPoint(0.7, 0.0, 95.0), CXk3DPoint(60.0, 0.0, 96.0), L"A", true),
                  Line(CXk3DPoint(0.700005, 0.0, 95.0), CXk3DPoint(60.0, 0.0, 96.0), L"B", false)};
  xkl::MergeSameLines(larger);
  EXPECT_EQ(larger.size(), 1u);
  Lines reversed = {Line(CXk3DPoint(0.0, 0.0, 95.0), CXk3DPoint(60.0, 0.0, 96.0), L"A", true),
                    Line(CXk3DPoint(60.0, 0.0, 96.0), CXk3DPoint(0.0, 0.0, 95.0), L"B", false)};
  xkl::MergeSameLines(reversed);
  EXPECT_EQ(Names(reversed), L"A/ B/ ");
  EXPECT_FALSE(reversed[0].bBottom);
}

TEST(IsLineAboveTest, SameStartOnHoleOneComparesOnlyTheStarts) {
  const auto a = Line(90.0, 99.0, L"a", false);
  const auto b = Line(90.0, 80.0, L"b", false);
  EXPECT_FALSE(xkl::IsLineAbove(a, b)); // equal starts: the ends are not looked at
  EXPECT_FALSE(xkl::IsLineAbove(b, a));
  const auto c = Line(CXk3DPoint(0.000009, 0.0, 90.000001), CXk3DPoint(60.0, 0.0, 70.0), L"c",
                      false); // same plan position within tolerance, higher without it
  EXPECT_TRUE(xkl::IsLineAbove(c, a));
  EXPECT_FALSE(xkl::IsLineAbove(a, c));
}

TEST(IsLineAboveTest, OtherwiseSameEndOnHoleTwoThenTheSumOfElevations) {
  // A lens tip 30 m out against a line from hole 1: both end on hole 2.
  const auto tip = Line(CXk3DPoint(30.0, 0.0, 95.0), CXk3DPoint(60.0, 0.0, 90.0), L"t", false);
  const auto low = Line(80.0, 96.0, L"l", false);
  EXPECT_TRUE(xkl::IsLineAbove(low, tip));
  EXPECT_FALSE(xkl::IsLineAbove(tip, low));
  // Neither end shared: the greater sum comes first (85 + 100 against 90 + 90).
  const auto p = Line(CXk3DPoint(60.0, 0.0, 85.0), CXk3DPoint(30.0, 0.0, 100.0), L"p", false);
  const auto q = Line(CXk3DPoint(0.0, 0.0, 90.0), CXk3DPoint(45.0, 0.0, 90.0), L"q", false);
  EXPECT_TRUE(xkl::IsLineAbove(p, q));
  EXPECT_FALSE(xkl::IsLineAbove(q, p));
}

TEST(FinishLinesTest, WorkedStackDropsTheCollarLine) {
  auto lines = StackedABC();
  std::reverse(lines.begin(), lines.end()); // the sort, not the input order, decides
  xkl::FinishLines(lines);
  EXPECT_EQ(Names(lines), L"A/B B/C C/ ");
  EXPECT_EQ(lines[0].pt1.z, 95.0);
  EXPECT_EQ(lines[2].pt1.z, 80.0);
}

TEST(FinishLinesTest, SingleRemainingLineLeavesNothing) {
  Lines one = {Line(80.0, 85.0, L"C", true)};
  xkl::FinishLines(one);
  EXPECT_TRUE(one.empty());
  Lines merged = {Line(80.0, 85.0, L"C", false), Line(80.0, 85.0, L"D", true)};
  xkl::FinishLines(merged);
  EXPECT_TRUE(merged.empty());
}

TEST(FinishLinesTest, UnorderedLinesMayEndInEitherOrder) {
  // Two lines from the same point of hole 1: neither is above the other.
  Lines lines = {Line(100.0, 102.0, L"top", false), Line(90.0, 96.0, L"up", true),
                 Line(90.0, 80.0, L"down", true), Line(70.0, 75.0, L"low", true)};
  xkl::FinishLines(lines);
  ASSERT_EQ(lines.size(), 3u);
  const std::wstring names = Names(lines);
  EXPECT_TRUE(names == L"up/ down/ low/ " || names == L"down/ up/ low/ ") << names;
  for (const auto& l : lines) {
    EXPECT_FALSE(l.bBottom);
  }
}

} // namespace
