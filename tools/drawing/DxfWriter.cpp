// The sheet as an AutoCAD R2000 drawing, written through dxflib. Every stratum gets its own layer,
// so that a CAD user can switch units on and off, restyle them or hatch them with the patterns of
// the office standard.
#include "Section.h"
#include "Sheet.h"
#include "TextMetrics.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <dl_dxf.h>
#include <dl_writer_ascii.h>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <system_error>

namespace xklink {

namespace {

using drawing::Anchor;
using drawing::Layer;
using drawing::Path;
using drawing::Point;
using drawing::Rgb;
using drawing::Text;

// dxflib's writer sends every group to a file it opens itself; this one collects them in a string
// instead, so that the caller decides how the drawing reaches the disk. The base's own file is
// never opened (its name is empty) and never written.
class StringWriter : public DL_WriterA {
public:
  explicit StringWriter(DL_Codes::version dxfVersion) : DL_WriterA("", dxfVersion) {}

  void dxfReal(int gc, double value) const override { Group(gc, Real(value)); }
  void dxfInt(int gc, int value) const override { Group(gc, std::to_string(value)); }
  void dxfHex(int gc, int value) const override {
    std::array<char, 16> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                      static_cast<unsigned>(value), 16);
    std::string hex(buffer.data(), result.ptr);
    std::transform(hex.begin(), hex.end(), hex.begin(),
                   [](char c) { return static_cast<char>(std::toupper(c)); });
    Group(gc, hex);
  }
  void dxfString(int gc, const char* value) const override { Group(gc, value); }
  void dxfString(int gc, const std::string& value) const override { Group(gc, value); }

  const std::string& Content() const { return m_content; }

private:
  // Group codes right-aligned in three columns, as AutoCAD writes them.
  void Group(int gc, const std::string& value) const {
    std::string code = std::to_string(gc);
    if (code.size() < 3) {
      m_content.append(3 - code.size(), ' ');
    }
    m_content += code;
    m_content += '\n';
    m_content += value;
    m_content += '\n';
  }

  // Ten decimals without trailing zeros: exact for the sheet's coordinates, locale-independent.
  static std::string Real(double value) {
    if (!std::isfinite(value)) {
      value = 0.0; // never reached: the entities are checked before they are written
    }
    std::string text = drawing::FormatFixed(value, 10);
    while (text.size() > 1 && text.back() == '0' && text[text.size() - 2] != '.') {
      text.pop_back();
    }
    return text;
  }

  mutable std::string m_content;
};

const char* LayerName(Layer layer) {
  switch (layer) {
  case Layer::Background:
    return "0";
  case Layer::Grid:
    return "GRID";
  case Layer::Strata:
    return "STRATA";
  case Layer::SectionLines:
    return "SECTION-LINES";
  case Layer::Ground:
    return "GROUND";
  case Layer::Boreholes:
    return "BOREHOLES";
  case Layer::RegionLabels:
    return "REGION-LABELS";
  case Layer::BoreholeLabels:
    return "BOREHOLE-LABELS";
  case Layer::Water:
    return "WATER";
  case Layer::Tests:
    return "SPT";
  case Layer::Axes:
    return "AXES";
  case Layer::Legend:
    return "LEGEND";
  case Layer::Title:
    return "TITLE";
  }
  return "0";
}

int ColourNumber(Rgb colour) {
  return (static_cast<int>(colour.r) << 16) | (static_cast<int>(colour.g) << 8) | colour.b;
}

// A plotted line weight (hundredths of a millimetre, one of AutoCAD's standard weights) for a
// stroke width in sheet units of 1/96 inch.
int LineWeight(double width) {
  static constexpr std::array<int, 13> kWeights = {5,  9,  13, 15, 18, 20, 25,
                                                   30, 35, 40, 50, 53, 60};
  const double hundredths = width * 25.4 / 96.0 * 100.0;
  int best = kWeights.front();
  for (const int w : kWeights) {
    if (std::fabs(w - hundredths) < std::fabs(best - hundredths)) {
      best = w;
    }
  }
  return best;
}

// The dashes of inferred boundaries, in sheet units as the SVG draws them.
constexpr double kDashOn = 6.0;
constexpr double kDashOff = 4.0;
constexpr const char* kDashed = "DASHED";

bool IsWhite(Rgb colour) {
  return colour == Rgb{0xff, 0xff, 0xff};
}

class DxfComposer {
public:
  DxfComposer(const drawing::Sheet& sheet) : m_sheet(sheet) { NameStrataLayers(); }

