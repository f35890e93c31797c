#include "selectors.h"

#include <string>

#include "errors.h"
#include "strings.h"

namespace qo_python {

namespace {

qo::Selector read(const py::str& text) {
  const std::string utf8 = from_str(text);
  return unlocked(nullptr, [&] { return qo::Selector(utf8); });
}

// Makes a whole Selector, so that none is without its text.
PyObject* make(PyTypeObject*, PyObject* arguments, PyObject* named) {
  PyObject* const module = PyImport_ImportModule("qo._qo");
  if (module == nullptr) return nullptr;
  PyObject* const reader = PyObject_GetAttrString(module, "read_selector");
  Py_DECREF(module);
  if (reader == nullptr) return nullptr;
  PyObject* const made = PyObject_Call(reader, arguments, named);
  Py_DECREF(reader);
  return made;
}

int leave_as_made(PyObject*, PyObject*, PyObject*) {
  return 0;
}

void make_whole(PyHeapTypeObject* type) {
  type->ht_type.tp_new = make;
  type->ht_type.tp_init = leave_as_made;
}

}  // namespace

qo::Selector selector_of(const py::object& selector) {
  if (py::isinstance<py::str>(selector)) return read(selector);
  if (py::isinstance<qo::Selector>(selector)) return selector.cast<const qo::Selector&>();
  throw py::type_error("a selector is a str or a qo.Selector, not a " +
                       std::string(Py_TYPE(selector.ptr())->tp_name));
}

void add_selectors(py::module_& module) {
  py::class_<qo::Selector>(module, "Selector", py::custom_type_setup(make_whole))
      .def_property_readonly("text", [](const qo::Selector& own) { return to_str(own.text()); });
  module.def("read_selector", read, py::arg("text"));
}

}  // namespace qo_python
