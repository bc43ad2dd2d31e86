// RFC 4180 syntax through libcsv, with the line each record starts on.
#include "CsvRecords.h"

#include "IoTestSupport.h"

#include <gtest/gtest.h>

namespace xklink {
namespace {

using Fields = std::vector<std::string>;

std::vector<Fields> FieldsOf(const std::vector<CsvRecord>& records) {
  std::vector<Fields> out;
  for (const auto& r : records) {
    out.push_back(r.fields);
  }
  return out;
}

std::vector<std::size_t> LinesOf(const std::vector<CsvRecord>& records) {
  std::vector<std::size_t> out;
  for (const auto& r : records) {
    out.push_back(r.line);
  }
  return out;
}

TEST(CsvRecordsTest, QuotedFieldsHoldCommasAndDoubledQuotes) {
  const auto records = ReadCsvRecords(
      "HOLE,DESC\nBH1,\"Firm, grey CLAY\"\nBH2,\"a \"\"soft\"\" spot\"\nBH3,\"\"\n", "q.csv");
  EXPECT_EQ(
      FieldsOf(records),
      (std::vector<Fields>{
          {"HOLE", "DESC"}, {"BH1", "Firm, grey CLAY"}, {"BH2", "a \"soft\" spot"}, {"BH3", ""}}));
}

TEST(CsvRecordsTest, LfCrlfAndCrGiveTheSameRecords) {
  const std::string lf = "A,B\n1,2\n3,\"x,y\"\n";
  const auto expected = FieldsOf(ReadCsvRecords(lf, "lf.csv"));
  EXPECT_EQ(expected, (std::vector<Fields>{{"A", "B"}, {"1", "2"}, {"3", "x,y"}}));
  EXPECT_EQ(FieldsOf(ReadCsvRecords(testing::WithCrlf(lf), "crlf.csv")), expected);
  EXPECT_EQ(FieldsOf(ReadCsvRecords("A,B\r1,2\r3,\"x,y\"\r", "cr.csv")), expected);
  EXPECT_EQ(FieldsOf(ReadCsvRecords("A,B\n1,2\n3,\"x,y\"", "noend.csv")), expected);
}

TEST(CsvRecordsTest, NullFieldsAreEmptyStrings) {
  const auto records = ReadCsvRecords("a,,c,\n,,\n", "null.csv");
  EXPECT_EQ(FieldsOf(records), (std::vector<Fields>{{"a", "", "c", ""}, {"", "", ""}}));
}

TEST(CsvRecordsTest, BlankLinesAreSkippedAndLinesCountedFromTheFile) {
  const auto records = ReadCsvRecords("H\n\nBH1\n   \nBH2\n", "blank.csv");
  EXPECT_EQ(FieldsOf(records), (std::vector<Fields>{{"H"}, {"BH1"}, {"BH2"}}));
  EXPECT_EQ(LinesOf(records), (std::vector<std::size_t>{1, 3, 5}));
}

TEST(CsvRecordsTest, AQuotedLineBreakKeepsTheRecordOnItsFirstLine) {
  const auto records =
      ReadCsvRecords("H,NOTE\nBH1,\"two\r\nlines\"\nBH2,x\n\"BH3\nB\",y\n", "multi.csv");
  EXPECT_EQ(
      FieldsOf(records),
      (std::vector<Fields>{{"H", "NOTE"}, {"BH1", "two\nlines"}, {"BH2", "x"}, {"BH3\nB", "y"}}));
  EXPECT_EQ(LinesOf(records), (std::vector<std::size_t>{1, 2, 4, 5}));
}

TEST(CsvRecordsTest, SpacesAroundUnquotedFieldsAreDropped) {
  EXPECT_EQ(FieldsOf(ReadCsvRecords(" BH1 , 2.5 ,\" padded \"\n", "sp.csv")),
            (std::vector<Fields>{{"BH1", "2.5", " padded "}}));
}

TEST(CsvRecordsTest, BadQuotingIsAParseErrorWithTheLine) {
  EXPECT_EQ(testing::ParseErrorOf([] { ReadCsvRecords("A,B\nBH1,ab\"c\n", "bad.csv"); }),
            "bad.csv:2: bad quoting at column 7: a quote inside an unquoted field or text after "
            "a closing quote (write a quote inside a quoted field as \"\")");
  EXPECT_EQ(testing::ParseErrorOf([] { ReadCsvRecords("A,B\n\"x\"y,1\n", "after.csv"); }),
            "after.csv:2: bad quoting at column 4: a quote inside an unquoted field or text after "
            "a closing quote (write a quote inside a quoted field as \"\")");
}

TEST(CsvRecordsTest, AnUnclosedQuoteNamesTheLineWhereItsRecordStarts) {
  EXPECT_EQ(testing::ParseErrorOf([] { ReadCsvRecords("A,B\nBH1,2\n\"BH2,3\n4,5\n", "u.csv"); }),
            "u.csv:3: a quoted field opened in this record is never closed");
}

TEST(CsvRecordsTest, EmptyTextHasNoRecords) {
  EXPECT_TRUE(ReadCsvRecords("", "empty.csv").empty());
  EXPECT_TRUE(ReadCsvRecords("\n\n", "empty.csv").empty());
}

TEST(SplitAgsLineTest, SplitsQuotedAgsFields) {
  std::vector<Diagnostic> diagnostics;
  const SourceRef where{"site.ags", 9, {}};
  EXPECT_EQ(SplitAgsLine(R"("DATA","BH1","0.00","Soft, brown ""CLAY""","")", where, diagnostics),
            (Fields{"DATA", "BH1", "0.00", "Soft, brown \"CLAY\"", ""}));
  EXPECT_TRUE(SplitAgsLine("", where, diagnostics).empty());
  EXPECT_TRUE(diagnostics.empty());
}

TEST(SplitAgsLineTest, UndoubledQuotesAreReadLenientlyWithAWarning) {
  // As in a real AGS file: "Ashfield Area "C" Development, Dunbar".
  std::vector<Diagnostic> diagnostics;
  const auto fields = SplitAgsLine(R"("DATA","Ashfield Area "C" Development, Dunbar","x")",
                                   {"proj.ags", 4, {}}, diagnostics);
  EXPECT_EQ(fields, (Fields{"DATA", "Ashfield Area \"C\" Development, Dunbar", "x"}));
  EXPECT_EQ(testing::Messages(diagnostics),
            (std::vector<std::string>{"proj.ags:4: warning: quotes not doubled inside a field; "
                                      "read leniently, keeping stray quotes as text"}));
}

} // namespace
} // namespace xklink
