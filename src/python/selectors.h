// Selectors for Python.

#ifndef QO_PYTHON_SELECTORS_H
#define QO_PYTHON_SELECTORS_H

#include <pybind11/pybind11.h>

#include <qo_page/selector.h>

namespace qo_python {

namespace py = pybind11;

void add_selectors(py::module_& module);

// Of a str or a Selector. Throws TypeError for anything else.
qo::Selector selector_of(const py::object& selector);

}  // namespace qo_python

#endif
