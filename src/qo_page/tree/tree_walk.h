// Visits a node and all nodes below it, each twice: when it begins, and when it ends.

#ifndef QO_PAGE_TREE_TREE_WALK_H
#define QO_PAGE_TREE_TREE_WALK_H

#include <qo_page/tree/tree.h>

namespace qo {

// For what needs the ends; in document order alone, the indexes from a node's own to its
// `subtree_end` are what is in it.
class TreeWalk {
 public:
  enum class Event { enter, leave, end };

  TreeWalk(const Tree& tree, NodeIndex top) : tree_(tree), top_(top), node_(top) {}

  // Goes to the next event, which is one of `node()` unless it is the end.
  Event step() {
    switch (event_) {
      case Event::end:
        return event_ = Event::enter;  // the first one
      case Event::enter:
        return enter_child();
      default:
        return leave_node();
    }
  }

  NodeIndex node() const { return node_; }

  // After a node was entered: it is left next.
  void skip_children() { skips_ = true; }

 private:
  Event enter_child() {
    const NodeIndex child = skips_ ? no_node : tree_.first_child(node_);
    skips_ = false;
    if (child == no_node) return event_ = Event::leave;
    node_ = child;
    return event_;
  }

  Event leave_node() {
    if (node_ == top_) return Event::end;
    const NodeIndex sibling = tree_.next_sibling(node_);
    node_ = sibling == no_node ? tree_.parent(node_) : sibling;
    return event_ = sibling == no_node ? Event::leave : Event::enter;
  }

  const Tree& tree_;
  NodeIndex top_, node_;
  Event event_ = Event::end;
  bool skips_ = false;
};

}  // namespace qo

#endif
