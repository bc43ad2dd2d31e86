#include "correlation/CrossingResolution.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace xkl {

namespace {

std::size_t Index(int32_t i) { return static_cast<std::size_t>(i); }

// Ranks of the keys: equal keys share a rank, and a key that is not a number ranks above all
// others. The pairwise rule "drop b unless a's key is greater" then reads "drop b when
// rank(b) >= rank(a)", and "drop a when a's key is greater" reads "rank(b) < rank(a)", NaN included.
std::vector<int32_t> RankKeys(const std::vector<DcPair>& pairs, int32_t& nanRank) {
  std::vector<double> keys;
  keys.reserve(pairs.size());
  for (const DcPair& pair : pairs) {
    if (!std::isnan(pair.dDiffGC)) {
      keys.push_back(pair.dDiffGC);
    }
  }
  std::sort(keys.begin(), keys.end());
  keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
  nanRank = static_cast<int32_t>(keys.size());
  std::vector<int32_t> ranks;
  ranks.reserve(pairs.size());
  for (const DcPair& pair : pairs) {
    ranks.push_back(std::isnan(pair.dDiffGC)
                        ? nanRank
                        : static_cast<int32_t>(std::lower_bound(keys.begin(), keys.end(),
                                                                pair.dDiffGC) -
                                               keys.begin()));
  }
  return ranks;
}

// The live pairs of the rows below the sweep, by borehole-2 column. Each column keeps its pairs
// sorted by key rank; pairs leave a column from either end (lazily, by a flag) or are dropped from
// its top. A segment tree over the columns holds the least and greatest rank still live.
class ColumnTree {
public:
  ColumnTree(const std::vector<int32_t>& column, const std::vector<int32_t>& rank,
             const std::vector<bool>& live, int32_t columnCount)
      : m_rank(rank), m_live(live), m_columns(Index(columnCount)), m_lo(Index(columnCount), 0),
        m_hi(Index(columnCount), 0) {
    for (std::size_t p = 0; p < column.size(); ++p) {
      if (m_live[p]) {
        m_columns[Index(column[p])].push_back(static_cast<int32_t>(p));
      }
    }
    m_size = 1;
    while (m_size < m_columns.size()) {
      m_size *= 2;
    }
    m_min.assign(2 * m_size, INT_MAX);
    m_max.assign(2 * m_size, -1);
    for (std::size_t c = 0; c < m_columns.size(); ++c) {
      auto& entries = m_columns[c];
      std::stable_sort(entries.begin(), entries.end(),
                       [this](int32_t a, int32_t b) { return m_rank[Index(a)] < m_rank[Index(b)]; });
      m_hi[c] = static_cast<int32_t>(entries.size()) - 1;
      Refresh(c, false);
    }
    for (std::size_t node = m_size - 1; node >= 1; --node) {
      Pull(node);
    }
  }

  // The pair has left the structure (its flag in `live` is already cleared).
  void Leave(int32_t column) { Refresh(Index(column), true); }

  // Least live rank among columns [0, end).
  int32_t MinRank(int32_t end) const {
    int32_t best = INT_MAX;
    std::size_t lo = m_size;
    std::size_t hi = m_size + Index(end);
    while (lo < hi) {
      if (lo & 1) {
        best = std::min(best, m_min[lo++]);
      }
      if (hi & 1) {
        best = std::min(best, m_min[--hi]);
      }
      lo >>= 1;
      hi >>= 1;
    }
    return best;
  }

  // Removes every live pair of columns [0, end) whose rank is at least `threshold`, calling
  // drop(pair) for each.
  template <class Drop> void DropFrom(int32_t end, int32_t threshold, Drop&& drop) {
    DropIn(1, 0, m_size, Index(end), threshold, drop);
  }

private:
  template <class Drop>
  void DropIn(std::size_t node, std::size_t nodeLo, std::size_t nodeHi, std::size_t end,
              int32_t threshold, Drop& drop) {
    if (nodeLo >= end || m_max[node] < threshold) {
      return;
    }
    if (node >= m_size) {
      const std::size_t c = node - m_size;
      auto& entries = m_columns[c];
      while (m_hi[c] >= m_lo[c]) {
        const int32_t p = entries[Index(m_hi[c])];
        if (m_live[Index(p)]) {
          if (m_rank[Index(p)] < threshold) {
            break;
          }
          drop(p);
        }
        --m_hi[c];
      }
      Refresh(c, true);
      return;
    }
    const std::size_t mid = (nodeLo + nodeHi) / 2;
    DropIn(2 * node, nodeLo, mid, end, threshold, drop);
    DropIn(2 * node + 1, mid, nodeHi, end, threshold, drop);
    Pull(node);
  }

