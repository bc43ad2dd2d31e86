// The sheet being drawn: its items in painting order, and the boxes already taken by text, so that
// no label is placed over another, over a log or outside the plot.
#pragma once

#include "Sheet.h"

#include <string>
#include <vector>

namespace xklink::drawing {

inline constexpr Rgb kBlack{0x00, 0x00, 0x00};
inline constexpr Rgb kInk{0x1a, 0x1a, 0x1a};
inline constexpr Rgb kMuted{0x55, 0x55, 0x55};
inline constexpr Rgb kWhite{0xff, 0xff, 0xff};

// The box a text covers on the sheet, from the estimate of TextWidth: from a little above the
// capitals to below the descenders, turned with the text.
Box TextBox(const Text& text);

std::vector<Point> Rectangle(double x, double y, double w, double h);

// A signed number for the sheet, with a true minus sign (U+2212) rather than a hyphen.
std::string Signed(double value, int decimals);

// A text broken into lines at blanks so that each is at most `width` sheet units wide at `size`
// (a longer word stands alone).
std::vector<std::string> Wrap(const std::string& text, double width, double size, bool bold);

class Canvas {
public:
  explicit Canvas(Sheet& sheet) : m_sheet(sheet) {}

  void Add(Path path) { m_sheet.items.emplace_back(std::move(path)); }
  void AddLine(Layer layer, Point a, Point b, Rgb colour, double width, bool dashed = false);
  // Adds the text and takes its box.
  void AddText(Text text);
  Text MakeText(Layer layer, Point at, std::string text, double size, Anchor anchor,
                bool bold = false, Rgb colour = kInk) const;

  // Whether the box is clear of every box taken.
  bool Free(const Box& box) const;
  void Take(const Box& box) { m_taken.push_back(box); }

  Sheet& sheet() { return m_sheet; }

private:
  Sheet& m_sheet;
  std::vector<Box> m_taken;
};

} // namespace xklink::drawing
