// How the tree builder makes nodes.

#include <algorithm>
#include <unordered_set>

#include <qo_page/base/ascii.h>
#include <qo_page/text/class_tokens.h>
#include <qo_page/tree/quirks.h>
#include <qo_page/tree/tree_builder.h>

namespace qo {

namespace {

constexpr std::size_t many = 16;  // attributes, from which on looking through them takes long

bool has_attribute(const Node& node, std::string_view name) {
  return std::any_of(
      node.attributes.begin(), node.attributes.end(),
      [name](const Attribute& attribute) { return equals_without_case(attribute.name, name); });
}

std::unique_ptr<Node> make_node(NodeKind kind, Range extent) {
  auto node = std::make_unique<Node>();
  node->kind = kind;
  node->closed = true;
  node->extent = {extent.begin, extent.end, extent.end, extent.end};
  return node;
}

std::unique_ptr<Node> make_text(std::string_view source, Range extent) {
  auto node = make_node(NodeKind::text, extent);
  node->isText = true;
  node->text = extent.in(source);
  return node;
}

// Template code and white space alone are no text that a browser will see.
bool is_blank_or_code(std::string_view source, Range range, CodeScanner& code) {
  for (std::size_t i = range.begin; i < range.end;) {
    const std::size_t end = source[i] == '{' ? code.end_of(i, CodeScanner::Place::text) : 0;
    if (end == 0 && !is_blank(source[i])) return false;
    i = std::max(end, i + 1);
  }
  return true;
}

}  // namespace

std::unique_ptr<Node> TreeBuilder::make_element(const Token& token, Tag tag, Space space) {
  auto node = make_node(NodeKind::element, token.extent);
  node->tag = token.name.in(source_);
  node->name = tag;
  node->space = space;
  node->isVoid = space == Space::html && has(tag, tag_flags::void_content);
  if (observer_ == nullptr || is_annotation(*node)) add_attributes(*node, token);
  return node;
}

// Of several attributes of one name, the first counts.
void TreeBuilder::add_attributes(Node& node, const Token& tag) {
  node.attributes.reserve(tag.attributes.size());
  std::unordered_set<std::string> names;
  for (const AttributeToken& attribute : tag.attributes) {
    const std::string_view name = attribute.name.in(source_);
    const bool is_new = tag.attributes.size() > many ? names.insert(lower(name)).second
                                                     : !has_attribute(node, name);
    if (!is_new) continue;
    Attribute& added = node.attributes.emplace_back();
    added.name = name;
    added.hasValue = attribute.has_value ? 1 : 0;
    added.value = attribute.value.in(source_);
    if (!equals_without_case(name, "class")) continue;
    for (const ClassToken& token : class_tokens(source_, attribute.value, tokenizer_.code())) {
      if (token.is_whole) node.classes.emplace_back(token.range.in(source_));
    }
  }
}

Node* TreeBuilder::append(std::unique_ptr<Node> node) {
  Node* const parent = current();
  node->parent = parent;
  if (!parent->children.empty()) {
    node->prevSibling = parent->children.back();
  }
  parent->children.push_back(node.get());
  if (node->prevSibling != nullptr) node->prevSibling->nextSibling = node.get();
  Node* const appended = node.release();
  if (observer_ != nullptr) {
    observer_->begin(*appended);
  } else if (appended->name != Tag::unknown) {
    document_->elements[static_cast<std::size_t>(appended->name)].push_back(appended);
  }
  return appended;
}

// A node that ends with its own tag.
void TreeBuilder::append_whole(std::unique_ptr<Node> node) {
  const Node* const whole = append(std::move(node));
  if (observer_ != nullptr) observer_->end(*whole);
}

void TreeBuilder::end_node(Node& node, std::size_t content_end, std::size_t end) {
  node.extent.content_end = content_end;
  node.extent.end = end;
  if (observer_ == nullptr) return;
  observer_->end(node);
  std::vector<_qo_html*> children;
  children.swap(node.children);
  for (_qo_html* child : children) delete child;
}

// Text ends a head.
void TreeBuilder::text(const Token& token) {
  const bool is_fussy = open_.top_is(Tag::head_) || open_.top_is(Tag::colgroup_);
  if (is_fussy && !is_blank_or_code(source_, token.extent, tokenizer_.code())) {
    close_top(token.extent.begin);
  }
  if (observer_ != nullptr) return;
  std::vector<_qo_html*>& siblings = current()->children;
  if (!siblings.empty() && siblings.back()->isText) {  // a tag that the end of the source cuts off
    Node* const last = as_node(siblings.back());
    last->text += token.extent.in(source_);
    last->extent.content_begin = last->extent.content_end = last->extent.end = token.extent.end;
    return;
  }
  append(make_text(source_, token.extent));
}

// A comment or CDATA section.
void TreeBuilder::section(const Token& token) {
  const bool is_comment = token.kind == TokenKind::comment;
  auto node = make_node(is_comment ? NodeKind::comment : NodeKind::cdata, token.extent);
  node->isComment = is_comment;
  node->isCdata = !is_comment;
  node->tag = is_comment ? "!--" : "![CDATA[";
  node->extent.content_begin = token.content.begin;
  node->extent.content_end = token.content.end;
  auto content = make_text(source_, token.content);
  content->parent = node.get();
  node->children.push_back(content.get());
  content.release();
  append_whole(std::move(node));
}

// A doctype, or template code in a tag of its own.
void TreeBuilder::declaration(const Token& token) {
  const bool is_doctype = token.kind == TokenKind::doctype;
  auto node = make_node(is_doctype ? NodeKind::doctype : NodeKind::code, token.extent);
  const std::string_view inner = token.extent.in(source_).substr(1);
  std::size_t length = 1;
  while (length < inner.size() && is_letter(inner[length])) ++length;
  node->tag = inner.substr(0, length);
  node->isDeclaration = node->isVoid = true;
  if (is_doctype && open_.empty()) is_quirky_ = is_quirky(token.content.in(source_));
  append_whole(std::move(node));
}

}  // namespace qo
