#include "InSituLayer.h"

#include "InSitu.h"
#include "TextMetrics.h"

#include <algorithm>
#include <cmath>

namespace xklink::drawing {

namespace {

constexpr double kColumnHalfWidth = 6.0; // as the columns are drawn
// The triangle's centre from the column's edge, its half-width and height; the labels start
// beyond it. At 9 units the results print at about 6.5 pt on a 1600-unit sheet across A3, the
// size of the figures on a printed log.
constexpr double kMarkOffset = 8.0;
constexpr double kTriangleHalf = 4.0;
constexpr double kTriangleHeight = 7.0;
constexpr double kLabelOffset = 15.0;
constexpr double kLabelSize = 9.0;
constexpr double kLabelMargin = 5.0;
// A rise of less than a centimetre is no rise: the logs write levels to the centimetre.
constexpr double kNoRise = 0.01;

constexpr Rgb kWater{0x1f, 0x5f, 0xbf};
constexpr Rgb kStanding{0x8f, 0xc4, 0xff};
constexpr Rgb kTest{0x7a, 0x2b, 0x00};
constexpr Rgb kFrameColour{0x8c, 0x8c, 0x8c};

// Where a hole's marks go: the side of its column, the centre of its triangles and the start of
// its labels.
struct Beside {
  double side = -1.0; // -1: left of the column, +1: right
  double edge = 0.0;
  double mark = 0.0;
  double label = 0.0;
  Anchor anchor = Anchor::End;
};

Beside BesideColumn(double x, bool right) {
  Beside b;
  b.side = right ? 1.0 : -1.0;
  b.edge = x + b.side * kColumnHalfWidth;
  b.mark = b.edge + b.side * kMarkOffset;
  b.label = b.edge + b.side * kLabelOffset;
  b.anchor = right ? Anchor::Start : Anchor::End;
  return b;
}

// An inverted triangle with its point on the level `y`.
void Triangle(Canvas& canvas, double x, double y, Rgb fill) {
  canvas.Add(Path{
      Layer::Water,
      {},
      {{x - kTriangleHalf, y - kTriangleHeight}, {x + kTriangleHalf, y - kTriangleHeight}, {x, y}},
      true,
      fill,
      kWater,
      0.9});
  canvas.Take(
      {x - kTriangleHalf - 1.0, y - kTriangleHeight - 1.0, x + kTriangleHalf + 1.0, y + 1.0});
}

// The two bars under a monitored level's triangle.
void Bars(Canvas& canvas, double x, double y) {
  canvas.AddLine(Layer::Water, {x - kTriangleHalf, y + 2.0}, {x + kTriangleHalf, y + 2.0}, kWater,
                 0.8);
  canvas.AddLine(Layer::Water, {x - 2.5, y + 4.0}, {x + 2.5, y + 4.0}, kWater, 0.8);
  canvas.Take({x - kTriangleHalf - 1.0, y, x + kTriangleHalf + 1.0, y + 5.0});
}

// A label beside the marks, centred on `y`, placed only where it is clear of everything drawn so
// far and inside the plot. Returns whether it was placed.
bool Label(Canvas& canvas, const Frame& frame, const Beside& at, double y, const std::string& text,
           Layer layer, Rgb colour) {
  if (text.empty()) {
    return false;
  }
  Text t = canvas.MakeText(layer, {at.label, y + 0.36 * kLabelSize}, text, kLabelSize, at.anchor,
                           false, colour);
  t.halo = true;
  const Box box = TextBox(t);
  // A margin at its far end from the log: the width estimate is short for wide capitals, and a
  // code such as "MG" placed beside a result would otherwise touch it.
  const bool right = at.anchor == Anchor::Start;
  const Box room{box.left - (right ? 0.0 : kLabelMargin), box.top,
                 box.right + (right ? kLabelMargin : 0.0), box.bottom};
  if (box.left < frame.left || box.right > frame.Right() || box.top < frame.top ||
      box.bottom > frame.Bottom() || !canvas.Free(room)) {
    return false;
  }
  canvas.AddText(std::move(t));
  canvas.Take(room);
  return true;
}

std::string Minutes(double minutes) {
  return FormatFixed(minutes, minutes == std::floor(minutes) ? 0 : 1) + " min";
}

void DrawWater(Canvas& canvas, const Frame& frame, const SectionHole& hole, const Beside& at,
               std::vector<Text>& pending) {
  const double ground = hole.zk.dTopGC;
  const auto inPlot = [&frame](double y) { return y >= frame.top && y <= frame.Bottom(); };
  for (const WaterStrike& strike : hole.inSitu.waterStrikes) {
    const double y = frame.Y(ground - strike.depth);
    if (!inPlot(y)) {
      continue;
    }
    if (strike.roseTo && std::fabs(*strike.roseTo - strike.depth) >= kNoRise) {
      const double risen = frame.Y(ground - *strike.roseTo);
      if (inPlot(risen)) {
        canvas.AddLine(Layer::Water, {at.mark, y - kTriangleHeight}, {at.mark, risen}, kWater, 0.9,
                       true);
        Triangle(canvas, at.mark, risen, kWater);
        if (strike.minutes) {
          pending.push_back(canvas.MakeText(Layer::Water, {at.label, risen},
                                            Minutes(*strike.minutes), kLabelSize, at.anchor, false,
                                            kWater));
        }
      }
    }
    Triangle(canvas, at.mark, y, kWhite);
    pending.push_back(canvas.MakeText(Layer::Water, {at.label, y}, ShortTime(strike.time),
                                      kLabelSize, at.anchor, false, kWater));
  }
  // The highest and the lowest level read in the hole's installations.
  const std::vector<StandingLevel>& levels = hole.inSitu.standingLevels;
  if (levels.empty()) {
    return;
  }
  const auto [high, low] = std::minmax_element(
      levels.begin(), levels.end(),
      [](const StandingLevel& a, const StandingLevel& b) { return a.depth < b.depth; });
  std::vector<const StandingLevel*> shown = {&*high};
  if (std::fabs(low->depth - high->depth) >= kNoRise) {
    shown.push_back(&*low);
  }
  for (const StandingLevel* level : shown) {
    const double y = frame.Y(ground - level->depth);
    if (inPlot(y)) {
      Triangle(canvas, at.mark, y, kStanding);
      Bars(canvas, at.mark, y);
      pending.push_back(canvas.MakeText(Layer::Water, {at.label, y}, ShortTime(level->time),
                                        kLabelSize, at.anchor, false, kWater));
    }
  }
}

// "50 for 75 mm" from the blows and the drive, when the log's own report is too long to fit.
std::string ShortSpt(const SptResult& test) {
  if (!test.n && test.blows && test.drive) {
    return std::to_string(*test.blows) + " for " + FormatFixed(*test.drive, 0) + " mm";
  }
  return {};
}

} // namespace

std::string ShortTime(const std::string& time) {
  std::string text = time;
  const std::size_t t = text.find('T');
  if (t != std::string::npos) {
    std::string clock = text.substr(t + 1);
    text.resize(t);
    if (clock.size() > 5) {
      clock.resize(5); // seconds are never read on site
    }
    if (!clock.empty() && clock != "00:00") {
      text += " " + clock;
    }
  }
  return SanitizeUtf8(text);
}

void DrawInSitu(Canvas& canvas, const Section& section, const std::vector<std::size_t>& holes,
                const Frame& frame) {
  // Marks first, for every hole, so that no label of one hole covers a mark of the next.
  std::vector<Text> water;
  struct Result {
    Beside at;
    double y;
    const SptResult* test;
  };
  std::vector<Result> results;
  for (std::size_t n = 0; n < holes.size(); ++n) {
    const SectionHole& hole = section.holes[holes[n]];
    const Beside at = BesideColumn(frame.X(hole.chainage), n == 0 && holes.size() > 1);
    DrawWater(canvas, frame, hole, at, water);
    for (const SptResult& test : hole.inSitu.spt) {
      const double y = frame.Y(hole.zk.dTopGC - test.depth);
      if (y < frame.top || y > frame.Bottom()) {
        continue;
      }
      canvas.AddLine(Layer::Tests, {at.edge, y}, {at.edge + at.side * 4.0, y}, kTest, 0.9);
      results.push_back({at, y, &test});
    }
  }
  // Water labels before test results: a strike is rarer and matters more to the reader.
  for (const Text& t : water) {
    Beside at;
    at.label = t.at.x;
    at.anchor = t.anchor;
    Label(canvas, frame, at, t.at.y - 0.5 * kTriangleHeight, t.text, Layer::Water, kWater);
  }
  for (const Result& r : results) {
    if (!Label(canvas, frame, r.at, r.y, SptLabel(*r.test), Layer::Tests, kTest)) {
      Label(canvas, frame, r.at, r.y, ShortSpt(*r.test), Layer::Tests, kTest);
    }
  }
}

double DrawInSituKey(Canvas& canvas, const Section& section, const std::vector<std::size_t>& holes,
                     double left, double top, double width) {
  bool strikes = false;
  bool risen = false;
  bool standing = false;
  bool tests = false;
  for (const std::size_t i : holes) {
    const HoleInSitu& log = section.holes[i].inSitu;
    strikes = strikes || !log.waterStrikes.empty();
    risen = risen || std::any_of(log.waterStrikes.begin(), log.waterStrikes.end(),
                                 [](const WaterStrike& s) { return s.roseTo.has_value(); });
    standing = standing || !log.standingLevels.empty();
    tests = tests || !log.spt.empty();
  }
  if (!strikes && !standing && !tests) {
    return top;
  }
  constexpr double kSize = 11.5;
  top += 10.0; // a gap below the panel above
  const double mark = left + 25.0;
  const double textX = left + 48.0;
  const double textWidth = width - 56.0;
  std::vector<Text> texts;
  Sheet scratch; // the marks are drawn on a scratch sheet, to go after the panel's frame
  Canvas keyCanvas(scratch);
  double y = top + 14.0;
  texts.push_back(canvas.MakeText(Layer::Legend, {left + 12.0, y + 10.0}, "Water and tests", 13.0,
                                  Anchor::Start, true));
  y += 26.0;
  const auto row = [&](const std::string& text) {
    double lineY = y + 4.0;
    for (const std::string& line : Wrap(text, textWidth, kSize, false)) {
      texts.push_back(canvas.MakeText(Layer::Legend, {textX, lineY}, line, kSize, Anchor::Start));
      lineY += 14.0;
    }
    y = std::max(y + 22.0, lineY + 8.0);
  };
  if (strikes) {
    Triangle(keyCanvas, mark, y + 3.5, kWhite);
    row("Water struck while boring (date)");
  }
  if (risen) {
    Triangle(keyCanvas, mark, y + 3.5, kWater);
    row("Level the water rose to (minutes after the strike)");
  }
  if (standing) {
    Triangle(keyCanvas, mark, y + 1.5, kStanding);
    Bars(keyCanvas, mark, y + 1.5);
    row("Highest and lowest level monitored (date)");
  }
  if (tests) {
    keyCanvas.AddLine(Layer::Tests, {mark - 8.0, y}, {mark - 4.0, y}, kTest, 0.9);
    texts.push_back(canvas.MakeText(Layer::Tests, {mark - 2.0, y + 3.2}, "N", kLabelSize,
                                    Anchor::Start, false, kTest));
    row("SPT: blows for 300 mm, or a refusal as logged");
  }
  y += 4.0;
  canvas.Add(Path{
      Layer::Legend, {}, Rectangle(left, top, width, y - top), true, kWhite, kFrameColour, 0.8});
  for (Item& item : scratch.items) {
    // The key belongs to the legend, not to the switchable layers of the section.
    std::visit([](auto& element) { element.layer = Layer::Legend; }, item);
    canvas.sheet().items.push_back(std::move(item));
  }
  for (Text& t : texts) {
    t.layer = Layer::Legend;
    canvas.AddText(std::move(t));
  }
  return y;
}

} // namespace xklink::drawing
