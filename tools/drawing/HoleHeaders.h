// The hole names above the plot: each hole's name, ground level and offset from the section line,
// led down to its collar by a thin line. Where names would overlap they stand in tiers, and where
// the holes crowd too closely for tiers they turn upright; no name ever covers another, nor a
// leader line of another hole.
#pragma once

#include "SheetCanvas.h"
#include "SheetFrame.h"

#include <cstddef>
#include <string>
#include <vector>

namespace xklink::drawing {

struct HoleHeader {
  std::size_t hole = 0;
  double x = 0.0;                 // the hole on the sheet
  std::vector<std::string> lines; // name, ground level, offset
  double centre = 0.0;            // where the block stands, moved in from the sheet's edges
  int tier = 0;
  bool upright = false;
};

struct HeaderBand {
  std::vector<HoleHeader> headers;
  double height = 0.0; // of the band above the plot
};

// Places the headers of the holes (indices into section.holes, by chainage) along the frame,
// keeping within [minX, maxX] on the sheet. Without ground levels (a section in depth below
// ground) no ground level is written.
HeaderBand PlaceHoleHeaders(const Section& section, const std::vector<std::size_t>& holes,
                            const Frame& frame, double minX, double maxX, bool groundLevels);

// Draws the band with its bottom `gap` units above the frame's top.
void DrawHoleHeaders(Canvas& canvas, const Section& section, const HeaderBand& band,
                     const Frame& frame);

// The name shown for a hole.
std::string HoleName(const SectionHole& hole);

} // namespace xklink::drawing
