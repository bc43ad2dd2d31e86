// Printing a section on sheets: the sheets a PDF, PNG or SVG holds against those the tool reports,
// the chainage running on from sheet to sheet with no text over another, the paper size at its
// dpi, the scale as drawn, the refusals of options that disagree, and the DXF's units, read back by
// poppler and ezdxf.
#include "ToolRunner.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <regex>

namespace {

using namespace xktool;

const std::string kDlr =
    (kRealData / "dlr-city-airport" / "DLR_City_Airport_Extension.ags").string();
const std::string kM621 = (kRealData / "m621-widening" / "M621_Widening.ags").string();

// The width and height in a PNG's header (IHDR, the first chunk, is fixed at bytes 16-23).
std::pair<unsigned, unsigned> PngSize(const std::string& png) {
  EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
  const auto byte = [&](std::size_t at) {
    return unsigned{static_cast<unsigned char>(png.at(at))};
  };
  return {byte(18) << 8 | byte(19), byte(22) << 8 | byte(23)}; // below 65536 pixels: two bytes
}

TEST(PrintTest, DlrOnA3SheetsAreThePdfPagesWithChainageRunningOn) {
  RequireProgram("pdftoppm", "poppler-utils");
  TempDir dir;
  const RunResult json =
      RunTool({"section", kDlr, "--sheet", "A3", "-o", (dir / "s.json").string()});
  ASSERT_EQ(json.exitCode, 0) << json.Describe();
  const nlohmann::json section = nlohmann::json::parse(ReadFile(dir / "s.json"));
  const nlohmann::json& sheets = section.at("print").at("sheets");
  const std::size_t n = sheets.size();
  ASSERT_GE(n, 2u);
  EXPECT_NE(json.err.find(std::to_string(n) + " A3 sheets"), std::string::npos) << json.err;
  for (std::size_t k = 0; k < n; ++k) {
    if (k + 1 < n) {
      EXPECT_DOUBLE_EQ(sheets[k].at("to").get<double>(), sheets[k + 1].at("from").get<double>());
    }
    // No text of a sheet (plot, legend, key plan, title block) over another.
    const nlohmann::json& labels = sheets[k].at("labels");
    for (std::size_t i = 0; i < labels.size(); ++i) {
      const auto a = labels[i].at("box").get<std::vector<double>>();
      for (std::size_t j = i + 1; j < labels.size(); ++j) {
        const auto b = labels[j].at("box").get<std::vector<double>>();
        EXPECT_FALSE(a[0] < b[2] && b[0] < a[2] && a[1] < b[3] && b[1] < a[3])
            << "sheet " << k + 1 << ": " << labels[i] << " and " << labels[j];
      }
    }
  }
  for (const auto& hole : section.at("holes")) {
    EXPECT_GE(hole.at("chainage").get<double>(), sheets.front().at("from").get<double>());
    EXPECT_LE(hole.at("chainage").get<double>(), sheets.back().at("to").get<double>());
  }

  const RunResult pdf = RunTool({"section", kDlr, "--sheet", "A3", "-o", (dir / "s.pdf").string()});
  ASSERT_EQ(pdf.exitCode, 0) << pdf.Describe();
  // One rendered page per sheet, and each page's title block numbers it.
  ASSERT_EQ(RunProgram(
                {"pdftoppm", "-r", "10", "-png", (dir / "s.pdf").string(), (dir / "page").string()})
                .exitCode,
            0);
  std::size_t pages = 0;
  for (const std::string& name : dir.Entries()) {
    pages += name.rfind("page-", 0) == 0 ? 1u : 0u;
  }
  EXPECT_EQ(pages, n);
  const RunResult text = RunProgram({"pdftotext", (dir / "s.pdf").string(), "-"});
  for (std::size_t k = 1; k <= n; ++k) {
    const std::string label = "Sheet " + std::to_string(k) + " of " + std::to_string(n);
    EXPECT_NE(text.out.find(label), std::string::npos) << label;
  }
}

TEST(PrintTest, PngIsThePaperAtItsDpiOneFilePerSheet) {
  struct Case {
    std::vector<std::string> args;
    std::pair<unsigned, unsigned> pixels;
  };
  const std::vector<Case> cases = {
      {{kNle, "--sheet", "A3"}, {2480, 1754}},                // 420 x 297 mm at 150 dpi
      {{kNle, "--sheet", "a4", "--dpi", "100"}, {1169, 827}}, // 297 x 210 mm at 100 dpi
      {{kDlr, "--sheet", "A4", "--scale", "1:5000", "--dpi", "30"}, {351, 248}},
  };
  for (const Case& c : cases) {
    TempDir dir;
    std::vector<std::string> args{"section"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    args.insert(args.end(), {"-o", (dir / "x.png").string()});
    const RunResult run = RunTool(args);
    ASSERT_EQ(run.exitCode, 0) << run.Describe();
    // One sheet is x.png; n sheets, as the tool reports them, are x-1.png ... x-n.png.
    const std::size_t n = std::stoul(run.err.substr(run.err.rfind("xklink: ") + 8));
    std::vector<std::string> files;
    for (std::size_t k = 1; k <= n; ++k) {
      files.push_back(n == 1 ? "x.png" : "x-" + std::to_string(k) + ".png");
    }
    std::sort(files.begin(), files.end());
    EXPECT_EQ(dir.Entries(), files);
    for (const std::string& file : dir.Entries()) {
      EXPECT_EQ(PngSize(ReadFile(dir / file)), c.pixels) << file;
    }
  }
}

TEST(PrintTest, ChainageTicksStandAtTheScale) {
  TempDir dir;
  const RunResult run = RunTool({"section", kNle, "--sheet", "A3", "--scale", "1:500", "--vscale",
                                 "1:200", "-o", (dir / "x.svg").string()});
  ASSERT_EQ(run.exitCode, 0) << run.Describe();
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

TEST(PrintTest, ScalesThatCannotHoldAreRefused) {
  const std::vector<std::pair<std::vector<std::string>, std::vector<std::string>>> cases = {
      {{"--scale", "1:1000"}, {"--scale", "--sheet A4, A3 or A1"}},
      {{"--sheet", "A3", "--scale", "1:1000", "--vscale", "1:100", "--exaggeration", "5"},
       {"disagree", "exaggeration of 10"}},
      {{"--sheet", "A3", "--scale", "1:500", "--vscale", "1:10"}, {"too high", "A3"}},
      {{"--sheet", "A3", "--scale", "2:100"}, {"1:N"}},
      {{"--sheet", "A3", "--dpi", "100"}, {"--dpi", "PNG"}},
  };
  for (const auto& [options, fragments] : cases) {
    TempDir dir;
    std::vector<std::string> args{"section", kNle, "-o", (dir / "x.pdf").string()};
    args.insert(args.end(), options.begin(), options.end());
    ExpectRefused(RunTool(args), fragments);
    EXPECT_TRUE(dir.Entries().empty());
  }
}

TEST(PrintTest, DxfIsInMetresWithInferredGroundDashed) {
  TempDir dir;
  ASSERT_EQ(RunTool({"section", kM621, "-o", (dir / "x.dxf").string()}).exitCode, 0);
  const RunResult read = RunProgram(
      {"/usr/bin/python3", "-c",
       "import sys, ezdxf\nd = ezdxf.readfile(sys.argv[1])\n"
       "print(d.header['$INSUNITS'], sum(e.dxf.linetype == 'DASHED' for e in d.modelspace()))",
       (dir / "x.dxf").string()});
  ASSERT_EQ(read.exitCode, 0) << read.Describe();
  EXPECT_EQ(read.out.substr(0, 2), "6 ");
  EXPECT_GT(std::stoi(read.out.substr(2)), 0) << "the boundaries below the shallow pits are dashed";
}

} // namespace
