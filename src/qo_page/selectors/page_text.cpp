#include <qo_page/selectors/page_text.h>

#include <algorithm>

#include <qo_page/text/node_text.h>

namespace qo::selectors {

namespace {

// That of a comment is what it holds.
std::string own_text(const Tree& tree, NodeIndex node) {
  if (!tree.is_element(node)) return text_of(tree, node, TextForm::decoded);
  std::string out;
  for (NodeIndex child = tree.first_child(node); child != no_node;
       child = tree.next_sibling(child)) {
    if (is_text(tree[child])) out += characters_of(tree, child);
  }
  return out;
}

}  // namespace

PageText::PageText(const Tree& tree) : tree_(tree), begins_(tree.size() + std::size_t{1}) {
  NodeIndex hidden_end = 0;
  for (NodeIndex node = document_index; node < tree.size(); ++node) {
    begins_[node] = text_.size();
    if (node < hidden_end) continue;
    if (is_text(tree[node])) text_ += characters_of(tree, node);
    if (is_hidden(tree[node])) hidden_end = tree[node].subtree_end;
  }
  begins_.back() = text_.size();
}

Range PageText::range_of(NodeIndex node) const {
  return {begins_[node], begins_[tree_[node].subtree_end]};
}

bool PageText::contains(NodeIndex node, const TextTest& test) {
  const std::string& wanted = test.needle.text();
  if (test.own) return own_text(tree_, node).find(wanted) != std::string::npos;
  if (is_hidden(tree_[node])) {
    return text_of(tree_, node, TextForm::decoded).find(wanted) != std::string::npos;
  }
  const auto [entry, is_new] = places_.try_emplace(&test);
  std::vector<std::size_t>& places = entry->second;
  if (is_new) places = test.needle.places_in(text_);
  const Range range = range_of(node);
  const auto first = std::lower_bound(places.begin(), places.end(), range.begin);
  return first != places.end() && *first + wanted.size() <= range.end;
}

std::string_view PageText::of(NodeIndex node, std::string& buffer) const {
  if (is_hidden(tree_[node])) return buffer = text_of(tree_, node, TextForm::decoded);
  return range_of(node).in(text_);
}

}  // namespace qo::selectors
