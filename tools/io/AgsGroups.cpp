#include "AgsGroups.h"

#include "Numbers.h"

#include <algorithm>
#include <utility>

namespace xklink {

namespace {

using Fields = std::vector<std::string_view>;

std::string CountMismatch(std::size_t found, std::size_t expected) {
  return "the row has " + std::to_string(found) + " fields but the group has " +
         std::to_string(expected) + " headings";
}

// The hole a row belongs to, when its group is keyed by hole and the row reaches the key.
std::string HoleOf(const AgsGroup& group, const Fields& values) {
  for (const auto* key : {"LOCA_ID", "HOLE_ID"}) {
    if (const auto column = group.Column(key); column && *column < values.size()) {
      return std::string(TrimSpaces(values[*column]));
    }
  }
  return {};
}

// Which group is open, whether we keep it, and how a group given twice joins the first.
class GroupCollector {
public:
  GroupCollector(std::string file, const std::set<std::string>& wanted, AgsFile& out,
                 std::vector<Diagnostic>& diagnostics)
      : m_file(std::move(file)), m_wanted(wanted), m_out(out), m_diagnostics(diagnostics),
        m_rows(m_file, diagnostics) {}

  void Finish() {
    Close();
    m_rows.Finish();
  }

  // Opens a group; Current() is nullptr when the group is not wanted.
  void Open(const std::string& name, std::size_t line) {
    Close();
    m_open = true;
    if (m_wanted.count(name) != 0) {
      m_part = AgsGroup{};
      m_part.name = name;
      m_part.line = line;
      m_current = &m_part;
    }
  }

  void Close() {
    if (m_current != nullptr) {
      Keep(std::move(m_part));
    }
    m_open = false;
    m_current = nullptr;
    m_lastRowKept = false;
  }

  bool IsOpen() const { return m_open; }
  AgsGroup* Current() { return m_current; }
  const std::string& File() const { return m_file; }
  bool LastRowKept() const { return m_lastRowKept; }

  void SetHeadings(AgsGroup& group, std::vector<std::string> headings, std::size_t line) {
    for (std::size_t i = 0; i < headings.size(); ++i) {
      if (std::find(headings.begin(), headings.begin() + static_cast<std::ptrdiff_t>(i),
                    headings[i]) != headings.begin() + static_cast<std::ptrdiff_t>(i)) {
        throw ParseError({m_file, line, headings[i]},
                         "heading appears twice in group " + group.name);
      }
    }
    group.headings = std::move(headings);
    group.headingLine = line;
  }

  void AddRow(AgsGroup& group, const Fields& values, std::size_t line) {
    if (group.headingLine == 0) {
      throw ParseError({m_file, line, group.name},
                       "data before the headings of group " + group.name);
    }
    m_lastRowKept = values.size() == group.headings.size();
    if (!m_lastRowKept) {
      RowProblem(group, values, line, CountMismatch(values.size(), group.headings.size()));
      return;
    }
    group.rowLines.push_back(line);
    group.cells.insert(group.cells.end(), values.begin(), values.end());
  }

  // A row that cannot be read is left out: an error of its hole (whose log now misses a row) or,
  // in a group not keyed by hole, a warning.
  void RowProblem(const AgsGroup& group, const Fields& values, std::size_t line,
                  const std::string& why) {
    const std::string hole = HoleOf(group, values);
    const SourceRef where{m_file, line, group.name};
    const std::string message = why + "; the row is left out";
    m_rows.Add(hole.empty() ? MakeWarning(where, message) : MakeError(where, message, hole));
  }

private:
  void Keep(AgsGroup&& part) {
    const auto [it, inserted] = m_out.groups.try_emplace(part.name, std::move(part));
    if (inserted) {
      return;
    }
    AgsGroup& first = it->second;
    m_diagnostics.push_back(MakeWarning(
        {m_file, part.line, part.name},
        "group " + part.name + " appears again (first at line " + std::to_string(first.line) +
            "); its rows are read with those of the first, matched by heading"));
    if (first.headingLine == 0) {
      first.headingLine = part.headingLine;
    }
    std::vector<std::size_t> columnOf; // column in `first` of each heading of `part`
    for (const auto& heading : part.headings) {
      auto column = first.Column(heading);
      if (!column) {
        AddColumn(first, heading);
        column = first.headings.size() - 1;
      }
      columnOf.push_back(*column);
    }
    const std::size_t width = first.headings.size();
    for (std::size_t row = 0; row < part.RowCount(); ++row) {
      first.rowLines.push_back(part.rowLines[row]);
      const std::size_t start = first.cells.size();
      first.cells.resize(start + width);
      for (std::size_t k = 0; k < columnOf.size(); ++k) {
        first.cells[start + columnOf[k]] = part.Cell(row, k);
      }
    }
  }

