// How the tree builder appends records.

#include <algorithm>

#include <qo_page/base/ascii.h>
#include <qo_page/tree/quirks.h>
#include <qo_page/tree/tree_builder.h>

namespace qo {

namespace {

// Offsets are smaller than 4 GiB: longer sources are refused.
std::uint32_t narrow(std::size_t offset) {
  return static_cast<std::uint32_t>(offset);
}

// Template code and white space alone are no text that a browser will see.
bool is_blank_or_code(std::string_view source, Range range, CodeScanner& code) {
  for (std::size_t i = range.begin; i < range.end;) {
    const bool may_begin = source[i] != '<' && code.may_begin(source[i]);
    const std::size_t end = may_begin ? code.end_of(i, CodeScanner::Place::text) : 0;
    if (end == 0 && !is_blank(source[i])) return false;
    i = std::max(end, i + 1);
  }
  return true;
}

std::uint16_t name_length(std::string_view name) {
  return static_cast<std::uint16_t>(std::min<std::size_t>(name.size(), NodeRecord::long_name));
}

}  // namespace

// A node that ends with its own tag.
NodeIndex TreeBuilder::append(NodeKind kind, Range extent) {
  const NodeIndex node = next_index();
  NodeRecord record{};
  record.begin = narrow(extent.begin);
  record.content_begin = record.content_end = record.end = narrow(extent.end);
  record.parent = node == document_index ? no_node : current();
  record.subtree_end = node + 1;
  record.first_attribute = narrow(tree_.attributes.size());
  record.kind = kind;
  tree_.nodes.push_back(record);
  return node;
}

NodeIndex TreeBuilder::append_element(const Token& token, const ElementType& type) {
  const NodeIndex node = append(NodeKind::element, token.extent);
  NodeRecord& record = tree_.nodes[node];
  record.name_length = name_length(type.name) & NodeRecord::long_name;
  record.tag = type.tag;
  record.space = type.space;
  record.is_self_closing = token.self_closing;
  append_attributes(token);
  return node;
}

void TreeBuilder::append_attributes(const Token& token) {
  for (const AttributeToken& attribute : token.attributes) {
    const std::size_t gap =
        attribute.has_value ? attribute.value.begin - attribute.name.end : std::size_t{0};
    AttributeRecord record{};
    record.name_begin = narrow(attribute.name.begin);
    record.name_end = narrow(attribute.name.end);
    record.value_end = narrow(attribute.has_value ? attribute.value.end : attribute.name.end);
    record.value_gap =
        static_cast<std::uint8_t>(std::min<std::size_t>(gap, AttributeRecord::long_gap));
    record.name_hash = name_hash(attribute.name.in(source_));
    tree_.attributes.push_back(record);
  }
}

void TreeBuilder::end_node(NodeIndex node, Range tag) {
  NodeRecord& record = tree_.nodes[node];
  record.content_end = narrow(tag.begin);
  record.end = narrow(tag.end);
  record.subtree_end = next_index();
}

// Text ends a head.
void TreeBuilder::text(const Token& token) {
  const bool is_fussy = open_.top_is(Tag::head_) || open_.top_is(Tag::colgroup_);
  if (is_fussy && !is_blank_or_code(source_, token.extent, tokenizer_.code())) {
    close_top(token.extent.begin);
  }
  NodeRecord& last = tree_.nodes.back();
  const bool goes_on = last.kind == NodeKind::text && last.end == token.extent.begin &&
                       last.parent == current();  // a tag that the end of the source cuts off
  if (goes_on) last.content_begin = last.content_end = last.end = narrow(token.extent.end);
  const NodeIndex node = goes_on ? next_index() - 1 : append(NodeKind::text, token.extent);
  tree_.nodes[node].is_cut_off = token.is_cut_off;
}

// A comment or CDATA section.
void TreeBuilder::section(const Token& token) {
  const bool is_comment = token.kind == TokenKind::comment;
  const NodeIndex node = append(is_comment ? NodeKind::comment : NodeKind::cdata, token.extent);
  NodeRecord& record = tree_.nodes[node];
  record.content_begin = narrow(token.content.begin);
  record.content_end = narrow(token.content.end);
  record.is_cut_off = token.is_cut_off;
}

// A doctype, or template code in a tag of its own.
void TreeBuilder::declaration(const Token& token) {
  const bool is_doctype = token.kind == TokenKind::doctype;
  const std::string_view inner = token.extent.in(source_).substr(1);
  if (is_doctype && open_.empty()) is_quirky_ = is_quirky(token.content.in(source_));
  const NodeIndex node = append(is_doctype ? NodeKind::doctype : NodeKind::code, token.extent);
  NodeRecord& record = tree_.nodes[node];
  record.name_length =
      name_length(inner.substr(0, declaration_name_length(inner))) & NodeRecord::long_name;
  record.is_cut_off = token.is_cut_off;
}

}  // namespace qo
