#include "Colour.h"

#include "TextMetrics.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace xklink {

namespace {

using drawing::Rgb;

struct NamedColour {
  std::string_view name;
  std::uint32_t value;
};

// The SVG 1.1 colour keywords, sorted by name for binary search.
constexpr std::array<NamedColour, 147> kSvgColours = {{
    {"aliceblue", 0xf0f8ff},
    {"antiquewhite", 0xfaebd7},
    {"aqua", 0x00ffff},
    {"aquamarine", 0x7fffd4},
    {"azure", 0xf0ffff},
    {"beige", 0xf5f5dc},
    {"bisque", 0xffe4c4},
    {"black", 0x000000},
    {"blanchedalmond", 0xffebcd},
    {"blue", 0x0000ff},
    {"blueviolet", 0x8a2be2},
    {"brown", 0xa52a2a},
    {"burlywood", 0xdeb887},
    {"cadetblue", 0x5f9ea0},
    {"chartreuse", 0x7fff00},
    {"chocolate", 0xd2691e},
    {"coral", 0xff7f50},
    {"cornflowerblue", 0x6495ed},
    {"cornsilk", 0xfff8dc},
    {"crimson", 0xdc143c},
    {"cyan", 0x00ffff},
    {"darkblue", 0x00008b},
    {"darkcyan", 0x008b8b},
    {"darkgoldenrod", 0xb8860b},
    {"darkgray", 0xa9a9a9},
    {"darkgreen", 0x006400},
    {"darkgrey", 0xa9a9a9},
    {"darkkhaki", 0xbdb76b},
    {"darkmagenta", 0x8b008b},
    {"darkolivegreen", 0x556b2f},
    {"darkorange", 0xff8c00},
    {"darkorchid", 0x9932cc},
    {"darkred", 0x8b0000},
    {"darksalmon", 0xe9967a},
    {"darkseagreen", 0x8fbc8f},
    {"darkslateblue", 0x483d8b},
    {"darkslategray", 0x2f4f4f},
    {"darkslategrey", 0x2f4f4f},
    {"darkturquoise", 0x00ced1},
    {"darkviolet", 0x9400d3},
    {"deeppink", 0xff1493},
    {"deepskyblue", 0x00bfff},
    {"dimgray", 0x696969},
    {"dimgrey", 0x696969},
    {"dodgerblue", 0x1e90ff},
    {"firebrick", 0xb22222},
    {"floralwhite", 0xfffaf0},
    {"forestgreen", 0x228b22},
    {"fuchsia", 0xff00ff},
    {"gainsboro", 0xdcdcdc},
    {"ghostwhite", 0xf8f8ff},
    {"gold", 0xffd700},
    {"goldenrod", 0xdaa520},
    {"gray", 0x808080},
    {"green", 0x008000},
    {"greenyellow", 0xadff2f},
    {"grey", 0x808080},
    {"honeydew", 0xf0fff0},
    {"hotpink", 0xff69b4},
    {"indianred", 0xcd5c5c},
    {"indigo", 0x4b0082},
    {"ivory", 0xfffff0},
    {"khaki", 0xf0e68c},
    {"lavender", 0xe6e6fa},
    {"lavenderblush", 0xfff0f5},
    {"lawngreen", 0x7cfc00},
    {"lemonchiffon", 0xfffacd},
    {"lightblue", 0xadd8e6},
    {"lightcoral", 0xf08080},
    {"lightcyan", 0xe0ffff},
    {"lightgoldenrodyellow", 0xfafad2},
    {"lightgray", 0xd3d3d3},
    {"lightgreen", 0x90ee90},
    {"lightgrey", 0xd3d3d3},
    {"lightpink", 0xffb6c1},
    {"lightsalmon", 0xffa07a},
    {"lightseagreen", 0x20b2aa},
    {"lightskyblue", 0x87cefa},
    {"lightslategray", 0x778899},
    {"lightslategrey", 0x778899},
    {"lightsteelblue", 0xb0c4de},
    {"lightyellow", 0xffffe0},
    {"lime", 0x00ff00},
    {"limegreen", 0x32cd32},
    {"linen", 0xfaf0e6},
    {"magenta", 0xff00ff},
    {"maroon", 0x800000},
    {"mediumaquamarine", 0x66cdaa},
    {"mediumblue", 0x0000cd},
    {"mediumorchid", 0xba55d3},
    {"mediumpurple", 0x9370db},
    {"mediumseagreen", 0x3cb371},
    {"mediumslateblue", 0x7b68ee},
    {"mediumspringgreen", 0x00fa9a},
    {"mediumturquoise", 0x48d1cc},
    {"mediumvioletred", 0xc71585},
    {"midnightblue", 0x191970},
    {"mintcream", 0xf5fffa},
    {"mistyrose", 0xffe4e1},
    {"moccasin", 0xffe4b5},
    {"navajowhite", 0xffdead},
    {"navy", 0x000080},
    {"oldlace", 0xfdf5e6},
    {"olive", 0x808000},
    {"olivedrab", 0x6b8e23},
    {"orange", 0xffa500},
    {"orangered", 0xff4500},
    {"orchid", 0xda70d6},
    {"palegoldenrod", 0xeee8aa},
    {"palegreen", 0x98fb98},
    {"paleturquoise", 0xafeeee},
    {"palevioletred", 0xdb7093},
    {"papayawhip", 0xffefd5},
    {"peachpuff", 0xffdab9},
    {"peru", 0xcd853f},
    {"pink", 0xffc0cb},
    {"plum", 0xdda0dd},
    {"powderblue", 0xb0e0e6},
    {"purple", 0x800080},
    {"red", 0xff0000},
    {"rosybrown", 0xbc8f8f},
    {"royalblue", 0x4169e1},
    {"saddlebrown", 0x8b4513},
    {"salmon", 0xfa8072},
    {"sandybrown", 0xf4a460},
    {"seagreen", 0x2e8b57},
    {"seashell", 0xfff5ee},
    {"sienna", 0xa0522d},
    {"silver", 0xc0c0c0},
    {"skyblue", 0x87ceeb},
    {"slateblue", 0x6a5acd},
    {"slategray", 0x708090},
    {"slategrey", 0x708090},
    {"snow", 0xfffafa},
    {"springgreen", 0x00ff7f},
    {"steelblue", 0x4682b4},
    {"tan", 0xd2b48c},
    {"teal", 0x008080},
    {"thistle", 0xd8bfd8},
    {"tomato", 0xff6347},
    {"turquoise", 0x40e0d0},
    {"violet", 0xee82ee},
    {"wheat", 0xf5deb3},
    {"white", 0xffffff},
    {"whitesmoke", 0xf5f5f5},
    {"yellow", 0xffff00},
    {"yellowgreen", 0x9acd32},
}};

constexpr Rgb FromValue(std::uint32_t value) {
  return Rgb{static_cast<std::uint8_t>((value >> 16) & 0xFF),
             static_cast<std::uint8_t>((value >> 8) & 0xFF),
             static_cast<std::uint8_t>(value & 0xFF)};
}

// Fill colours for codes that carry no conventional colour: muted mid tones, light enough for black
// text, one every twenty degrees or so round the hue circle plus a few earthy tones, so that codes
// that share a section rarely look alike.
constexpr std::array<std::uint32_t, 18> kPalette = {
    0xf08a7e, 0xf6b26b, 0xf3e27a, 0xc5e17a, 0x8fcf8a, 0x7fcdbb, 0x8fd3e8, 0x8fb3e3, 0xa7a2e0,
    0xc39bd3, 0xe69ac8, 0xf4b6c2, 0xd2b48c, 0xb9b66b, 0xa3b4c4, 0xead9b0, 0xc99a8b, 0xa9c0a0};

// Conventional colours of soil and rock descriptions, after the usual colouring of engineering
// geology sections: grey made ground, brown clay, yellow sand, orange gravel, near-white chalk.
struct Convention {
  std::string_view word;
  std::uint32_t value;
};
constexpr std::array<Convention, 27> kWordColours = {{
    {"MADE", 0x9e9e9e},      {"FILL", 0x9e9e9e},     {"TOPSOIL", 0x8a6a45},
    {"PEAT", 0x8c6d4f},      {"CLAY", 0xb5835a},     {"CLAYS", 0xb5835a},
    {"SILT", 0xc8b48c},      {"SILTS", 0xc8b48c},    {"SAND", 0xf2d36b},
    {"SANDS", 0xf2d36b},     {"GRAVEL", 0xf0a04b},   {"GRAVELS", 0xf0a04b},
    {"COBBLES", 0xd98c4a},   {"BOULDERS", 0xc07a45}, {"CHALK", 0xf3f1e4},
    {"ALLUVIUM", 0x9fb7a0},  {"TILL", 0xa89a7a},     {"LIMESTONE", 0xa8c6e0},
    {"SANDSTONE", 0xe8c07d}, {"MUDSTONE", 0x9b8ea8}, {"SILTSTONE", 0xb4a7b8},
    {"SHALE", 0x8f8fa3},     {"GRANITE", 0xe0a0a0},  {"BASALT", 0x7d7d8c},
    {"COAL", 0x6e6e6e},      {"WATER", 0xa6d8f0},    {"ROCK", 0xb0a8a0},
}};

// Codes of the London stratigraphy, common in British ground investigation data.
constexpr std::array<Convention, 10> kAbbreviationColours = {{
    {"TOP", 0x8a6a45},
    {"MG", 0x9e9e9e},
    {"ALV", 0x9fb7a0},
    {"RTD", 0xf0a04b},
    {"LC", 0xb5835a},
    {"HAR", 0xb9b66b},
    {"TS", 0xe8d27c},
    {"LMG", 0xc9a0c9},
    {"CK", 0xf3f1e4},
    {"CHK", 0xf3f1e4},
}};

// FNV-1a over the UTF-8 of the code: fixed by definition, unlike std::hash, so the colour of a
// code is the same on every platform and in every release.
std::uint32_t StableHash(std::string_view bytes) {
  std::uint32_t hash = 2166136261u;
  for (const char c : bytes) {
    hash ^= static_cast<unsigned char>(c);
    hash *= 16777619u;
  }
  return hash;
}

struct Hsl {
  double h;
  double s;
  double l;
};

Hsl ToHsl(Rgb c) {
  const double r = c.r / 255.0;
  const double g = c.g / 255.0;
  const double b = c.b / 255.0;
  const double hi = std::max({r, g, b});
  const double lo = std::min({r, g, b});
  const double l = (hi + lo) / 2.0;
  if (hi - lo < 1e-12) {
    return {0.0, 0.0, l};
  }
  const double d = hi - lo;
  const double s = l > 0.5 ? d / (2.0 - hi - lo) : d / (hi + lo);
  double h = 0.0;
  if (hi == r) {
    h = (g - b) / d + (g < b ? 6.0 : 0.0);
  } else if (hi == g) {
    h = (b - r) / d + 2.0;
  } else {
    h = (r - g) / d + 4.0;
  }
  return {h * 60.0, s, l};
}

Rgb FromHsl(Hsl c) {
  const double chroma = (1.0 - std::fabs(2.0 * c.l - 1.0)) * c.s;
  const double hp = std::fmod(std::fmod(c.h, 360.0) + 360.0, 360.0) / 60.0;
  const double x = chroma * (1.0 - std::fabs(std::fmod(hp, 2.0) - 1.0));
  double r = 0.0;
  double g = 0.0;
  double b = 0.0;
  if (hp < 1.0) {
    r = chroma;
    g = x;
  } else if (hp < 2.0) {
    r = x;
    g = chroma;
  } else if (hp < 3.0) {
    g = chroma;
    b = x;
  } else if (hp < 4.0) {
    g = x;
    b = chroma;
  } else if (hp < 5.0) {
    r = x;
    b = chroma;
  } else {
    r = chroma;
    b = x;
  }
  const double m = c.l - chroma / 2.0;
  const auto channel = [m](double v) {
    return static_cast<std::uint8_t>(std::clamp(std::lround((v + m) * 255.0), 0L, 255L));
  };
  return {channel(r), channel(g), channel(b)};
}

std::vector<std::string> UpperWords(std::string_view utf8) {
  std::vector<std::string> words;
  std::string word;
  for (const char c : utf8) {
    const auto u = static_cast<unsigned char>(c);
    if (std::isalnum(u) != 0) {
      word += static_cast<char>(std::toupper(u));
    } else if (u >= 0x80) {
      word += c; // part of a non-ASCII letter: keeps the word, never matches a keyword
    } else if (!word.empty()) {
      words.push_back(word);
      word.clear();
    }
  }
  if (!word.empty()) {
    words.push_back(word);
  }
  return words;
}

std::optional<Rgb> ConventionalColour(std::string_view utf8, std::uint32_t hash) {
  const std::vector<std::string> words = UpperWords(utf8);
  if (words.size() == 1) {
    for (const Convention& c : kAbbreviationColours) {
      if (words.front() == c.word) {
        return FromValue(c.value);
      }
    }
  }
  // In a soil description the principal soil type is named last ("sandy CLAY" is a clay, "SAND
  // and GRAVEL" counted by its coarser last part), so the last known word decides.
  std::optional<Rgb> base;
  for (const std::string& word : words) {
    for (const Convention& c : kWordColours) {
      if (word == c.word) {
        base = FromValue(c.value);
      }
    }
  }
  // Words that name no soil ("MADE GROUND", "ALLUVIAL DEPOSITS") leave a code at its family's
  // own colour.
  static constexpr std::array<std::string_view, 4> kNeutral = {"GROUND", "FORMATION", "DEPOSITS",
                                                               "DEPOSIT"};
  const auto descriptive = std::count_if(words.begin(), words.end(), [](const std::string& w) {
    return std::find(kNeutral.begin(), kNeutral.end(), w) == kNeutral.end();
  });
  if (!base || descriptive <= 1) {
    return base;
  }
  // Several codes of one family ("SANDY CLAY", "SILTY CLAY") share the family's hue but must
  // still be told apart: the hash shifts lightness and hue a little.
  static constexpr std::array<double, 4> kLightness = {-0.11, -0.05, 0.05, 0.11};
  static constexpr std::array<double, 3> kHue = {-7.0, 0.0, 7.0};
  Hsl hsl = ToHsl(*base);
  hsl.l = std::clamp(hsl.l + kLightness[hash % kLightness.size()], 0.3, 0.93);
  hsl.h += kHue[(hash / kLightness.size()) % kHue.size()];
  return FromHsl(hsl);
}

struct Lab {
  double l;
  double a;
  double b;
};

// sRGB (D65) to CIE L*a*b*.
Lab ToLab(Rgb c) {
  const auto linear = [](std::uint8_t v) {
    const double x = v / 255.0;
    return x <= 0.04045 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4);
  };
  const double r = linear(c.r);
  const double g = linear(c.g);
  const double b = linear(c.b);
  const auto f = [](double t) {
    return t > 216.0 / 24389.0 ? std::cbrt(t) : (24389.0 / 27.0 * t + 16.0) / 116.0;
  };
  const double fx = f((0.4124 * r + 0.3576 * g + 0.1805 * b) / 0.95047);
  const double fy = f(0.2126 * r + 0.7152 * g + 0.0722 * b);
  const double fz = f((0.0193 * r + 0.1192 * g + 0.9505 * b) / 1.08883);
  return {116.0 * fy - 16.0, 500.0 * (fx - fy), 200.0 * (fy - fz)};
}

