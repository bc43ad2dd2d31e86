// The plot of a section on a sheet, shared by the one-picture sheet (Sheet.cpp) and the printed
// sheets (SheetPrint.cpp): what the sheet shows of the section, the heading above it, and the plot
// itself drawn in painting order.
#pragma once

#include "HoleHeaders.h"
#include "RegionLabels.h"
#include "SectionGeometry.h"
#include "SheetCanvas.h"
#include "SheetFrame.h"

#include <string>
#include <vector>

namespace xklink::drawing {

inline constexpr double kColumnHalfWidth = 6.0; // the borehole columns are 12 units wide
inline constexpr double kMarginLeft = 86.0;     // elevation labels and the rotated axis title
inline constexpr double kAxisLabelRoom = 54.0;  // elevation labels right of the plot
inline constexpr double kBelowPlot = 56.0;      // distance labels and the axis title

// The parts of the section that a sheet shows, in the section plane.
struct View {
  std::vector<RegionShape> regions;
  std::vector<LineShape> lines;
  std::vector<SectionPoint> ground; // from collar to collar, by chainage
  Extent extent;
  std::vector<std::size_t> holes; // drawable holes by chainage
};

View MakeView(const Section& section);

// The part of `view` between the chainages `from` and `to`: regions, lines and the ground cut at
// both, the holes that stand within (a hole on the boundary belongs to both sides).
View ClipView(const Section& section, const View& view, double from, double to);

// The title and the statements under it (the exaggeration, the holes, the chainage), wrapped to
// `width` and starting below `y`, which is moved to the last baseline.
std::vector<Text> HeadingTexts(const Canvas& canvas, const std::string& title,
                               const Section& section, const View& view, double exaggeration,
                               const std::string& unit, double left, double width, double& y);

// Starts a sheet whose size is set: where its plot lies and at what scales (for those who read
// the sheet back: section.json, the page), what it shows in a sentence, and its white ground.
void StartSheet(Sheet& sheet, Canvas& canvas, const Frame& frame, std::string description);

// The plot: grid, strata, section lines, ground, columns, hole headers and axes. Returns the
// filled regions, to be labelled by DrawPlotLabels once everything else is on the sheet.
std::vector<FilledRegion> DrawPlot(Canvas& canvas, const Section& section, const View& view,
                                   const Frame& frame, const HeaderBand& band, const Legend& legend,
                                   const std::string& unit, bool depthBelowGround);

// The codes beside the columns and the labels of the units.
void DrawPlotLabels(Canvas& canvas, const Section& section, const View& view, const Frame& frame,
                    const std::vector<FilledRegion>& filled);

} // namespace xklink::drawing
