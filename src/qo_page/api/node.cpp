#include <qo_page/node.h>

#include <qo_page/text/node_text.h>
#include <qo_page/tree/node_access.h>

namespace qo {

// --- Attribute ---

std::string_view Attribute::name() const {
  return tree_->name(*record_);
}
std::string Attribute::value(TextForm form) const {
  return value_of(*tree_, *record_, form);
}
bool Attribute::has_value() const {
  return record_->value_gap != 0;
}
char Attribute::quote() const {
  return tree_->quote(*record_);
}

Range Attribute::name_range() const {
  return {record_->name_begin, record_->name_end};
}
Range Attribute::value_range() const {
  return {tree_->value_begin(*record_), record_->value_end};
}
Range Attribute::range() const {
  const std::size_t quote_length = quote() == '\0' ? 0 : 1;
  return {record_->name_begin, record_->value_end + quote_length};
}

Attribute Attributes::Iterator::operator*() const {
  return NodeAccess::attribute(*tree_, tree_->attributes[index_]);
}
Attributes::Iterator& Attributes::Iterator::operator++() {
  ++index_;
  return *this;
}
Attributes::Iterator Attributes::Iterator::operator++(int) {
  const Iterator before = *this;
  ++index_;
  return before;
}

// --- Node ---

NodeKind Node::kind() const {
  return NodeAccess::record(*this).kind;
}
std::string_view Node::name() const {
  return NodeAccess::tree(*this).name(index_);
}
Extent Node::extent() const {
  return NodeAccess::tree(*this).extent(index_);
}
std::string_view Node::html() const {
  return NodeAccess::tree(*this).html(index_);
}
std::string_view Node::inner_html() const {
  return NodeAccess::tree(*this).inner_html(index_);
}
std::string Node::text(TextForm form) const {
  return text_of(NodeAccess::tree(*this), index_, form);
}

Node Node::parent() const {
  const Tree& tree = NodeAccess::tree(*this);
  return NodeAccess::node(tree, tree.parent(index_));
}
Node Node::first_child() const {
  const Tree& tree = NodeAccess::tree(*this);
  return NodeAccess::node(tree, tree.first_child(index_));
}
Node Node::next_sibling() const {
  const Tree& tree = NodeAccess::tree(*this);
  return NodeAccess::node(tree, tree.next_sibling(index_));
}
Node Node::previous_sibling() const {
  const Tree& tree = NodeAccess::tree(*this);
  return NodeAccess::node(tree, tree.previous_sibling(index_));
}

NodeRange<NextSibling> Node::children() const {
  return {first_child(), Node()};
}
NodeRange<NextInDocument> Node::descendants() const {
  return {Node(tree_, index_ + 1), Node(tree_, NodeAccess::record(*this).subtree_end)};
}
NodeRange<NextAncestor> Node::ancestors() const {
  return {parent(), Node()};
}

Node NextInDocument::after(Node node) {
  return Node(node.tree_, node.index_ + 1);
}

Attributes Node::attributes() const {
  const std::uint32_t begin = NodeAccess::record(*this).first_attribute;
  return {tree_, begin, tree_->nodes[index_ + std::size_t{1}].first_attribute};
}

std::optional<std::string> Node::attribute(std::string_view name, TextForm form) const {
  const Tree& tree = NodeAccess::tree(*this);
  const AttributeRecord* const found = tree.find_attribute(index_, name);
  if (found == nullptr) return std::nullopt;
  return value_of(tree, *found, form);
}

}  // namespace qo
