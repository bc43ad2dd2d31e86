// Checks of the reference correlation itself on small, hand-worked cases: the expected trees and
// lines below were derived by hand from the correlation rules, so that the reference can serve as
// the yardstick of the differential tests.
#include "reference/ReferenceCorrelation.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

namespace {

using DataType::_sLinkLine;
using DataType::_sLinkRegion;
using DataType::_sZK;
using DataType::_sZKDC;

struct Bed {
  const wchar_t* code;
  double top;
  double bot;
};

_sZK Hole(double x, double y, double collar, std::initializer_list<Bed> beds) {
  _sZK zk;
  zk.dX = x;
  zk.dY = y;
  zk.dTopGC = collar;
  for (const Bed& b : beds) {
    _sZKDC dc;
    dc.strName = b.code;
    dc.dTopGC = b.top;
    dc.dBotGC = b.bot;
    zk.vecDC.push_back(dc);
  }
  return zk;
}

void ExpectRange(const _sLinkRegion& r, int32_t b1, int32_t e1, int32_t b2, int32_t e2) {
  EXPECT_EQ(r.nBegin1, b1);
  EXPECT_EQ(r.nEnd1, e1);
  EXPECT_EQ(r.nBegin2, b2);
  EXPECT_EQ(r.nEnd2, e2);
}

void ExpectPoint(const CXk3DPoint& p, double x, double y, double z) {
  EXPECT_DOUBLE_EQ(p.x, x);
  EXPECT_DOUBLE_EQ(p.y, y);
  EXPECT_DOUBLE_EQ(p.z, z);
}

void ExpectLine(const _sLinkLine& l, double z1, double z2, const std::wstring& up,
                const std::wstring& down) {
  EXPECT_DOUBLE_EQ(l.pt1.z, z1);
  EXPECT_DOUBLE_EQ(l.pt2.z, z2);
  EXPECT_EQ(l.strUpName, up);
  EXPECT_EQ(l.strDownName, down);
  EXPECT_FALSE(l.bBottom);
}

_sLinkLine Line(double z1, double z2, bool bottom, const wchar_t* up) {
  _sLinkLine l;
  l.pt1.x = 0;
  l.pt1.z = z1;
  l.pt2.x = 100;
  l.pt2.z = z2;
  l.bBottom = bottom;
  l.strUpName = up;
  return l;
}

// Borehole 1 with A, B, C against borehole 2 with A, C: the typical request.
const _sZK kAbc = Hole(0, 0, 100, {{L"A", 100, 90}, {L"B", 90, 80}, {L"C", 80, 70}});
const _sZK kAc = Hole(100, 0, 100, {{L"A", 100, 95}, {L"C", 95, 85}});

TEST(ReferenceTree, CommonStrataSplitAndGapBecomesWedge) {
  _sLinkRegion root;
  reference::ReferenceLinkDc(kAbc, kAc, root);
  ExpectRange(root, 0, 3, 0, 2);
  ExpectPoint(root.ptTop[0], 0, 0, 100);
  ExpectPoint(root.ptBot[1], 100, 0, 85);
  ASSERT_EQ(root.vecChild.size(), 3u);
  const _sLinkRegion& a = root.vecChild[0];
  const _sLinkRegion& c = root.vecChild[1];
  const _sLinkRegion& b = root.vecChild[2];
  EXPECT_EQ(a.strName, L"A");
  EXPECT_TRUE(a.bNamed);
  EXPECT_EQ(a.nType, 0);
  ExpectRange(a, 0, 1, 0, 1);
  ExpectPoint(a.ptBot[0], 0, 0, 90);
  ExpectPoint(a.ptBot[1], 100, 0, 95);
  EXPECT_EQ(c.strName, L"C");
  ExpectRange(c, 2, 3, 1, 2);
  ExpectPoint(c.ptBot[0], 0, 0, 70);
  ExpectPoint(c.ptBot[1], 100, 0, 85);
  // B thins out at borehole 2, at the top of C there.
  EXPECT_EQ(b.strName, L"B");
  EXPECT_EQ(b.nType, 2);
  EXPECT_FALSE(b.bNamed);
  ExpectRange(b, 1, 2, 1, 1);
  ExpectPoint(b.ptTop[0], 0, 0, 90);
  ExpectPoint(b.ptBot[0], 0, 0, 80);
  ExpectPoint(b.ptTop[1], 100, 0, 95);
  ExpectPoint(b.ptBot[1], 100, 0, 95);
  for (const _sLinkRegion& child : root.vecChild) {
    EXPECT_TRUE(child.vecChild.empty());
  }
}

TEST(ReferenceTree, NothingBelowTheDeepestCommonStratumOfTheRoot) {
  _sZK abcd = kAbc;
  abcd.vecDC.push_back(_sZKDC());
  abcd.vecDC.back().strName = L"D";
  abcd.vecDC.back().dTopGC = 70;
  abcd.vecDC.back().dBotGC = 60;
  _sLinkRegion root;
  reference::ReferenceLinkDc(abcd, kAc, root);
  ASSERT_EQ(root.vecChild.size(), 3u);
  for (const _sLinkRegion& child : root.vecChild) {
    EXPECT_NE(child.strName, L"D");
  }
  // C now ends at the top of D.
  ExpectPoint(root.vecChild[1].ptBot[0], 0, 0, 70);
  ExpectPoint(root.ptBot[0], 0, 0, 60);
}

TEST(ReferenceTree, SingleCodeOnEachSideLeavesTheRootAlone) {
  const _sZK a = Hole(0, 0, 10, {{L"A", 10, 5}, {L"A", 5, 2}, {L"A", 2, 0}});
  const _sZK b = Hole(50, 0, 12, {{L"B", 11, 1}});
  _sLinkRegion root;
  reference::ReferenceLinkDc(a, b, root);
  EXPECT_TRUE(root.vecChild.empty());
  ExpectPoint(root.ptTop[1], 50, 0, 12); // collar, not the top of the first stratum
  ExpectPoint(root.ptBot[1], 50, 0, 1);
  std::vector<_sLinkLine> lines;
  reference::ReferenceLinkDcLine(a, b, lines);
  ASSERT_EQ(lines.size(), 1u); // the collar line is removed
  ExpectLine(lines[0], 0, 1, L"", L"");
}

TEST(ReferenceTree, UnmatchedStrataInterleaveByCodeUnits) {
  const _sZK a = Hole(0, 0, 10, {{L"1", 10, 8}, {L"3", 8, 6}});
  const _sZK b = Hole(40, 0, 10, {{L"2", 10, 7}});
  _sLinkRegion root;
  reference::ReferenceLinkDc(a, b, root);
  ASSERT_EQ(root.vecChild.size(), 3u);
  EXPECT_EQ(root.vecChild[0].strName, L"1");
  ExpectRange(root.vecChild[0], 0, 1, 0, 0);
  ExpectPoint(root.vecChild[0].ptBot[1], 40, 0, 10);
  EXPECT_EQ(root.vecChild[1].strName, L"2");
  ExpectRange(root.vecChild[1], 1, 1, 0, 1);
  ExpectPoint(root.vecChild[1].ptTop[0], 0, 0, 8);
  EXPECT_EQ(root.vecChild[2].strName, L"3");
  ExpectRange(root.vecChild[2], 1, 2, 1, 1);
  ExpectPoint(root.vecChild[2].ptTop[1], 40, 0, 7); // the region's end boundary on borehole 2

  // "10" sorts before "9"; equal codes would put borehole 1 first.
  const _sZK nine = Hole(0, 0, 10, {{L"9", 10, 8}, {L"X", 8, 6}});
  const _sZK ten = Hole(40, 0, 10, {{L"10", 10, 7}, {L"Y", 7, 5}});
  _sLinkRegion root2;
  reference::ReferenceLinkDc(nine, ten, root2);
  ASSERT_EQ(root2.vecChild.size(), 4u);
  EXPECT_EQ(root2.vecChild[0].strName, L"10");
  EXPECT_EQ(root2.vecChild[1].strName, L"9");
}

TEST(ReferenceTree, EmptyBoreholeHasZeroDepthAtItsCollar) {
  const _sZK a = Hole(0, 0, 100, {{L"A", 100, 90}, {L"B", 90, 80}});
  const _sZK none = Hole(30, 40, 95, {});
  _sLinkRegion root;
  reference::ReferenceLinkDc(a, none, root);
  ExpectRange(root, 0, 2, 0, 0);
  ExpectPoint(root.ptBot[1], 30, 40, 95);
  ASSERT_EQ(root.vecChild.size(), 2u);
  for (const _sLinkRegion& w : root.vecChild) {
    EXPECT_EQ(w.nType, 2);
    ExpectPoint(w.ptTop[1], 30, 40, 95);
    ExpectPoint(w.ptBot[1], 30, 40, 95);
  }
  _sLinkRegion both;
  reference::ReferenceLinkDc(none, none, both);
  EXPECT_TRUE(both.vecChild.empty());
  std::vector<_sLinkLine> lines;
  reference::ReferenceLinkDcLine(none, none, lines);
  EXPECT_TRUE(lines.empty()); // top and bottom coincide, merge, and the one line is removed
}

TEST(ReferenceCrossing, EqualKeysDropTheLaterPair) {
  const _sZK a = Hole(0, 0, 100, {{L"A", 100, 90}, {L"B", 90, 80}});
  const _sZK b = Hole(100, 0, 100, {{L"B", 100, 90}, {L"A", 90, 80}});
  _sLinkRegion root;
  reference::ReferenceLinkDc(a, b, root);
  ASSERT_EQ(root.vecChild.size(), 2u);
  EXPECT_EQ(root.vecChild[0].strName, L"A");
  ExpectRange(root.vecChild[0], 0, 1, 1, 2);
  // The top gap holds B of borehole 2 only; B of borehole 1 lies below the last common stratum.
  EXPECT_EQ(root.vecChild[1].strName, L"B");
  EXPECT_EQ(root.vecChild[1].nType, 2);
  ExpectRange(root.vecChild[1], 0, 0, 0, 1);
}

TEST(ReferenceCrossing, DroppedPairKeepsSweepingAndIsReadmittedLater) {
  // Mid-elevation differences: A 9, B 2, C 11.5. A is dropped by B, C by the dropped A; C shares
  // no stratum with B and crosses no kept pair, so it comes back.
  const _sZK a = Hole(0, 0, 100, {{L"A", 100, 90}, {L"B", 90, 80}, {L"C", 80, 70}});
  const _sZK b =
      Hole(100, 0, 88, {{L"B", 87.25, 86.75}, {L"C", 86.75, 86.25}, {L"A", 86.25, 85.75}});
  _sLinkRegion root;
  reference::ReferenceLinkDc(a, b, root);
  ASSERT_GE(root.vecChild.size(), 2u);
  EXPECT_EQ(root.vecChild[0].strName, L"B");
  ExpectRange(root.vecChild[0], 1, 2, 0, 1);
  EXPECT_EQ(root.vecChild[1].strName, L"C");
  ExpectRange(root.vecChild[1], 2, 3, 1, 2);
  for (std::size_t k = 2; k < root.vecChild.size(); ++k) {
    EXPECT_NE(root.vecChild[k].nType, 0);
  }
}

TEST(ReferenceChain, RepeatedCodeMakesOneEnvelope) {
  const _sZK a = Hole(0, 0, 100, {{L"A", 100, 90}});
  const _sZK b = Hole(100, 0, 100, {{L"A", 100, 95}, {L"X", 95, 92}, {L"A", 92, 80}});
  _sLinkRegion root;
  reference::ReferenceLinkDc(a, b, root);
  ASSERT_EQ(root.vecChild.size(), 1u);
  const _sLinkRegion& env = root.vecChild[0];
  ExpectRange(env, 0, 1, 0, 3);
  // X becomes a lens of borehole 2, which keeps its own corners in element 0.
  ASSERT_EQ(env.vecChild.size(), 1u);
  const _sLinkRegion& lens = env.vecChild[0];
  EXPECT_EQ(lens.nType, 1);
  EXPECT_EQ(lens.strName, L"X");
  ExpectRange(lens, -1, -1, 1, 2);
  ExpectPoint(lens.ptTop[0], 100, 0, 95);
  ExpectPoint(lens.ptBot[0], 100, 0, 92);
  ExpectPoint(lens.ptTop[1], 55, 0, 93.5); // 45 % of the way back towards borehole 1
  ExpectPoint(lens.ptBot[1], 55, 0, 93.5);
}

TEST(ReferenceChain, CodeTwiceInEachBoreholeChainsAcrossTheCrossing) {
  const _sZK a = Hole(0, 0, 100,
                      {{L"J", 100, 99},
                       {L"K", 99, 98},
                       {L"L", 98, 97},
                       {L"A", 97, 96},
                       {L"M", 96, 95},
                       {L"N", 95, 94},
                       {L"O", 94, 93},
                       {L"A", 93, 92}});
  const _sZK b = Hole(100, 0, 100,
                      {{L"B", 100, 99},
                       {L"C", 99, 98},
                       {L"D", 98, 97},
                       {L"E", 97, 96},
                       {L"F", 96, 95},
                       {L"A", 95, 94},
                       {L"G", 94, 93},
                       {L"H", 93, 92},
                       {L"I", 92, 91},
                       {L"A", 91, 90}});
  _sLinkRegion root;
  reference::ReferenceLinkDc(a, b, root);
  ASSERT_GE(root.vecChild.size(), 2u);
  EXPECT_EQ(root.vecChild[0].strName, L"A");
  ExpectRange(root.vecChild[0], 3, 8, 5, 10);
  // The top gap (J, K, L against B to F) closes into wedges; by code order B comes first.
  ASSERT_EQ(root.vecChild.size(), 9u);
  EXPECT_EQ(root.vecChild[1].strName, L"B");
  EXPECT_EQ(root.vecChild[1].nType, 2);
  ExpectRange(root.vecChild[1], 0, 0, 0, 1);
}

TEST(ReferenceLens, TipReachesFortyFivePercentOrStopsShortOfTheEnvelope) {
  const _sZK a = Hole(0, 0, 100, {{L"A", 100, 90}, {L"B", 90, 80}, {L"A", 80, 70}});
  const _sZK flat = Hole(100, 0, 100, {{L"A", 100, 70}});
  _sLinkRegion root;
  reference::ReferenceLinkDc(a, flat, root);
  ASSERT_EQ(root.vecChild.size(), 1u);
  ASSERT_EQ(root.vecChild[0].vecChild.size(), 1u);
  const _sLinkRegion& lens = root.vecChild[0].vecChild[0];
  ExpectRange(lens, 1, 2, -1, -1);
  ExpectPoint(lens.ptTop[0], 0, 0, 90);
  ExpectPoint(lens.ptBot[0], 0, 0, 80);
  ExpectPoint(lens.ptTop[1], 45, 0, 85);

  // The top of the envelope falls through the lens's mid elevation at distance 10: tip at 6.
  const _sZK falling = Hole(100, 0, -50, {{L"A", -50, -60}});
  _sLinkRegion root2;
  reference::ReferenceLinkDc(a, falling, root2);
  ASSERT_EQ(root2.vecChild.size(), 1u);
  ASSERT_EQ(root2.vecChild[0].vecChild.size(), 1u);
  EXPECT_NEAR(root2.vecChild[0].vecChild[0].ptTop[1].x, 6.0, 1e-12);

  // The bottom, crossing at 5 within the shortened probe, has the last word: tip at 3.
  const _sZK crossing = Hole(100, 0, -50, {{L"A", -50, 370}});
  _sLinkRegion root3;
  reference::ReferenceLinkDc(a, crossing, root3);
  ASSERT_EQ(root3.vecChild.size(), 1u);
  ASSERT_EQ(root3.vecChild[0].vecChild.size(), 1u);
  EXPECT_NEAR(root3.vecChild[0].vecChild[0].ptTop[1].x, 3.0, 1e-12);
  EXPECT_DOUBLE_EQ(root3.vecChild[0].vecChild[0].ptTop[1].z, 85.0);
}

TEST(ReferenceNamedRegion, InnerSplitLeavesTheTrailingEnvelopeStratumOut) {
  // Sub-region A over A, B, X, A (borehole 1) and A, B, A (borehole 2): B is split out, the top
  // gap vanishes because the leading A is skipped, and the bottom gap holds X only.
  const _sZK a = Hole(0, 0, 100, {{L"A", 100, 90}, {L"B", 90, 80}, {L"X", 80, 70}, {L"A", 70, 60}});
  const _sZK b = Hole(100, 0, 120, {{L"A", 120, 110}, {L"B", 110, 100}, {L"A", 100, 90}});
  _sLinkRegion root;
  reference::ReferenceLinkDc(a, b, root);
  ASSERT_EQ(root.vecChild.size(), 1u);
  const _sLinkRegion& env = root.vecChild[0];
  ExpectRange(env, 0, 4, 0, 3);
  ASSERT_EQ(env.vecChild.size(), 2u);
  EXPECT_EQ(env.vecChild[0].strName, L"B");
  ExpectRange(env.vecChild[0], 1, 2, 1, 2);
  const _sLinkRegion& x = env.vecChild[1];
  EXPECT_EQ(x.nType, 1);
  EXPECT_EQ(x.strName, L"X");
  ExpectRange(x, 2, 3, -1, -1);
  ExpectPoint(x.ptTop[1], 45, 0, 75);
}

TEST(ReferenceFusing, LastPairOfCandidatesDecidesNotTheThickest) {
  // A is by far the thickest code, but of the candidates A, B, C only B against C counts: C wins.
  const _sZK a = Hole(0, 0, 100,
                      {{L"A", 100, 80},
                       {L"B", 80, 79},
                       {L"C", 79, 76},
                       {L"A", 76, 56},
                       {L"B", 56, 55},
                       {L"C", 55, 52}});
  const _sZK b = Hole(100, 0, 100, {{L"X", 100, 50}});
  _sLinkRegion root;
  reference::ReferenceLinkDc(a, b, root);
  ASSERT_EQ(root.vecChild.size(), 4u);
  ExpectRange(root.vecChild[0], 0, 1, 0, 0);
  ExpectRange(root.vecChild[1], 1, 2, 0, 0);
  EXPECT_EQ(root.vecChild[2].strName, L"C");
  EXPECT_TRUE(root.vecChild[2].bNamed);
  ExpectRange(root.vecChild[2], 2, 6, 0, 0);
  EXPECT_EQ(root.vecChild[3].strName, L"X");
}

TEST(ReferenceFusing, EnvelopeCodeBeforeTheSecondOccurrenceBlocksFusing) {
  const _sZK one = Hole(100, 0, 100, {{L"A", 100, 50}});
  // B, A, B inside the envelope A: the A between makes B ineligible; two separate lenses.
  const _sZK blocked = Hole(
      0, 0, 100, {{L"A", 100, 90}, {L"B", 90, 85}, {L"A", 85, 80}, {L"B", 80, 75}, {L"A", 75, 70}});
  _sLinkRegion root;
  reference::ReferenceLinkDc(blocked, one, root);
  ASSERT_EQ(root.vecChild.size(), 1u);
  ASSERT_EQ(root.vecChild[0].vecChild.size(), 2u);
  ExpectRange(root.vecChild[0].vecChild[0], 1, 2, -1, -1);
  ExpectRange(root.vecChild[0].vecChild[1], 3, 4, -1, -1);

  // B, C, B, A, B: the A stands after the second B, so B fuses to its last occurrence and
  // swallows the A.
  const _sZK swallowed = Hole(0, 0, 100,
                              {{L"A", 100, 90},
                               {L"B", 90, 85},
                               {L"C", 85, 80},
                               {L"B", 80, 75},
                               {L"A", 75, 70},
                               {L"B", 70, 65},
                               {L"A", 65, 60}});
  _sLinkRegion root2;
  reference::ReferenceLinkDc(swallowed, one, root2);
  ASSERT_EQ(root2.vecChild.size(), 1u);
  ASSERT_EQ(root2.vecChild[0].vecChild.size(), 1u);
  const _sLinkRegion& lens = root2.vecChild[0].vecChild[0];
  EXPECT_EQ(lens.strName, L"B");
  EXPECT_TRUE(lens.bNamed);
  ExpectRange(lens, 1, 6, -1, -1);
  // The fused lens is closed again: C and A become lenses inside it.
  ASSERT_EQ(lens.vecChild.size(), 2u);
  EXPECT_EQ(lens.vecChild[0].strName, L"C");
  EXPECT_EQ(lens.vecChild[1].strName, L"A");
}

TEST(ReferenceLines, TypicalRequestGivesThreeNamedLines) {
  std::vector<_sLinkLine> lines;
  reference::ReferenceLinkDcLine(kAbc, kAc, lines);
  ASSERT_EQ(lines.size(), 3u);
  ExpectLine(lines[0], 90, 95, L"A", L"B");
  ExpectLine(lines[1], 80, 95, L"B", L"C");
  ExpectLine(lines[2], 70, 85, L"C", L"");
  EXPECT_EQ(lines[1].nType, 2);
}

TEST(ReferenceLines, CallerLinesTakePartAndTheHighestGoes) {
  std::vector<_sLinkLine> lines{Line(1000, 1000, true, L"sky")};
  reference::ReferenceLinkDcLine(kAbc, kAc, lines);
  ASSERT_EQ(lines.size(), 4u); // the caller's line is removed, the collar line stays
  ExpectLine(lines[0], 100, 100, L"A", L"");
  ExpectLine(lines[3], 70, 85, L"C", L"");
}

TEST(ReferenceLines, MergeKeepsTheBottomLineAndRenamesIt) {
  std::vector<_sLinkLine> three{Line(5, 5, false, L"P"), Line(5, 5, false, L"Q"),
                                Line(5, 5 + 4e-6, true, L"R")};
  reference::ReferenceMergeSameLines(three);
  ASSERT_EQ(three.size(), 1u);
  EXPECT_EQ(three[0].strUpName, L"R");
  EXPECT_EQ(three[0].strDownName, L"P"); // the one absorbed last
  EXPECT_FALSE(three[0].bBottom);

  std::vector<_sLinkLine> two{Line(5, 5, true, L"U"), Line(5, 5, false, L"D")};
  reference::ReferenceMergeSameLines(two);
  ASSERT_EQ(two.size(), 1u);
  EXPECT_EQ(two[0].strUpName, L"U");
  EXPECT_EQ(two[0].strDownName, L"D");

  // A reversed line is a different line.
  _sLinkLine reversed = Line(5, 5, false, L"V");
  reversed.pt1.x = 100;
  reversed.pt2.x = 0;
  std::vector<_sLinkLine> apart{Line(5, 5, true, L"U"), reversed};
  reference::ReferenceMergeSameLines(apart);
  EXPECT_EQ(apart.size(), 2u);
}

TEST(ReferenceLines, OrderingComparesFirstEndsThenSecondEndsThenSums) {
  const _sLinkLine high = Line(10, 0, false, L"");
  const _sLinkLine low = Line(9, 50, false, L"");
  EXPECT_TRUE(reference::ReferenceIsLineAbove(high, low)); // first ends decide alone
  EXPECT_FALSE(reference::ReferenceIsLineAbove(low, high));
  const _sLinkLine sameStart = Line(10, 20, false, L"");
  EXPECT_FALSE(reference::ReferenceIsLineAbove(high, sameStart));
  EXPECT_FALSE(reference::ReferenceIsLineAbove(sameStart, high));
  // First ends apart, second ends together: the second ends decide, the first ends do not count.
  _sLinkLine elsewhere = Line(30, -1, false, L"");
  elsewhere.pt1.x = 7;
  EXPECT_TRUE(reference::ReferenceIsLineAbove(high, elsewhere));
  EXPECT_FALSE(reference::ReferenceIsLineAbove(elsewhere, high));
  // Both ends apart: the sums of the end elevations, 30 + 8 against 10 + 0.
  elsewhere.pt2.x = 77;
  elsewhere.pt2.z = 8;
  EXPECT_TRUE(reference::ReferenceIsLineAbove(elsewhere, high));
  EXPECT_FALSE(reference::ReferenceIsLineAbove(high, elsewhere));
}

TEST(ReferenceCompare, ToleranceIsAbsoluteAndRelativeBelowOne) {
  using reference::CompareDouble;
  EXPECT_EQ(CompareDouble(0.0, 9e-6), 0);
  EXPECT_EQ(CompareDouble(0.0, -9.9e-6), 0);
  EXPECT_EQ(CompareDouble(1e-6, 2e-6), -1);
  EXPECT_EQ(CompareDouble(0.5, 0.500004), 0);
  EXPECT_EQ(CompareDouble(0.5, 0.500009), -1);
  EXPECT_EQ(CompareDouble(-0.5, -0.500009), 1);
  EXPECT_EQ(CompareDouble(0.9999995, 0.999999), 0);
  EXPECT_EQ(CompareDouble(100.0, 100.000009), 0);
  EXPECT_EQ(CompareDouble(2.0, 2.00001), -1);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(CompareDouble(nan, 1.0), -1);
  EXPECT_EQ(CompareDouble(1.0, nan), -1);
}

} // namespace
