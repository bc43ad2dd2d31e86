#include "Numbers.h"

#include "IoTestSupport.h"

#include <cmath>
#include <gtest/gtest.h>

namespace xklink {
namespace {

const SourceRef kWhere{"holes.csv", 12, "TOP"};

TEST(ParseNumberTest, ReadsDecimalNumbersAsWritten) {
  EXPECT_EQ(ParseNumber("45.56", kWhere), 45.56);
  EXPECT_EQ(ParseNumber("0", kWhere), 0.0);
  EXPECT_EQ(ParseNumber("-13.12", kWhere), -13.12);
  EXPECT_EQ(ParseNumber("+3.5", kWhere), 3.5);
  EXPECT_EQ(ParseNumber("  39.7 ", kWhere), 39.7);
  EXPECT_EQ(ParseNumber("\t6791745.0", kWhere), 6791745.0);
  EXPECT_EQ(ParseNumber("1e3", kWhere), 1000.0);
  EXPECT_EQ(ParseNumber(".5", kWhere), 0.5);
}

TEST(ParseNumberTest, AnythingElseIsAParseErrorNamingTheField) {
  EXPECT_EQ(testing::ParseErrorOf([] { ParseNumber("abc", kWhere); }),
            "holes.csv:12: field TOP: not a number: 'abc'");
  for (const char* text : {"", "  ", "1,5", "12m", "--1", "+-1", "++1", "0x10", "1.2.3", "- 1"}) {
    EXPECT_THROW(ParseNumber(text, kWhere), ParseError) << text;
  }
}

TEST(ParseNumberTest, NonFiniteValuesPassThroughForTheValidation) {
  EXPECT_TRUE(std::isinf(ParseNumber("inf", kWhere)));
  EXPECT_TRUE(std::isnan(ParseNumber("nan", kWhere)));
  EXPECT_EQ(ParseNumber("1e999", kWhere), HUGE_VAL);
  EXPECT_EQ(ParseNumber("-1e999", kWhere), -HUGE_VAL);
  const double tiny = ParseNumber("1e-400", kWhere);
  EXPECT_TRUE(std::isfinite(tiny));
  EXPECT_LT(std::fabs(tiny), 1e-300);
}

TEST(IsNullFieldTest, EmptyOrBlankIsNull) {
  EXPECT_TRUE(IsNullField(""));
  EXPECT_TRUE(IsNullField(" \t "));
  EXPECT_FALSE(IsNullField("0"));
  EXPECT_FALSE(IsNullField(" x "));
}

TEST(FormatTest, MetresShowAtMostFourDecimals) {
  EXPECT_EQ(FormatMetres(39.1 - 19.97), "19.13");
  EXPECT_EQ(FormatMetres(0.1), "0.1");
  EXPECT_EQ(FormatMetres(5.0), "5");
  EXPECT_EQ(FormatMetres(-13.12), "-13.12");
  EXPECT_EQ(FormatMetres(1234.56789), "1234.5679");
  EXPECT_EQ(FormatMetres(-0.00001), "0");
  EXPECT_EQ(FormatMetres(HUGE_VAL), "inf");
}

// Elevations such as 1e308 are finite and reach the messages of the validation: every digit must
// be there, not the first 63 characters of them (nor a read past a fixed-size buffer).
TEST(FormatTest, MetresOfHugeValuesKeepEveryDigit) {
  EXPECT_EQ(FormatMetres(1e20), "100000000000000000000");
  const std::string largest = FormatMetres(-1.7976931348623157e308);
  EXPECT_EQ(largest.size(), 310U);
  EXPECT_EQ(largest.substr(0, 7), "-179769");
  EXPECT_EQ(FormatMetres(1e300).size(), 301U);
}

TEST(FormatTest, NumbersReadBackExactly) {
  EXPECT_EQ(FormatNumber(0.1), "0.1");
  EXPECT_EQ(FormatNumber(95.0), "95");
  const double value = 39.1 - 19.97;
  EXPECT_EQ(ParseNumber(FormatNumber(value), kWhere), value);
}

TEST(TrimSpacesTest, TrimsBothEnds) {
  EXPECT_EQ(TrimSpaces("  BH01\t"), "BH01");
  EXPECT_EQ(TrimSpaces("Made Ground"), "Made Ground");
  EXPECT_EQ(TrimSpaces("   "), "");
}

} // namespace
} // namespace xklink
