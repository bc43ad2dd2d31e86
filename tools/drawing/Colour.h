// Colours of the drawing: legend colours, the stable default palette and DXF colour numbers.
#pragma once

#include "Section.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

// How far apart two colours look: CIE76 distance in L*a*b* (about 2 is the least a trained eye
// sees side by side; fills of a section need ten or more to be told apart across the sheet).
double ColourDistance(Rgb a, Rgb b);

// Codes in stratigraphic order, the order in which a reader meets them down a log: by the mean of
// the elevations given for each (the tops of its strata), highest first, ties by code. A code
// given only with elevations that are not finite still counts, at elevation 0.
class StratigraphicOrder {
public:
  void Add(const std::wstring& code, double elevation);
  bool Knows(const std::wstring& code) const;
  std::vector<std::wstring> HighestFirst() const;

private:
  std::map<std::wstring, std::pair<double, double>> m_sums; // code -> (sum, count)
};

// The codes of the section's holes in stratigraphic order, by the tops of their strata.
std::vector<std::wstring> CodesByMeanTop(const Section& section);

// The legend of one section. Every code of its holes gets an entry: the colour and label the
// user's legend gives, else a colour that no other code of the section has (its default colour
// when that stands far enough from the colours already given, else a shade of its family, else
// another hue), labelled with what the file says the code means (`descriptions`, UTF-8 code ->
// text, from the file's ABBR group). Codes with a conventional colour choose first, the others in
// stratigraphic order. The empty code (no code) is a pale grey.
Legend SectionLegend(const Legend& given, const Section& section,
                     const std::map<std::string, std::string>& descriptions);

// The AutoCAD colour index (1..255) nearest to a colour, for viewers that ignore true colour.
int NearestAci(Rgb colour);

// Relative luminance (0 black .. 1 white), to choose dark or light text on a fill.
double Luminance(Rgb colour);

} // namespace xklink::drawing
