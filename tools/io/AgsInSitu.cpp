#include "AgsInSitu.h"

#include "AgsGroups.h"
#include "AgsText.h"
#include "Numbers.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <initializer_list>
#include <set>

namespace xklink {

namespace {

// Two depths written to the centimetre name the same strike when they differ by less than this.
constexpr double kSameDepth = 0.005;

const std::set<std::string> kGroups = {"WSTG", "WSTD", "WSTK", "MOND", "ISPT", "GEOL"};

// One group of the file, its columns found by any of the names the editions and producers use.
class Table {
public:
  Table(const AgsGroup& group, const std::string& file, std::vector<Diagnostic>& diagnostics)
      : m_group(group), m_file(file), m_diagnostics(diagnostics),
        m_key(Find({"LOCA_ID", "HOLE_ID"})) {}

  const AgsGroup& Group() const { return m_group; }

  // The first of `names` that the group has as a heading, or "".
  std::string Find(std::initializer_list<const char*> names) const {
    for (const char* name : names) {
      if (m_group.Column(name)) {
        return name;
      }
    }
    return {};
  }

  // False, with one warning, when the group lacks the key or `heading`.
  bool Has(const std::string& heading, const char* what) const {
    if (m_key.empty() || heading.empty()) {
      m_diagnostics.push_back(
          MakeWarning({m_file, m_group.headingLine != 0 ? m_group.headingLine : m_group.line, {}},
                      "group " + m_group.name + " has no " +
                          (m_key.empty() ? std::string("hole name") : std::string(what)) +
                          " column; its " + what + " are not shown"));
      return false;
    }
    return true;
  }

  std::string Hole(std::size_t row) const { return Text(row, m_key); }

  // The field trimmed, "" for a heading the group does not have.
  std::string Text(std::size_t row, const std::string& heading) const {
    const auto column = heading.empty() ? std::nullopt : m_group.Column(heading);
    return column ? std::string(TrimSpaces(m_group.Cell(row, *column))) : std::string{};
  }

  // The number in the field; nothing when it is empty, and nothing with a warning when it is not a
  // finite number.
  std::optional<double> Number(std::size_t row, const std::string& heading) const {
    const std::string text = Text(row, heading);
    if (IsNullField(text)) {
      return std::nullopt;
    }
    try {
      const double value = ParseNumber(text, Ref(row, heading));
      if (std::isfinite(value)) {
        return value;
      }
    } catch (const ParseError&) {
      // reported below
    }
    Warn(row, heading, "not a number: '" + text + "'; the value is left out");
    return std::nullopt;
  }

  // A depth below ground that places the record, or nothing with a warning.
  std::optional<double> Depth(std::size_t row, const std::string& heading) const {
    const auto depth = Number(row, heading);
    if (depth && *depth < 0) {
      Warn(row, heading, "negative depth " + Text(row, heading) + "; the row is left out");
      return std::nullopt;
    }
    return depth;
  }

  SourceRef Ref(std::size_t row, const std::string& heading) const {
    return {m_file, m_group.rowLines[row], heading};
  }

