// Correlating every consecutive pair of holes of a section, on several threads.
#pragma once

#include <XKLinkDc/XKLinkDc.h>
#include <cstddef>
#include <functional>
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

// Calls correlate(context, i) for i in [0, count) on up to `jobs` threads (0 = all cores), each
// with a context of its own. Long logs take memory in proportion to the pairs of equal codes, and
// several at once may need more than the machine has where one at a time would not: a pair that
// runs out of memory beside others is tried again alone, once the other workers have ended and
// freed theirs. Any other exception, or running out of memory alone, ends the run with the first
// one thrown.
using CorrelateOne = std::function<void(XKLinkDc::CorrelationContext&, std::size_t)>;
void ForEachPair(std::size_t count, unsigned jobs, const CorrelateOne& correlate);

} // namespace xklink
