#include "document.h"

#include <utility>

namespace qo_python {

namespace {

// Freeing a smaller page takes less time than handing the lock over.
constexpr std::size_t large_page = 65'536;

void free_document(const Document* document) {
  if (document->page().source().size() < large_page || PyGILState_Check() == 0) {
    delete document;
    return;
  }
  const py::gil_scoped_release release;
  delete document;
}

PyObject* refuse(PyTypeObject* type, PyObject*, PyObject*) {
  PyErr_Format(PyExc_TypeError, "a %s is never made by its name", type->tp_name);
  return nullptr;
}

}  // namespace

qo::Position Document::position(std::size_t offset) const {
  std::call_once(lines_made_, [this] { lines_.emplace(page_.source()); });
  return lines_->position(offset);
}

DocumentPointer make_document(qo::Page page, Origin origin) {
  return {new Document(std::move(page), std::move(origin)), free_document};
}

qo::PageOptions options_of(const std::string& dialect) {
  std::string known;
  for (const qo::DialectInfo& row : qo::dialects()) {
    if (row.name == dialect) return {dialect};
    known += (known.empty() ? "" : ", ") + std::string(row.name);
  }
  throw py::value_error("no dialect is called '" + dialect + "'; there are: " + known);
}

py::object handle_of(const DocumentPointer& document, qo::Node node) {
  if (!node) return py::none();
  if (node.index() == 0) return py::cast(PageHandle{{document, node}});
  return py::cast(NodeHandle{document, node});
}

void refuse_new(PyHeapTypeObject* type) {
  type->ht_type.tp_new = refuse;
}

}  // namespace qo_python
