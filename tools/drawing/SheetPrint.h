// A section printed at a scale on landscape sheets of paper.
//
// The sheets split the section at round chainages: each shows the same length of section, and
// sheet k+1 starts at the chainage where sheet k ends, so that a reader lays them end to end. Each
// sheet repeats the axes and has the plot on the left; on the right the legend of the codes it
// shows, the key plan and the title block.
//
// Scales are the standard ones of engineering drawings (1:100, 1:200, 1:250, 1:500, 1:1000,
// 1:1250, 1:2500, 1:5000, ...). Without a horizontal scale, the largest that keeps the section on
// at most one sheet for every six holes and never more than ten sheets is taken: beyond that a
// set of sheets is hard to follow, and sheets of one or two holes each show no correlation. Without
// a vertical scale (or exaggeration), the largest that fits every sheet's height at an exaggeration
// of at most twenty: more turns gentle slopes into cliffs.
#pragma once

#include "Section.h"
#include "Sheet.h"

#include <vector>

namespace xklink::drawing {

inline constexpr std::size_t kMaxChosenSheets = 10;
inline constexpr std::size_t kHolesPerChosenSheet = 6;
inline constexpr std::size_t kMaxSheets = 500; // more is a mistake in the scale
inline constexpr double kMaxChosenExaggeration = 20.0;

// Sheet units (1/96 inch) per millimetre of paper.
inline constexpr double kUnitsPerMm = 96.0 / 25.4;

struct PrintedSheets {
  Printout layout; // without the SVGs
  std::vector<Sheet> sheets;
};

// Throws DrawingError as RenderPrintout does.
PrintedSheets ComposePrintedSheets(const Section& section, const Legend& legend,
                                   const DrawOptions& options, const PrintOptions& print);

} // namespace xklink::drawing