  std::string Write() {
    StringWriter writer(DL_Codes::AC1015);
    DL_Dxf dxf;
    WriteHeader(dxf, writer);
    WriteTables(dxf, writer);
    WriteBlocks(dxf, writer);
    writer.sectionEntities();
    for (const drawing::Item& item : m_sheet.items) {
      if (const auto* path = std::get_if<Path>(&item)) {
        WritePath(dxf, writer, *path);
      } else {
        WriteText(dxf, writer, std::get<Text>(item));
      }
    }
    writer.sectionEnd();
    dxf.writeObjects(writer);
    dxf.writeObjectsEnd(writer);
    writer.dxfEOF();
    return writer.Content();
  }

private:
  // Sheet units to drawing units: x the distance along the section, y the elevation times the
  // exaggeration.
  double WorldX(double x) const { return m_sheet.sLeft + (x - m_sheet.originX) / m_sheet.scale; }
  double WorldY(double y) const {
    return m_sheet.zTop * m_sheet.exaggeration - (y - m_sheet.originY) / m_sheet.scale;
  }

  // Layer names may not contain < > / \ " : ; ? * | = ` or commas, and non-ASCII names depend on
  // the code page; such characters become '_', and a number keeps two codes that then look alike
  // apart.
  void NameStrataLayers() {
    std::set<std::string> used;
    for (const drawing::Item& item : m_sheet.items) {
      const auto* path = std::get_if<Path>(&item);
      if (path == nullptr || path->layer != Layer::Strata ||
          m_strataLayers.find(path->code) != m_strataLayers.end()) {
        continue;
      }
      std::string name = "STRATA-";
      for (const wchar_t c : path->code) {
        const bool plain = c > 0x20 && c < 0x7F &&
                           std::wstring_view(L"<>/\\\":;?*|=`,").find(c) == std::wstring_view::npos;
        name += plain ? static_cast<char>(c) : '_';
      }
      name = name.substr(0, 240);
      std::string unique = name;
      for (int n = 2; used.count(unique) != 0; ++n) {
        unique = name + "~" + std::to_string(n);
      }
      used.insert(unique);
      m_strataLayers.emplace(path->code, StrataLayer{unique, path->fill.value_or(Rgb{})});
    }
  }

  std::string LayerOf(const Path& path) const {
    if (path.layer == Layer::Strata) {
      return m_strataLayers.at(path.code).name;
    }
    return LayerName(path.layer);
  }

  void WriteHeader(DL_Dxf& dxf, StringWriter& w) const {
    dxf.writeHeader(w);
    // Drawing units are metres (6), so that a CAD program inserting the section into a drawing of
    // the site scales it rightly; metric measurement (1) picks metric hatch patterns and linetypes.
    w.dxfString(9, "$INSUNITS");
    w.dxfInt(70, 6);
    w.dxfString(9, "$MEASUREMENT");
    w.dxfInt(70, 1);
    // The extent lets a viewer open the drawing zoomed to the sheet.
    w.dxfString(9, "$EXTMIN");
    w.dxfReal(10, WorldX(0.0));
    w.dxfReal(20, WorldY(m_sheet.height));
    w.dxfReal(30, 0.0);
    w.dxfString(9, "$EXTMAX");
    w.dxfReal(10, WorldX(m_sheet.width));
    w.dxfReal(20, WorldY(0.0));
    w.dxfReal(30, 0.0);
    w.sectionEnd();
  }

