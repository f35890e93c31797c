#include <qo_page/edits/author_reading.h>

#include <algorithm>

namespace qo {

namespace {

// The last of some ranges that begins at the offset or before it; null when none does.
template <class Item, class Begin>
const Item* last_from(const std::vector<Item>& items, std::size_t offset, Begin begin) {
  const auto after = std::upper_bound(
      items.begin(), items.end(), offset,
      [begin](std::size_t wanted, const Item& item) { return wanted < begin(item); });
  return after == items.begin() ? nullptr : &*std::prev(after);
}

}  // namespace

AuthorReading::AuthorReading(std::string_view source, bool templates) : source_(source) {
  TreeBuilder(source, templates, Reader::author).observe(*this);
}

void AuthorReading::token(const Token& token, const Node& holder) {
  if (token.kind != TokenKind::start_tag) return;
  const bool is_odd = !token.open_bracket.empty();
  const bool is_closed =
      token.self_closing && !has(find_tag(token.name.in(source_)), tag_flags::void_content);
  const std::string_view name = token.name.in(source_);
  const bool would_end_holder = (holder.name == Tag::head_ || holder.name == Tag::colgroup_) &&
                                may_be_component(find_tag(name));
  const bool is_component = may_name_component(name) || would_end_holder;
  if (is_odd || is_closed || is_component) reasons_.push_back(token.extent);
  // The text after a tag whose bracket is never closed may be a part of it, too.
  const bool is_unclosed = token.open_bracket.end <= token.open_bracket.begin + 1;
  const std::size_t end = token.extent.end + (is_unclosed ? 1 : 0);
  if (is_odd) odd_tags_.push_back({{token.extent.begin, end}, token.open_bracket});
}

void AuthorReading::begin(const Node& node) {
  open_.push_back(nodes_.size());
  nodes_.push_back({node.extent, node.has_content});
}

void AuthorReading::end(const Node& node) {
  nodes_[open_.back()] = {node.extent, node.has_content};
  open_.pop_back();
  if (node.extent.content_end < node.extent.end) end_tags_.push_back(node.extent.content_end);
}

const OddTag* AuthorReading::odd_tag_at(std::size_t offset) const {
  const OddTag* const found =
      last_from(odd_tags_, offset, [](const OddTag& odd) { return odd.tag.begin; });
  return found != nullptr && offset < found->tag.end ? found : nullptr;
}

const AuthorNode* AuthorReading::node_at(std::size_t offset) const {
  const AuthorNode* const found =
      last_from(nodes_, offset, [](const AuthorNode& node) { return node.extent.begin; });
  return found != nullptr && found->extent.begin == offset ? found : nullptr;
}

bool AuthorReading::has_end_tag(std::size_t offset) const {
  return std::binary_search(end_tags_.begin(), end_tags_.end(), offset);
}

std::string_view AuthorReading::reason_for(const Extent& extent) const {
  const Range* const before =
      last_from(reasons_, extent.begin, [](const Range& tag) { return tag.begin; });
  if (reasons_.empty()) return std::string_view();
  const Range* const next = before == nullptr ? reasons_.data() : before + 1;
  const bool is_inside = next != reasons_.data() + reasons_.size() && next->begin <= extent.end;
  const bool is_own = before != nullptr && before->begin == extent.begin;
  if (is_inside && !is_own) return next->in(source_);
  return before == nullptr ? std::string_view() : before->in(source_);
}

}  // namespace qo
