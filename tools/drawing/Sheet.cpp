// Composing the sheet: the frame is chosen, then each part is laid out and drawn by its own file
// (the hole headers, the codes, the legend) in painting order; labels come last, so that each is
// placed clear of everything already on the sheet.
#include "Sheet.h"

#include "InSituLayer.h"
#include "SheetLegend.h"
#include "SheetPlot.h"
#include "TextMetrics.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace xklink::drawing {

namespace {

constexpr Rgb kGridColour{0xe4, 0xe4, 0xe4};
constexpr Rgb kLineColour{0x2b, 0x2b, 0x2b};

// Font sizes in sheet units (1/96 inch at natural size). A sheet of 1600 units printed across a
// landscape A3 page has 0.25 mm units, so the smallest text, 10 units, prints at about 7 pt.
constexpr double kTitleSize = 20.0;
constexpr double kSubtitleSize = 12.5;
constexpr double kAxisSize = 11.0;
constexpr double kAxisTitleSize = 12.0;
constexpr double kColumnSize = 10.0;

constexpr double kTitleTop = 14.0;
constexpr double kMarginRight = 20.0;
constexpr double kLegendGap = 18.0;

std::string ExaggerationText(double e) {
  return "\xC3\x97" + FormatFixed(e, std::min(DecimalsFor(e), 3)); // U+00D7 multiplication sign
}

// What the distances along the section are: the line they are measured on, where chainage 0 is
// and which way it runs, so that a reader can find the section on the site plan.
std::string ChainageStatement(const Section& section) {
  if (!section.alignment) {
    return {};
  }
  const Alignment& line = *section.alignment;
  const PlanPoint start = line.Vertices().front();
  const std::string from = "E " + FormatFixed(start.e, 1) + " N " + FormatFixed(start.n, 1);
  const std::string towards = CompassPoint(line.BearingAt(0.0));
  switch (line.Kind()) {
  case AlignmentKind::Given:
    return "Chainage along the given section line (" + std::to_string(line.Vertices().size()) +
           " vertices) from " + from + ", running " + towards +
           "; holes projected square onto it, offsets under their names";
  case AlignmentKind::BestFit:
    return "Chainage along the best-fit line through the holes from " + from + ", running " +
           towards + "; holes projected square onto it, offsets under their names";
  case AlignmentKind::Fence:
    return "Fence through the holes in the order given, from " + from + " running " + towards +
           ": distances are measured hole to hole, not along one straight line";
  }
  return {};
}

std::string Subtitle(const Section& section, const View& view, double exaggeration,
                     const std::string& unit) {
  std::string subtitle = "Vertical exaggeration " + ExaggerationText(exaggeration);
  subtitle += "   \xC2\xB7   " + std::to_string(view.holes.size()) +
              (view.holes.size() == 1 ? " borehole" : " boreholes");
  if (view.holes.size() >= 2) {
    const double length =
        section.holes[view.holes.back()].chainage - section.holes[view.holes.front()].chainage;
    subtitle +=
        " over " + FormatFixed(length, length < 100.0 ? 1 : 0) + (unit.empty() ? "" : " " + unit);
  }
  return subtitle;
}

void DrawGrid(Canvas& canvas, const Frame& frame) {
  for (const double z : frame.ElevationTicks()) {
    canvas.AddLine(Layer::Grid, {frame.left, frame.Y(z)}, {frame.Right(), frame.Y(z)}, kGridColour,
                   0.6);
  }
  for (const double s : frame.DistanceTicks()) {
    canvas.AddLine(Layer::Grid, {frame.X(s), frame.top}, {frame.X(s), frame.Bottom()}, kGridColour,
                   0.6);
  }
}

double PolygonArea(const std::vector<Point>& points) {
  double twice = 0.0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point& a = points[i];
    const Point& b = points[(i + 1) % points.size()];
    twice += a.x * b.y - b.x * a.y;
  }
  return 0.5 * twice;
}

// Inferred ground is filled paler, so that what the logs show stands out from what is inferred.
Rgb Paler(Rgb c) {
  const auto mix = [](std::uint8_t v) {
    return static_cast<std::uint8_t>(std::lround(0.6 * v + 0.4 * 255.0));
  };
  return {mix(c.r), mix(c.g), mix(c.b)};
}

