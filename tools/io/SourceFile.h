// Reading an input file into memory and finding lines in it.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace xklink {

// The text of a file as UTF-8: without a UTF-8 byte-order mark, and converted from UTF-16 when it
// starts with a UTF-16 byte-order mark (as Windows programs save "Unicode" text). ParseError naming
// the file when it does not exist, is a directory or cannot be read.
std::string ReadSourceFile(const std::filesystem::path& file);

// The name of a file in messages: the path as the user gave it.
std::string DisplayName(const std::filesystem::path& file);

struct SourceLine {
  std::size_t number;    // 1-based
  std::string_view text; // without its line ending
};

// The lines of a text. LF, CRLF and a lone CR each end a line: the AGS standard asks for CRLF, most
// real files have LF, and old Mac exports have CR. A final line ending does not open another line.
std::vector<SourceLine> SplitLines(std::string_view text);

// Line numbers of byte offsets, counting line endings as SplitLines does.
class LineIndex {
public:
  explicit LineIndex(std::string_view text);
  std::size_t LineOf(std::size_t offset) const;

private:
  std::vector<std::size_t> m_lineStarts;
};

// ParseError naming the line of the first NUL byte: a binary file given by mistake, or UTF-16
// without a byte-order mark (which the message then names).
void RequireNoNulBytes(std::string_view text, const std::string& file);

// RequireNoNulBytes, and ParseError naming the line of the first byte that is not valid UTF-8.
void RequireUtf8Text(std::string_view text, const std::string& file);

} // namespace xklink
