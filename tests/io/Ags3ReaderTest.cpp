// AGS 3.1 files made by hand: "**" groups, "*" headings that wrap, <UNITS> and <CONT> rows.
#include "AgsReader.h"
#include "IoTestSupport.h"
#include "Text.h"

#include <gtest/gtest.h>

namespace xklink {
namespace {

using testing::Messages;
using testing::ParseErrorOf;

// HOLE rows on lines 10-11; GEOL rows on lines 16-21, <CONT> rows on lines 18 and 21.
const std::string kSite3 = R"ags("**PROJ"
"*PROJ_ID","*PROJ_NAME"
"<UNITS>","",""
"P1","Test"

"**HOLE"
"*HOLE_ID","*HOLE_TYPE","*HOLE_NATE","*HOLE_NATN",
"*HOLE_GL","*HOLE_FDEP","*?HOLE_STAT"
"<UNITS>","","m","m","m","m",""
"BH1","CP","500.5","100","4.08","40",""
"BH2","CP","600","100","1.66","3",""

"**GEOL"
"*HOLE_ID","*GEOL_TOP","*GEOL_BASE","*GEOL_DESC","*GEOL_LEG","*GEOL_GEOL","*?GEOL_UNIT"
"<UNITS>","m","m","","","",""
"BH1","0","0.07","TOPSOIL.","101","TOP","T"
"BH1","0.07","2.4","Brown clayey SAND with brick, concrete","","",""
"<CONT>","","","  (MADE GROUND)","102","MG","M"
"BH1","2.4","40","Stiff CLAY","201","LC","C"
"BH2","0","3","Very stiff, greyish brown CLAY with occasional lig","2","L","C"
"<CONT>","","","nite (LONDON CLAY)","01","C",""

"**?BKFL"
"*HOLE_ID","*?BKFL_TOP"
"BH1","0"
)ags";

std::string Edit(std::string text, const std::string& from, const std::string& to) {
  const auto at = text.find(from);
  if (at == std::string::npos) {
    ADD_FAILURE() << "not in the file: " << from;
    return text;
  }
  return text.replace(at, from.size(), to);
}

BoreholeSet Read(const std::string& text, const ReadOptions& options = {}) {
  return ReadAgsBoreholes(text, "site3.ags", options);
}

std::vector<std::wstring> Codes(const HoleRecord& hole) {
  std::vector<std::wstring> out;
  for (const auto& s : hole.strata) {
    out.push_back(s.dc.strName);
  }
  return out;
}

TEST(Ags3ReaderTest, ReadsHoleAndGeolGroups) {
  const auto set = Read(kSite3);
  ASSERT_EQ(set.holes.size(), 2U);
  const auto& bh1 = set.holes[0];
  EXPECT_EQ(bh1.name, "BH1");
  EXPECT_EQ(bh1.x, 500.5);
  EXPECT_EQ(bh1.y, 100.0);
  EXPECT_EQ(bh1.top, 4.08);
  ASSERT_EQ(bh1.strata.size(), 3U);
  EXPECT_EQ(Codes(bh1), (std::vector<std::wstring>{L"TOP", L"MG", L"LC"}));
  EXPECT_EQ(bh1.strata[1].dc.dTopGC, 4.08 - 0.07);
  EXPECT_EQ(bh1.strata[1].dc.dBotGC, 4.08 - 2.4);
  EXPECT_EQ(bh1.strata[2].dc.dBotGC, 4.08 - 40.0);
  EXPECT_EQ(set.fields.holeTop, "HOLE_GL");
  EXPECT_EQ(bh1.where.ToString(), "site3.ags:10: field HOLE_ID");
  EXPECT_TRUE(set.diagnostics.empty()) << ::testing::PrintToString(Messages(set.diagnostics));
}

TEST(Ags3ReaderTest, ContRowsAddToTheFieldsOfTheRowAbove) {
  const auto set = Read(kSite3);
  // The code of BH1's second stratum stands only on its <CONT> line; BH2's is split in two.
  EXPECT_EQ(set.holes[0].strata[1].dc.strName, L"MG");
  EXPECT_EQ(set.holes[0].strata[1].where.line, 17U); // the record keeps its first line
  EXPECT_EQ(set.holes[1].strata[0].dc.strName, L"LC");
  ReadOptions legend;
  legend.codeColumn = "GEOL_LEG";
  EXPECT_EQ(Codes(Read(kSite3, legend).holes[1]), (std::vector<std::wstring>{L"201"}));
}

TEST(Ags3ReaderTest, UserHeadingsLoseTheirQuestionMark) {
  ReadOptions options;
  options.codeColumn = "GEOL_UNIT";
  EXPECT_EQ(Codes(Read(kSite3, options).holes[0]), (std::vector<std::wstring>{L"T", L"M", L"C"}));
}

TEST(Ags3ReaderTest, CrlfAndAByteOrderMarkReadTheSame) {
  const auto set = Read("\xEF\xBB\xBF" + testing::WithCrlf(kSite3));
  ASSERT_EQ(set.holes.size(), 2U);
  EXPECT_EQ(Codes(set.holes[0]), (std::vector<std::wstring>{L"TOP", L"MG", L"LC"}));
  EXPECT_EQ(set.holes[1].strata[0].where.line, 20U);
}

TEST(Ags3ReaderTest, HeadingsSplitOverLinesWithoutATrailingCommaAreJoinedToo) {
  const auto set = Read(Edit(kSite3, R"("*HOLE_NATN",)", R"("*HOLE_NATN")"));
  ASSERT_EQ(set.holes.size(), 2U);
  EXPECT_EQ(set.holes[1].top, 1.66);
}

TEST(Ags3ReaderTest, GeolWithoutHoleIsAnError) {
  const auto set = Read(Edit(kSite3, R"("BH2","0","3")", R"("BH9","0","3")"));
  EXPECT_EQ(Messages(set.diagnostics),
            (std::vector<std::string>{
                "site3.ags:11: warning: field HOLE_ID: hole 'BH2' left out: no geology (no GEOL "
                "rows)",
                "site3.ags:20: field HOLE_ID: hole 'BH9' has GEOL rows but no HOLE row"}));
}

TEST(Ags3SyntaxTest, ContWithoutARowAboveIsAParseError) {
  EXPECT_EQ(ParseErrorOf([] {
              Read(Edit(kSite3, R"("<UNITS>","m","m","","","","")",
                        R"("<UNITS>","m","m","","","","")"
                        "\n"
                        R"("<CONT>","","","x","","","")"));
            }),
            "site3.ags:16: field GEOL: <CONT> row with no data row above it to continue");
}

TEST(Ags3SyntaxTest, RowsOfTheWrongWidthAreParseErrors) {
  EXPECT_EQ(
      ParseErrorOf([] {
        Read(Edit(kSite3, R"ags("<CONT>","","","  (MADE GROUND)","102","MG","M")ags",
                  R"ags("<CONT>","","","  (MADE GROUND)","102","MG")ags"));
      }),
      "site3.ags:18: field GEOL: <CONT> row: the row has 6 fields but the group has 7 headings");
  EXPECT_EQ(ParseErrorOf([] {
              Read(Edit(kSite3, R"("BH2","CP","600","100","1.66","3","")",
                        R"("BH2","CP","600","100","1.66","3")"));
            }),
            "site3.ags:11: field HOLE: the row has 6 fields but the group has 7 headings");
}

TEST(Ags3SyntaxTest, AWrappedHeadingLineMustHoldHeadings) {
  EXPECT_EQ(ParseErrorOf([] {
              Read(Edit(kSite3, R"("*HOLE_GL","*HOLE_FDEP")", R"("HOLE_GL","*HOLE_FDEP")"));
            }),
            "site3.ags:8: field HOLE_GL: a heading of AGS 3.1 starts with '*'");
}

TEST(Ags3SyntaxTest, MissingHeadingsAndGroupsAreParseErrors) {
  EXPECT_EQ(ParseErrorOf([] { Read(Edit(kSite3, R"("*HOLE_GL",)", R"("*HOLE_LEVEL",)")); }),
            "site3.ags:7: field HOLE_GL: group HOLE has no heading HOLE_GL");
  const auto geolAt = kSite3.find("\"**GEOL\"");
  EXPECT_EQ(ParseErrorOf([&] { Read(kSite3.substr(0, geolAt)); }),
            "site3.ags: no GEOL group: the file holds no geology");
}

TEST(Ags3SyntaxTest, DataBeforeHeadingsIsAParseError) {
  EXPECT_EQ(ParseErrorOf([] {
              Read(Edit(kSite3, R"("*HOLE_ID","*GEOL_TOP")",
                        R"("BH1","0","1")"
                        "\n"
                        R"("*HOLE_ID","*GEOL_TOP")"));
            }),
            "site3.ags:14: field GEOL: data before the headings of group GEOL");
}

TEST(Ags3SyntaxTest, LinesBeforeTheFirstGroupAreRejected) {
  EXPECT_EQ(ParseErrorOf([] { Read("\"**PROJ\"\n\n\"P1\",\"x\"\n"); }),
            "site3.ags:3: line outside a group: a group starts with a \"**NAME\" line");
}

} // namespace
} // namespace xklink
