// Drawing a multi-hole geological cross-section as SVG or DXF.
//
// The caller correlates each pair of neighbouring holes (LinkDc and LinkDcLine) and hands the
// results over in a Section; the drawing maps every region corner and line end into the plane of
// the section by its plan position and lays out a report figure: strata filled by code, section
// lines stroked, a column for each borehole, elevation and distance axes, a legend and a title.
//
// **Example**:
//
//   xklink::Section section;
//   section.title = "Section A-A'";
//   section.holes = {{"BH1", 0.0, bh1}, {"BH2", 42.5, bh2}};
//   xklink::SectionPair pair;
//   pair.from = 0;
//   pair.to = 1;
//   LinkDc(bh1, bh2, pair.root);
//   LinkDcLine(bh1, bh2, pair.lines);
//   section.pairs.push_back(pair);
//   const std::string svg = xklink::RenderSvg(section, xklink::Legend{}, xklink::DrawOptions{});
#pragma once

#include "Alignment.h"
#include "Diagnostics.h"
#include "InSitu.h"

#include <XKLinkDc/XKLinkDc.h>
#include <array>
#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace xklink {

// One borehole of the section. `chainage` is its distance along the section line, `offset` its
// distance from the line, positive to the right looking along the chainage (both in the units of
// the plan coordinates); `name` is shown on the sheet (UTF-8). `inSitu` is what its log records
// besides the strata (water, SPT, descriptions), drawn beside its column; empty when unknown.
struct SectionHole {
  std::string name;
  double chainage = 0.0;
  DataType::_sZK zk;
  double offset = 0.0;
  HoleInSitu inSitu = {};
};

// The correlation of holes[from] (borehole 1 of the calls) with holes[to] (borehole 2): the
// region tree filled by LinkDc and the lines returned by LinkDcLine. A pair `beneath` correlates
// two holes across the shallower holes between them (see Beneath.h): it is drawn only below the
// bases of those holes, with dashed boundaries, as what the section infers there.
struct SectionPair {
  std::size_t from = 0;
  std::size_t to = 0;
  bool beneath = false;
  DataType::_sLinkRegion root;
  std::vector<DataType::_sLinkLine> lines;
};

struct Section {
  std::string title;
  std::vector<SectionHole> holes;
  std::vector<SectionPair> pairs;
  // The line along which the chainages are measured; without one, the holes' chainages stand as
  // given and the sheet says nothing of the line.
  std::optional<drawing::Alignment> alignment;
};

// How one stratum code is shown: `colour` is "#rrggbb" or an SVG colour name, `label` the
// description written beside the code in the legend (UTF-8, may be empty).
struct LegendEntry {
  std::string colour;
  std::string label;
};
using Legend = std::map<std::wstring, LegendEntry>;

struct DrawOptions {
  // Vertical exaggeration of the sheet. 0 (the default) chooses a round value at which the section
  // is about half as high as it is long, never less than 1. Values are kept within 0.01 to 1000;
  // the value used is always written on the sheet.
  double exaggeration = 0.0;
  // Title of the sheet; when empty, the section's own title, and failing that "Geological
  // section".
  std::string title;
  // Unit of distances and elevations, written on the axes.
  std::string unit = "m";
  // True when no hole has a known ground level: every collar is at 0 and the strata at minus their
  // depths, so the vertical axis is the depth below ground and no ground level is written.
  bool depthBelowGround = false;
  // Width of the whole sheet in SVG user units (pixels at 96 dpi); the height follows from the
  // data and the exaggeration.
  double sheetWidth = 1600.0;
};

// Printing on sheets of paper at a scale.
enum class Paper { A4, A3, A1 }; // landscape

struct PrintOptions {
  Paper paper = Paper::A3;
  double scale = 0.0;  // horizontal scale 1:scale; 0 chooses a standard one (see SheetPrint.h)
  double vscale = 0.0; // vertical scale 1:vscale; 0: from DrawOptions::exaggeration, else chosen
  std::string project; // the title block's project (the file's name, or the title)
  std::string date;    // the title block's date, as written
};

