// Helpers of the reader tests: hand-made files in a temporary directory, edits of sample texts,
// borehole sets built in code, and short ways to look at what was read and what went wrong.
#pragma once

#include "../support/TempDir.h"
#include "BoreholeSet.h"
#include "Diagnostics.h"
#include "Numbers.h"
#include "Text.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace xklink::testing {

using Lines = std::vector<std::string>;

using xktest::TempDir;

// The diagnostics as the user reads them: all of them, or those of one severity.
inline std::vector<std::string> Messages(const std::vector<Diagnostic>& diagnostics,
                                         std::optional<Severity> only = {}) {
  std::vector<std::string> out;
  for (const auto& d : diagnostics) {
    if (!only || d.severity == *only) {
      out.push_back(d.ToString());
    }
  }
  return out;
}

// The what() of the Error that `action` throws; a test failure when it throws none.
template <class Error = ParseError> std::string ErrorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.what();
  }
  ADD_FAILURE() << "no error of the expected kind thrown";
  return {};
}

// The text with a byte order mark, and CRLF for every LF.
inline std::string WithBomAndCrlf(std::string_view text) {
  std::string out = "\xEF\xBB\xBF";
  for (const char c : text) {
    out += c == '\n' ? "\r\n" : std::string(1, c);
  }
  return out;
}

// The text with its first `from` replaced; fails the test when `from` is not there.
inline std::string Edit(std::string text, const std::string& from, const std::string& to) {
  const auto at = text.find(from);
  EXPECT_NE(at, std::string::npos) << "not in the text: " << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

// One line per hole: "BH1 @100,200 top 50: SAND 50..47.5@2 CLAY 47.5..40@3", each stratum with the
// line it was read from; metres to 0.1 mm.
inline std::vector<std::string> Summary(const BoreholeSet& set) {
  std::vector<std::string> out;
  for (const auto& hole : set.holes) {
    std::string line = hole.name + " @" + FormatMetres(hole.x) + "," + FormatMetres(hole.y) +
                       " top " + FormatMetres(hole.top) + ":";
    for (const auto& s : hole.strata) {
      line += " " + ToUtf8(s.dc.strName) + " " + FormatMetres(s.dc.dTopGC) + ".." +
              FormatMetres(s.dc.dBotGC) + "@" + std::to_string(s.where.line);
    }
    out.push_back(line);
  }
  return out;
}

// The codes of a hole's strata, top down, ';' after each.
inline std::string Codes(const HoleRecord& hole) {
  std::string out;
  for (const auto& s : hole.strata) {
    out += ToUtf8(s.dc.strName) + ";";
  }
  return out;
}

struct Bed {
  std::wstring code;
  double top;
  double bottom;
  double aux = 0.0; // the host's own value and flag
  bool flag = false;
};

// A hole whose record starts on `line` of "set.json" and whose strata follow one per line.
inline HoleRecord MakeHole(const std::string& name, double x, double y, double top,
                           const std::vector<Bed>& beds, std::size_t line) {
  HoleRecord hole{name, x, y, top, true, {}, {"set.json", line, "name"}};
  for (const auto& bed : beds) {
    StratumRecord& stratum = hole.strata.emplace_back();
    stratum.dc.strName = bed.code;
    stratum.dc.dTopGC = bed.top;
    stratum.dc.dBotGC = bed.bottom;
    stratum.dc.dAux = bed.aux;
    stratum.dc.bAux = bed.flag;
    stratum.where = {"set.json", line + hole.strata.size(), "code"};
  }
  return hole;
}

inline BoreholeSet MakeSet(std::vector<HoleRecord> holes) {
  BoreholeSet set;
  set.source = "set.json";
  set.holes = std::move(holes);
  return set;
}

} // namespace xklink::testing
