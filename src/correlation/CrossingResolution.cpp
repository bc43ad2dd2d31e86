#include "correlation/CrossingResolution.h"

#include <algorithm>
#include <cmath>

namespace xkl {

namespace {

// Below this many candidates an insertion sort.
constexpr std::size_t kInsertionSortLimit = 32;

bool ByKey(const DcPair* a, const DcPair* b) { return a->dDiffGC < b->dDiffGC; }

void InsertionSort(std::vector<DcPair*>& candidates) {
  for (std::size_t k = 1; k < candidates.size(); ++k) {
    DcPair* moving = candidates[k];
    std::size_t j = k;
    while (j > 0 && ByKey(moving, candidates[j - 1])) {
      candidates[j] = candidates[j - 1];
      --j;
    }
    candidates[j] = moving;
  }
}

} // namespace

void ResolveCrossings(std::vector<DcPair>& pairs, Workspace& work) {
  if (!ResolveCrossingsByBitsets(pairs, work.bitsets)) {
    ResolveCrossingsBySweep(pairs, work.sweep);
  }
}

// Many candidates share the key 0, and of two crossing ones the first must win: the sort is stable.
// Where every key is a number, any stable sort gives the insertion order, and so does an unstable
// one that breaks ties by list order, which the addresses give; it needs no temporary storage. A
// key that is not a number is unordered against every other, and only inserting one by one tells
// where each candidate ends.
void StableSortByKey(std::vector<DcPair*>& candidates) {
  const bool anyNaN = std::any_of(candidates.begin(), candidates.end(),
                                  [](const DcPair* pair) { return std::isnan(pair->dDiffGC); });
  if (candidates.size() <= kInsertionSortLimit || anyNaN) {
    InsertionSort(candidates);
    return;
  }
  std::sort(candidates.begin(), candidates.end(), [](const DcPair* a, const DcPair* b) {
    return a->dDiffGC < b->dDiffGC || (a->dDiffGC == b->dDiffGC && a < b);
  });
}

} // namespace xkl
