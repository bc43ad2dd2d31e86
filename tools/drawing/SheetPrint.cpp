#include "SheetPrint.h"

#include "InSituLayer.h"
#include "SheetLegend.h"
#include "SheetPlot.h"
#include "SheetTitleBlock.h"
#include "TextMetrics.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace xklink::drawing {

namespace {

constexpr std::array<double, 21> kStandardScales = {
    10.0,    20.0,    25.0,     50.0,     100.0,    200.0,    250.0,
    500.0,   1000.0,  1250.0,   2500.0,   5000.0,   10000.0,  20000.0,
    25000.0, 50000.0, 100000.0, 200000.0, 250000.0, 500000.0, 1000000.0};
constexpr double kSmallestChosenScale = 100.0; // horizontally

constexpr double kBorder = 10.0 * kUnitsPerMm; // from the paper's edge to the drawing frame
constexpr double kGap = 12.0;                  // between the panels of the right column
constexpr double kLegendGap = 18.0;            // between the axis labels and the column
constexpr double kColumnWidth = 270.0;         // the title block's least width (71 mm)
constexpr double kSmallestKeyPlan = 110.0;
constexpr double kLegendCodeSize = 11.5; // as SheetLegend.cpp writes the codes
constexpr double kHeadingTop = 6.0;

struct PaperSize {
  double width; // mm, landscape
  double height;
};

PaperSize SizeOf(Paper paper) {
  switch (paper) {
  case Paper::A4:
    return {297.0, 210.0};
  case Paper::A3:
    return {420.0, 297.0};
  case Paper::A1:
    return {841.0, 594.0};
  }
  return {420.0, 297.0};
}

double UnitsPerMetre(double scale) {
  return 1000.0 / scale * kUnitsPerMm;
}

// Where the parts of every sheet stand: the same on each sheet of a printout.
struct Layout {
  double width = 0.0; // the paper, in sheet units
  double height = 0.0;
  double inLeft = 0.0; // inside the border
  double inTop = 0.0;
  double inRight = 0.0;
  double inBottom = 0.0;
  double columnLeft = 0.0;
  double plotLeft = 0.0;
  double plotRoom = 0.0; // the widest the plot may be
  // The right column holds the legend (its codes with their descriptions or not, in one or two
  // columns) over the key to the marks beside the logs, the key plan and the title block; or, when
  // split, the legend beside a column of the others.
  bool descriptions = true;
  int legendColumns = 1;
  bool split = false;
  double legendWidth = 0.0;
  double furnitureLeft = 0.0; // the key plan and title block, from here to inRight
};

// The heights of the legend panel and of the key to the marks beside the logs, measured by drawing
// them on a scratch sheet.
double PanelHeight(const std::vector<LegendRow>& rows, bool inferred, double width, int columns) {
  Sheet scratch;
  Canvas canvas(scratch);
  return DrawLegendPanel(canvas, rows, 0.0, 0.0, width, inferred, columns);
}

double MarksKeyHeight(const Section& section, const std::vector<std::size_t>& holes, double width) {
  Sheet scratch;
  Canvas canvas(scratch);
  return DrawInSituKey(canvas, section, holes, 0.0, 0.0, width);
}

std::vector<LegendRow> WithoutDescriptions(std::vector<LegendRow> rows) {
  for (LegendRow& row : rows) {
    row.labelLines.clear();
  }
  return rows;
}

// The stretches of chainage of the sheets at a scale: equal lengths, a whole number of distance
// ticks each, starting at a round chainage (a fifth of a tick) so that the section stands in the
// middle of the sheets.
std::vector<std::pair<double, double>> Split(const Extent& extent, const Layout& layout,
                                             double scale) {
  const double u = UnitsPerMetre(scale);
  const double tick = NiceStep(90.0 / u);
  const double fine = NiceStep(tick / 5.0);
  const double length = std::max(1.0, std::floor(layout.plotRoom / u / tick)) * tick;
  const double pad = (kColumnHalfWidth + 14.0) / u;
  const double first = extent.sMin - pad;
  const double end = extent.sMax + pad;
  const auto count = [&](double start) {
    return std::max(1.0, std::ceil((end - start) / length - 1e-9));
  };
  double start = std::floor((first - 0.5 * (count(first) * length - (end - first))) / fine) * fine;
  if (start + count(first) * length < end) {
    start = std::floor(first / fine) * fine;
  }
  const double sheets = count(start);
  std::vector<std::pair<double, double>> out;
  if (sheets > static_cast<double>(kMaxSheets)) {
    out.resize(kMaxSheets + 1); // too many: the caller refuses
    return out;
  }
  for (double k = 0.0; k < sheets; k += 1.0) {
    out.emplace_back(start + k * length, start + (k + 1.0) * length);
  }
  return out;
}

// What one sheet shows and the room it leaves for the plot's height.
struct SheetPlan {
  double from = 0.0;
  double to = 0.0;
  View view;
  HeaderBand band;
  double headingBottom = 0.0;
  double plotTop = 0.0;
};

Frame SheetFrame(const View& view, const Extent& whole, const SheetPlan& plan, const Layout& layout,
                 double scale, double vscale) {
  Extent extent;
  extent.Add(plan.from, view.extent.empty ? whole.zMin : view.extent.zMin);
  extent.Add(plan.to, view.extent.empty ? whole.zMax : view.extent.zMax);
  FrameRequest request;
  request.plotWidth = (plan.to - plan.from) * UnitsPerMetre(scale);
  request.scale = UnitsPerMetre(scale);
  request.exaggeration = scale / vscale;
  Frame frame = ChooseFrame(extent, request, layout.plotLeft, plan.plotTop);
  frame.sLeft = plan.from;
  return frame;
}

bool Fits(const Frame& frame, const Layout& layout) {
  return frame.Bottom() <= layout.inBottom - kBelowPlot + 0.5;
}

std::string LineDescription(const Section& section, std::size_t holes) {
  if (!section.alignment) {
    return std::to_string(holes) + " holes at their given distances";
  }
  const Alignment& line = *section.alignment;
  const PlanPoint start = line.Vertices().front();
  const std::string from = "from E " + FormatFixed(start.e, 0) + " N " + FormatFixed(start.n, 0);
  const std::string running = ", running " + CompassPoint(line.BearingAt(0.0));
  switch (line.Kind()) {
  case AlignmentKind::Given:
    return "Given line of " + std::to_string(line.Vertices().size()) + " vertices " + from +
           running;
  case AlignmentKind::BestFit:
    return "Best-fit line through " + std::to_string(holes) + " holes " + from + running;
  case AlignmentKind::Fence:
    return "Fence through " + std::to_string(holes) + " holes in the order given " + from;
  }
  return {};
}

} // namespace

