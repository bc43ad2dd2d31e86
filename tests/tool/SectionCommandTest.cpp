// xklink section: the drawn cross-section and its printed sheets, checked by the programs a user
// opens them with: the DXF by ezdxf, the PDF by poppler (the SVG by xmllint in OutputSafetyTest).
// How the sheet is drawn is the drawing tests' business; here, that the options reach it, on real
// files. The refusals of options that disagree are in HelpAndUsageTest.
#include "ToolRunner.h"

#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <tuple>

namespace xktool {
namespace {

using nlohmann::json;

// `xklink section ARGS -o OUT`, which must succeed.
RunResult Section(std::vector<std::string> args, const fs::path& out) {
  args.insert(args.begin(), "section");
  args.insert(args.end(), {"-o", out.string()});
  const RunResult run = RunTool(args);
  EXPECT_EQ(run.exitCode, 0) << run.Describe();
  return run;
}

// The laid-out section that `xklink section ARGS -o section.json` writes.
json SectionJson(const TempDir& dir, const std::vector<std::string>& args) {
  Section(args, dir / "section.json"); // a failed run is reported there, with what it printed
  return json::parse(ReadFile(dir / "section.json"));
}

// The first two labels (of a section or of one of its sheets) whose boxes overlap, or "".
std::string OverlappingLabels(const json& drawn) {
  const json& labels = drawn.at("labels");
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

// The user's own colour and label, which the file does not give, reach the drawing; how a legend
// file is read is the legend tests'. (The title and the exaggeration are compared with the Python
// package's drawing by the Python tests.)
TEST(SectionCommandTest, SvgShowsTheUsersLegend) {
  TempDir dir;
  const std::string legend = dir.Write("legend.csv", "code,colour,label\nLC,#123456,Blue Clay\n");
  EXPECT_EQ(Section({kNle, "--legend", legend}, dir / "nle.svg").out, "");
  const std::string svg = ReadFile(dir / "nle.svg");
  EXPECT_NE(svg.find(">Blue Clay<"), std::string::npos);
  EXPECT_NE(svg.find("#123456"), std::string::npos);
}

// The M621 route: west to east through BH01, BH06 and BH10 to BH12, then south to BH15 (the
// collars of those holes in the file).
const std::vector<std::pair<double, double>> kM621Route = {{427743.93, 431149.97},
                                                           {429242.53, 431917.56},
                                                           {430061.32, 432097.40},
                                                           {430437.00, 431789.00},
                                                           {430442.00, 430718.00}};

// A line of several legs, given on the command line, as a CSV or as a GeoJSON LineString, is one
// section: the holes in their order along it. Where a point stands along a line is the Alignment
// tests'.
TEST(SectionCommandTest, M621AlongItsRouteFromTheCommandLineOrAFile) {
  TempDir dir;
  std::string line;
  std::string csv = "easting,northing\n";
  json geojson = {{"type", "Feature"},
                  {"geometry", {{"type", "LineString"}, {"coordinates", json::array()}}}};
  for (const auto& [e, n] : kM621Route) {
    line += (line.empty() ? "" : ",") + std::to_string(e) + "," + std::to_string(n);
    csv += std::to_string(e) + "," + std::to_string(n) + "\n";
    geojson["geometry"]["coordinates"].push_back({e, n});
  }
  // Named from the east end. BH07 and BH11 are left out: their logs in the file overlap, which
  // stops any section with them.
  const std::vector<std::string> holes = {
      kM621, "--holes", "BH15,BH14,BH13,BH12,BH10,BH09,BH08,BH06,BH05,BH04,BH03,BH02,BH01"};
  std::vector<std::string> args = holes;
  args.insert(args.end(), {"--line", line});
  const json section = SectionJson(dir, args);
  std::vector<std::string> names;
  for (const auto& hole : section.at("holes")) {
    names.push_back(hole.at("name"));
  }
  EXPECT_EQ(names, (std::vector<std::string>{"BH01", "BH02", "BH03", "BH04", "BH05", "BH06", "BH08",
                                             "BH09", "BH10", "BH12", "BH13", "BH14", "BH15"}));
  EXPECT_EQ(section.at("alignment").at("kind"), "given");
  for (const std::string& file :
       {dir.Write("route.csv", csv), dir.Write("route.geojson", geojson.dump())}) {
    args = holes;
    args.insert(args.end(), {"--line-file", file});
    EXPECT_EQ(SectionJson(dir, args), section) << file;
  }
}

// Below the inspection pits between BH05 and BH06, and the window samples between BH04 and BH05,
// the bedrock of the boreholes goes on: an inferred region of it lies somewhere below each pit,
// drawn with dashed boundaries.
TEST(SectionCommandTest, BedrockContinuesBeneathTheShallowHolesOfM621) {
  TempDir dir;
  const std::vector<std::string> args = {
      kM621, "--holes",
      "BH04,DS01,DS02,DS03,DS04C,DS05A,DS06,BH05,IP01,IP02,IP03,IP04,IP05,IP06,BH06"};
  const json section = SectionJson(dir, args);
  const std::string bedrock = section.at("holes")[0].at("strata").back().at("code");
  EXPECT_EQ(bedrock, "Pennine Lower Coal Measures Formation");
  const auto inside = [](const json& polygon, double s, double z) {
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
  // The DXF as ezdxf reads it: its units (6, metres), the errors its audit finds, and whether any
  // boundary is dashed. The system's python3 (python3-ezdxf), not one found on PATH, which may be
  // a virtual environment without it.
  Section(args, dir / "m621.dxf");
  const RunResult read = RunProgram({"/usr/bin/python3", "-c", R"(
import sys, ezdxf
doc = ezdxf.readfile(sys.argv[1])
dashed = any(e.dxf.linetype == "DASHED" for e in doc.modelspace())
print(doc.header["$INSUNITS"], len(doc.audit().errors), dashed)
)",
                                     (dir / "m621.dxf").string()});
  EXPECT_EQ(read.out, "6 0 True\n") << read.Describe();
}

TEST(SectionCommandTest, DlrOnA3SheetsAreThePdfPagesWithChainageRunningOn) {
  TempDir dir;
  const RunResult run = Section({kDlr, "--sheet", "A3"}, dir / "s.json");
  const json section = json::parse(ReadFile(dir / "s.json"));
  const json& sheets = section.at("print").at("sheets");
  const std::size_t n = sheets.size();
  ASSERT_GE(n, 2u);
  EXPECT_NE(run.err.find(std::to_string(n) + " A3 sheets"), std::string::npos) << run.err;
  for (std::size_t k = 0; k < n; ++k) {
    if (k + 1 < n) {
      EXPECT_DOUBLE_EQ(sheets[k].at("to").get<double>(), sheets[k + 1].at("from").get<double>());
    }
    // No text of a sheet (plot, legend, key plan, title block) over another.
    EXPECT_EQ(OverlappingLabels(sheets[k]), "") << "sheet " << k + 1;
  }
  for (const auto& hole : section.at("holes")) {
    EXPECT_GE(hole.at("chainage").get<double>(), sheets.front().at("from").get<double>());
    EXPECT_LE(hole.at("chainage").get<double>(), sheets.back().at("to").get<double>());
  }
  // One rendered page per sheet, and each page's title block numbers it.
  const std::string pdf = (dir / "s.pdf").string();
  Section({kDlr, "--sheet", "A3"}, pdf);
  ASSERT_EQ(RunProgram({"pdftoppm", "-r", "10", "-png", pdf, (dir / "page").string()}).exitCode, 0);
  const std::vector<std::string> entries = dir.Entries();
  EXPECT_EQ(std::count_if(entries.begin(), entries.end(),
                          [](const std::string& name) { return name.rfind("page-", 0) == 0; }),
            static_cast<std::ptrdiff_t>(n));
  const std::string text = RunProgram({"pdftotext", pdf, "-"}).out;
  for (std::size_t k = 1; k <= n; ++k) {
    const std::string label = "Sheet " + std::to_string(k) + " of " + std::to_string(n);
    EXPECT_NE(text.find(label), std::string::npos) << label;
  }
}

// The width and height in a PNG's header (IHDR, the first chunk, is fixed at bytes 16-23).
std::pair<unsigned, unsigned> PngSize(const std::string& png) {
  EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
  const auto byte = [&](std::size_t at) {
    return unsigned{static_cast<unsigned char>(png.at(at))};
  };
  return {byte(18) << 8 | byte(19), byte(22) << 8 | byte(23)}; // below 65536 pixels: two bytes
}

TEST(SectionCommandTest, PngIsThePaperAtItsDpiOneFilePerSheet) {
  const std::vector<std::pair<std::vector<std::string>, std::pair<unsigned, unsigned>>> cases = {
      {{kNle, "--sheet", "A3"}, {2480, 1754}},                // 420 x 297 mm at 150 dpi
      {{kNle, "--sheet", "a4", "--dpi", "100"}, {1169, 827}}, // 297 x 210 mm at 100 dpi
      {{kDlr, "--sheet", "A4", "--scale", "1:5000", "--dpi", "30"}, {351, 248}},
  };
  for (const auto& [args, pixels] : cases) {
    TempDir dir;
    const RunResult run = Section(args, dir / "x.png");
    // One sheet is x.png; n sheets, as the tool reports them, are x-1.png ... x-n.png.
    const std::size_t n = std::stoul(run.err.substr(run.err.rfind("xklink: ") + 8));
    std::vector<std::string> files;
    for (std::size_t k = 1; k <= n; ++k) {
      files.push_back(n == 1 ? "x.png" : "x-" + std::to_string(k) + ".png");
    }
    std::sort(files.begin(), files.end());
    EXPECT_EQ(dir.Entries(), files);
    for (const std::string& file : dir.Entries()) {
      EXPECT_EQ(PngSize(ReadFile(dir / file)), pixels) << file;
    }
  }
}

TEST(SectionCommandTest, ChainageTicksStandAtTheScale) {
  TempDir dir;
  Section({kNle, "--sheet", "A3", "--scale", "1:500", "--vscale", "1:200"}, dir / "x.svg");
  const std::string svg = ReadFile(dir / "x-2.svg"); // of 17
  EXPECT_NE(svg.find("width=\"420mm\" height=\"297mm\""), std::string::npos);
  // The distance labels under the plot: x and the chainage it reads.
  const std::regex tick(R"re(<text x="([0-9.]+)" y="([0-9.]+)" font-size="11" )re"
                        R"re(text-anchor="middle" fill="#1a1a1a">(-?[0-9]+)</text>)re");
  std::vector<std::pair<double, double>> ticks;
  for (std::sregex_iterator it(svg.begin(), svg.end(), tick), end; it != end; ++it) {
    ticks.emplace_back(std::stod((*it)[3]), std::stod((*it)[1]));
  }
  ASSERT_GE(ticks.size(), 3u);
  const double unitsPerMetre = 1000.0 / 500.0 * 96.0 / 25.4; // 2 mm of paper per metre
  for (std::size_t i = 1; i < ticks.size(); ++i) {
    EXPECT_NEAR((ticks[i].second - ticks[0].second) / (ticks[i].first - ticks[0].first),
                unitsPerMetre, 0.01);
  }
}

// Two holes monitored after boring (no real file of ours has WDEP readings).
const std::string kMonitored = R"("GROUP","LOCA"
"HEADING","LOCA_ID","LOCA_NATE","LOCA_NATN","LOCA_GL"
"DATA","BH1","1000","2000","10.00"
"DATA","BH2","1050","2000","11.00"
"GROUP","GEOL"
"HEADING","LOCA_ID","GEOL_TOP","GEOL_BASE","GEOL_LEG"
"DATA","BH1","0.00","12.00","CLAY"
"DATA","BH2","0.00","12.00","CLAY"
"GROUP","MOND"
"HEADING","LOCA_ID","MOND_DTIM","MOND_TYPE","MOND_RDNG"
"DATA","BH1","2000-03-01T10:15","WDEP","2.85"
"DATA","BH1","2000-04-01T00:00","WDEP","3.60"
"DATA","BH2","2000-05-02T00:00","WDEP","3.10"
)";

struct Record {
  std::string hole;
  std::string array; // of the hole in section.json: "water" or "spt"
  double depth;
  double elevation; // the file's ground level (LOCA_GL, HOLE_GL) less the depth
  std::string field;
  json value;
  std::string sheet; // a text beside the log on the sheet
};

// Water and SPT of the logs in the laid-out section, at their depths and at the elevations their
// holes' ground levels give, written beside the logs on the sheet and on their own DXF layers.
TEST(InSituSectionTest, WaterAndSptOfTheLogsAtTheirDepthsOnEveryOutput) {
  TempDir dir;
  const std::vector<std::tuple<std::string, std::string, std::vector<Record>>> files = {
      // AGS4 WSTG/WSTD: the last reading, 20 minutes after the strike, is the level risen to.
      {kDlr,
       "BH105,BH107",
       {{"BH105", "water", 9.40, 5.59 - 9.40, "rose_to", 6.2, "2000-02-16"},
        {"BH107", "water", 9.60, 3.82 - 9.60, "rose_to", 4.2, "20 min"},
        {"BH105", "spt", 1.20, 5.59 - 1.20, "result", "N=11", "N=11"},
        {"BH107", "spt", 23.50, 3.82 - 23.50, "result", "50/95", "50/95"}}},
      // AGS 3.1 **WSTK and **ISPT.
      {kNle,
       "BH01,BH02",
       {{"BH01", "water", 4.50, 4.08 - 4.50, "rose_to", 3.11, "20 min"},
        {"BH01", "spt", 2.00, 4.08 - 2.00, "result", "N=17", "N=17"},
        // A refusal written in ISPT_NVAL as blows over the penetration in metres: the blows of the
        // main drive over their penetration.
        {"BH01", "spt", 28.00, 4.08 - 28.00, "result", "50 for 275 mm", "50 for 275 mm"}}},
      // The highest and the lowest level monitored, one level as one.
      {dir.Write("monitored.ags", kMonitored),
       "BH1,BH2",
       {{"BH1", "water", 2.85, 10.0 - 2.85, "kind", "standing", "2000-03-01 10:15"},
        {"BH1", "water", 3.60, 10.0 - 3.60, "time", "2000-04-01T00:00", "2000-04-01"},
        {"BH2", "water", 3.10, 11.0 - 3.10, "kind", "standing", "2000-05-02"}}}};
  for (const auto& [file, holes, records] : files) {
    SCOPED_TRACE(file);
    std::map<std::string, std::string> written;
    for (const std::string extension : {"svg", "dxf", "json"}) {
      const fs::path out = dir / ("section." + extension);
      Section({file, "--holes", holes}, out);
      written[extension] = ReadFile(out);
    }
    const json section = json::parse(written["json"]);
    std::map<std::string, json> byName;
    for (const auto& hole : section["holes"]) {
      byName[hole["name"].get<std::string>()] = hole;
    }
    for (const Record& r : records) {
      SCOPED_TRACE(r.hole + " " + r.array + " " + r.sheet);
      EXPECT_NE(written["svg"].find(">" + r.sheet + "<"), std::string::npos);
      EXPECT_NE(
          written["dxf"].find("  8\n" + std::string(r.array == "spt" ? "SPT" : "WATER") + "\n"),
          std::string::npos); // an entity on the layer
      const json& list = byName[r.hole][r.array];
      const auto found = std::find_if(list.begin(), list.end(), [&](const auto& e) {
        return std::abs(e["depth"].template get<double>() - r.depth) < 1e-9;
      });
      ASSERT_NE(found, list.end());
      EXPECT_NEAR((*found)["elevation"].template get<double>(), r.elevation, 1e-9);
      EXPECT_EQ((*found)[r.field], r.value);
    }
  }
}

} // namespace
} // namespace xktool
