#include "TextMetrics.h"

#include "Text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>

namespace xklink::drawing {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// The one UTF-8 conversion of the tools (tools/io/Text.h) for a single code point.
void AppendUtf8(std::string& out, char32_t c) {
  out += ToUtf8(std::wstring(1, static_cast<wchar_t>(c)));
}

// Calls `emit` with each code point of a UTF-8 text, U+FFFD for each malformed byte.
template <typename Emit> void ForEachCodePoint(std::string_view text, Emit emit) {
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    const std::size_t bad = FindInvalidUtf8(text).value_or(text.size());
    valid.append(text.substr(0, bad));
    if (bad < text.size()) {
      valid += "\xEF\xBF\xBD";
      text.remove_prefix(bad + 1);
    } else {
      text = {};
    }
  }
  const std::wstring wide = FromUtf8(valid, SourceRef{});
  for (std::size_t i = 0; i < wide.size(); ++i) {
    auto c = static_cast<char32_t>(wide[i]);
    if constexpr (sizeof(wchar_t) == 2) {
      if (c >= 0xD800 && c <= 0xDBFF && i + 1 < wide.size()) {
        c = 0x10000 + ((c - 0xD800) << 10) + (static_cast<char32_t>(wide[++i]) - 0xDC00);
      }
    }
    emit(c);
  }
}

} // namespace

std::string WideToUtf8(std::wstring_view text) {
  return ToUtf8(std::wstring(text));
}

std::optional<std::wstring> Utf8ToWide(std::string_view text) {
  if (FindInvalidUtf8(text)) {
    return std::nullopt;
  }
  return FromUtf8(text, SourceRef{});
}

std::string SanitizeUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  ForEachCodePoint(text, [&out](char32_t c) { AppendUtf8(out, c); });
  return out;
}

std::string EscapeXml(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size() + 16);
  ForEachCodePoint(utf8, [&out](char32_t c) {
    switch (c) {
    case U'&':
      out += "&amp;";
      return;
    case U'<':
      out += "&lt;";
      return;
    case U'>':
      out += "&gt;";
      return;
    case U'"':
      out += "&quot;";
      return;
    case U'\'':
      out += "&apos;";
      return;
    default:
      break;
    }
    const bool forbidden =
        (c < 0x20 && c != U'\t' && c != U'\n' && c != U'\r') || c == 0xFFFE || c == 0xFFFF;
    AppendUtf8(out, forbidden ? kReplacement : c);
  });
  return out;
}

std::string DxfText(std::string_view utf8, std::size_t maxLength) {
  static constexpr std::array<char, 16> kHex = {'0', '1', '2', '3', '4', '5', '6', '7',
                                                '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'};
  std::string out;
  bool full = false;
  ForEachCodePoint(utf8, [&](char32_t c) {
    if (full || c < 0x20 || c == 0x7F) {
      return;
    }
    std::string piece;
    if (c < 0x7F && c != U'\\') {
      piece += static_cast<char>(c);
    } else {
      // The escape carries four hex digits, so characters beyond the basic plane cannot be
      // written in an R2000 file; they become the replacement character.
      const char32_t v = c > 0xFFFF ? kReplacement : c;
      piece = "\\U+";
      for (int shift = 12; shift >= 0; shift -= 4) {
        piece += kHex[(v >> shift) & 0xF];
      }
    }
    if (out.size() + piece.size() > maxLength) {
      full = true;
      return;
    }
    out += piece;
  });
  return out;
}

std::string FormatFixed(double value, int decimals) {
  if (!std::isfinite(value)) {
    return "?";
  }
  // Wide enough for the fixed notation of any finite double.
  std::array<char, 400> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::fixed, decimals);
  if (result.ec != std::errc{}) {
    return "?";
  }
  std::string text(buffer.data(), result.ptr);
  // A value that rounds to zero would print as "-0.0"; a sheet must not show negative zero.
  if (text.front() == '-' && text.find_first_not_of("-0.") == std::string::npos) {
    text.erase(0, 1);
  }
  return text;
}

std::size_t DisplayLength(std::string_view utf8) {
  std::size_t count = 0;
  ForEachCodePoint(utf8, [&count](char32_t) { ++count; });
  return count;
}

} // namespace xklink::drawing
