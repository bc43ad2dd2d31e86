// The records of an AGS file: fields in double quotes, separated by commas, a quote inside a field
// doubled (""), one record a line.
//
// Real files bend this in three ways, and the tokenizer reads them as their authors meant:
//  - a quoted field may hold a line break (AGS4 descriptions written in a database with "Enter"
//    between sentences; the next line often starts with a tab). The record then goes on over the
//    following lines and the line break is kept as LF. A quote still open at the end of the file
//    is an error: the file was cut short, and reading it would silently lose the last rows;
//  - a quote inside a field that is not doubled ("Ashfield Area "C" Development") is kept as text:
//    only a quote followed by a comma or the end of the line closes a field. A quote left open at
//    the end of a line whose next line starts a new record ("DATA", ... in AGS4, any quoted field
//    in AGS 3.1, whose lines carry no keyword) was such a stray quote too, and is closed there.
//    One warning for the file names the first such line and counts the others;
//  - AGS 3.1 wraps long lines: a line that ends with a comma outside quotes goes on in the next
//    line. The tokenizer reports the comma (AgsRecord::endsWithComma); the group reader joins.
//
// The fields are views into the text, which the tokenizer edits in place (undoubling quotes,
// writing line breaks inside fields as LF): no copy of a line or a field is made, so that a file of
// hundreds of megabytes is read at the speed of memory and costs little more than its own size.
#pragma once

#include "Diagnostics.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace xklink {

enum class AgsEdition { Ags3, Ags4 };

struct AgsRecord {
  std::size_t line = 0;                 // the line the record starts on
  std::vector<std::string_view> fields; // empty for a blank line
  bool endsWithComma = false;           // the line ends with a comma outside quotes
};

class AgsTokenizer {
public:
  // `text` must outlive the tokenizer and the views it gives; it is changed in place.
  AgsTokenizer(std::string& text, std::string file, AgsEdition edition,
               std::vector<Diagnostic>& diagnostics);

  // The next record; false at the end of the text. ParseError when the file ends inside quotes.
  bool Next(AgsRecord& record);

  // Adds the warning about stray quotes, if any. Call once after the last record.
  void Finish();

private:
  std::string_view QuotedField();
  std::string_view UnquotedField();
  bool NextLineStartsRecord(std::size_t from) const;
  void NoteStrayQuote();

  char* m_text;
  std::size_t m_size;
  std::string m_file;
  AgsEdition m_edition;
  std::vector<Diagnostic>& m_diagnostics;
  std::size_t m_pos = 0;
  std::size_t m_line = 1;
  std::size_t m_recordLine = 0;
  bool m_strayInRecord = false;
  std::size_t m_strayLines = 0;
  std::size_t m_firstStrayLine = 0;
};

} // namespace xklink
