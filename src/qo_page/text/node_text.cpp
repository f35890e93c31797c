#include <qo_page/text/node_text.h>

#include <qo_page/decode.h>
#include <qo_page/text/readable_text.h>
#include <qo_page/tree/content_model.h>

namespace qo {

namespace {

bool is_script_or_style(const NodeRecord& node) {
  return node.tag == Tag::script_ || node.tag == Tag::style_;
}

// Whether it is the text whose first line break its parent drops.
bool may_lose_line_break(const Tree& tree, NodeIndex text) {
  const NodeIndex parent = tree.parent(text);
  return parent != no_node && text == parent + 1 && drops_line_break(tree[parent]);
}

}  // namespace

bool drops_line_break(Tag name) {
  return name == Tag::pre_ || name == Tag::textarea_ || name == Tag::listing_;
}

bool drops_line_break(const NodeRecord& node) {
  return node.kind == NodeKind::element && drops_line_break(node.tag);
}

std::size_t line_break_length(std::string_view text) {
  if (text.substr(0, 2) == "\r\n") return 2;
  if (text.substr(0, 1) == "\r" || text.substr(0, 1) == "\n") return 1;
  const std::size_t length =
      text.substr(0, 1) == "&" ? reference_length(text, 0, DecodeMode::text) : 0;
  return decode(text.substr(0, length)) == "\n" ? length : 0;
}

bool is_hidden(const NodeRecord& node) {
  return node.kind == NodeKind::comment || node.kind == NodeKind::code ||
         node.kind == NodeKind::doctype ||
         (node.kind == NodeKind::element && is_script_or_style(node));
}

std::string_view written_text(const Tree& tree, NodeIndex text) {
  return tree[text].kind == NodeKind::text ? tree.html(text) : tree.inner_html(text);
}

bool is_literal(const Tree& tree, NodeIndex text) {
  return tree[text].kind != NodeKind::text ||
         content_model(tree[tree.parent(text)]) == ContentModel::rawtext;
}

std::string characters_of(const Tree& tree, NodeIndex node) {
  std::string_view text = written_text(tree, node);
  if (may_lose_line_break(tree, node)) {
    text.remove_prefix(line_break_length(text));
  }
  return is_literal(tree, node) ? std::string(text) : decode(text, DecodeMode::text);
}

std::string text_of(const Tree& tree, NodeIndex node, TextForm form) {
  const NodeKind kind = tree[node].kind;
  if (kind == NodeKind::code || kind == NodeKind::doctype) return std::string(tree.html(node));
  if (form == TextForm::readable) return readable_text(tree, node, NestedTables::read);
  if (kind == NodeKind::comment) return std::string(tree.inner_html(node));
  std::string out;
  for (NodeIndex below = node; below < tree[node].subtree_end;) {
    const NodeRecord& found = tree[below];
    if (is_text(found)) {
      out += form == TextForm::written ? written_text(tree, below) : characters_of(tree, below);
    }
    below = is_hidden(found) && below != node ? found.subtree_end : below + 1;
  }
  return out;
}

std::string value_of(const Tree& tree, const AttributeRecord& attribute, TextForm form) {
  const std::string_view written = tree.written_value(attribute);
  if (form == TextForm::written) return std::string(written);
  std::string value = decode(written, DecodeMode::attribute);
  if (form == TextForm::decoded) return value;
  ReadableText text;
  text.add(value);
  return text.take();
}

}  // namespace qo
