// The bounds-safe introsort: it sorts whatever a consistent predicate orders, keeps the comparison
// count near n log n even against an adversary, and with an inconsistent predicate (random answers,
// always true, always false, the section-line ordering over mixed plan positions) it still returns
// a permutation of its input without touching anything outside the range. Run it under the
// sanitized build: the vectors are sized exactly, so AddressSanitizer sees any overrun.
#include "lines/BoundedIntroSort.h"
#include "lines/Lines.h"

#include <XKLinkDc/XKLinkDc.h>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

// A key to sort by and an identity that makes every element distinct.
struct Item {
  int key;
  int id;
};
bool operator==(const Item& a, const Item& b) {
  return a.key == b.key && a.id == b.id;
}
bool ById(const Item& a, const Item& b) {
  return a.id < b.id;
}

constexpr int kSentinelId = -1;

const std::size_t kSizes[] = {0, 1, 2, 15, 16, 17, 31, 32, 33, 100, 1000, 10000};

std::vector<Item> MakeInput(const std::string& pattern, std::size_t n, std::mt19937& rng) {
  std::vector<Item> v;
  v.reserve(n);
  const int size = static_cast<int>(n);
  for (int i = 0; i < size; ++i) {
    int key = 0;
    if (pattern == "random") {
      key = static_cast<int>(rng() % 1000000u);
    } else if (pattern == "duplicates") {
      key = static_cast<int>(rng() % 4u);
    } else if (pattern == "sorted") {
      key = i;
    } else if (pattern == "reverse") {
      key = size - i;
    } else if (pattern == "organ pipe") {
      key = std::min(i, size - 1 - i);
    } else { // "equal"
      key = 7;
    }
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
  auto first = buffer.begin() + static_cast<std::ptrdiff_t>(guard);
  xkl::BoundedIntroSort(first, first + static_cast<std::ptrdiff_t>(input.size()),
                        [&](const Item& a, const Item& b) {
                          if (a.id == kSentinelId || b.id == kSentinelId) {
                            ++sentinelSeen;
                          }
                          return less(a, b);
                        });
  EXPECT_EQ(sentinelSeen, 0u);
  for (std::size_t i = 0; i < guard; ++i) {
    EXPECT_EQ(buffer[i], sentinel) << "sentinel before the range at " << i;
    EXPECT_EQ(buffer[buffer.size() - 1 - i], sentinel) << "sentinel after the range at " << i;
  }
  std::vector<Item> out(first, first + static_cast<std::ptrdiff_t>(input.size()));
  std::vector<Item> a = input;
  std::vector<Item> b = out;
  std::sort(a.begin(), a.end(), ById);
  std::sort(b.begin(), b.end(), ById);
  EXPECT_TRUE(a == b) << "not a permutation of the input";
  return out;
}

bool KeyLess(const Item& a, const Item& b) {
  return a.key < b.key;
}
bool KeyGreater(const Item& a, const Item& b) {
  return a.key > b.key;
}

TEST(BoundedIntroSortTest, SortsLikeStdSortForAConsistentPredicate) {
  std::mt19937 rng(20240611u);
  for (const char* pattern : kPatterns) {
    for (std::size_t n : kSizes) {
      SCOPED_TRACE(testing::Message() << pattern << ", " << n << " elements");
      const std::vector<Item> input = MakeInput(pattern, n, rng);
      for (bool ascending : {true, false}) {
        const std::vector<Item> out =
            ascending ? SortGuarded(input, KeyLess) : SortGuarded(input, KeyGreater);
        std::vector<int> expected;
        for (const Item& item : input) {
          expected.push_back(item.key);
        }
        if (ascending) {
          std::sort(expected.begin(), expected.end());
        } else {
          std::sort(expected.begin(), expected.end(), std::greater<>());
        }
        std::vector<int> keys;
        for (const Item& item : out) {
          keys.push_back(item.key);
        }
        EXPECT_TRUE(keys == expected) << (ascending ? "ascending" : "descending");
      }
    }
  }
}

TEST(BoundedIntroSortTest, SortsPlainValuesInPlace) {
  std::vector<double> v = {3.5, -1.0, 2.0, 2.0, 1e9, -7.25, 0.0,  3.5,  8.0,  -1.0,
                           4.0, 6.0,  5.0, 9.0, 1.0, 7.0,   11.0, 10.0, 12.0, -3.0};
  std::vector<double> expected = v;
  std::sort(expected.begin(), expected.end());
  xkl::BoundedIntroSort(v.begin(), v.end(), std::less<>());
  EXPECT_EQ(v, expected);
  int raw[] = {5, 4, 3, 2, 1};
  xkl::BoundedIntroSort(raw, raw + 5, std::less<>());
  EXPECT_TRUE(std::is_sorted(raw, raw + 5));
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
    for (int i = 0; i < n; ++i) {
      index[static_cast<std::size_t>(i)] = i;
    }
    xkl::BoundedIntroSort(index.begin(), index.end(), less);
    const double bound = 8.0 * n * std::log2(static_cast<double>(n));
    EXPECT_LT(static_cast<double>(comparisons), bound);
    EXPECT_TRUE(
        std::is_sorted(index.begin(), index.end(), [&](int a, int b) { return at(a) < at(b); }));
  }
}

