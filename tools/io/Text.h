// Text encodings. Files hold UTF-8; the records hold std::wstring (UTF-32 where wchar_t has 32
// bits, as on Linux, UTF-16 where it has 16, as on Windows).
#pragma once

#include "Diagnostics.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace xklink {

// UTF-8 of a wide string. A code unit that is no Unicode scalar value (a lone surrogate, a value
// above U+10FFFF) becomes U+FFFD, so the output is always valid UTF-8.
std::string ToUtf8(const std::wstring& text);

// The wide string of valid UTF-8. Invalid UTF-8 (a stray byte, a truncated or overlong sequence,
// an encoded surrogate) throws ParseError at `where`.
std::wstring FromUtf8(std::string_view utf8, const SourceRef& where);

// Offset of the first byte that does not belong to a valid UTF-8 sequence, if any.
std::optional<std::size_t> FindInvalidUtf8(std::string_view bytes);

// The text without a leading UTF-8 byte-order mark (EF BB BF), which spreadsheet programs write.
std::string_view StripUtf8Bom(std::string_view text);

// The UTF-8 of a text that starts with a UTF-16 byte-order mark (FF FE little-endian, FE FF
// big-endian), without the mark; nothing when there is no such mark. An unpaired surrogate becomes
// U+FFFD; `ok` is false when the byte count is odd (the file was cut).
struct Utf16Text {
  std::string text;
  bool ok = true;
};
std::optional<Utf16Text> Utf16ToUtf8(std::string_view bytes);

// Valid UTF-8 sequences as they are; every other byte read as Windows-1252, the code page of most
// files that are not UTF-8 (a degree sign written by Excel on Windows is the single byte B0).
std::string Windows1252FallbackToUtf8(std::string_view bytes);

} // namespace xklink
