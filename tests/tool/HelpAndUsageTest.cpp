// The command line itself: help with examples for every command, and exit status 2 for anything
// the tool does not know.
#include "ToolRunner.h"

namespace xktool {
namespace {

const std::string kOverview = (kExamples / "overview.json").string();

TEST(HelpAndUsageTest, EveryCommandHasHelpWithAnExample) {
  for (const std::string command : {"regions", "lines", "section", "check"}) {
    SCOPED_TRACE(command);
    const RunResult run = RunTool({command, "--help"});
    EXPECT_EQ(run.exitCode, 0) << run.Describe();
    EXPECT_EQ(run.err, "");
    EXPECT_NE(run.out.find("Usage:"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("Examples:"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\n  xklink " + command + " "), std::string::npos) << run.out;
  }
  const RunResult top = RunTool({"--help"});
  EXPECT_EQ(top.exitCode, 0) << top.Describe();
  for (const char* command : {"regions", "lines", "section", "check"}) {
    EXPECT_NE(top.out.find(command), std::string::npos) << command;
  }
}

TEST(HelpAndUsageTest, UnknownCommandsOptionsAndValuesExitWithTwo) {
  const std::vector<std::vector<std::string>> misuses = {
      {},
      {"frobnicate", kOverview},
      {"lines", kOverview, "--bogus"},
      {"regions", kOverview, "--holes"},
      {"check"},
      {"lines", kOverview, "--format", "xml"},
      {"lines", kOverview, "--jobs", "many"},
      {"check", kOverview, "--depths", "sideways"},
      {"section", kOverview, "-o", "x.svg", "--exaggeration", "-2"}};
  for (const auto& args : misuses) {
    std::string shown;
    for (const auto& a : args) {
      shown += a + " ";
    }
    const RunResult run = RunTool(args);
    EXPECT_EQ(run.exitCode, 2) << shown << "\n" << run.Describe();
    EXPECT_FALSE(run.err.empty()) << shown;
    EXPECT_EQ(run.out, "") << shown;
  }
  EXPECT_FALSE(fs::exists("x.svg"));
}

} // namespace
} // namespace xktool
