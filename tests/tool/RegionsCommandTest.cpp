// xklink regions: the region tree of two holes as JSON, and the number format of every JSON output.
#include "JsonOutput.h"
#include "ToolRunner.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>
#include <regex>

namespace xktool {
namespace {

using nlohmann::json;

const std::string kOverview = (kExamples / "overview.json").string();
const std::string kNle = (kExamples / "nle-battersea" / "21-7-10-NLE.ags").string();

json P(double x, double y, double z) {
  return json::array({x, y, z});
}
json Corners(const json& a, const json& b) {
  return json::array({a, b});
}

void ExpectRegion(const json& r, int type, bool named, const std::string& name,
                  std::array<int, 4> ranges, const json& top, const json& bottom) {
  SCOPED_TRACE("region '" + name + "'");
  EXPECT_EQ(r.at("type"), type);
  EXPECT_EQ(r.at("named"), named);
  EXPECT_EQ(r.at("name"), name);
  EXPECT_EQ(r.at("begin1"), ranges[0]);
  EXPECT_EQ(r.at("end1"), ranges[1]);
  EXPECT_EQ(r.at("begin2"), ranges[2]);
  EXPECT_EQ(r.at("end2"), ranges[3]);
  EXPECT_EQ(r.at("top"), top);
  EXPECT_EQ(r.at("bottom"), bottom);
}

// Overview: BH1 at (0,0), collar 100, strata A 100-95, B 95-90, C 90-80; BH2 at (50,0), collar 101,
// A 101-97, C 97-85. A and C continue, B pinches out at BH2 on the A/C boundary (97), and the tree
// ends at the base of C, the deepest common stratum.
TEST(RegionsCommandTest, OverviewTreeHasTheHandWorkedCorners) {
  const RunResult run = RunTool({"regions", kOverview});
  ASSERT_EQ(run.exitCode, 0) << run.Describe();
  EXPECT_EQ(run.err, "");
  const json root = json::parse(run.out);
  ExpectRegion(root, 0, false, "", {0, 3, 0, 2}, Corners(P(0, 0, 100), P(50, 0, 101)),
               Corners(P(0, 0, 80), P(50, 0, 85)));
  const json& children = root.at("children");
  ASSERT_EQ(children.size(), 3u);
  ExpectRegion(children[0], 0, true, "A", {0, 1, 0, 1}, Corners(P(0, 0, 100), P(50, 0, 101)),
               Corners(P(0, 0, 95), P(50, 0, 97)));
  ExpectRegion(children[1], 0, true, "C", {2, 3, 1, 2}, Corners(P(0, 0, 90), P(50, 0, 97)),
               Corners(P(0, 0, 80), P(50, 0, 85)));
  // The wedge touches BH2 at the boundary above its stratum 1 (C): both corners there at 97.
  ExpectRegion(children[2], 2, false, "B", {1, 2, 1, 1}, Corners(P(0, 0, 95), P(50, 0, 97)),
               Corners(P(0, 0, 90), P(50, 0, 97)));
  for (const json& child : children) {
    EXPECT_TRUE(child.at("children").empty()) << child.at("name");
  }
  // Whole numbers are written without a fraction.
  EXPECT_NE(run.out.find("\"top\":[[0,0,100],[50,0,101]]"), std::string::npos) << run.out;
}

TEST(RegionsCommandTest, HolesOptionChoosesAndOrdersThePair) {
  const RunResult run = RunTool({"regions", kOverview, "--holes", "BH2,BH1"});
  ASSERT_EQ(run.exitCode, 0) << run.Describe();
  const json root = json::parse(run.out);
  ExpectRegion(root, 0, false, "", {0, 2, 0, 3}, Corners(P(50, 0, 101), P(0, 0, 100)),
               Corners(P(50, 0, 85), P(0, 0, 80)));
  ASSERT_EQ(root.at("children").size(), 3u);
  ExpectRegion(root["children"][2], 2, false, "B", {1, 1, 1, 2}, Corners(P(50, 0, 97), P(0, 0, 95)),
               Corners(P(50, 0, 97), P(0, 0, 90)));

  // Only a pair: a third name is a usage error.
  const RunResult three = RunTool({"regions", kNle, "--holes", "BH01,BH02,BH03"});
  EXPECT_EQ(three.exitCode, 2) << three.Describe();
  EXPECT_NE(three.err.find("--holes"), std::string::npos) << three.err;
  EXPECT_EQ(three.out, "");
}

// Significant digits of a decimal token: "100" has 1, "0.30000000000000004" has 17.
int SignificantDigits(const std::string& token) {
  std::string digits;
  for (const char c : token.substr(0, token.find_first_of("eE"))) {
    if (c >= '0' && c <= '9') {
      digits += c;
    }
  }
  digits.erase(0, digits.find_first_not_of('0'));
  digits.erase(digits.find_last_not_of('0') + 1);
  return static_cast<int>(digits.size());
}

bool ReadsBackWithDigits(double value, int digits) {
  char buffer[400]; // %g of the largest double in fixed notation fits
  std::snprintf(buffer, sizeof buffer, "%.*g", digits, value);
  return std::strtod(buffer, nullptr) == value;
}

// Checks every number of a JSON text: no needless fraction ("100.0"), and no decimal with fewer
// digits (found by printf rounding, independently of the tool's to_chars) reads back the same.
void ExpectShortestNumbers(const std::string& text) {
  static const std::regex number(R"([\[,:](-?[0-9][0-9.eE+-]*)(?=[,\]}]))");
  int seen = 0;
  for (std::sregex_iterator it(text.begin(), text.end(), number), end; it != end; ++it) {
    const std::string token = (*it)[1];
    ++seen;
    const double value = std::strtod(token.c_str(), nullptr);
    const int digits = SignificantDigits(token);
    EXPECT_FALSE(token.find('.') != std::string::npos && token.back() == '0') << token;
    EXPECT_TRUE(ReadsBackWithDigits(value, std::max(digits, 1))) << token;
    if (digits > 1) {
      EXPECT_FALSE(ReadsBackWithDigits(value, digits - 1)) << token << " could be shorter";
    }
  }
  EXPECT_GT(seen, 10);
}

TEST(RegionsCommandTest, NumbersAreTheShortestThatReadBack) {
  TempDir dir;
  // 1.6800000000000002 and 0.30000000000000004 are the doubles next to 1.68 and 0.3: the output
  // must keep every digit; 100.0 must come out as 100.
  const std::string file = dir.Write("near.json", R"({"boreholes": [
  {"name": "W", "x": 1.6800000000000002, "y": 0.30000000000000004, "top": 100.0,
   "strata": [{"code": "A", "top": 100.0, "bottom": 90.1}]},
  {"name": "E", "x": 60.25, "y": -0.5, "top": 99.5,
   "strata": [{"code": "A", "top": 99.5, "bottom": 88.75}]}
]})");
  const RunResult run = RunTool({"regions", file});
  ASSERT_EQ(run.exitCode, 0) << run.Describe();
  EXPECT_NE(
      run.out.find("\"top\":[[1.6800000000000002,0.30000000000000004,100],[60.25,-0.5,99.5]]"),
      std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find("[60.25,-0.5,88.75]"), std::string::npos) << run.out;

