// An unstable introspective sort that never leaves its range, whatever the predicate answers.
#pragma once

#include <cstddef>
#include <iterator>
#include <utility>

namespace xkl {

// Sorts [first, last) so that, for a strict weak ordering `less`, the result is ascending.
// Unlike libstdc++'s std::sort, which trusts the predicate in its unguarded insertion and partition
// loops and may run past the range when the predicate is inconsistent, every scan here checks its
// bound: an inconsistent predicate yields some permutation of the input and nothing worse.
template <class RandomIt, class Less>
void BoundedIntroSort(RandomIt first, RandomIt last, Less less);

} // namespace xkl
