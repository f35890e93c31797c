#include <qo_page/selectors/sibling_positions.h>

#include <qo_page/base/ascii.h>

namespace qo::selectors {

namespace {

constexpr std::uint32_t space_count = 4;
constexpr std::uint32_t tag_count = static_cast<std::uint32_t>(Tag::count);

template <class Work>
void for_each_element(const Tree& tree, NodeIndex parent, Work work) {
  for (NodeIndex child = parent + 1; child < tree[parent].subtree_end;
       child = tree[child].subtree_end) {
    if (tree.is_element(child)) work(child);
  }
}

}  // namespace

std::uint32_t SiblingPositions::count(NodeIndex parent) const {
  std::uint32_t count = 0;
  for_each_element(tree_, parent, [&](NodeIndex) { ++count; });
  return count;
}

SiblingPositions::Type SiblingPositions::type_of(NodeIndex node) {
  const NodeRecord& record = tree_[node];
  const auto space = static_cast<std::uint32_t>(record.space);
  const auto tag = static_cast<std::uint32_t>(record.tag);
  if (record.tag != Tag::unknown) return tag * space_count + space;
  const auto next = static_cast<std::uint32_t>(tag_count + unknown_.size());
  const std::string_view written = tree_.name(node);
  const std::string name = tree_.dialect->has_case ? std::string(written) : lower(written);
  return unknown_.try_emplace(name, next).first->second * space_count + space;
}

void SiblingPositions::count_types(Family& family) {
  types_.clear();
  for_each_element(tree_, family.parent,
                   [&](NodeIndex child) { types_.push_back(type_of(child)); });
  counts_.resize((tag_count + unknown_.size()) * space_count);
  family.positions.clear();
  for (const Type type : types_) family.positions.push_back({++counts_[type], 0});
  for (std::size_t i = 0; i < types_.size(); ++i) {
    Position& position = family.positions[i];
    position.from_end = counts_[types_[i]] - position.from_start + 1;
  }
  for (const Type type : types_) counts_[type] = 0;
}

Position SiblingPositions::among_type(NodeIndex node, std::size_t depth, std::uint32_t place) {
  if (families_.size() <= depth) families_.resize(depth + 1);
  Family& family = families_[depth];
  const NodeIndex parent = tree_.parent(node);
  if (family.parent != parent) {
    family.parent = parent;
    count_types(family);
  }
  return family.positions[place - 1];
}

}  // namespace qo::selectors
