// Numbers in input files, and numbers in messages.
#pragma once

#include "Diagnostics.h"

#include <string>
#include <string_view>

namespace xklink {

// True when the field holds no value: AGS writes a null as "", CSV as an empty field, and both
// often pad with spaces.
bool IsNullField(std::string_view text);

// The decimal number in a field (surrounding spaces allowed, a leading '+' allowed, '.' as the
// decimal mark). "inf", "nan" and values beyond the range of double are returned as they are,
// non-finite, for the validation to report with their place; anything else that is not a number
// throws ParseError "not a number: 'abc'" at `where`.
double ParseNumber(std::string_view text, const SourceRef& where);

// A number as written in a file together with the count of its decimals, so that a difference of
// two such numbers can be given as decimal arithmetic gives it. `places` is -1 when the text has
// an exponent or the value is not finite.
struct Decimal {
  double value = 0.0;
  int places = -1;
};

// ParseNumber, keeping the count of decimals of the text.
Decimal ParseDecimal(std::string_view text, const SourceRef& where);

// a - b rounded to the decimals the two were written with: an elevation from a ground level and a
// depth, 10.68 - 9 = 1.68 where binary arithmetic gives 1.6799999999999997. The rounding moves the
// value by far less than any tolerance; it is left out when the decimals are unknown or so many
// that the rounding could move the value by more than the binary error.
double DecimalDifference(const Decimal& a, const Decimal& b);

// The shortest text that reads back to the same double ("95", "0.1", "-12.17").
std::string FormatNumber(double value);

// A length or elevation in metres for messages: at most four decimals (0.1 mm), trailing zeros
// dropped, so that 39.1 - 19.97 shows as "19.13" and not as "19.130000000000003".
std::string FormatMetres(double value);

// Spaces and tabs removed from both ends.
std::string_view TrimSpaces(std::string_view text);

} // namespace xklink
