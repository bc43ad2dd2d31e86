#include "Sheet.h"

#include "SectionGeometry.h"
#include "Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace xklink::drawing {

namespace {

constexpr Rgb kBlack{0x00, 0x00, 0x00};
constexpr Rgb kInk{0x1a, 0x1a, 0x1a};
constexpr Rgb kMuted{0x55, 0x55, 0x55};
constexpr Rgb kGridColour{0xe4, 0xe4, 0xe4};
constexpr Rgb kLineColour{0x2b, 0x2b, 0x2b};
constexpr Rgb kWhite{0xff, 0xff, 0xff};
constexpr Rgb kFrameColour{0x8c, 0x8c, 0x8c};

// Font sizes in sheet units (1/96 inch at natural size). A sheet of 1600 units printed across a
// landscape A3 page has 0.25 mm units, so the smallest text, 10 units, prints at about 7 pt.
constexpr double kTitleSize = 20.0;
constexpr double kSubtitleSize = 12.5;
constexpr double kAxisSize = 11.0;
constexpr double kAxisTitleSize = 12.0;
constexpr double kHoleNameSize = 12.5;
constexpr double kGroundLevelSize = 10.5;
constexpr double kColumnSize = 10.0;
constexpr double kRegionSize = 10.5;
constexpr double kLegendSize = 11.5;
constexpr double kLegendHeadingSize = 13.0;

constexpr double kColumnHalfWidth = 6.0; // the borehole columns are 12 units wide
constexpr double kPlotTop = 84.0;        // below the title block
constexpr double kMarginLeft = 86.0;     // elevation labels and the rotated axis title
constexpr double kAxisLabelRoom = 54.0;  // elevation labels right of the plot
constexpr double kMarginRight = 20.0;
constexpr double kLegendGap = 18.0;
constexpr double kHeaderLevel = 28.0; // height of one row of hole names and ground levels
constexpr std::size_t kLegendLabelChars = 34;

struct LegendRow {
  std::wstring code;
  Rgb colour;
  std::string codeText;
  std::vector<std::string> labelLines;
};

struct HoleHeader {
  std::size_t hole = 0;
  double x = 0.0;
  std::string name;
  std::string groundLevel;
  int level = 0;
};

struct Box {
  double left;
  double top;
  double right;
  double bottom;
  bool Overlaps(const Box& o) const {
    return left < o.right && o.left < right && top < o.bottom && o.top < bottom;
  }
};

// Breaks a label into lines of at most `width` characters at blanks (a longer word stands alone).
std::vector<std::string> Wrap(const std::string& text, std::size_t width) {
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
    if (!line.empty() && DisplayLength(line) + 1 + DisplayLength(word) > width) {
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

double PolygonArea(const std::vector<Point>& points) {
  double twice = 0.0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point& a = points[i];
    const Point& b = points[(i + 1) % points.size()];
    twice += a.x * b.y - b.x * a.y;
  }
  return 0.5 * twice;
}

Point Lerp(const Point& a, const Point& b, double t) {
  return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

// A signed number for the sheet, with a true minus sign (U+2212) rather than a hyphen.
std::string Signed(double value, int decimals) {
  std::string text = FormatFixed(value, decimals);
  if (!text.empty() && text.front() == '-') {
    text.replace(0, 1, "\xE2\x88\x92");
  }
  return text;
}

// The point of the 16-wind compass rose nearest to a bearing (degrees clockwise from north).
std::string CompassPoint(double bearing) {
  static constexpr std::array<const char*, 16> kPoints = {"N",  "NNE", "NE", "ENE", "E",  "ESE",
                                                          "SE", "SSE", "S",  "SSW", "SW", "WSW",
                                                          "W",  "WNW", "NW", "NNW"};
  const double turns = std::fmod(std::fmod(bearing, 360.0) + 360.0, 360.0) / 22.5;
  return kPoints[static_cast<std::size_t>(std::lround(turns)) % kPoints.size()];
}

std::string HoleName(const SectionHole& hole) {
  if (!hole.name.empty()) {
    return SanitizeUtf8(hole.name);
  }
  return WideToUtf8(hole.zk.strName);
}

class Composer {
public:
  Composer(const Section& section, const Legend& legend, const DrawOptions& options)
      : m_section(section), m_legend(legend), m_options(options),
        m_regions(CollectRegionShapes(section)), m_lines(CollectLineShapes(section)),
        m_extent(SectionExtent(section, m_regions, m_lines)) {
    for (std::size_t i = 0; i < section.holes.size(); ++i) {
      if (IsDrawableHole(section.holes[i])) {
        m_holes.push_back(i);
      }
    }
    std::stable_sort(m_holes.begin(), m_holes.end(), [&section](std::size_t a, std::size_t b) {
      return section.holes[a].chainage < section.holes[b].chainage;
    });
  }

  Sheet Compose() {
    m_sheet.title = !m_options.title.empty()   ? SanitizeUtf8(m_options.title)
                    : !m_section.title.empty() ? SanitizeUtf8(m_section.title)
                                               : std::string("Geological section");
    BuildLegendRows();
    Layout();
    Add(Path{Layer::Background,
             {},
             Rectangle(0.0, 0.0, m_sheet.width, m_sheet.height),
             true,
             kWhite,
             std::nullopt,
             0.0});
    DrawGrid();
    DrawRegions();
    DrawSectionLines();
    DrawGround();
    DrawColumns();
    DrawColumnLabels();
    DrawRegionLabels();
    DrawHoleHeaders();
    DrawDirections();
    DrawAxes();
    DrawLegend();
    DrawTitle();
    return std::move(m_sheet);
  }

private:
  double X(double s) const { return m_sheet.originX + (s - m_sheet.sLeft) * m_sheet.scale; }
  double Y(double z) const {
    return m_sheet.originY + (m_sheet.zTop - z) * m_sheet.scale * m_sheet.exaggeration;
  }
  Point At(const SectionPoint& p) const { return {X(p.s), Y(p.z)}; }

  static std::vector<Point> Rectangle(double x, double y, double w, double h) {
    return {{x, y}, {x + w, y}, {x + w, y + h}, {x, y + h}};
  }

  void Add(Path path) { m_sheet.items.emplace_back(std::move(path)); }
  void Add(Text text) { m_sheet.items.emplace_back(std::move(text)); }

  void AddLine(Layer layer, Point a, Point b, Rgb colour, double width) {
    Add(Path{layer, {}, {a, b}, false, std::nullopt, colour, width});
  }

  void AddText(Layer layer, Point at, std::string text, double size, Anchor anchor,
               bool bold = false, Rgb colour = kInk) {
    Text t;
    t.layer = layer;
    t.at = at;
    t.text = std::move(text);
    t.size = size;
    t.anchor = anchor;
    t.bold = bold;
    t.colour = colour;
    Add(std::move(t));
  }

  // Every code on the sheet, from the highest (mean elevation of the tops of its strata) down, the
  // order in which a reader meets the strata on a log.
  void BuildLegendRows() {
    std::map<std::wstring, std::pair<double, double>> sums; // code -> (sum of mids, count)
    for (const std::size_t i : m_holes) {
      for (const DataType::_sZKDC& stratum : m_section.holes[i].zk.vecDC) {
        const double mid = stratum.dTopGC;
        auto& [sum, count] = sums[stratum.strName];
        if (std::isfinite(mid)) {
          sum += mid;
          count += 1.0;
        }
      }
    }
    for (const RegionShape& region : m_regions) {
      if (!region.code.empty() && sums.find(region.code) == sums.end()) {
        auto& [sum, count] = sums[region.code];
        for (const SectionPoint& p : region.corners) {
          sum += p.z;
          count += 1.0;
        }
      }
    }
    std::vector<std::pair<double, std::wstring>> order;
    for (const auto& [code, sum] : sums) {
      order.emplace_back(sum.second > 0.0 ? sum.first / sum.second : 0.0, code);
    }
    std::stable_sort(order.begin(), order.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    for (const auto& [mean, code] : order) {
      LegendRow row;
      row.code = code;
      row.colour = ColourOf(m_legend, code);
      row.codeText = code.empty() ? std::string("(no code)") : WideToUtf8(code);
      if (const auto it = m_legend.find(code); it != m_legend.end()) {
        row.labelLines = Wrap(SanitizeUtf8(it->second.label), kLegendLabelChars);
      }
      m_legendRows.push_back(std::move(row));
    }
  }

  double LegendWidth() const {
    double widest = TextWidth("Legend", kLegendHeadingSize, true);
    for (const LegendRow& row : m_legendRows) {
      widest = std::max(widest, 36.0 + TextWidth(row.codeText, kLegendSize, true));
      for (const std::string& line : row.labelLines) {
        widest = std::max(widest, 36.0 + TextWidth(line, kLegendSize - 1.0, false));
      }
    }
    widest = std::max(widest, 36.0 + TextWidth("Correlation line", kLegendSize, false));
    return std::clamp(widest + 24.0, 170.0, 420.0);
  }

  // The hole names and ground levels stand above the collars; where two would overlap, the later
  // one moves up a row.
  std::vector<HoleHeader> PlaceHeaders(double padding) const {
    std::vector<HoleHeader> headers;
    std::vector<Box> placed;
    const double v = m_sheet.scale * m_sheet.exaggeration;
    for (const std::size_t i : m_holes) {
      const SectionHole& hole = m_section.holes[i];
      HoleHeader header;
      header.hole = i;
      header.x = kMarginLeft + padding + (hole.chainage - m_extent.sMin) * m_sheet.scale;
      header.name = HoleName(hole);
      header.groundLevel = m_options.depthBelowGround ? "" : "GL " + Signed(hole.zk.dTopGC, 2);
      const double half = 0.5 * std::max(TextWidth(header.name, kHoleNameSize, true),
                                         TextWidth(header.groundLevel, kGroundLevelSize, false)) +
                          3.0;
      const double collar = -hole.zk.dTopGC * v;
      for (int level = 0;; ++level) {
        const double lift = kHeaderLevel * level;
        const Box box{header.x - half, collar - 34.0 - lift, header.x + half, collar - 2.0 - lift};
        if (level >= 6 || std::none_of(placed.begin(), placed.end(),
                                       [&box](const Box& other) { return box.Overlaps(other); })) {
          header.level = level;
          placed.push_back(box);
          break;
        }
      }
      headers.push_back(std::move(header));
    }
    return headers;
  }

  void Layout() {
    const double requestedWidth = std::isfinite(m_options.sheetWidth)
                                      ? std::clamp(m_options.sheetWidth, 640.0, 20000.0)
                                      : 1600.0;
    m_legendWidth = LegendWidth();
    const double plotWidth = std::max(240.0, requestedWidth - kMarginLeft - kAxisLabelRoom -
                                                 kLegendGap - m_legendWidth - kMarginRight);

    const bool usable = !m_extent.empty && std::isfinite(m_extent.sMax - m_extent.sMin) &&
                        std::isfinite(m_extent.zMax - m_extent.zMin);
    if (!usable) {
      m_extent = Extent{};
      m_extent.Add(0.0, 0.0);
      m_extent.Add(100.0, 10.0);
    }
    double height = m_extent.zMax - m_extent.zMin;
    if (!(height > 0.0)) {
      height = 1.0;
    }
    double length = m_extent.sMax - m_extent.sMin;
    if (!(length > 0.0)) {
      length = height;
    }
    // An exaggeration beyond these bounds would squash the section into a line or overflow the
    // coordinates; the sheet states the value that it actually draws.
    const bool given = std::isfinite(m_options.exaggeration) && m_options.exaggeration > 0.0;
    m_sheet.exaggeration = given ? std::clamp(m_options.exaggeration, 0.01, 1000.0)
                                 : ChooseExaggeration(length, height);

    // Room beside the outer columns for their codes and for the hole names above them.
    double padding = 0.0;
    for (const std::size_t i : m_holes) {
      const SectionHole& hole = m_section.holes[i];
      for (const DataType::_sZKDC& stratum : hole.zk.vecDC) {
        padding = std::max(padding, TextWidth(WideToUtf8(stratum.strName), kColumnSize, false));
      }
      padding = std::max(padding, 0.5 * TextWidth(HoleName(hole), kHoleNameSize, true));
    }
    padding = std::min(padding, 140.0) + kColumnHalfWidth + 14.0;

    const double maxPlotHeight = std::max(320.0, 0.62 * requestedWidth);
    m_sheet.scale = (plotWidth - 2.0 * padding) / length;
    for (int attempt = 0; attempt < 4; ++attempt) {
      const double v = m_sheet.scale * m_sheet.exaggeration;
      m_headers = PlaceHeaders(padding);
      double top = m_extent.zMax + 8.0 / v;
      for (const HoleHeader& header : m_headers) {
        top = std::max(top, m_section.holes[header.hole].zk.dTopGC +
                                (40.0 + kHeaderLevel * header.level) / v);
      }
      const double bottom = m_extent.zMin - 14.0 / v;
      m_tickZ = NiceStep(44.0 / v);
      // The frame ends at half steps: whole steps could leave almost a step of empty sheet.
      const double half = 0.5 * m_tickZ;
      m_sheet.zTop = std::ceil(top / half) * half;
      m_zBottom = std::floor(bottom / half) * half;
      m_plotHeight = (m_sheet.zTop - m_zBottom) * v;
      if (m_plotHeight <= maxPlotHeight * 1.02 || attempt == 3) {
        break;
      }
      // Too tall for the page at this exaggeration: shrink both scales together.
      m_sheet.scale *= maxPlotHeight / m_plotHeight;
    }
    m_plotWidth = std::min(plotWidth, length * m_sheet.scale + 2.0 * padding);
    m_tickS = NiceStep(90.0 / m_sheet.scale);
    m_sheet.originX = kMarginLeft;
    m_sheet.originY = kPlotTop;
    m_sheet.sLeft = m_extent.sMin - padding / m_sheet.scale;
    m_legendLeft = kMarginLeft + m_plotWidth + kAxisLabelRoom + kLegendGap;
    m_subtitle = Subtitle();
    // A narrow section must still leave room for its title.
    m_sheet.width = std::max(m_legendLeft + m_legendWidth,
                             kMarginLeft + std::max(TextWidth(m_sheet.title, kTitleSize, true),
                                                    TextWidth(m_subtitle, kSubtitleSize, false))) +
                    kMarginRight;
    m_sheet.height = kPlotTop + m_plotHeight + 56.0;
    m_sheet.description = "Geological section: " + std::to_string(m_holes.size()) +
                          " boreholes, vertical exaggeration " + ExaggerationText();
  }

  std::string ExaggerationText() const {
    const double e = m_sheet.exaggeration;
    return "\xC3\x97" + FormatFixed(e, std::min(DecimalsFor(e), 3)); // U+00D7 multiplication sign
  }

  double PlotRight() const { return kMarginLeft + m_plotWidth; }
  double PlotBottom() const { return kPlotTop + m_plotHeight; }
  double SLeft() const { return m_sheet.sLeft; }
  double SRight() const { return m_sheet.sLeft + m_plotWidth / m_sheet.scale; }

  std::vector<double> DistanceTicks() const {
    std::vector<double> ticks;
    const double first = std::ceil(std::max(SLeft(), m_extent.sMin) / m_tickS - 1e-9) * m_tickS;
    for (double t = first; t <= SRight() + 1e-9 * m_tickS; t += m_tickS) {
      ticks.push_back(t);
    }
    return ticks;
  }

  std::vector<double> ElevationTicks() const {
    std::vector<double> ticks;
    const double first = std::ceil(m_zBottom / m_tickZ - 1e-9);
    const double last = std::floor(m_sheet.zTop / m_tickZ + 1e-9);
    for (double i = first; i <= last; i += 1.0) {
      ticks.push_back(i * m_tickZ);
    }
    return ticks;
  }

  void DrawGrid() {
    for (const double z : ElevationTicks()) {
      AddLine(Layer::Grid, {kMarginLeft, Y(z)}, {PlotRight(), Y(z)}, kGridColour, 0.6);
    }
    for (const double s : DistanceTicks()) {
      AddLine(Layer::Grid, {X(s), kPlotTop}, {X(s), PlotBottom()}, kGridColour, 0.6);
    }
  }

  void DrawRegions() {
    for (const RegionShape& region : m_regions) {
      if (region.code.empty()) {
        continue;
      }
      std::vector<Point> points;
      for (const SectionPoint& p : region.corners) {
        points.push_back(At(p));
      }
      if (std::fabs(PolygonArea(points)) < 0.01) {
        continue; // a wedge of no thickness: its outline stroke would draw a stray line
      }
      const Rgb colour = ColourOf(m_legend, region.code);
      // A hairline of the fill colour closes the anti-aliasing seams between neighbours.
      Add(Path{Layer::Strata, region.code, points, true, colour, colour, 0.6});
      m_filled.push_back({&region, points, colour});
    }
  }

  void DrawSectionLines() {
    for (const LineShape& line : m_lines) {
      Add(Path{Layer::SectionLines,
               {},
               {At(line.from), At(line.to)},
               false,
               std::nullopt,
               kLineColour,
               1.0});
    }
  }

  void DrawGround() {
    std::vector<Point> ground;
    for (const std::size_t i : m_holes) {
      ground.push_back({X(m_section.holes[i].chainage), Y(m_section.holes[i].zk.dTopGC)});
    }
    if (ground.size() >= 2) {
      Add(Path{Layer::Ground, {}, ground, false, std::nullopt, kBlack, 1.8});
    }
  }

  void DrawColumns() {
    for (const std::size_t i : m_holes) {
      const SectionHole& hole = m_section.holes[i];
      const double x = X(hole.chainage);
      double top = hole.zk.dTopGC;
      double bottom = hole.zk.dTopGC;
      for (const DataType::_sZKDC& stratum : hole.zk.vecDC) {
        if (!std::isfinite(stratum.dTopGC) || !std::isfinite(stratum.dBotGC)) {
          continue;
        }
        const double y0 = Y(std::max(stratum.dTopGC, stratum.dBotGC));
        const double y1 = Y(std::min(stratum.dTopGC, stratum.dBotGC));
        top = std::max({top, stratum.dTopGC, stratum.dBotGC});
        bottom = std::min({bottom, stratum.dTopGC, stratum.dBotGC});
        Add(Path{Layer::Boreholes, stratum.strName,
                 Rectangle(x - kColumnHalfWidth, y0, 2.0 * kColumnHalfWidth, y1 - y0), true,
                 ColourOf(m_legend, stratum.strName), kInk, 0.6});
      }
      m_labelBoxes.push_back(
          {x - kColumnHalfWidth - 2.0, Y(top), x + kColumnHalfWidth + 2.0, Y(bottom)});
      // The outline of the whole hole, collar to final depth, over the strata boundaries.
      Add(Path{Layer::Boreholes,
               {},
               Rectangle(x - kColumnHalfWidth, Y(top), 2.0 * kColumnHalfWidth, Y(bottom) - Y(top)),
               true,
               std::nullopt,
               kBlack,
               1.1});
    }
  }

  void DrawRegionLabels() {
    for (const Filled& filled : m_filled) {
      const std::vector<Point>& p = filled.points;
      const std::string text = WideToUtf8(filled.region->code);
      const double width = TextWidth(text, kRegionSize, false);
      const double span = std::fabs(p[1].x - p[0].x);
      if (span < width + 16.0) {
        continue;
      }
      const double du = (0.5 * width + 4.0) / span;
      const auto thickness = [&p](double u) {
        return Lerp(p[3], p[2], u).y - Lerp(p[0], p[1], u).y;
      };
      for (const double u : {0.5, 0.42, 0.58, 0.34, 0.66, 0.26, 0.74, 0.2, 0.8}) {
        if (u - du < 0.03 || u + du > 0.97) {
          continue;
        }
        const double thin = std::min({thickness(u - du), thickness(u), thickness(u + du)});
        if (thin < kRegionSize * 1.35) {
          continue;
        }
        const Point top = Lerp(p[0], p[1], u);
        const Point bottom = Lerp(p[3], p[2], u);
        const double cx = 0.5 * (top.x + bottom.x);
        const double cy = 0.5 * (top.y + bottom.y);
        const Box box{cx - 0.5 * width - 2.0, cy - 0.6 * kRegionSize, cx + 0.5 * width + 2.0,
                      cy + 0.6 * kRegionSize};
        if (std::any_of(m_labelBoxes.begin(), m_labelBoxes.end(),
                        [&box](const Box& other) { return box.Overlaps(other); })) {
          continue;
        }
        m_labelBoxes.push_back(box);
        const Rgb ink = Luminance(filled.colour) < 0.22 ? kWhite : kInk;
        AddText(Layer::RegionLabels, {cx, cy + 0.36 * kRegionSize}, text, kRegionSize,
                Anchor::Middle, false, ink);
        break;
      }
    }
  }

  void DrawColumnLabels() {
    for (std::size_t n = 0; n < m_holes.size(); ++n) {
      const SectionHole& hole = m_section.holes[m_holes[n]];
      // The first hole's codes go left, outside the section; the others' to the right.
      const bool left = n == 0 && m_holes.size() > 1;
      const double x = X(hole.chainage) + (left ? -1.0 : 1.0) * (kColumnHalfWidth + 4.0);
      double lastBaseline = -1e300;
      for (const DataType::_sZKDC& stratum : hole.zk.vecDC) {
        if (!std::isfinite(stratum.dTopGC) || !std::isfinite(stratum.dBotGC)) {
          continue;
        }
        const double y0 = Y(stratum.dTopGC);
        const double y1 = Y(stratum.dBotGC);
        const double baseline = 0.5 * (y0 + y1) + 0.36 * kColumnSize;
        if (std::fabs(y1 - y0) < kColumnSize + 1.0 || baseline - lastBaseline < kColumnSize + 1.0) {
          continue; // too thin to carry its code legibly; the legend and the fill still show it
        }
        lastBaseline = baseline;
        const std::string code = WideToUtf8(stratum.strName);
        const double width = TextWidth(code, kColumnSize, false);
        // The box reaches well beyond the code, so that no region label lands right beside it
        // and repeats it.
        m_labelBoxes.push_back({(left ? x - width : x) - 24.0, baseline - kColumnSize - 6.0,
                                (left ? x : x + width) + 24.0, baseline + 0.3 * kColumnSize + 6.0});
        Text t;
        t.layer = Layer::BoreholeLabels;
        t.at = {x, baseline};
        t.text = code;
        t.size = kColumnSize;
        t.anchor = left ? Anchor::End : Anchor::Start;
        t.halo = true;
        t.colour = kInk;
        Add(std::move(t));
      }
    }
  }

  void DrawHoleHeaders() {
    for (const HoleHeader& header : m_headers) {
      const double collar = Y(m_section.holes[header.hole].zk.dTopGC);
      const double lift = kHeaderLevel * header.level;
      AddText(Layer::BoreholeLabels, {header.x, collar - 20.0 - lift}, header.name, kHoleNameSize,
              Anchor::Middle, true);
      AddText(Layer::BoreholeLabels, {header.x, collar - 7.0 - lift}, header.groundLevel,
              kGroundLevelSize, Anchor::Middle, false, kMuted);
    }
  }

  // The compass direction in which each end of the section lies, from the plan positions of the
  // first and last holes, so that a reader can match the section to the site plan.
  void DrawDirections() {
    if (m_holes.size() < 2) {
      return;
    }
    const DataType::_sZK& first = m_section.holes[m_holes.front()].zk;
    const DataType::_sZK& last = m_section.holes[m_holes.back()].zk;
    const double dx = last.dX - first.dX;
    const double dy = last.dY - first.dY;
    if (!std::isfinite(dx) || !std::isfinite(dy) || std::hypot(dx, dy) <= 0.0) {
      return;
    }
    const double bearing = std::atan2(dx, dy) * 180.0 / M_PI;
    AddText(Layer::Axes, {kMarginLeft, kPlotTop - 7.0}, CompassPoint(bearing + 180.0),
            kAxisTitleSize, Anchor::Start, true);
    AddText(Layer::Axes, {PlotRight(), kPlotTop - 7.0}, CompassPoint(bearing), kAxisTitleSize,
            Anchor::End, true);
  }

  void DrawAxes() {
    const double right = PlotRight();
    const double bottom = PlotBottom();
    Add(Path{Layer::Axes,
             {},
             Rectangle(kMarginLeft, kPlotTop, m_plotWidth, m_plotHeight),
             true,
             std::nullopt,
             kBlack,
             0.9});
    const int zDecimals = DecimalsFor(m_tickZ);
    for (const double z : ElevationTicks()) {
      const double y = Y(z);
      AddLine(Layer::Axes, {kMarginLeft - 5.0, y}, {kMarginLeft, y}, kBlack, 0.9);
      AddLine(Layer::Axes, {right, y}, {right + 5.0, y}, kBlack, 0.9);
      const std::string label = Signed(m_options.depthBelowGround ? -z + 0.0 : z, zDecimals);
      AddText(Layer::Axes, {kMarginLeft - 8.0, y + 0.36 * kAxisSize}, label, kAxisSize,
              Anchor::End);
      AddText(Layer::Axes, {right + 8.0, y + 0.36 * kAxisSize}, label, kAxisSize, Anchor::Start);
    }
    const int sDecimals = DecimalsFor(m_tickS);
    for (const double s : DistanceTicks()) {
      const double x = X(s);
      AddLine(Layer::Axes, {x, bottom}, {x, bottom + 5.0}, kBlack, 0.9);
      AddText(Layer::Axes, {x, bottom + 18.0}, Signed(s, sDecimals), kAxisSize, Anchor::Middle);
    }
    const std::string unit = SanitizeUtf8(m_options.unit);
    const std::string suffix = unit.empty() ? std::string() : " (" + unit + ")";
    AddText(Layer::Axes, {kMarginLeft + 0.5 * m_plotWidth, bottom + 40.0},
            "Distance along section" + suffix, kAxisTitleSize, Anchor::Middle, true);
    Text elevation;
    elevation.layer = Layer::Axes;
    elevation.at = {kMarginLeft - 62.0, kPlotTop + 0.5 * m_plotHeight};
    elevation.text = !m_options.depthBelowGround ? "Elevation" + suffix
                     : unit.empty()              ? std::string("Depth below ground")
                                                 : "Depth (" + unit + " below ground)";
    elevation.size = kAxisTitleSize;
    elevation.anchor = Anchor::Middle;
    elevation.bold = true;
    elevation.rotation = 90.0;
    elevation.colour = kInk;
    Add(std::move(elevation));
  }

  void DrawLegend() {
    const double left = m_legendLeft;
    const double textX = left + 48.0;
    double y = kPlotTop + 14.0;
    std::vector<Item> entries;
    const auto text = [&entries](Point at, std::string s, double size, bool bold, Rgb colour) {
      Text t;
      t.layer = Layer::Legend;
      t.at = at;
      t.text = std::move(s);
      t.size = size;
      t.bold = bold;
      t.colour = colour;
      entries.emplace_back(std::move(t));
    };
    text({left + 12.0, y + 10.0}, "Legend", kLegendHeadingSize, true, kInk);
    y += 26.0;
    for (const LegendRow& row : m_legendRows) {
      entries.emplace_back(Path{Layer::Legend, row.code, Rectangle(left + 12.0, y, 26.0, 15.0),
                                true, row.colour, kInk, 0.7});
      text({textX, y + 11.5}, row.codeText, kLegendSize, true, kInk);
      y += 17.0;
      for (const std::string& line : row.labelLines) {
        text({textX, y + 10.0}, line, kLegendSize - 1.0, false, kMuted);
        y += 14.0;
      }
      y += 7.0;
    }
    y += 4.0;
    entries.emplace_back(Path{
        Layer::Legend, {}, {{left + 12.0, y}, {left + 38.0, y}}, false, std::nullopt, kBlack, 1.8});
    text({textX, y + 4.0}, "Ground surface", kLegendSize, false, kInk);
    y += 20.0;
    entries.emplace_back(Path{Layer::Legend,
                              {},
                              {{left + 12.0, y}, {left + 38.0, y}},
                              false,
                              std::nullopt,
                              kLineColour,
                              1.0});
    text({textX, y + 4.0}, "Correlation line", kLegendSize, false, kInk);
    y += 14.0;
    entries.emplace_back(
        Path{Layer::Legend, {}, Rectangle(left + 19.0, y, 12.0, 26.0), true, kWhite, kBlack, 1.1});
    entries.emplace_back(Path{Layer::Legend,
                              {},
                              {{left + 19.0, y + 11.0}, {left + 31.0, y + 11.0}},
                              false,
                              std::nullopt,
                              kInk,
                              0.6});
    text({textX, y + 17.0}, "Borehole log", kLegendSize, false, kInk);
    y += 38.0;
    // The frame goes first so that it lies under the entries.
    Add(Path{Layer::Legend,
             {},
             Rectangle(left, kPlotTop, m_legendWidth, y - kPlotTop),
             true,
             kWhite,
             kFrameColour,
             0.8});
    for (Item& item : entries) {
      m_sheet.items.push_back(std::move(item));
    }
    m_sheet.height = std::max(m_sheet.height, y + 20.0);
  }

  std::string Subtitle() const {
    std::string subtitle = "Vertical exaggeration " + ExaggerationText();
    subtitle += "   \xC2\xB7   " + std::to_string(m_holes.size()) +
                (m_holes.size() == 1 ? " borehole" : " boreholes");
    if (m_holes.size() >= 2) {
      const double length =
          m_section.holes[m_holes.back()].chainage - m_section.holes[m_holes.front()].chainage;
      const std::string unit = SanitizeUtf8(m_options.unit);
      subtitle +=
          " over " + FormatFixed(length, length < 100.0 ? 1 : 0) + (unit.empty() ? "" : " " + unit);
    }
    return subtitle;
  }

  void DrawTitle() {
    AddText(Layer::Title, {kMarginLeft, 34.0}, m_sheet.title, kTitleSize, Anchor::Start, true);
    AddText(Layer::Title, {kMarginLeft, 58.0}, m_subtitle, kSubtitleSize, Anchor::Start, false,
            kMuted);
  }

  struct Filled {
    const RegionShape* region;
    std::vector<Point> points;
    Rgb colour;
  };

  const Section& m_section;
  const Legend& m_legend;
  const DrawOptions& m_options;
  std::vector<RegionShape> m_regions;
  std::vector<LineShape> m_lines;
  Extent m_extent;
  std::vector<std::size_t> m_holes; // drawable holes by chainage
  std::vector<LegendRow> m_legendRows;
  std::vector<HoleHeader> m_headers;
  std::string m_subtitle;
  std::vector<Filled> m_filled;
  std::vector<Box> m_labelBoxes;
  Sheet m_sheet;
  double m_legendWidth = 0.0;
  double m_legendLeft = 0.0;
  double m_plotWidth = 0.0;
  double m_plotHeight = 0.0;
  double m_zBottom = 0.0;
  double m_tickZ = 1.0;
  double m_tickS = 1.0;
};

} // namespace

double TextWidth(std::string_view utf8, double size, bool bold) {
  return static_cast<double>(DisplayLength(utf8)) * size * (bold ? 0.68 : 0.62);
}

Sheet ComposeSheet(const Section& section, const Legend& legend, const DrawOptions& options) {
  return Composer(section, legend, options).Compose();
}

} // namespace xklink::drawing
