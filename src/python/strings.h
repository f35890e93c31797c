// Python's strings and UTF-8. A byte that is none becomes a lone surrogate, and that byte again.

#ifndef QO_PYTHON_STRINGS_H
#define QO_PYTHON_STRINGS_H

#include <string>
#include <string_view>

#include <pybind11/pybind11.h>

namespace qo_python {

namespace py = pybind11;

inline py::str to_str(std::string_view text) {
  PyObject* const made =
      PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogateescape");
  if (made == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::str>(made);
}

inline std::string from_str(const py::str& text) {
  const auto bytes = py::reinterpret_steal<py::object>(
      PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape"));
  if (!bytes) throw py::error_already_set();
  return {PyBytes_AS_STRING(bytes.ptr()), static_cast<std::size_t>(PyBytes_GET_SIZE(bytes.ptr()))};
}

}  // namespace qo_python

#endif