// Fills closer than this are taken for one unit across a printed sheet: the complaint that chalk
// and a silty sand, or made ground and clay, looked alike was about pairs 6 to 9 apart.
constexpr double kDistinctFills = 12.0;

// No code: a pale grey that reads as "not logged as anything".
constexpr std::uint32_t kNoCodeColour = 0xd0d0d0;

// The colours a code may take, most wanted first: its own, shades of its family (lighter and
// darker, hue nudged), the palette, then hues round the circle at the golden angle, which never
// repeat and stay apart from those before them.
std::vector<Rgb> Candidates(Rgb preferred) {
  std::vector<Rgb> out{preferred};
  const Hsl base = ToHsl(preferred);
  for (const double dl : {0.08, -0.08, 0.16, -0.16}) {
    for (const double dh : {0.0, 12.0, -12.0}) {
      out.push_back(FromHsl({base.h + dh, base.s, std::clamp(base.l + dl, 0.3, 0.93)}));
    }
  }
  for (const std::uint32_t value : kPalette) {
    out.push_back(FromValue(value));
  }
  for (int i = 0; i < 360; ++i) {
    const double hue = std::fmod(i * 137.50776, 360.0);
    out.push_back(FromHsl({hue, 0.35 + 0.2 * (i / 3 % 2), 0.55 + 0.1 * (i % 3)}));
  }
  return out;
}

} // namespace

