// The readers on real, public borehole files (see SOURCES.md beside them). Every expectation here
// was read off the files by eye or counted with other tools, or is stated in SOURCES.md.
#include "HoleSelection.h"
#include "ReadBoreholes.h"
#include "Text.h"
#include "Validation.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>

namespace xklink {
namespace {

const std::filesystem::path kReal = XKLINKDC_REAL_DATA_DIR;

std::size_t StrataCount(const BoreholeSet& set) {
  std::size_t count = 0;
  for (const auto& hole : set.holes) {
    count += hole.strata.size();
  }
  return count;
}

const HoleRecord& HoleNamed(const BoreholeSet& set, const std::string& name) {
  const auto it = std::find_if(set.holes.begin(), set.holes.end(),
                               [&](const HoleRecord& h) { return h.name == name; });
  if (it == set.holes.end()) {
    throw std::runtime_error("no hole " + name);
  }
  return *it;
}

std::vector<std::wstring> Codes(const HoleRecord& hole) {
  std::vector<std::wstring> out;
  for (const auto& s : hole.strata) {
    out.push_back(s.dc.strName);
  }
  return out;
}

std::set<std::string> HolesWith(const std::vector<Diagnostic>& diagnostics, Severity severity) {
  std::set<std::string> out;
  for (const auto& d : diagnostics) {
    if (d.severity == severity) {
      out.insert(d.hole);
    }
  }
  return out;
}

std::size_t Count(const std::vector<Diagnostic>& diagnostics, Severity severity) {
  return static_cast<std::size_t>(
      std::count_if(diagnostics.begin(), diagnostics.end(),
                    [&](const Diagnostic& d) { return d.severity == severity; }));
}

// M621 widening, Leeds: AGS4, codes in GEOL_GEOL, rows sorted, two overlaps left as found.
class M621Test : public ::testing::Test {
protected:
  static BoreholeSet Read(ReadOptions options = {}) {
    return ReadBoreholes(kReal / "m621-widening/M621_Widening.ags", Format::Ags, options);
  }
};

TEST_F(M621Test, ReadsEveryLocationAndGeolRow) {
  const auto set = Read();
  EXPECT_EQ(set.holes.size(), 31U);
  EXPECT_EQ(StrataCount(set), 348U);
  EXPECT_TRUE(set.skipped.empty());
  const auto& bh01 = HoleNamed(set, "BH01");
  EXPECT_EQ(bh01.x, 427743.93);
  EXPECT_EQ(bh01.y, 431149.97);
  EXPECT_EQ(bh01.top, 45.56);
  EXPECT_EQ(bh01.strata.size(), 15U);
  EXPECT_EQ(bh01.strata[0].dc.strName, L"Made Ground");
  EXPECT_EQ(bh01.strata[0].dc.dTopGC, 45.56);
  EXPECT_EQ(bh01.strata[0].dc.dBotGC, 45.56 - 0.50);
  EXPECT_EQ(bh01.strata[0].where.line, 808U);
  EXPECT_EQ(bh01.strata[4].dc.strName, L"Alluvium");
}

TEST_F(M621Test, ReportsTheTwoOverlapsAndTheSharedPositions) {
  const auto diagnostics = ValidateBoreholes(Read());
  EXPECT_EQ(HolesWith(diagnostics, Severity::Error), (std::set<std::string>{"BH07", "BH11"}));
  EXPECT_EQ(Count(diagnostics, Severity::Error), 2U);
  EXPECT_EQ(HolesWith(diagnostics, Severity::Warning),
            (std::set<std::string>{"DS04A", "DS04B", "DS04C", "DS05A"}));
  // BH11: 2.80-5.90 then 5.00-8.90 below a ground level of 28.05.
  const auto bh11 = std::find_if(diagnostics.begin(), diagnostics.end(),
                                 [](const Diagnostic& d) { return d.hole == "BH11"; });
  EXPECT_NE(bh11->message.find("by 0.9:"), std::string::npos) << bh11->message;
}

TEST_F(M621Test, ASectionAvoidingTheFaultsIsClean) {
  const auto set = Read();
  const auto south = SelectHoles(set, {"BH12", "BH13", "BH14", "BH15"});
  EXPECT_TRUE(ValidateBoreholes(south).empty());
  EXPECT_TRUE(CheckSectionSpacing(south.holes).empty());
  const auto shared = SelectHoles(set, {"DS03", "DS04", "DS04A"});
  EXPECT_EQ(CheckSectionSpacing(shared.holes).size(), 1U);
}

TEST_F(M621Test, MergingRepeatsLeavesAMedianOfThreeStrata) {
  ReadOptions options;
  options.mergeRepeats = true;
  const auto set = Read(options);
  std::vector<std::size_t> counts;
  for (const auto& hole : set.holes) {
    counts.push_back(hole.strata.size());
  }
  std::nth_element(counts.begin(), counts.begin() + 15, counts.end());
  EXPECT_EQ(counts[15], 3U);
  EXPECT_EQ(Codes(HoleNamed(set, "BH01")).front(), L"Made Ground");
}

// DLR Woolwich: AGS4, only legend codes, rows not in depth order, river holes below datum.
class DlrWoolwichTest : public ::testing::Test {
protected:
  static BoreholeSet Read() {
    return ReadBoreholes(kReal / "dlr-woolwich/DLR_Woolwich_Extension.ags", Format::Ags);
  }
};

TEST_F(DlrWoolwichTest, ReadsLegendCodesAndSortsTheRows) {
  const auto set = Read();
  EXPECT_EQ(set.holes.size(), 25U);
  EXPECT_EQ(StrataCount(set), 200U);
  const auto& bh106 = HoleNamed(set, "BH106");
  EXPECT_EQ(bh106.strata.size(), 16U);
  EXPECT_EQ(bh106.strata[0].dc.strName, L"102");
  EXPECT_EQ(bh106.strata[0].where.field, "GEOL_LEG");
  EXPECT_EQ(bh106.strata[0].where.line, 2082U);
  EXPECT_EQ(bh106.strata[0].dc.dBotGC, 4.25 - 0.20);
  EXPECT_EQ(bh106.strata.back().dc.dBotGC, 4.25 - 50.00);
  for (const auto& hole : set.holes) {
    for (std::size_t i = 1; i < hole.strata.size(); ++i) {
      EXPECT_EQ(hole.strata[i].dc.dTopGC, hole.strata[i - 1].dc.dBotGC) << hole.name;
    }
  }
}

TEST_F(DlrWoolwichTest, RiverHolesStandBelowDatumAndKeepTheirOwnCodes) {
  const auto set = Read();
  EXPECT_EQ(HoleNamed(set, "BH302").top, -13.12);
  EXPECT_EQ(HoleNamed(set, "BH303").top, -1.26);
  EXPECT_EQ(HoleNamed(set, "BH301").strata[0].dc.strName, L"BH301");
}

TEST_F(DlrWoolwichTest, WarnsAboutSortingAndTheUnloggedBottomOfBh106Only) {
  const auto diagnostics = ValidateBoreholes(Read());
  EXPECT_EQ(Count(diagnostics, Severity::Error), 0U);
  ASSERT_EQ(Count(diagnostics, Severity::Warning), 2U);
  const auto sorted = std::find_if(diagnostics.begin(), diagnostics.end(), [](const Diagnostic& d) {
    return d.message.find("not in depth order") != std::string::npos;
  });
  ASSERT_NE(sorted, diagnostics.end());
  EXPECT_NE(sorted->message.find("in 24 holes"), std::string::npos) << sorted->message;
  EXPECT_EQ(sorted->message.find("IT303NS"), std::string::npos); // the one hole in order
  EXPECT_EQ(HolesWith(diagnostics, Severity::Warning), (std::set<std::string>{"", "BH106"}));
}

// Northern Line Extension, Battersea: AGS 3.1 with wrapped headings and <CONT> rows.
class NleBatterseaTest : public ::testing::Test {
protected:
  static BoreholeSet Read(ReadOptions options = {}) {
    return ReadBoreholes(kReal / "nle-battersea/21-7-10-NLE.ags", Format::Ags, options);
  }
};

TEST_F(NleBatterseaTest, ReadsTheHoleAndGeolGroups) {
  const auto set = Read();
  EXPECT_EQ(set.holes.size(), 10U);
  EXPECT_EQ(StrataCount(set), 105U);
  const auto& bh01 = HoleNamed(set, "BH01");
  EXPECT_EQ(bh01.x, 529448.29);
  EXPECT_EQ(bh01.y, 177496.69);
  EXPECT_EQ(bh01.top, 4.08);
  EXPECT_EQ(bh01.strata[0].dc.strName, L"TOP");
  EXPECT_EQ(bh01.strata[0].dc.dBotGC, 4.08 - 0.07);
  EXPECT_TRUE(ValidateBoreholes(set).empty());
}

TEST_F(NleBatterseaTest, CodesOnContinuationLinesBelongToTheirRow) {
  const auto set = Read();
  // BH02 33.5-34.2 and BH07 0.1-2.1 carry their codes only on the <CONT> line.
  EXPECT_EQ(
      Codes(HoleNamed(set, "BH02")),
      (std::vector<std::wstring>{L"MG", L"MG", L"MG", L"MG", L"ALV", L"ALV", L"ALV", L"ALV", L"RTD",
                                 L"LC", L"LMG", L"LMG", L"LMG", L"LMG", L"LMG", L"LMG"}));
  const auto& bh07 = HoleNamed(set, "BH07");
  EXPECT_EQ(bh07.strata[1].dc.strName, L"MG");
  EXPECT_EQ(bh07.strata[1].where.line, 1187U);
}

TEST_F(NleBatterseaTest, MergedLogsFollowTheLondonSequence) {
  ReadOptions options;
  options.mergeRepeats = true;
  const auto set = Read(options);
  EXPECT_EQ(Codes(HoleNamed(set, "BH01")),
            (std::vector<std::wstring>{L"TOP", L"MG", L"ALV", L"RTD", L"LC", L"HAR", L"LMG"}));
  EXPECT_EQ(Codes(HoleNamed(set, "BH08")),
            (std::vector<std::wstring>{L"MG", L"RTD", L"LC", L"HAR", L"LMG", L"TS"}));
}

// Araranguá: the two-table CSV form, Portuguese codes in UTF-8.
class AraranguaTest : public ::testing::Test {
protected:
  static BoreholeSet Read(ReadOptions options = {}) {
    options.collarFile = kReal / "ararangua/ara_collar.csv";
    return ReadBoreholes(kReal / "ararangua/ara_lito.csv", Format::Csv, options);
  }
};

TEST_F(AraranguaTest, JoinsCollarsAndIntervals) {
  const auto set = Read();
  EXPECT_EQ(set.holes.size(), 13U);
  EXPECT_EQ(StrataCount(set), 507U);
  const auto& first = HoleNamed(set, "1ARA-01-SC");
  EXPECT_EQ(first.x, 653540.0);
  EXPECT_EQ(first.y, 6791745.0);
  EXPECT_EQ(first.top, 3.09);
  EXPECT_EQ(first.strata[0].dc.strName, L"Recente"); // the formation column, Form
  EXPECT_EQ(first.strata[0].dc.dBotGC, 3.09 - 34.0);
  EXPECT_EQ(first.strata.back().dc.dBotGC, 3.09 - 539.95); // the hole's Length
  EXPECT_TRUE(ValidateBoreholes(set).empty());
}

TEST_F(AraranguaTest, FormationsPinchOutAsDescribed) {
  ReadOptions options;
  options.mergeRepeats = true;
  const auto set = Read(options);
  EXPECT_EQ(Codes(HoleNamed(set, "1ARA-01-SC")),
            (std::vector<std::wstring>{L"Recente", L"Rio do Rasto", L"Estrada Nova", L"Irati",
                                       L"Palermo", L"Rio Bonito"}));
  std::set<std::string> withoutRioDoRasto;
  std::set<std::string> withoutIrati;
  for (const auto& hole : set.holes) {
    const auto codes = Codes(hole);
    if (std::find(codes.begin(), codes.end(), L"Rio do Rasto") == codes.end()) {
      withoutRioDoRasto.insert(hole.name);
    }
    if (std::find(codes.begin(), codes.end(), L"Irati") == codes.end()) {
      withoutIrati.insert(hole.name);
    }
  }
  EXPECT_EQ(withoutRioDoRasto,
            (std::set<std::string>{"1ARA-03-SC", "1ARA-07-SC", "1ARA-10-SC", "1ARA-12-SC"}));
  EXPECT_EQ(withoutIrati, (std::set<std::string>{"1ARA-14-SC"}));
}

TEST_F(AraranguaTest, LithologyCodesKeepTheirAccents) {
  ReadOptions options;
  options.codeColumn = "LITO";
  const auto set = Read(options);
  const auto& first = HoleNamed(set, "1ARA-01-SC");
  EXPECT_EQ(first.strata[3].dc.strName, L"Diab\u00E1sio");
  EXPECT_EQ(first.strata[3].where.line, 5U);
  EXPECT_EQ(ToUtf8(first.strata[3].dc.strName), "Diab\xC3\xA1sio");
}

TEST_F(AraranguaTest, TheIntervalTableAloneAsksForItsCollars) {
  try {
    ReadBoreholes(kReal / "ararangua/ara_lito.csv", Format::Csv);
    ADD_FAILURE() << "no error";
  } catch (const ParseError& error) {
    EXPECT_EQ(error.Where().line, 1U);
    EXPECT_NE(error.Message().find("collar table"), std::string::npos) << error.what();
  }
}

TEST(RealFormatTest, DetectsTheFormatOfEveryRealFile) {
  EXPECT_EQ(DetectFormat(kReal / "nle-battersea/21-7-10-NLE.ags"), Format::Ags);
  EXPECT_EQ(DetectFormat(kReal / "ararangua/ara_collar.csv"), Format::Csv);
}

} // namespace
} // namespace xklink
