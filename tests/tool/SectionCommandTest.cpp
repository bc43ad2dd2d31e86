// xklink section: the drawn cross-section, checked by the programs a user opens it with: the SVG
// by a real XML parser (xmllint), the DXF by ezdxf. How the sheet is drawn is the drawing tests'
// business; here, that the options reach it and that bad ones stop the tool.
#include "ToolRunner.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

namespace xktool {
namespace {

// The text content of an SVG as a parser reads it, entities resolved.
std::string SvgText(const fs::path& svg) {
  const RunResult run = RunProgram({"xmllint", "--xpath", "string(/)", svg.string()});
  EXPECT_EQ(run.exitCode, 0) << run.Describe();
  return run.out;
}

// The vertical exaggeration stated on a sheet ("Vertical exaggeration ×2.5"); NaN when absent.
double StatedExaggeration(const std::string& text) {
  static const std::regex stated("xaggeration (?:\xC3\x97|\\\\U\\+00D7)([0-9]+(?:\\.[0-9]+)?)");
  std::smatch match;
  return std::regex_search(text, match, stated) ? std::stod(match[1]) : std::nan("");
}

TEST(SectionCommandTest, SvgParsesAndStatesTitleHolesAndExaggeration) {
  RequireProgram("xmllint", "libxml2-utils");
  TempDir dir;
  const fs::path svg = dir / "nle.svg";
  // Characters that must be escaped in XML, and one outside ASCII.
  const std::string title = "Section A\xE2\x80\x93"
                            "B & <north> \"NLE\"";
  const RunResult run = RunTool({"section", kNle, "-o", svg.string(), "--title", title});
  ASSERT_EQ(run.exitCode, 0) << run.Describe();
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(XmlLint(svg).exitCode, 0) << XmlLint(svg).Describe();
  const std::string text = SvgText(svg);
  for (const std::string& shown : {title, std::string("BH01"), std::string("BH10")}) {
    EXPECT_NE(text.find(shown), std::string::npos) << shown << "\n" << text.substr(0, 300);
  }
  // Left to the tool, the exaggeration is still stated, and never below 1.
  EXPECT_GE(StatedExaggeration(text), 1.0);
  for (const double e : {1.0, 25.0}) {
    const RunResult asked = RunTool({"section", kNle, "--holes", "BH01,BH02,BH03", "-o",
                                     svg.string(), "--exaggeration", std::to_string(e)});
    ASSERT_EQ(asked.exitCode, 0) << asked.Describe();
    EXPECT_DOUBLE_EQ(StatedExaggeration(SvgText(svg)), e);
  }
}

// For each DXF file named: the number of entities on layer SECTION-LINES, how many of them are not
// polylines of two vertices, the number of errors ezdxf's audit finds, then every text of the
// drawing and a line "--" after it. One interpreter for all: ezdxf takes long to load.
const char* kReadDxf = R"(
import sys, ezdxf
sys.stdout.reconfigure(encoding="utf-8")
for name in sys.argv[1:]:
    doc = ezdxf.readfile(name)
    msp = doc.modelspace()
    lines = [e for e in msp if e.dxf.layer == "SECTION-LINES"]
    odd = [e for e in lines if e.dxftype() not in ("POLYLINE", "LWPOLYLINE") or len(e) != 2]
    print(len(lines), len(odd), len(doc.audit().errors))
    for e in msp.query("TEXT"):
        print(e.dxf.text)
    for e in msp.query("MTEXT"):
        print(e.text)
    print("--")
)";

TEST(SectionCommandTest, DxfHasOnePolylinePerSectionLine) {
  // The system's python3 (python3-ezdxf) before one found on PATH, which may be a virtual
  // environment without it.
  std::string python;
  for (const std::string candidate : {"/usr/bin/python3", "python3"}) {
    if (python.empty() && RunProgram({candidate, "-c", "import ezdxf"}).exitCode == 0) {
      python = candidate;
    }
  }
  ASSERT_FALSE(python.empty()) << "no python3 with ezdxf: install python3-ezdxf (scripts/setup)";
  TempDir dir;
  // The overview's three lines are worked out in LinesCommandTest; for the NLE holes the count
  // comes from `xklink lines`.
  const RunResult nleLines = RunTool({"lines", kNle, "--holes", "BH10,BH08,BH07,BH06"});
  ASSERT_EQ(nleLines.exitCode, 0) << nleLines.Describe();
  std::size_t nleCount = 0;
  for (const auto& pair : nlohmann::json::parse(nleLines.out)) {
    nleCount += pair.at("lines").size();
  }
  const std::vector<std::pair<std::vector<std::string>, std::size_t>> cases = {
      {{kOverview}, 3}, {{kNle, "--holes", "BH10,BH08,BH07,BH06"}, nleCount}};
  std::vector<std::string> read{python, dir.Write("read_dxf.py", kReadDxf)};
  for (std::size_t i = 0; i < cases.size(); ++i) {
    std::vector<std::string> args{"section"};
    args.insert(args.end(), cases[i].first.begin(), cases[i].first.end());
    read.push_back((dir / ("section" + std::to_string(i) + ".dxf")).string());
    args.insert(args.end(), {"-o", read.back(), "--exaggeration", "2.5"});
    const RunResult run = RunTool(args);
    ASSERT_EQ(run.exitCode, 0) << run.Describe();
  }
  const RunResult result = RunProgram(read);
  ASSERT_EQ(result.exitCode, 0) << result.Describe();
  std::istringstream out(result.out);
  for (const auto& [input, lines] : cases) {
    SCOPED_TRACE(input.back());
    std::size_t polylines = 0, odd = 0, auditErrors = 0;
    out >> polylines >> odd >> auditErrors;
    EXPECT_GT(lines, 0u);
    EXPECT_EQ(polylines, lines);
    EXPECT_EQ(odd, 0u);
    EXPECT_EQ(auditErrors, 0u);
    std::string texts, line;
    while (std::getline(out, line) && line != "--") {
      texts += line + "\n";
    }
    EXPECT_DOUBLE_EQ(StatedExaggeration(texts), 2.5) << texts.substr(0, 500);
  }
}

TEST(SectionCommandTest, LegendGivesColoursAndDescriptionsAndABadLineIsNamed) {
  RequireProgram("xmllint", "libxml2-utils");
  TempDir dir;
  const std::string legend = dir.Write("legend.csv", "code,colour,label\n"
                                                     "LC,#123456,London Clay\n"
                                                     "RTD,orange,River Terrace Deposits\n");
  const fs::path svg = dir / "legend.svg";
  const RunResult run = RunTool({"section", kNle, "-o", svg.string(), "--legend", legend});
  ASSERT_EQ(run.exitCode, 0) << run.Describe();
  const std::string content = ReadFile(svg);
  EXPECT_NE(content.find("#123456"), std::string::npos);
  EXPECT_NE(content.find("#ffa500"), std::string::npos); // SVG's orange
  const std::string text = SvgText(svg);
  EXPECT_NE(text.find("London Clay"), std::string::npos);
  EXPECT_NE(text.find("River Terrace Deposits"), std::string::npos);
  // Nothing is drawn.
  const std::string bad =
      dir.Write("bad.csv", "code,colour,label\nLC,#123456,ok\nRTD,notacolour,x\n");
  ExpectRefused(RunTool({"section", kNle, "-o", (dir / "bad.svg").string(), "--legend", bad}),
                {bad + ":3", "notacolour"});
  EXPECT_FALSE(fs::exists(dir / "bad.svg"));
}

TEST(SectionCommandTest, DrawingMustBeNamedSvgOrDxf) {
  TempDir dir;
  for (const std::string name : {"section.png", "section", "svg"}) {
    ExpectRefused(RunTool({"section", kOverview, "-o", (dir / name).string()}), {"--output"});
  }
  // -o is required: there is no drawing on standard output.
  ExpectRefused(RunTool({"section", kOverview}), {});
  // Upper-case extensions are the same formats.
  const RunResult upper = RunTool({"section", kOverview, "-o", (dir / "A.SVG").string()});
  EXPECT_EQ(upper.exitCode, 0) << upper.Describe();
  EXPECT_EQ(dir.Entries(), std::vector<std::string>{"A.SVG"});
}

} // namespace
} // namespace xktool