  void Pull(std::size_t node) {
    m_min[node] = std::min(m_min[2 * node], m_min[2 * node + 1]);
    m_max[node] = std::max(m_max[2 * node], m_max[2 * node + 1]);
  }

  // Skips pairs that have left at both ends of a column and stores its least and greatest rank.
  void Refresh(std::size_t c, bool propagate) {
    const auto& entries = m_columns[c];
    while (m_lo[c] <= m_hi[c] && !m_live[Index(entries[Index(m_lo[c])])]) {
      ++m_lo[c];
    }
    while (m_hi[c] >= m_lo[c] && !m_live[Index(entries[Index(m_hi[c])])]) {
      --m_hi[c];
    }
    std::size_t node = m_size + c;
    if (m_lo[c] <= m_hi[c]) {
      m_min[node] = m_rank[Index(entries[Index(m_lo[c])])];
      m_max[node] = m_rank[Index(entries[Index(m_hi[c])])];
    } else {
      m_min[node] = INT_MAX;
      m_max[node] = -1;
    }
    if (propagate) {
      for (node >>= 1; node >= 1; node >>= 1) {
        Pull(node);
      }
    }
  }

  const std::vector<int32_t>& m_rank;
  const std::vector<bool>& m_live;
  std::vector<std::vector<int32_t>> m_columns;
  std::vector<int32_t> m_lo;
  std::vector<int32_t> m_hi;
  std::size_t m_size = 1;
  std::vector<int32_t> m_min;
  std::vector<int32_t> m_max;
};

// Prefix maximum (or, with negated values, minimum) over row indices, for growing sets.
class PrefixMax {
public:
  explicit PrefixMax(std::size_t size) : m_tree(size + 1, INT_MIN) {}
  void Raise(std::size_t position, int32_t value) {
    for (std::size_t i = position + 1; i < m_tree.size(); i += i & (~i + 1)) {
      m_tree[i] = std::max(m_tree[i], value);
    }
  }
  // Maximum over positions [0, end).
  int32_t Max(std::size_t end) const {
    int32_t best = INT_MIN;
    for (std::size_t i = end; i > 0; i -= i & (~i + 1)) {
      best = std::max(best, m_tree[i]);
    }
    return best;
  }

private:
  std::vector<int32_t> m_tree;
};

} // namespace

void DropCrossingPairs(std::vector<DcPair>& pairs) {
  if (pairs.size() < 2) {
    return;
  }
  // Borehole-2 indices compressed to columns.
  std::vector<int32_t> values;
  values.reserve(pairs.size());
  for (const DcPair& pair : pairs) {
    values.push_back(pair.nDC2);
  }
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  std::vector<int32_t> column;
  column.reserve(pairs.size());
  for (const DcPair& pair : pairs) {
    column.push_back(
        static_cast<int32_t>(std::lower_bound(values.begin(), values.end(), pair.nDC2) -
                             values.begin()));
  }
  int32_t nanRank = 0;
  const std::vector<int32_t> rank = RankKeys(pairs, nanRank);
  std::vector<bool> live(pairs.size());
  for (std::size_t p = 0; p < pairs.size(); ++p) {
    live[p] = !pairs[p].bDrop;
  }
  ColumnTree tree(column, rank, live, static_cast<int32_t>(values.size()));

  // Rows are processed in order; the tree holds the live pairs of the rows after the current one,
  // which are exactly the later pairs that can cross a pair of the current row.
  std::size_t rowBegin = 0;
  while (rowBegin < pairs.size()) {
    std::size_t rowEnd = rowBegin;
    while (rowEnd < pairs.size() && pairs[rowEnd].nDC1 == pairs[rowBegin].nDC1) {
      ++rowEnd;
    }
    for (std::size_t p = rowBegin; p < rowEnd; ++p) {
      if (live[p]) {
        live[p] = false;
        tree.Leave(column[p]);
      }
    }
    for (std::size_t a = rowBegin; a < rowEnd; ++a) {
      if (pairs[a].bDrop) {
        continue;
      }
      // The later pairs that cross a lie in later rows and in earlier columns.
      const int32_t end = column[a];
      const bool aIsNan = std::isnan(pairs[a].dDiffGC);
      if (!aIsNan && tree.MinRank(end) < rank[a]) {
        pairs[a].bDrop = true;
      }
      tree.DropFrom(end, aIsNan ? 0 : rank[a], [&pairs, &live](int32_t b) {
        pairs[Index(b)].bDrop = true;
        live[Index(b)] = false;
      });
    }
    rowBegin = rowEnd;
  }
}

