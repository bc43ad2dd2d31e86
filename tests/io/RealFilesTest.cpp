// The readers on real, public borehole files (see SOURCES.md beside them). Every expectation here
// was read off the files by eye or counted with other tools, or is stated in SOURCES.md.
#include "HoleSelection.h"
#include "Numbers.h"
#include "ReadBoreholes.h"
#include "Text.h"
#include "Validation.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <set>

namespace xklink {
namespace {

const std::filesystem::path kReal = XKLINKDC_REAL_DATA_DIR;
const std::string kM621 = "m621-widening/M621_Widening.ags";
const std::string kNle = "nle-battersea/21-7-10-NLE.ags";
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

// Stratum i of a hole: "code top..bottom@line field", the elevations in metres to 0.1 mm; or the
// codes of all of them.
std::string Stratum(const HoleRecord& hole, std::size_t i) {
  const auto& s = hole.strata.at(i);
  return ToUtf8(s.dc.strName) + " " + FormatMetres(s.dc.dTopGC) + ".." + FormatMetres(s.dc.dBotGC) +
         "@" + std::to_string(s.where.line) + " " + s.where.field;
}
std::string Codes(const HoleRecord& hole) {
  std::string out;
  for (const auto& s : hole.strata) {
    out += ToUtf8(s.dc.strName) + ";";
  }
  return out;
}

// The holes that have diagnostics of the severity ("" for the file as a whole), and how many.
std::pair<Names, std::size_t> Concerned(const std::vector<Diagnostic>& diagnostics,
                                        Severity severity) {
  std::pair<Names, std::size_t> out;
  for (const auto& d : diagnostics) {
    if (d.severity == severity) {
      out.first.insert(d.hole);
      ++out.second;
    }
  }
  return out;
}

// M621 widening, Leeds: AGS4, codes in GEOL_GEOL, two overlaps left as found.
TEST(M621Test, ReadsEveryRowAndReportsTheTwoOverlapsAndTheSharedPositions) {
  const auto set = ReadReal(kM621);
  EXPECT_EQ(Counts(set), "31/348");
  EXPECT_TRUE(set.skipped.empty());
  EXPECT_EQ(Hole(set, "BH01").strata.size(), 15U);
  EXPECT_EQ(Stratum(Hole(set, "BH01"), 0), "Made Ground 45.56..45.06@808 GEOL_GEOL");
  EXPECT_EQ(Hole(set, "BH01").strata[4].dc.strName, L"Alluvium");

  const auto diagnostics = ValidateBoreholes(set);
  EXPECT_EQ(Concerned(diagnostics, Severity::Error), std::pair(Names{"BH07", "BH11"}, 2UL));
  EXPECT_EQ(Concerned(diagnostics, Severity::Warning).first,
            (Names{"DS04A", "DS04B", "DS04C", "DS05A"}));
  // BH11: 2.80-5.90 then 5.00-8.90 below a ground level of 28.05.
  const auto bh11 = std::find_if(diagnostics.begin(), diagnostics.end(),
                                 [](const Diagnostic& d) { return d.hole == "BH11"; });
  EXPECT_NE(bh11->message.find("by 0.9:"), std::string::npos) << bh11->message;
  // A section that avoids the faults is clean; DS04A stands where DS04 does.
  const auto south = SelectHoles(set, {"BH12", "BH13", "BH14", "BH15"});
  EXPECT_TRUE(ValidateBoreholes(south).empty());
  EXPECT_TRUE(CheckSectionSpacing(south.holes).empty());
  EXPECT_EQ(CheckSectionSpacing(SelectHoles(set, {"DS03", "DS04", "DS04A"}).holes).size(), 1U);
}

// DLR Woolwich: AGS4, only legend codes, rows not in depth order, river holes below datum.
TEST(DlrWoolwichTest, ReadsLegendCodesSortsTheRowsAndWarnsOfBh106Only) {
  const auto set = ReadReal("dlr-woolwich/DLR_Woolwich_Extension.ags");
  EXPECT_EQ(Counts(set), "25/200");
  const auto& bh106 = Hole(set, "BH106");
  ASSERT_EQ(bh106.strata.size(), 16U);
  EXPECT_EQ(Stratum(bh106, 0), "102 4.25..4.05@2082 GEOL_LEG");
  EXPECT_EQ(bh106.strata.back().dc.dBotGC, 4.25 - 50.00);
  for (const auto& hole : set.holes) {
    for (std::size_t i = 1; i < hole.strata.size(); ++i) {
      EXPECT_EQ(hole.strata[i].dc.dTopGC, hole.strata[i - 1].dc.dBotGC) << hole.name;
    }
  }
  EXPECT_EQ(Hole(set, "BH302").top, -13.12);
  EXPECT_EQ(Hole(set, "BH301").strata[0].dc.strName, L"BH301");

  const auto diagnostics = ValidateBoreholes(set);
  EXPECT_EQ(Concerned(diagnostics, Severity::Error).second, 0U);
  EXPECT_EQ(Concerned(diagnostics, Severity::Warning), std::pair(Names{"", "BH106"}, 2UL));
  const auto sorted = std::find_if(diagnostics.begin(), diagnostics.end(), [](const Diagnostic& d) {
    return d.message.find("not in depth order") != std::string::npos;
  });
  ASSERT_NE(sorted, diagnostics.end());
  EXPECT_NE(sorted->message.find("in 24 holes"), std::string::npos) << sorted->message;
  EXPECT_EQ(sorted->message.find("IT303NS"), std::string::npos); // the one hole in order
}

// Northern Line Extension, Battersea: AGS 3.1 with wrapped headings and <CONT> rows.
TEST(NleBatterseaTest, ReadsTheHoleAndGeolGroupsAndMergedLogsFollowTheLondonSequence) {
  const auto set = ReadReal(kNle);
  EXPECT_EQ(Counts(set), "10/105");
  EXPECT_TRUE(ValidateBoreholes(set).empty());
  EXPECT_EQ(Hole(set, "BH01").x, 529448.29);
  EXPECT_EQ(Stratum(Hole(set, "BH01"), 0), "TOP 4.08..4.01@1116 GEOL_GEOL");
  // BH07 0.1-2.1 carries its code only on the <CONT> line.
  EXPECT_EQ(Stratum(Hole(set, "BH07"), 1), "MG 3.15..1.15@1187 GEOL_GEOL");
  const auto merged = ReadReal(kNle, true);
  EXPECT_EQ(Codes(Hole(merged, "BH01")), "TOP;MG;ALV;RTD;LC;HAR;LMG;");
  EXPECT_EQ(Codes(Hole(merged, "BH08")), "MG;RTD;LC;HAR;LMG;TS;");
}

// C6034: AGS 3.1 whose headings, <UNITS> and data lines wrap, with the HOLE group given twice
// (the second adds headings of the producer's own to the same holes).
TEST(C6034Test, ReadsWrappedLinesAndTheHoleGroupGivenTwice) {
  const auto set = ReadReal("c6034-ags3/C6034.ags");
  EXPECT_EQ(Counts(set), "25/104");
  EXPECT_EQ(set.skipped, (std::map<std::string, std::string>{{"BH 3", "HOLE_NATE is empty"},
                                                             {"BH 4", "HOLE_NATE is empty"},
                                                             {"BH 5", "HOLE_NATE is empty"},
                                                             {"BH 6", "HOLE_NATE is empty"}}));
  EXPECT_EQ(Hole(set, "BH 1").x, 266120.85);
  // The legend code of BH 1 4.00-5.85 stands on the <CONT> line below its row.
  EXPECT_EQ(Stratum(Hole(set, "BH 1"), 2), "205 85.218..83.368@798 GEOL_LEG");
  EXPECT_EQ(set.codeDescriptions.at("801"), "MUDSTONE");
  EXPECT_EQ(Concerned(ValidateBoreholes(set), Severity::Error).second, 0U);
}

// River Roch: AGS4 whose descriptions run over several lines, the next ones indented by a tab.
TEST(RiverRochTest, ReadsDescriptionsOverSeveralLinesAndFallsBackForTheHoleWithoutLegendCodes) {
  const auto set = ReadReal("river-roch/River_Roch_Flood_Alleviation_Scheme.ags");
  EXPECT_EQ(Counts(set), "19/77");
  const auto& bh49 = Hole(set, "RIVER ROCH FLOOD ALLEVIATION SCHEME BH49");
  EXPECT_EQ(Codes(bh49), "102;102;207;607;520;211;");
  EXPECT_EQ(Stratum(bh49, 2), "207 144.08..143.48@38 GEOL_LEG");
  // TP43 has no legend code, only GEOL_GEO2; ABBR lists codes as their own meaning, which is
  // nothing to show.
  EXPECT_EQ(Stratum(Hole(set, "RIVER ROCH FLOOD ALLEVIATION SCHEME TP43"), 0),
            "MADE GROUND 144.75..144.25@58 GEOL_GEO2");
  EXPECT_TRUE(set.codeDescriptions.empty());
  EXPECT_EQ(Concerned(ValidateBoreholes(set), Severity::Error).second, 0U);
}

// Shottlegate: three holes that were never levelled (LOCA_GL empty).
TEST(ShottlegateTest, HolesWithoutGroundLevelsAreReadInDepth) {
  const auto set = ReadReal("shottlegate/Shottlegate_Project.ags");
  EXPECT_EQ(Counts(set), "3/7");
  for (const auto& hole : set.holes) {
    EXPECT_FALSE(hole.groundLevelKnown) << hole.name;
    EXPECT_EQ(hole.top, 0.0) << hole.name;
  }
  EXPECT_EQ(Stratum(Hole(set, "Shottlegate BH3"), 2), "801 -3..-6@68 GEOL_LEG");
  EXPECT_EQ(set.codeDescriptions.at("333"), "Gravelly CLAY/SILT");
}

// DLR City Airport: the largest file, 100 locations, rows of 95 holes out of order, no fault.
TEST(DlrCityAirportTest, ReadsEveryLocationWithItsCodesAndTheirMeanings) {
  const auto set = ReadReal("dlr-city-airport/DLR_City_Airport_Extension.ags");
  EXPECT_EQ(Counts(set), "100/775");
  EXPECT_TRUE(set.skipped.empty());
  EXPECT_EQ(Codes(Hole(set, "BH134")).substr(0, 24), "101;102;102;102;102;201;");
  EXPECT_EQ(set.codeDescriptions.at("805"), "CHALK");
  EXPECT_EQ(Concerned(ValidateBoreholes(set), Severity::Error).second, 0U);
}

// Araranguá: the two-table CSV form, Portuguese codes in UTF-8.
TEST(AraranguaTest, JoinsCollarsAndIntervalsAndFormationsPinchOutAsDescribed) {
  const auto set = ReadArarangua();
  EXPECT_EQ(Counts(set), "13/507");
  EXPECT_TRUE(ValidateBoreholes(set).empty());
  const auto& first = Hole(set, "1ARA-01-SC");
  EXPECT_EQ(first.y, 6791745.0);
  EXPECT_EQ(Stratum(first, 0), "Recente 3.09..-30.91@2 Form"); // the formation column
  EXPECT_EQ(first.strata.back().dc.dBotGC, 3.09 - 539.95);     // the hole's Length

  const auto merged = ReadArarangua(true);
  EXPECT_EQ(Codes(Hole(merged, "1ARA-01-SC")),
            "Recente;Rio do Rasto;Estrada Nova;Irati;Palermo;Rio Bonito;");
  Names withoutRioDoRasto;
  Names withoutIrati;
  for (const auto& hole : merged.holes) {
    if (Codes(hole).find("Rio do Rasto;") == std::string::npos) {
      withoutRioDoRasto.insert(hole.name);
    }
    if (Codes(hole).find("Irati;") == std::string::npos) {
      withoutIrati.insert(hole.name);
    }
  }
  EXPECT_EQ(withoutRioDoRasto, (Names{"1ARA-03-SC", "1ARA-07-SC", "1ARA-10-SC", "1ARA-12-SC"}));
  EXPECT_EQ(withoutIrati, Names{"1ARA-14-SC"});
}

TEST(AraranguaTest, LithologiesKeepTheirAccentsAndTheIntervalTableAloneAsksForItsCollars) {
  ReadOptions lithology;
  lithology.codeColumn = "LITO";
  const auto set = ReadArarangua(false, lithology);
  EXPECT_EQ(Hole(set, "1ARA-01-SC").strata[3].dc.strName, L"Diab\u00E1sio");
  EXPECT_EQ(Hole(set, "1ARA-01-SC").strata[3].where.line, 5U);
  try {
    ReadReal("../ararangua-gpl3/ara_lito.csv");
    ADD_FAILURE() << "no error";
  } catch (const ParseError& error) {
    EXPECT_EQ(error.Where().line, 1U);
    EXPECT_NE(error.Message().find("collar table"), std::string::npos) << error.what();
  }
}

} // namespace
} // namespace xklink
