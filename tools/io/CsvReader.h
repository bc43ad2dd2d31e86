// Boreholes from a drillhole CSV: one row per stratum with the hole, its easting, northing and
// ground level, the code and the top and base (as depths or elevations; see CsvColumns.h); or the
// two-table form, a collar table (hole, easting, northing, ground level) beside an interval table
// (hole, top, base, code), as geological modelling packages export them.
//
// Rows of a hole may stand anywhere in the file and in any order: they are gathered by hole and
// sorted from the top down (a warning lists the holes that needed it). In the single table, every
// row repeats the collar; a row that disagrees with the first row of its hole is an error. In the
// two-table form, an interval of a hole missing from the collar table is an error and a collar
// without intervals is left out with a warning. Elevations without a ground-level column put the
// collar at the top of the highest stratum.
#pragma once

#include "BoreholeSet.h"
#include "ReadOptions.h"

#include <string>
#include <string_view>

namespace xklink {

// `text` is the whole (interval) file and `file` names it; options.collarFile, when set, is read
// as the collar table.
BoreholeSet ReadCsvBoreholes(std::string_view text, const std::string& file,
                             const ReadOptions& options);

} // namespace xklink
