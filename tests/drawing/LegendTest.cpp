// The legend: reading the legend file (what a good file gives, and the line that a bad one names),
// legend colours and the stable default palette.
#include "Colour.h"
#include "SectionFixtures.h"
#include "TextMetrics.h"
#include "support/TempDir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace xklink::drawing {
namespace {

TEST(ReadLegendCsv, GoodFilesAndTheLineAndReasonOfBadOnes) {
  struct Case {
    const char* what;
    std::string content;
    std::size_t line; // of the error, 0 for a good file
    std::string says; // a part of the error message
    Legend legend;    // of a good file
  };
  const Case cases[] = {
      {"header, blank line, spaces, quotes, no label",
       "code,colour,label\nMG,#A0A0A0,Made Ground\n\n"
       "ALV , DarkSeaGreen , \"Alluvium: soft, grey \"\"silty\"\" CLAY\"\nLC,#b08a62\n",
       0,
       "",
       {{L"MG", {"#a0a0a0", "Made Ground"}},
        {L"ALV", {"#8fbc8f", "Alluvium: soft, grey \"silty\" CLAY"}},
        {L"LC", {"#b08a62", ""}}}},
      {"spreadsheet export: BOM, CRLF, Color, no final newline",
       "\xEF\xBB\xBF"
       "Code,Color,Label\r\nSAND,yellow,Sand\r\nGRAVEL,#ffa500,Gravel",
       0,
       "",
       {{L"SAND", {"#ffff00", "Sand"}}, {L"GRAVEL", {"#ffa500", "Gravel"}}}},
      {"empty", "", 0, "", {}},
      {"no header; codes are Unicode and exact",
       "Lehm \xC3\xBC,#996633,x\nclay,#aa7744\nCLAY,#bb8855\n",
       0,
       "",
       {{L"Lehm \u00FC", {"#996633", "x"}},
        {L"clay", {"#aa7744", ""}},
        {L"CLAY", {"#bb8855", ""}}}},
      {"only the first line is a header", "SAND,yellow\ncode,colour,label\n", 2, "'colour'", {}},
      {"one field", "code,colour,label\nMG\n", 2, "found 1 field", {}},
      {"four fields", "MG,grey,Made,Ground\n", 1, "found 4 fields", {}},
      {"no code", "MG,grey\n,grey,no code\n", 2, "", {}},
      {"short hex", "MG,#12345,short\n", 1, "", {}},
      {"unknown name", "MG,blu,x\n", 1, "'blu'", {}},
      {"open quote", "MG,grey,\"open quote\n", 1, "", {}},
      {"bad UTF-8 in a code", "M\xFFG,grey\n", 1, "", {}},
      {"repeated code", "MG,grey\nLC,brown\n\nMG,black\n", 4, "already given on line 1", {}},
  };
  const xktest::TempDir dir;
  const std::filesystem::path path = dir / "legend.csv";
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::ofstream(path, std::ios::binary | std::ios::trunc) << c.content;
    try {
      const Legend legend = ReadLegendCsv(path);
      EXPECT_EQ(c.line, 0u) << "no error";
      ASSERT_EQ(legend.size(), c.legend.size());
      for (const auto& [code, entry] : c.legend) {
        ASSERT_TRUE(legend.contains(code));
        EXPECT_EQ(legend.at(code).colour, entry.colour);
        EXPECT_EQ(legend.at(code).label, entry.label);
      }
    } catch (const LegendError& e) {
      EXPECT_EQ(e.file(), path);
      EXPECT_EQ(e.line(), c.line);
      const std::string message = e.what();
      EXPECT_EQ(message.rfind(path.string() + ":" + std::to_string(c.line) + ": ", 0), 0u)
          << message;
      EXPECT_NE(message.find(c.says), std::string::npos) << message;
    }
  }
  try {
    ReadLegendCsv(dir / "absent.csv");
    ADD_FAILURE() << "no error for a missing file";
  } catch (const LegendError& e) {
    EXPECT_EQ(e.line(), 0u);
    EXPECT_EQ(std::string(e.what()).rfind((dir / "absent.csv").string() + ": ", 0), 0u) << e.what();
  }
}

Rgb Default(const std::wstring& code) {
  return *ParseColour(DefaultColour(code));
}

