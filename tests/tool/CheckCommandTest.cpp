// xklink check: every problem of a file listed, exit 0 only for a clean file.
#include "ToolRunner.h"

#include <sstream>

namespace xktool {
namespace {

const std::string kNle = (kExamples / "nle-battersea" / "21-7-10-NLE.ags").string();
const std::string kM621 = (kRealData / "m621-widening" / "M621_Widening.ags").string();

// The 1-based number of the first line of `file` that starts with `prefix` after the line `after`
// (other groups repeat the same key columns); 0 when there is none.
std::size_t LineStartingWith(const std::string& file, const std::string& after,
                             const std::string& prefix) {
  std::istringstream in(ReadFile(file));
  std::string line;
  bool started = false;
  for (std::size_t number = 1; std::getline(in, line); ++number) {
    started = started || line == after;
    if (started && line.rfind(prefix, 0) == 0) {
      return number;
    }
  }
  return 0;
}

TEST(CheckCommandTest, CleanAgs3FilePasses) {
  const RunResult run = RunTool({"check", kNle});
  EXPECT_EQ(run.exitCode, 0) << run.Describe();
  EXPECT_EQ(run.out, kNle + ": 0 error(s), 0 warning(s)\n");
  EXPECT_EQ(run.err, "");
}

TEST(CheckCommandTest, M621OverlapsAreNamedWithFileLineAndField) {
  ASSERT_TRUE(fs::exists(kM621)) << "real data missing: " << kM621 << " (shared/data/real)";
  const RunResult run = RunTool({"check", kM621});
  EXPECT_EQ(run.exitCode, 2) << run.Describe();
  // The two overlaps as logged: BH07 19.97-20.10 then 20.00-23.00, BH11 2.80-5.90 then 5.00-8.90.
  // Each is reported at the lower row's GEOL_TOP.
  const std::size_t bh07 =
      LineStartingWith(kM621, R"("GROUP","GEOL")", R"("DATA","BH07","20.00","23.00")");
  const std::size_t bh11 =
      LineStartingWith(kM621, R"("GROUP","GEOL")", R"("DATA","BH11","5.00","8.90")");
  ASSERT_GT(bh07, 0u);
  ASSERT_GT(bh11, 0u);
  for (const std::size_t line : {bh07, bh11}) {
    EXPECT_NE(run.out.find(kM621 + ":" + std::to_string(line) + ": field GEOL_TOP: overlaps"),
              std::string::npos)
        << "line " << line << "\n"
        << run.out;
  }
  // BH07 overlaps by 20.10 - 20.00 m, BH11 by 5.90 - 5.00 m.
  EXPECT_NE(run.out.find("by 0.1:"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("by 0.9:"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find(kM621 + ": 2 error(s)"), std::string::npos) << run.out;
}

TEST(CheckCommandTest, WarningsAloneAlsoFailTheCheck) {
  TempDir dir;
  // A metre of nothing logged between A and B in BH1: a gap, which is a warning.
  const std::string file = dir.Write("gap.json", R"({"boreholes": [
  {"name": "BH1", "x": 0, "y": 0, "top": 100,
   "strata": [{"code": "A", "top": 100, "bottom": 95},
              {"code": "B", "top": 94, "bottom": 90}]},
  {"name": "BH2", "x": 50, "y": 0, "top": 100,
   "strata": [{"code": "A", "top": 100, "bottom": 90}]}
]})");
  const RunResult run = RunTool({"check", file});
  EXPECT_EQ(run.exitCode, 2) << run.Describe();
  EXPECT_NE(run.out.find(file + ":4: warning: field top: gap of 1 below the stratum on line 3"),
            std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find(file + ": 0 error(s), 1 warning(s)"), std::string::npos) << run.out;
  // The same file still gives a section: warnings go to standard error.
  const RunResult lines = RunTool({"lines", file});
  EXPECT_EQ(lines.exitCode, 0) << lines.Describe();
  EXPECT_NE(lines.err.find("warning: field top: gap"), std::string::npos) << lines.err;
}

TEST(CheckCommandTest, UnreadableFilesAreNamed) {
  TempDir dir;
  const std::string missing = (dir / "missing.ags").string();
  const RunResult none = RunTool({"check", missing});
  EXPECT_EQ(none.exitCode, 2) << none.Describe();
  EXPECT_NE(none.err.find(missing), std::string::npos) << none.err;
  EXPECT_NE(none.err.find("does not exist"), std::string::npos) << none.err;

  // A JSON syntax error (the missing comma after line 2) is placed on its line.
  const std::string broken = dir.Write("broken.json", "{\"boreholes\": [\n"
                                                      "  {\"name\": \"BH1\"\n"
                                                      "   \"x\": 0}\n"
                                                      "]}\n");
  const RunResult syntax = RunTool({"check", broken});
  EXPECT_EQ(syntax.exitCode, 2) << syntax.Describe();
  EXPECT_NE(syntax.err.find(broken + ":3:"), std::string::npos) << syntax.err;
}

} // namespace
} // namespace xktool
