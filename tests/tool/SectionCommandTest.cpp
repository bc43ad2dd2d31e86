// xklink section: the drawn cross-section, checked by the programs a user opens it with: the SVG
// by a real XML parser (xmllint), the DXF by ezdxf. How the sheet is drawn is the drawing tests'
// business; here, that the options reach it and that bad ones stop the tool.
#include "ToolRunner.h"

#include <algorithm>
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
}

// The laid-out section that `xklink section ARGS -o section.json` writes.
nlohmann::json SectionJson(const TempDir& dir, std::vector<std::string> args) {
  const fs::path out = dir / "section.json";
  args.insert(args.begin(), "section");
  args.insert(args.end(), {"-o", out.string()});
  const RunResult run = RunTool(args);
  EXPECT_EQ(run.exitCode, 0) << run.Describe();
  return run.exitCode == 0 ? nlohmann::json::parse(ReadFile(out)) : nlohmann::json::object();
}

// The first two labels whose boxes overlap, or "".
std::string OverlappingLabels(const nlohmann::json& section) {
  const nlohmann::json& labels = section.at("labels");
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const auto a = labels[i].at("box").get<std::vector<double>>();
    for (std::size_t j = i + 1; j < labels.size(); ++j) {
      const auto b = labels[j].at("box").get<std::vector<double>>();
      if (a[0] < b[2] && b[0] < a[2] && a[1] < b[3] && b[1] < a[3]) {
        return labels[i].dump() + " and " + labels[j].dump();
      }
    }
  }
  return "";
}

const std::string kM621 = (kRealData / "m621-widening" / "M621_Widening.ags").string();
// The M621 route: west to east through BH01, BH06 and BH10 to BH12, then south to BH15 (the
// collars of those holes in the file).
const std::vector<std::pair<double, double>> kM621Route = {{427743.93, 431149.97},
                                                           {429242.53, 431917.56},
                                                           {430061.32, 432097.40},
                                                           {430437.00, 431789.00},
                                                           {430442.00, 430718.00}};

// The chainage of the foot of p on a polyline: the nearest point of each segment by the
// parameter of the projection clamped to the segment, the nearest of those.
double Chainage(const std::vector<std::pair<double, double>>& line, double e, double n) {
  double best = 1e300;
  double chainage = 0.0;
  double start = 0.0;
  for (std::size_t i = 0; i + 1 < line.size(); ++i) {
    const auto [ae, an] = line[i];
    const auto [be, bn] = line[i + 1];
    const double length2 = (be - ae) * (be - ae) + (bn - an) * (bn - an);
    const double t = std::clamp(((e - ae) * (be - ae) + (n - an) * (bn - an)) / length2, 0.0, 1.0);
    const double d = std::hypot(e - (ae + t * (be - ae)), n - (an + t * (bn - an)));
    if (d < best) {
      best = d;
      chainage = start + t * std::sqrt(length2);
    }
    start += std::sqrt(length2);
  }
  return chainage;
}

TEST(SectionCommandTest, M621AlongItsRouteKeepsRouteOrderAndEachHoleAtItsProjection) {
  TempDir dir;
  std::string line;
  std::string csv = "easting,northing\n";
  nlohmann::json geojson = {
      {"type", "Feature"},
      {"geometry", {{"type", "LineString"}, {"coordinates", nlohmann::json::array()}}}};
  for (const auto& [e, n] : kM621Route) {
    line += (line.empty() ? "" : ",") + std::to_string(e) + "," + std::to_string(n);
    csv += std::to_string(e) + "," + std::to_string(n) + "\n";
    geojson["geometry"]["coordinates"].push_back({e, n});
  }
  // BH07 and BH11 are left out: their logs in the file overlap, which stops any section with them.
  const std::string holes = "BH15,BH14,BH13,BH12,BH10,BH09,BH08,BH06,BH05,BH04,BH03,BH02,BH01";
  const std::vector<std::string> route = {"BH01", "BH02", "BH03", "BH04", "BH05", "BH06", "BH08",
                                          "BH09", "BH10", "BH12", "BH13", "BH14", "BH15"};
  for (const std::vector<std::string>& given :
       {std::vector<std::string>{"--line", line},
        {"--line-file", dir.Write("route.csv", csv)},
        {"--line-file", dir.Write("route.geojson", geojson.dump())}}) {
    SCOPED_TRACE(given[1]);
    std::vector<std::string> args{kM621, "--holes", holes};
    args.insert(args.end(), given.begin(), given.end());
    const nlohmann::json section = SectionJson(dir, args);
    ASSERT_TRUE(section.contains("holes"));
    std::vector<std::string> names;
    for (const auto& hole : section.at("holes")) {
      names.push_back(hole.at("name"));
      EXPECT_NEAR(hole.at("chainage").get<double>(),
                  Chainage(kM621Route, hole.at("easting"), hole.at("northing")), 1e-3)
          << hole.at("name");
    }
    EXPECT_EQ(names, route);
    EXPECT_EQ(section.at("alignment").at("kind"), "given");
    EXPECT_EQ(OverlappingLabels(section), "");
  }
  // A line file's fault is named with its line and field.
  ExpectRefused(RunTool({"section", kM621, "--line-file", dir.Write("bad.csv", "e,n\n1,2\n3,x\n"),
                         "-o", (dir / "x.json").string()}),
                {"bad.csv:3", "field n"});
  ExpectRefused(RunTool({"section", kM621, "--buffer", "10", "-o", (dir / "x.json").string()}),
                {"--buffer"});
}

// Below the inspection pits between BH05 and BH06, and the window samples between BH04 and BH05,
// the bedrock of the boreholes goes on: an inferred region of it lies somewhere below each pit.
TEST(SectionCommandTest, BedrockContinuesBeneathTheShallowHolesOfM621) {
  TempDir dir;
  const nlohmann::json section =
      SectionJson(dir, {kM621, "--holes",
                        "BH04,DS01,DS02,DS03,DS04C,DS05A,DS06,BH05,IP01,IP02,IP03,IP04,IP05,IP06,"
                        "BH06"});
  ASSERT_TRUE(section.contains("holes"));
  const std::string bedrock = section.at("holes")[0].at("strata").back().at("code");
  EXPECT_EQ(bedrock, "Pennine Lower Coal Measures Formation");
  const auto inside = [](const nlohmann::json& polygon, double s, double z) {
    bool in = false; // even-odd rule
    for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
      const double si = polygon[i][0], zi = polygon[i][1], sj = polygon[j][0], zj = polygon[j][1];
      if ((zi > z) != (zj > z) && s < si + (z - zi) * (sj - si) / (zj - zi)) {
        in = !in;
      }
    }
    return in;
  };
  std::size_t shallow = 0;
  for (const auto& hole : section.at("holes")) {
    const std::string name = hole.at("name");
    if (name.rfind("BH", 0) == 0) {
      continue;
    }
    ++shallow;
    const double s = hole.at("chainage");
    const double base = hole.at("strata").back().at("bottom");
    bool found = false;
    for (double z = base - 0.25; z > 0.0 && !found; z -= 0.5) {
      found = std::any_of(section.at("regions").begin(), section.at("regions").end(),
                          [&](const auto& region) {
                            return region.at("code") == bedrock && region.at("inferred") == true &&
                                   inside(region.at("polygon"), s, z);
                          });
    }
    EXPECT_TRUE(found) << name << " at " << s;
  }
  EXPECT_EQ(shallow, 12u);
  EXPECT_EQ(OverlappingLabels(section), "");
}

} // namespace
} // namespace xktool
