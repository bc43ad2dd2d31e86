// The tool's own JSON: members, types, and the line of every record.
#include "JsonReader.h"

#include "IoTestSupport.h"
#include "Text.h"
#include "Validation.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace xklink {
namespace {

using testing::Messages;
using testing::ParseErrorOf;

// BH1 on line 2 with strata on lines 3-4; BH2 on line 5 with its stratum on line 6.
const std::string kHoles = R"({"boreholes": [
  {"name": "BH1", "x": 0.0, "y": 0.0, "top": 100.0, "strata": [
    {"code": "A", "top": 100.0, "bottom": 95.0},
    {"code": "B", "top": 95.0, "bottom": 90.0, "aux": 1.5, "flag": true}]},
  {"name": "BH2", "x": 50, "y": -2.5, "top": 98,
   "strata": [{"code": "A", "top": 98, "bottom": 94}]}
]}
)";

std::string Edit(std::string text, const std::string& from, const std::string& to) {
  const auto at = text.find(from);
  if (at == std::string::npos) {
    ADD_FAILURE() << "not in the file: " << from;
    return text;
  }
  return text.replace(at, from.size(), to);
}

BoreholeSet Read(const std::string& text) {
  return ReadJsonBoreholes(text, "holes.json", {});
}

TEST(JsonReaderTest, ReadsHolesStrataAndTheHostsValues) {
  const auto set = Read(kHoles);
  ASSERT_EQ(set.holes.size(), 2U);
  const auto& bh1 = set.holes[0];
  EXPECT_EQ(bh1.name, "BH1");
  EXPECT_EQ(bh1.top, 100.0);
  ASSERT_EQ(bh1.strata.size(), 2U);
  EXPECT_EQ(bh1.strata[0].dc.strName, L"A");
  EXPECT_EQ(bh1.strata[0].dc.dAux, 0.0);
  EXPECT_FALSE(bh1.strata[0].dc.bAux);
  EXPECT_EQ(bh1.strata[1].dc.dTopGC, 95.0);
  EXPECT_EQ(bh1.strata[1].dc.dBotGC, 90.0);
  EXPECT_EQ(bh1.strata[1].dc.dAux, 1.5);
  EXPECT_TRUE(bh1.strata[1].dc.bAux);
  const auto& bh2 = set.holes[1];
  EXPECT_EQ(bh2.x, 50.0); // integers are numbers too
  EXPECT_EQ(bh2.y, -2.5);
  EXPECT_EQ(bh2.strata[0].dc.dBotGC, 94.0);
  EXPECT_TRUE(set.diagnostics.empty());
  EXPECT_TRUE(ValidateBoreholes(set).empty());
}

TEST(JsonReaderTest, RecordsKnowTheirLines) {
  const auto set = Read(kHoles);
  EXPECT_EQ(set.holes[1].where.ToString(), "holes.json:5: field name");
  EXPECT_EQ(set.holes[0].strata[1].where.ToString(), "holes.json:4: field code");
  EXPECT_EQ(set.holes[1].strata[0].where.ToString(), "holes.json:6: field code");
}

TEST(JsonReaderTest, CrlfAndAByteOrderMarkReadTheSame) {
  const auto set = Read("\xEF\xBB\xBF" + testing::WithCrlf(kHoles));
  ASSERT_EQ(set.holes.size(), 2U);
  EXPECT_EQ(set.holes[1].strata[0].where.line, 6U);
}

TEST(JsonReaderTest, CodesAreUtf8EscapedOrNot) {
  auto set = Read(Edit(kHoles, R"("code": "B")", R"("code": "Carv\u00e3o")"));
  EXPECT_EQ(set.holes[0].strata[1].dc.strName, L"Carv\u00E3o");
  set = Read(Edit(kHoles, R"("code": "B")", "\"code\": \"Diab\xC3\xA1sio\""));
  EXPECT_EQ(set.holes[0].strata[1].dc.strName, L"Diab\u00E1sio");
  EXPECT_EQ(ParseErrorOf([] { Read(Edit(kHoles, R"("code": "B")", "\"code\": \"Diab\xE1sio\"")); }),
            "holes.json:4: not valid UTF-8 at column 19; save the file as UTF-8");
}

