#include "LineFile.h"

#include "Diagnostics.h"
#include "Numbers.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

namespace xklink {

namespace {

using drawing::PlanPoint;

std::vector<PlanPoint> FromGeoJson(const std::string& text, const std::string& file) {
  nlohmann::json doc;
  try {
    doc = nlohmann::json::parse(text);
  } catch (const nlohmann::json::parse_error& e) {
    throw ParseError({file, 0, ""}, std::string("not valid JSON: ") + e.what());
  }
  const auto type = [](const nlohmann::json& j) {
    return j.is_object() && j.contains("type") && j["type"].is_string()
               ? j["type"].get<std::string>()
               : std::string();
  };
  const nlohmann::json* geometry = &doc;
  if (type(doc) == "FeatureCollection" && doc.contains("features") && doc["features"].is_array()) {
    geometry = nullptr;
    for (const nlohmann::json& feature : doc["features"]) {
      if (feature.contains("geometry") && type(feature["geometry"]) == "LineString") {
        geometry = &feature["geometry"];
        break;
      }
    }
  } else if (type(doc) == "Feature" && doc.contains("geometry")) {
    geometry = &doc["geometry"];
  }
  if (geometry == nullptr || type(*geometry) != "LineString") {
    throw ParseError({file, 0, "type"}, "no LineString geometry in the GeoJSON");
  }
  const nlohmann::json& coordinates = (*geometry).value("coordinates", nlohmann::json());
  if (!coordinates.is_array()) {
    throw ParseError({file, 0, "coordinates"}, "the LineString has no coordinate array");
  }
  std::vector<PlanPoint> vertices;
  for (std::size_t i = 0; i < coordinates.size(); ++i) {
    const nlohmann::json& c = coordinates[i];
    if (!c.is_array() || c.size() < 2 || !c[0].is_number() || !c[1].is_number()) {
      throw ParseError({file, 0, "coordinates[" + std::to_string(i) + "]"},
                       "a position must be [easting, northing]");
    }
    vertices.push_back({c[0].get<double>(), c[1].get<double>()});
  }
  return vertices;
}

std::vector<std::string> SplitFields(const std::string& line) {
  std::vector<std::string> fields;
  std::stringstream in(line);
  std::string field;
  while (std::getline(in, field, ',')) {
    field.erase(std::remove(field.begin(), field.end(), '"'), field.end());
    fields.emplace_back(TrimSpaces(field));
  }
  return fields;
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::vector<PlanPoint> FromCsv(const std::string& text, const std::string& file) {
  std::vector<PlanPoint> vertices;
  std::size_t eColumn = 0;
  std::size_t nColumn = 1;
  std::vector<std::string> names = {"column 1", "column 2"};
  std::istringstream in(text);
  std::string line;
  for (std::size_t number = 1; std::getline(in, line); ++number) {
    if (!line.empty() && line.back() == '\r') {
      line.pop_back();
    }
    const std::vector<std::string> fields = SplitFields(line);
    if (fields.empty() || (fields.size() == 1 && fields[0].empty())) {
      continue;
    }
    const bool header = vertices.empty() && number == 1 && !fields[0].empty() &&
                        (std::isalpha(static_cast<unsigned char>(fields[0][0])) != 0);
    if (header) {
      names = fields;
      for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::string name = Lower(fields[i]);
        if (name == "x" || name == "e" || name == "easting" || name == "east") {
          eColumn = i;
        } else if (name == "y" || name == "n" || name == "northing" || name == "north") {
          nColumn = i;
        }
      }
      continue;
    }
    if (fields.size() <= std::max(eColumn, nColumn)) {
      throw ParseError({file, number, ""}, "expected an easting and a northing");
    }
    const double e = ParseNumber(fields[eColumn], {file, number, names[eColumn]});
    const double n = ParseNumber(fields[nColumn], {file, number, names[nColumn]});
    vertices.push_back({e, n});
  }
  return vertices;
}

} // namespace

std::vector<PlanPoint> ReadLineFile(const std::filesystem::path& path) {
  const std::string file = path.string();
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    throw ParseError({file, 0, ""}, "cannot open the section line file");
  }
  const std::string text((std::istreambuf_iterator<char>(in)), {});
  const std::size_t first = text.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
  std::vector<PlanPoint> vertices = first != std::string::npos && text[first] == '{'
                                        ? FromGeoJson(text, file)
                                        : FromCsv(text, file);
  if (vertices.size() < 2) {
    throw ParseError({file, 0, ""}, "a section line needs at least two vertices, the file has " +
                                        std::to_string(vertices.size()));
  }
  return vertices;
}

} // namespace xklink
