#include "Diagnostics.h"

#include <algorithm>
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

ParseError::ParseError(SourceRef where, const std::string& message)
    : std::runtime_error(Location(where) + ": " + FieldPrefix(where) + message),
      m_where(std::move(where)), m_message(message) {}

} // namespace xklink
