// Closing regions that are not split further: stratum runs and their fusing, pinch-out wedges of
// unmatched strata, and lenses inside an envelope.
#include "CorrelationFixture.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace xkltest {
namespace {

std::wstring Describe(const xkl::DcRunList& list) {
  std::wstring s;
  for (const auto& r : list.vecRun) {
    s += xkl::CodeName(list, r) + L"[" + std::to_wstring(r.nBegin) + L"," + std::to_wstring(r.nEnd) +
         (r.bMerged ? L")*" : L")") + L" ";
  }
  return s;
}

class StratumRunTest : public CorrelationTest {
protected:
  // Hole 1 from 100 m with the given codes and thicknesses; hole 2 a single stratum Z.
  void LoadCodes(const std::vector<std::pair<std::wstring, double>>& strata) {
    std::vector<Layer> layers;
    double z = 100.0;
    for (const auto& [code, thickness] : strata) {
      z -= thickness;
      layers.push_back({code, z});
    }
    Load(MakeBorehole(0.0, 0.0, 100.0, layers), MakeBorehole(80.0, 0.0, 100.0, {{L"Z", 70.0}}));
  }
  xkl::DcRunList Runs(const DataType::_sLinkRegion& region, bool side) {
    xkl::DcRunList list;
    xkl::BuildDcRunList(state, list, region, side);
    return list;
  }
  std::wstring Fused(const DataType::_sLinkRegion& region) {
    xkl::DcRunList list = Runs(region, true);
    xkl::BuildFusedRuns(state, region, true, list.vecRun);
    return Describe(list);
  }
  // The interned code, -1 for a code that neither hole carries.
  int32_t Code(const wchar_t* code) { return state.Codes().IdOf(code); }
  std::wstring Name(int32_t code) { return *state.Codes().codes[static_cast<std::size_t>(code)]; }
};

TEST_F(StratumRunTest, OneRunPerStratumOfTheSidesRange) {
  LoadCodes({{L"A", 3}, {L"B", 4}, {L"A", 5}});
  const auto region = Region(0, 3, 0, 1);
  const auto one = Runs(region, true);
  EXPECT_EQ(one.pZK, &state.zk1);
  EXPECT_EQ(Describe(one), L"A[0,1) B[1,2) A[2,3) ");
  const auto two = Runs(region, false);
  EXPECT_EQ(two.pZK, &state.zk2);
  EXPECT_EQ(Describe(two), L"Z[0,1) ");
  EXPECT_TRUE(Runs(Region(1, 1, 0, 1), true).vecRun.empty());
  auto lens = Region(1, 3, 0, 1);
  lens.nBegin2 = lens.nEnd2 = -1;
  EXPECT_TRUE(Runs(lens, false).vecRun.empty());
}

TEST_F(StratumRunTest, MergeFusesFirstToLastOccurrence) {
  LoadCodes({{L"A", 3}, {L"B", 4}, {L"A", 5}, {L"C", 2}});
  auto list = Runs(Region(0, 4, 0, 1), true);
  xkl::MergeDcRun(list, Code(L"C")); // a single occurrence: nothing changes
  xkl::MergeDcRun(list, Code(L"X"));
  EXPECT_EQ(Describe(list), L"A[0,1) B[1,2) A[2,3) C[3,4) ");
  xkl::MergeDcRun(list, Code(L"A"));
  EXPECT_EQ(Describe(list), L"A[0,3)* C[3,4) ");
}

TEST_F(StratumRunTest, CompareDcThicknessNeedsTwoRunsOfEachCode) {
  LoadCodes({{L"A", 5}, {L"B", 3}, {L"C", 2}, {L"A", 5}, {L"B", 3}, {L"C", 2}, {L"D", 4}});
  const auto list = Runs(Region(0, 7, 0, 1), true);
  EXPECT_EQ(xkl::CompareDcThickness(list, Code(L"A"), Code(L"A")), 0);
  EXPECT_EQ(xkl::CompareDcThickness(list, Code(L"A"), Code(L"B")), 1); // 10 m against 6 m
  EXPECT_EQ(xkl::CompareDcThickness(list, Code(L"C"), Code(L"B")), -1);
  EXPECT_EQ(xkl::CompareDcThickness(list, Code(L"A"), Code(L"D")), -2); // D occurs once
  EXPECT_EQ(xkl::CompareDcThickness(list, Code(L"X"), Code(L"A")), -2);
  LoadCodes({{L"B", 2.5}, {L"C", 2.500004}, {L"B", 2.5}, {L"C", 2.5}});
  EXPECT_EQ(xkl::CompareDcThickness(Runs(Region(0, 4, 0, 1), true), Code(L"B"), Code(L"C")), 0);
}

TEST_F(StratumRunTest, LastTwoCandidatesDecideWhichCodeIsFusedFirst) {
  // A is the thickest repeated code, yet only the last comparison, B against C, counts.
  LoadCodes({{L"A", 5}, {L"B", 3}, {L"C", 2}, {L"A", 5}, {L"B", 3}, {L"C", 2}});
  int32_t code = -1;
  ASSERT_TRUE(xkl::FindRepeatedDc(Runs(Region(0, 6, 0, 1), true), code));
  EXPECT_EQ(Name(code), L"B");
  EXPECT_EQ(Fused(Region(0, 6, 0, 1)), L"A[0,1) B[1,5)* C[5,6) ");
  LoadCodes({{L"A", 5}, {L"B", 2}, {L"C", 3}, {L"A", 5}, {L"B", 2}, {L"C", 3}});
  ASSERT_TRUE(xkl::FindRepeatedDc(Runs(Region(0, 6, 0, 1), true), code));
  EXPECT_EQ(Name(code), L"C");
  LoadCodes({{L"A", 5}, {L"B", 2.5}, {L"C", 2.5}, {L"A", 5}, {L"B", 2.5}, {L"C", 2.5}});
  ASSERT_TRUE(xkl::FindRepeatedDc(Runs(Region(0, 6, 0, 1), true), code));
  EXPECT_EQ(Name(code), L"C"); // a tie goes to the later candidate
}

TEST_F(StratumRunTest, EnvelopeCodeBeforeTheSecondOccurrenceBlocksFusing) {
  LoadCodes({{L"B", 2}, {L"A", 3}, {L"B", 2}});
  int32_t code = -1;
  for (const bool named : {true, false}) {
    EXPECT_FALSE(xkl::FindRepeatedDc(Runs(Region(0, 3, 0, 1, L"A", named, 2), true), code));
  }
  // The envelope's code above the first occurrence does not count.
  LoadCodes({{L"A", 1}, {L"B", 2}, {L"C", 3}, {L"B", 2}});
  EXPECT_EQ(Fused(Region(0, 4, 0, 1, L"A", true, 2)), L"A[0,1) B[1,4)* ");
  // B, C, B, A, B: the test stops at B's second occurrence, so A is swallowed by the fusing.
  LoadCodes({{L"B", 2}, {L"C", 3}, {L"B", 2}, {L"A", 1}, {L"B", 4}});
  EXPECT_EQ(Fused(Region(0, 5, 0, 1, L"A", false, 2)), L"B[0,5)* ");
  EXPECT_EQ(Fused(Region(0, 5, 0, 1, L"A", true, 2)), L"B[0,5)* ");
}

using CloseUnmatchedRegionTest = CorrelationTest;

TEST_F(CloseUnmatchedRegionTest, WedgesInterleavedByCodeThinOutAtTheNextStratum) {
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"1", 95.0}, {L"3", 90.0}}),
       MakeBorehole(50.0, 0.0, 101.0, {{L"2", 93.0}}));
  xkl::RegionList out(1);
  xkl::CloseUnmatchedRegion(state, Region(0, 2, 0, 1), out);
  ASSERT_EQ(out.size(), 4u);
  const auto& w1 = out[1];
  const auto& w2 = out[2];
  const auto& w3 = out[3];
  EXPECT_EQ(w1.strName + w2.strName + w3.strName, L"123");
  for (const auto* w : {&w1, &w2, &w3}) {
    EXPECT_EQ(w->nType, 2);
    EXPECT_FALSE(w->bNamed);
    EXPECT_TRUE(w->vecChild.empty());
  }
  EXPECT_RANGES(w1, 0, 1, 0, 0); // thins out at the top of 2
  EXPECT_Z(w1, 100.0, 95.0, 101.0, 101.0);
  EXPECT_RANGES(w2, 1, 1, 0, 1); // thins out at the top of 3
  EXPECT_Z(w2, 95.0, 95.0, 101.0, 93.0);
  EXPECT_RANGES(w3, 1, 2, 1, 1); // thins out at the region's end on hole 2
  EXPECT_Z(w3, 95.0, 90.0, 93.0, 93.0);
  EXPECT_POINT(w3.ptTop[0], 0.0, 0.0, 95.0);
  EXPECT_POINT(w3.ptBot[1], 50.0, 0.0, 93.0);
}

