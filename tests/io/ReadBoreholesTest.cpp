// The one entry for all formats: choosing the reader and applying the options.
#include "ReadBoreholes.h"

#include "IoTestSupport.h"

#include <gtest/gtest.h>

namespace xklink {
namespace {

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

TEST(FormatTest, NamesAreCaseInsensitive) {
  EXPECT_EQ(FormatFromName("json"), Format::Json);
  EXPECT_EQ(FormatFromName("AGS"), Format::Ags);
  EXPECT_EQ(FormatFromName("Csv"), Format::Csv);
  EXPECT_EQ(FormatName(Format::Ags), "ags");
  try {
    FormatFromName("xlsx");
    ADD_FAILURE() << "no error";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "unknown input format 'xlsx': expected json, ags or csv");
  }
}

TEST(FormatTest, TheExtensionDecidesWithoutReadingTheFile) {
  EXPECT_EQ(DetectFormat("site.json"), Format::Json);
  EXPECT_EQ(DetectFormat("site.AGS"), Format::Ags);
  EXPECT_EQ(DetectFormat("dir.v2/holes.CSV"), Format::Csv);
}

TEST(FormatTest, OtherwiseTheContentDecides) {
  testing::TempDir dir;
  EXPECT_EQ(DetectFormat(dir.Write("a.txt", "\xEF\xBB\xBF" + kAgs)), Format::Ags);
  EXPECT_EQ(DetectFormat(dir.Write("b.txt", "\"**PROJ\"\n")), Format::Ags);
  EXPECT_EQ(DetectFormat(dir.Write("c.txt", "\n  " + kJson)), Format::Json);
  EXPECT_EQ(DetectFormat(dir.Write("d", kCsv)), Format::Csv);
  const auto unknown = dir.Write("e.dat", "borehole log\n");
  EXPECT_EQ(testing::ParseErrorOf([&] { DetectFormat(unknown); }),
            unknown.string() + ": cannot tell the format from the name or the content; give it "
                               "(json, ags or csv)");
}

TEST(ReadBoreholesTest, ReadsEachFormatWithTheFileNameInPlaces) {
  testing::TempDir dir;
  const auto json = dir.Write("holes.json", kJson);
  const auto set = ReadBoreholes(json, Format::Json);
  ASSERT_EQ(set.holes.size(), 2U);
  EXPECT_EQ(set.source, json.string());
  EXPECT_EQ(set.holes[1].where.file, json.string());
  EXPECT_EQ(ReadBoreholes(dir.Write("s.ags", kAgs), Format::Ags).holes.size(), 1U);
  EXPECT_EQ(ReadBoreholes(dir.Write("s.csv", kCsv), Format::Csv).holes.size(), 1U);
  // The format given wins over the extension.
  EXPECT_EQ(ReadBoreholes(dir.Write("export.txt", kCsv), Format::Csv).holes.size(), 1U);
}

TEST(ReadBoreholesTest, MergesRepeatsOnlyWhenAsked) {
  testing::TempDir dir;
  const auto json = dir.Write("holes.json", kJson);
  EXPECT_EQ(ReadBoreholes(json, Format::Json).holes[0].strata.size(), 2U);
  ReadOptions options;
  options.mergeRepeats = true;
  const auto merged = ReadBoreholes(json, Format::Json, options);
  ASSERT_EQ(merged.holes[0].strata.size(), 1U);
  EXPECT_EQ(merged.holes[0].strata[0].dc.dBotGC, 5.0);
}

TEST(ReadBoreholesTest, ACollarFileGoesOnlyWithCsv) {
  testing::TempDir dir;
  ReadOptions options;
  options.collarFile = dir.Write("collar.csv", "HOLEID,X,Y,Z\n");
  EXPECT_THROW(ReadBoreholes(dir.Write("s.ags", kAgs), Format::Ags, options),
               std::invalid_argument);
}

TEST(ReadBoreholesTest, AMissingFileIsAParseError) {
  testing::TempDir dir;
  const auto missing = dir.Path() / "none.json";
  EXPECT_EQ(testing::ParseErrorOf([&] { ReadBoreholes(missing, Format::Json); }),
            missing.string() + ": cannot read the file: it does not exist");
}

} // namespace
} // namespace xklink
