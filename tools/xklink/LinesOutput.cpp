#include "LinesOutput.h"

#include "Text.h"

#include <algorithm>

namespace xklink {

namespace {

// RFC 4180 quoting. A control character other than a line end or a tab (a NUL from a JSON "\u0000"
// in a code) is written as the JSON escape \u00XX inside quotes: spreadsheets and CSV readers stop
// at a raw NUL or take the rest of the file as binary.
std::string CsvField(const std::string& text) {
  const auto isControl = [](char c) {
    const auto u = static_cast<unsigned char>(c);
    return (u < 0x20 && c != '\t' && c != '\n' && c != '\r') || u == 0x7F;
  };
  if (text.find_first_of(",\"\r\n") == std::string::npos &&
      std::none_of(text.begin(), text.end(), isControl)) {
    return text;
  }
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') {
      quoted += '"';
    }
    quoted += isControl(c) ? UnicodeEscape(static_cast<unsigned char>(c)) : std::string(1, c);
  }
  quoted += '"';
  return quoted;
}

// Numbers in CSV as in JSON, without the quotes around nan and inf.
std::string CsvNumber(double value) {
  std::string text = JsonNumber(value);
  if (!text.empty() && text.front() == '"') {
    text = text.substr(1, text.size() - 2);
  }
  return text;
}

std::string Coordinates(const CXk3DPoint& p) {
  return "[" + JsonNumber(p.x) + "," + JsonNumber(p.y) + "," + JsonNumber(p.z) + "]";
}

} // namespace

std::string LinesToCsv(const std::vector<PairLines>& pairs) {
  std::string out = "from,to,x1,y1,z1,x2,y2,z2,type,up,down\n";
  for (const PairLines& pair : pairs) {
    for (const DataType::_sLinkLine& line : pair.lines) {
      out += CsvField(pair.from) + ',' + CsvField(pair.to) + ',';
      for (const double v :
           {line.pt1.x, line.pt1.y, line.pt1.z, line.pt2.x, line.pt2.y, line.pt2.z}) {
        out += CsvNumber(v) + ',';
      }
      out += std::to_string(line.nType) + ',' + CsvField(ToUtf8(line.strUpName)) + ',' +
             CsvField(ToUtf8(line.strDownName)) + '\n';
    }
  }
  return out;
}

std::string LinesToGeoJson(const std::vector<PairLines>& pairs) {
  std::string out = "{\"type\":\"FeatureCollection\",\"features\":[";
  bool first = true;
  for (const PairLines& pair : pairs) {
    for (const DataType::_sLinkLine& line : pair.lines) {
      out += first ? "\n" : ",\n";
      first = false;
      out += "{\"type\":\"Feature\",\"geometry\":{\"type\":\"LineString\",\"coordinates\":[" +
             Coordinates(line.pt1) + "," + Coordinates(line.pt2) + "]},\"properties\":{";
      out += "\"from\":" + JsonString(pair.from) + ",\"to\":" + JsonString(pair.to);
      out += ",\"type\":" + std::to_string(line.nType);
      out += ",\"up\":" + JsonString(ToUtf8(line.strUpName));
      out += ",\"down\":" + JsonString(ToUtf8(line.strDownName)) + "}}";
    }
  }
  out += "\n]}\n";
  return out;
}

} // namespace xklink
