// xklink lines: the section lines of consecutive holes as JSON, CSV and GeoJSON.
#include "ToolRunner.h"

#include <nlohmann/json.hpp>

namespace xktool {
namespace {

using nlohmann::json;

const std::string kOverview = (kExamples / "overview.json").string();
const std::string kNle = (kExamples / "nle-battersea" / "21-7-10-NLE.ags").string();

json P(double x, double y, double z) {
  return json::array({x, y, z});
}

json Line(const json& p1, const json& p2, int type, const std::string& up,
          const std::string& down) {
  return {{"p1", p1}, {"p2", p2}, {"type", type}, {"up", up}, {"down", down}};
}

// Overview (see RegionsCommandTest): the A/B boundary from 95 at BH1 to the pinch-out of B at 97 on
// BH2, the B/C boundary from 90 to the same point, and the base of C (80 to 85) with nothing below.
// The first is the base of A (an open region, type 0), the second the base of the wedge B (type 2).
const json kOverviewLines = json::array({Line(P(0, 0, 95), P(50, 0, 97), 0, "A", "B"),
                                         Line(P(0, 0, 90), P(50, 0, 97), 2, "B", "C"),
                                         Line(P(0, 0, 80), P(50, 0, 85), 0, "C", "")});

TEST(LinesCommandTest, OverviewGivesThreeLinesAsJson) {
  const RunResult run = RunTool({"lines", kOverview});
  ASSERT_EQ(run.exitCode, 0) << run.Describe();
  const json pairs = json::parse(run.out);
  ASSERT_EQ(pairs.size(), 1u);
  EXPECT_EQ(pairs[0].at("from"), "BH1");
  EXPECT_EQ(pairs[0].at("to"), "BH2");
  EXPECT_EQ(pairs[0].at("lines"), kOverviewLines);
  EXPECT_EQ(pairs[0].size(), 3u); // from, to, lines and nothing else
}

TEST(LinesCommandTest, OverviewAsCsvHasAHeaderAndOneRowPerLine) {
  const RunResult run = RunTool({"lines", kOverview, "--format", "csv"});
  ASSERT_EQ(run.exitCode, 0) << run.Describe();
  EXPECT_EQ(run.out, "from,to,x1,y1,z1,x2,y2,z2,type,up,down\n"
                     "BH1,BH2,0,0,95,50,0,97,0,A,B\n"
                     "BH1,BH2,0,0,90,50,0,97,2,B,C\n"
                     "BH1,BH2,0,0,80,50,0,85,0,C,\n");
}

TEST(LinesCommandTest, CsvQuotesNamesWithCommasAndQuotes) {
  TempDir dir;
  // Two strata common to both holes, so that the boundary between them names both.
  const std::string file = dir.Write("names.json", R"({"boreholes": [
  {"name": "BH \"1\", north", "x": 0, "y": 0, "top": 10,
   "strata": [{"code": "Made, ground", "top": 10, "bottom": 8},
              {"code": "Clay", "top": 8, "bottom": 5}]},
  {"name": "BH2", "x": 20, "y": 0, "top": 10,
   "strata": [{"code": "Made, ground", "top": 10, "bottom": 7},
              {"code": "Clay", "top": 7, "bottom": 4}]}
]})");
  const RunResult csv = RunTool({"lines", file, "--format", "csv"});
  ASSERT_EQ(csv.exitCode, 0) << csv.Describe();
  EXPECT_EQ(csv.out, "from,to,x1,y1,z1,x2,y2,z2,type,up,down\n"
                     "\"BH \"\"1\"\", north\",BH2,0,0,8,20,0,7,0,\"Made, ground\",Clay\n"
                     "\"BH \"\"1\"\", north\",BH2,0,0,5,20,0,4,0,Clay,\n");
  const RunResult js = RunTool({"lines", file});
  ASSERT_EQ(js.exitCode, 0) << js.Describe();
  EXPECT_EQ(json::parse(js.out)[0].at("from"), "BH \"1\", north");
}

// The features of a GeoJSON text, checked for shape; returns them in order.
std::vector<json> GeoJsonFeatures(const std::string& text) {
  const json doc = json::parse(text);
  EXPECT_EQ(doc.at("type"), "FeatureCollection");
  std::vector<json> features;
  for (const json& f : doc.at("features")) {
    EXPECT_EQ(f.at("type"), "Feature");
    EXPECT_EQ(f.at("geometry").at("type"), "LineString");
    const json& coordinates = f.at("geometry").at("coordinates");
    EXPECT_EQ(coordinates.size(), 2u);
    for (const json& c : coordinates) {
      EXPECT_EQ(c.size(), 3u); // 3-D: elevation kept
    }
    for (const char* key : {"from", "to", "type", "up", "down"}) {
      EXPECT_TRUE(f.at("properties").contains(key)) << key;
    }
    features.push_back(f);
  }
  return features;
}