TEST_F(CloseUnmatchedRegionTest, EmptySidesCodeUnitOrderAndTies) {
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"9", 95.0}, {L"3", 90.0}}),
       MakeBorehole(50.0, 0.0, 101.0, {{L"10", 93.0}}));
  xkl::RegionList out;
  xkl::CloseUnmatchedRegion(state, Region(1, 1, 1, 1), out);
  EXPECT_TRUE(out.empty());
  xkl::CloseUnmatchedRegion(state, Region(0, 2, 1, 1), out); // nothing on hole 2
  ASSERT_EQ(out.size(), 2u);
  EXPECT_RANGES(out[0], 0, 1, 1, 1);
  EXPECT_RANGES(out[1], 1, 2, 1, 1);
  EXPECT_POINT(out[1].ptTop[1], 50.0, 0.0, 93.0);
  out.clear();
  xkl::CloseUnmatchedRegion(state, Region(0, 1, 0, 1), out); // "10" sorts before "9"
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[0].strName, L"10");
  EXPECT_RANGES(out[0], 0, 0, 0, 1);
  EXPECT_RANGES(out[1], 0, 1, 1, 1);

  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"Q", 95.0}}),
       MakeBorehole(50.0, 0.0, 101.0, {{L"Q", 93.0}}));
  out.clear();
  xkl::CloseUnmatchedRegion(state, Region(0, 1, 0, 1, L"W", false, 2), out);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_RANGES(out[0], 0, 1, 0, 0); // equal codes: hole 1 first
  EXPECT_RANGES(out[1], 1, 1, 0, 1);
}

