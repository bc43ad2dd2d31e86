// The section lines of a multi-hole section as CSV or GeoJSON (the JSON form is in JsonOutput.h).
#pragma once

#include "JsonOutput.h"

#include <string>
#include <vector>

namespace xklink {

// One row per line: from,to,x1,y1,z1,x2,y2,z2,type,up,down (RFC 4180 quoting, LF line ends; a
// control character in a name or code, other than a tab or line end, as \u00XX in quotes).
std::string LinesToCsv(const std::vector<PairLines>& pairs);

// A FeatureCollection of 3-D LineStrings with the properties from, to, type, up and down, for GIS.
// Non-finite coordinates cannot be written as GeoJSON numbers; the tool refuses such input before
// it gets here, and this writer writes them as the strings the JSON form uses.
std::string LinesToGeoJson(const std::vector<PairLines>& pairs);

} // namespace xklink
