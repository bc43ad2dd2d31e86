#include "AgsReader.h"

#include "AgsGroups.h"
#include "Numbers.h"
#include "SourceFile.h"
#include "Text.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <set>
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

// A final depth more than this below the deepest logged base is worth a warning: AGS depths are
// logged to 0.01-0.05 m, so a shortfall of 10 cm is more than rounding.
constexpr double kUnloggedDepthTolerance = 0.1;

// AGS GEOL rows are a keyed table with no promised order; sorting needs an order in which a
// non-number (reported later by the validation) cannot break the sort.
bool DepthLess(double a, double b) {
  if (std::isnan(b)) {
    return !std::isnan(a);
  }
  return !std::isnan(a) && a < b;
}

class AgsHoleBuilder {
public:
  AgsHoleBuilder(std::string file, AgsNames names, const AgsGroup& holes, const AgsGroup& geol,
                 const ReadOptions& options, BoreholeSet& set)
      : m_file(std::move(file)), m_names(std::move(names)), m_holes(holes), m_geol(geol),
        m_set(set) {
    Require(m_holes, {m_names.key, m_names.easting, m_names.northing, m_names.groundLevel});
    Require(m_geol, {m_names.key, "GEOL_TOP", "GEOL_BASE"});
    m_codeColumn = ChooseCodeColumn(options);
  }

  void Build() {
    GatherGeology();
    std::map<std::string, std::size_t> firstRowOf;
    for (const auto& row : m_holes.rows) {
      const std::string id(TrimSpaces(Value(m_holes, row, m_names.key)));
      if (id.empty()) {
        m_set.diagnostics.push_back(
            MakeError(Ref(row, m_names.key), "row of " + m_holes.name + " without a hole name"));
        continue;
      }
      const auto [first, inserted] = firstRowOf.emplace(id, row.line);
      if (!inserted) {
        m_set.diagnostics.push_back(MakeError(Ref(row, m_names.key),
                                              "duplicate hole name '" + id + "' (first at line " +
                                                  std::to_string(first->second) +
                                                  "); this row is ignored",
                                              id));
        continue;
      }
      AddHole(id, row);
    }
    for (const auto& id : m_geologyOrder) {
      if (firstRowOf.count(id) == 0) {
        m_set.diagnostics.push_back(
            MakeError(Ref(*m_geology[id].front(), m_names.key),
                      "hole '" + id + "' has GEOL rows but no " + m_holes.name + " row", id));
      }
    }
    if (!m_unsorted.empty()) {
      std::string names;
      for (const auto& id : m_unsorted) {
        names += (names.empty() ? "" : ", ") + id;
      }
      m_set.diagnostics.push_back(MakeWarning(
          {m_file, m_geol.line, "GEOL_TOP"},
          "GEOL rows not in depth order in " + std::to_string(m_unsorted.size()) + " hole" +
              (m_unsorted.size() == 1 ? "" : "s") + " (" + names + "); sorted by GEOL_TOP"));
    }
  }

private:
  SourceRef Ref(const AgsRow& row, const std::string& field) const {
    return {m_file, row.line, field};
  }