  // Adds an empty column at the end of every row.
  static void AddColumn(AgsGroup& group, const std::string& heading) {
    const std::size_t width = group.headings.size();
    std::deque<std::string_view> cells;
    for (std::size_t row = 0; row < group.RowCount(); ++row) {
      const auto begin = group.cells.begin() + static_cast<std::ptrdiff_t>(row * width);
      cells.insert(cells.end(), begin, begin + static_cast<std::ptrdiff_t>(width));
      cells.emplace_back();
    }
    group.cells = std::move(cells);
    group.headings.push_back(heading);
  }

  std::string m_file;
  const std::set<std::string>& m_wanted;
  AgsFile& m_out;
  std::vector<Diagnostic>& m_diagnostics;
  RowDiagnostics m_rows;
  AgsGroup m_part;
  bool m_open = false;
  AgsGroup* m_current = nullptr;
  bool m_lastRowKept = false;
};

void ReadAgs4(AgsTokenizer& tokens, GroupCollector& groups) {
  AgsRecord record;
  Fields values;
  while (tokens.Next(record)) {
    const auto& fields = record.fields;
    const std::size_t line = record.line;
    if (fields.empty()) { // a blank line ends a group
      groups.Close();
      continue;
    }
    const std::string kind(fields[0]);
    if (kind == "GROUP") {
      if (fields.size() != 2 || fields[1].empty()) {
        throw ParseError({groups.File(), line, "GROUP"},
                         "a GROUP line holds exactly one group name");
      }
      groups.Open(std::string(fields[1]), line);
      continue;
    }
    if (!groups.IsOpen()) {
      throw ParseError({groups.File(), line, {}},
                       "'" + kind + "' line outside a group: a group starts with a GROUP line");
    }
    AgsGroup* group = groups.Current();
    if (group == nullptr) {
      continue; // a group we do not read
    }
    values.assign(fields.begin() + 1, fields.end());
    if (kind == "HEADING") {
      if (group->headingLine != 0) {
        throw ParseError({groups.File(), line, group->name},
                         "second HEADING line in group " + group->name + " (first at line " +
                             std::to_string(group->headingLine) + ")");
      }
      groups.SetHeadings(*group, {values.begin(), values.end()}, line);
    } else if (kind == "UNIT" || kind == "TYPE") {
      if (group->headingLine == 0) {
        throw ParseError({groups.File(), line, group->name},
                         kind + " line before the HEADING line of group " + group->name);
      }
      if (values.size() != group->headings.size()) {
        throw ParseError({groups.File(), line, group->name},
                         kind + " line: " + CountMismatch(values.size(), group->headings.size()));
      }
    } else if (kind == "DATA") {
      groups.AddRow(*group, values, line);
    } else {
      throw ParseError({groups.File(), line, group->name},
                       "unknown line type '" + kind +
                           "': expected GROUP, HEADING, UNIT, TYPE or DATA");
    }
  }
  groups.Finish();
}

// "*?HOLE_ID" -> "HOLE_ID".
std::string Ags3HeadingName(std::string_view field) {
  field.remove_prefix(std::min<std::size_t>(1, field.size()));
  if (!field.empty() && field.front() == '?') {
    field.remove_prefix(1);
  }
  return std::string(field);
}

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

// The records of an AGS 3.1 file with wrapped lines joined: a line that ends with a comma goes on
// in the next, unless that one is blank or starts a group or a <UNITS> or <CONT> row of its own.
class Ags3Lines {
public:
  explicit Ags3Lines(AgsTokenizer& tokens) : m_tokens(tokens) { m_hasNext = m_tokens.Next(m_next); }

  bool Next(AgsRecord& out) {
    if (!m_hasNext) {
      return false;
    }
    std::swap(out, m_next);
    m_hasNext = m_tokens.Next(m_next);
    while (out.endsWithComma && m_hasNext && Continues(m_next)) {
      out.fields.pop_back(); // the empty field after the final comma
      out.fields.insert(out.fields.end(), m_next.fields.begin(), m_next.fields.end());
      out.endsWithComma = m_next.endsWithComma;
      m_hasNext = m_tokens.Next(m_next);
    }
    return true;
  }

private:
  static bool Continues(const AgsRecord& next) {
    return !next.fields.empty() && !StartsWith(next.fields[0], "**") &&
           next.fields[0] != "<UNITS>" && next.fields[0] != "<CONT>";
  }

