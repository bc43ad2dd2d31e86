// The bounds-safe introsort: stays near n log n comparisons against an adversary, and under any
// predicate (random answers, always true) permutes its input without touching anything outside the
// range (the vectors are sized exactly, for AddressSanitizer). That it leaves exactly std::sort's
// order is shown on the section lines by the differential tests.
#include "lines/BoundedIntroSort.h"

#include <XKLinkDc/XKLinkDc.h>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

// A key to sort by and an identity that makes every element distinct.
struct Item {
  int key;
  int id;
  bool operator==(const Item&) const = default;
};
constexpr int kSentinelId = -1;

const std::size_t kSizes[] = {0, 1, 2, 15, 16, 17, 31, 32, 33, 100, 1000, 10000};

std::vector<Item> MakeInput(const std::string& pattern, std::size_t n, std::mt19937& rng) {
  std::vector<Item> v;
  const int size = static_cast<int>(n);
  for (int i = 0; i < size; ++i) {
    const int key = pattern == "random"       ? static_cast<int>(rng() % 1000000u)
                    : pattern == "duplicates" ? static_cast<int>(rng() % 4u)
                    : pattern == "sorted"     ? i
                    : pattern == "reverse"    ? size - i
                    : pattern == "organ pipe" ? std::min(i, size - 1 - i)
                                              : 7;
    v.push_back({key, i});
  }
  return v;
}

const char* const kPatterns[] = {"random",  "duplicates", "sorted",
                                 "reverse", "organ pipe", "equal"};

// Copies the input into a vector of exactly its size with `guard` sentinels on each side, sorts
// the inner range and checks that the sentinels are untouched, that the predicate never saw one,
// and that the range holds a permutation of the input. Returns the sorted range.
template <class Less>
std::vector<Item> SortGuarded(const std::vector<Item>& input, Less less, std::size_t guard = 8) {
  const Item sentinel{-12345, kSentinelId};
  std::vector<Item> buffer(input.size() + 2 * guard, sentinel);
  std::copy(input.begin(), input.end(), buffer.begin() + static_cast<std::ptrdiff_t>(guard));
  EXPECT_EQ(buffer.capacity(), buffer.size());
  std::size_t sentinelSeen = 0;
  const auto first = buffer.begin() + static_cast<std::ptrdiff_t>(guard);
  const auto last = first + static_cast<std::ptrdiff_t>(input.size());
  xkl::BoundedIntroSort(first, last, [&](const Item& a, const Item& b) {
    sentinelSeen += (a.id == kSentinelId || b.id == kSentinelId) ? 1 : 0;
    return less(a, b);
  });
  EXPECT_EQ(sentinelSeen, 0u);
  const auto isSentinel = [&](const Item& item) { return item == sentinel; };
  EXPECT_TRUE(std::all_of(buffer.begin(), first, isSentinel)) << "overwritten before the range";
  EXPECT_TRUE(std::all_of(last, buffer.end(), isSentinel)) << "overwritten after the range";
  std::vector<Item> out(first, last);
  std::vector<Item> a = input;
  std::vector<Item> b = out;
  const auto byId = [](const Item& x, const Item& y) { return x.id < y.id; };
  std::sort(a.begin(), a.end(), byId);
  std::sort(b.begin(), b.end(), byId);
  EXPECT_TRUE(a == b) << "not a permutation of the input";
  return out;
}

// Every predicate, ordering or not, on every pattern: in range and a permutation; an ordering
// sorts. That the order is std::sort's own, ties and inconsistent answers included, is shown on
// the section lines themselves by the differential tests, which a changed threshold or depth
// limit fails at once.
TEST(BoundedIntroSortTest, StaysInRangeUnderAnyPredicate) {
  std::mt19937 rng(77u);
  std::mt19937 coin(4242u);
  using Pred = std::function<bool(const Item&, const Item&)>;
  const auto hashed = [](const Item& a, const Item& b) {
    const uint32_t h =
        (static_cast<uint32_t>(a.id) * 2654435761u) ^ (static_cast<uint32_t>(b.id) * 40503u);
    return ((h >> 7) & 3u) == 0; // true for a quarter of the pairs
  };
  struct Case {
    const char* name;
    Pred pred;
    bool ordering; // a strict weak ordering, which the result must follow
    // Predicates that answer true for most pairs make the final insertion pass quadratic; they
    // run on the sizes up to 1000 only.
    std::size_t maxSize;
  };
  const Case cases[] = {
      {"ascending", [](const Item& a, const Item& b) { return a.key < b.key; }, true, 10000},
      {"descending", [](const Item& a, const Item& b) { return a.key > b.key; }, true, 10000},
      {"hashed", hashed, false, 10000},
      {"random answers", [&](const Item&, const Item&) { return (coin() & 1u) != 0; }, false,
       10000},
      {"mostly true", [&](const Item&, const Item&) { return coin() % 8u != 0; }, false, 10000},
      {"always true", [](const Item&, const Item&) { return true; }, false, 1000},
      {"always false", [](const Item&, const Item&) { return false; }, true, 10000},
      {"not equal", [](const Item& a, const Item& b) { return a.key != b.key; }, false, 1000},
      {"less or equal", [](const Item& a, const Item& b) { return a.key <= b.key; }, false, 1000},
      {"greater or equal", [](const Item& a, const Item& b) { return a.key >= b.key; }, false,
       1000},
      {"cyclic", [](const Item& a, const Item& b) { return (b.key % 3 - a.key % 3 + 3) % 3 == 1; },
       false, 10000},
  };
  for (const Case& c : cases) {
    for (const char* pattern : kPatterns) {
      for (std::size_t k = 0; k < std::size(kSizes) && kSizes[k] <= c.maxSize; ++k) {
        SCOPED_TRACE(testing::Message() << c.name << ", " << pattern << ", " << kSizes[k]);
        const std::vector<Item> input = MakeInput(pattern, kSizes[k], rng);
        const std::vector<Item> sorted = SortGuarded(input, c.pred);
        EXPECT_TRUE(!c.ordering || std::is_sorted(sorted.begin(), sorted.end(), c.pred));
      }
    }
  }
}

// McIlroy's adversary answers a consistent order decided lazily so as to make any quicksort go
// quadratic; the introspective fallback to heap sort must keep the count near n log n.
TEST(BoundedIntroSortTest, AdversaryCannotMakeItQuadratic) {
  for (int n : {1000, 10000}) {
    SCOPED_TRACE(n);
    const int gas = n;
    std::vector<int> value(static_cast<std::size_t>(n), gas);
    int solid = 0;
    int candidate = 0;
    std::size_t comparisons = 0;
    auto at = [&](int i) -> int& { return value[static_cast<std::size_t>(i)]; };
    auto less = [&](int a, int b) {
      ++comparisons;
      if (at(a) == gas && at(b) == gas) {
        at(a == candidate ? a : b) = solid++;
      }
      if (at(a) == gas) {
        candidate = a;
      } else if (at(b) == gas) {
        candidate = b;
      }
      return at(a) < at(b);
    };
    std::vector<int> index(static_cast<std::size_t>(n));
    std::iota(index.begin(), index.end(), 0);
    xkl::BoundedIntroSort(index.begin(), index.end(), less);
    const double bound = 8.0 * n * std::log2(static_cast<double>(n));
    EXPECT_LT(static_cast<double>(comparisons), bound);
    EXPECT_TRUE(
        std::is_sorted(index.begin(), index.end(), [&](int a, int b) { return at(a) < at(b); }));
  }
}

} // namespace
