#include "CsvReader.h"

#include "CsvColumns.h"
#include "CsvRecords.h"
#include "Numbers.h"
#include "SourceFile.h"
#include "Text.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

namespace xklink {

namespace {

// A CSV table: the header and the data rows, every row as wide as the header.
struct Table {
  std::string file;
  std::size_t headerLine = 0;
  std::vector<std::string> header;
  std::vector<CsvRecord> rows;

  std::string Name(std::size_t column) const { return std::string(TrimSpaces(header[column])); }
  SourceRef Ref(const CsvRecord& row, std::size_t column) const {
    return {file, row.line, Name(column)};
  }
};

bool AllNull(const std::vector<std::string>& fields) {
  return std::all_of(fields.begin(), fields.end(), [](const auto& f) { return IsNullField(f); });
}

Table ReadTable(std::string_view raw, const std::string& file) {
  const auto text = StripUtf8Bom(raw);
  RequireUtf8Text(text, file);
  auto records = ReadCsvRecords(text, file);
  if (records.empty()) {
    throw ParseError({file, 0, {}}, "empty file: no header row");
  }
  Table table;
  table.file = file;
  table.headerLine = records.front().line;
  table.header = std::move(records.front().fields);
  const std::size_t width = table.header.size();
  for (std::size_t i = 1; i < records.size(); ++i) {
    auto& row = records[i];
    if (AllNull(row.fields)) {
      continue; // spreadsheets leave rows of empty cells behind
    }
    const bool extrasEmpty =
        row.fields.size() > width &&
        std::all_of(row.fields.begin() + static_cast<std::ptrdiff_t>(width), row.fields.end(),
                    [](const auto& f) { return IsNullField(f); });
    if (row.fields.size() < width || (row.fields.size() > width && !extrasEmpty)) {
      throw ParseError({file, row.line, {}}, "the row has " + std::to_string(row.fields.size()) +
                                                 " fields but the header has " +
                                                 std::to_string(width));
    }
    row.fields.resize(width);
    table.rows.push_back(std::move(row));
  }
  return table;
}

std::size_t Require(const std::optional<std::size_t>& column, ColumnRole role, const char* what,
                    const Table& table, const std::string& hint = {}) {
  if (!column) {
    throw ParseError({table.file, table.headerLine, {}}, std::string("no column for ") + what +
                                                             ": expected one of " +
                                                             AliasList(role) + hint);
  }
  return *column;
}

struct Collar {
  double x = 0.0;
  double y = 0.0;
  std::optional<Decimal> ground;
  SourceRef where;
};

struct Interval {
  Decimal top; // as in the file: depth or elevation
  Decimal base;
  std::string code;
  SourceRef where;
};

struct HoleRows {
  Collar collar;
  std::vector<Interval> intervals;
};

// Which columns give the collar: those of the interval table itself, or of the collar table.
struct CollarColumns {
  std::size_t hole;
  std::size_t easting;
  std::size_t northing;
  std::optional<std::size_t> ground;
};

bool SameValue(double a, double b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

class CsvHoleBuilder {
public:
  CsvHoleBuilder(const ReadOptions& options, BoreholeSet& set) : m_options(options), m_set(set) {}

  void Read(std::string_view text, const std::string& file) {
    ReadIntervals(text, file);
    BuildHoles();
  }

private:
  // The rows of the interval table into m_holes. The table's text goes when this returns, before
  // the holes are built: a large file is never held three times over.
  void ReadIntervals(std::string_view text, const std::string& file) {
    const Table intervals = ReadTable(text, file);
    const auto columns =
        MatchHeader(intervals.header, m_options.codeColumn, file, intervals.headerLine);
    const auto hole = Require(columns.hole, ColumnRole::Hole, "the hole name", intervals);
    const auto code = Require(columns.code, ColumnRole::Code, "the stratum code", intervals);
    const auto span =
        ChooseIntervalColumns(columns, m_options.depthMode, intervals.header, intervals.rows, file,
                              intervals.headerLine, m_set.diagnostics);
    m_mode = span.mode;
    m_set.fields.stratumTop = intervals.Name(span.top);
    m_set.fields.stratumBottom = intervals.Name(span.base);

    std::optional<CollarColumns> collarInRows;
    if (m_options.collarFile) {
      ReadCollarTable(*m_options.collarFile);
    } else {
      collarInRows = CollarColumnsOf(columns, intervals);
    }
    for (const auto& row : intervals.rows) {
      const std::string id(TrimSpaces(row.fields[hole]));
      if (id.empty()) {
        m_set.diagnostics.push_back(
            MakeError(intervals.Ref(row, hole), "the hole name is empty; the row is ignored"));
        continue;
      }
      HoleRows* rows = collarInRows ? CollarFromRow(id, row, intervals, *collarInRows)
                                    : KnownHole(id, intervals.Ref(row, hole));
      if (rows != nullptr) {
        if (auto interval = ReadInterval(id, row, intervals, span, code)) {
          rows->intervals.push_back(std::move(*interval));
        }
      }
    }
  }

  CollarColumns CollarColumnsOf(const HeaderColumns& columns, const Table& table) {
    // Without a collar table, a missing position most likely means an interval table given alone.
    const std::string hint =
        m_options.collarFile ? "" : "; an interval table needs its collar table beside it";
    CollarColumns out{Require(columns.hole, ColumnRole::Hole, "the hole name", table),
                      Require(columns.easting, ColumnRole::Easting, "the easting", table, hint),
                      Require(columns.northing, ColumnRole::Northing, "the northing", table, hint),
                      columns.ground};
    if (m_mode == DepthMode::Depths && !out.ground) {
      Require(out.ground, ColumnRole::Ground, "the ground level (depths are measured from it)",
              table);
    }
    m_set.fields.holeX = table.Name(out.easting);
    m_set.fields.holeY = table.Name(out.northing);
    m_set.fields.holeTop = out.ground ? table.Name(*out.ground) : m_set.fields.stratumTop;
    return out;
  }

  // The collar of a row of the single table, or nullptr when the row cannot be used.
  HoleRows* CollarFromRow(const std::string& id, const CsvRecord& row, const Table& table,
                          const CollarColumns& columns) {
    std::vector<std::size_t> needed = {columns.easting, columns.northing};
    if (columns.ground) {
      needed.push_back(*columns.ground);
    }
    for (const auto column : needed) {
      if (IsNullField(row.fields[column])) {
        m_set.diagnostics.push_back(
            MakeError(table.Ref(row, column),
                      "empty: the collar of the hole is incomplete; the row is ignored", id));
        return nullptr;
      }
    }
    Collar collar;
    collar.where = table.Ref(row, columns.hole);
    collar.x = ParseNumber(row.fields[columns.easting], table.Ref(row, columns.easting));
    collar.y = ParseNumber(row.fields[columns.northing], table.Ref(row, columns.northing));
    if (columns.ground) {
      collar.ground = ParseDecimal(row.fields[*columns.ground], table.Ref(row, *columns.ground));
    }
    const auto [it, inserted] = m_holes.try_emplace(id);
    if (inserted) {
      it->second.collar = collar;
      m_order.push_back(id);
      return &it->second;
    }
    // Every row of the single table repeats the collar; a row that disagrees is a typing error
    // somewhere, and we cannot tell which row is right.
    const Collar& first = it->second.collar;
    const auto compare = [&](double value, double expected, std::size_t column) {
      if (!SameValue(value, expected)) {
        m_set.diagnostics.push_back(MakeError(
            table.Ref(row, column),
            FormatNumber(value) + " differs from " + FormatNumber(expected) + " on line " +
                std::to_string(first.where.line) + ", the first row of hole '" + id + "'",
            id));
      }
    };
    compare(collar.x, first.x, columns.easting);
    compare(collar.y, first.y, columns.northing);
    if (columns.ground) {
      compare(collar.ground->value, first.ground->value, *columns.ground);
    }
    return &it->second;
  }

  void ReadCollarTable(const std::filesystem::path& path) {
    const Table table = ReadTable(ReadSourceFile(path), DisplayName(path));
    const auto columns =
        CollarColumnsOf(MatchHeader(table.header, {}, table.file, table.headerLine), table);
    std::map<std::string, std::size_t> firstLine;
    for (const auto& row : table.rows) {
      const std::string id(TrimSpaces(row.fields[columns.hole]));
      if (id.empty()) {
        m_set.diagnostics.push_back(
            MakeError(table.Ref(row, columns.hole), "the hole name is empty; the row is ignored"));
        continue;
      }
      const auto [first, inserted] = firstLine.emplace(id, row.line);
      if (!inserted) {
        m_set.diagnostics.push_back(MakeError(table.Ref(row, columns.hole),
                                              "duplicate hole name '" + id + "' (first at line " +
                                                  std::to_string(first->second) +
                                                  "); this row is ignored",
                                              id));
        continue;
      }
      std::optional<std::size_t> emptyColumn;
      for (const auto column : {columns.easting, columns.northing}) {
        emptyColumn = !emptyColumn && IsNullField(row.fields[column]) ? column : emptyColumn;
      }
      if (!emptyColumn && m_mode == DepthMode::Depths && IsNullField(row.fields[*columns.ground])) {
        emptyColumn = columns.ground;
      }
      if (emptyColumn) {
        Skip(id, table.Ref(row, *emptyColumn), table.Name(*emptyColumn) + " is empty");
        continue;
      }
      Collar collar;
      collar.where = table.Ref(row, columns.hole);
      collar.x = ParseNumber(row.fields[columns.easting], table.Ref(row, columns.easting));
      collar.y = ParseNumber(row.fields[columns.northing], table.Ref(row, columns.northing));
      if (columns.ground && !IsNullField(row.fields[*columns.ground])) {
        collar.ground = ParseDecimal(row.fields[*columns.ground], table.Ref(row, *columns.ground));
      }
      m_holes[id].collar = collar;
      m_order.push_back(id);
    }
  }

  // The hole of an interval in the two-table form, or nullptr (with an error the first time) when
  // the collar table does not know it.
  HoleRows* KnownHole(const std::string& id, const SourceRef& where) {
    const auto it = m_holes.find(id);
    if (it != m_holes.end()) {
      return &it->second;
    }
    if (m_set.skipped.count(id) == 0 && m_reportedOrphans.insert(id).second) {
      m_set.diagnostics.push_back(
          MakeError(where, "hole '" + id + "' has intervals but no row in the collar table", id));
    }
    return nullptr;
  }

  std::optional<Interval> ReadInterval(const std::string& id, const CsvRecord& row,
                                       const Table& table, const IntervalColumns& span,
                                       std::size_t code) {
    for (const auto column : {span.top, span.base}) {
      if (IsNullField(row.fields[column])) {
        m_set.diagnostics.push_back(MakeError(
            table.Ref(row, column), "empty: the stratum cannot be placed; the row is ignored", id));
        return std::nullopt;
      }
    }
    Interval interval;
    interval.top = ParseDecimal(row.fields[span.top], table.Ref(row, span.top));
    interval.base = ParseDecimal(row.fields[span.base], table.Ref(row, span.base));
    interval.code = TrimSpaces(row.fields[code]);
    interval.where = table.Ref(row, code);
    if (interval.code.empty()) {
      m_set.diagnostics.push_back(
          MakeWarning(interval.where, "no code: the stratum gets an empty code", id));
    }
    return interval;
  }

  void Skip(const std::string& id, const SourceRef& where, const std::string& why) {
    m_set.diagnostics.push_back(MakeWarning(where, "hole '" + id + "' left out: " + why, id));
    m_set.skipped[id] = why;
  }

  void BuildHoles() {
    std::vector<std::string> unsorted;
    bool collarFromStrata = false;
    // Depths grow downwards and elevations fall, so one key orders both from the top down.
    const double sign = m_mode == DepthMode::Depths ? 1.0 : -1.0;
    const auto downwards = [sign](const Interval& a, const Interval& b) {
      const double ka = sign * a.top.value;
      const double kb = sign * b.top.value;
      return std::isnan(kb) ? !std::isnan(ka) : !std::isnan(ka) && ka < kb;
    };
    for (const auto& id : m_order) {
      auto& rows = m_holes[id];
      if (rows.intervals.empty()) {
        Skip(id, rows.collar.where, "no intervals");
        continue;
      }
      if (!std::is_sorted(rows.intervals.begin(), rows.intervals.end(), downwards)) {
        unsorted.push_back(id);
        std::stable_sort(rows.intervals.begin(), rows.intervals.end(), downwards);
      }
      HoleRecord hole;
      hole.name = id;
      hole.where = rows.collar.where;
      hole.x = rows.collar.x;
      hole.y = rows.collar.y;
      Decimal ground;
      if (rows.collar.ground) {
        ground = *rows.collar.ground;
      } else {
        collarFromStrata = true;
        ground.value = -HUGE_VAL;
        for (const auto& interval : rows.intervals) {
          ground.value = std::max(ground.value, interval.top.value);
        }
      }
      hole.top = ground.value;
      for (auto& interval : rows.intervals) {
        StratumRecord stratum;
        stratum.dc.strName = FromUtf8(interval.code, interval.where);
        stratum.where = std::move(interval.where);
        const bool depths = m_mode == DepthMode::Depths;
        stratum.dc.dTopGC = depths ? DecimalDifference(ground, interval.top) : interval.top.value;
        stratum.dc.dBotGC = depths ? DecimalDifference(ground, interval.base) : interval.base.value;
        hole.strata.push_back(std::move(stratum));
      }
      std::vector<Interval>().swap(rows.intervals); // its strata have taken over
      m_set.holes.push_back(std::move(hole));
    }
    if (!unsorted.empty()) {
      std::string names;
      for (const auto& id : unsorted) {
        names += (names.empty() ? "" : ", ") + id;
      }
      m_set.diagnostics.push_back(MakeWarning(
          {m_set.source, 0, m_set.fields.stratumTop},
          "rows not in order from the top down in " + std::to_string(unsorted.size()) + " hole" +
              (unsorted.size() == 1 ? "" : "s") + " (" + names + "); sorted"));
    }
    if (collarFromStrata) {
      m_set.diagnostics.push_back(MakeWarning({m_set.source, 0, {}},
                                              "no ground-level column: each collar is put at the "
                                              "top of its highest stratum"));
    }
  }

  const ReadOptions& m_options;
  BoreholeSet& m_set;
  DepthMode m_mode = DepthMode::Depths;
  std::map<std::string, HoleRows> m_holes;
  std::vector<std::string> m_order;
  std::set<std::string> m_reportedOrphans;
};

} // namespace

BoreholeSet ReadCsvBoreholes(std::string_view text, const std::string& file,
                             const ReadOptions& options) {
  BoreholeSet set;
  set.source = file;
  CsvHoleBuilder(options, set).Read(text, file);
  return set;
}

} // namespace xklink
