// From the command line's input options to the holes of a section, validated.
#pragma once

#include "InSitu.h"

#include <XKLinkDc/XKLinkDc.h>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace xklink {

// The input options every command shares.
struct InputOptions {
  std::string file;
  std::string format;        // json, ags or csv; empty: from the file's extension
  std::string collars;       // collar table of the two-table CSV form
  std::string depths;        // csv: "depth" or "elevation"; empty: from the headings
  std::string codeColumn;    // the column of the stratum codes; empty: the reader's default
  bool mergeRepeats = false; // merge consecutive strata of one code into one
  std::string exclude;       // holes never to use, comma-separated
  bool strict = false;       // any problem refuses, instead of leaving a hole or row out
  bool inSitu = false;       // also read water, SPT and descriptions (AGS files)
};

// Which holes a command works on when --holes is not given.
enum class DefaultHoles {
  FirstTwo,    // the first two holes of the file
  AlongSection // every hole, ordered along the section's principal direction
};

struct SectionHoles {
  std::vector<std::string> names; // UTF-8
  std::vector<DataType::_sZK> holes;
  // No hole has a ground level: every collar is at 0 and elevations are minus depths.
  bool depthBelowGround = false;
  std::map<std::string, std::string> codeDescriptions; // code -> what the file says it means
  InSituData inSitu; // of every hole of the file, when InputOptions::inSitu asks for it
};

// Reads and validates the file, reports warnings on `warnings` (the first hundred, repeats
// counted), and returns the holes named in `holeList` (comma-separated, in that order) or the
// default ones, chosen as HolePolicy.h says. Throws on any error: a file that cannot be read,
// invalid data in a hole the section needs, an unknown hole name, fewer than two holes, two
// consecutive holes at the same plan position.
SectionHoles LoadSection(const InputOptions& options, const std::string& holeList,
                         DefaultHoles defaults, std::ostream& warnings);

struct CheckCounts {
  std::size_t errors = 0;
  std::size_t warnings = 0;
};

// Writes every problem of the file to `out` (the first hundred, repeats counted); nothing thrown
// for invalid data (only for an unreadable file).
CheckCounts CheckFile(const InputOptions& options, std::ostream& out);

} // namespace xklink
