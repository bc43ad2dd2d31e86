// Matching the strata of two long logs. Logs of thousands of thin layers in a handful of codes
// (cone penetration tests, borehole geophysics) give millions of equal-code pairs, of which only a
// few hundred survive. Listing them all would cost tens of bytes a pair in memory that is written
// once and read a few times; instead the pairs are numbered in collection order and handed to the
// crossing sweep by code: a row's pairs are the columns of its code, a column's pairs the rows of
// its code. Only the kept pairs and the dropped pairs that may get a second chance (those that
// cross no kept pair) are ever listed.
#include "correlation/Correlation.h"
#include "correlation/CrossingResolution.h"
#include "correlation/CrossingSweep.h"
#include "correlation/KeptStaircase.h"
#include "correlation/Workspace.h"

#include <algorithm>
#include <cmath>

namespace xkl {

namespace {

std::size_t Index(int32_t i) {
  return static_cast<std::size_t>(i);
}

// Groups the strata first..last of one borehole by code, each code's in increasing order, counted
// from `first`; the excluded code gets none. A counting sort.
void GroupByCode(const std::vector<int32_t>& ids, int32_t first, int32_t last, int32_t excluded,
                 std::size_t codeCount, std::vector<int32_t>& items, std::vector<int32_t>& at) {
  at.assign(codeCount + 1, 0);
  for (int32_t i = first; i <= last; ++i) {
    if (ids[Index(i)] != excluded) {
      ++at[Index(ids[Index(i)]) + 1];
    }
  }
  for (std::size_t c = 0; c < codeCount; ++c) {
    at[c + 1] += at[c];
  }
  items.resize(Index(at[codeCount]));
  for (int32_t i = first; i <= last; ++i) {
    if (ids[Index(i)] != excluded) {
      items[Index(at[Index(ids[Index(i)])]++)] = i - first;
    }
  }
  // Each code's cursor now stands where the next code begins.
  for (std::size_t c = codeCount; c > 0; --c) {
    at[c] = at[c - 1];
  }
  at[0] = 0;
}

// The pairs of the region as the sweep sees them. Rows are numbered from the region's first
// borehole-1 stratum and an entry is its row: a column's pairs are the rows of its code, and the
// key of a pair is worked out again from the two mid elevations each time it is read (in the same
// order of operations as when pairs are collected one by one, so to the same bit).
class CodeLayout {
public:
  CodeLayout(const std::vector<int32_t>& ids1, const PairingRange& range, const CodeSweepBuffers& b)
      : m_ids1(ids1), m_range(range), m_b(b) {}

