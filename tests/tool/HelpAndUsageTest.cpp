// The command line itself: help with examples for every command, and exit status 2, with a message
// naming what is wrong and no file written, for anything the tool does not know, cannot read or
// cannot do. Refusals of the input's content are in ValidationErrorsTest and OutputSafetyTest.
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

TEST(HelpAndUsageTest, MisusesAreRefusedNamingWhatIsWrong) {
  TempDir dir;
  const std::string svg = (dir / "x.svg").string();
  const std::string pdf = (dir / "x.pdf").string();
  const std::string badLine = dir.Write("line.csv", "e,n\n1,2\n3,x\n");
  const std::vector<std::pair<std::vector<std::string>, std::vector<std::string>>> misuses = {
      {{"frobnicate", kOverview}, {"subcommand is required"}},
      {{"lines", kOverview, "--bogus"}, {"not expected: --bogus"}},
      {{"regions", kOverview, "--holes"}, {"--holes"}},
      {{"check"}, {"FILE is required"}},
      {{"lines", kOverview, "--format", "xml"}, {"--format: xml"}},
      {{"lines", kOverview, "--jobs", "many"}, {"--jobs = many"}},
      {{"check", kOverview, "--depths", "sideways"}, {"--depths: sideways"}},
      {{"check", (dir / "missing.ags").string()}, {"missing.ags: cannot read the file"}},
      {{"regions", kNle, "--holes", "BH01,BH02,BH03"}, {"--holes", "exactly two holes"}},
      // Beyond what the drawing can hold, or no number: refused, not quietly drawn as another.
      {{"section", kOverview, "-o", svg, "--exaggeration", "-2"}, {"--exaggeration", "not -2"}},
      {{"section", kOverview, "-o", svg, "--exaggeration", "1e20"}, {"not 1e20"}},
      {{"section", kOverview, "-o", svg, "--exaggeration", "0.001"}, {"not 0.001"}},
      {{"section", kOverview, "-o", svg, "--exaggeration", "nan"}, {"not nan"}},
      // A drawing is named by its format, and there is none on standard output.
      {{"section", kOverview, "-o", (dir / "section.eps").string()}, {"section.eps"}},
      {{"section", kOverview, "-o", (dir / "svg").string()}, {"must be named .svg"}},
      {{"section", kOverview}, {"--output is required"}},
      // A section line's fault is named with its line and field; a buffer needs a line.
      {{"section", kOverview, "--line-file", badLine, "-o", svg}, {"line.csv:3", "field n"}},
      {{"section", kOverview, "--buffer", "10", "-o", svg}, {"--buffer", "--line"}},
      // Sheets: scales that need paper, disagree, cannot hold the section or are no scale.
      {{"section", kNle, "-o", pdf, "--scale", "1:1000"}, {"--scale", "--sheet A4, A3 or A1"}},
      {{"section", kNle, "-o", pdf, "--sheet", "A3", "--scale", "1:1000", "--vscale", "1:100",
        "--exaggeration", "5"},
       {"disagree", "exaggeration of 10"}},
      {{"section", kNle, "-o", pdf, "--sheet", "A3", "--scale", "1:500", "--vscale", "1:10"},
       {"too high", "A3"}},
      {{"section", kNle, "-o", pdf, "--sheet", "A3", "--scale", "2:100"}, {"1:N"}},
      {{"section", kNle, "-o", pdf, "--sheet", "A3", "--dpi", "100"}, {"--dpi", "PNG"}},
  };
  for (const auto& [args, fragments] : misuses) {
    SCOPED_TRACE(::testing::PrintToString(args));
    ExpectRefused(RunTool(args), fragments);
  }
  EXPECT_EQ(dir.Entries(), std::vector<std::string>{"line.csv"});
}

} // namespace
} // namespace xktool
