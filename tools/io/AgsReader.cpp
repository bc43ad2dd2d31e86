#include "AgsReader.h"

#include "AgsCodes.h"
#include "AgsGroups.h"
#include "Numbers.h"
#include "SourceFile.h"
#include "Text.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

namespace xklink {

namespace {

// The headings of the two editions: AGS 3.1 keys holes by HOLE_ID in a HOLE group.
struct AgsNames {
  std::string holeGroup;
  std::string key;
  std::string easting;
  std::string northing;
  std::string groundLevel;
  std::string finalDepth;
};

AgsNames NamesOf(AgsEdition edition) {
  if (edition == AgsEdition::Ags3) {
    return {"HOLE", "HOLE_ID", "HOLE_NATE", "HOLE_NATN", "HOLE_GL", "HOLE_FDEP"};
  }
  return {"LOCA", "LOCA_ID", "LOCA_NATE", "LOCA_NATN", "LOCA_GL", "LOCA_FDEP"};
}

// The code columns in the order they are tried: the geological unit correlates between holes
// better than the legend code, which repeats the lithology.
const std::vector<std::string> kCodeColumns = {"GEOL_GEOL", "GEOL_LEG", "GEOL_GEO2"};
const std::string kDescription = "GEOL_DESC";

// A final depth more than this below the deepest logged base is worth a warning: AGS depths are
// logged to 0.01-0.05 m, so a shortfall of 10 cm is more than rounding.
constexpr double kUnloggedDepthTolerance = 0.1;

// Holes named in one message about many: enough to find them, not a page of names.
constexpr std::size_t kNamesInMessage = 10;

std::string NameList(const std::vector<std::string>& names) {
  std::string out;
  for (std::size_t i = 0; i < names.size() && i < kNamesInMessage; ++i) {
    out += (i == 0 ? "" : ", ") + names[i];
  }
  if (names.size() > kNamesInMessage) {
    out += " and " + std::to_string(names.size() - kNamesInMessage) + " more";
  }
  return out;
}

std::string Holes(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " hole" : " holes");
}

// AGS GEOL rows are a keyed table with no promised order; sorting needs an order in which a
// non-number (reported later by the validation) cannot break the sort.
bool DepthLess(double a, double b) {
  if (std::isnan(b)) {
    return !std::isnan(a);
  }
  return !std::isnan(a) && a < b;
}

// A stratum as read, with what sorting and the final-depth check need.
struct ReadStratum {
  double topDepth;
  Decimal baseDepth;
  std::string_view baseText;
  StratumRecord record;
};

class AgsHoleBuilder {
public:
  AgsHoleBuilder(std::string file, AgsNames names, const AgsFile& ags, const ReadOptions& options,
                 BoreholeSet& set)
      : m_file(std::move(file)), m_names(std::move(names)),
        m_holes(ags.groups.at(m_names.holeGroup)), m_geol(ags.groups.at("GEOL")), m_set(set),
        m_rows(m_file, set.diagnostics) {
    Require(m_holes, {m_names.key, m_names.easting, m_names.northing});
    Require(m_geol, {m_names.key, "GEOL_TOP", "GEOL_BASE"});
    m_keyColumn = *m_holes.Column(m_names.key);
    m_geolKey = *m_geol.Column(m_names.key);
    m_geolTop = *m_geol.Column("GEOL_TOP");
    m_geolBase = *m_geol.Column("GEOL_BASE");
    m_description = m_geol.Column(kDescription);
    ChooseCodeSources(options);
    if (const auto abbr = ags.groups.find("ABBR"); abbr != ags.groups.end()) {
      m_abbr = &abbr->second;
    }
  }

  void Build() {
    GatherGeology();
    std::vector<std::string_view> order;
    std::unordered_map<std::string_view, std::vector<std::size_t>> rowsOf;
    for (std::size_t row = 0; row < m_holes.RowCount(); ++row) {
      const auto id = TrimSpaces(m_holes.Cell(row, m_keyColumn));
      if (id.empty()) {
        m_rows.Add(MakeError(Ref(m_holes, row, m_names.key),
                             "row of " + m_holes.name + " without a hole name"));
        continue;
      }
      auto& rows = rowsOf[id];
      if (rows.empty()) {
        order.push_back(id);
      }
      rows.push_back(row);
    }
    for (const auto id : order) {
      AddHole(std::string(id), rowsOf[id]);
    }
    for (const auto id : m_geologyOrder) {
      if (rowsOf.count(id) == 0) {
        // An error of that hole: whoever draws decides whether a section without it will do.
        m_set.diagnostics.push_back(MakeError(Ref(m_geol, m_geology[id].front(), m_names.key),
                                              "hole '" + std::string(id) +
                                                  "' has GEOL rows but no " + m_holes.name + " row",
                                              std::string(id)));
      }
    }
    m_rows.Finish();
    ReportFallbacks();
    if (!m_unsorted.empty()) {
      m_set.diagnostics.push_back(MakeWarning({m_file, m_geol.line, "GEOL_TOP"},
                                              "GEOL rows not in depth order in " +
                                                  Holes(m_unsorted.size()) + " (" +
                                                  NameList(m_unsorted) + "); sorted by GEOL_TOP"));
    }
    ReadDescriptions();
  }

private:
  // Where a code comes from: a code column, or the principal name of the description.
  struct CodeSource {
    std::string heading;
    std::optional<std::size_t> column; // of the code column; empty for the description
  };

