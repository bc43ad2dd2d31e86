// Comma-separated records (RFC 4180), read with libcsv. Both the drillhole CSV tables and the lines
// of AGS files are in this syntax: fields separated by commas, a field with a comma, a quote or a
// line break in double quotes, a quote inside a quoted field doubled ("").
#pragma once

#include "Diagnostics.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace xklink {

struct CsvRecord {
  std::size_t line; // the line the record starts on
  std::vector<std::string> fields;
};

// The records of a CSV text, strictly: a quote inside an unquoted field, text after a closing
// quote, or a quoted field that never closes throw ParseError with the line. Lines may end in LF,
// CRLF or CR; a quoted field may span lines (its line breaks become LF). Blank lines are skipped;
// spaces around unquoted fields are dropped.
std::vector<CsvRecord> ReadCsvRecords(std::string_view text, const std::string& file);

// The fields of one line of an AGS file (AGS forbids line breaks inside fields). Real files break
// the quoting rule now and then ("Ashfield Area "C" Development" with its quotes not doubled); such
// a line is read leniently, a quote that does not end its field being kept as text, and a warning
// is added. An empty line gives no fields.
std::vector<std::string> SplitAgsLine(std::string_view line, const SourceRef& where,
                                      std::vector<Diagnostic>& diagnostics);

} // namespace xklink