std::vector<FilledRegion> DrawRegions(Canvas& canvas, const View& view, const Frame& frame,
                                      const Legend& legend) {
  std::vector<FilledRegion> filled;
  for (const RegionShape& region : view.regions) {
    if (region.code.empty()) {
      continue;
    }
    std::vector<Point> points;
    for (const SectionPoint& p : region.polygon) {
      points.push_back({frame.X(p.s), frame.Y(p.z)});
    }
    if (std::fabs(PolygonArea(points)) < 0.01) {
      continue; // a wedge of no thickness: its outline stroke would draw a stray line
    }
    const Rgb colour =
        region.beneath ? Paler(ColourOf(legend, region.code)) : ColourOf(legend, region.code);
    // A hairline of the fill colour closes the anti-aliasing seams between neighbours.
    canvas.Add(Path{Layer::Strata, region.code, points, true, colour, colour, 0.6});
    filled.push_back({&region, std::move(points), colour});
  }
  return filled;
}

void DrawSectionLines(Canvas& canvas, const View& view, const Frame& frame) {
  for (const LineShape& line : view.lines) {
    canvas.AddLine(Layer::SectionLines, {frame.X(line.from.s), frame.Y(line.from.z)},
                   {frame.X(line.to.s), frame.Y(line.to.z)}, kLineColour, 1.0, line.beneath);
  }
}

void DrawGround(Canvas& canvas, const View& view, const Frame& frame) {
  std::vector<Point> ground;
  for (const SectionPoint& p : view.ground) {
    ground.push_back({frame.X(p.s), frame.Y(p.z)});
  }
  if (ground.size() >= 2) {
    canvas.Add(Path{Layer::Ground, {}, ground, false, std::nullopt, kBlack, 1.8});
  }
}

void DrawColumns(Canvas& canvas, const Section& section, const View& view, const Frame& frame,
                 const Legend& legend) {
  for (const std::size_t i : view.holes) {
    const SectionHole& hole = section.holes[i];
    const double x = frame.X(hole.chainage);
    double top = hole.zk.dTopGC;
    double bottom = hole.zk.dTopGC;
    for (const DataType::_sZKDC& stratum : hole.zk.vecDC) {
      if (!std::isfinite(stratum.dTopGC) || !std::isfinite(stratum.dBotGC)) {
        continue;
      }
      const double y0 = frame.Y(std::max(stratum.dTopGC, stratum.dBotGC));
      const double y1 = frame.Y(std::min(stratum.dTopGC, stratum.dBotGC));
      top = std::max({top, stratum.dTopGC, stratum.dBotGC});
      bottom = std::min({bottom, stratum.dTopGC, stratum.dBotGC});
      canvas.Add(Path{Layer::Boreholes, stratum.strName,
                      Rectangle(x - kColumnHalfWidth, y0, 2.0 * kColumnHalfWidth, y1 - y0), true,
                      ColourOf(legend, stratum.strName), kInk, 0.6});
    }
    canvas.Take(
        {x - kColumnHalfWidth - 2.0, frame.Y(top), x + kColumnHalfWidth + 2.0, frame.Y(bottom)});
    // The outline of the whole hole, collar to final depth, over the strata boundaries.
    canvas.Add(Path{Layer::Boreholes,
                    {},
                    Rectangle(x - kColumnHalfWidth, frame.Y(top), 2.0 * kColumnHalfWidth,
                              frame.Y(bottom) - frame.Y(top)),
                    true,
                    std::nullopt,
                    kBlack,
                    1.1});
  }
}

