// Merging coinciding section lines and ordering them from the highest down.
//
// Where two regions touch, the bottom of the upper one and the top of the lower one are the same
// segment; the merge keeps one line that names the region above it and the region below it.
#include "lines/BoundedIntroSort.h"
#include "lines/Lines.h"
#include "records/CompareDouble.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace xkl {

namespace {

bool HasNaN(const _sLinkLine& line) {
  return std::isnan(line.pt1.x) || std::isnan(line.pt1.y) || std::isnan(line.pt1.z) ||
         std::isnan(line.pt2.x) || std::isnan(line.pt2.y) || std::isnan(line.pt2.z);
}

// Lines are found again by the elevations of their two ends, each in cells 1e-4 high: two
// elevations equal within the 1e-5 tolerance lie in the same or in neighbouring cells. From 1e12
// on, neighbouring doubles lie more than 1e-4 apart, so only identical elevations are equal there,
// and such an elevation (an infinite one too) is its own cell, named by its bits. Every line that
// can equal another thus shares a cell with it, whatever the magnitude.
constexpr double kCellsPerUnit = 1e4;
constexpr double kCellLimit = 1e12;

int64_t CellOf(double z) {
  if (std::fabs(z) < kCellLimit) {
    return static_cast<int64_t>(std::floor(z * kCellsPerUnit));
  }
  return std::bit_cast<int64_t>(z);
}

// The walk from the last line to the first: each line looks for the nearest earlier line still in
// the walk that is the same (nearest(i) answers its index, or -1), and of the two the region's
// bottom survives. The lines still in the walk are linked (previous, next), so that lines taken out
// are not met again; taking one out clears its flag in `alive`.
template <class Nearest>
void WalkSameLines(LineList& lines, std::vector<uint8_t>& alive, int32_t* previous, int32_t* next,
                   Nearest&& nearest) {
  const auto count = static_cast<int32_t>(lines.size());
  for (int32_t k = 0; k < count; ++k) {
    previous[k] = k - 1;
    next[k] = k + 1;
  }
  const auto remove = [&](int32_t k) {
    alive[static_cast<std::size_t>(k)] = 0;
    if (next[k] < count) {
      previous[next[k]] = previous[k];
    }
    if (previous[k] >= 0) {
      next[previous[k]] = next[k];
    }
  };
  int32_t i = count - 1;
  while (i >= 0) {
    const int32_t j = nearest(i);
    if (j < 0) {
      i = previous[i];
      continue;
    }
    _sLinkLine& line = lines[static_cast<std::size_t>(i)];
    _sLinkLine& same = lines[static_cast<std::size_t>(j)];
    if (line.bBottom) {
      // A region's bottom survives and takes the name of the region below it; it is examined
      // once more, so it may absorb a further coinciding line.
      line.strDownName = same.strUpName;
      remove(j);
    } else {
      same.strDownName = line.strUpName;
      remove(i);
      i = previous[i];
    }
  }
}

// Whether two elevations certainly differ beyond the tolerance: a quick test that spares most
// full comparisons, since lines of one section differ mostly in elevation.
bool ClearlyApart(double a, double b) {
  return !(std::fabs(a - b) < kTolerance) && a != b;
}

// The lines by the cells of their two elevations, in a hash table of chains, each chain from its
// latest line to its earliest, so that the nearest earlier equal of a line is the first match in
// one of nine chains. The walk asks from the last line down, so a chain sheds the lines at or after
// the one asking and those taken out of the walk as it is read: no line is passed over twice
// without cause, and lines of one cell cost no more than their number.
class LineCells {
public:
  explicit LineCells(const LineList& lines) : m_lines(lines) {
    std::size_t size = 16;
    m_shift = 60;
    while (size < 2 * lines.size()) {
      size *= 2;
      --m_shift;
    }
    m_head.assign(size, -1);
    m_next.assign(lines.size(), -1);
    m_cell1.resize(lines.size());
    m_cell2.resize(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const _sLinkLine& line = lines[i];
      if (HasNaN(line)) {
        continue; // a NaN coordinate equals nothing, not even itself
      }
      m_cell1[i] = CellOf(line.pt1.z);
      m_cell2[i] = CellOf(line.pt2.z);
      const std::size_t slot = Slot(m_cell1[i], m_cell2[i]);
      m_next[i] = m_head[slot];
      m_head[slot] = static_cast<int32_t>(i);
    }
  }

  // The nearest line before i that is still in the walk and the same as line i, or -1. Lines at
  // i and after are not asked for again.
  int32_t NearestSameBefore(std::size_t i, const std::vector<uint8_t>& alive) {
    const _sLinkLine& line = m_lines[i];
    if (HasNaN(line)) {
      return -1;
    }
    int32_t best = -1;
    const int64_t c1 = m_cell1[i];
    const int64_t c2 = m_cell2[i];
    for (int64_t n1 = c1 - 1; n1 <= c1 + 1; ++n1) {
      for (int64_t n2 = c2 - 1; n2 <= c2 + 1; ++n2) {
        int32_t* link = &m_head[Slot(n1, n2)];
        while (*link > best) {
          const auto candidate = static_cast<std::size_t>(*link);
          if (candidate >= i || alive[candidate] == 0) {
            *link = m_next[candidate]; // never asked for again
            continue;
          }
          // Cells that share a slot share its chain.
          if (m_cell1[candidate] == n1 && m_cell2[candidate] == n2 &&
              m_lines[candidate].IsSame(line)) {
            best = *link;
            break;
          }
          link = &m_next[candidate];
        }
      }
    }
    return best;
  }

private:
  // Fibonacci hashing of the two cells: the top bits of the product, as many as the table has
  // slots.
  std::size_t Slot(int64_t cell1, int64_t cell2) const {
    const uint64_t mixed =
        static_cast<uint64_t>(cell1) * 0x9E3779B97F4A7C15ull ^ static_cast<uint64_t>(cell2);
    return static_cast<std::size_t>((mixed * 0xC2B2AE3D27D4EB4Full) >> m_shift);
  }

