#include <qo_page/edits/own_line.h>

#include <cstddef>
#include <string_view>

namespace qo {

namespace {

bool is_gap(char c) {
  return c == ' ' || c == '\t';
}

bool is_text(const Tree& tree, NodeIndex node) {
  return node != no_node && tree[node].kind == NodeKind::text;
}

}  // namespace

Range own_lines(const Tree& tree, NodeIndex node) {
  const std::string_view source = tree.source;
  const Range own{tree[node].begin, tree[node].end};
  const NodeIndex before = tree.previous_sibling(node);
  const NodeIndex after = tree.next_sibling(node);
  const std::size_t least = is_text(tree, before) ? tree[before].begin : own.begin;
  const std::size_t most = is_text(tree, after) ? tree[after].end : own.end;
  Range lines = own;
  while (lines.begin > least && is_gap(source[lines.begin - 1])) --lines.begin;
  while (lines.end < most && is_gap(source[lines.end])) ++lines.end;
  const bool is_at_end = lines.end == source.size();
  if (source.substr(lines.end, 2) == "\r\n") ++lines.end;
  if (!is_at_end) ++lines.end;
  const bool begins_line = lines.begin == 0 || source[lines.begin - 1] == '\n';
  const bool ends_line = is_at_end || (lines.end <= most && source[lines.end - 1] == '\n');
  return begins_line && ends_line ? lines : own;
}

}  // namespace qo
