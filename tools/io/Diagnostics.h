// Where a value came from, and what is wrong with it. Every message the readers and the validation
// produce names the file, the line and the field, so that an engineer can open the log and fix it.
#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace xklink {

// A place in an input file.
struct SourceRef {
  std::string file;
  std::size_t line = 0; // 1-based; 0 stands for the file as a whole
  std::string field;    // column, heading or key; empty when no single field is to blame

  // "holes.csv:12: field TOP" ("holes.csv" alone when line and field are unknown).
  std::string ToString() const;
};

enum class Severity {
  Warning, // the data was read, but an engineer should look at it
  Error    // the data cannot be used for a section as it stands
};

struct Diagnostic {
  Severity severity = Severity::Error;
  SourceRef where;
  std::string message;
  std::string hole; // the hole concerned; empty when the problem is not tied to one hole

  // "holes.csv:12: field TOP: top 95 is below base 97" for an error,
  // "holes.csv:12: warning: field TOP: ..." for a warning.
  std::string ToString() const;
};

Diagnostic MakeError(SourceRef where, std::string message, std::string hole = {});
Diagnostic MakeWarning(SourceRef where, std::string message, std::string hole = {});

// True when at least one diagnostic is an error.
bool HasErrors(const std::vector<Diagnostic>& diagnostics);

// Where the checks put what they find, one diagnostic at a time, so that a file with millions of
// bad rows is reported without holding millions of messages.
using DiagnosticSink = std::function<void(const Diagnostic&)>;

// Writes diagnostics, one a line, the way a person can take them in. A message that repeats for
// many rows (the same text but for its numbers and quoted names) is written `perKind` times and
// then only counted; after `total` lines nothing more is written. Finish() writes the counts:
//   "site.ags: warning: and 398 more like this: field GEOL_GEOL: no code: ..."
// Memory stays bounded: one entry per kind of message, not per message.
class CappedReport {
public:
  static constexpr std::size_t kPerKind = 3;
  static constexpr std::size_t kTotal = 100;

  explicit CappedReport(std::ostream& out, std::size_t perKind = kPerKind,
                        std::size_t total = kTotal);
  void Add(const Diagnostic& d);
  void Finish();
  std::size_t Count(Severity severity) const {
    return severity == Severity::Error ? m_errors : m_warnings;
  }

private:
  struct Kind {
    std::size_t seen = 0;
    std::size_t shown = 0;
    Diagnostic first;
  };
  std::ostream& m_out;
  std::size_t m_perKind;
  std::size_t m_total;
  std::size_t m_shown = 0;
  std::size_t m_errors = 0;
  std::size_t m_warnings = 0;
  std::map<std::string, Kind> m_kinds;
  std::vector<std::string> m_order; // kinds in the order first met
};

// Input that cannot be read at all: bad syntax, a missing column, a value that is not a number.
// what() is "holes.csv:12: field TOP: not a number: 'abc'". The root of the tools' errors: a
// refusal of bad usage or a failed write is one too (tools/xklink/Errors.h), its message alone when
// no file is to blame ("--holes: ..."), so that every refusal maps to one exit status.
class ParseError : public std::runtime_error {
public:
  ParseError(SourceRef where, const std::string& message);

  const SourceRef& Where() const { return m_where; }
  // The message without the location.
  const std::string& Message() const { return m_message; }

private:
  SourceRef m_where;
  std::string m_message;
};

} // namespace xklink
