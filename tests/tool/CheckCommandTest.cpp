// xklink check: every problem of a file listed with its place, exit 0 only for a clean file.
#include "ToolRunner.h"

namespace xktool {
namespace {

TEST(CheckCommandTest, CleanFilePasses) {
  const RunResult run = RunTool({"check", kNle});
  EXPECT_EQ(run.exitCode, 0) << run.Describe();
  EXPECT_EQ(run.out, kNle + ": 0 error(s), 0 warning(s)\n");
  EXPECT_EQ(run.err, "");
}

TEST(CheckCommandTest, M621OverlapsAreNamedWithFileLineAndField) {
  const std::string m621 = (kRealData / "m621-widening" / "M621_Widening.ags").string();
  ASSERT_TRUE(fs::exists(m621)) << "real data missing: " << m621 << " (tests/data/real)";
  const RunResult run = RunTool({"check", m621});
  EXPECT_EQ(run.exitCode, 2) << run.Describe();
  // The two overlaps as logged, each reported at the lower row's GEOL_TOP (lines read off the
  // file): BH07 19.97-20.10 then 20.00-23.00 on line 936, BH11 2.80-5.90 then 5.00-8.90 on 1001.
  for (const std::string expected :
       {":936: field GEOL_TOP: overlaps the stratum on line 935 by 0.1:",
        ":1001: field GEOL_TOP: overlaps the stratum on line 1000 by 0.9:", ": 2 error(s)"}) {
    EXPECT_NE(run.out.find(m621 + expected), std::string::npos) << expected << "\n" << run.out;
  }
}

TEST(CheckCommandTest, WarningsAlonePassUnlessStrict) {
  TempDir dir;
  // A metre of nothing logged between A and B in BH1: a gap, which is a warning.
  const std::string file = dir.Write("gap.json", R"({"boreholes": [
  {"name": "BH1", "x": 0, "y": 0, "top": 100,
   "strata": [{"code": "A", "top": 100, "bottom": 95},
              {"code": "B", "top": 94, "bottom": 90}]},
  {"name": "BH2", "x": 50, "y": 0, "top": 100,
   "strata": [{"code": "A", "top": 100, "bottom": 90}]}
]})");
  const std::string report = file +
                             ":4: warning: field top: gap of 1 below the stratum on line 3: "
                             "nothing is logged between elevations 95 and 94\n" +
                             file + ": 0 error(s), 1 warning(s)\n";
  for (const auto& [strict, exitCode] : {std::pair{false, 0}, std::pair{true, 2}}) {
    const RunResult run = RunTool(strict ? std::vector<std::string>{"check", file, "--strict"}
                                         : std::vector<std::string>{"check", file});
    EXPECT_EQ(run.exitCode, exitCode) << run.Describe();
    EXPECT_EQ(run.out, report);
  }
}

TEST(CheckCommandTest, RepeatedProblemsAreCounted) {
  TempDir dir;
  // 400 holes without strata: three are listed, the rest counted.
  std::string text = R"({"boreholes": [)";
  for (int i = 0; i < 400; ++i) {
    text += (i == 0 ? "\n" : ",\n") + std::string(R"({"name": "H)") + std::to_string(i) +
            R"(", "x": )" + std::to_string(i) + R"(, "y": 0, "top": 1, "strata": []})";
  }
  const std::string file = dir.Write("empty.json", text + "\n]}");
  const RunResult run = RunTool({"check", file});
  EXPECT_EQ(run.exitCode, 2) << run.Describe();
  EXPECT_EQ(run.out, file + ":2: field name: hole 'H0' has no strata\n" + file +
                         ":3: field name: hole 'H1' has no strata\n" + file +
                         ":4: field name: hole 'H2' has no strata\n" + file +
                         ": and 397 more like this: field name: hole 'H0' has no strata\n" + file +
                         ": 400 error(s), 0 warning(s)\n");
}

} // namespace
} // namespace xktool
