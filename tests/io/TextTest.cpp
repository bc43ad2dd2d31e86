// Text as files bring it: UTF-8 and UTF-16 with or without a byte order mark, files that cannot be
// read, and AGS fields quoted as producers write them (CSV quoting is the CSV reader's tests').
#include "Text.h"

#include "AgsTokenizer.h"
#include "IoTestSupport.h"
#include "SourceFile.h"

#include <gtest/gtest.h>

namespace xklink {
namespace {

using namespace std::string_view_literals;
using testing::ErrorOf;

const SourceRef kWhere{"codes.csv", 7, "CODE"};

TEST(Utf8Test, InvalidSequencesAreFoundAtTheirFirstByte) {
  EXPECT_EQ(ErrorOf([] { FromUtf8("Diab\xE1sio", kWhere); }),
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

TEST(SourceTextTest, FilesLoseTheirByteOrderMarkAndMissingOnesAreNamed) {
  testing::TempDir dir;
  EXPECT_EQ(ReadSourceFile(dir.Write("bom.csv", "\xEF\xBB\xBFHOLEID\r\nBH1\r\n")),
            "HOLEID\r\nBH1\r\n");
  // UTF-16 as Windows saves "Unicode" text, both byte orders, with a character beyond the BMP.
  EXPECT_EQ(ReadSourceFile(dir.Write("le.ags", "\xFF\xFE\"\0\xE1\0\x3D\xD8\x00\xDE\n\0"sv)),
            "\"\xC3\xA1\xF0\x9F\x98\x80\n");
  EXPECT_EQ(ReadSourceFile(dir.Write("be.ags", "\xFE\xFF\0\"\0\xE1"sv)), "\"\xC3\xA1");
  const auto cut = dir.Write("cut.ags", "\xFF\xFE\"\0\xE1"sv);
  EXPECT_EQ(ErrorOf([&] { ReadSourceFile(cut); }),
            cut.string() + ": UTF-16 text (it starts with a UTF-16 byte-order mark) with an odd "
                           "number of bytes: the file is cut short");
  EXPECT_EQ(ErrorOf([] { RequireUtf8Text("\"\0G\0R\0O\0U\0P\0\"\0"sv, "w.ags"); }),
            "w.ags: looks like UTF-16 text without a byte-order mark; save it as UTF-8 (or as "
            "UTF-16 with a byte-order mark)");
  const auto missing = std::filesystem::path(dir.path) / "nothing.ags";
  EXPECT_EQ(ErrorOf([&] { ReadSourceFile(missing); }),
            missing.string() + ": cannot read the file: it does not exist");
  EXPECT_EQ(ErrorOf([&] { ReadSourceFile(dir.path); }),
            dir.path + ": cannot read the file: it is a directory");
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
  EXPECT_EQ(ErrorOf([] { AgsRecords("\"DATA\",\"x\"\n\"DATA\",\"Firm\n"); }),
            "t.ags:2: a quoted field opened on this line is never closed: the file ends inside it "
            "(was it cut short?)");
}

} // namespace
} // namespace xklink