void DrawAxes(Canvas& canvas, const Section& section, const Frame& frame, const std::string& unit,
              bool depthBelowGround) {
  canvas.Add(Path{Layer::Axes,
                  {},
                  Rectangle(frame.left, frame.top, frame.width, frame.height),
                  true,
                  std::nullopt,
                  kBlack,
                  0.9});
  const int zDecimals = DecimalsFor(frame.tickZ);
  for (const double z : frame.ElevationTicks()) {
    const double y = frame.Y(z);
    canvas.AddLine(Layer::Axes, {frame.left - 5.0, y}, {frame.left, y}, kBlack, 0.9);
    canvas.AddLine(Layer::Axes, {frame.Right(), y}, {frame.Right() + 5.0, y}, kBlack, 0.9);
    const std::string label = Signed(depthBelowGround ? -z + 0.0 : z, zDecimals);
    canvas.AddText(canvas.MakeText(Layer::Axes, {frame.left - 8.0, y + 0.36 * kAxisSize}, label,
                                   kAxisSize, Anchor::End));
    canvas.AddText(canvas.MakeText(Layer::Axes, {frame.Right() + 8.0, y + 0.36 * kAxisSize}, label,
                                   kAxisSize, Anchor::Start));
  }
  const int sDecimals = DecimalsFor(frame.tickS);
  for (const double s : frame.DistanceTicks()) {
    const double x = frame.X(s);
    canvas.AddLine(Layer::Axes, {x, frame.Bottom()}, {x, frame.Bottom() + 5.0}, kBlack, 0.9);
    Text t = canvas.MakeText(Layer::Axes, {x, frame.Bottom() + 18.0}, Signed(s, sDecimals),
                             kAxisSize, Anchor::Middle);
    if (canvas.Free(TextBox(t))) {
      canvas.AddText(std::move(t));
    }
  }
  const std::string suffix = unit.empty() ? std::string() : " (" + unit + ")";
  const std::string axisTitle =
      section.alignment && section.alignment->Kind() != AlignmentKind::Fence
          ? "Chainage" + suffix
          : "Distance along section" + suffix;
  canvas.AddText(canvas.MakeText(Layer::Axes,
                                 {frame.left + 0.5 * frame.width, frame.Bottom() + 40.0}, axisTitle,
                                 kAxisTitleSize, Anchor::Middle, true));
  const std::string vertical = !depthBelowGround ? "Elevation" + suffix
                               : unit.empty()    ? std::string("Depth below ground")
                                                 : "Depth (" + unit + " below ground)";
  Text elevation = canvas.MakeText(Layer::Axes, {frame.left - 62.0, frame.top + 0.5 * frame.height},
                                   vertical, kAxisTitleSize, Anchor::Middle, true);
  elevation.rotation = 90.0;
  canvas.AddText(std::move(elevation));
  // The compass direction in which each end of the section lies, beside the axis title.
  if (section.alignment) {
    const Alignment& line = *section.alignment;
    const double bearing = line.BearingAt(frame.sLeft);
    const double endBearing = line.BearingAt(frame.SRight());
    for (Text t : {canvas.MakeText(Layer::Axes, {frame.left, frame.Bottom() + 40.0},
                                   "\xE2\x97\x80 " + CompassPoint(bearing + 180.0), kAxisTitleSize,
                                   Anchor::Start, true),
                   canvas.MakeText(Layer::Axes, {frame.Right(), frame.Bottom() + 40.0},
                                   CompassPoint(endBearing) + " \xE2\x96\xB6", kAxisTitleSize,
                                   Anchor::End, true)}) {
      if (canvas.Free(TextBox(t))) {
        canvas.AddText(std::move(t));
      }
    }
  }
}

// Clipping to a strip of chainage, for the printed sheets.

// The polygon cut to the half-plane where sign * (s - bound) >= 0 (Sutherland-Hodgman).
std::vector<SectionPoint> CutPolygon(const std::vector<SectionPoint>& polygon, double bound,
                                     double sign) {
  std::vector<SectionPoint> out;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const SectionPoint& a = polygon[i];
    const SectionPoint& b = polygon[(i + 1) % polygon.size()];
    const double da = sign * (a.s - bound);
    const double db = sign * (b.s - bound);
    if (da >= 0.0) {
      out.push_back(a);
    }
    if ((da < 0.0) != (db < 0.0)) {
      const double t = da / (da - db);
      out.push_back({bound, a.z + t * (b.z - a.z)});
    }
  }
  return out;
}

// The part of the segment a-b within [from, to]; false when none is.
bool CutSegment(SectionPoint& a, SectionPoint& b, double from, double to) {
  if (std::max(a.s, b.s) < from || std::min(a.s, b.s) > to) {
    return false;
  }
  const auto at = [&](double s) {
    const double t = b.s == a.s ? 0.0 : (s - a.s) / (b.s - a.s);
    return SectionPoint{s, a.z + t * (b.z - a.z)};
  };
  SectionPoint p = a;
  SectionPoint q = b;
  if (p.s < from) {
    p = at(from);
  } else if (p.s > to) {
    p = at(to);
  }
  if (q.s < from) {
    q = at(from);
  } else if (q.s > to) {
    q = at(to);
  }
  a = p;
  b = q;
  return true;
}

} // namespace

