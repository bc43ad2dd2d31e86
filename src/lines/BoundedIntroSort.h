// The standard library's unstable sort, step for step, kept inside its range whatever the
// predicate answers.
//
// Section lines are ordered with a predicate that is not a strict weak ordering: equality of plan
// positions has a tolerance, and which ends are compared changes from pair to pair. Under such a
// predicate the order a sort leaves depends on the sort's own steps, so the lines must go through
// the same steps as in the standard library's introsort (GCC's libstdc++): median-of-three
// pivots, an unguarded Hoare partition, a depth limit of twice the binary logarithm with a heap
// sort beyond it, and a final insertion sort over the first sixteen elements and then the rest.
// Where libstdc++ trusts the predicate to stop a scan (its "unguarded" loops), it may run past the
// range when the predicate is inconsistent; here every such scan stops at the ends of the whole
// range, as if an element that compares false with everything stood on either side. Whenever
// std::sort stays inside the range, this sort makes the same comparisons and leaves the same
// order; where it would not, this one still leaves a permutation of the range.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <iterator>
#include <utility>

namespace xkl {

// Ranges up to this size are left to the final insertion sort.
inline constexpr std::ptrdiff_t kInsertionThreshold = 16;

template <class RandomIt, class Less> class IntroSorter {
public:
  IntroSorter(RandomIt begin, RandomIt end, Less& less)
      : m_begin(begin), m_end(end), m_less(less) {}

  void Sort() {
    if (m_begin == m_end) {
      return;
    }
    const auto size = static_cast<std::size_t>(m_end - m_begin);
    IntroLoop(m_begin, m_end, 2 * (static_cast<std::ptrdiff_t>(std::bit_width(size)) - 1));
    FinalInsertionSort();
  }

private:
  using Distance = std::ptrdiff_t;

  void IntroLoop(RandomIt first, RandomIt last, Distance depthLimit) {
    while (last - first > kInsertionThreshold) {
      if (depthLimit == 0) {
        HeapSort(first, last);
        return;
      }
      --depthLimit;
      const RandomIt cut = PartitionAroundMedian(first, last);
      IntroLoop(cut, last, depthLimit);
      last = cut;
    }
  }

  // Swaps the median of *a, *b and *c (as the predicate sees it) into *result.
  void MoveMedianToFirst(RandomIt result, RandomIt a, RandomIt b, RandomIt c) {
    if (m_less(*a, *b)) {
      if (m_less(*b, *c)) {
        std::iter_swap(result, b);
      } else if (m_less(*a, *c)) {
        std::iter_swap(result, c);
      } else {
        std::iter_swap(result, a);
      }
    } else if (m_less(*a, *c)) {
      std::iter_swap(result, a);
    } else if (m_less(*b, *c)) {
      std::iter_swap(result, c);
    } else {
      std::iter_swap(result, b);
    }
  }

  RandomIt PartitionAroundMedian(RandomIt first, RandomIt last) {
    MoveMedianToFirst(first, first + 1, first + (last - first) / 2, last - 1);
    return Partition(first + 1, last, first);
  }

  // Hoare partition around *pivot. The scans may leave [first, last) when the predicate is
  // inconsistent, as libstdc++'s do, but not the whole range.
  RandomIt Partition(RandomIt first, RandomIt last, RandomIt pivot) {
    for (;;) {
      while (first != m_end && m_less(*first, *pivot)) {
        ++first;
      }
      --last;
      while (m_less(*pivot, *last)) {
        if (last == m_begin) {
          return first; // the scan would leave the range; first lies beyond the pivot
        }
        --last;
      }
      if (!(first < last)) {
        return first;
      }
      std::iter_swap(first, last);
      ++first;
    }
  }

  // Moves *i down past the elements it is less than, not below the start of the range.
  void LinearInsert(RandomIt i) {
    auto value = std::move(*i);
    RandomIt hole = i;
    while (hole != m_begin && m_less(value, *(hole - 1))) {
      *hole = std::move(*(hole - 1));
      --hole;
    }
    *hole = std::move(value);
  }

  void InsertionSort(RandomIt first, RandomIt last) {
    if (first == last) {
      return;
    }
    for (RandomIt i = first + 1; i != last; ++i) {
      if (m_less(*i, *first)) {
        auto value = std::move(*i);
        std::move_backward(first, i, i + 1);
        *first = std::move(value);
      } else {
        LinearInsert(i);
      }
    }
  }

  void FinalInsertionSort() {
    if (m_end - m_begin > kInsertionThreshold) {
      InsertionSort(m_begin, m_begin + kInsertionThreshold);
      for (RandomIt i = m_begin + kInsertionThreshold; i != m_end; ++i) {
        LinearInsert(i);
      }
    } else {
      InsertionSort(m_begin, m_end);
    }
  }

  // The heap steps of libstdc++'s partial sort over the whole of [first, last); they index only
  // inside it.
  template <class Value> void PushHeap(RandomIt first, Distance hole, Distance top, Value value) {
    Distance parent = (hole - 1) / 2;
    while (hole > top && m_less(*(first + parent), value)) {
      *(first + hole) = std::move(*(first + parent));
      hole = parent;
      parent = (hole - 1) / 2;
    }
    *(first + hole) = std::move(value);
  }

  template <class Value>
  void AdjustHeap(RandomIt first, Distance hole, Distance length, Value value) {
    const Distance top = hole;
    Distance child = hole;
    while (child < (length - 1) / 2) {
      child = 2 * (child + 1);
      if (m_less(*(first + child), *(first + (child - 1)))) {
        --child;
      }
      *(first + hole) = std::move(*(first + child));
      hole = child;
    }
    if ((length & 1) == 0 && child == (length - 2) / 2) {
      child = 2 * (child + 1);
      *(first + hole) = std::move(*(first + (child - 1)));
      hole = child - 1;
    }
    PushHeap(first, hole, top, std::move(value));
  }

  void PopHeap(RandomIt first, RandomIt last, RandomIt result) {
    auto value = std::move(*result);
    *result = std::move(*first);
    AdjustHeap(first, Distance{0}, last - first, std::move(value));
  }

  void HeapSort(RandomIt first, RandomIt last) {
    const Distance length = last - first;
    if (length >= 2) {
      for (Distance parent = (length - 2) / 2;; --parent) {
        auto value = std::move(*(first + parent));
        AdjustHeap(first, parent, length, std::move(value));
        if (parent == 0) {
          break;
        }
      }
    }
    while (last - first > 1) {
      --last;
      PopHeap(first, last, last);
    }
  }

  RandomIt m_begin;
  RandomIt m_end;
  Less& m_less;
};

// Sorts [first, last) as std::sort does, without leaving the range under any predicate.
template <class RandomIt, class Less>
void BoundedIntroSort(RandomIt first, RandomIt last, Less less) {
  IntroSorter<RandomIt, Less>(first, last, less).Sort();
}

} // namespace xkl
