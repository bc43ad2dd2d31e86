// Joining repeated codes: logs split one unit into several rows by description.
#include "BoreholeBuilders.h"
#include "IoTestSupport.h"
#include "Text.h"

#include <cmath>
#include <gtest/gtest.h>

namespace xklink {
namespace {

using testing::MakeHole;
using testing::MakeSet;

std::vector<std::string> Beds(const HoleRecord& hole) {
  std::vector<std::string> out;
  for (const auto& s : hole.strata) {
    out.push_back(ToUtf8(s.dc.strName) + " " + std::to_string(static_cast<int>(s.dc.dTopGC)) +
                  ".." + std::to_string(static_cast<int>(s.dc.dBotGC)) + " @" +
                  std::to_string(s.where.line));
  }
  return out;
}

BoreholeSet Merged(const std::vector<testing::Bed>& beds) {
  auto set = MakeSet({MakeHole("BH1", 0, 0, 100, beds, 1)});
  MergeRepeatedCodes(set);
  return set;
}

TEST(MergeRepeatsTest, JoinsTouchingStrataWithTheSameCode) {
  const auto set = Merged(
      {{L"MG", 100, 99}, {L"MG", 99, 97}, {L"MG", 97, 96}, {L"LC", 96, 80}, {L"MG", 80, 79}});
  EXPECT_EQ(Beds(set.holes[0]),
            (std::vector<std::string>{"MG 100..96 @2", "LC 96..80 @5", "MG 80..79 @6"}));
}

TEST(MergeRepeatsTest, NeverBridgesAGapOrAnOverlap) {
  EXPECT_EQ(Beds(Merged({{L"A", 100, 98}, {L"A", 97, 95}}).holes[0]),
            (std::vector<std::string>{"A 100..98 @2", "A 97..95 @3"}));
  EXPECT_EQ(Beds(Merged({{L"A", 100, 96}, {L"A", 97, 95}}).holes[0]),
            (std::vector<std::string>{"A 100..96 @2", "A 97..95 @3"}));
}

TEST(MergeRepeatsTest, KeepsStrataTheHostTellsApart) {
  auto set =
      MakeSet({MakeHole("BH1", 0, 0, 100, {{L"A", 100, 98}, {L"A", 98, 95}, {L"A", 95, 90}}, 1)});
  set.holes[0].strata[1].dc.dAux = 2.0;
  set.holes[0].strata[2].dc.dAux = 2.0;
  set.holes[0].strata[2].dc.bAux = true;
  MergeRepeatedCodes(set);
  EXPECT_EQ(set.holes[0].strata.size(), 3U);
}

TEST(MergeRepeatsTest, NeverHidesAFaultyStratum) {
  // An upside-down stratum joined to its neighbour would look sound.
  EXPECT_EQ(Beds(Merged({{L"A", 100, 98}, {L"A", 98, 99}, {L"A", 99, 90}}).holes[0]).size(), 3U);
  EXPECT_EQ(Beds(Merged({{L"A", 100, NAN}, {L"A", NAN, 90}}).holes[0]).size(), 2U);
}

TEST(MergeRepeatsTest, CodesDifferingOnlyInCaseAreDifferent) {
  EXPECT_EQ(Merged({{L"Clay", 100, 98}, {L"CLAY", 98, 95}}).holes[0].strata.size(), 2U);
}

} // namespace
} // namespace xklink
