// A root that already holds regions, from this call's holes or an earlier call's: where the
// differential tests, which always start from a root without children, do not go.
#include "CorrelationTestSupport.h"

#include <XKLinkDc/XKLinkDc.h>
#include <gtest/gtest.h>
#include <vector>

namespace xkltest {
namespace {

using Lines = std::vector<DataType::_sLinkLine>;

// Hole 1: A 100-95, B 95-90, C 90-80 at the origin; hole 2: A 102-96, C 96-85, 60 m east.
const auto kABC = MakeBorehole(0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"C", 80.0}});
const auto kAC = MakeBorehole(60.0, 0.0, 102.0, {{L"A", 96.0}, {L"C", 85.0}});

TEST(LinkDcTest, RegionsAlreadyInTheRootStayFirstAndAreVisited) {
  DataType::_sLinkRegion root;
  // A, B on hole 1, touching hole 2 above C.
  root.vecChild = {MakeRegion(kABC, kAC, 0, 2, 1, 1, L"pre", false, 2)};
  LinkDc(kABC, kAC, root);
  // The gap pass reads the whole child list, so the earlier region stands as the first
  // sub-region: a top gap down to its top on hole 2 (A of hole 2 pinching out), an empty gap
  // between it and A, then B between A and C.
  ASSERT_EQ(root.vecChild.size(), 5u);
  const auto& c = root.vecChild;
  EXPECT_EQ(c[0].strName + c[1].strName + c[2].strName + c[3].strName + c[4].strName, L"preACAB");
  EXPECT_RANGES(c[3], 0, 0, 0, 1);
  EXPECT_RANGES(c[4], 1, 2, 1, 1);
  EXPECT_TRUE(SameTree(c[0], With(MakeRegion(kABC, kAC, 0, 2, 1, 1, L"pre", false, 2),
                                  {MakeRegion(kABC, kAC, 0, 1, 1, 1, L"A", false, 2),
                                   MakeRegion(kABC, kAC, 1, 2, 1, 1, L"B", false, 2)})));
}

// Issue 18, item 6: a root reused from a call with longer holes still holds children whose ranges
// run past the strata of the new holes. They are left as they are, not read outside the strata
// (the sanitizers watch the reads); children that fit are worked on as usual.
TEST(LinkDcTest, LeftOverChildrenBeyondTheStrataAreLeftAsTheyAre) {
  const auto longer = MakeBorehole(
      0.0, 0.0, 100.0, {{L"A", 95.0}, {L"B", 90.0}, {L"C", 80.0}, {L"B", 70.0}, {L"D", 60.0}});
  DataType::_sLinkRegion root;
  LinkDc(longer, longer, root);
  ASSERT_FALSE(root.vecChild.empty());
  DataType::_sLinkRegion beyond = MakeRegion(kABC, kAC, 2, 5, 0, 2, L"X", false, 0);
  beyond.vecChild = {MakeRegion(kABC, kAC, 0, 40, 0, 40, L"Y", false, 2)};
  root.vecChild.push_back(beyond);
  root.vecChild.push_back(MakeRegion(kABC, kAC, 0, 2, 1, 1, L"fits", false, 2));
  const std::size_t before = root.vecChild.size();
  LinkDc(kABC, kAC, root);
  ASSERT_EQ(root.vecChild.size(), before + 3);
  EXPECT_TRUE(SameTree(root.vecChild[before - 2], beyond));
  EXPECT_EQ(root.vecChild[before - 1].vecChild.size(), 2u); // A and B, wedges of the fitting child
  Lines lines;
  LinkDcLine(kABC, kAC, lines); // a fresh root: the worked section's three lines
  EXPECT_EQ(lines.size(), 3u);
}

} // namespace
} // namespace xkltest
