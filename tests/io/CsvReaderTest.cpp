// Drillhole CSV files made by hand: header aliases, depths and elevations, the two-table form.
#include "CsvReader.h"

#include "CsvColumns.h"
#include "IoTestSupport.h"
#include "Numbers.h"
#include "Text.h"
#include "Validation.h"

#include <gtest/gtest.h>

namespace xklink {
namespace {

using testing::Messages;
using testing::ParseErrorOf;

const std::string kDepths = "HOLEID,EASTING,NORTHING,RL,FROM,TO,CODE\n"
                            "BH1,100,200,50,0,2.5,SAND\n"
                            "BH1,100,200,50,2.5,10,CLAY\n"
                            "BH2,150,200,48,0,4,SAND\n"
                            "BH2,150,200,48,4,9,CLAY\n";

BoreholeSet Read(const std::string& text, const ReadOptions& options = {}) {
  return ReadCsvBoreholes(text, "holes.csv", options);
}

std::vector<std::string> Summary(const BoreholeSet& set) {
  std::vector<std::string> out;
  for (const auto& hole : set.holes) {
    std::string line = hole.name + " @" + FormatNumber(hole.x) + "," + FormatNumber(hole.y) +
                       " top " + FormatNumber(hole.top) + ":";
    for (const auto& s : hole.strata) {
      line += " " + ToUtf8(s.dc.strName) + " " + FormatNumber(s.dc.dTopGC) + ".." +
              FormatNumber(s.dc.dBotGC);
    }
    out.push_back(line);
  }
  return out;
}

const std::vector<std::string> kExpected = {"BH1 @100,200 top 50: SAND 50..47.5 CLAY 47.5..40",
                                            "BH2 @150,200 top 48: SAND 48..44 CLAY 44..39"};

TEST(CsvReaderTest, ReadsOneRowPerStratumWithDepths) {
  const auto set = Read(kDepths);
  EXPECT_EQ(Summary(set), kExpected);
  EXPECT_TRUE(set.diagnostics.empty()) << ::testing::PrintToString(Messages(set.diagnostics));
  EXPECT_EQ(set.holes[1].where.ToString(), "holes.csv:4: field HOLEID");
  EXPECT_EQ(set.holes[1].strata[1].where.ToString(), "holes.csv:5: field CODE");
  EXPECT_EQ(set.fields.holeTop, "RL");
  EXPECT_EQ(set.fields.stratumTop, "FROM");
  EXPECT_TRUE(ValidateBoreholes(set).empty());
}

TEST(CsvReaderTest, CrlfAByteOrderMarkAndQuotingReadTheSame) {
  EXPECT_EQ(Summary(Read(testing::WithCrlf(kDepths))), kExpected);
  EXPECT_EQ(Summary(Read("\xEF\xBB\xBF" + kDepths)), kExpected);
  const std::string quoted = "\"HOLEID\",\"EASTING\",\"NORTHING\",\"RL\",\"FROM\",\"TO\",\"CODE\"\n"
                             "\"BH1\",\"100\",\"200\",\"50\",\"0\",\"2.5\",\"SAND\"\n"
                             "\"BH1\",100,200,50,2.5,10,\"CLAY\"\n"
                             "BH2,150,200,48,0,4,SAND\n"
                             "BH2,150,200,48,4,9,CLAY\n";
  EXPECT_EQ(Summary(Read(quoted)), kExpected);
}

TEST(CsvReaderTest, HeaderAliasesIgnoreCaseSpacesAndUnits) {
  const std::string text = "Hole ID,x,y,Elev,From (m),To (m),Lith\n"
                           "BH1,100,200,50,0,2.5,SAND\n"
                           "BH1,100,200,50,2.5,10,CLAY\n";
  EXPECT_EQ(Summary(Read(text)),
            (std::vector<std::string>{"BH1 @100,200 top 50: SAND 50..47.5 CLAY 47.5..40"}));
  EXPECT_EQ(NormalizeHeader(" Depth-From [m] "), "DEPTH_FROM");
  EXPECT_EQ(NormalizeHeader("bh.id"), "BH_ID");
}

TEST(CsvReaderTest, CodesAreUtf8AndTheCodeColumnCanBeChosen) {
  const std::string text = "HOLEID,X,Y,Z,FROM,TO,LITO,FORM\n"
                           "H1,0,0,10,0,3,Diab\xC3\xA1sio,Irati\n"
                           "H1,0,0,10,3,5,Carv\xC3\xA3o,Irati\n";
  EXPECT_EQ(Read(text).holes[0].strata[0].dc.strName, L"Irati"); // FORM before LITO
  ReadOptions options;
  options.codeColumn = "lito";
  const auto set = Read(text, options);
  EXPECT_EQ(set.holes[0].strata[0].dc.strName, L"Diab\u00E1sio");
  EXPECT_EQ(set.holes[0].strata[1].dc.strName, L"Carv\u00E3o");
  options.codeColumn = "CAMADA";
  EXPECT_EQ(ParseErrorOf([&] { Read(text, options); }),
            "holes.csv:1: field CAMADA: no such column in the header");
}

TEST(CsvReaderTest, InvalidUtf8IsAParseErrorWithTheLine) {
  EXPECT_EQ(ParseErrorOf([] { Read("HOLEID,X,Y,Z,FROM,TO,CODE\nH1,0,0,10,0,3,Diab\xE1sio\n"); }),
            "holes.csv:2: not valid UTF-8 at column 19; save the file as UTF-8");
}

TEST(CsvReaderTest, NamedElevationColumnsAreElevations) {
  const std::string text = "BH,E,N,GL,TOP_RL,BASE_RL,UNIT\n"
                           "BH1,100,200,50,50,47.5,SAND\n"
                           "BH1,100,200,50,47.5,40,CLAY\n";
  EXPECT_EQ(Summary(Read(text)),
            (std::vector<std::string>{"BH1 @100,200 top 50: SAND 50..47.5 CLAY 47.5..40"}));
}

TEST(CsvReaderTest, ElevationsWithoutGroundLevelPutTheCollarOnTheHighestStratum) {
  const auto set =
      Read("BH,X,Y,TOP_RL,BOTTOM_RL,CODE\nBH1,0,0,47.5,40,CLAY\nBH1,0,0,50,47.5,SAND\n");
  EXPECT_EQ(Summary(set),
            (std::vector<std::string>{"BH1 @0,0 top 50: SAND 50..47.5 CLAY 47.5..40"}));
  EXPECT_EQ(Messages(set.diagnostics),
            (std::vector<std::string>{
                "holes.csv: warning: field TOP_RL: rows not in order from the top down in 1 hole "
                "(BH1); sorted",
                "holes.csv: warning: no ground-level column: each collar is put at the top of its "
                "highest stratum"}));
}

TEST(CsvReaderTest, PlainTopAndBaseAreDecidedByTheirValues) {
  const auto depths =
      Read("BH,X,Y,Z,TOP,BASE,CODE\nBH1,0,0,50,0,2.5,SAND\nBH1,0,0,50,2.5,10,CLAY\n");
  EXPECT_EQ(Summary(depths),
            (std::vector<std::string>{"BH1 @0,0 top 50: SAND 50..47.5 CLAY 47.5..40"}));
  EXPECT_EQ(Messages(depths.diagnostics),
            (std::vector<std::string>{"holes.csv:1: warning: field TOP: TOP/BASE read as depths "
                                      "below the collar, as in 2 of 2 rows; say so to be sure"}));

  const auto elevations =
      Read("BH,X,Y,Z,TOP,BOTTOM,CODE\nBH1,0,0,50,50,47.5,SAND\nBH1,0,0,50,47.5,40,CLAY\n");
  EXPECT_EQ(Summary(elevations), Summary(depths));
  EXPECT_EQ(Messages(elevations.diagnostics),
            (std::vector<std::string>{"holes.csv:1: warning: field TOP: TOP/BOTTOM read as "
                                      "elevations, as in 2 of 2 rows; say so to be sure"}));
}

TEST(CsvReaderTest, ANamedColumnDecidesForItsPlainPartner) {
  const auto set = Read("BH,X,Y,Z,FROM,BASE,CODE\nBH1,0,0,50,0,2.5,SAND\nBH1,0,0,50,2.5,10,CLAY\n");
  EXPECT_EQ(Summary(set),
            (std::vector<std::string>{"BH1 @0,0 top 50: SAND 50..47.5 CLAY 47.5..40"}));
  EXPECT_TRUE(set.diagnostics.empty());
}

TEST(CsvReaderTest, ATieBetweenDepthsAndElevationsIsAParseError) {
  EXPECT_EQ(
      ParseErrorOf([] { Read("BH,X,Y,Z,TOP,BASE,CODE\nBH1,0,0,50,0,2,A\nBH1,0,0,50,5,3,B\n"); }),
      "holes.csv:1: field TOP: cannot tell whether TOP/BASE are depths or elevations: 1 rows "
      "have top < base and 1 have top > base; say which they are");
}

TEST(CsvReaderTest, TheUserSaysDepthsOrElevations) {
  const std::string text = "BH,X,Y,Z,TOP,BASE,CODE\nBH1,0,0,50,0,2,A\nBH1,0,0,50,5,3,B\n";
  ReadOptions options;
  options.depthMode = DepthMode::Elevations;
  const auto set = Read(text, options);
  EXPECT_EQ(Summary(set), (std::vector<std::string>{"BH1 @0,0 top 50: B 5..3 A 0..2"}));
  EXPECT_TRUE(HasErrors(ValidateBoreholes(set))); // A is upside down as elevations

  options.depthMode = DepthMode::Depths;
  EXPECT_EQ(ParseErrorOf([&] { Read("BH,X,Y,Z,TOP_RL,BASE_RL,CODE\nBH1,0,0,5,5,3,A\n", options); }),
            "holes.csv:1: no columns for the top and base of the strata as depths below the collar "
            "(FROM/TO, TOP_DEPTH/BASE_DEPTH or TOP/BASE)");
}

TEST(CsvReaderTest, MissingColumnsAreParseErrors) {
  EXPECT_EQ(ParseErrorOf([] { Read("NAME,X,Y,Z,FROM,TO,CODE\nBH1,0,0,5,0,1,A\n"); }),
            "holes.csv:1: no column for the hole name: expected one of HOLEID, HOLE_ID, HOLE, BH, "
            "BH_ID, BOREHOLE, BOREHOLE_ID, LOCA_ID, DHID");
  EXPECT_EQ(ParseErrorOf([] { Read("BH,X,Y,Z,FROM,TO,COLOUR\nBH1,0,0,5,0,1,A\n"); }),
            "holes.csv:1: no column for the stratum code: expected one of CODE, UNIT, STRAT, "
            "STRATUM, FORMATION, FORM, GEOL, GEOLOGY, GEOL_GEOL, LITH, LITHO, LITHOLOGY, LITO");
  EXPECT_EQ(ParseErrorOf([] { Read("BH,FROM,TO,CODE\nBH1,0,1,A\n"); }),
            "holes.csv:1: no column for the easting: expected one of X, EAST, EASTING, E, "
            "LOCA_NATE; an interval table needs its collar table beside it");
  EXPECT_EQ(ParseErrorOf([] { Read("BH,X,Y,FROM,TO,CODE\nBH1,0,0,0,1,A\n"); }),
            "holes.csv:1: no column for the ground level (depths are measured from it): expected "
            "one of Z, RL, GL, ELEV, ELEVATION, GROUND_LEVEL, COLLAR_RL, COLLAR_Z, LOCA_GL");
  EXPECT_EQ(ParseErrorOf([] { Read("BH,X,Y,Z,DEPTH,CODE\nBH1,0,0,0,1,A\n"); }),
            "holes.csv:1: no columns for the top and base of the strata: expected FROM/TO "
            "(depths), TOP_RL/BASE_RL (elevations) or TOP/BASE");
  EXPECT_EQ(
      ParseErrorOf([] { Read("BH,X,Y,Z,FROM,TO,TOP_RL,BASE_RL,CODE\nBH1,0,0,0,0,1,0,-1,A\n"); }),
      "holes.csv:1: the header has both depth and elevation columns for the strata; say "
      "which to read");
  EXPECT_EQ(ParseErrorOf([] { Read(""); }), "holes.csv: empty file: no header row");
}

TEST(CsvReaderTest, RowsMustBeAsWideAsTheHeader) {
  EXPECT_EQ(ParseErrorOf([] { Read(kDepths + "BH3,1,2,3,0,1\n"); }),
            "holes.csv:6: the row has 6 fields but the header has 7");
  EXPECT_EQ(ParseErrorOf([] { Read(kDepths + "BH3,1,2,3,0,1,A,extra\n"); }),
            "holes.csv:6: the row has 8 fields but the header has 7");
  // Empty cells a spreadsheet leaves beyond the last column, and rows of empty cells, are harmless.
  EXPECT_EQ(Summary(Read(kDepths + ",,,,,,\n" + "BH3,1,2,3,0,1,A,,\n")).size(), 3U);
}

TEST(CsvReaderTest, NullFieldsAreReportedWithTheirPlace) {
  const auto set = Read("HOLEID,X,Y,Z,FROM,TO,CODE\n"
                        ",0,0,5,0,1,A\n"
                        "BH1,,0,5,0,1,A\n"
                        "BH1,0,0,5,0,1,A\n"
                        "BH1,0,0,5,1,,B\n"
                        "BH1,0,0,5,1,2,\n");
  EXPECT_EQ(Messages(set.diagnostics),
            (std::vector<std::string>{
                "holes.csv:2: field HOLEID: the hole name is empty; the row is ignored",
                "holes.csv:3: field X: empty: the collar of the hole is incomplete; the row is "
                "ignored",
                "holes.csv:5: field TO: empty: the stratum cannot be placed; the row is ignored",
                "holes.csv:6: warning: field CODE: no code: the stratum gets an empty code"}));
  EXPECT_EQ(Summary(set), (std::vector<std::string>{"BH1 @0,0 top 5: A 5..4  4..3"}));
}

TEST(CsvReaderTest, NonNumbersAreParseErrorsAndNonFiniteValuesReachTheValidation) {
  EXPECT_EQ(ParseErrorOf([] { Read("BH,X,Y,Z,FROM,TO,CODE\nBH1,0,0,5,abc,1,A\n"); }),
            "holes.csv:2: field FROM: not a number: 'abc'");
  const auto set = Read("BH,X,Y,Z,FROM,TO,CODE\nBH1,nan,0,5,0,1,A\nBH2,1,0,5,0,1e999,A\n");
  EXPECT_EQ(Messages(ValidateBoreholes(set), Severity::Error),
            (std::vector<std::string>{"holes.csv:2: field X: not a finite number: nan",
                                      "holes.csv:3: field TO: not a finite number: -inf"}));
}

TEST(CsvReaderTest, ACollarThatChangesBetweenRowsIsAnError) {
  const auto set = Read("BH,X,Y,Z,FROM,TO,CODE\nBH1,0,0,5,0,1,A\nBH1,0,0.5,5.0,1,2,B\n");
  EXPECT_EQ(
      Messages(set.diagnostics),
      (std::vector<std::string>{"holes.csv:3: field Y: 0.5 differs from 0 on line 2, the first "
                                "row of hole 'BH1'"}));
}

TEST(CsvReaderTest, RowsOfAHoleAreGatheredAndSorted) {
  const auto set = Read("HOLEID,X,Y,Z,FROM,TO,CODE\n"
                        "BH2,150,200,48,4,9,CLAY\n"
                        "BH1,100,200,50,2.5,10,CLAY\n"
                        "BH2,150,200,48,0,4,SAND\n"
                        "BH1,100,200,50,0,2.5,SAND\n");
  EXPECT_EQ(Summary(set), (std::vector<std::string>{"BH2 @150,200 top 48: SAND 48..44 CLAY 44..39",
                                                    "BH1 @100,200 top 50: SAND 50..47.5 CLAY "
                                                    "47.5..40"}));
  EXPECT_EQ(Messages(set.diagnostics),
            (std::vector<std::string>{"holes.csv: warning: field FROM: rows not in order from the "
                                      "top down in 2 holes (BH2, BH1); sorted"}));
}

class TwoTableCsvTest : public ::testing::Test {
protected:
  BoreholeSet ReadPair(const std::string& collars, const std::string& intervals) {
    m_dir.Write("collar.csv", collars);
    ReadOptions options;
    options.collarFile = m_collarPath;
    return ReadCsvBoreholes(intervals, "lito.csv", options);
  }
  std::string CollarName() const { return m_collarPath.string(); }

