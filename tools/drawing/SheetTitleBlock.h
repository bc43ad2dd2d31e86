// The furniture of a printed sheet: the title block in its lower right corner (project, section,
// scales with a scale bar, sheet number, chainage and date) and the key plan above it, which shows
// where on the site the sheet's stretch of the section lies.
#pragma once

#include "SheetCanvas.h"

#include <cstddef>
#include <string>
#include <vector>

namespace xklink::drawing {

struct TitleBlock {
  std::string project;
  std::string section;        // what the section line is
  double scale = 0.0;         // 1:scale horizontally
  double vscale = 0.0;        // 1:vscale vertically
  double unitsPerMetre = 0.0; // horizontally, on the sheet
  std::size_t number = 1;
  std::size_t count = 1;
  double from = 0.0; // the sheet's chainage
  double to = 0.0;
  std::string date;
};

// "1:2500"; a scale that is not a whole number keeps one decimal.
std::string ScaleText(double denominator);

// The height the block needs at `width`.
double TitleBlockHeight(const TitleBlock& block, double width);

// Draws the block in `box` (its height as TitleBlockHeight gives).
void DrawTitleBlock(Canvas& canvas, const TitleBlock& block, const Box& box);

// Draws the key plan in `box`: the whole section line and every hole, the stretch of line and the
// holes of this sheet (`onSheet`, indices into section.holes) picked out, and a north arrow.
void DrawKeyPlan(Canvas& canvas, const Section& section, const std::vector<std::size_t>& onSheet,
                 double from, double to, const Box& box);

} // namespace xklink::drawing
