// xklink section: the drawn cross-section, checked by the programs a user opens it with: the SVG
// by a real XML parser (xmllint) and a renderer (rsvg-convert), the DXF by ezdxf.
#include "ToolRunner.h"

#include <nlohmann/json.hpp>
#include <regex>
#include <tuple>

namespace xktool {
namespace {

const std::string kOverview = (kExamples / "overview.json").string();
const std::string kNle = (kExamples / "nle-battersea" / "21-7-10-NLE.ags").string();

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
  return std::regex_search(text, match, stated) ? std::stod(match[1])
                                                : std::numeric_limits<double>::quiet_NaN();
}

// The number of section lines that `xklink lines` reports for the same holes.
std::size_t LineCount(const std::vector<std::string>& args) {
  std::vector<std::string> all{"lines"};
  all.insert(all.end(), args.begin(), args.end());
  const RunResult run = RunTool(all);
  EXPECT_EQ(run.exitCode, 0) << run.Describe();
  std::size_t count = 0;
  for (const auto& pair : nlohmann::json::parse(run.out)) {
    count += pair.at("lines").size();
  }
  return count;
}

TEST(SectionCommandTest, SvgParsesRendersAndCarriesTheTitle) {
  RequireProgram("xmllint", "libxml2-utils");
  RequireProgram("rsvg-convert", "librsvg2-bin");
  TempDir dir;
  const fs::path svg = dir / "nle.svg";
  // Characters that must be escaped in XML, and one outside ASCII.
  const std::string title = "Section A\xE2\x80\x93"
                            "B & <north> \"NLE\"";
  const RunResult run = RunTool({"section", kNle, "-o", svg.string(), "--title", title});
  ASSERT_EQ(run.exitCode, 0) << run.Describe();
  EXPECT_EQ(run.out, "");
  const RunResult lint = XmlLint(svg);
  EXPECT_EQ(lint.exitCode, 0) << lint.Describe();
  const std::string text = SvgText(svg);
  EXPECT_NE(text.find(title), std::string::npos) << text.substr(0, 300);
  for (const char* hole : {"BH01", "BH05", "BH09", "BH10"}) {
    EXPECT_NE(text.find(hole), std::string::npos) << hole;
  }

  const fs::path png = dir / "nle.png";
  const RunResult render = RunProgram({"rsvg-convert", svg.string(), "-o", png.string()});
  ASSERT_EQ(render.exitCode, 0) << render.Describe();
  ASSERT_TRUE(fs::exists(png));
  const std::string image = ReadFile(png);
  EXPECT_GT(image.size(), 1000u);
  EXPECT_EQ(image.substr(0, 8), "\x89PNG\r\n\x1A\n");
}

TEST(SectionCommandTest, SheetStatesTheExaggerationAskedFor) {
  RequireProgram("xmllint", "libxml2-utils");
  TempDir dir;
  for (const double e : {1.0, 2.5, 25.0}) {
    const fs::path svg = dir / "e.svg";
    const RunResult run = RunTool({"section", kNle, "--holes", "BH01,BH02,BH03", "-o", svg.string(),
                                   "--exaggeration", std::to_string(e)});
    ASSERT_EQ(run.exitCode, 0) << run.Describe();
    EXPECT_DOUBLE_EQ(StatedExaggeration(SvgText(svg)), e);
  }
  // Left to the tool, the exaggeration is still stated, and never below 1.
  const RunResult chosen = RunTool({"section", kNle, "-o", (dir / "auto.svg").string()});
  ASSERT_EQ(chosen.exitCode, 0) << chosen.Describe();
  EXPECT_GE(StatedExaggeration(SvgText(dir / "auto.svg")), 1.0);
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
  const std::string python = PythonWithEzdxf();
  ASSERT_FALSE(python.empty()) << "no python3 with ezdxf: install python3-ezdxf (scripts/setup)";
  TempDir dir;
  // The overview's three lines are worked out in LinesCommandTest; for the NLE holes the count
  // comes from `xklink lines`.
  const std::vector<std::tuple<std::string, std::string, std::size_t>> cases = {
      {kOverview, "BH1,BH2", 3},
      {kNle, "BH01,BH02,BH03", LineCount({kNle, "--holes", "BH01,BH02,BH03"})},
      {kNle, "BH10,BH08,BH07,BH06", LineCount({kNle, "--holes", "BH10,BH08,BH07,BH06"})}};
  std::vector<std::string> read{python, dir.Write("read_dxf.py", kReadDxf)};
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const auto& [file, holes, lines] = cases[i];
    const fs::path dxf = dir / ("section" + std::to_string(i) + ".dxf");
    const RunResult run =
        RunTool({"section", file, "--holes", holes, "-o", dxf.string(), "--exaggeration", "2.5"});
    ASSERT_EQ(run.exitCode, 0) << run.Describe();
    read.push_back(dxf.string());
  }
  const RunResult result = RunProgram(read);
  ASSERT_EQ(result.exitCode, 0) << result.Describe();
  std::istringstream out(result.out);
  for (const auto& [file, holes, lines] : cases) {
    SCOPED_TRACE(holes);
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

TEST(SectionCommandTest, LegendGivesColoursAndDescriptions) {
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

  // A bad legend line is named, and nothing is drawn.
  const std::string bad =
      dir.Write("bad.csv", "code,colour,label\nLC,#123456,ok\nRTD,notacolour,x\n");
  const RunResult refused =
      RunTool({"section", kNle, "-o", (dir / "bad.svg").string(), "--legend", bad});
  EXPECT_EQ(refused.exitCode, 2) << refused.Describe();
  EXPECT_NE(refused.err.find(bad + ":3"), std::string::npos) << refused.err;
  EXPECT_NE(refused.err.find("notacolour"), std::string::npos) << refused.err;
  EXPECT_FALSE(fs::exists(dir / "bad.svg"));
}

TEST(SectionCommandTest, DrawingMustBeNamedSvgOrDxf) {
  TempDir dir;
  for (const std::string name : {"section.png", "section", "svg"}) {
    const RunResult run = RunTool({"section", kOverview, "-o", (dir / name).string()});
    EXPECT_EQ(run.exitCode, 2) << run.Describe();
    EXPECT_NE(run.err.find("--output"), std::string::npos) << run.err;
  }
  // Upper-case extensions are the same formats.
  const RunResult upper = RunTool({"section", kOverview, "-o", (dir / "A.SVG").string()});
  EXPECT_EQ(upper.exitCode, 0) << upper.Describe();
  EXPECT_EQ(dir.Entries(), std::vector<std::string>{"A.SVG"});
  // -o is required: there is no drawing on standard output.
  const RunResult none = RunTool({"section", kOverview});
  EXPECT_EQ(none.exitCode, 2) << none.Describe();
}

} // namespace
} // namespace xktool
