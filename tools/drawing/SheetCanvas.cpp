#include "SheetCanvas.h"

#include "TextMetrics.h"

#include <algorithm>
#include <cmath>

namespace xklink::drawing {

Box TextBox(const Text& text) {
  const double width = TextWidth(text.text, text.size, text.bold);
  const double start = text.anchor == Anchor::Start    ? 0.0
                       : text.anchor == Anchor::Middle ? -0.5 * width
                                                       : -width;
  // Along the baseline from `start`, across it from the ascent to the descent.
  const double u0 = start;
  const double u1 = start + width;
  const double v0 = -0.8 * text.size;
  const double v1 = 0.25 * text.size;
  const double angle = text.rotation * M_PI / 180.0;
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  Box box{1e300, 1e300, -1e300, -1e300};
  for (const double u : {u0, u1}) {
    for (const double v : {v0, v1}) {
      // Anticlockwise on the sheet, whose y runs down.
      const double x = text.at.x + u * c + v * s;
      const double y = text.at.y - u * s + v * c;
      box.left = std::min(box.left, x);
      box.right = std::max(box.right, x);
      box.top = std::min(box.top, y);
      box.bottom = std::max(box.bottom, y);
    }
  }
  return box;
}

std::vector<Point> Rectangle(double x, double y, double w, double h) {
  return {{x, y}, {x + w, y}, {x + w, y + h}, {x, y + h}};
}

std::string Signed(double value, int decimals) {
  std::string text = FormatFixed(value, decimals);
  if (!text.empty() && text.front() == '-') {
    text.replace(0, 1, "\xE2\x88\x92");
  }
  return text;
}

std::vector<std::string> Wrap(const std::string& text, double width, double size, bool bold) {
  std::vector<std::string> lines;
  std::string line;
  std::size_t pos = 0;
  while (pos < text.size()) {
    const std::size_t blank = text.find(' ', pos);
    const std::size_t end = blank == std::string::npos ? text.size() : blank;
    const std::string word = text.substr(pos, end - pos);
    pos = end + 1;
    if (word.empty()) {
      continue;
    }
    if (!line.empty() && TextWidth(line + " " + word, size, bold) > width) {
      lines.push_back(line);
      line.clear();
    }
    line += (line.empty() ? "" : " ") + word;
  }
  if (!line.empty()) {
    lines.push_back(line);
  }
  return lines;
}

void Canvas::AddLine(Layer layer, Point a, Point b, Rgb colour, double width, bool dashed) {
  Path path{layer, {}, {a, b}, false, std::nullopt, colour, width};
  path.dashed = dashed;
  Add(std::move(path));
}

Text Canvas::MakeText(Layer layer, Point at, std::string text, double size, Anchor anchor,
                      bool bold, Rgb colour) const {
  Text t;
  t.layer = layer;
  t.at = at;
  t.text = std::move(text);
  t.size = size;
  t.anchor = anchor;
  t.bold = bold;
  t.colour = colour;
  return t;
}

void Canvas::AddText(Text text) {
  Take(TextBox(text));
  m_sheet.items.emplace_back(std::move(text));
}

bool Canvas::Free(const Box& box) const {
  return std::none_of(m_taken.begin(), m_taken.end(),
                      [&box](const Box& other) { return box.Overlaps(other); });
}

} // namespace xklink::drawing
