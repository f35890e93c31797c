#include <qo_page/text/readable_text.h>

#include <qo_page/base/ascii.h>
#include <qo_page/text/node_text.h>
#include <qo_page/tree/tree_walk.h>

namespace qo {

namespace {

constexpr std::string_view no_break_space = "\xC2\xA0";

// How many bytes of white space the text begins with.
std::size_t leading_space(std::string_view text) {
  if (is_blank(text[0])) return 1;
  return text.substr(0, no_break_space.size()) == no_break_space ? no_break_space.size() : 0;
}

bool is_block_level(const NodeRecord& node) {
  return node.kind == NodeKind::element && has(node.tag, tag_flags::block_level);
}

}  // namespace

void ReadableText::add(std::string_view text) {
  while (!text.empty()) {
    const std::size_t space = leading_space(text);
    if (space == 0) {
      if (is_apart_ && !out_.empty()) out_ += ' ';
      out_ += text[0];
    }
    is_apart_ = space != 0;
    text.remove_prefix(space == 0 ? 1 : space);
  }
}

std::string readable_text(const Tree& tree, NodeIndex node, NestedTables nested) {
  ReadableText text;
  if (tree[node].kind == NodeKind::comment) {
    text.add(tree.inner_html(node));
    return text.take();
  }
  TreeWalk walk(tree, node);
  for (;;) {
    const TreeWalk::Event event = walk.step();
    if (event == TreeWalk::Event::end) return text.take();
    const NodeRecord& here = tree[walk.node()];
    if (event == TreeWalk::Event::enter && is_text(here)) {
      text.add(characters_of(tree, walk.node()));
      continue;
    }
    if (is_block_level(here)) text.begin_block();
    const bool is_left_out =
        is_hidden(here) || (nested == NestedTables::left_out && here.tag == Tag::table_);
    if (event == TreeWalk::Event::enter && walk.node() != node && is_left_out) {
      walk.skip_children();
    }
  }
}

}  // namespace qo
