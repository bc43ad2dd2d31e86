#include "JsonOutput.h"

#include "Text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <vector>

namespace xklink {

namespace {

void AppendPoint(std::string& out, const CXk3DPoint& p) {
  out += '[';
  out += JsonNumber(p.x);
  out += ',';
  out += JsonNumber(p.y);
  out += ',';
  out += JsonNumber(p.z);
  out += ']';
}

// Everything of a region up to the opening bracket of its children.
void AppendRegionHead(std::string& out, const DataType::_sLinkRegion& r) {
  out += "{\"type\":" + std::to_string(r.nType);
  out += ",\"named\":";
  out += r.bNamed ? "true" : "false";
  out += ",\"name\":" + JsonString(ToUtf8(r.strName));
  out += ",\"begin1\":" + std::to_string(r.nBegin1);
  out += ",\"end1\":" + std::to_string(r.nEnd1);
  out += ",\"begin2\":" + std::to_string(r.nBegin2);
  out += ",\"end2\":" + std::to_string(r.nEnd2);
  out += ",\"top\":[";
  AppendPoint(out, r.ptTop[0]);
  out += ',';
  AppendPoint(out, r.ptTop[1]);
  out += "],\"bottom\":[";
  AppendPoint(out, r.ptBot[0]);
  out += ',';
  AppendPoint(out, r.ptBot[1]);
  out += "],\"children\":[";
}

// Depth first with a work list: the trees of long logs nest thousands of regions deep.
void AppendRegion(std::string& out, const DataType::_sLinkRegion& root) {
  struct Open {
    const DataType::_sLinkRegion* region;
    std::size_t next; // the child to write next
  };
  std::vector<Open> open{{&root, 0}};
  AppendRegionHead(out, root);
  while (!open.empty()) {
    Open& top = open.back();
    if (top.next == top.region->vecChild.size()) {
      out += "]}";
      open.pop_back();
      continue;
    }
    if (top.next > 0) {
      out += ',';
    }
    const DataType::_sLinkRegion& child = top.region->vecChild[top.next++];
    AppendRegionHead(out, child);
    open.push_back({&child, 0});
  }
}

} // namespace

std::string JsonNumber(double value) {
  if (std::isnan(value)) {
    return "\"nan\"";
  }
  if (std::isinf(value)) {
    return value > 0 ? "\"inf\"" : "\"-inf\"";
  }
  std::array<char, 32> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return std::string(buffer.data(), result.ptr);
}

std::string UnicodeEscape(unsigned char c) {
  static constexpr char kHex[] = "0123456789abcdef";
  return std::string("\\u00") + kHex[c >> 4] + kHex[c & 0xF];
}

std::string JsonString(const std::string& utf8) {
  std::string out = "\"";
  for (const char c : utf8) {
    const auto u = static_cast<unsigned char>(c);
    switch (c) {
    case '"':
      out += "\\\"";
      break;
    case '\\':
      out += "\\\\";
      break;
    case '\n':
      out += "\\n";
      break;
    case '\r':
      out += "\\r";
      break;
    case '\t':
      out += "\\t";
      break;
    default:
      if (u < 0x20) {
        out += UnicodeEscape(u);
      } else {
        out += c;
      }
    }
  }
  out += '"';
  return out;
}

std::string RegionToJson(const DataType::_sLinkRegion& region) {
  std::string out;
  AppendRegion(out, region);
  out += '\n';
  return out;
}

std::string LinesToJson(const std::vector<PairLines>& pairs) {
  std::string out = "[";
  for (std::size_t p = 0; p < pairs.size(); ++p) {
    const PairLines& pair = pairs[p];
    out += p > 0 ? ",\n" : "\n";
    out += "{\"from\":" + JsonString(pair.from) + ",\"to\":" + JsonString(pair.to) + ",\"lines\":[";
    for (std::size_t i = 0; i < pair.lines.size(); ++i) {
      const DataType::_sLinkLine& line = pair.lines[i];
      out += i > 0 ? ",\n  " : "\n  ";
      out += "{\"p1\":";
      AppendPoint(out, line.pt1);
      out += ",\"p2\":";
      AppendPoint(out, line.pt2);
      out += ",\"type\":" + std::to_string(line.nType);
      out += ",\"up\":" + JsonString(ToUtf8(line.strUpName));
      out += ",\"down\":" + JsonString(ToUtf8(line.strDownName)) + "}";
    }
    out += "]}";
  }
  out += "\n]\n";
  return out;
}

} // namespace xklink
