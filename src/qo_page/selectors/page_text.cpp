#include <qo_page/selectors/page_text.h>

#include <algorithm>

#include <qo_html/qo_html_walk.h>

#include <qo_page/text/node_text.h>

namespace qo::selectors {

namespace {

std::string own_text(const Node& node) {
  std::string out;
  for (const _qo_html* child : node.children) {
    if (child->isText) out += characters_of(*as_node(child));
  }
  return out;
}

}  // namespace

PageText::PageText(const Node& document) {
  TreeWalk walk(const_cast<Node*>(&document));
  while (const _qo_html* found = walk.next()) {
    const Node& node = *as_node(found);
    if (node.isText) {
      starts_.push_back({node.extent.begin, text_.size()});
      text_ += characters_of(node);
    } else if (is_hidden(node)) {
      walk.skip_children();
    }
  }
}

// Where the texts begin that begin at `in_source` or after it.
std::size_t PageText::place_of(std::size_t in_source) const {
  const auto start =
      std::lower_bound(starts_.begin(), starts_.end(), in_source,
                       [](const Start& a, std::size_t offset) { return a.in_source < offset; });
  return start == starts_.end() ? text_.size() : start->in_text;
}

PageText::Range PageText::range_of(const Node& node) const {
  return {place_of(node.extent.begin), place_of(node.extent.end)};
}

bool PageText::contains(const Node& node, const TextTest& test) {
  const std::string& wanted = test.needle.text();
  if (test.own) return own_text(node).find(wanted) != std::string::npos;
  if (is_hidden(node)) return text_of(node, TextForm::decoded).find(wanted) != std::string::npos;
  const auto [entry, is_new] = places_.try_emplace(&test);
  std::vector<std::size_t>& places = entry->second;
  if (is_new) places = test.needle.places_in(text_);
  const Range range = range_of(node);
  const auto first = std::lower_bound(places.begin(), places.end(), range.begin);
  return first != places.end() && *first + wanted.size() <= range.end;
}

std::string_view PageText::of(const Node& node, std::string& buffer) const {
  if (is_hidden(node)) return buffer = text_of(node, TextForm::decoded);
  const Range range = range_of(node);
  return std::string_view(text_).substr(range.begin, range.end - range.begin);
}

}  // namespace qo::selectors
