// The codes written on the section: each unit once, where it is widest, and each stratum of a log
// beside its column; a code is left out wherever it would not fit, and the fill and the legend
// still tell the unit.
#pragma once

#include "SectionGeometry.h"
#include "SheetCanvas.h"
#include "SheetFrame.h"

#include <vector>

namespace xklink::drawing {

// A region as filled on the sheet.
struct FilledRegion {
  const RegionShape* region = nullptr;
  std::vector<Point> points;
  Rgb colour{};
};

// The strata codes beside the columns of the holes (indices by chainage): the first hole's to its
// left, outside the section, the others' to the right; only where the stratum is thick enough and
// the code clear of everything drawn so far and inside the plot.
void DrawColumnCodes(Canvas& canvas, const Section& section, const std::vector<std::size_t>& holes,
                     const Frame& frame);

// One label per unit (regions of one code that touch across the holes), at the widest place where
// the label fits inside it and is clear of everything drawn so far.
void DrawRegionLabels(Canvas& canvas, const std::vector<FilledRegion>& filled);

} // namespace xklink::drawing
