// xklink.correlate and the records of its result: Point, Region, Line and Correlation.
//
// The records are the library's own, shown to Python with the names the tool writes in its JSON
// (p1, p2, type, up, down; type, named, name, begin1 .. end2, top, bottom, children), so that a
// script and a JSON file of the tool read alike. Nothing is copied into Python objects: a record
// is read in place from the result that holds it, which stays alive while any of its parts is
// referenced; a region tree thousands of levels deep costs nothing until it is walked.
#include "Binding.h"
#include "Correlation.h"
#include "Text.h"
#include "Validation.h"
#include "WorkLimit.h"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace xklink::python {

namespace {

using DataType::_sLinkLine;
using DataType::_sLinkRegion;

std::string Repr(double value) {
  return py::repr(py::float_(value)).cast<std::string>();
}

std::string Repr(const CXk3DPoint& p) {
  return "Point(x=" + Repr(p.x) + ", y=" + Repr(p.y) + ", z=" + Repr(p.z) + ")";
}

// The checks the tool makes of two neighbouring holes of a section: they must not stand at the
// same plan position, and their correlation must stay within the work the tool takes on.
void RequireCorrelatable(const Hole& a, const Hole& b) {
  Report(CheckSectionSpacing({a.record, b.record}));
  if (EqualCodePairs(a.record, b.record) > kMaxEqualCodePairs ||
      EnvelopeWork(a.record) > kMaxEnvelopeWork || EnvelopeWork(b.record) > kMaxEnvelopeWork) {
    RequireWorkWithinLimit({a.record, b.record}); // says which
  }
}

Correlation Correlate(const Hole& a, const Hole& b) {
  RequireCorrelatable(a, b);
  Correlation result{a.record.name, b.record.name, {}, {}};
  // Each thread keeps its own context, warm from its last pair, so that a thread pool correlates
  // the pairs of a site at once on every core: nothing is shared while the GIL is released.
  thread_local XKLinkDc::CorrelationContext context;
  py::gil_scoped_release release;
  context.LinkDcTreeAndLines(a.zk, b.zk, result.tree, result.lines);
  return result;
}

} // namespace

void BindCorrelate(py::module_& module) {
  py::class_<CXk3DPoint> point(module, "Point", "A point: plan position x, y and elevation z.");
  InPackage(point)
      .def_readonly("x", &CXk3DPoint::x)
      .def_readonly("y", &CXk3DPoint::y)
      .def_readonly("z", &CXk3DPoint::z)
      .def("__repr__", [](const CXk3DPoint& p) { return Repr(p); });

  py::class_<_sLinkLine> line(module, "Line",
                              "A section line from hole_a's side (p1) to hole_b's side (p2).");
  InPackage(line)
      .def_readonly("p1", &_sLinkLine::pt1)
      .def_readonly("p2", &_sLinkLine::pt2)
      .def_readonly("type", &_sLinkLine::nType)
      .def_property_readonly(
          "up", [](const _sLinkLine& l) { return ToUtf8(l.strUpName); },
          "The stratum above the line")
      .def_property_readonly(
          "down", [](const _sLinkLine& l) { return ToUtf8(l.strDownName); },
          "The stratum below the line")
      .def("__repr__", [](const _sLinkLine& l) {
        return "Line(p1=" + Repr(l.pt1) + ", p2=" + Repr(l.pt2) +
               ", type=" + std::to_string(l.nType) + ", up='" + ToUtf8(l.strUpName) + "', down='" +
               ToUtf8(l.strDownName) + "')";
      });

  py::class_<_sLinkRegion> region(
      module, "Region",
      "A region of the correlation tree. type: 0 open, 1 lens, 2 pinch-out wedge; begin1:end1 and "
      "begin2:end2 are the strata of each hole it holds; top and bottom its corners on hole_a, "
      "then hole_b.");
  InPackage(region)
      .def_readonly("type", &_sLinkRegion::nType)
      .def_readonly("named", &_sLinkRegion::bNamed)
      .def_property_readonly("name", [](const _sLinkRegion& r) { return ToUtf8(r.strName); })
      .def_readonly("begin1", &_sLinkRegion::nBegin1)
      .def_readonly("end1", &_sLinkRegion::nEnd1)
      .def_readonly("begin2", &_sLinkRegion::nBegin2)
      .def_readonly("end2", &_sLinkRegion::nEnd2)
      .def_property_readonly("top",
                             [](const _sLinkRegion& r) {
                               return std::vector{r.ptTop[0], r.ptTop[1]};
                             })
      .def_property_readonly("bottom",
                             [](const _sLinkRegion& r) {
                               return std::vector{r.ptBot[0], r.ptBot[1]};
                             })
      .def_readonly("children", &_sLinkRegion::vecChild)
      .def("__repr__", [](const _sLinkRegion& r) {
        return "<xklink.Region type=" + std::to_string(r.nType) + " name='" + ToUtf8(r.strName) +
               "' with " + std::to_string(r.vecChild.size()) + " children>";
      });

  py::class_<Correlation> correlation(module, "Correlation",
                                      "The correlation of two holes: region tree and lines.");
  InPackage(correlation)
      .def_readonly("hole_a", &Correlation::holeA)
      .def_readonly("hole_b", &Correlation::holeB)
      .def_readonly("tree", &Correlation::tree)
      .def_readonly("lines", &Correlation::lines, "The section lines, highest first")
      .def("__repr__", [](const Correlation& c) {
        return "<xklink.Correlation '" + c.holeA + "' - '" + c.holeB + "' with " +
               std::to_string(c.lines.size()) + " lines>";
      });

  module.def("correlate", &Correlate, py::arg("hole_a"), py::arg("hole_b"),
             R"(Correlates two holes: the region tree and the section lines between them.

Raises xklink.Error when the two stand at the same plan position or are too large to correlate.
The GIL is released while the library works, so a thread pool correlates many pairs at once.

**Example**:

    site = xklink.read("examples/nle-battersea/21-7-10-NLE.ags")
    pair = xklink.correlate(site.holes[0], site.holes[1])
    [(line.up, line.down, line.p1.z) for line in pair.lines])");
}

} // namespace xklink::python
