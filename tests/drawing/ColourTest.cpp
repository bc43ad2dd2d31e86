// Colours: legend colours and the stable default palette.
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

TEST(DefaultColour, StableLightAndSpreadOverThePalette) {
  const std::regex hex("#[0-9a-f]{6}");
  std::set<std::string> colours;
  for (int i = 1; i <= 40; ++i) {
    const std::wstring code = L"U" + std::to_wstring(i);
    const std::string colour = DefaultColour(code);
    EXPECT_TRUE(std::regex_match(colour, hex)) << colour;
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

TEST(ColourOf, LegendWinsAndBadLegendColoursFallBack) {
  Legend legend;
  legend[L"LC"] = {"#123456", "London Clay"};
  legend[L"X"] = {"not a colour\"/><script>", ""};
  EXPECT_EQ(ColourOf(legend, L"LC"), (Rgb{0x12, 0x34, 0x56}));
  EXPECT_EQ(ColourOf(legend, L"X"), Default(L"X"));
  EXPECT_EQ(ColourOf(legend, L"absent"), Default(L"absent"));
}

} // namespace
} // namespace xklink::drawing
