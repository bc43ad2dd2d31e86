// Options shared by the commands.
#pragma once

#include "Input.h"

#include <CLI/CLI.hpp>

namespace xklink {

// --input-format, --collars, --depths, --code-column, --merge-repeats, --exclude, --strict and the
// FILE argument.
inline void AddInputOptions(CLI::App& command, InputOptions& options) {
  command.add_option("FILE", options.file, "Borehole file: AGS4, AGS 3.1, drillhole CSV or JSON")
      ->required();
  command
      .add_option("--input-format", options.format,
                  "Input format (default: from the file's extension)")
      ->check(CLI::IsMember({"json", "ags", "csv"}));
  command.add_option("--collars", options.collars,
                     "Collar table of a two-table drillhole CSV (FILE holds the intervals)");
  command
      .add_option("--depths", options.depths,
                  "CSV top and base are 'depth' below the collar or 'elevation' "
                  "(default: from the column names)")
      ->check(CLI::IsMember({"depth", "elevation"}));
  command.add_option(
      "--code-column", options.codeColumn,
      "Column of the stratum codes, e.g. GEOL_LEG or LITO (default: the first filled "
      "of GEOL_GEOL, GEOL_LEG, GEOL_GEO2 in AGS; CODE, UNIT, FORMATION, GEOL, LITH "
      "and their aliases in CSV)");
  command.add_flag("--merge-repeats", options.mergeRepeats,
                   "Merge consecutive strata of the same code into one");
  command.add_option("--exclude", options.exclude,
                     "Holes never to use, as A,B (only when --holes is not given)");
  command.add_flag("--strict", options.strict,
                   "Refuse the input on any problem instead of leaving the hole or row out "
                   "with a warning (check: fail on warnings too)");
}

} // namespace xklink
