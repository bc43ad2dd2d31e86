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

// A code met again lower in a hole makes an envelope from its first to its last stratum, and each
// envelope is closed again as a region of its own: a stratum inside d envelopes is walked about d
// times. A sequence that repeats upwards as it came down (A B C ... C B A) nests half its strata
// deep; 10,000 such strata are 25 million stratum-envelopes, about two seconds.
constexpr uint64_t kMaxEnvelopeWork = 50'000'000; // about four seconds

// The sum over the strata of a hole of the number of envelopes (first to last stratum of a
// repeated code) that hold it.
uint64_t EnvelopeWork(const HoleRecord& hole);

// Throws InputError at the place of the first hole whose envelopes are beyond the limit, or of
// the second hole of the first consecutive pair beyond the limit (its file and line), naming the
// holes.
void RequireWorkWithinLimit(const std::vector<HoleRecord>& holes);

} // namespace xklink
