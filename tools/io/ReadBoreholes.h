// One entry for every borehole file format.
//
// **Example**:
//
//   const auto path = std::filesystem::path("site.ags");
//   xklink::BoreholeSet set = xklink::ReadBoreholes(path, xklink::DetectFormat(path), {});
//   for (const auto& d : xklink::ValidateBoreholes(set)) std::cerr << d.ToString() << '\n';
#pragma once

#include "BoreholeSet.h"
#include "ReadOptions.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace xklink {

enum class Format {
  Json, // the tool's own JSON (JsonReader.h)
  Ags,  // AGS4 or AGS 3.1 (AgsReader.h)
  Csv   // drillhole CSV, one table or collar + intervals (CsvReader.h)
};

// "json", "ags" or "csv", in any case; std::invalid_argument for anything else.
Format FormatFromName(std::string_view name);
std::string FormatName(Format format);

// The format of a file from its extension (.json, .ags, .csv), else from its first bytes: '{' is
// JSON, a "GROUP" or "**NAME" line is AGS, a line with a comma is CSV (so .txt exports of either
// kind are recognised). ParseError when none fits.
Format DetectFormat(const std::filesystem::path& file);

// Reads a file: ParseError when it cannot be read at all; otherwise the holes with what the reader
// noticed in BoreholeSet::diagnostics. options.mergeRepeats joins repeated codes after reading.
// A collar file with any format but CSV is std::invalid_argument.
BoreholeSet ReadBoreholes(const std::filesystem::path& file, Format format,
                          const ReadOptions& options = {});

} // namespace xklink
