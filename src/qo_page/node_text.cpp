#include <qo_page/node_text.h>

#include <qo_html/qo_html_walk.h>

#include <qo_page/decode.h>

namespace qo {

namespace {

bool is_script_or_style(const Node& node) {
  return node.name == Tag::script_ || node.name == Tag::style_;
}

// Whether a text is as it is written, without references.
bool is_literal(const Node& text) {
  const Node* const parent = as_node(text.parent);
  if (parent == nullptr || parent->kind == NodeKind::document) return false;
  if (parent->kind == NodeKind::comment || parent->kind == NodeKind::cdata) return true;
  return parent->space == Space::html && has(parent->name, tag_flags::raw_text);
}

// A browser drops a line break at the start of these.
bool drops_line_break(const Node& text) {
  const Node* const parent = as_node(text.parent);
  return text.prevSibling == nullptr && parent != nullptr && parent->kind == NodeKind::element &&
         (parent->name == Tag::pre_ || parent->name == Tag::textarea_ ||
          parent->name == Tag::listing_);
}

}  // namespace

bool is_hidden(const Node& node) {
  return node.kind == NodeKind::comment || node.kind == NodeKind::code ||
         node.kind == NodeKind::doctype ||
         (node.kind == NodeKind::element && is_script_or_style(node));
}

void append_text(const Node& node, TextForm form, std::string& out) {
  std::string_view text = node.text;
  if (form == TextForm::decoded && drops_line_break(node)) {
    if (text.substr(0, 1) == "\r") text.remove_prefix(1);
    if (text.substr(0, 1) == "\n") text.remove_prefix(1);
  }
  if (form == TextForm::written || is_literal(node)) {
    out += text;
  } else {
    out += decode(text, DecodeMode::text);
  }
}

std::string text_of(const Node& node, TextForm form) {
  std::string out;
  TreeWalk walk(const_cast<Node*>(&node));
  while (const _qo_html* below = walk.next()) {
    const Node& found = *as_node(below);
    if (found.isText) {
      append_text(found, form, out);
    } else if (&found != &node && is_hidden(found)) {
      walk.skip_children();
    }
  }
  return out;
}

}  // namespace qo