std::string DefaultColour(const std::wstring& code) {
  const std::string utf8 = drawing::WideToUtf8(code);
  const std::uint32_t hash = StableHash(utf8);
  if (const std::optional<Rgb> conventional = ConventionalColour(utf8, hash)) {
    return drawing::ToHex(*conventional);
  }
  return drawing::ToHex(FromValue(kPalette[hash % kPalette.size()]));
}

namespace drawing {

std::optional<Rgb> ParseColour(std::string_view text) {
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front())) != 0) {
    text.remove_prefix(1);
  }
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back())) != 0) {
    text.remove_suffix(1);
  }
  if (text.size() == 7 && text.front() == '#') {
    std::uint32_t value = 0;
    for (const char c : text.substr(1)) {
      const auto u = static_cast<unsigned char>(c);
      if (std::isxdigit(u) == 0) {
        return std::nullopt;
      }
      const int digit = std::isdigit(u) != 0 ? u - '0' : std::tolower(u) - 'a' + 10;
      value = value * 16 + static_cast<std::uint32_t>(digit);
    }
    return FromValue(value);
  }
  std::string lower;
  for (const char c : text) {
    lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  const auto it = std::lower_bound(
      kSvgColours.begin(), kSvgColours.end(), lower,
      [](const NamedColour& entry, const std::string& name) { return entry.name < name; });
  if (it != kSvgColours.end() && it->name == lower) {
    return FromValue(it->value);
  }
  return std::nullopt;
}

