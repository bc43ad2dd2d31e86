#include "SheetTitleBlock.h"

#include "SectionGeometry.h"
#include "TextMetrics.h"

#include <algorithm>
#include <cmath>

namespace xklink::drawing {

namespace {

constexpr double kPad = 8.0;
constexpr double kCaptionSize = 8.5;
constexpr double kProjectSize = 13.0;
constexpr double kTextSize = 10.5;
constexpr double kBarHeight = 6.0;
constexpr Rgb kFrame{0x1a, 0x1a, 0x1a};
constexpr Rgb kHighlight{0xc0, 0x1f, 0x1f};
constexpr Rgb kPlanLine{0x9a, 0x9a, 0x9a};

// The lines of text of the block, top down; the scale bar stands after the scales.
struct Row {
  std::string text;
  double size;
  bool bold;
  Rgb colour;
  double advance; // from the previous baseline
};

std::vector<Row> Rows(const TitleBlock& block, double width) {
  std::vector<Row> rows;
  const auto add = [&](const std::string& text, double size, bool bold, Rgb colour, double first,
                       std::size_t maxLines) {
    std::vector<std::string> lines = Wrap(text, width - 2.0 * kPad, size, bold);
    if (lines.size() > maxLines) {
      lines.resize(maxLines);
      lines.back() += " \xE2\x80\xA6"; // an ellipsis: the rest is in the file's name or title
    }
    for (std::size_t i = 0; i < lines.size(); ++i) {
      rows.push_back({lines[i], size, bold, colour, i == 0 ? first : size * 1.25});
    }
  };
  add("PROJECT", kCaptionSize, false, kMuted, 12.0, 1);
  add(block.project, kProjectSize, true, kInk, 16.0, 2);
  add("SECTION", kCaptionSize, false, kMuted, 15.0, 1);
  add(block.section, kTextSize, false, kInk, 13.0, 3);
  add("SCALES", kCaptionSize, false, kMuted, 15.0, 1);
  // One line each, so that the block's height does not depend on the scales.
  const double exaggeration = block.scale / block.vscale;
  add("Horizontal " + ScaleText(block.scale), kTextSize, false, kInk, 13.0, 1);
  add("Vertical " + ScaleText(block.vscale) + " (exaggeration \xC3\x97" +
          FormatFixed(exaggeration, std::min(DecimalsFor(exaggeration), 2)) + ")",
      kTextSize, false, kInk, 13.0, 1);
  return rows;
}

constexpr double kBarRoom = 34.0;    // the scale bar and its labels
constexpr double kFooterRoom = 44.0; // sheet number, date and chainage

// The longest round length (1, 2 or 5 times a power of ten metres) whose bar fits `room`.
double BarLength(double unitsPerMetre, double room) {
  double length = std::pow(10.0, std::floor(std::log10(room / unitsPerMetre)));
  for (const double m : {5.0, 2.0}) {
    if (length * m * unitsPerMetre <= room) {
      return length * m;
    }
  }
  return length;
}

void DrawScaleBar(Canvas& canvas, double unitsPerMetre, double left, double top, double room) {
  const double length = BarLength(unitsPerMetre, room);
  const double lead = length / std::pow(10.0, std::floor(std::log10(length) + 1e-9));
  const int segments = std::lround(lead) == 2 ? 4 : 5;
  const double step = length / segments;
  const int decimals = DecimalsFor(step);
  for (int i = 0; i < segments; ++i) {
    const double x = left + i * step * unitsPerMetre;
    canvas.Add(Path{Layer::Title,
                    {},
                    Rectangle(x, top, step * unitsPerMetre, kBarHeight),
                    true,
                    i % 2 == 0 ? kInk : kWhite,
                    kInk,
                    0.6});
  }
  for (int i = 0; i <= segments; ++i) {
    const double x = left + i * step * unitsPerMetre;
    std::string label = FormatFixed(i * step, decimals);
    if (i == segments) {
      label += " m";
    }
    Text text = canvas.MakeText(Layer::Title, {x, top + kBarHeight + 11.0}, label, kCaptionSize,
                                i == segments ? Anchor::Start : Anchor::Middle);
    if (i == segments) {
      text.at.x -= 0.5 * TextWidth(FormatFixed(i * step, decimals), kCaptionSize, false);
    }
    if (i == 0 || i == segments || canvas.Free(TextBox(text))) {
      canvas.AddText(std::move(text));
    }
  }
}

std::vector<Point> Circle(Point c, double r) {
  std::vector<Point> points;
  for (int i = 0; i < 12; ++i) {
    const double a = i * M_PI / 6.0;
    points.push_back({c.x + r * std::cos(a), c.y + r * std::sin(a)});
  }
  return points;
}

} // namespace

std::string ScaleText(double denominator) {
  const bool whole = std::fabs(denominator - std::round(denominator)) < 1e-6;
  return "1:" + FormatFixed(denominator, whole ? 0 : 1);
}

double TitleBlockHeight(const TitleBlock& block, double width) {
  double height = kPad;
  for (const Row& row : Rows(block, width)) {
    height += row.advance;
  }
  return height + kBarRoom + kFooterRoom;
}

void DrawTitleBlock(Canvas& canvas, const TitleBlock& block, const Box& box) {
  const double width = box.right - box.left;
  canvas.Add(Path{Layer::Title,
                  {},
                  Rectangle(box.left, box.top, width, box.bottom - box.top),
                  true,
                  kWhite,
                  kFrame,
                  1.0});
  double y = box.top + kPad;
  for (const Row& row : Rows(block, width)) {
    y += row.advance;
    canvas.AddText(canvas.MakeText(Layer::Title, {box.left + kPad, y}, row.text, row.size,
                                   Anchor::Start, row.bold, row.colour));
  }
  DrawScaleBar(canvas, block.unitsPerMetre, box.left + kPad + 4.0, y + 9.0,
               width - 2.0 * kPad - 40.0);
  y += kBarRoom;
  canvas.AddLine(Layer::Title, {box.left, y}, {box.right, y}, kFrame, 0.8);
  canvas.AddText(canvas.MakeText(Layer::Title, {box.left + kPad, y + 19.0},
                                 "Sheet " + std::to_string(block.number) + " of " +
                                     std::to_string(block.count),
                                 kProjectSize, Anchor::Start, true));
  canvas.AddText(canvas.MakeText(Layer::Title, {box.right - kPad, y + 19.0}, block.date, kTextSize,
                                 Anchor::End));
  const int decimals = std::max(DecimalsFor(block.from), DecimalsFor(block.to));
  canvas.AddText(canvas.MakeText(Layer::Title, {box.left + kPad, y + 35.0},
                                 "Chainage " + Signed(block.from, decimals) + " to " +
                                     Signed(block.to, decimals) + " m",
                                 kTextSize, Anchor::Start, false, kMuted));
}

void DrawKeyPlan(Canvas& canvas, const Section& section, const std::vector<std::size_t>& onSheet,
                 double from, double to, const Box& box) {
  canvas.Add(Path{Layer::Title,
                  {},
                  Rectangle(box.left, box.top, box.right - box.left, box.bottom - box.top),
                  true,
                  kWhite,
                  kFrame,
                  1.0});
  canvas.AddText(canvas.MakeText(Layer::Title, {box.left + kPad, box.top + 15.0}, "Key plan",
                                 kTextSize, Anchor::Start, true));
  // North arrow in the top right corner: grid north is up the sheet.
  const Point tip{box.right - 16.0, box.top + 8.0};
  canvas.Add(
      Path{Layer::Title,
           {},
           {tip, {tip.x + 6.0, tip.y + 22.0}, {tip.x, tip.y + 17.0}, {tip.x - 6.0, tip.y + 22.0}},
           true,
           kInk,
           kInk,
           0.6});
  canvas.AddText(
      canvas.MakeText(Layer::Title, {tip.x, tip.y + 34.0}, "N", kTextSize, Anchor::Middle, true));

  // The plan: every hole and the line, fitted into the box at one scale for both axes.
  std::vector<PlanPoint> line;
  if (section.alignment) {
    line = section.alignment->Vertices();
  }
  Extent plan;
  for (const SectionHole& hole : section.holes) {
    if (std::isfinite(hole.zk.dX) && std::isfinite(hole.zk.dY)) {
      plan.Add(hole.zk.dX, hole.zk.dY);
    }
  }
  for (const PlanPoint& p : line) {
    plan.Add(p.e, p.n);
  }
  if (plan.empty) {
    return;
  }
  const double left = box.left + kPad + 4.0;
  const double right = box.right - 30.0; // clear of the north arrow
  const double top = box.top + 24.0;
  const double bottom = box.bottom - kPad - 4.0;
  const double de = std::max(plan.sMax - plan.sMin, 1e-9);
  const double dn = std::max(plan.zMax - plan.zMin, 1e-9);
  const double k = std::min((right - left) / de, (bottom - top) / dn);
  const double cx = 0.5 * (left + right);
  const double cy = 0.5 * (top + bottom);
  const double ce = 0.5 * (plan.sMin + plan.sMax);
  const double cn = 0.5 * (plan.zMin + plan.zMax);
  const auto at = [&](PlanPoint p) { return Point{cx + (p.e - ce) * k, cy - (p.n - cn) * k}; };

  if (section.alignment) {
    const Alignment& alignment = *section.alignment;
    std::vector<Point> whole;
    for (const PlanPoint& p : line) {
      whole.push_back(at(p));
    }
    canvas.Add(Path{Layer::Title, {}, whole, false, std::nullopt, kPlanLine, 1.2});
    // This sheet's stretch of the line: its ends and the vertices between them; the sheet may
    // reach beyond the ends of the line, the line does not.
    from = std::clamp(from, 0.0, alignment.Length());
    to = std::clamp(to, 0.0, alignment.Length());
    std::vector<Point> stretch{at(alignment.At(from))};
    double chainage = 0.0;
    for (std::size_t i = 0; i < line.size(); ++i) {
      if (i > 0) {
        chainage += std::hypot(line[i].e - line[i - 1].e, line[i].n - line[i - 1].n);
      }
      if (chainage > from && chainage < to) {
        stretch.push_back(at(line[i]));
      }
    }
    stretch.push_back(at(alignment.At(to)));
    if (to > from) {
      canvas.Add(Path{Layer::Title, {}, stretch, false, std::nullopt, kHighlight, 2.6});
    }
  }
  for (const SectionHole& hole : section.holes) {
    if (std::isfinite(hole.zk.dX) && std::isfinite(hole.zk.dY)) {
      canvas.Add(Path{Layer::Title,
                      {},
                      Circle(at({hole.zk.dX, hole.zk.dY}), 1.6),
                      true,
                      kPlanLine,
                      std::nullopt,
                      0.0});
    }
  }
  for (const std::size_t i : onSheet) {
    const SectionHole& hole = section.holes[i];
    if (std::isfinite(hole.zk.dX) && std::isfinite(hole.zk.dY)) {
      canvas.Add(Path{Layer::Title,
                      {},
                      Circle(at({hole.zk.dX, hole.zk.dY}), 2.2),
                      true,
                      kInk,
                      std::nullopt,
                      0.0});
    }
  }
  canvas.Take(box);
}

} // namespace xklink::drawing
