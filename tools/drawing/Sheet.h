// The laid-out sheet of a section: every shape and text in sheet coordinates (SVG user units,
// y downwards), in painting order. The SVG and DXF writers only translate it, so both files show
// the same figure.
#pragma once

#include "Colour.h"
#include "Section.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace xklink::drawing {

struct Point {
  double x = 0.0;
  double y = 0.0;
};

// What a shape or text belongs to; the SVG groups by it and the DXF makes a layer of it.
enum class Layer {
  Background,
  Grid,
  Strata,
  SectionLines,
  Ground,
  Boreholes,
  RegionLabels,
  BoreholeLabels,
  Water, // strikes and standing levels beside the logs
  Tests, // in-situ test results (SPT) beside the logs
  Axes,
  Legend,
  Title,
};

struct Path {
  Layer layer = Layer::Axes;
  std::wstring code; // the stratum of a Strata region or a borehole interval
  std::vector<Point> points;
  bool closed = false;
  std::optional<Rgb> fill;
  std::optional<Rgb> stroke;
  double strokeWidth = 1.0;
  bool dashed = false; // what the section infers rather than what the logs show
};

// A box on the sheet, y downwards.
struct Box {
  double left = 0.0;
  double top = 0.0;
  double right = 0.0;
  double bottom = 0.0;
  bool Overlaps(const Box& o) const {
    return left < o.right && o.left < right && top < o.bottom && o.top < bottom;
  }
};

enum class Anchor { Start, Middle, End };

struct Text {
  Layer layer = Layer::Axes;
  Point at;           // the start, middle or end of the baseline, as `anchor` says
  std::string text;   // UTF-8
  double size = 12.0; // font size
  Anchor anchor = Anchor::Start;
  bool bold = false;
  bool halo = false;     // a white outline behind the letters, for text over fills
  double rotation = 0.0; // degrees anticlockwise on the sheet, about `at`
  Rgb colour{};
};

using Item = std::variant<Path, Text>;

struct Sheet {
  double width = 0.0;
  double height = 0.0;
  // A printed sheet's paper size: the SVG states it, so that the sheet prints at its scale.
  double widthMm = 0.0;
  double heightMm = 0.0;
  double exaggeration = 1.0;
  // The sheet point of distance `sLeft` and elevation `zTop`, and the sheet units per unit of
  // distance: x = originX + (s - sLeft) * scale, y = originY + (zTop - z) * scale * exaggeration.
  double originX = 0.0;
  double originY = 0.0;
  double sLeft = 0.0;
  double zTop = 0.0;
  double scale = 1.0;
  std::string title;
  std::string description; // one line for the SVG's <desc>
  std::vector<Item> items;
};

Sheet ComposeSheet(const Section& section, const Legend& legend, const DrawOptions& options);

// A generous estimate of the width of a text in DejaVu Sans / Helvetica, for the layout.
double TextWidth(std::string_view utf8, double size, bool bold);

// The box a text covers on the sheet (see SheetCanvas.h).
Box TextBox(const Text& text);

} // namespace xklink::drawing