// The section split onto sheets along its chainage: sheet k shows [chainages[k].first,
// chainages[k].second], and each sheet starts where the one before ends.
struct Printout {
  Paper paper = Paper::A3;
  double widthMm = 0.0;
  double heightMm = 0.0;
  double scale = 0.0;
  double vscale = 0.0;
  bool scaleChosen = false;
  bool vscaleChosen = false;
  std::vector<std::pair<double, double>> chainages;
  std::vector<std::string> svgs; // one standalone SVG per sheet, sized in millimetres
  // Every text of each sheet with its box (left, top, right, bottom; sheet units, y down).
  struct Label {
    std::string text;
    std::array<double, 4> box{};
  };
  std::vector<std::vector<Label>> labels;
};

// The section laid out on sheets (see SheetPrint.h). Throws DrawingError when the scales asked
// for cannot be kept: the section would not fit the height of the sheet, or would need more
// sheets than any printer should be given.
Printout RenderPrintout(const Section& section, const Legend& legend, const DrawOptions& options,
                        const PrintOptions& print);

// "A4", "A3" or "A1".
std::string PaperName(Paper paper);

// SVG documents rendered by librsvg and cairo: a PDF of one page per document, each page the
// document's own size; a PNG of one document at `dpi` pixels per inch. Throws DrawingError when
// a document cannot be read or rendered.
std::string SvgToPdf(const std::vector<std::string>& svgs);
std::string SvgToPng(const std::string& svg, double dpi);

// A legend file that cannot be read or holds a bad line. what() is "<file>:<line>: <reason>"
// ("<file>: <reason>" when the file cannot be opened).
class LegendError : public ParseError {
public:
  LegendError(const std::filesystem::path& file, std::size_t line, const std::string& reason)
      : ParseError({file.string(), line, {}}, reason) {}
  std::filesystem::path file() const { return Where().file; }
  std::size_t line() const { return Where().line; }
};

// A drawing that cannot be written to its file.
class DrawingError : public ParseError {
public:
  explicit DrawingError(const std::string& message) : ParseError({}, message) {}
};

// The sheet as a standalone SVG 1.1 document (UTF-8).
std::string RenderSvg(const Section& section, const Legend& legend, const DrawOptions& options);

// The sheet as an AutoCAD R2000 DXF drawing (ASCII). Drawing units: x is the distance along the
// section, y the elevation times the vertical exaggeration, so that the DXF looks like the SVG.
// Layers: STRATA-<code> (a solid hatch and a closed outline per region), SECTION-LINES (one
// polyline per section line), GROUND, BOREHOLES, BOREHOLE-LABELS, REGION-LABELS, WATER (strikes
// and standing levels), SPT (test results), GRID, AXES, LEGEND and TITLE.
std::string RenderDxf(const Section& section, const Legend& legend, const DrawOptions& options);

// The laid-out section as JSON, for users who plot it their own way: the line of the section; each
// hole with its chainage, offset, position, ground level, strata, water and SPT; every filled
// region as a
// polygon of [chainage, elevation] points; every section line; and every text of the sheet with its
// box on the sheet ([left, top, right, bottom], sheet units, y downwards).
std::string RenderSectionJson(const Section& section, const Legend& legend,
                              const DrawOptions& options);

// The same with the sheets of a printout: their paper, scales and chainages.
std::string RenderSectionJson(const Section& section, const Legend& legend,
                              const DrawOptions& options, const Printout& print);

// RenderDxf written to `path`; throws DrawingError naming the file when it cannot be written.
void WriteDxf(const Section& section, const Legend& legend, const DrawOptions& options,
              const std::filesystem::path& path);

// Reads a legend file: one "code,colour,label" line per code (UTF-8, an optional header line
// "code,colour,label", fields may be quoted as in RFC 4180, the label may be left out). Colours are
// "#rrggbb" or SVG colour names and come back as lower-case "#rrggbb". Throws LegendError.
Legend ReadLegendCsv(const std::filesystem::path& path);

// The colour that a code gets when the legend does not name one, "#rrggbb": the same code always
// gets the same colour, in every section and on every run. Common soil and rock words (MADE
// GROUND, CLAY, SAND, GRAVEL, CHALK, ...) get their conventional colours.
std::string DefaultColour(const std::wstring& code);

} // namespace xklink