View MakeView(const Section& section) {
  View view;
  view.regions = CollectRegionShapes(section);
  view.lines = CollectLineShapes(section);
  view.extent = SectionExtent(section, view.regions, view.lines);
  for (std::size_t i = 0; i < section.holes.size(); ++i) {
    if (IsDrawableHole(section.holes[i])) {
      view.holes.push_back(i);
    }
  }
  std::stable_sort(view.holes.begin(), view.holes.end(), [&section](std::size_t a, std::size_t b) {
    return section.holes[a].chainage < section.holes[b].chainage;
  });
  for (const std::size_t i : view.holes) {
    view.ground.push_back({section.holes[i].chainage, section.holes[i].zk.dTopGC});
  }
  return view;
}

View ClipView(const Section& section, const View& view, double from, double to) {
  View out;
  for (const RegionShape& region : view.regions) {
    RegionShape cut = region;
    cut.polygon = CutPolygon(CutPolygon(region.polygon, from, 1.0), to, -1.0);
    if (cut.polygon.size() >= 3) {
      for (const SectionPoint& p : cut.polygon) {
        out.extent.Add(p.s, p.z);
      }
      out.regions.push_back(std::move(cut));
    }
  }
  for (const LineShape& line : view.lines) {
    LineShape cut = line;
    if (CutSegment(cut.from, cut.to, from, to)) {
      out.extent.Add(cut.from.s, cut.from.z);
      out.extent.Add(cut.to.s, cut.to.z);
      out.lines.push_back(std::move(cut));
    }
  }
  for (std::size_t i = 0; i + 1 < view.ground.size(); ++i) {
    SectionPoint a = view.ground[i];
    SectionPoint b = view.ground[i + 1];
    if (CutSegment(a, b, from, to)) {
      for (const SectionPoint& p : {a, b}) {
        if (out.ground.empty() || out.ground.back().s != p.s || out.ground.back().z != p.z) {
          out.ground.push_back(p);
          out.extent.Add(p.s, p.z);
        }
      }
    }
  }
  for (const std::size_t i : view.holes) {
    const SectionHole& hole = section.holes[i];
    if (hole.chainage >= from && hole.chainage <= to) {
      out.holes.push_back(i);
      out.extent.Add(hole.chainage, hole.zk.dTopGC);
      for (const DataType::_sZKDC& stratum : hole.zk.vecDC) {
        if (std::isfinite(stratum.dBotGC)) {
          out.extent.Add(hole.chainage, stratum.dBotGC);
        }
      }
    }
  }
  return out;
}

std::vector<Text> HeadingTexts(const Canvas& canvas, const std::string& title,
                               const Section& section, const View& view, double exaggeration,
                               const std::string& unit, double left, double width, double& y) {
  std::vector<Text> texts;
  for (const std::string& line : Wrap(title, width, kTitleSize, true)) {
    y += 24.0;
    texts.push_back(
        canvas.MakeText(Layer::Title, {left, y}, line, kTitleSize, Anchor::Start, true));
  }
  y += 4.0;
  for (const std::string& statement :
       {Subtitle(section, view, exaggeration, unit), ChainageStatement(section)}) {
    for (const std::string& line : Wrap(statement, width, kSubtitleSize, false)) {
      y += 18.0;
      texts.push_back(canvas.MakeText(Layer::Title, {left, y}, line, kSubtitleSize, Anchor::Start,
                                      false, kMuted));
    }
  }
  return texts;
}

void StartSheet(Sheet& sheet, Canvas& canvas, const Frame& frame, std::string description) {
  sheet.exaggeration = frame.exaggeration;
  sheet.originX = frame.left;
  sheet.originY = frame.top;
  sheet.sLeft = frame.sLeft;
  sheet.zTop = frame.zTop;
  sheet.scale = frame.scale;
  sheet.description = std::move(description);
  canvas.Add(Path{Layer::Background,
                  {},
                  Rectangle(0.0, 0.0, sheet.width, sheet.height),
                  true,
                  kWhite,
                  std::nullopt,
                  0.0});
}

