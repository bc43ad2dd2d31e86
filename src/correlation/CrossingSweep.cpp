// Settling crossing pairs when they run into the thousands (long logs of few codes): a sweep over
// the rows with a segment tree over the columns answers "which live later pairs cross this one"
// in logarithmic time, and prefix maxima over the rows settle the re-admissions.
#include "correlation/CrossingResolution.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>

namespace xkl {

namespace {

std::size_t Index(int32_t i) { return static_cast<std::size_t>(i); }

// The sweep key of a pair. The pairwise rule "drop b unless a's key is greater" and "drop a when
// a's key is greater" treat a key that is not a number exactly like +infinity on b's side: b is
// always dropped and never drops a. On a's side a NaN key drops every crossing pair and never a
// itself, which the sweep handles apart.
double SweepKey(double dDiffGC) {
  return std::isnan(dDiffGC) ? std::numeric_limits<double>::infinity() : dDiffGC;
}

// Where each pair stands in the sweep. Drops are kept here, in one byte a pair, and copied to the
// pairs at the end: the pairs of long logs fill hundreds of megabytes, and marking them one by one
// as the tree hands them out would touch a new page for nearly every drop.
constexpr uint8_t kInTree = 1;  // in a row after the current one, not dropped
constexpr uint8_t kLeft = 0;    // its row has been reached
constexpr uint8_t kDropped = 2; // dropped while still in the tree

constexpr double kNoKey = -std::numeric_limits<double>::infinity(); // greatest key of no pair
constexpr double kBelowAllKeys = -1.0; // keys are absolute differences, never below 0
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The live pairs of the rows below the sweep, by borehole-2 column. Each column keeps its pairs
// sorted by key (stored flat, column after column); pairs leave a column from either end (lazily,
// by a flag) or are dropped from its top. A segment tree over the columns holds the least and
// greatest key still live.
class ColumnTree {
public:
  ColumnTree(const std::vector<DcPair>& pairs, int32_t lowestColumn, std::size_t columnCount,
             SweepBuffers& buffers)
      : m(buffers) {
    const std::size_t count = pairs.size();
    m.offset.assign(columnCount + 1, 0);
    for (std::size_t p = 0; p < count; ++p) {
      if (m.live[p] == kInTree) {
        ++m.offset[Index(pairs[p].nDC2 - lowestColumn) + 1];
      }
    }
    for (std::size_t c = 0; c < columnCount; ++c) {
      m.offset[c + 1] += m.offset[c];
    }
    m.entries.resize(Index(m.offset[columnCount]));
    m.lo.assign(m.offset.begin(), m.offset.end() - 1);
    m.hi.assign(m.offset.begin(), m.offset.end() - 1); // used as fill cursors first
    for (std::size_t p = 0; p < count; ++p) {
      if (m.live[p] == kInTree) {
        const std::size_t c = Index(pairs[p].nDC2 - lowestColumn);
        m.entries[Index(m.hi[c]++)] = {SweepKey(pairs[p].dDiffGC), static_cast<int32_t>(p)};
      }
    }
    m_size = 1;
    while (m_size < columnCount) {
      m_size *= 2;
    }
    m.treeMin.assign(2 * m_size, kInfinity);
    m.treeMax.assign(2 * m_size, kNoKey);
    for (std::size_t c = 0; c < columnCount; ++c) {
      const auto first = m.entries.begin() + m.offset[c];
      const auto last = m.entries.begin() + m.offset[c + 1];
      std::sort(first, last, [](const SweepEntry& a, const SweepEntry& b) { return a.key < b.key; });
      --m.hi[c]; // last entry of the column
      Refresh(c, false);
    }
    for (std::size_t node = m_size - 1; node >= 1; --node) {
      Pull(node);
    }
  }

  // The pair has left the structure (its state in `live` is no longer kInTree).
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

