// What Python holds of a page.

#ifndef QO_PYTHON_DOCUMENT_H
#define QO_PYTHON_DOCUMENT_H

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <pybind11/pybind11.h>

#include <qo_page/line_index.h>
#include <qo_page/page.h>

namespace qo_python {

namespace py = pybind11;

// How a page is read, and what it remembers of where it came from.
struct Origin {
  std::string dialect;
  std::string encoding;  // of its file; the text here is UTF-8
  std::optional<std::string> path;
};

// A page, which never changes. All handles of its nodes share it.
class Document {
 public:
  Document(qo::Page page, Origin origin) : page_(std::move(page)), origin_(std::move(origin)) {}

  const qo::Page& page() const { return page_; }
  const Origin& origin() const { return origin_; }

  // Goes over the source when it is first asked.
  qo::Position position(std::size_t offset) const;

 private:
  qo::Page page_;
  Origin origin_;
  mutable std::once_flag lines_made_;
  mutable std::optional<qo::LineIndex> lines_;
};

using DocumentPointer = std::shared_ptr<const Document>;

// Lets other threads of Python run while a large page is freed.
DocumentPointer make_document(qo::Page page, Origin origin);

// Of a dialect's name. Throws ValueError when there is none of that name.
qo::PageOptions options_of(const std::string& dialect);

// A node and the page that it keeps.
struct NodeHandle {
  DocumentPointer document;
  qo::Node node;
};

// The page, as its root node.
struct PageHandle : NodeHandle {};

// None for a node that is none.
py::object handle_of(const DocumentPointer& document, qo::Node node);

// For `py::custom_type_setup`: objects of the type come from this module alone. Python's own way to
// make one would leave it without a page.
void refuse_new(PyHeapTypeObject* type);

}  // namespace qo_python

#endif
