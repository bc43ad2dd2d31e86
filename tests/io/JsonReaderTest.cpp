// The tool's own JSON: members, types, and the line of every record.
#include "JsonReader.h"

#include "IoTestSupport.h"

#include <gtest/gtest.h>

namespace xklink {
namespace {

using namespace xklink::testing;

// BH1 on line 2 with strata on lines 3-4; BH2 on line 5 with its stratum on line 6.
const std::string kHoles = R"({"boreholes": [
  {"name": "BH1", "x": 0.0, "y": 0.0, "top": 100.0, "strata": [
    {"code": "A", "top": 100.0, "bottom": 95.0},
    {"code": "B", "top": 95.0, "bottom": 90.0, "aux": 1.5, "flag": true}]},
  {"name": "BH2", "x": 50, "y": -2.5, "top": 98,
   "strata": [{"code": "A", "top": 98, "bottom": 94}]}
]}
)";

BoreholeSet Read(const std::string& text) {
  return ReadJsonBoreholes(text, "holes.json", {});
}

TEST(JsonReaderTest, ReadsHolesStrataAndTheHostsValuesWithTheirLines) {
  const Lines holes = {"BH1 @0,0 top 100: A 100..95@3 B 95..90@4",
                       "BH2 @50,-2.5 top 98: A 98..94@6"};
  const auto set = Read(kHoles);
  EXPECT_EQ(Summary(set), holes);
  EXPECT_EQ(Summary(Read(WithBomAndCrlf(kHoles))), holes);
  const auto& strata = set.holes[0].strata;
  EXPECT_EQ(std::tuple(strata[0].dc.dAux, strata[0].dc.bAux, strata[1].dc.dAux, strata[1].dc.bAux),
            std::tuple(0.0, false, 1.5, true));
  EXPECT_EQ(strata[1].where.ToString(), "holes.json:4: field code");
  const auto utf8 = Read(Edit(kHoles, R"("code": "B")", "\"code\": \"Diab\xC3\xA1sio\""));
  EXPECT_EQ(utf8.holes[0].strata[1].dc.strName, L"Diab\u00E1sio");
}

TEST(JsonReaderTest, BadFilesAreParseErrorsNamingTheLineAndField) {
  const struct {
    std::string text;
    const char* error;
  } cases[] = {
      {Edit(kHoles, R"(, "bottom": 94)", ""), "holes.json:6: field bottom: missing"},
      {R"({"holes": []})", "holes.json:1: field boreholes: missing"},
      {Edit(kHoles, R"("top": 98,)", R"("top": "98",)"),
       "holes.json:5: field top: expected a number, found a string"},
      {Edit(kHoles, R"("code": "B")", R"("code": 7)"),
       "holes.json:4: field code: expected a string, found a number"},
      {Edit(kHoles, R"("flag": true)", R"("flag": 1)"),
       "holes.json:4: field flag: expected true or false, found a number"},
      {Edit(kHoles, R"("name": "BH2")", R"("name": "")"),
       "holes.json:5: field name: empty: a borehole needs a name"},
      {R"({"boreholes": {"name": "BH1"}})",
       "holes.json:1: field boreholes: expected an array of boreholes, found an object"},
      {"{\"boreholes\": [\n  \"BH1\"]}",
       "holes.json:2: field boreholes: expected a borehole object, found a string"},
      {Edit(kHoles, R"([{"code": "A", "top": 98, "bottom": 94}])", "[[]]"),
       "holes.json:6: field strata: expected a stratum object, found an array"},
      {"[1, 2]", "holes.json:1: expected an object {\"boreholes\": [...]}, found an array"},
      {Edit(kHoles, R"("y": -2.5,)", "\"y\": -2.5,\n \"x\": 51,"),
       "holes.json:6: field x: duplicate key in the same object (first at line 5)"},
      // Deep inside a member nobody reads, a duplicate key still names the first one's line.
      {Edit(kHoles, R"("top": 98,)", "\"top\": 98, \"extra\": [[{\"a\": 1,\n\"a\": 2}]],"),
       "holes.json:6: field a: duplicate key in the same object (first at line 5)"},
      {Edit(kHoles, R"("code": "B")", "\"code\": \"Diab\xE1sio\""),
       "holes.json:4: not valid UTF-8 at column 19; save the file as UTF-8"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ErrorOf([&] { Read(c.text); }), c.error);
  }
  // Syntax errors and numbers beyond the range of double: the line, then the parser's own words.
  const struct {
    std::string text;
    const char* start;
  } syntax[] = {
      {Edit(kHoles, R"("top": 98,)", R"("top": 98)"),
       "holes.json:6: JSON: syntax error while parsing object"},
      {"", "holes.json:1: JSON: syntax error while parsing value"},
      {kHoles.substr(0, kHoles.find("BH2")), "holes.json:5: JSON: syntax error"},
      {Edit(kHoles, R"("top": 98,)", R"("top": 1e999,)"), "holes.json:5: JSON: number overflow"},
  };
  for (const auto& c : syntax) {
    const auto error = ErrorOf([&] { Read(c.text); });
    EXPECT_EQ(error.rfind(c.start, 0), 0U) << error;
  }
}

// Members the tool does not know may hold anything, but nesting is bounded wherever it is: 110,000
// nested objects inside an unused member once overflowed the stack.
TEST(JsonReaderTest, NestingIsBoundedEvenInMembersNobodyReads) {
  const auto nested = [](std::size_t depth, const std::string& open, const std::string& close) {
    std::string opens;
    std::string closes;
    for (std::size_t i = 0; i < depth; ++i) {
      opens += open;
      closes += close;
    }
    return opens + "1" + closes;
  };
  // "deep" sits in a hole, 3 levels down: the document, "boreholes", the hole.
  const std::size_t room = kMaxJsonNesting - 3;
  const auto inHole = [](const std::string& value) {
    return Read(Edit(kHoles, R"("top": 98,)", "\"top\": 98, \"deep\": " + value + ","));
  };
  const Lines ignored{"holes.json:5: warning: field deep: unknown member, ignored"};
  EXPECT_EQ(Messages(inHole(nested(room, "[", "]")).diagnostics), ignored);
  EXPECT_EQ(Messages(inHole(nested(room, "{\"a\":", ",\"b\":1}")).diagnostics), ignored);
  const std::string refused =
      "holes.json:5: field deep: JSON nested more than 256 levels deep; a borehole file needs 5";
  EXPECT_EQ(ErrorOf([&] { inHole(nested(room + 1, "[", "]")); }), refused);
  EXPECT_EQ(ErrorOf([&] { inHole(nested(110000, "{\"a\":", "}")); }),
            Edit(refused, "field deep", "field a"));
}

} // namespace
} // namespace xklink