  static const std::string& Value(const AgsGroup& group, const AgsRow& row,
                                  const std::string& heading) {
    return row.values[*group.Column(heading)];
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

  std::string ChooseCodeColumn(const ReadOptions& options) const {
    if (options.codeColumn) {
      std::string name = *options.codeColumn;
      std::transform(name.begin(), name.end(), name.begin(),
                     [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
      Require(m_geol, {name});
      return name;
    }
    for (const std::string candidate : {"GEOL_GEOL", "GEOL_LEG", "GEOL_GEO2"}) {
      const auto column = m_geol.Column(candidate);
      if (column && std::any_of(m_geol.rows.begin(), m_geol.rows.end(), [&](const AgsRow& row) {
            return !IsNullField(row.values[*column]);
          })) {
        return candidate;
      }
    }
    throw ParseError({m_file, m_geol.headingLine, "GEOL_GEOL"},
                     "no stratum codes: GEOL_GEOL, GEOL_LEG and GEOL_GEO2 are missing or empty "
                     "in every row; name the column that holds the codes");
  }

  void GatherGeology() {
    for (const auto& row : m_geol.rows) {
      const std::string id(TrimSpaces(Value(m_geol, row, m_names.key)));
      if (id.empty()) {
        m_set.diagnostics.push_back(
            MakeError(Ref(row, m_names.key), "GEOL row without a hole name"));
        continue;
      }
      auto& rows = m_geology[id];
      if (rows.empty()) {
        m_geologyOrder.push_back(id);
      }
      rows.push_back(&row);
    }
  }

  void Skip(const std::string& id, const SourceRef& where, const std::string& why) {
    m_set.diagnostics.push_back(MakeWarning(where, "hole '" + id + "' left out: " + why, id));
    m_set.skipped[id] = why;
  }

  void AddHole(const std::string& id, const AgsRow& row) {
    const auto geology = m_geology.find(id);
    if (geology == m_geology.end()) {
      Skip(id, Ref(row, m_names.key), "no geology (no GEOL rows)");
      return;
    }
    for (const auto& heading : {m_names.easting, m_names.northing, m_names.groundLevel}) {
      if (IsNullField(Value(m_holes, row, heading))) {
        Skip(id, Ref(row, heading), heading + " is empty");
        return;
      }
    }
    HoleRecord hole;
    hole.name = id;
    hole.where = Ref(row, m_names.key);
    hole.x = ParseNumber(Value(m_holes, row, m_names.easting), Ref(row, m_names.easting));
    hole.y = ParseNumber(Value(m_holes, row, m_names.northing), Ref(row, m_names.northing));
    const Decimal ground =
        ParseDecimal(Value(m_holes, row, m_names.groundLevel), Ref(row, m_names.groundLevel));
    hole.top = ground.value;

    std::vector<std::pair<double, StratumRecord>> strata;
    for (const AgsRow* geolRow : geology->second) {
      if (auto stratum = ReadStratum(id, ground, *geolRow)) {
        strata.push_back(std::move(*stratum));
      }
    }
    const auto byDepth = [](const auto& a, const auto& b) { return DepthLess(a.first, b.first); };
    if (!std::is_sorted(strata.begin(), strata.end(), byDepth)) {
      m_unsorted.push_back(id);
      std::stable_sort(strata.begin(), strata.end(), byDepth);
    }
    for (auto& stratum : strata) {
      hole.strata.push_back(std::move(stratum.second));
    }
    CheckFinalDepth(hole, row);
    m_set.holes.push_back(std::move(hole));
  }

  // The stratum and its top depth, or nothing when the row cannot be placed.
  std::optional<std::pair<double, StratumRecord>>
  ReadStratum(const std::string& id, const Decimal& ground, const AgsRow& row) {
    for (const std::string heading : {"GEOL_TOP", "GEOL_BASE"}) {
      if (IsNullField(Value(m_geol, row, heading))) {
        m_set.diagnostics.push_back(MakeError(
            Ref(row, heading), "empty: the stratum cannot be placed; the row is ignored", id));
        return std::nullopt;
      }
    }
    const Decimal topDepth = ParseDecimal(Value(m_geol, row, "GEOL_TOP"), Ref(row, "GEOL_TOP"));
    const Decimal baseDepth = ParseDecimal(Value(m_geol, row, "GEOL_BASE"), Ref(row, "GEOL_BASE"));
    const auto code = TrimSpaces(Value(m_geol, row, m_codeColumn));
    if (code.empty()) {
      m_set.diagnostics.push_back(
          MakeWarning(Ref(row, m_codeColumn), "no code: the stratum gets an empty code", id));
    }
    StratumRecord stratum;
    stratum.where = Ref(row, m_codeColumn);
    stratum.dc.strName = FromUtf8(code, stratum.where);
    stratum.dc.dTopGC = DecimalDifference(ground, topDepth);
    stratum.dc.dBotGC = DecimalDifference(ground, baseDepth);
    return std::make_pair(topDepth.value, std::move(stratum));
  }

  void CheckFinalDepth(const HoleRecord& hole, const AgsRow& row) {
    const auto column = m_holes.Column(m_names.finalDepth);
    if (!column || IsNullField(row.values[*column]) || hole.strata.empty()) {
      return;
    }
    double finalDepth = 0.0;
    try {
      finalDepth = ParseNumber(row.values[*column], Ref(row, m_names.finalDepth));
    } catch (const ParseError&) {
      return; // informative only: a bad final depth does not stop the reading
    }
    double deepest = -HUGE_VAL;
    for (const auto& stratum : hole.strata) {
      deepest = std::max(deepest, hole.top - stratum.dc.dBotGC);
    }
    if (finalDepth - deepest > kUnloggedDepthTolerance) {
      m_set.diagnostics.push_back(MakeWarning(
          Ref(row, m_names.finalDepth),
          "the geology of hole '" + hole.name + "' ends at depth " + FormatNumber(deepest) +
              " but the hole goes down to " + FormatNumber(finalDepth) +
              ": the section shows nothing below the last logged stratum",
          hole.name));
    }
  }

  std::string m_file;
  AgsNames m_names;
  const AgsGroup& m_holes;
  const AgsGroup& m_geol;
  BoreholeSet& m_set;
  std::string m_codeColumn;
  std::map<std::string, std::vector<const AgsRow*>> m_geology;
  std::vector<std::string> m_geologyOrder;
  std::vector<std::string> m_unsorted;
};

// Rule 1 of AGS asks for ASCII, but files arrive in UTF-8 or in Windows-1252; bytes that are not
// valid UTF-8 are read as Windows-1252, with a warning at the first of them.
std::string DecodeAgsText(std::string_view raw, const std::string& file,
                          std::vector<Diagnostic>& diagnostics) {
  const auto bad = FindInvalidUtf8(raw);
  if (!bad) {
    return std::string(raw);
  }
  diagnostics.push_back(MakeWarning({file, LineIndex(raw).LineOf(*bad), {}},
                                    "not valid UTF-8; bytes outside UTF-8 read as Windows-1252"));
  return Windows1252FallbackToUtf8(raw);
}

} // namespace

BoreholeSet ReadAgsBoreholes(std::string_view raw, const std::string& file,
                             const ReadOptions& options) {
  BoreholeSet set;
  set.source = file;
  const std::string text = DecodeAgsText(StripUtf8Bom(raw), file, set.diagnostics);
  RequireUtf8Text(text, file);
  const auto edition = DetectAgsEdition(text).value_or(AgsEdition::Ags4);
  const AgsNames names = NamesOf(edition);
  const AgsFile ags = ReadAgsGroups(text, file, {names.holeGroup, "GEOL"}, set.diagnostics);

  const auto holes = ags.groups.find(names.holeGroup);
  const auto geol = ags.groups.find("GEOL");
  if (geol == ags.groups.end()) {
    throw ParseError({file, 0, {}}, "no GEOL group: the file holds no geology");
  }
  if (holes == ags.groups.end()) {
    throw ParseError({file, 0, {}}, "no " + names.holeGroup +
                                        " group: the holes of the GEOL group have no "
                                        "position or ground level");
  }
  set.fields = {names.easting, names.northing, names.groundLevel, "GEOL_TOP", "GEOL_BASE"};
  AgsHoleBuilder(file, names, holes->second, geol->second, options, set).Build();
  return set;
}

} // namespace xklink
