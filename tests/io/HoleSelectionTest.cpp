#include "HoleSelection.h"

#include "BoreholeBuilders.h"
#include "IoTestSupport.h"

#include <gtest/gtest.h>

namespace xklink {
namespace {

using testing::MakeHole;
using testing::MakeSet;

BoreholeSet ThreeHoles() {
  auto set = MakeSet({MakeHole("BH01", 0, 0, 10, {{L"A", 10, 5}}, 2),
                      MakeHole("BH02", 50, 0, 10, {{L"A", 10, 5}}, 5),
                      MakeHole("BH03", 90, 0, 10, {{L"A", 10, 6}}, 8)});
  set.skipped["TP01"] = "no geology (no GEOL rows)";
  set.diagnostics.push_back(MakeWarning({"set.json", 1, {}}, "about the file"));
  set.diagnostics.push_back(MakeError({"set.json", 3, "top"}, "about BH01", "BH01"));
  set.diagnostics.push_back(MakeWarning({"set.json", 9, "top"}, "about BH03", "BH03"));
  return set;
}

std::string SelectionErrorOf(const BoreholeSet& set, const std::vector<std::string>& names) {
  try {
    SelectHoles(set, names);
  } catch (const SelectionError& error) {
    return error.what();
  }
  ADD_FAILURE() << "no SelectionError";
  return {};
}

TEST(SplitHoleListTest, SplitsAndTrims) {
  EXPECT_EQ(SplitHoleList("BH01,BH02"), (std::vector<std::string>{"BH01", "BH02"}));
  EXPECT_EQ(SplitHoleList(" BH01 , BH 02,BH03 "),
            (std::vector<std::string>{"BH01", "BH 02", "BH03"}));
  EXPECT_EQ(SplitHoleList("BH01"), (std::vector<std::string>{"BH01"}));
}

TEST(SplitHoleListTest, EmptyNamesAreErrors) {
  for (const char* list : {"", "A,,B", "A,", ",A", " , "}) {
    EXPECT_THROW(SplitHoleList(list), SelectionError) << list;
  }
  try {
    SplitHoleList("BH01,,BH02");
  } catch (const SelectionError& error) {
    EXPECT_STREQ(error.what(), "empty hole name in the list 'BH01,,BH02'");
  }
}

TEST(SelectHolesTest, KeepsTheOrderGivenAndTheDiagnosticsThatConcernIt) {
  const auto selected = SelectHoles(ThreeHoles(), {"BH03", "BH02"});
  ASSERT_EQ(selected.holes.size(), 2U);
  EXPECT_EQ(selected.holes[0].name, "BH03");
  EXPECT_EQ(selected.holes[1].name, "BH02");
  EXPECT_EQ(selected.source, "set.json");
  // BH01's error does not stop a section that leaves BH01 out.
  EXPECT_EQ(testing::Messages(selected.diagnostics),
            (std::vector<std::string>{"set.json:1: warning: about the file",
                                      "set.json:9: warning: field top: about BH03"}));
}

TEST(SelectHolesTest, UnknownNamesSayWhatIsKnown) {
  const auto set = ThreeHoles();
  EXPECT_EQ(SelectionErrorOf(set, {"BH01", "BH99"}), "no hole 'BH99' in set.json");
  EXPECT_EQ(SelectionErrorOf(set, {"BH01", "TP01"}),
            "no hole 'TP01' in set.json: it was left out (no geology (no GEOL rows))");
  EXPECT_EQ(SelectionErrorOf(set, {"bh01", "BH02"}),
            "no hole 'bh01' in set.json; did you mean 'BH01'?");
}

TEST(SelectHolesTest, ASectionNeedsTwoDifferentHoles) {
  const auto set = ThreeHoles();
  EXPECT_EQ(SelectionErrorOf(set, {"BH01"}), "a section needs at least two holes; 1 was named");
  EXPECT_EQ(SelectionErrorOf(set, {}), "a section needs at least two holes; 0 were named");
  EXPECT_EQ(SelectionErrorOf(set, {"BH01", "BH02", "BH01"}), "hole 'BH01' is named twice");
}

} // namespace
} // namespace xklink
