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
#include "SectionBuild.h"
#include "SectionLayout.h"
#include "Validation.h"
#include "WorkLimit.h"

#include <algorithm>
#include <optional>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>
#include <utility>
#include <variant>

namespace py = pybind11;

namespace xklink::python {

namespace {

struct SectionView {
  Section section;                // the holes in order with their chainages, every pair correlated
  std::vector<Correlation> pairs; // holes[i] with holes[i + 1]
  Legend legend;                  // every code of the section with its colour and meaning
  DrawOptions draw;
  InputOptions input; // how the site was read: the grid of its coordinates, for GIS

  std::vector<PairLines> Lines() const {
    std::vector<PairLines> out;
    for (const Correlation& pair : pairs) {
      out.push_back({pair.holeA, pair.holeB, pair.lines});
    }
    return out;
  }

  std::string Svg() const {
    py::gil_scoped_release release;
    return RenderSvg(section, legend, draw);
  }

  // The grid of the coordinates: `crs` ("EPSG:27700"), else the one the file names.
  int Grid(const std::optional<std::string>& crs) const {
    return ResolveGrid(input, crs.value_or(""), kCrs);
  }

  // The text of the file `path` names by its extension, in the tool's format for it.
  std::string Render(const std::filesystem::path& path,
                     const std::optional<std::string>& crs) const {
    const std::string extension = LowerExtension(path.string());
    py::gil_scoped_release release;
    if (extension == ".csv") {
      return LinesToCsv(Lines());
    }
    if (extension == ".geojson") {
      std::vector<PairLines> lines = Lines();
      LinesToWgs84(lines, Grid(crs), kCrs);
      return LinesToGeoJson(lines);
    }
    if (extension == ".gpkg") {
      SectionHoles holes;
      for (const SectionHole& hole : section.holes) {
        holes.names.push_back(hole.name);
        holes.holes.push_back(hole.zk);
      }
      return LinesToGeoPackage(holes, Lines(), Grid(crs), kCrs);
    }
    if (extension != ".svg" && extension != ".dxf" && extension != ".pdf" && extension != ".png" &&
        extension != ".html" && extension != ".json") {
      throw UsageError(path.string() +
                       ": the file must be named .svg, .pdf, .png, .dxf, .html or .json (the "
                       "drawing), .csv, .geojson or .gpkg (the section lines)");
    }
    return RenderDrawing(section, legend, draw, extension, kPngDpi);
  }

