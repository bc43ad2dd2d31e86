// Every fault the validation reports, with its exact message.
#include "Validation.h"

#include "BoreholeBuilders.h"
#include "IoTestSupport.h"

#include <cmath>
#include <gtest/gtest.h>

namespace xklink {
namespace {

using testing::MakeHole;
using testing::MakeSet;
using testing::Messages;

// Two sound holes, 100 m apart: the base of every test.
HoleRecord West(std::vector<testing::Bed> beds = {{L"A", 100, 95}, {L"B", 95, 90}}) {
  return MakeHole("W", 0, 0, 100, beds, 2);
}
HoleRecord East() {
  return MakeHole("E", 100, 0, 98, {{L"A", 98, 94}, {L"B", 94, 91}}, 10);
}

std::vector<std::string> Check(std::vector<HoleRecord> holes) {
  return Messages(ValidateBoreholes(MakeSet(std::move(holes))));
}

TEST(ValidationTest, SoundHolesPass) {
  EXPECT_TRUE(Check({West(), East()}).empty());
}

TEST(ValidationTest, AHoleWithoutStrata) {
  EXPECT_EQ(Check({West({}), East()}),
            (std::vector<std::string>{"set.json:2: field name: hole 'W' has no strata"}));
}

TEST(ValidationTest, NonFiniteNumbersNameTheirField) {
  auto west = West();
  west.x = NAN;
  west.strata[1].dc.dBotGC = -HUGE_VAL;
  auto east = East();
  east.top = HUGE_VAL;
  const auto diagnostics = ValidateBoreholes(MakeSet({west, east}));
  EXPECT_EQ(Messages(diagnostics),
            (std::vector<std::string>{"set.json:2: field x: not a finite number: nan",
                                      "set.json:4: field bottom: not a finite number: -inf",
                                      "set.json:10: field top: not a finite number: inf"}));
  EXPECT_EQ(diagnostics[0].hole, "W");
}

TEST(ValidationTest, AStratumWhoseTopIsBelowItsBase) {
  EXPECT_EQ(Check({West({{L"A", 100, 95}, {L"B", 90, 95}}), East()}),
            (std::vector<std::string>{
                "set.json:4: field top: top elevation 90 is below the base elevation 95: the "
                "stratum is upside down",
                "set.json:4: warning: field top: gap of 5 below the stratum on line 3: nothing is "
                "logged between elevations 95 and 90"}));
}

TEST(ValidationTest, StrataNotInDownwardOrder) {
  EXPECT_EQ(Check({West({{L"B", 95, 90}, {L"A", 100, 95}}), East()}),
            (std::vector<std::string>{
                "set.json:3: warning: field top: the log starts 5 below the collar of hole 'W': "
                "nothing is logged above elevation 95",
                "set.json:4: field top: strata not in downward order: top elevation 100 lies above "
                "the top 95 of the stratum on line 3"}));
}

TEST(ValidationTest, OverlappingStrata) {
  // As in M621 BH07: 19.97-20.10 then 20.00-23.00, here as elevations below a collar at 39.1.
  const double collar = 39.1;
  const auto west = MakeHole("BH07", 0, 0, collar,
                             {{L"A", collar, collar - 19.97},
                              {L"B", collar - 19.97, collar - 20.10},
                              {L"C", collar - 20.00, collar - 23.00}},
                             935);
  EXPECT_EQ(
      Check({west, East()}),
      (std::vector<std::string>{"set.json:938: field top: overlaps the stratum on line 937 by "
                                "0.1: top elevation 19.1 lies above its base 19"}));
}

TEST(ValidationTest, TouchingStrataDoNotOverlap) {
  EXPECT_EQ(Check({West({{L"A", 100, 95}, {L"B", 95, 95}, {L"C", 95, 90}}), East()}),
            (std::vector<std::string>{"set.json:4: warning: field top: top and base are both at "
                                      "elevation 95: the stratum has no thickness"}));
}

TEST(ValidationTest, AFirstStratumAboveTheCollar) {
  EXPECT_EQ(
      Check({West({{L"A", 101, 95}, {L"B", 95, 90}}), East()}),
      (std::vector<std::string>{"set.json:3: field top: the first stratum starts at elevation "
                                "101, above the collar of hole 'W' at 100"}));
}

TEST(ValidationTest, DuplicateHoleNames) {
  auto twin = East();
  twin.name = "W";
  EXPECT_EQ(Check({West(), East(), twin}),
            (std::vector<std::string>{
                "set.json:10: field name: duplicate hole name 'W' (first at line 2)",
                "set.json:10: warning: field x: hole 'W' stands at the same plan position as 'E' "
                "(line 10): a section can take only one of them"}));
}

TEST(ValidationTest, FewerThanTwoHoles) {
  EXPECT_EQ(Check({West()}), (std::vector<std::string>{
                                 "set.json: 1 hole to correlate: a section needs at least two"}));
  EXPECT_EQ(Check({}), (std::vector<std::string>{
                           "set.json: 0 holes to correlate: a section needs at least two"}));
}

TEST(ValidationTest, WarningsForGapsLateStartsAndZeroThickness) {
  const auto diagnostics =
      ValidateBoreholes(MakeSet({West({{L"A", 99.5, 95}, {L"B", 94, 94}}), East()}));
  EXPECT_FALSE(HasErrors(diagnostics));
  EXPECT_EQ(Messages(diagnostics),
            (std::vector<std::string>{
                "set.json:3: warning: field top: the log starts 0.5 below the collar of hole 'W': "
                "nothing is logged above elevation 99.5",
                "set.json:4: warning: field top: top and base are both at elevation 94: the "
                "stratum has no thickness",
                "set.json:4: warning: field top: gap of 1 below the stratum on line 3: nothing is "
                "logged between elevations 95 and 94"}));
}

TEST(ValidationTest, ReaderDiagnosticsComeFirstAndUseTheFileFieldNames) {
  auto set = MakeSet({West({{L"A", 100, 95}, {L"B", 90, 95}}), East()});
  set.fields.stratumTop = "GEOL_TOP";
  set.diagnostics.push_back(MakeWarning({"set.json", 1, {}}, "from the reader"));
  EXPECT_EQ(Messages(ValidateBoreholes(set))[0], "set.json:1: warning: from the reader");
  EXPECT_EQ(Messages(ValidateBoreholes(set), Severity::Error),
            (std::vector<std::string>{"set.json:4: field GEOL_TOP: top elevation 90 is below the "
                                      "base elevation 95: the stratum is upside down"}));
}

TEST(ValidationTest, HolesSharingAPlanPositionAreAWarning) {
  auto twin = East();
  twin.name = "E2";
  twin.x += 0.0009; // closer than a millimetre
  auto near = East();
  near.name = "E3";
  near.x += 0.5; // BH113 and BH113A of the DLR file are this close, and distinct
  const auto diagnostics = ValidateBoreholes(MakeSet({West(), East(), twin, near}));
  EXPECT_EQ(Messages(diagnostics),
            (std::vector<std::string>{"set.json:10: warning: field x: hole 'E2' stands at the same "
                                      "plan position as 'E' (line 10): a section can take only one "
                                      "of them"}));
}

TEST(SectionSpacingTest, ConsecutiveHolesAtOnePositionAreAnError) {
  auto twin = East();
  twin.name = "E2";
  twin.where.line = 20;
  EXPECT_EQ(Messages(CheckSectionSpacing({West(), East(), twin})),
            (std::vector<std::string>{"set.json:20: field name: holes 'E' and 'E2' stand at the "
                                      "same plan position (100, 0): the section between them has "
                                      "no length; leave one of them out"}));
}

TEST(SectionSpacingTest, TheToleranceIsOneMillimetre) {
  auto close = East();
  close.x += 0.0011;
  EXPECT_TRUE(CheckSectionSpacing({East(), close}).empty());
  close.x = East().x + 0.0009;
  EXPECT_EQ(CheckSectionSpacing({East(), close}).size(), 1U);
  // Returning to a hole further along is a zigzag, not a zero-length span.
  EXPECT_TRUE(CheckSectionSpacing({West(), East(), West()}).empty());
}

} // namespace
} // namespace xklink