  SourceRef Ref(const AgsGroup& group, std::size_t row, const std::string& field) const {
    return {m_file, group.rowLines[row], field};
  }

  std::string_view Cell(const AgsGroup& group, std::size_t row, const std::string& heading) const {
    const auto column = group.Column(heading);
    return column ? group.Cell(row, *column) : std::string_view{};
  }

  void Require(const AgsGroup& group, const std::vector<std::string>& headings) const {
    for (const auto& heading : headings) {
      if (!group.Column(heading)) {
        const auto line = group.headingLine != 0 ? group.headingLine : group.line;
        throw ParseError({m_file, line, heading},
                         "group " + group.name + " has no heading " + heading);
      }
    }
  }

  std::string CodeOf(const CodeSource& source, std::size_t row) const {
    if (source.column) {
      const auto code = TrimSpaces(m_geol.Cell(row, *source.column));
      return IsPlaceholderCode(code) ? std::string() : std::string(code);
    }
    return m_description ? PrincipalName(m_geol.Cell(row, *m_description)) : std::string();
  }

  bool HasCode(const CodeSource& source, std::size_t row) const {
    return source.column ? !IsPlaceholderCode(m_geol.Cell(row, *source.column))
                         : !CodeOf(source, row).empty();
  }

  // The code column named by the user, or else the code columns present, from the first that is
  // filled in some row of the file, then the description; ParseError when nothing gives a code.
  void ChooseCodeSources(const ReadOptions& options) {
    if (options.codeColumn) {
      std::string name = *options.codeColumn;
      std::transform(name.begin(), name.end(), name.begin(),
                     [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
      Require(m_geol, {name});
      m_sources.push_back({name, m_geol.Column(name)});
      return; // the user's choice holds for every hole
    }
    for (const auto& heading : kCodeColumns) {
      const CodeSource source{heading, m_geol.Column(heading)};
      if (source.column && (!m_sources.empty() || FilledAnywhere(source))) {
        m_sources.push_back(source);
      }
    }
    const CodeSource description{kDescription, std::nullopt};
    if (m_description && (!m_sources.empty() || FilledAnywhere(description))) {
      m_sources.push_back(description);
    }
    if (m_sources.empty()) {
      throw ParseError({m_file, m_geol.headingLine, "GEOL_GEOL"},
                       "no stratum codes: GEOL_GEOL, GEOL_LEG and GEOL_GEO2 are missing or empty "
                       "in every row, and no GEOL_DESC names a soil in capitals; name the column "
                       "that holds the codes");
    }
    if (!m_sources.front().column) {
      m_set.diagnostics.push_back(MakeWarning(
          {m_file, m_geol.headingLine, kDescription},
          "no code column (GEOL_GEOL, GEOL_LEG, GEOL_GEO2) is filled: the strata are named by "
          "the soil or rock in capitals of GEOL_DESC ('Firm brown sandy CLAY' gives CLAY)"));
    }
  }

  bool FilledAnywhere(const CodeSource& source) const {
    for (std::size_t row = 0; row < m_geol.RowCount(); ++row) {
      if (HasCode(source, row)) {
        return true;
      }
    }
    return false;
  }

  // The first source, in the order of m_sources, that gives a code on at least half the rows of a
  // hole; the first source when none does.
  std::size_t SourceFor(const std::vector<std::size_t>& rows) const {
    for (std::size_t k = 0; k < m_sources.size(); ++k) {
      const auto filled = std::count_if(
          rows.begin(), rows.end(), [&](std::size_t row) { return HasCode(m_sources[k], row); });
      if (2 * static_cast<std::size_t>(filled) >= rows.size()) {
        return k;
      }
    }
    return 0;
  }

  void GatherGeology() {
    std::vector<std::size_t>* rows = nullptr;
    std::string_view last;
    for (std::size_t row = 0; row < m_geol.RowCount(); ++row) {
      const auto id = TrimSpaces(m_geol.Cell(row, m_geolKey));
      if (id.empty()) {
        m_rows.Add(MakeError(Ref(m_geol, row, m_names.key), "GEOL row without a hole name"));
        continue;
      }
      // The rows of a hole mostly follow each other: look the hole up only when it changes.
      if (rows == nullptr || id != last) {
        rows = &m_geology[id];
        last = id;
        if (rows->empty()) {
          m_geologyOrder.push_back(id);
        }
      }
      rows->push_back(row);
    }
  }

  void Skip(const std::string& id, const SourceRef& where, const std::string& why) {
    m_set.diagnostics.push_back(MakeWarning(where, "hole '" + id + "' left out: " + why, id));
    m_set.skipped[id] = why;
  }

  // The value of a heading for a hole given on several rows (a group given twice, a hole listed
  // twice): the first filled one. Empty with `conflict` set when two rows give different values.
  std::string_view HoleValue(const std::vector<std::size_t>& rows, const std::string& heading,
                             std::optional<std::size_t>& conflict) const {
    std::string_view value;
    for (const auto row : rows) {
      const auto here = TrimSpaces(Cell(m_holes, row, heading));
      if (here.empty()) {
        continue;
      }
      if (value.empty()) {
        value = here;
      } else if (here != value && !conflict) {
        conflict = row;
      }
    }
    return value;
  }

  void AddHole(const std::string& id, const std::vector<std::size_t>& rows) {
    const std::size_t row = rows.front();
    std::optional<std::size_t> conflict;
    const auto easting = HoleValue(rows, m_names.easting, conflict);
    const auto northing = HoleValue(rows, m_names.northing, conflict);
    const auto ground = HoleValue(rows, m_names.groundLevel, conflict);
    const auto finalDepth = HoleValue(rows, m_names.finalDepth, conflict);
    if (conflict) {
      m_set.diagnostics.push_back(MakeError(Ref(m_holes, *conflict, m_names.key),
                                            "duplicate hole name '" + id + "' (first at line " +
                                                std::to_string(m_holes.rowLines[row]) +
                                                "); this row is ignored",
                                            id));
    }
    const auto geology = m_geology.find(id);
    if (geology == m_geology.end()) {
      Skip(id, Ref(m_holes, row, m_names.key), "no geology (no GEOL rows)");
      return;
    }
    HoleRecord hole;
    hole.name = id;
    hole.where = Ref(m_holes, row, m_names.key);
    const struct {
      const std::string& heading;
      std::string_view value;
      double* out;
    } position[] = {{m_names.easting, easting, &hole.x}, {m_names.northing, northing, &hole.y}};
    for (const auto& [heading, value, out] : position) {
      if (IsPlaceholderCode(value)) {
        Skip(id, Ref(m_holes, row, heading), heading + " is empty");
        return;
      }
      try {
        *out = ParseNumber(value, Ref(m_holes, row, heading));
      } catch (const ParseError& error) {
        Skip(id, error.Where(), heading + " is " + error.Message());
        return;
      }
    }
    const Decimal groundLevel = ReadGroundLevel(hole, ground, row);

    std::vector<ReadStratum> strata;
    const std::size_t source = SourceFor(geology->second);
    if (source != 0) {
      m_fallbacks[source].push_back(id);
    }
    for (const auto geolRow : geology->second) {
      if (auto stratum = ReadGeolRow(id, groundLevel, geolRow, m_sources[source])) {
        strata.push_back(std::move(*stratum));
      }
    }
    const auto byDepth = [](const ReadStratum& a, const ReadStratum& b) {
      return DepthLess(a.topDepth, b.topDepth);
    };
    if (!std::is_sorted(strata.begin(), strata.end(), byDepth)) {
      m_unsorted.push_back(id);
      std::stable_sort(strata.begin(), strata.end(), byDepth);
    }
    CheckFinalDepth(id, strata, finalDepth, row);
    hole.strata.reserve(strata.size());
    for (auto& stratum : strata) {
      hole.strata.push_back(std::move(stratum.record));
    }
    m_set.holes.push_back(std::move(hole));
  }

  // The ground level of a hole, or - when the file gives none that can be used - 0 with
  // groundLevelKnown false, so that the strata lie at minus their depths. An empty level or a
  // placeholder is common and said by whoever decides what to draw; a level that is not a number
  // may be a typing slip and gets a warning of its own.
  Decimal ReadGroundLevel(HoleRecord& hole, std::string_view text, std::size_t row) {
    const SourceRef where = Ref(m_holes, row, m_names.groundLevel);
    if (!IsPlaceholderCode(text)) {
      try {
        const Decimal ground = ParseDecimal(text, where);
        hole.top = ground.value;
        return ground;
      } catch (const ParseError& error) {
        m_set.diagnostics.push_back(MakeWarning(
            where, error.Message() + ": the ground level of hole '" + hole.name + "' is unknown",
            hole.name));
      }
    }
    hole.groundLevelKnown = false;
    hole.top = 0.0;
    return Decimal{0.0, 0};
  }

  // The stratum of a GEOL row, or nothing when the row cannot be placed: a row without a top or
  // a base (such as "Continued on sheet 2") is left out with a warning, one whose depth is not a
  // number with an error of the hole, whose log then misses a stratum.
  std::optional<ReadStratum> ReadGeolRow(const std::string& id, const Decimal& ground,
                                         std::size_t row, const CodeSource& source) {
    Decimal depths[2];
    std::string_view baseText;
    const std::pair<const char*, std::size_t> columns[] = {{"GEOL_TOP", m_geolTop},
                                                           {"GEOL_BASE", m_geolBase}};
    for (std::size_t k = 0; k < 2; ++k) {
      const auto [heading, column] = columns[k];
      const auto text = TrimSpaces(m_geol.Cell(row, column));
      if (IsPlaceholderCode(text)) {
        std::string what = "empty: the stratum cannot be placed";
        if (m_description) {
          const auto description = TrimSpaces(m_geol.Cell(row, *m_description));
          if (!description.empty()) {
            what += " ('" + std::string(description.substr(0, 40)) +
                    (description.size() > 40 ? "...'" : "'") + ")";
          }
        }
        m_rows.Add(MakeWarning(Ref(m_geol, row, heading), what + "; the row is left out", id));
        return std::nullopt;
      }
      try {
        depths[k] = ParseDecimal(text, Ref(m_geol, row, heading));
      } catch (const ParseError& error) {
        m_rows.Add(MakeError(error.Where(), error.Message() + "; the row is left out", id));
        return std::nullopt;
      }
      baseText = text;
    }
    ReadStratum stratum{depths[0].value, depths[1], baseText, {}};
    const std::string code = CodeOf(source, row);
    auto& record = stratum.record;
    record.where = Ref(m_geol, row, source.heading);
    if (code.empty()) {
      m_rows.Add(MakeWarning(record.where, "no code: the stratum gets an empty code", id));
    } else if (source.column) {
      m_usedCodes[source.heading].insert(code);
    }
    record.dc.strName = FromUtf8(code, record.where);
    record.dc.dTopGC = DecimalDifference(ground, depths[0]);
    record.dc.dBotGC = DecimalDifference(ground, depths[1]);
    return stratum;
  }

  // Depths in the message as the file writes them.
  void CheckFinalDepth(const std::string& id, const std::vector<ReadStratum>& strata,
                       std::string_view finalText, std::size_t row) {
    if (finalText.empty() || strata.empty()) {
      return;
    }
    double finalDepth = 0.0;
    try {
      finalDepth = ParseNumber(finalText, Ref(m_holes, row, m_names.finalDepth));
    } catch (const ParseError&) {
      return; // informative only: a bad final depth does not stop the reading
    }
    const auto deepest =
        std::max_element(strata.begin(), strata.end(), [](const auto& a, const auto& b) {
          return DepthLess(a.baseDepth.value, b.baseDepth.value);
        });
    if (finalDepth - deepest->baseDepth.value > kUnloggedDepthTolerance) {
      m_set.diagnostics.push_back(MakeWarning(
          Ref(m_holes, row, m_names.finalDepth),
          "the geology of hole '" + id + "' ends at depth " + std::string(deepest->baseText) +
              " but the hole goes down to " + std::string(finalText) +
              ": the section shows nothing below the last logged stratum",
          id));
    }
  }

  // One warning for each source the codes of some holes fell back to.
  void ReportFallbacks() {
    for (const auto& [source, holes] : m_fallbacks) {
      const auto& from = m_sources.front().heading;
      const auto& to = m_sources[source];
      std::string message = from + " is empty on most rows of " + Holes(holes.size()) + " (" +
                            NameList(holes) + "): their codes are read from ";
      message += to.column ? to.heading
                           : "the soil or rock in capitals of GEOL_DESC ('Firm brown sandy "
                             "CLAY' gives CLAY)";
      m_set.diagnostics.push_back(
          MakeWarning({m_file, m_geol.headingLine, to.heading}, std::move(message)));
    }
  }

  // The meanings of the codes used, from ABBR rows of their heading: AGS files list there what a
  // legend code such as 805 stands for.
  void ReadDescriptions() {
    if (m_abbr == nullptr) {
      return;
    }
    const auto heading = m_abbr->Column("ABBR_HDNG");
    const auto code = m_abbr->Column("ABBR_CODE");
    const auto description = m_abbr->Column("ABBR_DESC");
    if (!heading || !code || !description) {
      return;
    }
    for (std::size_t row = 0; row < m_abbr->RowCount(); ++row) {
      const auto used = m_usedCodes.find(TrimSpaces(m_abbr->Cell(row, *heading)));
      const std::string key(TrimSpaces(m_abbr->Cell(row, *code)));
      const auto text = TrimSpaces(m_abbr->Cell(row, *description));
      // Some producers list each code as its own meaning ("101" is "101"): nothing to tell.
      if (used != m_usedCodes.end() && used->second.count(key) != 0 && !text.empty() &&
          text != key) {
        m_set.codeDescriptions.emplace(key, text);
      }
    }
  }

  std::string m_file;
  AgsNames m_names;
  const AgsGroup& m_holes;
  const AgsGroup& m_geol;
  const AgsGroup* m_abbr = nullptr;
  BoreholeSet& m_set;
  RowDiagnostics m_rows;
  std::size_t m_keyColumn = 0;
  std::size_t m_geolKey = 0;
  std::size_t m_geolTop = 0;
  std::size_t m_geolBase = 0;
  std::optional<std::size_t> m_description;
  std::vector<CodeSource> m_sources; // the first is the file's choice; the rest fall-backs
  std::unordered_map<std::string_view, std::vector<std::size_t>> m_geology;
  std::vector<std::string_view> m_geologyOrder;
  std::vector<std::string> m_unsorted;
  std::map<std::size_t, std::vector<std::string>> m_fallbacks;           // source -> holes
  std::map<std::string, std::set<std::string>, std::less<>> m_usedCodes; // heading -> codes
};

// Rule 1 of AGS asks for ASCII, but files arrive in UTF-8 or in Windows-1252; bytes that are not
// valid UTF-8 are read as Windows-1252, with a warning at the first of them.
void DecodeAgsText(std::string& text, const std::string& file,
                   std::vector<Diagnostic>& diagnostics) {
  const auto bad = FindInvalidUtf8(text);
  if (!bad) {
    return;
  }
  diagnostics.push_back(MakeWarning({file, LineIndex(text).LineOf(*bad), {}},
                                    "not valid UTF-8; bytes outside UTF-8 read as Windows-1252"));
  text = Windows1252FallbackToUtf8(text);
}

} // namespace

BoreholeSet ReadAgsBoreholes(std::string text, const std::string& file,
                             const ReadOptions& options) {
  BoreholeSet set;
  set.source = file;
  if (auto utf16 = Utf16ToUtf8(text); utf16 && utf16->ok) { // as ReadSourceFile does
    text = std::move(utf16->text);
  }
  if (const auto bom = StripUtf8Bom(text); bom.size() != text.size()) {
    text.erase(0, text.size() - bom.size());
  }
  RequireNoNulBytes(text, file);
  DecodeAgsText(text, file, set.diagnostics);
  const auto edition = DetectAgsEdition(text).value_or(AgsEdition::Ags4);
  const AgsNames names = NamesOf(edition);
  const AgsFile ags =
      ReadAgsGroups(std::move(text), file, {names.holeGroup, "GEOL", "ABBR"}, set.diagnostics);

  if (ags.groups.count("GEOL") == 0) {
    throw ParseError({file, 0, {}}, "no GEOL group: the file holds no geology");
  }
  if (ags.groups.count(names.holeGroup) == 0) {
    throw ParseError({file, 0, {}}, "no " + names.holeGroup +
                                        " group: the holes of the GEOL group have no "
                                        "position or ground level");
  }
  set.fields = {names.easting, names.northing, names.groundLevel, "GEOL_TOP", "GEOL_BASE"};
  AgsHoleBuilder(file, names, ags, options, set).Build();
  return set;
}

BoreholeSet ReadAgsBoreholes(std::string_view text, const std::string& file,
                             const ReadOptions& options) {
  return ReadAgsBoreholes(std::string(text), file, options);
}

} // namespace xklink
