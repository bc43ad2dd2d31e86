#include "TextMetrics.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>

namespace xklink::drawing {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& out, char32_t c) {
  if (c >= 0xD800 && c <= 0xDFFF) {
    c = kReplacement;
  }
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c <= 0x10FFFF) {
    out += static_cast<char>(0xF0 | (c >> 18));
    out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    AppendUtf8(out, kReplacement);
  }
}

// Decodes the code point at `pos` and advances past it; a malformed sequence (overlong, surrogate,
// beyond U+10FFFF, truncated) yields nothing and advances by one byte, so that the caller can
// replace it and resynchronise on the next byte.
std::optional<char32_t> DecodeUtf8(std::string_view text, std::size_t& pos) {
  const auto lead = static_cast<unsigned char>(text[pos]);
  std::size_t length = 0;
  char32_t c = 0;
  char32_t minimum = 0;
  if (lead < 0x80) {
    ++pos;
    return lead;
  }
  if ((lead & 0xE0) == 0xC0) {
    length = 2;
    c = lead & 0x1Fu;
    minimum = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3;
    c = lead & 0x0Fu;
    minimum = 0x800;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4;
    c = lead & 0x07u;
    minimum = 0x10000;
  } else {
    ++pos;
    return std::nullopt;
  }
  if (pos + length > text.size()) {
    ++pos;
    return std::nullopt;
  }
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[pos + i]);
    if ((next & 0xC0) != 0x80) {
      ++pos;
      return std::nullopt;
    }
    c = (c << 6) | (next & 0x3Fu);
  }
  if (c < minimum || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
    ++pos;
    return std::nullopt;
  }
  pos += length;
  return c;
}

// Calls `emit` with each code point of a UTF-8 text, U+FFFD for each malformed byte.
template <typename Emit> void ForEachCodePoint(std::string_view text, Emit emit) {
  std::size_t pos = 0;
  while (pos < text.size()) {
    emit(DecodeUtf8(text, pos).value_or(kReplacement));
  }
}

} // namespace

std::string WideToUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto c = static_cast<char32_t>(text[i]);
    if constexpr (sizeof(wchar_t) == 2) {
      // UTF-16: join a surrogate pair; a lone surrogate becomes U+FFFD in AppendUtf8.
      if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size()) {
        const auto low = static_cast<char32_t>(text[i + 1]);
        if (low >= 0xDC00 && low <= 0xDFFF) {
          c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
          ++i;
        }
      }
    }
    AppendUtf8(out, c);
  }
  return out;
}

std::optional<std::wstring> Utf8ToWide(std::string_view text) {
  std::wstring out;
  std::size_t pos = 0;
  while (pos < text.size()) {
    const std::optional<char32_t> c = DecodeUtf8(text, pos);
    if (!c) {
      return std::nullopt;
    }
    if constexpr (sizeof(wchar_t) == 2) {
      if (*c >= 0x10000) {
        const char32_t v = *c - 0x10000;
        out += static_cast<wchar_t>(0xD800 + (v >> 10));
        out += static_cast<wchar_t>(0xDC00 + (v & 0x3FF));
        continue;
      }
    }
    out += static_cast<wchar_t>(*c);
  }
  return out;
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
