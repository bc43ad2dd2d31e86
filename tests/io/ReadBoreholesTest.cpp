// The one entry for all formats: text as files bring it (UTF-8 and UTF-16 with or without a byte
// order mark, files that cannot be read), choosing the reader, applying the options, joining
// repeated codes.
#include "ReadBoreholes.h"

#include "IoTestSupport.h"
#include "SourceFile.h"

#include <cmath>
#include <gtest/gtest.h>

namespace xklink {
namespace {

using namespace std::string_view_literals;
using namespace xklink::testing;

TEST(Utf8Test, InvalidSequencesAreFoundAtTheirFirstByte) {
  EXPECT_EQ(ErrorOf([] {
              FromUtf8("Diab\xE1sio", {"codes.csv", 7, "CODE"});
            }),
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
  TempDir dir;
  EXPECT_EQ(ReadSourceFile(dir.Write("bom.csv", "\xEF\xBB\xBFHOLEID\r\nBH1\r\n")),
            "HOLEID\r\nBH1\r\n");
  // UTF-16 as Windows saves "Unicode" text, both byte orders, with a character beyond the BMP.
  EXPECT_EQ(ReadSourceFile(dir.Write("le.ags", "\xFF\xFE\"\0\xE1\0\x3D\xD8\x00\xDE\n\0"sv)),
            "\"\xC3\xA1\xF0\x9F\x98\x80\n");
  EXPECT_EQ(ReadSourceFile(dir.Write("be.ags", "\xFE\xFF\0\"\0\xE1"sv)), "\"\xC3\xA1");
  const auto cut = dir.Write("cut.ags", "\xFF\xFE\"\0\xE1"sv);
  EXPECT_EQ(ErrorOf([&] { ReadSourceFile(cut); }),
            cut + ": UTF-16 text (it starts with a UTF-16 byte-order mark) with an odd "
                  "number of bytes: the file is cut short");
  EXPECT_EQ(ErrorOf([] { RequireUtf8Text("\"\0G\0R\0O\0U\0P\0\"\0"sv, "w.ags"); }),
            "w.ags: looks like UTF-16 text without a byte-order mark; save it as UTF-8 (or as "
            "UTF-16 with a byte-order mark)");
  const auto missing = dir / "nothing.ags";
  EXPECT_EQ(ErrorOf([&] { ReadSourceFile(missing); }),
            missing.string() + ": cannot read the file: it does not exist");
  EXPECT_EQ(ErrorOf([&] { ReadSourceFile(dir.path); }),
            dir.path.string() + ": cannot read the file: it is a directory");
}

const std::string kAgs = "\"GROUP\",\"LOCA\"\n";
const std::string kCsv = "HOLEID,X,Y,Z,FROM,TO,CODE\nA,0,0,10,0,2,S\n";

TEST(FormatTest, NamesExtensionsOrContentTellTheFormat) {
  EXPECT_EQ(FormatFromName("Csv"), Format::Csv);
  EXPECT_EQ(FormatName(FormatFromName("AGS")), "ags");
  // The extension decides without reading the file, which does not exist.
  EXPECT_EQ(DetectFormat("dir.v2/holes.CSV"), Format::Csv);
  TempDir dir;
  EXPECT_EQ(DetectFormat(dir.Write("a.txt", "\xEF\xBB\xBF" + kAgs)), Format::Ags);
  EXPECT_EQ(DetectFormat(dir.Write("b.txt", "\"**PROJ\"\n")), Format::Ags);
  EXPECT_EQ(DetectFormat(dir.Write("c.txt", "\n  {\"boreholes\": []}")), Format::Json);
  EXPECT_EQ(DetectFormat(dir.Write("d", kCsv)), Format::Csv);
  const auto unknown = dir.Write("e.dat", "borehole log\n");
  EXPECT_EQ(ErrorOf([&] { DetectFormat(unknown); }),
            unknown + ": cannot tell the format from the name or the content; give it "
                      "(json, ags or csv)");
}

// The file names in messages and the options applied are shown by the tool and the real files.
TEST(ReadBoreholesTest, TheFormatGivenWinsAndOnlyCsvTakesACollarTable) {
  TempDir dir;
  EXPECT_EQ(Summary(ReadBoreholes(dir.Write("s.json", kCsv), Format::Csv)),
            Lines{"A @0,0 top 10: S 10..8@2"});
  ReadOptions options;
  options.collarFile = dir.Write("collar.csv", "HOLEID,X,Y,Z\n");
  EXPECT_THROW(ReadBoreholes(dir.Write("s.ags", kAgs), Format::Ags, options),
               std::invalid_argument);
}

// Logs split one unit into several rows by description; joining them must never hide a fault.
TEST(MergeRepeatsTest, JoinsTouchingSoundStrataOfTheSameCodeAndNothingElse) {
  const auto merged = [](const std::vector<Bed>& beds) {
    auto set = MakeSet({MakeHole("H", 0, 0, 100, beds, 1)});
    MergeRepeatedCodes(set);
    return Summary(set)[0];
  };
  EXPECT_EQ(
      merged(
          {{L"MG", 100, 99}, {L"MG", 99, 97}, {L"MG", 97, 96}, {L"LC", 96, 80}, {L"MG", 80, 79}}),
      "H @0,0 top 100: MG 100..96@2 LC 96..80@5 MG 80..79@6");
  const std::vector<std::vector<Bed>> kept = {
      {{L"A", 100, 98}, {L"A", 97, 95}},                 // a gap
      {{L"A", 100, 96}, {L"A", 97, 95}},                 // an overlap
      {{L"A", 100, 98}, {L"A", 98, 99}, {L"A", 99, 90}}, // upside down: would look sound
      {{L"A", 100, NAN}, {L"A", NAN, 90}},               // not a number
      {{L"Clay", 100, 98}, {L"CLAY", 98, 95}},           // codes differ in case
      // the host tells them apart by its own value, then by its flag
      {{L"A", 100, 98}, {L"A", 98, 95, 2.0}, {L"A", 95, 90, 2.0, true}},
  };
  for (const auto& beds : kept) {
    EXPECT_EQ(merged(beds), Summary(MakeSet({MakeHole("H", 0, 0, 100, beds, 1)}))[0]);
  }
}

} // namespace
} // namespace xklink
