// Which problems stop which sections. A section of every hole leaves a bad hole out with one
// warning; a hole the user names must be sound; --strict refuses on any problem. A refusal exits
// with status 2, names the file, the line and the field, and writes no output file. xklink check
// lists every problem. The rules and their exact messages are tested in
// tests/io/ValidationTest.cpp; here, that the options reach them, and what the real files give.
#include "ToolRunner.h"

#include <tuple>

namespace xktool {
namespace {

struct Case {
  std::vector<std::string> args;  // after `COMMAND FILE -o OUT`
  std::vector<std::string> found; // in standard error
  bool refused = false;
  std::vector<std::string> absent = {}; // not in standard error
};

// Runs `command FILE -o OUT args...` for each case; a refusal must leave no OUT.
void Expect(const std::string& command, const std::string& file, const std::vector<Case>& cases) {
  TempDir dir;
  const fs::path out = dir / (command == "section" ? "out.svg" : "out.json");
  for (const Case& c : cases) {
    SCOPED_TRACE(command + " " + ::testing::PrintToString(c.args));
    std::vector<std::string> args{command, file, "-o", out.string()};
    args.insert(args.end(), c.args.begin(), c.args.end());
    ExpectExit(RunTool(args), c.refused ? 2 : 0, c.found, c.absent);
    EXPECT_EQ(fs::exists(out), !c.refused);
    fs::remove(out);
  }
}

TEST(ValidationErrorsTest, ABadHoleIsLeftOutUnlessNamedOrStrict) {
  TempDir dir;
  const std::string file = dir.Write("bad.json", R"({"boreholes": [
{"name": "BH1", "x": 0, "y": 0, "top": 100, "strata": [{"code": "S", "top": 100, "bottom": 90}]},
{"name": "BH2", "x": 50, "y": 0, "top": 100, "strata": [{"code": "S", "top": 100, "bottom": 90}]},
{"name": "BH3", "x": 80, "y": 0, "top": 100, "strata": []}
]})");
  const std::string leftOut = file + ":4: warning: field name: hole 'BH3' left out: has no strata";
  const std::string error = file + ":4: field name: hole 'BH3' has no strata";
  Expect("lines", file,
         {
             {{}, {leftOut, "1 of 3 holes left out of the section: BH3"}},
             {{"--exclude", "BH3"}, {}, false, {"BH3"}},
             {{"--holes", "BH3,BH1"}, {error}, true},
             {{"--strict"}, {error}, true},
             {{"--exclude", "BH9"}, {"no hole 'BH9' in " + file}, true},
             {{"--exclude", "BH3", "--holes", "BH1,BH2"}, {"every hole"}, true},
         });
}

TEST(ValidationErrorsTest, NoHoleWithAGroundLevelGivesASectionInDepth) {
  // Shottlegate: no hole has a ground level; the section is drawn in depth below ground.
  TempDir dir;
  const std::string shottlegate = (kRealData / "shottlegate" / "Shottlegate_Project.ags").string();
  const RunResult run = RunTool({"section", shottlegate, "-o", (dir / "s.svg").string()});
  EXPECT_EQ(run.exitCode, 0) << run.Describe();
  EXPECT_NE(run.err.find("warning: field LOCA_GL: no hole has a ground level: the section is "
                         "drawn in depth below ground"),
            std::string::npos)
      << run.err;
  const std::string svg = ReadFile(dir / "s.svg");
  EXPECT_NE(svg.find("Depth (m below ground)"), std::string::npos);
  EXPECT_EQ(svg.find("Elevation"), std::string::npos);
}

TEST(ValidationErrorsTest, M621GivesItsSectionWithoutItsBadHoles) {
  // Overlaps in BH07 (line 936) and BH11 (1001); DS04, DS04A, DS04B and DS04C drilled at one
  // position, DS04C the deepest.
  Expect("section", kM621,
         {{{},
           {kM621 + ":936: warning: field GEOL_TOP: hole 'BH07' left out: overlaps the stratum on "
                    "line 935 by 0.1",
            kM621 + ":1001: warning: field GEOL_TOP: hole 'BH11' left out: overlaps",
            "hole 'DS04' left out: stands at the same plan position as 'DS04C'",
            "holes left out of the section: BH07, BH11, DS04, DS04A, DS04B"}}});
}

// xklink check: every problem of a file listed with its place, exit 0 only for a clean file.
TEST(CheckCommandTest, CleanFilesAndWarningsAlonePassUnlessStrict) {
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
  const std::tuple<std::vector<std::string>, int, std::string> runs[] = {
      {{"check", kNle}, 0, kNle + ": 0 error(s), 0 warning(s)\n"},
      {{"check", file}, 0, report},
      {{"check", file, "--strict"}, 2, report}};
  for (const auto& [args, exitCode, out] : runs) {
    const RunResult run = RunTool(args);
    EXPECT_EQ(run.exitCode, exitCode) << run.Describe();
    EXPECT_EQ(run.out, out);
    EXPECT_EQ(run.err, "");
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