  bool NextRow(int32_t& row, std::vector<SweepPair>& out) {
    const auto rows = Index(m_range.last1 - m_range.first1 + 1);
    while (m_next < rows) {
      const std::size_t r = m_next++;
      const int32_t code = m_ids1[Index(m_range.first1) + r];
      if (code == m_range.excluded) {
        continue;
      }
      const int32_t begin = m_b.columnsOfCodeAt[Index(code)];
      const int32_t end = m_b.columnsOfCodeAt[Index(code) + 1];
      if (begin == end) {
        continue;
      }
      out.clear();
      for (int32_t k = begin; k < end; ++k) {
        const int32_t column = m_b.columnsOfCode[Index(k)];
        out.push_back({m_b.firstPair[r] + (k - begin), column,
                       std::fabs(m_b.mid1[r] - m_b.mid2[Index(column)])});
      }
      row = static_cast<int32_t>(r);
      return true;
    }
    return false;
  }
  double Key(std::size_t column, int32_t entry) const {
    return SweepKey(std::fabs(m_b.mid1[Index(entry)] - m_b.mid2[column]));
  }
  int32_t Row(int32_t entry) const { return entry; }

private:
  const std::vector<int32_t>& m_ids1;
  PairingRange m_range;
  const CodeSweepBuffers& m_b;
  std::size_t m_next = 0;
};

} // namespace

void MatchManyCommonStrata(const CorrelationState& state, const PairingRange& range,
                           std::vector<DcPair>& pairs) {
  const CodeIndex& codes = state.Codes();
  const std::size_t codeCount = Index(codes.Count());
  Workspace& work = state.Work();
  CodeSweepBuffers& b = work.codeSweep;
  SweepBuffers& sweep = work.sweep;
  const std::size_t rows = Index(range.last1 - range.first1 + 1);
  const std::size_t columns = Index(range.last2 - range.first2 + 1);

  b.mid1.resize(rows);
  for (std::size_t r = 0; r < rows; ++r) {
    b.mid1[r] = MidElevation(state.Zk1().vecDC[Index(range.first1) + r]);
  }
  b.mid2.resize(columns);
  for (std::size_t c = 0; c < columns; ++c) {
    b.mid2[c] = MidElevation(state.Zk2().vecDC[Index(range.first2) + c]);
  }
  GroupByCode(codes.ids1, range.first1, range.last1, range.excluded, codeCount, b.rowsOfCode,
              b.rowsOfCodeAt);
  GroupByCode(codes.ids2, range.first2, range.last2, range.excluded, codeCount, b.columnsOfCode,
              b.columnsOfCodeAt);
  // Pairs are numbered row after row, each row's in column order, as they are collected.
  b.firstPair.resize(rows + 1);
  b.firstPair[0] = 0;
  for (std::size_t r = 0; r < rows; ++r) {
    const int32_t code = codes.ids1[Index(range.first1) + r];
    const int32_t count = code == range.excluded
                              ? 0
                              : b.columnsOfCodeAt[Index(code) + 1] - b.columnsOfCodeAt[Index(code)];
    b.firstPair[r + 1] = b.firstPair[r] + count;
  }
  const auto pairCount = Index(b.firstPair[rows]);

  // The columns for the sweep: a column's pairs are the rows of its code.
  sweep.dropped.assign(pairCount, 0);
  sweep.offset.resize(columns + 1);
  sweep.offset[0] = 0;
  for (std::size_t c = 0; c < columns; ++c) {
    const int32_t code = codes.ids2[Index(range.first2) + c];
    const int32_t count =
        code == range.excluded ? 0 : b.rowsOfCodeAt[Index(code) + 1] - b.rowsOfCodeAt[Index(code)];
    sweep.offset[c + 1] = sweep.offset[c] + count;
  }
  sweep.entries.resize(pairCount);
  for (std::size_t c = 0; c < columns; ++c) {
    const int32_t code = codes.ids2[Index(range.first2) + c];
    if (code != range.excluded) {
      std::copy(b.rowsOfCode.begin() + b.rowsOfCodeAt[Index(code)],
                b.rowsOfCode.begin() + b.rowsOfCodeAt[Index(code) + 1],
                sweep.entries.begin() + sweep.offset[c]);
    }
  }
  CodeLayout layout(codes.ids1, range, b);
  SweepCrossingPairs(layout, columns, sweep);

  // The staircase of the kept pairs. A dropped pair that crosses it gets no second chance and is
  // never listed.
  const auto forEachPair = [&](auto&& visit) {
    for (std::size_t r = 0; r < rows; ++r) {
      const int32_t code = codes.ids1[Index(range.first1) + r];
      if (code == range.excluded) {
        continue;
      }
      const int32_t begin = b.columnsOfCodeAt[Index(code)];
      const int32_t end = b.columnsOfCodeAt[Index(code) + 1];
      for (int32_t k = begin; k < end; ++k) {
        const auto p = Index(b.firstPair[r] + (k - begin));
        visit(r, b.columnsOfCode[Index(k)], sweep.dropped[p] != 0);
      }
    }
  };
  KeptStaircase staircase(sweep.keptMaxBefore, sweep.keptMinAfter, rows);
  forEachPair([&](std::size_t r, int32_t column, bool dropped) {
    if (!dropped) {
      staircase.Add(r, column);
    }
  });
  staircase.Close();
  forEachPair([&](std::size_t r, int32_t column, bool dropped) {
    if (dropped && staircase.Crosses(r, column)) {
      return;
    }
    DcPair& pair = pairs.emplace_back();
    pair.nDC1 = range.first1 + static_cast<int32_t>(r);
    pair.nDC2 = range.first2 + column;
    pair.dDiffGC = std::fabs(b.mid1[r] - b.mid2[Index(column)]);
    pair.bDrop = dropped;
  });
  ReadmitDroppedPairs(pairs, sweep);
  std::erase_if(pairs, [](const DcPair& pair) { return pair.bDrop; });
}

} // namespace xkl
