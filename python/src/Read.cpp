// xklink.read: a borehole file into a Site of Holes, through the tool's readers and checks.
//
// The options are the tool's input options under Python names (input_format, collars, depths,
// code_column, merge_repeats, holes), and the file is checked as the tool checks it before a
// section: every problem of the holes asked for (all of them by default) and of the file as a
// whole. Warnings become Python warnings; errors raise xklink.Error and no Site comes back, so a
// notebook never works on holes the tool would refuse.
#include "Binding.h"
#include "HolePolicy.h"
#include "HoleSelection.h"
#include "ReadBoreholes.h"
#include "Text.h"

#include <algorithm>
#include <optional>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>
#include <variant>

namespace py = pybind11;

namespace xklink::python {

namespace {

[[noreturn]] void BadOption(const std::string& option, const std::string& message) {
  throw InputFailure({{}, 0, option}, option + ": " + message);
}

ReadOptions ToReadOptions(Format format, const std::optional<std::filesystem::path>& collars,
                          const std::optional<std::string>& depths,
                          const std::optional<std::string>& codeColumn, bool mergeRepeats) {
  ReadOptions options;
  if (collars) {
    if (format != Format::Csv) {
      BadOption("collars",
                "a collar table goes with a CSV interval file, not with " + FormatName(format));
    }
    options.collarFile = *collars;
  }
  if (depths) {
    if (*depths != "depth" && *depths != "elevation") {
      BadOption("depths", "'depth' or 'elevation', not '" + *depths + "'");
    }
    options.depthMode = *depths == "depth" ? DepthMode::Depths : DepthMode::Elevations;
  }
  if (codeColumn) {
    options.codeColumn = *codeColumn;
  }
  options.mergeRepeats = mergeRepeats;
  return options;
}

std::shared_ptr<Site>
Read(const std::filesystem::path& path, const std::optional<std::string>& inputFormat,
     const std::optional<std::filesystem::path>& collars, const std::optional<std::string>& depths,
     const std::optional<std::string>& codeColumn, bool mergeRepeats,
     const std::optional<HoleNames>& holes, const std::optional<HoleNames>& exclude, bool strict) {
  Format format = Format::Json;
  try {
    format = inputFormat ? FormatFromName(*inputFormat) : DetectFormat(path);
  } catch (const std::invalid_argument& e) {
    BadOption("input_format", e.what());
  }
  ReadOptions options = ToReadOptions(format, collars, depths, codeColumn, mergeRepeats);
  options.inSitu = true; // water and SPT, drawn beside the logs of its sections as by the tool
  HolePolicy policy;
  policy.named = holes ? SplitNames(*holes, "holes") : std::vector<std::string>{};
  policy.excluded = exclude ? SplitNames(*exclude, "exclude") : std::vector<std::string>{};
  policy.strict = strict;

  BoreholeSet all;
  ChosenHoles chosen;
  std::vector<Diagnostic> warnings;
  std::vector<Diagnostic> errors;
  {
    py::gil_scoped_release release; // a large file takes a while; let other threads run
    all = ReadBoreholes(path, format, options);
    try {
      chosen = ChooseHoles(
          all, policy, [&](const Diagnostic& d) { warnings.push_back(d); },
          [&](const Diagnostic& d) { errors.push_back(d); });
    } catch (const SelectionError& e) {
      throw InputFailure({all.source, 0, "holes"}, std::string("holes: ") + e.what());
    }
  }
  warnings.insert(warnings.end(), errors.begin(), errors.end());
  Report(warnings);

  auto site = std::make_shared<Site>();
  site->input.file = path.string();
  site->input.format = FormatName(format);
  site->input.collars = collars ? collars->string() : "";
  site->depthBelowGround = chosen.depthBelowGround;
  site->set.source = all.source;
  site->set.fields = all.fields;
  site->set.skipped = all.skipped;
  site->set.codeDescriptions = all.codeDescriptions;
  site->set.inSitu = std::move(all.inSitu);
  site->set.holes = std::move(chosen.holes);
  for (const HoleRecord& record : site->set.holes) {
    site->holes.push_back(std::make_shared<Hole>(Hole{record, record.ToZK()}));
  }
  return site;
}

} // namespace

std::vector<std::string> SplitNames(const HoleNames& names, const std::string& option) {
  try {
    return std::holds_alternative<std::string>(names) ? SplitHoleList(std::get<std::string>(names))
                                                      : std::get<std::vector<std::string>>(names);
  } catch (const SelectionError& e) {
    BadOption(option, e.what());
  }
}

BoreholeSet SelectNamed(const BoreholeSet& set, const std::vector<std::string>& names) {
  try {
    return SelectHoles(set, names);
  } catch (const SelectionError& e) {
    throw InputFailure({set.source, 0, "holes"}, std::string("holes: ") + e.what());
  }
}

void BindRead(py::module_& module) {
  py::class_<StratumRecord> stratum(module, "Stratum", "One stratum of a hole.");
  InPackage(stratum)
      .def_property_readonly("code", [](const StratumRecord& s) { return ToUtf8(s.dc.strName); })
      .def_property_readonly(
          "top", [](const StratumRecord& s) { return s.dc.dTopGC; }, "Elevation of the top")
      .def_property_readonly(
          "bottom", [](const StratumRecord& s) { return s.dc.dBotGC; }, "Elevation of the bottom")
      .def_property_readonly(
          "line", [](const StratumRecord& s) { return LineOrNone(s.where.line); },
          "The line of the file the stratum was read from")
      .def("__repr__", [](const StratumRecord& s) {
        return "Stratum(code='" + ToUtf8(s.dc.strName) +
               "', top=" + py::repr(py::float_(s.dc.dTopGC)).cast<std::string>() +
               ", bottom=" + py::repr(py::float_(s.dc.dBotGC)).cast<std::string>() + ")";
      });

  py::class_<Hole, HolePtr> hole(module, "Hole",
                                 "One borehole: its plan position, ground level and strata.");
  InPackage(hole)
      .def_property_readonly("name", [](const Hole& h) { return h.record.name; })
      .def_property_readonly(
          "x", [](const Hole& h) { return h.record.x; }, "Easting")
      .def_property_readonly(
          "y", [](const Hole& h) { return h.record.y; }, "Northing")
      .def_property_readonly(
          "ground_level",
          [](const Hole& h) -> py::object {
            return h.record.groundLevelKnown ? py::object(py::float_(h.record.top))
                                             : py::object(py::none());
          },
          "Elevation of the collar; None when the file gives none (the strata are then at minus "
          "their depths)")
      .def_property_readonly(
          "strata", [](const Hole& h) -> const auto& { return h.record.strata; },
          py::return_value_policy::reference_internal,
          "The strata from the top down (code, top and bottom elevation, the line of the file)")
      .def_property_readonly("file", [](const Hole& h) { return h.record.where.file; })
      .def_property_readonly("line", [](const Hole& h) { return LineOrNone(h.record.where.line); })
      .def("__repr__", [](const Hole& h) {
        return "<xklink.Hole '" + h.record.name + "' with " +
               std::to_string(h.record.strata.size()) + " strata>";
      });

  py::class_<Site, std::shared_ptr<Site>> site(module, "Site", "The holes read from a file.");
  InPackage(site)
      .def_property_readonly("source", [](const Site& s) { return s.set.source; })
      .def_readonly("holes", &Site::holes, "The holes in file order (or in the order asked for)")
      .def_property_readonly(
          "code_descriptions", [](const Site& s) { return s.set.codeDescriptions; },
          "What the file says its codes mean, such as {'805': 'Chalk'} (AGS ABBR)")
      .def("__getitem__",
           [](const Site& s, const std::string& name) {
             const auto it = std::find_if(s.holes.begin(), s.holes.end(),
                                          [&](const HolePtr& h) { return h->record.name == name; });
             if (it == s.holes.end()) {
               throw py::key_error(name);
             }
             return *it;
           })
      .def("__len__", [](const Site& s) { return s.holes.size(); })
      .def("__repr__", [](const Site& s) {
        return "<xklink.Site '" + s.set.source + "' with " + std::to_string(s.holes.size()) +
               " holes>";
      });

  module.def("read", &Read, py::arg("path"), py::kw_only(), py::arg("input_format") = py::none(),
             py::arg("collars") = py::none(), py::arg("depths") = py::none(),
             py::arg("code_column") = py::none(), py::arg("merge_repeats") = false,
             py::arg("holes") = py::none(), py::arg("exclude") = py::none(),
             py::arg("strict") = false,
             R"(Reads an AGS4, AGS 3.1, drillhole CSV or JSON borehole file.

input_format: 'ags', 'csv' or 'json' (default: from the extension, else the first bytes);
collars: the collar table of a two-table drillhole CSV (path is then the interval table);
depths: 'depth' or 'elevation', how CSV top and base are given (default: from the headings);
code_column: the column of the stratum codes, such as 'GEOL_LEG' (default: the reader's);
merge_repeats: join consecutive strata of one code that touch;
holes: the holes wanted, in order, as a list or as 'A,B,C' (at least two; default: all);
exclude: holes never to use (only without holes);
strict: refuse the file on any problem instead of leaving a hole or row out.

The holes are chosen as the tool chooses them for a section: without `holes`, a hole with an error
in its log, a hole without ground level among holes with one, and the shallower of two holes at one
plan position are left out with a warning. Warnings are issued as xklink.XklinkWarning; any error
raises xklink.Error with the file, line and field of the first.

**Example**:

    site = xklink.read("examples/nle-battersea/21-7-10-NLE.ags")
    site.holes[0].name)");
}

} // namespace xklink::python
