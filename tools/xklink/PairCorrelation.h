// Correlating every consecutive pair of holes of a section, on several threads.
#pragma once

#include <XKLinkDc/XKLinkDc.h>

#include <cstddef>
#include <vector>

namespace xklink {

struct PairResult {
  DataType::_sLinkRegion root;             // the region tree of the pair
  std::vector<DataType::_sLinkLine> lines; // its section lines, highest first
};

// Correlates holes[i] with holes[i + 1] for every i. Each worker owns its correlation context, so
// the pairs run at once; the result is the same for any number of jobs (0 = all cores). Without
// `withTrees` only the lines are kept (the roots stay empty).
std::vector<PairResult> CorrelateConsecutivePairs(const std::vector<DataType::_sZK>& holes,
                                                  unsigned jobs, bool withTrees);

} // namespace xklink