  testing::TempDir m_dir;
  std::filesystem::path m_collarPath = m_dir.Path() / "collar.csv";
};

TEST_F(TwoTableCsvTest, JoinsCollarsAndIntervalsByHole) {
  const auto set = ReadPair("HOLEID,X,Y,Z,Length\nBH1,100,200,50,10\nBH2,150,200,48,9\n",
                            "HOLEID,FROM,TO,FORM\nBH1,0,2.5,SAND\nBH1,2.5,10,CLAY\n"
                            "BH2,0,4,SAND\nBH2,4,9,CLAY\n");
  EXPECT_EQ(Summary(set), kExpected);
  EXPECT_EQ(set.holes[1].where.ToString(), CollarName() + ":3: field HOLEID");
  EXPECT_EQ(set.holes[1].strata[0].where.ToString(), "lito.csv:4: field FORM");
  EXPECT_EQ(set.fields.holeTop, "Z");
  EXPECT_TRUE(set.diagnostics.empty()) << ::testing::PrintToString(Messages(set.diagnostics));
}

TEST_F(TwoTableCsvTest, OrphanIntervalsDuplicateAndIncompleteCollarsAreReported) {
  const auto set = ReadPair("HOLEID,X,Y,Z\nBH1,100,200,50\nBH1,1,1,1\nBH2,150,,48\nBH3,0,0,1\n",
                            "HOLEID,FROM,TO,CODE\nBH1,0,2.5,SAND\nBH2,0,4,SAND\nBH9,0,1,A\n"
                            "BH9,1,2,B\n");
  EXPECT_EQ(
      Messages(set.diagnostics),
      (std::vector<std::string>{
          CollarName() + ":3: field HOLEID: duplicate hole name 'BH1' (first at line 2); this "
                         "row is ignored",
          CollarName() + ":4: warning: field Y: hole 'BH2' left out: Y is empty",
          "lito.csv:4: field HOLEID: hole 'BH9' has intervals but no row in the collar table",
          CollarName() + ":5: warning: field HOLEID: hole 'BH3' left out: no intervals"}));
  ASSERT_EQ(set.holes.size(), 1U);
  EXPECT_EQ(set.skipped.at("BH3"), "no intervals");
}

TEST_F(TwoTableCsvTest, TheCollarTableNeedsItsColumns) {
  EXPECT_EQ(
      ParseErrorOf([&] { ReadPair("HOLEID,X,Y\nBH1,0,0\n", "HOLEID,FROM,TO,CODE\nBH1,0,1,A\n"); }),
      CollarName() + ":1: no column for the ground level (depths are measured from it): "
                     "expected one of Z, RL, GL, ELEV, ELEVATION, GROUND_LEVEL, COLLAR_RL, "
                     "COLLAR_Z, LOCA_GL");
}

} // namespace
} // namespace xklink
