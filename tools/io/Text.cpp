#include "Text.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace xklink {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct Utf8Sequence {
  char32_t codePoint;
  std::size_t length;
};

bool IsContinuation(unsigned char byte) {
  return (byte & 0xC0U) == 0x80U;
}

// The sequence starting at text[i], or nothing when it is not valid UTF-8. The ranges of the second
// byte exclude overlong forms (E0 80..9F, F0 80..8F), surrogates (ED A0..BF) and values above
// U+10FFFF (F4 90..BF).
std::optional<Utf8Sequence> DecodeAt(std::string_view text, std::size_t i) {
  const auto byteAt = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
  const unsigned char lead = byteAt(i);
  if (lead < 0x80U) {
    return Utf8Sequence{lead, 1};
  }
  std::size_t length = 0;
  unsigned char low = 0x80U;
  unsigned char high = 0xBFU;
  char32_t value = 0;
  if (lead >= 0xC2U && lead <= 0xDFU) {
    length = 2;
    value = lead & 0x1FU;
  } else if (lead >= 0xE0U && lead <= 0xEFU) {
    length = 3;
    value = lead & 0x0FU;
    low = lead == 0xE0U ? 0xA0U : 0x80U;
    high = lead == 0xEDU ? 0x9FU : 0xBFU;
  } else if (lead >= 0xF0U && lead <= 0xF4U) {
    length = 4;
    value = lead & 0x07U;
    low = lead == 0xF0U ? 0x90U : 0x80U;
    high = lead == 0xF4U ? 0x8FU : 0xBFU;
  } else {
    return std::nullopt;
  }
  if (text.size() - i < length) {
    return std::nullopt;
  }
  const unsigned char second = byteAt(i + 1);
  if (second < low || second > high) {
    return std::nullopt;
  }
  value = (value << 6U) | (second & 0x3FU);
  for (std::size_t k = 2; k < length; ++k) {
    if (!IsContinuation(byteAt(i + k))) {
      return std::nullopt;
    }
    value = (value << 6U) | (byteAt(i + k) & 0x3FU);
  }
  return Utf8Sequence{value, length};
}

void AppendUtf8(std::string& out, char32_t cp) {
  const auto put = [&](std::uint32_t byte) { out += static_cast<char>(byte); };
  const auto v = static_cast<std::uint32_t>(cp);
  if (v < 0x80U) {
    put(v);
  } else if (v < 0x800U) {
    put(0xC0U | (v >> 6U));
    put(0x80U | (v & 0x3FU));
  } else if (v < 0x10000U) {
    put(0xE0U | (v >> 12U));
    put(0x80U | ((v >> 6U) & 0x3FU));
    put(0x80U | (v & 0x3FU));
  } else {
    put(0xF0U | (v >> 18U));
    put(0x80U | ((v >> 12U) & 0x3FU));
    put(0x80U | ((v >> 6U) & 0x3FU));
    put(0x80U | (v & 0x3FU));
  }
}

bool IsSurrogate(char32_t cp) {
  return cp >= 0xD800U && cp <= 0xDFFFU;
}

void AppendWide(std::wstring& out, char32_t cp) {
  if constexpr (sizeof(wchar_t) >= 4) {
    out += static_cast<wchar_t>(cp);
  } else if (cp < 0x10000U) {
    out += static_cast<wchar_t>(cp);
  } else {
    const char32_t v = cp - 0x10000U;
    out += static_cast<wchar_t>(0xD800U + (v >> 10U));
    out += static_cast<wchar_t>(0xDC00U + (v & 0x3FFU));
  }
}

// Windows-1252 differs from Latin-1 only in 80..9F; the five bytes it leaves undefined map to the
// C1 controls of the same value, as web browsers do.
constexpr std::array<char16_t, 32> kCp1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t FromWindows1252(unsigned char byte) {
  if (byte >= 0x80U && byte <= 0x9FU) {
    return kCp1252High[byte - 0x80U];
  }
  return byte;
}

} // namespace

