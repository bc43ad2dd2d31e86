// Reading a section line from a file (--line-file): a GeoJSON LineString, as a GIS exports a line
// drawn on the site plan, or a CSV of vertices, one easting,northing per line.
#pragma once

#include "Alignment.h"

#include <filesystem>
#include <vector>

namespace xklink {

// The vertices in order. GeoJSON: a LineString geometry, a Feature holding one, or a
// FeatureCollection whose first LineString feature is taken. CSV: an optional header line; the
// columns named x/e/easting and y/n/northing (any case), else the first two. Throws ParseError
// naming the file, line and field.
std::vector<drawing::PlanPoint> ReadLineFile(const std::filesystem::path& path);

} // namespace xklink
