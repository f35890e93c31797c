// Visits a node and all nodes below it in the reverse of document order, children first.

#ifndef QO_PAGE_SELECTORS_BACKWARD_WALK_H
#define QO_PAGE_SELECTORS_BACKWARD_WALK_H

#include <cstddef>
#include <vector>

#include <qo_page/tree/node.h>

namespace qo::selectors {

class BackwardWalk {
 public:
  explicit BackwardWalk(_qo_html* top) : top_(top), levels_{{&top_, &top_ + 1}} {}
  BackwardWalk(const BackwardWalk&) = delete;
  BackwardWalk& operator=(const BackwardWalk&) = delete;

  // Null when there is none left.
  _qo_html* next() {
    while (levels_.back().first != levels_.back().last) {
      _qo_html* const node = take_last(levels_.back());
      if (node->children.empty()) return node;
      _qo_html** const first = node->children.data();
      levels_.push_back({first, first + node->children.size()});
    }
    if (levels_.size() == 1) return nullptr;
    levels_.pop_back();
    return *levels_.back().last;
  }

  // The level of the node; 0 is the top.
  std::size_t depth() const { return levels_.size() - 1; }

 private:
  struct Level {  // what is left of one child vector; the path goes through the child at `last`
    _qo_html** first;
    _qo_html** last;
  };

  static _qo_html* take_last(Level& level) {
    _qo_html* const node = *--level.last;
    if (level.last != level.first) prefetch(level.last[-1]);
    return node;
  }

  // A large tree is not in the cache: what comes next is fetched while a node is looked at.
  static void prefetch(const _qo_html* node) {
    __builtin_prefetch(node);
    __builtin_prefetch(&node->children);
    __builtin_prefetch(&as_node(node)->kind);
  }

  _qo_html* top_;
  std::vector<Level> levels_;
};

}  // namespace qo::selectors

#endif
