// A root that already holds regions from an earlier call: where the differential tests, which start
// from a root without children, do not go.
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

// A root reused from a call with longer holes still holds children whose ranges
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