  const LineList& m_lines;
  unsigned m_shift = 60;        // 64 less the bits of the table size
  std::vector<int64_t> m_cell1; // per line: the cells of its two ends
  std::vector<int64_t> m_cell2;
  std::vector<int32_t> m_head;
  std::vector<int32_t> m_next;
};

// Up to this many lines (those of a typical pair) scanning beats hashing their cells.
constexpr std::size_t kScanLimit = 96;

// The walk over few lines: the elevations of the ends stand side by side, and the scan runs over
// all earlier lines in turn rather than along the links of those still in the walk, so that no
// step waits for the one before it; the lines taken out are passed over by their flag.
void MarkSameLinesByScan(LineList& lines, std::vector<uint8_t>& alive) {
  const std::size_t count = lines.size();
  double z1[kScanLimit];
  double z2[kScanLimit];
  int32_t previous[kScanLimit];
  int32_t next[kScanLimit];
  for (std::size_t k = 0; k < count; ++k) {
    z1[k] = lines[k].pt1.z;
    z2[k] = lines[k].pt2.z;
  }
  WalkSameLines(lines, alive, previous, next, [&](int32_t i) {
    const auto at = static_cast<std::size_t>(i);
    for (std::size_t j = at; j-- > 0;) {
      if (ClearlyApart(z1[j], z1[at]) || ClearlyApart(z2[j], z2[at])) {
        continue;
      }
      if (alive[j] != 0 && lines[j].IsSame(lines[at])) {
        return static_cast<int32_t>(j);
      }
    }
    return int32_t{-1};
  });
}

void MarkSameLinesByCells(LineList& lines, std::vector<uint8_t>& alive) {
  LineCells cells(lines);
  std::vector<int32_t> previous(lines.size());
  std::vector<int32_t> next(lines.size());
  WalkSameLines(lines, alive, previous.data(), next.data(), [&](int32_t i) {
    return cells.NearestSameBefore(static_cast<std::size_t>(i), alive);
  });
}

// Merges coinciding lines: names set, the lines taken out flagged 0 in `alive`; clears bBottom.
void MarkSameLines(LineList& lines, std::vector<uint8_t>& alive) {
  alive.assign(lines.size(), 1);
  if (lines.size() <= kScanLimit) {
    MarkSameLinesByScan(lines, alive);
  } else {
    MarkSameLinesByCells(lines, alive);
  }
  for (_sLinkLine& line : lines) {
    line.bBottom = false;
  }
}

} // namespace

void MergeSameLines(LineList& lines) {
  std::vector<uint8_t> alive;
  MarkSameLines(lines, alive);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (alive[i]) {
      if (kept != i) {
        lines[kept] = std::move(lines[i]);
      }
      ++kept;
    }
  }
  lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(kept), lines.end());
}

// Lines that start on the same plan position are ordered there, where they stand side by side;
// else where they end; else by their mean elevation. Elevations compare plainly, without tolerance.
bool IsLineAbove(const _sLinkLine& a, const _sLinkLine& b) {
  if (CompareDouble(a.pt1.x, b.pt1.x) == 0 && CompareDouble(a.pt1.y, b.pt1.y) == 0) {
    return a.pt1.z > b.pt1.z;
  }
  if (CompareDouble(a.pt2.x, b.pt2.x) == 0 && CompareDouble(a.pt2.y, b.pt2.y) == 0) {
    return a.pt2.z > b.pt2.z;
  }
  return (a.pt2.z + a.pt1.z) > (b.pt2.z + b.pt1.z);
}

// The lines are sorted as indices and moved once, into their final places: a line record with its
// two names is large, and the merge, the sort and the removal of the highest line would otherwise
// each move most of them.
void FinishLines(LineList& lines) {
  std::vector<uint8_t> alive;
  MarkSameLines(lines, alive);
  std::vector<uint32_t> order;
  order.reserve(lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (alive[i]) {
      order.push_back(static_cast<uint32_t>(i));
    }
  }
  BoundedIntroSort(order.begin(), order.end(),
                   [&lines](uint32_t a, uint32_t b) { return IsLineAbove(lines[a], lines[b]); });
  // The highest line of a finished section joins the two collars: the ground surface, which the
  // host draws from its own terrain data.
  LineList finished;
  if (order.size() > 1) {
    finished.reserve(order.size() - 1);
    for (std::size_t k = 1; k < order.size(); ++k) {
      finished.push_back(std::move(lines[order[k]]));
    }
  }
  lines.swap(finished);
}

} // namespace xkl
