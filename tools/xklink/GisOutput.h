// The section lines for GIS: GeoJSON on WGS 84 longitude and latitude, GeoPackage on the grid of
// the source. Both need to know which grid the file's coordinates are on; the tool never guesses
// it, since a wrong guess puts the holes in the wrong place without a word.
#pragma once

#include "Input.h"
#include "JsonOutput.h"

#include <string>
#include <vector>

namespace xklink {

// How the messages name the option that gives the grid: the tool's --crs, or Python's crs=.
struct GridOption {
  std::string name = "--crs";
  std::string example = "--crs EPSG:27700";
};

// The EPSG code of the input's grid: from `crs` ("EPSG:27700") when given, else from the file (AGS
// LOCA_GREF or HOLE_GREF). UsageError asking for the grid option when neither names a grid the
// tool knows.
int ResolveGrid(const InputOptions& input, const std::string& crs, const GridOption& option = {});

// Turns the plan positions of the lines from the grid into longitude and latitude (elevations are
// kept), rounded to 1e-9 degrees (0.1 mm).
void LinesToWgs84(std::vector<PairLines>& pairs, int epsg, const GridOption& option = {});

// True for a path that names a GeoPackage (".gpkg", any case).
bool IsGeoPackagePath(const std::string& path);

// The GeoPackage of the section's holes and lines on EPSG:`epsg`.
std::string LinesToGeoPackage(const SectionHoles& section, const std::vector<PairLines>& pairs,
                              int epsg, const GridOption& option = {});

} // namespace xklink
