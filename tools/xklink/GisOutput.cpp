#include "GisOutput.h"

#include "AgsGridReference.h"
#include "Errors.h"
#include "GeoPackage.h"
#include "GridNames.h"
#include "GridToWgs84.h"
#include "ReadBoreholes.h"
#include "SourceFile.h"
#include "Text.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <stdexcept>

namespace xklink {

namespace {

std::string AskForGrid(const GridOption& option) {
  return "give the grid with " + option.name + ", such as " + option.example +
         " for British National Grid";
}

std::optional<GridReference> GridNamedInFile(const InputOptions& input) {
  const std::filesystem::path path(input.file);
  Format format = Format::Json;
  try {
    format = input.format.empty() ? DetectFormat(path) : FormatFromName(input.format);
  } catch (const std::invalid_argument& e) {
    throw UsageError(std::string("--input-format: ") + e.what());
  }
  if (format != Format::Ags) {
    return std::nullopt; // CSV and JSON files do not say
  }
  return ReadAgsGridReference(ReadSourceFile(path), DisplayName(path));
}

double Round9(double degrees) {
  return std::round(degrees * 1e9) / 1e9;
}

} // namespace

int ResolveGrid(const InputOptions& input, const std::string& crs, const GridOption& option) {
  if (!crs.empty()) {
    try {
      const int code = ParseEpsgCode(crs);
      GridToWgs84{code}; // refuses a code that is no coordinate reference system before any work
      return code;
    } catch (const std::invalid_argument& e) {
      throw UsageError(option.name + ": " + e.what());
    } catch (const std::runtime_error& e) { // PROJ missing or unable to start
      throw OutputError(e.what());
    }
  }
  const auto grid = GridNamedInFile(input);
  if (!grid) {
    throw UsageError(input.file + ": the file does not say which grid its coordinates are on; " +
                     AskForGrid(option));
  }
  const auto epsg = EpsgOfGridName(grid->name);
  if (!epsg) {
    throw UsageError(grid->where.ToString() + ": grid '" + grid->name +
                     "' is not one the tool knows; " + AskForGrid(option));
  }
  return *epsg;
}

void LinesToWgs84(std::vector<PairLines>& pairs, int epsg, const GridOption& option) {
  try {
    const GridToWgs84 toWgs84(epsg);
    for (PairLines& pair : pairs) {
      for (DataType::_sLinkLine& line : pair.lines) {
        for (CXk3DPoint* p : {&line.pt1, &line.pt2}) {
          const LonLat place = toWgs84(p->x, p->y);
          p->x = Round9(place.lon);
          p->y = Round9(place.lat);
        }
      }
    }
  } catch (const std::logic_error& e) { // an unknown code, a point outside the projection
    throw UsageError(option.name + ": " + e.what());
  } catch (const std::runtime_error& e) { // PROJ missing or unable to start
    throw OutputError(e.what());
  }
}

bool IsGeoPackagePath(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension == ".gpkg";
}

std::string LinesToGeoPackage(const SectionHoles& section, const std::vector<PairLines>& pairs,
                              int epsg, const GridOption& option) {
  std::vector<GisHole> holes;
  for (std::size_t i = 0; i < section.holes.size(); ++i) {
    const DataType::_sZK& hole = section.holes[i];
    holes.push_back(
        {section.names[i], hole.dX, hole.dY, hole.dTopGC, hole.dTopGC - hole.GetBotGC()});
  }
  std::vector<GisLine> lines;
  for (const PairLines& pair : pairs) {
    for (const DataType::_sLinkLine& line : pair.lines) {
      lines.push_back({pair.from,
                       pair.to,
                       {line.pt1.x, line.pt1.y, line.pt1.z},
                       {line.pt2.x, line.pt2.y, line.pt2.z},
                       line.nType,
                       ToUtf8(line.strUpName),
                       ToUtf8(line.strDownName)});
    }
  }
  try {
    return GeoPackageBytes(epsg, holes, lines);
  } catch (const std::invalid_argument& e) {
    throw UsageError(option.name + ": " + e.what());
  } catch (const std::runtime_error& e) {
    throw OutputError(e.what());
  }
}

} // namespace xklink
