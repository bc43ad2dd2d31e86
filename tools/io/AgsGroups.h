// The group tables of an AGS file, in both editions.
//
// AGS4: a group is a "GROUP" line with its name, one "HEADING" line, one "UNIT" line, one "TYPE"
// line and "DATA" lines; the first field of each line says what it is.
//
// AGS 3.1: a group starts with a "**NAME" line; its headings are "*NAME" fields ("*?NAME" for a
// user heading) on one or more lines; a "<UNITS>" row follows; data rows carry no marker, and a row
// too long for one line goes on in "<CONT>" rows whose fields add to the fields of the row above.
// Any line that ends with a comma (headings, units, data) goes on in the next line.
//
// A group given twice (producers split a wide HOLE group in two, the second repeating HOLE_ID with
// further headings) is read as one: the rows of the second join those of the first, matched by
// heading, with a warning. A row whose field count differs from the headings is left out with an
// error tied to its hole; the rest of the file is read.
#pragma once

#include "AgsTokenizer.h"
#include "Diagnostics.h"

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace xklink {

struct AgsGroup {
  std::string name;
  std::size_t line = 0;              // of the GROUP (AGS4) or "**NAME" (AGS 3.1) line
  std::size_t headingLine = 0;       // 0 while the group has no headings
  std::vector<std::string> headings; // without the "*" and "?" marks of AGS 3.1
  std::vector<std::size_t> rowLines; // the line of each row
  // Row after row, one per heading: views into AgsFile. A deque grows without moving what it
  // holds, so a group of a million rows never needs twice its size while it is read.
  std::deque<std::string_view> cells;

  std::size_t RowCount() const { return rowLines.size(); }
  std::string_view Cell(std::size_t row, std::size_t column) const {
    return cells[row * headings.size() + column];
  }
  std::optional<std::size_t> Column(std::string_view heading) const;
};

struct AgsFile {
  AgsEdition edition = AgsEdition::Ags4;
  std::map<std::string, AgsGroup> groups; // only the groups asked for
  // What the cells are views of: the text of the file, and the values that AGS 3.1 <CONT> rows
  // complete (a deque, so that adding one never moves the others).
  std::unique_ptr<std::string> text;
  std::deque<std::string> joined;
};

// Problems of single rows, bounded: a file of a million bad rows keeps a few messages for each hole
// rather than a million. The first kPerHole of a hole (and the first kWithoutHole not tied to a
// hole) are kept, the others counted; Finish() adds one message for each hole with more, an error
// when any of them was one, so that the hole's fate does not depend on which rows were shown.
class RowDiagnostics {
public:
  static constexpr std::size_t kPerHole = 5;
  static constexpr std::size_t kWithoutHole = 100;

  RowDiagnostics(std::string file, std::vector<Diagnostic>& out)
      : m_file(std::move(file)), m_out(out) {}
  void Add(Diagnostic diagnostic);
  void Finish();

private:
  struct Dropped {
    std::size_t kept = 0;
    std::size_t count = 0;
    std::size_t firstLine = 0;
    bool anyError = false;
  };
  std::string m_file;
  std::vector<Diagnostic>& m_out;
  std::map<std::string, Dropped> m_holes; // "" for rows not tied to a hole
};

// The edition of an AGS text from its first non-blank line, or nothing when it is not AGS.
std::optional<AgsEdition> DetectAgsEdition(std::string_view text);

// Reads the groups named in `wanted` (other groups are passed over without a look, so damage in a
// group we never use does not stop the reading). Broken structure in a wanted group - a second
// HEADING line, DATA before HEADING, an unknown line type - throws ParseError with the line, and
// so does a file that is empty or not AGS.
AgsFile ReadAgsGroups(std::string text, const std::string& file,
                      const std::set<std::string>& wanted, std::vector<Diagnostic>& diagnostics);

} // namespace xklink