std::string ToHex(Rgb colour) {
  static constexpr std::string_view kHex = "0123456789abcdef";
  std::string out = "#";
  for (const std::uint8_t v : {colour.r, colour.g, colour.b}) {
    out += kHex[v >> 4];
    out += kHex[v & 0xF];
  }
  return out;
}

Rgb ColourOf(const Legend& legend, const std::wstring& code) {
  const auto it = legend.find(code);
  if (it != legend.end()) {
    if (const std::optional<Rgb> colour = ParseColour(it->second.colour)) {
      return *colour;
    }
  }
  return *ParseColour(DefaultColour(code));
}

namespace {

Rgb Default(const std::wstring& code) {
  return *ParseColour(DefaultColour(code));
}

} // namespace

double ColourDistance(Rgb a, Rgb b) {
  const Lab p = ToLab(a);
  const Lab q = ToLab(b);
  return std::sqrt((p.l - q.l) * (p.l - q.l) + (p.a - q.a) * (p.a - q.a) +
                   (p.b - q.b) * (p.b - q.b));
}

void StratigraphicOrder::Add(const std::wstring& code, double elevation) {
  auto& [sum, count] = m_sums[code];
  if (std::isfinite(elevation)) {
    sum += elevation;
    count += 1.0;
  }
}

bool StratigraphicOrder::Knows(const std::wstring& code) const {
  return m_sums.find(code) != m_sums.end();
}

