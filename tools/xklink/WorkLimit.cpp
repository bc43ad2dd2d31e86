#include "WorkLimit.h"

#include "Errors.h"

#include <map>
#include <string_view>
#include <unordered_map>

namespace xklink {

uint64_t EqualCodePairs(const HoleRecord& a, const HoleRecord& b) {
  std::map<std::wstring, uint64_t> occurrences;
  for (const StratumRecord& stratum : a.strata) {
    ++occurrences[stratum.dc.strName];
  }
  uint64_t pairs = 0;
  for (const StratumRecord& stratum : b.strata) {
    const auto it = occurrences.find(stratum.dc.strName);
    if (it != occurrences.end()) {
      pairs += it->second;
    }
  }
  return pairs;
}

uint64_t EnvelopeWork(const HoleRecord& hole) {
  struct Span {
    std::size_t first;
    std::size_t last;
  };
  std::unordered_map<std::wstring_view, Span> spans;
  for (std::size_t k = 0; k < hole.strata.size(); ++k) {
    const auto [it, added] = spans.try_emplace(hole.strata[k].dc.strName, Span{k, k});
    it->second.last = k;
  }
  // Strata held by each envelope, counted by opening and closing them along the hole.
  std::vector<int64_t> opened(hole.strata.size() + 1, 0);
  for (const auto& [code, span] : spans) {
    if (span.first < span.last) {
      ++opened[span.first];
      --opened[span.last + 1];
    }
  }
  uint64_t work = 0;
  int64_t open = 0;
  for (std::size_t k = 0; k < hole.strata.size(); ++k) {
    open += opened[k];
    work += static_cast<uint64_t>(open);
  }
  return work;
}

void RequireWorkWithinLimit(const std::vector<HoleRecord>& holes) {
  for (const HoleRecord& hole : holes) {
    const uint64_t work = EnvelopeWork(hole);
    if (work > kMaxEnvelopeWork) {
      throw InputError(hole.where,
                       hole.name + ": too large to correlate: its repeated codes nest into " +
                           std::to_string(work) + " stratum-envelopes, the limit is " +
                           std::to_string(kMaxEnvelopeWork) + " (seconds of work); split the log");
    }
  }
  for (std::size_t i = 1; i < holes.size(); ++i) {
    const uint64_t pairs = EqualCodePairs(holes[i - 1], holes[i]);
    if (pairs > kMaxEqualCodePairs) {
      throw InputError(holes[i].where,
                       holes[i - 1].name + " and " + holes[i].name +
                           ": too large to correlate: their " + "strata form " +
                           std::to_string(pairs) + " pairs of equal codes, the limit is " +
                           std::to_string(kMaxEqualCodePairs) +
                           " (seconds of work and about 120 MB of memory); merge repeated strata "
                           "(--merge-repeats) or split the logs");
    }
  }
}

} // namespace xklink
