// xklink lines: the section lines of consecutive holes as JSON, CSV and GeoJSON.
#include "ToolRunner.h"

#include <nlohmann/json.hpp>

namespace xktool {
namespace {

using nlohmann::json;

const std::string kCsvHeader = "from,to,x1,y1,z1,x2,y2,z2,type,up,down\n";

// Overview: the A/B boundary from 95 at BH1 to the pinch-out of B at 97 on BH2, the B/C boundary
// from 90 to the same point, and the base of C (80 to 85) with nothing below. The first is the
// base of A (an open region, type 0), the second the base of the wedge B (type 2). The JSON is
// compared with the library's lines, field by field, by the Python tests.
TEST(LinesCommandTest, OverviewGivesThreeLines) {
  const RunResult csv = RunTool({"lines", kOverview, "--format", "csv"});
  ASSERT_EQ(csv.exitCode, 0) << csv.Describe();
  EXPECT_EQ(csv.out, kCsvHeader + "BH1,BH2,0,0,95,50,0,97,0,A,B\n"
                                  "BH1,BH2,0,0,90,50,0,97,2,B,C\n"
                                  "BH1,BH2,0,0,80,50,0,85,0,C,\n");
}

// Quoting as RFC 4180; a control character, such as the NUL a JSON "\u0000" makes, is escaped.
TEST(LinesCommandTest, CsvQuotesNamesWithCommasAndQuotesAndEscapesControls) {
  TempDir dir;
  // Two strata common to both holes, so that the boundary between them names both.
  const std::string file = dir.Write("names.json", R"({"boreholes": [
  {"name": "BH \"1\", north", "x": 0, "y": 0, "top": 10,
   "strata": [{"code": "Made, ground", "top": 10, "bottom": 8},
              {"code": "Cl\u0000ay", "top": 8, "bottom": 5}]},
  {"name": "BH2", "x": 20, "y": 0, "top": 10,
   "strata": [{"code": "Made, ground", "top": 10, "bottom": 7},
              {"code": "Cl\u0000ay", "top": 7, "bottom": 4}]}
]})");
  const RunResult csv = RunTool({"lines", file, "--format", "csv"});
  ASSERT_EQ(csv.exitCode, 0) << csv.Describe();
  EXPECT_EQ(csv.out, kCsvHeader + "\"BH \"\"1\"\", north\",BH2,0,0,8,20,0,7,0,\"Made, "
                                  "ground\",\"Cl\\u0000ay\"\n"
                                  "\"BH \"\"1\"\", north\",BH2,0,0,5,20,0,4,0,\"Cl\\u0000ay\",\n");
  const json lines = json::parse(RunTool({"lines", file}).out);
  EXPECT_EQ(lines[0].at("from"), "BH \"1\", north");
  EXPECT_EQ(lines[0].at("lines")[0].at("down"), std::string("Cl\0ay", 5));
}

// The pairs of `xklink lines ARGS` as "A-B C-D ...", each of which must have lines.
std::string Pairs(const std::string& out) {
  std::string order;
  for (const json& pair : json::parse(out)) {
    order += pair["from"].get<std::string>() + "-" + pair["to"].get<std::string>() + " ";
    EXPECT_FALSE(pair["lines"].empty()) << pair["from"];
  }
  return order;
}

TEST(LinesCommandTest, NleHolesRunInSectionOrderOrAsGivenWhateverTheJobs) {
  // The NLE holes lie along a WSW-ENE line; BH10 stands between BH08 and BH09 along it.
  const RunResult one = RunTool({"lines", kNle, "--jobs", "1"});
  ASSERT_EQ(one.exitCode, 0) << one.Describe();
  EXPECT_EQ(Pairs(one.out), "BH01-BH02 BH02-BH03 BH03-BH04 BH04-BH05 BH05-BH06 BH06-BH07 "
                            "BH07-BH08 BH08-BH10 BH10-BH09 ");
  // Holes named are taken in the order given, along the section or not.
  EXPECT_EQ(Pairs(RunTool({"lines", kNle, "--holes", "BH03,BH01,BH02"}).out),
            "BH03-BH01 BH01-BH02 ");
  // Every output format is written from the same results: one comparison covers them.
  const RunResult four = RunTool({"lines", kNle, "--jobs", "4"});
  ASSERT_EQ(four.exitCode, 0) << four.Describe();
  EXPECT_EQ(four.out, one.out); // byte for byte
}

} // namespace
} // namespace xktool
