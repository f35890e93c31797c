// Tables and forms for Python.

#ifndef QO_PYTHON_TABLES_H
#define QO_PYTHON_TABLES_H

#include <pybind11/pybind11.h>

namespace qo_python {

void add_tables(pybind11::module_& module);
void add_forms(pybind11::module_& module);

}  // namespace qo_python

#endif
