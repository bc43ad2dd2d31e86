// The readers on real, public borehole files (see ATTRIBUTION.md beside them). Every expectation
// here was read off the files by eye or counted with other tools. What the validation and the hole
// policy make of them is shown through the tool (ValidationErrorsTest).
#include "IoTestSupport.h"
#include "ReadBoreholes.h"
#include "Validation.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <set>

namespace xklink {
namespace {

using xklink::testing::Codes;
using xklink::testing::Messages;

const std::filesystem::path kReal = XKLINKDC_REAL_DATA_DIR;
const std::string kNle = "nle-battersea/21-7-10-NLE.ags";
const std::string kRoch = "river-roch/River_Roch_Flood_Alleviation_Scheme.ags";
const std::string kRochHole = "RIVER ROCH FLOOD ALLEVIATION SCHEME ";
using Names = std::set<std::string>;

// The format is told by the extension.
BoreholeSet ReadReal(const std::string& file, bool merge = false, ReadOptions options = {}) {
  options.mergeRepeats = merge;
  return ReadBoreholes(kReal / file, DetectFormat(kReal / file), options);
}

BoreholeSet ReadArarangua(bool merge = false, ReadOptions options = {}) {
  options.collarFile = kReal / "../ararangua-gpl3/ara_collar.csv";
  return ReadReal("../ararangua-gpl3/ara_lito.csv", merge, options);
}

// "holes/strata".
std::string Counts(const BoreholeSet& set) {
  std::size_t strata = 0;
  for (const auto& hole : set.holes) {
    strata += hole.strata.size();
  }
  return std::to_string(set.holes.size()) + "/" + std::to_string(strata);
}

const HoleRecord& Hole(const BoreholeSet& set, const std::string& name) {
  const auto it = std::find_if(set.holes.begin(), set.holes.end(),
                               [&](const HoleRecord& h) { return h.name == name; });
  if (it == set.holes.end()) {
    throw std::runtime_error("no hole " + name);
  }
  return *it;
}

// Stratum i of a hole: "code top..bottom@line field", the elevations in metres to 0.1 mm.
std::string Stratum(const HoleRecord& hole, std::size_t i) {
  const auto& s = hole.strata.at(i);
  return ToUtf8(s.dc.strName) + " " + FormatMetres(s.dc.dTopGC) + ".." + FormatMetres(s.dc.dBotGC) +
         "@" + std::to_string(s.where.line) + " " + s.where.field;
}

// Each AGS file: the holes and strata read, one stratum as the file gives it, and the holes with
// errors. Stratum lines are those of the file, whatever order its rows come in.
TEST(RealFilesTest, EveryAgsFileGivesItsHolesAndStrataAtTheirLines) {
  const struct {
    std::string file;
    std::string counts; // holes/strata
    std::string hole;
    std::size_t stratum;
    std::string expected;
    Names errors = {};
  } files[] = {
      // M621 widening, Leeds: AGS4, codes in GEOL_GEOL, two overlaps left as found.
      {"m621-widening/M621_Widening.ags", "31/348", "BH01", 0,
       "Made Ground 45.56..45.06@808 GEOL_GEOL", Names{"BH07", "BH11"}},
      // DLR Woolwich: only legend codes (GEOL_GEOL there and empty).
      {"dlr-woolwich/DLR_Woolwich_Extension.ags", "25/200", "BH106", 0,
       "102 4.25..4.05@2082 GEOL_LEG"},
      // NLE Battersea, AGS 3.1: BH07 0.1-2.1 carries its code only on the <CONT> line.
      {kNle, "10/105", "BH07", 1, "MG 3.15..1.15@1187 GEOL_GEOL"},
      // C6034, AGS 3.1 whose headings, <UNITS> and data lines wrap, the HOLE group given twice:
      // the legend code of BH 1 4.00-5.85 stands on the <CONT> line below its row.
      {"c6034-ags3/C6034.ags", "25/104", "BH 1", 2, "205 85.218..83.368@798 GEOL_LEG"},
      // River Roch: descriptions run over several lines, the next ones indented by a tab; TP43
      // has no legend code, only GEOL_GEO2.
      {kRoch, "19/77", kRochHole + "TP43", 0, "MADE GROUND 144.75..144.25@58 GEOL_GEO2"},
      // Shottlegate: never levelled (LOCA_GL empty), so in depth.
      {"shottlegate/Shottlegate_Project.ags", "3/7", "Shottlegate BH3", 2,
       "801 -3..-6@68 GEOL_LEG"},
      // DLR City Airport: 100 locations, the rows of 95 holes out of order.
      {"dlr-city-airport/DLR_City_Airport_Extension.ags", "100/775", "BH134", 0,
       "101 4.49..4.44@978 GEOL_LEG"},
  };
  for (const auto& f : files) {
    SCOPED_TRACE(f.file);
    const auto set = ReadReal(f.file);
    EXPECT_EQ(Counts(set), f.counts);
    EXPECT_EQ(Stratum(Hole(set, f.hole), f.stratum), f.expected);
    const auto diagnostics = ValidateBoreholes(set);
    Names concerned; // the holes with errors, one error each
    for (const auto& d : diagnostics) {
      if (d.severity == Severity::Error) {
        concerned.insert(d.hole);
      }
    }
    EXPECT_EQ(concerned, f.errors);
    EXPECT_EQ(Messages(diagnostics, Severity::Error).size(), f.errors.size());
  }
}

TEST(RealFilesTest, HolesLeftOutContinuedTextsAndTheMeaningsOfTheCodesUsed) {
  ReadOptions inSitu; // with the descriptions
  inSitu.inSitu = true;
  const auto c6034 = ReadReal("c6034-ags3/C6034.ags", false, inSitu);
  EXPECT_EQ(c6034.skipped, (std::map<std::string, std::string>{{"BH 3", "HOLE_NATE is empty"},
                                                               {"BH 4", "HOLE_NATE is empty"},
                                                               {"BH 5", "HOLE_NATE is empty"},
                                                               {"BH 6", "HOLE_NATE is empty"}}));
  EXPECT_EQ(c6034.codeDescriptions.at("801"), "MUDSTONE");
  // A <CONT> row continues the text of the row above: BH 1 4.00-5.85 ends "(GL" "ACIAL DEPOSITS)".
  const auto& text = c6034.inSitu.at("BH 1").descriptions.at(2).text;
  EXPECT_EQ(text.substr(text.size() - 35), "mixed lithology. (GLACIAL DEPOSITS)");
  EXPECT_EQ(ReadReal("dlr-city-airport/DLR_City_Airport_Extension.ags").codeDescriptions.at("805"),
            "CHALK");
  // River Roch's ABBR lists codes as their own meaning, which is nothing to show.
  EXPECT_TRUE(ReadReal(kRoch).codeDescriptions.empty());
}

// DLR Woolwich: rows not in depth order, and river holes below datum.
TEST(DlrWoolwichTest, RowsOutOfOrderAreSaidOnceNamingTheHolesConcerned) {
  const auto set = ReadReal("dlr-woolwich/DLR_Woolwich_Extension.ags");
  EXPECT_EQ(Hole(set, "BH302").top, -13.12);
  const auto diagnostics = ValidateBoreholes(set);
  const auto sorted = std::find_if(diagnostics.begin(), diagnostics.end(), [](const Diagnostic& d) {
    return d.message.find("not in depth order") != std::string::npos;
  });
  ASSERT_NE(sorted, diagnostics.end());
  EXPECT_NE(sorted->message.find("in 24 holes"), std::string::npos) << sorted->message;
  EXPECT_EQ(sorted->message.find("IT303NS"), std::string::npos); // the one hole in order
}

// NLE Battersea, AGS 3.1: the ground level named as the file names it, and a merged log that
// follows the London sequence.
TEST(NleBatterseaTest, GroundLevelNamedAsInTheFileAndMergedLogsFollowingTheLondonSequence) {
  EXPECT_EQ(ReadReal(kNle).fields.holeTop, "HOLE_GL");
  EXPECT_EQ(Codes(Hole(ReadReal(kNle, true), "BH01")), "TOP;MG;ALV;RTD;LC;HAR;LMG;");
}

// Araranguá: the two-table CSV form, Portuguese codes in UTF-8.
TEST(AraranguaTest, JoinsCollarsAndIntervalsAndFormationsPinchOutAsDescribed) {
  const auto set = ReadArarangua();
  EXPECT_EQ(Counts(set), "13/507");
  EXPECT_TRUE(ValidateBoreholes(set).empty());
  // The formation column, at the collar's ground level.
  EXPECT_EQ(Stratum(Hole(set, "1ARA-01-SC"), 0), "Recente 3.09..-30.91@2 Form");

  const auto merged = ReadArarangua(true);
  EXPECT_EQ(Codes(Hole(merged, "1ARA-01-SC")),
            "Recente;Rio do Rasto;Estrada Nova;Irati;Palermo;Rio Bonito;");
  std::map<std::string, Names> without; // the holes a formation pinches out at
  for (const auto& hole : merged.holes) {
    for (const std::string formation : {"Rio do Rasto", "Irati"}) {
      if (Codes(hole).find(formation + ";") == std::string::npos) {
        without[formation].insert(hole.name);
      }
    }
  }
  EXPECT_EQ(without, (std::map<std::string, Names>{
                         {"Rio do Rasto", {"1ARA-03-SC", "1ARA-07-SC", "1ARA-10-SC", "1ARA-12-SC"}},
                         {"Irati", {"1ARA-14-SC"}}}));
  ReadOptions lithology; // with their accents
  lithology.codeColumn = "LITO";
  const auto lito = Hole(ReadArarangua(false, lithology), "1ARA-01-SC").strata[3];
  EXPECT_EQ(lito.dc.strName, L"Diab\u00E1sio");
  EXPECT_EQ(lito.where.line, 5U);
}

} // namespace
} // namespace xklink