TEST(BoundedIntroSortTest, InconsistentPredicatesStayInRangeAndPermute) {
  std::mt19937 rng(77u);
  std::mt19937 coin(4242u);
  using Pred = std::function<bool(const Item&, const Item&)>;
  struct Case {
    const char* name;
    Pred pred;
    // Predicates that answer true for most pairs make the final insertion pass quadratic; they
    // run on the sizes up to 1000 only.
    std::size_t maxSize;
  };
  const Case cases[] = {
      {"random answers", [&](const Item&, const Item&) { return (coin() & 1u) != 0; }, 10000},
      {"mostly true", [&](const Item&, const Item&) { return coin() % 8u != 0; }, 10000},
      {"always true", [](const Item&, const Item&) { return true; }, 1000},
      {"always false", [](const Item&, const Item&) { return false; }, 10000},
      {"not equal", [](const Item& a, const Item& b) { return a.key != b.key; }, 1000},
      {"less or equal", [](const Item& a, const Item& b) { return a.key <= b.key; }, 1000},
      {"greater or equal", [](const Item& a, const Item& b) { return a.key >= b.key; }, 1000},
      {"cyclic", [](const Item& a, const Item& b) { return (b.key - a.key + 3) % 3 == 1; }, 10000},
  };
  for (const Case& c : cases) {
    for (const char* pattern : kPatterns) {
      for (std::size_t n : kSizes) {
        if (n > c.maxSize) {
          continue;
        }
        SCOPED_TRACE(testing::Message() << c.name << ", " << pattern << ", " << n << " elements");
        std::vector<Item> input = MakeInput(pattern, n, rng);
        if (std::string(c.name) == "cyclic") {
          for (Item& item : input) {
            item.key %= 3;
          }
        }
        SortGuarded(input, c.pred);
      }
    }
  }
}

// --- the section-line ordering ------------------------------------------------------------

std::vector<DataType::_sLinkLine> MixedLines(std::size_t n, std::mt19937& rng, bool onePlan) {
  // Plan positions within the tolerance of each other and far apart.
  const double plans[] = {0.0, 5e-6, 10.0, 10.000004, 60.0};
  std::uniform_real_distribution<double> elevation(-50.0, 120.0);
  std::vector<DataType::_sLinkLine> lines(n);
  for (std::size_t i = 0; i < n; ++i) {
    DataType::_sLinkLine& l = lines[i];
    const double x1 = onePlan ? 0.0 : plans[rng() % 5u];
    l.pt1 = CXk3DPoint(x1, onePlan ? 0.0 : plans[rng() % 2u], elevation(rng));
    l.pt2 = CXk3DPoint(plans[rng() % 5u], 0.0, elevation(rng));
    if (rng() % 4u == 0 && i > 0) {
      l.pt1.z = lines[i - 1].pt1.z; // ties of the plain elevation comparison
    }
    l.nType = static_cast<int32_t>(i); // identity
    l.strUpName = L"L" + std::to_wstring(i);
  }
  return lines;
}

bool SameIdentities(std::vector<DataType::_sLinkLine> a, std::vector<DataType::_sLinkLine> b) {
  const auto byId = [](const DataType::_sLinkLine& l, const DataType::_sLinkLine& r) {
    return l.nType < r.nType;
  };
  std::sort(a.begin(), a.end(), byId);
  std::sort(b.begin(), b.end(), byId);
  if (a.size() != b.size()) {
    return false;
  }
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i].nType != b[i].nType || a[i].strUpName != b[i].strUpName || a[i].pt1.x != b[i].pt1.x ||
        a[i].pt1.z != b[i].pt1.z || a[i].pt2.x != b[i].pt2.x || a[i].pt2.z != b[i].pt2.z) {
      return false;
    }
  }
  return true;
}

TEST(BoundedIntroSortTest, SectionLinesOfMixedPlanPositionsStayInRange) {
  std::mt19937 rng(9001u);
  for (std::size_t n : kSizes) {
    for (int round = 0; round < (n < 1000 ? 20 : 2); ++round) {
      SCOPED_TRACE(testing::Message() << n << " lines, round " << round);
      const std::vector<DataType::_sLinkLine> input = MixedLines(n, rng, false);
      std::vector<DataType::_sLinkLine> lines = input;
      lines.shrink_to_fit();
      xkl::BoundedIntroSort(lines.begin(), lines.end(), xkl::IsLineAbove);
      EXPECT_TRUE(SameIdentities(input, lines));
    }
  }
}

TEST(BoundedIntroSortTest, SectionLinesFromOnePlanPositionRunFromTheHighest) {
  std::mt19937 rng(31337u);
  for (std::size_t n : kSizes) {
    SCOPED_TRACE(testing::Message() << n << " lines");
    const std::vector<DataType::_sLinkLine> input = MixedLines(n, rng, true);
    std::vector<DataType::_sLinkLine> lines = input;
    xkl::BoundedIntroSort(lines.begin(), lines.end(), xkl::IsLineAbove);
    EXPECT_TRUE(SameIdentities(input, lines));
    for (std::size_t i = 1; i < lines.size(); ++i) {
      ASSERT_GE(lines[i - 1].pt1.z, lines[i].pt1.z) << "at " << i;
    }
  }
}

} // namespace