  void WriteTables(DL_Dxf& dxf, StringWriter& w) const {
    w.sectionTables();
    dxf.writeVPort(w);
    w.tableLinetypes(4);
    dxf.writeLinetype(w, DL_LinetypeData("BYBLOCK", "BYBLOCK", 0, 0, 0.0));
    dxf.writeLinetype(w, DL_LinetypeData("BYLAYER", "BYLAYER", 0, 0, 0.0));
    dxf.writeLinetype(w, DL_LinetypeData("CONTINUOUS", "Continuous", 0, 0, 0.0));
    // What the section infers is dashed as on the sheet: 6 units on, 4 off, in drawing units.
    std::array<double, 2> dashes = {kDashOn / m_sheet.scale, -kDashOff / m_sheet.scale};
    dxf.writeLinetype(w, DL_LinetypeData(kDashed, "Dashed __ __ __", 0, 2,
                                         (kDashOn + kDashOff) / m_sheet.scale, dashes.data()));
    w.tableEnd();

    struct Fixed {
      Layer layer;
      Rgb colour;
    };
    const std::array<Fixed, 12> fixed = {{{Layer::Grid, {0xc8, 0xc8, 0xc8}},
                                          {Layer::SectionLines, {0x2b, 0x2b, 0x2b}},
                                          {Layer::Ground, {0, 0, 0}},
                                          {Layer::Boreholes, {0, 0, 0}},
                                          {Layer::RegionLabels, {0x1a, 0x1a, 0x1a}},
                                          {Layer::BoreholeLabels, {0x1a, 0x1a, 0x1a}},
                                          {Layer::Water, {0x1f, 0x5f, 0xbf}},
                                          {Layer::Tests, {0x7a, 0x2b, 0x00}},
                                          {Layer::Axes, {0, 0, 0}},
                                          {Layer::Legend, {0, 0, 0}},
                                          {Layer::Title, {0, 0, 0}},
                                          {Layer::Background, {0, 0, 0}}}};
    w.tableLayers(static_cast<int>(fixed.size() + m_strataLayers.size()));
    for (const Fixed& layer : fixed) {
      // Black layers get colour 7, which CAD programs show black on white and white on black.
      const bool black = layer.colour == Rgb{0, 0, 0};
      dxf.writeLayer(w, DL_LayerData(LayerName(layer.layer), 0),
                     DL_Attributes("", black ? 7 : drawing::NearestAci(layer.colour),
                                   black ? -1 : ColourNumber(layer.colour), -1, "CONTINUOUS"));
    }
    for (const auto& [code, layer] : m_strataLayers) {
      dxf.writeLayer(w, DL_LayerData(layer.name, 0),
                     DL_Attributes("", drawing::NearestAci(layer.colour),
                                   ColourNumber(layer.colour), -1, "CONTINUOUS"));
    }
    w.tableEnd();
    w.tableStyle(1);
    dxf.writeStyle(w, DL_StyleData("Standard", 0, 0.0, 1.0, 0.0, 0, 2.5, "txt", ""));
    w.tableEnd();
    dxf.writeView(w);
    dxf.writeUcs(w);
    w.tableAppid(1);
    dxf.writeAppid(w, "ACAD");
    w.tableEnd();
    dxf.writeDimStyle(w, 1, 1, 1, 1, 1);
    dxf.writeBlockRecord(w);
    w.tableEnd();
    w.sectionEnd();
  }

  static void WriteBlocks(DL_Dxf& dxf, StringWriter& w) {
    w.sectionBlocks();
    for (const char* name : {"*Model_Space", "*Paper_Space", "*Paper_Space0"}) {
      dxf.writeBlock(w, DL_BlockData(name, 0, 0.0, 0.0, 0.0));
      dxf.writeEndBlock(w, name);
    }
    w.sectionEnd();
  }

