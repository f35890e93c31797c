#include "errors.h"

#include "strings.h"

namespace qo_python {

namespace {

py::object type_named(const char* name) {
  return py::module_::import("qo._errors").attr(name);
}

[[noreturn]] void throw_as(const char* type, const py::object& exception) {
  PyErr_SetObject(type_named(type).ptr(), exception.ptr());
  throw py::error_already_set();
}

py::object made(const char* type, const qo::Error& error, const Document* document) {
  const py::object name = type_named(type);
  if (error.place() == qo::Error::Place::none) return name(to_str(error.what()));
  const py::object exception = name(to_str(error.what()), error.offset());
  if (document == nullptr || error.place() != qo::Error::Place::source) return exception;
  const qo::Position position = document->position(error.offset());
  return name(to_str(error.what()), error.offset(), position.line, position.column);
}

}  // namespace

void raise(const qo::Error& error, const Document* document) {
  throw_as("Error", made("Error", error, document));
}

void raise(const qo::SelectorError& error) {
  const py::object exception = made("SelectorError", error, nullptr);
  exception.attr("shown") = to_str(error.shown());
  throw_as("SelectorError", exception);
}

py::object refusal(const qo::Error& error, const DocumentPointer& document, qo::Node node) {
  const py::object exception = made("EditRefused", error, document.get());
  exception.attr("node") = handle_of(document, node);
  return exception;
}

void raise_refused(const py::object& refused) {
  throw_as("EditRefused", refused);
}

}  // namespace qo_python