std::string ToUtf8(const std::wstring& text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto cp = static_cast<char32_t>(text[i]);
    if constexpr (sizeof(wchar_t) < 4) {
      const bool high = cp >= 0xD800U && cp <= 0xDBFFU;
      if (high && i + 1 < text.size()) {
        const auto next = static_cast<char32_t>(text[i + 1]);
        if (next >= 0xDC00U && next <= 0xDFFFU) {
          cp = 0x10000U + ((cp - 0xD800U) << 10U) + (next - 0xDC00U);
          ++i;
        }
      }
    }
    if (IsSurrogate(cp) || cp > 0x10FFFFU) {
      cp = kReplacement;
    }
    AppendUtf8(out, cp);
  }
  return out;
}

std::wstring FromUtf8(std::string_view utf8, const SourceRef& where) {
  std::wstring out;
  out.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    const auto sequence = DecodeAt(utf8, i);
    if (!sequence) {
      static constexpr char kHex[] = "0123456789ABCDEF";
      const auto byte = static_cast<unsigned char>(utf8[i]);
      throw ParseError(where, std::string("not valid UTF-8: byte 0x") + kHex[byte >> 4U] +
                                  kHex[byte & 0x0FU] + " at position " + std::to_string(i + 1));
    }
    AppendWide(out, sequence->codePoint);
    i += sequence->length;
  }
  return out;
}

std::optional<std::size_t> FindInvalidUtf8(std::string_view bytes) {
  for (std::size_t i = 0; i < bytes.size();) {
    // Most text is ASCII: pass over it eight bytes at a time.
    constexpr std::uint64_t kHighBits = 0x8080808080808080ULL;
    std::uint64_t word = 0;
    while (i + sizeof word <= bytes.size() &&
           (std::memcpy(&word, bytes.data() + i, sizeof word), (word & kHighBits) == 0)) {
      i += sizeof word;
    }
    if (i == bytes.size()) {
      break;
    }
    const auto sequence = DecodeAt(bytes, i);
    if (!sequence) {
      return i;
    }
    i += sequence->length;
  }
  return std::nullopt;
}

std::string_view StripUtf8Bom(std::string_view text) {
  constexpr std::string_view kBom = "\xEF\xBB\xBF";
  if (text.substr(0, kBom.size()) == kBom) {
    text.remove_prefix(kBom.size());
  }
  return text;
}

std::optional<Utf16Text> Utf16ToUtf8(std::string_view bytes) {
  if (bytes.size() < 2) {
    return std::nullopt;
  }
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  bool bigEndian = false;
  if (byte(0) == 0xFEU && byte(1) == 0xFFU) {
    bigEndian = true;
  } else if (byte(0) != 0xFFU || byte(1) != 0xFEU) {
    return std::nullopt;
  }
  const auto unitAt = [&](std::size_t i) -> char32_t {
    return bigEndian ? (char32_t{byte(i)} << 8U) | byte(i + 1)
                     : (char32_t{byte(i + 1)} << 8U) | byte(i);
  };
  Utf16Text out;
  out.ok = bytes.size() % 2 == 0;
  out.text.reserve(bytes.size() / 2);
  for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
    char32_t cp = unitAt(i);
    if (cp >= 0xD800U && cp <= 0xDBFFU && i + 3 < bytes.size()) {
      const char32_t low = unitAt(i + 2);
      if (low >= 0xDC00U && low <= 0xDFFFU) {
        cp = 0x10000U + ((cp - 0xD800U) << 10U) + (low - 0xDC00U);
        i += 2;
      }
    }
    AppendUtf8(out.text, IsSurrogate(cp) ? kReplacement : cp);
  }
  return out;
}

std::string Windows1252FallbackToUtf8(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size();) {
    if (const auto sequence = DecodeAt(bytes, i)) {
      out.append(bytes.substr(i, sequence->length));
      i += sequence->length;
    } else {
      AppendUtf8(out, FromWindows1252(static_cast<unsigned char>(bytes[i])));
      ++i;
    }
  }
  return out;
}

} // namespace xklink
