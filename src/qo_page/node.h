// The nodes of a page, and their attributes.
//
// Both are small values that name a place in a page: copying one costs nothing, and none of them
// can change the page. They are valid as long as their page, wherever it is moved to. A page that
// another one is assigned to loses the nodes that it had.
//
// Where there is no such node, functions return a null node (`!node`). Asking it anything throws
// Error. Views of texts live as long as the page.
//
// Costs: a call takes the same short time whatever the page, unless its comment says otherwise.

#ifndef QO_PAGE_NODE_H
#define QO_PAGE_NODE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include <qo_page/qo_page_export.h>
#include <qo_page/range.h>

namespace qo {

struct Tree;
struct AttributeRecord;
class Node;

// What a node is. `code` is <?...?> and <%...%> where they are tags of their own.
enum class NodeKind : unsigned char { document, element, text, comment, doctype, cdata, code };

// How a text or value is given: with its references decoded, as it is in the source, or as a person
// reads it. The last one is decoded as well, with one blank for each run of white space and between
// blocks and cells, and no blanks at the ends.
enum class TextForm { decoded, written, readable };

// Where a node lies in the source. An element without an end tag of its own ends where its content
// does. Void elements, texts, doctypes and template code have an empty content at their end.
struct Extent {
  std::size_t begin;          // of the start tag
  std::size_t content_begin;  // after the start tag
  std::size_t content_end;    // in front of the end tag
  std::size_t end;            // after the end tag
};

// An attribute as it is written.
class QO_PAGE_API Attribute {
 public:
  // As written, template code included.
  std::string_view name() const;

  // Empty for one without a value.
  std::string value(TextForm form = TextForm::decoded) const;

  // Whether there is a "=".
  bool has_value() const;

  // '"' or '\'' around the value; '\0' where there are none.
  char quote() const;

  // Where it is in the source: the name; the value without its quotes, empty where there is none;
  // all of it.
  Range name_range() const;
  Range value_range() const;
  Range range() const;

 private:
  friend struct NodeAccess;
  Attribute(const Tree* tree, const AttributeRecord* record) : tree_(tree), record_(record) {}

  const Tree* tree_;
  const AttributeRecord* record_;
};

// The attributes of an element in the order of the source. All that are written are there: those
// whose name was there before, and those in one branch of a template, too.
class QO_PAGE_API Attributes {
 public:
  class QO_PAGE_API Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Attribute;
    using difference_type = std::ptrdiff_t;
    using pointer = const Attribute*;
    using reference = Attribute;

    Attribute operator*() const;
    Iterator& operator++();
    Iterator operator++(int);
    bool operator==(const Iterator& other) const { return index_ == other.index_; }
    bool operator!=(const Iterator& other) const { return index_ != other.index_; }

   private:
    friend class Attributes;
    Iterator(const Tree* tree, std::uint32_t index) : tree_(tree), index_(index) {}

    const Tree* tree_;
    std::uint32_t index_;
  };

  Iterator begin() const { return {tree_, begin_}; }
  Iterator end() const { return {tree_, end_}; }
  std::size_t size() const { return end_ - begin_; }
  bool empty() const { return begin_ == end_; }

 private:
  friend class Node;
  Attributes(const Tree* tree, std::uint32_t begin, std::uint32_t end)
      : tree_(tree), begin_(begin), end_(end) {}

  const Tree* tree_;
  std::uint32_t begin_, end_;
};

template <class Step>
class NodeRange;

struct NextSibling;
struct NextInDocument;
struct NextAncestor;

class QO_PAGE_API Node {
 public:
  // None.
  Node() = default;

  explicit operator bool() const { return tree_ != nullptr; }

  NodeKind kind() const;
  bool is_element() const { return kind() == NodeKind::element; }

  // As written, template code included: "p", "my-{{ x }}"; "!DOCTYPE", "?php" and "%" of doctypes
  // and code. Empty for other nodes.
  std::string_view name() const;

  // Its number in the page, in document order; the document is 0.
  std::size_t index() const { return index_; }

  Extent extent() const;

  // The node's own bytes, and those of its content alone.
  std::string_view html() const;
  std::string_view inner_html() const;

  // The text of the node and of all that is below it, but for comments, template code in tags of
  // its own, scripts and styles; these have their own text when they are the node itself. Takes
  // time in proportion to what is in the node.
  std::string text(TextForm form = TextForm::decoded) const;

  // A null node where there is none. `previous_sibling` takes time for the depth of what it finds.
  Node parent() const;
  Node first_child() const;
  Node next_sibling() const;
  Node previous_sibling() const;

  // Each in document order, but ancestors from the inside out, with the document last.
  NodeRange<NextSibling> children() const;
  NodeRange<NextInDocument> descendants() const;
  NodeRange<NextAncestor> ancestors() const;

  // Empty for nodes that are not elements.
  Attributes attributes() const;

  // The value of the first attribute of that name; names compare without case. Empty for one
  // without a value, nothing when there is none of that name.
  std::optional<std::string> attribute(std::string_view name,
                                       TextForm form = TextForm::decoded) const;

  // The same node of the same page. Nodes of one page are ordered as in the document; the order of
  // nodes of different pages means nothing.
  friend bool operator==(Node a, Node b) { return a.tree_ == b.tree_ && a.index_ == b.index_; }
  friend bool operator!=(Node a, Node b) { return !(a == b); }
  friend bool operator<(Node a, Node b) {
    return a.tree_ == b.tree_ ? a.index_ < b.index_ : std::less<const Tree*>()(a.tree_, b.tree_);
  }
  friend bool operator>(Node a, Node b) { return b < a; }
  friend bool operator<=(Node a, Node b) { return !(b < a); }
  friend bool operator>=(Node a, Node b) { return !(a < b); }

 private:
  friend struct NodeAccess;
  friend struct std::hash<Node>;
  friend struct NextSibling;
  friend struct NextInDocument;
  Node(const Tree* tree, std::uint32_t index) : tree_(tree), index_(index) {}

  const Tree* tree_ = nullptr;
  std::uint32_t index_ = 0;
};

struct QO_PAGE_API NextSibling {
  static Node after(Node node) { return node.next_sibling(); }
};
struct QO_PAGE_API NextInDocument {
  static Node after(Node node);
};
struct QO_PAGE_API NextAncestor {
  static Node after(Node node) { return node.parent(); }
};

// A stretch of nodes, to be walked over.
template <class Step>
class NodeRange {
 public:
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = Node;
    using difference_type = std::ptrdiff_t;
    using pointer = const Node*;
    using reference = const Node&;

    Iterator() = default;
    explicit Iterator(Node node) : node_(node) {}
    const Node& operator*() const { return node_; }
    const Node* operator->() const { return &node_; }
    Iterator& operator++() {
      node_ = Step::after(node_);
      return *this;
    }
    Iterator operator++(int) {
      const Iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const Iterator& other) const { return node_ == other.node_; }
    bool operator!=(const Iterator& other) const { return node_ != other.node_; }

   private:
    Node node_;
  };

  NodeRange(Node first, Node end) : first_(first), end_(end) {}
  Iterator begin() const { return Iterator(first_); }
  Iterator end() const { return Iterator(end_); }
  bool empty() const { return first_ == end_; }

 private:
  Node first_, end_;
};

}  // namespace qo

template <>
struct std::hash<qo::Node> {
  std::size_t operator()(qo::Node node) const {
    return std::hash<const void*>()(node.tree_) ^ (node.index_ * std::size_t{0x9E3779B97F4A7C15});
  }
};

#endif