TEST(LinesCommandTest, GeoJsonCarriesTheSameLinesAsJson) {
  for (const std::string& file : {kOverview, kNle}) {
    SCOPED_TRACE(file);
    const RunResult js = RunTool({"lines", file});
    const RunResult geo = RunTool({"lines", file, "--format", "geojson"});
    ASSERT_EQ(js.exitCode, 0) << js.Describe();
    ASSERT_EQ(geo.exitCode, 0) << geo.Describe();
    const std::vector<json> features = GeoJsonFeatures(geo.out);
    std::size_t k = 0;
    for (const json& pair : json::parse(js.out)) {
      for (const json& line : pair.at("lines")) {
        ASSERT_LT(k, features.size());
        const json& f = features[k++];
        EXPECT_EQ(f["geometry"]["coordinates"], json::array({line["p1"], line["p2"]}));
        EXPECT_EQ(f["properties"]["from"], pair["from"]);
        EXPECT_EQ(f["properties"]["to"], pair["to"]);
        EXPECT_EQ(f["properties"]["type"], line["type"]);
        EXPECT_EQ(f["properties"]["up"], line["up"]);
        EXPECT_EQ(f["properties"]["down"], line["down"]);
      }
    }
    EXPECT_EQ(k, features.size());
    EXPECT_GE(k, 3u);
  }
}

// Three holes, each A over B, listed out of order in the file: P at x 0, Q at x 40, R at x 100.
// Between any two the lines are the A/B boundary and the base of B, from the first hole's side.
const char* kThreeHoles = R"({"boreholes": [
  {"name": "R", "x": 100, "y": -2, "top": 11,
   "strata": [{"code": "A", "top": 11, "bottom": 5}, {"code": "B", "top": 5, "bottom": -1}]},
  {"name": "P", "x": 0, "y": 0, "top": 10,
   "strata": [{"code": "A", "top": 10, "bottom": 6}, {"code": "B", "top": 6, "bottom": 0}]},
  {"name": "Q", "x": 40, "y": 3, "top": 12,
   "strata": [{"code": "A", "top": 12, "bottom": 7}, {"code": "B", "top": 7, "bottom": 2}]}
]})";

TEST(LinesCommandTest, OnePairPerConsecutiveHoleInTheGivenOrder) {
  TempDir dir;
  const std::string file = dir.Write("three.json", kThreeHoles);

  const RunResult given = RunTool({"lines", file, "--holes", "R,Q,P"});
  ASSERT_EQ(given.exitCode, 0) << given.Describe();
  const json pairs = json::parse(given.out);
  ASSERT_EQ(pairs.size(), 2u);
  EXPECT_EQ(pairs[0]["from"], "R");
  EXPECT_EQ(pairs[0]["to"], "Q");
  EXPECT_EQ(pairs[0]["lines"], json::array({Line(P(100, -2, 5), P(40, 3, 7), 0, "A", "B"),
                                            Line(P(100, -2, -1), P(40, 3, 2), 0, "B", "")}));
  EXPECT_EQ(pairs[1]["from"], "Q");
  EXPECT_EQ(pairs[1]["to"], "P");
  EXPECT_EQ(pairs[1]["lines"], json::array({Line(P(40, 3, 7), P(0, 0, 6), 0, "A", "B"),
                                            Line(P(40, 3, 2), P(0, 0, 0), 0, "B", "")}));

  // Without --holes: every hole, west to east along the line the holes follow.
  const RunResult all = RunTool({"lines", file, "--format", "csv"});
  ASSERT_EQ(all.exitCode, 0) << all.Describe();
  EXPECT_EQ(all.out, "from,to,x1,y1,z1,x2,y2,z2,type,up,down\n"
                     "P,Q,0,0,6,40,3,7,0,A,B\n"
                     "P,Q,0,0,0,40,3,2,0,B,\n"
                     "Q,R,40,3,7,100,-2,5,0,A,B\n"
                     "Q,R,40,3,2,100,-2,-1,0,B,\n");
}

TEST(LinesCommandTest, NleHolesRunInSectionOrderWhateverTheJobs) {
  // The NLE holes lie along a WSW-ENE line; BH10 stands between BH08 and BH09 along it.
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"BH01", "BH02"}, {"BH02", "BH03"}, {"BH03", "BH04"}, {"BH04", "BH05"}, {"BH05", "BH06"},
      {"BH06", "BH07"}, {"BH07", "BH08"}, {"BH08", "BH10"}, {"BH10", "BH09"}};
  const RunResult one = RunTool({"lines", kNle, "--jobs", "1"});
  ASSERT_EQ(one.exitCode, 0) << one.Describe();
  const json pairs = json::parse(one.out);
  ASSERT_EQ(pairs.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(pairs[i]["from"], expected[i].first);
    EXPECT_EQ(pairs[i]["to"], expected[i].second);
    EXPECT_FALSE(pairs[i]["lines"].empty()) << i;
  }
  // Every output format is written from the same results: one comparison covers them.
  const RunResult four = RunTool({"lines", kNle, "--jobs", "4"});
  ASSERT_EQ(four.exitCode, 0) << four.Describe();
  EXPECT_EQ(four.out, one.out); // byte for byte
}

} // namespace
} // namespace xktool
