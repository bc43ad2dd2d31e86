// An unstable introspective sort that never leaves its range, whatever the predicate answers.
//
// The ordering of section lines is not a strict weak ordering: equality of plan positions has a
// tolerance, and which ends are compared changes from pair to pair. libstdc++'s std::sort trusts
// the predicate in its unguarded insertion and partition loops and may run past the range when the
// predicate is inconsistent. Every scan here checks its bound instead: an inconsistent predicate
// yields some permutation of the input and nothing worse; a consistent one sorts.
#pragma once

#include <cstddef>
#include <iterator>
#include <utility>

namespace xkl {

namespace sort_detail {

// Below this many elements, insertion sort beats partitioning.
inline constexpr std::ptrdiff_t kInsertionThreshold = 16;

template <class RandomIt, class Less>
void InsertionSort(RandomIt first, RandomIt last, Less& less) {
  if (last - first < 2) {
    return;
  }
  for (RandomIt i = first + 1; i != last; ++i) {
    auto value = std::move(*i);
    RandomIt hole = i;
    while (hole != first && less(value, *(hole - 1))) {
      *hole = std::move(*(hole - 1));
      --hole;
    }
    *hole = std::move(value);
  }
}

template <class RandomIt, class Less>
void SiftDown(RandomIt first, std::ptrdiff_t root, std::ptrdiff_t size, Less& less) {
  for (;;) {
    std::ptrdiff_t child = 2 * root + 1;
    if (child >= size) {
      return;
    }
    if (child + 1 < size && less(*(first + child), *(first + child + 1))) {
      ++child;
    }
    if (!less(*(first + root), *(first + child))) {
      return;
    }
    std::iter_swap(first + root, first + child);
    root = child;
  }
}

template <class RandomIt, class Less>
void HeapSort(RandomIt first, RandomIt last, Less& less) {
  const std::ptrdiff_t size = last - first;
  for (std::ptrdiff_t root = size / 2 - 1; root >= 0; --root) {
    SiftDown(first, root, size, less);
  }
  for (std::ptrdiff_t end = size - 1; end > 0; --end) {
    std::iter_swap(first, first + end);
    SiftDown(first, 0, end, less);
  }
}

// Moves the median of the second, middle and last elements to the front as the pivot.
template <class RandomIt, class Less>
void MedianToFront(RandomIt first, RandomIt last, Less& less) {
  RandomIt a = first + 1;
  RandomIt b = first + (last - first) / 2;
  RandomIt c = last - 1;
  if (less(*b, *a)) {
    std::swap(a, b);
  }
  if (less(*c, *b)) {
    b = less(*c, *a) ? a : c;
  }
  std::iter_swap(first, b);
}

// Hoare partition around *first with both scans bounded by each other. Returns the pivot's final
// position: nothing before it is above the pivot, nothing after it below (for a consistent
// predicate).
template <class RandomIt, class Less>
RandomIt Partition(RandomIt first, RandomIt last, Less& less) {
  MedianToFront(first, last, less);
  RandomIt i = first + 1;
  RandomIt j = last - 1;
  for (;;) {
    while (i <= j && less(*i, *first)) {
      ++i;
    }
    while (i <= j && less(*first, *j)) {
      --j;
    }
    if (i >= j) {
      break;
    }
    std::iter_swap(i, j);
    ++i;
    --j;
  }
  std::iter_swap(first, j);
  return j;
}

// Short ranges are finished by insertion sort at once, each on its own: a final pass over the whole
// range would be quadratic for a predicate that answers true too often.
template <class RandomIt, class Less>
void IntroLoop(RandomIt first, RandomIt last, int depthLimit, Less& less) {
  for (;;) {
    if (last - first <= kInsertionThreshold) {
      InsertionSort(first, last, less);
      return;
    }
    if (depthLimit == 0) {
      HeapSort(first, last, less);
      return;
    }
    --depthLimit;
    const RandomIt cut = Partition(first, last, less);
    // Recurse into the part after the pivot, loop on the part before it: the depth limit bounds
    // the recursion.
    IntroLoop(cut + 1, last, depthLimit, less);
    last = cut;
  }
}

} // namespace sort_detail

// Sorts [first, last) so that, for a strict weak ordering `less`, the result is ascending.
template <class RandomIt, class Less>
void BoundedIntroSort(RandomIt first, RandomIt last, Less less) {
  const std::ptrdiff_t size = last - first;
  if (size < 2) {
    return;
  }
  int depthLimit = 0;
  for (std::ptrdiff_t n = size; n > 1; n >>= 1) {
    depthLimit += 2;
  }
  sort_detail::IntroLoop(first, last, depthLimit, less);
}

} // namespace xkl
