// The rules at their boundaries, one hand-worked case each: the expected trees and lines below
// were derived by hand from the correlation rules. Every tree and every list of lines is made by
// the library and by the plain reference, which must agree, so that each case holds for both and
// the reference can serve as the yardstick of the differential tests.
#include "correlation/CorrelationTestSupport.h"
#include "reference/ReferenceCorrelation.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using DataType::_sLinkLine;
using DataType::_sLinkRegion;
using DataType::_sZK;
using xkltest::Layer;
using xkltest::MakeBorehole;
using xkltest::MakeRegion;
using xkltest::SameTree;
using xkltest::With;

// A hole at (x, 0) whose strata, one per character of codes, are `thickness` thick from the collar
// down.
_sZK Hole(double x, double collar, const std::wstring& codes, double thickness) {
  std::vector<Layer> layers;
  for (std::size_t i = 0; i < codes.size(); ++i) {
    layers.push_back({std::wstring(1, codes[i]), collar - thickness * static_cast<double>(i + 1)});
  }
  return MakeBorehole(x, 0.0, collar, layers);
}

// The tree by the library, after checking that the reference makes the same.
_sLinkRegion Root(const _sZK& a, const _sZK& b) {
  _sLinkRegion root;
  LinkDc(a, b, root);
  _sLinkRegion plain;
  reference::ReferenceLinkDc(a, b, plain);
  EXPECT_TRUE(SameTree(root, plain));
  return root;
}

// The lines by the library, after checking that the reference makes the same.
void Lines(const _sZK& a, const _sZK& b, std::vector<_sLinkLine>& lines) {
  std::vector<_sLinkLine> plain = lines;
  LinkDcLine(a, b, lines);
  reference::ReferenceLinkDcLine(a, b, plain);
  EXPECT_EQ(xktest::FirstDifference(lines, plain, "lines"), "");
}

std::wstring Names(const std::vector<_sLinkRegion>& regions) {
  std::wstring s;
  for (const auto& r : regions) {
    s += r.strName + L" ";
  }
  return s;
}

void ExpectLine(const _sLinkLine& l, double z1, double z2, const std::wstring& names) {
  EXPECT_DOUBLE_EQ(l.pt1.z, z1);
  EXPECT_DOUBLE_EQ(l.pt2.z, z2);
  EXPECT_EQ(l.strUpName + L"/" + l.strDownName, names);
  EXPECT_FALSE(l.bBottom);
}

_sLinkLine Line(double z1, double z2, bool bottom, const wchar_t* up, double x1 = 0) {
  _sLinkLine l;
  l.pt1 = CXk3DPoint(x1, 0.0, z1);
  l.pt2 = CXk3DPoint(100.0, 0.0, z2);
  l.bBottom = bottom;
  l.strUpName = up;
  return l;
}

// Borehole 1 with A, B, C against borehole 2 with A, C: the typical request.
const _sZK kAbc = Hole(0, 100, L"ABC", 10);
const _sZK kAc = MakeBorehole(100, 0, 100, {{L"A", 95}, {L"C", 85}});

TEST(Rules, CommonStrataSplitTheGapBecomesAWedgeAndNothingBelowTheLastCommonStratum) {
  EXPECT_TRUE(SameTree(Root(kAbc, kAc), With(MakeRegion(kAbc, kAc, 0, 3, 0, 2),
                                             {MakeRegion(kAbc, kAc, 0, 1, 0, 1, L"A", true),
                                              MakeRegion(kAbc, kAc, 2, 3, 1, 2, L"C", true),
                                              MakeRegion(kAbc, kAc, 1, 2, 1, 1, L"B", false, 2)})));
  // Nothing below the deepest common stratum at the root: D of ABCD is in no region.
  const _sLinkRegion root = Root(Hole(0, 100, L"ABCD", 10), kAc);
  EXPECT_EQ(Names(root.vecChild), L"A C B ");
  EXPECT_DOUBLE_EQ(root.vecChild[1].ptBot[0].z, 70); // C now ends at the top of D
  EXPECT_DOUBLE_EQ(root.ptBot[0].z, 60);
}

TEST(Rules, SingleCodeOnEachSideLeavesTheRootAlone) {
  const _sZK a = MakeBorehole(0, 0, 10, {{L"A", 5}, {L"A", 2}, {L"A", 0}});
  const _sZK b = MakeBorehole(50, 0, 12, {{L"B", 1}}, 11);
  auto expected = MakeRegion(a, b, 0, 3, 0, 1);
  expected.ptTop[1].z = 12; // collar, not the top of the first stratum
  EXPECT_TRUE(SameTree(Root(a, b), expected));
  std::vector<_sLinkLine> lines;
  Lines(a, b, lines);
  ASSERT_EQ(lines.size(), 1u); // the collar line is removed
  ExpectLine(lines[0], 0, 1, L"/");
}