  // Removes every live pair of columns [0, end) whose key is at least `threshold`, calling
  // drop(pair) for each.
  template <class Drop> void DropFrom(int32_t end, double threshold, Drop&& drop) {
    DropIn(1, 0, m_size, Index(end), threshold, drop);
  }

private:
  template <class Drop>
  void DropIn(std::size_t node, std::size_t nodeLo, std::size_t nodeHi, std::size_t end,
              double threshold, Drop& drop) {
    if (nodeLo >= end || m.treeMax[node] < threshold) {
      return;
    }
    if (node >= m_size) {
      const std::size_t c = node - m_size;
      while (m.hi[c] >= m.lo[c]) {
        const SweepEntry& entry = m.entries[Index(m.hi[c])];
        if (m.live[Index(entry.pair)] == kInTree) {
          if (entry.key < threshold) {
            break;
          }
          drop(entry.pair);
        }
        --m.hi[c];
      }
      Refresh(c, false);
      return;
    }
    const std::size_t mid = (nodeLo + nodeHi) / 2;
    DropIn(2 * node, nodeLo, mid, end, threshold, drop);
    DropIn(2 * node + 1, mid, nodeHi, end, threshold, drop);
    Pull(node);
  }

  void Pull(std::size_t node) {
    m.treeMin[node] = std::min(m.treeMin[2 * node], m.treeMin[2 * node + 1]);
    m.treeMax[node] = std::max(m.treeMax[2 * node], m.treeMax[2 * node + 1]);
  }

