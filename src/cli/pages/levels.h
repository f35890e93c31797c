// How deep the nodes of a page are.

#ifndef QO_CLI_PAGES_LEVELS_H
#define QO_CLI_PAGES_LEVELS_H

#include <cstddef>
#include <vector>

#include <qo_page/node.h>

namespace cli {

// Is given all nodes below a document, in their order.
class Levels {
 public:
  // 0 for a child of the document.
  std::size_t of_next(qo::Node node) {
    const qo::Node parent = node.parent();
    while (!path_.empty() && path_.back() != parent) path_.pop_back();
    path_.push_back(node);
    return path_.size() - 1;
  }

 private:
  std::vector<qo::Node> path_;  // from the top to the node before
};

}  // namespace cli

#endif
