// The largest correlation the tool takes on.
//
// The correlation pairs every occurrence of a code in one hole with every occurrence in the other,
// so its work grows with the product of the occurrences: two logs of 2,000 thin layers of six codes
// make about 670,000 pairs (a twentieth of a second, 11 MB); two logs of 100,000 such layers would
// make 1.7 billion pairs, minutes of work and gigabytes of memory. Rather than leave the user
// waiting without end, the tool refuses a pair of holes beyond the limit before it starts.
#pragma once

#include "BoreholeSet.h"

#include <cstdint>
#include <vector>

namespace xklink {

// Pairs of equal-code strata of two holes, the size of their correlation. About 6 bytes of
// working memory each at the peak.
constexpr uint64_t kMaxEqualCodePairs = 20'000'000; // about 120 MB and 3 s

uint64_t EqualCodePairs(const HoleRecord& a, const HoleRecord& b);

// Throws InputError at the place of the second hole of the first consecutive pair beyond the
// limit (its file and line), naming both holes.
void RequireWorkWithinLimit(const std::vector<HoleRecord>& holes);

} // namespace xklink
