// The extension module behind the Python package `xklink` (python/xklink/__init__.py re-exports
// it). Each concern binds itself: the errors, the reading of files, the correlation of two holes
// and the section.
#include "Binding.h"

PYBIND11_MODULE(_native, module) {
  module.doc() = "Borehole strata correlation for geological sections: the XKLinkDc library and "
                 "the xklink tool's readers and drawing.";
  xklink::python::BindErrors(module);
  xklink::python::BindRead(module);
  xklink::python::BindCorrelate(module);
  xklink::python::BindSection(module);
}
