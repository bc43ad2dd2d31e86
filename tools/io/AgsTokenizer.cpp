#include "AgsTokenizer.h"

#include <array>
#include <utility>

namespace xklink {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

bool IsLineEnd(char c) {
  return c == '\n' || c == '\r';
}

// The first fields of the AGS4 line types: a line that starts with one of them starts a record.
constexpr std::array<std::string_view, 5> kAgs4LineTypes = {"\"GROUP\"", "\"HEADING\"", "\"UNIT\"",
                                                            "\"TYPE\"", "\"DATA\""};

} // namespace

AgsTokenizer::AgsTokenizer(std::string& text, std::string file, AgsEdition edition,
                           std::vector<Diagnostic>& diagnostics)
    : m_text(text.data()), m_size(text.size()), m_file(std::move(file)), m_edition(edition),
      m_diagnostics(diagnostics) {}

bool AgsTokenizer::Next(AgsRecord& record) {
  record.fields.clear();
  record.endsWithComma = false;
  if (m_pos >= m_size) {
    return false;
  }
  record.line = m_recordLine = m_line;
  m_strayInRecord = false;
  const auto skipBlanks = [&] {
    while (m_pos < m_size && IsBlank(m_text[m_pos])) {
      ++m_pos;
    }
  };
  const auto skipLineEnd = [&] {
    if (m_pos < m_size) {
      m_pos += m_text[m_pos] == '\r' && m_pos + 1 < m_size && m_text[m_pos + 1] == '\n' ? 2 : 1;
      ++m_line;
    }
  };
  skipBlanks();
  if (m_pos == m_size || IsLineEnd(m_text[m_pos])) { // a blank line
    skipLineEnd();
    return true;
  }
  for (;;) {
    skipBlanks();
    record.fields.push_back(m_pos < m_size && m_text[m_pos] == '"' ? QuotedField()
                                                                   : UnquotedField());
    // Each field stops at a comma, a line end or the end of the text.
    if (m_pos == m_size || m_text[m_pos] != ',') {
      skipLineEnd();
      break;
    }
    ++m_pos;
    skipBlanks();
    if (m_pos == m_size || IsLineEnd(m_text[m_pos])) {
      record.fields.emplace_back(); // the empty last field that a final comma leaves
      record.endsWithComma = true;
      skipLineEnd();
      break;
    }
  }
  if (m_strayInRecord) {
    NoteStrayQuote();
  }
  return true;
}

std::string_view AgsTokenizer::QuotedField() {
  const std::size_t openLine = m_line;
  ++m_pos; // the opening quote
  const std::size_t start = m_pos;
  std::size_t out = m_pos; // where the next byte of the field goes; never ahead of m_pos
  const auto ordinary = [this](std::size_t i) {
    const char c = m_text[i];
    return c != '"' && !IsLineEnd(c);
  };
  for (;;) {
    if (out == m_pos) { // nothing undoubled yet: the bytes stay where they are
      while (m_pos < m_size && ordinary(m_pos)) {
        ++m_pos;
      }
      out = m_pos;
    } else {
      while (m_pos < m_size && ordinary(m_pos)) {
        m_text[out++] = m_text[m_pos++];
      }
    }
    if (m_pos == m_size) {
      throw ParseError({m_file, openLine, {}},
                       "a quoted field opened on this line is never closed: the file ends inside "
                       "it (was it cut short?)");
    }
    if (m_text[m_pos] == '"') {
      if (m_pos + 1 < m_size && m_text[m_pos + 1] == '"') { // a doubled quote
        m_text[out++] = '"';
        m_pos += 2;
        continue;
      }
      std::size_t after = m_pos + 1;
      while (after < m_size && IsBlank(m_text[after])) {
        ++after;
      }
      if (after == m_size || m_text[after] == ',' || IsLineEnd(m_text[after])) {
        m_pos = after;
        return {m_text + start, out - start};
      }
      m_strayInRecord = true; // a quote inside the text, not doubled
      m_text[out++] = '"';
      ++m_pos;
      continue;
    }
    if (NextLineStartsRecord(m_pos)) { // a stray quote opened the field: it ends with its line
      m_strayInRecord = true;
      return {m_text + start, out - start};
    }
    m_pos += m_text[m_pos] == '\r' && m_pos + 1 < m_size && m_text[m_pos + 1] == '\n' ? 2 : 1;
    ++m_line;
    m_text[out++] = '\n';
  }
}

std::string_view AgsTokenizer::UnquotedField() {
  const std::size_t start = m_pos;
  while (m_pos < m_size && m_text[m_pos] != ',' && !IsLineEnd(m_text[m_pos])) {
    m_strayInRecord = m_strayInRecord || m_text[m_pos] == '"';
    ++m_pos;
  }
  std::size_t end = m_pos;
  while (end > start && IsBlank(m_text[end - 1])) {
    --end;
  }
  return {m_text + start, end - start};
}

bool AgsTokenizer::NextLineStartsRecord(std::size_t from) const {
  from += m_text[from] == '\r' && from + 1 < m_size && m_text[from + 1] == '\n' ? 2 : 1;
  while (from < m_size && IsBlank(m_text[from])) {
    ++from;
  }
  const std::string_view next(m_text + from, m_size - from);
  if (m_edition == AgsEdition::Ags3) {
    return !next.empty() && next.front() == '"';
  }
  for (const auto type : kAgs4LineTypes) {
    if (next.substr(0, type.size()) == type) {
      const auto rest = next.substr(type.size()).find_first_not_of(" \t");
      return rest == std::string_view::npos || next[type.size() + rest] == ',' ||
             IsLineEnd(next[type.size() + rest]);
    }
  }
  return false;
}

void AgsTokenizer::NoteStrayQuote() {
  if (m_strayLines++ == 0) {
    m_firstStrayLine = m_recordLine;
  }
}

void AgsTokenizer::Finish() {
  if (m_strayLines == 0) {
    return;
  }
  std::string message = "quotes not doubled inside a field; read leniently, keeping stray quotes "
                        "as text";
  if (m_strayLines > 1) {
    message += " (here and on " + std::to_string(m_strayLines - 1) + " more line" +
               (m_strayLines > 2 ? "s" : "") + ")";
  }
  m_diagnostics.push_back(MakeWarning({m_file, m_firstStrayLine, {}}, std::move(message)));
}

} // namespace xklink
