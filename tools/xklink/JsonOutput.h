// The tool's JSON output: region trees and section lines. Numbers are written in the shortest form
// that reads back to the same double; values that JSON cannot hold as numbers are written as the
// strings "nan", "inf" and "-inf", so no reader silently turns them into null.
#pragma once

#include <XKLinkDc/XKLinkDc.h>
#include <string>
#include <vector>

namespace xklink {

// The shortest decimal text that reads back to the same double, or "nan"/"inf"/"-inf" quoted.
std::string JsonNumber(double value);
// A JSON string literal of UTF-8 text, escaped.
std::string JsonString(const std::string& utf8);
// "\u001f": the JSON escape of a control character, which the CSV output uses as well.
std::string UnicodeEscape(unsigned char c);

// {"type":..,"named":..,"name":..,"begin1":..,...,"top":[[x,y,z],[x,y,z]],"bottom":[..],"children":[..]}
std::string RegionToJson(const DataType::_sLinkRegion& region);

struct PairLines {
  std::string from;
  std::string to;
  std::vector<DataType::_sLinkLine> lines;
};
// [{"from":"A","to":"B","lines":[{"p1":[x,y,z],"p2":[x,y,z],"type":2,"up":"A","down":"B"},..]},..]
std::string LinesToJson(const std::vector<PairLines>& pairs);

} // namespace xklink
