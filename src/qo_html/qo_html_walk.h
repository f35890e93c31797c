// A walk over a tree: pre-order, over the child vectors alone, without recursion. The library has
// no other way to walk, and hosts may use it as well.

#ifndef QO_HTML_WALK_H
#define QO_HTML_WALK_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <qo_html/qo_html.h>

// Fetches what comes soon while nodes are looked at in document order. A parser's nodes, with what
// they hold, lie in memory in that order. Where nodes lie anywhere, fetching would only cost time:
// a node that is not close after the one before it fetches nothing.
class NodeStream {
 public:
  void follow(const _qo_html* node) {
    constexpr std::uintptr_t close = 4096;
    constexpr std::uintptr_t distance = 4096;
    constexpr std::uintptr_t size = 384;  // a node takes some 340 bytes on real pages
    constexpr std::uintptr_t cache_line = 64;
    const auto here = reinterpret_cast<std::uintptr_t>(node);
    if (here - former_ < close) {
      for (std::uintptr_t line = 0; line < size; line += cache_line) {
        __builtin_prefetch(reinterpret_cast<const void*>(here + distance + line));
      }
    }
    former_ = here;
  }

 private:
  std::uintptr_t former_ = 0;  // the address of the node before
};

// Visits a node and all nodes below it. The tree must not change meanwhile. The path to the current
// node takes 16 bytes a level; down to a depth of inline_levels nothing is allocated, below it a
// step may throw std::bad_alloc.
class TreeWalk {
 public:
  // What a step comes to.
  enum class Event { enter, leave, end };

  // Begins in front of `start`.
  explicit TreeWalk(_qo_html* start) : start_(start) {
    levels_[0] = {&start_, &start_ + 1};
    depth_ = 1;
  }
  TreeWalk(const TreeWalk&) = delete;
  TreeWalk& operator=(const TreeWalk&) = delete;

  // The next node in document order, the start node first; null when there is none left.
  _qo_html* next() {
    while (step() == Event::leave) {
    }
    return node_;
  }

  // The next event: a node entered; a node with children left, after the last of them; or the end.
  Event step() {
    if (descend_ && !node_->children.empty()) push_children();
    descend_ = false;
    for (;;) {
      Level& level = levels_[depth_ - 1];
      if (level.next != level.end) {
        node_ = *level.next++;
        if (node_ == nullptr) continue;
        if (level.next != level.end) prefetch(*level.next);
        stream_.follow(node_);
        descend_ = true;
        return Event::enter;
      }
      if (depth_ == 1) {
        node_ = nullptr;
        return Event::end;
      }
      --depth_;
      node_ = path(depth_ - 1);
      return Event::leave;
    }
  }

  // The node of the last event; null before the first and at the end.
  _qo_html* node() const { return node_; }

  // After a node was entered: goes on after its subtree.
  void skip_children() { descend_ = false; }

  // The level of a node that was just entered; 0 is the start node.
  std::size_t depth() const { return depth_ - 1; }

  // The node at `depth` on the path to the current node, which must not be higher.
  _qo_html* path(std::size_t depth) const { return *(levels_[depth].next - 1); }

  // A large tree is not in the cache: the next sibling is fetched while a node is looked at.
  static void prefetch(const _qo_html* node) {
    if (node == nullptr) return;
    __builtin_prefetch(node);
    __builtin_prefetch(&node->tag);
    __builtin_prefetch(&node->children);
  }

 private:
  struct Level {  // what is left of one child vector; the path goes through the child before `next`
    _qo_html** next;
    _qo_html** end;
  };

  static constexpr std::size_t inline_levels = 64;

  void push_children() {
    if (depth_ == capacity_) grow();
    _qo_html** first = node_->children.data();
    levels_[depth_++] = {first, first + node_->children.size()};
  }

  void grow() {
    std::unique_ptr<Level[]> larger(new Level[2 * capacity_]);
    std::copy(levels_, levels_ + depth_, larger.get());
    heap_levels_ = std::move(larger);
    levels_ = heap_levels_.get();
    capacity_ *= 2;
  }

  _qo_html* start_;
  _qo_html* node_ = nullptr;
  NodeStream stream_;
  bool descend_ = false;
  std::size_t depth_;
  std::size_t capacity_ = inline_levels;
  Level* levels_ = inline_storage_;
  std::unique_ptr<Level[]> heap_levels_;
  Level inline_storage_[inline_levels];
};

#endif
