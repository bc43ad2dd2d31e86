// Water and SPT of the logs in the laid-out section, at their depths and at the elevations their
// holes' ground levels give, written beside the logs on the sheet and on their own DXF layers.
#include "ToolRunner.h"

#include <nlohmann/json.hpp>

namespace xktool {
namespace {

// Two holes monitored after boring (no real file of ours has WDEP readings).
const std::string kMonitored = R"("GROUP","LOCA"
"HEADING","LOCA_ID","LOCA_NATE","LOCA_NATN","LOCA_GL"
"DATA","BH1","1000","2000","10.00"
"DATA","BH2","1050","2000","11.00"
"GROUP","GEOL"
"HEADING","LOCA_ID","GEOL_TOP","GEOL_BASE","GEOL_LEG"
"DATA","BH1","0.00","12.00","CLAY"
"DATA","BH2","0.00","12.00","CLAY"
"GROUP","MOND"
"HEADING","LOCA_ID","MOND_DTIM","MOND_TYPE","MOND_RDNG"
"DATA","BH1","2000-03-01T10:15","WDEP","2.85"
"DATA","BH1","2000-04-01T00:00","WDEP","3.60"
"DATA","BH2","2000-05-02T00:00","WDEP","3.10"
)";

struct Record {
  std::string hole;
  std::string array; // of the hole in section.json: "water" or "spt"
  double depth;
  double elevation; // the file's ground level (LOCA_GL, HOLE_GL) less the depth
  std::string field;
  nlohmann::json value;
  std::string sheet; // a text beside the log on the sheet
};

TEST(InSituSectionTest, WaterAndSptOfTheLogsAtTheirDepthsOnEveryOutput) {
  TempDir dir;
  const std::string city = (kRealData / "dlr-city-airport/DLR_City_Airport_Extension.ags").string();
  const std::vector<std::tuple<std::string, std::string, std::vector<Record>>> files = {
      // AGS4 WSTG/WSTD: the last reading, 20 minutes after the strike, is the level risen to.
      {city,
       "BH105,BH107",
       {{"BH105", "water", 9.40, 5.59 - 9.40, "rose_to", 6.2, "2000-02-16"},
        {"BH107", "water", 9.60, 3.82 - 9.60, "rose_to", 4.2, "20 min"},
        {"BH105", "spt", 1.20, 5.59 - 1.20, "result", "N=11", "N=11"},
        {"BH107", "spt", 23.50, 3.82 - 23.50, "result", "50/95", "50/95"}}},
      // AGS 3.1 **WSTK and **ISPT.
      {(kRealData / "nle-battersea/21-7-10-NLE.ags").string(),
       "BH01,BH02",
       {{"BH01", "water", 4.50, 4.08 - 4.50, "rose_to", 3.11, "20 min"},
        {"BH01", "spt", 2.00, 4.08 - 2.00, "result", "N=17", "N=17"},
        // A refusal written in ISPT_NVAL as blows over the penetration in metres: the blows of the
        // main drive over their penetration.
        {"BH01", "spt", 28.00, 4.08 - 28.00, "result", "50 for 275 mm", "50 for 275 mm"}}},
      // The highest and the lowest level monitored, one level as one.
      {dir.Write("monitored.ags", kMonitored),
       "BH1,BH2",
       {{"BH1", "water", 2.85, 10.0 - 2.85, "kind", "standing", "2000-03-01 10:15"},
        {"BH1", "water", 3.60, 10.0 - 3.60, "time", "2000-04-01T00:00", "2000-04-01"},
        {"BH2", "water", 3.10, 11.0 - 3.10, "kind", "standing", "2000-05-02"}}}};
  for (const auto& [file, holes, records] : files) {
    SCOPED_TRACE(file);
    std::map<std::string, std::string> written;
    for (const std::string extension : {"svg", "dxf", "json"}) {
      const fs::path out = dir / ("section." + extension);
      const RunResult run = RunTool({"section", file, "--holes", holes, "-o", out.string()});
      ASSERT_EQ(run.exitCode, 0) << run.Describe();
      written[extension] = ReadFile(out);
    }
    const nlohmann::json section = nlohmann::json::parse(written["json"]);
    std::map<std::string, nlohmann::json> byName;
    for (const auto& hole : section["holes"]) {
      byName[hole["name"].get<std::string>()] = hole;
    }
    for (const Record& r : records) {
      SCOPED_TRACE(r.hole + " " + r.array + " " + r.sheet);
      EXPECT_NE(written["svg"].find(">" + r.sheet + "<"), std::string::npos);
      EXPECT_NE(
          written["dxf"].find("  8\n" + std::string(r.array == "spt" ? "SPT" : "WATER") + "\n"),
          std::string::npos); // an entity on the layer
      const nlohmann::json& list = byName[r.hole][r.array];
      const auto found = std::find_if(list.begin(), list.end(), [&](const auto& e) {
        return std::abs(e["depth"].template get<double>() - r.depth) < 1e-9;
      });
      ASSERT_NE(found, list.end());
      EXPECT_NEAR((*found)["elevation"].template get<double>(), r.elevation, 1e-9);
      EXPECT_EQ((*found)[r.field], r.value);
    }
  }
}

} // namespace
} // namespace xktool