TEST_F(CloseUnmatchedRegionTest, RepeatedCodeBecomesOneNamedWedge) {
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"A", 85.0}}),
       MakeBorehole(50.0, 0.0, 101.0, {{L"C", 93.0}}));
  xkl::RegionList out;
  xkl::CloseUnmatchedRegion(state, Region(0, 3, 0, 1), out);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_TRUE(out[0].bNamed);
  EXPECT_EQ(out[0].strName, L"A");
  EXPECT_RANGES(out[0], 0, 3, 0, 0);
  EXPECT_Z(out[0], 100.0, 85.0, 101.0, 101.0);
  EXPECT_RANGES(out[1], 3, 3, 0, 1);
  EXPECT_Z(out[1], 85.0, 85.0, 101.0, 93.0);
}

using CloseNamedRegionTest = CorrelationTest;

TEST_F(CloseNamedRegionTest, EnclosedStratumBecomesALensReachingNearlyHalfWay) {
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"A", 85.0}}),
       MakeBorehole(100.0, 0.0, 100.0, {{L"A", 84.0}}));
  xkl::RegionList out;
  xkl::CloseNamedRegion(state, Region(0, 3, 0, 1, L"A", true), out);
  ASSERT_EQ(out.size(), 1u);
  const auto& lens = out[0];
  EXPECT_EQ(lens.nType, 1);
  EXPECT_FALSE(lens.bNamed);
  EXPECT_EQ(lens.strName, L"B");
  EXPECT_RANGES(lens, 1, 2, -1, -1);
  EXPECT_POINT(lens.ptTop[0], 0.0, 0.0, 95.0);
  EXPECT_POINT(lens.ptBot[0], 0.0, 0.0, 90.0);
  EXPECT_POINT(lens.ptTop[1], 45.0, 0.0, 92.5);
  EXPECT_POINT(lens.ptBot[1], 45.0, 0.0, 92.5);
}

