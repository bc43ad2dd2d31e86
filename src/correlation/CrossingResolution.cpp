#include "correlation/CrossingResolution.h"

#include <algorithm>

namespace xkl {

namespace {

// Below this many candidates an insertion sort, which allocates nothing.
constexpr std::size_t kInsertionSortLimit = 32;

} // namespace

void ResolveCrossings(std::vector<DcPair>& pairs, Workspace& work) {
  if (!ResolveCrossingsByBitsets(pairs, work.bitsets)) {
    ResolveCrossingsBySweep(pairs, work.sweep);
  }
}

// Many candidates share the key 0, and of two crossing ones the first must win: the sort is stable.
void StableSortByKey(std::vector<DcPair*>& candidates) {
  const auto byKey = [](const DcPair* a, const DcPair* b) { return a->dDiffGC < b->dDiffGC; };
  if (candidates.size() > kInsertionSortLimit) {
    std::stable_sort(candidates.begin(), candidates.end(), byKey);
    return;
  }
  for (std::size_t k = 1; k < candidates.size(); ++k) {
    DcPair* moving = candidates[k];
    std::size_t j = k;
    while (j > 0 && byKey(moving, candidates[j - 1])) {
      candidates[j] = candidates[j - 1];
      --j;
    }
    candidates[j] = moving;
  }
}

} // namespace xkl
