// Which column of a drillhole CSV holds what. Header names are matched after normalising: case is
// ignored, spaces, '-' and '.' count as '_', and a unit in brackets is dropped ("From (m)" is
// FROM).
//
//   hole        HOLEID HOLE_ID HOLE BH BH_ID BOREHOLE BOREHOLE_ID LOCA_ID DHID
//   easting     X EAST EASTING E LOCA_NATE
//   northing    Y NORTH NORTHING N LOCA_NATN
//   ground      Z RL GL ELEV ELEVATION GROUND_LEVEL COLLAR_RL COLLAR_Z LOCA_GL (collar elevation)
//   top/base as depths      FROM DEPTH_FROM FROM_DEPTH TOP_DEPTH GEOL_TOP /
//                           TO DEPTH_TO TO_DEPTH BASE_DEPTH BOTTOM_DEPTH GEOL_BASE
//   top/base as elevations  TOP_RL RL_TOP TOP_ELEV TOP_ELEVATION TOP_Z /
//                           BASE_RL BOTTOM_RL BOT_RL RL_BASE BASE_ELEV BOTTOM_ELEV BASE_Z BOTTOM_Z
//   top/base, either        TOP / BASE BOTTOM BOT
//   code        CODE UNIT STRAT STRATUM FORMATION FORM GEOL GEOLOGY GEOL_GEOL LITH LITHO LITHOLOGY
//               LITO (the first of these present is taken: a stratigraphic unit correlates between
//               holes better than a lithology, which repeats within units)
//
// Depths or elevations, when the user does not say: named depth columns (FROM/TO) mean depths,
// named elevation columns (TOP_RL/BASE_RL) mean elevations, and so does a named column with a
// plain partner (FROM with BASE: depths). Plain TOP/BASE alone are decided by the
// values: depths grow downwards (top < base) and elevations fall (top > base); the majority of
// rows decides, with a warning saying so, and the rows of the minority then fail validation as
// upside-down strata. A tie is an error that asks the user to choose.
#pragma once

#include "CsvRecords.h"
#include "Diagnostics.h"
#include "ReadOptions.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace xklink {

// "From (m)" -> "FROM", "Hole id" -> "HOLE_ID".
std::string NormalizeHeader(std::string_view name);

// The columns found in one header row, by role.
struct HeaderColumns {
  std::optional<std::size_t> hole;
  std::optional<std::size_t> easting;
  std::optional<std::size_t> northing;
  std::optional<std::size_t> ground;
  std::optional<std::size_t> topDepth;
  std::optional<std::size_t> baseDepth;
  std::optional<std::size_t> topElevation;
  std::optional<std::size_t> baseElevation;
  std::optional<std::size_t> top; // TOP: depth or elevation
  std::optional<std::size_t> base;
  std::optional<std::size_t> code;
};

// Matches a header row. `codeColumn`, when given, names the code column (normalised the same way);
// ParseError at `headerLine` when there is no such column.
HeaderColumns MatchHeader(const std::vector<std::string>& header,
                          const std::optional<std::string>& codeColumn, const std::string& file,
                          std::size_t headerLine);

// The aliases of a role, for messages ("HOLEID, HOLE_ID, ...").
enum class ColumnRole { Hole, Easting, Northing, Ground, Code };
std::string AliasList(ColumnRole role);

struct IntervalColumns {
  std::size_t top;
  std::size_t base;
  DepthMode mode;
};

// The top and base columns and what they mean (see the rule above). `rows` are the data rows, used
// only when the header leaves the mode open. ParseError when no pair of columns fits.
IntervalColumns ChooseIntervalColumns(const HeaderColumns& columns,
                                      std::optional<DepthMode> requested,
                                      const std::vector<std::string>& header,
                                      const std::vector<CsvRecord>& rows, const std::string& file,
                                      std::size_t headerLine, std::vector<Diagnostic>& diagnostics);

} // namespace xklink
