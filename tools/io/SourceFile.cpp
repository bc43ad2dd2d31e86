#include "SourceFile.h"

#include "Diagnostics.h"
#include "Text.h"

#include <algorithm>
#include <fstream>
#include <sstream>
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
  std::ostringstream buffer;
  buffer << in.rdbuf();
  if (in.bad()) {
    throw ParseError(where, "cannot read the file");
  }
  return std::string(StripUtf8Bom(buffer.str()));
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

void RequireUtf8Text(std::string_view text, const std::string& file) {
  if (const auto nul = text.find('\0'); nul != std::string_view::npos) {
    throw ParseError({file, LineIndex(text).LineOf(nul), {}},
                     "contains a NUL byte: this is not a text file");
  }
  if (const auto bad = FindInvalidUtf8(text)) {
    const auto line = LineIndex(text).LineOf(*bad);
    const auto lineStart = text.find_last_of("\r\n", *bad);
    const auto column = lineStart == std::string_view::npos ? *bad + 1 : *bad - lineStart;
    throw ParseError({file, line, {}}, "not valid UTF-8 at column " + std::to_string(column) +
                                           "; save the file as UTF-8");
  }
}

} // namespace xklink
