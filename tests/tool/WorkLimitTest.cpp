// The work limit: a pair of neighbouring holes whose equal-code strata form more pairs than the
// tool takes on is refused before any correlation starts, with a message naming both holes and
// the file. Within the limit, a pair that runs out of memory beside others is tried again alone.
#include "WorkLimit.h"

#include "Errors.h"
#include "PairCorrelation.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace xktool {
namespace {

// A hole of `count` thin layers of each code in turn, read from line `line` of site.json.
xklink::HoleRecord ThinLayers(const std::vector<std::wstring>& codes, int count,
                              std::size_t line = 1) {
  xklink::HoleRecord hole;
  hole.name = "BH" + std::to_string(line);
  hole.where = {"site.json", line, "name"};
  for (int k = 0; k < count; ++k) {
    xklink::StratumRecord stratum;
    stratum.dc.strName = codes[static_cast<std::size_t>(k) % codes.size()];
    hole.strata.push_back(stratum);
  }
  return hole;
}

std::string Refusal(const std::vector<xklink::HoleRecord>& holes) {
  try {
    xklink::RequireWorkWithinLimit(holes);
  } catch (const xklink::InputError& error) {
    return error.what();
  }
  return {};
}

TEST(WorkLimitTest, RefusesNeighboursBeyondTheLimitOnly) {
  // One code: 4,472 squared is just within 20,000,000, 4,473 squared just beyond.
  const auto within = ThinLayers({L"CLAY"}, 4472);
  const auto beyond = ThinLayers({L"CLAY"}, 4473);
  EXPECT_EQ(Refusal({within, within}), "");

  // The first pair passes; the second (4,472 by 4,473) is the first beyond, named at the place of
  // its second hole.
  EXPECT_EQ(Refusal({within, ThinLayers({L"CLAY"}, 4472, 2), ThinLayers({L"CLAY"}, 4473, 3)}),
            "site.json:3: field name: BH2 and BH3: too large to correlate: their strata form " +
                std::to_string(4472 * 4473) +
                " pairs of equal codes, the limit is 20000000 (seconds of work and about 120 MB of "
                "memory); merge repeated strata (--merge-repeats) or split the logs");

  // Only neighbours are correlated: two long logs with a short hole between them pass.
  EXPECT_EQ(Refusal({beyond, ThinLayers({L"CLAY"}, 3), beyond}), "");
}

// A sequence that repeats upwards as it came down: `depth` codes, then the same codes back up.
xklink::HoleRecord Palindrome(int depth, std::size_t line) {
  std::vector<std::wstring> codes;
  for (int k = 0; k < 2 * depth; ++k) {
    codes.push_back(L"C" + std::to_wstring(std::min(k, 2 * depth - 1 - k)));
  }
  return ThinLayers(codes, 2 * depth, line);
}

TEST(WorkLimitTest, RefusesAHoleWhoseEnvelopesNestBeyondTheLimit) {
  // Each stratum counts the envelopes (first to last stratum of a repeated code) that hold it.
  EXPECT_EQ(xklink::EnvelopeWork(ThinLayers({L"A", L"B"}, 4)), 3u + 3u);
  EXPECT_EQ(xklink::EnvelopeWork(ThinLayers({L"A", L"B", L"C"}, 3)), 0u);
  EXPECT_EQ(xklink::EnvelopeWork(xklink::HoleRecord{}), 0u);
  // A palindrome of d codes nests d deep in its middle: d(d+1) in all. 7,070 codes are just
  // within 50,000,000, 7,071 just beyond; the refusal names the hole where the file gives it.
  const auto within = Palindrome(7070, 2);
  const auto beyond = Palindrome(7071, 4);
  EXPECT_EQ(Refusal({within, within}), "");
  EXPECT_EQ(Refusal({within, beyond}),
            "site.json:4: field name: BH4: too large to correlate: its repeated codes nest into " +
                std::to_string(7071 * 7072) +
                " stratum-envelopes, the limit is 50000000 (seconds of work); split the log");
}

TEST(WorkLimitTest, PairsOutOfMemoryBesideOthersAreTriedAgainAlone) {
  struct Case {
    unsigned jobs;
    bool failsAlone; // every attempt runs out of memory, not only the first
    const char* thrown;
  };
  for (const Case c : {Case{4, false, ""}, Case{2, false, ""}, Case{1, false, "bad_alloc"},
                       Case{4, true, "bad_alloc"}}) {
    SCOPED_TRACE(c.jobs);
    std::mutex mutex;
    std::vector<int> attempts(12, 0);
    std::vector<int> completed(12, 0);
    std::string thrown;
    try {
      xklink::ForEachPair(12, c.jobs, [&](XKLinkDc::CorrelationContext&, std::size_t i) {
        const std::lock_guard lock(mutex);
        if (i % 3 == 0 && (++attempts[i] == 1 || c.failsAlone)) {
          throw std::bad_alloc();
        }
        ++completed[i];
      });
    } catch (const std::bad_alloc&) {
      thrown = "bad_alloc";
    }
    EXPECT_EQ(thrown, c.thrown);
    if (thrown.empty()) {
      EXPECT_EQ(completed, std::vector<int>(12, 1)); // every pair once, none lost or twice
    }
  }
  // Any other failure ends the run as it is.
  EXPECT_THROW(xklink::ForEachPair(5, 2,
                                   [](XKLinkDc::CorrelationContext&, std::size_t i) {
                                     if (i == 3) {
                                       throw std::length_error("fault");
                                     }
                                   }),
               std::length_error);
}

} // namespace
} // namespace xktool