  void Warn(std::size_t row, const std::string& heading, const std::string& message) const {
    m_diagnostics.push_back(MakeWarning(Ref(row, heading), message, Hole(row)));
  }

private:
  const AgsGroup& m_group;
  const std::string& m_file;
  std::vector<Diagnostic>& m_diagnostics;
  std::string m_key;
};

std::string Joined(const std::string& a, const std::string& b) {
  return a.empty() ? b : b.empty() ? a : a + " " + b;
}

// Water strikes: WSTG (AGS4, and WSTG of some AGS 3.1 producers) or WSTK (AGS 3.1).
void ReadStrikes(const Table& table, InSituData& data) {
  const std::string depth = table.Find({"WSTG_DPTH", "WSTK_DEP", "WSTG_DEP"});
  if (!table.Has(depth, "water strikes")) {
    return;
  }
  const std::string minutes = table.Find({"WSTK_NMIN", "WSTG_NMIN"});
  const std::string post = table.Find({"WSTK_POST", "WSTG_POST"});
  const std::string date = table.Find({"WSTG_DTIM", "WSTK_DATE", "WSTG_DATE"});
  const std::string time = table.Find({"WSTK_TIME", "WSTG_TIME"});
  const std::string remark = table.Find({"WSTG_REM", "WSTK_REM"});
  for (std::size_t row = 0; row < table.Group().RowCount(); ++row) {
    const std::string hole = table.Hole(row);
    // Rows without a depth carry a remark for the hole ("strikes not recorded during rotary
    // drilling"): there is no strike to draw.
    const auto at = hole.empty() ? std::nullopt : table.Depth(row, depth);
    if (!at) {
      continue;
    }
    WaterStrike strike;
    strike.depth = *at;
    strike.roseTo = table.Depth(row, post);
    strike.minutes = table.Number(row, minutes);
    strike.time = Joined(table.Text(row, date), table.Text(row, time));
    strike.remark = table.Text(row, remark);
    strike.where = table.Ref(row, depth);
    data[hole].waterStrikes.push_back(std::move(strike));
  }
}

// AGS4 WSTD: the levels read at intervals after each strike; the strike keeps the last of them.
void ReadStrikeReadings(const Table& table, InSituData& data) {
  const std::string depth = table.Find({"WSTG_DPTH"});
  if (!table.Has(depth, "water strike readings")) {
    return;
  }
  for (std::size_t row = 0; row < table.Group().RowCount(); ++row) {
    const std::string hole = table.Hole(row);
    const auto at = hole.empty() ? std::nullopt : table.Depth(row, depth);
    const auto level = at ? table.Depth(row, "WSTD_POST") : std::nullopt;
    if (!level) {
      continue;
    }
    const auto minutes = table.Number(row, "WSTD_NMIN");
    auto& strikes = data[hole].waterStrikes;
    auto strike = std::find_if(strikes.begin(), strikes.end(), [&](const WaterStrike& s) {
      return std::abs(s.depth - *at) < kSameDepth;
    });
    if (strike == strikes.end()) { // readings of a strike the WSTG group does not list
      strikes.push_back({*at, {}, {}, {}, {}, table.Ref(row, depth)});
      strike = std::prev(strikes.end());
    }
    if (!strike->roseTo || (minutes && (!strike->minutes || *minutes >= *strike->minutes))) {
      strike->roseTo = level;
      strike->minutes = minutes;
    }
  }
}

// MOND readings of type WDEP: depth to water in an installation.
void ReadStandingLevels(const Table& table, InSituData& data) {
  const std::string type = table.Find({"MOND_TYPE"});
  if (!table.Has(type, "monitoring readings")) {
    return;
  }
  for (std::size_t row = 0; row < table.Group().RowCount(); ++row) {
    std::string kind = table.Text(row, type);
    std::transform(kind.begin(), kind.end(), kind.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    const std::string hole = table.Hole(row);
    if (kind != "WDEP" || hole.empty()) {
      continue;
    }
    // An empty reading is a visit that found the installation dry or could not read it.
    if (const auto depth = table.Depth(row, "MOND_RDNG")) {
      data[hole].standingLevels.push_back({*depth, table.Text(row, "MOND_DTIM"),
                                           table.Text(row, "MONG_ID"),
                                           table.Ref(row, "MOND_RDNG")});
    }
  }
}

std::optional<int> Count(const std::optional<double>& value) {
  if (!value || *value < 0 || *value > 1e6) {
    return std::nullopt;
  }
  return static_cast<int>(std::lround(*value));
}

// "50/0.275", "50/75": blows over a penetration, written where a number was expected.
bool IsRefusal(const std::string& text) {
  const std::size_t slash = text.find('/');
  const auto digitsOrPoint = [](char c) {
    return std::isdigit(static_cast<unsigned char>(c)) || c == '.';
  };
  return slash != std::string::npos && slash > 0 && slash + 1 < text.size() &&
         std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(slash),
                     digitsOrPoint) &&
         std::all_of(text.begin() + static_cast<std::ptrdiff_t>(slash) + 1, text.end(),
                     digitsOrPoint);
}

// The sum of the fields that are given, or nothing when none is.
std::optional<double> SumOf(const Table& table, std::size_t row,
                            std::initializer_list<const char*> headings) {
  std::optional<double> sum;
  for (const char* heading : headings) {
    if (const auto value = table.Number(row, table.Find({heading}))) {
      sum = sum.value_or(0.0) + *value;
    }
  }
  return sum;
}

void ReadSpt(const Table& table, InSituData& data) {
  const std::string top = table.Find({"ISPT_TOP"});
  if (!table.Has(top, "SPT results")) {
    return;
  }
  for (std::size_t row = 0; row < table.Group().RowCount(); ++row) {
    const std::string hole = table.Hole(row);
    const auto depth = hole.empty() ? std::nullopt : table.Depth(row, top);
    if (!depth) {
      continue;
    }
    SptResult test;
    test.depth = *depth;
    test.report = table.Text(row, table.Find({"ISPT_REP"}));
    // ISPT_NVAL holds the N value, but logs write a refusal there too, as the blows over the
    // penetration ("50/0.275"): not a faulty number but a test stopped short. Its result is then
    // the main drive's blows over their penetration ("50 for 275 mm"), or the text as written.
    const std::string nval = table.Find({"ISPT_NVAL"});
    const std::string nvalText = table.Text(row, nval);
    const bool refusal = IsRefusal(nvalText);
    if (!refusal) {
      test.n = Count(table.Number(row, nval));
    }
    if (!test.n) {
      // The main drive: ISPT_MAIN, else its four increments.
      const auto main = table.Number(row, table.Find({"ISPT_MAIN"}));
      test.blows = Count(
          main ? main : SumOf(table, row, {"ISPT_INC3", "ISPT_INC4", "ISPT_INC5", "ISPT_INC6"}));
      test.drive = SumOf(table, row, {"ISPT_PEN3", "ISPT_PEN4", "ISPT_PEN5", "ISPT_PEN6"});
    }
    if (refusal && SptLabel(test).empty()) {
      test.report = nvalText;
    }
    test.where = table.Ref(row, top);
    if (SptLabel(test).empty()) {
      table.Warn(row, top, "SPT without a result (no N, report or blow count); left out");
      continue;
    }
    data[hole].spt.push_back(std::move(test));
  }
}

void ReadDescriptions(const Table& table, InSituData& data) {
  const std::string description = table.Find({"GEOL_DESC"});
  if (description.empty()) {
    return; // no descriptions is no problem: the codes are drawn
  }
  for (std::size_t row = 0; row < table.Group().RowCount(); ++row) {
    const std::string hole = table.Hole(row);
    const std::string text = table.Text(row, description);
    if (hole.empty() || IsNullField(text)) {
      continue;
    }
    // Rows without a place are reported by the reader of the strata.
    const auto parse = [&](const char* heading) -> std::optional<double> {
      try {
        return ParseNumber(table.Text(row, heading), table.Ref(row, heading));
      } catch (const ParseError&) {
        return std::nullopt;
      }
    };
    const auto top = parse("GEOL_TOP");
    const auto base = parse("GEOL_BASE");
    if (top && base) {
      data[hole].descriptions.push_back({*top, *base, text, table.Ref(row, description)});
    }
  }
}

// The groups asked for; a group whose structure is broken is passed over with a warning, the
// others still read. Each file owns the text its cells are views of.
std::vector<AgsFile> ReadGroups(const std::string& text, const std::string& file,
                                std::vector<Diagnostic>& diagnostics) {
  std::vector<Diagnostic> notes;
  std::vector<AgsFile> files;
  try {
    files.push_back(ReadAgsGroups(text, file, kGroups, notes));
  } catch (const ParseError&) {
    notes.clear();
    for (const std::string& name : kGroups) {
      try {
        files.push_back(ReadAgsGroups(text, file, {name}, notes));
      } catch (const ParseError& e) {
        notes.push_back(
            MakeWarning(e.Where(), "group " + name + " is not read (" + e.Message() + ")"));
      }
    }
  }
  // What the group reader found wrong (a row of the wrong length, ...) leaves a record out: a
  // warning here, never an error.
  for (Diagnostic& note : notes) {
    note.severity = Severity::Warning;
    diagnostics.push_back(std::move(note));
  }
  return files;
}

} // namespace

InSituData ReadAgsInSitu(std::string_view raw, const std::string& file,
                         std::vector<Diagnostic>& diagnostics) {
  const std::vector<AgsFile> files = ReadGroups(AgsTextAsUtf8(raw), file, diagnostics);
  InSituData data;
  const auto each = [&](const char* name, void (*read)(const Table&, InSituData&)) {
    for (const AgsFile& ags : files) {
      const auto group = ags.groups.find(name);
      if (group != ags.groups.end()) {
        read(Table(group->second, file, diagnostics), data);
      }
    }
  };
  each("WSTG", ReadStrikes);
  each("WSTK", ReadStrikes);
  each("WSTD", ReadStrikeReadings);
  each("MOND", ReadStandingLevels);
  each("ISPT", ReadSpt);
  each("GEOL", ReadDescriptions);
  const auto byDepth = [](const auto& a, const auto& b) { return a.depth < b.depth; };
  for (auto& [hole, records] : data) {
    std::stable_sort(records.waterStrikes.begin(), records.waterStrikes.end(), byDepth);
    std::stable_sort(records.spt.begin(), records.spt.end(), byDepth);
    std::stable_sort(records.descriptions.begin(), records.descriptions.end(),
                     [](const auto& a, const auto& b) { return a.top < b.top; });
  }
  return data;
}

} // namespace xklink