  // AGS elevations are ground level minus depth, which rarely falls on a short decimal.
  const RunResult ags = RunTool({"regions", kNle, "--holes", "BH02,BH01"});
  ASSERT_EQ(ags.exitCode, 0) << ags.Describe();
  // The collars as the HOLE group gives them: BH02 529969.63 177326.43 GL 1.66, BH01 529448.29
  // 177496.69 GL 4.08.
  EXPECT_NE(ags.out.find("\"top\":[[529969.63,177326.43,1.66],[529448.29,177496.69,4.08]]"),
            std::string::npos)
      << ags.out.substr(0, 400);
  ExpectShortestNumbers(ags.out);
  ExpectShortestNumbers(run.out);
}

TEST(RegionsCommandTest, JsonNumberWritesNonFiniteValuesAsStrings) {
  EXPECT_EQ(xklink::JsonNumber(std::numeric_limits<double>::quiet_NaN()), "\"nan\"");
  EXPECT_EQ(xklink::JsonNumber(std::numeric_limits<double>::infinity()), "\"inf\"");
  EXPECT_EQ(xklink::JsonNumber(-std::numeric_limits<double>::infinity()), "\"-inf\"");
  EXPECT_EQ(xklink::JsonNumber(100.0), "100");
  EXPECT_EQ(xklink::JsonNumber(0.1), "0.1");
  EXPECT_EQ(xklink::JsonNumber(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(xklink::JsonNumber(1.6800000000000002), "1.6800000000000002");
  // Extremes are valid JSON and read back bit for bit.
  for (const double v : {-0.0, 5e-324, 2.2250738585072014e-308, 1.7976931348623157e308, 1e21,
                         -123456.789, 529969.63}) {
    const std::string text = xklink::JsonNumber(v);
    EXPECT_TRUE(json::accept(text)) << text;
    const double back = std::strtod(text.c_str(), nullptr);
    EXPECT_EQ(std::memcmp(&back, &v, sizeof v), 0) << text;
  }
}

TEST(RegionsCommandTest, OutputOptionWritesTheSameTreeToAFile) {
  TempDir dir;
  const RunResult toStdout = RunTool({"regions", kOverview});
  const RunResult toFile = RunTool({"regions", kOverview, "-o", (dir / "tree.json").string()});
  ASSERT_EQ(toFile.exitCode, 0) << toFile.Describe();
  EXPECT_EQ(toFile.out, "");
  EXPECT_EQ(ReadFile(dir / "tree.json"), toStdout.out);
  EXPECT_EQ(dir.Entries(), std::vector<std::string>{"tree.json"});
}

} // namespace
} // namespace xktool
