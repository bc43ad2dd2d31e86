// Closing regions that are not split further: stratum runs and their fusing, pinch-out wedges of
// unmatched strata, and lenses inside an envelope.
#include "CorrelationFixture.h"

#include <string>
#include <vector>

namespace xkltest {
namespace {

std::wstring Describe(const xkl::DcRunList& list) {
  std::wstring s;
  for (const auto& r : list.vecRun) {
    s += xkl::CodeName(list, r) + L"[" + std::to_wstring(r.nBegin) + L"," +
         std::to_wstring(r.nEnd) + (r.bMerged ? L")*" : L")") + L" ";
  }
  return s;
}

using Strata = std::vector<std::pair<std::wstring, double>>; // code and thickness

class StratumRunTest : public CorrelationTest {
protected:
  // Hole 1 from 100 m with the given codes and thicknesses; hole 2 a single stratum Z.
  void LoadCodes(const Strata& strata) {
    std::vector<Layer> layers;
    double z = 100.0;
    for (const auto& [code, thickness] : strata) {
      layers.push_back({code, z -= thickness});
    }
    Load(MakeBorehole(0.0, 0.0, 100.0, layers), MakeBorehole(80.0, 0.0, 100.0, {{L"Z", 70.0}}));
  }
  xkl::DcRunList Runs(const DataType::_sLinkRegion& region, bool side = true) {
    xkl::DcRunList list;
    xkl::BuildDcRunList(state, list, region, side);
    return list;
  }
  std::wstring Fused(const DataType::_sLinkRegion& region) {
    xkl::DcRunList list = Runs(region);
    xkl::BuildFusedRuns(state, region, true, list.vecRun);
    return Describe(list);
  }
  // The interned code, -1 for a code that neither hole carries.
  int32_t Code(const wchar_t* code) { return state.Codes().IdOf(code); }
};

TEST_F(StratumRunTest, OneRunPerStratumOfTheSidesRangeAndMergingFusesFirstToLast) {
  LoadCodes({{L"A", 3}, {L"B", 4}, {L"A", 5}, {L"C", 2}});
  auto one = Runs(Region(0, 4, 0, 1));
  EXPECT_EQ(Describe(one), L"A[0,1) B[1,2) A[2,3) C[3,4) ");
  EXPECT_EQ(Describe(Runs(Region(0, 4, 0, 1), false)), L"Z[0,1) ");
  EXPECT_TRUE(Runs(Region(1, 1, 0, 1)).vecRun.empty());
  EXPECT_TRUE(Runs(Region(1, 3, -1, -1), false).vecRun.empty()); // a lens of hole 1
  xkl::MergeDcRun(one, Code(L"C")); // a single occurrence: nothing changes
  xkl::MergeDcRun(one, Code(L"X"));
  EXPECT_EQ(Describe(one), L"A[0,1) B[1,2) A[2,3) C[3,4) ");
  xkl::MergeDcRun(one, Code(L"A"));
  EXPECT_EQ(Describe(one), L"A[0,3)* C[3,4) ");
}

TEST_F(StratumRunTest, LastTwoCandidatesDecideWhichCodeIsFusedFirst) {
  // A is the thickest repeated code, yet only the last comparison, B against C, counts; a tie,
  // also one within the tolerance, goes to the later candidate.
  const std::pair<Strata, const wchar_t*> cases[] = {
      {{{L"A", 5}, {L"B", 3}, {L"C", 2}, {L"A", 5}, {L"B", 3}, {L"C", 2}}, L"B"},
      {{{L"A", 5}, {L"B", 2}, {L"C", 3}, {L"A", 5}, {L"B", 2}, {L"C", 3}}, L"C"},
      {{{L"A", 5}, {L"B", 2.5}, {L"C", 2.5}, {L"A", 5}, {L"B", 2.5}, {L"C", 2.5}}, L"C"},
      {{{L"A", 5}, {L"B", 2.500004}, {L"C", 2.5}, {L"A", 5}, {L"B", 2.500004}, {L"C", 2.5}}, L"C"},
      {{{L"A", 5}, {L"B", 2.50001}, {L"C", 2.5}, {L"A", 5}, {L"B", 2.50001}, {L"C", 2.5}}, L"B"},
  };
  for (const auto& [strata, expected] : cases) {
    SCOPED_TRACE(testing::Message() << "B " << strata[1].second << ", C " << strata[2].second);
    LoadCodes(strata);
    int32_t code = -1;
    ASSERT_TRUE(xkl::FindRepeatedDc(Runs(Region(0, 6, 0, 1)), code));
    EXPECT_EQ(code, Code(expected));
  }
  LoadCodes(cases[0].first);
  EXPECT_EQ(Fused(Region(0, 6, 0, 1)), L"A[0,1) B[1,5)* C[5,6) ");
}

TEST_F(StratumRunTest, EnvelopeCodeBeforeTheSecondOccurrenceBlocksFusing) {
  LoadCodes({{L"B", 2}, {L"A", 3}, {L"B", 2}});
  int32_t code = -1;
  for (const bool named : {true, false}) {
    EXPECT_FALSE(xkl::FindRepeatedDc(Runs(Region(0, 3, 0, 1, L"A", named, 2)), code));
  }
  // The envelope's code above the first occurrence does not count.
  LoadCodes({{L"A", 1}, {L"B", 2}, {L"C", 3}, {L"B", 2}});
  EXPECT_EQ(Fused(Region(0, 4, 0, 1, L"A", true, 2)), L"A[0,1) B[1,4)* ");
  // B, C, B, A, B: the test stops at B's second occurrence, so A is swallowed by the fusing.
  LoadCodes({{L"B", 2}, {L"C", 3}, {L"B", 2}, {L"A", 1}, {L"B", 4}});
  EXPECT_EQ(Fused(Region(0, 5, 0, 1, L"A", false, 2)), L"B[0,5)* ");
  EXPECT_EQ(Fused(Region(0, 5, 0, 1, L"A", true, 2)), L"B[0,5)* ");
}

// The wedges of one region: code, named, ranges; their corners lie on the boundaries of the
// ranges, so a wedge thins out at the next stratum of the other hole.
struct Wedge {
  const wchar_t* code;
  bool named;
  int32_t b1, e1, b2, e2;
};

class CloseUnmatchedRegionTest : public CorrelationTest {
protected:
  void Expect(int32_t b1, int32_t e1, int32_t b2, int32_t e2, int32_t kind,
              const std::vector<Wedge>& wedges) {
    SCOPED_TRACE(testing::Message() << "region " << b1 << "-" << e1 << ", " << b2 << "-" << e2);
    xkl::RegionList out(1); // appended to, never cleared
    xkl::CloseUnmatchedRegion(state, Region(b1, e1, b2, e2, L"W", false, kind), out);
    ASSERT_EQ(out.size(), wedges.size() + 1);
    EXPECT_TRUE(SameTree(out[0], DataType::_sLinkRegion()));
    for (std::size_t i = 0; i < wedges.size(); ++i) {
      const Wedge& w = wedges[i];
      EXPECT_TRUE(SameTree(out[i + 1], Region(w.b1, w.e1, w.b2, w.e2, w.code, w.named, 2))) << i;
    }
  }
};

TEST_F(CloseUnmatchedRegionTest, WedgesInterleaveByCodeUnitsHoleOneFirstOnTies) {
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"1", 95.0}, {L"3", 90.0}}),
       MakeBorehole(50.0, 0.0, 101.0, {{L"2", 93.0}}));
  Expect(0, 2, 0, 1, 0,
         {{L"1", false, 0, 1, 0, 0}, {L"2", false, 1, 1, 0, 1}, {L"3", false, 1, 2, 1, 1}});
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"9", 95.0}, {L"3", 90.0}}),
       MakeBorehole(50.0, 0.0, 101.0, {{L"10", 93.0}}));
  Expect(1, 1, 1, 1, 0, {});
  Expect(0, 2, 1, 1, 0, {{L"9", false, 0, 1, 1, 1}, {L"3", false, 1, 2, 1, 1}});
  Expect(0, 1, 0, 1, 0, {{L"10", false, 0, 0, 0, 1}, {L"9", false, 0, 1, 1, 1}});
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"Q", 95.0}}),
       MakeBorehole(50.0, 0.0, 101.0, {{L"Q", 93.0}}));
  Expect(0, 1, 0, 1, 2, {{L"Q", false, 0, 1, 0, 0}, {L"Q", false, 1, 1, 0, 1}});
  // A repeated code becomes one named wedge over everything between its occurrences.
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"A", 85.0}}),
       MakeBorehole(50.0, 0.0, 101.0, {{L"C", 93.0}}));
  Expect(0, 3, 0, 1, 0, {{L"A", true, 0, 3, 0, 0}, {L"C", false, 3, 3, 0, 1}});
}

