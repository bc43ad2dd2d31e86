// Text as files bring it: UTF-8 codes of strata ("Diabásio", "Carvão") as wide strings,
// Windows-1252 from spreadsheets, numbers as written, line endings of every system, and unreadable
// files.
#include "Text.h"

#include "AgsTokenizer.h"
#include "CsvRecords.h"
#include "IoTestSupport.h"
#include "Numbers.h"
#include "SourceFile.h"

#include <cmath>
#include <gtest/gtest.h>

namespace xklink {
namespace {

using namespace std::string_view_literals;
using testing::ParseErrorOf;

const SourceRef kWhere{"codes.csv", 7, "CODE"};

TEST(Utf8Test, DecodesAndEncodesOneToFourByteSequences) {
  EXPECT_EQ(FromUtf8("Diab\xC3\xA1sio \xE2\x82\xAC\xF0\x9F\x98\x80", kWhere),
            L"Diab\u00E1sio \u20AC\U0001F600");
  EXPECT_EQ(FromUtf8("", kWhere), L"");
  // The largest and smallest of each length round-trip.
  for (const char32_t cp :
       {0x7FU, 0x80U, 0x7FFU, 0x800U, 0xD7FFU, 0xE000U, 0xFFFFU, 0x10000U, 0x10FFFFU}) {
    const std::wstring wide(1, static_cast<wchar_t>(cp));
    EXPECT_EQ(FromUtf8(ToUtf8(wide), kWhere), wide) << std::hex << static_cast<unsigned>(cp);
  }
  // A surrogate or a value beyond Unicode cannot be encoded: the replacement character.
  EXPECT_EQ(ToUtf8(std::wstring(1, static_cast<wchar_t>(0xD800))), "\xEF\xBF\xBD");
  EXPECT_EQ(ToUtf8(std::wstring(1, static_cast<wchar_t>(0x110000))), "\xEF\xBF\xBD");
}

TEST(Utf8Test, InvalidSequencesAreFoundAtTheirFirstByte) {
  EXPECT_EQ(ParseErrorOf([] { FromUtf8("Diab\xE1sio", kWhere); }),
            "codes.csv:7: field CODE: not valid UTF-8: byte 0xE1 at position 5");
  EXPECT_FALSE(FindInvalidUtf8("\xC3\xA1\xE2\x82\xAC\xF0\x9F\x98\x80").has_value());
  const std::pair<std::string_view, std::size_t> invalid[] = {
      {"\x80", 0},               // stray continuation byte
      {"ab\xC0\xAF", 2},         // overlong '/'
      {"\xE0\x80\x80", 0},       // overlong 3-byte
      {"\xED\xA0\x80", 0},       // encoded surrogate
      {"\xF4\x90\x80\x80", 0},   // above U+10FFFF
      {"x\xE2\x82", 1},          // cut short at the end
      {"\xE2\x82x", 0},          // cut short by a plain byte
      {"ok\xF5\x80\x80\x80", 2}, // F5 never starts a sequence
  };
  for (const auto& [bytes, at] : invalid) {
    EXPECT_EQ(FindInvalidUtf8(bytes), at) << ::testing::PrintToString(std::string(bytes));
  }
}

TEST(Utf8Test, OnlyALeadingByteOrderMarkIsStripped) {
  EXPECT_EQ(StripUtf8Bom("\xEF\xBB\xBFHOLEID,X"), "HOLEID,X");
  EXPECT_EQ(StripUtf8Bom("a\xEF\xBB\xBF"), "a\xEF\xBB\xBF");
  EXPECT_EQ(StripUtf8Bom("\xEF\xBB"), "\xEF\xBB");
}

TEST(Windows1252Test, BytesOutsideUtf8AreReadAsWindows1252AndValidUtf8IsKept) {
  // "30°" as Excel writes it on Windows, the euro sign and curly quotes from 80..9F, an undefined
  // byte as its C1 control, a valid UTF-8 sequence among them, and one cut short at the end.
  EXPECT_EQ(Windows1252FallbackToUtf8("30\xB0 \x80\x93x\x94\x81\xFF 30\xC2\xB0 \xC3"),
            "30\xC2\xB0 \xE2\x82\xAC\xE2\x80\x9Cx\xE2\x80\x9D\xC2\x81\xC3\xBF 30\xC2\xB0 \xC3\x83");
}

TEST(NumbersTest, DecimalNumbersAsWrittenAndNothingElse) {
  const std::pair<const char*, double> numbers[] = {{"-13.12", -13.12},
                                                    {"+3.5", 3.5},
                                                    {" \t6791745.0 ", 6791745.0},
                                                    {"1e3", 1000.0},
                                                    {".5", 0.5}};
  for (const auto& [text, value] : numbers) {
    EXPECT_EQ(ParseNumber(text, kWhere), value) << text;
  }
  // Not finite, or too small: passed on for the validation to judge.
  EXPECT_TRUE(std::isnan(ParseNumber("nan", kWhere)));
  EXPECT_EQ(ParseNumber("-inf", kWhere), -HUGE_VAL);
  EXPECT_EQ(ParseNumber("1e999", kWhere), HUGE_VAL);
  EXPECT_LT(std::fabs(ParseNumber("1e-400", kWhere)), 1e-300);
  EXPECT_EQ(ParseErrorOf([] { ParseNumber("abc", kWhere); }),
            "codes.csv:7: field CODE: not a number: 'abc'");
  for (const char* text : {"", "  ", "1,5", "12m", "--1", "+-1", "++1", "0x10", "1.2.3", "- 1"}) {
    EXPECT_THROW(ParseNumber(text, kWhere), ParseError) << text;
  }
  EXPECT_TRUE(IsNullField(" \t "));
  EXPECT_FALSE(IsNullField(" 0 "));
  EXPECT_EQ(TrimSpaces("  BH 01\t"), "BH 01");
}

TEST(NumbersTest, ElevationsFromDepthsAreTheDecimalDifference) {
  const auto decimal = [](const char* text) { return ParseDecimal(text, kWhere); };
  EXPECT_EQ(decimal(" 12.170 ").places, 3);
  EXPECT_EQ(decimal("-7").places, 0);
  EXPECT_EQ(decimal("5.").places, 0);
  EXPECT_EQ(decimal("1.5e2").places, -1);
  EXPECT_EQ(decimal("nan").places, -1);
  EXPECT_EQ(decimal("+3.25").value, 3.25);
  // Ground level minus depth as binary arithmetic gets it wrong in the last bit.
  ASSERT_NE(4.08 - 2.4, 1.68);
  EXPECT_EQ(DecimalDifference(decimal("4.08"), decimal("2.4")), 1.68);
  EXPECT_EQ(DecimalDifference(decimal("1.66"), decimal("3")), -1.34);
  EXPECT_EQ(DecimalDifference(decimal("-35.62"), decimal("0.30")), -35.92);
  EXPECT_EQ(DecimalDifference(decimal("2.4"), decimal("2.40")), 0.0);
  // Unknown decimals, or too many for the magnitude: the binary difference stands.
  EXPECT_EQ(DecimalDifference(decimal("4.08"), decimal("24e-1")), 4.08 - 2.4);
  // (Rounded to 8 decimals this one would move by 4e-6, beyond the binary error.)
  EXPECT_EQ(DecimalDifference(decimal("31307988313.76994757"), decimal("0.5")),
            31307988313.76994757 - 0.5);
  EXPECT_TRUE(std::isinf(DecimalDifference(decimal("inf"), decimal("1.5"))));
}

TEST(NumbersTest, MetresShowAtMostFourDecimalsAndEveryDigitBeforeThePoint) {
  EXPECT_EQ(FormatMetres(39.1 - 19.97), "19.13");
  EXPECT_EQ(FormatMetres(5.0), "5");
  EXPECT_EQ(FormatMetres(1234.56789), "1234.5679");
  EXPECT_EQ(FormatMetres(-0.00001), "0");
  EXPECT_EQ(FormatMetres(-HUGE_VAL), "-inf");
  // Elevations such as 1e308 are finite and reach the messages: every digit must be there, not
  // the first 63 characters of them (nor a read past a fixed-size buffer).
  EXPECT_EQ(FormatMetres(1e20), "100000000000000000000");
  const std::string largest = FormatMetres(-1.7976931348623157e308);
  EXPECT_EQ(largest.size(), 310U);
  EXPECT_EQ(largest.substr(0, 7), "-179769");
  // Numbers read back exactly.
  EXPECT_EQ(FormatNumber(0.1), "0.1");
  EXPECT_EQ(ParseNumber(FormatNumber(39.1 - 19.97), kWhere), 39.1 - 19.97);
}

TEST(SourceTextTest, LinesEndInLfCrlfOrCrAndAreNumberedFromOne) {
  const auto texts = [](std::string_view text) {
    std::vector<std::string> out;
    for (const auto& line : SplitLines(text)) {
      out.push_back(std::to_string(line.number) + ":" + std::string(line.text));
    }
    return out;
  };
  const std::vector<std::string> expected = {"1:a", "2:b", "3:", "4:c"};
  // The last: mixed, as after a careless merge of two files, and no ending after the last line.
  for (const auto text : {"a\nb\n\nc\n", "a\r\nb\r\n\r\nc\r\n", "a\rb\r\rc\r", "a\r\nb\n\rc"}) {
    EXPECT_EQ(texts(text), expected) << ::testing::PrintToString(std::string(text));
  }
  EXPECT_TRUE(SplitLines("").empty());
  EXPECT_EQ(texts("\n"), std::vector<std::string>{"1:"});
  const LineIndex index("ab\r\ncd\ne\rf");
  // Offset 2 and 3 are the CR and LF of one line ending.
  const std::pair<std::size_t, std::size_t> lines[] = {{0, 1}, {2, 1}, {3, 1},
                                                       {4, 2}, {7, 3}, {9, 4}};
  for (const auto& [offset, line] : lines) {
    EXPECT_EQ(index.LineOf(offset), line) << offset;
  }
}

TEST(SourceTextTest, TextMustBeUtf8WithoutNulBytes) {
  EXPECT_NO_THROW(RequireUtf8Text("HOLEID,LITO\n1,Diab\xC3\xA1sio\n", "lito.csv"));
  EXPECT_EQ(ParseErrorOf([] { RequireUtf8Text("HOLEID,LITO\r\n1,Diab\xE1sio\n", "l.csv"); }),
            "l.csv:2: not valid UTF-8 at column 7; save the file as UTF-8");
  EXPECT_EQ(ParseErrorOf([] { RequireUtf8Text("a\nb\0c"sv, "bin.csv"); }),
            "bin.csv:2: contains a NUL byte: this is not a text file");
}

TEST(SourceTextTest, FilesLoseTheirByteOrderMarkAndMissingOnesAreNamed) {
  testing::TempDir dir;
  EXPECT_EQ(ReadSourceFile(dir.Write("bom.csv", "\xEF\xBB\xBFHOLEID\r\nBH1\r\n")),
            "HOLEID\r\nBH1\r\n");
  // UTF-16 as Windows saves "Unicode" text, both byte orders, with a character beyond the BMP.
  EXPECT_EQ(ReadSourceFile(dir.Write("le.ags", "\xFF\xFE\"\0\xE1\0\x3D\xD8\x00\xDE\n\0"sv)),
            "\"\xC3\xA1\xF0\x9F\x98\x80\n");
  EXPECT_EQ(ReadSourceFile(dir.Write("be.ags", "\xFE\xFF\0\"\0\xE1"sv)), "\"\xC3\xA1");
  const auto cut = dir.Write("cut.ags", "\xFF\xFE\"\0\xE1"sv);
  EXPECT_EQ(ParseErrorOf([&] { ReadSourceFile(cut); }),
            cut.string() + ": UTF-16 text (it starts with a UTF-16 byte-order mark) with an odd "
                           "number of bytes: the file is cut short");
  EXPECT_EQ(ParseErrorOf([] { RequireUtf8Text("\"\0G\0R\0O\0U\0P\0\"\0"sv, "w.ags"); }),
            "w.ags: looks like UTF-16 text without a byte-order mark; save it as UTF-8 (or as "
            "UTF-16 with a byte-order mark)");
  const auto missing = dir.Path() / "nothing.ags";
  EXPECT_EQ(ParseErrorOf([&] { ReadSourceFile(missing); }),
            missing.string() + ": cannot read the file: it does not exist");
  EXPECT_EQ(ParseErrorOf([&] { ReadSourceFile(dir.Path()); }),
            dir.Path().string() + ": cannot read the file: it is a directory");
}

// "line: field|field|..." for each record.
std::vector<std::string> Records(std::string_view text) {
  std::vector<std::string> out;
  for (const auto& record : ReadCsvRecords(text, "t.csv")) {
    std::string line = std::to_string(record.line) + ":";
    for (std::size_t i = 0; i < record.fields.size(); ++i) {
      line += (i == 0 ? "" : "|") + record.fields[i];
    }
    out.push_back(line);
  }
  return out;
}

TEST(CsvRecordsTest, QuotedFieldsLineEndingsBlankLinesAndSpaces) {
  EXPECT_EQ(Records("HOLE,DESC\nBH1,\"Firm, grey CLAY\"\nBH2,\"a \"\"soft\"\" spot\"\nBH3,\"\"\n"),
            (std::vector<std::string>{"1:HOLE|DESC", "2:BH1|Firm, grey CLAY",
                                      "3:BH2|a \"soft\" spot", "4:BH3|"}));
  const std::vector<std::string> expected = {"1:A|B", "2:1|2", "3:3|x,y"};
  for (const std::string text : {"A,B\n1,2\n3,\"x,y\"\n", "A,B\r\n1,2\r\n3,\"x,y\"\r\n",
                                 "A,B\r1,2\r3,\"x,y\"\r", "A,B\n1,2\n3,\"x,y\""}) {
    EXPECT_EQ(Records(text), expected) << text;
  }
  EXPECT_EQ(Records("a,,c,\n,,\n"), (std::vector<std::string>{"1:a||c|", "2:||"}));
  EXPECT_EQ(Records("H\n\nBH1\n   \nBH2\n"), (std::vector<std::string>{"1:H", "3:BH1", "5:BH2"}));
  EXPECT_EQ(Records(" BH1 , 2.5 ,\" padded \"\n"),
            (std::vector<std::string>{"1:BH1|2.5| padded "}));
  EXPECT_TRUE(Records("").empty());
  EXPECT_TRUE(Records("\n\n").empty());
}

TEST(CsvRecordsTest, AQuotedLineBreakKeepsTheRecordOnItsFirstLine) {
  EXPECT_EQ(Records("H,NOTE\nBH1,\"two\r\nlines\"\nBH2,x\n\"BH3\nB\",y\n"),
            (std::vector<std::string>{"1:H|NOTE", "2:BH1|two\nlines", "4:BH2|x", "5:BH3\nB|y"}));
  EXPECT_EQ(testing::ParseErrorOf([] { Records("A,B\nBH1,2\n\"BH2,3\n4,5\n"); }),
            "t.csv:3: a quoted field opened in this record is never closed");
}

TEST(CsvRecordsTest, BadQuotingIsAParseErrorWithTheLineAndColumn) {
  const std::string advice = ": a quote inside an unquoted field or text after a closing quote "
                             "(write a quote inside a quoted field as \"\")";
  EXPECT_EQ(testing::ParseErrorOf([] { Records("A,B\nBH1,ab\"c\n"); }),
            "t.csv:2: bad quoting at column 7" + advice);
  EXPECT_EQ(testing::ParseErrorOf([] { Records("A,B\n\"x\"y,1\n"); }),
            "t.csv:2: bad quoting at column 4" + advice);
}

// "line: field|field|...," for each record (a final ',' when the line ends with a comma), then the
// warnings.
std::vector<std::string> AgsRecords(std::string text, AgsEdition edition = AgsEdition::Ags4) {
  std::vector<Diagnostic> diagnostics;
  AgsTokenizer tokens(text, "t.ags", edition, diagnostics);
  std::vector<std::string> out;
  AgsRecord record;
  while (tokens.Next(record)) {
    std::string line = std::to_string(record.line) + ":";
    for (std::size_t i = 0; i < record.fields.size(); ++i) {
      line += (i == 0 ? "" : "|") + std::string(record.fields[i]);
    }
    out.push_back(line + (record.endsWithComma ? "," : ""));
  }
  tokens.Finish();
  for (const auto& message : testing::Messages(diagnostics)) {
    out.push_back(message);
  }
  return out;
}

TEST(AgsTokenizerTest, QuotedFieldsLineBreaksInsideThemAndStrayQuotes) {
  using Lines = std::vector<std::string>;
  const std::string stray = "t.ags:1: warning: quotes not doubled inside a field; read leniently, "
                            "keeping stray quotes as text";
  const struct {
    std::string text;
    Lines records;
  } cases[] = {
      {"\"DATA\",\"BH1\",\"Soft, brown \"\"CLAY\"\"\",\"\"\r\n\n \"x\" , y \n",
       {"1:DATA|BH1|Soft, brown \"CLAY\"|", "2:", "3:x|y"}},
      // A description typed with Enter between sentences, the next line indented by a tab.
      {"\"DATA\",\"Firm CLAY.\r\n\tFrom 1.30m soft.\",\"201\"\r\n\"DATA\",\"x\"\r\n",
       {"1:DATA|Firm CLAY.\n\tFrom 1.30m soft.|201", "3:DATA|x"}},
      {"\"DATA\",\"Ashfield Area \"C\" Development, Dunbar\",\"x\"\n",
       {"1:DATA|Ashfield Area \"C\" Development, Dunbar|x", stray}},
      // A quote left open where the next line starts a record of its own was a stray one.
      {"\"DATA\",\"5\" pipe\n\"DATA\",\"x\"\n\"DATA\",\"8\" pipe\",\"z\"\n",
       {"1:DATA|5\" pipe", "2:DATA|x", "3:DATA|8\" pipe|z", stray + " (here and on 1 more line)"}},
      {"\"*HOLE_ID\",\"*HOLE_NATE\",\n\"*HOLE_GL\"", {"1:*HOLE_ID|*HOLE_NATE|,", "2:*HOLE_GL"}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(AgsRecords(c.text), c.records) << c.text;
  }
  // AGS 3.1 lines carry no keyword: any line that starts with a quote starts a record.
  EXPECT_EQ(AgsRecords("\"BH1\",\"5\" pipe\n\"BH2\",\"x\"\n", AgsEdition::Ags3)[1], "2:BH2|x");
  // A file cut inside a quoted field has lost rows: not a file to draw from.
  EXPECT_EQ(ParseErrorOf([] { AgsRecords("\"DATA\",\"x\"\n\"DATA\",\"Firm\n"); }),
            "t.ags:2: a quoted field opened on this line is never closed: the file ends inside it "
            "(was it cut short?)");
}

} // namespace
} // namespace xklink
