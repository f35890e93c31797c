#include "host/compared_reading.h"

#include <algorithm>
#include <numeric>

namespace cli {

bool is_element(const PlacedNode& node) {
  return node.kind == PlacedKind::element;
}

bool is_text(const PlacedNode& node) {
  return node.kind == PlacedKind::text;
}

bool has_end_tag(const PlacedNode& node) {
  return is_element(node) && node.extent.content_end < node.extent.end;
}

ComparedReading::ComparedReading(const Reading& reading)
    : reading_(reading), twins_(size(), none), told_(size()), above_(size()) {
  std::iota(above_.begin(), above_.end(), std::size_t{0});
  for (std::size_t i = 0; i < size(); ++i) {
    if (has_end_tag((*this)[i])) end_tags_.emplace_back((*this)[i].extent.content_end, i);
  }
  std::sort(end_tags_.begin(), end_tags_.end());
}

void ComparedReading::advance() {
  do {
    ++next_;
  } while (next_ < size() && (*this)[next_].is_blank);
}

std::size_t ComparedReading::next_offset(std::size_t end) const {
  return next_ < size() ? std::min(end, (*this)[next_].extent.begin) : end;
}

bool ComparedReading::contains(std::size_t outer, std::size_t inner) const {
  return outer <= inner && (*this)[inner].extent.begin < (*this)[outer].extent.end;
}

std::size_t ComparedReading::closed_at(std::size_t offset) const {
  const auto found =
      std::lower_bound(end_tags_.begin(), end_tags_.end(), std::make_pair(offset, std::size_t{0}));
  return found != end_tags_.end() && found->first == offset ? found->second : none;
}

std::size_t ComparedReading::around(std::size_t offset) const {
  const auto after = std::upper_bound(
      reading_.nodes.begin(), reading_.nodes.end(), offset,
      [](std::size_t at, const PlacedNode& node) { return at < node.extent.begin; });
  const std::size_t i = static_cast<std::size_t>(after - reading_.nodes.begin()) - 1;
  if (i == 0) return none;
  const PlacedNode& node = (*this)[i];
  return offset < (is_element(node) ? node.extent.content_begin : node.extent.end) ? i : none;
}

bool ComparedReading::tell_within(std::size_t i) {
  const bool before = told_[i];
  told_[i] = true;
  if (has_children(i) && is_text((*this)[i + 1])) told_[i + 1] = true;
  return before;
}

void ComparedReading::discount(std::size_t i) {
  if (i != 0) above_[i] = (*this)[i].parent;
}

std::size_t ComparedReading::counted(std::size_t i) {
  while (above_[i] != i) {
    above_[i] = above_[above_[i]];
    i = above_[i];
  }
  return i;
}

}  // namespace cli
