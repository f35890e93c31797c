// The part of the module that is written in C++; its other part is in the folder qo.

#include <pybind11/pybind11.h>

#include "edits.h"
#include "nodes.h"
#include "selectors.h"
#include "tables.h"

PYBIND11_MODULE(_qo, module) {
  qo_python::add_selectors(module);
  qo_python::add_nodes(module);
  qo_python::add_attributes(module);
  qo_python::add_pages(module);
  qo_python::add_edits(module);
  qo_python::add_tables(module);
  qo_python::add_forms(module);
}
