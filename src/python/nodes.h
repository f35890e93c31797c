// Pages, nodes and attributes for Python.

#ifndef QO_PYTHON_NODES_H
#define QO_PYTHON_NODES_H

#include <pybind11/pybind11.h>

namespace qo_python {

void add_nodes(pybind11::module_& module);
void add_attributes(pybind11::module_& module);
void add_pages(pybind11::module_& module);

}  // namespace qo_python

#endif