TEST(JsonReaderTest, StrataStayInFileOrderForTheValidationToJudge) {
  const auto set =
      Read(Edit(kHoles, R"("top": 95.0, "bottom": 90.0)", R"("top": 99.0, "bottom": 97.0)"));
  EXPECT_EQ(set.holes[0].strata[1].dc.dTopGC, 99.0);
  EXPECT_EQ(Messages(ValidateBoreholes(set), Severity::Error),
            (std::vector<std::string>{"holes.json:4: field top: overlaps the stratum on line 3 by "
                                      "4: top elevation 99 lies above its base 95"}));
}

TEST(JsonReaderTest, MissingMembersAreParseErrors) {
  EXPECT_EQ(ParseErrorOf([] { Read(Edit(kHoles, R"(, "bottom": 94)", "")); }),
            "holes.json:6: field bottom: missing");
  EXPECT_EQ(ParseErrorOf([] { Read(Edit(kHoles, R"("x": 50, )", "")); }),
            "holes.json:5: field x: missing");
  EXPECT_EQ(ParseErrorOf([] { Read(Edit(kHoles, R"("name": "BH2", )", "")); }),
            "holes.json:5: field name: missing");
  EXPECT_EQ(ParseErrorOf([] {
              Read(Edit(kHoles,
                        ",\n   \"strata\": [{\"code\": \"A\", \"top\": 98, \"bottom\": 94}]", ""));
            }),
            "holes.json:5: field strata: missing");
  EXPECT_EQ(ParseErrorOf([] { Read(R"({"holes": []})"); }),
            "holes.json:1: field boreholes: missing");
}

TEST(JsonReaderTest, MistypedMembersAreParseErrorsOnTheirLine) {
  EXPECT_EQ(ParseErrorOf([] { Read(Edit(kHoles, R"("top": 98,)", R"("top": "98",)")); }),
            "holes.json:5: field top: expected a number, found a string");
  EXPECT_EQ(ParseErrorOf([] { Read(Edit(kHoles, R"("code": "B")", R"("code": 7)")); }),
            "holes.json:4: field code: expected a string, found a number");
  EXPECT_EQ(ParseErrorOf([] { Read(Edit(kHoles, R"("flag": true)", R"("flag": 1)")); }),
            "holes.json:4: field flag: expected true or false, found a number");
  EXPECT_EQ(ParseErrorOf([] { Read(Edit(kHoles, R"("aux": 1.5)", R"("aux": null)")); }),
            "holes.json:4: field aux: expected a number, found null");
  EXPECT_EQ(ParseErrorOf([] { Read(Edit(kHoles, R"("name": "BH2")", R"("name": "")")); }),
            "holes.json:5: field name: empty: a borehole needs a name");
  EXPECT_EQ(ParseErrorOf([] { Read(R"({"boreholes": {"name": "BH1"}})"); }),
            "holes.json:1: field boreholes: expected an array of boreholes, found an object");
  EXPECT_EQ(ParseErrorOf([] { Read("{\"boreholes\": [\n  \"BH1\"]}"); }),
            "holes.json:2: field boreholes: expected a borehole object, found a string");
  EXPECT_EQ(ParseErrorOf(
                [] { Read(Edit(kHoles, R"([{"code": "A", "top": 98, "bottom": 94}])", "[[]]")); }),
            "holes.json:6: field strata: expected a stratum object, found an array");
  EXPECT_EQ(ParseErrorOf([] { Read("[1, 2]"); }),
            "holes.json:1: expected an object {\"boreholes\": [...]}, found an array");
}

TEST(JsonReaderTest, DuplicateKeysAreParseErrors) {
  EXPECT_EQ(ParseErrorOf([] { Read(Edit(kHoles, R"("y": -2.5,)", "\"y\": -2.5,\n \"x\": 51,")); }),
            "holes.json:6: field x: duplicate key in the same object (first at line 5)");
}

TEST(JsonReaderTest, SyntaxErrorsNameTheLine) {
  const auto missingComma =
      ParseErrorOf([] { Read(Edit(kHoles, R"("top": 98,)", R"("top": 98)")); });
  EXPECT_EQ(missingComma.rfind("holes.json:6: JSON: syntax error while parsing object", 0), 0U)
      << missingComma;
  const auto empty = ParseErrorOf([] { Read(""); });
  EXPECT_EQ(empty.rfind("holes.json:1: JSON: syntax error while parsing value", 0), 0U) << empty;
  const auto cut = ParseErrorOf([] { Read(kHoles.substr(0, kHoles.find("BH2"))); });
  EXPECT_EQ(cut.rfind("holes.json:5: JSON: syntax error", 0), 0U) << cut;
}

