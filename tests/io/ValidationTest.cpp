// Every fault the validation reports, with its exact message; the holes a section is drawn through,
// as the user lists them, checked against the file; and their spacing.
#include "Validation.h"

#include "HolePolicy.h"
#include "HoleSelection.h"
#include "IoTestSupport.h"

#include <cmath>
#include <gtest/gtest.h>

namespace xklink {
namespace {

using namespace xklink::testing;

// Two sound holes, 100 m apart: the base of every test. A hole without strata is shown through the
// tool (CheckCommandTest).
HoleRecord West(std::vector<Bed> beds = {{L"A", 100, 95}, {L"B", 95, 90}}) {
  return MakeHole("W", 0, 0, 100, beds, 2);
}
HoleRecord East(const std::string& name = "E", double x = 100, std::size_t line = 10) {
  return MakeHole(name, x, 0, 98, {{L"A", 98, 94}, {L"B", 94, 91}}, line);
}

Lines Check(std::vector<HoleRecord> holes) {
  return Messages(ValidateBoreholes(MakeSet(std::move(holes))));
}

TEST(ValidationTest, EveryFaultOfTheStrataOfAHole) {
  // As in M621 BH07: 19.97-20.10 then 20.00-23.00, here as elevations below a collar at 39.1.
  const double g = 39.1;
  const struct {
    HoleRecord hole;
    Lines messages;
  } cases[] = {
      {West({{L"A", 100, 95}, {L"B", 90, 95}}),
       {"set.json:4: field top: top elevation 90 is below the base elevation 95: the stratum is "
        "upside down",
        "set.json:4: warning: field top: gap of 5 below the stratum on line 3: nothing is logged "
        "between elevations 95 and 90"}},
      {West({{L"B", 95, 90}, {L"A", 100, 95}}),
       {"set.json:3: warning: field top: the log starts 5 below the collar of hole 'W': nothing "
        "is logged above elevation 95",
        "set.json:4: field top: strata not in downward order: top elevation 100 lies above the "
        "top 95 of the stratum on line 3"}},
      {MakeHole("BH07", 0, 0, g,
                {{L"A", g, g - 19.97}, {L"B", g - 19.97, g - 20.10}, {L"C", g - 20.00, g - 23.00}},
                935),
       {"set.json:938: field top: overlaps the stratum on line 937 by 0.1: top elevation 19.1 "
        "lies above its base 19"}},
      {West({{L"A", 101, 95}, {L"B", 95, 90}}),
       {"set.json:3: field top: the first stratum starts at elevation 101, above the collar of "
        "hole 'W' at 100"}},
      // Touching strata do not overlap; warnings alone are not errors.
      {West({{L"A", 99.5, 95}, {L"B", 95, 95}, {L"C", 94, 90}}),
       {"set.json:3: warning: field top: the log starts 0.5 below the collar of hole 'W': "
        "nothing is logged above elevation 99.5",
        "set.json:4: warning: field top: top and base are both at elevation 95: the stratum has "
        "no thickness",
        "set.json:5: warning: field top: gap of 1 below the stratum on line 4: nothing is logged "
        "between elevations 95 and 94"}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Check({c.hole, East()}), c.messages);
  }
  EXPECT_FALSE(HasErrors(ValidateBoreholes(MakeSet({cases[4].hole, East()}))));
}

TEST(ValidationTest, ValuesNoBoreholeCanHaveNameTheirFieldAndHole) {
  auto west = West();
  west.x = NAN;
  west.y = -1.0000001e8;
  west.strata[1].dc.dBotGC = -HUGE_VAL;
  auto east = East();
  east.top = HUGE_VAL;
  east.strata[0].dc.dTopGC = 15000.5;
  east.strata[1].dc.dTopGC = -15000; // at the limit: kept
  const auto diagnostics = ValidateBoreholes(MakeSet({west, east}));
  EXPECT_EQ(Messages(diagnostics, Severity::Error),
            (Lines{"set.json:2: field x: not a finite number: nan",
                   "set.json:2: field y: coordinate -100000010 lies beyond ±100000000 m: no "
                   "borehole can have it",
                   "set.json:4: field bottom: not a finite number: -inf",
                   "set.json:10: field top: not a finite number: inf",
                   "set.json:11: field top: elevation 15000.5 lies beyond ±15000 m: no borehole "
                   "can have it",
                   "set.json:12: field top: top elevation -15000 is below the base elevation 91: "
                   "the stratum is upside down"}));
  EXPECT_EQ(diagnostics[0].hole, "W");
}

TEST(ValidationTest, NamesCountAndPlanPositionsOfTheHoles) {
  EXPECT_EQ(Check({West(), East(), East("W")}),
            (Lines{"set.json:10: field name: duplicate hole name 'W' (first at line 2)",
                   "set.json:10: warning: field x: hole 'W' stands at the same plan position as "
                   "'E' (line 10): a section can take only one of them"}));
  EXPECT_EQ(Check({West()}), Lines{"set.json: 1 hole to correlate: a section needs at least two"});
  EXPECT_EQ(Check({}), Lines{"set.json: 0 holes to correlate: a section needs at least two"});
  // E2 is closer than a millimetre, on the far side of a millimetre grid line; BH113 and BH113A of
  // the DLR file are as close as E3, and distinct. Every position shared is said, as at M621's
  // DS04 and DS05.
  EXPECT_EQ(Check({West(), East(), East("E2", 99.9991), East("E3", 100.5), East("W2", 0, 20)}),
            (Lines{"set.json:10: warning: field x: hole 'E2' stands at the same plan position as "
                   "'E' (line 10): a section can take only one of them",
                   "set.json:20: warning: field x: hole 'W2' stands at the same plan position as "
                   "'W' (line 2): a section can take only one of them"}));
}

// The policy as a table: which holes a section keeps, what it says and what refuses it. Holes left
// out for overlaps or for having no strata are shown through the tool (ValidationErrorsTest).
TEST(HolePolicyTest, WhatIsLeftOutAndWhatRefuses) {
  auto twin = MakeHole("W2", 0, 0.0005, 100, {{L"A", 100, 80}}, 30); // deeper than W
  auto noGround = MakeHole("NG", 300, 0, 0, {{L"A", 0, -5}}, 40);
  noGround.groundLevelKnown = false;
  auto set = MakeSet({West(), East(), twin, noGround});
  set.diagnostics.push_back(MakeError({"set.json", 50, "name"}, "row without a name; ignored"));
  const std::string kIgnoredRow = "set.json:50: warning: field name: row without a name; ignored";
  const std::string deeper = "stands at the same plan position as 'W2' (line 30), whose log goes "
                             "deeper: a section takes one hole of a position";
  const std::string noGroundLevel = "has no ground level, unlike other holes of the file";
  const struct {
    HolePolicy policy;
    Lines holes;
    Lines warnings;
    Lines errors;
  } cases[] = {
      {{},
       {"E", "W2"},
       {kIgnoredRow, "set.json:2: warning: field x: hole 'W' left out: " + deeper,
        "set.json:40: warning: field top: hole 'NG' left out: " + noGroundLevel,
        "set.json: warning: 2 of 4 holes left out of the section: W, NG"},
       {}},
      // Without its deeper twin, W stands alone.
      {{{}, {"W2", "NG"}, false}, {"W", "E"}, {kIgnoredRow}, {}},
      {{{"NG", "E"}, {}, false},
       {"NG", "E"},
       {kIgnoredRow},
       {"set.json:40: field top: hole 'NG' " + noGroundLevel}},
      {{{}, {"NG"}, true},
       {"W", "E", "W2"},
       {},
       {"set.json:2: field x: hole 'W' " + deeper,
        "set.json:50: field name: row without a name; ignored"}},
  };
  for (const auto& c : cases) {
    std::vector<Diagnostic> warnings;
    std::vector<Diagnostic> errors;
    const ChosenHoles chosen = ChooseHoles(
        set, c.policy, [&](const Diagnostic& d) { warnings.push_back(d); },
        [&](const Diagnostic& d) { errors.push_back(d); });
    Lines names;
    for (const auto& h : chosen.holes) {
      names.push_back(h.name);
    }
    EXPECT_EQ(names, c.holes);
    EXPECT_EQ(Messages(warnings), c.warnings);
    EXPECT_EQ(Messages(errors), c.errors);
    EXPECT_FALSE(chosen.depthBelowGround);
  }
}

TEST(SectionSpacingTest, ConsecutiveHolesWithinAMillimetreAreAnError) {
  EXPECT_EQ(Messages(CheckSectionSpacing({West(), East(), East("E2", 100.0009, 20)})),
            Lines{"set.json:20: field name: holes 'E' and 'E2' stand at the same plan position "
                  "(100.0009, 0): the section between them has no length; leave one of them out"});
  EXPECT_TRUE(CheckSectionSpacing({East(), East("E2", 100.0011)}).empty());
  // Returning to a hole further along is a zigzag, not a zero-length span.
  EXPECT_TRUE(CheckSectionSpacing({West(), East(), West()}).empty());
}

TEST(SelectHolesTest, KeepsTheOrderGivenAndTheDiagnosticsThatConcernIt) {
  auto set = MakeSet({MakeHole("BH01", 0, 0, 10, {{L"A", 10, 5}}, 2),
                      MakeHole("BH02", 50, 0, 10, {{L"A", 10, 5}}, 5),
                      MakeHole("BH03", 90, 0, 10, {{L"A", 10, 6}}, 8)});
  set.skipped["TP01"] = "no geology (no GEOL rows)";
  set.diagnostics.push_back(MakeWarning({"set.json", 1, {}}, "about the file"));
  set.diagnostics.push_back(MakeError({"set.json", 3, "top"}, "about BH01", "BH01"));
  set.diagnostics.push_back(MakeWarning({"set.json", 9, "top"}, "about BH03", "BH03"));

  const auto selected = SelectHoles(set, {"BH03", "BH02"});
  EXPECT_EQ(Summary(selected),
            (Lines{"BH03 @90,0 top 10: A 10..6@9", "BH02 @50,0 top 10: A 10..5@6"}));
  EXPECT_EQ(selected.source, "set.json");
  // BH01's error does not stop a section that leaves BH01 out.
  EXPECT_EQ(Messages(selected.diagnostics),
            (Lines{"set.json:1: warning: about the file", "set.json:9: warning: field top: about "
                                                          "BH03"}));

  const std::pair<Lines, const char*> refused[] = {
      {{"BH01", "BH99"}, "no hole 'BH99' in set.json"},
      {{"BH01", "TP01"}, "no hole 'TP01' in set.json: it was left out (no geology (no GEOL rows))"},
      {{"bh01", "BH02"}, "no hole 'bh01' in set.json; did you mean 'BH01'?"},
      {{"BH01"}, "a section needs at least two holes; 1 was named"},
      {{}, "a section needs at least two holes; 0 were named"},
      {{"BH01", "BH02", "BH01"}, "hole 'BH01' is named twice"},
  };
  for (const auto& [names, error] : refused) {
    EXPECT_EQ(ErrorOf<SelectionError>([&] { SelectHoles(set, names); }), error);
  }
}

} // namespace
} // namespace xklink