void ReadmitDroppedPairs(std::vector<DcPair>& pairs) {
  int32_t rows = 0;
  int32_t cols = 0;
  for (const DcPair& pair : pairs) {
    rows = std::max(rows, pair.nDC1 + 1);
    cols = std::max(cols, pair.nDC2 + 1);
  }
  // What the kept pairs say about each row and column.
  std::vector<int32_t> keptMaxBefore(Index(rows) + 1, INT_MIN); // max nDC2 of kept rows < r
  std::vector<int32_t> keptMinAfter(Index(rows) + 1, INT_MAX);  // min nDC2 of kept rows > r
  std::vector<bool> rowKept(Index(rows), false);
  std::vector<bool> colKept(Index(cols), false);
  std::vector<int32_t> rowMax(Index(rows), INT_MIN);
  std::vector<int32_t> rowMin(Index(rows), INT_MAX);
  for (const DcPair& pair : pairs) {
    if (!pair.bDrop) {
      rowKept[Index(pair.nDC1)] = true;
      colKept[Index(pair.nDC2)] = true;
      rowMax[Index(pair.nDC1)] = std::max(rowMax[Index(pair.nDC1)], pair.nDC2);
      rowMin[Index(pair.nDC1)] = std::min(rowMin[Index(pair.nDC1)], pair.nDC2);
    }
  }
  for (int32_t r = 0; r < rows; ++r) {
    keptMaxBefore[Index(r) + 1] = std::max(keptMaxBefore[Index(r)], rowMax[Index(r)]);
  }
  for (int32_t r = rows - 1; r >= 0; --r) {
    keptMinAfter[Index(r)] = std::min(keptMinAfter[Index(r) + 1], rowMin[Index(r)]);
  }

  std::vector<DcPair*> candidates;
  for (DcPair& pair : pairs) {
    if (!pair.bDrop) {
      continue;
    }
    const std::size_t r = Index(pair.nDC1);
    const bool crossesKept = keptMaxBefore[r] > pair.nDC2 || keptMinAfter[r + 1] < pair.nDC2;
    if (crossesKept) {
      continue;
    }
    if (!rowKept[r] && !colKept[Index(pair.nDC2)]) {
      pair.dDiffGC = 0.0;
    }
    candidates.push_back(&pair);
  }
  // Stable: many candidates share the key 0, and of two crossing ones the first must win.
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const DcPair* a, const DcPair* b) { return a->dDiffGC < b->dDiffGC; });

  // Re-admitted pairs so far: the greatest nDC2 over rows before r, and (on reversed rows) the
  // least nDC2 over rows after r, stored negated as a maximum.
  PrefixMax before(Index(rows));
  PrefixMax after(Index(rows));
  for (DcPair* candidate : candidates) {
    const std::size_t r = Index(candidate->nDC1);
    const int32_t negatedMinAfter = after.Max(Index(rows) - 1 - r);
    const bool crosses = before.Max(r) > candidate->nDC2 ||
                         (negatedMinAfter != INT_MIN && -negatedMinAfter < candidate->nDC2);
    if (crosses) {
      continue;
    }
    candidate->bDrop = false;
    before.Raise(r, candidate->nDC2);
    after.Raise(Index(rows) - 1 - r, -candidate->nDC2);
  }
}

} // namespace xkl
