#include <qo_page/tree/open_elements.h>

#include <qo_page/base/ascii.h>

namespace qo {

namespace {

using namespace tag_flags;

bool is_bound(const Node& node, Bound bound) {
  const bool is_foreign = node.space != Space::html;
  if (is_foreign) return bound != Bound::table_scope && bound != Bound::marker && holds_html(node);
  const TagFlags flags = flags_of(node.name);
  switch (bound) {
    case Bound::special:
      return (flags & special) != 0;
    case Bound::item:
      return (flags & special) != 0 && node.name != Tag::address_ && node.name != Tag::div_ &&
             node.name != Tag::p_;
    case Bound::scope:
      return (flags & scope) != 0;
    case Bound::list_scope:
      return (flags & (scope | list_scope)) != 0;
    case Bound::button_scope:
      return (flags & (scope | button_scope)) != 0;
    case Bound::table_scope:
      return (flags & table_scope) != 0;
    case Bound::marker:
      return (flags & marker) != 0;
    default:
      return false;
  }
}

// HTML's own names have their numbers; elements of svg and math are told apart from other names.
std::string key_of(std::string_view name, Space space) {
  return (space == Space::html ? "" : "/") + lower(name);
}

constexpr TagFlags any_bound = special | scope | list_scope | button_scope | table_scope | marker;

bool may_be_bound(const Node& node) {
  return node.space != Space::html || (flags_of(node.name) & any_bound) != 0;
}

}  // namespace

bool is_annotation(const Node& node) {
  return node.space == Space::math && equals_without_case(node.tag, "annotation-xml");
}

bool holds_html(const Node& node) {
  switch (node.name) {
    case Tag::foreignobject_:
    case Tag::desc_:
    case Tag::title_:
      return node.space == Space::svg;
    case Tag::mi_:
    case Tag::mo_:
    case Tag::mn_:
    case Tag::ms_:
    case Tag::mtext_:
      return node.space == Space::math;
    default:
      return is_annotation(node);
  }
}

OpenElements::OpenElements() : latest_(static_cast<std::size_t>(Tag::count), none) {}

std::uint32_t OpenElements::number_of(const Node& node) {
  if (is_html(&node) && node.name != Tag::unknown) return static_cast<std::uint32_t>(node.name);
  const auto number = static_cast<std::uint32_t>(latest_.size());
  const auto [found, is_new] = numbers_.emplace(key_of(node.tag, node.space), number);
  if (is_new) latest_.push_back(none);
  return found->second;
}

std::size_t OpenElements::nearest(std::string_view name, Tag tag, Space space) const {
  if (space == Space::html && tag != Tag::unknown) return nearest(tag);
  const auto found = numbers_.find(key_of(name, space));
  return found == numbers_.end() ? none : latest_[found->second];
}

void OpenElements::push(Node* node) {
  const std::size_t index = elements_.size();
  const std::uint32_t name = number_of(*node);
  const bool in_foreign = index > 0 && !is_html(top());
  const std::size_t foreign = in_foreign ? elements_.back().foreign : index;
  elements_.push_back({node, name, latest_[name], foreign, false});
  latest_[name] = index;
  if (!may_be_bound(*node)) return;
  for (std::size_t bound = 0; bound < static_cast<std::size_t>(Bound::count); ++bound) {
    if (is_bound(*node, static_cast<Bound>(bound))) bounds_[bound].push_back(index);
  }
}

void OpenElements::pop() {
  const Element& element = elements_.back();
  const std::size_t index = elements_.size() - 1;
  if (!element.ended) latest_[element.name] = element.previous;
  if (may_be_bound(*element.node)) {
    for (std::vector<std::size_t>& bound : bounds_) {
      if (!bound.empty() && bound.back() == index) bound.pop_back();
    }
  }
  elements_.pop_back();
}

std::size_t OpenElements::innermost_html() const {
  if (empty()) return none;
  if (is_html(top())) return elements_.size() - 1;
  return elements_.back().foreign - 1;  // 0 - 1 is none
}

void OpenElements::end_later(std::size_t index) {
  Element& element = elements_[index];
  element.ended = true;
  latest_[element.name] = element.previous;
}

}  // namespace qo
