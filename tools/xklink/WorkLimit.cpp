#include "WorkLimit.h"

#include "Errors.h"

#include <map>

namespace xklink {

uint64_t EqualCodePairs(const DataType::_sZK& a, const DataType::_sZK& b) {
  std::map<std::wstring, uint64_t> occurrences;
  for (const DataType::_sZKDC& dc : a.vecDC) {
    ++occurrences[dc.strName];
  }
  uint64_t pairs = 0;
  for (const DataType::_sZKDC& dc : b.vecDC) {
    const auto it = occurrences.find(dc.strName);
    if (it != occurrences.end()) {
      pairs += it->second;
    }
  }
  return pairs;
}

void RequireWorkWithinLimit(const std::vector<std::string>& names,
                            const std::vector<DataType::_sZK>& holes) {
  for (std::size_t i = 1; i < holes.size(); ++i) {
    const uint64_t pairs = EqualCodePairs(holes[i - 1], holes[i]);
    if (pairs > kMaxEqualCodePairs) {
      throw InputError(names[i - 1] + " and " + names[i] + ": too large to correlate: their " +
                       "strata form " + std::to_string(pairs) +
                       " pairs of equal codes, the limit is " + std::to_string(kMaxEqualCodePairs) +
                       " (seconds of work and about 120 MB of memory); merge repeated strata "
                       "(--merge-repeats) or split the logs");
    }
  }
}

} // namespace xklink
