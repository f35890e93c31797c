#include <qo_page/text/node_text.h>

#include <qo_html/qo_html_walk.h>

#include <qo_page/decode.h>
#include <qo_page/text/readable_text.h>

namespace qo {

namespace {

bool is_script_or_style(const Node& node) {
  return node.name == Tag::script_ || node.name == Tag::style_;
}

// Whether it is what its parent begins with, and drops.
bool may_lose_line_break(const Node& text) {
  const Node* const parent = as_node(text.parent);
  return text.prevSibling == nullptr && parent != nullptr && drops_line_break(*parent);
}

}  // namespace

bool drops_line_break(Tag name) {
  return name == Tag::pre_ || name == Tag::textarea_ || name == Tag::listing_;
}

bool drops_line_break(const Node& node) {
  return node.kind == NodeKind::element && drops_line_break(node.name);
}

std::size_t line_break_length(std::string_view text) {
  if (text.substr(0, 2) == "\r\n") return 2;
  if (text.substr(0, 1) == "\r" || text.substr(0, 1) == "\n") return 1;
  const std::size_t length =
      text.substr(0, 1) == "&" ? reference_length(text, 0, DecodeMode::text) : 0;
  return decode(text.substr(0, length)) == "\n" ? length : 0;
}

bool is_hidden(const Node& node) {
  return node.kind == NodeKind::comment || node.kind == NodeKind::code ||
         node.kind == NodeKind::doctype ||
         (node.kind == NodeKind::element && is_script_or_style(node));
}

bool is_literal(const Node& text) {
  const Node* const parent = as_node(text.parent);
  if (parent == nullptr || parent->kind == NodeKind::document) return false;
  if (parent->kind == NodeKind::comment || parent->kind == NodeKind::cdata) return true;
  return parent->space == Space::html && has(parent->name, tag_flags::raw_text);
}

std::string characters_of(const Node& node) {
  std::string_view text = node.text;
  if (may_lose_line_break(node)) {
    text.remove_prefix(line_break_length(text));
  }
  return is_literal(node) ? std::string(text) : decode(text, DecodeMode::text);
}

std::string text_of(const Node& node, TextForm form) {
  if (form == TextForm::readable) return readable_text(node, NestedTables::read);
  std::string out;
  TreeWalk walk(const_cast<Node*>(&node));
  while (const _qo_html* below = walk.next()) {
    const Node& found = *as_node(below);
    if (found.isText) {
      out += form == TextForm::written ? found.text : characters_of(found);
    } else if (&found != &node && is_hidden(found)) {
      walk.skip_children();
    }
  }
  return out;
}

std::string value_of(const Attribute& attribute, TextForm form) {
  if (form == TextForm::written) return attribute.value;
  std::string value = decode(attribute.value, DecodeMode::attribute);
  if (form == TextForm::decoded) return value;
  ReadableText text;
  text.add(value);
  return text.take();
}

}  // namespace qo
