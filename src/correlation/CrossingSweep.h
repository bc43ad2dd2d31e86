// The first sweep of the crossing settlement for pairs that run into the thousands (long logs of
// few codes): rows are taken in order, and a segment tree over the borehole-2 columns answers
// "which pairs of later rows cross this one, and how small is the least key among them" in
// logarithmic time.
//
// The sweep does not hold the pairs themselves. A layout tells it where they are:
//   bool NextRow(int32_t& row, std::vector<SweepPair>& out)
//       the pairs of the next row in column order and the row's number (increasing); false at
//       the end;
//   double Key(std::size_t column, int32_t entry) const   the sweep key (SweepKey) of an entry;
//   int32_t Row(int32_t entry) const                      the row number of an entry.
// An entry is whatever small number the layout finds its pair by. Four bytes a pair keep the
// columns of two long logs within a tenth of the memory a pair list would take.
//
// Nor does the sweep mark pairs as it drops them, which would write all over memory: a column
// keeps its entries in one order (by key, then row) and drops only from its top, so a pair of the
// row the sweep is about to reach has been dropped exactly when it lies above its column's top.
// The marks are written when each row is reached, in list order.
#pragma once

#include "correlation/CrossingResolution.h"
#include "correlation/Workspace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace xkl {

namespace sweep {

inline std::size_t Index(int32_t i) {
  return static_cast<std::size_t>(i);
}

constexpr double kNoKey = -std::numeric_limits<double>::infinity(); // greatest key of no pair
constexpr double kBelowAllKeys = -1.0; // keys are absolute differences, never below 0
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The live pairs of the rows below the sweep, by column. Each column keeps its entries sorted by
// key (stored flat, column after column); pairs leave a column from either end (lazily, once the
// sweep has passed their row) or are dropped from its top. The tree holds each column's least and
// greatest key still live.
template <class Layout> class ColumnTree {
public:
  // The entries of each column are in buffers.entries from buffers.offset on.
  ColumnTree(const Layout& layout, std::size_t columnCount, SweepBuffers& buffers)
      : m(buffers), m_layout(layout) {
    m.lo.assign(m.offset.begin(), m.offset.end() - 1);
    m.hi.resize(columnCount);
    m_size = 1;
    while (m_size < columnCount) {
      m_size *= 2;
    }
    m.treeMin.assign(2 * m_size, kInfinity);
    m.treeMax.assign(2 * m_size, kNoKey);
    for (std::size_t c = 0; c < columnCount; ++c) {
      m.hi[c] = m.offset[c + 1] - 1; // last entry of the column
      SortColumn(c);
      Refresh(c, false);
    }
    for (std::size_t node = m_size - 1; node >= 1; --node) {
      Pull(node);
    }
  }

  // The sweep has reached `row`: the pairs of that row and the rows before it have left.
  void Reach(int32_t row) { m_row = row; }
  // A pair of the row just reached has left this column.
  void Leave(int32_t column) { Refresh(Index(column), true); }

  // Least live key among columns [0, end); +infinity when there is none.
  double MinKey(int32_t end) const {
    double best = kInfinity;
    std::size_t lo = m_size;
    std::size_t hi = m_size + Index(end);
    while (lo < hi) {
      if (lo & 1) {
        best = std::min(best, m.treeMin[lo++]);
      }
      if (hi & 1) {
        best = std::min(best, m.treeMin[--hi]);
      }
      lo >>= 1;
      hi >>= 1;
    }
    return best;
  }

  // Removes every live pair of columns [0, end) whose key is at least `threshold`.
  void DropFrom(int32_t end, double threshold) { DropIn(1, 0, m_size, Index(end), threshold); }

  // Whether the pair of the given key (a sweep key) and row in this column has been dropped; for
  // pairs of rows the sweep has not reached.
  bool Dropped(int32_t column, double key, int32_t row) const {
    const std::size_t c = Index(column);
    if (m.hi[c] < m.lo[c]) {
      return true;
    }
    const int32_t top = m.entries[Index(m.hi[c])];
    const double topKey = Key(c, top);
    return key > topKey || (key == topKey && row > m_layout.Row(top));
  }

private:
  double Key(std::size_t c, int32_t entry) const { return m_layout.Key(c, entry); }

  // Orders a column by key and then row, each key worked out once.
  void SortColumn(std::size_t c) {
    const auto first = m.entries.begin() + m.offset[c];
    const auto last = m.entries.begin() + m.offset[c + 1];
    m.keyed.clear();
    for (auto e = first; e != last; ++e) {
      m.keyed.emplace_back(Key(c, *e), *e);
    }
    std::sort(m.keyed.begin(), m.keyed.end(), [this](const auto& a, const auto& b) {
      return a.first < b.first ||
             (a.first == b.first && m_layout.Row(a.second) < m_layout.Row(b.second));
    });
    std::transform(m.keyed.begin(), m.keyed.end(), first,
                   [](const auto& keyed) { return keyed.second; });
  }

  void DropIn(std::size_t node, std::size_t nodeLo, std::size_t nodeHi, std::size_t end,
              double threshold) {
    if (nodeLo >= end || m.treeMax[node] < threshold) {
      return;
    }
    if (node >= m_size) {
      const std::size_t c = node - m_size;
      while (m.hi[c] >= m.lo[c]) {
        const int32_t entry = m.entries[Index(m.hi[c])];
        if (Below(entry) && Key(c, entry) < threshold) {
          break;
        }
        --m.hi[c];
      }
      Refresh(c, false);
      return;
    }
    const std::size_t mid = (nodeLo + nodeHi) / 2;
    DropIn(2 * node, nodeLo, mid, end, threshold);
    DropIn(2 * node + 1, mid, nodeHi, end, threshold);
    Pull(node);
  }

  void Pull(std::size_t node) {
    m.treeMin[node] = std::min(m.treeMin[2 * node], m.treeMin[2 * node + 1]);
    m.treeMax[node] = std::max(m.treeMax[2 * node], m.treeMax[2 * node + 1]);
  }

  // Whether an entry between a column's ends is still in the tree. Dropped pairs are always taken
  // from the top end, so between the ends only pairs of rows the sweep has reached are gone.
  bool Below(int32_t entry) const { return m_layout.Row(entry) > m_row; }

  // Skips pairs that have left at both ends of a column and stores its least and greatest key.
  void Refresh(std::size_t c, bool propagate) {
    while (m.lo[c] <= m.hi[c] && !Below(m.entries[Index(m.lo[c])])) {
      ++m.lo[c];
    }
    while (m.hi[c] >= m.lo[c] && !Below(m.entries[Index(m.hi[c])])) {
      --m.hi[c];
    }
    std::size_t node = m_size + c;
    const double oldMin = m.treeMin[node];
    const double oldMax = m.treeMax[node];
    if (m.lo[c] <= m.hi[c]) {
      m.treeMin[node] = Key(c, m.entries[Index(m.lo[c])]);
      m.treeMax[node] = Key(c, m.entries[Index(m.hi[c])]);
    } else {
      m.treeMin[node] = kInfinity;
      m.treeMax[node] = kNoKey;
    }
    // Keys are never NaN here, so equality tells whether the ancestors need updating.
    if (propagate && (m.treeMin[node] != oldMin || m.treeMax[node] != oldMax)) {
      for (node >>= 1; node >= 1; node >>= 1) {
        Pull(node);
      }
    }
  }

  SweepBuffers& m;
  const Layout& m_layout;
  std::size_t m_size = 1;
  int32_t m_row = std::numeric_limits<int32_t>::min(); // the row the sweep has reached
};

} // namespace sweep

