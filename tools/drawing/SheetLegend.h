// The legend panel beside the plot: every code on the sheet, from the highest down, with its
// colour and description, then the symbols of the drawing.
#pragma once

#include "SectionGeometry.h"
#include "SheetCanvas.h"

#include <string>
#include <vector>

namespace xklink::drawing {

struct LegendRow {
  std::wstring code;
  Rgb colour{};
  std::string codeText;
  std::vector<std::string> labelLines;
};

// The rows of the codes of the holes and regions, ordered by the mean elevation of the tops of
// their strata, the order in which a reader meets them down a log.
std::vector<LegendRow> LegendRows(const Section& section, const std::vector<std::size_t>& holes,
                                  const std::vector<RegionShape>& regions, const Legend& legend);

double LegendPanelWidth(const std::vector<LegendRow>& rows);

// Draws the panel with its top left at (left, top), the rows of codes in `columns` side by side;
// returns its bottom.
double DrawLegendPanel(Canvas& canvas, const std::vector<LegendRow>& rows, double left, double top,
                       double width, bool inferred, int columns = 1);

} // namespace xklink::drawing
