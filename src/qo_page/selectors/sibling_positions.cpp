#include <qo_page/selectors/sibling_positions.h>

#include <algorithm>

#include <qo_page/base/ascii.h>

namespace qo::selectors {

namespace {

constexpr std::uint32_t space_count = 3;
constexpr std::uint32_t tag_count = static_cast<std::uint32_t>(Tag::count);

bool is_element(const _qo_html* node) {
  return as_node(node)->kind == NodeKind::element;
}

}  // namespace

std::uint32_t SiblingPositions::count(const _qo_html& parent) {
  return static_cast<std::uint32_t>(
      std::count_if(parent.children.begin(), parent.children.end(), is_element));
}

SiblingPositions::Type SiblingPositions::type_of(const Node& node) {
  const auto space = static_cast<std::uint32_t>(node.space);
  if (node.name != Tag::unknown) return static_cast<std::uint32_t>(node.name) * space_count + space;
  const auto next = static_cast<std::uint32_t>(tag_count + unknown_.size());
  return unknown_.try_emplace(lower(node.tag), next).first->second * space_count + space;
}

void SiblingPositions::count_types(Family& family) {
  std::vector<Type> types;
  for (const _qo_html* child : family.parent->children) {
    if (is_element(child)) types.push_back(type_of(*as_node(child)));
  }
  counts_.resize((tag_count + unknown_.size()) * space_count);
  family.positions.clear();
  for (const Type type : types) family.positions.push_back({++counts_[type], 0});
  for (std::size_t i = 0; i < types.size(); ++i) {
    Position& position = family.positions[i];
    position.from_end = counts_[types[i]] - position.from_start + 1;
  }
  for (const Type type : types) counts_[type] = 0;
}

Position SiblingPositions::among_type(const Node& node, std::size_t depth, std::uint32_t place) {
  if (families_.size() <= depth) families_.resize(depth + 1);
  Family& family = families_[depth];
  if (family.parent != node.parent) {
    family.parent = node.parent;
    count_types(family);
  }
  return family.positions[place - 1];
}

}  // namespace qo::selectors