TEST(Rules, UnmatchedStrataInterleaveByCodeUnits) {
  const _sZK a = Hole(0, 10, L"13", 2);
  const _sZK b = MakeBorehole(40, 0, 10, {{L"2", 7}});
  EXPECT_TRUE(SameTree(Root(a, b), With(MakeRegion(a, b, 0, 2, 0, 1),
                                        {MakeRegion(a, b, 0, 1, 0, 0, L"1", false, 2),
                                         MakeRegion(a, b, 1, 1, 0, 1, L"2", false, 2),
                                         MakeRegion(a, b, 1, 2, 1, 1, L"3", false, 2)})));
  // "10" sorts before "9"; equal codes would put borehole 1 first.
  const _sZK nine = MakeBorehole(0, 0, 10, {{L"9", 8}, {L"X", 6}});
  const _sZK ten = MakeBorehole(40, 0, 10, {{L"10", 7}, {L"Y", 5}});
  EXPECT_EQ(Names(Root(nine, ten).vecChild).substr(0, 5), L"10 9 ");
}

TEST(Rules, EmptyBoreholeHasZeroDepthAtItsCollar) {
  const _sZK a = Hole(0, 100, L"AB", 10);
  const _sZK none = MakeBorehole(30, 40, 95, {});
  EXPECT_TRUE(SameTree(Root(a, none), With(MakeRegion(a, none, 0, 2, 0, 0),
                                           {MakeRegion(a, none, 0, 1, 0, 0, L"A", false, 2),
                                            MakeRegion(a, none, 1, 2, 0, 0, L"B", false, 2)})));
  EXPECT_TRUE(Root(none, none).vecChild.empty());
  std::vector<_sLinkLine> lines;
  Lines(none, none, lines);
  EXPECT_TRUE(lines.empty()); // top and bottom coincide, merge, and the one line is removed
}

TEST(CrossingRule, EqualKeysDropTheLaterPair) {
  // The top gap holds B of borehole 2 only; B of borehole 1 lies below the last common stratum.
  const _sZK a = Hole(0, 100, L"AB", 10);
  const _sZK b = Hole(100, 100, L"BA", 10);
  EXPECT_TRUE(SameTree(Root(a, b), With(MakeRegion(a, b, 0, 2, 0, 2),
                                        {MakeRegion(a, b, 0, 1, 1, 2, L"A", true),
                                         MakeRegion(a, b, 0, 0, 0, 1, L"B", false, 2)})));
}

TEST(CrossingRule, DroppedPairKeepsSweepingAndIsReadmittedLater) {
  // Mid-elevation differences: A 9, B 2, C 11.5. A is dropped by B, C by the dropped A; C shares
  // no stratum with B and crosses no kept pair, so it comes back.
  const _sZK b = MakeBorehole(100, 0, 88, {{L"B", 86.75}, {L"C", 86.25}, {L"A", 85.75}}, 87.25);
  const _sLinkRegion root = Root(kAbc, b);
  ASSERT_GE(root.vecChild.size(), 2u);
  EXPECT_TRUE(SameTree(root.vecChild[0], MakeRegion(kAbc, b, 1, 2, 0, 1, L"B", true)));
  EXPECT_TRUE(SameTree(root.vecChild[1], MakeRegion(kAbc, b, 2, 3, 1, 2, L"C", true)));
  for (std::size_t k = 2; k < root.vecChild.size(); ++k) {
    EXPECT_NE(root.vecChild[k].nType, 0);
  }
}

TEST(CommonStrata, RepeatedCodeMakesOneEnvelopeWithALensOfBoreholeTwoInSlotZero) {
  const _sZK a = Hole(0, 100, L"A", 10);
  const _sZK b = MakeBorehole(100, 0, 100, {{L"A", 95}, {L"X", 92}, {L"A", 80}});
  auto lens = MakeRegion(a, b, -1, -1, 1, 2, L"X", false, 1);
  lens.ptTop[0] = CXk3DPoint(100.0, 0.0, 95.0);
  lens.ptBot[0] = CXk3DPoint(100.0, 0.0, 92.0);
  lens.ptTop[1] = lens.ptBot[1] = CXk3DPoint(55.0, 0.0, 93.5); // 45 % of the way back
  const _sLinkRegion root = Root(a, b);
  ASSERT_EQ(root.vecChild.size(), 1u);
  EXPECT_TRUE(SameTree(root.vecChild[0], With(MakeRegion(a, b, 0, 1, 0, 3, L"A", true), {lens})));
}

