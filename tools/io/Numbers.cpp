#include "Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>

namespace xklink {

std::string_view TrimSpaces(std::string_view text) {
  // A plain loop: find_first_not_of searches the set of two for every byte, and this runs on every
  // field of every file.
  const auto blank = [](char c) { return c == ' ' || c == '\t'; };
  while (!text.empty() && blank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && blank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

bool IsNullField(std::string_view text) {
  return TrimSpaces(text).empty();
}

double ParseNumber(std::string_view text, const SourceRef& where) {
  std::string_view digits = TrimSpaces(text);
  if (digits.size() > 1 && digits.front() == '+' && digits[1] != '-' && digits[1] != '+') {
    digits.remove_prefix(1);
  }
  double value = 0.0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, ec] = std::from_chars(digits.data(), end, value);
  if (digits.empty() || stop != end ||
      (ec != std::errc() && ec != std::errc::result_out_of_range)) {
    throw ParseError(where, "not a number: '" + std::string(text) + "'");
  }
  if (ec == std::errc::result_out_of_range) {
    // from_chars leaves the value alone when it overflows or underflows; strtod gives +-HUGE_VAL
    // (infinite) or the nearest tiny value, which is what the digits mean.
    value = std::strtod(std::string(digits).c_str(), nullptr);
  }
  return value;
}

Decimal ParseDecimal(std::string_view text, const SourceRef& where) {
  Decimal number{ParseNumber(text, where), -1};
  const std::string_view digits = TrimSpaces(text);
  if (std::isfinite(number.value) && digits.find_first_of("eE") == std::string_view::npos) {
    const auto point = digits.find('.');
    number.places =
        point == std::string_view::npos ? 0 : static_cast<int>(digits.size() - point - 1);
  }
  return number;
}

double DecimalDifference(const Decimal& a, const Decimal& b) {
  const double difference = a.value - b.value;
  // Beyond 15 decimals the powers of ten stop being exact guides; none of our files comes close.
  constexpr int kMostPlaces = 15;
  const int places = std::max(a.places, b.places);
  if (a.places < 0 || b.places < 0 || places > kMostPlaces || !std::isfinite(difference)) {
    return difference;
  }
  static constexpr std::array<double, kMostPlaces + 1> kPowersOfTen = {
      1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  const double scale = kPowersOfTen[static_cast<std::size_t>(places)];
  // Both values are within half an ulp of their decimals and the subtraction adds half an ulp of
  // the larger; the rounding recovers the decimal result only while that error, scaled, stays far
  // below half a unit of the last decimal.
  const double error = std::ldexp(std::max(std::fabs(a.value), std::fabs(b.value)), -50) * scale;
  if (!(error < 0.25)) {
    return difference;
  }
  return std::round(difference * scale) / scale;
}

std::string FormatNumber(double value) {
  std::array<char, 32> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return std::string(buffer.data(), result.ptr);
}

std::string FormatMetres(double value) {
  if (!std::isfinite(value)) {
    return FormatNumber(value);
  }
  // A finite double runs to 309 digits before the point in "%.4f" (1e308), more than any fixed
  // buffer worth keeping on the stack: ask for the length first.
  const int length = std::snprintf(nullptr, 0, "%.4f", value);
  std::string text(length > 0 ? static_cast<std::size_t>(length) : 0U, '\0');
  std::snprintf(text.data(), text.size() + 1, "%.4f", value);
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
      text.pop_back();
    }
  }
  return text == "-0" ? "0" : text;
}

} // namespace xklink