  // Skips pairs that have left at both ends of a column and stores its least and greatest key.
  void Refresh(std::size_t c, bool propagate) {
    while (m.lo[c] <= m.hi[c] && m.live[Index(m.entries[Index(m.lo[c])].pair)] != kInTree) {
      ++m.lo[c];
    }
    while (m.hi[c] >= m.lo[c] && m.live[Index(m.entries[Index(m.hi[c])].pair)] != kInTree) {
      --m.hi[c];
    }
    std::size_t node = m_size + c;
    const double oldMin = m.treeMin[node];
    const double oldMax = m.treeMax[node];
    if (m.lo[c] <= m.hi[c]) {
      m.treeMin[node] = m.entries[Index(m.lo[c])].key;
      m.treeMax[node] = m.entries[Index(m.hi[c])].key;
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
  std::size_t m_size = 1;
};

// Prefix maximum (or, with negated values, minimum) over row indices, for growing sets, in a
// Fenwick tree kept in the caller's storage.
class PrefixMax {
public:
  PrefixMax(std::vector<int32_t>& tree, std::size_t size) : m_tree(tree) {
    m_tree.assign(size + 1, INT_MIN);
  }
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
  std::vector<int32_t>& m_tree;
};

void DropCrossingPairs(std::vector<DcPair>& pairs, SweepBuffers& buffers) {
  int32_t lowest = pairs.front().nDC2;
  int32_t highest = lowest;
  for (const DcPair& pair : pairs) {
    lowest = std::min(lowest, pair.nDC2);
    highest = std::max(highest, pair.nDC2);
  }
  std::vector<uint8_t>& live = buffers.live;
  live.resize(pairs.size());
  for (std::size_t p = 0; p < pairs.size(); ++p) {
    live[p] = pairs[p].bDrop ? kDropped : kInTree;
  }
  ColumnTree tree(pairs, lowest, Index(highest - lowest + 1), buffers);

  // Rows are processed in order; the tree holds the live pairs of the rows after the current one,
  // which are exactly the later pairs that can cross a pair of the current row.
  std::size_t rowBegin = 0;
  while (rowBegin < pairs.size()) {
    std::size_t rowEnd = rowBegin;
    while (rowEnd < pairs.size() && pairs[rowEnd].nDC1 == pairs[rowBegin].nDC1) {
      ++rowEnd;
    }
    for (std::size_t p = rowBegin; p < rowEnd; ++p) {
      if (live[p] == kInTree) {
        live[p] = kLeft;
        tree.Leave(pairs[p].nDC2 - lowest);
      }
    }
    for (std::size_t a = rowBegin; a < rowEnd; ++a) {
      if (live[a] == kDropped) {
        continue;
      }
      // The later pairs that cross a lie in later rows and in earlier columns.
      const int32_t end = pairs[a].nDC2 - lowest;
      const double key = pairs[a].dDiffGC;
      const bool aIsNan = std::isnan(key);
      if (!aIsNan && tree.MinKey(end) < key) {
        pairs[a].bDrop = true;
      }
      tree.DropFrom(end, aIsNan ? kBelowAllKeys : key,
                    [&live](int32_t b) { live[Index(b)] = kDropped; });
    }
    rowBegin = rowEnd;
  }
  for (std::size_t p = 0; p < pairs.size(); ++p) {
    if (live[p] == kDropped) {
      pairs[p].bDrop = true;
    }
  }
}

void ReadmitDroppedPairs(std::vector<DcPair>& pairs, SweepBuffers& m) {
  // Rows and columns counted from the first of the region.
  const int32_t firstRow = pairs.front().nDC1;
  int32_t firstColumn = pairs.front().nDC2;
  int32_t lastColumn = firstColumn;
  for (const DcPair& pair : pairs) {
    firstColumn = std::min(firstColumn, pair.nDC2);
    lastColumn = std::max(lastColumn, pair.nDC2);
  }
  const std::size_t rows = Index(pairs.back().nDC1 - firstRow) + 1;
  const std::size_t columns = Index(lastColumn - firstColumn) + 1;
  const auto row = [firstRow](const DcPair& pair) { return Index(pair.nDC1 - firstRow); };
  const auto column = [firstColumn](const DcPair& pair) { return Index(pair.nDC2 - firstColumn); };
  // What the kept pairs say about each row and column: the greatest column of the kept pairs in
  // the rows before r and the least in the rows after r, and which rows and columns hold one.
  m.keptMaxBefore.assign(rows + 1, INT_MIN);
  m.keptMinAfter.assign(rows + 1, INT_MAX);
  m.rowKept.assign(rows, 0);
  m.columnKept.assign(columns, 0);
  for (const DcPair& pair : pairs) {
    if (!pair.bDrop) {
      m.rowKept[row(pair)] = 1;
      m.columnKept[column(pair)] = 1;
      m.keptMaxBefore[row(pair) + 1] = std::max(m.keptMaxBefore[row(pair) + 1], pair.nDC2);
      m.keptMinAfter[row(pair)] = std::min(m.keptMinAfter[row(pair)], pair.nDC2);
    }
  }
  for (std::size_t r = 0; r < rows; ++r) {
    m.keptMaxBefore[r + 1] = std::max(m.keptMaxBefore[r], m.keptMaxBefore[r + 1]);
  }
  for (std::size_t r = rows; r-- > 0;) {
    m.keptMinAfter[r] = std::min(m.keptMinAfter[r], m.keptMinAfter[r + 1]);
  }

  std::vector<DcPair*>& candidates = m.candidates;
  candidates.clear();
  for (DcPair& pair : pairs) {
    if (!pair.bDrop) {
      continue;
    }
    const std::size_t r = row(pair);
    const bool crossesKept = m.keptMaxBefore[r] > pair.nDC2 || m.keptMinAfter[r + 1] < pair.nDC2;
    if (crossesKept) {
      continue;
    }
    if (!m.rowKept[r] && !m.columnKept[column(pair)]) {
      pair.dDiffGC = 0.0;
    }
    candidates.push_back(&pair);
  }
  StableSortByKey(candidates);

  // Re-admitted pairs so far: the greatest nDC2 over rows before r, and (on reversed rows) the
  // least nDC2 over rows after r, stored negated as a maximum.
  PrefixMax before(m.before, rows);
  PrefixMax after(m.after, rows);
  for (DcPair* candidate : candidates) {
    const std::size_t r = row(*candidate);
    const int32_t negatedMinAfter = after.Max(rows - 1 - r);
    const bool crosses = before.Max(r) > candidate->nDC2 ||
                         (negatedMinAfter != INT_MIN && -negatedMinAfter < candidate->nDC2);
    if (crosses) {
      continue;
    }
    candidate->bDrop = false;
    before.Raise(r, candidate->nDC2);
    after.Raise(rows - 1 - r, -candidate->nDC2);
  }
}

} // namespace

void ResolveCrossingsBySweep(std::vector<DcPair>& pairs, SweepBuffers& buffers) {
  if (pairs.size() < 2) {
    return;
  }
  DropCrossingPairs(pairs, buffers);
  ReadmitDroppedPairs(pairs, buffers);
}

} // namespace xkl
