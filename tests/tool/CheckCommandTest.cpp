// xklink check: every problem of a file listed with its place, exit 0 only for a clean file. The
// overlaps of the M621 file, named at their lines, are in ValidationErrorsTest.
#include "ToolRunner.h"

namespace xktool {
namespace {

TEST(CheckCommandTest, CleanFilePasses) {
  const RunResult run = RunTool({"check", kNle});
  EXPECT_EQ(run.exitCode, 0) << run.Describe();
  EXPECT_EQ(run.out, kNle + ": 0 error(s), 0 warning(s)\n");
  EXPECT_EQ(run.err, "");
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
