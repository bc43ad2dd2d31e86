// Comma-separated records (RFC 4180), read with libcsv: fields separated by commas, a field with a
// comma, a quote or a line break in double quotes, a quote inside a quoted field doubled ("").
// (AGS files have a tokenizer of their own, AgsTokenizer.h.)
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

} // namespace xklink
