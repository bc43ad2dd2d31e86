// Text conversions of the drawing, on top of the tools' one UTF-8 conversion (tools/io/Text.h):
// stratum codes are wide strings, the sheets are UTF-8 (SVG) or ASCII with \U+XXXX escapes (DXF
// R2000, whose strings are in the drawing's code page).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace xklink::drawing {

// UTF-8 of a wide string (UTF-32 or UTF-16, as wchar_t is); unpaired surrogates and values beyond
// U+10FFFF become U+FFFD.
std::string WideToUtf8(std::wstring_view text);

// The wide string of a UTF-8 text, or nothing when it is not valid UTF-8.
std::optional<std::wstring> Utf8ToWide(std::string_view text);

// Valid UTF-8 in which every malformed sequence is replaced by U+FFFD.
std::string SanitizeUtf8(std::string_view text);

// Character data or attribute value for XML 1.0: & < > " ' escaped, and characters that XML 1.0
// forbids (control characters other than tab, newline and carriage return, U+FFFE, U+FFFF) and
// malformed UTF-8 replaced by U+FFFD.
std::string EscapeXml(std::string_view utf8);

// A string for a DXF R2000 group value: printable ASCII kept, other characters as \U+XXXX (the
// escape that AutoCAD and ezdxf decode), control characters dropped, at most `maxLength` bytes.
std::string DxfText(std::string_view utf8, std::size_t maxLength = 250);

// `value` with a fixed number of decimals, independent of the C locale, never "-0".
std::string FormatFixed(double value, int decimals);

// The number of characters that a text shows (code points of its UTF-8).
std::size_t DisplayLength(std::string_view utf8);

} // namespace xklink::drawing
