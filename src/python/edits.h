// Edits for Python, with the nodes that they are refused for.

#ifndef QO_PYTHON_EDITS_H
#define QO_PYTHON_EDITS_H

#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <qo_page/edits.h>

#include "document.h"

namespace qo_python {

// What is refused, and for which node.
struct Refusal {
  qo::Node node;
  qo::Error error;
};

struct AppliedEdits {
  qo::EditedPage edited;
  std::vector<Refusal> refused;
};

// Operations in the order in which they came. Several threads may use one object: each call takes
// its own lock, never while it waits for Python's.
class EditLog {
 public:
  EditLog(DocumentPointer document, qo::CodeInText code)
      : document_(std::move(document)), code_(code), edits_(document_->page(), code) {}

  const DocumentPointer& document() const { return document_; }

  // Throws Error for what fits no node at all. What does not fit a node is refused by apply().
  void add(const std::vector<qo::Node>& nodes, const std::vector<qo::Operation>& operations);

  // Throws EditError for the first node that is refused, or leaves out all operations of such
  // nodes. Each that is left out takes the time of one more reading.
  AppliedEdits apply(bool skips_refused);

 private:
  struct Batch {
    std::vector<qo::Node> nodes;
    std::vector<qo::Operation> operations;
  };

  std::unique_ptr<qo::Edits> edits_without(const std::set<qo::Node>& left_out) const;

  DocumentPointer document_;
  qo::CodeInText code_;
  std::mutex lock_;
  qo::Edits edits_;
  std::vector<Batch> batches_;
  std::vector<Refusal> refused_;
};

void add_edits(py::module_& module);

}  // namespace qo_python

#endif
