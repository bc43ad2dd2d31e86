// UTF-8 <-> wide strings: the codes of strata are UTF-8 in files ("Diabásio", "Carvão") and wide
// strings in the records.
#include "Text.h"

#include "IoTestSupport.h"

#include <gtest/gtest.h>

namespace xklink {
namespace {

const SourceRef kWhere{"codes.csv", 7, "CODE"};

TEST(Utf8Test, DecodesOneToFourByteSequences) {
  EXPECT_EQ(FromUtf8("Made Ground", kWhere), L"Made Ground");
  EXPECT_EQ(FromUtf8("Diab\xC3\xA1sio", kWhere), L"Diab\u00E1sio"); // 2 bytes
  EXPECT_EQ(FromUtf8("\xE2\x82\xAC", kWhere), L"\u20AC");           // 3 bytes: euro sign
  EXPECT_EQ(FromUtf8("\xF0\x9F\x98\x80", kWhere), L"\U0001F600");   // 4 bytes
  EXPECT_EQ(FromUtf8("", kWhere), L"");
}

TEST(Utf8Test, EncodesBackToTheSameBytes) {
  for (const std::string text :
       {"Carv\xC3\xA3o", "\xE2\x82\xAC 10", "\xF0\x9F\x98\x80", "\xEF\xBF\xBF", "plain"}) {
    EXPECT_EQ(ToUtf8(FromUtf8(text, kWhere)), text);
  }
}

TEST(Utf8Test, LargestAndSmallestOfEachLengthRoundTrip) {
  for (const char32_t cp :
       {0x7FU, 0x80U, 0x7FFU, 0x800U, 0xD7FFU, 0xE000U, 0xFFFFU, 0x10000U, 0x10FFFFU}) {
    const std::wstring wide(1, static_cast<wchar_t>(cp));
    EXPECT_EQ(FromUtf8(ToUtf8(wide), kWhere), wide) << std::hex << static_cast<unsigned>(cp);
  }
}

TEST(Utf8Test, UnencodableWideValuesBecomeReplacementCharacters) {
  EXPECT_EQ(ToUtf8(std::wstring(1, static_cast<wchar_t>(0xD800))), "\xEF\xBF\xBD");
  EXPECT_EQ(ToUtf8(std::wstring(1, static_cast<wchar_t>(0x110000))), "\xEF\xBF\xBD");
}

TEST(Utf8Test, InvalidSequencesAreParseErrorsWithThePlace) {
  EXPECT_EQ(testing::ParseErrorOf([] { FromUtf8("ab\x80", kWhere); }),
            "codes.csv:7: field CODE: not valid UTF-8: byte 0x80 at position 3");
  EXPECT_EQ(testing::ParseErrorOf([] { FromUtf8("Diab\xE1sio", kWhere); }),
            "codes.csv:7: field CODE: not valid UTF-8: byte 0xE1 at position 5");
}

TEST(Utf8Test, FindsTheFirstInvalidByte) {
  EXPECT_FALSE(FindInvalidUtf8("Rio do Rasto, Irati").has_value());
  EXPECT_FALSE(FindInvalidUtf8("\xC3\xA1\xE2\x82\xAC\xF0\x9F\x98\x80").has_value());
  EXPECT_EQ(FindInvalidUtf8("\x80"), 0U);               // stray continuation byte
  EXPECT_EQ(FindInvalidUtf8("ab\xC0\xAF"), 2U);         // overlong '/'
  EXPECT_EQ(FindInvalidUtf8("\xE0\x80\x80"), 0U);       // overlong 3-byte
  EXPECT_EQ(FindInvalidUtf8("\xED\xA0\x80"), 0U);       // encoded surrogate
  EXPECT_EQ(FindInvalidUtf8("\xF4\x90\x80\x80"), 0U);   // above U+10FFFF
  EXPECT_EQ(FindInvalidUtf8("x\xE2\x82"), 1U);          // cut short at the end
  EXPECT_EQ(FindInvalidUtf8("\xE2\x82x"), 0U);          // cut short by a plain byte
  EXPECT_EQ(FindInvalidUtf8("ok\xF5\x80\x80\x80"), 2U); // F5 never starts a sequence
}

TEST(Utf8Test, StripsOnlyALeadingByteOrderMark) {
  EXPECT_EQ(StripUtf8Bom("\xEF\xBB\xBFHOLEID,X"), "HOLEID,X");
  EXPECT_EQ(StripUtf8Bom("HOLEID,X"), "HOLEID,X");
  EXPECT_EQ(StripUtf8Bom("a\xEF\xBB\xBF"), "a\xEF\xBB\xBF");
  EXPECT_EQ(StripUtf8Bom("\xEF\xBB"), "\xEF\xBB");
}

TEST(Windows1252Test, ReadsBytesOutsideUtf8AsWindows1252) {
  // "30°" as Excel writes it on Windows, the euro sign and curly quotes from 80..9F.
  EXPECT_EQ(Windows1252FallbackToUtf8("30\xB0"), "30\xC2\xB0");
  EXPECT_EQ(Windows1252FallbackToUtf8("\x80"), "\xE2\x82\xAC");
  EXPECT_EQ(Windows1252FallbackToUtf8("\x93x\x94"), "\xE2\x80\x9Cx\xE2\x80\x9D");
  EXPECT_EQ(Windows1252FallbackToUtf8("\x81"), "\xC2\x81"); // undefined: the C1 control
  EXPECT_EQ(Windows1252FallbackToUtf8("\xFF"), "\xC3\xBF");
}

TEST(Windows1252Test, KeepsValidUtf8AsItIs) {
  EXPECT_EQ(Windows1252FallbackToUtf8("30\xC2\xB0 and 30\xB0"), "30\xC2\xB0 and 30\xC2\xB0");
  EXPECT_FALSE(FindInvalidUtf8(Windows1252FallbackToUtf8("\xE9\xE8\x80\xC3")).has_value());
}

} // namespace
} // namespace xklink
