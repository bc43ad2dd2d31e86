// Colours: legend colours, the stable default palette and the AutoCAD colour numbers.
#include "Colour.h"

#include "Section.h"

#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>

namespace xklink::drawing {
namespace {

Rgb Default(const std::wstring& code) {
  return *ParseColour(DefaultColour(code));
}

TEST(ParseColour, HexAndSvgNames) {
  EXPECT_EQ(ParseColour("#A0b1C2"), (Rgb{0xa0, 0xb1, 0xc2}));
  EXPECT_EQ(ParseColour("SteelBlue"), (Rgb{70, 130, 180}));
  EXPECT_EQ(ParseColour("  red "), (Rgb{255, 0, 0}));
  // The first and last names of the table, and both spellings of grey.
  EXPECT_EQ(ParseColour("aliceblue"), (Rgb{0xf0, 0xf8, 0xff}));
  EXPECT_EQ(ParseColour("yellowgreen"), (Rgb{0x9a, 0xcd, 0x32}));
  EXPECT_EQ(ParseColour("grey"), ParseColour("gray"));
}

TEST(ParseColour, RejectsEverythingElse) {
  for (const char* bad : {"", "#", "#abc", "#abcdefa", "#ggg000", "redd", "re d", "rgb(1,2,3)",
                          "transparent", "none"}) {
    EXPECT_FALSE(ParseColour(bad)) << bad;
  }
}

TEST(ToHex, LowerCaseSixDigits) {
  EXPECT_EQ(ToHex({0x0a, 0xff, 0x00}), "#0aff00");
}

TEST(DefaultColour, SameCodeSameColourEveryTime) {
  const std::regex hex("#[0-9a-f]{6}");
  for (const std::wstring code : {L"LC", L"Unit 4b", L"A&B", L"Lehm \u00FC", L""}) {
    const std::string first = DefaultColour(code);
    EXPECT_TRUE(std::regex_match(first, hex)) << first;
    EXPECT_EQ(DefaultColour(std::wstring(code.begin(), code.end())), first);
  }
}

TEST(DefaultColour, SpreadsArbitraryCodesOverThePalette) {
  std::set<std::string> colours;
  for (int i = 1; i <= 40; ++i) {
    colours.insert(DefaultColour(L"U" + std::to_wstring(i)));
  }
  EXPECT_GE(colours.size(), 12u);
  // And the fills stay light enough for black text.
  for (int i = 1; i <= 40; ++i) {
    EXPECT_GT(Luminance(Default(L"U" + std::to_wstring(i))), 0.2);
  }
}

TEST(DefaultColour, ConventionalColoursOfCommonSoils) {
  const Rgb clay = Default(L"CLAY");
  EXPECT_TRUE(clay.r > clay.g && clay.g > clay.b) << ToHex(clay); // brown
  const Rgb sand = Default(L"SAND");
  EXPECT_TRUE(sand.r > 200 && sand.g > 180 && sand.b < 150) << ToHex(sand); // yellow
  const Rgb gravel = Default(L"GRAVEL");
  EXPECT_TRUE(gravel.r > 200 && gravel.r > gravel.g + 40 && gravel.g > gravel.b) << ToHex(gravel);
  const Rgb made = Default(L"MADE GROUND");
  EXPECT_TRUE(made.r == made.g && made.g == made.b) << ToHex(made); // grey
  EXPECT_GT(Luminance(Default(L"CHALK")), 0.8);
  EXPECT_EQ(Default(L"MG"), made);
}

TEST(DefaultColour, PrincipalSoilIsTheLastWordAndVariantsDiffer) {
  const Rgb sandyClay = Default(L"Sandy CLAY");
  EXPECT_GT(sandyClay.r, sandyClay.b); // a clay, brownish
  EXPECT_NE(sandyClay, Default(L"CLAY"));
  const Rgb clayeySand = Default(L"clayey SAND");
  EXPECT_GT(clayeySand.g, clayeySand.b + 60); // a sand, yellowish
  // A word that merely contains a keyword is not that soil.
  EXPECT_NE(Default(L"CLAYSTONE"), Default(L"CLAY"));
}

TEST(ColourOf, LegendWinsAndBadLegendColoursFallBack) {
  Legend legend;
  legend[L"LC"] = {"#123456", "London Clay"};
  legend[L"X"] = {"not a colour\"/><script>", ""};
  EXPECT_EQ(ColourOf(legend, L"LC"), (Rgb{0x12, 0x34, 0x56}));
  EXPECT_EQ(ColourOf(legend, L"X"), Default(L"X"));
  EXPECT_EQ(ColourOf(legend, L"absent"), Default(L"absent"));
}

TEST(NearestAci, FixedColoursAndGreys) {
  EXPECT_EQ(NearestAci({255, 0, 0}), 1);
  EXPECT_EQ(NearestAci({255, 255, 0}), 2);
  EXPECT_EQ(NearestAci({0, 0, 255}), 5);
  EXPECT_EQ(NearestAci({128, 128, 128}), 8);
  // Index 10 is full red too, but 1 comes first; an orange lands in the hue of 30 degrees.
  EXPECT_EQ(NearestAci({255, 128, 0}), 30);
}

} // namespace
} // namespace xklink::drawing
