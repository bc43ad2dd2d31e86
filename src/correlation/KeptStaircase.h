// The kept pairs of a settled region seen row by row. No two kept pairs cross, so they form a
// staircase down both holes, and a pair crosses one of them exactly when a kept pair of an earlier
// row lies in a later column, or one of a later row in an earlier column. Knowing, per row, the
// greatest kept column above it and the least below it answers that for any pair in constant time;
// the second chance of the crossing settlement asks it of every dropped pair.
#pragma once

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace xkl {

// Rows are counted from the region's first, columns are any increasing numbering. The two lists
// are the caller's storage, kept between correlations.
class KeptStaircase {
public:
  // An empty staircase over `rows` rows.
  KeptStaircase(std::vector<int32_t>& greatestBefore, std::vector<int32_t>& leastAfter,
                std::size_t rows)
      : m_before(greatestBefore), m_after(leastAfter), m_rows(rows) {
    m_before.assign(rows + 1, INT_MIN);
    m_after.assign(rows + 1, INT_MAX);
  }

  // A kept pair; all of them before Close().
  void Add(std::size_t row, int32_t column) {
    m_before[row + 1] = std::max(m_before[row + 1], column);
    m_after[row] = std::min(m_after[row], column);
  }

  // Turns the rows' own columns into those of the rows above and below.
  void Close() {
    for (std::size_t r = 0; r < m_rows; ++r) {
      m_before[r + 1] = std::max(m_before[r], m_before[r + 1]);
    }
    for (std::size_t r = m_rows; r-- > 0;) {
      m_after[r] = std::min(m_after[r], m_after[r + 1]);
    }
  }

  // Whether the pair (row, column) crosses a kept pair.
  bool Crosses(std::size_t row, int32_t column) const {
    return m_before[row] > column || m_after[row + 1] < column;
  }

private:
  std::vector<int32_t>& m_before; // [r]: greatest kept column in the rows before r
  std::vector<int32_t>& m_after;  // [r + 1]: least kept column in the rows after r
  std::size_t m_rows;
};

} // namespace xkl