TEST(CommonStrata, CodeTwiceInEachBoreholeChainsAcrossTheCrossing) {
  // The top gap (J, K, L against B to F) closes into wedges; by code order B comes first.
  const _sLinkRegion root = Root(Hole(0, 100, L"JKLAMNOA", 1), Hole(100, 100, L"BCDEFAGHIA", 1));
  ASSERT_EQ(root.vecChild.size(), 9u);
  EXPECT_EQ(root.vecChild[0].strName, L"A");
  EXPECT_RANGES(root.vecChild[0], 3, 8, 5, 10);
  EXPECT_EQ(root.vecChild[1].strName, L"B");
  EXPECT_EQ(root.vecChild[1].nType, 2);
  EXPECT_RANGES(root.vecChild[1], 0, 0, 0, 1);
}

TEST(LensTip, TipReachesFortyFivePercentOrStopsShortOfTheEnvelope) {
  const _sZK a = Hole(0, 100, L"ABA", 10);
  const struct {
    _sZK other;
    double tipX;
  } cases[] = {
      {MakeBorehole(100, 0, 100, {{L"A", 70}}), 45},
      // The top of the envelope falls through the lens's mid elevation at distance 10: tip at 6.
      {MakeBorehole(100, 0, -50, {{L"A", -60}}), 6},
      // The bottom, crossing at 5 within the shortened probe, has the last word: tip at 3.
      {MakeBorehole(100, 0, -50, {{L"A", 370}}), 3},
  };
  for (const auto& c : cases) {
    const _sLinkRegion root = Root(a, c.other);
    ASSERT_EQ(root.vecChild.size(), 1u);
    ASSERT_EQ(root.vecChild[0].vecChild.size(), 1u);
    const _sLinkRegion& lens = root.vecChild[0].vecChild[0];
    EXPECT_RANGES(lens, 1, 2, -1, -1);
    EXPECT_DOUBLE_EQ(lens.ptTop[0].z, 90);
    EXPECT_DOUBLE_EQ(lens.ptBot[0].z, 80);
    EXPECT_NEAR(lens.ptTop[1].x, c.tipX, 1e-12);
    EXPECT_DOUBLE_EQ(lens.ptTop[1].z, 85);
  }
}

TEST(NamedRegion, InnerSplitLeavesTheTrailingEnvelopeStratumOut) {
  // Sub-region A over A, B, X, A (borehole 1) and A, B, A (borehole 2): B is split out, the top
  // gap vanishes because the leading A is skipped, and the bottom gap holds X only.
  const _sLinkRegion root = Root(Hole(0, 100, L"ABXA", 10), Hole(100, 120, L"ABA", 10));
  ASSERT_EQ(root.vecChild.size(), 1u);
  const _sLinkRegion& env = root.vecChild[0];
  EXPECT_RANGES(env, 0, 4, 0, 3);
  ASSERT_EQ(Names(env.vecChild), L"B X ");
  EXPECT_RANGES(env.vecChild[0], 1, 2, 1, 2);
  const _sLinkRegion& x = env.vecChild[1];
  EXPECT_EQ(x.nType, 1);
  EXPECT_RANGES(x, 2, 3, -1, -1);
  EXPECT_NEAR(x.ptTop[1].x, 45, 1e-9); // the tip, 45% of the way across
  EXPECT_NEAR(x.ptTop[1].z, 75, 1e-9);
}

TEST(Fusing, LastPairOfCandidatesDecidesNotTheThickest) {
  // A is by far the thickest code, but of the candidates A, B, C only B against C counts: C wins.
  const _sZK a = MakeBorehole(
      0, 0, 100, {{L"A", 80}, {L"B", 79}, {L"C", 76}, {L"A", 56}, {L"B", 55}, {L"C", 52}});
  const _sLinkRegion root = Root(a, Hole(100, 100, L"X", 50));
  ASSERT_EQ(Names(root.vecChild), L"A B C X ");
  EXPECT_RANGES(root.vecChild[0], 0, 1, 0, 0);
  EXPECT_RANGES(root.vecChild[1], 1, 2, 0, 0);
  EXPECT_TRUE(root.vecChild[2].bNamed);
  EXPECT_RANGES(root.vecChild[2], 2, 6, 0, 0);
}