class CloseNamedRegionTest : public CorrelationTest {
protected:
  // A lens over the given ranges: the corners on its own hole in slot 0 (also for a lens of hole
  // 2), the tip in slot 1.
  DataType::_sLinkRegion Lens(int32_t b1, int32_t e1, int32_t b2, int32_t e2, const wchar_t* code,
                              bool named, CXk3DPoint tip) {
    auto r = Region(b1, e1, b2, e2, code, named, 1);
    if (b1 < 0) {
      r.ptTop[0] = r.ptTop[1];
      r.ptBot[0] = r.ptBot[1];
    }
    r.ptTop[1] = r.ptBot[1] = tip;
    return r;
  }
};

TEST_F(CloseNamedRegionTest, LensesReachNearlyHalfWayAndThoseOfHoleTwoKeepCornersInSlotZero) {
  // B of hole 1 first, its tip 45 m out at its mid elevation; C and D of hole 2 with their tips
  // 45 m from hole 2 towards hole 1.
  Load(MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"A", 85.0}}),
       MakeBorehole(100.0, 0.0, 100.0, {{L"A", 96.0}, {L"C", 92.0}, {L"D", 88.0}, {L"A", 84.0}}));
  xkl::RegionList out;
  xkl::CloseNamedRegion(state, Region(0, 3, 0, 4, L"A", true), out);
  ASSERT_EQ(out.size(), 3u);
  EXPECT_TRUE(SameTree(out[0], Lens(1, 2, -1, -1, L"B", false, CXk3DPoint(45.0, 0.0, 92.5))));
  EXPECT_TRUE(SameTree(out[1], Lens(-1, -1, 1, 2, L"C", false, CXk3DPoint(55.0, 0.0, 94.0))));
  EXPECT_TRUE(SameTree(out[2], Lens(-1, -1, 2, 3, L"D", false, CXk3DPoint(55.0, 0.0, 90.0))));
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
  const auto c = Lens(1, 4, -1, -1, L"C", true, CXk3DPoint(45.0, 0.0, 92.0));
  const auto d = Lens(2, 3, -1, -1, L"D", false, CXk3DPoint(23.625, 0.0, 92.5));
  EXPECT_TRUE(SameTree(envelope, With(Region(0, 5, 0, 1, L"A", true), {With(c, {d})})));
}

} // namespace
} // namespace xkltest
