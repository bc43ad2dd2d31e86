#include "SourceFile.h"

#include "Diagnostics.h"
#include "Text.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <system_error>

namespace xklink {

std::string DisplayName(const std::filesystem::path& file) {
  return file.string();
}

std::string ReadSourceFile(const std::filesystem::path& file) {
  const SourceRef where{DisplayName(file), 0, {}};
  std::error_code ec;
  const auto status = std::filesystem::status(file, ec);
  if (ec || !std::filesystem::exists(status)) {
    throw ParseError(where, "cannot read the file: it does not exist");
  }
  if (std::filesystem::is_directory(status)) {
    throw ParseError(where, "cannot read the file: it is a directory");
  }
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    throw ParseError(where, "cannot open the file for reading");
  }
  // One buffer of the file's size, filled in place: a file of hundreds of megabytes is not copied.
  std::string text;
  if (const auto size = std::filesystem::file_size(file, ec); !ec) {
    text.resize(static_cast<std::size_t>(size));
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(in.gcount()));
  }
  // What is left (a file that grew, or one of unknown size such as a pipe) comes in chunks.
  std::array<char, 65536> chunk{};
  while (in) {
    in.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    text.append(chunk.data(), static_cast<std::size_t>(in.gcount()));
  }
  if (in.bad()) {
    throw ParseError(where, "cannot read the file");
  }
  if (const auto utf16 = Utf16ToUtf8(text)) {
    if (!utf16->ok) {
      throw ParseError(where, "UTF-16 text (it starts with a UTF-16 byte-order mark) with an odd "
                              "number of bytes: the file is cut short");
    }
    return std::move(utf16->text);
  }
  if (const auto bom = StripUtf8Bom(text); bom.size() != text.size()) {
    text.erase(0, text.size() - bom.size());
  }
  return text;
}

std::vector<SourceLine> SplitLines(std::string_view text) {
  std::vector<SourceLine> lines;
  std::size_t start = 0;
  std::size_t number = 1;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\n' && text[i] != '\r') {
      continue;
    }
    lines.push_back({number++, text.substr(start, i - start)});
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
      ++i;
    }
    start = i + 1;
  }
  if (start < text.size()) {
    lines.push_back({number, text.substr(start)});
  }
  return lines;
}

LineIndex::LineIndex(std::string_view text) {
  m_lineStarts.push_back(0);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
      ++i;
    }
    if (text[i] == '\n' || text[i] == '\r') {
      m_lineStarts.push_back(i + 1);
    }
  }
}

std::size_t LineIndex::LineOf(std::size_t offset) const {
  const auto next = std::upper_bound(m_lineStarts.begin(), m_lineStarts.end(), offset);
  return static_cast<std::size_t>(next - m_lineStarts.begin());
}

void RequireNoNulBytes(std::string_view text, const std::string& file) {
  const auto nul = text.find('\0');
  if (nul == std::string_view::npos) {
    return;
  }
  // UTF-16 puts a NUL beside every ASCII character: in the first line, about every other byte.
  const auto head = text.substr(0, 200);
  const auto nuls = static_cast<std::size_t>(std::count(head.begin(), head.end(), '\0'));
  if (head.size() >= 8 && 3 * nuls >= head.size()) {
    throw ParseError({file, 0, {}}, "looks like UTF-16 text without a byte-order mark; save it as "
                                    "UTF-8 (or as UTF-16 with a byte-order mark)");
  }
  throw ParseError({file, LineIndex(text).LineOf(nul), {}},
                   "contains a NUL byte: this is not a text file");
}

void RequireUtf8Text(std::string_view text, const std::string& file) {
  RequireNoNulBytes(text, file);
  if (const auto bad = FindInvalidUtf8(text)) {
    const auto line = LineIndex(text).LineOf(*bad);
    const auto lineStart = text.find_last_of("\r\n", *bad);
    const auto column = lineStart == std::string_view::npos ? *bad + 1 : *bad - lineStart;
    throw ParseError({file, line, {}}, "not valid UTF-8 at column " + std::to_string(column) +
                                           "; save the file as UTF-8");
  }
}

} // namespace xklink
