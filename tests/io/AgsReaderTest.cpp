// AGS4 files made by hand, each edit hitting one rule of the format ("GROUP"/"HEADING"/"DATA"
// lines, groups given twice), codes and their fall-backs, rows the reader leaves out; how fields
// are quoted; what the tool draws beside the logs (water strikes, standing levels, SPT results).
// AGS 3.1 - "**" groups, <UNITS> and <CONT> rows, lines that wrap - is shown by the real files
// (RealFilesTest: NLE, C6034); here, where its records start and the files it refuses.
#include "AgsReader.h"

#include "AgsInSitu.h"
#include "AgsTokenizer.h"
#include "IoTestSupport.h"

#include <gtest/gtest.h>

namespace xklink {
namespace {

using namespace xklink::testing;

// LOCA rows on lines 3-4, GEOL rows on lines 10-13.
const std::string kSite = R"("GROUP","LOCA"
"HEADING","LOCA_ID","LOCA_TYPE","LOCA_NATE","LOCA_NATN","LOCA_GL","LOCA_FDEP"
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
const Lines kSiteHoles = {"BH1 @1000,2000 top 10: ALV 10..8.5@10 RTD 8.5..5@11",
                          "BH2 @1100,2000 top 12.5: MG 12.5..10.5@12 RTD 10.5..6.5@13"};
const std::string kBh2Loca = R"("DATA","BH2","CP","1100.00","2000.00","12.50","6.00")";

BoreholeSet Read(const std::string& text, const ReadOptions& options = {}) {
  return ReadAgsBoreholes(text, "site.ags", options);
}

ReadOptions CodeColumn(const std::string& name) {
  ReadOptions options;
  options.codeColumn = name;
  return options;
}

TEST(AgsReaderTest, ReadsHolesWithElevationsFromDepthsAndTheirPlaces) {
  const auto set = Read(kSite);
  EXPECT_EQ(Summary(set), kSiteHoles);
  // CRLF and a byte order mark change nothing, not even the line numbers.
  EXPECT_EQ(Summary(Read(WithBomAndCrlf(kSite))), kSiteHoles);
  EXPECT_EQ(set.fields.holeTop + " " + set.fields.stratumBottom, "LOCA_GL GEOL_BASE");
  // Bytes outside UTF-8 are read as Windows-1252, with a warning.
  const auto latin = Read(Edit(kSite, "\"ALV\"", "\"Argila \xE1\""));
  EXPECT_EQ(latin.holes[0].strata[0].dc.strName, L"Argila \u00E1");
  EXPECT_EQ(
      Messages(latin.diagnostics),
      Lines{"site.ags:10: warning: not valid UTF-8; bytes outside UTF-8 read as Windows-1252"});
}

TEST(AgsReaderTest, AGroupGivenAgainAddsItsRowsMatchedByHeading) {
  // BH2's LOCA row moved to a second LOCA group after GEOL, its headings in another order.
  const auto set = Read(Edit(kSite, kBh2Loca, "") +
                        "\n\"GROUP\",\"LOCA\"\n"
                        "\"HEADING\",\"LOCA_GL\",\"LOCA_NATN\",\"LOCA_ID\",\"LOCA_NATE\"\n"
                        "\"DATA\",\"12.50\",\"2000.00\",\"BH2\",\"1100.00\"\n");
  EXPECT_EQ(Summary(set), kSiteHoles);
  EXPECT_EQ(Messages(set.diagnostics),
            Lines{"site.ags:15: warning: field LOCA: group LOCA appears again (first at line 1); "
                  "its rows are read with those of the first, matched by heading"});
}

TEST(AgsReaderTest, CodesComeFromTheFirstFilledColumnAndAHoleFallsBackOnce) {
  // Only legend codes are shown by the real files (RealFilesTest: DLR Woolwich).
  const std::string none = Edit(kSite, R"("GEOL_LEG","GEOL_GEOL","GEOL_GEO2")", R"("L","G","G2")");
  const struct {
    std::string text;
    ReadOptions options;
    Lines codes; // of BH1 and BH2, ';' after each
    Lines messages;
  } cases[] = {
      {kSite, CodeColumn("geol_leg"), {"201;501;", "102;501;"}, {}},
      // BH2 logged without geological units: its legend codes, said once for the file.
      {Edit(Edit(kSite, R"("102","MG")", R"("102","?")"),
            R"("2.00","6.00","Dense GRAVEL","501","RTD")",
            R"("2.00","6.00","Dense GRAVEL","501","")"),
       {},
       {"ALV;RTD;", "102;501;"},
       {"site.ags:7: warning: field GEOL_LEG: GEOL_GEOL is empty on most rows of 1 hole (BH2): "
        "their codes are read from GEOL_LEG"}},
      // The user's column holds for every hole, empty or not.
      {Edit(kSite, R"("102","MG")", R"("102","-")"),
       CodeColumn("GEOL_GEOL"),
       {"ALV;RTD;", ";RTD;"},
       {"site.ags:12: warning: field GEOL_GEOL: no code: the stratum gets an empty code"}},
      {none,
       {},
       {"CLAY;GRAVEL;", "MADE GROUND;GRAVEL;"},
       {"site.ags:7: warning: field GEOL_DESC: no code column (GEOL_GEOL, GEOL_LEG, GEOL_GEO2) "
        "is filled: the strata are named by the soil or rock in capitals of GEOL_DESC ('Firm "
        "brown sandy CLAY' gives CLAY)"}},
  };
  for (const auto& c : cases) {
    const auto set = Read(c.text, c.options);
    Lines codes;
    for (const auto& hole : set.holes) {
      codes.push_back(Codes(hole));
    }
    EXPECT_EQ(codes, c.codes) << c.text;
    EXPECT_EQ(Messages(set.diagnostics), c.messages) << c.text;
  }
  EXPECT_EQ(ErrorOf([&] {
              Read(Edit(Edit(Edit(Edit(none, "sandy\"\" CLAY", "sandy\"\" clay"), "Dense GRAVEL",
                                  "gravel"),
                             "MADE GROUND", "fill"),
                        "Dense GRAVEL", "gravel"));
            }),
            "site.ags:7: field GEOL_GEOL: no stratum codes: GEOL_GEOL, GEOL_LEG and GEOL_GEO2 are "
            "missing or empty in every row, and no GEOL_DESC names a soil in capitals; name the "
            "column that holds the codes");
  EXPECT_EQ(ErrorOf([] { Read(kSite, CodeColumn("GEOL_BGS")); }),
            "site.ags:7: field GEOL_BGS: group GEOL has no heading GEOL_BGS");
}

// A hole whose position is empty is shown by the real files (RealFilesTest: C6034).
TEST(AgsReaderTest, RowsThatCannotBeUsedAreLeftOutAndTiedToTheirHole) {
  const std::string noMore = "site.ags:4: warning: field LOCA_FDEP: the geology of hole 'BH2' ends "
                             "at depth 2.00 but the hole goes down to 6.00: the section shows "
                             "nothing below the last logged stratum";
  const std::string noLoca = "site.ags:12: field LOCA_ID: hole 'BH2' has GEOL rows but no LOCA row";
  const std::string bh2Cut = "BH2 @1100,2000 top 12.5: MG 12.5..10.5@12";
  const struct {
    std::string edit; // of BH2's rows
    std::string to;
    Lines holes;
    Lines messages;
  } cases[] = {
      {kBh2Loca,
       R"("DATA","BH2","CP","1100.00","2000.00","","6.00")"
       "\n"
       R"("DATA","TP9","TP","1200.00","2000.00","11.00","")",
       {"BH1 @1000,2000 top 10: ALV 10..8.5@11 RTD 8.5..5@12",
        "BH2 @1100,2000 top 0: MG 0..-2@13 RTD -2..-6@14"},
       {"site.ags:5: warning: field LOCA_ID: hole 'TP9' left out: no geology (no GEOL rows)"}},
      {R"("1100.00","2000.00")",
       R"("1100.00","x")",
       {kSiteHoles[0]},
       {"site.ags:4: warning: field LOCA_NATN: hole 'BH2' left out: LOCA_NATN is not a number: "
        "'x'"}},
      {kBh2Loca,
       R"("DATA","BH2","CP","1100.00","2000.00","12.50")",
       {kSiteHoles[0]},
       {"site.ags:4: field LOCA: the row has 5 fields but the group has 6 headings; the row is "
        "left out",
        noLoca}},
      {R"("DATA","BH2","CP")",
       R"("DATA","BH1","CP")",
       {kSiteHoles[0]},
       {"site.ags:4: field LOCA_ID: duplicate hole name 'BH1' (first at line 3); this row is "
        "ignored",
        noLoca}},
      // "Continued on sheet 2" rows have no base.
      {R"("BH2","2.00","6.00","Dense GRAVEL")",
       R"("BH2","6.00","","Continued on sheet 2")",
       {kSiteHoles[0], bh2Cut},
       {"site.ags:13: warning: field GEOL_BASE: empty: the stratum cannot be placed ('Continued "
        "on sheet 2'); the row is left out",
        noMore}},
      {R"("BH2","2.00","6.00")",
       R"("BH2","2.00","6,0")",
       {kSiteHoles[0], bh2Cut},
       {"site.ags:13: field GEOL_BASE: not a number: '6,0'; the row is left out", noMore}},
  };
  for (const auto& c : cases) {
    const auto set = Read(Edit(kSite, c.edit, c.to));
    EXPECT_EQ(Summary(set), c.holes) << c.to;
    EXPECT_EQ(Messages(set.diagnostics), c.messages) << c.to;
    for (const auto& d : set.diagnostics) {
      EXPECT_FALSE(d.hole.empty()) << d.ToString();
    }
  }
}

TEST(AgsReaderTest, BadFilesAreParseErrorsNamingTheLineAndField) {
  const struct {
    std::string text;
    const char* error;
  } cases[] = {
      {Edit(kSite, R"(,"LOCA_NATE","LOCA_NATN")", R"(,"LOCA_X","LOCA_NATN")"),
       "site.ags:2: field LOCA_NATE: group LOCA has no heading LOCA_NATE"},
      {kSite.substr(0, kSite.find("\"GROUP\",\"GEOL\"")),
       "site.ags: no GEOL group: the file holds no geology"},
      {kSite.substr(kSite.find("\"GROUP\",\"GEOL\"")),
       "site.ags: no LOCA group: the holes of the GEOL group have no position or ground level"},
      {Edit(kSite, R"("UNIT","","m","m","","","","")", R"("UNIT","","m","m")"),
       "site.ags:8: field GEOL: UNIT line: the row has 3 fields but the group has 7 headings"},
      {Edit(kSite, R"("TYPE","ID","2DP","2DP","X")", R"("TIPO","ID","2DP","2DP","X")"),
       "site.ags:9: field GEOL: unknown line type 'TIPO': expected GROUP, HEADING, UNIT, TYPE or "
       "DATA"},
      {Edit(kSite, R"("LOCA_ID","LOCA_TYPE")", R"("LOCA_ID","LOCA_ID")"),
       "site.ags:2: field LOCA_ID: heading appears twice in group LOCA"},
      {"HOLEID,X,Y\n", "site.ags:1: not an AGS file: the first line is neither a \"GROUP\" line "
                       "(AGS4) nor a \"**NAME\" line (AGS 3.1)"},
      {" \r\n\n", "site.ags: empty file: no AGS groups"},
      // AGS 3.1
      {"\"**HOLE\"\n\"*HOLE_ID\",\"HOLE_GL\"\n",
       "site.ags:2: field HOLE_GL: a heading of AGS 3.1 starts with '*'"},
      {"\"**PROJ\"\n\n\"P1\",\"x\"\n",
       "site.ags:3: line outside a group: a group starts with a \"**NAME\" line"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ErrorOf([&] { Read(c.text); }), c.error);
  }
}

// AGS fields quoted as producers write them (CSV quoting is the CSV reader's tests'; lines that
// wrap after a comma are the real files'): "line: field|field|..." for each record, then the
// warnings.
Lines AgsRecords(std::string text, AgsEdition edition = AgsEdition::Ags4) {
  std::vector<Diagnostic> diagnostics;
  AgsTokenizer tokens(text, "t.ags", edition, diagnostics);
  Lines out;
  AgsRecord record;
  while (tokens.Next(record)) {
    std::string line = std::to_string(record.line) + ":";
    for (std::size_t i = 0; i < record.fields.size(); ++i) {
      line += (i == 0 ? "" : "|") + std::string(record.fields[i]);
    }
    out.push_back(line);
  }
  tokens.Finish();
  for (const auto& message : Messages(diagnostics)) {
    out.push_back(message);
  }
  return out;
}

TEST(AgsTokenizerTest, QuotedFieldsLineBreaksInsideThemAndStrayQuotes) {
  const std::string stray = "t.ags:1: warning: quotes not doubled inside a field; read leniently, "
                            "keeping stray quotes as text";
  const struct {
    std::string text;
    Lines records;
  } cases[] = {
      {"\"DATA\",\"BH1\",\"Soft, brown \"\"CLAY\"\"\",\"\"\r\n\n \"x\" , y \n",
       {"1:DATA|BH1|Soft, brown \"CLAY\"|", "2:", "3:x|y"}},
      // A description typed with Enter between sentences, the next line indented by a tab.
      {"\"DATA\",\"Firm CLAY.\r\n\tFrom 1.30m soft.\",\"201\"\r\n\"DATA\",\"x\"\r\n",
       {"1:DATA|Firm CLAY.\n\tFrom 1.30m soft.|201", "3:DATA|x"}},
      {"\"DATA\",\"Ashfield Area \"C\" Development, Dunbar\",\"x\"\n",
       {"1:DATA|Ashfield Area \"C\" Development, Dunbar|x", stray}},
      // A quote left open where the next line starts a record of its own was a stray one.
      {"\"DATA\",\"5\" pipe\n\"DATA\",\"x\"\n\"DATA\",\"8\" pipe\",\"z\"\n",
       {"1:DATA|5\" pipe", "2:DATA|x", "3:DATA|8\" pipe|z", stray + " (here and on 1 more line)"}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(AgsRecords(c.text), c.records) << c.text;
  }
  // AGS 3.1 lines carry no keyword: any line that starts with a quote starts a record.
  EXPECT_EQ(AgsRecords("\"BH1\",\"5\" pipe\n\"BH2\",\"x\"\n", AgsEdition::Ags3)[1], "2:BH2|x");
  // A file cut inside a quoted field has lost rows: not a file to draw from.
  EXPECT_EQ(ErrorOf([] { AgsRecords("\"DATA\",\"x\"\n\"DATA\",\"Firm\n"); }),
            "t.ags:2: a quoted field opened on this line is never closed: the file ends inside it "
            "(was it cut short?)");
}

// One line per record: "strike 12.8 -> 12.2 after 20 at 2000-02-16 (line 5)", "spt 1.2 N=7".
Lines InSituSummary(const HoleInSitu& hole) {
  Lines lines;
  const auto optional = [](const std::optional<double>& v) {
    return v ? FormatNumber(*v) : std::string("?");
  };
  for (const WaterStrike& s : hole.waterStrikes) {
    lines.push_back("strike " + FormatNumber(s.depth) + " -> " + optional(s.roseTo) + " after " +
                    optional(s.minutes) + " at " + s.time + " (line " +
                    std::to_string(s.where.line) + ")");
  }
  for (const StandingLevel& s : hole.standingLevels) {
    lines.push_back("level " + FormatNumber(s.depth) + " in " + s.instrument + " at " + s.time);
  }
  for (const SptResult& t : hole.spt) {
    lines.push_back("spt " + FormatNumber(t.depth) + " " + SptLabel(t));
  }
  return lines;
}

// Water strikes, standing levels and SPT results, one rule per row. The real files that carry them
// are read through the tool (InSituSectionTest), which shows the reading taken longest after a
// strike and results as the log reports them. WSTG rows on lines 3-4, WSTD on lines 8-9, MOND on
// lines 13-15, ISPT on lines 19-21.
const std::string kAgs4 = R"ags("GROUP","WSTG"
"HEADING","LOCA_ID","WSTG_DPTH","WSTG_DTIM","WSTG_REM"
"DATA","BH1","","","Strikes not recorded during rotary drilling"
"DATA","BH1","2.10","2000-02-16T09:00","Seepage"

"GROUP","WSTD"
"HEADING","LOCA_ID","WSTG_DPTH","WSTD_NMIN","WSTD_POST"
"DATA","BH1","12.00","20","11.00"
"DATA","BH1","2.10","abc","2.00"

"GROUP","MOND"
"HEADING","LOCA_ID","MONG_ID","MOND_DTIM","MOND_TYPE","MOND_RDNG"
"DATA","BH1","SP1","2000-03-01","WDEP","5.85"
"DATA","BH1","SP1","2000-03-08","WDEP",""
"DATA","BH1","SP1","2000-03-08","HEAD","11.50"

"GROUP","ISPT"
"HEADING","LOCA_ID","ISPT_TOP","ISPT_NVAL","ISPT_REP","ISPT_MAIN","ISPT_INC3","ISPT_INC4","ISPT_PEN3","ISPT_PEN4"
"DATA","BH1","6.50","","","","30","20","75","0"
"DATA","BH1","8.00","","","","","","",""
"DATA","BH1","-1.0","12","","","","","",""
)ags";

TEST(InSituTest, StrikesOutsideTheirGroupIncrementsOfARefusalAndRowsLeftOut) {
  std::vector<Diagnostic> diagnostics;
  EXPECT_EQ(InSituSummary(ReadAgsInSitu(kAgs4, "site.ags", diagnostics).at("BH1")),
            (Lines{
                "strike 2.1 -> 2 after ? at 2000-02-16T09:00 (line 4)",
                "strike 12 -> 11 after 20 at  (line 8)", // readings of an unlisted strike
                "level 5.85 in SP1 at 2000-03-01",       // HEAD readings and dry visits left out
                "spt 6.5 50 for 75 mm",                  // a refusal from its increments
            }));
  EXPECT_EQ(
      Messages(diagnostics),
      (Lines{"site.ags:9: warning: field WSTD_NMIN: not a number: 'abc'; the value is left out",
             "site.ags:20: warning: field ISPT_TOP: SPT without a result (no N, report or blow "
             "count); left out",
             "site.ags:21: warning: field ISPT_TOP: negative depth -1.0; the row is left out"}));
}

} // namespace
} // namespace xklink
