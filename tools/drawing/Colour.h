// Colours of the drawing: legend colours, the stable default palette and DXF colour numbers.
#pragma once

#include "Section.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace xklink::drawing {

struct Rgb {
  std::uint8_t r = 0;
  std::uint8_t g = 0;
  std::uint8_t b = 0;
  bool operator==(const Rgb&) const = default;
};

// "#rrggbb" (either case) or one of the 147 SVG colour names (any case, surrounding blanks
// ignored); nothing for anything else.
std::optional<Rgb> ParseColour(std::string_view text);

// Lower-case "#rrggbb".
std::string ToHex(Rgb colour);

// The colour of a code on the sheet: the legend's colour when it names a valid one, else
// DefaultColour.
Rgb ColourOf(const Legend& legend, const std::wstring& code);

// The AutoCAD colour index (1..255) nearest to a colour, for viewers that ignore true colour.
int NearestAci(Rgb colour);

// Relative luminance (0 black .. 1 white), to choose dark or light text on a fill.
double Luminance(Rgb colour);

} // namespace xklink::drawing