TEST(DefaultColour, StableLightAndSpreadOverThePalette) {
  std::set<std::string> colours;
  for (int i = 1; i <= 40; ++i) {
    const std::wstring code = L"U" + std::to_wstring(i);
    const std::string colour = DefaultColour(code);
    EXPECT_TRUE(std::regex_match(colour, std::regex("#[0-9a-f]{6}"))) << colour;
    EXPECT_EQ(DefaultColour(std::wstring(code.begin(), code.end())), colour); // another copy
    EXPECT_GT(Luminance(*ParseColour(colour)), 0.2) << colour; // black text stays legible
    colours.insert(colour);
  }
  EXPECT_GE(colours.size(), 12u);
  // The principal soil is the last word; a word that merely contains it is not that soil.
  EXPECT_EQ(Default(L"MG"), Default(L"MADE GROUND"));
  EXPECT_NE(Default(L"Sandy CLAY"), Default(L"CLAY"));
  EXPECT_NE(Default(L"CLAYSTONE"), Default(L"CLAY"));
  const Rgb clay = Default(L"CLAY");
  EXPECT_TRUE(clay.r > clay.g && clay.g > clay.b) << ToHex(clay); // brown
  const Rgb sand = Default(L"clayey SAND");
  EXPECT_TRUE(sand.r > 200 && sand.g > sand.b + 60) << ToHex(sand); // yellow
  const Rgb made = Default(L"MADE GROUND");
  EXPECT_TRUE(made.r == made.g && made.g == made.b) << ToHex(made); // grey
}

// A section of one hole per list of codes, each code a metre thick from the top down.
Section Holes(const std::vector<std::vector<std::wstring>>& logs) {
  Section section;
  for (const auto& log : logs) {
    std::vector<testing::Stratum> strata;
    for (const std::wstring& code : log) {
      const double top = -static_cast<double>(strata.size());
      strata.push_back({code, top, top - 1.0});
    }
    section.holes.push_back({"H", 0.0, testing::MakeHole(L"H", 0.0, 0.0, strata)});
  }
  return section;
}

TEST(SectionLegend, EveryCodeOfASectionHasAColourOfItsOwn) {
  // Twenty codes without meaning share the eighteen colours of the palette; with them, codes of
  // known soils that keep their colours.
  std::vector<std::wstring> log = {L"MG", L"CLAY", L"CHALK", L"SAND", L"silty SAND"};
  for (int i = 1; i <= 20; ++i) {
    log.push_back(L"U" + std::to_wstring(i));
  }
  const Legend legend = SectionLegend({}, Holes({log}), {});
  ASSERT_EQ(legend.size(), log.size());
  for (const auto& [code, entry] : legend) {
    for (const auto& [other, otherEntry] : legend) {
      if (code < other) {
        EXPECT_GE(ColourDistance(*ParseColour(entry.colour), *ParseColour(otherEntry.colour)), 12.0)
            << WideToUtf8(code) << " " << entry.colour << " and " << WideToUtf8(other) << " "
            << otherEntry.colour;
      }
    }
  }
  for (const wchar_t* code : {L"MG", L"CLAY", L"CHALK", L"SAND"}) {
    EXPECT_EQ(legend.at(code).colour, DefaultColour(code)) << WideToUtf8(code);
  }
}

TEST(SectionLegend, ColoursAndLabelsFromTheUserTheFileOrTheCode) {
  Legend given;
  given[L"LC"] = {"#123456", "London Clay (user)"};
  given[L"X"] = {"#123456", ""}; // the user's choice, even alike
  const std::map<std::string, std::string> abbr = {
      {"805", "Chalk"}, {"LC", "London Clay Formation"}, {"X", "Made ground"}};
  const Legend legend = SectionLegend(given, Holes({{L"805", L"LC", L"X", L""}}), abbr);
  const struct {
    const wchar_t* code;
    std::string colour;
    std::string label;
  } cases[] = {
      {L"805", DefaultColour(L"CHALK"), "Chalk"}, // the meaning gives the colour
      {L"LC", "#123456", "London Clay (user)"},
      {L"X", "#123456", "Made ground"},
      {L"", "#d0d0d0", ""}, // no code
  };
  for (const auto& c : cases) {
    EXPECT_EQ(legend.at(c.code).colour, c.colour) << WideToUtf8(c.code);
    EXPECT_EQ(legend.at(c.code).label, c.label) << WideToUtf8(c.code);
  }
}

TEST(SectionLegend, CodesInOrderOfTheMeanElevationOfTheirTops) {
  // B tops at -1 and -1 (mean -1), C at -2 and 0 (mean -1): a tie, kept in code order.
  EXPECT_EQ(CodesByMeanTop(Holes({{L"A", L"B", L"C"}, {L"C", L"B", L"D"}})),
            (std::vector<std::wstring>{L"A", L"B", L"C", L"D"}));
}

} // namespace
} // namespace xklink::drawing