std::vector<FilledRegion> DrawPlot(Canvas& canvas, const Section& section, const View& view,
                                   const Frame& frame, const HeaderBand& band, const Legend& legend,
                                   const std::string& unit, bool depthBelowGround) {
  DrawGrid(canvas, frame);
  std::vector<FilledRegion> filled = DrawRegions(canvas, view, frame, legend);
  DrawSectionLines(canvas, view, frame);
  DrawGround(canvas, view, frame);
  DrawColumns(canvas, section, view, frame, legend);
  DrawHoleHeaders(canvas, section, band, frame);
  DrawAxes(canvas, section, frame, unit, depthBelowGround);
  return filled;
}

void DrawPlotLabels(Canvas& canvas, const Section& section, const View& view, const Frame& frame,
                    const std::vector<FilledRegion>& filled) {
  DrawColumnCodes(canvas, section, view.holes, frame);
  DrawInSitu(canvas, section, view.holes, frame);
  DrawRegionLabels(canvas, filled);
}

double TextWidth(std::string_view utf8, double size, bool bold) {
  return static_cast<double>(DisplayLength(utf8)) * size * (bold ? 0.68 : 0.62);
}

Sheet ComposeSheet(const Section& section, const Legend& legend, const DrawOptions& options) {
  const View view = MakeView(section);
  Sheet sheet;
  Canvas canvas(sheet);
  sheet.title = !options.title.empty()   ? SanitizeUtf8(options.title)
                : !section.title.empty() ? SanitizeUtf8(section.title)
                                         : std::string("Geological section");
  const std::string unit = SanitizeUtf8(options.unit);
  const std::vector<LegendRow> rows = LegendRows(section, view.holes, view.regions, legend);
  const double legendWidth = LegendPanelWidth(rows);
  const double requested =
      std::isfinite(options.sheetWidth) ? std::clamp(options.sheetWidth, 640.0, 20000.0) : 1600.0;

  // Room beside the outer columns for their codes.
  double padding = 0.0;
  for (const std::size_t i : view.holes) {
    for (const DataType::_sZKDC& stratum : section.holes[i].zk.vecDC) {
      padding = std::max(padding, TextWidth(WideToUtf8(stratum.strName), kColumnSize, false));
    }
  }
  FrameRequest request;
  request.plotWidth = std::max(240.0, requested - kMarginLeft - kAxisLabelRoom - kLegendGap -
                                          legendWidth - kMarginRight);
  request.maxPlotHeight = std::max(320.0, 0.62 * requested);
  request.padding = std::min(padding, 140.0) + kColumnHalfWidth + 14.0;
  request.exaggeration = options.exaggeration;
  Frame frame = ChooseFrame(view.extent, request, kMarginLeft, 0.0);
  const double legendLeft = frame.Right() + kAxisLabelRoom + kLegendGap;
  sheet.width = legendLeft + legendWidth + kMarginRight;

  // The title block: the title and the statements, wrapped to the sheet.
  double y = kTitleTop;
  std::vector<Text> titleTexts =
      HeadingTexts(canvas, sheet.title, section, view, frame.exaggeration, unit, kMarginLeft,
                   sheet.width - kMarginLeft - kMarginRight, y);
  const HeaderBand band = PlaceHoleHeaders(
      section, view.holes, frame, 8.0, frame.Right() + kAxisLabelRoom, !options.depthBelowGround);
  frame.top = y + 14.0 + band.height;
  sheet.height = frame.Bottom() + kBelowPlot;

  StartSheet(sheet, canvas, frame,
             "Geological section: " + std::to_string(view.holes.size()) +
                 " boreholes, vertical exaggeration " + ExaggerationText(frame.exaggeration));
  const std::vector<FilledRegion> filled =
      DrawPlot(canvas, section, view, frame, band, legend, unit, options.depthBelowGround);
  const bool inferred = std::any_of(view.regions.begin(), view.regions.end(),
                                    [](const RegionShape& r) { return r.beneath; });
  const double legendBottom = DrawInSituKey(
      canvas, section, view.holes, legendLeft,
      DrawLegendPanel(canvas, rows, legendLeft, frame.top, legendWidth, inferred), legendWidth);
  sheet.height = std::max(sheet.height, legendBottom + 20.0);
  for (Text& t : titleTexts) {
    canvas.AddText(std::move(t));
  }
  DrawPlotLabels(canvas, section, view, frame, filled);
  return sheet;
}

} // namespace xklink::drawing
