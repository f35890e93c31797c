// The operations on one node.

#ifndef QO_PAGE_EDITS_NODE_EDITS_H
#define QO_PAGE_EDITS_NODE_EDITS_H

#include <algorithm>
#include <initializer_list>
#include <vector>

#include <qo_page/edits.h>
#include <qo_page/tree/tree.h>

namespace qo {

struct NodeEdits {
  NodeIndex node;
  std::vector<const Operation*> operations;  // in their order

  // The first of some kinds, or null.
  const Operation* find(std::initializer_list<Operation::Kind> kinds) const {
    for (const Operation* operation : operations) {
      if (std::find(kinds.begin(), kinds.end(), operation->kind) != kinds.end()) return operation;
    }
    return nullptr;
  }
};

}  // namespace qo

#endif
