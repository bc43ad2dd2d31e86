// The holes and the section lines as a GeoPackage, on the grid of the source.
//
// GeoPackage (an SQLite file with a registered coordinate reference system) is what QGIS and
// ArcGIS open without questions; unlike GeoJSON it may stay on the site's grid, so the survey
// coordinates go in unchanged and nothing is lost to a datum transformation. Two layers:
//  - "holes": a point per hole with its name, ground level and depth;
//  - "lines": a 3-D line string per section line (x, y on the grid, z the elevation) with the
//    holes it joins, its type and the units above and below it.
#pragma once

#include <string>
#include <vector>

namespace xklink {

struct GisHole {
  std::string name; // UTF-8
  double easting = 0.0;
  double northing = 0.0;
  double groundLevel = 0.0;
  double depth = 0.0; // of the base of the log below the ground
};

struct GisPoint {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0; // elevation
};

struct GisLine {
  std::string from; // the holes it joins
  std::string to;
  GisPoint p1;
  GisPoint p2;
  int type = 0;
  std::string up; // the units above and below
  std::string down;
};

// The bytes of a GeoPackage holding the two layers on EPSG:`epsg`, built in memory so that the
// caller writes the file in one piece. std::invalid_argument when GDAL does not know the code;
// std::runtime_error with GDAL's message when the file cannot be built.
std::string GeoPackageBytes(int epsg, const std::vector<GisHole>& holes,
                            const std::vector<GisLine>& lines);

} // namespace xklink
