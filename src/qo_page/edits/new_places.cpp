#include <qo_page/edits/new_places.h>

#include <algorithm>

namespace qo {

NodeIndex NewPlaces::next() {
  for (;;) {
    const std::vector<GoneNodes>& gone = written_.gone;
    while (next_gone_ < gone.size() && gone[next_gone_].begin <= next_) {
      next_ = std::max(next_, gone[next_gone_++].end);
    }
    if (next_ >= tree_.size()) return no_node;
    const NodeIndex node = next_++;
    if (tree_[node].kind != NodeKind::text) return node;
  }
}

NodeIndex NewPlaces::peek() const {
  return NewPlaces(*this).next();
}

// Where an offset is after that many changes. Up to the next change, everything has moved equally
// far.
std::size_t NewPlaces::shifted(std::size_t offset, std::size_t changes) const {
  if (changes == 0) return offset;
  const Change& last = written_.changes[changes - 1];
  return last.new_end + (offset - last.old_end);
}

// Where what begins at an offset is now.
std::size_t NewPlaces::moved(std::size_t offset) const {
  const auto next = std::upper_bound(
      written_.changes.begin(), written_.changes.end(), offset,
      [](std::size_t wanted, const Change& change) { return wanted < change.old_end; });
  return shifted(offset, static_cast<std::size_t>(next - written_.changes.begin()));
}

// Where what ends at an offset ends now.
std::size_t NewPlaces::moved_end(std::size_t offset) const {
  const auto next = std::lower_bound(
      written_.changes.begin(), written_.changes.end(), offset,
      [](const Change& change, std::size_t wanted) { return change.old_end < wanted; });
  return shifted(offset, static_cast<std::size_t>(next - written_.changes.begin()));
}

NewPlaces::Place NewPlaces::place_of(NodeIndex node) const {
  const auto kept =
      std::lower_bound(written_.kept.begin(), written_.kept.end(), node,
                       [](const KeptNode& there, NodeIndex wanted) { return there.node < wanted; });
  const bool is_known = kept != written_.kept.end() && kept->node == node;
  if (is_known && kept->known == KeptNode::Known::all) return {kept->extent, kept->is_renamed};
  const NodeRecord& record = tree_[node];
  Extent extent = tree_.extent(node);
  const std::size_t begin = moved(record.begin);
  extent.begin = begin;
  extent.content_begin = begin + (record.content_begin - record.begin);
  if (is_known) {
    extent.content_end = extent.end = kept->extent.end;
  } else if (record.content_end < record.end) {
    extent.content_end = moved(record.content_end);
    extent.end = extent.content_end + (record.end - record.content_end);
  } else {
    extent.content_end = extent.end =
        record.has_content ? moved_end(record.end) : begin + (record.end - record.begin);
  }
  return {extent, false};
}

}  // namespace qo