std::vector<std::wstring> StratigraphicOrder::HighestFirst() const {
  std::vector<std::pair<double, std::wstring>> order;
  for (const auto& [code, sum] : m_sums) {
    order.emplace_back(sum.second > 0.0 ? sum.first / sum.second : 0.0, code);
  }
  std::stable_sort(order.begin(), order.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  std::vector<std::wstring> codes;
  for (auto& entry : order) {
    codes.push_back(std::move(entry.second));
  }
  return codes;
}

std::vector<std::wstring> CodesByMeanTop(const Section& section) {
  StratigraphicOrder order;
  for (const SectionHole& hole : section.holes) {
    for (const DataType::_sZKDC& stratum : hole.zk.vecDC) {
      order.Add(stratum.strName, stratum.dTopGC);
    }
  }
  return order.HighestFirst();
}

Legend SectionLegend(const Legend& given, const Section& section,
                     const std::map<std::string, std::string>& descriptions) {
  Legend out;
  std::vector<Rgb> used;
  std::vector<std::pair<std::wstring, Rgb>> conventional; // code, the colour it would like
  std::vector<std::pair<std::wstring, Rgb>> others;
  for (const std::wstring& code : CodesByMeanTop(section)) {
    const auto it = given.find(code);
    const std::optional<Rgb> colour =
        it != given.end() ? ParseColour(it->second.colour) : std::nullopt;
    std::string label = it != given.end() ? it->second.label : std::string();
    if (label.empty()) {
      const auto description = descriptions.find(WideToUtf8(code));
      label = description != descriptions.end() ? description->second : std::string();
    }
    if (colour || code.empty()) {
      // The user's colours stand as given, even when two are alike: the user chose them.
      used.push_back(colour ? *colour : FromValue(kNoCodeColour));
      out[code] = {ToHex(used.back()), std::move(label)};
      continue;
    }
    // A code whose meaning the file gives ("805" is "Chalk") takes the colour of that meaning.
    const std::string utf8 = WideToUtf8(code);
    std::optional<Rgb> preferred = ConventionalColour(label, StableHash(utf8));
    preferred = preferred ? preferred : ConventionalColour(utf8, StableHash(utf8));
    out[code].label = std::move(label);
    (preferred ? conventional : others).emplace_back(code, preferred ? *preferred : Default(code));
  }
  conventional.insert(conventional.end(), others.begin(), others.end());
  for (const auto& [code, preferred] : conventional) {
    // The first candidate that stands far enough from the colours given, else the furthest.
    Rgb best{};
    double bestDistance = -1.0;
    for (const Rgb candidate : Candidates(preferred)) {
      double nearest = HUGE_VAL;
      for (const Rgb other : used) {
        nearest = std::min(nearest, ColourDistance(candidate, other));
      }
      if (nearest > bestDistance) {
        best = candidate;
        bestDistance = nearest;
      }
      if (nearest >= kDistinctFills) {
        break;
      }
    }
    used.push_back(best);
    out[code].colour = ToHex(best);
  }
  return out;
}

int NearestAci(Rgb colour) {
  // The AutoCAD colour index: 1..9 fixed colours, 10..249 twenty-four hues in five shades, each
  // shade full (even index) or half saturated (odd), 250..255 greys.
  static const std::vector<Rgb> kAci = [] {
    std::vector<Rgb> table(256);
    const std::array<std::uint32_t, 10> fixed = {0x000000, 0xff0000, 0xffff00, 0x00ff00, 0x00ffff,
                                                 0x0000ff, 0xff00ff, 0xffffff, 0x808080, 0xc0c0c0};
    for (std::size_t i = 0; i < fixed.size(); ++i) {
      table[i] = FromValue(fixed[i]);
    }
    const std::array<double, 5> shade = {1.0, 0.65, 0.5, 0.3, 0.15};
    for (std::size_t i = 10; i < 250; ++i) {
      const double hue = static_cast<double>((i - 10) / 10) * 15.0;
      const double value = shade[(i % 10) / 2];
      const double saturation = (i % 2 == 0) ? 1.0 : 0.5;
      // HSV to HSL for FromHsl.
      const double l = value * (1.0 - saturation / 2.0);
      const double s = (l <= 0.0 || l >= 1.0) ? 0.0 : (value - l) / std::min(l, 1.0 - l);
      table[i] = FromHsl({hue, s, l});
    }
    const std::array<std::uint32_t, 6> greys = {0x333333, 0x505050, 0x696969,
                                                0x828282, 0xbebebe, 0xffffff};
    for (std::size_t i = 0; i < greys.size(); ++i) {
      table[250 + i] = FromValue(greys[i]);
    }
    return table;
  }();
  int best = 7;
  long bestDistance = -1;
  for (std::size_t i = 1; i < kAci.size(); ++i) {
    const long dr = long{kAci[i].r} - colour.r;
    const long dg = long{kAci[i].g} - colour.g;
    const long db = long{kAci[i].b} - colour.b;
    const long distance = dr * dr + dg * dg + db * db;
    if (bestDistance < 0 || distance < bestDistance) {
      bestDistance = distance;
      best = static_cast<int>(i);
    }
  }
  return best;
}

double Luminance(Rgb colour) {
  const auto linear = [](std::uint8_t v) {
    const double c = v / 255.0;
    return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.r) + 0.7152 * linear(colour.g) + 0.0722 * linear(colour.b);
}

} // namespace drawing

} // namespace xklink
