#include "host/compared_reading.h"

#include <algorithm>
#include <numeric>

#include "io/text.h"

namespace cli {

bool is_element(const _qo_html& node) {
  return !node.isText && !node.isComment && !node.isCdata && !node.isDeclaration && !node.isRoot;
}

bool is_blank_text(const _qo_html& node) {
  return node.isText && is_blank(node.text);
}

bool has_end_tag(const PlacedNode& placed) {
  return is_element(*placed.node) && placed.extent.content_end < placed.extent.end;
}

ComparedReading::ComparedReading(const Reading& reading)
    : reading_(reading),
      twins_(reading.size(), none),
      told_(reading.size()),
      above_(reading.size()) {
  std::iota(above_.begin(), above_.end(), std::size_t{0});
  for (std::size_t i = 0; i < reading.size(); ++i) {
    if (has_end_tag(reading[i])) end_tags_.emplace_back(reading[i].extent.content_end, i);
  }
  std::sort(end_tags_.begin(), end_tags_.end());
}

void ComparedReading::advance() {
  do {
    ++next_;
  } while (next_ < size() && is_blank_text(*reading_[next_].node));
}

std::size_t ComparedReading::next_offset(std::size_t end) const {
  return next_ < size() ? std::min(end, reading_[next_].extent.begin) : end;
}

bool ComparedReading::contains(std::size_t outer, std::size_t inner) const {
  return outer <= inner && reading_[inner].extent.begin < reading_[outer].extent.end;
}

std::size_t ComparedReading::closed_at(std::size_t offset) const {
  const auto found =
      std::lower_bound(end_tags_.begin(), end_tags_.end(), std::make_pair(offset, std::size_t{0}));
  return found != end_tags_.end() && found->first == offset ? found->second : none;
}

std::size_t ComparedReading::around(std::size_t offset) const {
  const auto after = std::upper_bound(
      reading_.begin(), reading_.end(), offset,
      [](std::size_t at, const PlacedNode& placed) { return at < placed.extent.begin; });
  std::size_t i = static_cast<std::size_t>(after - reading_.begin()) - 1;
  const _qo_html& parent = *reading_[reading_[i].parent].node;
  if (parent.isComment || parent.isCdata) i = reading_[i].parent;
  if (reading_[i].node->isRoot) return none;
  const qo::Extent& extent = reading_[i].extent;
  const bool is_tag = is_element(*reading_[i].node);
  return offset < (is_tag ? extent.content_begin : extent.end) ? i : none;
}

bool ComparedReading::tell_within(std::size_t i) {
  const bool before = told_[i];
  told_[i] = true;
  const std::size_t child = i + 1;
  if (child < size() && reading_[child].parent == i && reading_[child].node->isText) {
    told_[child] = true;
  }
  return before;
}

void ComparedReading::discount(std::size_t i) {
  if (i != 0) above_[i] = reading_[i].parent;
}

std::size_t ComparedReading::counted(std::size_t i) {
  while (above_[i] != i) {
    above_[i] = above_[above_[i]];
    i = above_[i];
  }
  return i;
}

}  // namespace cli
