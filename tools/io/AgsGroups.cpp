#include "AgsGroups.h"

#include "CsvRecords.h"
#include "Numbers.h"
#include "SourceFile.h"

#include <algorithm>
#include <utility>

namespace xklink {

namespace {

std::string CountMismatch(std::size_t found, std::size_t expected) {
  return "the row has " + std::to_string(found) + " fields but the group has " +
         std::to_string(expected) + " headings";
}

// Shared bookkeeping of both editions: which group is open and whether we keep it.
class GroupCollector {
public:
  GroupCollector(std::string file, const std::set<std::string>& wanted, AgsFile& out)
      : m_file(std::move(file)), m_wanted(wanted), m_out(out) {}

  // Opens a group; nullptr when the group is not wanted.
  AgsGroup* Open(const std::string& name, std::size_t line) {
    m_open = true;
    m_current = nullptr;
    if (m_wanted.count(name) == 0) {
      return nullptr;
    }
    const auto [it, inserted] = m_out.groups.try_emplace(name);
    if (!inserted) {
      throw ParseError({m_file, line, name}, "group " + name + " appears twice (first at line " +
                                                 std::to_string(it->second.line) + ")");
    }
    it->second.name = name;
    it->second.line = line;
    m_current = &it->second;
    return m_current;
  }
  void Close() {
    m_open = false;
    m_current = nullptr;
  }
  bool IsOpen() const { return m_open; }
  AgsGroup* Current() { return m_current; }
  const std::string& File() const { return m_file; }

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