  static constexpr double kPngDpi = 150.0; // as the tool's default
  inline static const GridOption kCrs{"crs", "crs=\"EPSG:27700\""};
};

// "E1,N1,E2,N2" or a sequence of (easting, northing) pairs.
using LineVertices = std::variant<std::string, std::vector<std::pair<double, double>>>;

drawing::Alignment GivenLine(const LineVertices& given) {
  std::vector<drawing::PlanPoint> vertices;
  try {
    if (const auto* text = std::get_if<std::string>(&given)) {
      vertices = drawing::ParseVertexList(*text);
    } else {
      for (const auto& [x, y] : std::get<std::vector<std::pair<double, double>>>(given)) {
        vertices.push_back({x, y});
      }
    }
    return drawing::Alignment(vertices, drawing::AlignmentKind::Given);
  } catch (const std::invalid_argument& e) {
    throw UsageError(std::string("line: ") + e.what());
  }
}

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
                        const std::optional<LineVertices>& line, std::optional<double> buffer,
                        const std::string& title, double exaggeration,
                        const std::optional<std::filesystem::path>& legend, unsigned jobs) {
  SectionView view;
  // The legend and the line are read first: a bad line in either should not cost a correlation.
  const Legend given = legend ? ReadLegendCsv(*legend) : Legend{};
  const std::optional<drawing::Alignment> alignment =
      line ? std::optional<drawing::Alignment>(GivenLine(*line)) : std::nullopt;
  if (buffer && (!alignment || *buffer < 0.0)) {
    throw UsageError(alignment ? "buffer: must not be negative"
                               : "buffer: the holes near a line need the line: give line=");
  }
  view.draw.title = title;
  view.input = site.input;
  view.draw.depthBelowGround = site.depthBelowGround;
  view.draw.exaggeration = exaggeration;

  const std::vector<HoleRecord> chosen = ChooseHoles(site, holeNames);
  SectionHoles holes;
  holes.depthBelowGround = site.depthBelowGround;
  holes.codeDescriptions = site.set.codeDescriptions;
  holes.inSitu = site.set.inSitu;
  for (const HoleRecord& hole : chosen) {
    holes.names.push_back(hole.name);
  }
  holes.holes = ToZKs(chosen);
  if (alignment && buffer && !holeNames) {
    holes = HolesNearLine(std::move(holes), *alignment, *buffer, site.set.source);
  }
  if (holes.holes.size() < 2) {
    throw UsageError(site.set.source + ": a section needs at least two holes, the site has " +
                     std::to_string(holes.holes.size()));
  }
  Report(CheckSectionSpacing(chosen));
  RequireWorkWithinLimit(chosen);
  {
    py::gil_scoped_release release;
    view.section = CorrelateSection(holes, alignment, holeNames.has_value(), jobs);
  }
  view.section.title = title;
  for (const SectionPair& pair : view.section.pairs) {
    if (!pair.beneath) {
      view.pairs.push_back({view.section.holes[pair.from].name, view.section.holes[pair.to].name,
                            pair.root, pair.lines});
    }
  }
  view.legend = drawing::SectionLegend(given, view.section, site.set.codeDescriptions);
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
      .def_property_readonly(
          "holes", [](const SectionView& s) { return s.section.holes; },
          "The holes in order along the section")
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
          "Writes the section as the tool does, in the format the name says: .svg, .pdf, .png, "
          ".dxf, .html (to explore in a browser) or .json (the laid-out section) for the drawing; "
          ".csv, .geojson (on WGS 84) or .gpkg (GeoPackage on the file's grid) for the section "
          "lines. crs: the grid of the coordinates as 'EPSG:27700', for .geojson and "
          ".gpkg, when the file does not name it (AGS LOCA_GREF). The file is complete or not "
          "there.")
      .def(
          "layout",
          [](const SectionView& s) {
            std::string text;
            {
              py::gil_scoped_release release;
              text = RenderSectionJson(s.section, s.legend, s.draw);
            }
            return py::module_::import("json").attr("loads")(text);
          },
          "The laid-out section as the tool writes it to section.json: holes with chainage, "
          "offset, ground level, strata, water and tests; every region as a polygon in chainage "
          "and elevation; the lines; every label with its box")
      .def("_repr_svg_", &SectionView::Svg, "The drawing as SVG, shown inline by Jupyter")
      .def("__repr__", [](const SectionView& s) {
        return "<xklink.Section of " + std::to_string(s.section.holes.size()) + " holes>";
      });

  module.def("section", &MakeSection, py::arg("site"), py::arg("holes") = py::none(), py::kw_only(),
             py::arg("line") = py::none(), py::arg("buffer") = py::none(), py::arg("title") = "",
             py::arg("exaggeration") = 0.0, py::arg("legend") = py::none(), py::arg("jobs") = 0u,
             R"(The cross-section through holes of a site, each neighbouring pair correlated.

holes: the holes in order, as a list or as 'A,B,C': without a line, the section runs through them
in that order (default: every hole, on their best-fit line); line: the section line as
'E1,N1,E2,N2[,...]' or a list of (easting, northing) pairs, chainage measured along it; buffer:
with a line, only the holes within this many metres of it; title: of the sheet; exaggeration: vertical, 0 chooses a legible
one; legend: a CSV of code,colour,label lines; jobs: pairs correlated at once (0: every core).

**Example**:

    site = xklink.read("examples/nle-battersea/21-7-10-NLE.ags")
    section = xklink.section(site, title="Battersea")
    section.write("battersea.svg"))");
}

} // namespace xklink::python
