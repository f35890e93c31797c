// Which operations go together, and with which nodes.

#ifndef QO_PAGE_EDITS_OPERATIONS_H
#define QO_PAGE_EDITS_OPERATIONS_H

#include <vector>

#include <qo_page/edits.h>
#include <qo_page/tree/tree.h>

namespace qo {

// Operations on one node, each of which goes together with those before it.
class OperationSet {
 public:
  // Throws Error, with `index`, when the operation contradicts one before it, or when its name is
  // not one. The operation must outlive the set.
  void add(const Operation& operation, std::size_t index);

 private:
  std::vector<const Operation*> firsts_;  // of each kind: all of one kind contradict the same
};

// Throws Error, with the operation's index, when its plain text has what begins template code.
void check_has_no_code(const std::vector<Operation>& operations, const PageOptions& options);

// Throws EditError when the operation does not fit the kind of the node.
void check_fits(const Operation& operation, const Tree& tree, NodeIndex node);

}  // namespace qo

#endif
