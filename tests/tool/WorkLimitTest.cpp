// The work limit: a pair of neighbouring holes whose equal-code strata form more pairs than the
// tool takes on is refused before any correlation starts, with a message naming both holes.
#include "WorkLimit.h"

#include "Errors.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace xktool {
namespace {

// A hole of `count` thin layers of each code in turn.
DataType::_sZK ThinLayers(const std::vector<std::wstring>& codes, int count) {
  DataType::_sZK hole;
  hole.dTopGC = 0.0;
  for (int k = 0; k < count; ++k) {
    DataType::_sZKDC dc;
    dc.strName = codes[static_cast<std::size_t>(k) % codes.size()];
    dc.dTopGC = -0.1 * k;
    dc.dBotGC = -0.1 * (k + 1);
    hole.vecDC.push_back(dc);
  }
  return hole;
}

std::string Refusal(const std::vector<std::string>& names,
                    const std::vector<DataType::_sZK>& holes) {
  try {
    xklink::RequireWorkWithinLimit(names, holes);
  } catch (const xklink::InputError& error) {
    return error.what();
  }
  return {};
}

TEST(WorkLimitTest, PairsAreCountedCodeByCode) {
  const auto a = ThinLayers({L"CLAY", L"SAND", L"SILT"}, 9); // three of each
  const auto b = ThinLayers({L"CLAY", L"SAND"}, 5);          // three CLAY, two SAND
  EXPECT_EQ(xklink::EqualCodePairs(a, b), 3u * 3u + 3u * 2u);
  EXPECT_EQ(xklink::EqualCodePairs(b, a), 15u);
  EXPECT_EQ(xklink::EqualCodePairs(a, ThinLayers({L"PEAT"}, 4)), 0u);
  EXPECT_EQ(xklink::EqualCodePairs(a, DataType::_sZK{}), 0u);
  // Codes are compared exactly: case and spaces make another code.
  EXPECT_EQ(xklink::EqualCodePairs(ThinLayers({L"Clay"}, 2), ThinLayers({L"CLAY", L"CLAY "}, 2)),
            0u);
}

TEST(WorkLimitTest, RefusesNeighboursBeyondTheLimitOnly) {
  // One code: 4,472 squared is just within 20,000,000, 4,473 squared just beyond.
  const auto within = ThinLayers({L"CLAY"}, 4472);
  const auto beyond = ThinLayers({L"CLAY"}, 4473);
  ASSERT_LE(xklink::EqualCodePairs(within, within), xklink::kMaxEqualCodePairs);
  ASSERT_GT(xklink::EqualCodePairs(beyond, beyond), xklink::kMaxEqualCodePairs);
  EXPECT_EQ(Refusal({"BH1", "BH2"}, {within, within}), "");

  // The first pair passes; the second (4,472 by 4,473) is the first beyond.
  const std::string message = Refusal({"BH1", "BH2", "BH3"}, {within, within, beyond});
  EXPECT_NE(message.find("BH2 and BH3"), std::string::npos) << message;
  EXPECT_NE(message.find("20003256"), std::string::npos) << message;
  EXPECT_NE(message.find("--merge-repeats"), std::string::npos) << message;

  // Only neighbours are correlated: two long logs with a short hole between them pass.
  EXPECT_EQ(Refusal({"BH1", "BH2", "BH3"}, {beyond, ThinLayers({L"CLAY"}, 3), beyond}), "");
  EXPECT_EQ(Refusal({"BH1"}, {beyond}), "");
}

} // namespace
} // namespace xktool