  void WritePath(DL_Dxf& dxf, StringWriter& w, const Path& path) const {
    if (path.layer == Layer::Background || path.points.size() < 2) {
      return;
    }
    std::vector<std::pair<double, double>> points;
    for (const Point& p : path.points) {
      const double x = WorldX(p.x);
      const double y = WorldY(p.y);
      if (!std::isfinite(x) || !std::isfinite(y)) {
        return;
      }
      points.emplace_back(x, y);
    }
    const std::string layer = LayerOf(path);
    if (path.closed && path.fill && !IsWhite(*path.fill) && points.size() >= 3) {
      // A solid hatch bounded by line edges: the fill that CAD programs print.
      const DL_Attributes attributes(layer, drawing::NearestAci(*path.fill),
                                     ColourNumber(*path.fill), -1, "BYLAYER");
      DL_HatchData hatch(1, true, 1.0, 0.0, "SOLID");
      DL_HatchLoopData loop(static_cast<int>(points.size()));
      dxf.writeHatch1(w, hatch, attributes);
      dxf.writeHatchLoop1(w, loop);
      for (std::size_t i = 0; i < points.size(); ++i) {
        const auto& [x1, y1] = points[i];
        const auto& [x2, y2] = points[(i + 1) % points.size()];
        dxf.writeHatchEdge(w, DL_HatchEdgeData(x1, y1, x2, y2));
      }
      dxf.writeHatchLoop2(w, loop);
      dxf.writeHatch2(w, hatch, attributes);
    }
    if (!path.stroke && !path.closed) {
      return;
    }
    // Region outlines stay on their stratum's layer; strokes keep the colour they have on the
    // sheet.
    const Rgb stroke = path.stroke.value_or(path.fill.value_or(Rgb{}));
    const DL_Attributes attributes(layer, drawing::NearestAci(stroke), ColourNumber(stroke),
                                   LineWeight(path.strokeWidth), path.dashed ? kDashed : "BYLAYER");
    dxf.writePolyline(
        w, DL_PolylineData(static_cast<int>(points.size()), 0, 0, path.closed ? 1 : 0), attributes);
    for (const auto& [x, y] : points) {
      dxf.writeVertex(w, DL_VertexData(x, y, 0.0));
    }
    dxf.writePolylineEnd(w);
  }

  void WriteText(DL_Dxf& dxf, StringWriter& w, const Text& text) const {
    const double x = WorldX(text.at.x);
    const double y = WorldY(text.at.y);
    // The sheet's font size is the em; a DXF text height is that of the capitals, about 0.72 em.
    const double height = text.size * 0.72 / m_sheet.scale;
    const std::string content = drawing::DxfText(text.text);
    if (!std::isfinite(x) || !std::isfinite(y) || !std::isfinite(height) || !(height > 0.0) ||
        !std::isfinite(text.rotation) || content.empty()) {
      return;
    }
    const int justification =
        text.anchor == Anchor::Middle ? 1 : (text.anchor == Anchor::End ? 2 : 0);
    const double radians = text.rotation * M_PI / 180.0;
    dxf.writeText(w,
                  DL_TextData(x, y, 0.0, x, y, 0.0, height, 1.0, 0, justification, 0, content,
                              "Standard", radians),
                  DL_Attributes(LayerName(text.layer), drawing::NearestAci(text.colour),
                                ColourNumber(text.colour), -1, "BYLAYER"));
  }

  struct StrataLayer {
    std::string name;
    Rgb colour;
  };

  const drawing::Sheet& m_sheet;
  std::map<std::wstring, StrataLayer> m_strataLayers;
};

} // namespace

std::string RenderDxf(const Section& section, const Legend& legend, const DrawOptions& options) {
  const drawing::Sheet sheet = drawing::ComposeSheet(section, legend, options);
  return DxfComposer(sheet).Write();
}

void WriteDxf(const Section& section, const Legend& legend, const DrawOptions& options,
              const std::filesystem::path& path) {
  const std::string content = RenderDxf(section, legend, options);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (!out) {
    throw DrawingError("cannot write '" + path.string() + "': the file cannot be created");
  }
  out.write(content.data(), static_cast<std::streamsize>(content.size()));
  out.close();
  if (!out) {
    throw DrawingError("cannot write '" + path.string() + "': writing failed");
  }
}

} // namespace xklink
