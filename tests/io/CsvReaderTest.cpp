// Drillhole CSV files made by hand: header aliases, depths and elevations, the two-table form.
#include "CsvReader.h"

#include "IoTestSupport.h"
#include "Validation.h"

#include <gtest/gtest.h>

namespace xklink {
namespace {

using namespace xklink::testing;

const std::string kDepths = "HOLEID,EASTING,NORTHING,RL,FROM,TO,CODE\n"
                            "BH1,100,200,10.68,0,2.5,SAND\n"
                            "BH1,100,200,10.68,2.5,9.3,CLAY\n"
                            "BH2,150,200,48,0,4,SAND\n"
                            "BH2,150,200,48,4,9,CLAY\n";
const Lines kExpected = {"BH1 @100,200 top 10.68: SAND 10.68..8.18@2 CLAY 8.18..1.38@3",
                         "BH2 @150,200 top 48: SAND 48..44@4 CLAY 44..39@5"};

BoreholeSet Read(const std::string& text, const ReadOptions& options = {}) {
  return ReadCsvBoreholes(text, "holes.csv", options);
}

TEST(CsvReaderTest, ReadsOneRowPerStratumWithDepthsBelowTheCollar) {
  const auto set = Read(kDepths);
  EXPECT_EQ(Summary(set), kExpected);
  EXPECT_EQ(set.holes[1].where.ToString() + ", " + set.holes[1].strata[1].where.ToString() + ", " +
                set.fields.holeTop + " " + set.fields.stratumTop,
            "holes.csv:4: field HOLEID, holes.csv:5: field CODE, RL FROM");
  EXPECT_EQ(Summary(Read(WithBomAndCrlf(kDepths))), kExpected);
  // Depths from the ground level in decimals: 10.68 - 9.3 is 1.38, not 1.379999999999999.
  EXPECT_EQ(set.holes[0].strata[1].dc.dBotGC, 1.38);
  // Quoted fields keep commas, doubled quotes and line breaks; a record keeps its first line's
  // number, and blank lines are skipped but counted.
  const auto quoted =
      Read("HOLEID,X,Y,Z,FROM,TO,CODE\n\nBH1,0,0,5,0,1,\"Firm, \"\"grey\"\"\nCLAY\"\r\n"
           "BH1,0,0,5,1,2, B \n");
  EXPECT_EQ(Summary(quoted), Lines{"BH1 @0,0 top 5: Firm, \"grey\"\nCLAY 5..4@3 B 4..3@5"});
}

TEST(CsvReaderTest, AliasesAndColumnNamesOrValuesTellDepthsFromElevations) {
  const struct {
    std::string text;
    Lines warnings;
  } cases[] = {
      // Header aliases ignore case, spaces and units.
      {"Hole ID,x,y,Elev,From (m),To (m),Lith\nBH1,0,0,50,0,2.5,SAND\nBH1,0,0,50,2.5,10,CLAY\n",
       {}},
      {"BH,E,N,GL,TOP_RL,BASE_RL,UNIT\nBH1,0,0,50,50,47.5,SAND\nBH1,0,0,50,47.5,40,CLAY\n", {}},
      // A named column decides for its plain partner.
      {"BH,X,Y,Z,FROM,BASE,CODE\nBH1,0,0,50,0,2.5,SAND\nBH1,0,0,50,2.5,10,CLAY\n", {}},
      // Plain TOP and BASE: the values decide, with a warning.
      {"BH,X,Y,Z,TOP,BASE,CODE\nBH1,0,0,50,0,2.5,SAND\nBH1,0,0,50,2.5,10,CLAY\n",
       {"holes.csv:1: warning: field TOP: TOP/BASE read as depths below the collar, as in 2 of 2 "
        "rows; say so to be sure"}},
      {"BH,X,Y,Z,TOP,BOTTOM,CODE\nBH1,0,0,50,50,47.5,SAND\nBH1,0,0,50,47.5,40,CLAY\n",
       {"holes.csv:1: warning: field TOP: TOP/BOTTOM read as elevations, as in 2 of 2 rows; say "
        "so to be sure"}},
  };
  for (const auto& c : cases) {
    const auto set = Read(c.text);
    EXPECT_EQ(Summary(set), Lines{"BH1 @0,0 top 50: SAND 50..47.5@2 CLAY 47.5..40@3"}) << c.text;
    EXPECT_EQ(Messages(set.diagnostics), c.warnings);
  }
}

TEST(CsvReaderTest, ElevationsWithoutGroundLevelPutTheCollarOnTheHighestStratum) {
  const auto set =
      Read("BH,X,Y,TOP_RL,BOTTOM_RL,CODE\nBH1,0,0,47.5,40,CLAY\nBH1,0,0,50,47.5,SAND\n");
  EXPECT_EQ(Summary(set), Lines{"BH1 @0,0 top 50: SAND 50..47.5@3 CLAY 47.5..40@2"});
  EXPECT_EQ(Messages(set.diagnostics),
            (Lines{"holes.csv: warning: field TOP_RL: rows not in order from the top down in 1 "
                   "hole (BH1); sorted",
                   "holes.csv: warning: no ground-level column: each collar is put at the top of "
                   "its highest stratum"}));
}

TEST(CsvReaderTest, TheUserSaysDepthsOrElevations) {
  // Tied: one row each way, so only the user can tell.
  const std::string tied = "BH,X,Y,Z,TOP,BASE,CODE\nBH1,0,0,50,0,2,A\nBH1,0,0,50,5,3,B\n";
  EXPECT_EQ(ErrorOf([&] { Read(tied); }),
            "holes.csv:1: field TOP: cannot tell whether TOP/BASE are depths or elevations: 1 rows "
            "have top < base and 1 have top > base; say which they are");
  ReadOptions options;
  options.depthMode = DepthMode::Elevations;
  const auto set = Read(tied, options);
  EXPECT_EQ(Summary(set), Lines{"BH1 @0,0 top 50: B 5..3@3 A 0..2@2"});
  EXPECT_TRUE(HasErrors(ValidateBoreholes(set))); // A is upside down as elevations
  options.depthMode = DepthMode::Depths;
  EXPECT_EQ(ErrorOf([&] { Read("BH,X,Y,Z,TOP_RL,BASE_RL,CODE\nBH1,0,0,5,5,3,A\n", options); }),
            "holes.csv:1: no columns for the top and base of the strata as depths below the collar "
            "(FROM/TO, TOP_DEPTH/BASE_DEPTH or TOP/BASE)");
}

// The alternatives a message lists are the reader's own constants: only their start is checked.
TEST(CsvReaderTest, BadFilesAreParseErrorsNamingTheLineAndField) {
  const struct {
    std::string text;
    std::string error; // "..." at the end: the start of the message
  } cases[] = {
      {"NAME,X,Y,Z,FROM,TO,CODE\nBH1,0,0,5,0,1,A\n",
       "holes.csv:1: no column for the hole name: expected one of HOLEID, ..."},
      {"BH,X,Y,Z,FROM,TO,COLOUR\nBH1,0,0,5,0,1,A\n",
       "holes.csv:1: no column for the stratum code: expected one of CODE, ..."},
      {"BH,FROM,TO,CODE\nBH1,0,1,A\n",
       "holes.csv:1: no column for the easting: expected one of X, EAST, EASTING, E, LOCA_NATE; "
       "an interval table needs its collar table beside it"},
      {"BH,X,Y,FROM,TO,CODE\nBH1,0,0,0,1,A\n",
       "holes.csv:1: no column for the ground level (depths are measured from it): expected one "
       "of Z, ..."},
      {"BH,X,Y,Z,DEPTH,CODE\nBH1,0,0,0,1,A\n",
       "holes.csv:1: no columns for the top and base of the strata: expected FROM/TO (depths), "
       "TOP_RL/BASE_RL (elevations) or TOP/BASE"},
      {"BH,X,Y,Z,FROM,TO,TOP_RL,BASE_RL,CODE\nBH1,0,0,0,0,1,0,-1,A\n",
       "holes.csv:1: the header has both depth and elevation columns for the strata; say which to "
       "read"},
      {"", "holes.csv: empty file: no header row"},
      {kDepths + "BH3,1,2,3,0,1\n", "holes.csv:6: the row has 6 fields but the header has 7"},
      {kDepths + "BH3,1,2,3,0,1,A,extra\n",
       "holes.csv:6: the row has 8 fields but the header has 7"},
      {"BH,X,Y,Z,FROM,TO,CODE\nBH1,0,0,5,abc,1,A\n",
       "holes.csv:2: field FROM: not a number: 'abc'"},
      {"BH,X,Y,Z,FROM,TO,CODE\nBH1,0,0,5,0,1,ab\"c\n",
       "holes.csv:2: bad quoting at column 17: a quote inside an unquoted field or text after a "
       "closing quote (write a quote inside a quoted field as \"\")"},
      {"BH,X,Y,Z,FROM,TO,CODE\nBH1,0,0,5,0,1,\"A\nBH1,0,0,5,1,2,B\n",
       "holes.csv:2: a quoted field opened in this record is never closed"},
      {"HOLEID,X,Y,Z,FROM,TO,CODE\nH1,0,0,10,0,3,Diab\xE1sio\n",
       "holes.csv:2: not valid UTF-8 at column 19; save the file as UTF-8"},
  };
  for (const auto& c : cases) {
    const auto error = ErrorOf([&] { Read(c.text); });
    const auto dots = c.error.find("...");
    EXPECT_EQ(dots == std::string::npos ? error : error.substr(0, dots), c.error.substr(0, dots));
  }
  // Empty cells a spreadsheet leaves beyond the last column, and rows of empty cells, are harmless.
  EXPECT_EQ(Read(kDepths + ",,,,,,\n" + "BH3,1,2,3,0,1,A,,\n").holes.size(), 3U);
}

TEST(CsvReaderTest, EmptyFieldsDisagreeingCollarsAndNonFiniteValuesAreReportedInPlace) {
  const auto set = Read("HOLEID,X,Y,Z,FROM,TO,CODE\n"
                        ",0,0,5,0,1,A\n"
                        "BH1,,0,5,0,1,A\n"
                        "BH1,0,0,5,0,1,A\n"
                        "BH1,0,0,5,1,,B\n"
                        "BH1,0,0,5,1,2,\n"
                        "BH1,0,0.5,5.0,2,3,C\n");
  EXPECT_EQ(Messages(set.diagnostics),
            (Lines{"holes.csv:2: field HOLEID: the hole name is empty; the row is ignored",
                   "holes.csv:3: field X: empty: the collar of the hole is incomplete; the row is "
                   "ignored",
                   "holes.csv:5: field TO: empty: the stratum cannot be placed; the row is ignored",
                   "holes.csv:6: warning: field CODE: no code: the stratum gets an empty code",
                   "holes.csv:7: field Y: 0.5 differs from 0 on line 4, the first row of hole "
                   "'BH1'"}));
  EXPECT_EQ(Summary(set), Lines{"BH1 @0,0 top 5: A 5..4@4  4..3@6 C 3..2@7"});
  const auto infinite = Read("BH,X,Y,Z,FROM,TO,CODE\nBH1,nan,0,5,0,1,A\nBH2,1,0,5,0,1e999,A\n");
  EXPECT_EQ(Messages(ValidateBoreholes(infinite), Severity::Error),
            (Lines{"holes.csv:2: field X: not a finite number: nan",
                   "holes.csv:3: field TO: not a finite number: -inf"}));
}

TEST(CsvReaderTest, OrphanIntervalsDuplicateAndIncompleteCollarsAreReported) {
  TempDir dir;
  const std::string collars = (dir / "collar.csv").string();
  const auto readPair = [&](const std::string& collarText, const std::string& intervals) {
    ReadOptions options;
    options.collarFile = dir.Write("collar.csv", collarText);
    return ReadCsvBoreholes(intervals, "lito.csv", options);
  };
  const auto set = readPair("HOLEID,X,Y,Z\nBH1,100,200,50\nBH1,1,1,1\nBH2,150,,48\nBH3,0,0,1\n",
                            "HOLEID,FROM,TO,CODE\nBH1,0,2.5,SAND\nBH2,0,4,SAND\nBH9,0,1,A\n"
                            "BH9,1,2,B\n");
  EXPECT_EQ(Messages(set.diagnostics),
            (Lines{collars + ":3: field HOLEID: duplicate hole name 'BH1' (first at line 2); "
                             "this row is ignored",
                   collars + ":4: warning: field Y: hole 'BH2' left out: Y is empty",
                   "lito.csv:4: field HOLEID: hole 'BH9' has intervals but no row in the collar "
                   "table",
                   collars + ":5: warning: field HOLEID: hole 'BH3' left out: no intervals"}));
  EXPECT_EQ(Summary(set), Lines{"BH1 @100,200 top 50: SAND 50..47.5@2"});
  EXPECT_EQ(set.holes[0].where.ToString(), collars + ":2: field HOLEID");
  EXPECT_EQ(set.skipped.at("BH3"), "no intervals");
  EXPECT_EQ(ErrorOf([&] { readPair("HOLEID,X,Y\nBH1,0,0\n", "HOLEID,FROM,TO,CODE\nBH1,0,1,A\n"); }),
            collars +
                ":1: no column for the ground level (depths are measured from it): expected one "
                "of Z, RL, GL, ELEV, ELEVATION, GROUND_LEVEL, COLLAR_RL, COLLAR_Z, LOCA_GL");
}

} // namespace
} // namespace xklink
