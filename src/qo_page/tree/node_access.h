// From the nodes of the interface to those of the tree, and back.

#ifndef QO_PAGE_TREE_NODE_ACCESS_H
#define QO_PAGE_TREE_NODE_ACCESS_H

#include <vector>

#include <qo_page/tree/tree.h>

namespace qo {

struct NodeAccess {
  // Throws Error for a node that is none.
  static const Tree& tree(Node node) {
    if (!node) throw Error("there is no such node");
    return *node.tree_;
  }

  static NodeIndex index(Node node) { return node.index_; }

  static const NodeRecord& record(Node node) { return tree(node)[node.index_]; }

  // Throws Error unless the node is one of the tree.
  static NodeIndex index_in(const Tree& tree, Node node) {
    if (&NodeAccess::tree(node) != &tree) throw Error("the node is one of another page");
    return node.index_;
  }

  // None for no_node.
  static Node node(const Tree& tree, NodeIndex index) {
    return index == no_node ? Node() : Node(&tree, index);
  }

  static std::vector<Node> nodes(const Tree& tree, const std::vector<NodeIndex>& indexes) {
    std::vector<Node> found;
    found.reserve(indexes.size());
    for (const NodeIndex index : indexes) found.push_back(Node(&tree, index));
    return found;
  }

  static Attribute attribute(const Tree& tree, const AttributeRecord& record) {
    return Attribute(&tree, &record);
  }
};

struct PageAccess {
  // Throws Error for a page that was moved from.
  static const Tree& tree(const Page& page) {
    if (page.tree_ == nullptr) throw Error("the page was moved from");
    return *page.tree_;
  }

  static Page page(std::unique_ptr<Tree> tree) { return Page(std::move(tree)); }
};

}  // namespace qo

#endif