  AgsTokenizer& m_tokens;
  AgsRecord m_next;
  bool m_hasNext = false;
};

void ReadAgs3(AgsTokenizer& tokens, GroupCollector& groups, std::deque<std::string>& joined) {
  Ags3Lines lines(tokens);
  AgsRecord record;
  while (lines.Next(record)) {
    auto& fields = record.fields;
    const std::size_t line = record.line;
    if (fields.empty()) {
      groups.Close();
      continue;
    }
    const std::string_view first = fields[0];
    if (StartsWith(first, "**")) {
      std::string name(first.substr(2));
      if (!name.empty() && name.front() == '?') {
        name.erase(0, 1);
      }
      groups.Open(name, line);
      continue;
    }
    if (!groups.IsOpen()) {
      throw ParseError({groups.File(), line, {}},
                       "line outside a group: a group starts with a \"**NAME\" line");
    }
    AgsGroup* group = groups.Current();
    if (group == nullptr) {
      continue;
    }
    // Headings come before the first data row, on as many lines as the producer liked; after it,
    // a value that starts with '*' is data.
    const bool headingLine = first.size() > 1 && first.front() == '*';
    if (group->RowCount() == 0 && headingLine) {
      auto headings = group->headings;
      for (const auto field : fields) {
        if (field.empty() || field.front() != '*') {
          throw ParseError({groups.File(), line, std::string(field)},
                           "a heading of AGS 3.1 starts with '*'");
        }
        headings.push_back(Ags3HeadingName(field));
      }
      groups.SetHeadings(*group, std::move(headings),
                         group->headingLine == 0 ? line : group->headingLine);
      continue;
    }
    if (first == "<UNITS>") {
      continue;
    }
    if (first == "<CONT>") {
      if (!groups.LastRowKept()) {
        if (group->RowCount() == 0) {
          groups.RowProblem(*group, {}, line, "<CONT> row with no data row above it to continue");
        }
        continue; // the row it continues was left out, and said so
      }
      const std::size_t width = group->headings.size();
      const std::size_t row = group->RowCount() - 1;
      const auto above = group->cells.begin() + static_cast<std::ptrdiff_t>(row * width);
      if (fields.size() != width) {
        const Fields aboveFields(above, above + static_cast<std::ptrdiff_t>(width));
        groups.RowProblem(*group, aboveFields, line,
                          "<CONT> row: " + CountMismatch(fields.size(), width));
        continue;
      }
      for (std::size_t i = 1; i < width; ++i) {
        if (!fields[i].empty()) {
          auto& cell = group->cells[row * width + i];
          joined.push_back(std::string(cell) + std::string(fields[i]));
          cell = joined.back();
        }
      }
      continue;
    }
    groups.AddRow(*group, fields, line);
  }
  groups.Finish();
}

} // namespace

void RowDiagnostics::Add(Diagnostic diagnostic) {
  auto& hole = m_holes[diagnostic.hole];
  if (hole.kept < (diagnostic.hole.empty() ? kWithoutHole : kPerHole)) {
    ++hole.kept;
    m_out.push_back(std::move(diagnostic));
    return;
  }
  if (hole.count++ == 0) {
    hole.firstLine = diagnostic.where.line;
  }
  hole.anyError = hole.anyError || diagnostic.severity == Severity::Error;
}

void RowDiagnostics::Finish() {
  for (auto& [name, hole] : m_holes) {
    if (hole.count == 0) {
      continue;
    }
    const std::string message = std::to_string(hole.count) + " more problem" +
                                (hole.count == 1 ? "" : "s") + " in rows " +
                                (name.empty() ? "of the file" : "of hole '" + name + "'") +
                                ", from this line on, not listed one by one";
    const SourceRef where{m_file, hole.firstLine, {}};
    m_out.push_back(hole.anyError ? MakeError(where, message, name)
                                  : MakeWarning(where, message, name));
    hole.count = 0;
  }
}

std::optional<std::size_t> AgsGroup::Column(std::string_view heading) const {
  const auto it = std::find(headings.begin(), headings.end(), heading);
  if (it == headings.end()) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(it - headings.begin());
}

std::optional<AgsEdition> DetectAgsEdition(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) {
    return std::nullopt;
  }
  const auto line = text.substr(first, text.find_first_of("\r\n", first) - first);
  if (StartsWith(line, "\"GROUP\"")) {
    return AgsEdition::Ags4;
  }
  if (StartsWith(line, "\"**")) {
    return AgsEdition::Ags3;
  }
  return std::nullopt;
}

AgsFile ReadAgsGroups(std::string text, const std::string& file,
                      const std::set<std::string>& wanted, std::vector<Diagnostic>& diagnostics) {
  if (text.find_first_not_of(" \t\r\n") == std::string::npos) {
    throw ParseError({file, 0, {}}, "empty file: no AGS groups");
  }
  const auto edition = DetectAgsEdition(text);
  if (!edition) {
    throw ParseError({file, 1, {}}, "not an AGS file: the first line is neither a \"GROUP\" line "
                                    "(AGS4) nor a \"**NAME\" line (AGS 3.1)");
  }
  AgsFile out;
  out.edition = *edition;
  out.text = std::make_unique<std::string>(std::move(text));
  AgsTokenizer tokens(*out.text, file, *edition, diagnostics);
  GroupCollector groups(file, wanted, out, diagnostics);
  if (*edition == AgsEdition::Ags4) {
    ReadAgs4(tokens, groups);
  } else {
    ReadAgs3(tokens, groups, out.joined);
  }
  tokens.Finish();
  return out;
}

} // namespace xklink
