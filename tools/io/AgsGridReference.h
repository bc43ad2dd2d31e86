// The grid an AGS file says its coordinates are on: LOCA_GREF (AGS 3.1: HOLE_GREF), such as
// "OSGB" or "ITM". Read in a pass of its own, since only the GIS outputs need it.
#pragma once

#include "Diagnostics.h"

#include <optional>
#include <string>
#include <string_view>

namespace xklink {

struct GridReference {
  std::string name; // as written in the file
  SourceRef where;  // the first row that names it
};

// The grid named by the rows of the location group, or nothing when none names one (the column is
// absent or empty). Holes of one file on two grids cannot share one drawing: ParseError naming the
// row of the second grid.
std::optional<GridReference> ReadAgsGridReference(std::string_view text, const std::string& file);

} // namespace xklink
