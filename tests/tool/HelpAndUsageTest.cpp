// The command line itself: help with examples for every command, and exit status 2 for anything
// the tool does not know or cannot read.
#include "ToolRunner.h"

namespace xktool {
namespace {

TEST(HelpAndUsageTest, EveryCommandHasHelpWithAnExample) {
  const RunResult top = RunTool({"--help"});
  EXPECT_EQ(top.exitCode, 0) << top.Describe();
  for (const std::string command : {"regions", "lines", "section", "check"}) {
    EXPECT_NE(top.out.find(command), std::string::npos) << command;
    const RunResult run = RunTool({command, "--help"});
    EXPECT_EQ(run.exitCode, 0) << run.Describe();
    EXPECT_EQ(run.err, "");
    for (const std::string& part :
         std::vector<std::string>{"Usage:", "Examples:", "\n  xklink " + command + " "}) {
      EXPECT_NE(run.out.find(part), std::string::npos) << command << ": no " << part;
    }
  }
}

TEST(HelpAndUsageTest, UnknownCommandsOptionsAndValuesExitWithTwo) {
  TempDir dir;
  const std::vector<std::vector<std::string>> misuses = {
      {},
      {"frobnicate", kOverview},
      {"lines", kOverview, "--bogus"},
      {"regions", kOverview, "--holes"},
      {"check"},
      {"lines", kOverview, "--format", "xml"},
      {"lines", kOverview, "--jobs", "many"},
      {"check", kOverview, "--depths", "sideways"},
      {"section", kOverview, "-o", (dir / "x.svg").string(), "--exaggeration", "-2"},
      // Beyond what the drawing can hold, or no number: refused, not quietly drawn as another.
      {"section", kOverview, "-o", (dir / "x.svg").string(), "--exaggeration", "1e20"},
      {"section", kOverview, "-o", (dir / "x.svg").string(), "--exaggeration", "0.001"},
      {"section", kOverview, "-o", (dir / "x.svg").string(), "--exaggeration", "nan"},
      // A drawing is named by its format, and there is none on standard output.
      {"section", kOverview, "-o", (dir / "section.eps").string()},
      {"section", kOverview, "-o", (dir / "svg").string()},
      {"section", kOverview},
      {"check", (dir / "missing.ags").string()}};
  for (const auto& args : misuses) {
    const RunResult run = RunTool(args);
    SCOPED_TRACE(::testing::PrintToString(args));
    ExpectRefused(run, {});
    EXPECT_FALSE(run.err.empty());
  }
  EXPECT_TRUE(dir.Entries().empty());
}

} // namespace
} // namespace xktool
