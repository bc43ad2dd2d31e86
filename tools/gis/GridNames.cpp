#include "GridNames.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <stdexcept>
#include <string>
#include <utility>

namespace xklink {

namespace {

// Upper case letters and digits only: "OSGB 36", "osgb-36" and "OSGB36" are one name.
std::string Key(std::string_view name) {
  std::string key;
  for (const char c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
      key += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
  }
  return key;
}

// EPSG:27700 is OSGB36 / British National Grid; 29903 is TM75 / Irish Grid (the Irish Grid of
// Northern Ireland and of older Republic surveys); 2157 is IRENET95 / Irish Transverse Mercator;
// 2326 is Hong Kong 1980 Grid. Producers write the datum, the grid or the ABBR description of the
// code; all of them are here.
constexpr std::array<std::pair<std::string_view, int>, 17> kGrids{{
    {"OSGB", 27700},
    {"OSGB36", 27700},
    {"BNG", 27700},
    {"BRITISHNATIONALGRID", 27700},
    {"OSGB36BRITISHNATIONALGRID", 27700},
    {"NATIONALGRID", 27700},
    {"ORDNANCESURVEYGREATBRITAINNATIONALGRID", 27700},
    {"ORDNANCESURVEYNATIONALGRID", 27700},
    {"IRISHGRID", 29903},
    {"IG", 29903},
    {"TM75IRISHGRID", 29903},
    {"ITM", 2157},
    {"IRISHTRANSVERSEMERCATOR", 2157},
    {"IRENET95IRISHTRANSVERSEMERCATOR", 2157},
    {"HONGKONG1980GRID", 2326},
    {"HK1980GRID", 2326},
    {"HK80", 2326},
}};

} // namespace

int ParseEpsgCode(std::string_view text) {
  int code = 0;
  if (text.size() > 5 && Key(text.substr(0, 4)) == "EPSG" && text[4] == ':') {
    const std::string_view digits = text.substr(5);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code);
    if (error == std::errc{} && end == digits.data() + digits.size() && code > 0) {
      return code;
    }
  }
  throw std::invalid_argument("'" + std::string(text) +
                              "' is not an EPSG code; write it as EPSG:27700");
}

std::optional<int> EpsgOfGridName(std::string_view name) {
  try {
    return ParseEpsgCode(name);
  } catch (const std::invalid_argument&) {
    // not written as an EPSG code: look the name up
  }
  const std::string key = Key(name);
  for (const auto& [grid, code] : kGrids) {
    if (key == grid) {
      return code;
    }
  }
  return std::nullopt;
}

} // namespace xklink
