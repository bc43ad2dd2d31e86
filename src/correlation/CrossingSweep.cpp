// Settling crossing pairs when they run into the thousands (long logs of few codes): the sweep
// over a segment tree for a list of pairs held in full, and the second chance by prefix maxima
// over the rows.
#include "correlation/CrossingSweep.h"

#include "correlation/CrossingResolution.h"
#include "correlation/KeptStaircase.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>

namespace xkl {

namespace {

using sweep::Index;

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

// A pair list held in full, as the sweep sees it: an entry is a pair's place in the list.
class ListLayout {
public:
  ListLayout(const std::vector<DcPair>& pairs, int32_t lowestColumn)
      : m_pairs(pairs), m_lowestColumn(lowestColumn) {}

  bool NextRow(int32_t& row, std::vector<SweepPair>& out) {
    if (m_next == m_pairs.size()) {
      return false;
    }
    row = m_pairs[m_next].nDC1;
    out.clear();
    for (; m_next < m_pairs.size() && m_pairs[m_next].nDC1 == row; ++m_next) {
      const DcPair& pair = m_pairs[m_next];
      out.push_back({static_cast<int32_t>(m_next), pair.nDC2 - m_lowestColumn, pair.dDiffGC});
    }
    return true;
  }
  double Key(std::size_t /*column*/, int32_t entry) const {
    return SweepKey(m_pairs[Index(entry)].dDiffGC);
  }
  int32_t Row(int32_t entry) const { return m_pairs[Index(entry)].nDC1; }

  // Groups the pairs that are not dropped by column, into buffers.offset and entries.
  void FillColumns(std::size_t columnCount, SweepBuffers& m) const {
    m.offset.assign(columnCount + 1, 0);
    for (std::size_t p = 0; p < m_pairs.size(); ++p) {
      if (!m.dropped[p]) {
        ++m.offset[Index(m_pairs[p].nDC2 - m_lowestColumn) + 1];
      }
    }
    for (std::size_t c = 0; c < columnCount; ++c) {
      m.offset[c + 1] += m.offset[c];
    }
    m.entries.resize(Index(m.offset[columnCount]));
    m.hi.assign(m.offset.begin(), m.offset.end() - 1); // fill cursors
    for (std::size_t p = 0; p < m_pairs.size(); ++p) {
      if (!m.dropped[p]) {
        const std::size_t c = Index(m_pairs[p].nDC2 - m_lowestColumn);
        m.entries[Index(m.hi[c]++)] = static_cast<int32_t>(p);
      }
    }
  }

private:
  const std::vector<DcPair>& m_pairs;
  int32_t m_lowestColumn;
  std::size_t m_next = 0;
};

} // namespace

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
  // What the kept pairs say about each row and column: the staircase they form, and which rows
  // and columns hold one.
  KeptStaircase staircase(m.keptMaxBefore, m.keptMinAfter, rows);
  m.rowKept.assign(rows, 0);
  m.columnKept.assign(columns, 0);
  for (const DcPair& pair : pairs) {
    if (!pair.bDrop) {
      m.rowKept[row(pair)] = 1;
      m.columnKept[column(pair)] = 1;
      staircase.Add(row(pair), pair.nDC2);
    }
  }
  staircase.Close();

  std::vector<DcPair*>& candidates = m.candidates;
  candidates.clear();
  for (DcPair& pair : pairs) {
    if (!pair.bDrop) {
      continue;
    }
    const std::size_t r = row(pair);
    if (staircase.Crosses(r, pair.nDC2)) {
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

void ResolveCrossingsBySweep(std::vector<DcPair>& pairs, SweepBuffers& buffers) {
  if (pairs.size() < 2) {
    return;
  }
  int32_t lowest = pairs.front().nDC2;
  int32_t highest = lowest;
  for (const DcPair& pair : pairs) {
    lowest = std::min(lowest, pair.nDC2);
    highest = std::max(highest, pair.nDC2);
  }
  const std::size_t columnCount = Index(highest - lowest + 1);
  buffers.dropped.resize(pairs.size());
  for (std::size_t p = 0; p < pairs.size(); ++p) {
    buffers.dropped[p] = pairs[p].bDrop ? 1 : 0;
  }
  ListLayout layout(pairs, lowest);
  layout.FillColumns(columnCount, buffers);
  SweepCrossingPairs(layout, columnCount, buffers);
  for (std::size_t p = 0; p < pairs.size(); ++p) {
    pairs[p].bDrop = buffers.dropped[p] != 0;
  }
  ReadmitDroppedPairs(pairs, buffers);
}

} // namespace xkl
