#include "CsvColumns.h"

#include "Numbers.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>

namespace xklink {

namespace {

using Aliases = std::initializer_list<std::string_view>;

const Aliases kHole = {"HOLEID",   "HOLE_ID",     "HOLE",    "BH",  "BH_ID",
                       "BOREHOLE", "BOREHOLE_ID", "LOCA_ID", "DHID"};
const Aliases kEasting = {"X", "EAST", "EASTING", "E", "LOCA_NATE"};
const Aliases kNorthing = {"Y", "NORTH", "NORTHING", "N", "LOCA_NATN"};
const Aliases kGround = {"Z",         "RL",       "GL",     "ELEV", "ELEVATION", "GROUND_LEVEL",
                         "COLLAR_RL", "COLLAR_Z", "LOCA_GL"};
const Aliases kTopDepth = {"FROM", "DEPTH_FROM", "FROM_DEPTH", "TOP_DEPTH", "GEOL_TOP"};
const Aliases kBaseDepth = {"TO",         "DEPTH_TO",     "TO_DEPTH",
                            "BASE_DEPTH", "BOTTOM_DEPTH", "GEOL_BASE"};
const Aliases kTopElevation = {"TOP_RL", "RL_TOP", "TOP_ELEV", "TOP_ELEVATION", "TOP_Z"};
const Aliases kBaseElevation = {"BASE_RL",   "BOTTOM_RL",   "BOT_RL", "RL_BASE",
                                "BASE_ELEV", "BOTTOM_ELEV", "BASE_Z", "BOTTOM_Z"};
const Aliases kTop = {"TOP"};
const Aliases kBase = {"BASE", "BOTTOM", "BOT"};
const Aliases kCode = {"CODE",    "UNIT",      "STRAT", "STRATUM", "FORMATION", "FORM", "GEOL",
                       "GEOLOGY", "GEOL_GEOL", "LITH",  "LITHO",   "LITHOLOGY", "LITO"};

// The first alias, in the order of the list, that names a column.
std::optional<std::size_t> Find(const std::vector<std::string>& normalized, Aliases aliases) {
  for (const auto alias : aliases) {
    const auto it = std::find(normalized.begin(), normalized.end(), alias);
    if (it != normalized.end()) {
      return static_cast<std::size_t>(it - normalized.begin());
    }
  }
  return std::nullopt;
}

std::string Join(Aliases aliases) {
  std::string out;
  for (const auto alias : aliases) {
    out += (out.empty() ? "" : ", ") + std::string(alias);
  }
  return out;
}

std::string ModeName(DepthMode mode) {
  return mode == DepthMode::Depths ? "depths below the collar" : "elevations";
}

// Decides plain TOP/BASE columns by their values.
DepthMode ModeFromValues(std::size_t top, std::size_t base, const std::vector<std::string>& header,
                         const std::vector<CsvRecord>& rows, const std::string& file,
                         std::size_t headerLine, std::vector<Diagnostic>& diagnostics) {
  std::size_t downwards = 0; // top < base: depths
  std::size_t upwards = 0;   // top > base: elevations
  for (const auto& row : rows) {
    try {
      const double t = ParseNumber(row.fields.at(top), {});
      const double b = ParseNumber(row.fields.at(base), {});
      downwards += t < b ? 1U : 0U;
      upwards += t > b ? 1U : 0U;
    } catch (const std::exception&) {
      // Bad and missing values are reported when the rows are read.
    }
  }
  const std::string topName(TrimSpaces(header[top]));
  const std::string pair = topName + "/" + std::string(TrimSpaces(header[base]));
  if (downwards == upwards) {
    throw ParseError({file, headerLine, topName},
                     "cannot tell whether " + pair + " are depths or elevations: " +
                         std::to_string(downwards) + " rows have top < base and " +
                         std::to_string(upwards) + " have top > base; say which they are");
  }
  const DepthMode mode = downwards > upwards ? DepthMode::Depths : DepthMode::Elevations;
  diagnostics.push_back(
      MakeWarning({file, headerLine, topName}, pair + " read as " + ModeName(mode) + ", as in " +
                                                   std::to_string(std::max(downwards, upwards)) +
                                                   " of " + std::to_string(downwards + upwards) +
                                                   " rows; say so to be sure"));
  return mode;
}

} // namespace

std::string NormalizeHeader(std::string_view name) {
  std::string out(TrimSpaces(name));
  if (const auto bracket = out.find_first_of("(["); bracket != std::string::npos && bracket > 0) {
    out = std::string(TrimSpaces(out.substr(0, bracket)));
  }
  for (auto& c : out) {
    if (c == ' ' || c == '-' || c == '.') {
      c = '_';
    } else {
      c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
  }
  return out;
}

HeaderColumns MatchHeader(const std::vector<std::string>& header,
                          const std::optional<std::string>& codeColumn, const std::string& file,
                          std::size_t headerLine) {
  std::vector<std::string> normalized;
  normalized.reserve(header.size());
  for (const auto& name : header) {
    normalized.push_back(NormalizeHeader(name));
  }
  HeaderColumns columns;
  columns.hole = Find(normalized, kHole);
  columns.easting = Find(normalized, kEasting);
  columns.northing = Find(normalized, kNorthing);
  columns.ground = Find(normalized, kGround);
  columns.topDepth = Find(normalized, kTopDepth);
  columns.baseDepth = Find(normalized, kBaseDepth);
  columns.topElevation = Find(normalized, kTopElevation);
  columns.baseElevation = Find(normalized, kBaseElevation);
  columns.top = Find(normalized, kTop);
  columns.base = Find(normalized, kBase);
  if (codeColumn) {
    const std::string wanted = NormalizeHeader(*codeColumn);
    columns.code = Find(normalized, {std::string_view(wanted)});
    if (!columns.code) {
      throw ParseError({file, headerLine, *codeColumn}, "no such column in the header");
    }
  } else {
    columns.code = Find(normalized, kCode);
  }
  return columns;
}

std::string AliasList(ColumnRole role) {
  switch (role) {
  case ColumnRole::Hole:
    return Join(kHole);
  case ColumnRole::Easting:
    return Join(kEasting);
  case ColumnRole::Northing:
    return Join(kNorthing);
  case ColumnRole::Ground:
    return Join(kGround);
  case ColumnRole::Code:
    return Join(kCode);
  }
  return {};
}

IntervalColumns ChooseIntervalColumns(const HeaderColumns& columns,
                                      std::optional<DepthMode> requested,
                                      const std::vector<std::string>& header,
                                      const std::vector<CsvRecord>& rows, const std::string& file,
                                      std::size_t headerLine,
                                      std::vector<Diagnostic>& diagnostics) {
  const auto depthTop = columns.topDepth ? columns.topDepth : columns.top;
  const auto depthBase = columns.baseDepth ? columns.baseDepth : columns.base;
  const auto elevationTop = columns.topElevation ? columns.topElevation : columns.top;
  const auto elevationBase = columns.baseElevation ? columns.baseElevation : columns.base;
  const auto missing = [&](DepthMode mode) {
    return ParseError({file, headerLine, {}},
                      "no columns for the top and base of the strata as " + ModeName(mode) +
                          (mode == DepthMode::Depths
                               ? " (FROM/TO, TOP_DEPTH/BASE_DEPTH or TOP/BASE)"
                               : " (TOP_RL/BASE_RL, TOP_ELEV/BASE_ELEV or TOP/BASE)"));
  };
  if (requested == DepthMode::Depths) {
    if (!depthTop || !depthBase) {
      throw missing(DepthMode::Depths);
    }
    return {*depthTop, *depthBase, DepthMode::Depths};
  }
  if (requested == DepthMode::Elevations) {
    if (!elevationTop || !elevationBase) {
      throw missing(DepthMode::Elevations);
    }
    return {*elevationTop, *elevationBase, DepthMode::Elevations};
  }
  const bool namedDepths = columns.topDepth && columns.baseDepth;
  const bool namedElevations = columns.topElevation && columns.baseElevation;
  if (namedDepths && namedElevations) {
    throw ParseError({file, headerLine, {}},
                     "the header has both depth and elevation columns for the strata; say which "
                     "to read");
  }
  if (namedDepths) {
    return {*columns.topDepth, *columns.baseDepth, DepthMode::Depths};
  }
  if (namedElevations) {
    return {*columns.topElevation, *columns.baseElevation, DepthMode::Elevations};
  }
  const bool anyNamedDepth = columns.topDepth || columns.baseDepth;
  const bool anyNamedElevation = columns.topElevation || columns.baseElevation;
  if (!anyNamedDepth && !anyNamedElevation && columns.top && columns.base) {
    // Plain TOP/BASE: the values decide.
    const auto mode =
        ModeFromValues(*columns.top, *columns.base, header, rows, file, headerLine, diagnostics);
    return {*columns.top, *columns.base, mode};
  }
  // One named column with a plain partner (FROM with BASE, TOP_RL with BOTTOM): the name decides.
  if (anyNamedDepth && !anyNamedElevation && depthTop && depthBase) {
    return {*depthTop, *depthBase, DepthMode::Depths};
  }
  if (anyNamedElevation && !anyNamedDepth && elevationTop && elevationBase) {
    return {*elevationTop, *elevationBase, DepthMode::Elevations};
  }
  throw ParseError({file, headerLine, {}},
                   "no columns for the top and base of the strata: expected FROM/TO (depths), "
                   "TOP_RL/BASE_RL (elevations) or TOP/BASE");
}

} // namespace xklink
