#include "Diagnostics.h"

#include <algorithm>
#include <cctype>
#include <ostream>
#include <utility>

namespace xklink {

namespace {

std::string Location(const SourceRef& where) {
  std::string out = where.file;
  if (where.line > 0) {
    out += ':' + std::to_string(where.line);
  }
  return out;
}

std::string FieldPrefix(const SourceRef& where) {
  return where.field.empty() ? std::string() : "field " + where.field + ": ";
}

// What makes two messages "the same" to a reader: severity, field and text, with digits and quoted
// names left out ("overlaps the stratum on line 935 by 0.1" and "... line 1000 by 0.9" agree).
std::string KindOf(const Diagnostic& d) {
  std::string key = d.severity == Severity::Error ? "E|" : "W|";
  key += d.where.field + '|';
  const std::string& text = d.message;
  const auto digit = [&text](std::size_t i) {
    return i < text.size() && std::isdigit(static_cast<unsigned char>(text[i])) != 0;
  };
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool inNumber = digit(i) || (c == '.' && ((i > 0 && digit(i - 1)) || digit(i + 1)));
    if (c == '\'') {
      quoted = !quoted;
      key += c;
    } else if (!quoted && !inNumber) {
      key += c;
    }
  }
  return key;
}

// Far more kinds than any file's rows produce; past it, every new kind is counted as one.
constexpr std::size_t kMaxKinds = 1000;

} // namespace

std::string SourceRef::ToString() const {
  std::string out = Location(*this);
  if (!field.empty()) {
    out += ": field " + field;
  }
  return out;
}

std::string Diagnostic::ToString() const {
  const char* severityText = severity == Severity::Warning ? "warning: " : "";
  return Location(where) + ": " + severityText + FieldPrefix(where) + message;
}

Diagnostic MakeError(SourceRef where, std::string message, std::string hole) {
  return Diagnostic{Severity::Error, std::move(where), std::move(message), std::move(hole)};
}

Diagnostic MakeWarning(SourceRef where, std::string message, std::string hole) {
  return Diagnostic{Severity::Warning, std::move(where), std::move(message), std::move(hole)};
}

bool HasErrors(const std::vector<Diagnostic>& diagnostics) {
  return std::any_of(diagnostics.begin(), diagnostics.end(),
                     [](const Diagnostic& d) { return d.severity == Severity::Error; });
}

CappedReport::CappedReport(std::ostream& out, std::size_t perKind, std::size_t total)
    : m_out(out), m_perKind(perKind), m_total(total) {}

void CappedReport::Add(const Diagnostic& d) {
  (d.severity == Severity::Error ? m_errors : m_warnings) += 1;
  std::string key = m_kinds.size() < kMaxKinds ? KindOf(d) : std::string("?");
  auto [it, inserted] = m_kinds.try_emplace(std::move(key));
  Kind& kind = it->second;
  if (inserted) {
    kind.first = d;
    m_order.push_back(it->first);
  }
  ++kind.seen;
  if (kind.shown < m_perKind && m_shown < m_total) {
    ++kind.shown;
    ++m_shown;
    m_out << d.ToString() << '\n';
  }
}

void CappedReport::Finish() {
  for (const std::string& key : m_order) {
    const Kind& kind = m_kinds.at(key);
    if (kind.seen > kind.shown) {
      const Diagnostic& d = kind.first;
      m_out << d.where.file << ": " << (d.severity == Severity::Warning ? "warning: " : "")
            << "and " << kind.seen - kind.shown << " more like this: " << FieldPrefix(d.where)
            << d.message << '\n';
    }
  }
  m_kinds.clear();
  m_order.clear();
}

// An error of usage has no place in a file: its message stands alone.
ParseError::ParseError(SourceRef where, const std::string& message)
    : std::runtime_error((where.file.empty() && where.line == 0 ? "" : Location(where) + ": ") +
                         FieldPrefix(where) + message),
      m_where(std::move(where)), m_message(message) {}

} // namespace xklink
