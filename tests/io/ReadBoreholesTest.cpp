// The one entry for all formats: choosing the reader, applying the options, joining repeated codes.
#include "ReadBoreholes.h"

#include "IoTestSupport.h"

#include <cmath>
#include <gtest/gtest.h>

namespace xklink {
namespace {

using testing::Summary;
using Lines = std::vector<std::string>;

const std::string kJson = R"({"boreholes": [
 {"name": "A", "x": 0, "y": 0, "top": 10, "strata": [{"code": "S", "top": 10, "bottom": 8},
                                                    {"code": "S", "top": 8, "bottom": 5}]},
 {"name": "B", "x": 9, "y": 0, "top": 10, "strata": [{"code": "S", "top": 10, "bottom": 6}]}]}
)";
const std::string kAgs = "\"GROUP\",\"LOCA\"\n"
                         "\"HEADING\",\"LOCA_ID\",\"LOCA_NATE\",\"LOCA_NATN\",\"LOCA_GL\"\n"
                         "\"DATA\",\"A\",\"0\",\"0\",\"10\"\n"
                         "\n"
                         "\"GROUP\",\"GEOL\"\n"
                         "\"HEADING\",\"LOCA_ID\",\"GEOL_TOP\",\"GEOL_BASE\",\"GEOL_GEOL\"\n"
                         "\"DATA\",\"A\",\"0\",\"2\",\"S\"\n";
const std::string kCsv = "HOLEID,X,Y,Z,FROM,TO,CODE\nA,0,0,10,0,2,S\n";

TEST(FormatTest, NamesExtensionsOrContentTellTheFormat) {
  EXPECT_EQ(FormatFromName("Csv"), Format::Csv);
  EXPECT_EQ(FormatName(FormatFromName("AGS")), "ags");
  EXPECT_THROW(FormatFromName("xlsx"), std::invalid_argument);
  // The extension decides without reading the file (none of these exists).
  EXPECT_EQ(DetectFormat("site.json"), Format::Json);
  EXPECT_EQ(DetectFormat("dir.v2/holes.CSV"), Format::Csv);
  testing::TempDir dir;
  EXPECT_EQ(DetectFormat(dir.Write("a.txt", "\xEF\xBB\xBF" + kAgs)), Format::Ags);
  EXPECT_EQ(DetectFormat(dir.Write("b.txt", "\"**PROJ\"\n")), Format::Ags);
  EXPECT_EQ(DetectFormat(dir.Write("c.txt", "\n  " + kJson)), Format::Json);
  EXPECT_EQ(DetectFormat(dir.Write("d", kCsv)), Format::Csv);
  const auto unknown = dir.Write("e.dat", "borehole log\n");
  EXPECT_EQ(testing::ErrorOf([&] { DetectFormat(unknown); }),
            unknown.string() + ": cannot tell the format from the name or the content; give it "
                               "(json, ags or csv)");
}

// The file names in messages and the options applied are shown by the tool and the real files.
TEST(ReadBoreholesTest, TheFormatGivenWinsAndOnlyCsvTakesACollarTable) {
  testing::TempDir dir;
  EXPECT_EQ(Summary(ReadBoreholes(dir.Write("s.json", kCsv), Format::Csv)),
            Lines{"A @0,0 top 10: S 10..8@2"});
  ReadOptions options;
  options.collarFile = dir.Write("collar.csv", "HOLEID,X,Y,Z\n");
  EXPECT_THROW(ReadBoreholes(dir.Write("s.ags", kAgs), Format::Ags, options),
               std::invalid_argument);
}

// Logs split one unit into several rows by description; joining them must never hide a fault.
TEST(MergeRepeatsTest, JoinsTouchingSoundStrataOfTheSameCodeAndNothingElse) {
  const auto merged = [](const std::vector<testing::Bed>& beds) {
    auto set = testing::MakeSet({testing::MakeHole("H", 0, 0, 100, beds, 1)});
    MergeRepeatedCodes(set);
    return Summary(set)[0];
  };
  EXPECT_EQ(
      merged(
          {{L"MG", 100, 99}, {L"MG", 99, 97}, {L"MG", 97, 96}, {L"LC", 96, 80}, {L"MG", 80, 79}}),
      "H @0,0 top 100: MG 100..96@2 LC 96..80@5 MG 80..79@6");
  const std::vector<std::vector<testing::Bed>> kept = {
      {{L"A", 100, 98}, {L"A", 97, 95}},                 // a gap
      {{L"A", 100, 96}, {L"A", 97, 95}},                 // an overlap
      {{L"A", 100, 98}, {L"A", 98, 99}, {L"A", 99, 90}}, // upside down: would look sound
      {{L"A", 100, NAN}, {L"A", NAN, 90}},               // not a number
      {{L"Clay", 100, 98}, {L"CLAY", 98, 95}},           // codes differ in case
  };
  for (const auto& beds : kept) {
    auto set = testing::MakeSet({testing::MakeHole("H", 0, 0, 100, beds, 1)});
    EXPECT_EQ(merged(beds), Summary(set)[0]);
  }
  // Strata the host tells apart by its own value or flag stay apart.
  auto set = testing::MakeSet(
      {testing::MakeHole("H", 0, 0, 100, {{L"A", 100, 98}, {L"A", 98, 95}, {L"A", 95, 90}}, 1)});
  set.holes[0].strata[1].dc.dAux = 2.0;
  set.holes[0].strata[2].dc.dAux = 2.0;
  set.holes[0].strata[2].dc.bAux = true;
  MergeRepeatedCodes(set);
  EXPECT_EQ(set.holes[0].strata.size(), 3U);
}

} // namespace
} // namespace xklink
