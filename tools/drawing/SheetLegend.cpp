#include "SheetLegend.h"

#include "TextMetrics.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace xklink::drawing {

namespace {

constexpr double kSize = 11.5;
constexpr double kHeadingSize = 13.0;
constexpr double kLabelWidth = 230.0; // descriptions wrap at this width
constexpr Rgb kFrameColour{0x8c, 0x8c, 0x8c};
constexpr Rgb kLineColour{0x2b, 0x2b, 0x2b};

} // namespace

std::vector<LegendRow> LegendRows(const Section& section, const std::vector<std::size_t>& holes,
                                  const std::vector<RegionShape>& regions, const Legend& legend) {
  StratigraphicOrder order;
  for (const std::size_t i : holes) {
    for (const DataType::_sZKDC& stratum : section.holes[i].zk.vecDC) {
      order.Add(stratum.strName, stratum.dTopGC);
    }
  }
  // A code met only between the holes (inferred beneath them) by the mean height of its region.
  const StratigraphicOrder fromHoles = order;
  for (const RegionShape& region : regions) {
    if (!region.code.empty() && !fromHoles.Knows(region.code)) {
      for (const SectionPoint& p : region.polygon) {
        order.Add(region.code, p.z);
      }
    }
  }
  std::vector<LegendRow> rows;
  for (const std::wstring& code : order.HighestFirst()) {
    LegendRow row;
    row.code = code;
    row.colour = ColourOf(legend, code);
    row.codeText = code.empty() ? std::string("(no code)") : WideToUtf8(code);
    if (const auto it = legend.find(code); it != legend.end()) {
      row.labelLines = Wrap(SanitizeUtf8(it->second.label), kLabelWidth, kSize - 1.0, false);
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

double LegendPanelWidth(const std::vector<LegendRow>& rows) {
  double widest = TextWidth("Legend", kHeadingSize, true);
  for (const LegendRow& row : rows) {
    widest = std::max(widest, 36.0 + TextWidth(row.codeText, kSize, true));
    for (const std::string& line : row.labelLines) {
      widest = std::max(widest, 36.0 + TextWidth(line, kSize - 1.0, false));
    }
  }
  widest = std::max(widest, 36.0 + TextWidth("Inferred below shallow holes", kSize, false));
  return std::clamp(widest + 24.0, 170.0, 420.0);
}

double DrawLegendPanel(Canvas& canvas, const std::vector<LegendRow>& rows, double left, double top,
                       double width, bool inferred, int columns) {
  const double textX = left + 48.0;
  double y = top + 14.0;
  std::vector<Item> entries;
  std::vector<Text> texts;
  const auto text = [&](Point at, std::string s, double size, bool bold, Rgb colour) {
    texts.push_back(
        canvas.MakeText(Layer::Legend, at, std::move(s), size, Anchor::Start, bold, colour));
  };
  const auto line = [&](double y0, Rgb colour, double w, bool dashed) {
    Path p{Layer::Legend, {}, {{left + 12.0, y0}, {left + 38.0, y0}}, false, std::nullopt,
           colour,        w};
    p.dashed = dashed;
    entries.emplace_back(std::move(p));
  };
  text({left + 12.0, y + 10.0}, "Legend", kHeadingSize, true, kInk);
  y += 26.0;
  // Rows run down the first column, then down the next.
  const std::size_t perColumn = (rows.size() + static_cast<std::size_t>(std::max(columns, 1)) - 1) /
                                static_cast<std::size_t>(std::max(columns, 1));
  const double rowsTop = y;
  double rowsBottom = y;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const LegendRow& row = rows[i];
    const double shift = perColumn == 0 ? 0.0
                                        : static_cast<double>(i / perColumn) * (width - 12.0) /
                                              static_cast<double>(std::max(columns, 1));
    if (perColumn != 0 && i % perColumn == 0) {
      y = rowsTop;
    }
    entries.emplace_back(Path{Layer::Legend, row.code,
                              Rectangle(left + 12.0 + shift, y, 26.0, 15.0), true, row.colour, kInk,
                              0.7});
    text({textX + shift, y + 11.5}, row.codeText, kSize, true, kInk);
    y += 17.0;
    for (const std::string& label : row.labelLines) {
      text({textX + shift, y + 10.0}, label, kSize - 1.0, false, kMuted);
      y += 14.0;
    }
    y += 7.0;
    rowsBottom = std::max(rowsBottom, y);
  }
  y = rowsBottom;
  y += 4.0;
  line(y, kBlack, 1.8, false);
  text({textX, y + 4.0}, "Ground surface", kSize, false, kInk);
  y += 20.0;
  line(y, kLineColour, 1.0, false);
  text({textX, y + 4.0}, "Correlation line", kSize, false, kInk);
  if (inferred) {
    y += 20.0;
    line(y, kLineColour, 1.0, true);
    text({textX, y + 4.0}, "Inferred below shallow holes", kSize, false, kInk);
  }
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
  text({textX, y + 17.0}, "Borehole log", kSize, false, kInk);
  y += 38.0;
  // The frame goes first so that it lies under the entries.
  canvas.Add(Path{
      Layer::Legend, {}, Rectangle(left, top, width, y - top), true, kWhite, kFrameColour, 0.8});
  for (Item& item : entries) {
    canvas.sheet().items.push_back(std::move(item));
  }
  for (Text& t : texts) {
    canvas.AddText(std::move(t));
  }
  return y;
}

} // namespace xklink::drawing