TEST(JsonReaderTest, NumbersBeyondTheRangeOfDoubleAreParseErrors) {
  const auto error = ParseErrorOf([] { Read(Edit(kHoles, R"("top": 98,)", R"("top": 1e999,)")); });
  EXPECT_EQ(error.rfind("holes.json:5: JSON: number overflow", 0), 0U) << error;
}

TEST(JsonReaderTest, UnknownMembersAreWarnings) {
  const auto set = Read(Edit(Edit(kHoles, R"("bottom": 94})", R"("bottom": 94, "colour": "red"})"),
                             R"("top": 98,)", R"("top": 98, "elev": 3,)"));
  EXPECT_EQ(
      Messages(set.diagnostics),
      (std::vector<std::string>{"holes.json:5: warning: field elev: unknown member, ignored",
                                "holes.json:6: warning: field colour: unknown member, ignored"}));
  EXPECT_EQ(set.diagnostics[0].hole, "BH2");
}

TEST(JsonReaderTest, EmptyStrataAndEmptyCodesAreLeftToTheValidation) {
  const auto set = Read(Edit(kHoles, R"([{"code": "A", "top": 98, "bottom": 94}])", "[]"));
  EXPECT_EQ(set.holes[1].strata.size(), 0U);
  EXPECT_EQ(Messages(ValidateBoreholes(set), Severity::Error),
            (std::vector<std::string>{"holes.json:5: field name: hole 'BH2' has no strata"}));
  const auto blank = Read(Edit(kHoles, R"("code": "B")", R"("code": "")"));
  EXPECT_EQ(Messages(blank.diagnostics),
            (std::vector<std::string>{
                "holes.json:4: warning: field code: empty code: the stratum gets an empty code"}));
}

// Members the schema does not know may hold anything: deep nesting and long keys over long arrays
// are read in memory that grows with the input, not with its square. Keeping the path of every
// value made 20 000 nested brackets take about 800 MB, and a 20 000-character key over 20 000
// elements 400 MB; the growth of the peak resident size shows it.
TEST(JsonReaderTest, DeepNestingAndLongKeysTakeLinearMemory) {
  constexpr std::size_t kSize = 20000;
  const std::string deep = std::string(kSize, '[') + std::string(kSize, ']');
  const std::string longKey(kSize, 'k');
  std::string longArray = "[0";
  for (std::size_t i = 1; i < kSize; ++i) {
    longArray += ",0";
  }
  longArray += "]";
  const auto peakKilobytes = [] {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  };
  const long before = peakKilobytes();
  const auto nested = Read(Edit(kHoles, R"("top": 98,)", R"("top": 98, "deep": )" + deep + ","));
  const auto wide =
      Read(Edit(kHoles, R"("bottom": 94})",
                R"("bottom": 94, "notes": {")" + longKey + "\": " + longArray + "}}"));
  const auto root = Read(Edit(kHoles, "\n]}", "\n], \"" + longKey + "\": " + longArray + "}"));
  EXPECT_LT(peakKilobytes() - before, 200L * 1024L);
  EXPECT_EQ(
      Messages(nested.diagnostics),
      (std::vector<std::string>{"holes.json:5: warning: field deep: unknown member, ignored"}));
  EXPECT_EQ(
      Messages(wide.diagnostics),
      (std::vector<std::string>{"holes.json:6: warning: field notes: unknown member, ignored"}));
  ASSERT_EQ(root.diagnostics.size(), 1U);
  EXPECT_EQ(root.diagnostics[0].where.line, 7U);
  EXPECT_EQ(root.diagnostics[0].where.field, longKey);
}

TEST(JsonReaderTest, DuplicateKeysDeepInUnknownMembersNameTheFirstLine) {
  const auto error = ParseErrorOf([] {
    Read(Edit(kHoles, R"("top": 98,)", "\"top\": 98, \"extra\": [[{\"a\": 1,\n\"a\": 2}]],"));
  });
  EXPECT_EQ(error, "holes.json:6: field a: duplicate key in the same object (first at line 5)");
}

} // namespace
} // namespace xklink
