// The sheet as SVG 1.1: plain shapes and text, no scripts, styles or external references, so that
// every viewer, browser and word processor shows the same figure.
#include "Section.h"
#include "Sheet.h"
#include "SheetPrint.h"
#include "TextMetrics.h"

#include <cmath>
#include <string>

namespace xklink {

namespace {

using drawing::Anchor;
using drawing::Layer;
using drawing::Path;
using drawing::Point;
using drawing::Text;

const char* LayerClass(Layer layer) {
  switch (layer) {
  case Layer::Background:
    return "background";
  case Layer::Grid:
    return "grid";
  case Layer::Strata:
    return "strata";
  case Layer::SectionLines:
    return "section-lines";
  case Layer::Ground:
    return "ground";
  case Layer::Boreholes:
    return "boreholes";
  case Layer::RegionLabels:
    return "region-labels";
  case Layer::BoreholeLabels:
    return "borehole-labels";
  case Layer::Water:
    return "water";
  case Layer::Tests:
    return "tests";
  case Layer::Axes:
    return "axes";
  case Layer::Legend:
    return "legend";
  case Layer::Title:
    return "title";
  }
  return "other";
}

// Coordinates to a hundredth of a unit: finer than any screen or printer resolves, and it keeps
// the file small.
std::string Num(double value) {
  std::string text = drawing::FormatFixed(value, 2);
  if (text.find('.') != std::string::npos) {
    while (text.back() == '0') {
      text.pop_back();
    }
    if (text.back() == '.') {
      text.pop_back();
    }
  }
  return text == "-0" ? "0" : text;
}

bool Finite(const Point& p) {
  return std::isfinite(p.x) && std::isfinite(p.y);
}

void WritePath(std::string& out, const Path& path) {
  if (path.points.size() < 2) {
    return;
  }
  for (const Point& p : path.points) {
    if (!Finite(p)) {
      return;
    }
  }
  out += path.closed ? "<polygon points=\"" : "<polyline points=\"";
  for (std::size_t i = 0; i < path.points.size(); ++i) {
    out += (i == 0 ? "" : " ") + Num(path.points[i].x) + "," + Num(path.points[i].y);
  }
  out += "\" fill=\"";
  out += path.fill ? drawing::ToHex(*path.fill) : "none";
  out += "\"";
  if (path.stroke && std::isfinite(path.strokeWidth)) {
    out += " stroke=\"" + drawing::ToHex(*path.stroke) + "\" stroke-width=\"" +
           Num(path.strokeWidth) + "\" stroke-linejoin=\"round\"";
    if (path.dashed) {
      out += " stroke-dasharray=\"6 4\"";
    }
  }
  if (path.layer == Layer::Strata && !path.code.empty()) {
    // The code as the shape's own title: a viewer shows it when the pointer rests on the region.
    out += "><title>" + drawing::EscapeXml(drawing::WideToUtf8(path.code)) + "</title></";
    out += path.closed ? "polygon>\n" : "polyline>\n";
  } else {
    out += "/>\n";
  }
}

void WriteText(std::string& out, const Text& text) {
  if (!Finite(text.at) || !std::isfinite(text.size) || !std::isfinite(text.rotation) ||
      text.text.empty()) {
    return;
  }
  std::string attributes = "x=\"" + Num(text.at.x) + "\" y=\"" + Num(text.at.y) +
                           "\" font-size=\"" + Num(text.size) + "\"";
  if (text.anchor == Anchor::Middle) {
    attributes += " text-anchor=\"middle\"";
  } else if (text.anchor == Anchor::End) {
    attributes += " text-anchor=\"end\"";
  }
  if (text.bold) {
    attributes += " font-weight=\"bold\"";
  }
  if (text.rotation != 0.0) {
    attributes += " transform=\"rotate(" + Num(-text.rotation) + " " + Num(text.at.x) + " " +
                  Num(text.at.y) + ")\"";
  }
  const std::string content = drawing::EscapeXml(text.text);
  if (text.halo) {
    // The halo is a separate white-stroked copy underneath rather than paint-order, which SVG 1.1
    // renderers do not know and would paint over the letters.
    out += "<text " + attributes +
           " fill=\"#ffffff\" stroke=\"#ffffff\" stroke-width=\"2.2\" stroke-opacity=\"0.8\"" +
           " stroke-linejoin=\"round\">" + content + "</text>\n";
  }
  out += "<text " + attributes + " fill=\"" + drawing::ToHex(text.colour) + "\">" + content +
         "</text>\n";
}

// A printed sheet states its paper size, so that it prints at its scale; the one-picture sheet is
// sized in pixels.
std::string SheetSvg(const drawing::Sheet& sheet) {
  const bool paper = sheet.widthMm > 0.0 && sheet.heightMm > 0.0;
  const std::string width = paper ? Num(sheet.widthMm) + "mm" : Num(sheet.width);
  const std::string height = paper ? Num(sheet.heightMm) + "mm" : Num(sheet.height);
  std::string out;
  out.reserve(64 * 1024);
  out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  out += "<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\" width=\"" + width +
         "\" height=\"" + height + "\" viewBox=\"0 0 " + Num(sheet.width) + " " +
         Num(sheet.height) + "\" font-family=\"DejaVu Sans, Helvetica, Arial, sans-serif\">\n";
  out += "<title>" + drawing::EscapeXml(sheet.title) + "</title>\n";
  out += "<desc>" + drawing::EscapeXml(sheet.description) + "</desc>\n";
  bool open = false;
  Layer current = Layer::Background;
  for (const drawing::Item& item : sheet.items) {
    const Layer layer = std::visit([](const auto& element) { return element.layer; }, item);
    if (!open || layer != current) {
      if (open) {
        out += "</g>\n";
      }
      out += "<g class=\"";
      out += LayerClass(layer);
      out += "\">\n";
      open = true;
      current = layer;
    }
    if (const auto* path = std::get_if<Path>(&item)) {
      WritePath(out, *path);
    } else {
      WriteText(out, std::get<Text>(item));
    }
  }
  if (open) {
    out += "</g>\n";
  }
  out += "</svg>\n";
  return out;
}

} // namespace

std::string RenderSvg(const Section& section, const Legend& legend, const DrawOptions& options) {
  return SheetSvg(drawing::ComposeSheet(section, legend, options));
}

Printout RenderPrintout(const Section& section, const Legend& legend, const DrawOptions& options,
                        const PrintOptions& print) {
  drawing::PrintedSheets printed = drawing::ComposePrintedSheets(section, legend, options, print);
  for (const drawing::Sheet& sheet : printed.sheets) {
    printed.layout.svgs.push_back(SheetSvg(sheet));
    std::vector<Printout::Label>& labels = printed.layout.labels.emplace_back();
    for (const drawing::Item& item : sheet.items) {
      if (const auto* text = std::get_if<Text>(&item)) {
        const drawing::Box b = drawing::TextBox(*text);
        labels.push_back({text->text, {b.left, b.top, b.right, b.bottom}});
      }
    }
  }
  return std::move(printed.layout);
}

} // namespace xklink
