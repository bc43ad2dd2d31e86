// Correlation results as text, one field per line with its path and doubles with their bits: two
// results are identical exactly when their texts are, and the first line that differs names the
// first differing field. Shared by every test that compares trees or lines.
#pragma once

#include <XKLinkDc/XKLinkDc.h>
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace xktest {

inline std::string Num(double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.17g [%016llx]", v,
                static_cast<unsigned long long>(std::bit_cast<uint64_t>(v)));
  return buf;
}

inline std::string Narrow(const std::wstring& w) {
  std::string s;
  for (const wchar_t c : w) {
    s += (c >= 32 && c < 127) ? static_cast<char>(c) : '?';
  }
  return s;
}

using Text = std::vector<std::string>;

inline void Point(Text& out, const std::string& path, const CXk3DPoint& p) {
  out.push_back(path + ": " + Num(p.x) + " " + Num(p.y) + " " + Num(p.z));
}

inline void Fields(Text& out, const DataType::_sLinkRegion& r, const std::string& path) {
  out.push_back(path + ": kind " + std::to_string(r.nType) + " named " + std::to_string(r.bNamed) +
                " \"" + Narrow(r.strName) + "\" ranges " + std::to_string(r.nBegin1) + " " +
                std::to_string(r.nEnd1) + " " + std::to_string(r.nBegin2) + " " +
                std::to_string(r.nEnd2) + ", " + std::to_string(r.vecChild.size()) + " children");
  for (int k = 0; k < 2; ++k) {
    Point(out, path + ".ptTop[" + std::to_string(k) + "]", r.ptTop[k]);
    Point(out, path + ".ptBot[" + std::to_string(k) + "]", r.ptBot[k]);
  }
  for (std::size_t k = 0; k < r.vecChild.size(); ++k) {
    Fields(out, r.vecChild[k], path + "/" + std::to_string(k));
  }
}

inline void Fields(Text& out, const std::vector<DataType::_sLinkLine>& lines,
                   const std::string& path) {
  out.push_back(path + ": " + std::to_string(lines.size()) + " lines");
  for (std::size_t k = 0; k < lines.size(); ++k) {
    const DataType::_sLinkLine& l = lines[k];
    const std::string at = path + "[" + std::to_string(k) + "]";
    Point(out, at + ".pt1", l.pt1);
    Point(out, at + ".pt2", l.pt2);
    out.push_back(at + ": kind " + std::to_string(l.nType) + " bottom " +
                  std::to_string(l.bBottom) + " \"" + Narrow(l.strUpName) + "\" / \"" +
                  Narrow(l.strDownName) + "\"");
  }
}

// The first differing field of two trees or two lists of lines, or nothing.
template <class Result>
std::string FirstDifference(const Result& got, const Result& want, const std::string& path) {
  Text a;
  Text b;
  Fields(a, got, path);
  Fields(b, want, path);
  const auto [x, y] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  if (x == a.end() && y == b.end()) {
    return {};
  }
  return "got " + (x == a.end() ? std::string("(nothing)") : *x) + ", want " +
         (y == b.end() ? std::string("(nothing)") : *y);
}

// A borehole as text, for the message of a failing case (the first 60 strata).
inline std::string Describe(const DataType::_sZK& zk) {
  std::ostringstream os;
  os << "  collar " << Num(zk.dTopGC) << " at (" << Num(zk.dX) << ", " << Num(zk.dY) << "), "
     << zk.vecDC.size() << " strata\n";
  for (std::size_t k = 0; k < zk.vecDC.size() && k < 60; ++k) {
    const auto& dc = zk.vecDC[k];
    os << "    \"" << Narrow(dc.strName) << "\" " << Num(dc.dTopGC) << " .. " << Num(dc.dBotGC)
       << "\n";
  }
  return os.str();
}

} // namespace xktest