// The first sweep over pairs numbered in list order. On entry buffers.dropped marks the pairs
// dropped already and buffers.offset and buffers.entries hold the layout's entries of the other
// pairs grouped by column (offset: the first entry of each of `columnCount` columns, and one past
// the end); on return buffers.dropped marks every dropped pair.
//
// Rows are processed in order; the tree holds the pairs of the rows after the current one that
// are not dropped, which are exactly the later pairs that can cross a pair of the current row.
template <class Layout>
void SweepCrossingPairs(Layout& layout, std::size_t columnCount, SweepBuffers& buffers) {
  sweep::ColumnTree<Layout> tree(layout, columnCount, buffers);
  std::vector<uint8_t>& dropped = buffers.dropped;
  std::vector<SweepPair>& row = buffers.row;
  int32_t rowNumber = 0;
  while (layout.NextRow(rowNumber, row)) {
    for (const SweepPair& pair : row) {
      if (!dropped[sweep::Index(pair.pair)] &&
          tree.Dropped(pair.column, SweepKey(pair.key), rowNumber)) {
        dropped[sweep::Index(pair.pair)] = 1;
      }
    }
    tree.Reach(rowNumber);
    for (const SweepPair& pair : row) {
      tree.Leave(pair.column);
    }
    for (const SweepPair& a : row) {
      if (dropped[sweep::Index(a.pair)]) {
        continue;
      }
      // The later pairs that cross a lie in later rows and in earlier columns. A pair that loses
      // here goes on dropping the pairs whose keys are not less than its own.
      const bool aIsNan = std::isnan(a.key);
      const bool loses = !aIsNan && tree.MinKey(a.column) < a.key;
      tree.DropFrom(a.column, aIsNan ? sweep::kBelowAllKeys : a.key);
      if (loses) {
        dropped[sweep::Index(a.pair)] = 1;
      }
    }
  }
}

} // namespace xkl
