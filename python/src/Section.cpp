// xklink.section: the holes of a site along a section, each neighbouring pair correlated, drawn
// and written in every format of the tool.
//
// The holes are chosen, checked and correlated as `xklink section` and `xklink lines` do it: the
// holes named (default: every hole of the site, ordered along the section's principal direction),
// refused when two neighbours share a plan position or a pair is too large; the pairs correlated
// on every core with the GIL released. Drawing and writing are the tool's own.
#include "Section.h"

#include "Binding.h"
#include "Colour.h"
#include "Correlation.h"
#include "Errors.h"
#include "GisOutput.h"
#include "LinesOutput.h"
#include "OutputFile.h"
#include "PairCorrelation.h"
#include "SectionLayout.h"
#include "Validation.h"
#include "WorkLimit.h"

#include <algorithm>
#include <optional>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

namespace py = pybind11;

namespace xklink::python {

namespace {

struct SectionView {
  std::vector<SectionHole> holes; // in order along the section, with their chainages
  std::vector<Correlation> pairs; // holes[i] with holes[i + 1]
  Legend legend;                  // every code of the section with its colour and meaning
  DrawOptions draw;
  InputOptions input; // how the site was read: the grid of its coordinates, for GIS
  std::optional<drawing::Alignment> alignment; // the line the chainages are measured along

  // The drawing's view of the section; the trees are copied, the drawing only reads them.
  Section ToSection() const {
    Section section;
    section.title = draw.title;
    section.holes = holes;
    section.alignment = alignment;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      SectionPair pair;
      pair.from = i;
      pair.to = i + 1;
      pair.root = pairs[i].tree;
      pair.lines = pairs[i].lines;
      section.pairs.push_back(std::move(pair));
    }
    return section;
  }

  std::vector<PairLines> Lines() const {
    std::vector<PairLines> out;
    for (const Correlation& pair : pairs) {
      out.push_back({pair.holeA, pair.holeB, pair.lines});
    }
    return out;
  }

  std::string Svg() const {
    py::gil_scoped_release release;
    return RenderSvg(ToSection(), legend, draw);
  }

  // The grid of the coordinates: `crs` ("EPSG:27700"), else the one the file names.
  int Grid(const std::optional<std::string>& crs) const {
    return ResolveGrid(input, crs.value_or(""));
  }

  // The text of the file `path` names by its extension, in the tool's format for it.
  std::string Render(const std::filesystem::path& path,
                     const std::optional<std::string>& crs) const {
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".svg") {
      return Svg();
    }
    py::gil_scoped_release release;
    if (extension == ".dxf") {
      return RenderDxf(ToSection(), legend, draw);
    }
    if (extension == ".csv") {
      return LinesToCsv(Lines());
    }
    if (extension == ".geojson") {
      std::vector<PairLines> lines = Lines();
      LinesToWgs84(lines, Grid(crs));
      return LinesToGeoJson(lines);
    }
    if (extension == ".gpkg") {
      SectionHoles section;
      for (const SectionHole& hole : holes) {
        section.names.push_back(hole.name);
        section.holes.push_back(hole.zk);
      }
      return LinesToGeoPackage(section, Lines(), Grid(crs));
    }
    throw UsageError(path.string() +
                     ": the file must be named .svg or .dxf (the drawing), .csv, .geojson or "
                     ".gpkg (the section lines)");
  }
};

// The holes of the section in order: those named, or every hole along the principal direction.
std::vector<HoleRecord> ChooseHoles(const Site& site, const std::optional<HoleNames>& holes) {
  if (holes) {
    return SelectNamed(site.set, SplitNames(*holes, "holes")).holes;
  }
  std::vector<HoleRecord> ordered;
  for (const std::size_t i : OrderAlongPrincipalDirection(ToZKs(site.set.holes))) {
    ordered.push_back(site.set.holes[i]);
  }
  return ordered;
}

