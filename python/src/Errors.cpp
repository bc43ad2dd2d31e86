// xklink.Error and xklink.XklinkWarning: the tool's diagnostics as Python sees them.
//
// The command line prints a problem as "file:line: field F: message" and stops with status 2;
// Python raises one exception type for every problem of the input, so that a notebook can catch
// it in one place, and carries the place as attributes, so that a script can point at the row
// without parsing the message. Warnings go through Python's warnings machinery, where the user
// filters them, turns them into errors or records them.

#include "Binding.h"
#include "Section.h"

namespace py = pybind11;

namespace xklink::python {

namespace {

// The two classes, created once when the module is imported and kept for as long as the
// interpreter runs.
PyObject* g_error = nullptr;
PyObject* g_warning = nullptr;

PyObject* NewClass(const char* name, const char* doc, PyObject* base) {
  py::dict defaults;
  defaults["file"] = py::none();
  defaults["line"] = py::none();
  defaults["field"] = py::none();
  PyObject* cls = PyErr_NewExceptionWithDoc(name, doc, base, defaults.ptr());
  if (cls == nullptr) {
    throw py::error_already_set();
  }
  return cls;
}

// An instance of `cls` with its place in the input.
py::object Located(PyObject* cls, const std::string& message, py::object file, py::object line,
                   py::object field) {
  py::object instance = py::reinterpret_borrow<py::object>(cls)(message);
  instance.attr("file") = std::move(file);
  instance.attr("line") = std::move(line);
  instance.attr("field") = std::move(field);
  return instance;
}

py::object Located(PyObject* cls, const std::string& message, const SourceRef& where) {
  return Located(cls, message, TextOrNone(where.file), LineOrNone(where.line),
                 TextOrNone(where.field));
}

void Raise(const py::object& instance) {
  PyErr_SetObject(g_error, instance.ptr());
}

} // namespace

py::object LineOrNone(std::size_t line) {
  return line == 0 ? py::object(py::none()) : py::object(py::int_(line));
}

py::object TextOrNone(const std::string& field) {
  return field.empty() ? py::object(py::none()) : py::object(py::str(field));
}

void Report(const std::vector<Diagnostic>& diagnostics) {
  const py::object warn = py::module_::import("warnings").attr("warn");
  const Diagnostic* first = nullptr;
  std::string errors;
  for (const Diagnostic& d : diagnostics) {
    if (d.severity == Severity::Warning) {
      // stacklevel 1 is the Python line that called into the module.
      warn(Located(g_warning, d.ToString(), d.where), py::arg("stacklevel") = 1);
    } else {
      first = first == nullptr ? &d : first;
      errors += (errors.empty() ? "" : "\n") + d.ToString();
    }
  }
  if (first != nullptr) {
    throw InputFailure(first->where, errors);
  }
}

void BindErrors(py::module_& module) {
  g_error = NewClass("xklink.Error",
                     "A problem of the input or the output: a file that cannot be read, invalid "
                     "data, an unknown hole, a drawing that cannot be written. `file`, `line` and "
                     "`field` say where (None when no line or no single field is to blame); the "
                     "message lists every error found, one a line.",
                     PyExc_Exception);
  g_warning = NewClass("xklink.XklinkWarning",
                       "Data that was read but that an engineer should look at (a gap between "
                       "strata, a hole left out). `file`, `line` and `field` say where.",
                       PyExc_UserWarning);
  module.attr("Error") = py::handle(g_error);
  module.attr("XklinkWarning") = py::handle(g_warning);

  py::register_exception_translator([](std::exception_ptr failure) {
    try {
      std::rethrow_exception(failure);
    } catch (const InputFailure& e) {
      Raise(Located(g_error, e.what(), e.Where()));
    } catch (const ParseError& e) { // the tool's one family: usage, input, output
      Raise(Located(g_error, e.what(), e.Where()));
    }
  });
}

} // namespace xklink::python
