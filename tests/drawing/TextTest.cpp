// Text conversions: UTF-8, XML escaping and DXF strings.
#include "Text.h"

#include <gtest/gtest.h>

namespace xklink::drawing {
namespace {

TEST(EscapeXml, MarkupCharactersAreEscaped) {
  EXPECT_EQ(EscapeXml("A&B <C> \"q\" 'a'"), "A&amp;B &lt;C&gt; &quot;q&quot; &apos;a&apos;");
  EXPECT_EQ(EscapeXml("&amp;"), "&amp;amp;"); // escaped text is escaped again, not trusted
}

TEST(EscapeXml, NonAsciiKeptForbiddenCharactersReplaced) {
  EXPECT_EQ(EscapeXml("Ton \xC3\xBC \xE7\xB2\x98\xE5\x9C\x9F \xF0\x9F\x98\x80"),
            "Ton \xC3\xBC \xE7\xB2\x98\xE5\x9C\x9F \xF0\x9F\x98\x80");
  EXPECT_EQ(EscapeXml("a\tb\nc"), "a\tb\nc");
  EXPECT_EQ(EscapeXml(std::string("a\x01"
                                  "b\0c",
                                  5)),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD"
            "c");
  EXPECT_EQ(EscapeXml("\xEF\xBF\xBE"), "\xEF\xBF\xBD"); // U+FFFE
  EXPECT_EQ(EscapeXml("x\xFFy"), "x\xEF\xBF\xBDy");
}

TEST(Utf8, WideRoundTripIncludingTheAstralPlanes) {
  const std::wstring wide = L"CLAY \u00FC\u7C98\U0001F600";
  const std::string utf8 = WideToUtf8(wide);
  EXPECT_EQ(utf8, "CLAY \xC3\xBC\xE7\xB2\x98\xF0\x9F\x98\x80");
  EXPECT_EQ(Utf8ToWide(utf8), wide);
  EXPECT_EQ(DisplayLength(utf8), 8u);
}

TEST(Utf8, MalformedInputIsRefusedOrReplaced) {
  for (const char* bad : {"\xC0\xAF", "\xED\xA0\x80", "\xE2\x82", "\xF4\x90\x80\x80", "\x80"}) {
    EXPECT_FALSE(Utf8ToWide(bad)) << bad;
  }
  EXPECT_EQ(SanitizeUtf8("a\xE2\x82"), "a\xEF\xBF\xBD\xEF\xBF\xBD");
  if constexpr (sizeof(wchar_t) == 4) {
    EXPECT_EQ(WideToUtf8(std::wstring(1, static_cast<wchar_t>(0xD800))), "\xEF\xBF\xBD");
  }
}

TEST(DxfText, AsciiKeptOtherCharactersEscaped) {
  EXPECT_EQ(DxfText("Vertical exaggeration \xC3\x97"
                    "2.5"),
            "Vertical exaggeration \\U+00D72.5");
  EXPECT_EQ(DxfText("a\\b"), "a\\U+005Cb");
  EXPECT_EQ(DxfText("tab\there\n"), "tabhere");
  EXPECT_EQ(DxfText("\xF0\x9F\x98\x80"), "\\U+FFFD");
}

TEST(DxfText, TruncatesWithoutSplittingAnEscape) {
  EXPECT_EQ(DxfText("abcdef", 4), "abcd");
  // "ab" + 7 bytes of escape would exceed 8: the escape is dropped whole.
  EXPECT_EQ(DxfText("ab\xC3\x97z", 8), "ab");
}

TEST(FormatFixed, NoNegativeZeroNoLocale) {
  EXPECT_EQ(FormatFixed(-0.0001, 2), "0.00");
  EXPECT_EQ(FormatFixed(-0.0, 0), "0");
  EXPECT_EQ(FormatFixed(-2.5, 1), "-2.5");
  EXPECT_EQ(FormatFixed(1234.5678, 2), "1234.57");
  EXPECT_EQ(FormatFixed(std::numeric_limits<double>::quiet_NaN(), 2), "?");
}

} // namespace
} // namespace xklink::drawing
