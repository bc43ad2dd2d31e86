// What the files of the Python module `xklink` share: the holes and sites as Python holds them,
// the module's exception and warning, and one Bind* function per concern.
//
// The module is a thin layer over the tool's readers, checks and drawing and over the library's
// correlation: every rule stays where the tool keeps it, and a Python user gets the same holes,
// lines, messages and drawings as a user of the command line.
#pragma once

#include "BoreholeSet.h"
#include "Diagnostics.h"
#include "Errors.h"
#include "Input.h"

#include <map>
#include <memory>
#include <optional>
#include <pybind11/pybind11.h>
#include <string>
#include <variant>
#include <vector>

namespace xklink::python {

// One hole as read, with the record the correlation takes, built once so that correlating a whole
// site does not rebuild it for every pair.
struct Hole {
  HoleRecord record;
  DataType::_sZK zk;
};
using HolePtr = std::shared_ptr<Hole>; // never changed once read

// The holes read from a file (or the ones asked for), in file order, with what the file says its
// codes mean. `set` keeps the records for choosing and ordering the holes of a section, `input`
// the file and its format, for the grid its coordinates are on.
struct Site {
  BoreholeSet set;
  std::vector<HolePtr> holes;
  InputOptions input;
  bool depthBelowGround = false; // no hole has a ground level: collars at 0, strata at -depth
};

// Errors found in the input, as Python sees them (xklink.Error): `Where()` is the place of the
// first, the message lists them all, each with its place.
class InputFailure : public InputError {
public:
  InputFailure(SourceRef where, const std::string& message)
      : InputError(message), m_where(std::move(where)) {}
  const SourceRef& Where() const { return m_where; }

private:
  SourceRef m_where;
};

// Holes named by the user: a list, or "A,B,C" as on the command line.
using HoleNames = std::variant<std::string, std::vector<std::string>>;
// The names; xklink.Error naming `option` for an empty name.
std::vector<std::string> SplitNames(const HoleNames& names, const std::string& option);

// The named holes of `set` in the order given (at least two): xklink.Error with the field
// "holes" for an unknown name, a name given twice or fewer than two.
BoreholeSet SelectNamed(const BoreholeSet& set, const std::vector<std::string>& names);

// Issues every warning of `diagnostics` as an xklink.XklinkWarning, then throws InputFailure for
// the errors, if there are any: located at the first, its message listing them all, one a line,
// as the tool prints them.
void Report(const std::vector<Diagnostic>& diagnostics);

// A SourceRef's line and field (or file) for Python: None for "the whole file", "no one field".
pybind11::object LineOrNone(std::size_t line);
pybind11::object TextOrNone(const std::string& field);

// Each adds its classes and functions to the module.
void BindErrors(pybind11::module_& module);
void BindRead(pybind11::module_& module);
void BindCorrelate(pybind11::module_& module);
void BindSection(pybind11::module_& module);

// Classes show themselves as xklink.Name, not as the name of the extension inside the package.
template <typename Class> Class& InPackage(Class& cls) {
  cls.attr("__module__") = "xklink";
  return cls;
}

} // namespace xklink::python
