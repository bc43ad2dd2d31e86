// xklink regions and lines: the number format of every JSON output, and the section lines of
// consecutive holes as JSON and CSV (GeoJSON is the GIS tests'). The region tree of a pinch-out is
// worked by hand in tests/reference, and the tool's trees are the Python package's (tests/python).
#include "JsonOutput.h"
#include "ToolRunner.h"

#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>

namespace xktool {
namespace {

using nlohmann::json;

TEST(RegionsCommandTest, NumbersAreTheShortestThatReadBack) {
  // AGS elevations are ground level minus depth, which rarely falls on a short decimal. The
  // collars as the HOLE group gives them: BH02 529969.63 177326.43 GL 1.66, BH01 529448.29
  // 177496.69 GL 4.08: written as the shortest text that reads back, not as 529969.63000000001.
  const RunResult ags = RunTool({"regions", kNle, "--holes", "BH02,BH01"});
  ASSERT_EQ(ags.exitCode, 0) << ags.Describe();
  EXPECT_NE(ags.out.find("\"top\":[[529969.63,177326.43,1.66],[529448.29,177496.69,4.08]]"),
            std::string::npos)
      << ags.out.substr(0, 400);

  EXPECT_EQ(xklink::JsonNumber(std::numeric_limits<double>::quiet_NaN()), "\"nan\"");
  EXPECT_EQ(xklink::JsonNumber(-std::numeric_limits<double>::infinity()), "\"-inf\"");
  EXPECT_EQ(xklink::JsonNumber(0.1 + 0.2), "0.30000000000000004");
  // Extremes are valid JSON and read back bit for bit.
  for (const double v : {-0.0, 5e-324, 2.2250738585072014e-308, 1.7976931348623157e308, 1e21}) {
    const std::string text = xklink::JsonNumber(v);
    EXPECT_TRUE(json::accept(text)) << text;
    const double back = std::strtod(text.c_str(), nullptr);
    EXPECT_EQ(std::memcmp(&back, &v, sizeof v), 0) << text;
  }
}

// The overview's shape under awkward names: the "Made, ground" base from 8 on the first hole to 7
// on BH2 (type 0, an open region), the base of the wedge "Cl\0ay" from 5 to its pinch-out at 7
// (type 2), and the base of X (3 to 4) with nothing below. Names are quoted as RFC 4180, a control
// character (the NUL a JSON "\u0000" makes) escaped. The JSON is compared with the library's
// lines, field by field, by the Python tests.
TEST(LinesCommandTest, CsvGivesEachLineWithNamesQuotedAndControlsEscaped) {
  TempDir dir;
  const std::string file = dir.Write("names.json", R"({"boreholes": [
  {"name": "BH \"1\", north", "x": 0, "y": 0, "top": 10,
   "strata": [{"code": "Made, ground", "top": 10, "bottom": 8},
              {"code": "Cl\u0000ay", "top": 8, "bottom": 5}, {"code": "X", "top": 5, "bottom": 3}]},
  {"name": "BH2", "x": 20, "y": 0, "top": 10,
   "strata": [{"code": "Made, ground", "top": 10, "bottom": 7}, {"code": "X", "top": 7, "bottom": 4}]}
]})");
  const RunResult csv = RunTool({"lines", file, "--format", "csv"});
  ASSERT_EQ(csv.exitCode, 0) << csv.Describe();
  EXPECT_EQ(csv.out, "from,to,x1,y1,z1,x2,y2,z2,type,up,down\n"
                     "\"BH \"\"1\"\", north\",BH2,0,0,8,20,0,7,0,\"Made, ground\",\"Cl\\u0000ay\"\n"
                     "\"BH \"\"1\"\", north\",BH2,0,0,5,20,0,7,2,\"Cl\\u0000ay\",X\n"
                     "\"BH \"\"1\"\", north\",BH2,0,0,3,20,0,4,0,X,\n");
  const json lines = json::parse(RunTool({"lines", file}).out);
  EXPECT_EQ(lines[0].at("from"), "BH \"1\", north");
  EXPECT_EQ(lines[0].at("lines")[0].at("down"), std::string("Cl\0ay", 5));
}

TEST(LinesCommandTest, NleHolesRunInSectionOrderWhateverTheJobs) {
  // The NLE holes lie along a WSW-ENE line; BH10 stands between BH08 and BH09 along it.
  const RunResult one = RunTool({"lines", kNle, "--jobs", "1"});
  ASSERT_EQ(one.exitCode, 0) << one.Describe();
  std::string pairs; // "A-B C-D ...", each pair with lines
  for (const json& pair : json::parse(one.out)) {
    pairs += pair["from"].get<std::string>() + "-" + pair["to"].get<std::string>() + " ";
    EXPECT_FALSE(pair["lines"].empty()) << pair["from"];
  }
  EXPECT_EQ(pairs, "BH01-BH02 BH02-BH03 BH03-BH04 BH04-BH05 BH05-BH06 BH06-BH07 BH07-BH08 "
                   "BH08-BH10 BH10-BH09 ");
  // Every output format is written from the same results: one comparison covers them.
  const RunResult four = RunTool({"lines", kNle, "--jobs", "4"});
  ASSERT_EQ(four.exitCode, 0) << four.Describe();
  EXPECT_EQ(four.out, one.out); // byte for byte
}

} // namespace
} // namespace xktool
