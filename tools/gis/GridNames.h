// Which grid a file's coordinates are on, as an EPSG code.
//
// AGS files name their grid in LOCA_GREF (AGS 3.1: HOLE_GREF) in words or abbreviations, not as an
// EPSG code: "OSGB", "OSGB36", "British National Grid", "Irish Grid", "ITM". The names below are
// those in use for the grids of the British Isles and Hong Kong, where AGS files come from; any
// other grid is given on the command line as "EPSG:NNNN".
#pragma once

#include <optional>
#include <string_view>

namespace xklink {

// The EPSG code of a grid named in an AGS file (case, spaces, hyphens and underscores do not
// matter; "EPSG:27700" is taken as it is), or nothing when the name is not one we know.
std::optional<int> EpsgOfGridName(std::string_view name);

// "EPSG:27700" (any case) gives 27700; std::invalid_argument for anything else.
int ParseEpsgCode(std::string_view text);

} // namespace xklink