TEST_F(CloseNamedRegionTest, LensesOfHoleOneFirstAndHoleTwoKeepsItsCornersInSlotZero) {
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"A", 85.0}}),
       MakeBorehole(100.0, 0.0, 100.0, {{L"A", 96.0}, {L"C", 92.0}, {L"D", 88.0}, {L"A", 84.0}}));
  xkl::RegionList out;
  xkl::CloseNamedRegion(state, Region(0, 3, 0, 4, L"A", true), out);
  ASSERT_EQ(out.size(), 3u);
  EXPECT_EQ(out[0].strName + out[1].strName + out[2].strName, L"BCD");
  EXPECT_RANGES(out[1], -1, -1, 1, 2);
  EXPECT_POINT(out[1].ptTop[0], 100.0, 0.0, 96.0);
  EXPECT_POINT(out[1].ptBot[0], 100.0, 0.0, 92.0);
  EXPECT_POINT(out[1].ptTop[1], 55.0, 0.0, 94.0); // 45 m from hole 2 towards hole 1
  EXPECT_POINT(out[1].ptBot[1], 55.0, 0.0, 94.0);
  EXPECT_RANGES(out[2], -1, -1, 2, 3);
  EXPECT_POINT(out[2].ptTop[1], 55.0, 0.0, 90.0);
}

TEST_F(CloseNamedRegionTest, FusedLensIsClosedAgainWithItsTipInsideTheOuterLens) {
  // Envelope A around C, D, C: one named lens C; closing it puts D's tip where C's top edge
  // (96 m at the hole down to 92 m at 45 m) meets D's mid elevation 92.5 m, at 39.375 m, pulled
  // back to 60 % of that.
  Load(MakeBorehole(0.0, 0.0, 100.0,
                    {{L"A", 96.0}, {L"C", 94.0}, {L"D", 91.0}, {L"C", 88.0}, {L"A", 84.0}}),
       MakeBorehole(100.0, 0.0, 100.0, {{L"A", 83.0}}));
  auto envelope = Region(0, 5, 0, 1, L"A", true);
  xkl::LinkRegion(state, envelope, true);
  ASSERT_EQ(envelope.vecChild.size(), 1u);
  const auto& c = envelope.vecChild[0];
  EXPECT_EQ(c.nType, 1);
  EXPECT_TRUE(c.bNamed);
  EXPECT_EQ(c.strName, L"C");
  EXPECT_RANGES(c, 1, 4, -1, -1);
  EXPECT_Z(c, 96.0, 88.0, 92.0, 92.0);
  EXPECT_POINT(c.ptTop[1], 45.0, 0.0, 92.0);
  ASSERT_EQ(c.vecChild.size(), 1u);
  const auto& d = c.vecChild[0];
  EXPECT_EQ(d.nType, 1);
  EXPECT_EQ(d.strName, L"D");
  EXPECT_RANGES(d, 2, 3, -1, -1);
  EXPECT_POINT(d.ptTop[1], 23.625, 0.0, 92.5);
  EXPECT_POINT(d.ptBot[1], 23.625, 0.0, 92.5);
  EXPECT_TRUE(d.vecChild.empty());
}

} // namespace
} // namespace xkltest
