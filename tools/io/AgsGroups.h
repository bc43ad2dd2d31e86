// The group tables of an AGS file, in both editions.
//
// AGS4: a group is a "GROUP" line with its name, one "HEADING" line, one "UNIT" line, one "TYPE"
// line and "DATA" lines; the first field of each line says what it is.
//
// AGS 3.1: a group starts with a "**NAME" line; its headings are "*NAME" fields ("*?NAME" for a
// user heading) on one or more lines, a line that ends with a comma continuing on the next; a
// "<UNITS>" row follows; data rows carry no marker, and a row too long for one line goes on in
// "<CONT>" rows whose fields add to the fields of the row above.
#pragma once

#include "Diagnostics.h"

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace xklink {

enum class AgsEdition { Ags3, Ags4 };

struct AgsRow {
  std::size_t line;
  std::vector<std::string> values; // one per heading
};

struct AgsGroup {
  std::string name;
  std::size_t line = 0;              // of the GROUP (AGS4) or "**NAME" (AGS 3.1) line
  std::size_t headingLine = 0;       // 0 while the group has no headings
  std::vector<std::string> headings; // without the "*" and "?" marks of AGS 3.1
  std::vector<AgsRow> rows;

  std::optional<std::size_t> Column(std::string_view heading) const;
};

struct AgsFile {
  AgsEdition edition = AgsEdition::Ags4;
  std::map<std::string, AgsGroup> groups; // only the groups asked for
};

// The edition of an AGS text from its first non-blank line, or nothing when it is not AGS.
std::optional<AgsEdition> DetectAgsEdition(std::string_view text);

// Reads the groups named in `wanted` (other groups are passed over without a look, so damage in a
// group we never use does not stop the reading). Broken structure in a wanted group - a second
// HEADING, DATA before HEADING, a row whose field count differs from the headings, a group that
// appears twice - throws ParseError with the line.
AgsFile ReadAgsGroups(std::string_view text, const std::string& file,
                      const std::set<std::string>& wanted, std::vector<Diagnostic>& diagnostics);

} // namespace xklink
