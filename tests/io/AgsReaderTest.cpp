// AGS4 files made by hand, each hitting one rule of the format or one habit of real files.
#include "AgsReader.h"

#include "IoTestSupport.h"
#include "Text.h"
#include "Validation.h"

#include <cmath>
#include <gtest/gtest.h>

namespace xklink {
namespace {

using testing::Messages;
using testing::ParseErrorOf;

// Line numbers below refer to this file: LOCA rows on lines 11-12, GEOL rows on lines 18-21.
const std::string kSite = R"("GROUP","PROJ"
"HEADING","PROJ_ID","PROJ_NAME"
"UNIT","",""
"TYPE","ID","X"
"DATA","P1","Test site, north"

"GROUP","LOCA"
"HEADING","LOCA_ID","LOCA_TYPE","LOCA_NATE","LOCA_NATN","LOCA_GL","LOCA_FDEP"
"UNIT","","","m","m","m","m"
"TYPE","ID","PA","2DP","2DP","2DP","2DP"
"DATA","BH1","CP","1000.00","2000.00","10.00","5.00"
"DATA","BH2","CP","1100.00","2000.00","12.50","6.00"

"GROUP","GEOL"
"HEADING","LOCA_ID","GEOL_TOP","GEOL_BASE","GEOL_DESC","GEOL_LEG","GEOL_GEOL","GEOL_GEO2"
"UNIT","","m","m","","","",""
"TYPE","ID","2DP","2DP","X","PA","X","X"
"DATA","BH1","0.00","1.50","Soft, brown ""sandy"" CLAY","201","ALV",""
"DATA","BH1","1.50","5.00","Dense GRAVEL","501","RTD",""
"DATA","BH2","0.00","2.00","MADE GROUND","102","MG",""
"DATA","BH2","2.00","6.00","Dense GRAVEL","501","RTD",""
)";

// kSite with one piece of text replaced; fails the test when the piece is not there.
std::string Edit(std::string text, const std::string& from, const std::string& to) {
  const auto at = text.find(from);
  if (at == std::string::npos) {
    ADD_FAILURE() << "not in the file: " << from;
    return text;
  }
  return text.replace(at, from.size(), to);
}

BoreholeSet Read(const std::string& text, const ReadOptions& options = {}) {
  return ReadAgsBoreholes(text, "site.ags", options);
}

struct Layer {
  std::wstring code;
  double top;
  double bottom;
};

std::vector<Layer> Layers(const HoleRecord& hole) {
  std::vector<Layer> out;
  for (const auto& s : hole.strata) {
    out.push_back({s.dc.strName, s.dc.dTopGC, s.dc.dBotGC});
  }
  return out;
}

bool operator==(const Layer& a, const Layer& b) {
  return a.code == b.code && a.top == b.top && a.bottom == b.bottom;
}

void PrintTo(const Layer& layer, std::ostream* out) {
  *out << ToUtf8(layer.code) << ' ' << layer.top << ".." << layer.bottom;
}

TEST(Ags4ReaderTest, ReadsHolesAndElevationsFromDepths) {
  const auto set = Read(kSite);
  ASSERT_EQ(set.holes.size(), 2U);
  const auto& bh1 = set.holes[0];
  EXPECT_EQ(bh1.name, "BH1");
  EXPECT_EQ(bh1.x, 1000.0);
  EXPECT_EQ(bh1.y, 2000.0);
  EXPECT_EQ(bh1.top, 10.0);
  EXPECT_EQ(Layers(bh1), (std::vector<Layer>{{L"ALV", 10.0, 8.5}, {L"RTD", 8.5, 5.0}}));
  EXPECT_EQ(Layers(set.holes[1]), (std::vector<Layer>{{L"MG", 12.5, 10.5}, {L"RTD", 10.5, 6.5}}));
  EXPECT_TRUE(set.diagnostics.empty()) << ::testing::PrintToString(Messages(set.diagnostics));
  EXPECT_TRUE(ValidateBoreholes(set).empty());
}

TEST(Ags4ReaderTest, KeepsTheProvenanceOfEveryRecord) {
  const auto set = Read(kSite);
  EXPECT_EQ(set.holes[1].where.ToString(), "site.ags:12: field LOCA_ID");
  EXPECT_EQ(set.holes[1].strata[1].where.ToString(), "site.ags:21: field GEOL_GEOL");
  EXPECT_EQ(set.fields.holeTop, "LOCA_GL");
  EXPECT_EQ(set.fields.stratumBottom, "GEOL_BASE");
  EXPECT_EQ(set.source, "site.ags");
}

TEST(Ags4ReaderTest, CrlfAndAByteOrderMarkReadTheSame) {
  const auto expected = Read(kSite);
  for (const auto& text : {testing::WithCrlf(kSite), "\xEF\xBB\xBF" + kSite,
                           "\xEF\xBB\xBF" + testing::WithCrlf(kSite)}) {
    const auto set = Read(text);
    ASSERT_EQ(set.holes.size(), 2U);
    EXPECT_EQ(Layers(set.holes[0]), Layers(expected.holes[0]));
    EXPECT_EQ(set.holes[1].strata[1].where.line, 21U);
    EXPECT_TRUE(set.diagnostics.empty());
  }
}

TEST(Ags4ReaderTest, MatchesHeadingsByNameNotPosition) {
  // A producer's own heading first and the standard ones shuffled.
  auto text = Edit(
      kSite, R"("HEADING","LOCA_ID","LOCA_TYPE","LOCA_NATE","LOCA_NATN","LOCA_GL","LOCA_FDEP")",
      R"("HEADING","LOCA_GL","LOCA_NATN","LOCA_ID","LOCA_TYPE","LOCA_NATE","LOCA_FDEP")");
  text = Edit(text, R"("DATA","BH1","CP","1000.00","2000.00","10.00","5.00")",
              R"("DATA","10.00","2000.00","BH1","CP","1000.00","5.00")");
  text = Edit(text, R"("DATA","BH2","CP","1100.00","2000.00","12.50","6.00")",
              R"("DATA","12.50","2000.00","BH2","CP","1100.00","6.00")");
  const auto set = Read(text);
  ASSERT_EQ(set.holes.size(), 2U);
  EXPECT_EQ(set.holes[0].name, "BH1");
  EXPECT_EQ(set.holes[0].x, 1000.0);
  EXPECT_EQ(set.holes[0].top, 10.0);
}

TEST(Ags4ReaderTest, QuotedCodesKeepCommasAndQuotes) {
  const auto text = Edit(kSite, R"("201","ALV","")", R"("201","Alluvium, ""upper""","")");
  EXPECT_EQ(Read(text).holes[0].strata[0].dc.strName, L"Alluvium, \"upper\"");
}

TEST(Ags4ReaderTest, CodesAreUtf8AndBytesOutsideUtf8AreWindows1252) {
  auto text = Edit(kSite, R"("201","ALV","")", "\"201\",\"Argila \xC3\xA1\",\"\"");
  EXPECT_EQ(Read(text).holes[0].strata[0].dc.strName, L"Argila \u00E1");

  text = Edit(kSite, R"("201","ALV","")", "\"201\",\"Argila \xE1\",\"\"");
  const auto set = Read(text);
  EXPECT_EQ(set.holes[0].strata[0].dc.strName, L"Argila \u00E1");
  EXPECT_EQ(
      Messages(set.diagnostics),
      (std::vector<std::string>{
          "site.ags:18: warning: not valid UTF-8; bytes outside UTF-8 read as Windows-1252"}));
}

TEST(Ags4ReaderTest, ChoosesTheFirstFilledCodeColumn) {
  // GEOL_GEOL empty throughout, as in files that fill only the legend code.
  std::string text = kSite;
  for (const auto& code : {"ALV", "RTD", "MG", "RTD"}) {
    text = Edit(text, std::string("\",\"") + code + "\",\"\"", "\",\"\",\"\"");
  }
  const auto set = Read(text);
  EXPECT_EQ(set.holes[0].strata[0].dc.strName, L"201");
  EXPECT_EQ(set.holes[0].strata[0].where.field, "GEOL_LEG");
}

TEST(Ags4ReaderTest, TheUserChoosesTheCodeColumn) {
  ReadOptions options;
  options.codeColumn = "geol_leg";
  EXPECT_EQ(Read(kSite, options).holes[1].strata[0].dc.strName, L"102");
  options.codeColumn = "GEOL_BGS";
  EXPECT_EQ(ParseErrorOf([&] { Read(kSite, options); }),
            "site.ags:15: field GEOL_BGS: group GEOL has no heading GEOL_BGS");
}

TEST(Ags4ReaderTest, NoCodeInAnyColumnIsAParseError) {
  std::string text = kSite;
  for (const auto& row :
       {R"("201","ALV","")", R"("501","RTD","")", R"("102","MG","")", R"("501","RTD","")"}) {
    text = Edit(text, row, R"("","","")");
  }
  EXPECT_EQ(ParseErrorOf([&] { Read(text); }),
            "site.ags:15: field GEOL_GEOL: no stratum codes: GEOL_GEOL, GEOL_LEG and GEOL_GEO2 are "
            "missing or empty in every row; name the column that holds the codes");
}

TEST(Ags4ReaderTest, SortsGeolRowsOfAHoleByDepth) {
  const std::string first =
      R"("DATA","BH1","0.00","1.50","Soft, brown ""sandy"" CLAY","201","ALV","")";
  const std::string second = R"("DATA","BH1","1.50","5.00","Dense GRAVEL","501","RTD","")";
  const auto text = Edit(kSite, first + "\n" + second, second + "\n" + first);
  const auto set = Read(text);
  EXPECT_EQ(Layers(set.holes[0]), (std::vector<Layer>{{L"ALV", 10.0, 8.5}, {L"RTD", 8.5, 5.0}}));
  EXPECT_EQ(set.holes[0].strata[0].where.line, 19U); // the row keeps its own line
  EXPECT_EQ(
      Messages(set.diagnostics),
      (std::vector<std::string>{"site.ags:14: warning: field GEOL_TOP: GEOL rows not in depth "
                                "order in 1 hole (BH1); sorted by GEOL_TOP"}));
}

TEST(Ags4ReaderTest, AHoleWithoutGeologyIsLeftOutWithAWarning) {
  const auto text = Edit(kSite, R"("DATA","BH2","CP","1100.00","2000.00","12.50","6.00")",
                         R"("DATA","BH2","CP","1100.00","2000.00","12.50","6.00")"
                         "\n"
                         R"("DATA","TP9","TP","1200.00","2000.00","11.00","")");
  const auto set = Read(text);
  EXPECT_EQ(set.holes.size(), 2U);
  EXPECT_EQ(
      Messages(set.diagnostics),
      (std::vector<std::string>{"site.ags:13: warning: field LOCA_ID: hole 'TP9' left out: no "
                                "geology (no GEOL rows)"}));
  EXPECT_EQ(set.skipped.at("TP9"), "no geology (no GEOL rows)");
  EXPECT_FALSE(HasErrors(set.diagnostics));
}

TEST(Ags4ReaderTest, AHoleWithANullPositionOrGroundLevelIsLeftOut) {
  const auto text = Edit(kSite, R"("BH2","CP","1100.00","2000.00","12.50")",
                         R"("BH2","CP","1100.00","2000.00","")");
  const auto set = Read(text);
  ASSERT_EQ(set.holes.size(), 1U);
  EXPECT_EQ(Messages(set.diagnostics),
            (std::vector<std::string>{
                "site.ags:12: warning: field LOCA_GL: hole 'BH2' left out: LOCA_GL is empty"}));
}

TEST(Ags4ReaderTest, GeolWithoutLocaIsAnErrorOfThatHole) {
  const auto text = Edit(kSite, R"("DATA","BH2","2.00","6.00")", R"("DATA","BH3","2.00","6.00")");
  const auto set = Read(text);
  EXPECT_EQ(Messages(set.diagnostics, Severity::Error),
            (std::vector<std::string>{
                "site.ags:21: field LOCA_ID: hole 'BH3' has GEOL rows but no LOCA row"}));
  EXPECT_EQ(set.diagnostics.back().hole, "BH3");
  EXPECT_TRUE(HasErrors(ValidateBoreholes(set)));
}

TEST(Ags4ReaderTest, ADuplicateLocaIdIsAnError) {
  const auto text = Edit(kSite, R"("DATA","BH2","CP","1100.00")", R"("DATA","BH1","CP","1100.00")");
  const auto set = Read(text);
  EXPECT_EQ(
      Messages(set.diagnostics, Severity::Error),
      (std::vector<std::string>{"site.ags:12: field LOCA_ID: duplicate hole name 'BH1' (first "
                                "at line 11); this row is ignored",
                                "site.ags:20: field LOCA_ID: hole 'BH2' has GEOL rows but no "
                                "LOCA row"}));
}

TEST(Ags4ReaderTest, NullDepthsAreErrorsAndNullCodesWarnings) {
  auto text = Edit(kSite, R"("BH1","1.50","5.00","Dense GRAVEL","501","RTD")",
                   R"("BH1","1.50","","Dense GRAVEL","501","RTD")");
  text = Edit(text, R"("MADE GROUND","102","MG")", R"("MADE GROUND","102","")");
  const auto set = Read(text);
  EXPECT_EQ(
      Messages(set.diagnostics),
      (std::vector<std::string>{
          "site.ags:19: field GEOL_BASE: empty: the stratum cannot be placed; the row is ignored",
          "site.ags:11: warning: field LOCA_FDEP: the geology of hole 'BH1' ends at depth 1.5 "
          "but the hole goes down to 5: the section shows nothing below the last logged "
          "stratum",
          "site.ags:20: warning: field GEOL_GEOL: no code: the stratum gets an empty code"}));
  EXPECT_EQ(set.holes[0].strata.size(), 1U);
  EXPECT_EQ(set.holes[1].strata[0].dc.strName, L"");
}

TEST(Ags4ReaderTest, ANonNumberIsAParseErrorAndInfinityReachesTheValidation) {
  EXPECT_EQ(
      ParseErrorOf([] { Read(Edit(kSite, R"("BH2","2.00","6.00")", R"("BH2","2.00","6,0")")); }),
      "site.ags:21: field GEOL_BASE: not a number: '6,0'");
  EXPECT_EQ(ParseErrorOf([] {
              Read(Edit(kSite, R"("1000.00","2000.00","10.00")", R"("1000.00","N/A","10.00")"));
            }),
            "site.ags:11: field LOCA_NATN: not a number: 'N/A'");
  const auto set = Read(Edit(kSite, R"("BH2","2.00","6.00")", R"("BH2","2.00","inf")"));
  EXPECT_EQ(Messages(ValidateBoreholes(set), Severity::Error),
            (std::vector<std::string>{"site.ags:21: field GEOL_BASE: not a finite number: -inf"}));
}

TEST(Ags4ReaderTest, AFinalDepthBelowTheLoggedGeologyIsWorthAWarning) {
  const auto text = Edit(kSite, R"("12.50","6.00")", R"("12.50","9.00")");
  EXPECT_EQ(Messages(Read(text).diagnostics),
            (std::vector<std::string>{"site.ags:12: warning: field LOCA_FDEP: the geology of hole "
                                      "'BH2' ends at depth 6 but the hole goes down to 9: the "
                                      "section shows nothing below the last logged stratum"}));
  // Rounding of the logged depths is no reason to warn.
  EXPECT_TRUE(Read(Edit(kSite, R"("12.50","6.00")", R"("12.50","6.05")")).diagnostics.empty());
}

TEST(Ags4SyntaxTest, MissingHeadingsAreParseErrors) {
  EXPECT_EQ(ParseErrorOf(
                [] { Read(Edit(kSite, R"(,"LOCA_GL","LOCA_FDEP")", R"(,"LOCA_X","LOCA_FDEP")")); }),
            "site.ags:8: field LOCA_GL: group LOCA has no heading LOCA_GL");
  EXPECT_EQ(ParseErrorOf(
                [] { Read(Edit(kSite, R"("GEOL_TOP","GEOL_BASE")", R"("GEOL_TOP","GEOL_BOT")")); }),
            "site.ags:15: field GEOL_BASE: group GEOL has no heading GEOL_BASE");
}

TEST(Ags4SyntaxTest, MissingGroupsAreParseErrors) {
  const auto geolAt = kSite.find("\"GROUP\",\"GEOL\"");
  EXPECT_EQ(ParseErrorOf([&] { Read(kSite.substr(0, geolAt)); }),
            "site.ags: no GEOL group: the file holds no geology");
  const auto locaAt = kSite.find("\"GROUP\",\"LOCA\"");
  EXPECT_EQ(
      ParseErrorOf([&] { Read(kSite.substr(0, locaAt) + kSite.substr(geolAt)); }),
      "site.ags: no LOCA group: the holes of the GEOL group have no position or ground level");
}

TEST(Ags4SyntaxTest, StructureErrorsNameTheLine) {
  EXPECT_EQ(ParseErrorOf([] {
              Read(Edit(kSite, R"("DATA","BH2","CP","1100.00","2000.00","12.50","6.00")",
                        R"("DATA","BH2","CP","1100.00","2000.00","12.50")"));
            }),
            "site.ags:12: field LOCA: the row has 5 fields but the group has 6 headings");
  EXPECT_EQ(ParseErrorOf([] {
              Read(Edit(kSite, R"("HEADING","LOCA_ID","LOCA_TYPE")",
                        R"("DATA","X","Y","1","2","3","4")"
                        "\n"
                        R"("HEADING","LOCA_ID","LOCA_TYPE")"));
            }),
            "site.ags:8: field LOCA: data before the headings of group LOCA");
  EXPECT_EQ(ParseErrorOf([] {
              Read(Edit(kSite, R"("UNIT","","m","m","","","","")", R"("HEADING","LOCA_ID")"));
            }),
            "site.ags:16: field GEOL: second HEADING line in group GEOL (first at line 15)");
  EXPECT_EQ(
      ParseErrorOf(
          [] { Read(Edit(kSite, R"("UNIT","","m","m","","","","")", R"("UNIT","","m","m")")); }),
      "site.ags:16: field GEOL: UNIT line: the row has 3 fields but the group has 7 headings");
  EXPECT_EQ(ParseErrorOf([] {
              Read(Edit(kSite, R"("TYPE","ID","2DP","2DP","X","PA","X","X")",
                        R"("TIPO","ID","2DP","2DP","X","PA","X","X")"));
            }),
            "site.ags:17: field GEOL: unknown line type 'TIPO': expected GROUP, HEADING, UNIT, "
            "TYPE or DATA");
  EXPECT_EQ(ParseErrorOf([] { Read(Edit(kSite, R"("GROUP","GEOL")", R"("GROUP","GEOL","X")")); }),
            "site.ags:14: field GROUP: a GROUP line holds exactly one group name");
  EXPECT_EQ(ParseErrorOf([] {
              Read(kSite + "\n" +
                   R"("GROUP","LOCA")"
                   "\n");
            }),
            "site.ags:23: field LOCA: group LOCA appears twice (first at line 7)");
  EXPECT_EQ(ParseErrorOf([] {
              Read(Edit(kSite, R"("HEADING","LOCA_ID","LOCA_TYPE","LOCA_NATE")",
                        R"("HEADING","LOCA_ID","LOCA_ID","LOCA_NATE")"));
            }),
            "site.ags:8: field LOCA_ID: heading appears twice in group LOCA");
}

TEST(Ags4SyntaxTest, DataOutsideAGroupAndNonAgsTextAreParseErrors) {
  EXPECT_EQ(ParseErrorOf([] {
              Read(Edit(kSite, "\n\"GROUP\",\"GEOL\"", "\n\"DATA\",\"x\"\n\"GROUP\",\"GEOL\""));
            }),
            "site.ags:14: 'DATA' line outside a group: a group starts with a GROUP line");
  EXPECT_EQ(ParseErrorOf([] { Read("HOLEID,X,Y\n"); }),
            "site.ags:1: not an AGS file: the first line is neither a \"GROUP\" line (AGS4) nor a "
            "\"**NAME\" line (AGS 3.1)");
}

TEST(Ags4SyntaxTest, GroupsWeDoNotReadMayBeBroken) {
  // A PROJ group whose rows do not match its headings does not stop the reading of the geology.
  const auto set = Read(Edit(kSite, R"("DATA","P1","Test site, north")", R"("DATA","P1")"));
  EXPECT_EQ(set.holes.size(), 2U);
}

TEST(Ags4SyntaxTest, UndoubledQuotesAreReadWithAWarning) {
  const auto text = Edit(kSite,
                         R"("Dense GRAVEL","501","RTD","")"
                         "\n"
                         R"("DATA","BH2")",
                         R"("Dense "coarse" GRAVEL","501","RTD","")"
                         "\n"
                         R"("DATA","BH2")");
  const auto set = Read(text);
  EXPECT_EQ(set.holes[0].strata[1].dc.strName, L"RTD");
  EXPECT_EQ(Messages(set.diagnostics),
            (std::vector<std::string>{"site.ags:19: warning: quotes not doubled inside a field; "
                                      "read leniently, keeping stray quotes as text"}));
}

TEST(Ags4SyntaxTest, BlankLinesBetweenGroupsAreOptional) {
  const auto set = Read(Edit(Edit(kSite, "\n\n\"GROUP\",\"LOCA\"", "\n\"GROUP\",\"LOCA\""),
                             "\n\n\"GROUP\",\"GEOL\"", "\n\"GROUP\",\"GEOL\""));
  EXPECT_EQ(set.holes.size(), 2U);
}

} // namespace
} // namespace xklink
