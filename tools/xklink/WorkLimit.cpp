#include "WorkLimit.h"

#include "Errors.h"

#include <map>

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

void RequireWorkWithinLimit(const std::vector<HoleRecord>& holes) {
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
