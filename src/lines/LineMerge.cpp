// Merging coinciding section lines and ordering them from the highest down.
//
// Where two regions touch, the bottom of the upper one and the top of the lower one are the same
// segment; the merge keeps one line that names the region above it and the region below it.
#include "lines/BoundedIntroSort.h"
#include "lines/Lines.h"

#include "records/CompareDouble.h"

namespace xkl {

void MergeSameLines(LineList& lines) {
  for (std::ptrdiff_t i = static_cast<std::ptrdiff_t>(lines.size()) - 1; i >= 0; --i) {
    const auto iu = static_cast<std::size_t>(i);
    std::ptrdiff_t j = i - 1;
    while (j >= 0 && !lines[static_cast<std::size_t>(j)].IsSame(lines[iu])) {
      --j;
    }
    if (j < 0) {
      continue;
    }
    const auto ju = static_cast<std::size_t>(j);
    if (lines[iu].bBottom) {
      // A region's bottom survives and takes the name of the region below it. It moves down to
      // i - 1 and is examined once more, so it may absorb a further coinciding line.
      lines[iu].strDownName = lines[ju].strUpName;
      lines.erase(lines.begin() + j);
    } else {
      lines[ju].strDownName = lines[iu].strUpName;
      lines.erase(lines.begin() + i);
    }
  }
  for (_sLinkLine& line : lines) {
    line.bBottom = false;
  }
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

void FinishLines(LineList& lines) {
  MergeSameLines(lines);
  BoundedIntroSort(lines.begin(), lines.end(), IsLineAbove);
  // The highest line of a finished section joins the two collars: the ground surface, which the
  // host draws from its own terrain data.
  if (!lines.empty()) {
    lines.erase(lines.begin());
  }
}

} // namespace xkl
