#include "SourceFile.h"

#include "IoTestSupport.h"

#include <gtest/gtest.h>

namespace xklink {
namespace {

using namespace std::string_view_literals;

std::vector<std::string> Texts(std::string_view text) {
  std::vector<std::string> out;
  for (const auto& line : SplitLines(text)) {
    out.emplace_back(line.text);
  }
  return out;
}

TEST(SplitLinesTest, AcceptsLfCrlfAndCr) {
  const std::vector<std::string> expected = {"a", "b", "", "c"};
  EXPECT_EQ(Texts("a\nb\n\nc\n"), expected);
  EXPECT_EQ(Texts("a\r\nb\r\n\r\nc\r\n"), expected);
  EXPECT_EQ(Texts("a\rb\r\rc\r"), expected);
  EXPECT_EQ(Texts("a\r\nb\n\rc"), expected); // mixed, as after a careless merge of two files
}

TEST(SplitLinesTest, NumbersLinesFromOneAndOpensNoLineAfterTheLastEnding) {
  const auto lines = SplitLines("x\ny");
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].number, 1U);
  EXPECT_EQ(lines[1].number, 2U);
  EXPECT_EQ(lines[1].text, "y");
  EXPECT_TRUE(SplitLines("").empty());
  EXPECT_EQ(SplitLines("\n").size(), 1U);
}

TEST(LineIndexTest, CountsLinesAsSplitLinesDoes) {
  const LineIndex index("ab\r\ncd\ne\rf");
  EXPECT_EQ(index.LineOf(0), 1U);
  EXPECT_EQ(index.LineOf(2), 1U); // the CR of CRLF
  EXPECT_EQ(index.LineOf(3), 1U); // its LF
  EXPECT_EQ(index.LineOf(4), 2U);
  EXPECT_EQ(index.LineOf(7), 3U);
  EXPECT_EQ(index.LineOf(9), 4U);
}

TEST(RequireUtf8TextTest, NamesTheLineAndColumnOfTheFirstBadByte) {
  EXPECT_NO_THROW(RequireUtf8Text("HOLEID,LITO\n1,Diab\xC3\xA1sio\n", "lito.csv"));
  EXPECT_EQ(testing::ParseErrorOf([] { RequireUtf8Text("HOLEID,LITO\n1,Diab\xE1sio\n", "l.csv"); }),
            "l.csv:2: not valid UTF-8 at column 7; save the file as UTF-8");
  EXPECT_EQ(testing::ParseErrorOf([] { RequireUtf8Text("a\nb\0c"sv, "bin.csv"); }),
            "bin.csv:2: contains a NUL byte: this is not a text file");
}

TEST(ReadSourceFileTest, StripsTheByteOrderMarkAndKeepsLineEndings) {
  testing::TempDir dir;
  const auto path = dir.Write("bom.csv", "\xEF\xBB\xBFHOLEID\r\nBH1\r\n");
  EXPECT_EQ(ReadSourceFile(path), "HOLEID\r\nBH1\r\n");
}

TEST(ReadSourceFileTest, MissingFilesAndDirectoriesAreParseErrors) {
  testing::TempDir dir;
  const auto missing = dir.Path() / "nothing.ags";
  EXPECT_EQ(testing::ParseErrorOf([&] { ReadSourceFile(missing); }),
            missing.string() + ": cannot read the file: it does not exist");
  EXPECT_EQ(testing::ParseErrorOf([&] { ReadSourceFile(dir.Path()); }),
            dir.Path().string() + ": cannot read the file: it is a directory");
}

} // namespace
} // namespace xklink