SectionView MakeSection(const Site& site, const std::optional<HoleNames>& holeNames,
                        const std::string& title, double exaggeration,
                        const std::optional<std::filesystem::path>& legend, unsigned jobs) {
  SectionView view;
  // The legend is read first: a bad legend line should not cost a long correlation.
  const Legend given = legend ? ReadLegendCsv(*legend) : Legend{};
  view.draw.title = title;
  view.input = site.input;
  view.draw.depthBelowGround = site.depthBelowGround;
  view.draw.exaggeration = exaggeration;

  const std::vector<HoleRecord> chosen = ChooseHoles(site, holeNames);
  if (chosen.size() < 2) {
    throw UsageError(site.set.source + ": a section needs at least two holes, the site has " +
                     std::to_string(chosen.size()));
  }
  Report(CheckSectionSpacing(chosen));
  std::vector<std::string> names;
  for (const HoleRecord& hole : chosen) {
    names.push_back(hole.name);
  }
  const std::vector<DataType::_sZK> zks = ToZKs(chosen);
  RequireWorkWithinLimit(chosen);

  std::vector<PairResult> results;
  {
    py::gil_scoped_release release;
    results = CorrelateConsecutivePairs(zks, jobs, true);
  }
  // As the tool lays out a section without a given line: the named holes on a fence through
  // them in order, every hole on the best-fit line.
  view.alignment =
      holeNames ? drawing::FenceLine(PlanPositions(zks)) : drawing::BestFitLine(PlanPositions(zks));
  view.holes = PlaceOnLine(*view.alignment, names, zks);
  for (SectionHole& hole : view.holes) {
    if (const auto found = site.set.inSitu.find(hole.name); found != site.set.inSitu.end()) {
      hole.inSitu = found->second;
    }
  }
  for (std::size_t i = 0; i < results.size(); ++i) {
    view.pairs.push_back(
        {names[i], names[i + 1], std::move(results[i].root), std::move(results[i].lines)});
  }
  view.legend = drawing::SectionLegend(given, view.ToSection(), site.set.codeDescriptions);
  return view;
}

} // namespace

void BindSection(py::module_& module) {
  py::class_<SectionHole> hole(module, "SectionHole", "A hole of a section and its chainage.");
  InPackage(hole)
      .def_readonly("name", &SectionHole::name)
      .def_readonly("chainage", &SectionHole::chainage,
                    "Distance along the section from the first hole")
      .def_property_readonly("x", [](const SectionHole& h) { return h.zk.dX; })
      .def_property_readonly("y", [](const SectionHole& h) { return h.zk.dY; })
      .def("__repr__", [](const SectionHole& h) {
        return "<xklink.SectionHole '" + h.name + "' at " +
               py::repr(py::float_(h.chainage)).cast<std::string>() + ">";
      });

  py::class_<SectionView> section(module, "Section",
                                  "A cross-section: its holes in order and the correlation of "
                                  "each neighbouring pair, drawn as the tool draws it.");
  InPackage(section)
      .def_readonly("holes", &SectionView::holes, "The holes in order along the section")
      .def_readonly("pairs", &SectionView::pairs,
                    "The correlation of each neighbouring pair, holes[i] with holes[i + 1]")
      .def_property_readonly("title", [](const SectionView& s) { return s.draw.title; })
      .def(
          "write",
          [](const SectionView& s, const std::filesystem::path& path,
             const std::optional<std::string>& crs) {
            const std::string text = s.Render(path, crs);
            py::gil_scoped_release release;
            WriteFileAtomically(path, text);
          },
          py::arg("path"), py::kw_only(), py::arg("crs") = py::none(),
          "Writes the section as the tool does, in the format the name says: .svg or .dxf (the "
          "drawing), .csv, .geojson (on WGS 84) or .gpkg (GeoPackage on the file's grid) for the "
          "section lines. crs: the grid of the coordinates as 'EPSG:27700', for .geojson and "
          ".gpkg, when the file does not name it (AGS LOCA_GREF). The file is complete or not "
          "there.")
      .def("_repr_svg_", &SectionView::Svg, "The drawing as SVG, shown inline by Jupyter")
      .def("__repr__", [](const SectionView& s) {
        return "<xklink.Section of " + std::to_string(s.holes.size()) + " holes>";
      });

  module.def("section", &MakeSection, py::arg("site"), py::arg("holes") = py::none(), py::kw_only(),
             py::arg("title") = "", py::arg("exaggeration") = 0.0, py::arg("legend") = py::none(),
             py::arg("jobs") = 0u,
             R"(The cross-section through holes of a site, each neighbouring pair correlated.

holes: the holes in order, as a list or as 'A,B,C' (default: every hole, ordered along the
section's principal direction); title: of the sheet; exaggeration: vertical, 0 chooses a legible
one; legend: a CSV of code,colour,label lines; jobs: pairs correlated at once (0: every core).

**Example**:

    site = xklink.read("examples/nle-battersea/21-7-10-NLE.ags")
    section = xklink.section(site, title="Battersea")
    section.write("battersea.svg"))");
}

} // namespace xklink::python