TEST(Fusing, EnvelopeCodeBeforeTheSecondOccurrenceBlocksFusing) {
  const _sZK one = Hole(100, 100, L"A", 50);
  // B, A, B inside the envelope A: the A between makes B ineligible; two separate lenses.
  _sLinkRegion root = Root(Hole(0, 95, L"ABABA", 5), one);
  ASSERT_EQ(root.vecChild.size(), 1u);
  ASSERT_EQ(root.vecChild[0].vecChild.size(), 2u);
  EXPECT_RANGES(root.vecChild[0].vecChild[0], 1, 2, -1, -1);
  EXPECT_RANGES(root.vecChild[0].vecChild[1], 3, 4, -1, -1);
  // B, C, B, A, B: the A stands after the second B, so B fuses to its last occurrence and
  // swallows the A; the fused lens is closed again: C and A become lenses inside it.
  root = Root(Hole(0, 95, L"ABCBABA", 5), one);
  ASSERT_EQ(root.vecChild.size(), 1u);
  ASSERT_EQ(root.vecChild[0].vecChild.size(), 1u);
  const _sLinkRegion& lens = root.vecChild[0].vecChild[0];
  EXPECT_EQ(lens.strName, L"B");
  EXPECT_TRUE(lens.bNamed);
  EXPECT_RANGES(lens, 1, 6, -1, -1);
  EXPECT_EQ(Names(lens.vecChild), L"C A ");
}

TEST(Lines, TypicalRequestGivesThreeNamedLinesAndCallerLinesTakePart) {
  std::vector<_sLinkLine> lines;
  Lines(kAbc, kAc, lines);
  ASSERT_EQ(lines.size(), 3u);
  ExpectLine(lines[0], 90, 95, L"A/B");
  ExpectLine(lines[1], 80, 95, L"B/C");
  ExpectLine(lines[2], 70, 85, L"C/");
  EXPECT_EQ(lines[1].nType, 2);
  // A caller's line above everything is the one removed; the collar line stays.
  lines = {Line(1000, 1000, true, L"sky")};
  Lines(kAbc, kAc, lines);
  ASSERT_EQ(lines.size(), 4u);
  ExpectLine(lines[0], 100, 100, L"A/");
  ExpectLine(lines[3], 70, 85, L"C/");
}

TEST(Lines, MergeKeepsTheBottomLineAndRenamesIt) {
  std::vector<_sLinkLine> lines{Line(5, 5, false, L"P"), Line(5, 5, false, L"Q"),
                                Line(5, 5 + 4e-6, true, L"R")};
  reference::ReferenceMergeSameLines(lines);
  ASSERT_EQ(lines.size(), 1u);
  ExpectLine(lines[0], 5, 5 + 4e-6, L"R/P"); // the one absorbed last
  lines = {Line(5, 5, true, L"U"), Line(5, 5, false, L"D")};
  reference::ReferenceMergeSameLines(lines);
  ASSERT_EQ(lines.size(), 1u);
  ExpectLine(lines[0], 5, 5, L"U/D");
  // A reversed line is a different line.
  _sLinkLine reversed = Line(5, 5, false, L"V", 100);
  reversed.pt2.x = 0;
  lines = {Line(5, 5, true, L"U"), reversed};
  reference::ReferenceMergeSameLines(lines);
  EXPECT_EQ(lines.size(), 2u);
}

TEST(Lines, OrderingComparesFirstEndsThenSecondEndsThenSums) {
  const _sLinkLine high = Line(10, 0, false, L"");
  const _sLinkLine low = Line(9, 50, false, L"");
  const _sLinkLine sameStart = Line(10, 20, false, L"");
  // First ends apart, second ends together: the second ends decide, the first ends do not count.
  const _sLinkLine elsewhere = Line(30, -1, false, L"", 7);
  // Both ends apart: the sums of the end elevations, 30 + 8 against 10 + 0.
  _sLinkLine apart = elsewhere;
  apart.pt2 = CXk3DPoint(77.0, 0.0, 8.0);
  const std::pair<const _sLinkLine*, const _sLinkLine*> ordered[] = {
      {&high, &low}, {&high, &elsewhere}, {&apart, &high}};
  for (const auto& [upper, lower] : ordered) {
    EXPECT_TRUE(reference::ReferenceIsLineAbove(*upper, *lower));
    EXPECT_FALSE(reference::ReferenceIsLineAbove(*lower, *upper));
  }
  EXPECT_FALSE(reference::ReferenceIsLineAbove(high, sameStart));
  EXPECT_FALSE(reference::ReferenceIsLineAbove(sameStart, high));
}

} // namespace
