#include <qo_page/tree/open_elements.h>

#include <array>

#include <qo_page/base/ascii.h>

namespace qo {

namespace {

using namespace tag_flags;

constexpr std::size_t tag_count = static_cast<std::size_t>(Tag::count);
constexpr std::size_t bound_count = static_cast<std::size_t>(Bound::count);

constexpr unsigned bit(Bound bound) {
  return 1u << static_cast<unsigned>(bound);
}

constexpr unsigned bounds_of_html(Tag tag) {
  const TagFlags flags = rows[static_cast<std::size_t>(tag)].flags;
  unsigned bounds = 0;
  if ((flags & special) != 0) bounds |= bit(Bound::special);
  const bool is_transparent = tag == Tag::address_ || tag == Tag::div_ || tag == Tag::p_;
  if ((flags & special) != 0 && !is_transparent) bounds |= bit(Bound::item);
  if ((flags & scope) != 0) bounds |= bit(Bound::scope);
  if ((flags & (scope | list_scope)) != 0) bounds |= bit(Bound::list_scope);
  if ((flags & (scope | button_scope)) != 0) bounds |= bit(Bound::button_scope);
  if ((flags & table_scope) != 0) bounds |= bit(Bound::table_scope);
  if ((flags & marker) != 0) bounds |= bit(Bound::marker);
  return bounds;
}

constexpr std::array<unsigned char, tag_count> html_bounds = [] {
  std::array<unsigned char, tag_count> made{};
  for (std::size_t i = 0; i < tag_count; ++i) {
    made[i] = static_cast<unsigned char>(bounds_of_html(static_cast<Tag>(i)));
  }
  return made;
}();

constexpr unsigned foreign_bounds = bit(Bound::special) | bit(Bound::item) | bit(Bound::scope) |
                                    bit(Bound::list_scope) | bit(Bound::button_scope);

unsigned bounds_of(const ElementType& type) {
  if (type.space == Namespace::html) return html_bounds[static_cast<std::size_t>(type.tag)];
  return holds_html(type) ? foreign_bounds : 0;
}

}  // namespace

bool is_annotation(const ElementType& type) {
  return type.space == Namespace::math && equals_without_case(type.name, "annotation-xml");
}

bool holds_html(const ElementType& type) {
  switch (type.tag) {
    case Tag::foreignobject_:
    case Tag::desc_:
    case Tag::title_:
      return type.space == Namespace::svg;
    case Tag::mi_:
    case Tag::mo_:
    case Tag::mn_:
    case Tag::ms_:
    case Tag::mtext_:
      return type.space == Namespace::math;
    default:
      return is_annotation(type);
  }
}

std::size_t OpenElements::NameHash::operator()(const Name& name) const {
  std::size_t hash = name.is_html ? 1 : 0;
  for (const char c : name.text) hash = hash * 31 + static_cast<unsigned char>(lower(c));
  return hash;
}

bool OpenElements::NameEqual::operator()(const Name& a, const Name& b) const {
  return a.is_html == b.is_html &&
         (has_case ? a.text == b.text : equals_without_case(a.text, b.text));
}

OpenElements::OpenElements(bool has_case)
    : latest_(tag_count, none), numbers_(0, NameHash(), NameEqual{has_case}) {}

std::uint32_t OpenElements::number_of(const ElementType& type) {
  const bool is_html = type.space == Namespace::html;
  if (is_html && type.tag != Tag::unknown) return static_cast<std::uint32_t>(type.tag);
  const auto number = static_cast<std::uint32_t>(latest_.size());
  const auto [found, is_new] = numbers_.emplace(Name{type.name, is_html}, number);
  if (is_new) latest_.push_back(none);
  return found->second;
}

std::size_t OpenElements::nearest(const ElementType& type) const {
  const bool is_html = type.space == Namespace::html;
  if (is_html && type.tag != Tag::unknown) return nearest(type.tag);
  const auto found = numbers_.find(Name{type.name, is_html});
  return found == numbers_.end() ? none : latest_[found->second];
}

void OpenElements::push(NodeIndex node, const ElementType& type) {
  const std::size_t index = elements_.size();
  const std::uint32_t name = number_of(type);
  const std::size_t foreign = top_is_foreign() ? elements_.back().foreign : index;
  const unsigned bounds = bounds_of(type);
  elements_.push_back({type, node, name, latest_[name], foreign, bounds, false});
  latest_[name] = index;
  for (std::size_t bound = 0; bounds >> bound != 0; ++bound) {
    if ((bounds >> bound & 1u) != 0) bounds_[bound].push_back(index);
  }
}

void OpenElements::pop() {
  const Element& element = elements_.back();
  if (!element.is_ended) latest_[element.name] = element.previous;
  for (std::size_t bound = 0; element.bounds >> bound != 0; ++bound) {
    if ((element.bounds >> bound & 1u) != 0) bounds_[bound].pop_back();
  }
  elements_.pop_back();
}

std::size_t OpenElements::innermost_html() const {
  if (empty()) return none;
  if (top_is_html()) return elements_.size() - 1;
  return elements_.back().foreign - 1;  // 0 - 1 is none
}

void OpenElements::end_later(std::size_t index) {
  Element& element = elements_[index];
  element.is_ended = true;
  latest_[element.name] = element.previous;
}

static_assert(bound_count <= 8, "the bounds of an element are one byte");

}  // namespace qo