  void AddRow(AgsGroup& group, std::vector<std::string> values, std::size_t line) {
    if (group.headingLine == 0) {
      throw ParseError({m_file, line, group.name},
                       "data before the headings of group " + group.name);
    }
    if (values.size() != group.headings.size()) {
      throw ParseError({m_file, line, group.name},
                       CountMismatch(values.size(), group.headings.size()));
    }
    group.rows.push_back({line, std::move(values)});
  }

private:
  std::string m_file;
  const std::set<std::string>& m_wanted;
  AgsFile& m_out;
  bool m_open = false;
  AgsGroup* m_current = nullptr;
};

void ReadAgs4(const std::vector<SourceLine>& lines, GroupCollector& groups,
              std::vector<Diagnostic>& diagnostics) {
  for (const auto& line : lines) {
    const SourceRef where{groups.File(), line.number, {}};
    auto fields = SplitAgsLine(line.text, where, diagnostics);
    if (fields.empty()) { // a blank line ends a group
      groups.Close();
      continue;
    }
    const std::string kind = fields[0];
    if (kind == "GROUP") {
      if (fields.size() != 2 || fields[1].empty()) {
        throw ParseError({groups.File(), line.number, "GROUP"},
                         "a GROUP line holds exactly one group name");
      }
      groups.Open(fields[1], line.number);
      continue;
    }
    if (!groups.IsOpen()) {
      throw ParseError(where, "'" + kind +
                                  "' line outside a group: a group starts with a GROUP "
                                  "line");
    }
    AgsGroup* group = groups.Current();
    if (group == nullptr) {
      continue; // a group we do not read
    }
    fields.erase(fields.begin());
    if (kind == "HEADING") {
      if (group->headingLine != 0) {
        throw ParseError({groups.File(), line.number, group->name},
                         "second HEADING line in group " + group->name + " (first at line " +
                             std::to_string(group->headingLine) + ")");
      }
      groups.SetHeadings(*group, std::move(fields), line.number);
    } else if (kind == "UNIT" || kind == "TYPE") {
      if (group->headingLine == 0) {
        throw ParseError({groups.File(), line.number, group->name},
                         kind + " line before the HEADING line of group " + group->name);
      }
      if (fields.size() != group->headings.size()) {
        throw ParseError({groups.File(), line.number, group->name},
                         kind + " line: " + CountMismatch(fields.size(), group->headings.size()));
      }
    } else if (kind == "DATA") {
      groups.AddRow(*group, std::move(fields), line.number);
    } else {
      throw ParseError({groups.File(), line.number, group->name},
                       "unknown line type '" + kind +
                           "': expected GROUP, HEADING, UNIT, TYPE or DATA");
    }
  }
}

// "*?HOLE_ID" -> "HOLE_ID".
std::string Ags3HeadingName(std::string_view field) {
  field.remove_prefix(std::min<std::size_t>(1, field.size()));
  if (!field.empty() && field.front() == '?') {
    field.remove_prefix(1);
  }
  return std::string(field);
}

void ReadAgs3(const std::vector<SourceLine>& lines, GroupCollector& groups,
              std::vector<Diagnostic>& diagnostics) {
  bool headingContinues = false; // the last heading line ended with a comma
  for (const auto& line : lines) {
    const SourceRef where{groups.File(), line.number, {}};
    auto fields = SplitAgsLine(line.text, where, diagnostics);
    if (fields.empty()) {
      groups.Close();
      headingContinues = false;
      continue;
    }
    const std::string& first = fields[0];
    if (first.rfind("**", 0) == 0) {
      std::string name = first.substr(2);
      if (!name.empty() && name.front() == '?') {
        name.erase(0, 1);
      }
      groups.Open(name, line.number);
      headingContinues = false;
      continue;
    }
    if (!groups.IsOpen()) {
      throw ParseError(where, "line outside a group: a group starts with a \"**NAME\" line");
    }
    AgsGroup* group = groups.Current();
    if (group == nullptr) {
      continue;
    }
    // Headings come before the first data row; after it, a value that starts with '*' is data.
    const bool headingLine = first.size() > 1 && first.front() == '*' && first[1] != '*';
    if (group->rows.empty() && (headingLine || headingContinues)) {
      // A wrapped heading line ends with a comma, which leaves an empty last field.
      headingContinues = TrimSpaces(line.text).back() == ',';
      if (headingContinues && fields.back().empty()) {
        fields.pop_back();
      }
      auto headings = group->headings;
      for (const auto& field : fields) {
        if (field.empty() || field.front() != '*') {
          throw ParseError({groups.File(), line.number, field},
                           "a heading of AGS 3.1 starts with '*'");
        }
        headings.push_back(Ags3HeadingName(field));
      }
      groups.SetHeadings(*group, std::move(headings),
                         group->headingLine == 0 ? line.number : group->headingLine);
      continue;
    }
    if (first == "<UNITS>") {
      continue;
    }
    if (first == "<CONT>") {
      if (group->rows.empty()) {
        throw ParseError({groups.File(), line.number, group->name},
                         "<CONT> row with no data row above it to continue");
      }
      auto& above = group->rows.back();
      if (fields.size() != above.values.size()) {
        throw ParseError({groups.File(), line.number, group->name},
                         "<CONT> row: " + CountMismatch(fields.size(), above.values.size()));
      }
      for (std::size_t i = 1; i < fields.size(); ++i) {
        above.values[i] += fields[i];
      }
      continue;
    }
    groups.AddRow(*group, std::move(fields), line.number);
  }
}

} // namespace

std::optional<std::size_t> AgsGroup::Column(std::string_view heading) const {
  const auto it = std::find(headings.begin(), headings.end(), heading);
  if (it == headings.end()) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(it - headings.begin());
}

std::optional<AgsEdition> DetectAgsEdition(std::string_view text) {
  for (const auto& line : SplitLines(text)) {
    const auto trimmed = TrimSpaces(line.text);
    if (trimmed.empty()) {
      continue;
    }
    if (trimmed.rfind("\"GROUP\"", 0) == 0) {
      return AgsEdition::Ags4;
    }
    if (trimmed.rfind("\"**", 0) == 0) {
      return AgsEdition::Ags3;
    }
    return std::nullopt;
  }
  return std::nullopt;
}

AgsFile ReadAgsGroups(std::string_view text, const std::string& file,
                      const std::set<std::string>& wanted, std::vector<Diagnostic>& diagnostics) {
  const auto edition = DetectAgsEdition(text);
  if (!edition) {
    throw ParseError({file, 1, {}}, "not an AGS file: the first line is neither a \"GROUP\" line "
                                    "(AGS4) nor a \"**NAME\" line (AGS 3.1)");
  }
  AgsFile out;
  out.edition = *edition;
  GroupCollector groups(file, wanted, out);
  const auto lines = SplitLines(text);
  if (*edition == AgsEdition::Ags4) {
    ReadAgs4(lines, groups, diagnostics);
  } else {
    ReadAgs3(lines, groups, diagnostics);
  }
  return out;
}

} // namespace xklink
