#include <qo_page/edits/author_reading.h>

#include <algorithm>

namespace qo {

namespace {

// The last of some items that begins at the offset or before it; null when none does.
template <class Item, class Begin>
const Item* last_from(const Item* first, const Item* last, std::size_t offset, Begin begin) {
  const Item* const after = std::upper_bound(
      first, last, offset,
      [begin](std::size_t wanted, const Item& item) { return wanted < begin(item); });
  return after == first ? nullptr : after - 1;
}

template <class Item, class Begin>
const Item* last_from(const std::vector<Item>& items, std::size_t offset, Begin begin) {
  return last_from(items.data(), items.data() + items.size(), offset, begin);
}

}  // namespace

AuthorReading::AuthorReading(const Tree& tree) : source_(tree.source) {
  tree_.source = tree.source;
  tree_.options = tree.options;
  tree_.dialect = tree.dialect;
  TreeBuilder(tree_, Reader::author, this).build();
  for (NodeIndex node = document_index + 1; node < tree_.size(); ++node) {
    const NodeRecord& record = tree_[node];
    const bool is_element = record.kind == NodeKind::element;
    if (is_element && record.content_end < record.end) end_tags_.push_back(record.content_end);
  }
  std::sort(end_tags_.begin(), end_tags_.end());
}

void AuthorReading::start_tag(const Token& tag, Tag holder) {
  const std::string_view name = tag.name.in(source_);
  const bool is_odd = !tag.open_bracket.empty();
  const bool is_closed = tag.self_closing && !has(find_tag(name), tag_flags::void_content);
  const bool would_end_holder =
      (holder == Tag::head_ || holder == Tag::colgroup_) && may_be_component(find_tag(name));
  const bool is_component = may_name_component(name) || would_end_holder;
  if (is_odd || is_closed || is_component) reasons_.push_back(tag.extent);
  // The text after a tag whose bracket is never closed may be a part of it, too.
  const bool is_unclosed = tag.open_bracket.end <= tag.open_bracket.begin + 1;
  const std::size_t end = tag.extent.end + (is_unclosed ? 1 : 0);
  if (is_odd) odd_tags_.push_back({{tag.extent.begin, end}, tag.open_bracket});
}

const OddTag* AuthorReading::odd_tag_at(std::size_t offset) const {
  const OddTag* const found =
      last_from(odd_tags_, offset, [](const OddTag& odd) { return odd.tag.begin; });
  return found != nullptr && offset < found->tag.end ? found : nullptr;
}

const NodeRecord* AuthorReading::node_at(std::size_t offset) const {
  const NodeRecord* const found = last_from(tree_.nodes.begin() + 1, tree_.nodes.end() - 1, offset,
                                            [](const NodeRecord& node) { return node.begin; });
  const bool is_there = found != nullptr && found->begin == offset && found->kind != NodeKind::text;
  return is_there ? found : nullptr;
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