PrintedSheets ComposePrintedSheets(const Section& section, const Legend& legend,
                                   const DrawOptions& options, const PrintOptions& print) {
  const View whole = MakeView(section);
  const std::string title = !options.title.empty()   ? SanitizeUtf8(options.title)
                            : !section.title.empty() ? SanitizeUtf8(section.title)
                                                     : std::string("Geological section");
  const std::string unit = SanitizeUtf8(options.unit);
  const PaperSize paper = SizeOf(print.paper);
  Layout layout;
  layout.width = paper.width * kUnitsPerMm;
  layout.height = paper.height * kUnitsPerMm;
  layout.inLeft = kBorder;
  layout.inTop = kBorder;
  layout.inRight = layout.width - kBorder;
  layout.inBottom = layout.height - kBorder;

  TitleBlock block;
  block.project = SanitizeUtf8(print.project);
  block.section = LineDescription(section, whole.holes.size());
  block.date = SanitizeUtf8(print.date);
  block.scale = 1000.0;
  block.vscale = 100.0;
  const double blockHeight = TitleBlockHeight(block, kColumnWidth);

  // The right column: the legend over the key plan over the title block. Where the legend of the
  // whole section would not fit above the smallest key plan, the descriptions of the codes are
  // left out (the file or the legend file gives them), then the codes stand in two columns; on a
  // small sheet with many codes, the legend then stands beside the rest, at the plot's expense.
  const bool inferred = std::any_of(whole.regions.begin(), whole.regions.end(),
                                    [](const RegionShape& r) { return r.beneath; });
  const std::vector<LegendRow> allRows = LegendRows(section, whole.holes, whole.regions, legend);
  const double innerHeight = layout.inBottom - layout.inTop;
  const double legendRoom = innerHeight - blockHeight - kSmallestKeyPlan - 2.0 * kGap;
  double widestCode = 0.0;
  for (const LegendRow& row : allRows) {
    widestCode = std::max(widestCode, TextWidth(row.codeText, kLegendCodeSize, true));
  }
  const bool twoFit = 2.0 * (widestCode + 48.0) + 12.0 <= kColumnWidth;
  struct Choice {
    bool split;
    bool descriptions;
    int columns;
  };
  for (const Choice& c :
       {Choice{false, true, 1}, Choice{false, false, 1}, Choice{false, false, twoFit ? 2 : 1},
        Choice{true, true, 1}, Choice{true, false, 1}, Choice{true, false, twoFit ? 2 : 1}}) {
    layout.split = c.split;
    layout.descriptions = c.descriptions;
    layout.legendColumns = c.columns;
    const std::vector<LegendRow> rows = c.descriptions ? allRows : WithoutDescriptions(allRows);
    layout.legendWidth =
        c.columns == 1 ? std::max(kColumnWidth, LegendPanelWidth(rows)) : kColumnWidth;
    const double panel = PanelHeight(rows, inferred, layout.legendWidth, c.columns);
    const double marks =
        MarksKeyHeight(section, whole.holes, c.split ? kColumnWidth : layout.legendWidth);
    if (c.split ? panel <= innerHeight && marks <= legendRoom : panel + marks <= legendRoom) {
      break;
    }
  }
  const double columnWidth =
      layout.split ? layout.legendWidth + kGap + kColumnWidth : layout.legendWidth;
  layout.columnLeft = layout.inRight - columnWidth;
  layout.furnitureLeft =
      layout.split ? layout.columnLeft + layout.legendWidth + kGap : layout.columnLeft;
  layout.plotLeft = layout.inLeft + kMarginLeft;
  layout.plotRoom = layout.columnLeft - kLegendGap - kAxisLabelRoom - layout.plotLeft;

  // The horizontal scale and the sheets.
  Printout out;
  out.paper = print.paper;
  out.widthMm = paper.width;
  out.heightMm = paper.height;
  out.scale = print.scale;
  if (!(out.scale > 0.0)) {
    out.scaleChosen = true;
    const std::size_t most =
        std::clamp<std::size_t>(whole.holes.size() / kHolesPerChosenSheet, 1, kMaxChosenSheets);
    for (const double s : kStandardScales) {
      out.scale = s;
      if (s >= kSmallestChosenScale && Split(whole.extent, layout, s).size() <= most) {
        break;
      }
    }
  }
  out.chainages = Split(whole.extent, layout, out.scale);
  if (out.chainages.size() > kMaxSheets) {
    throw DrawingError("at " + ScaleText(out.scale) + " the section would need more than " +
                       std::to_string(kMaxSheets) + " " + PaperName(print.paper) +
                       " sheets: choose a smaller scale");
  }

  // Each sheet's holes, hole headers and heading, which the vertical scale does not change.
  const double u = UnitsPerMetre(out.scale);
  std::vector<SheetPlan> plans;
  for (const auto& [from, to] : out.chainages) {
    SheetPlan plan;
    plan.from = from;
    plan.to = to;
    plan.view = ClipView(section, whole, from, to);
    Frame frame;
    frame.left = layout.plotLeft;
    frame.scale = u;
    frame.sLeft = from;
    frame.width = (to - from) * u;
    plan.band = PlaceHoleHeaders(section, plan.view.holes, frame, layout.inLeft + 8.0,
                                 frame.Right() + kAxisLabelRoom, !options.depthBelowGround);
    Sheet scratch;
    Canvas canvas(scratch);
    double y = layout.inTop + kHeadingTop;
    HeadingTexts(canvas, title, section, plan.view, 10.0, unit, layout.inLeft + 8.0,
                 layout.columnLeft - kLegendGap - layout.inLeft - 8.0, y);
    plan.headingBottom = y;
    plan.plotTop = y + 14.0 + plan.band.height;
    plans.push_back(std::move(plan));
  }

  // The vertical scale: as asked, else the largest standard one that fits every sheet.
  const auto fitsAll = [&](double vscale) {
    return std::all_of(plans.begin(), plans.end(), [&](const SheetPlan& plan) {
      return Fits(SheetFrame(plan.view, whole.extent, plan, layout, out.scale, vscale), layout);
    });
  };
  out.vscale = print.vscale > 0.0 ? print.vscale
               : options.exaggeration > 0.0 && std::isfinite(options.exaggeration)
                   ? out.scale / options.exaggeration
                   : 0.0;
  if (out.vscale > 0.0) {
    if (!fitsAll(out.vscale)) {
      throw DrawingError("at " + ScaleText(out.vscale) +
                         " vertically the section is too high for " + PaperName(print.paper) +
                         " sheets: choose a smaller vertical scale or exaggeration, or a larger "
                         "sheet");
    }
  } else {
    out.vscaleChosen = true;
    for (const double s : kStandardScales) {
      out.vscale = s;
      if (out.scale / s <= kMaxChosenExaggeration + 1e-9 && fitsAll(s)) {
        break;
      }
    }
  }

  PrintedSheets result;
  for (std::size_t k = 0; k < plans.size(); ++k) {
    const SheetPlan& plan = plans[k];
    const Frame frame = SheetFrame(plan.view, whole.extent, plan, layout, out.scale, out.vscale);
    Sheet sheet;
    Canvas canvas(sheet);
    sheet.width = layout.width;
    sheet.height = layout.height;
    sheet.widthMm = paper.width;
    sheet.heightMm = paper.height;
    sheet.title = title;
    StartSheet(sheet, canvas, frame,
               "Geological section, sheet " + std::to_string(k + 1) + " of " +
                   std::to_string(plans.size()) + ", " + ScaleText(out.scale) + " horizontally, " +
                   ScaleText(out.vscale) + " vertically");
    canvas.Add(Path{Layer::Title,
                    {},
                    Rectangle(layout.inLeft, layout.inTop, layout.inRight - layout.inLeft,
                              layout.inBottom - layout.inTop),
                    true,
                    std::nullopt,
                    kBlack,
                    1.4});
    const std::vector<FilledRegion> filled = DrawPlot(canvas, section, plan.view, frame, plan.band,
                                                      legend, unit, options.depthBelowGround);

    std::vector<LegendRow> rows = LegendRows(section, plan.view.holes, plan.view.regions, legend);
    if (!layout.descriptions) {
      rows = WithoutDescriptions(std::move(rows));
    }
    const double panelBottom =
        DrawLegendPanel(canvas, rows, layout.columnLeft, layout.inTop, layout.legendWidth,
                        std::any_of(plan.view.regions.begin(), plan.view.regions.end(),
                                    [](const RegionShape& r) { return r.beneath; }),
                        layout.legendColumns);
    const double furnitureWidth = layout.inRight - layout.furnitureLeft;
    const double marksBottom =
        DrawInSituKey(canvas, section, plan.view.holes, layout.furnitureLeft,
                      layout.split ? layout.inTop : panelBottom, furnitureWidth);
    // The key plan takes the room left above the title block, up to the proportions of a plan.
    const double blockTop = layout.inBottom - blockHeight;
    const double planTop =
        std::min(blockTop - kGap - kSmallestKeyPlan,
                 std::max(marksBottom + kGap, blockTop - kGap - 0.8 * furnitureWidth));
    DrawKeyPlan(canvas, section, plan.view.holes, plan.from, plan.to,
                {layout.furnitureLeft, planTop, layout.inRight, blockTop - kGap});
    TitleBlock sheetBlock = block;
    sheetBlock.scale = out.scale;
    sheetBlock.vscale = out.vscale;
    sheetBlock.unitsPerMetre = u;
    sheetBlock.number = k + 1;
    sheetBlock.count = plans.size();
    sheetBlock.from = plan.from;
    sheetBlock.to = plan.to;
    DrawTitleBlock(canvas, sheetBlock,
                   {layout.furnitureLeft, blockTop, layout.inRight, layout.inBottom});

    double y = layout.inTop + kHeadingTop;
    for (Text& t : HeadingTexts(canvas, title, section, plan.view, frame.exaggeration, unit,
                                layout.inLeft + 8.0,
                                layout.columnLeft - kLegendGap - layout.inLeft - 8.0, y)) {
      canvas.AddText(std::move(t));
    }
    DrawPlotLabels(canvas, section, plan.view, frame, filled);
    result.sheets.push_back(std::move(sheet));
  }
  result.layout = std::move(out);
  return result;
}

} // namespace xklink::drawing

namespace xklink {

std::string PaperName(Paper paper) {
  switch (paper) {
  case Paper::A4:
    return "A4";
  case Paper::A3:
    return "A3";
  case Paper::A1:
    return "A1";
  }
  return "A3";
}

} // namespace xklink
