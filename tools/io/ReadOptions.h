// What the user can tell the readers about a file.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace xklink {

// How a drillhole CSV gives the top and base of a stratum.
enum class DepthMode {
  Depths,    // measured down from the collar: elevation = collar elevation - depth
  Elevations // given as elevations (reduced levels) directly
};

struct ReadOptions {
  // The collar table of the two-table CSV form (hole, easting, northing, ground level), the file
  // read being the interval table (hole, top, base, code).
  std::optional<std::filesystem::path> collarFile;
  // CSV only; empty: decided from the header and the values (see CsvColumns.h).
  std::optional<DepthMode> depthMode;
  // The column holding the stratum codes (an AGS heading such as GEOL_LEG, a CSV header name);
  // empty: the readers' default (see AgsReader.h and CsvColumns.h).
  std::optional<std::string> codeColumn;
  // Join consecutive strata of a hole that carry the same code (see MergeRepeatedCodes).
  bool mergeRepeats = false;
  // Also read what the logs record besides the strata (water, SPT, descriptions; AgsInSitu.h):
  // a second pass over the file, so only for the outputs that draw them.
  bool inSitu = false;
};

} // namespace xklink
